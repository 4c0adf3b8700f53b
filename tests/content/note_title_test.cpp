// tests/content/note_title_test.cpp
#include "content/note_title.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "content/buffers.h"
#include "tests/content/note_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

class NoteTitle : public NoteFixture {
protected:
    static std::string TitleOf(NOTEHANDLE note)
    {
        char title[200] = "before";
        const WORD length = GetNoteTitle(note, title, sizeof title);
        EXPECT_EQ(std::strlen(title), length);
        return Utf8(title);
    }
};

TEST_F(NoteTitle, ComesFromTheFormulaOfTheForm)
{
    const NOTEID form = database_->AddForm("Report", "Subject .. ' / ' .. Place");
    const NOTEHANDLE note = Open({pavex::TextItem("Form", "Report"), pavex::TextItem("Subject", "Grüße"),
                                  pavex::TextItem("Place", "日本"), pavex::FormulaItem("$WindowTitle", "'its own'")});
    NOTEID found = 0;
    EXPECT_TRUE(GetNoteForm(note, &found));
    EXPECT_EQ(found, form);
    EXPECT_EQ(TitleOf(note), "Grüße / 日本");
}

TEST_F(NoteTitle, ElseFromTheNotesOwnFormula)
{
    database_->AddForm("Plain");
    const NOTEHANDLE plain = Open({pavex::TextItem("Form", "Plain"), pavex::FormulaItem("$WindowTitle", "'its own'")});
    EXPECT_EQ(TitleOf(plain), "its own");
    const NOTEHANDLE unknown =
        Open({pavex::TextItem("Form", "Nowhere"), pavex::FormulaItem("$WindowTitle", "'its own'")});
    NOTEID found = 77;
    EXPECT_FALSE(GetNoteForm(unknown, &found));
    EXPECT_EQ(found, 0u);
    EXPECT_EQ(TitleOf(unknown), "its own");
    const NOTEHANDLE formless = Open({pavex::FormulaItem("$WindowTitle", "'its own'")});
    EXPECT_FALSE(GetNoteForm(formless, &found));
    EXPECT_EQ(TitleOf(formless), "its own");
}

TEST_F(NoteTitle, ThereIsNoneWithoutAFormula)
{
    EXPECT_EQ(TitleOf(Open({pavex::TextItem("Subject", "x")})), "");
    EXPECT_EQ(TitleOf(Open({pavex::TextItem("$WindowTitle", "only text")})), "");
    EXPECT_EQ(TitleOf(Open({pavex::FormulaItem("$WindowTitle", "this is ) not a formula")})), "");
    EXPECT_EQ(TitleOf(Open({pavex::FormulaItem("$WindowTitle", "nil .. 'x'")})), "");
    char title[8] = "before";
    EXPECT_EQ(GetNoteTitle(0, title, sizeof title), 0);
}

TEST_F(NoteTitle, TakesNumbersAndLists)
{
    EXPECT_EQ(TitleOf(Open({pavex::FormulaItem("$WindowTitle", "6 * 7 + 0.5")})), "42.5");
    const NOTEHANDLE list =
        Open({pavex::TextListItem("Tags", {"a", "b\nc"}), pavex::FormulaItem("$WindowTitle", "Tags")});
    EXPECT_EQ(TitleOf(list), "a, b, c");
}

TEST_F(NoteTitle, StaysInsideEverySizeAndKeepsCharactersWhole)
{
    const NOTEHANDLE note = Open({pavex::TextItem("Subject", "a日😀z"), pavex::FormulaItem("$WindowTitle", "Subject")});
    const std::string whole = Scs("a日😀z");
    for (WORD size = 0; size < 14; ++size) {
        std::string buffer(16, '\x55');
        const WORD length = GetNoteTitle(note, buffer.data(), size);
        EXPECT_EQ(buffer.substr(size), std::string(16u - size, '\x55')) << size;
        EXPECT_LE(length, size == 0 ? 0 : size - 1);
        EXPECT_EQ(buffer.substr(0, length), whole.substr(0, length));
        EXPECT_TRUE(length == 0 || length == 1 || length == 4 || length == 10 || length == 11) << length;
    }
}

TEST_F(NoteTitle, TheDestinationMayBeBuffer1)
{
    database_->AddForm("Report", "'Title of ' .. Subject");
    const NOTEHANDLE note = Open({pavex::TextItem("Form", "Report"), pavex::TextItem("Subject", "x")});
    EXPECT_EQ(GetNoteTitle(note, Buffer1, kBufferLimit), 10);
    EXPECT_STREQ(Buffer1, "Title of x");
    const NOTEHANDLE untitled = Open({pavex::TextItem("Form", "Nowhere")});
    EXPECT_EQ(GetNoteTitle(untitled, Buffer1, kBufferLimit), 0);
    EXPECT_STREQ(Buffer1, "");
}

TEST_F(NoteTitle, TheComputeGoesToTheCaller)
{
    COMPUTEHANDLE compute = 77;
    UtilGetWinTitleCompute(Open({pavex::TextItem("Subject", "x")}), &compute);
    EXPECT_EQ(compute, 0u);
    UtilGetWinTitleCompute(Open({pavex::FormulaItem("$WindowTitle", "'t'")}), &compute);
    EXPECT_NE(compute, 0u);
    EXPECT_EQ(VLTComputeStop(compute), kStatusOk);
}

TEST_F(NoteTitle, AnySingleFailureLeavesNoHandleAndATitleOrNone)
{
    database_->AddForm("Report", "'of the form'");
    const NOTEHANDLE note = Open({pavex::TextItem("Form", "Report"), pavex::FormulaItem("$WindowTitle", "'its own'")});
    bool fired = true;
    for (int failing = 1; fired; ++failing) {
        char title[100] = "before";
        WORD length = 0;
        {
            const FaultPlan plan(failing);
            length = GetNoteTitle(note, title, sizeof title);
            fired = plan.Fired();
        }
        const std::string text = title;
        EXPECT_EQ(text.size(), length);
        EXPECT_TRUE(text.empty() || text == "its own" || text == "of the form") << text;
        if (!fired) {
            EXPECT_EQ(text, "of the form");
        }
    }
}

TEST_F(NoteTitle, TheDatabaseHasATitleToo)
{
    char title[100] = "before";
    EXPECT_EQ(GetDbTitle(db_, title, sizeof title), 15);
    EXPECT_STREQ(title, "Notes for tests");
    EXPECT_EQ(GetDbTitle(db_, title, 6), 5);
    EXPECT_STREQ(title, "Notes");
    EXPECT_EQ(IndexDbTitle(db_, event_, "title", false), 0);
    EXPECT_EQ(Property("title"), "Notes for tests");
}

TEST_F(NoteTitle, ADatabaseThatCannotBeReadHasNoTitle)
{
    char title[100] = "before";
    EXPECT_EQ(GetDbTitle(0, title, sizeof title), 0);
    EXPECT_STREQ(title, "");
    EXPECT_EQ(IndexDbTitle(0, event_, "absent", false), 0);
    EXPECT_EQ(Property("absent"), std::nullopt);
    EXPECT_EQ(IndexDbTitle(0, event_, "empty", true), 0);
    EXPECT_EQ(Property("empty"), "");
}

}  // namespace
