// tests/settings/progress_test.cpp: the records of the sixteen slots, through the ini file and back.
#include "settings/progress.h"

#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>

#include "client/store/database.h"
#include "client/store/timedate.h"
#include "tests/settings/client_home.h"
#include "tests/support/fault_plan.h"

namespace {

TIMEDATE Time(const char* iso)
{
    return *pavex::TimeFromIso(iso);
}

TIMEDATE MinimumTime()
{
    TIMEDATE time;
    TimeConstant(0, &time);
    return time;
}

std::string Iso(const TIMEDATE& time)
{
    return IsTimeDateClear(&time) ? "clear" : pavex::IsoFromTime(time);
}

// A slot as the accessors tell it.
struct Record {
    std::string path;
    bool since;
    std::string sinceTime;
    bool recovery;
    std::string until;
    unsigned int note;
    bool progress;
    unsigned int processed;
    unsigned int total;
    bool operator==(const Record&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Record& record)
{
    return out << record.path << " since " << record.since << " " << record.sinceTime << " recovery " << record.recovery
               << " " << record.until << " " << record.note << " progress " << record.progress << " "
               << record.processed << "/" << record.total;
}

Record Read(int slot)
{
    char path[kMaxDbPathBytes + 1] = "unset";
    TIMEDATE since = Time("1999-09-09");
    TIMEDATE until = MinimumTime();
    Record record{};
    GetDbPath(slot, path, kMaxDbPathBytes);
    record.path = path;
    record.since = GetDbTimestamp(slot, &since);
    record.sinceTime = Iso(since);
    record.recovery = GetDbRecovery(slot, &until, &record.note);
    record.until = Iso(until);
    record.progress = GetDbRecoveryProgress(slot, &record.processed, &record.total);
    return record;
}

Record NothingIndexed(const std::string& path)
{
    return {path, false, "clear", false, "clear", 0, false, 0, 0};
}

void MakeDatabase(const std::string& path)
{
    std::unique_ptr<pavex::Database> database;
    ASSERT_EQ(pavex::Database::Create(path, "Bookmarks", &database), kStatusOk);
}

using Progress = ClientHome;

TEST_F(Progress, IsEmptyWithoutAnIniFile)
{
    for (int slot = 0; slot < kProgressSlots; ++slot) {
        EXPECT_EQ(Read(slot), NothingIndexed("")) << slot;
        EXPECT_FALSE(GetDbPath(slot, nullptr, 0));
    }
}

TEST_F(Progress, NumbersTheVariablesFromTheSecondSlotOn)
{
    const TIMEDATE since = Time("2007-03-05T14:00:00Z");
    for (const int slot : {0, 1, 10, 15}) {
        SetDbPath(slot, ("db" + std::to_string(slot)).c_str());
        SetDbTimestamp(slot, &since, nullptr, 0, 0, 0);
    }
    for (const char* suffix : {"", "1", "10", "15"}) {
        EXPECT_EQ(Stored(std::string("GDSFilePath") + suffix), std::string("db") + (*suffix ? suffix : "0"));
        EXPECT_EQ(Stored(std::string("GDSTimestamp") + suffix), "2007-03-05 14:00:00.00");
    }
    EXPECT_EQ(Stored("GDSFilePath0"), std::nullopt);
    EXPECT_EQ(Stored("GDSTimestamp0"), std::nullopt);
}

TEST_F(Progress, OfACompletePassIsItsEndTime)
{
    const TIMEDATE since = Time("2007-03-05T14:00:00.25Z");
    SetDbPath(3, "three.vlt");
    SetDbTimestamp(3, &since, nullptr, 9, 9, 9);
    EXPECT_EQ(Stored("GDSTimestamp3"), "2007-03-05 14:00:00.25");
    const Record expected{"three.vlt", true, "2007-03-05T14:00:00.25Z", false, "clear", 0, false, 0, 0};
    EXPECT_EQ(Read(3), expected);
    ForgetSettings();
    EXPECT_EQ(Read(3), expected);
}

TEST_F(Progress, OfAnInterruptedPassComesBackAfterARestart)
{
    const TIMEDATE since = Time("2007-03-05T14:00:00Z");
    const TIMEDATE until = Time("2007-03-06T09:30:00.5Z");
    SetDbPath(14, "last.vlt");
    SetDbTimestamp(14, &since, &until, 0x80000012, 30, 100);
    EXPECT_EQ(Stored("GDSTimestamp14"), "2007-03-05 14:00:00.00|2007-03-06 09:30:00.50|-2147483630|30|100");
    const Record expected{"last.vlt", true, "2007-03-05T14:00:00Z", true, Iso(until), 0x80000012, true, 30, 100};
    EXPECT_EQ(Read(14), expected);
    ForgetSettings();
    EXPECT_EQ(Read(14), expected);
}

TEST_F(Progress, WithoutATimeIsAnEmptyRecord)
{
    const TIMEDATE since = Time("2007-03-05T14:00:00Z");
    SetDbPath(3, "three.vlt");
    SetDbTimestamp(3, &since, &since, 1, 2, 3);
    SetDbTimestamp(3, nullptr, nullptr, 0, 0, 0);
    EXPECT_EQ(Stored("GDSTimestamp3"), "");
    EXPECT_EQ(Read(3), NothingIndexed("three.vlt"));
    ForgetSettings();
    EXPECT_EQ(Read(3), NothingIndexed("three.vlt"));
}

TEST_F(Progress, FromTheMinimumTimeIsStoredAsZero)
{
    const TIMEDATE since = MinimumTime();
    const TIMEDATE until = Time("2007-03-06T09:30:00Z");
    SetDbPath(0, "mail.vlt");
    SetDbTimestamp(0, &since, &until, 1234, 30, 100);
    EXPECT_EQ(Stored("GDSTimestamp"), "0|2007-03-06 09:30:00.00|1234|30|100");
    EXPECT_TRUE(Read(0).since);
    ForgetSettings();
    EXPECT_EQ(Read(0), (Record{"mail.vlt", false, "clear", true, Iso(until), 1234, true, 30, 100}));
    SetDbTimestamp(0, &since, nullptr, 0, 0, 0);
    EXPECT_EQ(Stored("GDSTimestamp"), "0");
}

TEST_F(Progress, WithATimeThatHasNoTextIsForgotten)
{
    const TIMEDATE since = Time("2007-03-05T14:00:00Z");
    TIMEDATE wildcard;
    TimeConstant(2, &wildcard);
    SetDbPath(0, "mail.vlt");
    SetDbTimestamp(0, &since, &wildcard, 1, 2, 3);
    EXPECT_EQ(Stored("GDSTimestamp"), "2007-03-05 14:00:00.00");
    EXPECT_FALSE(Read(0).recovery);
    SetDbTimestamp(0, &wildcard, &since, 1, 2, 3);
    EXPECT_EQ(Stored("GDSTimestamp"), "");
    EXPECT_EQ(Read(0), NothingIndexed("mail.vlt"));
}

TEST_F(Progress, IsForgottenWhenTheStoreCannotWriteTimes)
{
    const TIMEDATE since = Time("2007-03-05T14:00:00Z");
    SetDbPath(0, "mail.vlt");
    SetDbTimestamp(0, &since, nullptr, 0, 0, 0);
    {
        const NamedFault fault("ConvertTIMEDATEToText");
        SetDbTimestamp(0, &since, &since, 1, 2, 3);
    }
    EXPECT_EQ(Stored("GDSTimestamp"), "");
    EXPECT_EQ(Read(0), NothingIndexed("mail.vlt"));
}

TEST_F(Progress, TakesWhatItCanFromARecord)
{
    const char* const since = "2007-03-05T14:00:00Z";
    const char* const until = "2007-03-06T09:30:00Z";
    const std::string times = "2007-03-05 14:00:00.00|2007-03-06 09:30:00.00";
    const std::pair<std::string, Record> cases[] = {
        {"", NothingIndexed("db")},
        {"0", NothingIndexed("db")},
        {"|", NothingIndexed("db")},
        {"0|2007-03-06 09:30:00.00|1234|30|100", {"db", false, "clear", true, until, 1234, true, 30, 100}},
        {"junk|2007-03-06 09:30:00.00|1234|30|100", {"db", false, "clear", true, until, 1234, true, 30, 100}},
        {times, {"db", true, since, true, until, 0, false, 0, 0}},
        {times + "|1234", {"db", true, since, true, until, 1234, false, 0, 0}},
        {times + "|1234|30", {"db", true, since, true, until, 1234, false, 0, 0}},
        {times + "|1234|30|100", {"db", true, since, true, until, 1234, true, 30, 100}},
        {times + "|1234|0|100", {"db", true, since, true, until, 1234, false, 0, 0}},
        {times + "|1234|30|0", {"db", true, since, true, until, 1234, false, 0, 0}},
        {times + "|x|30|100", {"db", true, since, true, until, 0, true, 30, 100}},
        {"||2007-03-05 14:00:00.00||2007-03-06 09:30:00.00|||1234|30|100|more",
         {"db", true, since, true, until, 1234, true, 30, 100}},
        {"2007-03-05 14:00:00.00|junk|1234|30|100", {"db", true, since, false, "clear", 0, false, 0, 0}},
    };
    for (const auto& [record, expected] : cases) {
        Ini("GDSFilePath7=db\nGDSTimestamp7=" + record + "\n");
        ForgetSettings();
        EXPECT_EQ(Read(7), expected) << record;
    }
}

TEST_F(Progress, KeepsItsNumbersAtZeroUnlessBothArePresent)
{
    const std::string times = "2007-03-05 14:00:00.00|2007-03-06 09:30:00.00";
    for (const char* numbers : {"|1234", "|1234|30"}) {
        Ini("GDSFilePath7=db\nGDSTimestamp7=" + times + numbers + "\n");
        ForgetSettings();
        EXPECT_EQ(Read(7).note, 1234U) << numbers;
        EXPECT_EQ(dwMailRecoveryNote[7][1], 0U) << numbers;
        EXPECT_EQ(dwMailRecoveryNote[7][2], 0U) << numbers;
    }
}

TEST_F(Progress, IsNotReadForASlotWithoutAPath)
{
    Ini("GDSTimestamp2=2007-03-05 14:00:00.00\n");
    EXPECT_EQ(Read(2), NothingIndexed(""));
}

TEST_F(Progress, ReadsTheExampleOfTheFormatsPage)
{
    const std::string page = ReadWholeFile(TORVIK_SOURCE_DIR "/docs/formats/progress.md");
    const size_t begin = page.find("```ini\n") + 7;
    const std::string example = page.substr(begin, page.find("```", begin) - begin);
    WriteWholeFile(home_ / "pavex.ini", example);
    EXPECT_EQ(Read(0), (Record{"mail.vlt", true, "2007-03-05T14:00:00Z", false, "clear", 0, false, 0, 0}));
    EXPECT_EQ(Read(3),
              (Record{"projects/notes.vlt", false, "clear", true, "2007-03-05T15:30:00.25Z", 1234, true, 30, 100}));
    const std::optional<std::string> stored = Stored("GDSTimestamp3");
    const TIMEDATE since = MinimumTime();
    const TIMEDATE until = Time("2007-03-05T15:30:00.25Z");
    SetDbTimestamp(3, &since, &until, 1234, 30, 100);
    EXPECT_EQ(Stored("GDSTimestamp3"), stored);
}

TEST_F(Progress, FindsASlotByItsExactPath)
{
    SetDbPath(0, "mail.vlt");
    SetDbPath(9, "Notes.vlt");
    SetDbPath(15, "bookmark.vlt");
    EXPECT_EQ(GetDbIndex("mail.vlt"), 0);
    EXPECT_EQ(GetDbIndex("Notes.vlt"), 9);
    EXPECT_EQ(GetDbIndex("notes.vlt"), -1);
    EXPECT_EQ(GetDbIndex("Notes.vl"), -1);
    EXPECT_EQ(GetDbIndex("bookmark.vlt"), -1);
}

TEST_F(Progress, KeepsAPathOfTwoHundredAndFiftySixBytes)
{
    SetDbPath(1, std::string(300, 'p').c_str());
    EXPECT_EQ(Read(1).path, std::string(256, 'p'));
    ForgetSettings();
    EXPECT_EQ(Read(1).path, std::string(256, 'p'));
}

TEST_F(Progress, CutsAPathBetweenCharacters)
{
    SetDbPath(1, (std::string(255, 'p') + "\xC3\xA9").c_str());
    EXPECT_EQ(Read(1).path, std::string(255, 'p'));
    SetDbPath(1, "ab\xC3\xA9");
    char path[8] = "-------";
    EXPECT_TRUE(GetDbPath(1, path, 3));
    EXPECT_STREQ(path, "ab");
    EXPECT_TRUE(GetDbPath(1, path, 0));
    EXPECT_STREQ(path, "");
}

TEST_F(Progress, FreesASlot)
{
    SetDbPath(2, "two.vlt");
    EXPECT_TRUE(GetDbPath(2, nullptr, 0));
    SetDbPath(2, nullptr);
    EXPECT_FALSE(GetDbPath(2, nullptr, 0));
    EXPECT_EQ(Stored("GDSFilePath2"), "");
    char path[8] = "before";
    EXPECT_FALSE(GetDbPath(2, path, 7));
    EXPECT_STREQ(path, "");
}

TEST_F(Progress, HasNoOtherSlots)
{
    const TIMEDATE since = Time("2007-03-05T14:00:00Z");
    for (const int slot : {-1, 16, 1000}) {
        SetDbPath(slot, "x");
        SetDbTimestamp(slot, &since, &since, 1, 2, 3);
        EXPECT_EQ(Read(slot), NothingIndexed("")) << slot;
    }
    EXPECT_EQ(Stored("GDSFilePath16"), std::nullopt);
}

TEST_F(Progress, FindsTheClientsHistoryDatabase)
{
    const std::string path = home_ / "data/bookmark.vlt";
    MakeDatabase(path);
    EXPECT_EQ(Read(15).path, path);
    EXPECT_EQ(Stored("GDSFilePath15"), path);
}

TEST_F(Progress, LeavesTheHistorySlotFreeWithoutADatabase)
{
    WriteWholeFile(home_ / "data/bookmark.vlt", "no database");
    EXPECT_EQ(Read(15).path, "");
    EXPECT_EQ(Stored("GDSFilePath15"), std::nullopt);
}

TEST_F(Progress, KeepsAHistoryDatabaseThatIsStored)
{
    Ini("GDSFilePath15=elsewhere.vlt\n");
    MakeDatabase(home_ / "data/bookmark.vlt");
    EXPECT_EQ(Read(15).path, "elsewhere.vlt");
}

TEST_F(Progress, KnowsTheMinimumTime)
{
    const TIMEDATE minimum = MinimumTime();
    const TIMEDATE other = Time("2007-03-05");
    EXPECT_TRUE(IsTimeDateClear(&minimum));
    EXPECT_FALSE(IsTimeDateClear(&other));
}

}  // namespace
