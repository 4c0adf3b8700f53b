// tests/strings/host_text_test.cpp: text on its way to the client.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/windows/front_end.h"
#include "platform/windows.h"
#include "strings/cstring.h"
#include "strings/string_resources.h"

namespace {

constexpr const char* kEmojiUtf8 = "\xF0\x9F\x98\x80";
constexpr const char* kEmojiScs = "\xED\xA0\xBD\xED\xB8\x80";

// Remembers the boxes and answers them all alike.
class AnsweringFrontEnd : public pavex::FrontEnd {
public:
    explicit AnsweringFrontEnd(int answer) : answer_(answer) { pavex::SetFrontEnd(this); }
    ~AnsweringFrontEnd() override { pavex::SetFrontEnd(nullptr); }
    void Run(pavex::Dialog& /*dialog*/) override {}
    int MessageBox(const pavex::MessageBoxRequest& box) override
    {
        boxes.push_back(box);
        return answer_;
    }
    bool ChooseFile(std::string* /*path*/) override { return false; }

    std::vector<pavex::MessageBoxRequest> boxes;

private:
    int answer_;
};

TEST(PlatformMessageBox, ShowsTextAndCaptionAndReturnsTheAnswer)
{
    AnsweringFrontEnd user(pavex::kBoxAnswerOk);
    EXPECT_EQ(PlatformMessageBox(0x50001, CString("Really? \xF0\x9F\x98\x80"), "caption", kBoxOkCancelQuestion),
              kAnswerOk);
    ASSERT_EQ(user.boxes.size(), 1U);
    EXPECT_EQ(user.boxes[0].text, std::string("Really? ") + kEmojiUtf8);
    EXPECT_EQ(user.boxes[0].caption, "caption");
    EXPECT_EQ(user.boxes[0].icon, pavex::BoxIcon::Question);
    EXPECT_TRUE(user.boxes[0].canCancel);
}

TEST(PlatformMessageBox, AnswersARefusal)
{
    AnsweringFrontEnd user(pavex::kBoxAnswerCancel);
    EXPECT_NE(PlatformMessageBox(1, "text", "caption", kBoxOkCancelWarning), kAnswerOk);
    ASSERT_EQ(user.boxes.size(), 1U);
    EXPECT_EQ(user.boxes[0].icon, pavex::BoxIcon::Warning);
}

TEST(PlatformMessageBox, CutsALongTextWhereTheBufferEnds)
{
    AnsweringFrontEnd user(pavex::kBoxAnswerOk);
    PlatformMessageBox(1, CString(std::wstring(5000, L'x')), CString(std::wstring(1024, L'y')), kBoxOk);
    ASSERT_EQ(user.boxes.size(), 1U);
    EXPECT_EQ(user.boxes[0].text, std::string(1024, 'x'));
    EXPECT_EQ(user.boxes[0].caption, std::string(1024, 'y'));
}

TEST(PlatformMessageBox, CutsBetweenCharacters)
{
    AnsweringFrontEnd user(pavex::kBoxAnswerOk);
    PlatformMessageBox(1, CString(std::wstring(5000, L'\x20AC')), "", kBoxOk);
    ASSERT_EQ(user.boxes.size(), 1U);
    std::string expected;
    for (int i = 0; i < 341; ++i)  // 341 characters of three bytes fit in 1024
        expected += "\xE2\x82\xAC";
    EXPECT_EQ(user.boxes[0].text, expected);
}

TEST(UnicodeToSCS, ConvertsTheLowBitsOfEachCharacter)
{
    char scs[64] = {};
    const CString text(kEmojiUtf8);
    const unsigned long bytes = static_cast<unsigned long>(text.GetLength()) * sizeof(wchar_t);
    EXPECT_EQ(UnicodeToSCS(text.c_str(), bytes, scs, sizeof scs), 6U);
    EXPECT_STREQ(scs, kEmojiScs);
    EXPECT_EQ(UnicodeToSCS(L"abc", 2 * sizeof(wchar_t) + 3, scs, sizeof scs), 2U);  // whole characters count
    EXPECT_EQ(UnicodeToSCS(L"", 0, scs, sizeof scs), 0U);
}

TEST(UnicodeToSCS, WritesNoMoreThanTheTargetHolds)
{
    char scs[8] = "-------";
    EXPECT_EQ(UnicodeToSCS(L"abcdef", 6 * sizeof(wchar_t), scs, 3), 3U);
    EXPECT_STREQ(scs, "abc----");
}

TEST(TranslateText, GoesToTheStoreAndBack)
{
    char scs[64] = {};
    EXPECT_EQ(TranslateText(kEmojiUtf8, 4, scs, 63, true), 6);
    EXPECT_STREQ(scs, kEmojiScs);
    char native[64] = {};
    EXPECT_EQ(TranslateText(scs, 6, native, 63, false), 4);
    EXPECT_STREQ(native, kEmojiUtf8);
    EXPECT_EQ(TranslateText(kEmojiUtf8, 4, scs, 5, true), 0);  // it does not fit whole
}

}  // namespace
