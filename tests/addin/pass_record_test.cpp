// tests/addin/pass_record_test.cpp: what a pass stores to be resumed, hands to its notes and writes to the log.
#include <algorithm>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "client/store/richtext.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/addin/call_record.h"
#include "tests/support/fault_plan.h"

namespace {

std::string TextOf(const TIMEDATE& time)
{
    char text[80] = "";
    WORD length = 0;
    EXPECT_EQ(ConvertTIMEDATEToText(nullptr, nullptr, &time, text, sizeof text, &length), 0);
    return {text, length};
}

class PassRecord : public AddInTest {
protected:
    PassRecord() : mail_(PathOf("mail.vlt"), "Mail")
    {
        Configure(0, mail_.Path());
        SetVariable("GoogleWaitTime", "0");
    }

    // Stops the pass at the entry with this number.
    void InterruptAt(uint32_t entry)
    {
        calls_.beforeNote = [entry](const INDEXCONTEXT&) {
            if (GlobalContext.processed == entry - 1)
                bShutDownThread = 1;
        };
        IndexFile(0, false);
        calls_.beforeNote = nullptr;
        bShutDownThread = 0;
    }
    TIMEDATE LastChange()
    {
        TIMEDATE last = {};
        DBHANDLE db = 0;
        EXPECT_EQ(VLTDbOpen(mail_.Path().c_str(), &db), 0);
        EXPECT_EQ(VLTDbModifiedTime(db, &last, nullptr), 0);
        EXPECT_EQ(VLTDbClose(db), 0);
        return last;
    }
    TIMEDATE Until() const
    {
        TIMEDATE until = {};
        unsigned note = 0;
        EXPECT_TRUE(GetDbRecovery(0, &until, &note));
        return until;
    }
    TIMEDATE Since() const
    {
        TIMEDATE since = {};
        GetDbTimestamp(0, &since);
        return since;
    }
    // The only entry with this id.
    const pavex::LogEntry& Entry(unsigned id) const
    {
        EXPECT_EQ(Logged(id), 1) << id;
        return *std::ranges::find_if(log_, [id](const pavex::LogEntry& entry) { return entry.id == id; });
    }
    void AddBookmark(Mailbox& history, const std::string& title)
    {
        pavex::RichTextBuilder link;
        link.AddLink({{{1, 2}}, {}, {{{3, 4}}, {{5, 6}}}, 0}, title);
        pavex::Note note;
        note.items = {pavex::TextItem("Form", "HistoryListEntry"), pavex::TextItem("Title", title),
                      pavex::RichTextItem("URL", link.Records())};
        ASSERT_EQ(history.Db().Put(&note), 0);
    }

    Mailbox mail_;
    CallRecord calls_;
};

TEST_F(PassRecord, OfAnInterruptedPassHoldsTheEndTimeOfItsTable)
{
    mail_.AddMany(99, "note");
    clock_.Advance(5000);
    mail_.Add("last");
    const std::string end = TextOf(LastChange());
    InterruptAt(30);
    EXPECT_EQ(Variable("GDSTimestamp"), "0|" + end + "|30|30|100");
    EXPECT_EQ(TextOf(Until()), end);
}

TEST_F(PassRecord, KeepsThatEndTimeThroughEveryFurtherInterruption)
{
    mail_.AddMany(100, "note");
    const std::string end = TextOf(LastChange());
    InterruptAt(30);
    clock_.Advance(5000);
    mail_.Change(2, "changed meanwhile");
    ASSERT_NE(TextOf(LastChange()), end);
    InterruptAt(60);
    EXPECT_EQ(Variable("GDSTimestamp"), "0|" + end + "|60|60|100");
    IndexFile(0, false);
    EXPECT_EQ(Variable("GDSTimestamp"), end);
}

TEST_F(PassRecord, OfAPassAfterACompleteOneKeepsItsStart)
{
    mail_.AddMany(3, "note");
    IndexFile(0, false);
    const std::string start = TextOf(Since());
    clock_.Advance(5000);
    mail_.AddMany(10, "more");
    InterruptAt(4);
    EXPECT_EQ(Variable("GDSTimestamp"), start + "|" + TextOf(LastChange()) + "|7|4|10");
}

TEST_F(PassRecord, OfACompletePassIsTheEndTimeOfItsTable)
{
    mail_.AddMany(3, "note");
    IndexFile(0, false);
    EXPECT_EQ(Variable("GDSTimestamp"), TextOf(LastChange()));
}

TEST_F(PassRecord, OfAnInterruptedHistoryPassHoldsNoNumbers)
{
    Mailbox history(PathOf("bookmark.vlt"), "History");
    for (const char* title : {"one", "two", "three"})
        AddBookmark(history, title);
    Configure(15, history.Path());
    GlobalContext.processed = 7;
    GlobalContext.total = 9;
    calls_.beforeNote = [](const INDEXCONTEXT&) { SetIndexingHistory(false); };
    IndexFile(15, true);
    const std::string record = Variable("GDSTimestamp15");
    EXPECT_EQ(record.substr(record.size() - 6), "|2|0|0");
    EXPECT_EQ(GlobalContext.resumed, 0);
}

TEST_F(PassRecord, AHistoryPassIndexesItsEntriesWithoutTellingTheirNumber)
{
    Mailbox history(PathOf("bookmark.vlt"), "History");
    AddBookmark(history, "a page");
    Configure(15, history.Path());
    std::vector<uint8_t> active;
    std::vector<bool> modes;
    calls_.beforeNote = [&](const INDEXCONTEXT& context) {
        active.push_back(GlobalContext.historyActive);
        modes.push_back(context.history);
    };
    IndexFile(15, true);
    EXPECT_EQ(active, std::vector<uint8_t>{1});
    EXPECT_EQ(modes, std::vector<bool>{true});
    ASSERT_EQ(Metafiles().size(), 1U);
    EXPECT_TRUE(Metafiles().begin()->first.ends_with(".vPavexHistory"));
    EXPECT_EQ(GlobalContext.indexed, 0U);
    EXPECT_TRUE(log_.empty());
}

TEST_F(PassRecord, APassFromNoStoredTimeIsAFullOneAndItsResumptionToo)
{
    mail_.AddMany(10, "note");
    std::vector<bool> full;
    const auto look = [&full](const INDEXCONTEXT& context) { full.push_back(context.fullPass); };
    InterruptAt(4);
    calls_.beforeNote = look;
    IndexFile(0, false);
    EXPECT_EQ(full, std::vector<bool>(7, true));
    full.clear();
    clock_.Advance(5000);
    mail_.Add("new");
    IndexFile(0, false);
    EXPECT_EQ(full, std::vector<bool>{false});
}

TEST_F(PassRecord, APassOverNoTimeAtAllIsAFullOne)
{
    mail_.Add("note");
    DBHANDLE db = 0;
    ASSERT_EQ(VLTDbOpen(mail_.Path().c_str(), &db), 0);
    std::vector<bool> full;
    calls_.beforeNote = [&full](const INDEXCONTEXT& context) { full.push_back(context.fullPass); };
    TIMEDATE until = LastChange();
    EXPECT_EQ(IndexMailDBSinceUntil(0, db, nullptr, &until, 0, false), 0);
    EXPECT_EQ(full, std::vector<bool>{true});
    EXPECT_EQ(VLTDbClose(db), 0);
}

TEST_F(PassRecord, APassHandsOutTheUsersUnreadNotes)
{
    SetVariable("UserName", "Ann Lee");
    mail_.AddMany(3, "note");
    for (uint32_t id = 1; id <= 3; ++id)
        ASSERT_EQ(mail_.Db().SetUnread("Ann Lee", id, id == 2), 0);
    std::vector<DWORD> unread;
    calls_.beforeNote = [&unread](const INDEXCONTEXT& context) {
        ASSERT_NE(context.unreadTable, 0U);
        unread.push_back(IDEntries(context.unreadTable));
    };
    const int handles = pavex::OpenHandles();
    IndexFile(0, false);
    EXPECT_EQ(unread, (std::vector<DWORD>{1, 1, 1}));
    EXPECT_EQ(pavex::OpenHandles(), handles);
}

TEST_F(PassRecord, WithoutAUserOrATableThereAreNoUnreadNotes)
{
    std::vector<IDTABLE> tables;
    calls_.beforeNote = [&tables](const INDEXCONTEXT& context) { tables.push_back(context.unreadTable); };
    for (const char* call : {"SECKFMUserInfo", "VLTDbGetUnreadNoteTable"}) {
        mail_.Add(call);
        const NamedFault fault(call);
        IndexFile(0, false);
    }
    EXPECT_EQ(tables, (std::vector<IDTABLE>{0, 0}));
}

TEST_F(PassRecord, AHistoryPassHasNoUnreadNotes)
{
    Mailbox history(PathOf("bookmark.vlt"), "History");
    AddBookmark(history, "a page");
    Configure(15, history.Path());
    std::vector<IDTABLE> tables;
    calls_.beforeNote = [&tables](const INDEXCONTEXT& context) { tables.push_back(context.unreadTable); };
    IndexFile(15, true);
    EXPECT_EQ(tables, std::vector<IDTABLE>{0});
}

TEST_F(PassRecord, AnEndTimeOnTheStrokeOfMidnightIsReplacedByTheTimeNow)
{
    // Made as the clock showed midnight: the first half of the database's time of change is zero.
    const TIMEDATE midnight = LastChange();
    ASSERT_EQ(midnight.Innards[0], 0U);
    SetVariable("GoogleDebug", "1");
    clock_.Advance(5000);
    TIMEDATE now;
    OSCurrentTIMEDATE(&now);
    const NamedFault unlisted("VLTDbGetModifiedNoteTable", 1234);  // leaves the end time as it was passed in
    IndexFile(0, false);
    EXPECT_EQ(std::get<std::string>(Entry(kLogListed).arguments.at(2)), TextOf(now));
}

TEST_F(PassRecord, AnEndTimeWithBothHalvesIsTheDatabasesOwn)
{
    clock_.Advance(5000);
    mail_.Add("note");
    const TIMEDATE last = LastChange();
    ASSERT_NE(last.Innards[0], 0U);
    SetVariable("GoogleDebug", "1");
    clock_.Advance(5000);
    const NamedFault unlisted("VLTDbGetModifiedNoteTable", 1234);
    IndexFile(0, false);
    EXPECT_EQ(std::get<std::string>(Entry(kLogListed).arguments.at(2)), TextOf(last));
}

TEST_F(PassRecord, TheTableIsLoggedWithItsTimesAndResumeNoteWhenDebugging)
{
    mail_.AddMany(3, "note");
    IndexFile(0, false);
    const std::string since = TextOf(Since());
    clock_.Advance(5000);
    mail_.AddMany(10, "more");
    InterruptAt(4);
    EXPECT_EQ(Logged(kLogListed), 0);
    bIniDebug = 1;
    IndexFile(0, false);
    const pavex::LogEntry& entry = Entry(kLogListed);
    EXPECT_EQ(std::get<std::string>(entry.arguments.at(0)), mail_.Path());
    EXPECT_EQ(std::get<std::string>(entry.arguments.at(1)), since);
    EXPECT_EQ(std::get<std::string>(entry.arguments.at(2)), TextOf(LastChange()));
    EXPECT_EQ(std::get<int64_t>(entry.arguments.at(3)), 7);
}

TEST_F(PassRecord, TheCountersAreLoggedAsThePassCountedThem)
{
    mail_.Add("goes");
    IndexFile(0, false);
    mail_.Delete(1);
    SetGoogleSupport(kNoteKindTask, false);
    mail_.AddMany(2, "indexed");
    mail_.AddPlain("skipped", "Task");
    const uint32_t vanishes = mail_.Add("vanishes");
    calls_.beforeNote = [&](const INDEXCONTEXT&) {
        if (GlobalContext.processed == 1)
            mail_.Delete(vanishes);
    };
    bIniDebug = 1;
    log_.clear();
    IndexFile(0, false);
    const pavex::LogEntry& entry = Entry(kLogPassCounters);
    EXPECT_EQ(entry.text,
              "Pass over database " + mail_.Path() + ": 2 indexed, 1 skipped, 1 errors, 0 failed removals, 1 deleted");
    EXPECT_EQ(entry.status, 0);
    EXPECT_EQ(Entry(kLogNoteNotOpened).status, 549);
    EXPECT_EQ(Logged(kLogPassIndexed), 0);
    EXPECT_EQ(Logged(kLogPassStopped), 0);
}

TEST_F(PassRecord, AnInterruptionIsLoggedWithTheLastIndexersStatusWhenDebugging)
{
    mail_.Add("a meeting without any time", "Appointment");
    mail_.AddMany(3, "note");
    bIniDebug = 1;
    InterruptAt(2);
    EXPECT_EQ(Entry(kLogPassStopped).status, 549);
    EXPECT_EQ(Entry(kLogPassCounters).status, 719);
}

TEST_F(PassRecord, AnInterruptionIsNotLoggedOtherwise)
{
    mail_.AddMany(3, "note");
    InterruptAt(2);
    EXPECT_EQ(LogIds(), std::vector<unsigned>{kLogPassIndexed});
}

TEST_F(PassRecord, AResetIsNoInterruptionToBeLogged)
{
    mail_.AddMany(3, "note");
    bIniDebug = 1;
    calls_.beforeNote = [](const INDEXCONTEXT&) { bStopAndReset = 1; };
    IndexFile(0, false);
    EXPECT_EQ(Logged(kLogPassStopped), 0);
    EXPECT_EQ(Entry(kLogPassCounters).status, 719);
}

TEST_F(PassRecord, OthersMayWriteTheDatabaseWhileAPassGoesByNotesThatWereDone)
{
    mail_.AddMany(100, "note");
    InterruptAt(90);
    int written = 0;
    calls_.beforeEntry = [&] {
        if (GlobalContext.processed != 50)
            return;
        EXPECT_NE(mail_.Add("comes in between"), 0U);  // throws when the database is locked
        ++written;
    };
    IndexFile(0, false);
    calls_.beforeEntry = nullptr;
    EXPECT_EQ(written, 1);
    IndexFile(0, false);
    EXPECT_EQ(Subjects().size(), 101U);
}

}  // namespace
