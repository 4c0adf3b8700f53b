// tests/client/app/program_progress_test.cpp: how far a command is, on real terminals.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/client/app/program_fixture.h"
#include "tests/client/app/terminal_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using Lines = std::vector<std::string>;

class ProgramProgress : public testing::Test {
protected:
    TerminalSession Start(const Terminal& terminal, Lines arguments) const
    {
        arguments.insert(arguments.begin(), {TORVIK_BINARY_DIR "/bin/pavex", "--home", home_.Path("home")});
        return {terminal, arguments};
    }

    ProgramHome home_;
};

// The parts of an output that were written over, one after the other, and what is left.
Lines WrittenOver(const std::string& output)
{
    const std::string erase = "\r\033[K";
    Lines parts;
    size_t begin = 0;
    for (size_t end = output.find(erase); end != output.npos; end = output.find(erase, begin)) {
        parts.push_back(output.substr(begin, end - begin));
        begin = end + erase.size();
    }
    parts.push_back(output.substr(begin));
    return parts;
}

TEST_F(ProgramProgress, ProgressStaysOnOneLineOfANarrowScreenAndGoes)
{
    const std::string source = home_.Path("a folder of a long name, with messages in it");
    fs::create_directories(source);
    for (int i = 0; i < 30; ++i)
        WriteWholeFile(source + "/" + std::to_string(i) + ".eml", "Subject: " + std::to_string(i) + "\n\nquince\n");
    for (const unsigned short columns : std::initializer_list<unsigned short>{20, 40, 300}) {
        SCOPED_TRACE(columns);
        TerminalSession import = Start({columns, {}}, {"import", source});
        EXPECT_EQ(import.Wait(), 0);
        Lines parts = WrittenOver(import.Output());
        EXPECT_THAT(parts.back(), testing::EndsWith(" 0 rejected\n"));
        parts.pop_back();
        EXPECT_THAT(parts, testing::Contains(testing::EndsWith(": 30 entries")));
        for (const std::string& part : parts) {
            EXPECT_LT(ScreenColumns(part), columns) << part;
            EXPECT_THAT(part, Not(HasSubstr("\n")));
        }
    }
    home_.Enable();
    TerminalSession index = Start({20, {}}, {"index"});
    EXPECT_EQ(index.Wait(), 0);
    Lines parts = WrittenOver(index.Output());
    EXPECT_THAT(parts.back(), HasSubstr(": 30 indexed, "));
    parts.pop_back();
    for (const std::string& part : parts)
        EXPECT_LT(ScreenColumns(part), 20) << part;
}

TEST_F(ProgramProgress, ProgressIsNotShownWhereALineCannotBeWrittenOver)
{
    for (const char* terminal : {"dumb", ""}) {
        TerminalSession import = Start({80, {{"TERM", terminal}}}, {"import", TORVIK_SOURCE_DIR "/samples/contacts"});
        EXPECT_EQ(import.Wait(), 0);
        EXPECT_THAT(LinesOf(import.Output()), Each(Not(HasSubstr("entries"))));
        EXPECT_THAT(import.Output(), Not(HasSubstr("\033")));
    }
}

}  // namespace
}  // namespace pavex
