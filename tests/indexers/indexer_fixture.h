// tests/indexers/indexer_fixture.h: a real database whose notes are indexed into real metafiles.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "addin/index_context.h"
#include "client/store/clock.h"
#include "client/store/database.h"
#include "client/store/host.h"
#include "client/store/note.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"
#include "platform/store.h"
#include "tests/indexers/metafile_reader.h"
#include "tests/support/temporary_directory.h"

using pavex::NumberItem;
using pavex::TextItem;
using pavex::TextListItem;

// Notes of the fixture are created and changed at these times; it is kNow all the time.
constexpr const char* kCreated = "2007-03-01T08:00:00Z";
constexpr const char* kModified = "2007-03-02T09:30:00Z";
constexpr const char* kNow = "2007-03-10T00:00:00Z";

TIMEDATE Time(const char* iso);
pavex::Item TimeItem(const char* name, const char* iso);
pavex::Item TimesItem(const char* name, const std::vector<const char*>& iso);
pavex::Item BodyItem(const std::vector<const char*>& paragraphs);
TIMEDATE NoTime();  // neither date nor time of day

using Indexer = bool (*)(NOTEHANDLE note, INDEXCONTEXT* context);

class IndexerTest : public testing::Test {
protected:
    IndexerTest();
    ~IndexerTest() override;

    uint32_t Put(std::vector<pavex::Item> items);
    uint32_t Put(pavex::Note note);

    // Opens the note, hands it to the indexer and closes it; context_ is made anew for each call.
    bool Index(uint32_t id, Indexer indexer);
    // Puts and indexes; the metafile's properties.
    Properties Indexed(std::vector<pavex::Item> items, Indexer indexer);

    // Extension of the note's one metafile, empty when it has none.
    std::string Extension(uint32_t id);
    // Properties of the note's metafile, without the version and URL, which are checked here; empty when
    // there is no file.
    Properties Metafile(uint32_t id);
    std::string Url(uint32_t id);
    DBHANDLE Handle() const { return handle_; }
    pavex::Database& Db() { return *database_; }
    // The log entries since the last call: "127 title -1".
    std::vector<std::string> TakeLog();

    INDEXCONTEXT context_{};

private:
    std::vector<std::string> MetafilesOf(uint32_t id);

    TemporaryDirectory folder_;
    pavex::VirtualClock clock_;
    std::unique_ptr<pavex::Database> database_;
    DBHANDLE handle_ = 0;
    std::vector<std::string> log_;
};

// Opens one note for as long as it lives.
class OpenNote {
public:
    OpenNote(DBHANDLE db, uint32_t id);
    ~OpenNote();
    OpenNote(const OpenNote&) = delete;
    OpenNote& operator=(const OpenNote&) = delete;
    NOTEHANDLE Get() const { return note_; }

private:
    NOTEHANDLE note_ = 0;
};
