// tests/client/check/findings_test.cpp: findings are counted by kind, with the first as examples.
#include "client/check/findings.h"

#include <gtest/gtest.h>

#include <set>

namespace pavex {
namespace {

TEST(Findings, HaveANameOfTheirOwnAndWordsForOneAndMany)
{
    std::set<std::string> names;
    for (size_t i = 0; i < static_cast<size_t>(Finding::kCount); ++i) {
        const FindingText& text = TextOf(static_cast<Finding>(i));
        EXPECT_EQ(static_cast<size_t>(text.finding), i);
        EXPECT_TRUE(names.insert(text.name).second) << text.name;
        EXPECT_STRNE(text.one, text.many) << text.name;
    }
}

TEST(Findings, KeepTheFirstExamplesAndCountAll)
{
    CheckReport report(2);
    for (uint32_t note = 1; note <= 5; ++note)
        report.Add(Finding::kMissing, {.note = note});
    const CheckReport::Group& group = report.Of(Finding::kMissing);
    EXPECT_EQ(group.count, 5U);
    ASSERT_EQ(group.examples.size(), 2U);
    EXPECT_EQ(group.examples[0].note, 1U);
    EXPECT_EQ(group.examples[1].note, 2U);
    EXPECT_EQ(report.Found(), 5U);
    EXPECT_EQ(report.Of(Finding::kOutdated).count, 0U);
}

TEST(Findings, NeedAPassOnlyForWhatAPassWrites)
{
    CheckReport report(0);
    report.Add(Finding::kStrayFile, {});
    report.AddRepaired(Finding::kStrayFile);
    EXPECT_FALSE(report.NeedsPass());
    report.Add(Finding::kMissing, {});
    EXPECT_FALSE(report.NeedsPass());
    report.AddRepaired(Finding::kMissing);
    EXPECT_TRUE(report.NeedsPass());
    EXPECT_EQ(report.Repaired(), 2U);
}

TEST(Findings, AreNotRepairableWhereTheUserMustHelp)
{
    CheckReport report(0);
    report.Add(Finding::kDatabase, {});
    report.Add(Finding::kCopies, {});
    report.Add(Finding::kDamagedNote, {});
    report.Add(Finding::kFolder, {});
    EXPECT_EQ(report.Repairable(), 0U);
    report.Add(Finding::kNoNote, {});
    EXPECT_EQ(report.Repairable(), 1U);
}

}  // namespace
}  // namespace pavex
