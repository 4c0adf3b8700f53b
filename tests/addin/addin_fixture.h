// tests/addin/addin_fixture.h: the add-in in a home of its own, on a virtual clock.
// The add-in's state is the process's, so every test runs in a process of its own (as ctest runs them).
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "client/store/clock.h"
#include "client/store/database.h"
#include "client/store/host.h"
#include "tests/support/temporary_directory.h"

// A mailbox of the client, written as an importer would write it.
class Mailbox {
public:
    Mailbox(const std::string& path, const std::string& title);

    // Returns the note's id.  Deleting and changing get a stamp of their own each.
    uint32_t Add(const std::string& subject, const std::string& form = "Memo");
    uint32_t AddPlain(const std::string& subject, const std::string& form);  // no more than these: not mail
    void AddMany(int count, const std::string& subject);                     // one transaction
    void Change(uint32_t id, const std::string& subject);
    void Delete(uint32_t id);
    std::string UrlOf(uint32_t id);
    const std::string& Path() const { return path_; }
    pavex::Database& Db() { return *db_; }

private:
    std::string path_;
    std::unique_ptr<pavex::Database> db_;
};

pavex::Note MailNote(const std::string& subject, const std::string& form = "Memo");

class AddInTest : public testing::Test {
protected:
    AddInTest();
    ~AddInTest() override;

    // Puts a database into a slot and enables indexing.
    void Configure(int slot, const std::string& path);
    void SetVariable(const std::string& name, const std::string& value);
    std::string Variable(const std::string& name) const;  // "(absent)" when it is

    std::string PathOf(const std::string& file) const;  // in the data directory
    // Metafiles by their path below the metadata root, with their "subject".
    std::map<std::string, std::string> Metafiles() const;
    std::vector<std::string> Subjects() const;  // sorted
    std::string MetadataRoot() const;

    // Log entries so far: ids in order, or those of one id with their first argument.
    std::vector<unsigned> LogIds() const;
    std::vector<std::string> LoggedPaths(unsigned id) const;  // file names
    int Logged(unsigned id) const;

    // Mains power off: the machine runs on battery.
    void RunOnBattery(bool battery);

    TemporaryDirectory home_;
    pavex::VirtualClock clock_;
    std::vector<pavex::LogEntry> log_;
};
