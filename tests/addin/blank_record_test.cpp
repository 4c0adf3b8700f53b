// tests/addin/blank_record_test.cpp: the blank record that takes a removal's place, and what a pass makes of
// one that cannot be written.
#include "addin/dispatch.h"

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/addin/call_record.h"
#include "tests/indexers/property_faults.h"
#include "tests/support/fault_plan.h"
#include <algorithm>
#include <optional>

namespace {

using Texts = std::vector<std::string>;

constexpr uint32_t kRefused = static_cast<uint32_t>(-7);  // what a refused property or send answers

class BlankRecord : public AddInTest {
protected:
    BlankRecord() : mail_(PathOf("mail.vlt"), "Mail")
    {
        Configure(0, mail_.Path());
        SetVariable("GoogleWaitTime", "0");
        id_ = mail_.Add("note");
        EXPECT_EQ(VLTDbOpen(mail_.Path().c_str(), &db_), 0);
        context_.lastStatus = 3;
    }
    ~BlankRecord() override { VLTDbClose(db_); }

    Mailbox mail_;
    uint32_t id_ = 0;
    DBHANDLE db_ = 0;
    INDEXCONTEXT context_ = {};
};

TEST_F(BlankRecord, HasATimeAndEmptyItemsInTheirOrderAndNoUrl)
{
    const PropertyFault seen(0);
    EXPECT_TRUE(IndexBlankMail(db_, id_, &context_));
    EXPECT_EQ(seen.Keys(),
              (Texts{"received", "com.quorvex.pavex.content", "from", "to", "subject", "cc", "bcc", "replyto"}));
    EXPECT_TRUE(seen.Sent());
    EXPECT_EQ(context_.lastStatus, 0);
    EXPECT_EQ(context_.blankResult, 0U);
    EXPECT_TRUE(Metafiles().empty());
}

TEST_F(BlankRecord, WithoutItsTimeIsNotSentAndFails)
{
    SetVariable("GoogleDebug", "1");
    const PropertyFault fault(1);
    EXPECT_FALSE(IndexBlankMail(db_, id_, &context_));
    EXPECT_FALSE(fault.Sent());
    EXPECT_EQ(context_.lastStatus, 0);
    EXPECT_EQ(context_.blankResult, kRefused);
    ASSERT_EQ(LogIds(), std::vector<unsigned>{kLogPropertyFailed});
    EXPECT_EQ(std::get<std::string>(log_[0].arguments.at(0)), "received");
    EXPECT_EQ(std::get<int64_t>(log_[0].arguments.at(1)), -7);
}

TEST_F(BlankRecord, IsSentWithTheItemsBeforeOneThatFails)
{
    SetVariable("GoogleDebug", "1");
    const PropertyFault fault(4);
    EXPECT_TRUE(IndexBlankMail(db_, id_, &context_));
    EXPECT_EQ(fault.Keys(), (Texts{"received", "com.quorvex.pavex.content", "from", "to"}));
    EXPECT_TRUE(fault.Sent());
    EXPECT_EQ(context_.blankResult, 0U);
    ASSERT_EQ(LogIds(), std::vector<unsigned>{kLogPropertyFailed});
    EXPECT_EQ(std::get<std::string>(log_[0].arguments.at(0)), "to");
    EXPECT_EQ(std::get<int64_t>(log_[0].arguments.at(1)), -7);
}

TEST_F(BlankRecord, ThatCannotBeSentFails)
{
    SetVariable("GoogleDebug", "1");
    const PropertyFault fault(0, true);
    EXPECT_FALSE(IndexBlankMail(db_, id_, &context_));
    EXPECT_EQ(context_.lastStatus, 0);
    EXPECT_EQ(context_.blankResult, kRefused);
    ASSERT_EQ(LogIds(), std::vector<unsigned>{kLogSendFailed});
    EXPECT_EQ(std::get<int64_t>(log_[0].arguments.at(0)), -7);
}

TEST_F(BlankRecord, LogsItsFailuresOnlyWhenDebugging)
{
    for (const int failing : {0, 1, 4}) {
        const PropertyFault fault(failing, true);
        EXPECT_FALSE(IndexBlankMail(db_, id_, &context_)) << failing;
    }
    EXPECT_TRUE(log_.empty());
}

TEST_F(BlankRecord, IsNotWrittenWhenTheNotesIdentityCannotBeRead)
{
    const NamedFault unreadable("VLTDbGetNoteInfo", 1234);
    const PropertyFault seen(0);
    context_.blankResult = 5;
    EXPECT_FALSE(DeleteNoteIDFromIndex(db_, id_, &context_));
    EXPECT_TRUE(seen.Keys().empty());
    EXPECT_EQ(context_.blankResult, 0U);
    EXPECT_EQ(context_.lastStatus, 0);
}

// A pass over one new note and one deleted one, whose removal is not supported and whose blank record cannot
// be written.
class BlankRecordInAPass : public BlankRecord {
protected:
    BlankRecordInAPass()
    {
        IndexFile(0, false);
        SetGoogleSupport(kNoteKindRemoval, false);
        mail_.Delete(id_);
        mail_.Add("new");
        log_.clear();
        GlobalContext.indexed = 0;
    }
    void PassWithoutBlankRecords()
    {
        std::optional<PropertyFault> fault;
        CallRecord record;
        record.beforeEntry = [&fault] {
            if (GlobalContext.processed == 2 && !fault)
                fault.emplace(0, true);
        };
        IndexFile(0, false);
    }
};

TEST_F(BlankRecordInAPass, ThatFailsStopsThePassAndIsReported)
{
    PassWithoutBlankRecords();
    ASSERT_EQ(LogIds(), std::vector<unsigned>{kLogBlankFailed});
    EXPECT_EQ(LoggedPaths(kLogBlankFailed), Texts{"mail.vlt"});
    EXPECT_EQ(std::get<int64_t>(log_[0].arguments.at(1)), 1);  // indexed before it
    EXPECT_EQ(std::get<int64_t>(log_[0].arguments.at(2)), -7);
    EXPECT_EQ(GlobalContext.blankFailures, 1U);
    EXPECT_EQ(GlobalContext.deleted, 0U);
    EXPECT_EQ(GlobalContext.resumed, 1);
}

TEST_F(BlankRecordInAPass, IsTriedAgainFromTheSameEntry)
{
    PassWithoutBlankRecords();
    TIMEDATE until;
    unsigned resumeNote = 0;
    ASSERT_TRUE(GetDbRecovery(0, &until, &resumeNote));
    EXPECT_EQ(resumeNote, id_ | 0x80000000);
    IndexFile(0, false);
    EXPECT_EQ(GlobalContext.indexed, 1U);  // by the first of the two passes
    EXPECT_EQ(GlobalContext.deleted, 1U);
    EXPECT_EQ(GlobalContext.upToDate, 1);
    EXPECT_FALSE(GetDbRecovery(0, &until, &resumeNote));
}

TEST_F(BlankRecordInAPass, IsCountedAmongTheCountersWhenDebugging)
{
    bIniDebug = 1;
    PassWithoutBlankRecords();
    EXPECT_EQ(Logged(kLogBlankFailed), 0);
    EXPECT_EQ(Logged(kLogPassStopped), 1);
    const auto counters =
        std::ranges::find_if(log_, [](const pavex::LogEntry& entry) { return entry.id == kLogPassCounters; });
    ASSERT_NE(counters, log_.end());
    EXPECT_EQ(std::get<int64_t>(counters->arguments.at(4)), 1);
    EXPECT_EQ(counters->status, 11779);
}

}  // namespace
