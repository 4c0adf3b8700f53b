// tests/client/app/program_refusal_test.cpp: the built program where it must refuse, or give way to another.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <csignal>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;

constexpr const char* kProgram = TORVIK_BINARY_DIR "/bin/pavex";

class ProgramRefusal : public testing::Test {
protected:
    std::string IniPath() const { return home_.Path("home/pavex.ini"); }
    std::string Ini() const { return ReadWholeFile(IniPath()); }
    size_t CountNotes(const std::string& database)
    {
        const ProgramResult list = home_.Run({"note", "list", "--db", database});
        EXPECT_EQ(list.exit, 0) << list.err;
        return static_cast<size_t>(std::count(list.out.begin(), list.out.end(), '\n'));
    }
    ProgramResult PutLines(const std::string& lines)
    {
        WriteWholeFile(home_.Path("n.json"), lines);
        return home_.Run({"note", "put", "--db", "n.vlt", home_.Path("n.json")});
    }

    ProgramHome home_;
};

// ---- settings that are not written -----------------------------------------------------------

TEST_F(ProgramRefusal, SettingsThatAreReadOnlyAreNamedAndLeftAlone)
{
    home_.ImportSample();
    const std::string before = Ini();
    ASSERT_EQ(chmod(IniPath().c_str(), 0400), 0);
    ExpectOneClearLine(home_.Run({"settings", "--frequency", "17", "--yes"}), 1, {IniPath(), "read-only"});
    EXPECT_EQ(Ini(), before);
}

TEST_F(ProgramRefusal, AnIndexWhoseProgressIsNotSavedFails)
{
    home_.ImportSample();
    const std::string before = Ini();
    ASSERT_EQ(chmod(IniPath().c_str(), 0400), 0);
    const ProgramResult index = home_.Run({"index", "--full-speed"});
    EXPECT_EQ(index.exit, 1);
    EXPECT_EQ(index.err, "pavex: the settings file " + IniPath() + " could not be written: it is read-only\n");
    EXPECT_THAT(index.out, HasSubstr("mail.vlt: "));
    EXPECT_EQ(Ini(), before);
    ASSERT_EQ(chmod(IniPath().c_str(), 0600), 0);
    EXPECT_EQ(home_.Index()["status"], 0) << "done again, not believed";
}

TEST_F(ProgramRefusal, SwitchingOnSavesNothingWhenItsNoticeIsDeclined)
{
    (void)home_.Put("mail.vlt", R"({"items":{}})");
    const ProgramResult declined = home_.Run({"settings", "--enable", "--frequency", "17", "--no"});
    EXPECT_EQ(declined.exit, 1);
    EXPECT_THAT(declined.err, HasSubstr("pavex: "));
    EXPECT_FALSE(fs::exists(IniPath()));
    EXPECT_EQ(home_.RunJson({"status", "--json"})["enabled"], false);
}

// ---- One client at a time --------------------------------------------------------------------

TEST_F(ProgramRefusal, NobodyIndexesAHomeWhereAnotherRuns)
{
    home_.ImportSample();
    const std::string log = home_.Path("home/log/pavex.log");
    ASSERT_FALSE(fs::exists(log));
    const std::unique_ptr<Process> running = home_.Start({"run"});
    ASSERT_TRUE(Eventually([&log] { return fs::exists(log) && fs::file_size(log) != 0; })) << "its thread is logged";
    for (const char* other : {"index", "run"})
        ExpectOneClearLine(home_.Run({other}), 1, {"another pavex run or pavex index", home_.Path("home/data")});
    EXPECT_EQ(home_.RunJson({"status", "--json"})["enabled"], true) << "only indexing is exclusive";
    running->Signal(SIGTERM);
    EXPECT_EQ(running->Wait().exit, 0);
    EXPECT_EQ(home_.Index()["status"], 0);
}

TEST_F(ProgramRefusal, NobodyRunsInAHomeThatIsBeingIndexed)
{
    home_.ImportSample();
    const std::unique_ptr<Process> indexing = home_.Start({"index"});
    ASSERT_TRUE(Eventually([this] { return home_.CountMetafiles() != 0; }));
    for (const char* other : {"run", "index"})
        ExpectOneClearLine(home_.Run({other}), 1, {"another pavex run or pavex index", home_.Path("home/data")});
    indexing->Signal(SIGINT);
    EXPECT_EQ(indexing->Wait().exit, 0);
}

TEST_F(ProgramRefusal, AnIndexWithoutItsThreadFails)
{
    home_.ImportSample();
    Process index({"env", "LD_PRELOAD=" TORVIK_BINARY_DIR "/lib/libno_threads.so",
                   "ASAN_OPTIONS=verify_asan_link_order=0", kProgram, "--home", home_.Path("home"), "index"},
                  home_.Path("index"));
    ExpectOneClearLine(index.Wait(), 1, {"thread could not be started"});
    EXPECT_EQ(home_.CountMetafiles(), 0U);
    EXPECT_EQ(home_.Index()["status"], 0);
}

// ---- Paths -----------------------------------------------------------------------------------

TEST_F(ProgramRefusal, ADatabaseOnAServerIsNotLookedForOnThisMachine)
{
    const std::string path = "/" + home_.Path("n.vlt");
    WriteWholeFile(home_.Path("n.json"), R"({"items":{}})");
    ExpectOneClearLine(home_.Run({"note", "put", "--db", path, home_.Path("n.json")}), 1, {path, "server"});
    ExpectOneClearLine(home_.Run({"note", "list", "--db", path}), 1, {path, "server"});
    const ProgramResult import = home_.Run({"import", "--into", path, TORVIK_SOURCE_DIR "/samples/mail"});
    EXPECT_EQ(import.exit, 1);
    EXPECT_THAT(import.err, testing::AllOf(HasSubstr(path), HasSubstr("server")));
    EXPECT_THAT(import.out, StartsWith("0 added, "));
    EXPECT_FALSE(fs::exists(path));
}

TEST_F(ProgramRefusal, ADataDirectoryWithATooLongPathIsNamed)
{
    const std::string home = home_.Path("h" + std::string(120, 'x') + "/" + std::string(120, 'y'));
    Process status({kProgram, "--home", home, "status"}, home_.Path("status"));
    ExpectOneClearLine(status.Wait(), 1, {home + "/data", "255"});
    EXPECT_FALSE(fs::exists(home));
}

// ---- note put --------------------------------------------------------------------------------

TEST_F(ProgramRefusal, ANoteWithATooLongItemNameIsNamedByItsLineAndTheOthersComeIn)
{
    const auto named = [](size_t bytes) { return R"({"items":{")" + std::string(bytes, 'n') + R"(":"x"}})" + "\n"; };
    const ProgramResult put = PutLines(named(1) + named(256) + named(255));
    EXPECT_EQ(put.exit, 1);
    EXPECT_THAT(put.err, StartsWith("pavex: " + home_.Path("n.json") + ":2: items has an item named"));
    EXPECT_EQ(std::count(put.err.begin(), put.err.end(), '\n'), 1);
    EXPECT_EQ(CountNotes("n.vlt"), 2U);
}

TEST_F(ProgramRefusal, ABadFirstLineIsNamedAndTheOthersComeIn)
{
    for (const char* bad : {"{\"items\":}", "]", "note", "{\"items\":{}} {\"items\":{}}"}) {
        SCOPED_TRACE(bad);
        fs::remove(home_.Path("home/data/n.vlt"));
        const ProgramResult put = PutLines(std::string(bad) + "\n{\"items\":{}}\n{\"items\":{}}\n");
        EXPECT_EQ(put.exit, 1);
        EXPECT_THAT(put.err, StartsWith("pavex: " + home_.Path("n.json") + ":1: "));
        EXPECT_EQ(std::count(put.err.begin(), put.err.end(), '\n'), 1) << put.err;
        EXPECT_EQ(CountNotes("n.vlt"), 2U);
    }
}

TEST_F(ProgramRefusal, ShowsNamesThatATerminalWouldObeyAsTheyAre)
{
    const std::string name = "a\033[31m\xC2\x9B\xE2\x80\xAE.vcf";
    WriteWholeFile(home_.Path(name), "no card");
    for (const char* option : {"--prune", "--json"}) {
        const ProgramResult import = home_.Run({"import", option, home_.Path(name)});
        for (const char* sign : {"\033", "\xC2\x9B", "\xE2\x80\xAE"})
            EXPECT_THAT(import.out + import.err, Not(HasSubstr(sign)));
        EXPECT_THAT(import.out + import.err, HasSubstr(".vcf"));
    }
    ExpectOneClearLine(home_.Run({"watch", home_.Path("gone\033\n")}), 1, {"gone", "cannot be watched"});
}

}  // namespace
}  // namespace pavex
