// tests/client/watch/complaints_test.cpp: what the log says of a source that is read again and again.
#include "client/watch/complaints.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

using Lines = std::vector<std::string>;

ImportReport Rejecting(const Lines& files)
{
    ImportReport report;
    for (const std::string& file : files)
        report.rejected.push_back({"mail", file, "is empty"});
    return report;
}

TEST(Complaints, AreMadeOnceForTheSameUnchangedReason)
{
    Complaints complaints;
    EXPECT_FALSE(complaints.HasAny());
    EXPECT_EQ(complaints.TakeNew(Rejecting({"a", "b"}), "", true),
              (Lines{"rejected a: is empty", "rejected b: is empty"}));
    EXPECT_TRUE(complaints.HasAny());
    EXPECT_EQ(complaints.TakeNew(Rejecting({"a", "b"}), "", true), Lines{});
    EXPECT_EQ(complaints.TakeNew(Rejecting({"b", "c"}), "", true), Lines{"rejected c: is empty"});
    EXPECT_EQ(complaints.TakeNew(Rejecting({"a"}), "", true), Lines{"rejected a: is empty"}) << "it was well meanwhile";
}

TEST(Complaints, StayKnownWhenOnlyAPartWasRead)
{
    Complaints complaints;
    (void)complaints.TakeNew(Rejecting({"a"}), "", true);
    EXPECT_EQ(complaints.TakeNew(Rejecting({"b"}), "", false), Lines{"rejected b: is empty"});
    EXPECT_EQ(complaints.TakeNew(Rejecting({"a", "b"}), "", true), Lines{});
    EXPECT_EQ(complaints.TakeNew(Rejecting({}), "", true), Lines{});
    EXPECT_FALSE(complaints.HasAny());
}

TEST(Complaints, TellAnErrorAgainOnlyAfterAReadingWithoutIt)
{
    Complaints complaints;
    EXPECT_EQ(complaints.TakeNew({}, "mail: is gone", true), Lines{"mail: is gone"});
    EXPECT_EQ(complaints.TakeNew({}, "mail: is gone", true), Lines{});
    EXPECT_EQ(complaints.TakeNew({}, "", true), Lines{});
    EXPECT_EQ(complaints.TakeNew({}, "mail: is gone", true), Lines{"mail: is gone"});
}

TEST(Complaints, StayKnownOverAReadingThatFailed)
{
    Complaints complaints;
    (void)complaints.TakeNew(Rejecting({"a"}), "", true);
    (void)complaints.TakeNew({}, "mail: is gone", true);
    EXPECT_EQ(complaints.TakeNew(Rejecting({"a"}), "", true), Lines{});
}

TEST(Complaints, TellOfNotices)
{
    Complaints complaints;
    ImportReport report;
    report.notices.push_back({"cal", "cal.ics", "only 100 of its occurrences were taken"});
    EXPECT_EQ(complaints.TakeNew(report, "", true), Lines{"cal.ics: only 100 of its occurrences were taken"});
}

TEST(Complaints, SumUpWhatIsVeryMuch)
{
    Complaints complaints;
    Lines files;
    for (int i = 0; i < 50; ++i)
        files.push_back("f" + std::to_string(i));
    const Lines lines = complaints.TakeNew(Rejecting(files), "", true);
    ASSERT_EQ(lines.size(), 21U);
    EXPECT_EQ(lines.back(), "and 30 more, which pavex import shows");
    EXPECT_EQ(complaints.TakeNew(Rejecting(files), "", true), Lines{});
}

}  // namespace
}  // namespace pavex
