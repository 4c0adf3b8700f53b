// tests/indexers/time_range_test.cpp: occurrences, and which of them an event names.
#include "content/note_times.h"
#include "indexers/calendar.h"
#include "tests/indexers/indexer_fixture.h"
#include "tests/indexers/property_faults.h"

namespace {

double Seconds(const char* iso)
{
    const TIMEDATE time = Time(iso);
    double seconds = 0;
    EXPECT_TRUE(TIMEDATEtoUTC(&time, seconds));
    return seconds;
}

// A date in its own text form, as the store writes it.
std::string DateText(const char* iso)
{
    char buffer[80];
    WORD length = 0;
    const TIMEDATE time = Time(iso);
    EXPECT_EQ(ConvertTIMEDATEToText(nullptr, nullptr, &time, buffer, sizeof buffer, &length), 0);
    return std::string(buffer, length);
}

class TimeRange : public IndexerTest {
protected:
    WORD Fill(std::vector<pavex::Item> items, TimePair* pairs = StartEndTimes1)
    {
        const OpenNote note(Handle(), Put(std::move(items)));
        return FillStartEndTimeArray(note.Get(), pairs, 0, "StartDateTime", "EndDateTime");
    }
    // "start_date" of an entry of an hour with these occurrences.
    Properties Occurrences(const std::vector<const char*>& starts)
    {
        return Indexed({TimesItem("CalendarDateTime", starts), TimeItem("StartDateTime", "2007-03-05T10:00:00Z"),
                        TimeItem("EndDateTime", "2007-03-05T11:00:00Z")},
                       IndexCalendarNote);
    }
};

TEST_F(TimeRange, EveryOccurrenceLastsAsLongAsTheFirstInstance)
{
    ASSERT_EQ(
        Fill({TimesItem("CalendarDateTime", {"2007-03-12T10:00:00Z", "2007-03-19T12:00:00Z"}),
              TimeItem("StartDateTime", "2007-03-05T10:00:00Z"), TimeItem("EndDateTime", "2007-03-05T10:45:00Z")}),
        2);
    EXPECT_EQ(StartEndTimes1[0].start, Seconds("2007-03-12T10:00:00Z"));
    EXPECT_EQ(StartEndTimes1[0].end, Seconds("2007-03-12T10:45:00Z"));
    EXPECT_EQ(StartEndTimes1[1].start, Seconds("2007-03-19T12:00:00Z"));
    EXPECT_EQ(StartEndTimes1[1].end, Seconds("2007-03-19T12:45:00Z"));
}

TEST_F(TimeRange, WhatIsNoDateLeavesNoGap)
{
    ASSERT_EQ(
        Fill({TextListItem("CalendarDateTime",
                           {DateText("2007-03-12T10:00:00Z"), "soon", DateText("2007-03-19T10:00:00Z")}),
              TimeItem("StartDateTime", "2007-03-05T10:00:00Z"), TimeItem("EndDateTime", "2007-03-05T11:00:00Z")}),
        2);
    EXPECT_EQ(StartEndTimes1[0].start, Seconds("2007-03-12T10:00:00Z"));
    EXPECT_EQ(StartEndTimes1[1].start, Seconds("2007-03-19T10:00:00Z"));
}

TEST_F(TimeRange, ATextThatFillsTheBufferHoldsNoDates)
{
    const auto pairsOf = [this](size_t bytes) {
        std::string text = DateText("2007-03-12T10:00:00Z") + "|";
        text.resize(bytes, 'x');
        return Fill({TextItem("CalendarDateTime", text), TimeItem("StartDateTime", "2007-03-05T10:00:00Z"),
                     TimeItem("EndDateTime", "2007-03-05T11:00:00Z")});
    };
    EXPECT_EQ(pairsOf(32767), 1);
    EXPECT_EQ(pairsOf(32768), 0);
    EXPECT_EQ(pairsOf(40000), 0);
}

TEST_F(TimeRange, OnlyTheFirstStartAndTheFirstEndCount)
{
    ASSERT_EQ(Fill({TimeItem("CalendarDateTime", "2007-03-12T10:00:00Z"),
                    TimesItem("StartDateTime", {"2007-03-05T10:00:00Z", "2007-03-06T10:00:00Z"}),
                    TimesItem("EndDateTime", {"2007-03-05T10:20:00Z", "2007-03-09T10:00:00Z"})}),
              1);
    EXPECT_EQ(StartEndTimes1[0].end - StartEndTimes1[0].start, 1200);
}

TEST_F(TimeRange, ADateWithoutATimeOfDayStartsAtMidnight)
{
    ASSERT_EQ(Fill({TimeItem("CalendarDateTime", "2007-03-12"), TimeItem("StartDateTime", "2007-03-12"),
                    TimeItem("EndDateTime", "2007-03-13")}),
              1);
    EXPECT_EQ(StartEndTimes1[0].start, Seconds("2007-03-12T00:00:00Z"));
    EXPECT_EQ(StartEndTimes1[0].end, Seconds("2007-03-13T00:00:00Z"));
}

TEST_F(TimeRange, TheArraysLieOneDirectlyBehindTheOther)
{
    EXPECT_EQ(StartEndTimes1 + 100, StartEndTimes2);
    EXPECT_EQ(sizeof(TimePair), 2 * sizeof(double));
}

class ManyOccurrences : public TimeRange, public testing::WithParamInterface<int> {};

TEST_P(ManyOccurrences, TheFirstHundredCountAndNothingIsWrittenBehindThem)
{
    std::vector<TIMEDATE> starts;
    const int64_t first = pavex::UnixFromTime(Time("2007-01-01T10:00:00Z")).value();
    for (int i = 0; i < GetParam(); ++i)
        starts.push_back(pavex::TimeFromUnix(first + int64_t{i} * 86400));
    StartEndTimes2[0] = {1, 2};
    const uint32_t id =
        Put({pavex::TimeListItem("CalendarDateTime", starts), TimeItem("StartDateTime", "2007-01-01T10:00:00Z"),
             TimeItem("EndDateTime", "2007-01-01T11:00:00Z")});
    const int expected = std::min(GetParam(), 100);
    const OpenNote note(Handle(), id);
    EXPECT_EQ(FillStartEndTimeArray(note.Get(), StartEndTimes1, 0, "StartDateTime", "EndDateTime"), expected);
    EXPECT_EQ(StartEndTimes1[expected - 1].start, Seconds("2007-01-01T10:00:00Z") + (expected - 1) * 86400.0);
    EXPECT_EQ(StartEndTimes2[0].start, 1);
    EXPECT_EQ(StartEndTimes2[0].end, 2);

    const std::vector<TimePair> guarded(102, TimePair{-1, -1});
    std::vector<TimePair> pairs = guarded;
    EXPECT_EQ(FillStartEndTimeArray(note.Get(), pairs.data(), 100, "StartDateTime", "EndDateTime"), expected);
    EXPECT_EQ(pairs[100].start, -1);
    EXPECT_EQ(pairs[101].end, -1);
}

INSTANTIATE_TEST_SUITE_P(Around100, ManyOccurrences, testing::Values(1, 99, 100, 101, 350));

TEST_F(TimeRange, NamesTheNextOccurrenceThatIsStillToCome)
{
    const Properties next = Occurrences({"2007-03-05T10:00:00Z", "2007-03-08T10:00:00Z", "2007-03-11T10:00:00Z",
                                         "2007-03-14T10:00:00Z", "2007-03-17T10:00:00Z"});
    EXPECT_EQ(next.at("start_date"), "date 2007-03-11T10:00:00Z");
    EXPECT_EQ(next.at("recurrence_pattern"), " 3- 5-2007 10: 0: 0 /  3- 5-2007 11: 0: 0; "
                                             " 3- 8-2007 10: 0: 0 /  3- 8-2007 11: 0: 0; "
                                             " 3-11-2007 10: 0: 0 /  3-11-2007 11: 0: 0; "
                                             " 3-14-2007 10: 0: 0 /  3-14-2007 11: 0: 0; "
                                             " 3-17-2007 10: 0: 0 /  3-17-2007 11: 0: 0");
}

TEST_F(TimeRange, NamesTheFirstWhenAllArePast)
{
    EXPECT_EQ(Occurrences({"2007-03-01T10:00:00Z", "2007-03-05T10:00:00Z"}).at("start_date"),
              "date 2007-03-01T10:00:00Z");
}

TEST_F(TimeRange, TheOrderOfTheListDecidesNotThatOfTime)
{
    EXPECT_EQ(Occurrences({"2007-04-01T10:00:00Z", "2007-03-11T10:00:00Z"}).at("start_date"),
              "date 2007-04-01T10:00:00Z");
}

TEST_F(TimeRange, AnOccurrenceThatStartsNowIsNotToComeAnyMore)
{
    EXPECT_EQ(Occurrences({kNow, "2007-03-11T10:00:00Z"}).at("start_date"), "date 2007-03-11T10:00:00Z");
}

TEST_F(TimeRange, NamesTheFirstWhenTheClockHasNoTime)
{
    const ClockFault fault;
    EXPECT_EQ(Occurrences({"2007-03-01T10:00:00Z", "2007-03-11T10:00:00Z"}).at("start_date"),
              "date 2007-03-01T10:00:00Z");
}

TEST_F(TimeRange, NoPairsAddNothing)
{
    SearchEngineEvent event(kSearchEventCalendar);
    EXPECT_EQ(IndexStartEndTimeArray(StartEndTimes1, 0, false, event), 0);
    EXPECT_EQ(CFDictionaryGetCount(event.Properties()), 1);  // the version
}

TEST_F(TimeRange, ThePairsAreThoseOfTheCalendarWhateverArrayIsHandedOver)
{
    StartEndTimes1[0] = {Seconds("2007-05-01T10:00:00Z"), Seconds("2007-05-01T11:00:00Z")};
    const TimePair other = {Seconds("2008-01-01T00:00:00Z"), Seconds("2008-01-02T00:00:00Z")};
    SearchEngineEvent event(kSearchEventTask);
    ASSERT_EQ(IndexStartEndTimeArray(&other, 1, true, event), 0);
    const auto* due = static_cast<CFDateRef>(CFDictionaryGetValue(event.Properties(), CFSTR("due_date")));
    ASSERT_NE(due, nullptr);
    EXPECT_EQ(CFDateGetAbsoluteTime(due), Seconds("2007-05-01T11:00:00Z"));
    EXPECT_EQ(CFDictionaryGetCount(event.Properties()), 3);  // no end, no duration, no pattern
}

}  // namespace
