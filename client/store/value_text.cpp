// client/store/value_text.cpp: the text form of item values.
#include "client/store/value_text.h"

#include <charconv>
#include <cmath>
#include <cstring>

namespace pavex {

namespace {

// Reads fixed-size parts off a value; after a short read every further one fails.
class ValueReader {
public:
    explicit ValueReader(std::string_view value) : rest_(value) {}

    template <typename Part> bool Read(Part* part)
    {
        std::string_view bytes;
        if (!Take(sizeof(Part), &bytes))
            return false;
        std::memcpy(part, bytes.data(), sizeof(Part));
        return true;
    }
    bool Take(size_t count, std::string_view* bytes)
    {
        if (count > rest_.size()) {
            rest_ = {};
            return false;
        }
        *bytes = rest_.substr(0, count);
        rest_.remove_prefix(count);
        return true;
    }

private:
    std::string_view rest_;
};

// Collects values with the separator between them.
class Joiner {
public:
    explicit Joiner(std::string_view separator) : separator_(separator) {}
    void Add(std::string_view value)
    {
        if (!first_)
            text_ += separator_;
        first_ = false;
        text_ += value;
    }
    std::string Take() { return std::move(text_); }

private:
    std::string_view separator_;
    std::string text_;
    bool first_ = true;
};

std::string TextOfTime(const TIMEDATE& time)
{
    char text[80];
    WORD length = 0;
    if (ConvertTIMEDATEToText(nullptr, nullptr, &time, text, sizeof text, &length) != kStatusOk)
        return {};
    return {text, length};
}

std::string TextOf(const TIMEDATE& value)
{
    return TextOfTime(value);
}
std::string TextOf(double value)
{
    return TextOfNumber(value).value_or("");
}

std::string TextOfList(std::string_view value, std::string_view separator)
{
    std::vector<std::string_view> entries;
    if (!ReadTextList(value, &entries))
        return {};
    Joiner joiner(separator);
    for (const std::string_view entry : entries)
        joiner.Add(entry);
    return joiner.Take();
}

template <typename Element> std::string TextOfRange(std::string_view value, std::string_view separator)
{
    WORD singles = 0;
    WORD ranges = 0;
    ValueReader reader(value);
    if (!reader.Read(&singles) || !reader.Read(&ranges))
        return {};
    Joiner joiner(separator);
    for (Element element; singles > 0 && reader.Read(&element); --singles)
        joiner.Add(TextOf(element));
    for (Element from, to; ranges > 0 && reader.Read(&from) && reader.Read(&to); --ranges)
        joiner.Add(TextOf(from) + " - " + TextOf(to));
    return joiner.Take();
}

template <typename Element> std::string TextOfSingle(std::string_view value, std::string_view)
{
    Element element;
    return ValueReader(value).Read(&element) ? TextOf(element) : std::string();
}

template <typename Element>
std::vector<Element> ReadSingles(uint16_t type, std::string_view value, uint16_t singleType, uint16_t rangeType)
{
    std::vector<Element> elements;
    ValueReader reader(value);
    WORD singles = 1;
    WORD ranges = 0;
    if (type != singleType && (type != rangeType || !reader.Read(&singles) || !reader.Read(&ranges)))
        return elements;
    for (Element element; singles > 0 && reader.Read(&element); --singles)
        elements.push_back(element);
    return elements;
}

std::string TextAsItStands(std::string_view value, std::string_view)
{
    return std::string(value);
}

struct TypeRow {
    uint16_t type;
    std::string (*text)(std::string_view value, std::string_view separator);
};

constexpr TypeRow kTypes[] = {
    {kTypeText, TextAsItStands},         {kTypeTextList, TextOfList},
    {kTypeNumber, TextOfSingle<double>}, {kTypeNumberRange, TextOfRange<double>},
    {kTypeTime, TextOfSingle<TIMEDATE>}, {kTypeTimeRange, TextOfRange<TIMEDATE>},
};

}  // namespace

std::optional<std::string> TextOfNumber(double number)
{
    if (!std::isfinite(number))
        return std::nullopt;
    const double magnitude = std::fabs(number);
    const bool plain = magnitude == 0 || (magnitude >= 1e-5 && magnitude < 1e15);
    char text[64];
    const auto [end, error] = std::to_chars(text, text + sizeof text, number == 0 ? 0.0 : number,
                                            plain ? std::chars_format::fixed : std::chars_format::scientific);
    if (error != std::errc{})
        return std::nullopt;
    return std::string(text, end);
}

std::string TextOfValue(uint16_t type, std::string_view value, std::string_view separator)
{
    for (const TypeRow& row : kTypes) {
        if (row.type == type)
            return row.text(value, separator);
    }
    return {};
}

std::string TextOfItem(const Item& item, std::string_view separator)
{
    return TextOfValue(item.type, item.value, separator);
}

bool ReadTextList(std::string_view value, std::vector<std::string_view>* entries)
{
    entries->clear();
    WORD count = 0;
    ValueReader reader(value);
    std::string_view lengths;
    if (!reader.Read(&count) || !reader.Take(count * sizeof(WORD), &lengths))
        return false;
    for (size_t i = 0; i < count; ++i) {
        WORD length;
        std::memcpy(&length, lengths.data() + i * sizeof length, sizeof length);
        std::string_view entry;
        if (!reader.Take(length, &entry))
            return false;
        entries->push_back(entry);
    }
    return true;
}

std::vector<double> ReadNumbers(uint16_t type, std::string_view value)
{
    return ReadSingles<double>(type, value, kTypeNumber, kTypeNumberRange);
}

std::vector<TIMEDATE> ReadTimes(uint16_t type, std::string_view value)
{
    return ReadSingles<TIMEDATE>(type, value, kTypeTime, kTypeTimeRange);
}

}  // namespace pavex
