// tests/addin/addin_fixture.cpp: the add-in in a home of its own, on a virtual clock.
#include "tests/addin/addin_fixture.h"

#include <algorithm>
#include <filesystem>
#include <regex>

#include "client/foundation/host.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"

namespace fs = std::filesystem;

namespace {

constexpr uint64_t kStart = 1'164'067'200ULL * 100;  // 2006-11-21T00:00:00Z

void Require(STATUS status)
{
    if (status != 0)
        throw std::runtime_error("store status " + std::to_string(status));
}

}  // namespace

pavex::Note MailNote(const std::string& subject, const std::string& form)
{
    pavex::RichTextBuilder body;
    body.AddParagraph("Body of " + subject);
    pavex::Note note;
    note.items = {pavex::TextItem("Form", form),
                  pavex::TextItem("Subject", subject),
                  pavex::TextItem("From", "Ann Lee <ann@example.org>"),
                  pavex::TextListItem("SendTo", {"Bo Chen <bo@example.org>"}),
                  pavex::TimeItem("PostedDate", *pavex::TimeFromIso("2006-11-20T10:00:00Z")),
                  pavex::RichTextItem("Body", body.Records())};
    return note;
}

Mailbox::Mailbox(const std::string& path, const std::string& title) : path_(path)
{
    Require(pavex::Database::OpenOrCreate(path, title, &db_));
}

uint32_t Mailbox::Add(const std::string& subject, const std::string& form)
{
    pavex::Note note = MailNote(subject, form);
    Require(db_->Put(&note));
    return note.id;
}

uint32_t Mailbox::AddPlain(const std::string& subject, const std::string& form)
{
    pavex::Note note;
    note.items = {pavex::TextItem("Form", form), pavex::TextItem("Subject", subject)};
    Require(db_->Put(&note));
    return note.id;
}

void Mailbox::AddMany(int count, const std::string& subject)
{
    Require(db_->Begin());
    for (int i = 1; i <= count; ++i)
        Add(subject + " " + std::to_string(i));
    Require(db_->Commit());
}

void Mailbox::Change(uint32_t id, const std::string& subject)
{
    pavex::Note note;
    Require(db_->Get(id, &note));
    note.Set(pavex::TextItem("Subject", subject));
    Require(db_->Put(&note));
}

void Mailbox::Delete(uint32_t id)
{
    Require(db_->Delete(id));
}

std::string Mailbox::UrlOf(uint32_t id)
{
    pavex::Note note;
    Require(db_->Get(id, &note));
    return "Pavex:///" + pavex::HexFromId(db_->ReplicaId()) + "//" + pavex::HexFromUnid(note.unid);
}

AddInTest::AddInTest() : clock_(kStart)
{
    const pavex::Places places{home_ / "pavex.ini", home_ / "policy.ini", home_ / "data", home_ / "caches",
                               home_ / "log/pavex.log"};
    std::string error;
    if (!pavex::StartHost(places, &error))
        throw std::runtime_error(error);
    pavex::SetClock(&clock_);
    pavex::SetUserLanguages({"en"});
    pavex::SetAddInBundle(TORVIK_SOURCE_DIR "/resources");
    pavex::SetLogObserver([this](const pavex::LogEntry& entry) {
        log_.push_back(entry);
        return true;
    });
    RunOnBattery(false);
}

AddInTest::~AddInTest()
{
    pavex::JoinThreads();
    pavex::SetLogObserver(nullptr);
    pavex::SetClock(nullptr);
}

void AddInTest::Configure(int slot, const std::string& path)
{
    SetVariable("GDSFilePath" + (slot == 0 ? "" : std::to_string(slot)), path);
    SetVariable("GDSIndexEnabled", "1");
}

void AddInTest::SetVariable(const std::string& name, const std::string& value)
{
    ASSERT_TRUE(pavex::SetVariable(name, value));
}

std::string AddInTest::Variable(const std::string& name) const
{
    std::string value;
    return pavex::GetVariable(name, &value) ? value : "(absent)";
}

std::string AddInTest::PathOf(const std::string& file) const
{
    return home_ / "data/" + file;
}

std::string AddInTest::MetadataRoot() const
{
    return home_ / "caches/Metadata/Quorvex/Pavex/Spotlight";
}

std::map<std::string, std::string> AddInTest::Metafiles() const
{
    static const std::regex subject("<key>subject</key>\\s*<string>([^<]*)</string>");
    std::map<std::string, std::string> files;
    if (!fs::exists(MetadataRoot()))
        return files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(MetadataRoot())) {
        if (!entry.is_regular_file())
            continue;
        const std::string content = ReadWholeFile(entry.path().string());
        std::smatch found;
        const bool has = std::regex_search(content, found, subject);
        files[fs::relative(entry.path(), MetadataRoot()).string()] = has ? found[1].str() : "";
    }
    return files;
}

std::vector<std::string> AddInTest::Subjects() const
{
    std::vector<std::string> subjects;
    for (const auto& [path, subject] : Metafiles())
        subjects.push_back(subject);
    std::sort(subjects.begin(), subjects.end());
    return subjects;
}

std::vector<unsigned> AddInTest::LogIds() const
{
    std::vector<unsigned> ids;
    for (const pavex::LogEntry& entry : log_)
        ids.push_back(entry.id);
    return ids;
}

std::vector<std::string> AddInTest::LoggedPaths(unsigned id) const
{
    std::vector<std::string> paths;
    for (const pavex::LogEntry& entry : log_)
        if (entry.id == id && !entry.arguments.empty())
            paths.push_back(fs::path(std::get<std::string>(entry.arguments[0])).filename().string());
    return paths;
}

int AddInTest::Logged(unsigned id) const
{
    return static_cast<int>(
        std::count_if(log_.begin(), log_.end(), [id](const pavex::LogEntry& entry) { return entry.id == id; }));
}

void AddInTest::RunOnBattery(bool battery)
{
    const fs::path root = home_.Path() / "power";
    fs::create_directories(root / "BAT0");
    fs::create_directories(root / "AC");
    WriteWholeFile((root / "BAT0/type").string(), "Battery\n");
    WriteWholeFile((root / "BAT0/present").string(), "1\n");
    WriteWholeFile((root / "BAT0/status").string(), battery ? "Discharging\n" : "Charging\n");
    WriteWholeFile((root / "AC/type").string(), "Mains\n");
    WriteWholeFile((root / "AC/online").string(), battery ? "0\n" : "1\n");
    pavex::SetPowerSupplyRoot(root.string());
}
