// tests/client/app/samples_test.cpp: all samples, from their files to their metafiles, by the built program.
#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

constexpr const char* kSamples = TORVIK_SOURCE_DIR "/samples/";
constexpr const char* kDatabases[] = {"mail.vlt", "names.vlt", "calendar.vlt", "documents.vlt", "bookmark.vlt"};

class SamplesTest : public testing::Test {
protected:
    SamplesTest() { setenv("TZ", "Europe/Berlin", 1); }  // where times without a zone are
    ~SamplesTest() override { unsetenv("TZ"); }

    nlohmann::ordered_json Import()
    {
        std::vector<std::string> command = {"import", "--json"};
        for (const char* folder : {"mail", "contacts", "calendar", "bookmarks", "documents"})
            command.push_back(std::string(kSamples) + folder);
        nlohmann::ordered_json report = home_.RunJson(command);
        const nlohmann::ordered_json list =
            home_.RunJson({"import", "--json", "--as", "discussion", std::string(kSamples) + "list"});
        for (const char* count : {"added", "updated", "unchanged"})
            report[count] = report[count].get<int>() + list[count].get<int>();
        report["rejected"].insert(report["rejected"].end(), list["rejected"].begin(), list["rejected"].end());
        return report;
    }

    void Enable()
    {
        const ProgramResult result =
            home_.Run({"settings", "--enable", "--yes", "--add", "calendar.vlt", "--add", "documents.vlt", "--drafts",
                       "on", "--discussion", "on", "--history", "on"});
        ASSERT_EQ(result.exit, 0) << result.err;
    }

    void ListNotes()
    {
        std::filesystem::create_directory(home_.Path("lists"));
        for (const std::string database : kDatabases)
            WriteWholeFile(home_.Path("lists/" + database),
                           home_.Run({"note", "list", "--db", database, "--json"}).out);
    }

    ProgramResult Compare(std::time_t since)
    {
        ListNotes();
        Process python({"python3", "-B", TORVIK_SOURCE_DIR "/tests/client/app/sample_sources/compare_samples.py",
                        home_.Path("home/caches/Metadata/Quorvex/Pavex/Spotlight"), home_.Path("lists"), kSamples,
                        std::to_string(since)},
                       home_.Path("python"));
        return python.Wait();
    }

    ProgramHome home_;
};

TEST_F(SamplesTest, BecomeMetafilesWhosePropertiesAreWhatTheirSourcesSay)
{
    const std::time_t since = std::time(nullptr);
    const nlohmann::ordered_json report = Import();
    EXPECT_EQ(report["rejected"], nlohmann::ordered_json::array());
    Enable();
    const nlohmann::ordered_json indexed = home_.RunJson({"index", "--full-speed", "--json"});
    int total = indexed["history"]["indexed"];
    for (const nlohmann::ordered_json& database : indexed["databases"])
        total += database["indexed"].get<int>();
    EXPECT_EQ(total, report["added"].get<int>()) << indexed;
    const ProgramResult compared = Compare(since);
    EXPECT_EQ(compared.exit, 0) << compared.out << compared.err;
}

TEST_F(SamplesTest, AreFoundByExactlyTheWordsAndFieldsThatTheyHold)
{
    setenv("TZ", "UTC", 1);
    (void)Import();
    Enable();
    (void)home_.RunJson({"index", "--full-speed", "--json"});
    const std::string folder = TORVIK_SOURCE_DIR "/tests/client/app/sample_queries/";
    Process python({"python3", "-B", folder + "check_search.py", TORVIK_BINARY_DIR "/bin/pavex", home_.Path("home"),
                    folder + "queries.txt", TORVIK_SOURCE_DIR "/client/search/recoll/fields"},
                   home_.Path("python"));
    const ProgramResult result = python.Wait();
    EXPECT_EQ(result.exit, 0) << result.out << result.err;
}

TEST_F(SamplesTest, AreUnchangedWhenTheyAreImportedAgain)
{
    const int added = Import()["added"];
    const nlohmann::ordered_json again = Import();
    EXPECT_EQ(again["added"], 0);
    EXPECT_EQ(again["updated"], 0);
    EXPECT_GE(again["unchanged"].get<int>(), added);
}

}  // namespace
}  // namespace pavex
