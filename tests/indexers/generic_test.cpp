// tests/indexers/generic_test.cpp: notes of no known kind as metafiles.
#include "indexers/generic.h"

#include "content/note_url.h"
#include "settings/settings.h"
#include "tests/indexers/indexer_fixture.h"

namespace {

class GenericIndexer : public IndexerTest {};

TEST_F(GenericIndexer, WritesTheBodyAndTheWindowTitle)
{
    EXPECT_EQ(Indexed(
                  {
                      TextItem("Subject", "Recipe"),
                      TextItem("Place", "Kitchen"),
                      pavex::FormulaItem("$WindowTitle", "Subject .. ' / ' .. Place"),
                      BodyItem({"Salt."}),
                  },
                  IndexGenericNote),
              (Properties{
                  {"last_modified_time", "date 2007-03-02T09:30:00Z"},
                  {"title", "Recipe / Kitchen"},
                  {"com.quorvex.pavex.content", "Salt.\r\n"},
              }));
}

TEST_F(GenericIndexer, TakesTheTitleOfItsForm)
{
    pavex::Note form;
    form.noteClass = pavex::kClassForm;
    form.items = {TextItem("$Title", "Recipe"), pavex::FormulaItem("$WindowTitle", "'Recipe: ' .. Subject")};
    Put(form);
    EXPECT_EQ(Indexed({TextItem("Form", "Recipe"), TextItem("Subject", "Soup")}, IndexGenericNote).at("title"),
              "Recipe: Soup");
}

TEST_F(GenericIndexer, TakesTheTitleOfTheDatabaseWithoutOneOfItsOwn)
{
    EXPECT_EQ(Indexed({TextItem("Subject", "Recipe")}, IndexGenericNote),
              (Properties{{"last_modified_time", "date 2007-03-02T09:30:00Z"},
                          {"title", "The Notes"},
                          {"com.quorvex.pavex.content", ""}}));
    EXPECT_EQ(Indexed({pavex::FormulaItem("$WindowTitle", "this is no formula (")}, IndexGenericNote).at("title"),
              "The Notes");
}

TEST_F(GenericIndexer, TakesTheWholeNoteWhereFormulasMayBeComputed)
{
    bIniComputeOk = 1;
    const uint32_t id = Put({TextItem("Subject", "Recipe"), TextItem("Place", "Kitchen"), BodyItem({"Salt."})});
    ASSERT_TRUE(Index(id, IndexGenericNote));
    const std::string content = Metafile(id).at("com.quorvex.pavex.content");
    for (const std::string& part :
         {std::string("Recipe"), std::string("Kitchen"), std::string("Salt."), Url(id), std::string(CookieDefault)})
        EXPECT_NE(content.find(part), std::string::npos) << part << " is not in:\n" << content;
}

TEST_F(GenericIndexer, WritesANoteFile)
{
    const uint32_t id = Put(std::vector<pavex::Item>{});
    ASSERT_TRUE(Index(id, IndexGenericNote));
    EXPECT_EQ(Extension(id), "vPavexNote");
    EXPECT_EQ(context_.writtenSize, 0);
}

}  // namespace
