// tests/client/import/entry_store_test.cpp: which entry is which note, over many readings.
#include "client/import/entry_store.h"

#include "client/store/host.h"
#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

class EntryStoreTest : public ImportTest {
protected:
    EntryStoreTest()
    {
        std::string error;
        store_ = EntryStore::Open(options_.dataDirectory + "/mail.vlt", "Mail", &error);
        EXPECT_NE(store_, nullptr) << error;
    }

    // Reads a source that holds these entries: "identity=content", each.
    std::string Read(const std::string& source, const std::vector<std::string>& entries, bool prune = false,
                     bool complete = true)
    {
        ImportReport report;
        store_->BeginSource(source);
        for (const std::string& text : entries) {
            const size_t equals = text.find('=');
            SourceEntryFound entry;
            entry.identity = text.substr(0, equals);
            entry.digest = "digest of " + text.substr(equals + 1);
            entry.make = [content = text.substr(equals + 1)](Note* note, std::string* reason) {
                *reason = "cannot be made";
                note->items.push_back(TextItem("Subject", content));
                return content != "bad";
            };
            EXPECT_TRUE(store_->Offer(std::move(entry), &report));
        }
        EXPECT_TRUE(store_->FinishSource(complete, prune, &report));
        return Counts(report);
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

TEST_F(EntryStoreTest, TakesNothingForGoneWhenTheSourceCouldNotBeReadWhole)
{
    Read("S", {"a=1", "b=2"});
    EXPECT_EQ(Read("S", {"a=3"}, true, false), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"1", "2", "3"}));
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

}  // namespace
}  // namespace pavex
