// tests/indexers/journal_test.cpp: journal entries as metafiles.
#include "indexers/journal.h"

#include "tests/indexers/indexer_fixture.h"

namespace {

class JournalIndexer : public IndexerTest {};

TEST_F(JournalIndexer, WritesEveryPropertyOfAnEntry)
{
    EXPECT_EQ(Indexed(
                  {
                      TextItem("Form", "JournalEntry"),
                      TextItem("Subject", "Day one\nafternoon"),
                      TextListItem("Categories", {"Travel", "Notes"}),
                      TimeItem("TimeCreated", "2007-02-20T18:00:00Z"),
                      BodyItem({"We left early."}),
                  },
                  IndexJournalNote),
              (Properties{
                  {"last_modified_time", "date 2007-03-02T09:30:00Z"},
                  {"title", "Day one\r\nafternoon"},
                  {"categories", "Travel, Notes"},
                  {"start_time", "date 2007-02-20T18:00:00Z"},
                  {"com.quorvex.pavex.content", "We left early.\r\n"},
              }));
}

TEST_F(JournalIndexer, HasNoStartWithoutATimeOfCreation)
{
    const Properties bare = {{"last_modified_time", "date 2007-03-02T09:30:00Z"}, {"com.quorvex.pavex.content", ""}};
    EXPECT_EQ(Indexed({}, IndexJournalNote), bare);
    EXPECT_EQ(Indexed({TextItem("TimeCreated", "once")}, IndexJournalNote), bare);
    EXPECT_EQ(Indexed({pavex::TimeItem("TimeCreated", NoTime())}, IndexJournalNote), bare);
}

TEST_F(JournalIndexer, WritesAJournalFile)
{
    const uint32_t id = Put(std::vector<pavex::Item>{});
    ASSERT_TRUE(Index(id, IndexJournalNote));
    EXPECT_EQ(Extension(id), "vPavexJournal");
    EXPECT_EQ(context_.writtenSize, 0);
}

}  // namespace
