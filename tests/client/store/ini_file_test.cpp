// tests/client/store/ini_file_test.cpp: ini text: what is kept, and values that need quoting.
#include "client/store/ini_file.h"

#include <gtest/gtest.h>

using namespace pavex;

TEST(IniText, KeepsOtherVariablesTheirOrderAndComments)
{
    IniText ini("; about this file\n\n[Other]\nx=1\n\n[Pavex]\n; about b\nb=2\na=1\n");
    ASSERT_TRUE(ini.Set("Pavex", "a", "3"));
    ASSERT_TRUE(ini.Set("Pavex", "new", "4"));
    const std::string text = ini.Text();
    std::vector<size_t> places;
    for (const char* part : {"; about this file", "[Other]", "x=1", "[Pavex]", "; about b", "b=2", "a=3", "new=4"}) {
        places.push_back(text.find(part));
        EXPECT_NE(places.back(), std::string::npos) << part << " in\n" << text;
    }
    EXPECT_TRUE(std::is_sorted(places.begin(), places.end())) << text;
    EXPECT_EQ(IniText(text).Text(), text);
}

TEST(IniText, FindsVariablesWithoutRegardToCase)
{
    IniText ini("[pavex]\nGDSFreqMinutes=5\n");
    const VariableMap variables = ini.Variables("Pavex");
    EXPECT_EQ(variables.find("gdsfreqminutes")->second, "5");
    ASSERT_TRUE(ini.Set("Pavex", "GDSFREQMINUTES", "6"));
    EXPECT_EQ(ini.Variables("Pavex").size(), 1u);
}

TEST(IniText, RemovesAVariable)
{
    IniText ini("[Pavex]\na=1\nb=2\n");
    ini.Remove("Pavex", "a");
    ini.Remove("Pavex", "absent");
    EXPECT_EQ(ini.Variables("Pavex"), (VariableMap{{"b", "2"}}));
}

TEST(IniText, ReadsBackEveryValue)
{
    for (const std::string& value :
         {std::string(), std::string("plain"), std::string("a = b ; c # d"), std::string(" blanks "),
          std::string("\"quoted\""), std::string("\""), std::string("two\nlines\r\t\\n"), std::string("C:\\new"),
          std::string("\x01\x7F", 2), std::string("gr\xC3\xBCn \xF0\x9F\x98\x80"), std::string("<<<TAG"),
          std::string("[x]"), std::string("=x"), std::string(200000, 'v')}) {
        IniText ini("");
        ASSERT_TRUE(ini.Set("Pavex", "name", value));
        ASSERT_TRUE(ini.Set("Pavex", "next", "1"));
        EXPECT_EQ(IniText(ini.Text()).Variables("Pavex"), (VariableMap{{"name", value}, {"next", "1"}}));
    }
}

TEST(IniText, RefusesNamesThatNoLineCanHold)
{
    IniText ini("");
    for (const char* name : {"", "a=b", ";a", "#a", "[a", "a\nb", " a", "a "})
        EXPECT_FALSE(ini.Set("Pavex", name, "1")) << name;
    EXPECT_TRUE(ini.Variables("Pavex").empty());
}

TEST(IniText, TakesForeignQuotingAsItStands)
{
    for (const char* written : {"\"a\\q\"", "\"a\"b\"", "\"a", "a\"", "\"\\x4\""})
        EXPECT_EQ(UnquoteValue(written), written);
    EXPECT_EQ(UnquoteValue("\"a b\""), "a b");
}

TEST(IniText, SurvivesAnyBytes)
{
    const std::string odd = "[Pavex\nno section\n=\n==\n[]\na\n\xFF\xFE=\x80\n" + std::string("b=1\0\nc=2", 8);
    IniText ini(odd);
    ASSERT_TRUE(ini.Set("Pavex", "d", "3"));
    EXPECT_EQ(IniText(ini.Text()).Variables("Pavex").at("d"), "3");
}

TEST(IniText, ReadsAFileWithAByteOrderMarkAndCarriageReturns)
{
    EXPECT_EQ(IniText("\xEF\xBB\xBF[Pavex]\r\na=1\r\n").Variables("Pavex"), (VariableMap{{"a", "1"}}));
}
