// tests/indexers/indexer_fixture.cpp: one home for the whole run, because the metafiles' root is chosen
// once a process; a database, and so a folder of metafiles, for each test.
#include "tests/indexers/indexer_fixture.h"

#include <filesystem>

#include "client/foundation/host.h"
#include "settings/settings.h"

namespace {

class Home : public testing::Environment {
public:
    void SetUp() override
    {
        folder_ = std::make_unique<TemporaryDirectory>();
        std::string error;
        ASSERT_TRUE(pavex::StartHost(pavex::FindPlaces(folder_->Path().string()), &error)) << error;
        pavex::SetUserLanguages({"en"});
        pavex::SetAddInBundle(TORVIK_SOURCE_DIR "/resources");  // log entries take their arguments by its texts
    }
    void TearDown() override { folder_.reset(); }

private:
    std::unique_ptr<TemporaryDirectory> folder_;
};

const auto* const kHome = testing::AddGlobalTestEnvironment(new Home);

std::string TextOf(const std::variant<std::string, int64_t>& argument)
{
    const auto* text = std::get_if<std::string>(&argument);
    return text != nullptr ? *text : std::to_string(std::get<int64_t>(argument));
}

}  // namespace

TIMEDATE Time(const char* iso)
{
    return pavex::TimeFromIso(iso).value();
}

pavex::Item TimeItem(const char* name, const char* iso)
{
    return pavex::TimeItem(name, Time(iso));
}

pavex::Item TimesItem(const char* name, const std::vector<const char*>& iso)
{
    std::vector<TIMEDATE> times;
    for (const char* text : iso)
        times.push_back(Time(text));
    return pavex::TimeListItem(name, times);
}

pavex::Item BodyItem(const std::vector<const char*>& paragraphs)
{
    pavex::RichTextBuilder body;
    for (const char* paragraph : paragraphs)
        body.AddParagraph(paragraph);
    return pavex::RichTextItem("Body", body.Records());
}

TIMEDATE NoTime()
{
    TIMEDATE time;
    TimeConstant(2, &time);
    return time;
}

IndexerTest::IndexerTest() : clock_(static_cast<uint64_t>(pavex::UnixFromTime(Time(kNow)).value()) * 100)
{
    pavex::SetClock(&clock_);
    const std::string path = folder_ / "notes.vlt";
    EXPECT_EQ(pavex::Database::Create(path, "The Notes", &database_), 0);
    EXPECT_EQ(VLTDbOpen(path.c_str(), &handle_), 0);
    pavex::SetLogObserver([this](const pavex::LogEntry& entry) {
        std::string line = std::to_string(entry.id);
        for (const auto& argument : entry.arguments)
            line += " " + TextOf(argument);
        log_.push_back(line);
        return false;
    });
    static_cast<void>(IsDebug());  // the settings are loaded before a test changes them
}

IndexerTest::~IndexerTest()
{
    EXPECT_EQ(VLTDbClose(handle_), 0);
    EXPECT_EQ(pavex::OpenHandles(), 0);
    pavex::SetLogObserver(nullptr);
    pavex::SetClock(nullptr);
    SetIndexingDrafts(false);
    SetIndexingChats(true);
    SetIndexingDiscussion(false);
    dwGoogleSupport = kNoteKindsDefault;
    bIniIndexAllNotes = 1;
    bIniComputeOk = 0;
    bIniDebug = 0;
}

uint32_t IndexerTest::Put(std::vector<pavex::Item> items)
{
    pavex::Note note;
    note.created = Time(kCreated);
    note.modified = Time(kModified);
    note.items = std::move(items);
    return Put(std::move(note));
}

uint32_t IndexerTest::Put(pavex::Note note)
{
    EXPECT_EQ(database_->Put(&note), 0);
    return note.id;
}

bool IndexerTest::Index(uint32_t id, Indexer indexer)
{
    context_ = {};
    context_.database = handle_;
    context_.currentNote = id;
    context_.lastStatus = 1;
    context_.blankResult = 1;
    context_.writtenSize = 1;
    const OpenNote note(handle_, id);
    return indexer(note.Get(), &context_);
}

Properties IndexerTest::Indexed(std::vector<pavex::Item> items, Indexer indexer)
{
    const uint32_t id = Put(std::move(items));
    EXPECT_TRUE(Index(id, indexer));
    EXPECT_EQ(context_.lastStatus, 0);
    EXPECT_EQ(context_.blankResult, 0u);
    return Metafile(id);
}

std::vector<std::string> IndexerTest::MetafilesOf(uint32_t id)
{
    pavex::Note note;
    EXPECT_EQ(database_->Get(id, &note), 0);
    const std::filesystem::path folder = std::filesystem::path(pavex::CurrentPlaces().caches) /
                                         "Metadata/Quorvex/Pavex/Spotlight" / pavex::HexFromId(database_->ReplicaId());
    std::vector<std::string> files;
    if (!std::filesystem::exists(folder))
        return files;
    const std::string name = pavex::HexFromUnid(note.unid);
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().stem() == name)
            files.push_back(entry.path().string());
    return files;
}

std::string IndexerTest::Extension(uint32_t id)
{
    const std::vector<std::string> files = MetafilesOf(id);
    EXPECT_LE(files.size(), 1u);
    return files.empty() ? "" : std::filesystem::path(files[0]).extension().string().substr(1);
}

Properties IndexerTest::Metafile(uint32_t id)
{
    const std::vector<std::string> files = MetafilesOf(id);
    EXPECT_LE(files.size(), 1u);
    if (files.empty())
        return {};
    Properties properties = ReadMetafile(files[0]);
    EXPECT_EQ(properties["com_quorvex_morvane_pavex_metafile_version"], "1.0.0");
    EXPECT_EQ(properties["com.quorvex.pavex.uri"], Url(id));
    properties.erase("com_quorvex_morvane_pavex_metafile_version");
    properties.erase("com.quorvex.pavex.uri");
    return properties;
}

std::string IndexerTest::Url(uint32_t id)
{
    pavex::Note note;
    EXPECT_EQ(database_->Get(id, &note), 0);
    return "Pavex:///" + pavex::HexFromId(database_->ReplicaId()) + "//" + pavex::HexFromUnid(note.unid);
}

std::vector<std::string> IndexerTest::TakeLog()
{
    return std::exchange(log_, {});
}

OpenNote::OpenNote(DBHANDLE db, uint32_t id)
{
    EXPECT_EQ(VLTNoteOpen(db, id, 0, &note_), 0);
}

OpenNote::~OpenNote()
{
    EXPECT_EQ(VLTNoteClose(note_), 0);
}
