// tests/client/store/path_test.cpp: paths with and without a server part.
#include "client/store/path.h"

#include <gtest/gtest.h>

#include "client/store/charset.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

namespace {

std::string Parsed(const std::string& path)
{
    char port[256] = "#";
    char server[256] = "#";
    const STATUS status = OSPathNetParse(path.c_str(), nullptr, port, server);
    return status == kStatusOk ? std::string(port) + "|" + server : "status " + std::to_string(status);
}

std::string Canonical(const std::string& path)
{
    char text[256];
    path.copy(text, path.size());
    text[path.size()] = 0;
    EXPECT_EQ(OSPathCanonicalize(text), kStatusOk);
    return text;
}

}  // namespace

TEST(OSPathNetParse, SplitsTheServerOff)
{
    EXPECT_EQ(Parsed("//server/folder/file.vlt"), "|server");
    EXPECT_EQ(Parsed("/home/ann/mail.vlt"), "|");
    EXPECT_EQ(Parsed("mail.vlt"), "|");
    EXPECT_EQ(Parsed("///home/mail.vlt"), "|");
    EXPECT_EQ(Parsed(""), "|");
}

TEST(OSPathNetParse, RefusesMalformedPaths)
{
    for (const char* path : {"//", "//server", "//server/"})
        EXPECT_EQ(Parsed(path), "status 591") << path;
    EXPECT_EQ(Parsed(std::string(256, 'x')), "status 591");
    EXPECT_EQ(Parsed(std::string(255, 'x')), "|");
    EXPECT_EQ(OSPathNetParse(nullptr, nullptr, nullptr, nullptr), kStatusBadText);
    EXPECT_EQ(OSPathNetParse("mail.vlt", nullptr, nullptr, nullptr), kStatusOk);
}

TEST(OSPathCanonicalize, ResolvesDotsAndDoubledSeparators)
{
    EXPECT_EQ(Canonical("/a/./b//c/../d/"), "/a/b/d");
    EXPECT_EQ(Canonical("/../../a"), "/a");
    EXPECT_EQ(Canonical("../a/../../b"), "../../b");
    EXPECT_EQ(Canonical("a/.."), ".");
    EXPECT_EQ(Canonical("/"), "/");
    EXPECT_EQ(Canonical("///a"), "/a");
    EXPECT_EQ(Canonical(""), "");
    EXPECT_EQ(Canonical("//server/a/../../b"), "//server/b");
}

TEST(OSPathCanonicalize, RefusesWhatIsNoPath)
{
    EXPECT_EQ(OSPathCanonicalize(nullptr), kStatusBadText);
    char endless[300];
    std::fill(std::begin(endless), std::end(endless), 'x');
    EXPECT_EQ(OSPathCanonicalize(endless), kStatusBadText);
}

using ResolvePathTest = HostFixture;

TEST_F(ResolvePathTest, FindsFilesOfThisMachine)
{
    std::string native = "old";
    EXPECT_EQ(ResolvePath("/a/b.vlt", &native), kStatusOk);
    EXPECT_EQ(native, "/a/b.vlt");
    EXPECT_EQ(ResolvePath(ScsFromUtf8("\xF0\x9F\x98\x80.vlt").c_str(), &native), kStatusOk);
    EXPECT_EQ(native, CurrentPlaces().data + "/\xF0\x9F\x98\x80.vlt");
}

TEST_F(ResolvePathTest, TellsWhyThereIsNone)
{
    std::string native = "old";
    EXPECT_EQ(ResolvePath("//server/file.vlt", &native), kStatusRemoteUnreachable);
    EXPECT_EQ(ResolvePath("//server", &native), kStatusBadText);
    EXPECT_EQ(ResolvePath("", &native), kStatusNoSuchFile);
    EXPECT_EQ(ResolvePath(nullptr, &native), kStatusNoSuchFile);
    EXPECT_EQ(native, "old");
}
