// tests/client/import/import_fixture.cpp
#include "tests/client/import/import_fixture.h"

#include <cmath>
#include <filesystem>

#include "client/store/host.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace pavex {
namespace {

std::string TextOfItem(const Item& item)
{
    std::string text;
    if (const auto values = TextValues(item)) {
        for (const std::string& value : *values)
            text += (text.empty() ? "" : "|") + value;
    } else if (const auto times = TimeValues(item)) {
        for (const TIMEDATE& time : *times)
            text += (text.empty() ? "" : "|") + IsoFromTime(time);
    } else if (const auto number = NumberValue(item)) {
        text = std::to_string(std::lround(*number));
    } else if (item.type == kTypeFormula) {
        text = "formula";
    } else {
        bool damaged = false;
        for (const RichTextPiece& piece : ReadRichText(item.value, &damaged))
            text += piece.text + "\n";
        EXPECT_FALSE(damaged);
    }
    return text;
}

}  // namespace

NoteText TextOfNote(const Note& note)
{
    NoteText text;
    for (const Item& item : note.items)
        text[item.name] = TextOfItem(item);
    return text;
}

ImportTest::ImportTest()
{
    Places places;
    places.ini = home_ / "pavex.ini";
    places.policy = home_ / "policy.ini";
    places.data = home_ / "data";
    places.caches = home_ / "caches";
    places.log = home_ / "log/pavex.log";
    std::string error;
    EXPECT_TRUE(StartHost(places, &error)) << error;
    options_.dataDirectory = places.data;
}

void ImportTest::Write(const std::string& name, const std::string& content) const
{
    const std::filesystem::path path = Source(name);
    std::filesystem::create_directories(path.parent_path());
    WriteWholeFile(path.string(), content);
}

void ImportTest::Remove(const std::string& name) const
{
    ASSERT_TRUE(std::filesystem::remove(Source(name)));
}

void ImportTest::Rename(const std::string& from, const std::string& to) const
{
    std::filesystem::rename(Source(from), Source(to));
}

ImportReport ImportTest::Run(const std::vector<std::string>& names)
{
    std::vector<std::string> sources;
    for (const std::string& name : names)
        sources.push_back(name.starts_with('/') ? name : Source(name));
    ImportReport report;
    std::string error;
    EXPECT_TRUE(Import(sources, options_, {}, &report, &error)) << error;
    return report;
}

std::unique_ptr<Database> ImportTest::OpenMail() const
{
    std::unique_ptr<Database> database;
    const std::string path = options_.into.empty() ? options_.dataDirectory + "/mail.vlt" : options_.into;
    EXPECT_EQ(Database::Open(path, &database), 0);
    return database;
}

std::vector<NoteText> ImportTest::Notes() const
{
    const std::unique_ptr<Database> database = OpenMail();
    std::vector<uint32_t> ids;
    EXPECT_EQ(database->List([&](const NoteSummary& note) {
        ids.push_back(note.id);
        return true;
    }),
              0);
    std::vector<NoteText> notes;
    for (const uint32_t id : ids) {
        Note note;
        EXPECT_EQ(database->Get(id, &note), 0);
        notes.push_back(TextOfNote(note));
    }
    return notes;
}

std::vector<std::string> ImportTest::Subjects() const
{
    std::vector<std::string> subjects;
    for (NoteText& note : Notes())
        subjects.push_back(note["Subject"]);
    return subjects;
}

std::vector<std::string> ImportTest::UnreadSubjects() const
{
    const std::unique_ptr<Database> database = OpenMail();
    std::vector<std::string> subjects;
    for (const auto& [id, sequence] : Versions()) {
        bool unread = false;
        EXPECT_EQ(database->IsUnread(UserName(), id, &unread), 0);
        Note note;
        EXPECT_EQ(database->Get(id, &note), 0);
        if (unread)
            subjects.push_back(TextOfNote(note)["Subject"]);
    }
    return subjects;
}

std::vector<std::pair<uint32_t, uint32_t>> ImportTest::Versions() const
{
    const std::unique_ptr<Database> database = OpenMail();
    std::vector<std::pair<uint32_t, uint32_t>> versions;
    EXPECT_EQ(database->List([&](const NoteSummary& summary) {
        versions.emplace_back(summary.id, 0);
        return true;
    }),
              0);
    for (auto& [id, sequence] : versions) {
        Note note;
        EXPECT_EQ(database->Get(id, &note), 0);
        sequence = note.sequence;
    }
    return versions;
}

std::string Counts(const ImportReport& report)
{
    return "added " + std::to_string(report.added) + " updated " + std::to_string(report.updated) + " unchanged " +
           std::to_string(report.unchanged) + " removed " + std::to_string(report.removed) + " rejected " +
           std::to_string(report.rejected.size());
}

std::string Message(const std::string& id, const std::string& subject, const std::string& body)
{
    return "From: Ann Lee <ann@example.org>\nMessage-ID: <" + id +
           ">\nDate: Mon, 5 Mar 2007 12:00:00 +0000\nSubject: " + subject + "\n\n" + body;
}

}  // namespace pavex
