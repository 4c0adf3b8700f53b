// tests/client/import/document_reader_test.cpp
#include "client/import/document_reader.h"

#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

class DocumentReaderTest : public ImportTest {
protected:
    DocumentReaderTest() { options_.into = options_.dataDirectory + "/documents.vlt"; }

    NoteText Read(const std::string& name, const std::string& content)
    {
        Write(name, content);
        report_ = Run({name});
        return report_.added + report_.updated == 1 ? Notes().back() : NoteText();
    }
    std::string Title(const std::string& name, const std::string& content) { return Read(name, content)["Title"]; }

    ImportReport report_;
};

TEST_F(DocumentReaderTest, MakesANoteOfAText)
{
    EXPECT_EQ(Read("plan.txt", "\n  The plan\n\nFirst this,\r\nthen that.\n"),
              (NoteText{{"Form", "Document"},
                        {"Title", "The plan"},
                        {"FileName", "plan.txt"},
                        {"Body", "\n  The plan\n\nFirst this,\nthen that.\n"}}));
}

TEST_F(DocumentReaderTest, TitlesMarkdownByItsSettingsItsHeadingOrItsFirstLine)
{
    EXPECT_EQ(Title("a.md", "An opening line.\n\n# The heading #\n\nText\n"), "The heading");
    EXPECT_EQ(Title("b.md", "---\nauthor: Ann\ntitle: \"The setting\"\n---\n# The heading\n"), "The setting");
    EXPECT_EQ(Title("c.md", "---\nauthor: Ann\n---\n\nOnly text\nand more\n"), "Only text");
    EXPECT_EQ(Title("d.md", "no line end"), "no line end");
    EXPECT_EQ(Title("e.txt", "A first line\n# a comment\n"), "A first line");
    EXPECT_EQ(Title("f.txt", "\n \n"), "f.txt");
}

TEST_F(DocumentReaderTest, TitlesTextsWhoseLastLineIsNotEnded)
{
    EXPECT_EQ(Title("a.txt", "\n  "), "a.txt");
    EXPECT_EQ(Title("b.md", "An opening line\n# The heading"), "The heading");
    EXPECT_EQ(Title("c.md", "---\ntitle: A"), "title: A");
    EXPECT_EQ(Title("d.md", "---\ntitle: A\n---"), "A");
    EXPECT_EQ(Title("e.md", "---\n  "), "e.md");
}

TEST_F(DocumentReaderTest, TakesNoCommentOfCodeForAHeading)
{
    EXPECT_EQ(Title("a.md", "```sh\n# a comment\n```\n# The heading\n"), "The heading");
    EXPECT_EQ(Title("b.md", "~~~\n# a comment\n~~~\n"), "# a comment");
    EXPECT_EQ(Title("c.md", "---\nText below a rule\n"), "Text below a rule");
}

TEST_F(DocumentReaderTest, ReadsEveryUnicodeFormAndOlderText)
{
    EXPECT_EQ(Title("a.txt", "\xEF\xBB\xBF\xC3\xA4\n"), "\xC3\xA4");
    EXPECT_EQ(Title("b.txt", std::string("\xFF\xFE\xE4\x00\n\x00", 6)), "\xC3\xA4");
    EXPECT_EQ(Title("c.txt", "Stra\xDF"
                             "e\n"),
              "Stra\xC3\x9F"
              "e");
}

TEST_F(DocumentReaderTest, TakesInAFolderOnlyWhatIsNamedAsTextAndIsText)
{
    Write("docs/a.txt", "one\n");
    Write("docs/b.md", "two\n");
    Write("docs/c.dat", "three\n");
    Write("docs/d.txt", std::string("a\0b", 3));
    const ImportReport report = Run({"docs"});
    EXPECT_EQ(Counts(report), "added 2 updated 0 unchanged 0 removed 0 rejected 2");
    EXPECT_EQ(Counts(Run({"docs/c.dat"})), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Counts(Run({"docs/d.txt"})), "added 0 updated 0 unchanged 0 removed 0 rejected 1");
}

TEST_F(DocumentReaderTest, UpdatesTheNoteOfAFileFromWhicheverSourceItIsRead)
{
    Read("docs/a.txt", "one\n");
    Write("docs/a.txt", "two\n");
    EXPECT_EQ(Counts(Run({"docs"})), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
}

TEST_F(DocumentReaderTest, PrunesTheNoteOfAFileThatIsGone)
{
    Write("docs/a.txt", "one\n");
    Run({"docs"});
    Rename("docs/a.txt", "docs/b.txt");
    options_.prune = true;
    EXPECT_EQ(Counts(Run({"docs"})), "added 1 updated 0 unchanged 0 removed 1 rejected 0");
}

TEST_F(DocumentReaderTest, TakesTheBeginningOfAVeryLongText)
{
    Read("long.txt", std::string(17 * 1024 * 1024, 'x'));
    ASSERT_EQ(report_.notices.size(), 1U);
    EXPECT_EQ(report_.notices[0].reason, "only the first 16 MB of its text were taken");
}

}  // namespace
}  // namespace pavex
