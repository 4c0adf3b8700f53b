// client/foundation/strings_table.cpp: reads `.strings` tables.
// An entry is  key = text;  or, when both are the same,  key;  each side quoted ("..." or '...') or a bare
// word.  Between them white space and comments, /* */ and //.
#include "client/foundation/strings_table.h"

#include <algorithm>
#include <utility>

#include "client/foundation/unicode.h"

namespace pavex::cf {

namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
constexpr std::string_view kLittleEndianMark = "\xFF\xFE";
constexpr std::string_view kBigEndianMark = "\xFE\xFF";

struct EscapeRow {
    char16_t letter, meaning;
};
// Any other character after a backslash stands for itself.
constexpr EscapeRow kEscapes[] = {{u'a', u'\a'}, {u'b', u'\b'}, {u'f', u'\f'}, {u'n', u'\n'},
                                  {u'r', u'\r'}, {u't', u'\t'}, {u'v', u'\v'}};

struct DecodedText {
    std::u16string text;
    const char* fault;  // why the text ends before the file; null: it does not
};

DecodedText DecodeUtf16(std::string_view bytes, bool bigEndian)
{
    DecodedText decoded{{}, bytes.size() % 2 != 0 ? "the file ends within a UTF-16 unit" : nullptr};
    decoded.text.reserve(bytes.size() / 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        decoded.text.push_back(static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first));
    }
    return decoded;
}

DecodedText Decode(std::string_view bytes)
{
    if (bytes.starts_with(kLittleEndianMark))
        return DecodeUtf16(bytes.substr(kLittleEndianMark.size()), false);
    if (bytes.starts_with(kBigEndianMark))
        return DecodeUtf16(bytes.substr(kBigEndianMark.size()), true);
    if (bytes.starts_with(kUtf8Mark))
        bytes.remove_prefix(kUtf8Mark.size());
    DecodedText decoded{{}, nullptr};
    if (DecodeUtf8(bytes, &decoded.text) != bytes.size())
        decoded.fault = "malformed UTF-8";
    return decoded;
}

bool IsSpace(char16_t c)
{
    return c == u' ' || (c >= u'\t' && c <= u'\r') || c == 0x0085 || c == 0x00A0 || c == 0x2028 || c == 0x2029;
}

bool IsBare(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           std::u16string_view(u"_$/:.-+%").find(c) != std::u16string_view::npos;
}

int HexDigit(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    return c >= u'A' && c <= u'F' ? c - u'A' + 10 : -1;
}

class Parser {
public:
    explicit Parser(const DecodedText& decoded) : text_(decoded.text), cutShort_(decoded.fault) {}

    StringsTable Run()
    {
        while (SkipSpace() && !AtEnd() && Entry()) {
        }
        if (!table_.fault && cutShort_)
            Fault(cutShort_);
        return std::move(table_);
    }

private:
    bool AtEnd() const { return at_ == text_.size(); }
    bool Ahead(std::u16string_view wanted) const { return text_.substr(at_).starts_with(wanted); }

    // Always false.  Where the text was cut short by its encoding, that is the true reason.
    bool Fault(const char* reason)
    {
        // A carriage return and a line feed together are one line's end.
        const std::u16string_view before = text_.substr(0, at_);
        int line = 1;
        for (size_t i = 0; i < before.size(); ++i) {
            if (before[i] == u'\n' || (before[i] == u'\r' && (i + 1 == before.size() || before[i + 1] != u'\n')))
                ++line;
        }
        table_.fault = StringsFault{line, AtEnd() && cutShort_ ? cutShort_ : reason};
        return false;
    }

    bool SkipSpace()
    {
        while (!AtEnd()) {
            if (IsSpace(text_[at_])) {
                ++at_;
            } else if (Ahead(u"//")) {
                at_ = std::min(text_.find_first_of(u"\n\r\u2028\u2029", at_), text_.size());
            } else if (Ahead(u"/*")) {
                const size_t end = text_.find(u"*/", at_ + 2);
                if (end == std::u16string_view::npos)
                    return OpenEnded("a comment is not closed");
                at_ = end + 2;
            } else {
                break;
            }
        }
        return true;
    }

    // The fault is where the piece began, unless the encoding broke inside it.
    bool OpenEnded(const char* reason)
    {
        if (cutShort_)
            at_ = text_.size();
        return Fault(reason);
    }

    bool Entry()
    {
        std::u16string key, value;
        if (!Word(&key) || !SkipSpace())
            return false;
        if (Ahead(u"=")) {
            ++at_;
            if (!SkipSpace() || !Word(&value) || !SkipSpace())
                return false;
        } else {
            value = key;
        }
        if (!Ahead(u";"))
            return Fault("a ';' is missing");
        ++at_;
        table_.entries.insert_or_assign(std::move(key), std::move(value));
        return true;
    }

    bool Word(std::u16string* word)
    {
        if (AtEnd())
            return Fault("the entry is not complete");
        if (text_[at_] == u'"' || text_[at_] == u'\'')
            return Quoted(word);
        while (!AtEnd() && IsBare(text_[at_]) && !Ahead(u"//") && !Ahead(u"/*"))
            word->push_back(text_[at_++]);
        return !word->empty() || Fault("a key or a text is missing");
    }

    bool Quoted(std::u16string* word)
    {
        const size_t start = at_;
        const char16_t quote = text_[at_++];
        while (!AtEnd()) {
            const char16_t c = text_[at_++];
            if (c == quote)
                return true;
            if (c != u'\\')
                word->push_back(c);
            else if (!AtEnd() && !Escape(word))
                return false;
        }
        at_ = start;
        return OpenEnded("a quoted text is not closed");
    }

    bool Escape(std::u16string* word)
    {
        const char16_t letter = text_[at_++];
        if (letter == u'U')
            return UnitEscape(word);
        const auto* row = std::find_if(std::begin(kEscapes), std::end(kEscapes),
                                       [letter](const EscapeRow& escape) { return escape.letter == letter; });
        word->push_back(row != std::end(kEscapes) ? row->meaning : letter);
        return true;
    }

    bool UnitEscape(std::u16string* word)
    {
        int unit = 0;
        for (int i = 0; i < 4; ++i) {
            const int digit = AtEnd() ? -1 : HexDigit(text_[at_]);
            if (digit < 0)
                return Fault("\\U needs four hexadecimal digits");
            unit = unit * 16 + digit;
            ++at_;
        }
        word->push_back(static_cast<char16_t>(unit));
        return true;
    }

    const std::u16string_view text_;
    const char* const cutShort_;
    size_t at_ = 0;
    StringsTable table_;
};

}  // namespace

StringsTable ParseStrings(std::string_view bytes)
{
    const DecodedText decoded = Decode(bytes);
    return Parser(decoded).Run();
}

}  // namespace pavex::cf
