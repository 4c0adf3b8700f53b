// client/windows/qt/mnemonics.cpp: which letter of a text, with the Alt key, stands for its control.
#include "client/windows/qt/mnemonics.h"

#include <QRegularExpression>
#include <QSet>

namespace pavex {

namespace {

// A letter that keyboards for Latin script have on a key of its own.
bool IsKeyLetter(QChar character)
{
    return character >= QChar('a') && character <= QChar('z');
}

bool HasLatinLetter(const QString& text)
{
    for (const QChar character : text) {
        if (character.script() == QChar::Script_Latin)
            return true;
    }
    return false;
}

// Position of the first free letter, at the beginning of a word or anywhere; -1 when there is none.
qsizetype FindFreeLetter(const QString& text, const QSet<QChar>& taken, bool atWordStart)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool starts = i == 0 || !text[i - 1].isLetterOrNumber();
        const QChar letter = text[i].toLower();
        if ((starts || !atWordStart) && IsKeyLetter(letter) && !taken.contains(letter))
            return i;
    }
    return -1;
}

qsizetype FindMnemonic(const QString& text, const QSet<QChar>& taken)
{
    const qsizetype atWord = FindFreeLetter(text, taken, true);
    return atWord >= 0 ? atWord : FindFreeLetter(text, taken, false);
}

QString Escaped(QString text)
{
    return text.replace('&', "&&");
}

QString WithLetterAt(const QString& text, qsizetype position)
{
    return position < 0 ? Escaped(text) : Escaped(text.left(position)) + '&' + Escaped(text.mid(position));
}

// "Add..." in a script without letters: "Add(&A)...".
QString WithLetterAdded(const QString& text, QChar letter)
{
    static const QRegularExpression kEnd("[.:\u2026\uFF1A\\s]*$");
    const qsizetype end = kEnd.match(text).capturedStart();
    return Escaped(text.left(end)) + "(&" + letter.toUpper() + ")" + Escaped(text.mid(end));
}

}  // namespace

std::vector<QString> WithMnemonics(const std::vector<MnemonicText>& texts)
{
    QSet<QChar> taken;
    std::vector<QString> result;
    for (const auto& [text, name] : texts) {
        const bool hasLetters = text.isEmpty() || HasLatinLetter(text);
        const QString& source = hasLetters ? text : name;
        const qsizetype position = FindMnemonic(source, taken);
        if (position >= 0)
            taken.insert(source[position].toLower());
        result.push_back(hasLetters || position < 0 ? WithLetterAt(text, hasLetters ? position : -1)
                                                    : WithLetterAdded(text, source[position]));
    }
    return result;
}

}  // namespace pavex
