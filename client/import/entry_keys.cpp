// client/import/entry_keys.cpp
#include "client/import/entry_keys.h"

namespace pavex {

std::string CopyKey(int number, const std::string& key)
{
    return "copy:" + std::to_string(number) + ":" + key;
}

std::string StoredDigestOf(const std::string& content, std::optional<bool> unread)
{
    return content + (!unread ? ";-" : *unread ? ";unread" : ";read");
}

std::string ContentOf(const SourceEntry& row)
{
    return row.digest.substr(0, row.digest.rfind(';'));
}

std::string IdentityOf(const SourceEntry& row)
{
    const std::string suffix = "#" + ContentOf(row);
    return row.key.ends_with(suffix) ? row.key.substr(0, row.key.size() - suffix.size()) : row.key;
}

bool IsCopy(const SourceEntry& row)
{
    return row.key.starts_with("copy:");
}

std::string OriginalKey(const SourceEntry& copy)
{
    return copy.key.substr(copy.key.find(':', 5) + 1);
}

STATUS UnlessDeleted(STATUS status)
{
    return status == kStatusNoteDeleted ? kStatusOk : status;
}

}  // namespace pavex
