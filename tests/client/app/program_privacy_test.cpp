// tests/client/app/program_privacy_test.cpp: what the built program writes is nobody else's to read.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <sstream>

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

// What below the folder has other rights than a file or a folder of its user's alone, with its mode.  What goes while
// this looks was nobody's.
std::vector<std::string> NotTheUsersAlone(const fs::path& folder)
{
    std::vector<std::string> others;
    std::error_code gone;
    for (fs::recursive_directory_iterator entry(folder, gone), end; !gone && entry != end; entry.increment(gone)) {
        std::error_code left;
        const fs::file_status about = fs::symlink_status(entry->path(), left);
        if (left || about.type() == fs::file_type::not_found)
            continue;
        if (about.permissions() != (fs::is_directory(about) ? fs::perms(0700) : fs::perms(0600)))
            others.push_back(entry->path().string() + " " +
                             (std::ostringstream() << std::oct << static_cast<int>(about.permissions())).str());
    }
    return others;
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
        EXPECT_EQ(NotTheUsersAlone(home.Path("home")), std::vector<std::string>());
    }
}

class ProgramPrivacyUmask : public testing::TestWithParam<const char*> {
protected:
    ProgramPrivacyUmask()
    {
        fs::create_directories(home_.Path("m/cur"));
        fs::create_directories(home_.Path("m/new"));
        Deliver("quince");
    }

    void Deliver(const std::string& subject)
    {
        WriteWholeFile(home_.Path(subject), "From: Ann <ann@example.org>\nDate: Mon, 5 Mar 2007 14:00:00 +0000\n"
                                            "Subject: " +
                                                subject + "\nMessage-ID: <" + subject + "@example.org>\n\ntext\n");
        fs::rename(home_.Path(subject), home_.Path("m/new/" + subject));
    }
    // The command of a shell for a command of the program.
    std::string Pavex(const std::string& command) const
    {
        return TORVIK_BINARY_DIR "/bin/pavex --home " + home_.Path("home") + " " + command;
    }
    std::unique_ptr<Process> Start(const std::string& script)
    {
        return std::make_unique<Process>(
            std::vector<std::string>{"sh", "-ec", std::string("umask ") + GetParam() + "\n" + script},
            home_.Path("all" + std::to_string(runs_++)));
    }
    void RunAll(const std::string& script)
    {
        const ProgramResult result = Start(script)->Wait();
        ASSERT_EQ(result.exit, 0) << result.out << result.err;
    }
    std::string ReadRecords() const
    {
        const std::string path = home_.Path("home/data/watched.json");
        return fs::exists(path) ? ReadWholeFile(path) : "";
    }
    // A client that stays, until it has read in all that there is; what it has open is looked at, too.
    void Stay(const std::string& command, const std::string& subject)
    {
        SCOPED_TRACE(command);
        const std::string before = ReadRecords();
        const std::unique_ptr<Process> client = Start("exec " + Pavex(command));
        const auto isRead = [&] {
            const std::string records = ReadRecords();
            return records != before && records.find("\"read\": \"2") != records.npos;
        };
        ASSERT_TRUE(Eventually(isRead)) << subject;
        ExpectMade({"data/watch.lock", "data/client.lock", "data/watched.json", "data/mail.vlt"});
        ExpectAllTheUsersAlone();
        client->Signal(SIGTERM);
        EXPECT_EQ(client->Wait().exit, 0);
        EXPECT_THAT(home_.Run({"note", "list", "--db", "mail.vlt"}).out, testing::HasSubstr(subject));
        ExpectAllTheUsersAlone();
    }
    void ExpectMade(const std::vector<std::string>& files) const
    {
        for (const std::string& file : files)
            EXPECT_TRUE(fs::exists(home_.Path("home/" + file))) << file;
    }
    void ExpectAllTheUsersAlone() const
    {
        EXPECT_EQ(NotTheUsersAlone(home_.Path("home")), std::vector<std::string>());
        EXPECT_EQ(fs::status(home_.Path("home")).permissions(), fs::perms(0700));
    }

    ProgramHome home_;

private:
    int runs_ = 0;
};

TEST_P(ProgramPrivacyUmask, AClientThatStaysKeepsAllToItsUser)
{
    RunAll(Pavex("watch " + home_.Path("m")));
    ExpectMade({"pavex.ini"});
    ExpectAllTheUsersAlone();
    Stay("run", "quince");
    if (!fs::exists(TORVIK_BINARY_DIR "/lib/libpavexqt.so"))
        return;
    Deliver("medlar");
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    Stay("desktop", "medlar");
    unsetenv("QT_QPA_PLATFORM");
}

TEST_P(ProgramPrivacyUmask, ARepairKeepsAllToItsUser)
{
    RunAll(Pavex("import " + home_.Path("m")) + "\n" + Pavex("settings --enable --yes") + "\n" +
           Pavex("index --full-speed") + "\n" + Pavex("search quince"));
    ASSERT_EQ(home_.CountMetafiles(), 1U);
    for (const auto& [name, content] : home_.ReadMetafiles())
        fs::remove(home_.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight/" + name));
    RunAll(Pavex("check --repair | grep ': repaired$'") + "\n" + Pavex("index --full-speed") + "\n" +
           Pavex("explain 1") + "\n" + Pavex("check"));
    EXPECT_EQ(home_.CountMetafiles(), 1U);
    ExpectMade({"data/client.lock", "log/last-search", "log/pavex.log", "caches/pavex/search.lock"});
    ExpectAllTheUsersAlone();
}

INSTANTIATE_TEST_SUITE_P(Of, ProgramPrivacyUmask, testing::Values("0", "077", "0777"),
                         [](const auto& umask) { return "Umask" + std::string(umask.param); });

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
