// tests/client/app/program_index_test.cpp: the search engine's index is a cache: what happens to it costs no search.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>

#include "client/store/descriptor.h"
#include "tests/client/app/program_fixture.h"
#include "tests/client/app/terminal_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;
using Lines = std::vector<std::string>;

constexpr const char* kProgram = TORVIK_BINARY_DIR "/bin/pavex";

class ProgramIndex : public testing::Test {
protected:
    void SetUp() override
    {
        WriteNote("A", "quince");
        ASSERT_THAT(home_.Run({"search", "quince"}).out, HasSubstr("Pavex:///A"));
        // is there as long as the index is not thrown away
        WriteWholeFile(Index("marker"), "");
    }
    // A metafile, so that there is something to be read.
    void WriteNote(const std::string& name, const std::string& title)
    {
        const std::string folder = home_.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight/0123456789ABCDEF/");
        fs::create_directories(folder);
        WriteWholeFile(
            folder + name + ".vPavexNote",
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>title</key><string>" +
                title + "</string><key>com.quorvex.pavex.uri</key><string>Pavex:///" + name +
                "</string></dict></plist>\n");
    }
    std::string Index(const std::string& name) const { return home_.Path("home/caches/pavex/search/") + name; }
    bool IsKept() const { return fs::exists(Index("marker")); }
    void ExpectFound(const std::string& name, const std::string& word)
    {
        const ProgramResult result = home_.Run({"search", word});
        EXPECT_EQ(result.exit, 0);
        EXPECT_EQ(result.err, "");
        EXPECT_THAT(result.out, HasSubstr("Pavex:///" + name));
    }
    void Garble()
    {
        int files = 0;
        for (const fs::directory_entry& entry : fs::directory_iterator(Index("xapiandb")))
            if (entry.file_size() > 0 && ++files > 0)
                WriteWholeFile(entry.path().string(), std::string(entry.file_size(), 'x'));
        ASSERT_GT(files, 1);
    }
    // A program in the engine's place, which finds that one in REAL_PATH.
    void Replace(const std::string& program, const std::string& script)
    {
        fs::create_directory(home_.Path("programs"));
        WriteWholeFile(home_.Path("programs/") + program, "#!/bin/sh\n" + script);
        fs::permissions(home_.Path("programs/") + program, fs::perms(0755));
    }
    std::unique_ptr<Process> StartReplaced(const Lines& arguments)
    {
        const std::string path = std::getenv("PATH");
        Lines command = {"env",
                         "PATH=" + home_.Path("programs") + ":" + path,
                         "REAL_PATH=" + path,
                         kProgram,
                         "--home",
                         home_.Path("home")};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return std::make_unique<Process>(command, home_.Path("replaced"));
    }

    ProgramHome home_;
};

TEST_F(ProgramIndex, IsBuiltAnewWhenItsDatabaseIsGone)
{
    fs::remove_all(Index("xapiandb"));
    ExpectFound("A", "quince");
    ExpectFound("A", "quince");
}

TEST_F(ProgramIndex, IsBuiltAnewWhenItsDatabaseIsDamaged)
{
    Garble();
    ExpectFound("A", "quince");
    EXPECT_FALSE(IsKept());
}

TEST_F(ProgramIndex, IsBuiltAnewWhenItIsDamagedAndThereIsSomethingToRead)
{
    Garble();
    WriteNote("B", "medlar");
    ExpectFound("B", "medlar");
    ExpectFound("A", "quince");
    EXPECT_FALSE(IsKept());
}

TEST_F(ProgramIndex, IsBuiltAnewWhenTheEngineFindsOnlyWhileAskingThatItCannotReadIt)
{
    Replace("recollq", "if test -e '" + Index("marker") +
                           "'; then\n  echo 'Recoll query: Query(quince)'\n  echo '-1 results'\n  exit 0\nfi\n"
                           "PATH=$REAL_PATH\nexec recollq \"$@\"\n");
    const ProgramResult result = StartReplaced({"search", "quince"})->Wait();
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("Pavex:///A"));
    EXPECT_FALSE(IsKept());
}

TEST_F(ProgramIndex, IsLeftAloneWhenTheEngineIsNotInstalled)
{
    for (int changes = 0; changes < 2; ++changes) {
        Process without({"env", "PATH=/nowhere", kProgram, "--home", home_.Path("home"), "search", "quince"},
                        home_.Path("without"));
        ExpectOneClearLine(without.Wait(), 1, {"Recoll is not installed"});
        EXPECT_TRUE(IsKept());
        WriteNote("B", "medlar");
    }
    ExpectFound("B", "medlar");
    EXPECT_TRUE(IsKept());
}

TEST_F(ProgramIndex, IsLeftAloneByWhatNoNewIndexWouldMend)
{
    const std::string log = "echo ':2:rcldb/rcldb.cpp:782::Db::add: add_document failed: ";
    const std::pair<std::string, std::string> scripts[] = {
        {log + "No space left on device' > \"$2/log\"\nexit 1\n", "No space left on device"},
        {log + "Unable to get write lock on x: already locked' > \"$2/log\"\nexit 1\n", "another program is writing"},
        {"echo 'Recollindex: got signal 15, registering stop request' >&2\nexit 1\n", "it was stopped"},
        {"kill -KILL $$\n", "it was stopped"},
    };
    WriteNote("B", "medlar");
    for (const auto& [script, reason] : scripts) {
        Replace("recollindex", script);
        const ProgramResult result = StartReplaced({"search", "quince"})->Wait();
        EXPECT_EQ(result.exit, 1);
        EXPECT_THAT(result.out, HasSubstr("Pavex:///A")) << "an old index is worth having";
        EXPECT_THAT(result.err, HasSubstr("not up to date: recollindex failed: " + reason));
        EXPECT_TRUE(IsKept()) << script;
    }
    Replace("recollq", "echo 'Query setup failed: whatever'\nexit 1\n");
    Replace("recollindex", "exit 0\n");
    ExpectOneClearLine(StartReplaced({"search", "quince"})->Wait(), 1, {"recollq failed", "whatever"});
    EXPECT_TRUE(IsKept());
}

TEST_F(ProgramIndex, IsBuiltAnewOnceAndItsLogIsNamedWhenThatFails)
{
    Replace("recollindex", "echo run >> '" + home_.Path("runs") + "'\necho 'Indexing failed'\nexit 1\n");
    Garble();
    WriteNote("B", "medlar");
    ExpectOneClearLine(StartReplaced({"search", "quince"})->Wait(), 1,
                       {"damaged and cannot be built anew", "Indexing failed", Index("log")});
    EXPECT_EQ(ReadWholeFile(home_.Path("runs")), "run\nrun\n");
    ExpectFound("B", "medlar");
}

TEST_F(ProgramIndex, KeepsTheLogOfWhatFailedHoweverOftenItIsAsked)
{
    WriteWholeFile(Index("log"), "what failed\n");
    ExpectFound("A", "quince");
    EXPECT_EQ(ReadWholeFile(Index("log")), "what failed\n");
}

// The engine goes on when its search was killed: the next search waits for it, and nothing is pulled away under it.
TEST_F(ProgramIndex, StaysLockedByTheEngineThatAKilledSearchLeftAtWork)
{
    const std::string gate = home_.Path("gate");
    ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
    // both ends, so that nobody waits for the other to open it; its end lets the engine go on, too
    const Descriptor opened(open(gate.c_str(), O_RDWR | O_CLOEXEC));
    ASSERT_TRUE(opened.IsOpen());
    Replace("recollindex", "echo > '" + home_.Path("started") + "'\nread -r word < '" + gate +
                               "'\nPATH=$REAL_PATH\nrecollindex \"$@\"\n");
    WriteNote("B", "medlar");
    const std::unique_ptr<Process> search = StartReplaced({"search", "medlar"});
    ASSERT_TRUE(Eventually([&] { return fs::exists(home_.Path("started")); }));
    search->Signal(SIGKILL);
    EXPECT_EQ(search->Wait().exit, 128 + SIGKILL);

    {  // a lock that is got here, against what is expected, must not keep the next search waiting
        const Descriptor lock(
            open(Index("").substr(0, Index("").size() - 1).append(".lock").c_str(), O_RDWR | O_CLOEXEC));
        ASSERT_TRUE(lock.IsOpen());
        EXPECT_EQ(flock(lock.Get(), LOCK_EX | LOCK_NB), -1);
        EXPECT_EQ(errno, EWOULDBLOCK);
    }
    const std::unique_ptr<Process> next = home_.Start({"search", "medlar"});
    ASSERT_EQ(write(opened.Get(), "go\n", 3), 3);
    const ProgramResult result = next->Wait();
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("Pavex:///B"));
    EXPECT_TRUE(IsKept());
}

TEST_F(ProgramIndex, TellsOnATerminalThatNotesAreReadAndTakesThatBackBeforeTheResults)
{
    const std::string told = "reading new and changed notes";
    const Lines command = {kProgram, "--home", home_.Path("home"), "search", "quince"};
    EXPECT_THAT(RunOnTerminal({}, command), Not(HasSubstr(told))) << "nothing changed";
    WriteNote("B", "medlar");
    EXPECT_THAT(RunOnTerminal({}, command), testing::ContainsRegex("^[^\n]*" + told + "[^\n]*\r\x1b\\[K1\\. note"));
    fs::remove_all(Index("xapiandb"));
    EXPECT_THAT(RunOnTerminal({}, command), HasSubstr(told)) << "it is built anew";
    WriteNote("C", "medlar");
    EXPECT_THAT(home_.Run({"search", "quince"}).err, testing::IsEmpty());
}

// ---- where nothing can be written ---------------------------------------------------------------

// The administrator may write everywhere, and becomes another user for this.
class ProgramReadOnlyIndex : public ProgramIndex {
protected:
    void SetUp() override
    {
        ProgramIndex::SetUp();
        if (geteuid() != 0)
            return;
        fs::permissions(home_.Path(""), fs::perms(0755));
        another_ = {"setpriv", "--reuid=12345", "--regid=12345", "--clear-groups"};
        if (RunAs({"sh", "-c", std::string("test -x ") + kProgram + " -a -x '" + home_.Path("") + "'"}).exit != 0)
            GTEST_SKIP() << "other users may not reach the program or the folder for temporary files";
        for (const std::string& path : Paths())
            EXPECT_EQ(chown(path.c_str(), 12345, 12345), 0);
    }
    void TearDown() override { SetPermissions(fs::perms(0700)); }
    // Of all folders and files of the home.
    void SetPermissions(fs::perms permissions)
    {
        for (const std::string& path : Paths())
            fs::permissions(path, permissions);
    }
    ProgramResult RunAs(const Lines& arguments)
    {
        Lines command = another_;
        command.insert(command.end(), arguments.begin(), arguments.end());
        return Process(command, home_.Path("other")).Wait();
    }
    ProgramResult Search(const std::string& word)
    {
        return RunAs({kProgram, "--home", home_.Path("home"), "search", word});
    }

private:
    Lines Paths() const
    {
        Lines paths = {home_.Path("home")};
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(home_.Path("home")))
            paths.push_back(entry.path().string());
        return paths;
    }

    Lines another_ = {"env"};
};

TEST_F(ProgramReadOnlyIndex, IsAsked)
{
    SetPermissions(fs::perms(0500));
    const ProgramResult result = Search("quince");
    EXPECT_THAT(result.out, HasSubstr("Pavex:///A"));
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.err, testing::StartsWith("pavex: cannot keep the results for pavex open: "));
}

TEST_F(ProgramReadOnlyIndex, IsAskedWhenItIsOldAndThatIsSaid)
{
    WriteNote("B", "medlar");
    SetPermissions(fs::perms(0500));
    const ProgramResult result = Search("quince");
    EXPECT_THAT(result.out, HasSubstr("Pavex:///A"));
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.err, HasSubstr("the search index is not up to date: "));
}

TEST_F(ProgramReadOnlyIndex, IsLeftAloneWhenItIsDamaged)
{
    Garble();
    SetPermissions(fs::perms(0500));
    const ProgramResult result = Search("quince");
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, HasSubstr("cannot be read, nor built anew: Permission denied"));
    EXPECT_TRUE(IsKept());
}

}  // namespace
}  // namespace pavex
