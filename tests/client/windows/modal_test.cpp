// tests/client/windows/modal_test.cpp: dialogs, message boxes and the file chooser through the C calls.
#include <gmock/gmock.h>

#include "client/store/charset.h"
#include "client/windows/resource_text.h"
#include "client/windows/text_front_end.h"
#include "tests/client/windows/recording_procedure.h"

namespace {

using pavex::BoxIcon;
using testing::ElementsAre;

// A front end that leaves at once, and answers as it is told.
class LeavingFrontEnd : public pavex::FrontEnd {
public:
    LeavingFrontEnd() { pavex::SetFrontEnd(this); }
    ~LeavingFrontEnd() override { pavex::SetFrontEnd(nullptr); }
    void Run(pavex::Dialog&) override { ++runs; }
    int MessageBox(const pavex::MessageBoxRequest& box) override
    {
        boxes.push_back(box);
        return pavex::kBoxAnswerOk;
    }
    bool ChooseFile(std::string* path) override
    {
        *path = chosen;
        return !chosen.empty();
    }
    int runs = 0;
    std::string chosen;
    std::vector<pavex::MessageBoxRequest> boxes;
};

int EndAtCancel(unsigned long window, unsigned int message, unsigned long wParam)
{
    if (message == kMessageCommand && (wParam & 0xFFFF) == 2)
        EndDialog(window, 2);
    return 0;
}

TEST(Modal, CancelsADialogThatTheFrontEndAbandons)
{
    LeavingFrontEnd frontEnd;
    sentMessages.clear();
    onMessage = EndAtCancel;
    EXPECT_EQ(UIXDialogBox(0, 2070, RecordingProcedure), 2);
    EXPECT_THAT(sentMessages, ElementsAre(SentMessage{272, 0}, SentMessage{273, 2}));
    EXPECT_EQ(frontEnd.runs, 1);
}

TEST(Modal, ShowsNoDialogThatEndsWhileItIsInitialized)
{
    LeavingFrontEnd frontEnd;
    onMessage = [](unsigned long window, unsigned int, unsigned long) {
        EndDialog(window, 7);
        return 1;
    };
    EXPECT_EQ(UIXDialogBox(0, 2070, RecordingProcedure), 7);
    EXPECT_EQ(frontEnd.runs, 0);
}

TEST(Modal, CannotOpenADialogWithoutItsResourceProcedureOrFrontEnd)
{
    {
        LeavingFrontEnd frontEnd;
        EXPECT_EQ(UIXDialogBox(0, 2071, RecordingProcedure), -1);
        EXPECT_EQ(UIXDialogBox(0, 2070, nullptr), -1);
    }
    EXPECT_EQ(UIXDialogBox(0, 2070, RecordingProcedure), -1);
    EXPECT_EQ(UIXMessageBox(0, "text", "caption", kBoxOk, 0), 0);
    char path[256];
    EXPECT_EQ(DeskBrowseGetLocalFile(0, path, sizeof path), kStatusCancelled);
}

TEST(Modal, ShowsABoxWithTheIconAndButtonsOfItsFlags)
{
    LeavingFrontEnd frontEnd;
    const std::string smile = "\xF0\x9F\x98\x80";
    EXPECT_EQ(UIXMessageBox(0, pavex::ScsFromUtf8(smile).c_str(), nullptr, kBoxOkCancelQuestion, 0), 1);
    UIXMessageBox(0, "", "", kBoxOk, 0);
    UIXMessageBox(0, "", "", kBoxWarning, 0);
    UIXMessageBox(0, "", "", kBoxOkCancelWarning, 0);
    ASSERT_EQ(frontEnd.boxes.size(), 4U);
    EXPECT_EQ(frontEnd.boxes[0].text, smile);
    std::vector<std::pair<BoxIcon, bool>> looks;
    for (const pavex::MessageBoxRequest& box : frontEnd.boxes)
        looks.emplace_back(box.icon, box.canCancel);
    EXPECT_THAT(looks, ElementsAre(std::pair(BoxIcon::Question, true), std::pair(BoxIcon::None, false),
                                   std::pair(BoxIcon::Warning, false), std::pair(BoxIcon::Warning, true)));
}

TEST(Modal, AnswersTheChosenPathInTheStoresCharacterSet)
{
    LeavingFrontEnd frontEnd;
    char path[256] = "?";
    EXPECT_EQ(DeskBrowseGetLocalFile(0, path, sizeof path), kStatusCancelled);
    frontEnd.chosen = "/\xF0\x9F\x98\x80.vlt";
    EXPECT_EQ(DeskBrowseGetLocalFile(0, path, sizeof path), 0);
    EXPECT_EQ(path, pavex::ScsFromUtf8(frontEnd.chosen));
}

TEST(Modal, RefusesAPathThatDoesNotFitInsteadOfCuttingIt)
{
    LeavingFrontEnd frontEnd;
    char path[256] = "?";
    frontEnd.chosen = "/" + std::string(255, 'a');
    EXPECT_EQ(DeskBrowseGetLocalFile(0, path, sizeof path), kStatusCancelled);
    EXPECT_STREQ(path, "");
    ASSERT_EQ(frontEnd.boxes.size(), 1U);
    EXPECT_EQ(frontEnd.boxes[0].text, pavex::kTextPathTooLong.english);
    frontEnd.chosen.pop_back();
    EXPECT_EQ(DeskBrowseGetLocalFile(0, path, sizeof path), 0);
}

}  // namespace
