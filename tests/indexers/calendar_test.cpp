// tests/indexers/calendar_test.cpp: calendar entries as metafiles.
#include "indexers/calendar.h"

#include "tests/indexers/indexer_fixture.h"

namespace {

class CalendarIndexer : public IndexerTest {};

// An entry of an hour and a half on one or more days.
std::vector<pavex::Item> Entry(const std::vector<const char*>& days, std::vector<pavex::Item> more = {})
{
    more.insert(more.begin(), {TextItem("Form", "Appointment"), TimesItem("CalendarDateTime", days),
                               TimeItem("StartDateTime", days[0])});
    return more;
}

TEST_F(CalendarIndexer, WritesEveryPropertyOfAnEntry)
{
    const std::vector<pavex::Item> items = {
        TextItem("Form", "Appointment"),
        TextItem("Subject", "Review\nof the plan"),
        TimesItem("CalendarDateTime", {"2007-03-05T14:00:00Z", "2007-03-12T14:00:00Z"}),
        TimeItem("StartDateTime", "2007-03-05T14:00:00Z"),
        TimeItem("EndDateTime", "2007-03-05T15:30:00Z"),
        TextItem("Chair", "CN=Ann Lee/O=Acme"),
        TextListItem("RequiredAttendees", {"CN=Bo Ek/O=Acme", "Cy Fry"}),
        TextListItem("OptionalAttendees", {"Dee Hill"}),
        TextListItem("Location", {"Room 5", "Annex"}),
        TextListItem("Categories", {"Work", "Plans"}),
        BodyItem({"Agenda"}),
    };
    EXPECT_EQ(Indexed(items, IndexCalendarNote),
              (Properties{
                  {"last_modified_time", "date 2007-03-02T09:30:00Z"},
                  {"start_date", "date 2007-03-12T14:00:00Z"},
                  {"end_date", "date 2007-03-12T15:30:00Z"},
                  {"duration", "number 5400"},
                  {"recurrence_pattern", " 3- 5-2007 14: 0: 0 /  3- 5-2007 15:30: 0; "
                                         " 3-12-2007 14: 0: 0 /  3-12-2007 15:30: 0"},
                  {"title", "Review\r\nof the plan"},
                  {"com.quorvex.pavex.content", "Agenda\r\n"},
                  {"organizer", "Ann Lee/Acme"},
                  {"attendees", "Bo Ek/Acme, Cy Fry, Dee Hill"},
                  {"location", "Room 5\r\nAnnex"},
                  {"categories", "Work, Plans"},
              }));
}

TEST_F(CalendarIndexer, WritesACalendarFile)
{
    const uint32_t id = Put(Entry({kCreated}, {TimeItem("EndDateTime", kModified)}));
    ASSERT_TRUE(Index(id, IndexCalendarNote));
    EXPECT_EQ(Extension(id), "vPavexCalendar");
}

TEST_F(CalendarIndexer, ASingleOccurrenceHasADurationAndNoPattern)
{
    EXPECT_EQ(
        Indexed(Entry({"2007-03-05T10:00:00Z"}, {TimeItem("EndDateTime", "2007-03-05T11:00:00Z")}), IndexCalendarNote),
        (Properties{{"last_modified_time", "date 2007-03-02T09:30:00Z"},
                    {"start_date", "date 2007-03-05T10:00:00Z"},
                    {"end_date", "date 2007-03-05T11:00:00Z"},
                    {"duration", "number 3600"},
                    {"com.quorvex.pavex.content", ""}}));
}

TEST_F(CalendarIndexer, AnEntryThatEndsWhenItStartsHasNoDuration)
{
    const Properties properties =
        Indexed(Entry({"2007-03-05T10:00:00Z"}, {TimeItem("EndDateTime", "2007-03-05T10:00:00Z")}), IndexCalendarNote);
    EXPECT_EQ(properties.at("end_date"), "date 2007-03-05T10:00:00Z");
    EXPECT_EQ(properties.count("duration"), 0u);
}

TEST_F(CalendarIndexer, ADurationBelowASecondIsNone)
{
    const Properties properties = Indexed(
        Entry({"2007-03-05T10:00:00Z"}, {TimeItem("EndDateTime", "2007-03-05T10:00:00.50Z")}), IndexCalendarNote);
    EXPECT_EQ(properties.count("end_date"), 1u);
    EXPECT_EQ(properties.count("duration"), 0u);
}

TEST_F(CalendarIndexer, AnEntryThatCannotBePlacedInTimeIsRemoved)
{
    const auto start = TimeItem("StartDateTime", "2007-03-05T10:00:00Z");
    const auto end = TimeItem("EndDateTime", "2007-03-05T11:00:00Z");
    const auto day = TimeItem("CalendarDateTime", "2007-03-05T10:00:00Z");
    const std::vector<std::vector<pavex::Item>> unusable = {
        {start, end},
        {day, end},
        {day, start},
        {TextItem("CalendarDateTime", "no day"), start, end},
        {TextItem("CalendarDateTime", ""), start, end},
        {day, TextItem("StartDateTime", "never"), end},
        {day, TextItem("StartDateTime", ""), end},
        {day, start, TextItem("EndDateTime", "never")},
        {day, start, TextItem("EndDateTime", "|")},
        {day, end, TimeItem("StartDateTime", "2007-03-05T11:00:01Z")},  // ends before it starts
    };
    for (size_t i = 0; i < unusable.size(); ++i) {
        SCOPED_TRACE(i);
        pavex::Note note;
        note.items = {day, start, end};
        ASSERT_EQ(Db().Put(&note), 0);
        ASSERT_TRUE(Index(note.id, IndexCalendarNote));
        ASSERT_EQ(Extension(note.id), "vPavexCalendar");

        note.items = unusable[i];
        ASSERT_EQ(Db().Put(&note), 0);
        EXPECT_TRUE(Index(note.id, IndexCalendarNote));
        EXPECT_EQ(context_.lastStatus, 549);
        EXPECT_EQ(context_.blankResult, 0u);
        EXPECT_EQ(Extension(note.id), "");
    }
}

TEST_F(CalendarIndexer, TheCommaAfterRequiredAttendeesStaysWithoutOptionalOnes)
{
    const auto attendees = [this](std::vector<pavex::Item> items) {
        items.push_back(TimeItem("EndDateTime", kModified));
        const Properties properties = Indexed(Entry({kCreated}, items), IndexCalendarNote);
        const auto found = properties.find("attendees");
        return found == properties.end() ? std::string("none") : found->second;
    };
    const auto required = TextListItem("RequiredAttendees", {"Ann", "Bo"});
    const auto optional = TextListItem("OptionalAttendees", {"Cy", "Dee"});
    EXPECT_EQ(attendees({required}), "Ann, Bo,");
    EXPECT_EQ(attendees({optional}), "Cy, Dee");
    EXPECT_EQ(attendees({required, optional}), "Ann, Bo, Cy, Dee");
    EXPECT_EQ(attendees({required, TextItem("OptionalAttendees", "")}), "Ann, Bo,");
    EXPECT_EQ(attendees({}), "none");
}

TEST_F(CalendarIndexer, MoreAttendeesThanTheBufferHoldsAreCutInsideIt)
{
    // Required attendees fill the buffer to its limit, one length after another: no room is left for more.
    for (const size_t last :
         {size_t{700}, size_t{764}, size_t{765}, size_t{766}, size_t{767}, size_t{768}, size_t{900}}) {
        std::vector<std::string> names(40, std::string(798, 'a'));
        names.push_back(std::string(last, 'b'));
        const Properties properties =
            Indexed(Entry({kCreated}, {TimeItem("EndDateTime", kModified), TextListItem("RequiredAttendees", names),
                                       TextListItem("OptionalAttendees", {"Cy", "Dee"})}),
                    IndexCalendarNote);
        const std::string& text = properties.at("attendees");
        EXPECT_GE(text.size(), 32000u);
        EXPECT_LE(text.size(), 32768u);
        EXPECT_EQ(text.substr(0, 800), std::string(798, 'a') + ", ");
    }
}

TEST_F(CalendarIndexer, EveryEntryOverwritesThePairsOfTheLastOne)
{
    Indexed(Entry({"2007-03-05T10:00:00Z", "2007-03-06T10:00:00Z"}, {TimeItem("EndDateTime", "2007-03-05T11:00:00Z")}),
            IndexCalendarNote);
    const TimePair second = StartEndTimes1[1];
    Indexed(Entry({"2007-03-07T10:00:00Z"}, {TimeItem("EndDateTime", "2007-03-07T10:30:00Z")}), IndexCalendarNote);
    EXPECT_EQ(StartEndTimes1[0].end - StartEndTimes1[0].start, 1800);
    EXPECT_EQ(StartEndTimes1[1].start, second.start);
    EXPECT_EQ(StartEndTimes1[1].end, second.end);
}

}  // namespace
