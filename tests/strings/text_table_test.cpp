// tests/strings/text_table_test.cpp: the add-in's texts as they are shipped.
// Every number that the code names has a text, with the conversions that its arguments need.
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <set>
#include <string>

#include "client/foundation/host.h"
#include "client/store/host.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"
#include "tests/support/temporary_directory.h"

namespace {

const std::string kIds = TORVIK_SOURCE_DIR "/strings/string_ids.h";
const std::string kEnglish = TORVIK_SOURCE_DIR "/resources/en.lproj/libtorvik.strings";

std::set<int> Numbers(const std::string& text, const std::string& pattern)
{
    std::set<int> numbers;
    const std::regex rule(pattern);
    for (std::sregex_iterator match(text.begin(), text.end(), rule), end; match != end; ++match)
        numbers.insert(std::stoi((*match)[1]));
    return numbers;
}

std::string Conversions(const std::string& text)
{
    std::string found;
    for (size_t i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == '%' && text[++i] != '%')
            found += text[i];
    }
    return found;
}

class TextTable : public testing::Test {
protected:
    TextTable()
    {
        pavex::SetUserLanguages({"en"});
        pavex::SetAddInBundle(TORVIK_SOURCE_DIR "/resources");
    }
    ~TextTable() override { pavex::SetAddInBundle(""); }

    static std::string Text(int id)
    {
        CString text;
        text.LoadString(id);
        return text.toString();
    }
};

TEST_F(TextTable, HasATextForEveryNumberInTheCodeAndNoOther)
{
    const std::set<int> named = Numbers(ReadWholeFile(kIds), "= (\\d+);");
    const std::set<int> written = Numbers(ReadWholeFile(kEnglish), "\n\"(\\d+)\" = ");
    EXPECT_GT(named.size(), 50U);
    EXPECT_EQ(named, written);
    for (const int id : named)
        EXPECT_NE(Text(id), std::to_string(id));
}

TEST_F(TextTable, TakesTheArgumentsThatTheCodeGives)
{
    const std::map<int, std::string> arguments = {
        {kStringProgressOverall, "ddd"}, {kStringProgressDatabase, "ddd"},
        {kLogSendFailed, "d"},           {kLogPropertyFailed, "sd"},
        {kLogCannotOpen, "s"},           {kLogOpened, "s"},
        {kLogNoModifiedTime, "s"},       {kLogListed, "sTTX"},
        {kLogNothingModified, "s"},      {kLogNotListed, "s"},
        {kLogPassCounters, "suuuuu"},    {kLogPassStopped, "s"},
        {kLogNoteNotOpened, "X"},        {kLogBlankFailed, "sud"},
        {kLogPassIndexed, "su"},         {kLogNoteUrl, "s"},
    };
    for (const int id : Numbers(ReadWholeFile(kIds), "= (\\d+);")) {
        const auto given = arguments.find(id);
        EXPECT_EQ(Conversions(Text(id)), given != arguments.end() ? given->second : "") << id << " " << Text(id);
    }
}

TEST_F(TextTable, HasAMenuTextThatFitsTheClientsRecord)
{
    EXPECT_EQ(Text(kStringMenuEntry), "Desktop Search...");
    EXPECT_LE(Text(kStringMenuEntry).size(), 63U);
}

TEST_F(TextTable, EndsItsLeadInsWithABlank)
{
    for (const int id : {kStringLeadDatabase, kStringLeadActivity, kStringLeadOverall})
        EXPECT_EQ(Text(id).substr(Text(id).size() - 2), ": ");
    EXPECT_EQ(Text(kStringStateIndexedUpTo).back(), ' ');
}

TEST_F(TextTable, IsLaidIntoTheBundleByTheBuild)
{
    EXPECT_EQ(ReadWholeFile(TORVIK_BINARY_DIR "/share/pavex/torvik/en.lproj/libtorvik.strings"),
              ReadWholeFile(kEnglish));
}

}  // namespace
