// metastore/search_engine_event.h: one note's metadata on its way into a metafile.
#pragma once

#include <cstdint>

#include "platform/foundation.h"
#include "strings/cstring.h"

enum SearchEngineEventType : uint32_t {
    kSearchEventMessage = 0,
    kSearchEventCalendar = 1,
    kSearchEventTask = 2,
    kSearchEventContact = 3,
    kSearchEventJournal = 4,
    kSearchEventDiscussion = 5,
    kSearchEventHistory = 6,
    kSearchEventNote = 7,
    kSearchEventNone = 8,  // must not be sent
};

using SearchEngineResult = int32_t;
constexpr SearchEngineResult kSearchEngineNoError = 0;
constexpr SearchEngineResult kSearchEngineParamErr = -50;  // the event carries no note URL

// The key of the note's URL, "Pavex:///...", from which the store makes the metafile's path.
constexpr const char* kNoteUrlKey = "com.quorvex.pavex.uri";

// A kind and a dictionary of properties, which is the metafile's content.  The first value added under
// a key stays.  Copies have dictionaries of their own.
class SearchEngineEvent {
public:
    // The dictionary holds the metafile version already.
    explicit SearchEngineEvent(SearchEngineEventType type);
    SearchEngineEvent(const SearchEngineEvent& other);
    SearchEngineEvent& operator=(const SearchEngineEvent&) = delete;
    ~SearchEngineEvent();

    bool IsValid() const { return type_ != kSearchEventNone; }

    // Each returns kSearchEngineNoError.  Units that no XML text can hold become U+FFFD.
    SearchEngineResult AddProperty(const CString& key, const CString& value);
    // A date: seconds since 2001-01-01 00:00:00 GMT.
    SearchEngineResult AddProperty(const CString& key, const double& value);
    // A signed 32-bit number: 4294967295 is stored as -1.
    SearchEngineResult AddProperty(const CString& key, const unsigned int& value);

    // Writes the metafile.  flags is not used; *error (may be null) becomes 0.  Always
    // kSearchEngineNoError: a metafile that cannot be written is not the indexer's concern.
    SearchEngineResult Send(int flags, int* error);

    CFDictionaryRef Properties() const { return properties_; }  // borrowed
    SearchEngineEventType Type() const { return type_; }

private:
    CFMutableDictionaryRef properties_;  // owned
    SearchEngineEventType type_;
};
