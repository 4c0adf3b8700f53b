// tests/client/windows/line_reader_test.cpp
#include "client/windows/line_reader.h"

#include <unistd.h>

#include <gtest/gtest.h>

#include "tests/client/windows/test_pipe.h"

namespace {

using Outcome = pavex::LineReader::Outcome;

TEST(LineReader, ReadsLinesAndALastOneWithoutItsEnd)
{
    TestPipe pipe;
    pipe.Write("first\r\n\nthird");
    pipe.CloseWriting();
    pavex::LineReader reader(pipe.Reading());
    std::string line = "?";
    EXPECT_EQ(reader.Read(std::nullopt, &line), Outcome::Line);
    EXPECT_EQ(line, "first");
    EXPECT_EQ(reader.Read(std::nullopt, &line), Outcome::Line);
    EXPECT_EQ(line, "");
    EXPECT_EQ(reader.Read(std::nullopt, &line), Outcome::Line);
    EXPECT_EQ(line, "third");
    EXPECT_EQ(reader.Read(std::nullopt, &line), Outcome::Ended);
}

TEST(LineReader, StopsWaitingAtTheLimitAndKeepsWhatItHas)
{
    TestPipe pipe;
    pipe.Write("hal");
    pavex::LineReader reader(pipe.Reading());
    std::string line;
    EXPECT_EQ(reader.Read(10, &line), Outcome::TimedOut);
    pipe.Write("f\n");
    EXPECT_EQ(reader.Read(10, &line), Outcome::Line);
    EXPECT_EQ(line, "half");
}

TEST(LineReader, HasEndedWithoutADescriptorThatCanBeRead)
{
    std::string line;
    EXPECT_EQ(pavex::LineReader(-1).Read(std::nullopt, &line), Outcome::Ended);
    EXPECT_EQ(pavex::LineReader(9999).Read(std::nullopt, &line), Outcome::Ended);
}

}  // namespace
