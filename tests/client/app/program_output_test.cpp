// tests/client/app/program_output_test.cpp: the built program where its output cannot go.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

using testing::HasSubstr;
using Words = std::vector<std::string>;

constexpr const char* kProgram = TORVIK_BINARY_DIR "/bin/pavex";

class ProgramOutput : public testing::Test {
protected:
    // Runs "$@" as the shell's words say, which lead its output somewhere.
    ProgramResult RunTo(const std::string& words, const Words& arguments)
    {
        Words command = {"sh", "-c", words, "sh", kProgram, "--home", home_.Path("home")};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return Process(command, home_.Path("run")).Wait();
    }

    ProgramHome home_;
};

TEST_F(ProgramOutput, OnAFullDiskIsNotTakenForPrinted)
{
    WriteWholeFile(home_.Path("m.eml"),
                   "From: ann@example.org\nDate: Mon, 5 Mar 2007 14:00:00 +0000\nSubject: zebra\n\ntext\n");
    ASSERT_EQ(home_.Run({"import", home_.Path("m.eml")}).exit, 0);
    home_.Enable();
    (void)home_.Index();
    const ProgramResult search = home_.Run({"search", "zebra"});
    ASSERT_EQ(search.exit, 0) << search.err;
    ASSERT_EQ(home_.Run({"open", "1"}).exit, 0);
    const Words commands[] = {{"search", "zebra"},
                              {"search", "--json", "zebra"},
                              {"open", "1"},
                              {"open", "--raw", "1"},
                              {"note", "list", "--db", "mail.vlt"},
                              {"history"},
                              {"check"},
                              {"explain", "1"},
                              {"status", "--json"},
                              {"watch"},
                              {"settings", "--show"},
                              {"import", TORVIK_SOURCE_DIR "/samples/mail"},
                              {"--help"},
                              {"search", "--help"}};
    for (const Words& command : commands) {
        SCOPED_TRACE(testing::PrintToString(command));
        const ProgramResult full = RunTo("\"$@\" >/dev/full", command);
        EXPECT_EQ(full.exit, 1);
        EXPECT_THAT(full.err, HasSubstr("pavex: cannot write to standard output: No space left on device\n"));
    }
}

TEST_F(ProgramOutput, ThatNobodyReadsToItsEndIsNoFailure)
{
    ASSERT_EQ(home_.Run({"import", TORVIK_SOURCE_DIR "/samples/mail"}).exit, 0);
    // A pipe whose reader is gone.
    const std::string left =
        "mkfifo " + home_.Path("p") + " && exec 3<>" + home_.Path("p") + " 4>" + home_.Path("p") + " 3<&- && ";
    const Words list = {"note", "list", "--db", "mail.vlt"};
    const ProgramResult ignoring = RunTo("trap '' PIPE; " + left + "\"$@\" >&4", list);
    EXPECT_EQ(ignoring.exit, 0);
    EXPECT_EQ(ignoring.err, "");
    std::filesystem::remove(home_.Path("p"));
    EXPECT_EQ(RunTo(left + "exec \"$@\" >&4", list).exit, 128 + SIGPIPE);
}

TEST_F(ProgramOutput, ThatIsClosedIsNotWrittenIntoAnotherFile)
{
    const ProgramResult closed = RunTo("\"$@\" >&-", {"import", TORVIK_SOURCE_DIR "/samples/mail"});
    EXPECT_EQ(closed.exit, 1);
    EXPECT_THAT(closed.err, HasSubstr("cannot write to standard output: Bad file descriptor"));
    EXPECT_EQ(home_.Run({"check"}).exit, 0);
    EXPECT_EQ(RunTo("\"$@\" <&- >&- 2>&-", {"settings", "--enable", "--yes"}).exit, 0) << "prints nothing there";
}

}  // namespace
}  // namespace pavex
