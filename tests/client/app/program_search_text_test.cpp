// tests/client/app/program_search_text_test.cpp: how texts in all scripts are found, with the real engine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

// A home with metafiles that are called as their texts are.
class ProgramSearchText : public testing::Test {
protected:
    void Write(const std::string& name, const std::string& text)
    {
        const std::string folder = home_.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight/0123456789ABCDEF/");
        fs::create_directories(folder);
        WriteWholeFile(folder + name + ".vPavexNote",
                       "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                       "<key>com.quorvex.pavex.uri</key><string>Pavex:///" +
                           name + "</string><key>com.quorvex.pavex.content</key><string>" + text +
                           "</string></dict></plist>\n");
    }
    // The snippets of the hits, marked with brackets, by the alphabet.
    Lines Find(const std::string& word)
    {
        const ProgramResult result = home_.Run({"search", "--json", "--", word});
        EXPECT_EQ(result.exit, 0) << result.err;
        Lines found;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);)
            found.push_back(Marked(Json::parse(line)));
        std::ranges::sort(found);
        return found;
    }

    ProgramHome home_;

private:
    static std::string Marked(const Json& hit)
    {
        std::u32string text;
        for (const char32_t c : Utf32(hit["snippet"]))
            text += c;
        size_t added = 0;
        for (const Json& place : hit["hits"]) {
            text.insert(place[0].get<size_t>() + added++, U"[");
            text.insert(place[1].get<size_t>() + added++, U"]");
        }
        return Utf8(text);
    }
    static std::u32string Utf32(const std::string& utf8)
    {
        std::u32string text;
        for (size_t at = 0; at < utf8.size();) {
            const auto first = static_cast<unsigned char>(utf8[at]);
            const size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
            char32_t c = length == 1 ? first : first & (0x3F >> (length - 1));
            for (size_t i = 1; i < length; ++i)
                c = c << 6 | (static_cast<unsigned char>(utf8[at + i]) & 0x3F);
            text += c;
            at += length;
        }
        return text;
    }
    static std::string Utf8(const std::u32string& text) { return fs::path(text).string(); }
};

struct TextRow {
    const char* word;
    Lines found;
};

TEST_F(ProgramSearchText, FindsNumbersAmongSignsWithoutBlanks)
{
    const char* const texts[] = {"価格は500円です",      "資料2022",        "東京2020大会", "第33回", "第3回",
                                 "電話03-1234-5678まで", "令和5年10月11日", "제2022호"};
    int number = 0;
    for (const char* text : texts)
        Write(std::to_string(number++), text);
    std::string lengthy;
    for (int i = 0; i < 40; ++i)
        lengthy += "本町一丁目";  // the text is halved a few times
    Write("long", lengthy + "77番地" + lengthy);
    const TextRow rows[] = {
        {"500", {"価格は[500]円です"}},
        {"500円", {"価格は[500円]です"}},
        {"は500円で", {"価格[は500円で]す"}},
        {"円です", {"価格は500[円です]"}},
        {"価格", {"[価格]は500円です"}},
        {"2022", {"資料[2022]", "제[2022]호"}},
        {"資料2022", {"[資料2022]"}},
        {"제2022호", {"[제2022호]"}},
        {"2020", {"東京[2020]大会"}},
        {"東京2020大会", {"[東京2020大会]"}},
        {"33回", {"第[33回]"}},
        {"3回", {"第[3回]"}},
        {"第33回", {"[第33回]"}},
        {"第3回", {"[第3回]"}},
        {"10月", {"令和5年[10月]11日"}},
        {"5年10月", {"令和[5年10月]11日"}},
        {"03-1234-5678", {"電話[03]-[1234]-[5678]まで"}},
        {"50", {}},
        {"202", {}},
    };
    for (const auto& [word, found] : rows)
        EXPECT_EQ(Find(word), found) << word;
    EXPECT_EQ(Find("77番地").size(), 1U);
}

TEST_F(ProgramSearchText, FindsAnyPartOfThemWithOrWithoutAnAsterisk)
{
    Write("A", "東京都庁 검색엔진");
    Write("B", "zebra");
    for (const char* word : {"東京", "東京*", "京都", "都*", "東京都庁*"})
        EXPECT_EQ(Find(word).size(), 1U) << word;
    EXPECT_EQ(Find("검색*"), Lines{"東京都庁 [검색]엔진"});
    EXPECT_EQ(Find("大阪*"), Lines());
}

TEST_F(ProgramSearchText, TakesNoNoticeOfSignsThatOnlyShapeOthers)
{
    Write("A", "می\u200Cخواهم کتاب\u200Cها");
    Write("B", "Sil\u00ADben\u00ADtren\u00ADnung");
    Write("C", "family \U0001F468\u200D\U0001F469\u200D\U0001F467");
    Write("D", "क्\u200Dष");
    const TextRow rows[] = {
        {"می\u200Cخواهم", {"[می\u200Cخواهم] کتاب\u200Cها"}},
        {"میخواهم", {"[می\u200Cخواهم] کتاب\u200Cها"}},
        {"کتاب\u200Cها", {"می\u200Cخواهم [کتاب\u200Cها]"}},
        {"silbentrennung", {"[Sil\u00ADben\u00ADtren\u00ADnung]"}},
        {"sil\u00ADben\u00ADtren\u00ADnung", {"[Sil\u00ADben\u00ADtren\u00ADnung]"}},
        {"\u202Esilben\u200E*", {"[Sil\u00ADben\u00ADtren\u00ADnung]"}},
        {"sil ben", {}},
    };
    for (const auto& [word, found] : rows)
        EXPECT_EQ(Find(word), found) << word;
    EXPECT_EQ(Find("\U0001F468\u200D\U0001F469\u200D\U0001F467").size(), 1U);
    EXPECT_EQ(Find("क्\u200Dष").size(), 1U);
}

TEST_F(ProgramSearchText, TakesSignsThatAreTypedInOneWayOrAnotherForTheSame)
{
    Write("A", "T\u2010shirt, foo\u2011baz");
    Write("B", "Mc\u02BCCoy and rock\u2018n\u2019folk");
    Write("C", "Œuvre, Straße, ﬁsh");
    const TextRow rows[] = {
        {"t-shirt", {"[T\u2010shirt], foo\u2011baz"}},
        {"foo-baz", {"T\u2010shirt, [foo\u2011baz]"}},
        {"mc'coy", {"[Mc\u02BCCoy] and rock\u2018n\u2019folk"}},
        {"rock'n'folk", {"Mc\u02BCCoy and [rock\u2018n\u2019folk]"}},
        {"fish", {"Œuvre, Straße, [ﬁsh]"}},
        {"ŒUVRE", {"[Œuvre], Straße, ﬁsh"}},
        {"strasse", {"Œuvre, [Straße], ﬁsh"}},
    };
    for (const auto& [word, found] : rows)
        EXPECT_EQ(Find(word), found) << word;
}

}  // namespace
}  // namespace pavex
