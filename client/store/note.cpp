// client/store/note.cpp: building and reading the values of items.
#include "client/store/note.h"

#include <algorithm>
#include <cstring>

#include "client/store/charset.h"

namespace pavex {
namespace {

constexpr size_t kMostInWord = 0xFFFF;  // lists count entries and their bytes in a WORD

template <typename Value> void AppendValue(std::string* bytes, const Value& value)
{
    char raw[sizeof value];
    std::memcpy(raw, &value, sizeof value);
    bytes->append(raw, sizeof value);
}

template <typename Value> Value ValueAt(const std::string& bytes, size_t offset)
{
    Value value;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
}

char LowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string StoredText(std::string_view utf8)
{
    std::string scs = ScsFromUtf8(utf8);
    std::replace(scs.begin(), scs.end(), '\n', '\0');
    return scs;
}

std::string ReadableText(std::string_view scs)
{
    std::string utf8 = Utf8FromScs(scs);
    std::replace(utf8.begin(), utf8.end(), '\0', '\n');
    return utf8;
}

// The values of a number or time, or of the list part of a range of them.
template <typename Value> std::optional<std::vector<Value>> ValuesOf(const Item& item, uint16_t single, uint16_t range)
{
    size_t offset = 0;
    size_t count = 1;
    if (item.type == range) {
        if (item.value.size() < 2 * sizeof(uint16_t))
            return std::nullopt;
        count = ValueAt<uint16_t>(item.value, 0);
        offset = 2 * sizeof(uint16_t);
    } else if (item.type != single) {
        return std::nullopt;
    }
    if (item.value.size() < offset + count * sizeof(Value))
        return std::nullopt;
    std::vector<Value> values;
    values.reserve(count);
    for (size_t i = 0; i < count; ++i)
        values.push_back(ValueAt<Value>(item.value, offset + i * sizeof(Value)));
    return values;
}

}  // namespace

bool SameItemName(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return LowerAscii(x) == LowerAscii(y); });
}

Item TextItem(std::string_view name, std::string_view utf8)
{
    return {std::string(name), kTypeText, 0, StoredText(utf8)};
}

Item TextListItem(std::string_view name, const std::vector<std::string>& utf8)
{
    const size_t count = std::min(utf8.size(), kMostInWord);
    std::string lengths;
    std::string entries;
    AppendValue(&lengths, static_cast<uint16_t>(count));
    for (size_t i = 0; i < count; ++i) {
        std::string entry = StoredText(utf8[i]);
        entry.resize(ScsPrefix(entry, kMostInWord));
        AppendValue(&lengths, static_cast<uint16_t>(entry.size()));
        entries += entry;
    }
    return {std::string(name), kTypeTextList, 0, lengths + entries};
}

Item NumberItem(std::string_view name, double number)
{
    Item item{std::string(name), kTypeNumber, 0, {}};
    AppendValue(&item.value, number);
    return item;
}

Item TimeItem(std::string_view name, const TIMEDATE& time)
{
    Item item{std::string(name), kTypeTime, 0, {}};
    AppendValue(&item.value, time);
    return item;
}

Item TimeListItem(std::string_view name, const std::vector<TIMEDATE>& times)
{
    const size_t count = std::min(times.size(), kMostInWord);
    Item item{std::string(name), kTypeTimeRange, 0, {}};
    AppendValue(&item.value, static_cast<uint16_t>(count));
    AppendValue(&item.value, uint16_t{0});
    for (size_t i = 0; i < count; ++i)
        AppendValue(&item.value, times[i]);
    return item;
}

Item RichTextItem(std::string_view name, std::string records)
{
    return {std::string(name), kTypeRichText, 0, std::move(records)};
}

Item FormulaItem(std::string_view name, std::string_view utf8)
{
    return {std::string(name), kTypeFormula, 0, ScsFromUtf8(utf8)};
}

std::optional<std::vector<std::string>> TextValues(const Item& item)
{
    if (item.type == kTypeText)
        return std::vector{ReadableText(item.value)};
    if (item.type != kTypeTextList || item.value.size() < sizeof(uint16_t))
        return std::nullopt;
    const size_t count = ValueAt<uint16_t>(item.value, 0);
    size_t entry = sizeof(uint16_t) * (1 + count);
    if (item.value.size() < entry)
        return std::nullopt;
    std::vector<std::string> values;
    values.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        const size_t bytes = ValueAt<uint16_t>(item.value, sizeof(uint16_t) * (1 + i));
        if (item.value.size() - entry < bytes)
            return std::nullopt;
        values.push_back(ReadableText(std::string_view(item.value).substr(entry, bytes)));
        entry += bytes;
    }
    return values;
}

std::optional<double> NumberValue(const Item& item)
{
    const auto values = ValuesOf<double>(item, kTypeNumber, kTypeNumberRange);
    if (!values || values->empty())
        return std::nullopt;
    return values->front();
}

std::optional<std::vector<TIMEDATE>> TimeValues(const Item& item)
{
    return ValuesOf<TIMEDATE>(item, kTypeTime, kTypeTimeRange);
}

const Item* Note::Find(std::string_view name) const
{
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const Item& item) { return SameItemName(item.name, name); });
    return found == items.end() ? nullptr : &*found;
}

void Note::Set(Item item)
{
    const auto found =
        std::find_if(items.begin(), items.end(), [&](const Item& old) { return SameItemName(old.name, item.name); });
    if (found == items.end())
        items.push_back(std::move(item));
    else
        *found = std::move(item);
}

}  // namespace pavex
