// tests/client/import/line_reader_test.cpp: lines of any length and any end.
#include "client/import/line_reader.h"

#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>

#include "client/import/owners.h"
#include "client/store/descriptor.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

using namespace std::string_literals;

// The lines of a file; pieces of one line are joined.
std::vector<std::string> LinesOf(const std::string& content, uint64_t start = 0, uint64_t end = ~uint64_t{0})
{
    const TemporaryDirectory folder;
    WriteWholeFile(folder / "file", content);
    const Descriptor file(::open((folder / "file").c_str(), O_RDONLY | O_CLOEXEC));
    LineReader reader(file.Get(), start, std::min<uint64_t>(end, content.size()));
    std::vector<std::string> lines;
    Line line;
    while (reader.Next(&line)) {
        EXPECT_EQ(content.substr(line.offset, line.text.size()), line.text);
        if (line.starts)
            lines.emplace_back();
        lines.back() += line.text;
        if (line.ends && line.hasBreak)
            lines.back() += "$";
    }
    EXPECT_EQ(reader.Error(), 0);
    return lines;
}

using Lines = std::vector<std::string>;

TEST(LineReader, EndsLinesAtLfAndCrlf)
{
    EXPECT_EQ(LinesOf("a\nb\r\n\nc"), (Lines{"a$", "b$", "$", "c"}));
    EXPECT_EQ(LinesOf("a\n"), (Lines{"a$"}));
    EXPECT_EQ(LinesOf("\r\n\r\n"), (Lines{"$", "$"}));
}

TEST(LineReader, EndsLinesAtCrWhereThereIsNoLf)
{
    EXPECT_EQ(LinesOf("a\rb\r\rc"), (Lines{"a$", "b$", "$", "c"}));
    EXPECT_EQ(LinesOf("a\rb\n"), (Lines{"a\rb$"}));
}

TEST(LineReader, KeepsNulAndEightBitBytes)
{
    EXPECT_EQ(LinesOf("a\0b\xFF\n"s), (Lines{"a\0b\xFF$"s}));
}

TEST(LineReader, ReadsNothingFromAnEmptyFile)
{
    EXPECT_EQ(LinesOf(""), Lines{});
}

TEST(LineReader, ReadsOnlyTheGivenRange)
{
    EXPECT_EQ(LinesOf("skip\nread\nstop\n", 5, 10), (Lines{"read$"}));
    EXPECT_EQ(LinesOf("skip\nread\nstop\n", 5, 9), (Lines{"read"}));
}

TEST(LineReader, HandsOutLongLinesInPieces)
{
    for (const size_t length : {262142U, 262143U, 262144U, 262145U, 600000U}) {
        const std::string text(length, 'x');
        EXPECT_EQ(LinesOf(text + "\r\nnext\r\n"), (Lines{text + "$", "next$"})) << length;
        EXPECT_EQ(LinesOf("a\n" + text), (Lines{"a$", text})) << length;
    }
}

TEST(LineReader, TellsAReadErrorFromTheEnd)
{
    const TemporaryDirectory folder;
    const Descriptor notAFile(::open(folder.Path().c_str(), O_RDONLY | O_CLOEXEC));
    LineReader reader(notAFile.Get(), 0, 100);
    Line line;
    EXPECT_FALSE(reader.Next(&line));
    EXPECT_EQ(reader.Error(), EISDIR);
}

}  // namespace
}  // namespace pavex
