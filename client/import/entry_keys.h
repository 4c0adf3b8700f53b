// client/import/entry_keys.h: how the rows are keyed by which a database remembers the entries of imports.
#pragma once

#include <optional>
#include <string>

#include "client/store/database.h"

namespace pavex {

// The digest column: what the entry says, and how its source had it marked.
std::string StoredDigestOf(const std::string& content, std::optional<bool> unread);
std::string ContentOf(const SourceEntry& row);
// The identity in a row's key: what stands before the digest of a further content.
std::string IdentityOf(const SourceEntry& row);

// Rows by which further sources hold a note are numbered from 1.
std::string CopyKey(int number, const std::string& key);
bool IsCopy(const SourceEntry& row);
// The key of the note's own row, from that of a copy.
std::string OriginalKey(const SourceEntry& copy);

// Without the status of a note that another program deleted while the import ran; the next import sees it gone.
STATUS UnlessDeleted(STATUS status);

}  // namespace pavex
