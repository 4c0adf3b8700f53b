// tests/indexers/note_model.h: what a note's metafile must hold, written from the tables of properties alone.
// It reads the note before it is stored and shares no code with the indexers.
#pragma once

#include <optional>
#include <string>

#include "client/store/note.h"
#include "tests/indexers/metafile_reader.h"

struct ExpectedFile {
    std::string extension;
    Properties properties;  // without the version and URL

    bool operator==(const ExpectedFile&) const = default;
};

// The calendar's pairs last from note to note, so one model sees all notes in the order of indexing.
class NoteModel {
public:
    // now: seconds since 1970.
    NoteModel(std::string databaseTitle, int64_t now) : databaseTitle_(std::move(databaseTitle)), now_(now) {}

    // Nothing when the note leaves no file.
    std::optional<ExpectedFile> Expect(const pavex::Note& note);

private:
    struct Pair {
        int64_t start = 978307200;  // 2001-01-01
        int64_t end = 978307200;
    };
    // By the form; properties: what notes of every kind have.
    std::optional<ExpectedFile> ExpectMail(const pavex::Note& note, Properties properties);
    std::optional<ExpectedFile> ExpectTopic(const pavex::Note& note, Properties properties);
    std::optional<ExpectedFile> ExpectEvent(const pavex::Note& note, Properties properties);
    std::optional<ExpectedFile> ExpectTask(const pavex::Note& note, Properties properties);
    std::optional<ExpectedFile> ExpectContact(const pavex::Note& note, Properties properties);
    std::optional<ExpectedFile> ExpectJournal(const pavex::Note& note, Properties properties);
    std::optional<ExpectedFile> ExpectVisit(const pavex::Note& note, Properties properties);

    size_t FillPairs(const pavex::Note& note, const char* endItem, Pair* pairs) const;
    void AddTimes(size_t count, bool task, Properties* properties) const;

    std::string databaseTitle_;
    int64_t now_;
    Pair calendar_[100];
    Pair task_[100];
};
