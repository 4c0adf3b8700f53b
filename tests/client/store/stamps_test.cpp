// tests/client/store/stamps_test.cpp: no change is lost between two passes, whatever the clock does and
// however many processes write.
#include <sys/wait.h>
#include <unistd.h>

#include <set>
#include <thread>

#include "client/store/engine.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using StampsTest = StoreTest;
using testing::ElementsAre;

uint64_t StampOf(TestDatabase& data, uint32_t id)
{
    NoteRow row;
    EXPECT_EQ(data.database().ReadRow(id, false, &row), 0);
    return row.stamp;
}

TEST_F(StampsTest, AreTheClocksTimeWhenItIsAhead)
{
    TestDatabase data(NewPath());
    EXPECT_EQ(data.LastChange(), TimeFromUnix(1'700'000'000));
    clock_.Advance(5000);
    data.AddNote({});
    EXPECT_EQ(data.LastChange(), TimeFromUnix(1'700'000'005));
}

TEST_F(StampsTest, GoOnByOneTickWhenTheClockStandsStillOrGoesBack)
{
    TestDatabase data(NewPath());
    data.AddNote({});
    data.AddNote({});
    EXPECT_EQ(data.LastChange(), TimeFromUnix(1'700'000'000, 2));
    VirtualClock earlier(kStartHundredths - 1'000'000);
    SetClock(&earlier);
    data.Delete(1);
    EXPECT_EQ(data.LastChange(), TimeFromUnix(1'700'000'000, 3));
    SetClock(&clock_);
}

TEST_F(StampsTest, AreGivenAnewToANoteThatIsTouchedAndNothingElseOfItChanges)
{
    TestDatabase data(NewPath());
    const uint32_t id = data.AddNote({TextItem("Subject", "a"), TextItem("Body", std::string(100'000, 'x'))});
    data.AddNote({});
    data.SetUnread("Ann", id);
    const Note before = data.Get(id);
    const TIMEDATE since = data.LastChange();
    clock_.Advance(60'000);
    EXPECT_EQ(data.database().Touch(id), 0);
    OpenedDatabase opened(data.Path());
    EXPECT_THAT(ChangesSince(opened, since).ids, ElementsAre(id));
    const Note after = data.Get(id);
    EXPECT_EQ(after.items, before.items);
    EXPECT_EQ(after.modified, before.modified);
    EXPECT_EQ(after.sequence, before.sequence);
    bool isUnread = false;
    EXPECT_EQ(data.database().IsUnread("Ann", id, &isUnread), 0);
    EXPECT_TRUE(isUnread);
}

TEST_F(StampsTest, AreNotGivenToNotesThatAreNotThere)
{
    TestDatabase data(NewPath());
    const uint32_t id = data.AddNote({});
    data.Delete(id);
    const TIMEDATE since = data.LastChange();
    EXPECT_EQ(data.database().Touch(id), kStatusNoteDeleted);
    EXPECT_EQ(data.database().Touch(99), kStatusNoSuchNote);
    EXPECT_EQ(data.LastChange(), since);
}

TEST_F(StampsTest, AreOneForAllOfATransaction)
{
    TestDatabase data(NewPath());
    data.AddNote({});
    ASSERT_EQ(data.database().Begin(), 0);
    data.AddNote({});
    clock_.Advance(60'000);
    data.AddNote({});
    data.Delete(1);
    ASSERT_EQ(data.database().Commit(), 0);
    EXPECT_EQ(StampOf(data, 1), StampOf(data, 3));
    EXPECT_EQ(StampOf(data, 2), StampOf(data, 3));
    data.AddNote({});
    EXPECT_GT(StampOf(data, 4), StampOf(data, 3));
}

TEST_F(StampsTest, AreNotTheTimeOfChangeThatUsersSee)
{
    TestDatabase data(NewPath());
    Note note;
    note.modified = TimeFromUnix(4'000'000'000);
    data.Add(note);
    EXPECT_EQ(data.Get(1).modified, TimeFromUnix(4'000'000'000));
    EXPECT_EQ(data.LastChange(), TimeFromUnix(1'700'000'000, 1));
}

TEST_F(StampsTest, StayWhereTheyAreForWritesThatChangeNoNote)
{
    TestDatabase data(NewPath());
    data.AddNote({});
    const TIMEDATE before = data.LastChange();
    clock_.Advance(1000);
    data.SetUnread("Ann", 1);
    ASSERT_EQ(data.database().PutSource({"k", "s", "d", 1}), 0);
    ASSERT_EQ(data.database().Begin(), 0);
    ASSERT_EQ(data.database().Commit(), 0);
    EXPECT_EQ(data.database().Delete(99), kStatusNoSuchNote);
    EXPECT_EQ(data.LastChange(), before);
}

TEST_F(StampsTest, TellDocumentsFromDesign)
{
    TestDatabase data(NewPath());
    clock_.Advance(1000);
    data.AddForm("Memo");
    TIMEDATE documents{};
    TIMEDATE design{};
    ASSERT_EQ(data.database().ChangeTimes(&documents, &design), 0);
    EXPECT_EQ(documents, TimeFromUnix(1'700'000'000));
    EXPECT_EQ(design, TimeFromUnix(1'700'000'001));
    clock_.Advance(1000);
    data.AddNote({});
    ASSERT_EQ(data.database().ChangeTimes(&documents, nullptr), 0);
    EXPECT_EQ(documents, TimeFromUnix(1'700'000'002));
}

// Makes `count` notes in a database of its own connection.
void WriteNotes(const std::string& path, int count)
{
    TestDatabase data(path);
    for (int i = 0; i < count; ++i)
        data.AddNote({NumberItem("N", i)});
}

TEST_F(StampsTest, AreNeverEqualNorLostBetweenProcessesAndThreadsThatWriteAtOnce)
{
    constexpr int kEach = 60;
    const std::string path = NewPath();
    WriteNotes(path, 0);
    const pid_t child = fork();  // with no connection open: they do not survive it
    ASSERT_GE(child, 0);
    if (child == 0) {
        try {
            WriteNotes(path, kEach);
        } catch (...) {
            _exit(1);
        }
        _exit(0);
    }
    std::thread other([&] { WriteNotes(path, kEach); });

    TestDatabase data(path);
    // A reader passes over the database meanwhile, as the add-in does: from the end of the pass before.
    OpenedDatabase db(path);
    std::set<NOTEID> seen;
    TIMEDATE since = kMinimumTime;
    const auto pass = [&] {
        const Changes changes = ChangesSince(db, since);
        for (const NOTEID id : changes.ids)
            EXPECT_TRUE(seen.insert(id).second) << "seen twice: " << id;
        EXPECT_GE(HundredthsOf(changes.until), HundredthsOf(since));
        since = changes.until;
        return changes.status;
    };
    for (int i = 0; i < kEach; ++i) {
        const STATUS status = pass();
        EXPECT_TRUE(status == 0 || status == kStatusNothingModified) << status;
        std::this_thread::yield();
    }
    other.join();
    int result = 0;
    ASSERT_EQ(waitpid(child, &result, 0), child);
    EXPECT_EQ(result, 0);
    (void)pass();
    EXPECT_EQ(seen.size(), 2U * kEach);
    std::set<uint64_t> stamps;
    for (const uint32_t id : data.Ids())
        stamps.insert(StampOf(data, id));
    EXPECT_EQ(stamps.size(), 2U * kEach);
    EXPECT_EQ(pass(), kStatusNothingModified);
}

TEST_F(StampsTest, ShowAnUnfinishedTransactionToNobody)
{
    const std::string path = NewPath();
    TestDatabase data(path);
    OpenedDatabase db(path);
    const TIMEDATE since = data.LastChange();
    ASSERT_EQ(data.database().Begin(), 0);
    data.AddNote({});
    const Changes meanwhile = ChangesSince(db, since);
    EXPECT_EQ(meanwhile.status, kStatusNothingModified);
    clock_.Advance(10'000);
    ASSERT_EQ(data.database().Commit(), 0);
    EXPECT_THAT(ChangesSince(db, meanwhile.until).ids, ElementsAre(1));
}

}  // namespace
}  // namespace pavex
