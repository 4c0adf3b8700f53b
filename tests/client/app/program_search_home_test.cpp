// tests/client/app/program_search_home_test.cpp: homes of all sorts, as they are searched.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::ElementsAre;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

TEST(ProgramSearchHome, FollowsChangesAndDeletions)
{
    ProgramHome home;
    const auto titles = [&home](const std::string& word) {
        const ProgramResult result = home.Run({"search", "--json", word});
        EXPECT_EQ(result.exit, 0) << result.err;
        Lines found;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);)
            found.push_back(Json::parse(line)["title"]);
        return found;
    };
    const std::vector<uint32_t> ids = home.Put(
        "mail.vlt",
        "{\"items\": {\"Form\": \"Memo\", \"Subject\": \"first quince\", \"PostedDate\": {\"time\": \"2007-03-05\"}}}\n"
        "{\"items\": {\"Form\": \"Memo\", \"Subject\": \"other quince\", \"PostedDate\": {\"time\": "
        "\"2007-03-04\"}}}\n");
    home.Enable();
    (void)home.Index();
    EXPECT_THAT(titles("quince"), ElementsAre("first quince", "other quince"));

    Json note = home.RunJson({"note", "get", "--db", "mail.vlt", "--json", std::to_string(ids[0])});
    note["items"]["Subject"] = "third medlar";  // as long as it was
    note.erase("modified");
    (void)home.Put("mail.vlt", note.dump());
    (void)home.Index();
    EXPECT_THAT(titles("medlar"), ElementsAre("third medlar"));
    EXPECT_THAT(titles("quince"), ElementsAre("other quince"));

    ASSERT_EQ(home.Run({"note", "delete", "--db", "mail.vlt", std::to_string(ids[1])}).exit, 0);
    (void)home.Index();
    EXPECT_THAT(titles("quince"), ElementsAre());
    EXPECT_THAT(titles("medlar"), ElementsAre("third medlar"));
}

TEST(ProgramSearchHome, FindsNothingWhenTheLastNoteIsGone)
{
    ProgramHome home;
    const std::vector<uint32_t> ids = home.Put(
        "mail.vlt", R"({"items": {"Form": "Memo", "Subject": "quince", "PostedDate": {"time": "2007-03-05"}}})");
    home.Enable();
    (void)home.Index();
    EXPECT_THAT(home.Run({"search", "quince"}).out, HasSubstr("quince"));
    ASSERT_EQ(home.Run({"note", "delete", "--db", "mail.vlt", std::to_string(ids[0])}).exit, 0);
    (void)home.Index();
    ExpectOneClearLine(home.Run({"search", "quince"}), 0, {"nothing found"});
    fs::remove_all(home.Path("home/caches/Metadata"));
    ExpectOneClearLine(home.Run({"search", "quince"}), 1, {"nothing is indexed yet: index with: pavex index"});
}

TEST(ProgramSearchHome, MayBeCalledAnythingAndLeavesTheUsersOwnSearchAlone)
{
    ProgramHome place;
    const std::string home = place.Path("a b/.cache/\"q\" \\ tmp/Ä#");
    const std::string own = place.Path("own");
    fs::create_directories(home);
    fs::create_directory(own);
    WriteWholeFile(place.Path("note"),
                   R"({"items": {"Form": "Memo", "Subject": "quince"}, "modified": "2007-03-05T12:00:00Z"})");
    const auto run = [&](Lines arguments) {
        arguments.insert(arguments.begin(), {"env", "HOME=" + own, TORVIK_BINARY_DIR "/bin/pavex", "--home", home});
        const ProgramResult result = Process(arguments, place.Path("run")).Wait();
        EXPECT_EQ(result.exit, 0) << result.err;
        return result.out;
    };
    (void)run({"note", "put", "--db", "mail.vlt", place.Path("note")});
    (void)run({"settings", "--enable", "--drafts", "on", "--yes"});
    (void)run({"index", "--full-speed"});
    EXPECT_THAT(run({"search", "quince"}), HasSubstr("mail  2007-03-0"));
    EXPECT_TRUE(fs::is_empty(own));
}

TEST(ProgramSearchHome, LooksForAsManyWordsAsBeginAlikeAndSaysWhenThereAreTooMany)
{
    constexpr int kWords = 10001;
    ProgramHome home;
    const std::string folder = home.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight/0123456789ABCDEF/");
    fs::create_directories(folder);
    std::string words;
    for (int word = 0; word < kWords; ++word)
        words += "word" + std::to_string(word) + " ";
    WriteWholeFile(folder + "A.vPavexNote", "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>"
                                            "<key>com.quorvex.pavex.uri</key><string>Pavex:///A</string>"
                                            "<key>com.quorvex.pavex.content</key><string>quince " +
                                                words + "</string></dict></plist>\n");
    const ProgramResult many = home.Run({"search", "--json", "word1*", "quin*"});
    EXPECT_EQ(many.exit, 0) << many.err;
    EXPECT_THAT(many.out, HasSubstr("Pavex:///A"));
    ExpectOneClearLine(home.Run({"search", "word*"}), 1, {"too many different words begin so"});
}

// The engine's own limit, as the manual page has it.
TEST(ProgramSearchHome, LeavesANoteOfMoreThanTenMillionBytesOutAndTakesTheRest)
{
    ProgramHome home;
    const std::string folder = home.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight/0123456789ABCDEF/");
    fs::create_directories(folder);
    const auto write = [&folder](const std::string& name, size_t bytes) {
        std::string body;
        body.reserve(bytes + 20);
        while (body.size() + 6 < bytes)
            body += "words ";
        body.resize(bytes - 1, '.');
        WriteWholeFile(
            folder + name + ".vPavexNote",
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict><key>title</key><string>" + name +
                " quince</string><key>com.quorvex.pavex.uri</key><string>Pavex:///" + name +
                "</string><key>com.quorvex.pavex.content</key><string>" + body + "</string></dict></plist>\n");
    };
    write("A", 100);
    write("B", 10'000'000);
    write("C", 10'000'002);
    write("D", 100);
    const ProgramResult result = home.Run({"search", "--json", "quince"});
    EXPECT_EQ(result.exit, 0) << result.err;
    Lines found;
    std::istringstream lines(result.out);
    for (std::string line; std::getline(lines, line);)
        found.push_back(Json::parse(line)["title"]);
    EXPECT_THAT(found, testing::UnorderedElementsAre("A quince", "B quince", "D quince"));
}

TEST(ProgramSearchHome, SaysWhatIsMissing)
{
    ProgramHome home;
    ExpectOneClearLine(home.Run({"search", "zebra"}), 1, {"nothing is indexed yet", "pavex import SOURCE"});
    for (const Lines& wrong : std::vector<Lines>{{"search"},
                                                 {"search", "--after", "yesterday", "x"},
                                                 {"search", "--before", "2007-02-30", "x"},
                                                 {"search", "--kind", "memo", "x"},
                                                 {"search", "--limit", "0", "x"},
                                                 {"open"}}) {
        const ProgramResult result = home.Run(wrong);
        EXPECT_EQ(result.exit, 2) << testing::PrintToString(wrong);
        EXPECT_EQ(result.out, "");
        EXPECT_NE(result.err, "");
    }
    home.ImportSample();
    (void)home.Index();
    Process without(
        {"env", "PATH=/nowhere", TORVIK_BINARY_DIR "/bin/pavex", "--home", home.Path("home"), "search", "x"},
        home.Path("without"));
    ExpectOneClearLine(without.Wait(), 1, {"Recoll is not installed", "recollcmd"});
}

TEST(ProgramSearchHome, SaysThatANoteHasNoTitle)
{
    ProgramHome home;
    WriteWholeFile(home.Path("m.eml"), "From: ann@example.org\nDate: Mon, 5 Mar 2007 14:00:00 +0000\n\nquince\n");
    ASSERT_EQ(home.Run({"import", home.Path("m.eml")}).exit, 0);
    home.Enable();
    (void)home.Index();
    EXPECT_THAT(home.Run({"search", "quince"}).out, HasSubstr("  (no title)\n"));
}

TEST(ProgramSearchHome, OnAPathWithALineBreakIsRefused)
{
    ProgramHome home;
    const std::string odd = home.Path("a\nb");
    const auto run = [&](const std::vector<std::string>& arguments) {
        std::vector<std::string> command = {TORVIK_BINARY_DIR "/bin/pavex", "--home", odd};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return Process(command, home.Path("odd")).Wait();
    };
    ASSERT_EQ(run({"import", TORVIK_SOURCE_DIR "/samples/mail"}).exit, 0);
    ASSERT_EQ(run({"settings", "--enable", "--yes"}).exit, 0);
    ASSERT_EQ(run({"index", "--full-speed"}).exit, 0);
    ExpectOneClearLine(run({"search", "garden"}), 1, {"a b/caches", "line break"});
}

}  // namespace
}  // namespace pavex
