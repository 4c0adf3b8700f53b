// tests/client/store/database_test.cpp
#include "client/store/database.h"

#include <unistd.h>

#include "client/store/engine.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using DatabaseTest = StoreTest;
using testing::ElementsAre;

std::string BigText()
{
    return std::string(100'000, 'x') + "end";
}

TEST_F(DatabaseTest, GivesBackANoteAsItWasPut)
{
    TestDatabase data(NewPath());
    Note note;
    note.items = {TextItem("Form", "Memo"), TextItem("Body", BigText()), TextItem("Empty", ""), TextItem("Body", "2")};
    ASSERT_EQ(data.database().Put(&note), 0);
    EXPECT_EQ(note.id, 1U);
    EXPECT_EQ(note.sequence, 1U);
    EXPECT_EQ(note.modified, TimeFromUnix(1'700'000'000));
    EXPECT_EQ(note.created, note.modified);
    EXPECT_EQ(note.unid.Note, note.created);

    const Note back = data.Get(1);
    EXPECT_EQ(back.items, note.items);
    EXPECT_EQ(pavex::HexFromUnid(back.unid), pavex::HexFromUnid(note.unid));
    EXPECT_EQ(back.modified, note.modified);
    EXPECT_EQ(back.sequence, 1U);
    EXPECT_EQ(back.noteClass, kClassDocument);
    EXPECT_FALSE(back.sealed);
}

TEST_F(DatabaseTest, KeepsTheIdentityAndTimesThatANoteBrings)
{
    TestDatabase data(NewPath());
    Note note;
    note.created = TimeFromUnix(1000);
    note.modified = TimeFromUnix(2000, 25);
    data.Add(note);
    note.unid = {{{1, 2}}, {{3, 4}}};
    note.sequence = 7;
    data.Add(note);
    EXPECT_EQ(data.Get(1).unid.Note, TimeFromUnix(1000));
    EXPECT_EQ(data.Get(1).modified, TimeFromUnix(2000, 25));
    EXPECT_EQ(pavex::HexFromUnid(data.Get(2).unid), pavex::HexFromUnid(note.unid));
    EXPECT_EQ(data.Get(2).sequence, 7U);
}

TEST_F(DatabaseTest, CountsUpTheSequenceAndReplacesAllItems)
{
    TestDatabase data(NewPath());
    const uint32_t id = data.AddNote({TextItem("Subject", "old"), TextItem("Body", BigText())});
    Note note = data.Get(id);
    note.items = {TextItem("Subject", "new")};
    ASSERT_EQ(data.database().Put(&note), 0);
    EXPECT_EQ(note.sequence, 2U);
    EXPECT_EQ(data.Get(id).items, note.items);
    std::string value;
    EXPECT_EQ(data.database().ReadValue(id, 1, &value), kStatusDamaged) << "the large value went with its note";
}

TEST_F(DatabaseTest, SavesANoteOfAKnownUniversalIdInItsPlaceAlsoAfterItsDeletion)
{
    TestDatabase data(NewPath());
    const uint32_t id = data.AddNote({TextItem("Subject", "one")});
    Note note = data.Get(id);
    note.id = 0;
    EXPECT_EQ(data.Add(note), id);
    data.Delete(id);
    EXPECT_EQ(data.database().FindUnid(note.unid), std::nullopt);
    EXPECT_EQ(data.Add(note), id);
    EXPECT_EQ(data.database().FindUnid(note.unid), id);
    EXPECT_EQ(data.Get(id).sequence, 4U);
    EXPECT_THAT(data.Ids(), ElementsAre(id));
}

TEST_F(DatabaseTest, LeavesAStubOfADeletedNoteAndNeverGivesItsIdAgain)
{
    TestDatabase data(NewPath());
    const uint32_t id = data.AddNote({TextItem("Body", BigText())});
    const UNID unid = data.Get(id).unid;
    data.Delete(id);
    Note note;
    EXPECT_EQ(data.database().Get(id, &note), kStatusNoteDeleted);
    EXPECT_EQ(pavex::HexFromUnid(note.unid), pavex::HexFromUnid(unid));
    EXPECT_TRUE(note.items.empty());
    EXPECT_EQ(data.database().Delete(id), kStatusNoteDeleted);
    EXPECT_EQ(data.database().Put(&note), kStatusNoteDeleted);
    EXPECT_EQ(data.AddNote({}), id + 1);
    uint64_t count = 0;
    ASSERT_EQ(data.database().CountNotes(&count), 0);
    EXPECT_EQ(count, 1U);
}

TEST_F(DatabaseTest, KnowsNothingOfNotesThatNeverWere)
{
    TestDatabase data(NewPath());
    Note note;
    for (const uint32_t id : {1U, 0x80000001U, 0xFFFFFFFFU}) {
        EXPECT_EQ(data.database().Get(id, &note), kStatusNoSuchNote);
        EXPECT_EQ(data.database().Delete(id), kStatusNoSuchNote);
        note.id = id;
        EXPECT_EQ(data.database().Put(&note), kStatusNoSuchNote);
        EXPECT_EQ(data.database().SetUnread("Ann", id, true), kStatusNoSuchNote);
    }
    EXPECT_EQ(data.database().FindUnid({}), std::nullopt);
}

TEST_F(DatabaseTest, ListsLiveNotesByIdAndAllowsWritesMeanwhile)
{
    TestDatabase data(NewPath());
    ASSERT_EQ(data.database().Begin(), 0);
    for (int i = 0; i < 600; ++i)
        data.AddNote({NumberItem("N", i)});
    ASSERT_EQ(data.database().Commit(), 0);
    data.Delete(300);
    std::vector<uint32_t> seen;
    ASSERT_EQ(data.database().List([&](const NoteSummary& note) {
        seen.push_back(note.id);
        Note read;
        EXPECT_EQ(data.database().Get(note.id, &read), 0);
        if (note.id == 1)
            data.Delete(600);
        return note.id != 599;
    }),
              0);
    ASSERT_EQ(seen.size(), 598U);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end()));
    EXPECT_EQ(seen.back(), 599U);
    EXPECT_EQ(data.Ids().size(), 598U);
}

TEST_F(DatabaseTest, TakesBackAllOfATransactionThatIsRolledBackOrLeftOpen)
{
    const std::string path = NewPath();
    {
        TestDatabase data(path);
        data.AddNote({});
        ASSERT_EQ(data.database().Begin(), 0);
        data.AddNote({});
        data.Delete(1);
        data.database().Rollback();
        EXPECT_THAT(data.Ids(), ElementsAre(1));
        ASSERT_EQ(data.database().Begin(), 0);
        data.AddNote({});
    }
    EXPECT_THAT(TestDatabase(path).Ids(), ElementsAre(1));
}

TEST_F(DatabaseTest, KeepsATransactionUsableAfterACallInItWasRefused)
{
    TestDatabase data(NewPath());
    ASSERT_EQ(data.database().Begin(), 0);
    data.AddNote({});
    EXPECT_EQ(data.database().Delete(77), kStatusNoSuchNote);
    ASSERT_EQ(data.database().Commit(), 0);
    EXPECT_THAT(data.Ids(), ElementsAre(1));
}

TEST_F(DatabaseTest, KeepsItsTitleAndReplicaIdWithTheFile)
{
    const std::string path = NewPath();
    TIMEDATE replica{};
    {
        TestDatabase data(path, "Grüße 😀");
        replica = data.database().ReplicaId();
        EXPECT_EQ(data.database().Title(), "Grüße 😀");
        ASSERT_EQ(data.database().SetTitle("Other"), 0);
    }
    TestDatabase again(path);
    EXPECT_EQ(again.database().Title(), "Other");
    EXPECT_EQ(again.database().ReplicaId(), replica);
    EXPECT_FALSE(TestDatabase(NewPath()).database().ReplicaId() == replica);
}

TEST_F(DatabaseTest, IsNotToBeHadOnAServer)
{
    const std::string path = "/" + NewPath();  // the system would find it on this machine
    std::unique_ptr<Database> database;
    EXPECT_EQ(Database::Open(path, &database), kStatusRemoteUnreachable);
    EXPECT_EQ(Database::Create(path, "Notes", &database), kStatusRemoteUnreachable);
    EXPECT_EQ(Database::OpenOrCreate(path, "Notes", &database), kStatusRemoteUnreachable);
    EXPECT_NE(access(path.c_str(), F_OK), 0);
    EXPECT_EQ(Database::Create("/" + path, "Notes", &database), 0);
}

TEST_F(DatabaseTest, KeepsUnreadNotesByUser)
{
    TestDatabase data(NewPath());
    data.AddNote({});
    data.AddNote({});
    data.SetUnread("Ann Lee", 1);
    data.SetUnread("Ann Lee", 1);
    data.SetUnread("Bob", 2);
    bool unread = false;
    ASSERT_EQ(data.database().IsUnread("ann lee", 1, &unread), 0);
    EXPECT_TRUE(unread);
    ASSERT_EQ(data.database().IsUnread("Bob", 1, &unread), 0);
    EXPECT_FALSE(unread);
    data.SetUnread("Ann Lee", 1, false);
    ASSERT_EQ(data.database().IsUnread("Ann Lee", 1, &unread), 0);
    EXPECT_FALSE(unread);
    data.Delete(2);
    ASSERT_EQ(data.database().IsUnread("Bob", 2, &unread), 0);
    EXPECT_FALSE(unread) << "nobody has a deleted note unread";
    EXPECT_EQ(data.database().SetUnread("Bob", 2, true), kStatusNoteDeleted);
}

TEST_F(DatabaseTest, RemembersWhichNoteASourceEntryBecame)
{
    TestDatabase data(NewPath());
    Database& database = data.database();
    std::optional<SourceEntry> entry;
    ASSERT_EQ(database.FindSource("k", &entry), 0);
    EXPECT_FALSE(entry);
    ASSERT_EQ(database.PutSource({"k", "/mail", "d1", 1}), 0);
    ASSERT_EQ(database.PutSource({"k", "/mail", "d2", 1}), 0);
    ASSERT_EQ(database.FindSource("k", &entry), 0);
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->digest, "d2");
    EXPECT_EQ(entry->source, "/mail");
    EXPECT_EQ(entry->noteId, 1U);
    ASSERT_EQ(database.DeleteSource("k"), 0);
    ASSERT_EQ(database.FindSource("k", &entry), 0);
    EXPECT_FALSE(entry);
}

TEST_F(DatabaseTest, ListsTheEntriesOfOneSourceByKeyAndAllowsTheirDeletionMeanwhile)
{
    TestDatabase data(NewPath());
    Database& database = data.database();
    ASSERT_EQ(database.Begin(), 0);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(database.PutSource({std::to_string(1000 + i), i % 2 ? "/odd" : "/even", "", 1}), 0);
    ASSERT_EQ(database.Commit(), 0);
    std::vector<std::string> keys;
    ASSERT_EQ(database.ListSources("/odd",
                                   [&](const SourceEntry& entry) {
                                       keys.push_back(entry.key);
                                       EXPECT_EQ(database.DeleteSource(entry.key), 0);
                                       return true;
                                   }),
              0);
    ASSERT_EQ(keys.size(), 500U);
    EXPECT_EQ(keys.front(), "1001");
    EXPECT_TRUE(std::is_sorted(keys.begin(), keys.end()));
    int left = 0;
    ASSERT_EQ(database.ListSources("/odd", [&](const SourceEntry&) { return ++left > 0; }), 0);
    EXPECT_EQ(left, 0);
    ASSERT_EQ(database.ListSources("/even", [&](const SourceEntry&) { return ++left < 3; }), 0);
    EXPECT_EQ(left, 3);
}

TEST_F(DatabaseTest, FindsTheEntriesThatBeginWithAnIdentity)
{
    TestDatabase data(NewPath());
    Database& database = data.database();
    for (const char* key : {"a", "a#2", "a#1", "a!", "a$", "ab", "b#1"})
        ASSERT_EQ(database.PutSource({key, "/mail", "", 1}), 0);
    std::vector<SourceEntry> entries = {{"left over", "", "", 0}};
    ASSERT_EQ(database.SourcesOf("a", &entries), 0);
    std::vector<std::string> keys;
    for (const SourceEntry& entry : entries)
        keys.push_back(entry.key);
    EXPECT_EQ(keys, (std::vector<std::string>{"a", "a#1", "a#2"}));
}

TEST_F(DatabaseTest, KeepsSealedItemsFromWhoDoesNotUnsealThem)
{
    TestDatabase data(NewPath());
    Item secret = TextItem("Body", "secret words");
    secret.flags = kItemSealed;
    Item large = TextItem("Large", BigText());
    large.flags = kItemSealed;
    const uint32_t id = data.AddSealed({TextItem("Subject", "plain"), secret, large});

    EXPECT_EQ(data.Get(id).items, (std::vector<Item>{TextItem("Subject", "plain"), secret, large}));
    EXPECT_TRUE(data.Get(id).sealed);
    data.database().Unseal(false);
    EXPECT_EQ(data.Get(id).items, (std::vector<Item>{TextItem("Subject", "plain")}));
    EXPECT_EQ(ReadWholeFile(data.Path() + "-wal").find("secret words"), std::string::npos);

    data.database().Unseal();
    std::filesystem::remove(CurrentPlaces().data + "/seal.key");
    Note note;
    EXPECT_EQ(data.database().Get(id, &note), kStatusSealed);
}

TEST_F(DatabaseTest, FindsDesignNotesByAnyOfTheirTitles)
{
    TestDatabase data(NewPath());
    data.AddNote({TextItem("$Title", "Memo")});
    const uint32_t memo = data.AddForm("Memo");
    const uint32_t reply = data.AddNote({TextListItem("$Title", {"Reply", "Antwort"})}, kClassForm);
    uint32_t id = 0;
    EXPECT_EQ(data.database().FindDesignNote("memo", kClassForm, &id), 0);
    EXPECT_EQ(id, memo);
    EXPECT_EQ(data.database().FindDesignNote("Antwort", kClassForm, &id), 0);
    EXPECT_EQ(id, reply);
    EXPECT_EQ(data.database().FindDesignNote("Memo", kClassDocument, &id), kStatusNotFound);
    data.Update(reply, {TextItem("$Title", "Renamed")});
    EXPECT_EQ(data.database().FindDesignNote("Antwort", kClassForm, &id), kStatusNotFound);
    data.Delete(memo);
    EXPECT_EQ(data.database().FindDesignNote("Memo", kClassForm, &id), kStatusNotFound);
}

TEST_F(DatabaseTest, WritesAndReadsAVeryLargeValue)
{
    TestDatabase data(NewPath());
    const std::string text(30'000'000, 'z');
    const uint32_t id = data.AddNote({TextItem("Body", text)});
    EXPECT_TRUE(data.Get(id).items[0].value == text);
}

}  // namespace
}  // namespace pavex
