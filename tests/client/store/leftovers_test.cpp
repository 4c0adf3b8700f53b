// tests/client/store/leftovers_test.cpp: what killed processes leave, and what is never theirs.
#include "client/store/leftovers.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

#include "client/store/database.h"
#include "client/store/descriptor.h"
#include "tests/support/temporary_directory.h"

using namespace pavex;

namespace {

// The mark of a process that has ended, without the dash at its end.
std::string GoneProcess()
{
    const pid_t child = fork();
    if (child == 0)
        _exit(0);
    waitpid(child, nullptr, 0);
    return "pavex-tmp-" + std::to_string(child);
}

std::set<std::string> NamesIn(const TemporaryDirectory& dir)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(dir.Path()))
        names.insert(entry.path().filename().string());
    return names;
}

}  // namespace

TEST(SweepLeftovers, RemovesFilesOfProcessesThatAreGoneAndNothingElse)
{
    TemporaryDirectory dir;
    const std::string gone = GoneProcess();
    const std::set<std::string> stay = {"f",
                                        "f.lock",
                                        "f." + gone,
                                        "f." + MakerMark() + "x",
                                        "f.pavex-tmp--1-x",
                                        "f.pavex-tmp-0-x",
                                        "f.pavex-tmp-99999999999-x",
                                        "f.pavex-tmp-x",
                                        "g." + gone + "-x",
                                        "f.x" + gone + "-x",
                                        "f." + gone.substr(gone.rfind('-') + 1) + "-11-22"};  // a copy with its date
    for (const std::string& name : stay)
        WriteWholeFile(dir / name, "kept");
    std::filesystem::create_directory(dir / ("f." + gone + "-folder"));
    std::filesystem::create_symlink(dir / "f", dir / ("f." + gone + "-link"));
    WriteWholeFile(dir / ("f." + gone + "-AbCdEf"), "left");
    WriteWholeFile(dir / ("f." + gone + "-1.new-wal"), "left");
    SweepLeftoversOf(dir / "f");
    std::set<std::string> expected = stay;
    expected.insert({"f." + gone + "-folder", "f." + gone + "-link"});
    EXPECT_EQ(NamesIn(dir), expected);
    SweepLeftoversOf(dir / "missing/f");
}

TEST(SweepLeftovers, IsDoneByTheNextWriterOfTheFile)
{
    TemporaryDirectory dir;
    WriteWholeFile(dir / ("f." + GoneProcess() + "-AbCdEf"), "left");
    ASSERT_TRUE(ReplaceFile(dir / "f", "x"));
    EXPECT_EQ(NamesIn(dir), std::set<std::string>{"f"});
}

TEST(SweepLeftovers, IsDoneByWhoMakesTheDatabase)
{
    TemporaryDirectory dir;
    WriteWholeFile(dir / ("n.vlt." + GoneProcess() + "-1.new"), "left");
    std::unique_ptr<Database> database;
    ASSERT_EQ(Database::OpenOrCreate(dir / "n.vlt", "Notes", &database), 0);
    database.reset();
    EXPECT_EQ(NamesIn(dir), std::set<std::string>{"n.vlt"});
}
