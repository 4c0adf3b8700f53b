// tests/client/windows/input_line_reader_test.cpp
#include "client/windows/input_line_reader.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/client/windows/test_pipe.h"

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

TEST(InputLineReader, HasEndedWithoutADescriptorThatCanBeRead)
{
    std::string line;
    EXPECT_EQ(pavex::InputLineReader(-1).Read(std::nullopt, &line), Outcome::Ended);
    EXPECT_EQ(pavex::InputLineReader(9999).Read(std::nullopt, &line), Outcome::Ended);
}

}  // namespace
