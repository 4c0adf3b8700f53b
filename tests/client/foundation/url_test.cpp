// tests/client/foundation/url_test.cpp: URLs of files taken apart and put together.
#include "client/foundation/url.h"

#include <unistd.h>

#include <array>
#include <filesystem>

#include "tests/client/foundation/foundation_fixture.h"
#include "tests/support/temporary_directory.h"

class FoundationUrl : public FoundationTest {};

namespace {

std::string Append(std::string_view base, std::u16string_view component, bool directory = false,
                   bool baseIsFolder = true)
{
    const Owned<CFURLRef> url(
        CFURLCreateCopyAppendingPathComponent(nullptr, MakeUrl(base, baseIsFolder), Make(component), directory));
    return url ? PathOf(url) : "(null)";
}

std::string Extend(std::string_view base, std::u16string_view extension, bool folder = false)
{
    const Owned<CFURLRef> url(CFURLCreateCopyAppendingPathExtension(nullptr, MakeUrl(base, folder), Make(extension)));
    return url ? PathOf(url) : "(null)";
}

Owned<CFURLRef> Parent(CFURLRef url)
{
    return Owned<CFURLRef>(CFURLCreateCopyDeletingLastPathComponent(nullptr, url));
}
std::string Parent(std::string_view path, bool folder = false)
{
    return PathOf(Parent(MakeUrl(path, folder)));
}

}  // namespace

TEST_F(FoundationUrl, KeepsTheBytesOfAPath)
{
    EXPECT_EQ(PathOf(MakeUrl("/a/b", false)), "/a/b");
    EXPECT_EQ(PathOf(MakeUrl("/a/b", true)), "/a/b");
    EXPECT_EQ(PathOf(MakeUrl("/a/b/", false)), "/a/b");
    EXPECT_EQ(PathOf(MakeUrl("/", true)), "/");
    EXPECT_EQ(PathOf(MakeUrl("/a/./../b//c", false)), "/a/./../b//c");
    EXPECT_EQ(PathOf(MakeUrl("/\xFF%20?#\xC3", false)), "/\xFF%20?#\xC3");
}

TEST_F(FoundationUrl, RefusesNoPathAndNulBytes)
{
    EXPECT_FALSE(MakeUrl("", false));
    EXPECT_FALSE(MakeUrl(std::string_view("/a\0b", 4), false));
    EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(nullptr, nullptr, 0, 1), nullptr);
}

TEST_F(FoundationUrl, ARelativePathBelongsToTheWorkingDirectoryOfItsMaking)
{
    TemporaryDirectory folder;
    const std::filesystem::path before = std::filesystem::current_path();
    const std::string there = std::filesystem::canonical(folder.Path()).string();
    std::filesystem::current_path(there);
    const Owned<CFURLRef> url = MakeUrl("x/../../y/./z", false);
    std::filesystem::current_path(before);
    EXPECT_EQ(PathOf(url, false), "x/../../y/./z");
    EXPECT_EQ(PathOf(url, true), std::filesystem::path(there).parent_path().string() + "/y/z");
    EXPECT_EQ(PathOf(MakeUrl("../../../../../../../../../../../../../..", true), true), "/");
}

TEST_F(FoundationUrl, AppendsComponentsLiterally)
{
    EXPECT_EQ(Append("/r", u"a"), "/r/a");
    EXPECT_EQ(Append("/r/", u"a"), "/r/a");
    EXPECT_EQ(Append("/r", u"a", false, false), "/r/a");
    EXPECT_EQ(Append("/", u"a"), "/a");
    EXPECT_EQ(Append("/r", u"0123/4567"), "/r/0123/4567");
    EXPECT_EQ(Append("/r", u"/a"), "/r//a");
    EXPECT_EQ(Append("/r", u"a/"), "/r/a");
    EXPECT_EQ(Append("/r", u"a%20b?c#d"), "/r/a%20b?c#d");
    EXPECT_EQ(Append("/r", u"\u00E9\U0001F600"), "/r/\xC3\xA9\xF0\x9F\x98\x80");
    EXPECT_EQ(Append("/r", u""), "/r");
    EXPECT_EQ(Append("/r", u"d", true), "/r/d");
}

TEST_F(FoundationUrl, RefusesComponentsThatNoPathCanHold)
{
    EXPECT_EQ(Append("/r", u"a\xD800"), "(null)");
    EXPECT_EQ(Append("/r", std::u16string_view(u"a\0b", 3)), "(null)");
    EXPECT_EQ(CFURLCreateCopyAppendingPathComponent(nullptr, nullptr, CFSTR("a"), 0), nullptr);
}

TEST_F(FoundationUrl, AddsExtensionsAndNeverReplacesOne)
{
    EXPECT_EQ(Extend("/r/a", u"vPavexMessage"), "/r/a.vPavexMessage");
    EXPECT_EQ(Extend("/r/a.txt", u"plist"), "/r/a.txt.plist");
    EXPECT_EQ(Extend("/r/b", u".plist"), "/r/b..plist");
    EXPECT_EQ(Extend("/r/d", u"ext", true), "/r/d.ext");
    EXPECT_EQ(Extend("/", u"ext", true), "/.ext");
    EXPECT_EQ(Extend("/r/a", u""), "/r/a");
    EXPECT_EQ(Extend("/r/a", u"a b.c"), "/r/a.a b.c");
    for (const std::u16string_view bad :
         {u"a.", u".", u"a/b", u"/", u"a b", u"a.b c", u"a\u202E", u"\u2066x", u"\u061C", u"\u200F", u"a\xDC00"})
        EXPECT_EQ(Extend("/r/a", bad), "(null)") << testing::PrintToString(std::u16string(bad));
}

TEST_F(FoundationUrl, AnEmptyExtensionGivesTheSameUrlRetained)
{
    const Owned<CFURLRef> url = MakeUrl("/r/a", false);
    const Owned<CFURLRef> same(CFURLCreateCopyAppendingPathExtension(nullptr, url, CFSTR("")));
    EXPECT_EQ(static_cast<CFURLRef>(same), static_cast<CFURLRef>(url));
}

TEST_F(FoundationUrl, DeletesTheLastComponent)
{
    EXPECT_EQ(Parent("/a/b"), "/a");
    EXPECT_EQ(Parent("/a/b/", true), "/a");
    EXPECT_EQ(Parent("/a"), "/");
    EXPECT_EQ(Parent("/", true), "/..");
    EXPECT_EQ(PathOf(Parent(Parent(MakeUrl("/", true)))), "/../..");
    EXPECT_EQ(Parent("a"), ".");
    EXPECT_EQ(Parent("."), "..");
    EXPECT_EQ(PathOf(Parent(Parent(MakeUrl("a", false)))), "..");
    EXPECT_EQ(Parent(".."), "../..");
    EXPECT_EQ(Parent("/a//b"), "/a/");
    EXPECT_EQ(Parent("/a/b//", true), "/a/b//..");
    EXPECT_EQ(CFURLCreateCopyDeletingLastPathComponent(nullptr, nullptr), nullptr);
}

TEST_F(FoundationUrl, WritesAPathOnlyWithItsTerminator)
{
    std::array<UInt8, 8> buffer;
    const Owned<CFURLRef> url = MakeUrl("/abc", false);
    for (const CFIndex size : {1, 2, 4}) {
        buffer.fill('#');
        EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, 1, buffer.data(), size));
        EXPECT_EQ(buffer[0], '\0');
        EXPECT_EQ(buffer[static_cast<size_t>(size)], '#');
    }
    buffer.fill('#');
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(url, 1, buffer.data(), 0));
    EXPECT_EQ(buffer[0], '#');
    EXPECT_TRUE(CFURLGetFileSystemRepresentation(url, 1, buffer.data(), 5));
    EXPECT_STREQ(reinterpret_cast<const char*>(buffer.data()), "/abc");
    EXPECT_EQ(buffer[5], '#');
    EXPECT_FALSE(CFURLGetFileSystemRepresentation(nullptr, 1, buffer.data(), 5));
}

TEST_F(FoundationUrl, CollapsesPathsByTheirText)
{
    EXPECT_EQ(pavex::cf::CollapsePath("/"), "/");
    EXPECT_EQ(pavex::cf::CollapsePath("/a/../.."), "/");
    EXPECT_EQ(pavex::cf::CollapsePath("/../a//b/./c/"), "/a/b/c");
    EXPECT_EQ(pavex::cf::CollapsePath("/a/b/../../c/..d/..."), "/c/..d/...");
}
