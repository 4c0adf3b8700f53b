// content/list_text.cpp: lists of names and of categories as one line of text.
#include <algorithm>
#include <cstring>
#include <limits>
#include <string>

#include "content/buffers.h"
#include "content/item_text.h"
#include "content/scs_text.h"
#include "strings/cstring.h"
#include "strings/string_ids.h"
#include "strings/string_resources.h"

namespace {

constexpr char kSeparator[] = ", ";
constexpr WORD kSeparatorBytes = 2;

struct CategoryRow {
    const char* code;  // as the store holds it, compared without regard to case
    int text;          // number of the localized name
};
constexpr CategoryRow kCategories[] = {
    {"H", kStringCategoryHoliday}, {"V", kStringCategoryVacation},    {"P", kStringCategoryProjects},
    {"C", kStringCategoryClients}, {"PC", kStringCategoryPhoneCalls}, {"T", kStringCategoryTravel},
};

// A separator has room behind the text, and something behind the separator too.
bool TakesSeparator(WORD length, WORD size)
{
    return length + kSeparatorBytes + 1 < size;
}

// Reads an entry into Buffer2, terminated, on one line: a break in it would end the text.
WORD ReadEntry(NOTEHANDLE note, const char* item, WORD index)
{
    const WORD length = VLTItemGetTextListEntry(note, item, index, Buffer2, kBufferLimit);
    BreaksToBlanks(Buffer2, length);
    return length;
}

// Abbreviates a name into out[room], terminated; one the store cannot abbreviate stays as it is.
WORD AbbreviateName(const char* name, WORD nameLength, char* out, WORD room)
{
    WORD length = 0;
    if (DNAbbreviate(0, nullptr, name, out, room, &length) == kStatusOk)
        return length;
    const size_t whole = std::min<size_t>(nameLength, room - size_t{1});
    std::memcpy(out, name, whole);
    length = static_cast<WORD>(whole == nameLength ? whole : WholeScsBytes(out, whole));
    out[length] = '\0';
    return length;
}

// Replaces a category code of `length` bytes in Buffer2 by its localized name.  Returns the text's length.
WORD LocalizeCategory(WORD length)
{
    for (const CategoryRow& row : kCategories) {
        if (!SameWithoutCase({Buffer2, length}, row.code))
            continue;
        CString name;
        name.LoadString(row.text);
        const std::string native = name.toString();
        const size_t bytes = std::min<size_t>(native.size(), std::numeric_limits<WORD>::max());
        length = TranslateText(native.c_str(), static_cast<WORD>(bytes), Buffer2, kBufferLimit, true);
        Buffer2[length] = '\0';
        break;
    }
    return length;
}

}  // namespace

WORD GetAddressList(NOTEHANDLE note, const char* item, char* buffer, WORD size)
{
    if (size == 0)
        return 0;
    WORD length = 0;
    const WORD entries = VLTItemGetTextListEntries(note, item);
    for (WORD i = 0; i < entries; ++i) {
        const WORD entryLength = ReadEntry(note, item, i);
        if (entryLength == 0)
            continue;
        if (length != 0 && !TakesSeparator(length, size))
            break;
        // The name goes behind the place of the separator, which is filled once there is a name.
        const WORD start = static_cast<WORD>(length == 0 ? 0 : length + kSeparatorBytes);
        const WORD added = AbbreviateName(Buffer2, entryLength, buffer + start, static_cast<WORD>(size - start));
        if (added == 0)
            continue;
        if (length != 0)
            std::memcpy(buffer + length, kSeparator, kSeparatorBytes);
        length = static_cast<WORD>(start + added);
    }
    buffer[length] = '\0';
    return length;
}

WORD GetCategoryList(NOTEHANDLE note, const char* item, char* buffer, WORD size)
{
    if (size == 0)
        return 0;
    WORD length = 0;
    const WORD entries = VLTItemGetTextListEntries(note, item);
    for (WORD i = 0; i < entries; ++i) {
        const WORD entryLength = LocalizeCategory(ReadEntry(note, item, i));
        if (entryLength == 0)
            continue;
        if (length != 0 && TakesSeparator(length, size)) {
            std::memcpy(buffer + length, kSeparator, kSeparatorBytes);
            length = static_cast<WORD>(length + kSeparatorBytes);
        }
        const WORD room = static_cast<WORD>(size - length);
        std::memcpy(buffer + length, Buffer2, std::min(entryLength, room));
        if (entryLength >= room) {
            length = size;
            break;
        }
        length = static_cast<WORD>(length + entryLength);
    }
    buffer[length] = '\0';
    return length;
}
