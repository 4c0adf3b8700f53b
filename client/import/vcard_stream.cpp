// client/import/vcard_stream.cpp: where cards begin and end, also in files that break the rules.
#include "client/import/vcard_stream.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace pavex {
namespace {

constexpr std::string_view kBegin = "BEGIN:VCARD";
constexpr std::string_view kEnd = "END:VCARD";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
// What a property costs beside its text.
constexpr size_t kPropertyBytes = 128;

// Properties whose values are no text and may be of any size.
constexpr std::string_view kBinary[] = {
    "PHOTO", "LOGO", "SOUND", "KEY", "X-MS-CARDPICTURE", "X-MS-OL-DESIGN", "X-SHARED-PHOTO-DISPLAY-PREF"};

bool IsBinary(std::string_view name)
{
    return std::find(std::begin(kBinary), std::end(kBinary), name) != std::end(kBinary);
}

// Without the marks that are left in the middle where files were joined.
std::string_view WithoutMark(std::string_view text)
{
    return text.starts_with(kByteOrderMark) ? text.substr(kByteOrderMark.size()) : text;
}

bool IsMarker(std::string_view line, std::string_view marker)
{
    return SameWord(TrimmedText(line), marker);
}

std::string_view ValueOf(std::string_view line)
{
    const size_t value = ContentValue(line);
    return value == line.npos ? std::string_view() : TrimmedText(line.substr(value));
}

}  // namespace

bool CardStream::Room(size_t bytes)
{
    kept_ += bytes;
    return kept_ <= kLargestCard;
}

void CardStream::Hash(std::string_view line)
{
    g_checksum_update(checksum_.get(), reinterpret_cast<const guchar*>(line.data()), static_cast<gssize>(line.size()));
    g_checksum_update(checksum_.get(), reinterpret_cast<const guchar*>("\n"), 1);
}

void CardStream::Open(const ContentLine& line)
{
    card_ = {};
    card_.line = line.number;
    card_.start = line.offset;
    card_.end = line.endOffset;
    checksum_.reset(g_checksum_new(G_CHECKSUM_SHA256));
    open_ = true;
    leftOut_ = false;
    awaitsNested_ = false;
    nested_ = 0;
    garbage_ = false;
    kept_ = 0;
}

bool CardStream::HandOut(std::string problem, CardFound* found)
{
    open_ = false;
    card_.digest = g_checksum_get_string(checksum_.get());
    card_.problem = std::move(problem);
    if (card_.problem.empty() && kept_ > kLargestCard)
        card_.problem = "is a card of more than 4 MB of text";
    *found = std::exchange(card_, {});
    return true;
}

bool CardStream::Next(CardFound* found)
{
    ContentLine line;
    while (lines_.Next(&line)) {
        if (Take(line, found))
            return true;
    }
    if (!open_ || lines_.Error() != 0)
        return false;
    return HandOut("is a card that does not end", found);
}

bool CardStream::Take(const ContentLine& line, CardFound* found)
{
    const bool begins = IsMarker(open_ ? std::string_view(line.text) : WithoutMark(line.text), kBegin);
    if (!open_)
        return TakeOutside(line, begins, found);
    if (begins && !awaitsNested_) {
        HandOut("is a card that does not end: another begins in line " + std::to_string(line.number), found);
        Open(line);
        return true;
    }
    card_.end = line.endOffset;
    if (IsMarker(line.text, kEnd) && nested_ == 0)
        return HandOut({}, found);
    TakeProperty(line);
    return false;
}

bool CardStream::TakeOutside(const ContentLine& line, bool begins, CardFound* found)
{
    if (begins)
        Open(line);
    if (begins || garbage_ || TrimmedText(WithoutMark(line.text)).empty())
        return false;
    garbage_ = true;
    *found = {};
    found->line = line.number;
    found->problem = "is no part of a card";
    return true;
}

void CardStream::TakeProperty(const ContentLine& line)
{
    const std::string_view text = line.text;
    if (TrimmedText(text).empty())
        return;
    const bool begins = IsMarker(text, kBegin);  // of the card that is the last property's value
    CardProperty property;
    const bool isProperty = !begins && ReadCardLine(text, &property);
    if (!begins && !isProperty)
        return TakeRest(line);
    const bool wasNested = nested_ > 0;
    const bool opensOnItsLine = property.name == "AGENT" && IsMarker(property.value, kBegin);
    awaitsNested_ = property.name == "AGENT" && TrimmedText(property.value).empty();
    leftOut_ = IsBinary(property.name);
    nested_ += begins || opensOnItsLine ? 1 : 0;
    nested_ -= wasNested && IsMarker(text, kEnd) ? 1 : 0;
    if (leftOut_)
        return;
    if (line.shortened)
        card_.notice = "what a line has beyond 1 MB is left out";
    Hash(text);
    if (!Room(text.size() + kPropertyBytes))
        return;
    if (wasNested || begins)
        AppendLine(text);
    else
        card_.properties.push_back(std::move(property));
}

void CardStream::AppendLine(std::string_view line)
{
    card_.properties.back().value.append("\n").append(line);
}

// A line that is no property: the rest of the value before it, which its writer broke off without a fold.
void CardStream::TakeRest(const ContentLine& line)
{
    if (leftOut_ || card_.properties.empty())
        return;
    Hash(line.text);
    if (Room(line.text.size() + 1))
        AppendLine(line.text);
}

bool IsNestedCard(std::string_view text)
{
    text = TrimmedText(text);
    return text.size() >= kBegin.size() && SameWord(text.substr(0, kBegin.size()), kBegin);
}

std::vector<CardProperty> ReadNestedCard(std::string_view text)
{
    std::vector<CardProperty> properties;
    uint64_t depth = 0;
    while (!text.empty()) {
        const size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        depth += IsMarker(line, kBegin) || IsMarker(ValueOf(line), kBegin) ? 1 : 0;
        depth -= depth > 0 && IsMarker(line, kEnd) ? 1 : 0;
        CardProperty property;
        if (depth == 1 && ReadCardLine(line, &property))
            properties.push_back(std::move(property));
    }
    return properties;
}

}  // namespace pavex
