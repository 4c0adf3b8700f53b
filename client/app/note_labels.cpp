// client/app/note_labels.cpp: what the window of a note calls things, in the user's language.
#include "client/app/note_labels.h"

#include <strings.h>

#include "client/windows/resource_text.h"

namespace pavex {

namespace {

constexpr NoteTextRow kTexts[] = {
    {"untitled", "Note"},
    {"back", "Back"},
    {"copy", "Copy"},
    {"close", "Close"},
    {"from", "From"},
    {"to", "To"},
    {"cc", "Cc"},
    {"bcc", "Bcc"},
    {"date", "Date"},
    {"organizer", "Organizer"},
    {"attendees", "People"},
    {"optional", "Optional"},
    {"place", "Place"},
    {"start", "Start"},
    {"end", "End"},
    {"due", "Due"},
    {"categories", "Categories"},
};

struct ItemRow {
    const char* item;
    const char* key;  // of its text
};
constexpr ItemRow kItems[] = {{"From", "from"},
                              {"SendTo", "to"},
                              {"CopyTo", "cc"},
                              {"BlindCopyTo", "bcc"},
                              {"PostedDate", "date"},
                              {"TimeCreated", "date"},
                              {"Chair", "organizer"},
                              {"RequiredAttendees", "attendees"},
                              {"OptionalAttendees", "optional"},
                              {"Location", "place"},
                              {"StartDateTime", "start"},
                              {"EndDateTime", "end"},
                              {"DueDateTime", "due"},
                              {"Categories", "categories"}};

}  // namespace

std::span<const NoteTextRow> NoteTexts()
{
    return kTexts;
}

std::string NoteText(std::string_view key)
{
    for (const NoteTextRow& row : kTexts)
        if (key == row.key)
            return TableText("note", row.key, row.english);
    return std::string(key);
}

NoteWindowTexts WindowTextsOfNotes()
{
    return {NoteText("untitled"), NoteText("back"), NoteText("copy"), NoteText("close")};
}

std::optional<std::string> LabelOfItem(const std::string& item)
{
    for (const ItemRow& row : kItems)
        if (strcasecmp(item.c_str(), row.item) == 0)
            return NoteText(row.key);
    return std::nullopt;
}

}  // namespace pavex
