// tests/client/store/time_calls_test.cpp: the store's time calls and text forms.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>

#include "client/store/clock.h"
#include "client/store/timedate.h"
#include "platform/store.h"

namespace {

bool Same(const TIMEDATE& a, const TIMEDATE& b)
{
    return a.Innards[0] == b.Innards[0] && a.Innards[1] == b.Innards[1];
}

std::string TextOf(const TIMEDATE& time)
{
    char text[80];
    WORD length = 99;
    const STATUS status = ConvertTIMEDATEToText(nullptr, nullptr, &time, text, sizeof text, &length);
    return status == kStatusOk ? std::string(text, length) : "status " + std::to_string(status);
}

STATUS Read(std::string text, TIMEDATE* time, std::string* rest = nullptr)
{
    char* position = text.data();
    const STATUS status = ConvertTextToTIMEDATE(nullptr, nullptr, &position, 80, time);
    if (rest != nullptr)
        *rest = position;
    return status;
}

constexpr DWORD kDay = 2454165;  // 2007-03-05

}  // namespace

TEST(TimeText, HasTheFormsOfTimesDatesAndTimesOfDay)
{
    EXPECT_EQ(TextOf({{5040000, kDay}}), "2007-03-05 14:00:00.00");
    EXPECT_EQ(TextOf({{5040099, kDay}}), "2007-03-05 14:00:00.99");
    EXPECT_EQ(TextOf({{0xFFFFFFFF, kDay}}), "2007-03-05");
    EXPECT_EQ(TextOf({{5040000, 0xFFFFFFFF}}), "14:00:00.00");
}

TEST(TimeText, OfTheMinimumTimeIsEmptyAndTheWildcardHasNone)
{
    TIMEDATE time;
    TimeConstant(0, &time);
    EXPECT_EQ(TextOf(time), "");
    TimeConstant(2, &time);
    EXPECT_EQ(TextOf(time), "status 591");
    EXPECT_EQ(TextOf({{8640000, kDay}}), "status 591");
}

TEST(TimeText, ReadsBackExactly)
{
    std::mt19937 random(7);
    TIMEDATE maximum;
    TimeConstant(1, &maximum);
    std::vector<TIMEDATE> times = {{{1, 0}}, {{0, 1}}, {{8639999, kDay}}, maximum};
    for (int i = 0; i < 20000; ++i)
        times.push_back({{static_cast<DWORD>(random() % 8640000), static_cast<DWORD>(random() & 0xFFFFFF)}});
    for (const TIMEDATE& time : times) {
        TIMEDATE again;
        ASSERT_EQ(Read(TextOf(time), &again), kStatusOk) << TextOf(time);
        ASSERT_TRUE(Same(again, time)) << TextOf(time);
    }
}

TEST(TimeText, ThatDoesNotFitIsRefusedWhole)
{
    const TIMEDATE time{{5040000, kDay}};
    char text[32] = "old";
    WORD length = 99;
    EXPECT_EQ(ConvertTIMEDATEToText(nullptr, nullptr, &time, text, 22, &length), kStatusBadText);
    EXPECT_EQ(length, 0);
    EXPECT_EQ(ConvertTIMEDATEToText(nullptr, nullptr, &time, text, 23, nullptr), kStatusOk);
    EXPECT_STREQ(text, "2007-03-05 14:00:00.00");
}

TEST(TextToTime, AdvancesPastWhatItRead)
{
    TIMEDATE time;
    std::string rest;
    EXPECT_EQ(Read("  2007-03-05 14:00:00.25|next", &time, &rest), kStatusOk);
    EXPECT_TRUE(Same(time, {{5040025, kDay}}));
    EXPECT_EQ(rest, "|next");
    EXPECT_EQ(Read("2007-03-05 and more", &time, &rest), kStatusOk);
    EXPECT_TRUE(Same(time, {{0xFFFFFFFF, kDay}}));
    EXPECT_EQ(rest, " and more");
    EXPECT_EQ(Read("14:00", &time, &rest), kStatusOk);
    EXPECT_TRUE(Same(time, {{5040000, 0xFFFFFFFF}}));
}

TEST(TextToTime, LeavesTextAndTimeAloneOnFailure)
{
    for (const char* text : {"", "0", "x", "2007-02-30", "25:00:00", "2007", "2007-03", "14:61:00"}) {
        TIMEDATE time{{1, 2}};
        std::string rest;
        EXPECT_EQ(Read(text, &time, &rest), kStatusBadText) << text;
        EXPECT_TRUE(Same(time, {{1, 2}}));
        EXPECT_EQ(rest, text);
    }
}

TEST(TextToTime, LooksAtNoMoreThanItsLength)
{
    char text[] = "2007-03-05 14:00:00.00";
    char* position = text;
    TIMEDATE time;
    EXPECT_EQ(ConvertTextToTIMEDATE(nullptr, nullptr, &position, 10, &time), kStatusOk);
    EXPECT_TRUE(Same(time, {{0xFFFFFFFF, kDay}}));
}

TEST(TimeCalls, CollateByDateThenTimeOfDay)
{
    const TIMEDATE ordered[] = {{{5, 0xFFFFFFFF}}, {{0, 0}},       {{1, 0}}, {{0xFFFFFFFF, 1}},
                                {{0, 1}},          {{8639999, 1}}, {{0, 2}}};
    for (size_t a = 0; a < std::size(ordered); ++a) {
        for (size_t b = 0; b < std::size(ordered); ++b)
            EXPECT_EQ(TimeDateCollate(&ordered[a], &ordered[b]), a < b ? -1 : a > b ? 1 : 0) << a << " " << b;
    }
    const TIMEDATE zoned{{0, 0x81000001}};
    EXPECT_EQ(TimeDateCollate(&zoned, &ordered[4]), 0);  // zone bits are no part of the instant
}

TEST(TimeCalls, ExtractAndConstructTheParts)
{
    const TIMEDATE time{{77, 0x81000005}};
    EXPECT_EQ(TimeExtractJulianDate(&time), 5u);
    EXPECT_EQ(TimeExtractDate(&time), 0x81000005u);
    EXPECT_EQ(TimeExtractTicks(&time), 77u);
    EXPECT_TRUE(Same(TimeConstruct(TimeExtractDate(&time), 77), time));
    const TIMEDATE none{{0xFFFFFFFF, 0xFFFFFFFF}};
    EXPECT_EQ(TimeExtractJulianDate(&none), 0xFFFFFFFFu);
    EXPECT_EQ(TimeExtractTicks(&none), 0xFFFFFFFFu);
}

TEST(TimeCalls, BreakATimeDown)
{
    TIME time{};
    time.GM = {{5040025, kDay}};
    ASSERT_FALSE(TimeGMToLocalZone(&time));
    EXPECT_EQ((std::vector<int>{time.year, time.month, time.day, time.weekday, time.hour, time.minute, time.second,
                                time.hundredth}),
              (std::vector<int>{2007, 3, 5, 2, 14, 0, 0, 25}));
    time.zone = 15;  // hours west: the day before
    ASSERT_FALSE(TimeGMToLocalZone(&time));
    EXPECT_EQ(time.day, 4);
    EXPECT_EQ(time.hour, 23);
    EXPECT_EQ(time.weekday, 1);
    time.dst = 1;
    ASSERT_FALSE(TimeGMToLocalZone(&time));
    EXPECT_EQ(time.day, 5);
    EXPECT_EQ(time.hour, 0);
}

TEST(TimeCalls, BreakADateWithoutATimeDownAndRefuseATimeWithoutADate)
{
    TIME time{};
    time.GM = {{0xFFFFFFFF, kDay}};
    ASSERT_FALSE(TimeGMToLocalZone(&time));
    EXPECT_EQ(time.day, 5);
    EXPECT_EQ((std::vector<int>{time.hour, time.minute, time.second, time.hundredth}),
              (std::vector<int>{-1, -1, -1, -1}));
    time.GM = {{0, 0xFFFFFFFF}};
    EXPECT_TRUE(TimeGMToLocalZone(&time));
}

TEST(TimeCalls, CurrentTimeComesFromTheClock)
{
    pavex::VirtualClock clock(117310320025ull);
    pavex::SetClock(&clock);
    TIMEDATE now;
    OSCurrentTIMEDATE(&now);
    pavex::SetClock(nullptr);
    EXPECT_EQ(TextOf(now), "2007-03-05 14:00:00.25");
}

TEST(NumberText, IsTheShortestThatReadsBack)
{
    const std::pair<double, const char*> cases[] = {
        {0, "0"},        {-0.0, "0"},     {1, "1"},
        {-2.5, "-2.5"},  {0.1, "0.1"},    {123456789012345, "123456789012345"},
        {1e20, "1e+20"}, {1e-7, "1e-07"}, {1.0 / 3, "0.3333333333333333"}};
    for (const auto& [number, expected] : cases) {
        char text[41];
        WORD length = 0;
        ASSERT_EQ(ConvertFLOATToText(nullptr, nullptr, &number, text, sizeof text, &length), kStatusOk);
        EXPECT_EQ(std::string(text, length), expected);
    }
}

TEST(NumberText, IsRefusedForWhatIsNoNumberOrDoesNotFit)
{
    char text[41];
    WORD length = 9;
    for (const double number : {std::nan(""), HUGE_VAL}) {
        EXPECT_EQ(ConvertFLOATToText(nullptr, nullptr, &number, text, sizeof text, &length), kStatusBadText);
        EXPECT_EQ(length, 0);
    }
    const double number = 1234;
    EXPECT_EQ(ConvertFLOATToText(nullptr, nullptr, &number, text, 4, &length), kStatusBadText);
}
