// tests/client/store/richtext_test.cpp: rich text, whole, damaged and cut off anywhere.
#include "client/store/richtext.h"

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

#include "client/store/ods.h"
#include "client/store/record_writer.h"

using namespace pavex;

namespace {

NOTELINK Link()
{
    NOTELINK link{};
    link.replica = {{1, 2}};
    link.note = {{{3, 4}}, {{5, 6}}};
    return link;
}

std::string Sample()
{
    RichTextBuilder builder;
    builder.AddParagraph("First paragraph");
    builder.AddParagraph("");
    builder.AddParagraph("gr\xC3\xBCn \xF0\x9F\x98\x80");
    builder.AddRule();
    builder.AddLink(Link(), "label");
    return builder.Records();
}

// Pieces as text: paragraphs as they are, rules as "---", links as "[label]".
std::vector<std::string> Pieces(std::string_view records, bool* damaged = nullptr)
{
    std::vector<std::string> pieces;
    for (const RichTextPiece& piece : ReadRichText(records, damaged)) {
        switch (piece.kind) {
        case RichTextPiece::Kind::kParagraph:
            pieces.push_back(piece.text);
            break;
        case RichTextPiece::Kind::kRule:
            pieces.emplace_back("---");
            break;
        case RichTextPiece::Kind::kLink:
            pieces.push_back("[" + piece.text + "]");
            break;
        }
    }
    return pieces;
}

// The streamed text, "|" at the end of each paragraph.
std::string Streamed(std::string_view records, bool* whole = nullptr)
{
    std::string text;
    const bool all = VisitPlainText(records, [&](std::string_view piece, bool last) {
        text += piece;
        text += last ? "|" : "";
        return true;
    });
    if (whole != nullptr)
        *whole = all;
    return text;
}

// A copy whose end is the end of its memory, so that a read past it is noticed.
std::unique_ptr<char[]> Exactly(std::string_view bytes)
{
    std::unique_ptr<char[]> copy(new char[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), copy.get());
    return copy;
}

}  // namespace

TEST(RichText, ReadsBackWhatWasBuilt)
{
    bool damaged = true;
    EXPECT_EQ(Pieces(Sample(), &damaged),
              (std::vector<std::string>{"First paragraph", "", "gr\xC3\xBCn \xF0\x9F\x98\x80", "---", "[label]"}));
    EXPECT_FALSE(damaged);
    const NOTELINK link = ReadRichText(Sample()).back().link;
    EXPECT_EQ(link.replica.Innards[1], 2u);
    EXPECT_EQ(link.note.Note.Innards[1], 6u);
}

TEST(RichText, MakesAParagraphOfEachLine)
{
    RichTextBuilder builder;
    builder.AddLines("one\n\ntwo\n");
    builder.AddLines("");
    builder.AddLines("three");
    EXPECT_EQ(Pieces(builder.Records()), (std::vector<std::string>{"one", "", "two", "three"}));
}

TEST(RichText, StreamsParagraphsRulesAndLabels)
{
    EXPECT_EQ(Streamed(Sample()), "First paragraph||gr\xC3\xBCn \xED\xA0\xBD\xED\xB8\x80||label|");
}

TEST(RichText, HasTheDocumentedBytes)
{
    RichTextBuilder builder;
    builder.AddParagraph("Hi!");
    const std::string expected("\x81\xFF\x04\x00"
                               "\x85\xFF\x12\x00\xFF\xFF\xFF\xFF\x01\x00\x00\x0A\x03\x00Hi!\0",
                               22);
    EXPECT_EQ(builder.Records(), expected);
    RichTextBuilder links;
    links.AddLink(Link(), "abc");
    EXPECT_EQ(links.Records().size(), 24u + 44 + 4);
    EXPECT_EQ(links.Records().substr(0, 10), std::string("\xF6\xFF\x48\x00\x02\x00\x00\x00\x02\x00", 10));
}

TEST(RichText, KeepsLongParagraphsWholeAndTheirRecordsSmall)
{
    std::string utf8;
    while (utf8.size() < 200000)
        utf8 += "long \xF0\x9F\x98\x80 text ";
    RichTextBuilder builder;
    builder.AddParagraph(utf8);
    EXPECT_EQ(Pieces(builder.Records()), std::vector<std::string>{utf8});
    size_t largest = 0;
    VisitPlainText(builder.Records(), [&](std::string_view piece, bool) {
        largest = std::max(largest, piece.size());
        return true;
    });
    EXPECT_LE(largest, 32000u);
}

TEST(RichText, CutsALabelThatNoRecordCanHold)
{
    RichTextBuilder builder;
    builder.AddLink(Link(), std::string(70000, 'x'));
    bool damaged = true;
    EXPECT_EQ(ReadRichText(builder.Records(), &damaged).back().text, std::string(60000, 'x'));
    EXPECT_FALSE(damaged);
}

TEST(RichText, EndsAtEveryPrefixWithWhatStoodBefore)
{
    const std::string whole = Sample();
    const std::string text = Streamed(whole);
    const std::vector<std::string> pieces = Pieces(whole);
    for (size_t bytes = 0; bytes < whole.size(); ++bytes) {
        const auto copy = Exactly(std::string_view(whole).substr(0, bytes));
        bool damaged = false;
        const std::vector<std::string> read = Pieces({copy.get(), bytes}, &damaged);
        ASSERT_LE(read.size(), pieces.size());
        for (size_t i = 0; i + 1 < read.size(); ++i)  // the last may have lost its text
            EXPECT_EQ(read[i], pieces[i]) << bytes;
        bool all = true;
        std::string streamed = Streamed({copy.get(), bytes}, &all);
        if (streamed.ends_with("|"))
            streamed.pop_back();
        EXPECT_TRUE(text.starts_with(streamed)) << bytes;
        EXPECT_EQ(all, !damaged);
    }
}

TEST(RichText, SurvivesEveryByteBeingWrong)
{
    const std::string whole = Sample();
    for (size_t i = 0; i < whole.size(); ++i) {
        for (const char wrong : {'\0', '\1', '\x7F', '\xFF'}) {
            std::string bytes = whole;
            bytes[i] = wrong;
            const auto copy = Exactly(bytes);
            EXPECT_LE(Streamed({copy.get(), bytes.size()}).size(), whole.size());
            (void)Pieces({copy.get(), bytes.size()});
        }
    }
}

TEST(RichText, StopsAtADamagedRecord)
{
    RichTextBuilder before;
    before.AddParagraph("kept");
    RichTextBuilder after;
    after.AddParagraph("lost");
    const std::string wrongs[] = {
        std::string("\x85\xFF\x03\x00", 4),                           // shorter than its header
        std::string("\x85\xFF\x05\x00\x00", 5),                       // odd
        std::string("\x85\xFF\x0E\x00\0\0\0\0\0\0\0\0\x01\x00", 14),  // text past the record
        std::string("\xF6\xFF\x06\x00\0\0", 6),                       // half a link
        std::string("\xF6\xFF\x18\x00\x02\0\0\0\x02\0\xFF\xFF\xFF\xFF\0\0\0\0\0\0\0\0\0\0", 24),  // parts past it
    };
    for (const std::string& wrong : wrongs) {
        bool damaged = false;
        EXPECT_EQ(Pieces(before.Records() + wrong + after.Records(), &damaged), std::vector<std::string>{"kept"});
        EXPECT_TRUE(damaged);
        bool whole = true;
        EXPECT_EQ(Streamed(before.Records() + wrong + after.Records(), &whole), "kept|");
        EXPECT_FALSE(whole);
    }
}

TEST(RichText, PassesOverRecordsAndLinksOfOtherKinds)
{
    RichTextBuilder text;
    text.AddParagraph("a");
    LINKRECORD record{};
    record.signature = kRecordLink;
    record.recordBytes = sizeof record;
    record.linkType = 7;
    std::string other = text.Records() + std::string("\x34\x12\x06\x00zz", 6);
    AppendLinkRecord(&other, record);
    EXPECT_EQ(Pieces(other + text.Records()), (std::vector<std::string>{"a", "a"}));
}

TEST(RichText, SkipsALinksVariableParts)
{
    LINKRECORD record{};
    record.signature = kRecordLink;
    record.recordBytes = sizeof record + 6 + sizeof(NOTELINK) + 2;
    record.flags = kLinkFollows;
    record.linkType = kLinkToNote;
    record.firstCount = 1;
    record.secondCount = 2;
    std::string records;
    AppendLinkRecord(&records, record);
    records += "abcdef";
    AppendNoteLink(&records, Link());
    records += "ok";
    EXPECT_EQ(Pieces(records), std::vector<std::string>{"[ok]"});
    EXPECT_EQ(ReadRichText(records).back().link.replica.Innards[0], 1u);
}

TEST(RichText, JoinsACharacterThatTwoRecordsShare)
{
    std::string records;
    AppendBareRecord(&records, kRecordParagraph);
    AppendTextRecords(&records, kStyleDefault, kDefaultFont, "\xC3");
    AppendTextRecords(&records, kStyleDefault, kDefaultFont, "\xBC");
    EXPECT_EQ(Pieces(records), std::vector<std::string>{"\xC3\xBC"});
}

TEST(RichText, StopsWhenTheSinkHasEnough)
{
    int calls = 0;
    VisitPlainText(Sample(), [&](std::string_view, bool) { return ++calls < 2; });
    EXPECT_EQ(calls, 2);
}
