// tests/client/app/program_check_test.cpp: what is wrong is found and repaired, with the real program and add-in.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

// A note of every kind, and of many forms that are left out, taken for another, or on the border of either.
constexpr const char* kEveryKind =
    R"({"items": {"Form": "Memo", "Subject": "Sent", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
{"items": {"Form": "Memo", "Subject": "Draft"}}
{"items": {"Form": "Memo", "Subject": "Chat", "$IMTranscript": "1"}}
{"items": {"Form": "Memo", "Subject": "Posted as text", "PostedDate": "yesterday"}}
{"items": {"Form": "reply with history", "Subject": "Case", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
{"items": {"Form": " Memo", "Subject": "Blank"}}
{"items": {"Form": ["Memo", "Task"], "Subject": "List", "PostedDate": {"time": "2007-03-05"}}}
{"items": {"Form": "TaskNotice", "Subject": "Notice"}}
{"items": {"Subject": "Score", "From": "a", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
{"items": {"Subject": "Three", "From": "a", "SendTo": "b"}}
{"items": {"Subject": "Draft by score", "From": "a", "EnterSendTo": "b", "EnterCopyTo": "c"}}
{"items": {"Form": "Person", "Subject": "Mail all the same", "From": "a", "SendTo": "b", "ReplyTo": "c"}}
{"items": {"Form": "Appointment", "StartDateTime": {"time": "2008-03-05T14:00:00Z"}, "EndDateTime": {"time": "2008-03-05T15:00:00Z"}, "CalendarDateTime": {"times": ["2008-03-05T14:00:00Z", "2008-03-06T14:00:00Z"]}}}
{"items": {"Form": "Appointment", "StartDateTime": {"time": "2008-03-05T15:00:00Z"}, "EndDateTime": {"time": "2008-03-05T14:00:00Z"}, "CalendarDateTime": {"times": ["2008-03-05T14:00:00Z"]}}}
{"items": {"Form": "Appointment", "StartDateTime": {"time": "2008-03-05T14:00:00Z"}, "EndDateTime": {"time": "2008-03-05T14:00:00Z"}, "CalendarDateTime": {"times": ["2008-03-05T14:00:00Z"]}}}
{"items": {"Form": "Appointment", "StartDateTime": "2008-03-05 14:00:00", "EndDateTime": ["2008-03-05 15:00:00", "x"], "CalendarDateTime": ["x", "2008-03-05"]}}
{"items": {"Form": "Appointment", "StartDateTime": ["x", "2008-03-05 14:00:00"], "EndDateTime": "2008-03-05 15:00:00", "CalendarDateTime": "2008-03-05"}}
{"items": {"Form": "Appointment", "StartDateTime": {"time": "2008-03-05"}, "EndDateTime": {"time": "2008-03-05"}, "CalendarDateTime": {"time": "2008-03-05"}}}
{"items": {"Form": "Appointment", "StartDateTime": 5, "EndDateTime": "", "CalendarDateTime": {"richtext": ["2008-03-05"]}}}
{"items": {"Form": "APPOINTMENT", "Subject": "s", "From": "a", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
{"items": {"Form": "Task", "CalendarDateTime": {"times": ["2009-03-05T14:00:00Z"]}}}
{"items": {"Form": "Task", "CalendarDateTime": ""}}
{"items": {"Form": "Task", "Subject": "s", "From": "a", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
{"items": {"Form": "Person", "FullName": "Grete Hermann"}}
{"items": {"Form": "JournalEntry", "Subject": "Tagebuch"}}
{"items": {"Form": "CleanSheet", "Subject": "Page"}}
{"items": {"Form": "MainTopic", "Subject": "Topic"}}
{"items": {"Form": "Response", "Subject": "Mail by score", "From": "a", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
{"items": {"Form": "ResponseToResponse", "Subject": "Draft", "From": "a", "SendTo": "b", "CopyTo": "c"}}
{"items": {"Form": "Announcement", "Subject": "A"}, "created": "2004-06-01T10:00:00Z"}
{"items": {"Form": "HistoryListEntry", "Title": "Astray", "URL": "x"}}
{"items": {"Form": "Quotation", "Subject": "Steel"}, "modified": "2003-01-01T00:00:00.99Z"}
{"items": {"Form": "Quotation", "Subject": "Old"}, "modified": "0001-01-01T00:00:00Z"}
{"items": {"Form": "Quotation", "Subject": "Day"}, "modified": "1583-01-01T00:00:00Z"}
{"items": {"Subject": "No form"}, "modified": "9999-12-31T23:59:59Z"}
{"items": {}}
{"items": {"Form": 5}}
{"items": {"Form": "Memo", "Subject": "Sealed", "PostedDate": {"time": "2007-03-05T14:00:00Z"}, "Body": {"richtext": ["secret"]}}, "sealed": true}
{"items": {"Form": "Person", "FullName": "Sealed"}, "sealed": true}
)";

constexpr const char* kHistory =
    R"({"items": {"Form": "HistoryListEntry", "Title": "Good", "URL": {"richtext": [{"link": {"replica": "8025000000000001", "note": "0123456789ABCDEF8025000000000002", "text": "x"}}]}}}
{"items": {"Form": "HistoryListEntry", "Title": "Second counts not", "URL": {"richtext": ["text", {"link": {"replica": "8025000000000001", "note": "00000000000000008025000000000002", "text": "x"}}]}}}
{"items": {"Form": "HistoryListEntry", "Title": "Text", "URL": "http://example.org"}}
{"items": {"Form": "HistoryListEntry", "Title": "None"}}
{"items": {"Form": "Memo", "Title": "Mail", "URL": "x", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
)";

class ProgramCheck : public testing::Test {
protected:
    // pavex check; the object it prints.  Its exit status must fit.
    Json Check(std::vector<std::string> arguments = {})
    {
        arguments.insert(arguments.begin(), {"check", "--json"});
        const ProgramResult result = home_.Run(arguments);
        EXPECT_EQ(result.err, "");
        Json json = Json::parse(result.out);
        EXPECT_EQ(result.exit, json["problems"] == json["repaired"] ? 0 : 1) << json;
        return json;
    }
    // "metafile-missing 2", a line for each kind that was found.
    static std::vector<std::string> KindsIn(const Json& json)
    {
        std::vector<std::string> kinds;
        for (const Json& finding : json["findings"])
            kinds.push_back(finding["kind"].get<std::string>() + " " + std::to_string(finding["count"].get<int>()));
        return kinds;
    }
    std::vector<std::string> Kinds() { return KindsIn(Check()); }
    // Nothing is wrong, and nothing waits.
    void ExpectAllWell()
    {
        const Json json = Check({"--examples", "50"});
        EXPECT_EQ(json["problems"], 0) << json;
        EXPECT_EQ(json["waiting"], 0) << json;
        EXPECT_THAT(home_.Run({"check"}).out, HasSubstr("nothing is wrong"));
    }
    // Repairs all that is found; after a pass nothing is left, and a second repair finds nothing.
    void ExpectRepaired()
    {
        const Json json = Check({"--repair"});
        EXPECT_EQ(json["repaired"], json["problems"]) << json;
        EXPECT_GT(json["problems"], 0);
        EXPECT_EQ(Check()["problems"], 0) << "before the pass";
        IndexAll();
        ExpectAllWell();
        EXPECT_EQ(Check({"--repair"})["problems"], 0);
    }
    void IndexAll()
    {
        const ProgramResult result = home_.Run({"index", "--full-speed"});
        EXPECT_EQ(result.exit, 0) << result.err;
    }
    void Settings(const std::string& lines)
    {
        fs::create_directories(home_.Path("home"));
        std::ofstream(home_.Path("home/pavex.ini"), std::ios::app) << "[Pavex]\n" << lines;
    }
    void SetVariable(const std::string& name, const std::string& value)
    {
        std::string text = ReadWholeFile(home_.Path("home/pavex.ini"));
        if (const size_t at = text.find("\n" + name + "="); at != text.npos)
            text.erase(at, text.find('\n', at + 1) - at);
        WriteWholeFile(home_.Path("home/pavex.ini"), text + "\n" + name + "=" + value + "\n");
    }
    // Three notes, indexed: mail, contact, other.
    void MakeThree()
    {
        home_.Put("mail.vlt", R"({"items": {"Form": "Memo", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}}
{"items": {"Form": "Person", "FullName": "Grete"}}
{"items": {"Form": "Quotation"}}
)");
        home_.Enable();
        IndexAll();
        ExpectAllWell();
    }
    std::string FileOf(const std::string& kind)
    {
        for (const auto& [name, content] : home_.ReadMetafiles())
            if (name.ends_with(kind))
                return Root() + name;
        ADD_FAILURE() << "no " << kind;
        return {};
    }
    std::string Root() const { return home_.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight/"); }
    static void SetTime(const std::string& path, time_t seconds)
    {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
    }

    ProgramHome home_;
};

// ---- what the add-in does, and what the check takes it to do ----------------------------------

class ProgramCheckSwitches : public ProgramCheck, public testing::WithParamInterface<const char*> {};

TEST_P(ProgramCheckSwitches, FindsNothingWrongWithWhatTheAddInDidWithNotesOfEveryForm)
{
    Settings(GetParam());
    home_.Put("mail.vlt", kEveryKind);
    home_.Put("bookmark.vlt", kHistory);
    home_.Enable();
    IndexAll();
    ExpectAllWell();
    EXPECT_GT(home_.CountMetafiles(), 10U);
}

constexpr const char* kSwitches[] = {
    "",
    "GDSIndexDrafts=1\nGDSNoIndexChats=1\n",
    "GDSIndexDiscussion=1\n",
    "GDSIndexEncrypted=1\n",
    "GoogleNoIndexAll=1\nGDSNoIndexHistory=1\n",
    "GDSIndexDrafts=1\nGDSIndexDiscussion=1\nGoogleComputeOK=1\n",
};
INSTANTIATE_TEST_SUITE_P(All, ProgramCheckSwitches, testing::ValuesIn(kSwitches));

class ProgramCheckChange : public ProgramCheck, public testing::WithParamInterface<const char*> {};

// The switches of the ini file change behind the add-in's back, and it indexes nothing anew.
TEST_P(ProgramCheckChange, FindsAndRepairsWhatASwitchLeftBehindEitherWay)
{
    const std::string name = GetParam();
    home_.Put("mail.vlt", kEveryKind);
    home_.Put("bookmark.vlt", kHistory);
    home_.Enable();
    IndexAll();
    for (const char* value : {"1", "0"}) {
        SetVariable(name, value);
        SCOPED_TRACE(name + "=" + value);
        EXPECT_THAT(Kinds(), testing::Not(IsEmpty()));
        ExpectRepaired();
    }
}

INSTANTIATE_TEST_SUITE_P(All, ProgramCheckChange,
                         testing::Values("GDSIndexDrafts", "GDSNoIndexChats", "GDSIndexDiscussion", "GoogleNoIndexAll",
                                         "GDSNoIndexHistory"));

// ---- findings ---------------------------------------------------------------------------------

TEST_F(ProgramCheck, CountsNotesThatWaitAsNoFinding)
{
    home_.Put("mail.vlt", R"({"items": {"Form": "Person"}})");
    home_.Enable();
    const Json before = Check();
    EXPECT_EQ(before["waiting"], 1);
    EXPECT_EQ(before["problems"], 0);
    EXPECT_EQ(before["databases"], 1);
    IndexAll();
    home_.Run({"note", "delete", "--db", "mail.vlt", "1"});
    EXPECT_EQ(Check()["problems"], 0) << "the deletion waits, too";
    IndexAll();
    ExpectAllWell();
}

TEST_F(ProgramCheck, FindsAndRepairsMissingMetafiles)
{
    MakeThree();
    fs::remove(FileOf("vPavexContact"));
    const Json json = Check();
    EXPECT_THAT(KindsIn(json), ElementsAre("metafile-missing 1"));
    EXPECT_EQ(json["findings"][0]["examples"][0]["noteid"], 2);
    EXPECT_EQ(json["needs_pass"], false);
    const Metafiles others = home_.ReadMetafiles();
    const MetafileTimes times = home_.ReadTimes();
    ExpectRepaired();
    EXPECT_EQ(home_.CountMetafiles(), 3U);
    for (const auto& [name, time] : times)
        EXPECT_EQ(home_.ReadTimes()[name], time) << "not indexed again: " << name;
}

TEST_F(ProgramCheck, LeavesTheDatesOfANoteThatIsRepaired)
{
    MakeThree();
    const Json before = home_.RunJson({"note", "get", "--db", "mail.vlt", "--json", "2"});
    fs::remove(FileOf("vPavexContact"));
    ExpectRepaired();
    EXPECT_EQ(home_.RunJson({"note", "get", "--db", "mail.vlt", "--json", "2"}), before);
}

TEST_F(ProgramCheck, RepairsACachesFolderThatWasEmptied)
{
    MakeThree();
    fs::remove_all(home_.Path("home/caches"));
    EXPECT_THAT(Kinds(), ElementsAre("metafile-missing 3"));
    ExpectRepaired();
    EXPECT_EQ(home_.CountMetafiles(), 3U);
}

TEST_F(ProgramCheck, FindsAndRepairsDamagedMetafiles)
{
    MakeThree();
    const std::string mail = FileOf("vPavexMessage");
    const std::string contact = FileOf("vPavexContact");
    const std::string other = FileOf("vPavexNote");
    fs::resize_file(mail, 200);
    fs::remove(contact);
    fs::create_directory(contact);
    WriteWholeFile(home_.Path("mine.txt"), "mine");
    fs::remove(other);
    fs::create_symlink(home_.Path("mine.txt"), other);
    EXPECT_THAT(Kinds(), ElementsAre("metafile-damaged 3"));
    ExpectRepaired();
    EXPECT_EQ(ReadWholeFile(home_.Path("mine.txt")), "mine") << "a link is not followed";
    EXPECT_EQ(home_.CountMetafiles(), 3U);
}

TEST_F(ProgramCheck, DoesNotCallRepairedWhatItCouldNotMakeRoomFor)
{
    MakeThree();
    const std::string contact = FileOf("vPavexContact");
    fs::remove(contact);
    fs::create_directory(contact);
    WriteWholeFile(contact + "/mine.txt", "mine");
    const ProgramResult result = home_.Run({"check", "--repair"});
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.out, HasSubstr("1 damaged metafile: 0 repaired"));
    EXPECT_THAT(result.out, HasSubstr(contact + " cannot be removed: Directory not empty"));
    EXPECT_EQ(ReadWholeFile(contact + "/mine.txt"), "mine");
}

TEST_F(ProgramCheck, FindsAMetafileThatIsAnotherNotes)
{
    MakeThree();
    home_.Put("mail.vlt", R"({"items": {"Form": "Person", "FullName": "Other"}})");
    IndexAll();
    const Metafiles files = home_.ReadMetafiles();
    std::vector<std::string> contacts;
    for (const auto& [name, content] : files)
        if (name.ends_with("vPavexContact"))
            contacts.push_back(Root() + name);
    ASSERT_EQ(contacts.size(), 2U);
    fs::copy_file(contacts[0], contacts[1], fs::copy_options::overwrite_existing);
    EXPECT_THAT(Kinds(), ElementsAre("metafile-damaged 1"));
    ExpectRepaired();
    EXPECT_EQ(home_.ReadMetafiles(), files);
}

TEST_F(ProgramCheck, FindsAndRepairsOutdatedMetafiles)
{
    MakeThree();
    SetTime(FileOf("vPavexMessage"), 1'000'000'000);
    std::string text = ReadWholeFile(FileOf("vPavexContact"));
    const size_t date = text.find("<date>") + 6;
    WriteWholeFile(FileOf("vPavexContact"), text.replace(date, 4, "1999"));
    EXPECT_THAT(Kinds(), ElementsAre("metafile-outdated 2"));
    ExpectRepaired();
}

TEST_F(ProgramCheck, FindsAndRepairsMetafilesOfOtherKinds)
{
    MakeThree();
    const std::string contact = FileOf("vPavexContact");
    const std::string stem = contact.substr(0, contact.rfind('.'));
    fs::copy_file(contact, stem + ".vPavexTask");
    const std::string other = FileOf("vPavexNote");
    fs::rename(other, other.substr(0, other.rfind('.')) + ".vPavexJournal");
    EXPECT_THAT(Kinds(), ElementsAre("metafile-missing 1", "metafile-other-kind 2"));
    ExpectRepaired();
    EXPECT_EQ(home_.CountMetafiles(), 3U);
}

TEST_F(ProgramCheck, FindsAndRemovesWhatBelongsToNoNote)
{
    MakeThree();
    const Metafiles files = home_.ReadMetafiles();
    const std::string contact = FileOf("vPavexContact");
    const std::string folder = fs::path(contact).parent_path();
    fs::copy_file(contact, folder + "/0123456789ABCDEF8025000000000002.vPavexContact");
    fs::create_directory(Root() + "0123456789ABCDEF");
    fs::copy_file(contact, Root() + "0123456789ABCDEF/" + fs::path(contact).filename().string());
    fs::copy_file(contact, folder + "/copy.vPavexContact");
    WriteWholeFile(folder + "/.0123456789ABCDEF8025000000000002.part", "half");
    WriteWholeFile(folder + "/notes.txt", "mine");
    EXPECT_THAT(Kinds(), ElementsAre("metafile-without-note 1", "metafile-without-database 1", "metafile-stray 1"))
        << "what may be in writing is left alone";
    SetTime(folder + "/.0123456789ABCDEF8025000000000002.part", 1'000'000'000);
    EXPECT_THAT(Kinds(), ElementsAre("metafile-without-note 1", "metafile-without-database 1", "metafile-stray 1",
                                     "metafile-half-written 1"));
    ExpectRepaired();
    EXPECT_EQ(home_.ReadMetafiles(), files);
    EXPECT_EQ(ReadWholeFile(folder + "/notes.txt"), "mine");
}

TEST_F(ProgramCheck, FindsMetafilesThatSurvivedTheirNotesDeletion)
{
    MakeThree();
    const std::string contact = FileOf("vPavexContact");
    const std::string content = ReadWholeFile(contact);
    home_.Run({"note", "delete", "--db", "mail.vlt", "2"});
    IndexAll();
    EXPECT_EQ(home_.CountMetafiles(), 2U);
    WriteWholeFile(contact, content);
    EXPECT_THAT(Kinds(), ElementsAre("metafile-without-note 1"));
    SetVariable("GoogleNoDelete", "1");
    EXPECT_THAT(Kinds(), IsEmpty()) << "it stays because the settings say so";
    SetVariable("GoogleNoDelete", "0");
    ExpectRepaired();
}

TEST_F(ProgramCheck, FindsTheMetafilesOfADatabaseThatWasTakenOffTheList)
{
    MakeThree();
    home_.Put("more.vlt", R"({"items": {"Form": "Person", "FullName": "Grete"}})");
    ASSERT_EQ(home_.Run({"settings", "--add", "more.vlt"}).exit, 0);
    IndexAll();
    ExpectAllWell();
    ASSERT_EQ(home_.Run({"settings", "--remove", "more.vlt"}).exit, 0);
    EXPECT_THAT(Kinds(), ElementsAre("metafile-without-database 1"));
    ExpectRepaired();
    EXPECT_EQ(home_.CountMetafiles(), 3U);
    ASSERT_EQ(home_.Run({"settings", "--add", "more.vlt"}).exit, 0);
    IndexAll();
    EXPECT_EQ(home_.CountMetafiles(), 4U);
    ExpectAllWell();
}

TEST_F(ProgramCheck, KeepsUnknownMetafilesWhileADatabaseCannotBeRead)
{
    MakeThree();
    fs::rename(home_.Path("home/data/mail.vlt"), home_.Path("away.vlt"));
    const Json json = Check({"--repair"});
    EXPECT_THAT(KindsIn(json), ElementsAre("database-unreadable 1"));
    EXPECT_THAT(json["findings"][0]["examples"][0]["database"], HasSubstr("mail.vlt"));
    EXPECT_EQ(json["findings"][0]["examples"][0]["reason"], "no such file or folder");
    EXPECT_THAT(json["remarks"].dump(), HasSubstr("3 metafiles"));
    EXPECT_EQ(home_.CountMetafiles(), 3U);
    fs::rename(home_.Path("away.vlt"), home_.Path("home/data/mail.vlt"));
    ExpectAllWell();
}

TEST_F(ProgramCheck, NamesADatabaseThatIsNone)
{
    MakeThree();
    WriteWholeFile(home_.Path("home/data/mail.vlt"), std::string(5000, 'x'));
    fs::remove(home_.Path("home/data/mail.vlt-wal"));
    const ProgramResult result = home_.Run({"check"});
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.out, HasSubstr("1 database that cannot be read"));
    EXPECT_THAT(result.out, HasSubstr("mail.vlt: not a database, or damaged beyond opening"));
    EXPECT_THAT(result.out, testing::Not(HasSubstr("--repair"))) << "that would not help";
}

TEST_F(ProgramCheck, FindsNotesThatAreDamagedInTheDatabase)
{
    MakeThree();
    std::string bytes = ReadWholeFile(home_.Path("home/data/mail.vlt"));
    const size_t at = bytes.find("Grete");
    ASSERT_NE(at, bytes.npos);
    WriteWholeFile(home_.Path("home/data/mail.vlt"), bytes.replace(at, 5, "Xrete"));
    const Json json = Check({"--repair"});
    EXPECT_THAT(KindsIn(json), ElementsAre("note-damaged 1"));
    EXPECT_EQ(json["findings"][0]["examples"][0]["noteid"], 2);
    EXPECT_EQ(home_.CountMetafiles(), 3U) << "its metafile is all that is left of it";
}

TEST_F(ProgramCheck, FindsOneDatabaseThatIsIndexedTwice)
{
    MakeThree();
    fs::copy_file(home_.Path("home/data/mail.vlt"), home_.Path("home/data/copy.vlt"));
    ASSERT_EQ(home_.Run({"settings", "--add", "copy.vlt"}).exit, 0);
    IndexAll();
    EXPECT_THAT(Kinds(), ElementsAre("database-copies 1"));
    EXPECT_EQ(Check({"--repair"})["repaired"], 0);
    EXPECT_EQ(home_.CountMetafiles(), 3U);
}

TEST_F(ProgramCheck, FindsAndRepairsDamagedProgressRecords)
{
    MakeThree();
    SetVariable("GDSTimestamp", "yesterday");
    SetVariable("GDSTimestamp9", "0");
    EXPECT_THAT(Kinds(), ElementsAre("record-damaged 1", "record-stray 1"));
    ExpectRepaired();
}

TEST_F(ProgramCheck, FindsARecordThatIsAheadOfADatabaseThatWasReplaced)
{
    MakeThree();
    const std::string data = home_.Path("home/data/mail.vlt");
    const std::string old = ReadWholeFile(data);
    home_.Put("mail.vlt", R"({"items": {"Form": "Person", "FullName": "Late"}})");
    IndexAll();
    WriteWholeFile(data, old);
    EXPECT_THAT(Kinds(), ElementsAre("record-ahead 1", "metafile-without-note 1"));
    ExpectRepaired();
    EXPECT_EQ(home_.CountMetafiles(), 3U);
}

// ---- with others, and without rights ------------------------------------------------------------

TEST_F(ProgramCheck, RepairsNothingWhileTheClientRuns)
{
    MakeThree();
    const std::string contact = FileOf("vPavexContact");
    fs::remove(contact);
    fs::remove(home_.Path("home/log/pavex.log"));
    const std::unique_ptr<Process> run = home_.Start({"run"});
    ASSERT_TRUE(Eventually([this] { return fs::exists(home_.Path("home/log/pavex.log")); })) << "its thread has begun";
    ExpectOneClearLine(home_.Run({"check", "--repair"}), 1, {"another pavex run", "ended first"});
    EXPECT_THAT(Kinds(), ElementsAre("metafile-missing 1")) << "looking is allowed";
    run->Signal(SIGTERM);
    EXPECT_EQ(run->Wait().exit, 0);
    ExpectRepaired();
}

TEST_F(ProgramCheck, SaysThatAFolderCannotBeRead)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root reads any folder";
    MakeThree();
    const std::string folder = fs::path(FileOf("vPavexContact")).parent_path();
    chmod(folder.c_str(), 0);
    EXPECT_THAT(Kinds(), ElementsAre("folder-unreadable 1"));
    chmod(folder.c_str(), 0700);
    ExpectAllWell();
}

TEST_F(ProgramCheck, SaysWhyMetafilesCannotBeWritten)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root writes into any folder";
    MakeThree();
    const std::string contact = FileOf("vPavexContact");
    const std::string folder = fs::path(contact).parent_path();
    fs::remove(contact);
    EXPECT_TRUE(Check()["remarks"].empty());
    chmod(folder.c_str(), 0500);
    EXPECT_THAT(Check()["remarks"].dump(), HasSubstr("metafiles cannot be written: " + folder + ": Permission denied"));
    chmod(folder.c_str(), 0700);
}

TEST_F(ProgramCheck, SaysWhatItCannotRemove)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root removes any file";
    MakeThree();
    const std::string folder = fs::path(FileOf("vPavexContact")).parent_path();
    WriteWholeFile(folder + "/a.vPavexNote", "");
    WriteWholeFile(folder + "/b.vPavexNote", "");
    chmod(folder.c_str(), 0500);
    const ProgramResult result = home_.Run({"check", "--repair"});
    chmod(folder.c_str(), 0700);
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.out, HasSubstr("2 metafiles that are named as no note's are: 0 repaired"));
    EXPECT_THAT(result.out, HasSubstr("cannot be removed: Permission denied"));
}

TEST_F(ProgramCheck, HasAReadOnlyDatabaseIndexedAsAWhole)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root writes any file";
    MakeThree();
    fs::remove(FileOf("vPavexContact"));
    chmod(home_.Path("home/data/mail.vlt").c_str(), 0400);
    const Json json = Check({"--repair"});
    EXPECT_EQ(json["repaired"], 1) << json;
    EXPECT_THAT(json["remarks"].dump(), HasSubstr("read-only"));
    IndexAll();
    ExpectAllWell();
}

TEST_F(ProgramCheck, IsAllWellWhereThereIsNothing)
{
    const Json json = Check();
    EXPECT_EQ(json["problems"], 0);
    EXPECT_EQ(json["databases"], 0);
    EXPECT_EQ(Check({"--repair"})["problems"], 0);
}

TEST_F(ProgramCheck, SaysThatNoPassWillComeWhileIndexingIsOff)
{
    MakeThree();
    fs::remove(FileOf("vPavexContact"));
    ASSERT_EQ(home_.Run({"settings", "--disable"}).exit, 0);
    const ProgramResult result = home_.Run({"check", "--repair"});
    EXPECT_EQ(result.exit, 0);
    EXPECT_THAT(result.out, HasSubstr("1 note without a metafile: repaired"));
    EXPECT_THAT(result.out, HasSubstr("no pass will come: indexing is switched off"));
}

TEST_F(ProgramCheck, TellsOfAsManyExamplesAsAskedFor)
{
    MakeThree();
    for (const std::string name : {"a", "b", "c"})
        WriteWholeFile(Root() + name + ".vPavexNote\x1b[2J.vPavexNote", "");
    const ProgramResult result = home_.Run({"check", "--examples", "2"});
    EXPECT_THAT(result.out, HasSubstr("3 metafiles that are named as no note's are\n"));
    EXPECT_THAT(result.out, HasSubstr("    and 1 more\n"));
    EXPECT_EQ(result.out.find('\x1b'), result.out.npos) << "a terminal stays itself";
    EXPECT_EQ(Check({"--examples", "2"})["findings"][0]["examples"].size(), 2U);
    EXPECT_EQ(home_.Run({"check", "--examples", "-1"}).exit, 2);
    EXPECT_EQ(home_.Run({"check", "now"}).exit, 2);
}

TEST_F(ProgramCheck, ARepairThatMayNotBeMadeNamesNoOtherProgram)
{
    std::filesystem::create_directories(home_.Path("home/data/client.lock"));
    const ProgramResult repair = home_.Run({"check", "--repair"});
    ExpectOneClearLine(repair, 1, {"cannot make " + home_.Path("home/data/client.lock"), "Is a directory"});
    EXPECT_THAT(repair.err, Not(HasSubstr("ended first")));
}

}  // namespace
}  // namespace pavex
