// tests/client/store/rendered_note_test.cpp: a whole note as rich text.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/store/richtext.h"
#include "client/store/timedate.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

class RenderedNote : public HostFixture {
protected:
    std::vector<std::string> Rendered(NOTEHANDLE note)
    {
        const NOTEHANDLE target = NoteWith({});
        COMPOUNDHANDLE compound = 0;
        EXPECT_EQ(CompoundTextCreate(target, "Body", &compound), kStatusOk);
        EXPECT_EQ(CompoundTextAddRenderedNote(compound, note), kStatusOk);
        EXPECT_EQ(CompoundTextAddParagraphExt(compound, kStyleDefault, 0, "end", 3, nullptr), kStatusOk);
        EXPECT_EQ(CompoundTextClose(compound), kStatusOk);
        Item item;
        EXPECT_EQ(ReadOpenItem(target, "Body", &item), kStatusOk);
        std::vector<std::string> lines;
        for (const RichTextPiece& piece : ReadRichText(item.value))
            lines.push_back(piece.text);
        return lines;
    }
};

TEST_F(RenderedNote, ShowsFieldsFirstThenRichText)
{
    RichTextBuilder body;
    body.AddParagraph("body text");
    body.AddLink({}, "label");
    const NOTEHANDLE note = NoteWith({
        RichTextItem("Body", body.Records()),
        TextItem("Subject", "hello"),
        TextListItem("To", {"Ann", "Bob"}),
        NumberItem("Importance", 2),
        TimeItem("Due", *TimeFromIso("2007-03-05T14:00:00Z")),
        TextItem("Empty", ""),
        TextItem("$Hidden", "no"),
        FormulaItem("Formula", "1"),
    });
    EXPECT_EQ(Rendered(note), (std::vector<std::string>{"Subject: hello", "To: Ann, Bob", "Importance: 2",
                                                        "Due: 2007-03-05 14:00:00.00", "body text", "label", "end"}));
}

TEST_F(RenderedNote, LeavesOutWhatIsDamaged)
{
    RichTextBuilder body;
    body.AddParagraph("kept");
    Item broken = TextListItem("List", {"a"});
    broken.value.pop_back();
    const NOTEHANDLE note = NoteWith({RichTextItem("Body", body.Records() + "damage"), broken});
    EXPECT_EQ(Rendered(note), (std::vector<std::string>{"kept", "end"}));
}

TEST_F(RenderedNote, OfABadHandleIsRefused)
{
    COMPOUNDHANDLE compound = 0;
    ASSERT_EQ(CompoundTextCreate(NoteWith({}), "Body", &compound), kStatusOk);
    EXPECT_EQ(CompoundTextAddRenderedNote(compound, 0), kStatusBadHandle);
    CompoundTextDiscard(compound);
}
