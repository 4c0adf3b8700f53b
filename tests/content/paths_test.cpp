// tests/content/paths_test.cpp
#include "content/paths.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "client/store/charset.h"

namespace {

std::string Construct(const std::string& directory, const std::string& file)
{
    char path[kPathBytes + 8];
    std::memset(path, 0x55, sizeof path);
    const WORD length = MyPathConstruct(directory.c_str(), file.c_str(), path);
    for (size_t i = kPathBytes; i < sizeof path; ++i)
        EXPECT_EQ(path[i], 0x55);
    EXPECT_EQ(std::strlen(path), length);
    return path;
}

TEST(Paths, AnAbsolutePathBeginsWithASlashOrNamesAVolume)
{
    for (const char* path :
         {"/", "/Users/ann/mail.vlt", "//server/mail.vlt", ":", ":mail.vlt", "Disk:mail.vlt", "日本:x"})
        EXPECT_TRUE(MyPathIsAbsolute(path)) << path;
    for (const char* path : {"", "mail.vlt", "mail/notes.vlt", "./mail.vlt", "日本.vlt"})
        EXPECT_FALSE(MyPathIsAbsolute(path)) << path;
}

TEST(Paths, OneSeparatorStandsBetweenDirectoryAndFile)
{
    EXPECT_EQ(Construct("/data", "bookmark.vlt"), "/data/bookmark.vlt");
    EXPECT_EQ(Construct("/data/", "bookmark.vlt"), "/data/bookmark.vlt");
    EXPECT_EQ(Construct("/", "bookmark.vlt"), "/bookmark.vlt");
    EXPECT_EQ(Construct("/data", "/bookmark.vlt"), "/data/bookmark.vlt");
    EXPECT_EQ(Construct("", "bookmark.vlt"), "bookmark.vlt");
    EXPECT_EQ(Construct("/data", ""), "/data/");
}

TEST(Paths, TheOutputMayBeTheDirectory)
{
    char path[kPathBytes] = "/data";
    EXPECT_EQ(MyPathConstruct(path, "mail.vlt", path), 14);
    EXPECT_STREQ(path, "/data/mail.vlt");
}

TEST(Paths, ALongPathIsCutAfter255BytesBetweenCharacters)
{
    const std::string directory = "/" + std::string(299, 'd');
    EXPECT_EQ(Construct(directory, "mail.vlt"), directory.substr(0, 255));
    const std::string nearly = "/" + std::string(252, 'd');
    EXPECT_EQ(Construct(nearly, "mail.vlt"), nearly + "/m");
    EXPECT_EQ(Construct(nearly, pavex::ScsFromUtf8("😀")), nearly + "/");
    EXPECT_EQ(Construct(nearly + "dd", "mail.vlt"), nearly + "dd");
}

}  // namespace
