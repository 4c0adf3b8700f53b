// tests/client/search/marked_text_test.cpp: hits are found in texts as the engine found them.
#include "client/search/marked_text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pavex {
namespace {

std::string Marked(const std::string& text, const std::vector<std::string>& terms)
{
    return WithMarks(text, SoughtTerms(terms), "<", ">");
}

TEST(MarkedText, TakesTheTermsFromTheEnginesAccountOfAQuery)
{
    struct Row {
        const char* account;
        std::vector<std::string> terms;
    };
    const Row rows[] = {
        {"Query(zebra)", {"zebra"}},
        {"Query((alert OR alerts))", {"alert", "alerts"}},
        {"Query((zebra FILTER Tapplication/x-pavex-mail))", {"zebra"}},
        {"Query(10 * (script PHRASE 2 alert))", {"script", "alert"}},
        {"Query(10 * (XYDUE2007 PHRASE 3 XYDUE03 PHRASE 3 XYDUE05))", {"2007", "03", "05"}},
        {"Query((zebra AND VALUE_GE 1001 20000101000000))", {"zebra"}},
        {"Query((zebra AND VALUE_RANGE 1001 20000101000000 20010101000000 AND Aann))", {"zebra", "ann"}},
        {"Query(10 * (東京 PHRASE 3 都))", {"東京", "都"}},
        {"Query(ann@example.org)", {"ann@example.org"}},
        {"Query((2007 AND 42))", {"2007", "42"}},
        {"Query()", {}},
        {"", {}},
    };
    for (const Row& row : rows)
        EXPECT_EQ(TermsOfQuery(row.account), row.terms) << row.account;
}

TEST(MarkedText, FindsWordsWithoutRegardToCaseAndAccents)
{
    struct Row {
        const char* text;
        std::vector<std::string> terms;
        const char* marked;
    };
    const Row rows[] = {
        {"a zebra, a Zebra", {"zebra"}, "a <zebra>, a <Zebra>"},
        {"zebras and azebra", {"zebra"}, "zebras and azebra"},
        {"Äpfel in ZÜRICH", {"apfel", "zurich"}, "<Äpfel> in <ZÜRICH>"},
        {"A\u0308pfel", {"apfel"}, "<A\u0308pfel>"},
        {"Straße, Œuvre, Ærø, Łódź", {"strasse", "oeuvre", "aero", "lodz"}, "<Straße>, <Œuvre>, <Ærø>, <Łódź>"},
        {"東京都は日本の首都", {"東京", "都"}, "<東京都>は日本の首<都>"},
        {"mail ann@example.org now", {"ann@example.org"}, "mail <ann@example.org> now"},
        {"alert, alerts", {"alert", "alerts"}, "<alert>, <alerts>"},
        {"Привет", {"привет"}, "<Привет>"},
        {"검색 엔진", {"검색"}, "<검색> 엔진"},
        {"価格は500円です", {"500", "円"}, "価格は<500円>です"},
        {"Sil\u00ADben, T\u2010shirt", {"silben", "t-shirt"}, "<Sil\u00ADben>, <T\u2010shirt>"},
        {"nothing here", {"zebra"}, "nothing here"},
        {"zebra", {}, "zebra"},
        {"", {"zebra"}, ""},
        {"\xFFzebra", {"zebra"}, "\xFF<zebra>"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(Marked(row.text, row.terms), row.marked) << row.text;
}

TEST(MarkedText, CutsAPieceAroundTheFirstHit)
{
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += "word" + std::to_string(i) + (i == 120 ? " zebra " : " ");
    const std::string snippet = CutSnippet(text, SoughtTerms({"zebra"}), 100);
    EXPECT_LE(snippet.size(), 140U);
    EXPECT_THAT(snippet, testing::StartsWith("… word"));
    EXPECT_THAT(snippet, testing::HasSubstr("word120 zebra word121"));
    EXPECT_THAT(snippet, testing::EndsWith(" …"));
    EXPECT_THAT(CutSnippet(text, SoughtTerms({"missing"}), 100), testing::StartsWith("word0 word1 "));
    EXPECT_THAT(CutSnippet(text, SoughtTerms({"word199"}), 100), testing::EndsWith(" word199"));
}

TEST(MarkedText, CutsBetweenCharactersWhereThereAreNoBlanks)
{
    std::string text;
    for (int i = 0; i < 200; ++i)
        text += i == 100 ? "東京" : "界";
    const std::string snippet = CutSnippet(text, SoughtTerms({"東京"}), 90);
    EXPECT_THAT(snippet, testing::HasSubstr("界東京界"));
    EXPECT_EQ((snippet.size() - std::string("…  …").size()) % 3, 0U) << "whole characters only: " << snippet;
}

TEST(MarkedText, PutsASnippetOnOneLineWithoutControlCharacters)
{
    EXPECT_EQ(CutSnippet(" a\r\n\tb\x1B[2Jc\u009Bd\x7F ", SoughtTerms({}), 100), "a b [2Jc d");
}

}  // namespace
}  // namespace pavex
