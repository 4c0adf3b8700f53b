// client/import/header_text.cpp: encoded words, decoded by hand because the broken ones matter most.
#include "client/import/header_text.h"

#include <cstdint>

#include "client/import/charset_text.h"

namespace pavex {
namespace {

struct EncodedWord {
    std::string_view charset;  // without the language
    char encoding = 0;         // 'b' or 'q'
    std::string_view text;
    size_t length = 0;  // of the whole word; 0: none
};

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

bool IsCharsetCharacter(char c)
{
    return c > ' ' && c < 0x7F && c != '?' && c != '=' && c != '"' && c != '<' && c != '>';
}

EncodedWord ReadEncodedWord(std::string_view text)
{
    if (!text.starts_with("=?"))
        return {};
    size_t i = 2;
    while (i < text.size() && IsCharsetCharacter(text[i]))
        ++i;
    if (i == 2 || i + 2 >= text.size() || text[i] != '?' || text[i + 2] != '?')
        return {};
    EncodedWord word;
    word.charset = text.substr(2, i - 2);
    word.charset = word.charset.substr(0, word.charset.find('*'));
    word.encoding = static_cast<char>(text[i + 1] | 0x20);
    const size_t start = i + 3;
    const size_t end = text.find("?=", start);
    if ((word.encoding != 'b' && word.encoding != 'q') || end == text.npos)
        return {};
    word.text = text.substr(start, end - start);
    if (word.text.find("=?") != word.text.npos)
        return {};  // another word begins before this one ends
    word.length = end + 2;
    return word;
}

int HexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

std::string DecodeQ(std::string_view text)
{
    std::string bytes;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '_') {
            bytes += ' ';
        } else if (text[i] == '=' && i + 2 < text.size() && HexValue(text[i + 1]) >= 0 && HexValue(text[i + 2]) >= 0) {
            bytes += static_cast<char>(HexValue(text[i + 1]) * 16 + HexValue(text[i + 2]));
            i += 2;
        } else {
            bytes += text[i];
        }
    }
    return bytes;
}

int Base64Value(char c)
{
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    return c == '+' || c == '-' ? 62 : c == '/' || c == '_' ? 63 : -1;
}

// Padding may be missing, and may stand in the middle where two pieces were glued together.
std::string DecodeB(std::string_view text)
{
    std::string bytes;
    uint32_t bits = 0;
    int held = 0;
    for (const char c : text) {
        const int value = Base64Value(c);
        if (value < 0) {
            if (c == '=')
                held = 0;
            continue;
        }
        bits = bits << 6 | static_cast<uint32_t>(value);
        held += 6;
        if (held >= 8) {
            held -= 8;
            bytes += static_cast<char>(bits >> held & 0xFF);
        }
    }
    return bytes;
}

bool SameCharset(std::string_view a, std::string_view b)
{
    if (a.size() != b.size())
        return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if ((a[i] | 0x20) != (b[i] | 0x20))
            return false;
    }
    return true;
}

size_t BlankLength(std::string_view text)
{
    size_t length = 0;
    while (length < text.size() && IsBlank(text[length]))
        ++length;
    return length;
}

// Decodes the run of encoded words at the front; returns its length.
size_t DecodeRun(std::string_view text, EncodedWord word, std::string_view guess, std::string* out)
{
    size_t at = 0;
    std::string bytes;
    std::string_view charset = word.charset;
    for (;;) {
        if (!SameCharset(charset, word.charset)) {
            *out += Utf8FromBytes(bytes, charset, guess);
            bytes.clear();
            charset = word.charset;
        }
        bytes += word.encoding == 'q' ? DecodeQ(word.text) : DecodeB(word.text);
        at += word.length;
        const size_t blanks = BlankLength(text.substr(at));
        word = ReadEncodedWord(text.substr(at + blanks));
        if (word.length == 0)
            break;
        at += blanks;  // white space between encoded words is not part of the text
    }
    *out += Utf8FromBytes(bytes, charset, guess);
    return at;
}

std::string OneLine(std::string text)
{
    for (char& c : text) {
        if (c == '\n' || c == '\t')
            c = ' ';
    }
    while (!text.empty() && text.back() == ' ')
        text.pop_back();
    text.erase(0, BlankLength(text));
    return text;
}

}  // namespace

std::string UnfoldHeader(std::string_view raw)
{
    std::string line;
    line.reserve(raw.size());
    for (size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] != '\r' && raw[i] != '\n') {
            line += raw[i];
            continue;
        }
        while (!line.empty() && IsBlank(line.back()))
            line.pop_back();
        i += BlankLength(raw.substr(i)) - 1;
        line += ' ';
    }
    while (!line.empty() && IsBlank(line.back()))
        line.pop_back();
    line.erase(0, BlankLength(line));
    return line;
}

size_t EncodedWordLength(std::string_view text)
{
    return ReadEncodedWord(text).length;
}

std::string DecodeHeaderText(std::string_view unfolded, std::string_view guess)
{
    std::string out;
    size_t plain = 0;  // start of what is not yet taken
    for (size_t i = 0; i < unfolded.size();) {
        const EncodedWord word = unfolded[i] == '=' ? ReadEncodedWord(unfolded.substr(i)) : EncodedWord{};
        if (word.length == 0) {
            ++i;
            continue;
        }
        out += Utf8FromBytes(unfolded.substr(plain, i - plain), {}, guess);
        i += DecodeRun(unfolded.substr(i), word, guess, &out);
        plain = i;
    }
    out += Utf8FromBytes(unfolded.substr(plain), {}, guess);
    return OneLine(CleanText(std::move(out)));
}

}  // namespace pavex
