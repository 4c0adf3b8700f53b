// tests/client/import/import_fixture.h: a home with databases, and notes as text to compare.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "client/import/importer.h"
#include "client/store/database.h"
#include "tests/support/temporary_directory.h"

namespace pavex {

// Item values as text by item name: text and lists joined by "|", times in ISO form, rich text one paragraph a line.
using NoteText = std::map<std::string, std::string>;
NoteText TextOfNote(const Note& note);

class ImportTest : public testing::Test {
protected:
    ImportTest();

    std::string Source(const std::string& name) const { return home_ / name; }
    // Writes a file of a source; its folders are made.
    void Write(const std::string& name, const std::string& content) const;
    void Remove(const std::string& name) const;
    void Rename(const std::string& from, const std::string& to) const;

    // Imports and expects success; the report says the rest.
    ImportReport Run(const std::vector<std::string>& names);

    // The notes of mail.vlt in the order of their ids.
    std::vector<NoteText> Notes() const;
    std::vector<std::string> Subjects() const;
    // Subjects of the notes that are unread for the user.
    std::vector<std::string> UnreadSubjects() const;
    // Ids and sequence numbers: equal lists mean that no note was written in between.
    std::vector<std::pair<uint32_t, uint32_t>> Versions() const;
    std::unique_ptr<Database> OpenMail() const;

    TemporaryDirectory home_;
    ImportOptions options_;
};

// "added 1 updated 0 unchanged 0 removed 0 rejected 0"
std::string Counts(const ImportReport& report);

// A small message.
std::string Message(const std::string& id, const std::string& subject, const std::string& body = "text\n");

}  // namespace pavex
