// tests/client/store/error_text_test.cpp: AddInFormatErrorText.
#include <gtest/gtest.h>

#include <string>

#include "platform/store.h"

TEST(AddInFormatErrorText, PrintsIdsTextsAndNumbers)
{
    char buffer[1024];
    const TIMEDATE id{{0x00000001, 0xABCDEF01}};
    const WORD length = AddInFormatErrorText(buffer, "Pavex:///%H//%H %s %d %u %X %04X %% %-3d| %.2s", &id, &id, "text",
                                             -1, 4294967295u, 255u, 255u, 7, "abc");
    EXPECT_STREQ(buffer, "Pavex:///ABCDEF0100000001//ABCDEF0100000001 text -1 4294967295 FF 00FF % 7  | ab");
    EXPECT_EQ(length, std::string(buffer).size());
}

TEST(AddInFormatErrorText, StopsReadingArgumentsAtAnUnknownConversion)
{
    char buffer[1024];
    AddInFormatErrorText(buffer, "%d %q %s", 1, "never read");
    EXPECT_STREQ(buffer, "1 %q %s");
    AddInFormatErrorText(buffer, "100%");
    EXPECT_STREQ(buffer, "100%");
    AddInFormatErrorText(buffer, "%*d", 1, 2);
    EXPECT_STREQ(buffer, "%*d");
}

TEST(AddInFormatErrorText, NeverWritesPastItsBuffer)
{
    char buffer[1024 + 8];
    buffer[1024] = '#';
    const std::string longText = std::string(1022, 'x') + "\xC3\xBC" + std::string(100, 'y');
    EXPECT_EQ(AddInFormatErrorText(buffer, longText.c_str()), 1022);
    EXPECT_EQ(AddInFormatErrorText(buffer, "%s%s", longText.c_str(), longText.c_str()), 1023);
    EXPECT_EQ(buffer[1023], '\0');
    EXPECT_EQ(buffer[1024], '#');
}
