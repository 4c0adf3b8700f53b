// tests/client/app/json_input_test.cpp: JSON values from a stream.
#include "client/app/json_input.h"

#include <gtest/gtest.h>

#include <sstream>

namespace pavex {
namespace {

// "line: value" for each value, "line! " for each fault; `most`: calls after which the reading is ended.
std::vector<std::string> ValuesOf(const std::string& text, size_t most = 100)
{
    std::istringstream input(text);
    std::vector<std::string> values;
    ReadJsonValues(input, [&](const nlohmann::ordered_json& value, size_t line, const std::string& error) {
        EXPECT_EQ(value.is_discarded(), !error.empty());
        values.push_back(std::to_string(line) + (error.empty() ? ": " + value.dump() : "!"));
        return values.size() < most;
    });
    return values;
}

using Values = std::vector<std::string>;

TEST(JsonInput, ReadsAValueALine)
{
    EXPECT_EQ(ValuesOf("{\"a\":1}\n[2]\r\n\"x\""), (Values{"1: {\"a\":1}", "2: [2]", "3: \"x\""}));
}

TEST(JsonInput, ReadsOneValueOnManyLines)
{
    EXPECT_EQ(ValuesOf("\n{\n \"b\": 1,\n \"a\": [\n  2 ]\n}\n\n"), (Values{"2: {\"b\":1,\"a\":[2]}"}));
}

TEST(JsonInput, PassesOverBlankLines)
{
    EXPECT_EQ(ValuesOf("\n  \n1\n\t\n2\n\r\n"), (Values{"3: 1", "5: 2"}));
}

TEST(JsonInput, FindsNothingInNothing)
{
    EXPECT_EQ(ValuesOf(""), Values{});
    EXPECT_EQ(ValuesOf(" \n\n"), Values{});
}

TEST(JsonInput, NamesALineThatIsNoJsonAndGoesOn)
{
    EXPECT_EQ(ValuesOf("1\n{oops\n3\n"), (Values{"1: 1", "2!", "3: 3"}));
}

TEST(JsonInput, ReportsOneFaultForAValueThatIsNotEnded)
{
    EXPECT_EQ(ValuesOf("{\n\"a\": 1\n"), (Values{"1!"}));
    EXPECT_EQ(ValuesOf("nonsense"), (Values{"1!"}));
}

TEST(JsonInput, TakesNoTextThatIsNotUtf8)
{
    EXPECT_EQ(ValuesOf("\"\xff\"\n"), (Values{"1!"}));
    EXPECT_EQ(ValuesOf("\"\\ud83d\"\n"), (Values{"1!"}));
}

TEST(JsonInput, EndsWhenToldTo)
{
    EXPECT_EQ(ValuesOf("1\n2\n3\n", 2), (Values{"1: 1", "2: 2"}));
}

}  // namespace
}  // namespace pavex
