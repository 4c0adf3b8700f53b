// client/search/signs.cpp: what the search engine makes of single characters.
#include "client/search/signs.h"

#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>

#include <string_view>

namespace pavex {

namespace {

constexpr LetterForm kLetterForms[] = {
    {U'ß', "ss"}, {U'œ', "oe"}, {U'Œ', "oe"}, {U'æ', "ae"}, {U'Æ', "ae"}, {U'ø', "o"}, {U'Ø', "o"},
    {U'ł', "l"},  {U'Ł', "l"},  {U'đ', "d"},  {U'Đ', "d"},  {U'ħ', "h"},  {U'Ħ', "h"}, {U'ı', "i"},
    {U'ŧ', "t"},  {U'Ŧ', "t"},  {U'ﬀ', "ff"}, {U'ﬁ', "fi"}, {U'ﬂ', "fl"}, {U'‘', "'"}, {U'’', "'"},
    {U'❛', "'"},  {U'❜', "'"},  {U'ʼ', "'"},  {U'‐', "-"},  {U'‑', "-"},
};

// The most frequent first.
constexpr std::u32string_view kAlphabets =
    U"äüößéèáàâêëîïôûùçñíóúæøåœìòãõýÿąćęłńśźżčěřšůžđğışőűțșăÄÜÖÉÈÁÀÂÊÇÑÍÓÚÆØÅŒŚŻČŘŠŽŁĞİ’“”„‘‚‐‑–—…•·«»€£§°"
    U"\u00A0"
    U"оеаинтсрвлкмдпуяыьгзбчйхжшюцщэфъёіїєґОЕАИНТСРВЛКМДПУЯЫЬГЗБЧЙХЖШЮЦЩЭФЪЁІЇЄҐ"
    U"αοιετσνηυρπκμλςωδγχθφβξζψάέήίόύώϊϋΑΟΙΕΤΣΝΗΥΡΠΚΜΛΩΔΓΧΘΦΒΞΖΨΆΈΉΊΌΎΏ"
    U"אבגדהוזחטיךכלםמןנסעףפץצקרשת"
    U"ايلمنوتربدعسفقكحجشخزطصثذضغءآأؤإئةىهظ،؟";

}  // namespace

std::span<const LetterForm> LetterForms()
{
    return kLetterForms;
}

bool IsPaired(char32_t c)
{
    UErrorCode failed = U_ZERO_ERROR;
    const UScriptCode script = uscript_getScript(static_cast<UChar32>(c), &failed);
    return script == USCRIPT_HAN || script == USCRIPT_HIRAGANA || script == USCRIPT_KATAKANA ||
           script == USCRIPT_HANGUL;
}

bool SwallowsDigits(char32_t c)
{
    constexpr char32_t kLastAscii = 0x7F;
    return c > kLastAscii && kAlphabets.find(c) == kAlphabets.npos;
}

std::string Alphabets()
{
    icu::UnicodeString characters;
    for (const char32_t c : kAlphabets)
        characters.append(static_cast<UChar32>(c));
    std::string utf8;
    return characters.toUTF8String(utf8);
}

bool IsSeparator(char32_t c)
{
    const auto character = static_cast<UChar32>(c);
    return u_charType(character) == U_CONTROL_CHAR || u_isUWhiteSpace(character) != 0;
}

bool IsShaping(char32_t c)
{
    return u_charType(static_cast<UChar32>(c)) == U_FORMAT_CHAR;
}

}  // namespace pavex
