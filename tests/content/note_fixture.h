// tests/content/note_fixture.h: a real database whose notes are read, and an event to read them into.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/store/note.h"
#include "metastore/search_engine_event.h"
#include "platform/store.h"
#include "tests/support/temporary_directory.h"
#include "tests/support/test_database.h"

// The names of the category codes in the bundle that the fixture makes.
constexpr char kHolidayName[] = "Feiertag";
constexpr char kPhoneCallsName[] = "Anrufe für später";

class NoteFixture : public testing::Test {
protected:
    NoteFixture();
    ~NoteFixture() override;

    // Saves a note and opens it; it is closed with the fixture.
    NOTEHANDLE Open(pavex::Note note);
    NOTEHANDLE Open(std::vector<pavex::Item> items);

    // A text property of the event, UTF-8; nothing when it has none under the key.
    std::optional<std::string> Property(const char* key) const;
    // Files left in the temporary folder.
    std::vector<std::string> TemporaryFiles() const;

    TemporaryDirectory home_;
    std::unique_ptr<TestDatabase> database_;
    DBHANDLE db_ = 0;
    SearchEngineEvent event_{kSearchEventMessage};

private:
    std::optional<std::string> tmpdirBefore_;
    std::vector<NOTEHANDLE> notes_;
    int handlesBefore_ = 0;
};

// What a buffer holds, and UTF-8 text as the store holds it.
std::string Scs(std::string_view utf8);
std::string Utf8(std::string_view scs);
// Rich text of the paragraphs, as an item.
pavex::Item RichText(std::string_view name, const std::vector<std::string>& paragraphs);
