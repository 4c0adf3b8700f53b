// tests/client/app/program_test.cpp: the built program as users run it: commands, their JSON and their exit statuses.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <set>
#include <thread>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;

constexpr const char* kSample = TORVIK_SOURCE_DIR "/samples/mail";

std::vector<std::string> KeysOf(const Json& object)
{
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.items())
        keys.push_back(key);
    return keys;
}

using Keys = std::vector<std::string>;

// Ten mails, or as many as asked for, numbered from `first`.
std::string Mails(int first, int count)
{
    std::string lines;
    for (int i = first; i < first + count; ++i)
        lines += R"({"items":{"Form":"Memo","Subject":"Mail )" + std::to_string(i) +
                 R"(","From":"ann@example.org","SendTo":["bo@example.org"],)"
                 R"("PostedDate":{"time":"2007-03-05T14:00:00Z"},"Body":{"richtext":["Text"]}}})" +
                 "\n";
    return lines;
}

// Runs Python with the arguments; its output when it failed.
testing::AssertionResult Python(const ProgramHome& home, std::vector<std::string> arguments)
{
    arguments.insert(arguments.begin(), "python3");
    Process process(arguments, home.Path("python"));
    const ProgramResult result = process.Wait();
    if (result.exit == 0)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << result.out << result.err;
}

class ProgramTest : public testing::Test {
protected:
    ProgramHome home_;
};

// ---- import ----------------------------------------------------------------------------------

TEST_F(ProgramTest, ImportReportsWhatItDidAndFindsNothingNewTheSecondTime)
{
    const Json first = home_.RunJson({"import", "--json", kSample});
    EXPECT_EQ(KeysOf(first), (Keys{"added", "updated", "unchanged", "removed", "rejected"}));
    EXPECT_GE(first["added"].get<int>(), 60);
    EXPECT_EQ(first["rejected"], Json::array());
    const Json second = home_.RunJson({"import", "--json", kSample});
    EXPECT_EQ(second["unchanged"], first["added"]);
    EXPECT_EQ(second["added"], 0);
    EXPECT_EQ(second["updated"], 0);
}

TEST_F(ProgramTest, ImportPrunesNotesOfEntriesThatAreGone)
{
    fs::create_directories(home_.Path("mail"));
    for (const char* name : {"a", "b"})
        WriteWholeFile(home_.Path(std::string("mail/") + name + ".eml"),
                       std::string("From: ann@example.org\nSubject: ") + name + "\nMessage-ID: <" + name +
                           "@x>\n\nText\n");
    ASSERT_EQ(home_.RunJson({"import", "--json", home_.Path("mail")})["added"], 2);
    fs::remove(home_.Path("mail/a.eml"));
    EXPECT_EQ(home_.RunJson({"import", "--json", home_.Path("mail")})["removed"], 0);
    EXPECT_EQ(home_.RunJson({"import", "--json", "--prune", home_.Path("mail")})["removed"], 1);
    const ProgramResult list = home_.Run({"note", "list", "--db", "mail.vlt", "--json"});
    EXPECT_EQ(Json::parse(list.out)["subject"], "b");
}

TEST_F(ProgramTest, ImportTellsWhichSourceCannotBeReadAndWhy)
{
    const ProgramResult gone = home_.Run({"import", home_.Path("none.mbox")});
    EXPECT_EQ(gone.exit, 1);
    EXPECT_THAT(gone.err, HasSubstr("none.mbox"));
}

// ---- note ------------------------------------------------------------------------------------

TEST_F(ProgramTest, NotesArePutListedGotAndDeleted)
{
    const std::string unid = "001122334455667700257291002BF200";
    WriteWholeFile(home_.Path("n.json"), R"({"items":{"Form":"Memo","Subject":"Plums"},)"
                                         R"("created":"2007-03-01T08:00:00Z","modified":"2007-03-02T09:30:00Z",)"
                                         R"("unid":")" +
                                             unid + R"("})");
    const Json put = home_.RunJson({"note", "put", "--db", "n.vlt", "--json", home_.Path("n.json")});
    EXPECT_EQ(KeysOf(put), (Keys{"noteid", "unid", "url"}));
    EXPECT_EQ(put["unid"], unid);
    EXPECT_THAT(put["url"].get<std::string>(), testing::MatchesRegex("Pavex:///[0-9A-F]{16}//" + unid));

    const Json listed = home_.RunJson({"note", "list", "--db", "n.vlt", "--json"});
    EXPECT_EQ(listed.dump(), Json({{"noteid", put["noteid"]},
                                   {"unid", unid},
                                   {"modified", "2007-03-02T09:30:00Z"},
                                   {"form", "Memo"},
                                   {"subject", "Plums"}})
                                 .dump());
    const Json got = home_.RunJson({"note", "get", "--db", "n.vlt", "--json", unid});
    EXPECT_EQ(got.dump(), Json({{"items", {{"Form", "Memo"}, {"Subject", "Plums"}}},
                                {"created", "2007-03-01T08:00:00Z"},
                                {"modified", "2007-03-02T09:30:00Z"},
                                {"unid", unid},
                                {"class", "document"},
                                {"sealed", false},
                                {"noteid", put["noteid"]},
                                {"url", put["url"]}})
                              .dump());

    WriteWholeFile(home_.Path("again.json"), got.dump());
    EXPECT_EQ(home_.RunJson({"note", "put", "--db", "n.vlt", "--json", home_.Path("again.json")}), put);
    EXPECT_EQ(home_.Run({"note", "delete", "--db", "n.vlt", unid}).exit, 0);
    ExpectOneClearLine(home_.Run({"note", "get", "--db", "n.vlt", unid}), 1, {"n.vlt", unid});
    EXPECT_EQ(home_.Run({"note", "list", "--db", "n.vlt"}).out, "");
}

TEST_F(ProgramTest, NotesThatCannotBeTakenAreNamedByLineAndTheOthersComeIn)
{
    WriteWholeFile(home_.Path("n.json"), R"({"items":{"A":"1"}})"
                                         "\n{\"items\":7}\n"
                                         R"({"items":{"A":"3"}})");
    const ProgramResult put = home_.Run({"note", "put", "--db", "n.vlt", home_.Path("n.json")});
    EXPECT_EQ(put.exit, 1);
    EXPECT_EQ(put.err, "pavex: " + home_.Path("n.json") + ":2: items is not an object\n");
    const std::string listed = home_.Run({"note", "list", "--db", "n.vlt"}).out;
    EXPECT_EQ(std::count(listed.begin(), listed.end(), '\n'), 2);
}

// ---- settings and status ---------------------------------------------------------------------

TEST_F(ProgramTest, SettingsShowEveryControlAsJson)
{
    home_.ImportSample();
    const Json shown = home_.RunJson({"settings", "--show", "--json"});
    EXPECT_EQ(KeysOf(shown), Keys{"controls"});
    const Json& enable = shown["controls"]["3382"];
    EXPECT_EQ(KeysOf(enable), (Keys{"kind", "text", "checked", "enabled", "visible"}));
    EXPECT_EQ(enable["kind"], "check");
    EXPECT_EQ(enable["checked"], true);
    const Json& list = shown["controls"]["3383"];
    EXPECT_EQ(list["kind"], "list");
    ASSERT_EQ(list["items"].size(), 1U);
    EXPECT_THAT(list["items"][0].get<std::string>(), HasSubstr("mail.vlt"));
}

TEST_F(ProgramTest, SettingsKeepWhatTheyWereToldTo)
{
    home_.ImportSample();
    ASSERT_EQ(home_.Run({"settings", "--frequency", "17", "--drafts", "on", "--yes"}).exit, 0);
    const Json shown = home_.RunJson({"settings", "--show", "--json"})["controls"];
    EXPECT_EQ(shown["3395"]["text"], "17");
    EXPECT_EQ(shown["3389"]["checked"], true);
    ASSERT_EQ(home_.Run({"settings", "--disable", "--yes"}).exit, 0);
    EXPECT_EQ(home_.RunJson({"settings", "--show", "--json"})["controls"]["3382"]["checked"], false);
}

TEST_F(ProgramTest, StatusTellsWhetherHowFarAndWhyNot)
{
    const Json fresh = home_.RunJson({"status", "--json"});
    EXPECT_EQ(KeysOf(fresh), (Keys{"enabled", "reason", "databases", "log"}));
    EXPECT_EQ(fresh["enabled"], false);
    EXPECT_EQ(fresh["reason"], "indexing is switched off in the settings");

    home_.ImportSample();
    (void)home_.Index();
    const Json indexed = home_.RunJson({"status", "--json"});
    EXPECT_EQ(indexed["enabled"], true);
    EXPECT_EQ(indexed["reason"], nullptr);
    ASSERT_EQ(indexed["databases"].size(), 1U);
    EXPECT_EQ(KeysOf(indexed["databases"][0]), (Keys{"slot", "path", "since", "recovery"}));
    EXPECT_TRUE(indexed["databases"][0]["since"].is_string());
    EXPECT_EQ(indexed["databases"][0]["recovery"], nullptr);
    EXPECT_FALSE(indexed["log"].empty());
}

TEST_F(ProgramTest, ThePolicyOfTheAdministratorKeepsIndexingOff)
{
    home_.ImportSample();
    WriteWholeFile(home_.Path("home/policy.ini"), "[DesktopSets]\nLocked=GDSIndexEnabled\nGDSIndexEnabled=0\n");
    ExpectOneClearLine(home_.Run({"index", "--full-speed"}), 1, {"policy"});
    EXPECT_THAT(home_.RunJson({"status", "--json"})["reason"].get<std::string>(), HasSubstr("policy"));
    EXPECT_EQ(home_.ReadMetafiles().size(), 0U);
}

// ---- index -----------------------------------------------------------------------------------

TEST_F(ProgramTest, EveryMessageOfTheSampleIsOneMetafileThatAgreesWithPython)
{
    home_.ImportSample();
    ASSERT_EQ(home_.Run({"settings", "--drafts", "on", "--yes"}).exit, 0);
    const Json report = home_.RunJson({"index", "--full-speed", "--json"});
    EXPECT_EQ(KeysOf(report), (Keys{"databases", "history", "stopped"}));
    const Json& mail = report["databases"].at(0);
    EXPECT_EQ(KeysOf(mail),
              (Keys{"slot", "path", "indexed", "skipped", "errors", "blank_failures", "deleted", "status"}));
    EXPECT_EQ(mail["indexed"].get<size_t>(), home_.ReadMetafiles().size());
    EXPECT_EQ(mail["errors"], 0);
    EXPECT_EQ(mail["status"], 0);
    EXPECT_EQ(home_.OtherFiles(), std::vector<std::string>());
    EXPECT_TRUE(
        Python(home_, {TORVIK_SOURCE_DIR "/tests/client/app/compare_with_email.py",
                       home_.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight"),
                       TORVIK_SOURCE_DIR "/tests/client/import/sample_comparison/expected_from_python.py", kSample}));
}

TEST_F(ProgramTest, ASecondPassWritesNothing)
{
    home_.ImportSample();
    EXPECT_EQ(home_.Index()["status"], 0);
    const MetafileTimes before = home_.ReadTimes();
    const Json second = home_.Index();
    EXPECT_EQ(second["status"], 572);
    EXPECT_EQ(second["indexed"], 0);
    EXPECT_EQ(home_.ReadTimes(), before);
}

TEST_F(ProgramTest, OneChangedNoteIsOneMetafileWritten)
{
    const std::vector<uint32_t> ids = home_.Put("mail.vlt", Mails(0, 10));
    home_.Enable();
    (void)home_.Index();
    const MetafileTimes before = home_.ReadTimes();
    Json note = home_.RunJson({"note", "get", "--db", "mail.vlt", "--json", std::to_string(ids[4])});
    note["items"]["Subject"] = "Changed";
    (void)home_.Put("mail.vlt", note.dump());
    EXPECT_EQ(home_.Index()["indexed"], 1);
    std::vector<std::string> written;
    for (const auto& [name, time] : home_.ReadTimes())
        if (before.at(name) != time)
            written.push_back(name);
    ASSERT_EQ(written.size(), 1U);
    EXPECT_THAT(written[0], HasSubstr(note["unid"].get<std::string>()));
    EXPECT_THAT(home_.ReadMetafiles()[written[0]], HasSubstr("<string>Changed</string>"));
}

TEST_F(ProgramTest, OneDeletedNoteIsOneMetafileRemoved)
{
    const std::vector<uint32_t> ids = home_.Put("mail.vlt", Mails(0, 10));
    home_.Enable();
    (void)home_.Index();
    MetafileTimes expected = home_.ReadTimes();
    const Json note = home_.RunJson({"note", "get", "--db", "mail.vlt", "--json", std::to_string(ids[7])});
    ASSERT_EQ(std::erase_if(expected,
                            [&note](const auto& file) { return file.first.find(note["unid"]) != std::string::npos; }),
              1U);
    ASSERT_EQ(home_.Run({"note", "delete", "--db", "mail.vlt", std::to_string(ids[7])}).exit, 0);
    EXPECT_EQ(home_.Index()["deleted"], 1);
    EXPECT_EQ(home_.ReadTimes(), expected);
}

TEST_F(ProgramTest, ANoteThatBecameAnotherKindKeepsTheNewKindsMetafileOnly)
{
    const std::vector<uint32_t> ids = home_.Put("mail.vlt", Mails(0, 1));
    home_.Enable();
    (void)home_.Index();
    ASSERT_EQ(home_.ReadMetafiles().size(), 1U);
    const std::string mail = home_.ReadMetafiles().begin()->first;
    Json note = home_.RunJson({"note", "get", "--db", "mail.vlt", "--json", std::to_string(ids[0])});
    note["items"] = {
        {"Form", "Task"}, {"Subject", "Buy plums"}, {"CalendarDateTime", {{"times", {"2007-03-05T14:00:00Z"}}}}};
    (void)home_.Put("mail.vlt", note.dump());
    (void)home_.Index();
    const Metafiles files = home_.ReadMetafiles();
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files.begin()->first, fs::path(mail).replace_extension(".vPavexTask").string());
}

TEST_F(ProgramTest, CtrlCStopsInOrderAndTheNextRunGoesOn)
{
    constexpr size_t kNotes = 150;
    (void)home_.Put("mail.vlt", Mails(0, kNotes));
    home_.Enable();
    const std::unique_ptr<Process> first = home_.Start({"index", "--json"});
    ASSERT_TRUE(Eventually([this] { return home_.CountMetafiles() >= 10; }));
    first->Signal(SIGINT);
    const ProgramResult result = first->Wait();
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.err, "");
    const Json stopped = Json::parse(result.out);
    EXPECT_EQ(stopped["stopped"], true);
    EXPECT_EQ(stopped["databases"].at(0)["status"], 719);
    const size_t done = stopped["databases"].at(0)["indexed"].get<size_t>();
    const MetafileTimes before = home_.ReadTimes();
    EXPECT_EQ(before.size(), done);
    ASSERT_LT(done, kNotes);
    EXPECT_TRUE(home_.RunJson({"status", "--json"})["databases"].at(0)["recovery"].is_object());

    EXPECT_EQ(home_.Index()["indexed"].get<size_t>(), kNotes - done);
    const MetafileTimes after = home_.ReadTimes();
    EXPECT_EQ(after.size(), kNotes);
    for (const auto& [name, time] : before)
        EXPECT_EQ(after.at(name), time) << name;
    EXPECT_EQ(home_.Index()["status"], 572);
}

TEST_F(ProgramTest, RunEndsOnRequest)
{
    home_.ImportSample();
    for (const int number : {SIGINT, SIGTERM}) {
        const std::unique_ptr<Process> running = home_.Start({"run"});
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        running->Signal(number);
        const ProgramResult result = running->Wait();
        EXPECT_EQ(result.exit, 0);
        EXPECT_EQ(result.out + result.err, "");
    }
}

TEST_F(ProgramTest, IndexTellsWhatIsMissing)
{
    ExpectOneClearLine(home_.Run({"index"}), 1, {"switched off", "settings --enable"});
}

// ---- What is damaged, newer, locked or not to be written -------------------------------------

TEST_F(ProgramTest, ADamagedDatabaseIsNamedWithTheReason)
{
    home_.ImportSample();
    const std::string path = home_.Path("home/data/mail.vlt");
    for (const char* beside : {"-wal", "-shm"})
        fs::remove(path + beside);
    WriteWholeFile(path, std::string(8192, 'x'));
    ExpectOneClearLine(home_.Run({"note", "list", "--db", "mail.vlt"}), 1, {path, "not a database"});
    const ProgramResult index = home_.Run({"index", "--full-speed"});
    EXPECT_EQ(index.exit, 1);
    EXPECT_THAT(index.err, HasSubstr("mail.vlt"));
    EXPECT_EQ(ReadWholeFile(path), std::string(8192, 'x'));
}

TEST_F(ProgramTest, ANewerDatabaseIsLeftAlone)
{
    (void)home_.Put("mail.vlt", Mails(0, 1));
    const std::string path = home_.Path("home/data/mail.vlt");
    ASSERT_TRUE(Python(home_, {"-c",
                               "import sqlite3, sys\n"
                               "db = sqlite3.connect(sys.argv[1])\n"
                               "db.execute('pragma user_version = 1000')\n",
                               path}));
    ExpectOneClearLine(home_.Run({"note", "list", "--db", "mail.vlt"}), 1, {path, "newer"});
}

TEST_F(ProgramTest, ALockedDatabaseIsNamedWithTheReason)
{
    (void)home_.Put("mail.vlt", Mails(0, 1));
    const std::string path = home_.Path("home/data/mail.vlt");
    Process holder({"python3", "-c",
                    "import sqlite3, sys, time\n"
                    "db = sqlite3.connect(sys.argv[1], isolation_level=None)\n"
                    "db.execute('begin immediate')\n"
                    "print('held', flush=True)\n"
                    "time.sleep(600)\n",
                    path},
                   home_.Path("holder"));
    ASSERT_TRUE(Eventually([this] {
        return fs::exists(home_.Path("holder.out")) && ReadWholeFile(home_.Path("holder.out")) == "held\n";
    }));
    WriteWholeFile(home_.Path("n.json"), R"({"items":{}})");
    ExpectOneClearLine(home_.Run({"note", "put", "--db", "mail.vlt", home_.Path("n.json")}), 1, {path, "locked"});
    EXPECT_EQ(home_.Run({"note", "list", "--db", "mail.vlt"}).exit, 0) << "reading goes on while another writes";
}

TEST_F(ProgramTest, AFolderThatCannotBeMadeIsNamedWithTheReason)
{
    WriteWholeFile(home_.Path("file"), "");
    Process program({TORVIK_BINARY_DIR "/bin/pavex", "--home", home_.Path("file/home"), "status"},
                    home_.Path("status"));
    ExpectOneClearLine(program.Wait(), 1, {home_.Path("file/home"), "Not a directory"});
}

// ---- Use -------------------------------------------------------------------------------------

TEST_F(ProgramTest, WrongUseIsTold)
{
    const std::vector<std::vector<std::string>> kWrong = {
        {},
        {"frobnicate"},
        {"import"},
        {"import", "--as", "poem", "x"},
        {"index", "--slowly"},
        {"note"},
        {"note", "list"},
        {"note", "get", "--db", "n.vlt"},
        {"settings", "--frequency", "0"},
        {"settings", "--drafts", "maybe"},
        {"settings", "--enable", "--disable"},
        {"settings", "--yes", "--no"},
    };
    for (const std::vector<std::string>& arguments : kWrong) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const ProgramResult result = home_.Run(arguments);
        EXPECT_EQ(result.exit, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err, "");
    }
    EXPECT_FALSE(fs::exists(home_.Path("home")));
}

TEST_F(ProgramTest, HelpIsEverywhere)
{
    const std::vector<std::vector<std::string>> kCommands = {
        {},           {"import"}, {"note"}, {"note", "put"}, {"note", "get"}, {"note", "list"}, {"note", "delete"},
        {"settings"}, {"index"},  {"run"},  {"status"}};
    for (std::vector<std::string> command : kCommands) {
        command.push_back("--help");
        const ProgramResult result = home_.Run(command);
        EXPECT_EQ(result.exit, 0);
        EXPECT_THAT(result.out, HasSubstr("--help")) << testing::PrintToString(command);
    }
}

// ---- The library -----------------------------------------------------------------------------

TEST_F(ProgramTest, TheAddInExportsItsTwoEntryPointsAndNothingElse)
{
    Process nm({"nm", "--dynamic", "--defined-only", "--format=posix", TORVIK_BINARY_DIR "/lib/libtorvik.so"},
               home_.Path("nm"));
    const ProgramResult result = nm.Wait();
    ASSERT_EQ(result.exit, 0) << result.err;
    std::set<std::string> names;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);)
        names.insert(line.substr(0, line.find(' ')));
    EXPECT_EQ(names, (std::set<std::string>{"CstrhashImproved", "MainEntryPoint"}));
}

}  // namespace
}  // namespace pavex
