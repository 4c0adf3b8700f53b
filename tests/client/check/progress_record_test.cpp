// tests/client/check/progress_record_test.cpp: slots and what is wrong with them.
#include "client/check/progress_record.h"

#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using testing::HasSubstr;

class ProgressRecordTest : public StoreTest {
protected:
    static ProgressRecord Read(const std::string& text)
    {
        EXPECT_TRUE(SetVariable("GDSFilePath3", "mail.vlt"));
        EXPECT_TRUE(SetVariable("GDSTimestamp3", text));
        const std::vector<ProgressRecord> records = ReadProgressRecords();
        EXPECT_EQ(records.size(), 1U);
        return records.empty() ? ProgressRecord{} : records[0];
    }
    static uint64_t Stamp(const char* iso) { return HundredthsOf(*TimeFromIso(iso)); }
};

TEST_F(ProgressRecordTest, TellsUpToWhichChangeADatabaseIsIndexed)
{
    const ProgressRecord record = Read("2007-03-05 14:00:00.25");
    EXPECT_EQ(record.slot, 3);
    EXPECT_EQ(record.path, "mail.vlt");
    EXPECT_EQ(record.variable, "GDSTimestamp3");
    EXPECT_EQ(record.damage, "");
    EXPECT_EQ(record.since, Stamp("2007-03-05T14:00:00.25Z"));
    EXPECT_FALSE(record.IsHistory());
    EXPECT_FALSE(record.IsWaiting(1, record.since));
    EXPECT_TRUE(record.IsWaiting(1, record.since + 1));
}

TEST_F(ProgressRecordTest, LeavesAllWaitingWithoutATime)
{
    for (const char* text : {"", "0"}) {
        EXPECT_EQ(Read(text).damage, "");
        EXPECT_TRUE(Read(text).IsWaiting(1, 1));
    }
}

TEST_F(ProgressRecordTest, LeavesWaitingWhatAnInterruptedPassHasNotReached)
{
    const ProgressRecord record = Read("0|2007-03-05 15:30:00.25|1234|30|100");
    EXPECT_EQ(record.damage, "");
    const uint64_t until = Stamp("2007-03-05T15:30:00.25Z");
    EXPECT_FALSE(record.IsWaiting(1233, until));
    EXPECT_TRUE(record.IsWaiting(1234, until));
    EXPECT_TRUE(record.IsWaiting(1233, until + 1)) << "it changed since the interruption";
}

TEST_F(ProgressRecordTest, NamesWhatCannotBeRead)
{
    struct Row {
        const char* text;
        const char* damage;
    };
    constexpr Row kRows[] = {
        {"yesterday", "\"yesterday\" is no time"},
        {"0|soon|1|2|3", "\"soon\" is no time"},
        {"0|2007-03-05 15:30:00.25", "2 parts"},
        {"0|2007-03-05 15:30:00.25|1|2|3|4", "6 parts"},
        {"0|2007-03-05 15:30:00.25|one|2|3", "not all numbers"},
        {"0|2007-03-05 15:30:00.25|1|2|3x", "not all numbers"},
    };
    for (const Row& row : kRows)
        EXPECT_THAT(Read(row.text).damage, HasSubstr(row.damage)) << row.text;
    EXPECT_THAT(Read("2007-03-05 14:00:00.25" + std::string(300, ' ')).damage, HasSubstr("256"));
    EXPECT_TRUE(Read("yesterday").IsWaiting(1, 1)) << "a pass begins at the beginning";
}

TEST_F(ProgressRecordTest, GivesEverySlotWithAPathOrARecord)
{
    EXPECT_TRUE(SetVariable("GDSFilePath", "a.vlt"));
    EXPECT_TRUE(SetVariable("GDSTimestamp7", "0"));
    EXPECT_TRUE(SetVariable("GDSFilePath8", ""));
    EXPECT_TRUE(SetVariable("GDSFilePath15", "bookmark.vlt"));
    const std::vector<ProgressRecord> records = ReadProgressRecords();
    ASSERT_EQ(records.size(), 3U);
    EXPECT_EQ(records[0].slot, 0);
    EXPECT_EQ(records[0].variable, "GDSTimestamp");
    EXPECT_EQ(records[1].slot, 7);
    EXPECT_EQ(records[1].path, "");
    EXPECT_TRUE(records[2].IsHistory());
}

}  // namespace
}  // namespace pavex
