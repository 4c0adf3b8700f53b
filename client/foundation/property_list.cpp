// client/foundation/property_list.cpp: writes the XML form of property lists.
// What is written always parses: a character that XML cannot hold becomes U+FFFD, and a carriage return,
// which a parser would turn into a line feed, goes out as a character reference.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "client/foundation/collections.h"
#include "client/foundation/date.h"
#include "client/foundation/number.h"
#include "client/foundation/string.h"
#include "client/foundation/unicode.h"

using namespace pavex::cf;

namespace {

constexpr std::string_view kHeader =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
    "<plist version=\"1.0\">\n";
constexpr std::string_view kFooter = "</plist>\n";
constexpr size_t kUsualSize = 4096;  // bytes; most documents need no second allocation
constexpr size_t kMostLevels = 512;  // nested deeper is refused: the writer recurses
constexpr size_t kMostColumns = 76;  // of a base64 line, a tab counting 8
constexpr size_t kTabColumns = 8;

bool IsXmlCharacter(char32_t c)
{
    if (c < 0x20)
        return c == '\t' || c == '\n' || c == '\r';
    return !IsSurrogate(c) && c != 0xFFFE && c != 0xFFFF;
}

// How many units at the start of the text are ASCII that needs no escape.
size_t PlainLength(std::u16string_view text)
{
    size_t length = 0;
    while (length < text.size() && text[length] >= 0x20 && text[length] < 0x7F && text[length] != '&' &&
           text[length] != '<' && text[length] != '>')
        ++length;
    return length;
}

class XmlWriter {
public:
    // False when the value cannot be in a property list.
    bool Write(CFTypeRef value)
    {
        out_.reserve(kUsualSize);
        out_ += kHeader;
        if (!Value(AsObject(value)))
            return false;
        out_ += kFooter;
        return true;
    }
    std::string Take() { return std::move(out_); }

private:
    bool Value(const Object& object)
    {
        switch (object.GetKind()) {
        case Kind::String:
            return Text("string", static_cast<const String&>(object).Text());
        case Kind::Dictionary:
            return Contained(object, &XmlWriter::Dict);
        case Kind::Array:
            return Contained(object, &XmlWriter::Items);
        case Kind::Data:
            return Base64(static_cast<const Data&>(object).Bytes());
        case Kind::Number:
            return Value(static_cast<const Number&>(object));
        case Kind::Boolean:
            return Line(static_cast<const BooleanValue&>(object).Get() ? "<true/>" : "<false/>");
        case Kind::Date:
            return Time(static_cast<const Date&>(object).At());
        case Kind::Url:
        case Kind::Bundle:
        case Kind::PowerSources:
            return false;
        }
        return false;
    }

    // Runs `write` unless the container is inside itself.
    bool Contained(const Object& container, bool (XmlWriter::*write)(const Object&))
    {
        if (containers_.size() >= kMostLevels ||
            std::find(containers_.begin(), containers_.end(), &container) != containers_.end())
            return false;
        containers_.push_back(&container);
        const bool written = (this->*write)(container);
        containers_.pop_back();
        return written;
    }

    bool Dict(const Object& object)
    {
        const auto& dictionary = static_cast<const Dictionary&>(object);
        if (!dictionary.HoldsObjects())
            return false;
        struct SortedEntry {
            std::u16string_view key;
            const Object* value;
        };
        std::vector<SortedEntry> sorted;
        sorted.reserve(dictionary.Entries().size());
        for (const Dictionary::Entry& entry : dictionary.Entries()) {
            if (AsObject(entry.key).GetKind() != Kind::String)
                return false;
            sorted.push_back({As<String>(entry.key).Text(), &AsObject(entry.value)});
        }
        std::sort(sorted.begin(), sorted.end(), [](const auto& a, const auto& b) { return a.key < b.key; });
        if (sorted.empty())
            return LineOutside("<dict/>");
        LineOutside("<dict>");
        for (const SortedEntry& entry : sorted) {
            Text("key", entry.key);
            if (!Value(*entry.value))
                return false;
        }
        return LineOutside("</dict>");
    }

    bool Items(const Object& object)
    {
        const auto& values = static_cast<const Array&>(object).Values();
        if (values.empty())
            return LineOutside("<array/>");
        LineOutside("<array>");
        for (const auto& value : values) {
            if (!Value(*value))
                return false;
        }
        return LineOutside("</array>");
    }

    bool Text(std::string_view tag, std::u16string_view text)
    {
        Indent(containers_.size());
        out_.append(1, '<').append(tag).append(1, '>');
        for (size_t i = 0; i < text.size();) {
            // Most texts are plain ASCII for long stretches: those go over in one piece.
            const size_t plain = PlainLength(text.substr(i));
            const size_t start = out_.size();
            out_.resize(start + plain);
            for (size_t k = 0; k < plain; ++k)
                out_[start + k] = static_cast<char>(text[i + k]);
            i += plain;
            if (i < text.size())
                Character(NextCodePoint(text, &i));
        }
        out_.append("</").append(tag).append(">\n");
        return true;
    }

    void Character(char32_t c)
    {
        switch (c) {
        case '&':
            out_ += "&amp;";
            return;
        case '<':
            out_ += "&lt;";
            return;
        case '>':
            out_ += "&gt;";
            return;
        case '\r':
            out_ += "&#13;";
            return;
        default:
            break;
        }
        AppendUtf8(IsXmlCharacter(c) ? c : kReplacementCharacter, &out_);
    }

    bool Value(const Number& number)
    {
        char digits[64];
        if (const auto* integer = std::get_if<int64_t>(&number.Get())) {
            const auto end = std::to_chars(std::begin(digits), std::end(digits), *integer).ptr;
            return Element("integer", std::string_view(digits, static_cast<size_t>(end - digits)));
        }
        const double real = std::get<double>(number.Get());
        if (std::isnan(real))
            return Element("real", "nan");
        if (std::isinf(real))
            return Element("real", real > 0 ? "+infinity" : "-infinity");
        if (real == 0.0)
            return Element("real", "0.0");
        const auto end = std::to_chars(std::begin(digits), std::end(digits), real, std::chars_format::general, 17).ptr;
        return Element("real", std::string_view(digits, static_cast<size_t>(end - digits)));
    }

    bool Time(CFAbsoluteTime at)
    {
        // Cut before it is split, so that the smallest time before midnight is 23:59:59, not a 60th second.
        const CFGregorianDate date = CFAbsoluteTimeGetGregorianDate(std::floor(at), nullptr);
        char text[64];
        const int length = std::snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02dZ", date.year, date.month,
                                         date.day, date.hour, date.minute, static_cast<int>(date.second));
        return Element("date", std::string_view(text, static_cast<size_t>(length)));
    }

    bool Base64(std::string_view bytes)
    {
        constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        const size_t level = containers_.size();
        const size_t indent = std::min(level * kTabColumns, kMostColumns - 4);
        const size_t perLine = (kMostColumns - indent) / 4 * 3;  // bytes
        Line("<data>");
        for (size_t start = 0; start < bytes.size(); start += perLine) {
            Indent(level);
            const std::string_view line = bytes.substr(start, perLine);
            for (size_t i = 0; i < line.size(); i += 3) {
                uint32_t group = 0;
                for (size_t k = 0; k < 3; ++k)
                    group = (group << 8) | (i + k < line.size() ? static_cast<unsigned char>(line[i + k]) : 0u);
                for (size_t k = 0; k < 4; ++k)
                    out_.push_back(i + k <= line.size() ? kDigits[(group >> (18 - 6 * k)) & 0x3F] : '=');
            }
            out_.push_back('\n');
        }
        return Line("</data>");
    }

    bool Element(std::string_view tag, std::string_view content)
    {
        Indent(containers_.size());
        out_.append(1, '<').append(tag).append(1, '>').append(content).append("</").append(tag).append(">\n");
        return true;
    }
    bool Line(std::string_view line)
    {
        Indent(containers_.size());
        out_.append(line).append(1, '\n');
        return true;
    }
    // A container's own tag stands one level outside its contents.
    bool LineOutside(std::string_view line)
    {
        Indent(containers_.size() - 1);
        out_.append(line).append(1, '\n');
        return true;
    }
    void Indent(size_t level) { out_.append(level, '\t'); }

    std::string out_;
    std::vector<const Object*> containers_;  // those being written, outermost first
};

}  // namespace

extern "C" CFDataRef CFPropertyListCreateXMLData(CFAllocatorRef, CFPropertyListRef propertyList)
{
    XmlWriter writer;
    if (!propertyList || !writer.Write(propertyList))
        return nullptr;
    return ToRef<CFDataRef>(New<Data>(writer.Take()));
}
