// tests/client/store/compound_text_test.cpp: rich text that is written piece by piece.
#include "client/store/compound_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "client/store/richtext.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

class CompoundTextCalls : public HostFixture {
protected:
    COMPOUNDHANDLE Create()
    {
        COMPOUNDHANDLE compound = 0;
        EXPECT_EQ(CompoundTextCreate(note, "Body", &compound), kStatusOk);
        return compound;
    }
    void Text(COMPOUNDHANDLE compound, const std::string& text)
    {
        EXPECT_EQ(CompoundTextAddTextExt(compound, kStyleDefault, 0x0A000001, text.data(),
                                         static_cast<DWORD>(text.size()), "\r\n", 2, nullptr),
                  kStatusOk);
    }
    void Paragraph(COMPOUNDHANDLE compound, const std::string& text)
    {
        EXPECT_EQ(CompoundTextAddParagraphExt(compound, kStyleDefault, 0x0A000001, text.data(),
                                              static_cast<DWORD>(text.size()), nullptr),
                  kStatusOk);
    }
    std::vector<std::string> Close(COMPOUNDHANDLE compound)
    {
        EXPECT_EQ(CompoundTextClose(compound), kStatusOk);
        Item item;
        EXPECT_EQ(ReadOpenItem(note, "Body", &item), kStatusOk);
        EXPECT_EQ(item.type, kTypeRichText);
        std::vector<std::string> paragraphs;
        bool damaged = true;
        for (const RichTextPiece& piece : ReadRichText(item.value, &damaged))
            paragraphs.push_back(piece.text);
        EXPECT_FALSE(damaged);
        return paragraphs;
    }

    NOTEHANDLE note = NoteWith({});
};

using Paragraphs = std::vector<std::string>;

TEST_F(CompoundTextCalls, StartAParagraphAtEachDelimiter)
{
    const COMPOUNDHANDLE compound = Create();
    Text(compound, "a\r\n\r\nb\r\nc");
    EXPECT_EQ(Close(compound), (Paragraphs{"a", "", "b", "c"}));
}

TEST_F(CompoundTextCalls, GoOnInTheOpenParagraph)
{
    const COMPOUNDHANDLE compound = Create();
    Text(compound, "a");
    Text(compound, "b\r\n");
    Text(compound, "c");
    EXPECT_EQ(Close(compound), (Paragraphs{"ab", "c"}));
}

TEST_F(CompoundTextCalls, SeeADelimiterThatTwoCallsShare)
{
    const COMPOUNDHANDLE compound = Create();
    Text(compound, "a\r");
    Text(compound, "\nb\r");
    Text(compound, "c\r");
    EXPECT_EQ(Close(compound), (Paragraphs{"a", "b\rc\r"}));
}

TEST_F(CompoundTextCalls, KeepAddedParagraphsApart)
{
    const COMPOUNDHANDLE compound = Create();
    Text(compound, "text\r\n");
    Paragraph(compound, "one");
    Paragraph(compound, "");
    Text(compound, "more");
    Paragraph(compound, "two");
    EXPECT_EQ(Close(compound), (Paragraphs{"text", "one", "", "more", "two"}));
}

TEST_F(CompoundTextCalls, TakeTextOfAnyLength)
{
    const std::string text(200000, 'x');
    const COMPOUNDHANDLE compound = Create();
    Text(compound, text);
    Text(compound, "\r\n" + text);
    EXPECT_EQ(Close(compound), (Paragraphs{text, text}));
}

TEST_F(CompoundTextCalls, KnowTheStylesThatWereDefined)
{
    const COMPOUNDHANDLE compound = Create();
    char style[64];
    DWORD id = 0;
    CompoundTextInitStyle(style);
    EXPECT_EQ(std::string(style, 64), std::string(64, '\0'));
    ASSERT_EQ(CompoundTextDefineStyle(compound, "", style, &id), kStatusOk);
    EXPECT_EQ(CompoundTextAddParagraphExt(compound, id, 0, "a", 1, nullptr), kStatusOk);
    EXPECT_EQ(CompoundTextAddParagraphExt(compound, id + 1, 0, "b", 1, nullptr), kStatusBadHandle);
    EXPECT_EQ(Close(compound), Paragraphs{"a"});
}

TEST_F(CompoundTextCalls, WriteNothingWhenDiscarded)
{
    const COMPOUNDHANDLE compound = Create();
    Text(compound, "a");
    CompoundTextDiscard(compound);
    Item item;
    EXPECT_EQ(ReadOpenItem(note, "Body", &item), kStatusItemNotFound);
    EXPECT_EQ(CompoundTextClose(compound), kStatusBadHandle);
}

TEST_F(CompoundTextCalls, RefuseBadHandles)
{
    COMPOUNDHANDLE compound = 7;
    EXPECT_EQ(CompoundTextCreate(0, "Body", &compound), kStatusBadHandle);
    EXPECT_EQ(compound, 0u);
    EXPECT_EQ(CompoundTextCreate(note, "", &compound), kStatusBadText);
    DWORD style = 0;
    EXPECT_EQ(CompoundTextDefineStyle(0, "", nullptr, &style), kStatusBadHandle);
    EXPECT_EQ(CompoundTextAddTextExt(0, kStyleDefault, 0, "a", 1, nullptr, 0, nullptr), kStatusBadHandle);
    EXPECT_EQ(CompoundTextAddParagraphExt(0, kStyleDefault, 0, "a", 1, nullptr), kStatusBadHandle);
    EXPECT_EQ(CompoundTextAddRenderedNote(0, note), kStatusBadHandle);
    CompoundTextDiscard(0);
}

TEST_F(CompoundTextCalls, FailToCloseWhenTheNoteIsGone)
{
    auto gone = std::make_unique<OpenNote>(nullptr, 0);
    const NOTEHANDLE handle = OpenNotes().Add(std::move(gone));
    COMPOUNDHANDLE compound = 0;
    ASSERT_EQ(CompoundTextCreate(handle, "Body", &compound), kStatusOk);
    VLTNoteClose(handle);
    EXPECT_EQ(CompoundTextClose(compound), kStatusBadHandle);
}
