// tests/client/store/damaged_database_test.cpp: damage costs the notes it hits and no others, and never
// the process.
#include <map>
#include <random>

#include "client/store/sqlite_engine.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

constexpr size_t kPage = 4096;
constexpr uint32_t kNotes = 300;

std::vector<Item> ItemsOf(uint32_t n)
{
    std::vector<Item> items = {TextItem("Form", "Memo"), TextItem("Subject", "note " + std::to_string(n)),
                               TextItem("Text", std::string(200 + n % 700, static_cast<char>('a' + n % 26)))};
    if (n % 10 == 0)
        items.push_back(TextItem("Body", std::string(9000, static_cast<char>('A' + n % 26))));
    return items;
}

class DamagedDatabase : public StoreTest {
protected:
    void SetUp() override
    {
        const std::string path = dir_ / "whole.vlt";
        {
            TestDatabase data(path, "Title");
            replica_ = data.database().ReplicaId();
            EXPECT_EQ(data.database().Begin(), 0);
            for (uint32_t n = 1; n <= kNotes; ++n)
                data.AddNote(ItemsOf(n));
            EXPECT_EQ(data.database().Commit(), 0);
        }
        whole_ = ReadWholeFile(path);
        ASSERT_EQ(whole_.size() % kPage, 0U);
    }

    // What a client gets out of a database file with these bytes.
    struct Outcome {
        STATUS opened = 0;
        std::map<uint32_t, STATUS> notes;  // by id, as listed
        size_t good = 0;
        std::vector<NOTEID> changed;
        STATUS changes = 0;
    };
    Outcome Read(const std::string& bytes)
    {
        const std::string path = NewPath();
        WriteWholeFile(path, bytes);
        Outcome outcome;
        std::unique_ptr<Database> database;
        outcome.opened = Database::Open(path, &database);
        if (outcome.opened != 0)
            return outcome;
        EXPECT_EQ(database->ReplicaId(), replica_);
        EXPECT_EQ(database->List([&](const NoteSummary& summary) {
            Note note;
            const STATUS status = database->Get(summary.id, &note);
            outcome.notes[summary.id] = status;
            if (status == 0) {
                EXPECT_EQ(note.items, ItemsOf(summary.id)) << "what is read is what was written";
                ++outcome.good;
            } else {
                EXPECT_EQ(status, kStatusDamaged);
            }
            return true;
        }),
                  0);
        OpenedDatabase db(path);
        const Changes changes = ChangesSince(db, kMinimumTime);
        outcome.changes = changes.status;
        outcome.changed = changes.ids;
        // Whatever a write meets, it ends with a status.
        Note note;
        note.items = ItemsOf(1);
        (void)database->Put(&note);
        (void)database->Delete(kNotes / 2);
        return outcome;
    }

    std::string whole_;
    TIMEDATE replica_{};
};

TEST_F(DamagedDatabase, IsReadWholeWhenItIsNot)
{
    const Outcome outcome = Read(whole_);
    EXPECT_EQ(outcome.opened, 0);
    EXPECT_EQ(outcome.good, kNotes);
    EXPECT_EQ(outcome.changed.size(), kNotes);
}

TEST_F(DamagedDatabase, LosesNoMoreThanAPageOfNotesToAZeroedPage)
{
    const size_t pages = whole_.size() / kPage;
    size_t unopened = 0;
    size_t harmful = 0;
    for (size_t page = 0; page < pages; ++page) {
        SCOPED_TRACE(testing::Message() << "page " << page + 1 << " of " << pages);
        std::string bytes = whole_;
        bytes.replace(page * kPage, kPage, kPage, '\0');
        const Outcome outcome = Read(bytes);
        if (outcome.opened != 0) {
            EXPECT_EQ(outcome.opened, kStatusNotADatabase);
            ++unopened;
            continue;
        }
        // A page of notes holds at most 16 of these; the table's root leads to all of them.
        if (outcome.good < kNotes - 16) {
            EXPECT_TRUE(outcome.good == 0 || outcome.good == kNotes - kNotes / 10) << outcome.good;
            ++harmful;
        }
        EXPECT_TRUE(outcome.changes == 0 || outcome.changes == kStatusNothingModified) << outcome.changes;
    }
    EXPECT_EQ(unopened, 1U) << "the first page alone says what the file is";
    EXPECT_LE(harmful, 2U) << "the roots of the notes and of the large values";
}

TEST_F(DamagedDatabase, KeepsTheNotesInFrontWhenItIsCutShort)
{
    for (size_t length = 0; length <= whole_.size(); length += whole_.size() / 20) {
        SCOPED_TRACE(testing::Message() << length << " of " << whole_.size() << " bytes");
        const Outcome outcome = Read(whole_.substr(0, length));
        if (length < kPage) {
            EXPECT_EQ(outcome.opened, kStatusNotADatabase);
        } else if (length == whole_.size()) {
            EXPECT_EQ(outcome.good, kNotes);
        }
    }
    const size_t pages = whole_.size() / kPage;
    EXPECT_GT(Read(whole_.substr(0, (pages - 10) * kPage)).good, kNotes / 2);
}

TEST_F(DamagedDatabase, NeverBelievesAFlippedBit)
{
    std::mt19937 random(20240301);
    for (int round = 0; round < 150; ++round) {
        SCOPED_TRACE(testing::Message() << "round " << round);
        std::string bytes = whole_;
        // The first page is another test's.
        for (int flip = 0; flip < 3; ++flip) {
            char& byte = bytes[kPage + random() % (bytes.size() - kPage)];
            byte = static_cast<char>(byte ^ (1 << random() % 8));
        }
        const Outcome outcome = Read(bytes);
        EXPECT_TRUE(outcome.opened == 0 || outcome.opened == kStatusNotADatabase) << outcome.opened;
    }
}

TEST_F(DamagedDatabase, EndsWithAStatusWhateverTheFirstPageSays)
{
    std::mt19937 random(20240302);
    for (int round = 0; round < 100; ++round) {
        std::string bytes = whole_;
        bytes[16 + random() % (kPage - 16)] = static_cast<char>(random());
        const std::string path = NewPath();
        WriteWholeFile(path, bytes);
        std::unique_ptr<Database> database;
        if (Database::Open(path, &database) != 0)
            continue;
        (void)database->List([&](const NoteSummary& summary) {
            Note note;
            (void)database->Get(summary.id, &note);
            return true;
        });
    }
}

TEST_F(DamagedDatabase, IsListedByItsNotesWhenTheIndexOfChangesIsLost)
{
    const std::string path = NewPath();
    WriteWholeFile(path, whole_);
    size_t root = 0;
    {
        sqlite3* db = nullptr;
        sqlite3_stmt* statement = nullptr;
        ASSERT_EQ(sqlite3_open(path.c_str(), &db), SQLITE_OK);
        ASSERT_EQ(sqlite3_prepare_v2(db, "SELECT rootpage FROM sqlite_schema WHERE name = 'note_change'", -1,
                                     &statement, nullptr),
                  SQLITE_OK);
        ASSERT_EQ(sqlite3_step(statement), SQLITE_ROW);
        root = static_cast<size_t>(sqlite3_column_int64(statement, 0));
        sqlite3_finalize(statement);
        sqlite3_close(db);
    }
    std::string bytes = whole_;
    bytes.replace((root - 1) * kPage, kPage, kPage, '\0');
    const Outcome outcome = Read(bytes);
    EXPECT_EQ(outcome.changes, 0);
    EXPECT_EQ(outcome.changed.size(), kNotes);
    EXPECT_EQ(outcome.good, kNotes);
}

}  // namespace
}  // namespace pavex
