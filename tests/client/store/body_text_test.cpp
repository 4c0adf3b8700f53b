// tests/client/store/body_text_test.cpp: the plain text of an item in a file.
#include <gtest/gtest.h>

#include <string>

#include "client/store/charset.h"
#include "client/store/note.h"
#include "client/store/richtext.h"
#include "tests/client/store/host_fixture.h"
#include "tests/support/test_database.h"

using namespace pavex;

class BodyText : public HostFixture {
protected:
    std::string Export(NOTEHANDLE note, const char* item, WORD lineLength = 65535, bool convertTabs = true,
                       STATUS expected = kStatusOk)
    {
        DWORD size = 99;
        const STATUS status =
            MailGetMessageBodyText(note, item, "\r\n", lineLength, convertTabs, (dir / "out").c_str(), &size);
        EXPECT_EQ(status, expected);
        if (status != kStatusOk) {
            EXPECT_EQ(size, 0u);
            return {};
        }
        const std::string text = ReadWholeFile(dir / "out");
        EXPECT_EQ(size, text.size());
        return text;
    }
};

TEST_F(BodyText, WritesParagraphsRulesAndLabelsAsLines)
{
    RichTextBuilder builder;
    builder.AddParagraph("First\tpart");
    builder.AddParagraph("");
    builder.AddRule();
    builder.AddLink({}, "a label");
    const NOTEHANDLE note = NoteWith({RichTextItem("Body", builder.Records())});
    EXPECT_EQ(Export(note, nullptr), "First part\r\n\r\n\r\na label\r\n");
    EXPECT_EQ(Export(note, "BODY", 65535, false), "First\tpart\r\n\r\n\r\na label\r\n");
}

TEST_F(BodyText, WritesTextAndTextListsToo)
{
    const NOTEHANDLE note =
        NoteWith({TextItem("Text", "one\ntwo"), TextListItem("List", {"a", "b"}), TextItem("Empty", "")});
    EXPECT_EQ(Export(note, "Text"), "one\r\ntwo\r\n");
    EXPECT_EQ(Export(note, "List"), "a\r\nb\r\n");
    EXPECT_EQ(Export(note, "Empty"), "");
}

TEST_F(BodyText, WrapsLines)
{
    RichTextBuilder builder;
    builder.AddParagraph("the quick brown fox");
    EXPECT_EQ(Export(NoteWith({RichTextItem("Body", builder.Records())}), "Body", 10), "the quick\r\nbrown fox\r\n");
}

TEST_F(BodyText, RefusesAbsentItemsAndThoseWithoutText)
{
    const NOTEHANDLE note = NoteWith({NumberItem("Number", 1)});
    Export(note, nullptr, 65535, true, kStatusItemNotFound);
    Export(note, "Number", 65535, true, kStatusItemNotFound);
    Export(0, nullptr, 65535, true, kStatusBadHandle);
}

TEST_F(BodyText, EndsAtADamagedRecordAndFailsOnlyWithoutAnyText)
{
    RichTextBuilder builder;
    builder.AddParagraph("kept");
    EXPECT_EQ(Export(NoteWith({RichTextItem("Body", builder.Records() + "damage")}), nullptr), "kept\r\n");
    Export(NoteWith({RichTextItem("Body", "damage")}), nullptr, 65535, true, kStatusDamaged);
}

TEST_F(BodyText, ReportsWhereItCannotWrite)
{
    const NOTEHANDLE note = NoteWith({TextItem("Body", "text")});
    DWORD size = 99;
    EXPECT_EQ(MailGetMessageBodyText(note, nullptr, "\n", 65535, true, "/dev/full", &size), kStatusDiskFull);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(MailGetMessageBodyText(note, nullptr, "\n", 65535, true, (dir / "no/file").c_str(), &size),
              kStatusNoSuchFile);
}

TEST_F(BodyText, WritesIntoAFileWithAnyName)
{
    const std::string name = dir / "\xF0\x9F\x98\x80.txt";
    const NOTEHANDLE note = NoteWith({TextItem("Body", "text")});
    ASSERT_EQ(MailGetMessageBodyText(note, nullptr, "\n", 65535, true, ScsFromUtf8(name).c_str(), nullptr), kStatusOk);
    EXPECT_EQ(ReadWholeFile(name), "text\n");
}

TEST_F(BodyText, StreamsALargeBodyOutOfADatabase)
{
    RichTextBuilder builder;
    std::string expected;
    for (int i = 0; i < 20000; ++i) {
        const std::string paragraph = "paragraph " + std::to_string(i) + " \xC3\xA9";
        builder.AddParagraph(paragraph);
        expected += paragraph + "\r\n";
    }
    TestDatabase database(dir / "large.vlt");
    const uint32_t id = database.AddNote({RichTextItem("Body", builder.Records())});
    DBHANDLE db = 0;
    NOTEHANDLE note = 0;
    ASSERT_EQ(VLTDbOpen((dir / "large.vlt").c_str(), &db), kStatusOk);
    ASSERT_EQ(VLTNoteOpen(db, id, 0, &note), kStatusOk);
    EXPECT_TRUE(Export(note, nullptr) == expected);
    VLTNoteClose(note);
    VLTDbClose(db);
}
