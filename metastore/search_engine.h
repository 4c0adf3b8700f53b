// metastore/search_engine.h: the tree of metafiles under the user's caches folder.
// One folder a database (its replica id), one file a note (its UNID), the note's kind in the extension.
#pragma once

#include <string>

#include "metastore/search_engine_event.h"
#include "platform/foundation.h"
#include "strings/cstring.h"

// Writes and removes at once, on the calling thread; takes no lock: one writer at a time.
class SearchEngine {
public:
    // The one instance, made on the first call, thread-safe.  Its root folder is chosen then, for good.
    static SearchEngine* GetInstance();

    // The root folder: the older layout's where that is there, else the current one's, which need not
    // exist yet.  Null when the user has no caches folder.  The caller releases it.
    static CFURLRef CopyUserMetaDataFolder();

    // A new event of a kind; result becomes kSearchEngineNoError.
    SearchEngineEvent CreateEvent(SearchEngineEventType type, SearchEngineResult& result);

    // Where an event's metafile belongs.  Null when the event carries no note URL, or none can be
    // formed.  The caller releases it.
    CFURLRef GetMetaFilePath(const SearchEngineEvent& event) const;
    // The same for a note URL, without an extension.
    CFURLRef GetNoneExtMetaFilePathForNoteEntry(CFStringRef url) const;

    // Puts the event's metafile in the place of all that the note had, and touches it.
    // kSearchEngineParamErr without a path, else kSearchEngineNoError: when the file cannot be written,
    // the old one stays.
    SearchEngineResult SendEvent(const SearchEngineEvent& event, int flags);
    // Removes the metafile of the note with this URL, whatever its kind.  Returns 0, found or not.
    SearchEngineResult DeleteNoteEntry(const CString& url);

    SearchEngine(const SearchEngine&) = delete;
    SearchEngine& operator=(const SearchEngine&) = delete;

protected:
    SearchEngine();
    ~SearchEngine();

private:
    CFURLRef root_;  // owned; null: no caches folder, nothing is written
};

// Makes a folder and its missing ancestors, mode 0700.  True when it exists afterwards.
bool EnsureValidPath(CFURLRef folder);
