// tests/client/import/vcard_stream_test.cpp: where cards begin and end.
#include "client/import/vcard_stream.h"

#include <gtest/gtest.h>

#include "client/import/text_file.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

using Found = std::vector<std::string>;

std::vector<CardFound> CardsOf(const std::string& content)
{
    const TemporaryDirectory folder;
    WriteWholeFile(folder / "cards", content);
    TextFile file;
    std::string reason;
    EXPECT_TRUE(OpenTextFile(folder / "cards", &file, &reason)) << reason;
    CardStream stream(file.descriptor.Get(), file.start, file.end);
    std::vector<CardFound> cards;
    for (CardFound found; stream.Next(&found);)
        cards.push_back(std::move(found));
    EXPECT_EQ(stream.Error(), 0);
    return cards;
}

// "LINE NAME=value NAME=value" of a card, "LINE problem" of what is none.
Found Read(const std::string& content)
{
    Found shown;
    for (const CardFound& card : CardsOf(content)) {
        std::string text = std::to_string(card.line);
        for (const CardProperty& property : card.properties)
            text += card.problem.empty() ? " " + property.name + "=" + property.value : "";
        shown.push_back(text + (card.problem.empty() ? "" : " " + card.problem));
    }
    return shown;
}

std::string Card(const std::string& lines)
{
    return "BEGIN:VCARD\n" + lines + "END:VCARD\n";
}

TEST(VcardStream, HandsOutEachCardWithItsLine)
{
    EXPECT_EQ(Read(Card("FN:a\n") + "\n\n" + Card("FN:b\nN:c\n")), (Found{"1 FN=a", "6 FN=b N=c"}));
    EXPECT_EQ(Read(""), Found{});
    EXPECT_EQ(Read("begin:vcard\nFN:a\nEnd:vCard"), Found{"1 FN=a"});
}

TEST(VcardStream, TakesEveryLineEnd)
{
    EXPECT_EQ(Read("BEGIN:VCARD\r\nFN:a\r\n b\r\nEND:VCARD\r\n"), Found{"1 FN=ab"});
    EXPECT_EQ(Read("BEGIN:VCARD\rFN:a\r b\rEND:VCARD\rBEGIN:VCARD\rFN:c\rEND:VCARD"), (Found{"1 FN=ab", "5 FN=c"}));
}

TEST(VcardStream, UndoesFoldsOfEveryKind)
{
    EXPECT_EQ(Read(Card("NOTE:one\n two\n\tthree\nFN:a\n")), Found{"1 NOTE=onetwothree FN=a"});
    EXPECT_EQ(Read(Card("NOTE;ENCODING=QUOTED-PRINTABLE:one=\ntwo=\n three\nFN:a\n")),
              Found{"1 NOTE=onetwo three FN=a"});
    EXPECT_EQ(Read(Card("NOTE:one\nno property\nFN:a\n")), Found{"1 NOTE=one\nno property FN=a"})
        << "what a writer broke off without a fold belongs to the value before it";
}

TEST(VcardStream, PassesOverPicturesWhateverTheirFolds)
{
    EXPECT_EQ(Read(Card("FN:a\nPHOTO;ENCODING=b:AAAA\n BBBB\nCCCC\n\nNOTE:x\n")), Found{"1 FN=a NOTE=x"});
    EXPECT_EQ(Read(Card("LOGO:data:x\nitem1.KEY:x\nSOUND:x\nFN:a\n")), Found{"1 FN=a"});
}

TEST(VcardStream, TakesAPictureOfAnySize)
{
    const std::string picture = "PHOTO;ENCODING=b:" + std::string(3000000, 'A') + "\n";
    std::string folded = "PHOTO;ENCODING=b:\n";
    for (int i = 0; i < 100000; ++i)
        folded += " " + std::string(72, 'A') + "\n";
    EXPECT_EQ(Read(Card(picture + "FN:a\n" + picture) + Card(folded + "FN:b\n")), (Found{"1 FN=a", "6 FN=b"}));
}

TEST(VcardStream, RefusesACardOfTooMuchTextAndReadsTheNext)
{
    std::string notes;
    for (int i = 0; i < 5; ++i)
        notes += "NOTE:" + std::string(900000, 'x') + "\n";
    EXPECT_EQ(Read(Card(notes) + Card("FN:b\n")), (Found{"1 is a card of more than 4 MB of text", "8 FN=b"}));
    std::string many;
    for (int i = 0; i < 40000; ++i)
        many += "X:\n";
    EXPECT_EQ(Read(Card(many)), Found{"1 is a card of more than 4 MB of text"});
    std::string rest = "NOTE:x\n";
    for (int i = 0; i < 50000; ++i)
        rest += std::string(100, 'x') + "\n";
    EXPECT_EQ(Read(Card(rest)), Found{"1 is a card of more than 4 MB of text"});
}

TEST(VcardStream, SaysWhenALineWasCut)
{
    const std::vector<CardFound> cards = CardsOf(Card("NOTE:" + std::string(2000000, 'x') + "\nFN:a\n"));
    ASSERT_EQ(cards.size(), 1U);
    EXPECT_EQ(cards[0].problem, "");
    EXPECT_EQ(cards[0].notice, "what a line has beyond 1 MB is left out");
    EXPECT_EQ(cards[0].properties.size(), 2U);
}

TEST(VcardStream, ReportsACardThatDoesNotEndAndReadsTheNext)
{
    EXPECT_EQ(Read("BEGIN:VCARD\nFN:a\n" + Card("FN:b\n")),
              (Found{"1 is a card that does not end: another begins in line 3", "3 FN=b"}));
    const std::vector<CardFound> cards = CardsOf(Card("FN:a\n") + "BEGIN:VCARD\nFN:b\n");
    ASSERT_EQ(cards.size(), 2U);
    EXPECT_EQ(cards[1].problem, "is a card that does not end");
}

TEST(VcardStream, ReportsWhatStandsBetweenCardsOnce)
{
    EXPECT_EQ(Read(Card("FN:a\n") + "garbage\nFN:x\n\nmore\n" + Card("FN:b\n") + "END:VCARD\n"),
              (Found{"1 FN=a", "4 is no part of a card", "8 FN=b", "11 is no part of a card"}));
}

TEST(VcardStream, TakesTheMarksThatAreLeftWhereFilesWereJoined)
{
    EXPECT_EQ(Read("\xEF\xBB\xBF" + Card("FN:a\n") + "\xEF\xBB\xBF" + Card("FN:b\n")), (Found{"1 FN=a", "4 FN=b"}));
}

TEST(VcardStream, KeepsACardWithinACardAsAValue)
{
    EXPECT_EQ(Read(Card("AGENT:\n" + Card("FN:x\nTEL:1\n") + "FN:a\n") + Card("FN:b\n")),
              (Found{"1 AGENT=\nBEGIN:VCARD\nFN:x\nTEL:1\nEND:VCARD FN=a", "9 FN=b"}));
    EXPECT_EQ(Read(Card("AGENT:BEGIN:VCARD\nFN:x\nEND:VCARD\nFN:a\n")),
              Found{"1 AGENT=BEGIN:VCARD\nFN:x\nEND:VCARD FN=a"});
    EXPECT_EQ(Read(Card("AGENT:\n" + Card("AGENT:\n" + Card("FN:y\n") + "PHOTO:1\n 2\nFN:x\n") + "FN:a\n")),
              Found{"1 AGENT=\nBEGIN:VCARD\nAGENT:\nBEGIN:VCARD\nFN:y\nEND:VCARD\nFN:x\nEND:VCARD FN=a"});
}

TEST(VcardStream, LosesNoOtherCardToOneWithinACardThatDoesNotEnd)
{
    EXPECT_EQ(Read("BEGIN:VCARD\nFN:a\nAGENT:\nBEGIN:VCARD\nFN:x\nEND:VCARD\n" + Card("FN:b\n")),
              (Found{"1 is a card that does not end: another begins in line 7", "7 FN=b"}));
}

TEST(VcardStream, SaysWhereACardLiesSoThatItCanBeReadAgain)
{
    const std::string content = "\n" + Card("FN:a\n") + Card("FN:b\n c\n");
    const std::vector<CardFound> cards = CardsOf(content);
    ASSERT_EQ(cards.size(), 2U);
    EXPECT_EQ(content.substr(cards[0].start, cards[0].end - cards[0].start), Card("FN:a\n"));
    EXPECT_EQ(content.substr(cards[1].start, cards[1].end - cards[1].start), Card("FN:b\n c\n"));
    const std::vector<CardFound> begun = CardsOf("BEGIN:VCARD\n");
    ASSERT_EQ(begun.size(), 1U);
    EXPECT_EQ(begun[0].end, 12U);
}

TEST(VcardStream, DigestsWhatMakesTheCard)
{
    const auto digest = [](const std::string& content) { return CardsOf(content).at(0).digest; };
    const std::string same = digest(Card("FN:abc\nNOTE:x\n"));
    EXPECT_EQ(same.size(), 64U);
    EXPECT_EQ(digest("BEGIN:VCARD\r\nFN:a\r\n bc\r\nNOTE:x\r\nEND:VCARD\r\n"), same)
        << "line ends and folds do not count";
    EXPECT_EQ(digest(Card("FN:abc\nPHOTO:1\nNOTE:x\n")), same) << "what is passed over does not count";
    EXPECT_NE(digest(Card("FN:abd\nNOTE:x\n")), same);
    EXPECT_NE(digest(Card("FN:abc\nNOTE:x\nNOTE:x\n")), same);
    EXPECT_NE(digest(Card("FN:abc\nNOTE:x\nmore text\n")), same);
}

TEST(NestedVcard, GivesItsOwnPropertiesOnly)
{
    EXPECT_TRUE(IsNestedCard("\nbegin:vcard\nFN:x"));
    EXPECT_FALSE(IsNestedCard("Ann Lee"));
    const std::vector<CardProperty> properties =
        ReadNestedCard("BEGIN:VCARD\nAGENT:\nBEGIN:VCARD\nFN:y\nEND:VCARD\nFN:x\nEND:VCARD\nFN:z");
    std::string names;
    for (const CardProperty& property : properties)
        names += property.name + "=" + property.value + " ";
    EXPECT_EQ(names, "BEGIN=VCARD AGENT= END=VCARD FN=x ");
}

}  // namespace
}  // namespace pavex
