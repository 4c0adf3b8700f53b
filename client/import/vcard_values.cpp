// client/import/vcard_values.cpp: the vocabulary of cards, as tables.
#include "client/import/vcard_values.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <map>

#include "client/import/vcard_stream.h"

namespace pavex {
namespace {

// Other names for what has a standard one, with what they say that the standard one does not.
struct AliasRow {
    std::string_view name;
    std::string_view standard;
    unsigned kinds;
    std::string_view label;
};
constexpr AliasRow kAliases[] = {
    {"AGENT", "RELATED", kCardAssistant, "assistant"},
    {"X-ABRELATEDNAMES", "RELATED", 0, ""},
    {"X-SPOUSE", "RELATED", kCardSpouse, "spouse"},
    {"X-EVOLUTION-SPOUSE", "RELATED", kCardSpouse, "spouse"},
    {"X-KADDRESSBOOK-X-SPOUSESNAME", "RELATED", kCardSpouse, "spouse"},
    {"X-MS-SPOUSE", "RELATED", kCardSpouse, "spouse"},
    {"X-CHILD", "RELATED", kCardChild, "child"},
    {"X-CHILDREN", "RELATED", kCardChild, "child"},
    {"X-MS-CHILD", "RELATED", kCardChild, "child"},
    {"X-MANAGER", "RELATED", kCardManager, "manager"},
    {"X-EVOLUTION-MANAGER", "RELATED", kCardManager, "manager"},
    {"X-KADDRESSBOOK-X-MANAGERSNAME", "RELATED", kCardManager, "manager"},
    {"X-MS-MANAGER", "RELATED", kCardManager, "manager"},
    {"X-ASSISTANT", "RELATED", kCardAssistant, "assistant"},
    {"X-EVOLUTION-ASSISTANT", "RELATED", kCardAssistant, "assistant"},
    {"X-KADDRESSBOOK-X-ASSISTANTSNAME", "RELATED", kCardAssistant, "assistant"},
    {"X-MS-ASSISTANT", "RELATED", kCardAssistant, "assistant"},
    {"ANNIVERSARY", "X-ABDATE", kCardAnniversary, "anniversary"},
    {"X-ANNIVERSARY", "X-ABDATE", kCardAnniversary, "anniversary"},
    {"X-EVOLUTION-ANNIVERSARY", "X-ABDATE", kCardAnniversary, "anniversary"},
    {"X-KADDRESSBOOK-X-ANNIVERSARY", "X-ABDATE", kCardAnniversary, "anniversary"},
    {"X-MS-ANNIVERSARY", "X-ABDATE", kCardAnniversary, "anniversary"},
    {"X-AIM", "IMPP", 0, "AIM"},
    {"X-GADUGADU", "IMPP", 0, "Gadu-Gadu"},
    {"X-GOOGLE-TALK", "IMPP", 0, "Google Talk"},
    {"X-GROUPWISE", "IMPP", 0, "GroupWise"},
    {"X-GTALK", "IMPP", 0, "Google Talk"},
    {"X-ICQ", "IMPP", 0, "ICQ"},
    {"X-JABBER", "IMPP", 0, "Jabber"},
    {"X-KADDRESSBOOK-X-IMADDRESS", "IMPP", 0, ""},
    {"X-MATRIX", "IMPP", 0, "Matrix"},
    {"X-MS-IMADDRESS", "IMPP", 0, ""},
    {"X-MSN", "IMPP", 0, "MSN"},
    {"X-QQ", "IMPP", 0, "QQ"},
    {"X-SIP", "IMPP", 0, "SIP"},
    {"X-SKYPE", "IMPP", 0, "Skype"},
    {"X-SKYPE-USERNAME", "IMPP", 0, "Skype"},
    {"X-YAHOO", "IMPP", 0, "Yahoo"},
    {"X-YAHOO-ID", "IMPP", 0, "Yahoo"},
    {"X-NICKNAME", "NICKNAME", 0, ""},
    {"X-KADDRESSBOOK-X-PROFESSION", "ROLE", 0, ""},
    {"X-EVOLUTION-OFFICE", "X-OFFICE", 0, ""},
    {"X-KADDRESSBOOK-X-OFFICE", "X-OFFICE", 0, ""},
    {"X-EVOLUTION-BLOG-URL", "URL", 0, "blog"},
    {"X-KADDRESSBOOK-BLOGFEED", "URL", 0, "blog"},
    {"X-MS-TEL", "TEL", 0, ""},
    {"X-EVOLUTION-CALLBACK", "TEL", kCardNoVoice, "callback"},
};

// The words of TYPE parameters and labels.
struct WordRow {
    std::string_view word;
    unsigned kinds;
    std::string_view shown;  // for people; empty: says nothing that the property's name does not
};
constexpr WordRow kWords[] = {
    {"HOME", kCardHome, "home"},
    {"WORK", kCardWork, "work"},
    {"BUSINESS", kCardWork, "business"},
    {"CELL", kCardCell, "cell"},
    {"MOBILE", kCardCell, "mobile"},
    {"IPHONE", kCardCell, "iPhone"},
    {"FAX", kCardFax, "fax"},
    {"HOMEFAX", kCardHome | kCardFax, "home fax"},
    {"WORKFAX", kCardWork | kCardFax, "work fax"},
    {"PAGER", kCardPager, "pager"},
    {"MODEM", kCardNoVoice, "modem"},
    {"BBS", kCardNoVoice, "BBS"},
    {"ISDN", kCardNoVoice, "ISDN"},
    {"TEXTPHONE", kCardNoVoice, "textphone"},
    {"TTY-TDD", kCardNoVoice, "tty-tdd"},
    {"TLX", kCardNoVoice, "tlx"},
    {"TELEX", kCardNoVoice, "telex"},
    {"RADIO", kCardNoVoice, "radio"},
    {"CAR", kCardNoVoice, "car"},
    {"CALLBACK", kCardNoVoice, "callback"},
    {"ASSISTANTPHONE", kCardNoVoice, "assistant"},
    {"SPOUSE", kCardSpouse, "spouse"},
    {"HUSBAND", kCardSpouse, "husband"},
    {"WIFE", kCardSpouse, "wife"},
    {"CHILD", kCardChild, "child"},
    {"SON", kCardChild, "son"},
    {"DAUGHTER", kCardChild, "daughter"},
    {"MANAGER", kCardManager, "manager"},
    {"ASSISTANT", kCardAssistant, "assistant"},
    {"AGENT", kCardAssistant, "agent"},
    {"ANNIVERSARY", kCardAnniversary, "anniversary"},
    {"PREF", 0, ""},
    {"VOICE", 0, ""},
    {"MSG", 0, ""},
    {"TEXT", 0, ""},
    {"VIDEO", 0, ""},
    {"INTERNET", 0, ""},
    {"POSTAL", 0, ""},
    {"PARCEL", 0, ""},
    {"DOM", 0, ""},
    {"INTL", 0, ""},
    {"HOMEPAGE", 0, ""},
    {"OTHER", 0, ""},
};

// Properties whose values have parts.
struct ShapeRow {
    std::string_view name;
    char separator;
};
constexpr ShapeRow kShapes[] = {
    {"N", ';'}, {"ADR", ';'}, {"ORG", ';'}, {"GENDER", ';'}, {"NICKNAME", ','}, {"CATEGORIES", ','},
};

// What is for programs, or no text: the property, or all whose names begin so.
constexpr std::string_view kForPrograms[] = {
    "BEGIN",
    "END",
    "VERSION",
    "PRODID",
    "PROFILE",
    "SOURCE",
    "NAME",
    "CLASS",
    "REV",
    "UID",
    "GEO",
    "TZ",
    "MAILER",
    "KIND",
    "XML",
    "CLIENTPIDMAP",
    "X-ABLABEL",
    "X-ABADR",
    "X-ABUID",
    "X-ABSHOWAS",
    "X-MOZILLA-HTML",
    "X-RADICALE-NAME",
    "X-WAB-GENDER",
    "X-CLASS",
    "X-MS-OL-DEFAULT-POSTAL-ADDRESS",
    "X-EVOLUTION-FILE-AS",
    "X-EVOLUTION-WEBDAV-ETAG",
    "X-KADDRESSBOOK-CRYPTO",
    "PHOTO",
    "LOGO",
    "SOUND",
    "KEY",
};
constexpr std::string_view kForProgramsPrefixes[] = {"X-PILOT", "X-COUCHDB-", "X-IMAGE", "X-ADDRESSBOOKSERVER-"};

struct LabelRow {
    std::string_view name;
    std::string_view label;
};
constexpr LabelRow kLabels[] = {
    {"TEL", "Phone"},
    {"EMAIL", "E-mail"},
    {"ADR", "Address"},
    {"LABEL", "Address"},
    {"URL", "Web page"},
    {"BDAY", "Birthday"},
    {"X-ABDATE", "Date"},
    {"FN", "Name"},
    {"N", "Name"},
    {"IMPP", "Online name"},
    {"ORG", "Organization"},
    {"LANG", "Language"},
    {"FBURL", "Free and busy"},
    {"CALURI", "Calendar"},
    {"CALADRURI", "Calendar address"},
    {"ORG-DIRECTORY", "Directory"},
};

// Schemes of addresses that are no part of what people read.
constexpr std::string_view kSchemes[] = {"tel:", "mailto:"};
// Values that only programs can follow.
constexpr std::string_view kNoText[] = {"data:", "urn:uuid:", "cid:"};

template <size_t Count> bool BeginsWithOne(std::string_view text, const std::string_view (&words)[Count])
{
    return std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view word) { return BeginsWithWord(text, word); });
}

bool IsForPrograms(std::string_view name)
{
    return std::find(std::begin(kForPrograms), std::end(kForPrograms), name) != std::end(kForPrograms) ||
           BeginsWithOne(name, kForProgramsPrefixes);
}

void AddWord(std::string_view word, CardValue* value)
{
    word = TrimmedText(word);
    if (BeginsWithWord(word, "TYPE="))
        word.remove_prefix(5);
    if (word.empty())
        return;
    if (SameWord(word, "PREF"))
        value->preference = std::min(value->preference, 1);
    std::string shown(word);
    for (const WordRow& row : kWords) {
        if (!SameWord(row.word, word))
            continue;
        value->kinds |= row.kinds;
        shown = row.shown;
    }
    if (!shown.empty() && !SameWord(value->label, shown))
        value->label.append(value->label.empty() ? "" : ", ").append(shown);
}

void AddParameters(const CardProperty& property, CardValue* value)
{
    for (const std::string& word : SplitCardText(property.Parameter("TYPE"), ','))
        AddWord(word, value);
    const std::string_view preference = property.Parameter("PREF");
    int number = 0;
    const auto [end, error] = std::from_chars(preference.data(), preference.data() + preference.size(), number);
    if (error == std::errc() && number >= 1 && number <= 100)
        value->preference = std::min(value->preference, number);
}

// Labels by group.  The ones that a program translates are marked: "_$!<Spouse>!$_".
std::map<std::string, std::string> LabelsOfGroups(const std::vector<CardProperty>& properties)
{
    std::map<std::string, std::string> labels;
    for (const CardProperty& property : properties) {
        if (property.name != "X-ABLABEL" || property.group.empty())
            continue;
        std::string label(TrimmedText(UnescapedText(DecodedValue(property))));
        if (label.starts_with("_$!<") && label.ends_with(">!$_") && label.size() >= 8)
            label = label.substr(4, label.size() - 8);
        labels.emplace(property.group, label);
    }
    return labels;
}

// The name in a card that is the value of a property.
std::string NameOfNestedCard(std::string_view text)
{
    for (const std::string_view wanted : {"FN", "N"}) {
        for (const CardProperty& property : ReadNestedCard(text)) {
            if (property.name != wanted)
                continue;
            std::vector<std::string> parts = SplitCardText(DecodedValue(property), ';');
            if (wanted == "N" && parts.size() > 1)
                std::swap(parts[0], parts[1]);
            if (std::string name = JoinedParts(parts, wanted == "N" ? " " : "; "); !name.empty())
                return name;
        }
    }
    return {};
}

// A telephone URI keeps its extension behind a semicolon, after which programs write more for each other.
std::string NumberOfUri(std::string_view uri)
{
    std::string number(uri.substr(0, uri.find(';')));
    for (const std::string& parameter : SplitCardText(uri, ';')) {
        if (BeginsWithWord(parameter, "ext="))
            number += " ext. " + parameter.substr(4);
    }
    return number;
}

std::string PlainText(const std::string& decoded)
{
    std::string text = UnescapedText(decoded);
    if (IsNestedCard(text))
        return NameOfNestedCard(text);
    for (const std::string_view scheme : kSchemes) {
        if (BeginsWithWord(text, scheme))
            return NumberOfUri(std::string_view(text).substr(scheme.size()));
    }
    return std::string(TrimmedText(text));
}

std::vector<std::string> PartsOf(const CardProperty& property, std::string_view name)
{
    const std::string decoded = DecodedValue(property);
    for (const ShapeRow& row : kShapes) {
        if (row.name == name)
            return SplitCardText(decoded, row.separator);
    }
    return {PlainText(decoded)};
}

// A year that stands only for "not known": that which is named so, and the one that programs write for it.
void DropOmittedYear(const CardProperty& property, CardValue* value)
{
    if (value->name != "BDAY" && value->name != "X-ABDATE")
        return;
    const std::string_view named = property.Parameter("X-APPLE-OMIT-YEAR");
    const std::string_view year = named.empty() ? "1604" : named;
    if (value->parts[0].starts_with(year))
        value->parts[0].replace(0, year.size(), value->parts[0].substr(year.size()).starts_with('-') ? "-" : "--");
}

CardValue ReadValue(const CardProperty& property, const std::map<std::string, std::string>& labels)
{
    CardValue value;
    value.name = property.name;
    for (const AliasRow& row : kAliases) {
        if (row.name != property.name)
            continue;
        value.name = row.standard;
        value.kinds = row.kinds;
        value.label = row.label;
    }
    AddParameters(property, &value);
    if (const auto label = labels.find(property.group); label != labels.end())
        AddWord(label->second, &value);
    value.parts = PartsOf(property, value.name);
    DropOmittedYear(property, &value);
    return value;
}

bool SaysSomething(const CardValue& value)
{
    return std::any_of(value.parts.begin(), value.parts.end(), [](const std::string& part) { return !part.empty(); }) &&
           !BeginsWithOne(value.parts[0], kNoText);
}

}  // namespace

std::vector<CardValue> ReadCardValues(const std::vector<CardProperty>& properties)
{
    const std::map<std::string, std::string> labels = LabelsOfGroups(properties);
    std::vector<CardValue> values;
    for (const CardProperty& property : properties) {
        if (IsForPrograms(property.name))
            continue;
        CardValue value = ReadValue(property, labels);
        if (SaysSomething(value))
            values.push_back(std::move(value));
    }
    return values;
}

std::string LabelOfProperty(std::string_view name)
{
    for (const LabelRow& row : kLabels) {
        if (row.name == name)
            return std::string(row.label);
    }
    std::string label(BeginsWithWord(name, "X-") ? name.substr(2) : name);
    for (size_t i = 0; i < label.size(); ++i) {
        if (label[i] == '-' || label[i] == '_')
            label[i] = ' ';
        else if (i > 0 && label[i] >= 'A' && label[i] <= 'Z')
            label[i] = static_cast<char>(label[i] - 'A' + 'a');
    }
    return label;
}

std::string JoinedParts(const std::vector<std::string>& parts, std::string_view separator)
{
    std::string text;
    for (const std::string& part : parts) {
        if (!part.empty())
            text.append(text.empty() ? "" : separator).append(part);
    }
    return text;
}

}  // namespace pavex
