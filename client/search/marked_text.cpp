// client/search/marked_text.cpp: where in a text the words stand that were looked for.
#include "client/search/marked_text.h"

#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>
#include <unicode/uscript.h>
#include <unicode/utext.h>

#include <algorithm>
#include <optional>

#include "client/search/signs.h"

namespace pavex {

namespace {

// A text as the engine holds it, and where each of its characters comes from.
struct FoldedText {
    std::u32string characters;
    std::vector<Mark> origins;
};

// What the engine leaves out of its terms.
bool IsLeftOut(UChar32 c)
{
    return u_charType(c) == U_NON_SPACING_MARK || IsShaping(c);
}

icu::UnicodeString Decomposed(UChar32 c)
{
    UErrorCode failed = U_ZERO_ERROR;
    const icu::Normalizer2* const form = icu::Normalizer2::getNFKDInstance(failed);
    icu::UnicodeString parts;
    if (U_FAILURE(failed) || !form->getDecomposition(c, parts))
        parts.setTo(c);
    return parts.foldCase();
}

icu::UnicodeString Folded(UChar32 c)
{
    for (const LetterForm& form : LetterForms())
        if (form.letter == static_cast<char32_t>(c))
            return icu::UnicodeString::fromUTF8(form.plain);
    return Decomposed(c);
}

// Calls back with each character and its bytes; what is no UTF-8 comes as U+FFFD.
template <typename Callback> void VisitCharacters(std::string_view utf8, const Callback& callback)
{
    UErrorCode failed = U_ZERO_ERROR;
    UText text = UTEXT_INITIALIZER;
    utext_openUTF8(&text, utf8.data(), static_cast<int64_t>(utf8.size()), &failed);
    for (UChar32 c = U_FAILURE(failed) ? U_SENTINEL : utext_next32From(&text, 0); c != U_SENTINEL;) {
        const size_t begin = static_cast<size_t>(utext_getPreviousNativeIndex(&text));
        callback(c, Mark{begin, static_cast<size_t>(utext_getNativeIndex(&text))});
        c = utext_next32(&text);
    }
    utext_close(&text);
}

FoldedText Fold(std::string_view utf8)
{
    FoldedText folded;
    const auto add = [&folded](UChar32 c, const Mark& bytes) {
        folded.characters += static_cast<char32_t>(c);
        folded.origins.push_back(bytes);
    };
    VisitCharacters(utf8, [&add](UChar32 c, const Mark& bytes) {
        if (c < 0x80) {
            add(u_tolower(c), bytes);
            return;
        }
        const icu::UnicodeString parts = Folded(c);
        for (int32_t i = 0; i < parts.length(); i = parts.moveIndex32(i, 1))
            if (const UChar32 part = parts.char32At(i); !IsLeftOut(part))
                add(part, bytes);
    });
    return folded;
}

// Written without blanks between words.
bool RunsOn(UChar32 c)
{
    UErrorCode failed = U_ZERO_ERROR;
    return IsPaired(c) || uscript_getScript(c, &failed) == USCRIPT_THAI;
}

// Whether a word can end, and another begin, before the character at this place.
bool IsBoundary(std::u32string_view text, size_t at)
{
    if (at == 0 || at == text.size())
        return true;
    const auto before = static_cast<UChar32>(text[at - 1]);
    const auto after = static_cast<UChar32>(text[at]);
    return !u_isalnum(before) || !u_isalnum(after) || RunsOn(before) || RunsOn(after);
}

std::string OnOneLine(std::string_view text)
{
    std::string line;
    VisitCharacters(text, [&line, text](UChar32 c, const Mark& bytes) {
        if (!IsSeparator(c))
            line += text.substr(bytes.begin, bytes.end - bytes.begin);
        else if (!line.empty() && !line.ends_with(' '))
            line += ' ';
    });
    while (line.ends_with(' '))
        line.pop_back();
    return line;
}

bool IsContinuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// The next place at or after which a word begins, no more than a few characters away; else between characters.
size_t WordStart(const std::string& text, size_t at)
{
    constexpr size_t kNear = 24;
    if (at == 0 || at >= text.size())
        return std::min(at, text.size());
    const size_t blank = text.find(' ', at);
    if (blank != text.npos && blank - at <= kNear)
        return blank + 1;
    while (at < text.size() && IsContinuation(text[at]))
        ++at;
    return at;
}

size_t WordEnd(const std::string& text, size_t at)
{
    if (at >= text.size())
        return text.size();
    const size_t next = WordStart(text, at);
    return next > at && text[next - 1] == ' ' ? next - 1 : next;
}

bool IsNumber(std::string_view token)
{
    return !token.empty() && token.find_first_not_of("0123456789") == token.npos;
}

// How many tokens after an operator belong to it; none for what is no operator.
std::optional<int> NumbersAfter(std::string_view token)
{
    struct Operator {
        std::string_view name;
        int numbers;
    };
    constexpr Operator kOperators[] = {{"AND", 0},       {"OR", 0},          {"AND_NOT", 0},  {"XOR", 0},
                                       {"FILTER", 0},    {"AND_MAYBE", 0},   {"SYNONYM", 0},  {"MAX", 0},
                                       {"PHRASE", 1},    {"NEAR", 1},        {"VALUE_GE", 2}, {"VALUE_LE", 2},
                                       {"ELITE_SET", 1}, {"VALUE_RANGE", 3}, {"*", 0}};
    for (const Operator& row : kOperators)
        if (token == row.name)
            return row.numbers;
    return std::nullopt;
}

std::vector<std::string_view> Tokens(std::string_view account)
{
    constexpr std::string_view kBetween = " ()\n";
    std::vector<std::string_view> tokens;
    for (size_t at = account.find_first_not_of(kBetween); at < account.size();) {
        const size_t end = std::min(account.find_first_of(kBetween, at), account.size());
        tokens.push_back(account.substr(at, end - at));
        at = account.find_first_not_of(kBetween, end);
    }
    return tokens;
}

}  // namespace

std::vector<std::string> TermsOfQuery(std::string_view account)
{
    const std::vector<std::string_view> tokens = Tokens(account);
    std::vector<std::string> terms;
    for (size_t i = 0; i < tokens.size(); ++i) {
        if (const std::optional<int> numbers = NumbersAfter(tokens[i])) {
            i += static_cast<size_t>(*numbers);
            continue;
        }
        const bool isWeight = IsNumber(tokens[i]) && i + 1 < tokens.size() && tokens[i + 1] == "*";
        if (isWeight || tokens[i] == "Query" || tokens[i].starts_with("Tapplication/"))
            continue;
        std::string_view term = tokens[i];  // a field's terms begin with its capitals
        term.remove_prefix(std::min(term.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZ"), term.size()));
        if (!term.empty())
            terms.emplace_back(term);
    }
    return terms;
}

SoughtTerms::SoughtTerms(const std::vector<std::string>& terms)
{
    for (const std::string& term : terms) {
        std::u32string folded = Fold(term).characters;
        if (folded.empty())
            continue;
        lengths_.insert(folded.size());
        terms_.insert(std::move(folded));
    }
}

size_t SoughtTerms::LengthAt(std::u32string_view text, size_t at) const
{
    if (!IsBoundary(text, at))
        return 0;
    for (const size_t length : lengths_)
        if (length <= text.size() - at && IsBoundary(text, at + length) && terms_.contains(text.substr(at, length)))
            return length;
    return 0;
}

std::vector<Mark> SoughtTerms::FindIn(std::string_view text) const
{
    const FoldedText folded = Fold(text);
    std::vector<Mark> marks;
    for (size_t at = 0; at < folded.characters.size();) {
        const size_t length = LengthAt(folded.characters, at);
        if (length == 0) {
            ++at;
            continue;
        }
        const Mark mark{folded.origins[at].begin, folded.origins[at + length - 1].end};
        if (!marks.empty() && marks.back().end >= mark.begin)
            marks.back().end = mark.end;
        else
            marks.push_back(mark);
        at += length;
    }
    return marks;
}

std::string CutSnippet(std::string_view text, const SoughtTerms& terms, size_t maxBytes)
{
    constexpr size_t kMostLookedAt = 1 << 20;  // a hit further down is not worth the wait
    std::string line = OnOneLine(text.substr(0, kMostLookedAt));
    if (line.size() <= maxBytes)
        return line;
    const std::vector<Mark> marks = terms.FindIn(line);
    const size_t hit = marks.empty() ? 0 : marks.front().begin;
    const size_t lead = maxBytes / 3;
    const size_t latest = line.size() - maxBytes;
    const size_t begin = std::min(WordStart(line, std::min(hit > lead ? hit - lead : 0, latest)), hit);
    const size_t end = WordEnd(line, begin + maxBytes);
    return (begin > 0 ? "… " : "") + line.substr(begin, end - begin) + (end < line.size() ? " …" : "");
}

std::string WithMarks(std::string_view text, const SoughtTerms& terms, std::string_view before, std::string_view after)
{
    std::string marked;
    size_t done = 0;
    for (const Mark& mark : terms.FindIn(text)) {
        marked.append(text.substr(done, mark.begin - done)).append(before);
        marked.append(text.substr(mark.begin, mark.end - mark.begin)).append(after);
        done = mark.end;
    }
    return marked.append(text.substr(done));
}

}  // namespace pavex
