// tests/client/app/program_open_test.cpp: notes are shown and remembered.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <sstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

constexpr const char* kZebra = R"({"items": {"Form": "Memo", "Subject": "Zebra", "From": "Ann", "Secret": "a\u001b[2Jb",
 "$Hidden": "not shown", "Body": {"richtext": ["First", "Second"]}}})";

// A time in text, to be compared as text: one without hundredths is before those of its second that have some.
std::string Comparable(const std::string& time)
{
    return time.substr(0, time.find('Z'));
}

class ProgramOpen : public testing::Test {
protected:
    std::string Put(const std::string& database, const std::string& note)
    {
        const std::vector<uint32_t> ids = home_.Put(database, note);
        return home_.RunJson({"note", "get", "--db", database, "--json", std::to_string(ids.at(0))})["url"];
    }
    std::vector<Json> History()
    {
        const ProgramResult result = home_.Run({"history", "--json"});
        EXPECT_EQ(result.exit, 0) << result.err;
        std::vector<Json> entries;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);)
            entries.push_back(Json::parse(line));
        return entries;
    }

    ProgramHome home_;
};

TEST_F(ProgramOpen, ShowsANoteAsPeopleReadIt)
{
    const std::string url = Put("folder.vlt", kZebra);
    const ProgramResult result = home_.Run({"open", url});
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "Form: Memo\nSubject: Zebra\nFrom: Ann\nSecret: a [2Jb\n\nFirst\nSecond\n");
}

TEST_F(ProgramOpen, PrintsTheItemsAsNoteGetDoes)
{
    const std::string url = Put("folder.vlt", kZebra);
    const ProgramResult raw = home_.Run({"open", "--raw", url});
    EXPECT_EQ(raw.exit, 0);
    EXPECT_EQ(raw.out, home_.Run({"note", "get", "--db", "folder.vlt", "1"}).out);
    EXPECT_EQ(Json::parse(raw.out)["items"]["$Hidden"], "not shown");
}

TEST_F(ProgramOpen, RemembersANoteOnceAndDatesItAnew)
{
    const std::string zebra = Put("a.vlt", kZebra);
    const std::string other = Put("b.vlt", R"({"items": {"Form": "Person", "FullName": "Grete"}})");
    ASSERT_EQ(History(), std::vector<Json>());
    ASSERT_EQ(home_.Run({"open", zebra}).exit, 0);
    ASSERT_EQ(home_.Run({"open", other}).exit, 0);
    const std::vector<Json> first = History();
    ASSERT_EQ(first.size(), 2U);
    EXPECT_EQ(first[0]["title"], "Grete");
    EXPECT_EQ(first[0]["url"], other);
    EXPECT_EQ(first[1]["title"], "Zebra");
    EXPECT_EQ(first[1]["url"], zebra);

    ASSERT_EQ(home_.Run({"open", zebra}).exit, 0);
    const std::vector<Json> second = History();
    ASSERT_EQ(second.size(), 2U);
    EXPECT_EQ(second[0]["url"], zebra);
    EXPECT_GT(Comparable(second[0]["opened"]), Comparable(first[1]["opened"]));
    EXPECT_THAT(home_.Run({"history"}).out,
                testing::StartsWith(second[0]["opened"].get<std::string>() + "\tZebra\t" + zebra));
}

TEST_F(ProgramOpen, MakesEntriesThatTheHistoryPassIndexes)
{
    const std::string url = Put("mail.vlt", kZebra);
    home_.Enable();
    ASSERT_EQ(home_.Run({"open", url}).exit, 0);
    const Json report = home_.RunJson({"index", "--full-speed", "--json"});
    EXPECT_EQ(report["history"]["indexed"], 1) << report;
    std::string entry;
    for (const auto& [name, content] : home_.ReadMetafiles())
        if (name.ends_with(".vPavexHistory"))
            entry = content;
    EXPECT_THAT(entry, HasSubstr(url));
    EXPECT_THAT(entry, HasSubstr("Zebra"));
}

TEST_F(ProgramOpen, DoesNotRememberAnEntryOfTheHistory)
{
    ASSERT_EQ(home_.Run({"open", Put("a.vlt", kZebra)}).exit, 0);
    const std::string entry = home_.RunJson({"note", "get", "--db", "bookmark.vlt", "--json", "1"})["url"];
    const ProgramResult shown = home_.Run({"open", entry});
    EXPECT_EQ(shown.exit, 0);
    EXPECT_THAT(shown.out, HasSubstr("Title: Zebra\n"));
    EXPECT_EQ(History().size(), 1U);
}

TEST_F(ProgramOpen, MakesANewEntryWhenTheOldOneWasDeleted)
{
    const std::string url = Put("a.vlt", kZebra);
    ASSERT_EQ(home_.Run({"open", url}).exit, 0);
    ASSERT_EQ(home_.Run({"note", "delete", "--db", "bookmark.vlt", "1"}).exit, 0);
    ASSERT_EQ(History().size(), 0U);
    ASSERT_EQ(home_.Run({"open", url}).exit, 0);
    EXPECT_EQ(History().size(), 1U);
}

TEST_F(ProgramOpen, SaysInOneLineWhyANoteCannotBeShown)
{
    const std::string url = Put("a.vlt", kZebra);
    ExpectOneClearLine(home_.Run({"open", "zebra"}), 1, {"zebra is no address of a note"});
    ExpectOneClearLine(home_.Run({"open", "1"}), 1, {"the last search has no result 1"});
    ExpectOneClearLine(home_.Run({"open", "Pavex:///8025000000000001//0123456789ABCDEF8025000000000002"}), 1,
                       {"no database here has the replica id 8025000000000001"});
    ASSERT_EQ(home_.Run({"note", "delete", "--db", "a.vlt", "1"}).exit, 0);
    ExpectOneClearLine(home_.Run({"open", url}), 1, {"the note is deleted", "a.vlt"});
    EXPECT_EQ(History().size(), 0U);
}

// Folders one in the other until the innermost one's path is longer than the system takes: nobody can read it, the
// administrator neither.
void MakeFolderThatCannotBeRead(const std::string& path)
{
    const std::string name(250, 'a');
    fs::create_directories(path);
    int folder = open(path.c_str(), O_RDONLY | O_DIRECTORY);
    for (int depth = 0; depth < 20; ++depth) {
        ASSERT_EQ(mkdirat(folder, name.c_str(), 0700), 0);
        const int inner = openat(folder, name.c_str(), O_RDONLY | O_DIRECTORY);
        close(folder);
        folder = inner;
    }
    close(folder);
}

TEST_F(ProgramOpen, FindsANoteBehindAFolderThatCannotBeReadAndNamesTheFolderWhenItDoesNot)
{
    const std::string data = home_.Path("home/data");
    const std::string url = Put("first.vlt", kZebra);
    fs::create_directories(data + "/z");
    fs::rename(data + "/first.vlt", data + "/z/first.vlt");
    MakeFolderThatCannotBeRead(data + "/b");
    const ProgramResult result = home_.Run({"open", url});
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("Subject: Zebra\n"));
    ExpectOneClearLine(home_.Run({"open", "Pavex:///8025000000000001//0123456789ABCDEF8025000000000002"}), 1,
                       {"no database here has the replica id 8025000000000001", "not looked into: " + data + "/b/aaa",
                        "File name too long"});
    fs::remove_all(data + "/b");
}

TEST_F(ProgramOpen, NamesADatabaseThatCannotBeLookedInto)
{
    const std::string url = Put("a.vlt", kZebra);
    WriteWholeFile(home_.Path("home/data/a.vlt"), "no database");
    ExpectOneClearLine(home_.Run({"open", url}), 1, {"not looked into", "a.vlt", "not a database"});
}

TEST_F(ProgramOpen, LetsNoCharacterOfANoteReachTheTerminalThatItWouldObey)
{
    const std::string url = Put("a.vlt", R"({"items": {"Form": "Memo", "Subject": "gpj\u202Eexe.\u2028two\u009B2J",
 "Body": {"richtext": ["body\u2066\u2029end", {"link": {"replica": "8025000000000001", "note":
 "0123456789ABCDEF8025000000000002", "text": "label\u202E\u0085"}}]}}})");
    EXPECT_THAT(home_.Run({"open", url}).out, testing::AllOf(HasSubstr("Subject: gpjexe. two 2J\n"),
                                                             HasSubstr("body end\n"), HasSubstr("label  <Pavex")));
    const std::string raw = home_.Run({"open", "--raw", url}).out;
    EXPECT_THAT(raw, HasSubstr("\"gpj\\u202eexe.\\u2028two\\u009b2J\""));
    EXPECT_EQ(Json::parse(raw)["items"]["Subject"], "gpj\u202Eexe.\u2028two\u009B2J");
    EXPECT_THAT(home_.Run({"history"}).out, HasSubstr("\tgpjexe. two 2J\t"));
    EXPECT_THAT(home_.Run({"history", "--json"}).out, HasSubstr("\"gpj\\u202eexe.\\u2028two\\u009b2J\""));
}

TEST_F(ProgramOpen, MakesOneEntryOfANoteThatIsOpenedAndABookmarkOfIt)
{
    const std::string url = Put("a.vlt", kZebra);
    const auto import = [this, &url](const std::string& title, const Lines& options) {
        WriteWholeFile(home_.Path("bookmarks.html"), "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n<DT><A HREF=\"" +
                                                         url +
                                                         "\" ADD_DATE=\"1173096000\" LAST_MODIFIED=\"1173096000\" "
                                                         "TAGS=\"striped\">" +
                                                         title + "</A>\n</DL><p>\n");
        Lines command = {"import"};
        command.insert(command.end(), options.begin(), options.end());
        command.push_back(home_.Path("bookmarks.html"));
        const ProgramResult result = home_.Run(command);
        EXPECT_EQ(result.exit, 0) << result.err;
    };
    ASSERT_EQ(home_.Run({"open", url}).exit, 0);
    const std::string opened = History().at(0)["opened"];
    import("My animal", {});
    ASSERT_EQ(History().size(), 1U);
    EXPECT_EQ(History()[0]["title"], "My animal") << "as the user calls it";
    EXPECT_EQ(History()[0]["opened"], opened) << "no bookmark is newer";

    ASSERT_EQ(home_.Run({"open", url}).exit, 0);
    ASSERT_EQ(History().size(), 1U);
    EXPECT_EQ(History()[0]["title"], "My animal");
    EXPECT_GT(Comparable(History()[0]["opened"]), Comparable(opened));
    EXPECT_EQ(home_.RunJson({"note", "get", "--db", "bookmark.vlt", "--json", "1"})["items"]["Categories"],
              Json::array({"striped"}));
}

TEST_F(ProgramOpen, KeepsTheEntryOfAnOpenedNoteWhenItsBookmarkGoes)
{
    const std::string opened = Put("a.vlt", kZebra);
    const std::string other = Put("b.vlt", kZebra);
    const auto write = [this](const std::string& links) {
        WriteWholeFile(home_.Path("bookmarks.html"),
                       "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<DL><p>\n" + links + "</DL><p>\n");
        const ProgramResult result = home_.Run({"import", "--prune", home_.Path("bookmarks.html")});
        EXPECT_EQ(result.exit, 0) << result.err;
    };
    write("<DT><A HREF=\"" + opened + "\">one</A>\n<DT><A HREF=\"" + other + "\">two</A>\n");
    ASSERT_EQ(History().size(), 2U);
    ASSERT_EQ(home_.Run({"open", opened}).exit, 0);
    ASSERT_EQ(History().size(), 2U);
    write("");
    ASSERT_EQ(History().size(), 1U);
    EXPECT_EQ(History()[0]["url"], opened);
}

TEST_F(ProgramOpen, StartsThePagerWithAllSignalsAsTheyWere)
{
    const std::string url = Put("a.vlt", kZebra);
    const std::string command = "env --ignore-signal=PIPE --block-signal=TERM " TORVIK_BINARY_DIR "/bin/pavex --home " +
                                home_.Path("home") + " open " + url;
    Process paged({"env", "PAGER=cat >/dev/null; sed -nE 's/Sig(Blk|Ign):/\\1/p' /proc/self/status", "script", "-qec",
                   command, "/dev/null"},
                  home_.Path("paged"));
    std::istringstream out(paged.Wait().out);
    std::string name;
    uint64_t blocked = 1;
    uint64_t ignored = ~uint64_t{0};
    out >> name >> std::hex >> blocked >> name >> ignored;
    EXPECT_EQ(name, "Ign");
    EXPECT_EQ(blocked, 0U);
    for (const int number : {SIGPIPE, SIGINT, SIGQUIT, SIGTERM})
        EXPECT_EQ(ignored >> (number - 1) & 1, 0U) << number;
}

// What the window shows is in `out`; the user closes it at once.
class ProgramOpenWindow : public ProgramOpen {
protected:
    void SetUp() override
    {
        if (!fs::exists(TORVIK_BINARY_DIR "/lib/libpavexqt.so"))
            GTEST_SKIP() << "built without the window";
    }
    ProgramResult OpenWindow(const std::string& url)
    {
        Process window({"env", "QT_QPA_PLATFORM=offscreen", "LD_PRELOAD=" TORVIK_BINARY_DIR "/lib/libreads_window.so",
                        "ASAN_OPTIONS=verify_asan_link_order=0", TORVIK_BINARY_DIR "/bin/pavex", "--home",
                        home_.Path("home"), "open", "--window", url},
                       home_.Path("window"));
        return window.Wait();
    }
};

TEST_F(ProgramOpenWindow, ShowsANoteAndRemembersIt)
{
    const ProgramResult result = OpenWindow(Put("a.vlt", kZebra));
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("window: Zebra\n"));
    EXPECT_THAT(result.out, Not(HasSubstr("label: ")));
    EXPECT_EQ(History().size(), 1U);
}

TEST_F(ProgramOpenWindow, SaysInAWindowWhyANoteCannotBeShown)
{
    const std::string url = Put("a.vlt", kZebra);
    ASSERT_EQ(home_.Run({"note", "delete", "--db", "a.vlt", "1"}).exit, 0);
    for (const std::string& target : {url, std::string("Pavex:///nowhere"), std::string("7")}) {
        const ProgramResult result = OpenWindow(target);
        EXPECT_EQ(result.exit, 1);
        EXPECT_THAT(result.out, HasSubstr("window: Pavex\nlabel: ")) << target;
        const std::string problem = result.err.substr(std::string("pavex: ").size());
        EXPECT_THAT(result.out, HasSubstr("label: " + problem)) << "the line that the terminal has";
    }
}

TEST_F(ProgramOpenWindow, ShowsANoteThatTheHistoryCannotTake)
{
    const std::string url = Put("a.vlt", kZebra);
    WriteWholeFile(home_.Path("home/data/bookmark.vlt"), "no database");
    const ProgramResult result = OpenWindow(url);
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.out, HasSubstr("window: Zebra\n"));
    EXPECT_THAT(result.out, HasSubstr("label: ")) << "what is wrong with the history";
    ExpectOneClearLine({1, "", result.err}, 1, {"bookmark.vlt"});
}

TEST_F(ProgramOpen, ShowsANoteAsTextWhereThereIsNoDisplayForAWindow)
{
    const std::string url = Put("a.vlt", kZebra);
    Process window({"env", "-u", "DISPLAY", "-u", "WAYLAND_DISPLAY", "-u", "QT_QPA_PLATFORM",
                    TORVIK_BINARY_DIR "/bin/pavex", "--home", home_.Path("home"), "open", "--window", url},
                   home_.Path("window"));
    const ProgramResult result = window.Wait();
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.out, HasSubstr("Subject: Zebra\n"));
}

TEST_F(ProgramOpen, IsDoneWhenThePagerIsLeftEarly)
{
    std::string body;
    for (int line = 0; line < 20000; ++line)
        body += "\"a line of many\",";
    const std::string url =
        Put("a.vlt", R"({"items": {"Form": "Memo", "Subject": "Long", "Body": {"richtext": [)" + body + R"("end"]}}})");
    const std::string command = TORVIK_BINARY_DIR "/bin/pavex --home " + home_.Path("home") + " open " + url;
    Process paged({"env", "PAGER=head -n 1", "script", "-qec", command, "/dev/null"}, home_.Path("paged"));
    EXPECT_EQ(paged.Wait().exit, 0);
    EXPECT_EQ(History().size(), 1U);
}

TEST_F(ProgramOpen, UsesThePagerOnATerminalOnly)
{
    const std::string url = Put("a.vlt", kZebra);
    const std::string command = TORVIK_BINARY_DIR "/bin/pavex --home " + home_.Path("home") + " open " + url;
    Process paged({"env", "NO_COLOR=1", "PAGER=sed s/^/paged:/", "script", "-qec", command, "/dev/null"},
                  home_.Path("paged"));
    EXPECT_THAT(paged.Wait().out, HasSubstr("paged:Subject: Zebra\r\n"));
    Process unpaged({"env", "NO_COLOR=1", "PAGER=/no/such/pager", "script", "-qec", command, "/dev/null"},
                    home_.Path("unpaged"));
    EXPECT_THAT(unpaged.Wait().out, HasSubstr("Subject: Zebra\r\n"));
    Process piped({"env", "PAGER=sed s/^/paged:/", "sh", "-c", command}, home_.Path("piped"));
    EXPECT_THAT(piped.Wait().out, testing::StartsWith("Form: Memo\n"));
}

TEST_F(ProgramOpen, ShowsANoteRawOrInAWindowNotBoth)
{
    const std::string url = Put("a.vlt", kZebra);
    const ProgramResult both = home_.Run({"open", "--raw", "--window", url});
    EXPECT_EQ(both.exit, 2);
    EXPECT_THAT(both.err, HasSubstr("--raw"));
    EXPECT_EQ(both.out, "");
    EXPECT_EQ(History().size(), 0U);
}

}  // namespace
}  // namespace pavex
