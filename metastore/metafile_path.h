// metastore/metafile_path.h: where a note's metafile lies, and what it is called.
#pragma once

#include <string>

#include "metastore/search_engine_event.h"
#include "platform/foundation.h"

// The extensions by event type, which is also the order in which a removal tries them.
inline constexpr const char* kMetafileExtensions[] = {
    "vPavexMessage", "vPavexCalendar",   "vPavexTask",    "vPavexContact",
    "vPavexJournal", "vPavexDiscussion", "vPavexHistory", "vPavexNote",
};
// One of kMetafileExtensions; the last one for a type that has none of its own.
const char* MetafileExtension(SearchEngineEventType type);

// "Pavex:///R//N" as the path component "R/N".  The caller releases it.
CFStringRef CopyMetafileComponent(CFStringRef noteUrl);

// The absolute path of a file URL, UTF-8; empty for none, and for one of more than 1024 bytes.
std::string FileSystemPath(CFURLRef url);

// The file that a note's next metafile is written to; note: the metafile's path without its extension.
std::string TemporaryMetafile(const std::string& note);

// The shell command that touches a file, and does nothing else whatever the path holds.
std::string TouchCommand(const std::string& path);
