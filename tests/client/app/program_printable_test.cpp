// tests/client/app/program_printable_test.cpp: what comes from strangers, and the names of files, can do nothing to a
// terminal, whichever command prints it; and reports read the same on every terminal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/client/app/program_fixture.h"
#include "tests/client/app/terminal_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using Lines = std::vector<std::string>;

// Clears the screen, names the window, and turns what follows round, if a terminal obeys it.
constexpr const char* kEvil = "\033[2J\033]0;owned\007\u009B31m\u202Etxt";

constexpr const char* kNotes =
    R"({"items": {"Form": "Memo", "Subject": "quince \u001b[2J\u001b]0;owned\u0007\u009b31m\u202etxt", "From": "a\u001b[1m owned", "PostedDate": {"time": "2007-03-05T14:00:00Z"}, "Body": {"richtext": ["quince\u001b[2J\rowned\b"]}}}
{"items": {"Form": "Person\u001b[2J", "FullName": "\u001bcowned"}})";

class ProgramPrintable : public testing::Test {
protected:
    // The notes in a database with such a name, a watched folder of such a name, and in it what cannot be read in.
    void MakeEvil()
    {
        fs::create_directories(Source());
        WriteWholeFile(Source() + "/" + kEvil + ".ics",
                       "BEGIN:VCALENDAR\nBEGIN:VEVENT\nDTSTART:\033[2Jowned\nEND:VEVENT\n"
                       "END:VCALENDAR\n");
        (void)home_.Put(Database(), kNotes);
        home_.Enable();
        ASSERT_EQ(home_.Run({"settings", "--add", Database(), "--yes"}).exit, 0);
        ASSERT_EQ(home_.Run({"index", "--full-speed"}).exit, 0);
        ASSERT_EQ(home_.Run({"search", "quince"}).exit, 0);
        ASSERT_EQ(home_.Run({"watch", Source()}).exit, 0);
    }
    std::string Source() const { return home_.Path(kEvil); }
    std::string Database() const { return home_.Path("home/data/") + kEvil + ".vlt"; }
    TerminalSession Start(const Terminal& terminal, Lines arguments) const
    {
        arguments.insert(arguments.begin(), {TORVIK_BINARY_DIR "/bin/pavex", "--home", home_.Path("home")});
        return {terminal, arguments};
    }

    ProgramHome home_;
};

struct EvilRow {
    int exit;
    Lines arguments;
};

TEST_F(ProgramPrintable, NothingThatACommandPrintsIsObeyedByTheTerminal)
{
    MakeEvil();
    for (const auto& [name, content] : home_.ReadMetafiles())
        fs::remove(home_.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight/" + name));
    const EvilRow rows[] = {
        {1, {"check"}},
        {1, {"check", "--json"}},
        {0, {"explain", "1", "--db", Database()}},
        {0, {"explain", "1", "--db", Database(), "--json"}},
        {0, {"status"}},
        {0, {"status", "--json"}},
        {0, {"settings", "--show"}},
        {0, {"settings", "--show", "--json"}},
        {0, {"note", "list", "--db", Database()}},
        {0, {"note", "get", "--db", Database(), "1"}},
        {0, {"watch"}},
        {0, {"watch", "--json"}},
        {0, {"watch", Source(), "--into", Database()}},
        {0, {"import", Source()}},
        {0, {"import", "--json", Source()}},
        {0, {"check", "--repair"}},
        {0, {"index", "--full-speed"}},
        {0, {"search", "quince"}},
        {0, {"search", "--json", "quince"}},
        {0, {"open", "1"}},
        {0, {"open", "--raw", "1"}},
        {0, {"history"}},
        {0, {"history", "--json"}},
        {1, {"open", kEvil}},
        {1, {"explain", kEvil}},
        {1, {"note", "get", "--db", kEvil, "1"}},
        {1, {"import", home_.Path("none") + kEvil}},
        {1, {"watch", home_.Path("none") + kEvil}},
        {1, {"settings", "--add", std::string("none") + kEvil}},
        {2, {"search", "--kind", kEvil, "quince"}},
        {2, {"search", "--after", kEvil, "quince"}},
        {2, {"check", kEvil}},
    };
    for (const EvilRow& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.arguments));
        TerminalSession session = Start({200, {{"TERM", "dumb"}}}, row.arguments);
        EXPECT_EQ(session.Wait(), row.exit);
        const std::string shown = session.Output();
        EXPECT_THAT(shown, HasSubstr("owned"));
        for (const char byte : shown)
            EXPECT_TRUE(static_cast<unsigned char>(byte) >= ' ' || byte == '\n' || byte == '\t') << shown;
        for (const char* obeyed : {"\177", "\u009B", "\u202E"})
            EXPECT_THAT(shown, Not(HasSubstr(obeyed)));
    }
}

// Paths and addresses are there to be copied: a line is one line, however wide the screen.
TEST_F(ProgramPrintable, ReportsReadTheSameOnEveryTerminalAndOnNone)
{
    (void)home_.Put("mail.vlt", kNotes);
    home_.Enable();
    ASSERT_EQ(home_.Run({"index", "--full-speed"}).exit, 0);
    ASSERT_EQ(home_.Run({"watch", TORVIK_SOURCE_DIR "/samples/mail"}).exit, 0);
    for (const Lines& command : {Lines{"check"}, {"explain", "1", "--db", "mail.vlt"}, {"watch"}, {"status"}}) {
        const ProgramResult plain = home_.Run(command);
        ASSERT_EQ(plain.exit, 0) << plain.err;
        for (const Terminal& terminal : {Terminal{20, {}}, Terminal{40, {}}, Terminal{200, {}},
                                         Terminal{200, {{"NO_COLOR", "1"}}}, Terminal{40, {{"TERM", "dumb"}}}}) {
            SCOPED_TRACE(testing::Message() << command[0] << " on " << terminal.columns << " columns");
            TerminalSession session = Start(terminal, command);
            EXPECT_EQ(session.Wait(), 0);
            EXPECT_EQ(session.Output(), plain.out);
        }
    }
}

}  // namespace
}  // namespace pavex
