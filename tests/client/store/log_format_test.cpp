// tests/client/store/log_format_test.cpp: places for arguments, and lines without control characters.
#include "client/store/log_format.h"

#include <gtest/gtest.h>

using namespace pavex;

namespace {

std::string Filled(std::string_view text, const std::vector<std::string>& arguments)
{
    const auto format = LogFormat::Parse(text);
    return format ? format->Kinds() + ": " + format->Fill(arguments) : "malformed";
}

}  // namespace

TEST(LogFormat, FillsArgumentsInTheirOrder)
{
    EXPECT_EQ(Filled("no places", {}), ": no places");
    EXPECT_EQ(Filled("%s has %d of %u, %X at %T, 100%%", {"a", "1", "2", "F", "now"}),
              "sduXT: a has 1 of 2, F at now, 100%");
}

TEST(LogFormat, LetsATranslationChangeTheOrder)
{
    EXPECT_EQ(Filled("%2$d in %1$s", {"a", "1"}), "sd: 1 in a");
    EXPECT_EQ(Filled("%1$s, %1$s and %2$u", {"a", "1"}), "su: a, a and 1");
}

TEST(LogFormat, RefusesEverythingElse)
{
    for (const char* text :
         {"%",   "%q",  "%ld",  "%5d",     "%-s",     "%@",        "%n",        "%.*s",   "%1s",     "%0$s",
          "%$s", "%1$", "%2$s", "%1$s %s", "%s %1$s", "%1$s %1$d", "%1$s %3$s", "%999$s", "%9999$s", "a % b"})
        EXPECT_EQ(Filled(text, {"a", "b", "c"}), "malformed") << text;
}

TEST(OneLine, EscapesControlCharactersOnly)
{
    EXPECT_EQ(OneLine("a\nb\tc\x01\x7F\x1B[0m"), "a\\nb\\tc\\x01\\x7F\\x1B[0m");
    EXPECT_EQ(OneLine(std::string("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(OneLine("\xC2\x85\xC2\xA0gr\xC3\xBCn\xC2"), "\\x85\xC2\xA0gr\xC3\xBCn\xC2");
}
