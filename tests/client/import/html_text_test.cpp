// tests/client/import/html_text_test.cpp: what remains of HTML for a reader.
#include "client/import/html_text.h"

#include <chrono>

#include <gtest/gtest.h>

namespace pavex {
namespace {

TEST(HtmlText, SetsParagraphsApart)
{
    EXPECT_EQ(TextFromHtml("<p>one</p><p>two<br>three</p><div>four</div><div>five</div>"),
              "one\n\ntwo\nthree\n\nfour\nfive\n");
}

TEST(HtmlText, RunsWhiteSpaceTogether)
{
    EXPECT_EQ(TextFromHtml("<p>a \n\t b&nbsp;&nbsp;c <b> d</b>e</p>"), "a b c de\n");
}

TEST(HtmlText, DecodesEntities)
{
    EXPECT_EQ(TextFromHtml("<p>caf&eacute; &lt;open&gt; &amp; 12&#8364;&#x31; &unknown; R&D</p>"),
              "café <open> & 12€1 &unknown; R&D\n");
}

TEST(HtmlText, SeparatesTheCellsOfATable)
{
    EXPECT_EQ(TextFromHtml("<table><tr><th>Tool</th><th>Price</th></tr><tr><td>Rake</td><td>12</td></tr>"
                           "<tr><td></td><td>alone</td></tr></table>after"),
              "Tool\tPrice\nRake\t12\nalone\nafter\n");
}

TEST(HtmlText, MarksListEntries)
{
    EXPECT_EQ(TextFromHtml("<ul><li>a</li><li>b<ol><li>x</li><li>y</li></ol></li></ul>z"),
              "- a\n- b\n1. x\n2. y\n\nz\n");
}

TEST(HtmlText, LeavesOutWhatIsNotForReaders)
{
    EXPECT_EQ(TextFromHtml("<html><head><title>t</title><style>p{}</style></head><body><script>x<y</script>"
                           "<!-- c --><p>seen</p><style>q</style></body></html>"),
              "seen\n");
}

TEST(HtmlText, KeepsHiddenPreheadersLinksAndAlternativeTexts)
{
    EXPECT_EQ(
        TextFromHtml("<div style='display:none'>offer</div><a href='http://x.example'>go</a> <img alt='a dot' src=x>"),
        "offer\ngo a dot\n");
}

TEST(HtmlText, KeepsTheLinesOfPreformattedText)
{
    EXPECT_EQ(TextFromHtml("<pre>a  b\n  c\n\nd</pre>e"), "a  b\n  c\n\nd\n\ne\n");
}

TEST(HtmlText, TakesFragmentsAndNonsense)
{
    EXPECT_EQ(TextFromHtml("just text"), "just text\n");
    EXPECT_EQ(TextFromHtml(""), "");
    EXPECT_EQ(TextFromHtml("<<<>>><p"), TextFromHtml("<<<>>><p"));
    EXPECT_EQ(TextFromHtml("</p></div>left</table>"), "left\n");
    EXPECT_EQ(TextFromHtml("Grüße 日本 😀"), "Grüße 日本 😀\n");
}

TEST(HtmlText, FindsTheCharsetOfTheDocument)
{
    EXPECT_EQ(HtmlMetaCharset("<META http-equiv=Content-Type content=\"text/html; charset=KOI8-R\">"), "koi8-r");
    EXPECT_EQ(HtmlMetaCharset("<meta name=a><meta charset='utf-8'/>"), "utf-8");
    EXPECT_EQ(HtmlMetaCharset("<p>charset=no</p>"), "");
    EXPECT_EQ(HtmlMetaCharset("<meta charset="), "");
}

std::string Repeated(std::string_view text, size_t count)
{
    std::string all;
    while (count-- > 0)
        all += text;
    return all;
}

TEST(HtmlText, SurvivesHostileDocumentsInTime)
{
    std::string attributes = "<a ";
    for (int i = 0; i < 100000; ++i)
        attributes += "a" + std::to_string(i) + "=b ";
    const std::string documents[] = {
        Repeated("<div>", 300000),
        Repeated("<b>", 300000) + Repeated("</p>", 100000),
        attributes + ">shown",
        Repeated("<a \"", 200000),
        Repeated("<table><tr><td>", 50000),
        Repeated("<", 500000),
        Repeated("&", 300000),
        "<!--" + Repeated("-", 500000),
        "<script>" + Repeated("</", 200000),
        Repeated("<ul><li>", 50000),
    };
    const auto start = std::chrono::steady_clock::now();
    for (const std::string& document : documents)
        (void)TextFromHtml(document);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(120));
    EXPECT_EQ(TextFromHtml(attributes + ">shown"), "shown\n");
}

}  // namespace
}  // namespace pavex
