// tests/client/import/text_file_test.cpp: the Unicode forms of text files.
#include "client/import/text_file.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

std::string ContentOf(const std::string& bytes)
{
    const TemporaryDirectory folder;
    WriteWholeFile(folder / "file", bytes);
    TextFile file;
    std::string reason;
    if (!OpenTextFile(folder / "file", &file, &reason))
        return reason;
    std::string content(file.end - file.start, '\0');
    EXPECT_EQ(::pread(file.descriptor.Get(), content.data(), content.size(), static_cast<off_t>(file.start)),
              static_cast<ssize_t>(content.size()));
    return content;
}

std::string Utf16(const std::u16string& text, bool bigEndian)
{
    std::string bytes;
    for (const char16_t unit : text) {
        const char high = static_cast<char>(unit >> 8);
        const char low = static_cast<char>(unit & 0xFF);
        bytes += bigEndian ? high : low;
        bytes += bigEndian ? low : high;
    }
    return bytes;
}

TEST(TextFile, IsReadAsItStandsWithoutTheMarkOfUtf8)
{
    EXPECT_EQ(ContentOf("plain\n"), "plain\n");
    EXPECT_EQ(ContentOf("\xEF\xBB\xBFmarked\n"), "marked\n");
    EXPECT_EQ(ContentOf(""), "");
}

TEST(TextFile, IsReadAsUtf8WhenItIsUtf16OfEitherByteOrder)
{
    for (const bool bigEndian : {false, true})
        EXPECT_EQ(ContentOf(Utf16(u"\uFEFFGrüße 𝄞\n", bigEndian)), "Grüße 𝄞\n");
}

TEST(TextFile, KeepsPairsTogetherWhereThePiecesOfALongFileMeet)
{
    std::u16string text = u"\uFEFFx";
    std::string expected = "x";
    for (int i = 0; i < 70000; ++i) {
        text += u"𝄞";
        expected += "𝄞";
    }
    EXPECT_EQ(ContentOf(Utf16(text, false)), expected);
}

TEST(TextFile, PutsAReplacementForHalvesOfPairs)
{
    EXPECT_EQ(ContentOf(Utf16(std::u16string{0xFEFF, 'a', 0xD834, 'b', 0xDD1E, 'c', 0xD834, 0xD834, 0xDD1E}, true)),
              "a\xEF\xBF\xBD"
              "b\xEF\xBF\xBD"
              "c\xEF\xBF\xBD𝄞");
}

TEST(TextFile, SaysWhyItCannotBeOpened)
{
    TextFile file;
    std::string reason;
    EXPECT_FALSE(OpenTextFile("/nonexistent/file", &file, &reason));
    EXPECT_EQ(reason, "cannot be opened: No such file or directory");
}

TEST(TextFile, ShowsTheAsciiOfItsHead)
{
    EXPECT_EQ(TextOfHead("BEGIN"), "BEGIN");
    EXPECT_EQ(TextOfHead("\xEF\xBB\xBF"
                         "BEGIN"),
              "BEGIN");
    EXPECT_EQ(TextOfHead(Utf16(u"\uFEFF"
                               u"BEGIN",
                               false)),
              "BEGIN");
    EXPECT_EQ(TextOfHead(Utf16(u"\uFEFF"
                               u"BEGIN",
                               true)),
              "BEGIN");
}

}  // namespace
}  // namespace pavex
