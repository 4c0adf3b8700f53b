// tests/client/store/sqlite_engine_test.cpp: the engine's own duties, and what they cost.
#include "client/store/sqlite_engine.h"

#include "client/store/item_codec.h"

#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using EngineTest = StoreTest;
using testing::ElementsAre;

int64_t StepsOf(const std::function<void()>& work, sqlite3* db)
{
    int64_t steps = 0;
    sqlite3_progress_handler(
        db, 1,
        [](void* count) {
            ++*static_cast<int64_t*>(count);
            return 0;
        },
        &steps);
    work();
    sqlite3_progress_handler(db, 0, nullptr, nullptr);
    return steps;
}

void Fill(TestDatabase& data, int notes)
{
    ASSERT_EQ(data.database().Begin(), 0);
    for (int i = 0; i < notes; ++i)
        data.AddNote({NumberItem("N", i)});
    ASSERT_EQ(data.database().Commit(), 0);
}

// Virtual-machine steps that a table of modified notes takes: a measure that does not vary.
int64_t StepsToList(TestDatabase& data, const TIMEDATE& since)
{
    Connection& connection = dynamic_cast<SqliteEngine&>(data.database().engine()).connection();
    return StepsOf(
        [&] {
            uint64_t last = 0;
            EXPECT_EQ(data.database().engine().ListChanges(HundredthsOf(since), 1, &last, [](uint32_t, bool) {}), 0);
        },
        connection.Handle());
}

TEST_F(EngineTest, ListsChangesForWhatChangedNotForWhatIsThere)
{
    TestDatabase small(NewPath());
    TestDatabase large(NewPath());
    Fill(small, 100);
    Fill(large, 20'000);
    EXPECT_EQ(StepsToList(large, large.LastChange()), StepsToList(small, small.LastChange()));
    const TIMEDATE smallBefore = small.LastChange();
    const TIMEDATE largeBefore = large.LastChange();
    for (int i = 0; i < 10; ++i) {
        small.AddNote({});
        large.AddNote({});
    }
    EXPECT_EQ(StepsToList(large, largeBefore), StepsToList(small, smallBefore));
}

TEST_F(EngineTest, GivesTheNextIdAlsoAfterDeletions)
{
    TestDatabase data(NewPath());
    Fill(data, 3);
    data.Delete(3);
    EXPECT_EQ(data.AddNote({}), 4U);
}

TEST_F(EngineTest, StopsAtTheGreatestId)
{
    TestDatabase data(NewPath());
    NoteRow row;
    row.id = 0x7FFFFFFF;
    row.unid = {{{1, 1}}, {{1, 1}}};
    std::vector<LargeValue> large;
    ASSERT_EQ(EncodeItems({}, false, &row.items, &large), 0);
    ASSERT_EQ(data.database().engine().WriteRow(&row, {}, {}), 0);
    EXPECT_THAT(data.Ids(), ElementsAre(0x7FFFFFFF));
    Note note;
    EXPECT_EQ(data.database().Put(&note), kStatusNoMemory);
}

TEST_F(EngineTest, SeesTheTitleAndNotesThatAnotherConnectionWrote)
{
    const std::string path = NewPath();
    TestDatabase first(path);
    TestDatabase second(path);
    EXPECT_TRUE(second.Ids().empty());
    first.AddNote({});
    ASSERT_EQ(first.database().SetTitle("new"), 0);
    EXPECT_THAT(second.Ids(), ElementsAre(1));
    EXPECT_EQ(second.database().Title(), "new");
}

TEST_F(EngineTest, RefusesAUniversalIdTwice)
{
    TestDatabase data(NewPath());
    NoteRow row;
    row.unid = {{{1, 1}}, {{1, 1}}};
    row.items = "x";
    ASSERT_EQ(data.database().engine().WriteRow(&row, {}, {}), 0);
    row.id = 0;
    EXPECT_NE(data.database().engine().WriteRow(&row, {}, {}), 0);
    EXPECT_FALSE(dynamic_cast<SqliteEngine&>(data.database().engine()).connection().InTransaction());
}

}  // namespace
}  // namespace pavex
