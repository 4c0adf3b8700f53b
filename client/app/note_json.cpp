// client/app/note_json.cpp: notes as JSON, both ways.
// One reader and one writer for each form a value can take; the tables below join them.
#include "client/app/note_json.h"

#include <strings.h>

#include <cmath>
#include <optional>

#include "client/store/charset.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {

namespace {

using Json = nlohmann::ordered_json;

constexpr char kHexDigits[] = "0123456789ABCDEF";

std::string HexFromBytes(std::string_view bytes)
{
    std::string hex;
    for (const char byte : bytes) {
        hex += kHexDigits[static_cast<unsigned char>(byte) >> 4];
        hex += kHexDigits[static_cast<unsigned char>(byte) & 15];
    }
    return hex;
}

std::optional<std::string> BytesFromHex(const std::string& hex)
{
    if (hex.size() % 2 != 0 || hex.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos)
        return std::nullopt;
    std::string bytes;
    for (size_t i = 0; i < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

std::optional<TIMEDATE> TimeOf(const Json& json)
{
    return json.is_string() ? TimeFromIso(json.get<std::string>()) : std::nullopt;
}

// A value as an error names it.  A list or object is not written out: it may be nested without end.
std::string Shown(const Json& json)
{
    return json.is_structured() ? json.is_array() ? "a list" : "an object" : json.dump();
}

// ---- Values, from JSON -----------------------------------------------------------------------

struct ReadValue {
    std::optional<Item> item;
    std::string error;
};

ReadValue Refuse(std::string error)
{
    return {std::nullopt, std::move(error)};
}

ReadValue ReadTime(const std::string& name, const Json& json)
{
    const std::optional<TIMEDATE> time = TimeOf(json);
    if (!time)
        return Refuse("is not a time such as \"2007-03-05T14:00:00Z\" or a date");
    return {TimeItem(name, *time), {}};
}

ReadValue ReadTimes(const std::string& name, const Json& json)
{
    if (!json.is_array())
        return Refuse("is not a list of times");
    std::vector<TIMEDATE> times;
    for (const Json& entry : json) {
        const std::optional<TIMEDATE> time = TimeOf(entry);
        if (!time)
            return Refuse("holds " + Shown(entry) + ", which is not a time");
        times.push_back(*time);
    }
    return {TimeListItem(name, times), {}};
}

// Ids of a link: hexadecimal digits of the wanted number of bytes.
bool ReadLink(const Json& json, NOTELINK* link, std::string* label)
{
    if (!json.is_object())
        return false;
    const auto text = [&json](const char* key) {
        const auto member = json.find(key);
        return member != json.end() && member->is_string() ? member->get<std::string>() : std::string();
    };
    const std::optional<TIMEDATE> replica = IdFromHex(text("replica"));
    const std::optional<UNID> note = UnidFromHex(text("note"));
    const std::optional<UNID> view = text("view").empty() ? UNID{} : UnidFromHex(text("view"));
    if (!replica || !note || !view)
        return false;
    *link = {*replica, *view, *note, 0};
    *label = text("text");
    return true;
}

bool IsRule(const Json& piece)
{
    const auto rule = piece.find("rule");
    return rule != piece.end() && rule->is_boolean() && rule->get<bool>();
}

ReadValue ReadRichTextValue(const std::string& name, const Json& json)
{
    if (!json.is_array())
        return Refuse("is not a list of paragraphs");
    RichTextBuilder builder;
    for (const Json& piece : json) {
        NOTELINK link = {};
        std::string label;
        if (piece.is_string())
            builder.AddParagraph(piece.get<std::string>());
        else if (piece.is_object() && piece.contains("link") && ReadLink(piece["link"], &link, &label))
            builder.AddLink(link, label);
        else if (IsRule(piece))
            builder.AddRule();
        else
            return Refuse("holds " + Shown(piece) + ", which is no paragraph, link or rule");
    }
    return {RichTextItem(name, builder.Records()), {}};
}

ReadValue ReadFormula(const std::string& name, const Json& json)
{
    if (!json.is_string())
        return Refuse("is not the text of a formula");
    return {FormulaItem(name, json.get<std::string>()), {}};
}

// A value that has no form of its own, as WriteRaw writes it.
ReadValue ReadRaw(const std::string& name, const Json& object)
{
    const auto hex = object.find("hex");
    const auto type = object.find("type");
    if (hex == object.end() || !hex->is_string() || !type->is_number_unsigned() || type->get<uint64_t>() > 0xFFFF)
        return Refuse("is not a type number with a value in hexadecimal digits");
    const std::optional<std::string> bytes = BytesFromHex(hex->get<std::string>());
    if (!bytes)
        return Refuse("is not a value in hexadecimal digits");
    return {Item{name, type->get<uint16_t>(), 0, *bytes}, {}};
}

struct ObjectForm {
    const char* key;
    ReadValue (*read)(const std::string& name, const Json& value);
};
constexpr ObjectForm kObjectForms[] = {
    {"time", ReadTime},
    {"times", ReadTimes},
    {"richtext", ReadRichTextValue},
    {"formula", ReadFormula},
};

ReadValue ReadObject(const std::string& name, const Json& json)
{
    for (const ObjectForm& form : kObjectForms)
        if (const auto value = json.find(form.key); value != json.end())
            return form.read(name, *value);
    if (json.contains("type"))
        return ReadRaw(name, json);
    return Refuse("is an object without \"time\", \"times\", \"richtext\" or \"formula\"");
}

ReadValue ReadTextList(const std::string& name, const Json& json)
{
    std::vector<std::string> entries;
    for (const Json& entry : json) {
        if (!entry.is_string())
            return Refuse("holds " + Shown(entry) + ", which is not text");
        entries.push_back(entry.get<std::string>());
        if (ScsFromUtf8(entries.back()).size() > 0xFFFF)
            return Refuse("holds a text of more than 65535 bytes");
    }
    if (entries.size() > 0xFFFF)
        return Refuse("holds more than 65535 texts");
    return {TextListItem(name, entries), {}};
}

ReadValue ReadItem(const std::string& name, const Json& json)
{
    if (json.is_string())
        return {TextItem(name, json.get<std::string>()), {}};
    if (json.is_number())
        return {NumberItem(name, json.get<double>()), {}};
    if (json.is_array())
        return ReadTextList(name, json);
    if (json.is_object())
        return ReadObject(name, json);
    return Refuse("is " + Shown(json) + ", which is no value of an item");
}

constexpr size_t kMostNameBytes = 255;

bool IsItemName(const std::string& name)
{
    for (const char c : name)
        if (c <= 0x20 || c > 0x7E)
            return false;
    return !name.empty() && name.size() <= kMostNameBytes;
}

// ---- Members of a note, from JSON: what is wrong, or nothing ---------------------------------

std::string ReadItems(const Json& json, Note* note)
{
    if (!json.is_object())
        return "is not an object";
    for (const auto& [name, value] : json.items()) {
        if (!IsItemName(name))
            return "has an item named \"" + name +
                   "\"; names are 1 to 255 characters of printable ASCII without blanks";
        ReadValue read = ReadItem(name, value);
        if (!read.item)
            return "." + name + " " + read.error;
        note->items.push_back(std::move(*read.item));
    }
    return {};
}

std::string ReadStamp(const Json& json, TIMEDATE* stamp)
{
    const std::optional<TIMEDATE> time = TimeOf(json);
    if (!time || time->Innards[0] == kNoTimeOfDay)
        return "is not a time such as \"2007-03-05T14:00:00Z\"";
    *stamp = *time;
    return {};
}

std::string ReadCreated(const Json& json, Note* note)
{
    return ReadStamp(json, &note->created);
}

std::string ReadModified(const Json& json, Note* note)
{
    return ReadStamp(json, &note->modified);
}

std::string ReadUnid(const Json& json, Note* note)
{
    const std::optional<UNID> unid = json.is_string() ? UnidFromHex(json.get<std::string>()) : std::nullopt;
    if (!unid)
        return "is not 32 hexadecimal digits";
    note->unid = *unid;
    return {};
}

std::string ReadClass(const Json& json, Note* note)
{
    if (json != "document" && json != "form")
        return "is neither \"document\" nor \"form\"";
    note->noteClass = json == "form" ? kClassForm : kClassDocument;
    return {};
}

std::string ReadSealed(const Json& json, Note* note)
{
    if (!json.is_boolean())
        return "is neither true nor false";
    note->sealed = json.get<bool>();
    return {};
}

struct Member {
    const char* key;
    std::string (*read)(const Json& value, Note* note);
};
constexpr Member kMembers[] = {
    {"items", ReadItems}, {"created", ReadCreated}, {"modified", ReadModified},
    {"unid", ReadUnid},   {"class", ReadClass},     {"sealed", ReadSealed},
};

// Members that only `note get` writes.
constexpr const char* kOutputOnly[] = {"noteid", "url"};

std::string ReadMember(const std::string& key, const Json& value, Note* note)
{
    for (const Member& member : kMembers)
        if (key == member.key)
            return member.read(value, note);
    for (const char* known : kOutputOnly)
        if (key == known)
            return {};
    return "is not a member of a note";
}

// ---- Values, to JSON -------------------------------------------------------------------------

Json WriteRaw(const Item& item)
{
    return {{"type", item.type}, {"hex", HexFromBytes(item.value)}};
}

// What can take the value; null when nothing can.  WriteItem holds each form to giving the value back.
Json WriteText(const Item& item)
{
    const auto values = TextValues(item);
    if (!values)
        return nullptr;
    if (item.type == kTypeText)
        return values->empty() ? "" : values->front();
    return *values;
}

// JSON has no form for infinities and for what is no number.
Json WriteNumber(const Item& item)
{
    const std::optional<double> number = NumberValue(item);
    return number && std::isfinite(*number) ? Json(*number) : Json(nullptr);
}

Json WriteTimes(const Item& item)
{
    const auto times = TimeValues(item);
    if (!times || (item.type == kTypeTime && times->size() != 1))
        return nullptr;
    if (item.type == kTypeTime)
        return {{"time", IsoFromTime(times->front())}};
    Json list = Json::array();
    for (const TIMEDATE& time : *times)
        list.push_back(IsoFromTime(time));
    return {{"times", list}};
}

Json WriteRichText(const Item& item)
{
    Json pieces = Json::array();
    for (const RichTextPiece& piece : ReadRichText(item.value)) {
        switch (piece.kind) {
        case RichTextPiece::Kind::kParagraph:
            pieces.push_back(piece.text);
            break;
        case RichTextPiece::Kind::kRule:
            pieces.push_back({{"rule", true}});
            break;
        case RichTextPiece::Kind::kLink:
            pieces.push_back({{"link",
                               {{"replica", HexFromId(piece.link.replica)},
                                {"view", HexFromUnid(piece.link.view)},
                                {"note", HexFromUnid(piece.link.note)},
                                {"text", piece.text}}}});
            break;
        }
    }
    return {{"richtext", pieces}};
}

Json WriteFormula(const Item& item)
{
    return {{"formula", Utf8FromScs(item.value)}};
}

struct TypeForm {
    uint16_t type;
    Json (*write)(const Item& item);
};
constexpr TypeForm kTypeForms[] = {
    {kTypeText, WriteText},       {kTypeTextList, WriteText},     {kTypeNumber, WriteNumber},   {kTypeTime, WriteTimes},
    {kTypeTimeRange, WriteTimes}, {kTypeRichText, WriteRichText}, {kTypeFormula, WriteFormula},
};

bool ReadsBackAs(const Item& item, const Json& json)
{
    const ReadValue read = ReadItem(item.name, json);
    return read.item && read.item->type == item.type && read.item->value == item.value;
}

// A form that would not give back every bit (a time zone, the style of a text, the ranges behind the times of
// a list) is not used.
Json WriteItem(const Item& item)
{
    for (const TypeForm& form : kTypeForms) {
        if (form.type != item.type)
            continue;
        if (Json json = form.write(item); ReadsBackAs(item, json))
            return json;
    }
    return WriteRaw(item);
}

// Left out when it is no time: the creation time is part of the UNID, and that may be any number.
void WriteStamp(const char* key, const TIMEDATE& stamp, Json* json)
{
    const Json text = IsoFromTime(stamp);
    TIMEDATE again;
    if (ReadStamp(text, &again).empty())
        (*json)[key] = text;
}

// What a sealed note keeps readable is what tells its kind and how it is shown.
void MarkForSealing(Note* note)
{
    for (Item& item : note->items)
        if (item.name.front() != '$' && strcasecmp(item.name.c_str(), "Form") != 0)
            item.flags |= kItemSealed;
}

}  // namespace

bool NoteFromJson(const Json& json, Note* note, std::string* error)
{
    if (!json.is_object()) {
        *error = "a note is an object with the member \"items\"";
        return false;
    }
    if (!json.contains("items")) {
        *error = "\"items\" is missing";
        return false;
    }
    for (const auto& [key, value] : json.items()) {
        if (const std::string wrong = ReadMember(key, value, note); !wrong.empty()) {
            *error = std::string(key).append(wrong.front() == '.' ? "" : " ").append(wrong);
            return false;
        }
    }
    if (note->sealed)
        MarkForSealing(note);
    return true;
}

Json JsonFromNote(const Note& note)
{
    Json items = Json::object();
    for (const Item& item : note.items)
        if (!items.contains(item.name))  // of several items of a name the first counts
            items[item.name] = WriteItem(item);
    Json json{{"items", items}};
    WriteStamp("created", note.created, &json);
    WriteStamp("modified", note.modified, &json);
    json["unid"] = HexFromUnid(note.unid);
    json["class"] = note.noteClass == kClassForm ? "form" : "document";
    json["sealed"] = note.sealed;
    return json;
}

}  // namespace pavex
