// tests/client/windows/qt/mnemonics_test.cpp: which letter of a text stands for its control.
#include "client/windows/qt/mnemonics.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

std::vector<std::string> Lettered(const std::vector<MnemonicText>& texts)
{
    std::vector<std::string> result;
    for (const QString& text : WithMnemonics(texts))
        result.push_back(text.toStdString());
    return result;
}

using Texts = std::vector<std::string>;

TEST(Mnemonics, AreTheFirstLettersOfWordsWhereTheyAreFree)
{
    EXPECT_EQ(Lettered({{"Index drafts", "drafts"}, {"Index notes", "notes"}}),
              (Texts{"&Index drafts", "Index &notes"}));
}

TEST(Mnemonics, AreLettersInsideWordsWhereNoWordIsFree)
{
    EXPECT_EQ(Lettered({{"Add", "a"}, {"Apply", "b"}, {"app", "c"}}), (Texts{"&Add", "A&pply", "app"}));
}

TEST(Mnemonics, ComeWithoutRegardToCase)
{
    EXPECT_EQ(Lettered({{"add", "a"}, {"Add", "b"}}), (Texts{"&add", "A&dd"}));
}

TEST(Mnemonics, PassOverLettersThatAreOnFewKeyboards)
{
    EXPECT_EQ(Lettered({{QString::fromUtf8("Änderungen"), "changes"}}), Texts{"Ä&nderungen"});
}

TEST(Mnemonics, AreAddedToScriptsWithoutThem)
{
    EXPECT_EQ(Lettered({{QString::fromUtf8("追加…"), "add"}, {QString::fromUtf8("適用"), "apply"}}),
              (Texts{"追加(&A)…", "適用(&P)"}));
    EXPECT_EQ(Lettered({{QString::fromUtf8("対象："), "databases-label"}}), Texts{"対象(&D)："});
}

TEST(Mnemonics, LeaveAnAmpersandWhatItIs)
{
    EXPECT_EQ(Lettered({{"&", "x"}, {"R & D", "y"}}), (Texts{"&&(&X)", "&R && D"}));
}

TEST(Mnemonics, AreNoneForNoText)
{
    EXPECT_EQ(Lettered({{"", "name"}}), Texts{""});
}

}  // namespace
}  // namespace pavex
