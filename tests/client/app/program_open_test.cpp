// tests/client/app/program_open_test.cpp: notes are shown and remembered.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

using Json = nlohmann::ordered_json;
using testing::HasSubstr;

constexpr const char* kZebra = R"({"items": {"Form": "Memo", "Subject": "Zebra", "From": "Ann", "Secret": "a\u001b[2Jb",
 "$Hidden": "not shown", "Body": {"richtext": ["First", "Second"]}}})";

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
    EXPECT_GT(second[0]["opened"].get<std::string>(), first[1]["opened"].get<std::string>());
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

}  // namespace
}  // namespace pavex
