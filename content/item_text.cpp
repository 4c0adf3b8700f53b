// content/item_text.cpp: reads one item of a note as text, and hands it to the note's event.
#include "content/item_text.h"

#include <cstring>

#include "content/buffers.h"
#include "content/scs_text.h"
#include "content/value_text.h"
#include "settings/settings.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"

WORD MyItemGetText(NOTEHANDLE note, const char* item, char* buffer, WORD size)
{
    return GetMultiLineItem(note, item, buffer, size, kJoinComma);
}

WORD GetMultiLineItem(NOTEHANDLE note, const char* item, char* buffer, WORD size, int joinMode)
{
    if (size == 0)
        return 0;
    buffer[0] = '\0';
    WORD type = 0;
    BLOCKID value{};
    DWORD valueBytes = 0;
    const WORD nameLength = static_cast<WORD>(std::strlen(item));
    if (VLTItemInfo(note, item, nameLength, nullptr, &type, &value, &valueBytes) != kStatusOk)
        return 0;
    if (IsTextual(type))
        return ParseMultiLineVLTText(type, value, valueBytes, buffer, size, joinMode);
    return VLTItemGetText(note, item, buffer, static_cast<WORD>(size - 1));
}

bool ItemHasText(NOTEHANDLE note, const char* item)
{
    char probe[8];  // room for any one character: the longest takes six bytes
    return VLTItemGetText(note, item, probe, sizeof probe - 1) != 0;
}

SearchEngineResult IndexItem(NOTEHANDLE note, int mode, const char* item, const char* key, SearchEngineEvent& event,
                             bool addEmpty)
{
    Buffer1[0] = '\0';
    WORD length = 0;
    if (mode == kIndexAddresses)
        length = GetAddressList(note, item, Buffer1, kBufferLimit);
    else if (mode == kIndexCategories)
        length = GetCategoryList(note, item, Buffer1, kBufferLimit);
    else
        length = GetMultiLineItem(note, item, Buffer1, kBufferLimit, mode == kIndexLines ? kJoinCrLf : kJoinComma);
    return IndexItemBuffer(Buffer1, length, key, event, addEmpty);
}

SearchEngineResult IndexItemBuffer(const char* buffer, WORD length, const char* key, SearchEngineEvent& event,
                                   bool addEmpty)
{
    wBuffer[0] = 0;
    if (length == 0 && !addEmpty)
        return 0;
    // A list that was ended at the buffer's limit may end inside a character.
    const WORD whole = static_cast<WORD>(WholeScsBytes(buffer, length));
    const CString text = whole == 0 ? CString() : WideFromScs(buffer, whole, kWideItemLimit);
    const SearchEngineResult result = event.AddProperty(CString(key), text);
    if (result != 0 && IsDebug())
        LogEvent(kLogPropertyFailed, 0, kStatusOk, key, result);
    return result;
}
