// tests/indexers/task_test.cpp: tasks as metafiles.
#include "indexers/task.h"

#include <optional>

#include "indexers/calendar.h"
#include "tests/indexers/indexer_fixture.h"

namespace {

class TaskIndexer : public IndexerTest {
protected:
    Properties Task(std::vector<pavex::Item> items)
    {
        items.push_back(TextItem("Form", "Task"));
        items.push_back(TimeItem("CalendarDateTime", "2007-03-20T09:00:00Z"));
        return Indexed(std::move(items), IndexTaskNote);
    }
    std::string Property(std::vector<pavex::Item> items, const char* key)
    {
        const Properties properties = Task(std::move(items));
        const auto found = properties.find(key);
        return found == properties.end() ? "none" : found->second;
    }
    // Leaves pairs in the calendar array, as a calendar entry indexed before a task does.
    void IndexEntry(const std::vector<const char*>& days, const char* end)
    {
        Indexed({TimesItem("CalendarDateTime", days), TimeItem("StartDateTime", days[0]), TimeItem("EndDateTime", end)},
                IndexCalendarNote);
    }
};

TEST_F(TaskIndexer, WritesEveryPropertyOfATask)
{
    IndexEntry({"2007-03-15T08:00:00Z", "2007-03-22T08:00:00Z"}, "2007-03-15T17:00:00Z");
    EXPECT_EQ(Indexed(
                  {
                      TextItem("Form", "Task"),
                      TextItem("Subject", "Write it up"),
                      TimesItem("CalendarDateTime", {"2007-03-20T09:00:00Z", "2007-03-21T09:00:00Z"}),
                      TimeItem("StartDateTime", "2007-03-20T09:00:00Z"),
                      TimeItem("DueDateTime", "2007-03-20T12:00:00Z"),
                      TextItem("Categories", "Work"),
                      TextItem("Chair", "CN=Ann Lee/O=Acme"),
                      NumberItem("TaskType", 1),
                      NumberItem("DueState", 8),
                      TimeItem("CompletedDateTime", "2007-03-09T16:00:00Z"),
                      NumberItem("Importance", 1),
                      BodyItem({"Soon"}),
                  },
                  IndexTaskNote),
              (Properties{
                  {"last_modified_time", "date 2007-03-02T09:30:00Z"},
                  {"com.quorvex.pavex.content", "Soon\r\n"},
                  {"start_date", "date 2007-03-15T08:00:00Z"},  // the calendar entry's
                  {"due_date", "date 2007-03-15T17:00:00Z"},
                  {"recurrence_pattern", " 3-15-2007  8: 0: 0 /  3-15-2007 17: 0: 0; "
                                         " 3-22-2007  8: 0: 0 /  3-22-2007 17: 0: 0"},
                  {"title", "Write it up"},
                  {"categories", "Work"},
                  {"owner", "Ann Lee/Acme"},
                  {"status", "number 4"},
                  {"date_completed", "date 2007-03-09T16:00:00Z"},
                  {"importance", "number 2"},
              }));
}

TEST_F(TaskIndexer, WritesATaskFileAndFillsItsOwnPairs)
{
    const uint32_t id =
        Put({TimeItem("CalendarDateTime", "2007-03-20T09:00:00Z"), TimeItem("StartDateTime", "2007-03-20T09:00:00Z"),
             TimeItem("DueDateTime", "2007-03-20T12:00:00Z")});
    ASSERT_TRUE(Index(id, IndexTaskNote));
    EXPECT_EQ(Extension(id), "vPavexTask");
    EXPECT_EQ(StartEndTimes2[0].end - StartEndTimes2[0].start, 3 * 3600);
}

TEST_F(TaskIndexer, ATaskBeforeAnyCalendarEntryReportsTheEpoch)
{
    for (WORD i = 0; i < kMaxTimePairs; ++i)
        StartEndTimes1[i] = {};
    const Properties properties =
        Task({TimeItem("StartDateTime", "2007-03-20T09:00:00Z"), TimeItem("DueDateTime", "2007-03-20T12:00:00Z")});
    EXPECT_EQ(properties.at("start_date"), "date 2001-01-01T00:00:00Z");
    EXPECT_EQ(properties.at("due_date"), "date 2001-01-01T00:00:00Z");
}

TEST_F(TaskIndexer, MapsTheDueState)
{
    const std::pair<double, const char*> states[] = {
        {0, "number 3"},  {1, "number 1"},  {2, "number 0"},   {3, "number 1"}, {4, "number 1"},
        {5, "number 1"},  {6, "number 1"},  {7, "number 1"},   {8, "number 4"}, {9, "number 2"},
        {10, "number 1"}, {-1, "number 1"}, {1e6, "number 1"},
    };
    for (const auto& [state, status] : states)
        EXPECT_EQ(Property({NumberItem("DueState", state)}, "status"), status) << state;
    EXPECT_EQ(Property({}, "status"), "number 1");
    EXPECT_EQ(Property({TextItem("DueState", "8")}, "status"), "number 1");
}

TEST_F(TaskIndexer, AGroupTaskThatWasNotSentHasStatusZero)
{
    EXPECT_EQ(Property({NumberItem("TaskType", 2), NumberItem("DueState", 8)}, "status"), "number 0");
    EXPECT_EQ(
        Property({NumberItem("TaskType", 2), NumberItem("DueState", 8), TimeItem("PostedDate", kCreated)}, "status"),
        "number 4");
    EXPECT_EQ(Property({NumberItem("TaskType", 3), NumberItem("DueState", 8)}, "status"), "number 4");
}

TEST_F(TaskIndexer, MapsTheImportance)
{
    const std::pair<double, const char*> importances[] = {
        {1, "number 2"}, {2, "number 1"}, {3, "number 0"}, {0, "none"}, {4, "none"}, {-1, "none"},
    };
    for (const auto& [item, importance] : importances)
        EXPECT_EQ(Property({NumberItem("Importance", item)}, "importance"), importance) << item;
    EXPECT_EQ(Property({}, "importance"), "none");
}

TEST_F(TaskIndexer, HasNoDatesWithoutBothOfThem)
{
    const auto start = TimeItem("StartDateTime", "2007-03-20T09:00:00Z");
    const auto due = TimeItem("DueDateTime", "2007-03-20T12:00:00Z");
    for (const auto& items : {std::vector{start}, std::vector{due}, std::vector<pavex::Item>{}}) {
        const Properties properties = Task(items);
        EXPECT_EQ(properties.count("start_date") + properties.count("due_date"), 0u);
    }
    // Nor when it is due before it starts.
    EXPECT_EQ(Property({start, TimeItem("DueDateTime", "2007-03-20T08:00:00Z")}, "start_date"), "none");
}

TEST_F(TaskIndexer, NeverHasAnEndOrADuration)
{
    IndexEntry({"2007-03-15T08:00:00Z"}, "2007-03-15T17:00:00Z");
    const Properties properties =
        Task({TimeItem("StartDateTime", "2007-03-20T09:00:00Z"), TimeItem("DueDateTime", "2007-03-20T12:00:00Z")});
    EXPECT_EQ(properties.count("due_date"), 1u);
    EXPECT_EQ(properties.count("end_date") + properties.count("duration"), 0u);
}

TEST_F(TaskIndexer, ACompletionDateThatIsNoneIsLeftOut)
{
    EXPECT_EQ(Property({TextItem("CompletedDateTime", "yesterday")}, "date_completed"), "none");
    EXPECT_EQ(Property({pavex::TimeItem("CompletedDateTime", NoTime())}, "date_completed"), "none");
}

TEST_F(TaskIndexer, ATaskWithoutADayIsRemoved)
{
    pavex::Note note;
    note.items = {TimeItem("CalendarDateTime", "2007-03-20T09:00:00Z")};
    ASSERT_EQ(Db().Put(&note), 0);
    ASSERT_TRUE(Index(note.id, IndexTaskNote));
    ASSERT_EQ(Extension(note.id), "vPavexTask");

    note.items = {TimeItem("StartDateTime", "2007-03-20T09:00:00Z"), TimeItem("DueDateTime", "2007-03-20T12:00:00Z")};
    ASSERT_EQ(Db().Put(&note), 0);
    EXPECT_TRUE(Index(note.id, IndexTaskNote));
    EXPECT_EQ(context_.lastStatus, 549);
    EXPECT_EQ(Extension(note.id), "");
}

TEST_F(TaskIndexer, ADayThatIsNoDateIsEnough)
{
    EXPECT_TRUE(Index(Put({TextItem("CalendarDateTime", "some day")}), IndexTaskNote));
    EXPECT_EQ(context_.lastStatus, 0);
}

}  // namespace
