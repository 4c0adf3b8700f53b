// tests/client/foundation/folders_test.cpp: file references and the caches folder.
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <filesystem>

#include "tests/client/foundation/foundation_fixture.h"
#include "tests/support/temporary_directory.h"

class FoundationFolders : public FoundationTest {
protected:
    void TearDown() override
    {
        pavex::SetCachesFolder("");
        FoundationTest::TearDown();
    }
    static std::string PathOfReference(const FSRef& ref)
    {
        UInt8 path[4096];
        const OSStatus status = FSRefMakePath(&ref, path, sizeof path);
        return status == noErr ? reinterpret_cast<const char*>(path) : std::to_string(status);
    }
    static OSErr FindCaches(FSRef* ref, bool create = false)
    {
        return FSFindFolder(kUserDomain, kCachedDataFolderType, create, ref);
    }
    TemporaryDirectory folder_;
    const std::string there_ = std::filesystem::canonical(folder_.Path()).string();
};

TEST_F(FoundationFolders, FindsTheCachesFolderThatWasSet)
{
    pavex::SetCachesFolder(there_);
    FSRef ref;
    ASSERT_EQ(FindCaches(&ref), noErr);
    EXPECT_EQ(PathOfReference(ref), there_);
}

TEST_F(FoundationFolders, AnswersNotFoundWithoutACachesFolder)
{
    FSRef ref;
    EXPECT_EQ(FindCaches(&ref), fnfErr);
    pavex::SetCachesFolder(there_ + "/absent");
    EXPECT_EQ(FindCaches(&ref), fnfErr);
    WriteWholeFile(there_ + "/file", "");
    pavex::SetCachesFolder(there_ + "/file");
    EXPECT_EQ(FindCaches(&ref), fnfErr);
    pavex::SetCachesFolder(there_);
    EXPECT_EQ(FSFindFolder(0, kCachedDataFolderType, 0, &ref), fnfErr);
    EXPECT_EQ(FSFindFolder(kUserDomain, 0x64657374, 0, &ref), fnfErr);
}

TEST_F(FoundationFolders, CreatesTheCachesFolderOnRequest)
{
    pavex::SetCachesFolder(there_ + "/caches");
    FSRef ref;
    ASSERT_EQ(FindCaches(&ref, true), noErr);
    EXPECT_EQ(PathOfReference(ref), there_ + "/caches");
    EXPECT_TRUE(std::filesystem::is_directory(there_ + "/caches"));
}

TEST_F(FoundationFolders, APathThatDoesNotFitIsTooLong)
{
    pavex::SetCachesFolder(there_);
    FSRef ref;
    ASSERT_EQ(FindCaches(&ref), noErr);
    std::vector<UInt8> path(there_.size() + 1, '#');
    EXPECT_EQ(FSRefMakePath(&ref, path.data(), static_cast<UInt32>(there_.size())), pathTooLongErr);
    EXPECT_EQ(FSRefMakePath(&ref, path.data(), 0), pathTooLongErr);
    EXPECT_EQ(FSRefMakePath(&ref, path.data(), static_cast<UInt32>(there_.size() + 1)), noErr);
    EXPECT_STREQ(reinterpret_cast<const char*>(path.data()), there_.c_str());
}

TEST_F(FoundationFolders, AReferenceNamesLongPathsToo)
{
    std::string path = there_;
    for (int i = 0; i < 8; ++i)
        path += "/" + std::string(200, static_cast<char>('a' + i));
    ASSERT_TRUE(std::filesystem::create_directories(path));
    for (size_t length = 60; length < 100; ++length) {
        const std::string padded = there_ + "/" + std::string(length, 'p');
        std::filesystem::create_directory(padded);
        FSRef ref;
        ASSERT_TRUE(CFURLGetFSRef(MakeUrl(padded, true), &ref));
        EXPECT_EQ(PathOfReference(ref), padded);
    }
    FSRef first, second;
    ASSERT_TRUE(CFURLGetFSRef(MakeUrl(path, true), &first));
    ASSERT_TRUE(CFURLGetFSRef(MakeUrl(path, true), &second));
    EXPECT_EQ(PathOfReference(first), path);
    EXPECT_TRUE(std::equal(std::begin(first.hidden), std::end(first.hidden), std::begin(second.hidden)));
}

TEST_F(FoundationFolders, OnlyAnExistingItemHasAReference)
{
    FSRef ref;
    EXPECT_FALSE(CFURLGetFSRef(MakeUrl(there_ + "/absent", false), &ref));
    EXPECT_FALSE(CFURLGetFSRef(nullptr, &ref));
    std::filesystem::create_directory(there_ + "/gone");
    ASSERT_TRUE(CFURLGetFSRef(MakeUrl(there_ + "/gone", true), &ref));
    std::filesystem::remove(there_ + "/gone");
    EXPECT_EQ(PathOfReference(ref), std::to_string(fnfErr));
    std::fill(std::begin(ref.hidden), std::end(ref.hidden), UInt8{0xFF});
    EXPECT_EQ(PathOfReference(ref), std::to_string(fnfErr));
    std::fill(std::begin(ref.hidden), std::end(ref.hidden), UInt8{2});
    EXPECT_EQ(PathOfReference(ref), std::to_string(fnfErr));
    std::fill(std::begin(ref.hidden), std::end(ref.hidden), UInt8{1});
    EXPECT_EQ(PathOfReference(ref), std::to_string(fnfErr));
}

TEST_F(FoundationFolders, SymbolicLinksAreFollowed)
{
    std::filesystem::create_directory(there_ + "/real");
    std::filesystem::create_symlink("real", there_ + "/link");
    std::filesystem::create_symlink("nowhere", there_ + "/dangling");
    FSRef ref;
    ASSERT_TRUE(CFURLGetFSRef(MakeUrl(there_ + "/link", true), &ref));
    EXPECT_EQ(PathOfReference(ref), there_ + "/real");
    EXPECT_FALSE(CFURLGetFSRef(MakeUrl(there_ + "/dangling", false), &ref));
}

// Walking up by deleting components meets "/..", "x//.." and "../..": each walk must come to something
// that exists, whether or not its start does.
TEST_F(FoundationFolders, EveryWalkTowardsTheRootEnds)
{
    for (const std::string& start :
         {there_ + "/no/such//folder/x", there_ + "/no//", std::string("/no//such/./x"), std::string("/"),
          std::string("no/such"), std::string("no//../x"), std::string("/no/../such/.."), std::string("//no//such")}) {
        Owned<CFURLRef> url = MakeUrl(start, false);
        FSRef ref;
        int steps = 0;
        while (!CFURLGetFSRef(url, &ref) && steps < 50) {
            url = Owned<CFURLRef>(CFURLCreateCopyDeletingLastPathComponent(nullptr, url));
            ++steps;
        }
        EXPECT_LT(steps, 50) << start;
    }
}
