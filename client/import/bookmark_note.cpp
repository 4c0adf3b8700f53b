// client/import/bookmark_note.cpp
#include "client/import/bookmark_note.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>

#include "client/import/charset_text.h"
#include "client/import/digest.h"
#include "client/import/words.h"
#include "client/store/note_link.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

constexpr size_t kLongestText = 16000;  // bytes, that its item holds with room to spare

constexpr FormDefinition kBookmarkForm = {"Bookmark", "Title"};

std::string TitleOf(const Bookmark& bookmark)
{
    return std::string(Utf8Prefix(bookmark.title.empty() ? bookmark.address : bookmark.title, kLongestText));
}

void AddTimes(const Bookmark& bookmark, Note* note)
{
    if (bookmark.added != 0)
        note->created = TimeFromUnix(bookmark.added);
    if (bookmark.changed != 0)
        note->modified = TimeFromUnix(bookmark.changed);
}

void AddCategories(const Bookmark& bookmark, Note* note)
{
    std::vector<std::string> categories = bookmark.categories;
    categories.resize(std::min(categories.size(), kMostCategories));
    for (std::string& category : categories)
        category = Utf8Prefix(category, kLongestText / kMostCategories);
    if (!categories.empty())
        note->items.push_back(TextListItem("Categories", categories));
}

Note EntryOf(const Bookmark& bookmark, const NOTELINK& link)
{
    Note note = HistoryNote(link, TitleOf(bookmark));
    AddCategories(bookmark, &note);
    AddTimes(bookmark, &note);
    return note;
}

Note AddressNote(const Bookmark& bookmark)
{
    Note note;
    RichTextBuilder body;
    body.AddLines(bookmark.description);
    body.AddParagraph(bookmark.address);
    note.items = {TextItem("Form", kBookmarkForm.name), TextItem("Title", TitleOf(bookmark)),
                  TextItem("Address", Utf8Prefix(bookmark.address, kLongestText)),
                  RichTextItem("Body", body.Records())};
    AddCategories(bookmark, &note);
    AddTimes(bookmark, &note);
    return note;
}

}  // namespace

std::string BookmarkIdentity(const std::string& address)
{
    return "bookmark:" + DigestOf(address);
}

bool MakeBookmarkEntry(const Bookmark& bookmark, SourceEntryFound* entry, std::string* reason)
{
    Note note;
    std::string address = bookmark.address;
    if (BeginsWithWord(bookmark.address, kNoteScheme)) {
        const std::optional<NOTELINK> link = LinkFromUrl(bookmark.address);
        if (!link) {
            *reason = "leads to no note: " + std::string(Utf8Prefix(bookmark.address, 200));
            return false;
        }
        entry->kind = EntryKind::kHistory;
        note = EntryOf(bookmark, *link);
        address = UrlOfNote(link->replica, link->note);  // which may be written in more than one way
    } else {
        entry->kind = EntryKind::kDocument;
        entry->form = &kBookmarkForm;
        note = AddressNote(bookmark);
    }
    entry->identity = BookmarkIdentity(address);
    entry->digest = DigestOf(note);
    entry->revision = Revision{};
    entry->make = [made = std::make_shared<Note>(std::move(note))](Note* target, std::string*) {
        *target = *made;
        return true;
    };
    return true;
}

}  // namespace pavex
