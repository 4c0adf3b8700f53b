// tests/client/app/cycle_report_test.cpp: what a cycle did, from the add-in's log entries.
#include "client/app/cycle_report.h"

#include <gtest/gtest.h>

#include "strings/string_ids.h"

namespace pavex {
namespace {

using Arguments = std::vector<std::variant<std::string, int64_t>>;

LogEntry Entry(uint32_t id, Arguments arguments = {}, STATUS status = 0)
{
    return {id, status, "", std::move(arguments)};
}

std::string ResultText(const CycleReport& report, const std::string& path)
{
    const std::optional<PassResult> result = report.ResultOf(path);
    return result ? JsonOf(*result).dump() : "none";
}

TEST(CycleReport, TakesTheCountersOfAPass)
{
    CycleReport report;
    report.Take(Entry(kLogPassCounters, {"/m.vlt", 70, 5, 4, 3, 2}, 0));
    EXPECT_EQ(ResultText(report, "/m.vlt"),
              R"({"indexed":70,"skipped":5,"errors":4,"blank_failures":3,"deleted":2,"status":0})");
    EXPECT_EQ(ResultText(report, "/other.vlt"), "none");
}

TEST(CycleReport, TellsOfAPassThatFoundNothing)
{
    CycleReport report;
    report.Take(Entry(kLogNothingModified, {"/m.vlt"}));
    EXPECT_EQ(report.ResultOf("/m.vlt")->status, kStatusNothingModified);
}

TEST(CycleReport, KeepsThePassThatDidSomethingOverALaterOneThatFoundNothing)
{
    CycleReport report;
    report.Take(Entry(kLogPassCounters, {"/m.vlt", 70, 0, 0, 0, 0}, 0));
    report.Take(Entry(kLogNothingModified, {"/m.vlt"}));
    report.Take(Entry(kLogPassCounters, {"/m.vlt", 1, 0, 0, 0, 2}, kStatusStopped));
    EXPECT_EQ(ResultText(report, "/m.vlt"),
              R"({"indexed":71,"skipped":0,"errors":0,"blank_failures":0,"deleted":2,"status":719})");
}

TEST(CycleReport, TellsWhyADatabaseCouldNotBeRead)
{
    for (const uint32_t id : {kLogCannotOpen, kLogNoModifiedTime, kLogNotListed}) {
        CycleReport report;
        report.Take(Entry(id, {"/m.vlt"}, kStatusIoError));
        EXPECT_EQ(report.ResultOf("/m.vlt")->status, kStatusIoError) << id;
    }
}

TEST(CycleReport, TellsWhyThereWasNoCycle)
{
    CycleReport report;
    EXPECT_EQ(report.Obstacle(), "");
    report.Take(Entry(kLogIndexingOff));
    EXPECT_EQ(report.Obstacle(), "indexing was switched off meanwhile");
    report.Take(Entry(kLogIndexUnavailable));
    EXPECT_EQ(report.Obstacle(), "the desktop search is not available");
}

TEST(CycleReport, ShowsTheDatabaseBeingReadAndItsNotesSoFar)
{
    CycleReport report;
    EXPECT_EQ(report.Activity(), "");
    report.Take(Entry(kLogOpened, {"/m.vlt"}));
    EXPECT_EQ(report.Activity(), "/m.vlt: 0 notes");
    report.Take(Entry(kLogNoteUrl, {"Pavex:///a"}));
    report.Take(Entry(kLogNoteUrl, {"Pavex:///b"}));
    EXPECT_EQ(report.Activity(), "/m.vlt: 2 notes");
    report.Take(Entry(kLogPassCounters, {"/m.vlt", 2, 0, 0, 0, 0}));
    EXPECT_EQ(report.Activity(), "");
}

TEST(CycleReport, TakesCountersThatAreCutShortAsZero)
{
    CycleReport report;
    report.Take(Entry(kLogPassCounters, {"/m.vlt", 7}));
    EXPECT_EQ(report.ResultOf("/m.vlt")->indexed, 7U);
    EXPECT_EQ(report.ResultOf("/m.vlt")->deleted, 0U);
}

TEST(CycleReport, KnowsWhichEntriesAreForDebuggingOnly)
{
    EXPECT_TRUE(IsDebugEntry(kLogNoteUrl));
    EXPECT_TRUE(IsDebugEntry(kLogNothingModified));
    EXPECT_FALSE(IsDebugEntry(kLogPassCounters));
    EXPECT_FALSE(IsDebugEntry(kLogCannotOpen));
    EXPECT_FALSE(IsDebugEntry(0));
}

}  // namespace
}  // namespace pavex
