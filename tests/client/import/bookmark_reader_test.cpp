// tests/client/import/bookmark_reader_test.cpp
#include "client/import/bookmark_reader.h"

#include "client/store/richtext.h"
#include "client/store/timedate.h"
#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

class BookmarkReaderTest : public ImportTest {
protected:
    // Imports a bookmark file with these lines and gives the notes of a database, forms left out.
    std::vector<NoteText> Read(const std::string& lines, const std::string& database = "documents.vlt")
    {
        options_.into.clear();
        Write("b.html",
              "<!DOCTYPE NETSCAPE-Bookmark-file-1>\n<TITLE>Bookmarks</TITLE>\n<DL><p>\n" + lines + "</DL><p>\n");
        report_ = Run({"b.html"});
        options_.into = options_.dataDirectory + "/" + database;
        std::vector<NoteText> notes;
        for (NoteText& note : Notes()) {
            if (note.contains("Form"))
                notes.push_back(std::move(note));
        }
        options_.into.clear();
        return notes;
    }
    std::vector<std::string> Titles(const std::string& lines)
    {
        std::vector<std::string> titles;
        for (NoteText& note : Read(lines))
            titles.push_back(note["Title"]);
        return titles;
    }

    ImportReport report_;
};

using Strings = std::vector<std::string>;

constexpr const char* kNoteUrl = "Pavex:///0123456789ABCDEF//00112233445566778899AABBCCDDEEFF";

TEST_F(BookmarkReaderTest, MakesANoteWithTheAddressFoldersAndTags)
{
    const std::vector<NoteText> notes =
        Read("<DT><H3>Work</H3>\n<DL><p>\n<DT><H3>Tools &amp; more</H3>\n<DL><p>\n"
             "<DT><A HREF=\"https://example.org/?a=1&amp;b=2\" ADD_DATE=\"1173096000\" LAST_MODIFIED=\"1173182400\" "
             "TAGS=\"red, green\">A   <b>bold</b>\n title</A>\n<DD>What it\nis about\n</DL><p>\n</DL><p>\n");
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0], (NoteText{{"Form", "Bookmark"},
                                  {"Title", "A bold title"},
                                  {"Address", "https://example.org/?a=1&b=2"},
                                  {"Categories", "Work|Tools & more|red|green"},
                                  {"Body", "What it\nis about\nhttps://example.org/?a=1&b=2\n"}}));
}

TEST_F(BookmarkReaderTest, ListsTheOutermostHundredFoldersAndComesBackOutOfThem)
{
    std::string lines;
    for (int i = 0; i < 120; ++i)
        lines += "<DL><p>\n<DT><H3>F" + std::to_string(i) + "</H3>\n<DL><p>\n";
    lines += "<DT><A HREF=\"https://example.org/in\">in</A>\n";
    for (int i = 0; i < 119; ++i)
        lines += "</DL><p></DL><p>\n";
    const std::vector<NoteText> notes = Read(lines + "<DT><A HREF=\"https://example.org/out\">out</A>\n</DL></DL>\n");
    ASSERT_EQ(notes.size(), 2U);
    const std::string all = notes[0].at("Categories");
    EXPECT_EQ(std::count(all.begin(), all.end(), '|'), 99);
    EXPECT_TRUE(all.starts_with("F0|F1|") && all.ends_with("|F99")) << all;
    EXPECT_EQ(notes[1].at("Categories"), "F0");
}

TEST_F(BookmarkReaderTest, KeepsTheTimesOfABookmark)
{
    Read("<DT><A HREF=\"https://example.org/\" ADD_DATE=\"1173096000\" LAST_MODIFIED=\"1173182400000\">x</A>\n");
    std::unique_ptr<Database> database;
    ASSERT_EQ(Database::Open(options_.dataDirectory + "/documents.vlt", &database), 0);
    Note note;
    ASSERT_EQ(database->Get(2, &note), 0);
    EXPECT_EQ(IsoFromTime(note.created), "2007-03-05T12:00:00Z");
    EXPECT_EQ(IsoFromTime(note.modified), "2007-03-06T12:00:00Z");
}

TEST_F(BookmarkReaderTest, MakesAHistoryEntryOfALinkToANote)
{
    const std::vector<NoteText> notes =
        Read(std::string("<DT><A HREF=\"") + kNoteUrl + "\">The plan</A>\n", "bookmark.vlt");
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0], (NoteText{{"Form", "HistoryListEntry"}, {"Title", "The plan"}, {"URL", "The plan\n"}}));
    std::unique_ptr<Database> database;
    ASSERT_EQ(Database::Open(options_.dataDirectory + "/bookmark.vlt", &database), 0);
    Note note;
    ASSERT_EQ(database->Get(1, &note), 0);
    const std::vector<RichTextPiece> pieces = ReadRichText(note.Find("URL")->value);
    ASSERT_EQ(pieces.size(), 1U);
    EXPECT_EQ(HexFromId(pieces[0].link.replica), "0123456789ABCDEF");
    EXPECT_EQ(HexFromUnid(pieces[0].link.note), "00112233445566778899AABBCCDDEEFF");
}

TEST_F(BookmarkReaderTest, RejectsALinkThatLeadsToNoNoteWithItsLine)
{
    EXPECT_EQ(Titles("<DT><A HREF=\"https://example.org/1\">one</A>\n<DT><A HREF=\"Pavex:///12//34\">bad</A>\n"
                     "<DT><A HREF=\"https://example.org/2\">two</A>\n"),
              (Strings{"one", "two"}));
    ASSERT_EQ(report_.rejected.size(), 1U);
    EXPECT_TRUE(report_.rejected[0].where.ends_with("b.html:line 5")) << report_.rejected[0].where;
    EXPECT_EQ(report_.rejected[0].reason, "leads to no note: Pavex:///12//34");
}

TEST_F(BookmarkReaderTest, RejectsLinksToWholeDatabases)
{
    for (const char* address : {"Pavex:///0123456789ABCDEF//00000000000000000000000000000000",
                                "Pavex:///0123456700000000//00112233445566778899AABBCCDDEEFF",
                                "Pavex:///0123456789ABCDEF//00112233000000008899AABBCCDDEEFF"}) {
        EXPECT_EQ(Titles(std::string("<DT><A HREF=\"") + address +
                         "\">bad</A>\n<DT><A HREF=\"https://example.org/\">good</A>\n"),
                  (Strings{"good"}));
        ASSERT_EQ(report_.rejected.size(), 1U);
        EXPECT_EQ(report_.rejected[0].reason, std::string("leads to no note: ") + address);
    }
}

TEST_F(BookmarkReaderTest, TakesFilesThatEndNoElementAndLinksWithoutATitle)
{
    EXPECT_EQ(
        Titles(
            "<DT><A HREF=\"https://example.org/1\">one\n<DT><A HREF=\"https://example.org/2\"></A>\n<DT><A>none</A>\n"),
        (Strings{"one", "https://example.org/2"}));
}

TEST_F(BookmarkReaderTest, PassesOverLinksWhoseAddressIsBlank)
{
    EXPECT_EQ(Titles("<DT><A HREF=\" \n\">nowhere</A>\n<DT><A HREF=\"https://example.org/\">one</A>\n"),
              (Strings{"one"}));
}

TEST_F(BookmarkReaderTest, KeepsOneNoteAnAddressWithAllThatItsFoldersSay)
{
    const std::vector<NoteText> notes = Read(
        "<DT><H3>One</H3>\n<DL><p>\n<DT><A HREF=\"https://example.org/\" TAGS=\"red\">first</A>\n<DD>why\n</DL><p>\n"
        "<DT><H3>Two</H3>\n<DL><p>\n<DT><A HREF=\"https://example.org/\" TAGS=\"red\">second</A>\n</DL><p>\n");
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0].at("Title"), "first");
    EXPECT_EQ(notes[0].at("Categories"), "One|red|Two");
    EXPECT_EQ(notes[0].at("Body"), "why\nsecond\nhttps://example.org/\n");
    EXPECT_EQ(Counts(report_), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
}

TEST_F(BookmarkReaderTest, UpdatesTheNoteOfAnAddress)
{
    Read("<DT><A HREF=\"https://example.org/\">one</A>\n");
    Read("<DT><A HREF=\"https://example.org/\">changed</A>\n");
    EXPECT_EQ(Counts(report_), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
    Read("<DT><A HREF=\"https://example.org/\">changed</A>\n");
    EXPECT_EQ(Counts(report_), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
}

TEST_F(BookmarkReaderTest, ReadsWhatTheFileSaysItsCharsetIs)
{
    EXPECT_EQ(Titles("<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; charset=ISO-8859-2\">\n"
                     "<DT><A HREF=\"https://example.org/\">\xB1\xB6</A>\n"),
              (Strings{"\xC4\x85\xC5\x9B"}));
}

TEST_F(BookmarkReaderTest, WritesTheFormThatGivesTheNotesTheirTitleOnce)
{
    Read("<DT><A HREF=\"https://example.org/1\">one</A>\n<DT><A HREF=\"https://example.org/2\">two</A>\n");
    Read("<DT><A HREF=\"https://example.org/3\">three</A>\n");
    options_.into = options_.dataDirectory + "/documents.vlt";
    int forms = 0;
    for (NoteText& note : Notes())
        forms += note.contains("$WindowTitle") && note["$Title"] == "Bookmark" ? 1 : 0;
    EXPECT_EQ(forms, 1);
    EXPECT_EQ(Versions().size(), 4U);
}

}  // namespace
}  // namespace pavex
