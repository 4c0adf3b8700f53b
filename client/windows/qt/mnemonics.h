// client/windows/qt/mnemonics.h: which letter of a text, with the Alt key, stands for its control.
#pragma once

#include <QString>
#include <vector>

namespace pavex {

struct MnemonicText {
    QString text;  // as the user reads it
    QString name;  // short, ASCII; gives a letter to a text that has none on a keyboard
};

// The texts in the same order, with '&' before the letter of each; each letter is given once.  Letters that
// begin a word come first.  A text in a script without letters gets one added, "(&A)".  A text all of whose
// letters are taken stays without.
std::vector<QString> WithMnemonics(const std::vector<MnemonicText>& texts);

}  // namespace pavex
