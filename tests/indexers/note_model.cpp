// tests/indexers/note_model.cpp: the tables, and how a value of each type reads as text, names or time.
#include "tests/indexers/note_model.h"

#include <array>
#include <cctype>
#include <ctime>
#include <map>

#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace {

using pavex::Item;
using pavex::Note;

std::string Iso(int64_t seconds)
{
    char text[40];
    const time_t time = seconds;
    tm parts{};
    gmtime_r(&time, &parts);
    strftime(text, sizeof text, "date %Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

std::string Joined(const std::vector<std::string>& values, const std::string& separator)
{
    std::string text;
    for (size_t i = 0; i < values.size(); ++i)
        text += (i > 0 ? separator : "") + values[i];
    return text;
}

std::string ReplaceBreaks(std::string text, const std::string& separator)
{
    for (size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + separator.size()))
        text.replace(at, 1, separator);
    return text;
}

// A number, or the first of the times, as the store writes it.
std::string ScalarText(const Item& item)
{
    char text[120] = "";
    WORD length = 0;
    if (const auto number = pavex::NumberValue(item))
        ConvertFLOATToText(nullptr, nullptr, &*number, text, sizeof text, &length);
    else if (const auto times = pavex::TimeValues(item); times && !times->empty())
        ConvertTIMEDATEToText(nullptr, nullptr, times->data(), text, sizeof text, &length);
    return text;
}

std::string Text(const Note& note, const char* name, const std::string& separator = ", ")
{
    const Item* item = note.Find(name);
    if (item == nullptr)
        return "";
    if (const auto values = pavex::TextValues(*item))
        return ReplaceBreaks(Joined(*values, "\n"), separator);
    return ScalarText(*item);
}

std::string Lines(const Note& note, const char* name)
{
    return Text(note, name, "\r\n");
}

std::string Lower(std::string text)
{
    for (char& c : text)
        c = static_cast<char>(tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string NameList(const Note& note, const char* name, std::string (*written)(std::string))
{
    const Item* item = note.Find(name);
    const auto values = item == nullptr ? std::nullopt : pavex::TextValues(*item);
    std::vector<std::string> names;
    for (const std::string& value : values.value_or(std::vector<std::string>()))
        if (const std::string text = written(value); !text.empty())
            names.push_back(text);
    return Joined(names, ", ");
}

std::string Names(const Note& note, const char* item)
{
    return NameList(note, item, [](std::string name) {
        for (const std::string part : {"CN=", "O=", "OU="})
            for (size_t at = name.find(part); at != std::string::npos; at = name.find(part))
                name.erase(at, part.size());
        return name;
    });
}

std::string Categories(const Note& note, const char* item)
{
    return NameList(note, item, [](std::string category) {
        static const std::map<std::string, std::string> kNamesOfCodes = {
            {"h", "Holiday"}, {"v", "Vacation"},     {"p", "Projects"},
            {"c", "Clients"}, {"pc", "Phone Calls"}, {"t", "Travel"},
        };
        const auto code = kNamesOfCodes.find(Lower(category));
        return code == kNamesOfCodes.end() ? category : code->second;
    });
}

std::optional<int64_t> TimeOf(const Note& note, const char* name)
{
    const Item* item = note.Find(name);
    const auto times = item == nullptr ? std::nullopt : pavex::TimeValues(*item);
    return times && !times->empty() ? pavex::UnixFromTime(times->front()) : std::nullopt;
}

long Long(const Note& note, const char* name, long otherwise)
{
    const Item* item = note.Find(name);
    const auto number = item == nullptr ? std::nullopt : pavex::NumberValue(*item);
    return number ? static_cast<long>(*number) : otherwise;
}

// A row of a table of properties: the first item with text is read.
struct Row {
    const char* key;
    std::string (*read)(const Note& note, const char* item);
    const char* item;
    const char* otherwise = nullptr;
};

std::string PlainText(const Note& note, const char* name)
{
    return Text(note, name);
}

void AddRows(const Note& note, const std::vector<Row>& rows, Properties* properties)
{
    for (const Row& row : rows) {
        const bool first = row.otherwise == nullptr || !Text(note, row.item).empty();
        const std::string value = row.read(note, first ? row.item : row.otherwise);
        if (!value.empty())
            properties->emplace(row.key, value);
    }
}

void AddTime(const char* key, std::optional<int64_t> seconds, Properties* properties)
{
    if (seconds)
        properties->emplace(key, Iso(*seconds));
}

std::string Content(const Note& note)
{
    const Item* body = note.Find("Body");
    if (body == nullptr)
        return "";
    std::string text;
    for (const pavex::RichTextPiece& piece : pavex::ReadRichText(body->value))
        text += piece.text + "\r\n";
    return text;
}

std::string Address(const Note& note, const std::array<const char*, 5>& items)
{
    const char* const behind[] = {"\r\n", ", ", " ", " ", ""};
    std::string address;
    for (size_t i = 0; i < items.size(); ++i)
        if (const std::string part = Text(note, items[i]); !part.empty())
            address += part + behind[i];
    return address;
}

const std::vector<Row> kContactRows = {
    {"business_phone", PlainText, "OfficePhoneNumber"},
    {"company_phone", PlainText, "OfficePhoneNumber"},
    {"mobile_phone", PlainText, "CellPhoneNumber", "PersPager"},
    {"pager", PlainText, "PhoneNumber_6", "PersPager"},
    {"home_phone", PlainText, "PhoneNumber"},
    {"business_fax", PlainText, "OfficeFAXPhoneNumber"},
    {"home_fax", PlainText, "HomeFAXPhoneNumber"},
    {"assistant", PlainText, "Assistant"},
    {"business_home_page", PlainText, "WebSite"},
    {"children_names", PlainText, "Children"},
    {"company_name", PlainText, "CompanyName"},
    {"country", PlainText, "OfficeCountry", "Country"},
    {"department", PlainText, "Department"},
    {"email1", PlainText, "MailAddress"},
    {"spouse", PlainText, "Spouse"},
    {"job_title", PlainText, "JobTitle"},
    {"manager_name", PlainText, "Manager"},
    {"office_location", PlainText, "Location"},
};

// What an extra field is by its label, of which a part will do; the first word counts.
struct ExtraWord {
    const char* word;
    const char* property;
};
constexpr ExtraWord kExtraWords[] = {
    {"email", "email"},       {"onlinename", "im_address"}, {"homeurl", "personal_home_page"},
    {"nickname", "nickname"}, {"url", "web_page"},
};

std::string ExtraProperty(const std::string& label)
{
    for (const ExtraWord& row : kExtraWords)
        if (!label.empty() && std::string_view(row.word).find(label) != std::string_view::npos)
            return row.property;
    return "";
}

// The extra fields.  A second address stands where its field does, if it can; the last ones where there is room.
void AddExtraFields(const Note& note, Properties* properties)
{
    std::map<std::string, std::vector<std::string>> fields;
    std::string slots[2];
    const auto takeFree = [&slots](const std::string& text) {
        for (std::string& slot : slots)
            if (slot.empty()) {
                slot = text;
                return;
            }
    };
    for (int n = 1; n <= 3; ++n) {
        const std::string number = std::to_string(n);
        const std::string property = ExtraProperty(Lower(Text(note, ("MiscLabel" + number).c_str())));
        const std::string text = Text(note, ("MiscPhone" + number).c_str());
        if (text.empty())
            continue;
        if (property != "email")
            fields[property].push_back(text);
        else if (n < 3)
            slots[n - 1] = text;
        else
            takeFree(text);
    }
    if (const std::string address = Text(note, "InternetAddress"); !address.empty())
        takeFree(address);
    fields.erase("");  // labels of no meaning
    for (const auto& [property, texts] : fields)
        (*properties)[property] = Joined(texts, ", ");
    (*properties)["email2"] = slots[0];
    (*properties)["email3"] = slots[1];
}

void AddContact(const Note& note, Properties* all)
{
    Properties own;
    own["business_address"] =
        Address(note, {"OfficeStreetAddress", "OfficeCity", "OfficeState", "OfficeZip", "OfficeCountry"});
    own["home_address"] = Address(note, {"StreetAddress", "City", "State", "Zip", "Country"});
    AddRows(note, kContactRows, &own);
    for (const char* phone : {"business_phone", "mobile_phone", "pager", "home_phone"})
        if (own["primary_phone"].empty())
            own["primary_phone"] = own[phone];
    own["primary_fax"] = own["business_fax"].empty() ? own["home_fax"] : own["business_fax"];
    AddExtraFields(note, &own);

    std::erase_if(own, [](const auto& entry) { return entry.second.empty(); });
    own["display_name"] = Names(note, "FullName");
    AddTime("birthday", TimeOf(note, "Birthday"), &own);
    AddTime("wedding_anniversary", TimeOf(note, "Anniversary"), &own);
    for (const auto& [key, value] : own)
        all->emplace("com_quorvex_morvane_pavex_" + key, value);
    all->emplace("title", Names(note, "FullName"));
    AddRows(note, {{"categories", Categories, "Categories"}}, all);
}

void AddTaskNumbers(const Note& note, Properties* properties)
{
    const std::map<long, int> statusOfState = {{0, 3}, {2, 0}, {8, 4}, {9, 2}};
    const auto found = statusOfState.find(Long(note, "DueState", 20));
    int status = found == statusOfState.end() ? 1 : found->second;
    if (Long(note, "TaskType", 1) == 2 && note.Find("PostedDate") == nullptr)
        status = 0;
    properties->emplace("status", "number " + std::to_string(status));
    if (const long importance = Long(note, "Importance", 20); importance >= 1 && importance <= 3)
        properties->emplace("importance", "number " + std::to_string(3 - importance));
}

}  // namespace

size_t NoteModel::FillPairs(const Note& note, const char* endItem, Pair* pairs) const
{
    const Item* days = note.Find("CalendarDateTime");
    const auto times = days == nullptr ? std::nullopt : pavex::TimeValues(*days);
    size_t count = 0;
    for (const TIMEDATE& time : times.value_or(std::vector<TIMEDATE>()))
        if (const auto start = pavex::UnixFromTime(time); start && count < 100)
            pairs[count++].start = *start;
    const auto start = TimeOf(note, "StartDateTime");
    const auto end = TimeOf(note, endItem);
    if (!start || !end || *end < *start)
        return 0;
    for (size_t i = 0; i < count; ++i)
        pairs[i].end = pairs[i].start + (*end - *start);
    return count;
}

void NoteModel::AddTimes(size_t count, bool task, Properties* properties) const
{
    if (count == 0)
        return;
    Pair chosen = calendar_[0];
    for (size_t i = count; i-- > 0;)
        if (calendar_[i].start > now_)
            chosen = calendar_[i];
    AddTime("start_date", chosen.start, properties);
    AddTime(task ? "due_date" : "end_date", chosen.end, properties);
    if (!task && chosen.end > chosen.start)
        properties->emplace("duration", "number " + std::to_string(chosen.end - chosen.start));
    std::string pattern;
    for (size_t i = 0; i < count; ++i) {
        const auto date = [](int64_t seconds) {
            const time_t time = seconds;
            tm parts{};
            gmtime_r(&time, &parts);
            char text[64];
            strftime(text, sizeof text, "%m-%d-%Y %H:%M:%S", &parts);
            for (const size_t at : {0, 3, 11, 14, 17})  // a leading zero is a blank
                if (text[at] == '0')
                    text[at] = ' ';
            return std::string(text);
        };
        pattern += (i > 0 ? "; " : "") + date(calendar_[i].start) + " / " + date(calendar_[i].end);
    }
    if (count > 1)
        properties->emplace("recurrence_pattern", pattern);
}

std::optional<ExpectedFile> NoteModel::ExpectMail(const Note& note, Properties properties)
{
    if (note.Find("PostedDate") == nullptr)
        return std::nullopt;  // a draft
    const auto posted = TimeOf(note, "PostedDate");
    AddTime("received", posted ? posted : pavex::UnixFromTime(note.modified), &properties);
    AddRows(note,
            {{"from", Names, note.Find("Principal") != nullptr ? "Principal" : "From"},
             {"to", Names, "SendTo"},
             {"subject", PlainText, "Subject"},
             {"cc", Names, "CopyTo"},
             {"bcc", Names, "BlindCopyTo"},
             {"replyto", Names, "ReplyTo"}},
            &properties);
    return ExpectedFile{"vPavexMessage", properties};
}

std::optional<ExpectedFile> NoteModel::ExpectTopic(const Note& note, Properties properties)
{
    AddTime("message_time", pavex::UnixFromTime(note.created), &properties);
    const char* title = note.Find("Subject") != nullptr ? "Subject" : "Topic";
    AddRows(note, {{"title", PlainText, title}}, &properties);
    if (note.Find(title) == nullptr)
        properties["title"] = "";
    const std::string authors = Names(note, "From");
    properties["discussion_authors"] = authors.empty() ? Names(note, "Author") : authors;
    return ExpectedFile{"vPavexDiscussion", properties};
}

std::optional<ExpectedFile> NoteModel::ExpectEvent(const Note& note, Properties properties)
{
    AddTime("last_modified_time", pavex::UnixFromTime(note.modified), &properties);
    const size_t count = note.Find("CalendarDateTime") && note.Find("StartDateTime") && note.Find("EndDateTime")
                             ? FillPairs(note, "EndDateTime", calendar_)
                             : 0;
    if (count == 0)
        return std::nullopt;
    AddTimes(count, false, &properties);
    AddRows(note,
            {{"title", Lines, "Subject"},
             {"organizer", Names, "Chair"},
             {"location", Lines, "Location"},
             {"categories", Categories, "Categories"}},
            &properties);
    const std::string required = Names(note, "RequiredAttendees");
    const std::string optional = Names(note, "OptionalAttendees");
    if (!required.empty() || !optional.empty())
        properties["attendees"] = required + (required.empty() ? "" : optional.empty() ? "," : ", ") + optional;
    return ExpectedFile{"vPavexCalendar", properties};
}

std::optional<ExpectedFile> NoteModel::ExpectTask(const Note& note, Properties properties)
{
    AddTime("last_modified_time", pavex::UnixFromTime(note.modified), &properties);
    if (note.Find("CalendarDateTime") == nullptr)
        return std::nullopt;
    const bool dated = note.Find("StartDateTime") && note.Find("DueDateTime");
    AddTimes(dated ? FillPairs(note, "DueDateTime", task_) : 0, true, &properties);
    AddRows(note, {{"title", Lines, "Subject"}, {"categories", Categories, "Categories"}, {"owner", Names, "Chair"}},
            &properties);
    AddTaskNumbers(note, &properties);
    AddTime("date_completed", TimeOf(note, "CompletedDateTime"), &properties);
    return ExpectedFile{"vPavexTask", properties};
}

std::optional<ExpectedFile> NoteModel::ExpectContact(const Note& note, Properties properties)
{
    AddTime("last_modified_time", pavex::UnixFromTime(note.modified), &properties);
    AddContact(note, &properties);
    return ExpectedFile{"vPavexContact", properties};
}

std::optional<ExpectedFile> NoteModel::ExpectJournal(const Note& note, Properties properties)
{
    AddTime("last_modified_time", pavex::UnixFromTime(note.modified), &properties);
    AddRows(note, {{"title", Lines, "Subject"}, {"categories", Categories, "Categories"}}, &properties);
    AddTime("start_time", TimeOf(note, "TimeCreated"), &properties);
    return ExpectedFile{"vPavexJournal", properties};
}

std::optional<ExpectedFile> NoteModel::ExpectVisit(const Note& note, Properties properties)
{
    const Item* link = note.Find("URL");
    if (link == nullptr || link->type != kTypeRichText || note.Find("Title") == nullptr)
        return std::nullopt;
    for (const pavex::RichTextPiece& piece : pavex::ReadRichText(link->value))
        if (piece.kind == pavex::RichTextPiece::Kind::kLink) {
            AddTime("last_modified_time", pavex::UnixFromTime(note.modified), &properties);
            properties.erase("com.quorvex.pavex.content");
            properties["com_quorvex_morvane_pavex_history_content_url"] =
                "Pavex:///" + pavex::HexFromId(piece.link.replica) + "//" + pavex::HexFromUnid(piece.link.note);
            AddRows(note, {{"title", PlainText, "Title"}}, &properties);
            return ExpectedFile{"vPavexHistory", properties};
        }
    return std::nullopt;
}

std::optional<ExpectedFile> NoteModel::Expect(const Note& note)
{
    struct FormRow {
        const char* form;
        std::optional<ExpectedFile> (NoteModel::*expect)(const Note& note, Properties properties);
    };
    static constexpr FormRow kForms[] = {
        {"Memo", &NoteModel::ExpectMail},
        {"MainTopic", &NoteModel::ExpectTopic},
        {"Appointment", &NoteModel::ExpectEvent},
        {"Task", &NoteModel::ExpectTask},
        {"Person", &NoteModel::ExpectContact},
        {"JournalEntry", &NoteModel::ExpectJournal},
        {"HistoryListEntry", &NoteModel::ExpectVisit},
    };
    Properties properties;
    properties["com.quorvex.pavex.content"] = Content(note);
    for (const FormRow& row : kForms)
        if (Text(note, "Form") == row.form)
            return (this->*row.expect)(note, properties);
    AddTime("last_modified_time", pavex::UnixFromTime(note.modified), &properties);
    properties["title"] = databaseTitle_;
    return ExpectedFile{"vPavexNote", properties};
}
