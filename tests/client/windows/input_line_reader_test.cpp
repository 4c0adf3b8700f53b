// tests/client/windows/input_line_reader_test.cpp
#include "client/windows/input_line_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/client/windows/test_pipe.h"
#include "tests/support/temporary_directory.h"

namespace {

using Outcome = pavex::InputLineReader::Outcome;

TEST(InputLineReader, ReadsLinesAndALastOneWithoutItsEnd)
{
    TestPipe pipe;
    pipe.Write("first\r\n\nthird");
    pipe.CloseWriting();
    pavex::InputLineReader reader(pipe.Reading());
    std::string line = "?";
    EXPECT_EQ(reader.Read(std::nullopt, &line), Outcome::Line);
    EXPECT_EQ(line, "first");
    EXPECT_EQ(reader.Read(std::nullopt, &line), Outcome::Line);
    EXPECT_EQ(line, "");
    EXPECT_EQ(reader.Read(std::nullopt, &line), Outcome::Line);
    EXPECT_EQ(line, "third");
    EXPECT_EQ(reader.Read(std::nullopt, &line), Outcome::Ended);
}

TEST(InputLineReader, StopsWaitingAtTheLimitAndKeepsWhatItHas)
{
    TestPipe pipe;
    pipe.Write("hal");
    pavex::InputLineReader reader(pipe.Reading());
    std::string line;
    EXPECT_EQ(reader.Read(10, &line), Outcome::TimedOut);
    pipe.Write("f\n");
    EXPECT_EQ(reader.Read(10, &line), Outcome::Line);
    EXPECT_EQ(line, "half");
}

// What the reader makes of a file's bytes: lines, or "too long".
std::vector<std::string> ReadAllLines(const std::string& bytes)
{
    TemporaryDirectory folder;
    WriteWholeFile(folder / "input", bytes);
    const int file = open((folder / "input").c_str(), O_RDONLY | O_CLOEXEC);
    pavex::InputLineReader reader(file);
    std::vector<std::string> lines;
    std::string line;
    for (Outcome outcome; (outcome = reader.Read(std::nullopt, &line)) != Outcome::Ended;)
        lines.push_back(outcome == Outcome::TooLong ? "too long" : line);
    close(file);
    return lines;
}

TEST(InputLineReader, PassesOverALineOfMoreThan64KilobytesAndNoOther)
{
    const std::string longest(pavex::InputLineReader::kMostLineBytes, 'x');
    EXPECT_EQ(ReadAllLines("a\n" + longest + "\nb\n"), (std::vector<std::string>{"a", longest, "b"}));
    for (const size_t more : {1, 4000, 4096, 300000})
        EXPECT_EQ(ReadAllLines("a\n" + longest + std::string(more, 'y') + "\nb\n"),
                  (std::vector<std::string>{"a", "too long", "b"}))
            << more;
    EXPECT_EQ(ReadAllLines(longest), std::vector<std::string>{longest});
    EXPECT_EQ(ReadAllLines(longest + "y"), std::vector<std::string>{"too long"});
    EXPECT_EQ(ReadAllLines(longest + longest + "\n\n"), (std::vector<std::string>{"too long", ""}));
}

TEST(InputLineReader, HasEndedWithoutADescriptorThatCanBeRead)
{
    std::string line;
    EXPECT_EQ(pavex::InputLineReader(-1).Read(std::nullopt, &line), Outcome::Ended);
    EXPECT_EQ(pavex::InputLineReader(9999).Read(std::nullopt, &line), Outcome::Ended);
}

}  // namespace
