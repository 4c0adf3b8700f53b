// tests/client/windows/qt/log_tail_test.cpp: what is new in a log.
#include "client/windows/qt/log_tail.h"

#include <gtest/gtest.h>

#include <fstream>

#include "tests/support/temporary_directory.h"

namespace {

class LogTailTest : public testing::Test {
protected:
    void Append(const std::string& text) { std::ofstream(folder_ / "log", std::ios::app) << text; }
    std::string New() { return tail_.ReadNew().toStdString(); }

    TemporaryDirectory folder_;
    pavex::LogTail tail_{QString::fromStdString(folder_ / "log")};
};

TEST_F(LogTailTest, TellsEachLineOnce)
{
    Append("one\ntwo\n");
    EXPECT_EQ(New(), "one\ntwo\n");
    EXPECT_EQ(New(), "");
    Append("three\n");
    EXPECT_EQ(New(), "three\n");
}

TEST_F(LogTailTest, WaitsForTheEndOfALine)
{
    Append("ha");
    EXPECT_EQ(New(), "");
    Append("lf\nne");
    EXPECT_EQ(New(), "half\n");
    Append("xt\n");
    EXPECT_EQ(New(), "next\n");
}

TEST_F(LogTailTest, HasNothingWhereThereIsNoLogYet)
{
    EXPECT_EQ(New(), "");
    Append("first\n");
    EXPECT_EQ(New(), "first\n");
}

TEST_F(LogTailTest, BeginsWithTheLastLinesOfALongLog)
{
    for (int line = 0; line < 20000; ++line)
        Append("line " + std::to_string(line) + "\n");
    const std::string first = New();
    EXPECT_LE(first.size(), 64U * 1024);
    EXPECT_GT(first.size(), 60U * 1024);
    EXPECT_TRUE(first.starts_with("line "));
    EXPECT_TRUE(first.ends_with("line 19999\n"));
}

TEST_F(LogTailTest, ReadsALogThatWasBegunAnewFromItsBeginning)
{
    Append("a long line of the old log\n");
    EXPECT_EQ(New(), "a long line of the old log\n");
    std::filesystem::remove(folder_ / "log");
    Append("new\n");
    EXPECT_EQ(New(), "new\n");
}

TEST_F(LogTailTest, ReadsALogThatWasEmptiedAndIsAsLongAgain)
{
    Append("12:00 the first line\n12:01 the second\n");
    (void)New();
    std::filesystem::resize_file(folder_ / "log", 0);
    Append("13:00 another\n");
    EXPECT_EQ(New(), "13:00 another\n");
    std::filesystem::resize_file(folder_ / "log", 0);
    Append("14:00 longer by far than what was there before\n14:01 more\n");
    EXPECT_EQ(New(), "14:00 longer by far than what was there before\n14:01 more\n");
    EXPECT_EQ(New(), "");
}

TEST_F(LogTailTest, ReadsALogThatWasPutAsideToItsEnd)
{
    Append("one\n");
    EXPECT_EQ(New(), "one\n");
    Append("two\nha");
    std::filesystem::rename(folder_ / "log", folder_ / "log.1");
    EXPECT_EQ(New(), "two\nha\n") << "the last line, too: no more comes to it";
    EXPECT_EQ(New(), "");
    Append("three\nfour\nfive\n");
    EXPECT_EQ(New(), "three\nfour\nfive\n");

    Append("six\n");
    std::filesystem::rename(folder_ / "log", folder_ / "log.1");
    Append("seven\n");
    EXPECT_EQ(New(), "six\nseven\n");
    EXPECT_EQ(New(), "");
}

TEST_F(LogTailTest, ShowsNoPartOfALineThatWasLongBeforeItWasMet)
{
    Append(std::string(100000, 'x'));
    EXPECT_EQ(New(), "");
    Append(" end\nnext\n");
    EXPECT_EQ(New(), "next\n");
}

}  // namespace
