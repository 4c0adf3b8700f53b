// tests/client/app/program_privacy_test.cpp: what the built program writes is nobody else's to read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

// Files and folders that the group or others may use.
std::vector<std::string> OpenToOthers(const fs::path& folder)
{
    constexpr fs::perms kOthers = fs::perms::group_all | fs::perms::others_all;
    std::vector<std::string> open;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if ((entry.status().permissions() & kOthers) != fs::perms::none)
            open.push_back(entry.path().string());
    return open;
}

// Files below the folder that hold the text.
std::vector<std::string> FilesWith(const std::string& text, const fs::path& folder)
{
    std::vector<std::string> files;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && ReadWholeFile(entry.path().string()).find(text) != std::string::npos)
            files.push_back(entry.path().filename().string());
    return files;
}

TEST(ProgramPrivacy, AWholeHomeIsTheUsersAloneWhateverTheUmask)
{
    ProgramHome home;
    const std::string program = TORVIK_BINARY_DIR "/bin/pavex --home " + home.Path("home");
    Process all({"sh", "-ec",
                 "umask 0\n" + program + " import " TORVIK_SOURCE_DIR "/samples/mail\n" + program +
                     " settings --enable --yes\n" + program + " index --full-speed\n" + "touch " + home.Path("open")},
                home.Path("all"));
    const ProgramResult result = all.Wait();
    ASSERT_EQ(result.exit, 0) << result.err;
    ASSERT_GT(home.CountMetafiles(), 60U);
    EXPECT_EQ(OpenToOthers(home.Path("home")), std::vector<std::string>());
    EXPECT_EQ(fs::status(home.Path("home")).permissions(), fs::perms(0700));
    EXPECT_EQ(fs::status(home.Path("open")).permissions(), fs::perms(0666)) << "the umask was that of the test";
}

TEST(ProgramPrivacy, WhatIsSearchedAndOpenedIsTheUsersAloneWhateverTheUmask)
{
    for (const std::string umask : {"0", "022", "0777"}) {
        SCOPED_TRACE("umask " + umask);
        ProgramHome home;
        (void)home.Put(
            "mail.vlt",
            R"({"items": {"Form": "Memo", "Subject": "Quinces", "PostedDate": {"time": "2007-03-05T14:00:00Z"}}})");
        home.Enable();
        (void)home.Index();
        const std::string program = TORVIK_BINARY_DIR "/bin/pavex --home " + home.Path("home");
        Process all({"sh", "-ec",
                     "umask " + umask + "\n" + program + " search quinces\n" + program + " open 1\n" + program +
                         " open --raw 1\n" + program + " history\n" + program + " index --full-speed\n" + program +
                         " search --kind history quinces"},
                    home.Path("all"));
        const ProgramResult result = all.Wait();
        ASSERT_EQ(result.exit, 0) << result.err;
        EXPECT_THAT(result.out, testing::HasSubstr("1. history"));
        for (const char* made : {"caches/pavex/search/xapiandb", "caches/pavex/search.lock", "caches/pavex/search/log",
                                 "log/last-search", "data/bookmark.vlt"})
            EXPECT_TRUE(fs::exists(home.Path(std::string("home/") + made))) << made;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(home.Path("home")))
            EXPECT_EQ(entry.status().permissions(), entry.is_directory() ? fs::perms(0700) : fs::perms(0600))
                << entry.path();
    }
}

TEST(ProgramPrivacy, ASealedNoteKeepsItsItemsAndNoneOfThemStandsInAFile)
{
    ProgramHome home;
    const Json items = {{"Form", "Memo"},
                        {"Subject", "Quinces are hidden"},
                        {"SendTo", {"hidden.reader@example.org"}},
                        {"Count", 1.5},
                        {"Body", {{"richtext", {"Medlars are hidden, too"}}}}};
    const Json note = {{"items", items}, {"sealed", true}};
    const Json open = {{"items", {{"Form", "Memo"}, {"Subject", "Plums are not"}}}};
    const std::vector<uint32_t> ids = home.Put("n.vlt", note.dump() + "\n" + open.dump());
    ASSERT_EQ(ids.size(), 2U);

    const Json got = home.RunJson({"note", "get", "--db", "n.vlt", "--json", std::to_string(ids[0])});
    EXPECT_EQ(got["items"], items);
    EXPECT_EQ(got["sealed"], true);
    (void)home.Put("n.vlt", got.dump());
    const Json again = home.RunJson({"note", "get", "--db", "n.vlt", "--json", std::to_string(ids[0])});
    EXPECT_EQ(again["items"], items);

    const std::string data = home.Path("home");
    EXPECT_NE(FilesWith("Plums are not", data), std::vector<std::string>()) << "an open note can be found";
    for (const char* hidden : {"Quinces", "hidden.reader", "Medlars"})
        EXPECT_EQ(FilesWith(hidden, data), std::vector<std::string>()) << hidden;
}

}  // namespace
}  // namespace pavex
