// tests/client/app/slots_test.cpp: the database slots of the ini file.
#include "client/app/slots.h"

#include <gtest/gtest.h>

#include "client/store/host.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

class SlotsTest : public testing::Test {
protected:
    SlotsTest()
    {
        std::string error;
        EXPECT_TRUE(StartHost(FindPlaces(home_.Path().string()), &error)) << error;
    }

    // A line a slot: number, path, since; then where a pass was interrupted.
    std::string SlotsOf(const std::string& lines)
    {
        WriteWholeFile(home_ / "pavex.ini", "[Pavex]\n" + lines);
        std::string text;
        for (const Slot& slot : ReadSlots()) {
            text += std::to_string(slot.number) + " " + slot.path + " [" + slot.since + "]";
            if (slot.recovery)
                text += " until " + slot.recovery->until + " note " + std::to_string(slot.recovery->note) + " " +
                        std::to_string(slot.recovery->processed) + "/" + std::to_string(slot.recovery->total);
            text += "\n";
        }
        return text;
    }

    TemporaryDirectory home_;
};

TEST_F(SlotsTest, AreNoneInAFreshHome)
{
    EXPECT_EQ(SlotsOf(""), "");
}

TEST_F(SlotsTest, ComeInOrderWithTheHistoryLast)
{
    EXPECT_EQ(SlotsOf("GDSFilePath15=/h.vlt\nGDSFilePath2=/c.vlt\nGDSFilePath=/a.vlt\nGDSFilePath14=/o.vlt\n"),
              "0 /a.vlt []\n2 /c.vlt []\n14 /o.vlt []\n15 /h.vlt []\n");
}

TEST_F(SlotsTest, AreThoseThatHaveAPath)
{
    EXPECT_EQ(SlotsOf("GDSFilePath=\nGDSTimestamp=2007-03-05 14:00:00.00\nGDSFilePath16=/x.vlt\n"), "");
}

TEST_F(SlotsTest, TellHowFarEachIsIndexed)
{
    EXPECT_EQ(
        SlotsOf("GDSFilePath=/a.vlt\nGDSTimestamp=2007-03-05 14:00:00.00\nGDSFilePath1=/b.vlt\nGDSTimestamp1=0\n"),
        "0 /a.vlt [2007-03-05 14:00:00.00]\n1 /b.vlt []\n");
}

TEST_F(SlotsTest, TellWhereAPassWasInterrupted)
{
    EXPECT_EQ(SlotsOf("GDSFilePath=/a.vlt\nGDSTimestamp=0|2007-03-05 15:30:00.25|1234|30|100\n"),
              "0 /a.vlt [] until 2007-03-05 15:30:00.25 note 1234 30/100\n");
}

TEST_F(SlotsTest, TakeARecordThatIsCutShort)
{
    EXPECT_EQ(SlotsOf("GDSFilePath=/a.vlt\nGDSTimestamp=0|2007-03-05 15:30:00.25|1234\n"),
              "0 /a.vlt [] until 2007-03-05 15:30:00.25 note 1234 0/0\n");
    EXPECT_EQ(SlotsOf("GDSFilePath=/a.vlt\nGDSTimestamp=|||\n"), "0 /a.vlt []\n");
}

}  // namespace
}  // namespace pavex
