// tests/metastore/metafile_path_test.cpp: where metafiles lie, and the command that touches them.
#include "metastore/metafile_path.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>

#include "platform/owner.h"
#include "tests/metastore/caches_fixture.h"

namespace {

using UrlOwner = CFOwner<CFURLRef>;

class MetafilePath : public Caches {
protected:
    static std::string Root()
    {
        const UrlOwner root(SearchEngine::CopyUserMetaDataFolder());
        return FileSystemPath(root.Get());
    }

    static std::string Component(const char* url)
    {
        const CFOwner<CFStringRef> text(CString(url).toCFStringRef());
        const CFOwner<CFStringRef> component(CopyMetafileComponent(text.Get()));
        return CString(component.Get()).toString();
    }
};

TEST_F(MetafilePath, HasItsRootBelowTheCachesFolder)
{
    EXPECT_EQ(Root(), caches_ / kCurrentRoot);
    EXPECT_TRUE(std::filesystem::is_empty(caches_.Path()));  // made when it is needed
}

TEST_F(MetafilePath, KeepsTheOlderLayoutWhereItIsThere)
{
    std::filesystem::create_directories(caches_ / kOlderRoot);
    EXPECT_EQ(Root(), caches_ / kOlderRoot);
}

TEST_F(MetafilePath, TakesAnOlderRootOnlyForAFolder)
{
    std::filesystem::create_directories(caches_ / "Metadata/Quorvex/Morvane Pavex");
    WriteWholeFile(caches_ / kOlderRoot, "a file");
    EXPECT_EQ(Root(), caches_ / kCurrentRoot);
}

TEST_F(MetafilePath, HasNoRootWithoutACachesFolder)
{
    pavex::SetCachesFolder("");
    EXPECT_EQ(Root(), "");
}

TEST_F(MetafilePath, CutsALongRootAtItsLimit)
{
    const std::string deep = caches_ / std::string(235 - caches_.Path().string().size() - 1, 'd');
    std::filesystem::create_directories(deep);
    ASSERT_EQ(deep.size(), 235U);
    pavex::SetCachesFolder(deep);
    EXPECT_EQ(Root(), (deep + "/" + kCurrentRoot).substr(0, 255));
}

TEST_F(MetafilePath, MakesTheUrlAPathOfFolderAndFile)
{
    EXPECT_EQ(Component("Pavex:///AAAA//BBBBCCCC"), "AAAA/BBBBCCCC");
    EXPECT_EQ(Component("pavex:///AAAA//B"), "pavex://AAAA/B");  // the prefix is compared as it stands
    EXPECT_EQ(Component("AAAA//B"), "AAAA/B");
    EXPECT_EQ(Component("Pavex:///A//Pavex:///B"), "A/B");
    EXPECT_EQ(Component(""), "");
}

TEST_F(MetafilePath, NamesTheKindInTheExtension)
{
    const OwnSearchEngine engine;
    const std::pair<uint32_t, const char*> kinds[] = {
        {0, "vPavexMessage"},    {1, "vPavexCalendar"}, {2, "vPavexTask"}, {3, "vPavexContact"}, {4, "vPavexJournal"},
        {5, "vPavexDiscussion"}, {6, "vPavexHistory"},  {7, "vPavexNote"}, {8, "vPavexNote"},    {99, "vPavexNote"},
    };
    for (const auto& [type, extension] : kinds) {
        const UrlOwner path(
            engine.GetMetaFilePath(Event(static_cast<SearchEngineEventType>(type), "Pavex:///AAAA//BBBBCCCC", "t")));
        EXPECT_EQ(FileSystemPath(path.Get()), Below(std::string("AAAA/BBBBCCCC.") + extension));
    }
}

TEST_F(MetafilePath, IsNullWithoutANoteUrl)
{
    const OwnSearchEngine engine;
    EXPECT_EQ(engine.GetMetaFilePath(SearchEngineEvent(kSearchEventMessage)), nullptr);
}

TEST_F(MetafilePath, IsThereWithoutAnExtensionToo)
{
    const OwnSearchEngine engine;
    const CFOwner<CFStringRef> url(CString("Pavex:///AAAA//BBBBCCCC").toCFStringRef());
    const UrlOwner path(engine.GetNoneExtMetaFilePathForNoteEntry(url.Get()));
    EXPECT_EQ(FileSystemPath(path.Get()), Below("AAAA/BBBBCCCC"));
}

TEST_F(MetafilePath, TooLongForTheFileSystemReadsAsNone)
{
    const std::string longPath = "/" + std::string(1100, 'x');
    const UrlOwner url(CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(longPath.data()),
                                                               static_cast<CFIndex>(longPath.size()), false));
    EXPECT_EQ(FileSystemPath(url.Get()), "");
    EXPECT_EQ(FileSystemPath(nullptr), "");
}

TEST_F(MetafilePath, HasOneTemporaryNameForEveryKind)
{
    EXPECT_EQ(TemporaryMetafile("/caches/AAAA/BBBB"), "/caches/AAAA/.BBBB.part");
    EXPECT_EQ(TemporaryMetafile("BBBB"), ".BBBB.part");
}

TEST_F(MetafilePath, IsEscapedInTheTouchCommand)
{
    EXPECT_EQ(TouchCommand("/a b/c.vPavexNote"), "touch \"/a b/c.vPavexNote\"");
    EXPECT_EQ(TouchCommand("/a\"$b`\\"), "touch \"/a\\\"\\$b\\`\\\\\"");
}

TEST_F(MetafilePath, IsAllThatTheTouchCommandTouches)
{
    const std::string name =
        "a\"; $(touch " + (caches_ / "ran") + ") `touch " + (caches_ / "ran") + "` $HOME \\ ' \n *";
    std::string flat = name;
    std::replace(flat.begin(), flat.end(), '/', '|');
    ASSERT_EQ(std::system(TouchCommand(caches_ / flat).c_str()), 0);
    EXPECT_EQ(Files(), std::vector<std::string>{flat});
}

TEST_F(MetafilePath, HasItsMissingFoldersMadeForTheOwnerOnly)
{
    const std::string folder = Below("AAAA");
    const UrlOwner url(CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(folder.data()),
                                                               static_cast<CFIndex>(folder.size()), true));
    EXPECT_TRUE(EnsureValidPath(url.Get()));
    EXPECT_TRUE(EnsureValidPath(url.Get()));  // there already
    for (const char* made : {"Metadata", "Metadata/Quorvex", "Metadata/Quorvex/Pavex", kCurrentRoot}) {
        struct stat status;
        ASSERT_EQ(stat((caches_ / made).c_str(), &status), 0) << made;
        EXPECT_EQ(status.st_mode & 07777U, 0700U) << made;
    }
    EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST_F(MetafilePath, IsNotValidBelowAFile)
{
    WriteWholeFile(caches_ / "Metadata", "in the way");
    const std::string folder = Below("AAAA");
    const UrlOwner url(CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>(folder.data()),
                                                               static_cast<CFIndex>(folder.size()), true));
    EXPECT_FALSE(EnsureValidPath(url.Get()));
    EXPECT_FALSE(EnsureValidPath(nullptr));
    const UrlOwner root(CFURLCreateFromFileSystemRepresentation(nullptr, reinterpret_cast<const UInt8*>("/"), 1, true));
    EXPECT_TRUE(EnsureValidPath(root.Get()));
}

}  // namespace
