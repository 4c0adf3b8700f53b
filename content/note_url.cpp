// content/note_url.cpp: the URL that reopens a note in the client, and the marker texts.
#include "content/note_url.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "content/buffers.h"
#include "content/item_text.h"
#include "strings/cstring.h"

const char CookieLead[kCookieLeadBytes + 1] = " xqzTorvikLeadingMarkervqjx ";
const char CookieDefault[kCookieBytes + 1] = " xqzTorvikDefaultMarkervqj ";
const char CookieAlternate[kCookieBytes + 1] = " xqzTorvikAlternaMarkervqj ";

namespace {

// The metafile's path is made from this form, so it never changes.
constexpr char kUrlFormat[] = "Pavex:///%H//%H%H";

struct NoteIdentity {
    DBHANDLE db = 0;
    ORIGINATORID oid{};
};

NoteIdentity IdentityOf(NOTEHANDLE note)
{
    NoteIdentity identity;
    VLTNoteGetInfo(note, kNoteInfoOriginatorId, &identity.oid);
    VLTNoteGetInfo(note, kNoteInfoDatabase, &identity.db);
    return identity;
}

// Appends as much of the marker as fits into text[size] behind `length` bytes, terminated.
size_t AppendMarker(std::string_view marker, char* text, size_t length, size_t size)
{
    const size_t fitting = std::min(marker.size(), size - 1 - length);
    std::memcpy(text + length, marker.data(), fitting);
    text[length + fitting] = '\0';
    return length + fitting;
}

}  // namespace

WORD GetNoteURL(NOTEHANDLE note, char* url)
{
    const NoteIdentity identity = IdentityOf(note);
    return GetNoteOIDURL(identity.db, identity.oid, url);
}

WORD GetNoteOIDURL(DBHANDLE db, ORIGINATORID oid, char* url)
{
    DBREPLICAINFO replica{};
    if (db == 0 || VLTDbReplicaInfoGet(db, &replica) != kStatusOk)
        return 0;
    return AddInFormatErrorText(url, kUrlFormat, &replica.ID, &oid.Unid.File, &oid.Unid.Note);
}

SearchEngineResult IndexNoteURL(NOTEHANDLE note, SearchEngineEvent& event, const char* key)
{
    const NoteIdentity identity = IdentityOf(note);
    return IndexNoteOIDURL(identity.db, identity.oid, event, key);
}

SearchEngineResult IndexNoteOIDURL(DBHANDLE db, ORIGINATORID oid, SearchEngineEvent& event, const char* key)
{
    char url[kNoteUrlBytes];
    const bool known = GetNoteOIDURL(db, oid, url) != 0;
    return event.AddProperty(CString(key), known ? CString(url) : CString());
}

SearchEngineResult IndexNoteURLAndCookies(NOTEHANDLE note, [[maybe_unused]] bool reserved, SearchEngineEvent& event,
                                          const char* key)
{
    const WORD url = GetNoteURL(note, Buffer1);
    const WORD markers = GetCookies(false, Buffer1 + url, static_cast<WORD>(kBufferLimit - url));
    return IndexItemBuffer(Buffer1, static_cast<WORD>(url + markers), key, event, true);
}

WORD GetCookies(bool alternate, char* buffer, WORD size)
{
    if (size == 0)
        return 0;
    const size_t lead = AppendMarker(std::string_view(CookieLead, kCookieLeadBytes), buffer, 0, size);
    const char* second = alternate ? CookieAlternate : CookieDefault;
    return static_cast<WORD>(AppendMarker(std::string_view(second, kCookieBytes), buffer, lead, size));
}
