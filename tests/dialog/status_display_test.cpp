// tests/dialog/status_display_test.cpp: the three status lines, in every state.
#include "dialog/status_display.h"

#include <gmock/gmock.h>

#include "addin/lifecycle.h"
#include "client/store/charset.h"
#include "settings/progress.h"
#include "tests/dialog/dialog_fixture.h"

namespace {

std::string TimeAsText(TIMEDATE time)
{
    char text[80] = "";
    WORD length = 0;
    EXPECT_EQ(ConvertTIMEDATEToText(nullptr, nullptr, &time, text, sizeof text, &length), 0);
    return std::string(text, length);
}

// A text, or "(hidden)".
struct Lines {
    std::string selected;
    std::string overall;
    std::string activity;
    bool operator==(const Lines&) const = default;
};

void PrintTo(const Lines& lines, std::ostream* out)
{
    *out << lines.selected << " | " << lines.overall << " | " << lines.activity;
}

class StatusDisplay : public DialogFixture {
protected:
    StatusDisplay()
    {
        SetIni("GDSIndexEnabled", "1");
        paths_ = SaveDatabases(2);
    }

    // The lines with the first database selected, or none.
    Lines Shown(long selection = 0)
    {
        Lines lines;
        Inspect([&](pavex::Dialog& dialog) {
            dialog.Find(kListDatabases)->selected = selection;
            PutStatus(dialog.Window());
            const auto line = [&](int id) {
                const pavex::Control& control = *dialog.Find(id);
                return control.visible ? pavex::Utf8FromScs(control.text) : std::string("(hidden)");
            };
            lines = {line(kTextSelectedStatus), line(kTextOverallStatus), line(kTextActivityStatus)};
        });
        return lines;
    }

    std::vector<std::string> paths_;
};

TEST_F(StatusDisplay, SaysThatIndexingIsOff)
{
    SetIni("GDSIndexEnabled", "0");
    GlobalContext.upToDate = 1;
    EXPECT_EQ(Shown(), (Lines{"<193><107>", "<203><106>", "(hidden)"}));
}

TEST_F(StatusDisplay, SaysThatIndexingIsOffWhileAPassStillEnds)
{
    SetIni("GDSIndexEnabled", "0");
    GlobalContext.inProgress = 1;
    EXPECT_EQ(Shown(), (Lines{"<193><156>", "<203><106>", "(hidden)"}));
}

TEST_F(StatusDisplay, HidesTheSelectedLineWithoutASelection)
{
    EXPECT_EQ(Shown(-1), (Lines{"(hidden)", "<203><107>", "(hidden)"}));
}

TEST_F(StatusDisplay, SaysThatASelectedDatabaseIsNotSaved)
{
    Inspect([](pavex::Dialog& dialog) {
        const long index = UIXListboxAddItem(dialog.Window(), kListDatabases, "/new.vlt");
        dialog.Find(kListDatabases)->selected = index;
        PutStatus(dialog.Window());
        EXPECT_EQ(dialog.Find(kTextSelectedStatus)->text, "<193><157>");
        EXPECT_TRUE(dialog.Find(kTextSelectedStatus)->visible);
    });
}

TEST_F(StatusDisplay, SaysThatADatabaseWasNeverIndexed)
{
    EXPECT_EQ(Shown(), (Lines{"<193><107>", "<203><107>", "(hidden)"}));
}

TEST_F(StatusDisplay, ShowsTheTimeUpToWhichADatabaseIsIndexed)
{
    const TIMEDATE since = SomeTime(9);
    SetDbTimestamp(0, &since, nullptr, 0, 0, 0);
    GlobalContext.upToDate = 1;
    const std::string time = "<108>" + TimeAsText(since);
    EXPECT_EQ(Shown(), (Lines{"<193>" + time, "<203>" + time, "(hidden)"}));
}

TEST_F(StatusDisplay, ShowsNoOverallTimeUnlessTheLastPassCameToItsEnd)
{
    const TIMEDATE since = SomeTime(9);
    SetDbTimestamp(0, &since, nullptr, 0, 0, 0);
    EXPECT_EQ(Shown().overall, "<203><107>");
    GlobalContext.upToDate = 1;
    GlobalContext.database = 1;  // never indexed
    EXPECT_EQ(Shown().overall, "<203><107>");
    GlobalContext.database = 4711;  // no slot
    EXPECT_EQ(Shown().overall, "<203><107>");
}

TEST_F(StatusDisplay, ShowsNoTimeForADatabaseThatStartsFromTheBeginning)
{
    TIMEDATE least;
    TimeConstant(0, &least);
    SetDbTimestamp(0, &least, nullptr, 0, 0, 0);
    EXPECT_EQ(Shown().selected, "<193><107>");
}

TEST_F(StatusDisplay, ShowsTheStoredProgressOfAnInterruptedPass)
{
    const TIMEDATE since = SomeTime(9);
    const TIMEDATE until = SomeTime(10);
    SetDbTimestamp(0, &since, &until, 1234, 30, 120);
    EXPECT_EQ(Shown().selected, "<193>110:30/120/25");
}

TEST_F(StatusDisplay, SaysThatAPassWasInterruptedWhenItsProgressIsNotKnown)
{
    const TIMEDATE since = SomeTime(9);
    const TIMEDATE until = SomeTime(10);
    SetDbTimestamp(0, &since, &until, 1234, 0, 120);
    EXPECT_EQ(Shown().selected, "<193><186>");
}

TEST_F(StatusDisplay, ShowsAnOrdinaryPassOnTheOverallLine)
{
    GlobalContext.inProgress = 1;
    GlobalContext.processed = 30;
    GlobalContext.total = 120;
    EXPECT_EQ(Shown(), (Lines{"<193><156>", "<203>109:30/120/25", "<202>" + paths_[0]}));
}

TEST_F(StatusDisplay, ShowsAPassOnAnotherDatabaseThanTheSelectedOne)
{
    GlobalContext.inProgress = 1;
    GlobalContext.database = 1;
    EXPECT_EQ(Shown(), (Lines{"<193><107>", "<203>109:0/0/0", "<202>" + paths_[1]}));
}

TEST_F(StatusDisplay, ShowsAResumedPassThatIsNotUnderWayWithTheOtherFormat)
{
    GlobalContext.resumed = 1;
    GlobalContext.processed = 30;
    EXPECT_EQ(Shown(), (Lines{"<193><156>", "<203>110:30/30/100", "<202>" + paths_[0]}));
}

TEST_F(StatusDisplay, ShowsAResumedPassUnderWayAsAnOrdinaryOne)
{
    GlobalContext.resumed = 1;
    GlobalContext.inProgress = 1;
    GlobalContext.total = 10;
    EXPECT_EQ(Shown().overall, "<203>109:0/10/0");
}

TEST_F(StatusDisplay, ShowsProgressWhileThePassFlagIsSet)
{
    GlobalContext.passFlag = 1;
    GlobalContext.inProgress = 1;
    GlobalContext.processed = 1;
    GlobalContext.total = 4;
    EXPECT_EQ(Shown(), (Lines{"<193><156>", "<203>110:1/4/25", "<202>" + paths_[0]}));
}

TEST_F(StatusDisplay, TakesThePassFlagAloneForAPassOnTheSelectedDatabase)
{
    GlobalContext.passFlag = 1;
    GlobalContext.processed = 1;
    GlobalContext.total = 4;
    EXPECT_EQ(Shown(), (Lines{"<193><156>", "<203>110:1/4/25", "<202>" + paths_[0]}));
}

TEST_F(StatusDisplay, ShowsEachLineAgainThatItHid)
{
    Inspect([this](pavex::Dialog& dialog) {
        dialog.Find(kListDatabases)->selected = -1;
        GlobalContext.historyActive = 1;
        PutStatus(dialog.Window());
        EXPECT_FALSE(dialog.Find(kTextSelectedStatus)->visible);
        EXPECT_FALSE(dialog.Find(kTextOverallStatus)->visible);
        dialog.Find(kListDatabases)->selected = 1;
        GlobalContext.historyActive = 0;
        PutStatus(dialog.Window());
        EXPECT_FALSE(dialog.Find(kTextActivityStatus)->visible);
        EXPECT_TRUE(dialog.Find(kTextSelectedStatus)->visible);
        EXPECT_TRUE(dialog.Find(kTextOverallStatus)->visible);
        GlobalContext.inProgress = 1;
        PutStatus(dialog.Window());
        EXPECT_TRUE(dialog.Find(kTextActivityStatus)->visible);
        EXPECT_EQ(dialog.Find(kTextActivityStatus)->text, "<202>" + paths_[0]);
    });
}

TEST_F(StatusDisplay, TestsOnlyTheLowByteOfThePassFlagForTheSelectedDatabase)
{
    GlobalContext.passFlag = 0x100;
    EXPECT_EQ(Shown().selected, "<193><107>");
}

TEST_F(StatusDisplay, HidesTheOverallLineDuringAHistoryPass)
{
    GlobalContext.historyActive = 1;
    EXPECT_EQ(Shown(), (Lines{"<193><107>", "(hidden)", "<202><185>"}));
}

TEST_F(StatusDisplay, ShowsNumbersOnTheSelectedLineWhileAHistoryPassHidesTheOverallOne)
{
    GlobalContext.historyActive = 1;
    GlobalContext.inProgress = 1;
    GlobalContext.processed = 3;
    GlobalContext.total = 4;
    EXPECT_EQ(Shown(), (Lines{"<193>110:3/4/75", "(hidden)", "<202><185>"}));
}

TEST_F(StatusDisplay, LeavesTheActivityTextForASlotWithoutADatabase)
{
    GlobalContext.inProgress = 1;
    GlobalContext.database = 9;
    EXPECT_EQ(Shown().activity, "");
    GlobalContext.database = 15;
    EXPECT_EQ(Shown().activity, "");
}

TEST_F(StatusDisplay, TranslatesPathsThereAndBack)
{
    const std::string path = "/\xC3\xA4\xF0\x9F\x98\x80.vlt";
    SetDbPath(0, pavex::ScsFromUtf8(path).c_str());
    GlobalContext.inProgress = 1;
    EXPECT_EQ(Shown().activity, "<202>" + path);
}

}  // namespace
