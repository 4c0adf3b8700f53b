// tests/support/test_database.h: a real database with the notes a test needs.
// Every call that the store refuses throws, so that a test reads as the story of its notes.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "client/store/database.h"

// Fields of a mail; texts are UTF-8, what is empty or zero is left out.
struct TestMail {
    std::string subject{};
    std::string from{};
    std::vector<std::string> to{};
    std::vector<std::string> cc{};
    std::vector<std::string> body{};  // paragraphs
    std::string form = "Memo";
    TIMEDATE posted{};    // zero: a draft, it has no PostedDate
    TIMEDATE modified{};  // zero: now
};

class TestDatabase {
public:
    // Makes the database, or opens the one that is there.
    explicit TestDatabase(const std::string& path, const std::string& titleUtf8 = "Test");

    // Each a transaction of its own; the note's id comes back.
    uint32_t AddNote(std::vector<pavex::Item> items, uint16_t noteClass = pavex::kClassDocument);
    uint32_t AddSealed(std::vector<pavex::Item> items);  // items marked kItemSealed are encrypted
    uint32_t AddMail(const TestMail& mail);
    uint32_t AddForm(const std::string& titleUtf8, const std::string& windowTitleFormula = {});
    uint32_t Add(pavex::Note note);
    // Sets the items (others stay) and the time of change to now.
    void Update(uint32_t id, std::vector<pavex::Item> items);
    void Delete(uint32_t id);
    void SetUnread(const std::string& userUtf8, uint32_t id, bool unread = true);

    pavex::Note Get(uint32_t id);  // sealed items included
    std::vector<uint32_t> Ids();   // of the notes that are there, ascending
    std::string Url(uint32_t id);  // "Pavex:///replica//unid"
    TIMEDATE LastChange();         // stamp of the last change
    const std::string& Path() const { return database_->Path(); }
    pavex::Database& database() { return *database_; }

private:
    std::unique_ptr<pavex::Database> database_;
};
