// tests/client/app/program_explain_test.cpp: why a note is found or not, with the real program, add-in and engine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

constexpr const char* kNotes =
    R"({"items": {"Form": "Memo", "Subject": "Zebra", "From": "a@b", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
{"items": {"Form": "Memo", "Subject": "Unsent"}}
{"items": {"Form": "Person", "FullName": "Grete"}}
{"items": {"Form": "Appointment", "Subject": "Never"}}
{"items": {"$Title": "Mask"}, "class": "form"}
{"items": {"Form": "MainTopic", "Body": {"richtext": ["A topic"]}}}
{"items": {"Form": "Task", "Subject": "No day"}}
{"items": {"Form": "Quotation", "Body": {"richtext": ["Beams of steel"]}}}
{"items": {"Form": "Person", "FullName": "Sealed"}, "sealed": true}
)";

class ProgramExplain : public testing::Test {
protected:
    void MakeIndexed()
    {
        home_.Put("mail.vlt", kNotes);
        home_.Enable();
        Index();
    }
    void Index()
    {
        const ProgramResult result = home_.Run({"index", "--full-speed"});
        EXPECT_EQ(result.exit, 0) << result.err;
    }
    Json Explain(const std::vector<std::string>& arguments)
    {
        std::vector<std::string> command = {"explain", "--json"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return home_.RunJson(command);
    }
    Json ExplainId(int id) { return Explain({"--db", "mail.vlt", std::to_string(id)}); }
    void ExpectReason(int id, bool isFindable, const std::string& reason)
    {
        const Json json = ExplainId(id);
        EXPECT_EQ(json["findable"], isFindable) << json;
        EXPECT_EQ(json["reason"], reason) << json;
        EXPECT_THAT(json["text"].get<std::string>(), StartsWith(isFindable ? "Findable" : "Not findable: "));
    }
    std::string Url(int id)
    {
        return home_.RunJson({"note", "get", "--db", "mail.vlt", "--json", std::to_string(id)})["url"];
    }
    std::string FileOf(const std::string& kind)
    {
        for (const auto& [name, content] : home_.ReadMetafiles())
            if (name.ends_with(kind))
                return home_.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight/") + name;
        ADD_FAILURE() << "no " << kind;
        return {};
    }
    void Settings(const std::string& lines)
    {
        std::ofstream(home_.Path("home/pavex.ini"), std::ios::app) << "\n" << lines << "\n";
    }

    ProgramHome home_;
};

TEST_F(ProgramExplain, SaysThatTheDatabaseIsNotIndexed)
{
    home_.Put("mail.vlt", kNotes);
    ExpectReason(1, false, "database-not-indexed");
    EXPECT_THAT(ExplainId(1)["text"].get<std::string>(), HasSubstr("pavex settings --add "));
    EXPECT_EQ(ExplainId(1)["metafile_state"], "none");
}

TEST_F(ProgramExplain, FollowsANoteFromItsComingToItsRemoval)
{
    home_.Put("mail.vlt", kNotes);
    home_.Enable();
    ExpectReason(1, false, "waiting");
    Index();
    ExpectReason(1, true, "indexed");
    const Json found = ExplainId(1);
    EXPECT_EQ(found["kind"], "mail");
    EXPECT_EQ(found["title"], "Zebra");
    EXPECT_EQ(found["metafile_state"], "good");
    EXPECT_EQ(found["metafile"], FileOf("vPavexMessage"));
    EXPECT_EQ(found["in_search_index"], true);
    EXPECT_EQ(found["indexed_database"], true);
    EXPECT_EQ(found["text"], "Findable as mail.");

    const Json note = home_.RunJson({"note", "get", "--db", "mail.vlt", "--json", "1"});
    home_.Put("mail.vlt", note.dump());
    ExpectReason(1, true, "waiting");
    Index();
    ExpectReason(1, true, "indexed");
    EXPECT_EQ(home_.Run({"note", "delete", "--db", "mail.vlt", "1"}).exit, 0);
    ExpectReason(1, true, "deleted");
    Index();
    ExpectReason(1, false, "deleted");
}

TEST_F(ProgramExplain, NamesWhatLeavesANoteOut)
{
    MakeIndexed();
    ExpectReason(2, false, "draft");
    ExpectReason(4, false, "no-dates");
    ExpectReason(5, false, "no-document");
    ExpectReason(6, true, "indexed");
    EXPECT_EQ(ExplainId(6)["kind"], "note") << "discussions are switched off";
    ExpectReason(7, false, "no-day");
    Settings("GoogleNoIndexAll=1");
    ExpectReason(8, true, "other-notes");
    EXPECT_EQ(ExplainId(8)["metafile_state"], "left-over");
    EXPECT_EQ(home_.Run({"check", "--repair"}).exit, 0);
    ExpectReason(8, false, "other-notes");
}

TEST_F(ProgramExplain, SaysThatTheSealedPartIsNotSearched)
{
    MakeIndexed();
    EXPECT_THAT(ExplainId(9)["text"].get<std::string>(), HasSubstr("--encrypted on"));
    Settings("GDSIndexEncrypted=1");
    EXPECT_THAT(ExplainId(9)["text"].get<std::string>(), Not(HasSubstr("--encrypted on")));
}

TEST_F(ProgramExplain, NamesWhatIsWrongWithTheMetafile)
{
    MakeIndexed();
    const std::string contact = FileOf("vPavexContact");
    const std::string content = ReadWholeFile(contact);
    const int id = content.find("Grete") != content.npos ? 3 : 9;
    WriteWholeFile(contact, "");
    ExpectReason(id, false, "metafile-damaged");
    fs::remove(contact);
    ExpectReason(id, false, "metafile-missing");
    WriteWholeFile(fs::path(contact).replace_extension("vPavexTask"), content);
    EXPECT_EQ(ExplainId(id)["metafile_state"], "left-over");
    EXPECT_EQ(home_.Run({"check", "--repair"}).exit, 0);
    Index();
    ExpectReason(id, true, "indexed");
}

TEST_F(ProgramExplain, NamesWhatKeepsAMetafileFromBeingWritten)
{
    MakeIndexed();
    const std::string folder = fs::path(FileOf("vPavexContact")).parent_path();
    fs::rename(folder, folder + ".away");
    WriteWholeFile(folder, "");
    ExpectReason(1, false, "metafile-missing");
    EXPECT_THAT(ExplainId(1)["text"].get<std::string>(),
                HasSubstr("Its metafile cannot be written: " + folder + ": Not a directory. "));
    fs::remove(folder);
    EXPECT_THAT(ExplainId(1)["text"].get<std::string>(), Not(HasSubstr("cannot be written")));
    fs::remove_all(folder + ".away");
    EXPECT_EQ(home_.Run({"check", "--repair"}).exit, 0);
    Index();
    ExpectReason(1, true, "indexed");
}

TEST_F(ProgramExplain, SaysWhyNoPassWillCome)
{
    home_.Put("mail.vlt", kNotes);
    home_.Enable();
    EXPECT_EQ(home_.Run({"settings", "--disable"}).exit, 0);
    EXPECT_THAT(ExplainId(1)["text"].get<std::string>(), HasSubstr("No pass will come: indexing is switched off"));
    WriteWholeFile(home_.Path("home/policy.ini"), "[DesktopSets]\nLocked=GDSIndexEnabled\n");
    EXPECT_THAT(ExplainId(1)["text"].get<std::string>(), HasSubstr("policy"));
}

TEST_F(ProgramExplain, SaysThatTheSearchEngineCannotTell)
{
    MakeIndexed();
    const auto explain = [this](const std::vector<std::string>& options) {
        std::vector<std::string> command = {"env",    "PATH=/nowhere",    TORVIK_BINARY_DIR "/bin/pavex",
                                            "--home", home_.Path("home"), "explain"};
        command.insert(command.end(), options.begin(), options.end());
        command.insert(command.end(), {"--db", "mail.vlt", "1"});
        const ProgramResult result = Process(command, home_.Path("without")).Wait();
        EXPECT_EQ(result.exit, 0) << result.err;
        return result.out;
    };
    const Json json = Json::parse(explain({"--json"}));
    EXPECT_EQ(json["findable"], false);
    EXPECT_EQ(json["reason"], "engine-unavailable");
    EXPECT_EQ(json["in_search_index"], nullptr);
    EXPECT_EQ(json["metafile_state"], "good");
    const std::string text = explain({});
    EXPECT_THAT(text, StartsWith("Not findable now: the search engine Recoll is not installed"));
    EXPECT_THAT(text, HasSubstr("install the package recollcmd. Its metafile is there.\n"));
    ExpectReason(1, true, "indexed");
}

TEST_F(ProgramExplain, KnowsTheHistory)
{
    MakeIndexed();
    ASSERT_EQ(home_.Run({"open", Url(1)}).exit, 0);
    const std::vector<std::string> entry = {"--db", "bookmark.vlt", "1"};
    EXPECT_EQ(Explain(entry)["reason"], "waiting");
    Index();
    EXPECT_EQ(Explain(entry)["reason"], "indexed");
    EXPECT_EQ(Explain(entry)["kind"], "history");
    Settings("GDSNoIndexHistory=1");
    EXPECT_EQ(Explain(entry)["reason"], "history-off");
    EXPECT_EQ(Explain(entry)["findable"], true) << "nothing has removed it";
}

TEST_F(ProgramExplain, TakesAUrlAUniversalIdOrANumberOfTheLastSearch)
{
    MakeIndexed();
    const std::string url = Url(1);
    EXPECT_EQ(Explain({url})["noteid"], 1);
    EXPECT_EQ(Explain({url.substr(url.size() - 32)})["noteid"], 1);
    EXPECT_EQ(Explain({"--db", "mail.vlt", url.substr(url.size() - 32)})["noteid"], 1);
    ASSERT_EQ(home_.Run({"search", "zebra"}).exit, 0);
    EXPECT_EQ(Explain({"1"})["url"], url);
    const ProgramResult text = home_.Run({"explain", "1"});
    EXPECT_EQ(text.exit, 0);
    EXPECT_THAT(text.out, StartsWith("Findable as mail.\n"));
    EXPECT_THAT(text.out, HasSubstr("note 1, Zebra"));
    EXPECT_THAT(text.out, HasSubstr("the search engine has it"));
}

TEST_F(ProgramExplain, RefusesWhatIsNoNoteInOneLine)
{
    MakeIndexed();
    const std::string nobodys = "Pavex:///0123456789ABCDEF//0123456789ABCDEF8025000000000002";
    ExpectOneClearLine(home_.Run({"explain", "7"}), 1, {"last search has no result 7"});
    ExpectOneClearLine(home_.Run({"explain", "zebra"}), 1, {"zebra is no address"});
    ExpectOneClearLine(home_.Run({"explain", ""}), 1, {"is no address"});
    ExpectOneClearLine(home_.Run({"explain", nobodys}), 1, {"replica id 0123456789ABCDEF"});
    ExpectOneClearLine(home_.Run({"explain", nobodys.substr(nobodys.size() - 32)}), 1, {"no database here"});
    ExpectOneClearLine(home_.Run({"explain", "--db", "mail.vlt", "99"}), 1, {"mail.vlt", "no such note"});
    ExpectOneClearLine(home_.Run({"explain", "--db", "mail.vlt", "zebra"}), 1, {"mail.vlt", "zebra"});
    ExpectOneClearLine(home_.Run({"explain", "--db", "none.vlt", "1"}), 1, {"none.vlt", "no such file"});
    EXPECT_EQ(home_.Run({"explain"}).exit, 2);
}

TEST_F(ProgramExplain, TellsOfADamagedNote)
{
    MakeIndexed();
    std::string bytes = ReadWholeFile(home_.Path("home/data/mail.vlt"));
    const size_t at = bytes.find("Zebra");
    ASSERT_NE(at, bytes.npos);
    WriteWholeFile(home_.Path("home/data/mail.vlt"), bytes.replace(at, 5, "zebrA"));
    ExpectReason(1, true, "note-damaged");
}

TEST_F(ProgramExplain, ShowsWhatTheLogTellsOfTheDatabase)
{
    MakeIndexed();
    const std::string path = home_.Path("home/data/mail.vlt");
    fs::rename(path, home_.Path("away.vlt"));
    EXPECT_EQ(home_.Run({"index", "--full-speed"}).exit, 1);
    fs::rename(home_.Path("away.vlt"), path);
    const Json log = ExplainId(1)["log"];
    ASSERT_EQ(log.size(), 1U);
    EXPECT_THAT(log[0].get<std::string>(), HasSubstr("(status 259)"));
}

// What explain says holds for every note: it is found by the search, or is not.
TEST_F(ProgramExplain, AgreesWithTheSearch)
{
    MakeIndexed();
    for (const auto& [id, word] : std::vector<std::pair<int, std::string>>{
             {1, "zebra"}, {2, "unsent"}, {3, "grete"}, {4, "never"}, {6, "topic"}, {7, "day"}, {8, "steel"}}) {
        const std::string out = home_.Run({"search", "--json", word}).out;
        EXPECT_EQ(out.find(Url(id)) != out.npos, ExplainId(id)["findable"].get<bool>()) << word;
    }
}

}  // namespace
}  // namespace pavex
