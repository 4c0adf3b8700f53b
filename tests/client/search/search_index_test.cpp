// tests/client/search/search_index_test.cpp: what the search engine prints becomes hits.
#include "client/search/search_index.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

namespace pavex {
namespace {

using testing::ElementsAre;

SearchAnswer ReadAnswer(const std::string& output)
{
    AnswerReader reader;
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);)
        reader.AddLine(line);
    return reader.Take();
}

TEST(SearchIndex, ReadsHitsFromWhatTheEnginePrints)
{
    // file:///c/R/N.vPavexTask, the kind, 20070305140000, Pavex:///R//N, "Zebra ä", "Ann, Bob", nothing
    const SearchAnswer answer =
        ReadAnswer("some noise\n"
                   "Recoll query: Query((zebra OR zebras))\n"
                   "1 results (printing  20 max):\n"
                   "ZmlsZTovLy9jL1IvTi52UGF2ZXhUYXNr YXBwbGljYXRpb24veC1wYXZleC10YXNr MjAwNzAzMDUxNDAwMDA= "
                   "UGF2ZXg6Ly8vUi8vTg== WmVicmEgw6Q= QW5uLCBCb2I=  \n");
    EXPECT_THAT(answer.terms, ElementsAre("zebra", "zebras"));
    ASSERT_EQ(answer.hits.size(), 1U);
    const SearchHit& hit = answer.hits.front();
    EXPECT_STREQ(hit.kind->name, "task");
    EXPECT_EQ(hit.metafile, "/c/R/N.vPavexTask");
    EXPECT_EQ(hit.stamp, "20070305140000");
    EXPECT_EQ(hit.url, "Pavex:///R//N");
    EXPECT_EQ(hit.title, "Zebra ä");
    EXPECT_THAT(hit.people, ElementsAre("Ann", "Bob"));
}

TEST(SearchIndex, PassesOverLinesThatAreNoHits)
{
    EXPECT_TRUE(ReadAnswer("").hits.empty());
    EXPECT_TRUE(ReadAnswer("Recoll query: Query(zebra)\n0 results\n").hits.empty());
    EXPECT_TRUE(
        ReadAnswer("Recoll query: Query(zebra)\n1 results\n\n???? ==== \nYQ== dGV4dC9wbGFpbg== \n").hits.empty());
}

TEST(SearchIndex, PartsPeopleAtCommasOutsideOfQuotes)
{
    EXPECT_THAT(SplitPeople("Ann <a@x.org>, Bob/Acme,carl@x.org"),
                ElementsAre("Ann <a@x.org>", "Bob/Acme", "carl@x.org"));
    EXPECT_THAT(SplitPeople("\"Doe, John\" <j@x.org>, Ann"), ElementsAre("\"Doe, John\" <j@x.org>", "Ann"));
    EXPECT_THAT(SplitPeople("Ann, , ,"), ElementsAre("Ann"));
    EXPECT_THAT(SplitPeople(""), ElementsAre());
}

}  // namespace
}  // namespace pavex
