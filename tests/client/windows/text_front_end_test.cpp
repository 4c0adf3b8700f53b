// tests/client/windows/text_front_end_test.cpp
#include "client/windows/text_front_end.h"

#include <fcntl.h>
#include <sstream>
#include <unistd.h>

#include <gmock/gmock.h>

#include "tests/client/windows/recording_procedure.h"
#include "tests/client/windows/test_pipe.h"
#include "tests/support/temporary_directory.h"

namespace {

using pavex::BoxAnswers;
using pavex::BoxIcon;
using pavex::TextFrontEnd;
using pavex::TextFrontEndOptions;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// Ends the dialog for OK and Cancel, as a dialog procedure would.
int EndingProcedure(unsigned long window, unsigned int message, unsigned long wParam)
{
    const unsigned long id = wParam & 0xFFFF;
    if (message != kMessageCommand || (id != 1 && id != 2))
        return 0;
    EndDialog(window, static_cast<long>(id));
    return 1;
}

class TextFrontEndTest : public testing::Test {
protected:
    TextFrontEndTest() { onMessage = EndingProcedure; }

    TextFrontEnd WithScript(std::vector<pavex::TextAction> script)
    {
        TextFrontEndOptions options;
        options.script = std::move(script);
        options.out = &out_;
        options.messages = &messages_;
        return TextFrontEnd(std::move(options));
    }

    RecordedDialog dialog_;
    std::ostringstream out_;
    std::ostringstream messages_;
};

TEST_F(TextFrontEndTest, ClicksACheckBoxOnlyWhenItIsNotSoAlready)
{
    CheckDlgButton(dialog_.Window(), 3388, 1);
    TextFrontEnd frontEnd =
        WithScript({pavex::SetCheckAction(3388, true), pavex::SetCheckAction(3389, true), pavex::PressAction(1)});
    frontEnd.Run(dialog_);
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{273, 3389}, SentMessage{273, 1}));
    EXPECT_EQ(frontEnd.Error(), "");
    EXPECT_EQ(frontEnd.Result(), 1);
}

TEST_F(TextFrontEndTest, CancelsTheDialogAtTheFirstActionThatFails)
{
    EnableWindow(GetDlgItem(dialog_.Window(), 3388), false);
    TextFrontEnd frontEnd = WithScript({pavex::SetCheckAction(3388, true), pavex::PressAction(1)});
    frontEnd.Run(dialog_);
    EXPECT_EQ(frontEnd.Error(), "control 3388 (encrypted) is disabled");
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{273, 2}));
    EXPECT_EQ(frontEnd.Result(), 2);
}

TEST_F(TextFrontEndTest, CancelsADialogThatTheScriptLeavesOpen)
{
    SetTimer(dialog_.Window(), 194, 60000, nullptr);
    TextFrontEnd frontEnd = WithScript({pavex::TickAction(), pavex::ShowTextAction(), pavex::ShowJsonAction()});
    frontEnd.Run(dialog_);
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{275, 194}, SentMessage{273, 2}));
    EXPECT_THAT(out_.str(), HasSubstr("Desktop Search Settings\n"));
    EXPECT_THAT(out_.str(), HasSubstr("{\"controls\":{\"3399\":"));
}

TEST_F(TextFrontEndTest, AddsTheNamedFileThroughTheFileChooser)
{
    TextFrontEnd frontEnd = WithScript({pavex::AddFileAction(3384, 3383, "/a.vlt"), pavex::PressAction(1)});
    onMessage = [&](unsigned long window, unsigned int message, unsigned long wParam) {
        std::string path;
        if (wParam == 3384 && frontEnd.ChooseFile(&path))
            UIXListboxAddItem(window, 3383, path.c_str());
        return EndingProcedure(window, message, wParam);
    };
    frontEnd.Run(dialog_);
    EXPECT_THAT(dialog_.Find(3383)->entries, ElementsAre("/a.vlt"));
    EXPECT_EQ(frontEnd.Result(), 1);
    std::string path;
    EXPECT_FALSE(frontEnd.ChooseFile(&path));  // the answer counted once
}

TEST_F(TextFrontEndTest, ReportsWhyAFileWasNotAdded)
{
    TextFrontEnd frontEnd = WithScript({pavex::AddFileAction(3384, 3383, "/a.vlt")});
    onMessage = [&](unsigned long window, unsigned int message, unsigned long wParam) {
        if (wParam == 3384)
            frontEnd.MessageBox({"There is no such database.", "/a.vlt", BoxIcon::Warning, false});
        return EndingProcedure(window, message, wParam);
    };
    frontEnd.Run(dialog_);
    EXPECT_EQ(frontEnd.Error(), "/a.vlt was not added: There is no such database.");
    EXPECT_EQ(frontEnd.Result(), 2);
}

TEST_F(TextFrontEndTest, SelectsAFileBeforeItPressesRemove)
{
    UIXListboxAddItem(dialog_.Window(), 3383, "/a.vlt");
    UIXListboxAddItem(dialog_.Window(), 3383, "/b.vlt");
    TextFrontEnd frontEnd = WithScript({pavex::RemoveFileAction(3385, 3383, "/b.vlt"), pavex::PressAction(1)});
    frontEnd.Run(dialog_);
    EXPECT_THAT(sentMessages,
                ElementsAre(SentMessage{273, 1UL << 16 | 3383}, SentMessage{273, 3385}, SentMessage{273, 1}));
    EXPECT_EQ(dialog_.Find(3383)->selected, 1);
}

TEST_F(TextFrontEndTest, ReportsAFileToRemoveThatIsNotListed)
{
    TextFrontEnd frontEnd = WithScript({pavex::RemoveFileAction(3385, 3383, "/b.vlt")});
    frontEnd.Run(dialog_);
    EXPECT_EQ(frontEnd.Error(), "/b.vlt is not in the list");
}

TEST_F(TextFrontEndTest, AnswersQuestionsAsToldAndRecordsThem)
{
    const pavex::MessageBoxRequest question = {"Sure?", "Reindex", BoxIcon::Question, true};
    const pavex::MessageBoxRequest note = {"Full.", "List", BoxIcon::None, false};
    for (const auto& [answers, expected] : {std::pair(BoxAnswers::Yes, 1), std::pair(BoxAnswers::No, 2)}) {
        TextFrontEndOptions options;
        options.answers = answers;
        options.messages = &messages_;
        TextFrontEnd frontEnd(options);
        EXPECT_EQ(frontEnd.MessageBox(question), expected);
        EXPECT_EQ(frontEnd.MessageBox(note), 1);
        ASSERT_EQ(frontEnd.Boxes().size(), 2U);
        EXPECT_EQ(frontEnd.Boxes()[0].box.caption, "Reindex");
        EXPECT_EQ(frontEnd.Boxes()[0].answer, expected);
    }
    EXPECT_EQ(messages_.str(), "Question: Reindex\nSure?\n-> OK\nNote: List\nFull.\n"
                               "Question: Reindex\nSure?\n-> Cancel\nNote: List\nFull.\n");
}

TEST_F(TextFrontEndTest, AsksAndTakesTheEndOfTheInputForNo)
{
    TestPipe input;
    input.Write("y\nno\n");
    input.CloseWriting();
    TextFrontEndOptions options;
    options.input = input.Reading();
    TextFrontEnd frontEnd(options);
    const pavex::MessageBoxRequest question = {"Sure?", "Reindex", BoxIcon::Question, true};
    EXPECT_EQ(frontEnd.MessageBox(question), 1);
    EXPECT_EQ(frontEnd.MessageBox(question), 2);
    EXPECT_EQ(frontEnd.MessageBox(question), 2);
}

TEST_F(TextFrontEndTest, FollowsTheCommandsOfATerminal)
{
    TestPipe input;
    input.Write("check drafts on\n\ndance\nselect 7\nshow\nhelp\npress ok\nshow\n");
    TextFrontEndOptions options;
    options.interactive = true;
    options.input = input.Reading();
    options.out = &out_;
    options.messages = &messages_;
    TextFrontEnd frontEnd(options);
    frontEnd.Run(dialog_);
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{273, 3389}, SentMessage{273, 1}));
    EXPECT_EQ(frontEnd.Result(), 1);
    EXPECT_EQ(frontEnd.Error(), "");
    EXPECT_THAT(out_.str(), HasSubstr("[x] 3389 drafts"));
    EXPECT_THAT(out_.str(), HasSubstr("press BUTTON"));
    EXPECT_THAT(messages_.str(), HasSubstr("no command \"dance\"; help lists them\n"));
    EXPECT_THAT(messages_.str(), HasSubstr("control 3383 (databases) has no entry 7; it has 0\n"));
}

TEST_F(TextFrontEndTest, TellsThatALineIsTooLongAndTakesTheNext)
{
    TemporaryDirectory folder;
    WriteWholeFile(folder / "input", std::string(100000, 'x') + " 3389 on\npress 1\n");
    const int input = open((folder / "input").c_str(), O_RDONLY | O_CLOEXEC);
    TextFrontEndOptions options;
    options.interactive = true;
    options.input = input;
    options.messages = &messages_;
    TextFrontEnd frontEnd(options);
    frontEnd.Run(dialog_);
    close(input);
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{273, 1}));
    EXPECT_THAT(messages_.str(), HasSubstr("> a command has at most 65536 bytes; this one is passed over\n> "));
}

TEST_F(TextFrontEndTest, LetsTimersPassWhileItWaitsForACommand)
{
    TestPipe input;
    SetTimer(dialog_.Window(), 194, 5, nullptr);
    onMessage = [&](unsigned long window, unsigned int message, unsigned long wParam) {
        if (message == kMessageTimer && sentMessages.size() == 3)
            input.Write("press cancel\n");
        return EndingProcedure(window, message, wParam);
    };
    TextFrontEndOptions options;
    options.interactive = true;
    options.input = input.Reading();
    TextFrontEnd frontEnd(options);
    frontEnd.Run(dialog_);
    EXPECT_THAT(sentMessages,
                ElementsAre(SentMessage{275, 194}, SentMessage{275, 194}, SentMessage{275, 194}, SentMessage{273, 2}));
}

TEST_F(TextFrontEndTest, CancelsWhenTheTerminalGoesAway)
{
    TestPipe input;
    input.CloseWriting();
    TextFrontEndOptions options;
    options.interactive = true;
    options.input = input.Reading();
    TextFrontEnd frontEnd(options);
    frontEnd.Run(dialog_);
    EXPECT_EQ(frontEnd.Result(), 2);
}

TEST_F(TextFrontEndTest, AsksATerminalForTheFileThatIsAdded)
{
    TestPipe input;
    input.Write("/typed.vlt\n\n");
    TextFrontEndOptions options;
    options.interactive = true;
    options.input = input.Reading();
    TextFrontEnd frontEnd(options);
    std::string path;
    EXPECT_TRUE(frontEnd.ChooseFile(&path));
    EXPECT_EQ(path, "/typed.vlt");
    EXPECT_FALSE(frontEnd.ChooseFile(&path));
    EXPECT_THAT(sentMessages, IsEmpty());
}

}  // namespace
