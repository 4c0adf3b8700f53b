// tests/client/search/configuration_test.cpp: the search engine's settings of a home.
#include "client/search/configuration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "client/search/kinds.h"
#include "content/note_url.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using testing::HasSubstr;
using testing::Not;

constexpr const char* kTemplates = TORVIK_SOURCE_DIR "/client/search/recoll";

class Configuration : public testing::Test {
private:
    TemporaryDirectory home_;

protected:
    SearchFolders folders_{kTemplates, "/c a/\"Q\"/Spotlight", home_ / "search"};

    void Write()
    {
        std::string error;
        ASSERT_TRUE(WriteConfiguration(folders_, &error)) << error;
    }
    std::string Text(const std::string& name) const { return ReadWholeFile(folders_.home + "/" + name); }
};

TEST_F(Configuration, NamesTheFoldersOfTheHomeAndLeavesNoPlaceUnfilled)
{
    Write();
    EXPECT_THAT(Text("recoll.conf"), HasSubstr("topdirs = \"/c a/\\\"Q\\\"/Spotlight\"\n"));
    EXPECT_THAT(Text("recoll.conf"), HasSubstr("logfilename = " + folders_.home + "/log\n"));
    EXPECT_THAT(Text("mimeconf"), HasSubstr(".." + folders_.home + "/pavex.xsl\""));
    for (const char* name : {"recoll.conf", "mimemap", "mimeconf", "fields", "pavex.xsl"})
        EXPECT_FALSE(testing::Value(Text(name), testing::ContainsRegex("@[A-Z]+@"))) << name;
}

TEST_F(Configuration, KnowsEveryKindInEveryFile)
{
    Write();
    for (const SearchKind& kind : kSearchKinds) {
        EXPECT_THAT(Text("mimemap"), HasSubstr(std::string(" = ") + kind.mediaType + "\n"));
        EXPECT_THAT(Text("mimeconf"), HasSubstr(std::string(kind.mediaType) + " = internal xsltproc "));
        EXPECT_THAT(Text("recoll.conf"), HasSubstr(kind.mediaType));
    }
}

TEST_F(Configuration, IsTheUsersAlone)
{
    Write();
    EXPECT_EQ(fs::status(folders_.home).permissions(), fs::perms(0700));
    for (const fs::directory_entry& entry : fs::directory_iterator(folders_.home))
        EXPECT_EQ(entry.status().permissions(), fs::perms(0600)) << entry.path();
}

TEST_F(Configuration, StaysWithItsIndexWhileItIsWhatItShouldBe)
{
    Write();
    fs::create_directory(folders_.home + "/xapiandb");
    WriteWholeFile(folders_.home + "/recoll.conf", "rewritten by the search window\n");
    Write();
    EXPECT_TRUE(fs::exists(folders_.home + "/xapiandb"));
    EXPECT_EQ(Text("recoll.conf"), "rewritten by the search window\n");
}

TEST_F(Configuration, IsWrittenAnewWithoutAnIndexWhenTheMetafilesMoved)
{
    Write();
    fs::create_directory(folders_.home + "/xapiandb");
    folders_.metadata = "/other/Spotlight";
    Write();
    EXPECT_FALSE(fs::exists(folders_.home + "/xapiandb"));
    EXPECT_THAT(Text("recoll.conf"), HasSubstr("topdirs = \"/other/Spotlight\"\n"));
}

TEST_F(Configuration, HasTheSearchWindowOpenEveryKindOfNoteByItsUrl)
{
    folders_.opener = {"/o \"p%q/pavex", "--home", "/h 5%"};
    Write();
    const std::string viewers = Text("mimeview");
    const std::string exceptions = viewers.substr(0, viewers.find('\n')) + " ";
    EXPECT_TRUE(exceptions.starts_with("xallexcepts = "));
    for (const SearchKind& kind : kSearchKinds) {
        EXPECT_THAT(exceptions, HasSubstr(std::string(" ") + kind.mediaType + " "));
        EXPECT_THAT(viewers, HasSubstr(std::string(kind.mediaType) +
                                       " = \"/o \\\"p%q/pavex\" \"--home\" \"/h 5%%\" open --window %(uri)\n"));
    }
}

TEST_F(Configuration, KeepsItsIndexWhenTheProgramMoved)
{
    folders_.opener = {"/one/pavex"};
    Write();
    fs::create_directory(folders_.home + "/xapiandb");
    folders_.opener = {"/two/pavex"};
    Write();
    EXPECT_TRUE(fs::exists(folders_.home + "/xapiandb"));
    EXPECT_THAT(Text("mimeview"), HasSubstr("\"/two/pavex\" open"));
    EXPECT_THAT(Text("mimeview"), Not(HasSubstr("/one/")));
}

TEST_F(Configuration, IsWrittenAnewWithoutWhatWasThereAndTouchesNothingElse)
{
    Write();
    const std::string other = fs::path(folders_.home).parent_path() / "other";
    fs::create_directories(other);
    WriteWholeFile(other + "/file", "stays");
    fs::create_directory(folders_.home + "/xapiandb");
    fs::create_directory_symlink(other, folders_.home + "/xapiandb/link");
    std::string error;
    EXPECT_TRUE(WriteConfigurationAnew(folders_, &error)) << error;
    EXPECT_FALSE(fs::exists(folders_.home + "/xapiandb"));
    EXPECT_EQ(ReadWholeFile(other + "/file"), "stays");
    EXPECT_NE(Text("recoll.conf"), "");
}

TEST_F(Configuration, SaysWhatIsMissing)
{
    folders_.templates = "/nowhere";
    std::string error;
    EXPECT_FALSE(WriteConfiguration(folders_, &error));
    EXPECT_THAT(error, HasSubstr("/nowhere/recoll.conf"));
}

TEST_F(Configuration, CutsTheTextAtTheMarkerThatIsWritten)
{
    EXPECT_STREQ(kTextMarker, CookieLead);
}

TEST_F(Configuration, TellsTheNamesOfFieldsAndTheirAliases)
{
    const std::set<std::string> names = ReadFieldNames(folders_);
    for (const char* name : {"from", "to", "title", "category", "place", "location", "due", "duedate", "phone", "cc"})
        EXPECT_THAT(names, Contains(name));
    for (const char* name : {"filename", "pavexdate", "mime", "date", "", "http"})
        EXPECT_THAT(names, Not(Contains(name)));
}

TEST(MetadataFolder, IsTheOlderLayoutsWhereThereIsOne)
{
    TemporaryDirectory caches;
    const std::string path = caches.Path().string();
    EXPECT_EQ(MetadataFolder(path), path + "/Metadata/Quorvex/Pavex/Spotlight");
    fs::create_directories(path + "/Metadata/Quorvex/Morvane Pavex/Spotlight");
    EXPECT_EQ(MetadataFolder(path), path + "/Metadata/Quorvex/Morvane Pavex/Spotlight");
    EXPECT_EQ(MetadataFolder(std::string(300, 'x')), std::string(255, 'x'));
}

}  // namespace
}  // namespace pavex
