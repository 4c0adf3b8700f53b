// tests/content/note_times_test.cpp: conversions are held against the C++ library's calendar.
#include "content/note_times.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <random>

#include "client/store/timedate.h"
#include "platform/foundation.h"
#include "tests/content/note_fixture.h"

namespace {

constexpr DWORD kNone = 0xFFFFFFFF;
constexpr double kUntouched = -12345.0;
constexpr int64_t kJulianDayOf1970 = 2440588;

// Seconds since 2001 and the store's date word of a day.
double AbsoluteDay(std::chrono::sys_days day)
{
    using namespace std::chrono;
    return 86400.0 * static_cast<double>((day - sys_days(year(2001) / 1 / 1)).count());
}
DWORD JulianDay(std::chrono::sys_days day)
{
    return static_cast<DWORD>(day.time_since_epoch().count() + kJulianDayOf1970);
}
std::chrono::sys_days Day(int year, unsigned month, unsigned day)
{
    return std::chrono::sys_days(std::chrono::year(year) / static_cast<int>(month) / static_cast<int>(day));
}
constexpr DWORD Ticks(unsigned hour, unsigned minute, unsigned second, unsigned hundredth = 0)
{
    return ((hour * 60 + minute) * 60 + second) * 100 + hundredth;
}

TEST(TIMEDATEtoUTC, AgreesWithTheCalendarOnEveryDayOfFourCenturies)
{
    for (auto day = Day(1800, 1, 1); day < Day(2200, 1, 1); day += std::chrono::days(1)) {
        const TIMEDATE time{{Ticks(10, 15, 30), JulianDay(day)}};
        double out = kUntouched;
        ASSERT_TRUE(TIMEDATEtoUTC(&time, out));
        ASSERT_EQ(out, AbsoluteDay(day) + (10 * 60 + 15) * 60 + 30) << "Julian day " << JulianDay(day);
    }
}

TEST(TIMEDATEtoUTC, AgreesWithTheClockAtEveryKindOfMoment)
{
    std::mt19937 random(20010101);
    for (int i = 0; i < 20000; ++i) {
        const DWORD ticks = static_cast<DWORD>(random() % Ticks(24, 0, 0));
        const auto day = Day(1990, 1, 1) + std::chrono::days(random() % 20000);
        const TIMEDATE time{{ticks, JulianDay(day)}};
        double out = kUntouched;
        ASSERT_TRUE(TIMEDATEtoUTC(&time, out));
        ASSERT_EQ(out, AbsoluteDay(day) + ticks / 100);
    }
}

TEST(TIMEDATEtoUTC, DropsHundredths)
{
    const TIMEDATE time{{Ticks(10, 15, 30, 75), JulianDay(Day(2007, 3, 5))}};
    double out = kUntouched;
    EXPECT_TRUE(TIMEDATEtoUTC(&time, out));
    EXPECT_EQ(out, AbsoluteDay(Day(2007, 3, 5)) + 36930);
}

TEST(TIMEDATEtoUTC, ADateWithoutATimeOfDayIsItsMidnight)
{
    const TIMEDATE time{{kNone, JulianDay(Day(2007, 3, 5))}};
    double out = kUntouched;
    EXPECT_TRUE(TIMEDATEtoUTC(&time, out));
    EXPECT_EQ(out, AbsoluteDay(Day(2007, 3, 5)));
}

TEST(TIMEDATEtoUTC, WithoutADateThereIsNoTime)
{
    double out = kUntouched;
    const TIMEDATE timeOnly{{Ticks(10, 15, 30), kNone}};
    EXPECT_FALSE(TIMEDATEtoUTC(&timeOnly, out));
    TIMEDATE wildcard;
    TimeConstant(2, &wildcard);
    EXPECT_FALSE(TIMEDATEtoUTC(&wildcard, out));
    EXPECT_EQ(out, kUntouched);
}

TEST(TIMEDATEtoUTC, ConvertsTheLastDayOfAll)
{
    const TIMEDATE time{{0, 0x00FFFFFE}};
    double out = kUntouched;
    EXPECT_TRUE(TIMEDATEtoUTC(&time, out));
    EXPECT_EQ(out, AbsoluteDay(std::chrono::sys_days(std::chrono::days(0x00FFFFFE - kJulianDayOf1970))));
}

TEST(TIMEDATEtoUTC, AYearBeforeTheFirstKeepsItsLow16Bits)
{
    // Day 0 lies in the year -4713, whose low 16 bits are 60823; that is a hundred cycles after 20823.
    const std::chrono::year_month_day first(std::chrono::sys_days(std::chrono::days(-kJulianDayOf1970)));
    ASSERT_EQ(static_cast<int>(first.year()), -4713);
    const auto wrapped = Day(20823, static_cast<unsigned>(first.month()), static_cast<unsigned>(first.day())) +
                         std::chrono::days(100 * 146097);
    const TIMEDATE time{{0, 0}};
    double out = kUntouched;
    EXPECT_TRUE(TIMEDATEtoUTC(&time, out));
    EXPECT_EQ(out, AbsoluteDay(wrapped));
}

std::optional<TIMEDATE> revisionTime;

// While it lives, every note says that it was last revised at this time.  A note of the store itself has the
// same time there and as its modification time.
class RevisionTime {
public:
    explicit RevisionTime(const TIMEDATE& time) { revisionTime = time; }
    ~RevisionTime() { revisionTime.reset(); }
    RevisionTime(const RevisionTime&) = delete;
    RevisionTime& operator=(const RevisionTime&) = delete;
};

using NoteTimes = NoteFixture;

TEST_F(NoteTimes, ReadsWhenANoteWasChangedAndCreated)
{
    pavex::Note note;
    note.modified = {{Ticks(9, 30, 0, 50), JulianDay(Day(2007, 3, 2))}};
    note.created = {{Ticks(8, 0, 0), JulianDay(Day(2007, 3, 1))}};
    const NOTEHANDLE handle = Open(note);
    double modified = kUntouched;
    double created = kUntouched;
    EXPECT_TRUE(GetModifiedTime(handle, modified));
    EXPECT_TRUE(GetCreationTime(handle, created));
    EXPECT_EQ(modified, AbsoluteDay(Day(2007, 3, 2)) + 9.5 * 3600);
    EXPECT_EQ(created, AbsoluteDay(Day(2007, 3, 1)) + 8 * 3600);
}

TEST_F(NoteTimes, TheTimeOfTheLastRevisionComesFirst)
{
    pavex::Note note;
    note.modified = {{Ticks(9, 30, 0), JulianDay(Day(2007, 3, 2))}};
    const NOTEHANDLE handle = Open(note);
    const RevisionTime revised(TIMEDATE{{Ticks(1, 0, 0), JulianDay(Day(2006, 1, 1))}});
    double modified = kUntouched;
    EXPECT_TRUE(GetModifiedTime(handle, modified));
    EXPECT_EQ(modified, AbsoluteDay(Day(2006, 1, 1)) + 3600);
}

TEST_F(NoteTimes, FallsBackOnTheStoresOwnModificationTime)
{
    pavex::Note note;
    note.modified = {{Ticks(9, 30, 0), JulianDay(Day(2007, 3, 2))}};
    const NOTEHANDLE handle = Open(note);
    const RevisionTime none(TIMEDATE{{Ticks(1, 0, 0), kNone}});
    double modified = kUntouched;
    EXPECT_TRUE(GetModifiedTime(handle, modified));
    EXPECT_EQ(modified, AbsoluteDay(Day(2007, 3, 2)) + 9.5 * 3600);
}

TEST_F(NoteTimes, ANoteThatIsNotOpenHasNoTimes)
{
    double out = kUntouched;
    EXPECT_FALSE(GetModifiedTime(0, out));
    EXPECT_FALSE(GetCreationTime(0, out));
    EXPECT_EQ(out, kUntouched);
}

}  // namespace

// The names are the linker's.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void __real_VLTNoteGetInfo(NOTEHANDLE, WORD, void*);
void __wrap_VLTNoteGetInfo(NOTEHANDLE, WORD, void*);

void __wrap_VLTNoteGetInfo(NOTEHANDLE note, WORD selector, void* value)
{
    __real_VLTNoteGetInfo(note, selector, value);
    if (selector == kNoteInfoOriginatorId && revisionTime)
        static_cast<ORIGINATORID*>(value)->SequenceTime = *revisionTime;
}
}
// NOLINTEND(bugprone-reserved-identifier)
