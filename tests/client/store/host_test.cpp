// tests/client/store/host_test.cpp: places, folders and the end of the client.
#include "client/store/host.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "platform/foundation.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

namespace {

// Sets a variable of the process for a test's length; null: takes it away.
class Variable {
public:
    Variable(const char* name, const char* value) : name_(name)
    {
        const char* const old = std::getenv(name);
        hadOld_ = old != nullptr;
        old_ = hadOld_ ? old : "";
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    }
    ~Variable() { hadOld_ ? setenv(name_, old_.c_str(), 1) : unsetenv(name_); }
    Variable(const Variable&) = delete;
    Variable& operator=(const Variable&) = delete;

private:
    const char* name_;
    bool hadOld_;
    std::string old_;
};

std::vector<std::string> All(const Places& places)
{
    return {places.ini, places.policy, places.data, places.caches, places.log};
}

}  // namespace

TEST(FindPlaces, PutsEverythingUnderTheHomeOption)
{
    const Variable home("PAVEX_HOME", "/elsewhere");
    EXPECT_EQ(All(FindPlaces("/h/")),
              (std::vector<std::string>{"/h/pavex.ini", "/h/policy.ini", "/h/data", "/h/caches", "/h/log/pavex.log"}));
    EXPECT_EQ(FindPlaces("").data, "/elsewhere/data");
    EXPECT_EQ(FindPlaces("relative").data, std::filesystem::current_path().string() + "/relative/data");
}

TEST(FindPlaces, UsesTheXdgFoldersElse)
{
    const Variable pavexHome("PAVEX_HOME", nullptr);
    const Variable home("HOME", "/home/ann");
    const Variable config("XDG_CONFIG_HOME", "/c");
    const Variable data("XDG_DATA_HOME", nullptr);
    const Variable cache("XDG_CACHE_HOME", "relative");  // not an absolute path: does not count
    const Variable state("XDG_STATE_HOME", "/s");
    EXPECT_EQ(All(FindPlaces("")),
              (std::vector<std::string>{"/c/pavex/pavex.ini", "/etc/pavex/policy.ini", "/home/ann/.local/share/pavex",
                                        "/home/ann/.cache", "/s/pavex/pavex.log"}));
}

TEST(StartHost, MakesPrivateFolders)
{
    TemporaryDirectory dir;
    std::string problem;
    ASSERT_TRUE(StartHost(FindPlaces(dir / "new/home"), &problem)) << problem;
    for (const char* folder : {"new", "new/home", "new/home/data", "new/home/caches", "new/home/log"}) {
        struct stat status {};
        ASSERT_EQ(stat((dir / folder).c_str(), &status), 0) << folder;
        EXPECT_EQ(status.st_mode & 0777, 0700u) << folder;
    }
    EXPECT_EQ(CurrentPlaces().data, dir / "new/home/data");
    EXPECT_TRUE(StartHost(FindPlaces(dir / "new/home"), &problem));
}

TEST(StartHost, SaysWhichFolderCannotBeMade)
{
    TemporaryDirectory dir;
    WriteWholeFile(dir / "file", "");
    std::string problem;
    EXPECT_FALSE(StartHost(FindPlaces(dir / "file/home"), &problem));
    EXPECT_EQ(problem, "cannot make the folder " + (dir / "file/home") + ": Not a directory");
    EXPECT_FALSE(StartHost(FindPlaces(dir / "file"), &problem));
}

TEST(StartHost, RefusesADataDirectoryThatTheAddInHasNoRoomFor)
{
    TemporaryDirectory dir;
    std::string home = dir / "h";
    home.append(100, 'x').append("/");
    home.append(250 - home.size(), 'y');  // and "/data"
    std::string problem;
    ASSERT_TRUE(StartHost(FindPlaces(home), &problem)) << problem;
    char path[256] = "";
    EXPECT_EQ(OSGetDataDirectory(path), 255);
    EXPECT_EQ(path, home + "/data");

    home += "z";
    EXPECT_FALSE(StartHost(FindPlaces(home), &problem));
    EXPECT_EQ(problem, "cannot use the data directory " + home + "/data: its path has 256 bytes, more than 255");
    EXPECT_FALSE(std::filesystem::exists(home));
}

using Host = HostFixture;

TEST_F(Host, TellsTheDataDirectoryWithinItsBuffer)
{
    char path[256] = "";
    const WORD length = OSGetDataDirectory(path);
    EXPECT_EQ(length, std::string(path).size());
    EXPECT_EQ(path, dir / "data");
}

TEST_F(Host, EndsOnRequest)
{
    EXPECT_FALSE(AddInShouldTerminate());
    RequestTermination();
    EXPECT_TRUE(AddInShouldTerminate());
    RequestTermination(false);
    EXPECT_FALSE(AddInShouldTerminate());
}

TEST_F(Host, HasABundleOnceItWasToldWhere)
{
    EXPECT_EQ(GetPavexBundle(), nullptr);
    std::filesystem::create_directories(dir / "bundle/en.lproj");
    SetAddInBundle(dir / "bundle");
    EXPECT_NE(GetPavexBundle(), nullptr);
    SetAddInBundle("");
    EXPECT_EQ(GetPavexBundle(), nullptr);
}

TEST_F(Host, GivesTheCachesFolderToTheFoundation)
{
    FSRef ref{};
    char path[1024] = "";
    ASSERT_EQ(FSFindFolder(kUserDomain, kCachedDataFolderType, true, &ref), 0);
    void* const bytes = path;
    ASSERT_EQ(FSRefMakePath(&ref, static_cast<UInt8*>(bytes), sizeof path), 0);
    EXPECT_EQ(std::filesystem::canonical(path), std::filesystem::canonical(dir / "caches"));
}
