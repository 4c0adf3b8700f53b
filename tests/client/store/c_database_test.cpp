// tests/client/store/c_database_test.cpp
#include "tests/client/store/store_fixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DatabaseCalls : public StoreTest {
protected:
    const std::string path_ = NewPath();
    TestDatabase data_{path_, "Grüße"};
};

TEST_F(DatabaseCalls, OpenAndCloseInPairs)
{
    DBHANDLE first = 0;
    DBHANDLE second = 0;
    ASSERT_EQ(VLTDbOpen(path_.c_str(), &first), 0);
    ASSERT_EQ(VLTDbOpen(path_.c_str(), &second), 0);
    EXPECT_EQ(pavex::OpenDatabasesOfThread(), 2);
    EXPECT_EQ(VLTDbClose(first), 0);
    EXPECT_EQ(VLTDbClose(first), kStatusBadHandle);
    WORD mode = 0;
    EXPECT_EQ(VLTDbModeGet(second, &mode), 0);
    EXPECT_EQ(mode & 1, 1);
    EXPECT_EQ(VLTDbClose(second), 0);
    EXPECT_EQ(pavex::OpenDatabasesOfThread(), 0);
}

TEST_F(DatabaseCalls, TellWhyADatabaseCannotBeOpened)
{
    WriteWholeFile(dir_ / "text.vlt", "this is not a database, though it is long enough");
    const struct {
        std::string path;
        STATUS status;
    } cases[] = {
        {dir_ / "missing.vlt", kStatusNoSuchFile},
        {dir_ / "text.vlt", kStatusNotADatabase},
        {"//server/folder/mail.vlt", kStatusRemoteUnreachable},
    };
    for (const auto& expected : cases) {
        DBHANDLE db = 77;
        EXPECT_EQ(VLTDbOpen(expected.path.c_str(), &db), expected.status) << expected.path;
        EXPECT_EQ(db, 0U);
    }
}

TEST_F(DatabaseCalls, FindRelativePathsInTheDataDirectory)
{
    TestDatabase mail(pavex::CurrentPlaces().data + "/Grüße 😀.vlt");
    OpenedDatabase db("Gr\xC3\xBC\xC3\x9F"
                      "e \xED\xA0\xBD\xED\xB8\x80.vlt");
    DBREPLICAINFO info{};
    ASSERT_EQ(VLTDbReplicaInfoGet(db, &info), 0);
    EXPECT_EQ(info.ID, mail.database().ReplicaId());
}

TEST_F(DatabaseCalls, AnswerBadHandlesWithoutDoingAnything)
{
    for (const DBHANDLE db : {0U, 0xFFFFFFF0U}) {
        WORD mode = 7;
        TIMEDATE time = {{7, 7}};
        DBREPLICAINFO info{};
        IDTABLE table = 7;
        NOTEID id = 7;
        ORIGINATORID oid{};
        char buffer[128] = "x";
        EXPECT_EQ(VLTDbClose(db), kStatusBadHandle);
        EXPECT_EQ(VLTDbModeGet(db, &mode), kStatusBadHandle);
        EXPECT_EQ(VLTDbModifiedTime(db, &time, &time), kStatusBadHandle);
        EXPECT_EQ(VLTDbReplicaInfoGet(db, &info), kStatusBadHandle);
        EXPECT_EQ(VLTDbGetModifiedNoteTable(db, 1, kMinimumTime, &time, &table), kStatusBadHandle);
        EXPECT_EQ(table, 0U);
        EXPECT_EQ(VLTDbGetUnreadNoteTable(db, "Ann", 3, 0, &table), kStatusBadHandle);
        EXPECT_EQ(VLTDbGetNoteInfo(db, 1, &oid, &time, &mode), kStatusBadHandle);
        EXPECT_EQ(VLTDbInfoGet(db, buffer), kStatusBadHandle);
        EXPECT_EQ(IDXFindDesignNote(db, "Memo", 4, &id), kStatusBadHandle);
        EXPECT_EQ(mode, 7);
        EXPECT_EQ(time, (TIMEDATE{{7, 7}}));
        EXPECT_EQ(id, 7U);
        EXPECT_EQ(buffer[0], 'x');
    }
}

TEST_F(DatabaseCalls, GiveTheTitleCutBetweenCharacters)
{
    OpenedDatabase db(path_);
    char info[128];
    char title[128];
    ASSERT_EQ(VLTDbInfoGet(db, info), 0);
    VLTDbInfoParse(info, 0, title, sizeof title);
    EXPECT_STREQ(title, "Grüße");
    VLTDbInfoParse(info, 0, title, 4);
    EXPECT_STREQ(title, "Gr") << "three bytes would end inside a character";
    VLTDbInfoParse(info, 1, title, sizeof title);
    EXPECT_STREQ(title, "");
    title[0] = 'x';
    VLTDbInfoParse(info, 0, title, 0);
    EXPECT_EQ(title[0], 'x');

    std::string many;
    for (int i = 0; i < 40; ++i)
        many += "😀";
    ASSERT_EQ(data_.database().SetTitle(many), 0);
    ASSERT_EQ(VLTDbInfoGet(db, info), 0);
    VLTDbInfoParse(info, 0, title, sizeof title);
    EXPECT_EQ(std::string(title).size(), 126U) << "21 characters of 6 bytes";
}

TEST_F(DatabaseCalls, TellTheTimesOfTheLastChanges)
{
    OpenedDatabase db(path_);
    clock_.Advance(2000);
    data_.AddNote({});
    TIMEDATE documents{};
    TIMEDATE design{};
    ASSERT_EQ(VLTDbModifiedTime(db, &documents, &design), 0);
    EXPECT_EQ(documents, pavex::TimeFromUnix(1'700'000'002));
    EXPECT_EQ(design, pavex::TimeFromUnix(1'700'000'000));
    EXPECT_EQ(VLTDbModifiedTime(db, &documents, nullptr), 0);
    EXPECT_EQ(VLTDbModifiedTime(db, nullptr, nullptr), 0);
}

TEST_F(DatabaseCalls, TableOfModifiedNotesHoldsWhatChangedSince)
{
    OpenedDatabase db(path_);
    const Changes none = ChangesSince(db, kMinimumTime);
    EXPECT_EQ(none.status, kStatusNothingModified);
    EXPECT_EQ(none.until, data_.LastChange());

    data_.AddNote({});
    data_.AddNote({});
    data_.AddForm("Memo");
    const Changes all = ChangesSince(db, kMinimumTime);
    EXPECT_EQ(all.status, 0);
    EXPECT_THAT(all.ids, ElementsAre(1, 2));
    EXPECT_EQ(all.until, data_.LastChange()) << "the greatest stamp, also of another class";
    EXPECT_THAT(ChangesSince(db, kMinimumTime, 4).ids, ElementsAre(3));
    EXPECT_THAT(ChangesSince(db, kMinimumTime, 5).ids, ElementsAre(1, 2, 3));

    EXPECT_EQ(ChangesSince(db, all.until).status, kStatusNothingModified);
    EXPECT_EQ(ChangesSince(db, all.until).until, all.until);

    data_.Update(2, {pavex::TextItem("Subject", "new")});
    data_.Delete(1);
    const Changes later = ChangesSince(db, all.until);
    EXPECT_THAT(later.ids, ElementsAre(2, 0x80000001)) << "deletions carry the top bit and come last";
    EXPECT_EQ(later.until, data_.LastChange());
}

TEST_F(DatabaseCalls, TableOfModifiedNotesNeverGoesBackBehindItsStart)
{
    OpenedDatabase db(path_);
    data_.AddNote({});
    const TIMEDATE future = pavex::TimeFromUnix(4'000'000'000);
    const Changes changes = ChangesSince(db, future);
    EXPECT_EQ(changes.status, kStatusNothingModified);
    EXPECT_EQ(changes.until, future);
}

TEST_F(DatabaseCalls, TableOfModifiedNotesWithoutADateHoldsEverything)
{
    OpenedDatabase db(path_);
    data_.AddNote({});
    const TIMEDATE wildcard = {{0xFFFFFFFF, 0xFFFFFFFF}};
    EXPECT_THAT(ChangesSince(db, wildcard).ids, ElementsAre(1));
}

TEST_F(DatabaseCalls, UnreadTableHoldsTheUsersNotesAsTheyAreWhenItIsLookedInto)
{
    OpenedDatabase db(path_);
    data_.AddNote({});
    data_.AddNote({});
    data_.SetUnread("Ann Lee", 2);
    data_.SetUnread("Bob", 1);
    IDTABLE table = 0;
    ASSERT_EQ(VLTDbGetUnreadNoteTable(db, "Ann Leex", 7, 0, &table), 0);
    EXPECT_EQ(IDEntries(table), 1U);
    EXPECT_THAT(IdsOf(table), ElementsAre(2));
    EXPECT_EQ(IDDestroyTable(table), 0);
    ASSERT_EQ(VLTDbGetUnreadNoteTable(db, "Nobody", 6, 0, &table), 0);
    EXPECT_THAT(IdsOf(table), IsEmpty());
    EXPECT_EQ(IDDestroyTable(table), 0);
}

TEST_F(DatabaseCalls, UnreadTableThatOutlivesItsDatabaseIsEmpty)
{
    data_.AddNote({});
    data_.SetUnread("Ann", 1);
    IDTABLE table = 0;
    {
        OpenedDatabase db(path_);
        ASSERT_EQ(VLTDbGetUnreadNoteTable(db, "Ann", 3, 0, &table), 0);
    }
    EXPECT_EQ(IDEntries(table), 0U);
    EXPECT_EQ(IDEnumerate(table, nullptr, nullptr), kStatusBadHandle);
    EXPECT_EQ(IDDestroyTable(table), 0);
}

TEST_F(DatabaseCalls, NoteInfoTellsTheIdentityOfNotesAndStubs)
{
    OpenedDatabase db(path_);
    const pavex::Note note = data_.Get(data_.AddForm("Memo"));
    ORIGINATORID oid{};
    TIMEDATE modified{};
    WORD noteClass = 0;
    ASSERT_EQ(VLTDbGetNoteInfo(db, note.id, &oid, &modified, &noteClass), 0);
    EXPECT_EQ(pavex::HexFromUnid(oid.Unid), pavex::HexFromUnid(note.unid));
    EXPECT_EQ(oid.Sequence, 1U);
    EXPECT_EQ(oid.SequenceTime, note.modified);
    EXPECT_EQ(modified, note.modified);
    EXPECT_EQ(noteClass, 4);
    EXPECT_EQ(VLTDbGetNoteInfo(db, note.id, nullptr, nullptr, nullptr), 0);

    data_.Delete(note.id);
    oid = ORIGINATORID{};
    EXPECT_EQ(VLTDbGetNoteInfo(db, note.id, &oid, nullptr, nullptr), kStatusNoteDeleted);
    EXPECT_EQ(pavex::HexFromUnid(oid.Unid), pavex::HexFromUnid(note.unid));
    EXPECT_EQ(oid.Sequence, 2U);
    EXPECT_EQ(VLTDbGetNoteInfo(db, note.id + 1, &oid, nullptr, nullptr), kStatusNoSuchNote);
    EXPECT_EQ(VLTDbGetNoteInfo(db, 0, &oid, nullptr, nullptr), kStatusNoSuchNote);
    EXPECT_EQ(VLTDbGetNoteInfo(db, 0x80000001, &oid, nullptr, nullptr), kStatusNoSuchNote);
}

TEST_F(DatabaseCalls, FindAFormByItsTitle)
{
    OpenedDatabase db(path_);
    const uint32_t form = data_.AddForm("Grüße 😀");
    NOTEID id = 0;
    EXPECT_EQ(IDXFindDesignNote(db,
                                "Gr\xC3\xBC\xC3\x9F"
                                "e \xED\xA0\xBD\xED\xB8\x80",
                                4, &id),
              0);
    EXPECT_EQ(id, form);
    id = 77;
    EXPECT_EQ(IDXFindDesignNote(db, "Memo", 4, &id), kStatusNotFound);
    EXPECT_EQ(IDXFindDesignNote(db, "", 4, &id), kStatusNotFound);
}

}  // namespace
