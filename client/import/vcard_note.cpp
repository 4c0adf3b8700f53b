// client/import/vcard_note.cpp: which value of a card goes into which item.
#include "client/import/vcard_note.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <span>
#include <string_view>

#include "client/import/charset_text.h"
#include "client/import/vcard_date.h"
#include "client/import/vcard_values.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

// Bytes of text that an item can hold with room to spare; what is longer goes into the body.
constexpr size_t kLongestText = 16000;
constexpr size_t kLongestIdentity = 500;
constexpr unsigned kPlaces = kCardHome | kCardWork;
constexpr unsigned kNoTelephone = kCardFax | kCardPager | kCardNoVoice;

// Text of one line.
std::string OneLine(std::string text)
{
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::replace(text.begin(), text.end(), '\t', ' ');
    return std::string(TrimmedText(text));
}

std::string PartAt(const CardValue& value, size_t part)
{
    return part < value.parts.size() ? value.parts[part] : std::string();
}

// "Dr. Ann Maria Lee MD" of a name in parts: family, given, further ones, titles before, titles behind.
std::string NameOfParts(const CardValue& value)
{
    std::vector<std::string> ordered;
    for (const size_t part : {3U, 1U, 2U, 0U, 4U})
        ordered.push_back(PartAt(value, part));
    return JoinedParts(ordered, " ");
}

std::string FirstPart(const CardValue& value)
{
    return PartAt(value, 0);
}

// What names the contact, best first.
struct NameRow {
    std::string_view property;
    std::string (*read)(const CardValue& value);
};
constexpr NameRow kNames[] = {
    {"FN", FirstPart},
    {"N", NameOfParts},
    {"ORG", FirstPart},
    {"EMAIL", FirstPart},
};

struct OpenValue {
    CardValue value;
    bool used = false;  // it stands in an item
};

class ContactNote;

// One item, or several that belong together.
struct ItemRow {
    std::string_view property;
    unsigned wanted;    // CardKind bits: all of them
    unsigned unwanted;  // none of them
    bool many;          // takes all such values; otherwise the preferred one that fits, else the first
    // False when the values do not fit; they stay open.
    bool (ContactNote::*put)(const char* item, const std::vector<const CardValue*>& values);
    const char* item;
};

class ContactNote {
public:
    ContactNote(const std::vector<CardProperty>& properties, Note* note);
    void Fill();

private:
    std::vector<OpenValue*> Matching(const ItemRow& row);
    void FillRow(const ItemRow& row);
    bool FillItem(const ItemRow& row, const std::vector<OpenValue*>& open);
    bool PutText(const char* item, const std::vector<const CardValue*>& values);
    bool PutList(const char* item, const std::vector<const CardValue*>& values);
    bool PutDay(const char* item, const std::vector<const CardValue*>& values);
    bool PutName(const char* item, const std::vector<const CardValue*>& values);
    bool PutOrganization(const char* item, const std::vector<const CardValue*>& values);
    bool PutAddress(const char* prefix, const std::vector<const CardValue*>& values);
    bool PutExtra(const char* label, const std::vector<const CardValue*>& values);
    bool Add(const std::string& item, const std::string& text);
    void PutFullName();
    void PutBody();
    std::string BodyLines() const;

    static std::span<const ItemRow> Rows();

    Note* note_;
    std::vector<OpenValue> values_;
    std::string fullName_;
    std::set<std::string> filled_;  // items of rows
    int extras_ = 0;                // extra fields taken
};

// In the order of asking: a value goes to the first row that takes it, and of the rows of an item the first that
// finds a value fills it.  The indexer finds a second address in InternetAddress and one more in an extra field.
std::span<const ItemRow> ContactNote::Rows()
{
    using C = ContactNote;
    static constexpr ItemRow kRows[] = {
        {"N", 0, 0, false, &C::PutName, "LastName"},
        {"ORG", 0, 0, false, &C::PutOrganization, "CompanyName"},
        {"TITLE", 0, 0, false, &C::PutText, "JobTitle"},
        {"ROLE", 0, 0, false, &C::PutText, "JobTitle"},
        {"X-OFFICE", 0, 0, false, &C::PutText, "Location"},
        {"ADR", kCardWork, 0, false, &C::PutAddress, "Office"},
        {"ADR", kCardHome, 0, false, &C::PutAddress, ""},
        {"ADR", 0, kPlaces, false, &C::PutAddress, ""},
        {"TEL", kCardPager | kCardWork, 0, false, &C::PutText, "PhoneNumber_6"},
        {"TEL", kCardPager, kCardWork, false, &C::PutText, "PersPager"},
        {"TEL", kCardFax | kCardWork, kCardPager, false, &C::PutText, "OfficeFAXPhoneNumber"},
        {"TEL", kCardFax | kCardHome, kCardPager, false, &C::PutText, "HomeFAXPhoneNumber"},
        {"TEL", kCardFax, kPlaces | kCardPager, false, &C::PutText, "OfficeFAXPhoneNumber"},
        {"TEL", kCardCell, kNoTelephone, false, &C::PutText, "CellPhoneNumber"},
        {"TEL", kCardWork, kNoTelephone | kCardCell, false, &C::PutText, "OfficePhoneNumber"},
        {"TEL", kCardHome, kNoTelephone | kCardCell, false, &C::PutText, "PhoneNumber"},
        {"TEL", 0, kNoTelephone | kCardCell | kPlaces, false, &C::PutText, "PhoneNumber"},
        {"EMAIL", 0, 0, false, &C::PutText, "MailAddress"},
        {"EMAIL", 0, 0, false, &C::PutText, "InternetAddress"},
        {"EMAIL", 0, 0, false, &C::PutExtra, "email"},
        {"URL", 0, kCardHome, false, &C::PutText, "WebSite"},
        {"BDAY", 0, 0, false, &C::PutDay, "Birthday"},
        {"X-ABDATE", kCardAnniversary, 0, false, &C::PutDay, "Anniversary"},
        {"RELATED", kCardSpouse, 0, false, &C::PutText, "Spouse"},
        {"RELATED", kCardAssistant, 0, false, &C::PutText, "Assistant"},
        {"RELATED", kCardManager, 0, false, &C::PutText, "Manager"},
        {"RELATED", kCardChild, 0, true, &C::PutList, "Children"},
        {"CATEGORIES", 0, 0, true, &C::PutList, "Categories"},
        {"IMPP", 0, 0, true, &C::PutExtra, "onlinename"},
        {"NICKNAME", 0, 0, true, &C::PutExtra, "nickname"},
        {"URL", kCardHome, 0, true, &C::PutExtra, "homeurl"},
        {"URL", 0, kCardHome, true, &C::PutExtra, "url"},
    };
    return kRows;
}

ContactNote::ContactNote(const std::vector<CardProperty>& properties, Note* note)
    : note_(note), fullName_(NameOfCard(properties))
{
    for (CardValue& value : ReadCardValues(properties))
        values_.push_back({std::move(value), false});
}

std::vector<OpenValue*> ContactNote::Matching(const ItemRow& row)
{
    std::vector<OpenValue*> matching;
    for (OpenValue& open : values_) {
        const bool kind = (open.value.kinds & row.wanted) == row.wanted && (open.value.kinds & row.unwanted) == 0;
        if (!open.used && kind && open.value.name == row.property)
            matching.push_back(&open);
    }
    std::stable_sort(matching.begin(), matching.end(),
                     [](const OpenValue* a, const OpenValue* b) { return a->value.preference < b->value.preference; });
    return matching;
}

void ContactNote::FillRow(const ItemRow& row)
{
    const std::vector<OpenValue*> open = Matching(row);
    if (open.empty() || filled_.contains(row.item))
        return;
    if (row.many) {
        (void)FillItem(row, open);
        return;
    }
    for (OpenValue* each : open) {
        if (FillItem(row, {each}))
            return;
    }
}

// False when the values do not fit at all, and others may.
bool ContactNote::FillItem(const ItemRow& row, const std::vector<OpenValue*>& open)
{
    const size_t items = note_->items.size();
    std::vector<const CardValue*> values(open.size());
    std::transform(open.begin(), open.end(), values.begin(), [](const OpenValue* each) { return &each->value; });
    const bool put = (this->*row.put)(row.item, values);
    for (OpenValue* each : open)
        each->used = put;
    if (!put && note_->items.size() == items)
        return false;
    filled_.insert(row.item);
    return true;
}

bool ContactNote::Add(const std::string& item, const std::string& text)
{
    if (text.size() > kLongestText)
        return false;
    if (!text.empty())
        note_->items.push_back(TextItem(item, text));
    return true;
}

bool ContactNote::PutText(const char* item, const std::vector<const CardValue*>& values)
{
    return Add(item, OneLine(JoinedParts(values[0]->parts, ", ")));
}

bool ContactNote::PutList(const char* item, const std::vector<const CardValue*>& values)
{
    std::vector<std::string> entries;
    size_t bytes = 0;
    for (const CardValue* value : values) {
        for (const std::string& part : value->parts) {
            std::string entry = OneLine(part);
            bytes += entry.size() + sizeof(uint16_t);
            if (!entry.empty() && std::find(entries.begin(), entries.end(), entry) == entries.end())
                entries.push_back(std::move(entry));
        }
        if (bytes > kLongestText)
            return false;
    }
    note_->items.push_back(entries.size() == 1 ? TextItem(item, entries[0]) : TextListItem(item, entries));
    return true;
}

bool ContactNote::PutDay(const char* item, const std::vector<const CardValue*>& values)
{
    const std::optional<TIMEDATE> day = ReadCardDay(values[0]->parts[0]);
    if (day)
        note_->items.push_back(TimeItem(item, *day));
    return day.has_value();
}

// Family and given name.  The full name has the rest, or the body gets it.
bool ContactNote::PutName(const char* item, const std::vector<const CardValue*>& values)
{
    if (!Add(item, OneLine(PartAt(*values[0], 0))) || !Add("FirstName", OneLine(PartAt(*values[0], 1))))
        return false;
    const auto inFullName = [&](const std::string& word) { return fullName_.find(OneLine(word)) != std::string::npos; };
    for (size_t part = 2; part < values[0]->parts.size(); ++part) {
        const std::vector<std::string> words = SplitCardText(values[0]->parts[part], ',');
        if (!std::all_of(words.begin(), words.end(), inFullName))
            return false;
    }
    return true;
}

bool ContactNote::PutOrganization(const char* item, const std::vector<const CardValue*>& values)
{
    std::vector<std::string> units = values[0]->parts;
    units.erase(units.begin());
    return Add(item, OneLine(PartAt(*values[0], 0))) && Add("Department", OneLine(JoinedParts(units, ", ")));
}

bool ContactNote::PutAddress(const char* prefix, const std::vector<const CardValue*>& values)
{
    static constexpr const char* kItems[] = {"City", "State", "Zip", "Country"};
    std::vector<std::string> street = values[0]->parts;
    street.resize(3);  // the post office box, the room or floor, the street
    if (!Add(std::string(prefix) + "StreetAddress", JoinedParts(street, "\n")))
        return false;
    size_t part = street.size();
    for (const char* item : kItems) {
        if (!Add(std::string(prefix) + item, OneLine(PartAt(*values[0], part++))))
            return false;
    }
    return true;
}

// An extra field, which is known by the label that it has.
bool ContactNote::PutExtra(const char* label, const std::vector<const CardValue*>& values)
{
    constexpr int kExtraFields = 3;
    const std::string number = std::to_string(extras_ + 1);
    if (extras_ == kExtraFields || !PutList(("MiscPhone" + number).c_str(), values))
        return false;
    ++extras_;
    return Add("MiscLabel" + number, label);
}

void ContactNote::PutFullName()
{
    note_->items.push_back(TextItem("FullName", Utf8Prefix(fullName_, kLongestText)));
    for (OpenValue& open : values_) {
        if (open.value.name == "FN" && OneLine(open.value.parts[0]) == fullName_ && fullName_.size() <= kLongestText)
            open.used = true;
    }
}

std::string ContactNote::BodyLines() const
{
    std::string lines;
    for (const OpenValue& open : values_) {
        if (open.used || open.value.name == "NOTE")
            continue;
        std::string text = JoinedParts(open.value.parts, ", ");
        for (size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
            text.replace(at, 1, ", ");
        const std::string& label = open.value.label;
        lines += LabelOfProperty(open.value.name);
        if (!label.empty())
            lines.append(" (").append(label).append(")");
        lines.append(": ").append(text).append("\n");
    }
    return lines;
}

void ContactNote::PutBody()
{
    std::string text;
    for (const OpenValue& open : values_) {
        if (open.value.name == "NOTE")
            text += open.value.parts[0] + "\n";
    }
    text += BodyLines();
    if (text.empty())
        return;
    RichTextBuilder body;
    body.AddLines(text);
    note_->items.push_back(RichTextItem("Body", body.Records()));
}

void ContactNote::Fill()
{
    note_->items.push_back(TextItem("Form", "Person"));
    PutFullName();
    for (const ItemRow& row : Rows())
        FillRow(row);
    PutBody();
}

// First value of a property that is only for programs.
std::string ValueOf(const std::vector<CardProperty>& properties, std::string_view name)
{
    for (const CardProperty& property : properties) {
        if (property.name == name)
            return OneLine(UnescapedText(DecodedValue(property)));
    }
    return {};
}

// One id is written bare by one program and as a URI by the next.
std::string UidOfCard(const std::vector<CardProperty>& properties)
{
    constexpr std::string_view kScheme = "urn:uuid:";
    std::string uid = ValueOf(properties, "UID");
    if (uid.size() > kScheme.size() && SameWord(std::string_view(uid).substr(0, kScheme.size()), kScheme))
        uid.erase(0, kScheme.size());
    return std::string(Utf8Prefix(uid, kLongestIdentity));
}

}  // namespace

std::string NameOfCard(const std::vector<CardProperty>& properties)
{
    const std::vector<CardValue> values = ReadCardValues(properties);
    for (const NameRow& row : kNames) {
        const CardValue* best = nullptr;
        for (const CardValue& value : values) {
            if (value.name == row.property && (best == nullptr || value.preference < best->preference))
                best = &value;
        }
        if (std::string name = best == nullptr ? std::string() : OneLine(row.read(*best)); !name.empty())
            return name;
    }
    return {};
}

std::string IdentityOfCard(const std::vector<CardProperty>& properties)
{
    const std::string uid = UidOfCard(properties);
    return uid.empty() ? "card:name:" + std::string(Utf8Prefix(NameOfCard(properties), kLongestIdentity))
                       : "card:uid:" + uid;
}

std::optional<Revision> RevisionOfCard(const std::vector<CardProperty>& properties)
{
    if (UidOfCard(properties).empty())
        return std::nullopt;
    return Revision{0, CompactCardTime(ValueOf(properties, "REV"))};
}

void MakeContactNote(const std::vector<CardProperty>& properties, Note* note)
{
    note->items.clear();
    ContactNote(properties, note).Fill();
    const std::string changed = CompactCardTime(ValueOf(properties, "REV"));
    if (const std::optional<TIMEDATE> time = TimeOfCompact(changed))
        note->modified = *time;
}

}  // namespace pavex
