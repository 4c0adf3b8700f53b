// tests/indexers/discussion_test.cpp: discussion postings as metafiles.
#include "indexers/discussion.h"

#include "tests/indexers/indexer_fixture.h"

namespace {

class DiscussionIndexer : public IndexerTest {};

TEST_F(DiscussionIndexer, WritesEveryPropertyOfAPosting)
{
    EXPECT_EQ(Indexed(
                  {
                      TextItem("Form", "MainTopic"),
                      TextListItem("Subject", {"How to", "and why"}),
                      TextItem("Topic", "Not this"),
                      TextListItem("From", {"CN=Ann Lee/O=Acme", "Bo Ek"}),
                      TextItem("Author", "Not her"),
                      BodyItem({"I wonder."}),
                  },
                  IndexDiscussionNote),
              (Properties{
                  {"message_time", "date 2007-03-01T08:00:00Z"},
                  {"title", "How to, and why"},
                  {"discussion_authors", "Ann Lee/Acme, Bo Ek"},
                  {"com.quorvex.pavex.content", "I wonder.\r\n"},
              }));
}

TEST_F(DiscussionIndexer, TheTopicAndTheAuthorStandInForWhatIsAbsent)
{
    EXPECT_EQ(Indexed({TextItem("Topic", "Plans"), TextItem("Author", "Ann")}, IndexDiscussionNote),
              (Properties{{"message_time", "date 2007-03-01T08:00:00Z"},
                          {"title", "Plans"},
                          {"discussion_authors", "Ann"},
                          {"com.quorvex.pavex.content", ""}}));
}

TEST_F(DiscussionIndexer, APostingWithoutAnyHasAnEmptyTitleAndEmptyAuthors)
{
    EXPECT_EQ(Indexed({}, IndexDiscussionNote), (Properties{{"message_time", "date 2007-03-01T08:00:00Z"},
                                                            {"title", ""},
                                                            {"discussion_authors", ""},
                                                            {"com.quorvex.pavex.content", ""}}));
}

TEST_F(DiscussionIndexer, AnEmptySubjectIsTheSubjectAllTheSame)
{
    const Properties properties =
        Indexed({TextItem("Subject", ""), TextItem("Topic", "Plans"), TextItem("From", ""), TextItem("Author", "Ann")},
                IndexDiscussionNote);
    EXPECT_EQ(properties.count("title"), 0u);
    EXPECT_EQ(properties.at("discussion_authors"), "Ann");
}

TEST_F(DiscussionIndexer, WritesADiscussionFileAndAsksForNoSize)
{
    const uint32_t id = Put(std::vector<pavex::Item>{});
    ASSERT_TRUE(Index(id, IndexDiscussionNote));
    EXPECT_EQ(Extension(id), "vPavexDiscussion");
    EXPECT_EQ(context_.writtenSize, 0);
}

}  // namespace
