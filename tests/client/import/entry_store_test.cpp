// tests/client/import/entry_store_test.cpp: which entry is which note, over many readings.
#include "client/import/entry_store.h"

#include "client/store/host.h"
#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

class EntryStoreTest : public ImportTest {
protected:
    EntryStoreTest() { Open(); }

    // An import opens its databases anew.
    void Open()
    {
        std::string error;
        store_.reset();
        store_ = EntryStore::Open(options_.dataDirectory + "/mail.vlt", "Mail", &error);
        ASSERT_NE(store_, nullptr) << error;
    }

    static SourceEntryFound EntryOf(const std::string& text)
    {
        const size_t equals = text.find('=');
        SourceEntryFound entry;
        entry.identity = text.substr(0, equals);
        entry.digest = "digest of " + text.substr(equals + 1);
        entry.make = [content = text.substr(equals + 1)](Note* note, std::string* reason) {
            *reason = "cannot be made";
            note->items.push_back(TextItem("Subject", content));
            return content != "bad";
        };
        return entry;
    }

    // Reads a source that holds these entries: "identity=content", each.
    std::string Read(const std::string& source, const std::vector<std::string>& entries, bool prune = false,
                     bool complete = true)
    {
        ImportReport report;
        Open();
        store_->BeginSource(source);
        for (const std::string& text : entries)
            EXPECT_TRUE(store_->Offer(EntryOf(text), &report));
        if (store_->SetAside() != 0) {
            for (const std::string& text : entries)
                EXPECT_TRUE(store_->OfferAgain(EntryOf(text), &report));
        }
        EXPECT_TRUE(store_->FinishSource(complete, prune, &report));
        return Counts(report);
    }

    // Reads a source of numbered entries: "identity=sequence/changed=content", each.
    std::string ReadNumbered(const std::string& source, const std::vector<std::string>& entries, bool prune = false)
    {
        Open();
        ImportReport report;
        ReadSource(source, entries, &report);
        EXPECT_TRUE(store_->FinishSource(true, prune, &report));
        return Counts(report);
    }

    void ReadSource(const std::string& source, const std::vector<std::string>& entries, ImportReport* report)
    {
        store_->BeginSource(source);
        for (const std::string& text : entries) {
            const size_t first = text.find('=');
            const size_t slash = text.find('/');
            const size_t second = text.find('=', slash);
            SourceEntryFound entry;
            entry.identity = text.substr(0, first);
            entry.revision = Revision{static_cast<uint32_t>(std::stoul(text.substr(first + 1, slash - first - 1))),
                                      text.substr(slash + 1, second - slash - 1)};
            entry.digest = "digest of " + text.substr(second + 1);
            entry.make = [content = text.substr(second + 1)](Note* note, std::string*) {
                note->items.push_back(TextItem("Subject", content));
                return true;
            };
            EXPECT_TRUE(store_->Offer(std::move(entry), report));
        }
    }

    std::unique_ptr<EntryStore> store_;
};

using Found = std::vector<std::string>;

TEST_F(EntryStoreTest, WritesNothingForWhatItKnows)
{
    EXPECT_EQ(Read("S", {"a=1", "b=2"}), "added 2 updated 0 unchanged 0 removed 0 rejected 0");
    const auto before = Versions();
    EXPECT_EQ(Read("S", {"b=2", "a=1"}), "added 0 updated 0 unchanged 2 removed 0 rejected 0");
    EXPECT_EQ(Versions(), before);
}

TEST_F(EntryStoreTest, UpdatesTheNoteOfAnEntryThatChanged)
{
    Read("S", {"a=1", "b=2"});
    EXPECT_EQ(Read("S", {"a=1x", "b=2"}), "added 0 updated 1 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"1x", "2"}));
    EXPECT_EQ(Read("S", {"a=1x", "b=2"}), "added 0 updated 0 unchanged 2 removed 0 rejected 0");
    EXPECT_EQ(Versions().at(0).second, 2U);
}

TEST_F(EntryStoreTest, KeepsDifferentContentsOfOneIdentityApartInAnyOrder)
{
    EXPECT_EQ(Read("S", {"a=1", "a=2", "a=3", "a=2"}), "added 3 updated 0 unchanged 1 removed 0 rejected 0");
    const auto before = Versions();
    EXPECT_EQ(Read("S", {"a=3", "a=2", "a=1"}), "added 0 updated 0 unchanged 3 removed 0 rejected 0");
    EXPECT_EQ(Versions(), before);
    EXPECT_EQ(Read("S", {"a=3", "a=2x", "a=1"}), "added 0 updated 1 unchanged 2 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"1", "2x", "3"}));
    EXPECT_EQ(Read("S", {"a=2x", "a=3", "a=1"}), "added 0 updated 0 unchanged 3 removed 0 rejected 0");
}

TEST_F(EntryStoreTest, PrunesOnlyWhatIsGoneFromItsSource)
{
    Read("S", {"a=1", "b=2", "a=3"});
    Read("T", {"c=4"});
    EXPECT_EQ(Read("S", {"a=3"}, true), "added 0 updated 0 unchanged 1 removed 2 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"3", "4"}));
    EXPECT_EQ(Read("S", {"a=3", "a=1"}, true), "added 1 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(Read("S", {"a=3", "a=1"}, true), "added 0 updated 0 unchanged 2 removed 0 rejected 0");
}

TEST_F(EntryStoreTest, KeepsANoteAsLongAsOneSourceHoldsIt)
{
    for (const char* source : {"S", "T", "U", "V"})
        Read(source, {"a=1"});
    EXPECT_EQ(Subjects(), (Found{"1"}));
    for (const char* source : {"U", "S", "V"})
        EXPECT_EQ(Read(source, {}, true), "added 0 updated 0 unchanged 0 removed 0 rejected 0") << source;
    EXPECT_EQ(Subjects(), (Found{"1"}));
    EXPECT_EQ(Read("T", {}, true), "added 0 updated 0 unchanged 0 removed 1 rejected 0");
    EXPECT_EQ(Subjects(), Found{});
    EXPECT_EQ(Read("S", {"a=1"}), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
}

TEST_F(EntryStoreTest, DoesNotReplaceWhatAnotherSourceStillHolds)
{
    Read("S", {"a=1"});
    Read("T", {"a=1"});
    EXPECT_EQ(Read("T", {"a=2"}), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"1", "2"}));
}

TEST_F(EntryStoreTest, PrunesNothingWhenTheSourceCouldNotBeReadWhole)
{
    Read("S", {"a=1", "b=2"});
    EXPECT_EQ(Read("S", {"a=1"}, true, false), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"1", "2"}));
}

TEST_F(EntryStoreTest, UpdatesAlsoWhenTheSourceCouldNotBeReadWhole)
{
    Read("S", {"a=1", "b=2"});
    EXPECT_EQ(Read("S", {"a=1x"}, false, false), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"1x", "2"}));
    EXPECT_EQ(Read("S", {"a=1x", "b=2"}), "added 0 updated 0 unchanged 2 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"1x", "2"}));
}

TEST_F(EntryStoreTest, ReportsABadEntryOnceAlsoWhenTheSourceIsReadASecondTime)
{
    Read("S", {"a=1"});
    EXPECT_EQ(Read("S", {"b=bad", "a=1x", "a=bad"}), "added 0 updated 1 unchanged 0 removed 0 rejected 2");
    EXPECT_EQ(Read("S", {"a=1x"}), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
}

TEST_F(EntryStoreTest, KeepsTheRowOfANoteWhoseNewContentCannotBeMade)
{
    Read("S", {"a=1", "a=2"});
    EXPECT_EQ(Read("S", {"a=1", "a=bad"}), "added 0 updated 0 unchanged 1 removed 0 rejected 1");
    EXPECT_EQ(Read("S", {"a=1"}, true), "added 0 updated 0 unchanged 1 removed 1 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"1"}));
}

TEST_F(EntryStoreTest, BringsBackANoteThatItsUserDeleted)
{
    Read("S", {"a=1", "b=2"});
    ASSERT_EQ(OpenMail()->Delete(Versions().at(0).first), 0);
    std::string error;
    store_ = EntryStore::Open(options_.dataDirectory + "/mail.vlt", "Mail", &error);
    EXPECT_EQ(Read("S", {"a=1", "b=2"}), "added 1 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"2", "1"}));
}

TEST_F(EntryStoreTest, ReportsAnEntryThatCannotBeMadeAndGoesOn)
{
    EXPECT_EQ(Read("S", {"a=1", "b=bad", "c=2"}), "added 2 updated 0 unchanged 0 removed 0 rejected 1");
    EXPECT_EQ(Subjects(), (Found{"1", "2"}));
}

TEST_F(EntryStoreTest, WritesWhatFillsSeveralTransactions)
{
    std::vector<std::string> entries;
    for (int i = 0; i < 9000; ++i)
        entries.push_back("e" + std::to_string(i) + "=" + std::to_string(i));
    EXPECT_EQ(Read("S", entries), "added 9000 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Read("S", entries), "added 0 updated 0 unchanged 9000 removed 0 rejected 0");
}

TEST(NoteIdSet, HoldsIds)
{
    NoteIdSet ids;
    EXPECT_FALSE(ids.Has(0));
    ids.Add(5);
    ids.Add(70000);
    EXPECT_TRUE(ids.Has(5) && ids.Has(70000));
    EXPECT_FALSE(ids.Has(6) || ids.Has(80000000));
    ids.Clear();
    EXPECT_FALSE(ids.Has(5));
}

TEST_F(EntryStoreTest, KeepsOneNoteOfANumberedEntryAndItsNewestVersion)
{
    EXPECT_EQ(ReadNumbered("S", {"a=1/=one", "a=3/=three", "a=2/=two"}),
              "added 1 updated 1 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"three"}));
    EXPECT_EQ(ReadNumbered("S", {"a=2/=two"}), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(ReadNumbered("S", {"a=10/=ten"}), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"ten"}));
}

TEST_F(EntryStoreTest, TellsVersionsOfOneNumberByTheirTimeWhereBothHaveOne)
{
    ReadNumbered("S", {"a=1/20240102T000000Z=new"});
    ReadNumbered("S", {"a=1/20240101T000000Z=old"});
    EXPECT_EQ(Subjects(), (Found{"new"}));
    ReadNumbered("S", {"a=1/=undated"});
    EXPECT_EQ(Subjects(), (Found{"undated"}));
    ReadNumbered("S", {"a=0/20250101T000000Z=lower number"});
    EXPECT_EQ(Subjects(), (Found{"undated"}));
}

TEST_F(EntryStoreTest, SettlesOnOneOfTwoEquallyNewVersionsAndReportsTheOther)
{
    EXPECT_EQ(ReadNumbered("S", {"a=1/=one", "a=1/=other"}), "added 1 updated 0 unchanged 0 removed 0 rejected 1");
    const auto before = Versions();
    EXPECT_EQ(ReadNumbered("S", {"a=1/=one", "a=1/=other"}), "added 0 updated 0 unchanged 1 removed 0 rejected 1");
    EXPECT_EQ(Versions(), before);
    EXPECT_EQ(ReadNumbered("S", {"a=1/=changed"}), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
}

TEST_F(EntryStoreTest, SettlesOnOneAlsoWhereTwoSourcesOfAnImportDiffer)
{
    for (const char* const expected :
         {"added 1 updated 0 unchanged 0 removed 0 rejected 1", "added 0 updated 0 unchanged 1 removed 0 rejected 1"}) {
        Open();
        ImportReport report;
        ReadSource("S", {"a=1/=one"}, &report);
        EXPECT_TRUE(store_->FinishSource(true, false, &report));
        ReadSource("T", {"a=1/=other"}, &report);
        EXPECT_TRUE(store_->FinishSource(true, false, &report));
        EXPECT_EQ(Counts(report), expected);
    }
    EXPECT_EQ(Subjects(), (Found{"one"}));
}

TEST_F(EntryStoreTest, KeepsWhatIsHeldOfAnEntryThatHasBecomeBad)
{
    ReadNumbered("S", {"a=1/=one", "b=1/=two"});
    Open();
    ImportReport report;
    store_->BeginSource("S");
    EXPECT_TRUE(store_->KeepHeld("a"));
    EXPECT_TRUE(store_->FinishSource(true, true, &report));
    EXPECT_EQ(Subjects(), (Found{"one"}));
}

TEST_F(EntryStoreTest, KeepsANumberedEntryWhileAnySourceHoldsAnyVersionOfIt)
{
    ReadNumbered("S", {"a=1/=one"});
    EXPECT_EQ(ReadNumbered("T", {"a=2/=two"}), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(ReadNumbered("S", {}, true), "added 0 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"two"}));
    EXPECT_EQ(ReadNumbered("S", {"a=1/=one"}), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(ReadNumbered("T", {}, true), "added 0 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(ReadNumbered("S", {}, true), "added 0 updated 0 unchanged 0 removed 1 rejected 0");
    EXPECT_EQ(Subjects(), (Found{}));
}

}  // namespace
}  // namespace pavex
