// tests/client/import/header_text_test.cpp: header fields, well-formed and as seen.
#include "client/import/header_text.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

std::string Decoded(std::string_view raw, std::string_view guess = {})
{
    return DecodeHeaderText(UnfoldHeader(raw), guess);
}

TEST(HeaderText, UnfoldsLinesIntoOne)
{
    EXPECT_EQ(UnfoldHeader(" one\r\n two\n\tthree \n"), "one two three");
    EXPECT_EQ(UnfoldHeader(""), "");
    EXPECT_EQ(UnfoldHeader(" \r\n "), "");
}

TEST(HeaderText, DecodesBothEncodings)
{
    EXPECT_EQ(Decoded("=?utf-8?Q?caf=C3=A9_noir?="), "café noir");
    EXPECT_EQ(Decoded("=?UTF-8?B?Y2Fmw6k=?="), "café");
    EXPECT_EQ(Decoded("=?iso-8859-1*fr?q?=E9t=E9?="), "été");
}

TEST(HeaderText, DropsWhiteSpaceOnlyBetweenEncodedWords)
{
    EXPECT_EQ(Decoded("=?utf-8?q?a?=\n =?utf-8?q?b?= c =?utf-8?q?d?="), "ab c d");
}

TEST(HeaderText, JoinsCharactersThatWereCutInTwo)
{
    EXPECT_EQ(Decoded("=?utf-8?b?5pel5g==?= =?utf-8?b?nKw=?="), "日本");
    EXPECT_EQ(Decoded("=?utf-8?q?=E6=97?= =?UTF-8?b?pQ==?="), "日");
}

TEST(HeaderText, DecodesWordsInsideQuotesAndText)
{
    EXPECT_EQ(Decoded("\"=?utf-8?q?J=C3=BCrgen?=\""), "\"Jürgen\"");
    EXPECT_EQ(Decoded("Re:=?utf-8?q?=C3=A9?=!"), "Re:é!");
}

TEST(HeaderText, TakesBrokenWords)
{
    EXPECT_EQ(Decoded("=?utf-8?B?w6TDtsO8w58gdW5k?= x"), "äöüß und x");  // no padding
    EXPECT_EQ(Decoded("=?utf-8?Q?two words?="), "two words");
    EXPECT_EQ(Decoded("=?utf-8?Q?=?="), "=");
    EXPECT_EQ(Decoded("=?utf-8?Q?=C3=A9=4?="), "é=4");
    EXPECT_EQ(Decoded("=?x-none?Q?caf=E9?="), "café");
    EXPECT_EQ(Decoded("=?utf-8?Q?"
                      "?="),
              "");
}

TEST(HeaderText, LeavesAloneWhatIsNoWord)
{
    for (const char* text : {"=?utf-8?Q?never ended", "=?utf-8?X?abc?=", "=?", "a =? b ?= c",
                             "=?"
                             "?Q?x?="})
        EXPECT_EQ(Decoded(text), text);
}

TEST(HeaderText, GuessesTheCharsetOfRawBytes)
{
    EXPECT_EQ(Decoded("Bl\xC3\xA5"), "Blå");
    EXPECT_EQ(Decoded("Bl\xE5"), "Blå");
    EXPECT_EQ(Decoded("\xF0\xF2\xE9", "koi8-r"), "ПРИ");
}

TEST(HeaderText, StaysOnOneLineWhateverAWordHolds)
{
    EXPECT_EQ(Decoded("=?utf-8?Q?a=0D=0Ab=00c=09d?="), "a b c d");
}

}  // namespace
}  // namespace pavex
