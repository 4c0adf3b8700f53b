// tests/client/store/c_note_test.cpp
#include <cstring>
#include <thread>

#include "client/store/open_note.h"
#include "tests/client/store/store_fixture.h"

namespace {

class NoteCalls : public StoreTest {
protected:
    TestDatabase data_{NewPath()};
};

TEST_F(NoteCalls, OpenTellsDeletedNotesFromOnesThatNeverWere)
{
    data_.AddNote({});
    data_.Delete(1);
    OpenedDatabase db(data_.Path());
    NOTEHANDLE note = 7;
    EXPECT_EQ(VLTNoteOpen(db, 1, 0, &note), kStatusNoteDeleted);
    EXPECT_EQ(note, 0U);
    EXPECT_EQ(VLTNoteOpen(db, 2, 0, &note), kStatusNoSuchNote);
    EXPECT_EQ(VLTNoteOpen(0, 1, 0, &note), kStatusBadHandle);
    EXPECT_EQ(VLTNoteCreate(0, 0, &note), kStatusBadHandle);
}

TEST_F(NoteCalls, InfoWritesOneMemberBySelector)
{
    const pavex::Note saved = data_.Get(data_.AddNote({}));
    OpenedDatabase db(data_.Path());
    OpenedNote note(db, saved.id);
    DBHANDLE database = 0;
    NOTEID id = 0;
    ORIGINATORID oid{};
    WORD noteClass = 0;
    TIMEDATE modified{};
    VLTNoteGetInfo(note, kNoteInfoDatabase, &database);
    VLTNoteGetInfo(note, kNoteInfoId, &id);
    VLTNoteGetInfo(note, kNoteInfoOriginatorId, &oid);
    VLTNoteGetInfo(note, kNoteInfoClass, &noteClass);
    VLTNoteGetInfo(note, kNoteInfoModified, &modified);
    EXPECT_EQ(database, db);
    EXPECT_EQ(id, saved.id);
    EXPECT_EQ(pavex::HexFromUnid(oid.Unid), pavex::HexFromUnid(saved.unid));
    EXPECT_EQ(oid.Sequence, 1U);
    EXPECT_EQ(oid.SequenceTime, saved.modified);
    EXPECT_EQ(noteClass, 1);
    EXPECT_EQ(modified, saved.modified);

    char untouched[64];
    std::memset(untouched, 'x', sizeof untouched);
    VLTNoteGetInfo(note, 99, untouched);
    VLTNoteGetInfo(0, kNoteInfoOriginatorId, untouched);
    EXPECT_EQ(std::string(untouched, sizeof untouched), std::string(sizeof untouched, 'x'));
}

TEST_F(NoteCalls, CreateMakesANoteThatIsNotSaved)
{
    OpenedDatabase db(data_.Path());
    NOTEHANDLE note = 0;
    ASSERT_EQ(VLTNoteCreate(db, 0, &note), 0);
    NOTEID id = 7;
    VLTNoteGetInfo(note, kNoteInfoId, &id);
    EXPECT_EQ(id, 0U);
    ASSERT_EQ(pavex::SetOpenItem(note, pavex::TextItem("Body", "text")), 0);
    char text[10];
    EXPECT_EQ(VLTItemGetText(note, "body", text, 9), 4);
    EXPECT_EQ(VLTNoteClose(note), 0);
    EXPECT_TRUE(data_.Ids().empty());
}

TEST_F(NoteCalls, CloseAnswersBadHandles)
{
    OpenedDatabase db(data_.Path());
    NOTEHANDLE note = 0;
    ASSERT_EQ(VLTNoteCreate(db, 0, &note), 0);
    EXPECT_EQ(VLTNoteClose(note), 0);
    EXPECT_EQ(VLTNoteClose(note), kStatusBadHandle);
    EXPECT_EQ(VLTNoteClose(0), kStatusBadHandle);
}

TEST_F(NoteCalls, NoteOutlivesItsDatabaseHandle)
{
    data_.AddNote({pavex::TextItem("Subject", "small"), pavex::TextItem("Body", std::string(5000, 'x'))});
    DBHANDLE db = 0;
    NOTEHANDLE note = 0;
    ASSERT_EQ(VLTDbOpen(data_.Path().c_str(), &db), 0);
    ASSERT_EQ(VLTNoteOpen(db, 1, 0, &note), 0);
    ASSERT_EQ(VLTDbClose(db), 0);
    char text[6000];
    EXPECT_EQ(VLTItemGetText(note, "Subject", text, sizeof text - 1), 5);
    EXPECT_EQ(VLTItemGetText(note, "Body", text, sizeof text - 1), 5000);
    EXPECT_EQ(VLTNoteClose(note), 0);
}

TEST_F(NoteCalls, TellSignedAndSealedNotes)
{
    pavex::Item sign = pavex::TextItem("Signature", "s");
    sign.flags = pavex::kItemSign;
    data_.AddNote({});
    data_.AddNote({sign});
    data_.AddSealed({});
    OpenedDatabase db(data_.Path());
    const bool expected[][2] = {{false, false}, {true, false}, {false, true}};
    for (NOTEID id = 1; id <= 3; ++id) {
        OpenedNote note(db, id);
        bool isSigned = !expected[id - 1][0];
        bool isSealed = !expected[id - 1][1];
        EXPECT_EQ(VLTNoteIsSignedOrSealed(note, &isSigned, &isSealed), id != 1);
        EXPECT_EQ(isSigned, expected[id - 1][0]);
        EXPECT_EQ(isSealed, expected[id - 1][1]);
        EXPECT_EQ(VLTNoteIsSignedOrSealed(note, nullptr, nullptr), id != 1);
    }
    bool isSealed = true;
    EXPECT_FALSE(VLTNoteIsSignedOrSealed(0, nullptr, &isSealed));
    EXPECT_FALSE(isSealed);
}

TEST_F(NoteCalls, SealedItemsAreAbsentUntilTheNoteIsDecrypted)
{
    pavex::Item secret = pavex::TextItem("Body", "secret");
    secret.flags = pavex::kItemSealed;
    pavex::Item large = pavex::TextItem("Large", std::string(9000, 's'));
    large.flags = pavex::kItemSealed;
    data_.AddSealed({pavex::TextItem("Subject", "plain"), secret, large});
    OpenedDatabase db(data_.Path());
    OpenedNote note(db, 1);
    char text[10000];
    EXPECT_EQ(VLTItemInfo(note, "Body", 4, nullptr, nullptr, nullptr, nullptr), kStatusItemNotFound);
    EXPECT_EQ(VLTItemGetText(note, "Body", text, 9999), 0);
    EXPECT_EQ(OSLockBlock({note, 2}), nullptr) << "its bytes cannot be had by number either";
    EXPECT_EQ(VLTItemGetText(note, "Subject", text, 9999), 5);
    ASSERT_EQ(VLTNoteDecrypt(note, 0, nullptr), 0);
    EXPECT_EQ(VLTItemGetText(note, "Body", text, 9999), 6);
    EXPECT_STREQ(text, "secret");
    EXPECT_EQ(VLTItemGetText(note, "Large", text, 9999), 9000);
    EXPECT_EQ(VLTNoteDecrypt(note, 0, nullptr), 0) << "again does no harm";
    EXPECT_EQ(VLTNoteDecrypt(0, 0, nullptr), kStatusBadHandle);
}

TEST_F(NoteCalls, DecryptWithoutTheKeyLeavesTheNoteAsItWas)
{
    pavex::Item secret = pavex::TextItem("Body", "secret");
    secret.flags = pavex::kItemSealed;
    data_.AddSealed({pavex::TextItem("Subject", "plain"), secret});
    std::filesystem::remove(pavex::CurrentPlaces().data + "/seal.key");
    OpenedDatabase db(data_.Path());
    OpenedNote note(db, 1);
    EXPECT_EQ(VLTNoteDecrypt(note, 0, nullptr), kStatusSealed);
    char text[20];
    EXPECT_EQ(VLTItemGetText(note, "Body", text, 19), 0);
    EXPECT_EQ(VLTItemGetText(note, "Subject", text, 19), 5);
}

TEST_F(NoteCalls, DecryptHasNothingToDoOnAPlainNote)
{
    data_.AddNote({});
    OpenedDatabase db(data_.Path());
    OpenedNote note(db, 1);
    EXPECT_EQ(VLTNoteDecrypt(note, 0, nullptr), 0);
}

TEST_F(NoteCalls, BlocksHoldTheTypeWordAndTheValueUntilTheNoteIsClosed)
{
    data_.AddNote({pavex::TextItem("Subject", "hello"), pavex::TextItem("Body", std::string(5000, 'x'))});
    OpenedDatabase db(data_.Path());
    BLOCKID small{};
    BLOCKID large{};
    {
        OpenedNote note(db, 1);
        DWORD bytes = 0;
        WORD type = 0;
        ASSERT_EQ(VLTItemInfo(note, "SUBJECT", 7, nullptr, &type, &small, &bytes), 0);
        EXPECT_EQ(type, kTypeText);
        EXPECT_EQ(bytes, 7U);
        EXPECT_EQ(std::memcmp(OSLockBlock(small), "\x00\x05hello", 7), 0);
        void* const first = OSLockBlock(small);
        ASSERT_EQ(VLTItemInfo(note, "Body", 4, nullptr, nullptr, &large, &bytes), 0);
        EXPECT_EQ(bytes, 5002U);
        void* const value = OSLockBlock(large);
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(std::memcmp(static_cast<char*>(value) + 2, std::string(5000, 'x').data(), 5000), 0);
        ASSERT_EQ(pavex::SetOpenItem(note, pavex::TextItem("Subject", "other")), 0);
        EXPECT_EQ(OSLockBlock(small), first) << "who holds the old value may go on reading it";
        EXPECT_EQ(OSLockBlock(large), value);
        OSUnlockBlock(small);
        EXPECT_EQ(OSLockBlock({note, 99}), nullptr);
        EXPECT_EQ(OSLockBlock({note, 0}), nullptr);
    }
    EXPECT_EQ(OSLockBlock(small), nullptr);
    EXPECT_EQ(OSLockBlock({0, 0}), nullptr);
    OSUnlockBlock({0, 0});
}

TEST_F(NoteCalls, LargeValueOfANoteThatWasSavedAnewIsDamagedNotMixed)
{
    const uint32_t id = data_.AddNote({pavex::TextItem("Body", std::string(5000, 'x'))});
    OpenedDatabase db(data_.Path());
    OpenedNote note(db, id);
    data_.Update(id, {pavex::TextItem("Body", std::string(6000, 'y'))});
    char text[8000];
    EXPECT_EQ(VLTItemGetText(note, "Body", text, sizeof text - 1), 0);
    pavex::Item item;
    EXPECT_EQ(pavex::ReadOpenItem(note, "Body", &item), kStatusDamaged);
}

TEST_F(NoteCalls, ThreadsWorkOnHandlesOfTheirOwnAtOnce)
{
    for (int i = 0; i < 20; ++i)
        data_.AddNote({pavex::NumberItem("N", i)});
    const auto read = [this] {
        OpenedDatabase db(data_.Path());
        for (int round = 0; round < 10; ++round) {
            for (NOTEID id = 1; id <= 20; ++id) {
                OpenedNote note(db, id);
                EXPECT_EQ(VLTItemGetLong(note, "N", -1), static_cast<long>(id) - 1);
            }
        }
    };
    std::thread first(read);
    std::thread second(read);
    read();
    first.join();
    second.join();
}

}  // namespace
