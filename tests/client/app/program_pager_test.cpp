// tests/client/app/program_pager_test.cpp: notes read page by page, with keys typed on a real terminal.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "tests/client/app/program_fixture.h"
#include "tests/client/app/terminal_fixture.h"

namespace pavex {
namespace {

using testing::HasSubstr;
using testing::Not;

class ProgramPager : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        home_ = new ProgramHome;
        std::string paragraphs;
        for (int line = 1; line <= 100; ++line)
            paragraphs += "\"line " + std::to_string(line) + ".\", ";
        (void)home_->Put("a.vlt", R"({"items": {"Form": "Memo", "Subject": "Long", "Body": {"richtext": [)" +
                                      paragraphs + R"("the end"]}}})");
        (void)home_->Put("b.vlt",
                         R"({"items": {"Form": "Memo", "Subject": "Short", "Body": {"richtext": ["quince"]}}})");
    }
    static void TearDownTestSuite()
    {
        delete home_;
        home_ = nullptr;
    }
    static TerminalSession Open(const std::string& database, const Terminal& terminal)
    {
        const std::string url =
            home_->RunJson({"note", "get", "--db", database, "--json", "1"})["url"].get<std::string>();
        return {terminal, {TORVIK_BINARY_DIR "/bin/pavex", "--home", home_->Path("home"), "open", url}};
    }
    static bool HasLess() { return std::system("command -v less >/dev/null") == 0; }

    static ProgramHome* home_;
};
ProgramHome* ProgramPager::home_ = nullptr;

// No PAGER, an empty one, and the usual one by its name.
const Terminal kUsual[] = {{80, {}}, {80, {{"PAGER", ""}}}, {80, {{"PAGER", "less"}}}, {20, {}}, {200, {}}};

TEST_F(ProgramPager, ShowsALongNotePageByPageUntilTheKeyThatLeavesIt)
{
    if (!HasLess())
        GTEST_SKIP() << "there is no less";
    for (const Terminal& terminal : kUsual) {
        SCOPED_TRACE(testing::PrintToString(terminal.environment) + std::to_string(terminal.columns));
        TerminalSession session = Open("a.vlt", terminal);
        ASSERT_TRUE(session.Shows("line 10."));
        EXPECT_THAT(session.Output(), HasSubstr("Long"));
        EXPECT_THAT(session.Output(), Not(HasSubstr("line 30."))) << "the screen has 24 lines";
        session.Type(" ");
        ASSERT_TRUE(session.Shows("line 30."));
        session.Type("G");
        ASSERT_TRUE(session.Shows("the end"));
        session.Type("q");
        EXPECT_EQ(session.Wait(), 0);
    }
}

TEST_F(ProgramPager, WaitsForNoKeyWhenANoteFitsOnTheScreen)
{
    for (const Terminal& terminal : kUsual) {
        SCOPED_TRACE(testing::PrintToString(terminal.environment) + std::to_string(terminal.columns));
        TerminalSession session = Open("b.vlt", terminal);
        EXPECT_EQ(session.Wait(), 0);
        EXPECT_THAT(session.Output(), HasSubstr("quince"));
    }
}

TEST_F(ProgramPager, LeavesTheKeyThatInterruptsToThePager)
{
    if (!HasLess())
        GTEST_SKIP() << "there is no less";
    TerminalSession session = Open("a.vlt", {});
    ASSERT_TRUE(session.Shows("line 10."));
    session.Type("\003");
    // The terminal may drop keys that are typed while it interrupts.
    bool isAtEnd = false;
    for (int tries = 0; tries < 600 && !isAtEnd; ++tries) {
        session.Type("G");
        isAtEnd = session.Shows("the end", 100);
    }
    ASSERT_TRUE(isAtEnd) << session.Output();
    session.Type("q");
    EXPECT_EQ(session.Wait(), 0);
}

TEST_F(ProgramPager, ShowsTheNoteAllTheSameWhereThePagerIsNotThere)
{
    TerminalSession chosen = Open("a.vlt", {80, {{"PAGER", "/no/such/pager"}}});
    EXPECT_EQ(chosen.Wait(), 0);
    EXPECT_THAT(chosen.Output(), testing::AllOf(HasSubstr("Long"), HasSubstr("line 50."), HasSubstr("the end"),
                                                HasSubstr("/no/such/pager: not found")));
    const std::string nowhere = home_->Path("no/such/folder");
    TerminalSession usual = Open("a.vlt", {80, {{"PATH", nowhere}, {"NO_COLOR", "1"}}});
    EXPECT_EQ(usual.Wait(), 0);
    EXPECT_THAT(usual.Output(), testing::StartsWith("Form: Memo\nSubject: Long\n")) << "no word on a pager";
    EXPECT_THAT(usual.Output(), testing::EndsWith("line 100.\nthe end\n"));
}

}  // namespace
}  // namespace pavex
