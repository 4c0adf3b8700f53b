// tests/client/check/metafile_folder_test.cpp: what lies in the metadata folder, by name.
#include "client/check/metafile_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "client/store/timedate.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr const char* kFirst = "0123456789ABCDEF8025000000000001";
constexpr const char* kSecond = "0123456789ABCDEF8025000000000002";

class MetafileFolderTest : public testing::Test {
protected:
    void Touch(const std::string& name)
    {
        fs::create_directories(fs::path(dir_ / name).parent_path());
        WriteWholeFile(dir_ / name, "x");
    }
    MetafileFolder Read()
    {
        MetafileFolder folder;
        std::string error;
        EXPECT_TRUE(ReadMetafileFolder(dir_.Path(), &folder, &error)) << error;
        return folder;
    }
    std::vector<std::string> Names(const std::vector<std::string>& paths)
    {
        std::vector<std::string> names;
        for (const std::string& path : paths)
            names.push_back(fs::relative(path, dir_.Path()));
        return names;
    }

    TemporaryDirectory dir_;
};

TEST_F(MetafileFolderTest, GathersTheFilesOfANoteUnderItsUnid)
{
    Touch(std::string(kSecond) + ".vPavexNote");
    Touch(std::string(kFirst) + ".vPavexTask");
    Touch(std::string(kSecond) + ".vPavexMessage");
    MetafileFolder folder = Read();
    ASSERT_EQ(folder.notes.size(), 2U);
    EXPECT_EQ(HexFromUnid(folder.notes[0].unid), kFirst);
    EXPECT_EQ(folder.notes[0].kinds, 1U << 2);
    EXPECT_EQ(folder.notes[1].kinds, 1U << 0 | 1U << 7);
    ASSERT_NE(folder.Find(*UnidFromHex(kSecond)), nullptr);
    EXPECT_EQ(HexFromUnid(folder.Find(*UnidFromHex(kSecond))->unid), kSecond);
    EXPECT_EQ(folder.Find(*UnidFromHex("0123456789ABCDEF8025000000000003")), nullptr);
    EXPECT_EQ(folder.FileOf(*UnidFromHex(kFirst), kSearchKinds[2]), dir_ / (std::string(kFirst) + ".vPavexTask"));
}

TEST_F(MetafileFolderTest, TellsStraysAndHalfWrittenFilesFromWhatIsNotOurs)
{
    Touch("0123456789abcdef8025000000000001.vPavexNote");  // digits in lower case: no pass would remove it
    Touch("copy of a note.vPavexMessage");
    Touch("below/deeper/x.vPavexTask");
    Touch(std::string(".") + kFirst + ".part");
    Touch(".other.part");
    Touch("notes.txt");
    Touch(std::string(kFirst) + ".VPAVEXNOTE");
    Touch(".vPavexNote");
    const MetafileFolder folder = Read();
    EXPECT_THAT(folder.notes, IsEmpty());
    EXPECT_THAT(Names(folder.strays),
                UnorderedElementsAre("0123456789abcdef8025000000000001.vPavexNote", "copy of a note.vPavexMessage",
                                     "below/deeper/x.vPavexTask"));
    EXPECT_THAT(Names(folder.halfWritten), ElementsAre(std::string(".") + kFirst + ".part"));
}

TEST_F(MetafileFolderTest, FollowsNoLinkBelowIt)
{
    TemporaryDirectory elsewhere;
    WriteWholeFile(elsewhere / "x.vPavexNote", "x");
    fs::create_directory_symlink(elsewhere.Path(), dir_ / "link");
    EXPECT_THAT(Read().strays, IsEmpty());
    MetadataRoot root;
    std::string error;
    fs::create_directory_symlink(elsewhere.Path(), dir_ / "0123456789ABCDEF");
    EXPECT_TRUE(ReadMetadataRoot(dir_.Path(), &root, &error));
    EXPECT_THAT(root.replicas, IsEmpty());
    EXPECT_THAT(root.strays, IsEmpty());
}

TEST_F(MetafileFolderTest, RefusesAFolderThatIsALinkOrNoFolder)
{
    TemporaryDirectory elsewhere;
    fs::create_directory_symlink(elsewhere.Path(), dir_ / "link");
    MetafileFolder folder;
    std::string error;
    EXPECT_FALSE(ReadMetafileFolder(dir_ / "link", &folder, &error));
    EXPECT_THAT(error, testing::HasSubstr("symbolic link"));
    WriteWholeFile(dir_ / "file", "x");
    EXPECT_FALSE(ReadMetafileFolder(dir_ / "file", &folder, &error));
    EXPECT_THAT(error, testing::HasSubstr("file: "));
}

TEST_F(MetafileFolderTest, IsEmptyWhenThereIsNone)
{
    MetafileFolder folder;
    std::string error;
    EXPECT_TRUE(ReadMetafileFolder(dir_ / "nowhere", &folder, &error));
    EXPECT_THAT(folder.notes, IsEmpty());
}

TEST_F(MetafileFolderTest, KnowsTheFoldersOfDatabasesByTheirNames)
{
    Touch("0123456789ABCDEF/x.txt");
    Touch("0123456789abcdef/x.vPavexNote");
    Touch("junk/x.vPavexNote");
    Touch("x.vPavexTask");
    Touch("readme.txt");
    MetadataRoot root;
    std::string error;
    EXPECT_TRUE(ReadMetadataRoot(dir_.Path(), &root, &error)) << error;
    EXPECT_THAT(root.replicas, ElementsAre("0123456789ABCDEF"));
    EXPECT_THAT(Names(root.strays),
                UnorderedElementsAre("0123456789abcdef/x.vPavexNote", "junk/x.vPavexNote", "x.vPavexTask"));
}

}  // namespace
}  // namespace pavex
