// tests/metastore/search_engine_test.cpp: metafiles written, replaced and removed, in a real folder.
#include "metastore/search_engine.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "client/store/host.h"
#include "strings/string_ids.h"
#include "tests/metastore/caches_fixture.h"

namespace {

constexpr const char* kUrl = "Pavex:///AAAA//BBBBCCCC";

// What Python's plistlib reads from a file: one line a property, "key type value".
std::string PythonReads(const std::string& path)
{
    const std::string command = "python3 -c 'import plistlib, sys\n"
                                "for k, v in sorted(plistlib.load(open(sys.argv[1], \"rb\")).items()):\n"
                                "    print(k, type(v).__name__, v)' '" +
                                path + "' 2>&1";
    FILE* const python = popen(command.c_str(), "r");
    std::string output;
    std::array<char, 4096> buffer{};
    for (size_t bytes; (bytes = fread(buffer.data(), 1, buffer.size(), python)) != 0;)
        output.append(buffer.data(), bytes);
    pclose(python);
    return output;
}

// A `touch` in front of the system's: notes what it is called with, and what the file holds by then.
class WatchedTouch {
public:
    explicit WatchedTouch(const TemporaryDirectory& folder) : log_(folder / "touched"), path_(std::getenv("PATH"))
    {
        std::filesystem::create_directory(folder / "bin");
        const std::string script = folder / "bin/touch";
        WriteWholeFile(script, "#!/bin/sh\n"
                               "grep -c '</plist>' \"$1\" >>'" +
                                   log_ + "'; echo \"$# $1\" >>'" + log_ + "'\n");
        std::filesystem::permissions(script, std::filesystem::perms::owner_all);
        setenv("PATH", (folder / "bin:" + path_).c_str(), 1);
    }
    ~WatchedTouch() { setenv("PATH", path_.c_str(), 1); }
    WatchedTouch(const WatchedTouch&) = delete;
    WatchedTouch& operator=(const WatchedTouch&) = delete;

    std::string Calls() const { return std::filesystem::exists(log_) ? ReadWholeFile(log_) : ""; }

private:
    std::string log_;
    std::string path_;
};

// Files may not grow beyond a size, as on a full disk.
class SmallDisk {
public:
    explicit SmallDisk(rlim_t bytes) : handler_(signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SmallDisk()
    {
        setrlimit(RLIMIT_FSIZE, &before_);
        signal(SIGXFSZ, handler_);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    rlimit before_{};
    void (*handler_)(int);
};

class SearchEngineStore : public Caches {
protected:
    void Touch(const std::string& name) const
    {
        std::filesystem::create_directories(Below("AAAA"));
        WriteWholeFile(Below(name), "older");
    }
    std::vector<std::string> Notes() const
    {
        std::vector<std::string> notes;
        if (std::filesystem::exists(Below("AAAA"))) {
            for (const auto& entry : std::filesystem::directory_iterator(Below("AAAA")))
                notes.push_back(entry.path().filename().string());
        }
        std::sort(notes.begin(), notes.end());
        return notes;
    }
};

TEST_F(SearchEngineStore, WritesAnEventToItsPlaceAndMakesTheFolders)
{
    OwnSearchEngine engine;
    EXPECT_EQ(engine.SendEvent(Event(kSearchEventContact, kUrl, "Ann"), 0), kSearchEngineNoError);
    EXPECT_EQ(Files(), std::vector<std::string>{std::string(kCurrentRoot) + "/AAAA/BBBBCCCC.vPavexContact"});
    struct stat status;
    ASSERT_EQ(stat(Below("AAAA").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
    ASSERT_EQ(stat((caches_ / "Metadata").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0700U);
}

TEST_F(SearchEngineStore, WritesWhatPythonReadsBack)
{
    OwnSearchEngine engine;
    SearchEngineEvent event = Event(kSearchEventMessage, kUrl, "<Caf\xC3\xA9> & \xF0\x9F\x98\x80");
    event.AddProperty("received", 194796000.75);
    event.AddProperty("rank", 4294967295U);
    event.AddProperty("size", 12U);
    event.AddProperty("broken", CString(std::wstring(L"a\x1z\xD800")));
    event.AddProperty("empty", "");
    engine.SendEvent(event, 0);
    EXPECT_EQ(PythonReads(Below("AAAA/BBBBCCCC.vPavexMessage")),
              "broken str a\xEF\xBF\xBDz\xEF\xBF\xBD\n"
              "com.quorvex.pavex.uri str Pavex:///AAAA//BBBBCCCC\n"
              "com_quorvex_morvane_pavex_metafile_version str 1.0.0\n"
              "empty str \n"
              "rank int -1\n"
              "received datetime 2007-03-05 14:00:00\n"
              "size int 12\n"
              "title str <Caf\xC3\xA9> & \xF0\x9F\x98\x80\n");
}

TEST_F(SearchEngineStore, WritesDatesOfOtherYearsAsTheNearestThatPythonReads)
{
    constexpr double kYear = 365.2425 * 86400;
    OwnSearchEngine engine;
    SearchEngineEvent event = Event(kSearchEventContact, kUrl, "x");
    event.AddProperty("in_0", (0.5 - 2001) * kYear);
    event.AddProperty("in_12000", (12000.5 - 2001) * kYear);
    event.AddProperty("on_the_first_day", -63113904000.0);
    event.AddProperty("on_the_last_day", 252423993599.0);
    engine.SendEvent(event, 0);
    EXPECT_EQ(PythonReads(Below("AAAA/BBBBCCCC.vPavexContact")),
              "com.quorvex.pavex.uri str Pavex:///AAAA//BBBBCCCC\n"
              "com_quorvex_morvane_pavex_metafile_version str 1.0.0\n"
              "in_0 datetime 0001-01-01 00:00:00\n"
              "in_12000 datetime 9999-12-31 23:59:59\n"
              "on_the_first_day datetime 0001-01-01 00:00:00\n"
              "on_the_last_day datetime 9999-12-31 23:59:59\n"
              "title str x\n");
}

TEST_F(SearchEngineStore, WritesTheExampleOfTheFormatsPage)
{
    const std::string page = ReadWholeFile(TORVIK_SOURCE_DIR "/docs/formats/metafile.md");
    const size_t begin = page.find("```xml\n") + 7;
    OwnSearchEngine engine;
    SearchEngineEvent event =
        Event(kSearchEventContact, "Pavex:///8025000000000001//0123456789ABCDEF8025000000000002", "Ann & Bob");
    event.AddProperty("last_modified_time", 194796000.0);
    event.AddProperty("rank", 4294967295U);
    engine.SendEvent(event, 0);
    EXPECT_EQ(ReadWholeFile(Below("8025000000000001/0123456789ABCDEF8025000000000002.vPavexContact")),
              page.substr(begin, page.find("```", begin) - begin));
}

TEST_F(SearchEngineStore, WritesNothingForAnEventWithoutAUrl)
{
    OwnSearchEngine engine;
    EXPECT_EQ(engine.SendEvent(SearchEngineEvent(kSearchEventMessage), 0), kSearchEngineParamErr);
    EXPECT_TRUE(std::filesystem::is_empty(caches_.Path()));
}

TEST_F(SearchEngineStore, ReplacesAMetafileWhole)
{
    OwnSearchEngine engine;
    SearchEngineEvent first = Event(kSearchEventMessage, kUrl, "first");
    first.AddProperty("only_in_the_first", "x");
    engine.SendEvent(first, 0);
    struct stat before;
    ASSERT_EQ(stat(Below("AAAA/BBBBCCCC.vPavexMessage").c_str(), &before), 0);
    engine.SendEvent(Event(kSearchEventMessage, kUrl, "second"), 0);
    EXPECT_EQ(PythonReads(Below("AAAA/BBBBCCCC.vPavexMessage")),
              "com.quorvex.pavex.uri str Pavex:///AAAA//BBBBCCCC\n"
              "com_quorvex_morvane_pavex_metafile_version str 1.0.0\n"
              "title str second\n");
    struct stat after;
    ASSERT_EQ(stat(Below("AAAA/BBBBCCCC.vPavexMessage").c_str(), &after), 0);
    EXPECT_NE(before.st_ino, after.st_ino);  // who has the old one open still reads it
    EXPECT_EQ(Notes(), std::vector<std::string>{"BBBBCCCC.vPavexMessage"});
}

TEST_F(SearchEngineStore, LeavesOneMetafileWhenANoteChangesItsKind)
{
    OwnSearchEngine engine;
    for (const SearchEngineEventType type : {kSearchEventNote, kSearchEventMessage, kSearchEventTask})
        engine.SendEvent(Event(type, kUrl, "changing"), 0);
    engine.SendEvent(Event(kSearchEventNote, "Pavex:///AAAA//OTHER", "beside it"), 0);
    EXPECT_EQ(Notes(), (std::vector<std::string>{"BBBBCCCC.vPavexTask", "OTHER.vPavexNote"}));
}

TEST_F(SearchEngineStore, TouchesEachMetafileOnceItIsWhole)
{
    const TemporaryDirectory folder;
    const WatchedTouch touch(folder);
    OwnSearchEngine engine;
    engine.SendEvent(Event(kSearchEventMessage, kUrl, "a"), 0);
    engine.SendEvent(Event(kSearchEventTask, "Pavex:///A $B//C`D\"E", "b"), 0);
    EXPECT_EQ(touch.Calls(),
              "1\n1 " + Below("AAAA/BBBBCCCC.vPavexMessage") + "\n1\n1 " + Below("A $B/C`D\"E.vPavexTask") + "\n");
}

TEST_F(SearchEngineStore, KeepsTheOldMetafileWhenTheDiskIsFull)
{
    OwnSearchEngine engine;
    engine.SendEvent(Event(kSearchEventMessage, kUrl, "old"), 0);
    const std::string before = ReadWholeFile(Below("AAAA/BBBBCCCC.vPavexMessage"));
    const TemporaryDirectory folder;
    const WatchedTouch touch(folder);
    SearchEngineResult result;
    {
        const SmallDisk disk(100);
        result = engine.SendEvent(Event(kSearchEventTask, kUrl, std::string(9000, 'x').c_str()), 0);
    }
    EXPECT_EQ(result, kSearchEngineNoError);
    EXPECT_EQ(Notes(), std::vector<std::string>{"BBBBCCCC.vPavexMessage"});
    EXPECT_EQ(ReadWholeFile(Below("AAAA/BBBBCCCC.vPavexMessage")), before);
    EXPECT_EQ(touch.Calls(), "");
}

TEST_F(SearchEngineStore, LeavesNothingWhenTheFirstWriteFails)
{
    OwnSearchEngine engine;
    {
        const SmallDisk disk(100);
        engine.SendEvent(Event(kSearchEventTask, kUrl, std::string(9000, 'x').c_str()), 0);
    }
    EXPECT_EQ(Notes(), std::vector<std::string>{});
}

TEST_F(SearchEngineStore, LeavesNothingWhenThePlaceIsTaken)
{
    std::filesystem::create_directories(Below("AAAA/BBBBCCCC.vPavexTask/full"));
    OwnSearchEngine engine;
    engine.SendEvent(Event(kSearchEventTask, kUrl, "x"), 0);
    EXPECT_EQ(Notes(), std::vector<std::string>{"BBBBCCCC.vPavexTask"});  // the folder
    EXPECT_EQ(Files(), std::vector<std::string>{});
}

TEST_F(SearchEngineStore, OverwritesWhatAKilledWriterLeft)
{
    Touch("AAAA/.BBBBCCCC.part");
    OwnSearchEngine engine;
    engine.SendEvent(Event(kSearchEventJournal, kUrl, "x"), 0);
    EXPECT_EQ(Notes(), std::vector<std::string>{"BBBBCCCC.vPavexJournal"});
}

TEST_F(SearchEngineStore, RemovesANoteWhateverItsKind)
{
    OwnSearchEngine engine;
    for (const uint32_t type : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U}) {
        engine.SendEvent(Event(static_cast<SearchEngineEventType>(type), kUrl, "x"), 0);
        ASSERT_EQ(Notes().size(), 1U);
        EXPECT_EQ(engine.DeleteNoteEntry(kUrl), kSearchEngineNoError);
        EXPECT_EQ(Notes(), std::vector<std::string>{}) << type;
    }
    EXPECT_TRUE(std::filesystem::exists(Below("AAAA")));  // an empty folder stays
}

TEST_F(SearchEngineStore, StopsAtTheFirstExtensionItCouldRemove)
{
    OwnSearchEngine engine;
    Touch("AAAA/BBBBCCCC.vPavexTask");
    Touch("AAAA/BBBBCCCC.vPavexContact");
    Touch("AAAA/BBBBCCCC.vPavexNote");
    engine.DeleteNoteEntry(kUrl);
    EXPECT_EQ(Notes(), (std::vector<std::string>{"BBBBCCCC.vPavexContact", "BBBBCCCC.vPavexNote"}));
    engine.DeleteNoteEntry(kUrl);
    EXPECT_EQ(Notes(), std::vector<std::string>{"BBBBCCCC.vPavexNote"});
}

TEST_F(SearchEngineStore, TriesTheExtensionsInTheOrderOfTheirKinds)
{
    OwnSearchEngine engine;
    const std::vector<std::string> order = {
        "BBBBCCCC.vPavexMessage", "BBBBCCCC.vPavexCalendar",   "BBBBCCCC.vPavexTask",    "BBBBCCCC.vPavexContact",
        "BBBBCCCC.vPavexJournal", "BBBBCCCC.vPavexDiscussion", "BBBBCCCC.vPavexHistory", "BBBBCCCC.vPavexNote"};
    for (const std::string& name : order)
        Touch("AAAA/" + name);
    for (auto next = order.begin(); next != order.end(); ++next) {
        EXPECT_EQ(engine.DeleteNoteEntry(kUrl), 0);
        std::vector<std::string> left(next + 1, order.end());
        std::sort(left.begin(), left.end());
        EXPECT_EQ(Notes(), left) << "after " << *next;
    }
}

TEST_F(SearchEngineStore, RemovesWhatAKilledWriterLeftWithTheNote)
{
    Touch("AAAA/BBBBCCCC.vPavexTask");
    Touch("AAAA/.BBBBCCCC.part");
    Touch("AAAA/.OTHER.part");
    OwnSearchEngine engine;
    engine.DeleteNoteEntry(kUrl);
    EXPECT_EQ(Notes(), std::vector<std::string>{".OTHER.part"});
}

TEST_F(SearchEngineStore, RemovesNothingForANoteWithoutAMetafile)
{
    OwnSearchEngine engine;
    engine.SendEvent(Event(kSearchEventNote, "Pavex:///AAAA//OTHER", "x"), 0);
    EXPECT_EQ(engine.DeleteNoteEntry(kUrl), 0);
    EXPECT_EQ(engine.DeleteNoteEntry(""), 0);
    EXPECT_EQ(Notes(), std::vector<std::string>{"OTHER.vPavexNote"});
}

TEST_F(SearchEngineStore, KeepsToTheRootItWasMadeWith)
{
    OwnSearchEngine engine;
    std::filesystem::create_directories(caches_ / kOlderRoot);
    engine.SendEvent(Event(kSearchEventMessage, kUrl, "current"), 0);
    OwnSearchEngine later;
    later.SendEvent(Event(kSearchEventMessage, kUrl, "older"), 0);
    std::filesystem::remove_all(caches_ / kOlderRoot);
    later.SendEvent(Event(kSearchEventMessage, "Pavex:///AAAA//DDDD", "older"), 0);
    EXPECT_EQ(Files(), (std::vector<std::string>{std::string(kOlderRoot) + "/AAAA/DDDD.vPavexMessage",
                                                 std::string(kCurrentRoot) + "/AAAA/BBBBCCCC.vPavexMessage"}));
}

TEST_F(SearchEngineStore, WritesNothingWithoutACachesFolderAndSaysSoOnce)
{
    pavex::SetCachesFolder("");
    std::vector<uint32_t> logged;
    pavex::SetLogObserver([&logged](const pavex::LogEntry& entry) {
        logged.push_back(entry.id);
        return false;
    });
    OwnSearchEngine engine;
    EXPECT_EQ(engine.SendEvent(Event(kSearchEventMessage, kUrl, "x"), 0), kSearchEngineParamErr);
    EXPECT_EQ(engine.SendEvent(Event(kSearchEventMessage, kUrl, "x"), 0), kSearchEngineParamErr);
    EXPECT_EQ(engine.DeleteNoteEntry(kUrl), 0);
    pavex::SetLogObserver(nullptr);
    EXPECT_EQ(logged, std::vector<uint32_t>{kLogNoCachesFolder});
    EXPECT_TRUE(std::filesystem::is_empty(caches_.Path()));
}

TEST_F(SearchEngineStore, ReleasesWhatItMakes)
{
    const long before = pavex::LiveObjects();
    {
        OwnSearchEngine engine;
        engine.SendEvent(Event(kSearchEventMessage, kUrl, "x"), 0);
        engine.SendEvent(SearchEngineEvent(kSearchEventMessage), 0);
        engine.DeleteNoteEntry(kUrl);
    }
    EXPECT_EQ(pavex::LiveObjects(), before);
}

}  // namespace
