// tests/client/app/program_terminal_test.cpp: search, open and history on terminals wide and narrow.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/client/app/program_fixture.h"
#include "tests/client/app/terminal_fixture.h"

namespace pavex {
namespace {

using Json = nlohmann::ordered_json;
using testing::Each;
using testing::HasSubstr;
using testing::Not;
using Lines = std::vector<std::string>;

constexpr const char* kNotes =
    R"({"items": {"Form": "Memo", "Subject": "Zebra crossings in Zürich and in the whole of the canton, as of today", "From": "Ann Müller <ann@example.org>", "SendTo": ["carl@example.org", "Dora Doe/Acme"], "PostedDate": {"time": "2007-03-05T14:00:00Z"}, "Body": {"richtext": ["The zebra's stripes were painted yesterday, and http://www.example.org/pictures/of/all/the/stripes shows them.", "Second"]}}}
{"items": {"Form": "Memo", "Subject": "東京の会議とzebraの写真と明日の予定についてのお知らせです", "From": "佐藤花子 <sato@example.jp>", "SendTo": ["ann@example.org"], "PostedDate": {"time": "2007-04-01T09:00:00Z"}, "Body": {"richtext": ["明日は東京都庁で会議がありますので、皆さんご出席ください。", "한국어 검색 엔진은 데스크톱에서 모든 것을 찾습니다", "e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301e\u0301 😀😀😀😀😀😀😀😀😀😀😀😀"]}}})";

class ProgramTerminal : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        home_ = new ProgramHome;
        (void)home_->Put("mail.vlt", kNotes);
        home_->Enable();
        (void)home_->Index();
        ASSERT_EQ(home_->Run({"search", "zebra"}).exit, 0);
        ASSERT_EQ(home_->Run({"open", "2"}).exit, 0);
        ASSERT_EQ(home_->Run({"open", "1"}).exit, 0);
    }
    static void TearDownTestSuite()
    {
        delete home_;
        home_ = nullptr;
    }
    static std::string Show(const Terminal& terminal, Lines arguments)
    {
        arguments.insert(arguments.begin(), {TORVIK_BINARY_DIR "/bin/pavex", "--home", home_->Path("home")});
        return RunOnTerminal(terminal, arguments);
    }
    // As it is without the breaks of lines.
    static std::string Solid(std::string text)
    {
        std::erase_if(text, [](char c) { return c == ' ' || c == '\n'; });
        return text;
    }

    static ProgramHome* home_;
};
ProgramHome* ProgramTerminal::home_ = nullptr;

TEST_F(ProgramTerminal, HasNoLineThatIsWiderThanTheScreenAndLosesNothing)
{
    const Lines commands[] = {{"search", "zebra"}, {"open", "1"}, {"open", "2"}, {"history"}};
    const Lines kept[] = {
        {"Zebra crossings in Zürich and in the whole of the canton, as of today",
         "Ann Müller <ann@example.org>, carl@example.org, Dora Doe/Acme", "stripes were painted yesterday",
         "東京の会議とzebraの写真と明日の予定についてのお知らせです", "2007-03-05", "2007-04-01", "1.", "2."},
        {"한국어 검색 엔진은 데스크톱에서 모든 것을 찾습니다",
         "明日は東京都庁で会議がありますので、皆さんご出席ください。", "😀😀😀😀😀😀😀😀😀😀😀😀"},
        {"http://www.example.org/pictures/of/all/the/stripes", "Subject:", "Second"},
        {"Pavex:///", "Zebra crossings in Zürich and in the whole of the canton, as of today"}};
    for (const unsigned short columns : std::initializer_list<unsigned short>{20, 40, 80, 300}) {
        for (size_t i = 0; i < std::size(commands); ++i) {
            SCOPED_TRACE(testing::Message() << commands[i][0] << " on " << columns << " columns");
            const std::string shown = Show({columns, {{"PAGER", "cat"}, {"NO_COLOR", ""}}}, commands[i]);
            std::string plain = shown;
            for (const std::string sequence : {"\033[1m", "\033[0m"})
                for (size_t at = plain.find(sequence); at != plain.npos; at = plain.find(sequence, at))
                    plain.erase(at, sequence.size());
            for (const std::string& line : LinesOf(shown))
                EXPECT_LE(ScreenColumns(line), columns) << line;
            for (const std::string& text : kept[i])
                EXPECT_THAT(Solid(plain), HasSubstr(Solid(text)));
        }
    }
}

TEST_F(ProgramTerminal, UsesTheWholeOfAWideScreen)
{
    const Lines lines = LinesOf(Show({300, {}}, {"search", "painted"}));
    ASSERT_EQ(lines.size(), 4U) << "a result is four lines where they fit";
    EXPECT_THAT(lines[3], testing::StartsWith("    Pavex:///"));
}

TEST_F(ProgramTerminal, LeavesOutAUrlThatHasNoRoomSinceItsNumberOpensTheNote)
{
    EXPECT_THAT(Show({63, {}}, {"search", "painted"}), HasSubstr("\n    Pavex:///"));
    const Lines narrow = LinesOf(Show({62, {}}, {"search", "painted"}));
    EXPECT_THAT(narrow, Each(Not(HasSubstr("Pavex:"))));
    EXPECT_THAT(Show({62, {{"PAGER", "cat"}}}, {"open", "1"}), HasSubstr("Zebra crossings"));
}

TEST_F(ProgramTerminal, MarksHitsInBoldOrBetweenAsterisks)
{
    const Lines search = {"search", "painted"};
    EXPECT_THAT(Show({200, {}}, search), HasSubstr("stripes were \033[1mpainted\033[0m yesterday"));
    for (const Terminal& colorless :
         {Terminal{200, {{"NO_COLOR", "1"}}}, Terminal{200, {{"TERM", "dumb"}}}, Terminal{200, {{"TERM", ""}}}}) {
        const std::string shown = Show(colorless, search);
        EXPECT_THAT(shown, HasSubstr("stripes were *painted* yesterday"));
        EXPECT_THAT(shown, Not(HasSubstr("\033")));
    }
    EXPECT_THAT(home_->Run(search).out, HasSubstr("stripes were *painted* yesterday")) << "no terminal";
}

TEST_F(ProgramTerminal, ShowsANoteWithoutAPagerWhereOneCannotWork)
{
    (void)home_->Run({"search", "painted"});
    const std::string shown = Show({80, {{"TERM", "dumb"}}}, {"open", "1"});
    EXPECT_THAT(shown, testing::StartsWith("Form: Memo\nSubject: Zebra crossings"));
    EXPECT_THAT(shown, Not(HasSubstr("\033")));
    EXPECT_THAT(Show({80, {{"TERM", "dumb"}, {"PAGER", "sed s/^/paged:/"}}}, {"open", "1"}),
                testing::StartsWith("paged:Form: Memo\npaged:Subject:"));
}

TEST_F(ProgramTerminal, IsAsWideAsItSaysWhereTheSystemDoesNotKnow)
{
    for (const std::string& line : LinesOf(Show({0, {{"COLUMNS", "30"}}}, {"search", "zebra"})))
        EXPECT_LE(ScreenColumns(line), 30) << line;
    for (const std::string& line : LinesOf(Show({0, {}}, {"search", "zebra"})))
        EXPECT_LE(ScreenColumns(line), 80) << line;
}

TEST_F(ProgramTerminal, PrintsWholeLinesWhereThereIsNoTerminal)
{
    (void)home_->Run({"search", "painted"});
    const Lines history = LinesOf(home_->Run({"history"}).out);
    ASSERT_EQ(history.size(), 2U);
    EXPECT_THAT(history, Each(testing::ContainsRegex("^2[0-9T:.-]+Z\t.*\tPavex:///[0-9A-F]{16}//[0-9A-F]{32}$")));
    EXPECT_THAT(
        home_->Run({"open", "1"}).out,
        HasSubstr("\nThe zebra's stripes were painted yesterday, and http://www.example.org/pictures/of/all/the/"
                  "stripes shows them.\nSecond\n"));
}

}  // namespace
}  // namespace pavex
