// tests/client/watch/watcher_test.cpp: the thread, with the real importer and with imports that the tests steer.
#include "client/watch/watcher.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "client/store/database.h"
#include "client/store/host.h"
#include "client/watch/read_records.h"
#include "client/watch/watch_list.h"
#include "tests/support/eventually.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using Subjects = std::vector<std::string>;

// Short, but in the order of the real ones.
constexpr WatchWaits kWaits = {.quietMs = 20, .longestMs = 300, .longestRestMs = 200, .againMs = 400};

std::string Message(const std::string& subject)
{
    return "From: ann@example.org\nDate: Mon, 5 Mar 2007 14:00:00 +0000\nSubject: " + subject + "\nMessage-ID: <" +
           subject + "@example.org>\n\ntext\n";
}

class WatcherTest : public testing::Test {
protected:
    WatcherTest()
    {
        std::string error;
        EXPECT_TRUE(StartHost(FindPlaces(home_ / "home"), &error)) << error;
        for (const char* folder : {"m/cur", "m/new", "m/tmp"})
            fs::create_directories(home_ / folder);
    }
    ~WatcherTest() override { (void)TakeFailedWrite(); }

    static std::unique_ptr<Watcher> Start(const Watcher::ImportCall& import = Import)
    {
        std::string error;
        std::unique_ptr<Watcher> watcher = Watcher::Start({kWaits, import}, &error);
        EXPECT_NE(watcher, nullptr) << error;
        return watcher;
    }
    void Deliver(const std::string& subject) const
    {
        WriteWholeFile(home_ / ("m/tmp/" + subject), Message(subject));
        fs::rename(home_ / ("m/tmp/" + subject), home_ / ("m/new/" + subject));
    }
    static Subjects MailSubjects(const std::string& file = "mail.vlt")
    {
        Subjects subjects;
        std::unique_ptr<Database> database;
        const std::string path = CurrentPlaces().data + "/" + file;
        if (!fs::exists(path) || Database::Open(path, &database) != 0)
            return subjects;
        EXPECT_EQ(database->List([&](const NoteSummary& summary) {
            Note note;
            EXPECT_EQ(database->Get(summary.id, &note), 0);
            for (const Item& item : note.items)
                if (item.name == "Subject")
                    subjects.push_back(TextValues(item).value_or(Subjects{""}).at(0));
            return true;
        }),
                  0);
        std::sort(subjects.begin(), subjects.end());
        return subjects;
    }
    static bool Arrive(const Subjects& expected)
    {
        return Eventually([&] { return MailSubjects() == expected; });
    }
    static std::string LogText()
    {
        return fs::exists(CurrentPlaces().log) ? ReadWholeFile(CurrentPlaces().log) : std::string();
    }
    static bool Logged(const std::string& text)
    {
        return Eventually([&] { return LogText().find(text) != std::string::npos; });
    }
    static size_t CountInLog(const std::string& text)
    {
        const std::string log = LogText();
        size_t count = 0;
        for (size_t at = log.find(text); at != std::string::npos; at = log.find(text, at + 1))
            ++count;
        return count;
    }
    std::string Mail() const { return home_ / "m"; }
    static void List(const WatchedSource& source)
    {
        ASSERT_EQ(AddToWatchList(source).outcome, AddedSource::Outcome::kAdded);
    }

    TemporaryDirectory home_;
};

TEST_F(WatcherTest, ReadsWhatChangedWhileNobodyWatchedAndThenWhatArrives)
{
    Deliver("before");
    List({Mail()});
    const auto watcher = Start();
    EXPECT_TRUE(Arrive({"before"}));
    Deliver("now");
    EXPECT_TRUE(Arrive({"before", "now"}));
    EXPECT_TRUE(Logged("read " + Mail() + ": 1 added, 0 updated, 0 removed"));
    EXPECT_TRUE(Eventually([&] { return LoadReadRecords(CurrentPlaces().data)[Mail()].read != ""; }));
}

TEST_F(WatcherTest, FollowsTheListWhileItRuns)
{
    const auto watcher = Start();
    Deliver("one");
    List({Mail()});
    EXPECT_TRUE(Arrive({"one"}));
    EXPECT_EQ(RemoveFromWatchList(Mail()), RemovedSource::kRemoved);
    List({home_ / "other.eml"});
    WriteWholeFile(home_ / "other.eml", Message("other"));
    EXPECT_TRUE(Arrive({"one", "other"}));
    Deliver("unseen");
    WriteWholeFile(home_ / "other.eml", Message("other2"));
    EXPECT_TRUE(Arrive({"one", "other", "other2"})) << "and not what is off the list";
}

TEST_F(WatcherTest, RemovesTheNotesOfMessagesThatWentOnlyWhenAskedTo)
{
    fs::create_directories(home_ / "kept/cur");
    Deliver("goes");
    WriteWholeFile(home_ / "kept/cur/k1:2,S", Message("k1"));
    WriteWholeFile(home_ / "kept/cur/k2:2,S", Message("k2"));
    List({.path = Mail(), .prune = true});
    List({home_ / "kept"});
    const auto watcher = Start();
    ASSERT_TRUE(Arrive({"goes", "k1", "k2"}));
    fs::remove(home_ / "kept/cur/k1:2,S");
    fs::remove(home_ / "m/new/goes");
    EXPECT_TRUE(Arrive({"k1", "k2"}));
}

TEST_F(WatcherTest, KeepsTheNotesOfASourceThatIsGoneOrOnlyAnEmptyFolder)
{
    const std::string disk = home_ / "disk";
    fs::create_directory(disk);
    WriteWholeFile(disk + "/a.eml", Message("a"));
    List({.path = disk, .prune = true});
    const auto watcher = Start();
    ASSERT_TRUE(Arrive({"a"}));
    fs::rename(disk, home_ / "away");
    ASSERT_TRUE(Logged(disk + ": cannot be read"));
    fs::create_directory(disk);
    ASSERT_TRUE(Logged(disk + ": is an empty folder"));
    EXPECT_EQ(MailSubjects(), Subjects{"a"});
    EXPECT_TRUE(Eventually([&] { return LoadReadRecords(CurrentPlaces().data)[disk].error != ""; }));
    fs::remove(disk);
    fs::rename(home_ / "away", disk);
    WriteWholeFile(disk + "/b.eml", Message("b"));
    EXPECT_TRUE(Arrive({"a", "b"}));
}

TEST_F(WatcherTest, BringsInWhatASourceHoldsInsteadOfAnOlderContent)
{
    fs::create_directory(home_ / "notes");
    WriteWholeFile(home_ / "notes/a.md", "# First\n");
    List({home_ / "notes"});
    const auto watcher = Start();
    const auto has = [this](const std::string& title) {
        return Eventually([&] { return LogText().find(title) != std::string::npos; });
    };
    ASSERT_TRUE(has("1 added, 0 updated"));
    WriteWholeFile(home_ / "notes/a.md", "# Second\n");
    EXPECT_TRUE(has("0 added, 1 updated, 0 removed"));
}

TEST_F(WatcherTest, SaysOnceWhatItCannotRead)
{
    fs::create_directory(home_ / "mixed");
    WriteWholeFile(home_ / "mixed/bad.eml", "\xFF\xFE no header");
    List({.path = home_ / "mixed", .prune = true});
    const auto watcher = Start();
    ASSERT_TRUE(Logged("bad.eml"));
    for (const char* subject : {"a", "b"}) {
        WriteWholeFile(home_ / ("mixed/" + std::string(subject) + ".eml"), Message(subject));
        ASSERT_TRUE(Eventually([&] { return testing::Value(MailSubjects(), Contains(subject)); }));
    }
    EXPECT_EQ(CountInLog("bad.eml"), 1U) << LogText();
}

TEST_F(WatcherTest, SaysOnceWhatIsWrongWithTheList)
{
    ASSERT_TRUE(SetVariable("ImportSource1", "nowhere"));
    List({Mail()});
    const auto watcher = Start();
    Deliver("one");
    EXPECT_TRUE(Arrive({"one"})) << "the rest works";
    List({home_ / "x.eml"});
    WriteWholeFile(home_ / "x.eml", Message("x"));
    EXPECT_TRUE(Arrive({"one", "x"}));
    EXPECT_EQ(CountInLog("ImportSource1=nowhere: is no absolute path"), 1U) << LogText();
}

// ---- Imports that the tests steer ------------------------------------------------------------

// Keeps what it is called with.
class Recorder {
public:
    Watcher::ImportCall Call(std::function<bool(const ImportProgressCallback&, std::string*)> work = {})
    {
        return [this, work = std::move(work)](const std::vector<std::string>& sources, const ImportOptions& options,
                                              const ImportProgressCallback& progress, ImportReport* report,
                                              std::string* error) {
            *report = {};
            {
                const std::lock_guard lock(mutex_);
                std::string line = sources.at(0).substr(sources.at(0).rfind('/') + 1);
                line += std::string(options.prune ? " prune" : "") +
                        (options.as == ImportOptions::As::kDiscussion ? " discussion" : "");
                for (const std::string& file : options.only)
                    line += " " + file.substr(file.rfind('/') + 1);
                lines_.push_back(line);
            }
            const bool done = !work || work(progress, error);
            ++ended_;
            return done;
        };
    }
    std::vector<std::string> Lines() const
    {
        const std::lock_guard lock(mutex_);
        return lines_;
    }
    bool Saw(const std::string& line) const
    {
        return Eventually([&] { return testing::Value(Lines(), Contains(line)); });
    }
    int Ended() const { return ended_; }

private:
    mutable std::mutex mutex_;  // guards the lines
    std::vector<std::string> lines_;
    std::atomic<int> ended_{0};
};

TEST_F(WatcherTest, ReadsOnlyTheFilesThatChangedWhereThatIsEnough)
{
    fs::create_directories(home_ / "list/new");
    List({.path = Mail(), .prune = true});
    List({.path = home_ / "list", .as = ImportOptions::As::kDiscussion});
    Recorder imports;
    const auto watcher = Start(imports.Call());
    ASSERT_TRUE(imports.Saw("m prune"));
    ASSERT_TRUE(imports.Saw("list discussion"));
    Deliver("one");
    EXPECT_TRUE(imports.Saw("m prune one"));
    const auto wholes = [&] {
        const std::vector<std::string> lines = imports.Lines();
        return std::pair{std::count(lines.begin(), lines.end(), "m prune"),
                         std::count(lines.begin(), lines.end(), "list discussion")};
    };
    EXPECT_EQ(wholes(), (std::pair{1L, 1L}));
    fs::remove(home_ / "m/new/one");
    EXPECT_TRUE(Eventually([&] { return wholes().first == 2; }));
    WriteWholeFile(home_ / "list/new/1", Message("1"));
    EXPECT_TRUE(Eventually([&] { return wholes().second == 2; })) << "who answers whom shows in the whole";
}

TEST_F(WatcherTest, ReadsAgainLaterWhatCouldNotBeRead)
{
    List({Mail()});
    Recorder imports;
    std::atomic<bool> works{false};
    const auto watcher = Start(imports.Call([&](const ImportProgressCallback&, std::string* error) {
        if (!works)
            *error = "mail.vlt: is locked";
        return works.load();
    }));
    ASSERT_TRUE(Eventually([&] { return imports.Ended() >= 2; })) << "without any change";
    EXPECT_EQ(CountInLog("mail.vlt: is locked"), 1U);
    works = true;
    EXPECT_TRUE(Eventually([&] { return LoadReadRecords(CurrentPlaces().data)[Mail()].error == ""; }));
}

TEST_F(WatcherTest, OutlivesAnImportThatThrows)
{
    List({Mail()});
    Recorder imports;
    const auto watcher = Start(imports.Call(
        [&](const ImportProgressCallback&, std::string*) -> bool { throw std::runtime_error("no memory"); }));
    EXPECT_TRUE(Logged(Mail() + ": no memory"));
    Deliver("one");
    EXPECT_TRUE(Eventually([&] { return imports.Lines().size() >= 2; }));
}

TEST_F(WatcherTest, EndsAnImportInOrderWhenItIsToStop)
{
    List({Mail()});
    Recorder imports;
    std::atomic<bool> asked{false};
    auto watcher = Start(imports.Call([&](const ImportProgressCallback& progress, std::string* error) {
        asked = true;
        while (progress({}))
            std::this_thread::yield();
        *error = "the import was ended";
        return false;
    }));
    ASSERT_TRUE(Eventually([&] { return asked.load(); }));
    watcher->RequestStop();
    watcher->RequestStop();
    watcher.reset();
    EXPECT_EQ(imports.Ended(), 1);
    EXPECT_EQ(CountInLog("ended"), 0U) << "nobody need know";
}

TEST_F(WatcherTest, TakesChangesThatHappenDuringAnImport)
{
    List({Mail()});
    Recorder imports;
    std::atomic<bool> go{false};
    const auto watcher = Start(imports.Call([&](const ImportProgressCallback& progress, std::string*) {
        while (!go && progress({}))
            std::this_thread::yield();
        return true;
    }));
    ASSERT_TRUE(imports.Saw("m"));
    Deliver("meanwhile");
    go = true;
    EXPECT_TRUE(imports.Saw("m meanwhile"));
}

TEST_F(WatcherTest, CausesNoChangesByItsOwnReading)
{
    Deliver("one");
    List({.path = Mail(), .prune = true});
    Recorder imports;
    std::atomic<bool> real{false};
    const auto watcher =
        Start([&, record = imports.Call()](auto& sources, auto& options, auto& progress, auto* report, auto* error) {
            const bool done = Import(sources, options, progress, report, error);
            ImportReport unused;
            return record(sources, options, progress, &unused, error) && done;
        });
    ASSERT_TRUE(Arrive({"one"}));
    Deliver("two");
    ASSERT_TRUE(Arrive({"one", "two"}));
    Deliver("three");
    ASSERT_TRUE(Arrive({"one", "three", "two"}));
    EXPECT_TRUE(imports.Saw("m prune three"));
    EXPECT_EQ(imports.Lines(), (std::vector<std::string>{"m prune", "m prune two", "m prune three"}));
}

TEST_F(WatcherTest, ReadsASourceOnceForAFolderThatCame)
{
    List({Mail()});
    Recorder imports;
    const auto watcher = Start(imports.Call());
    ASSERT_TRUE(imports.Saw("m"));
    for (const char* folder : {"made/cur", "made/new", "made/tmp"})
        fs::create_directories(home_ / folder);
    fs::rename(home_ / "made", home_ / "m/.Work");
    ASSERT_TRUE(Eventually([&] { return imports.Lines().size() >= 2; }));
    WriteWholeFile(home_ / "m/.Work/new/last", Message("last"));
    ASSERT_TRUE(imports.Saw("m last"));
    EXPECT_EQ(imports.Lines(), (std::vector<std::string>{"m", "m", "m last"}));
}

TEST_F(WatcherTest, StopsWhenThereIsNothingToDo)
{
    auto watcher = Start();
    watcher->RequestStop();
    watcher.reset();
    watcher = Start();
    watcher.reset();
    EXPECT_EQ(LogText(), "");
}

}  // namespace
}  // namespace pavex
