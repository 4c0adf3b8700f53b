// tests/content/body_text_test.cpp
#include "content/body_text.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "client/store/host.h"
#include "content/buffers.h"
#include "platform/posix.h"
#include "settings/settings.h"
#include "tests/content/note_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

constexpr char kContent[] = "com.quorvex.pavex.content";
constexpr size_t kThreshold = 58976;
constexpr size_t kFlushUnits = 30000;

class BodyText : public NoteFixture {
protected:
    ~BodyText() override { EXPECT_EQ(TemporaryFiles(), std::vector<std::string>()); }

    static std::string Text(NOTEHANDLE note, const char* item) { return GetItemContents(note, item).toString(); }

    // What the store exports for an item.
    std::string Exported(NOTEHANDLE note, const char* item) const
    {
        const std::string path = home_ / "exported";
        DWORD bytes = 0;
        if (MailGetMessageBodyText(note, item, "\r\n", 65535, true, path.c_str(), &bytes) != kStatusOk)
            return {};
        return ReadWholeFile(path);
    }

    static std::vector<std::string> Lines(size_t count, const std::string& line)
    {
        return std::vector<std::string>(count, line);
    }
};

// ASCII text as the flushes leave it: gathered by lines up to the threshold, each flush cut at its limit.
std::string AsFlushed(const std::string& text)
{
    std::string result;
    std::string gathered;
    for (size_t at = 0; at < text.size();) {
        const size_t lineEnd = text.find('\n', at);
        const size_t next = lineEnd == std::string::npos ? text.size() : lineEnd + 1;
        gathered += text.substr(at, next - at);
        at = next;
        if (gathered.size() >= kThreshold) {
            result += gathered.substr(0, kFlushUnits);
            gathered.clear();
        }
    }
    return result + gathered.substr(0, kFlushUnits);
}

TEST_F(BodyText, BeginsAtTheFirstCharacterThatIsNotBlankAndKeepsLaterBlankLines)
{
    const NOTEHANDLE note = Open({RichText("Body", {"", "   ", "\t", " \t  First  ", "", "  indented", "", "last"})});
    const std::string text = Text(note, "Body");
    EXPECT_EQ(text, "First  \r\n\r\n  indented\r\n\r\nlast\r\n");
    const std::string exported = Exported(note, "Body");
    EXPECT_EQ(text, exported.substr(exported.find("First")));
}

TEST_F(BodyText, ABodyOfBlanksOnlyIsEmpty)
{
    const NOTEHANDLE note = Open({RichText("Body", {"", "   ", "\t \t"}), RichText("None", {})});
    EXPECT_EQ(Text(note, "Body"), "");
    EXPECT_EQ(Text(note, "None"), "");
    EXPECT_EQ(Text(note, "Absent"), "");
}

TEST_F(BodyText, KeepsTextOfEveryScript)
{
    const NOTEHANDLE note = Open({RichText("Body", {"Grüße aus Zürich", "日本語の本文", "שלום", "😀 and 🧑"})});
    const std::string text = Text(note, "Body");
    EXPECT_EQ(text.substr(0, text.find_last_not_of("\r\n") + 1),
              "Grüße aus Zürich\r\n日本語の本文\r\nשלום\r\n😀 and 🧑");
}

TEST_F(BodyText, LineBreaksInATextItemAreLinesAndLoseNothing)
{
    const NOTEHANDLE note = Open({pavex::TextItem("Body", "one\ntwo\n\nthree")});
    const std::string text = Text(note, "Body");
    EXPECT_EQ(text.substr(0, text.find_last_not_of("\r\n") + 1), "one\r\ntwo\r\n\r\nthree");
}

TEST_F(BodyText, TheStoresOwnBodyItemServesForANullItem)
{
    const NOTEHANDLE note = Open({RichText("Body", {"the body"}), RichText("DetailedReport", {"the report"})});
    EXPECT_EQ(IndexItemContents(note, nullptr, true, event_), 0);
    const std::string text = Property(kContent).value();
    EXPECT_EQ(text.substr(0, 8), "the body");
    EXPECT_EQ(text.find("report"), std::string::npos);
}

TEST_F(BodyText, ANoteWithBothItemsUsesTheBodyOnly)
{
    const NOTEHANDLE note = Open({RichText("DetailedReport", {"the report"}), RichText("Body", {"the body"})});
    EXPECT_EQ(CString(FindAndGetItemContents(note)).toString(), Text(note, "Body"));
}

TEST_F(BodyText, ANoteWithoutABodyUsesTheReport)
{
    const NOTEHANDLE note = Open({RichText("DetailedReport", {"the report"})});
    EXPECT_EQ(IndexItemContents(note, nullptr, false, event_), 0);
    EXPECT_EQ(Property(kContent).value().substr(0, 10), "the report");
}

TEST_F(BodyText, ANoteWithNeitherGetsAnEmptyText)
{
    const NOTEHANDLE note = Open({pavex::TextItem("Subject", "no body")});
    EXPECT_EQ(FindAndGetItemContents(note), L"");
    EXPECT_EQ(IndexItemContents(note, nullptr, true, event_), 0);
    EXPECT_EQ(Property(kContent), "");
}

TEST_F(BodyText, ANamedItemIsNotReplacedByAnother)
{
    const NOTEHANDLE note = Open({RichText("Body", {"the body"}), RichText("Comment", {" "})});
    EXPECT_EQ(IndexItemContents(note, "Comment", true, event_), 0);
    EXPECT_EQ(Property(kContent), "");
}

TEST_F(BodyText, TheSettingsNameOtherBodyItems)
{
    const NOTEHANDLE note =
        Open({RichText("Body", {"the body"}), RichText("Abstract", {"the abstract"}), RichText("Empty", {""})});
    std::strcpy(szDataFields, ",Missing,Abstract,Body");
    EXPECT_EQ(CString(FindAndGetItemContents(note)).toString(), Text(note, "Abstract"));
    std::strcpy(szDataFields, "Missing");
    EXPECT_EQ(FindAndGetItemContents(note), L"");
    // The first item that is there counts, whatever it holds.
    std::strcpy(szDataFields, "Empty,Body");
    EXPECT_EQ(FindAndGetItemContents(note), L"");
}

TEST_F(BodyText, ABodyBelowTheWideLimitComesWhole)
{
    const NOTEHANDLE note = Open({RichText("Body", Lines(290, std::string(98, 'x')))});
    const std::string text = Text(note, "Body");
    EXPECT_TRUE(text == Exported(note, "Body"));
    EXPECT_GE(text.size(), 28998u);
}

TEST_F(BodyText, ALongBodyIsFlushedByLinesAndEachFlushIsCutAt30000Units)
{
    for (const size_t lines : {589u, 590u, 1000u, 1179u, 1180u, 1300u}) {
        SCOPED_TRACE(lines);
        const NOTEHANDLE note = Open({RichText("Body", Lines(lines, std::string(98, 'x')))});
        const std::string exported = Exported(note, "Body");
        EXPECT_TRUE(Text(note, "Body") == AsFlushed(exported));
    }
}

TEST_F(BodyText, ABodyOf100000BytesIsFlushedAtTheThresholdAndAtItsEnd)
{
    const NOTEHANDLE note = Open({RichText("Body", Lines(1000, std::string(98, 'x')))});
    ASSERT_GE(Exported(note, "Body").size(), 99998u);
    EXPECT_EQ(Text(note, "Body").size(), 2 * kFlushUnits);
}

TEST_F(BodyText, ALineLongerThanOneReadKeepsItsCharactersWhole)
{
    // Three and six bytes a character: neither divides what one read takes.
    for (const std::string character : {"日", "😀"}) {
        SCOPED_TRACE(character);
        std::string line;
        for (int i = 0; i < 30000; ++i)
            line += character;
        const NOTEHANDLE note = Open({RichText("Body", {line})});
        const std::string text = Text(note, "Body");
        EXPECT_EQ(text.find("\uFFFD"), std::string::npos);
        const size_t end = text.find_last_not_of("\r\n") + 1;
        if (character == "日") {
            EXPECT_TRUE(text.substr(0, end) == line);
        } else {
            EXPECT_EQ(text.find_first_not_of(character), end);
        }
    }
}

TEST_F(BodyText, TheLengthOfAFlushIsKeptTo16Bits)
{
    // Two reads of a line without an end make one flush of 65,536 bytes, and a length of 0.
    const NOTEHANDLE note = Open({RichText("Body", {std::string(70000, 'x')})});
    const std::string text = Text(note, "Body");
    EXPECT_EQ(text, std::string(70000 - 65536, 'x') + "\r\n");
}

class BodyToCompound : public BodyText {
protected:
    BodyToCompound()
    {
        EXPECT_EQ(VLTNoteCreate(db_, 0, &scratch_), kStatusOk);
        EXPECT_EQ(CompoundTextCreate(scratch_, "Body", &compound_), kStatusOk);
    }
    ~BodyToCompound() override
    {
        if (compound_ != 0)
            CompoundTextDiscard(compound_);
        EXPECT_EQ(VLTNoteClose(scratch_), kStatusOk);
    }
    std::string Written()
    {
        EXPECT_EQ(CompoundTextClose(compound_), kStatusOk);
        compound_ = 0;
        return Exported(scratch_, "Body");
    }

    NOTEHANDLE scratch_ = 0;
    COMPOUNDHANDLE compound_ = 0;
};

TEST_F(BodyToCompound, TheResultIsAFixedMessage)
{
    const NOTEHANDLE note = Open({RichText("Body", {"  first", "", "second"})});
    EXPECT_EQ(ProcessItemContents(note, "Body", compound_), CString("added to hData buffer"));
    EXPECT_TRUE(AddItemContents(note, "Body", compound_));
    const std::string written = Written();
    EXPECT_EQ(written.substr(0, 15), "first\r\n\r\nsecond");
    EXPECT_NE(written.find("first", 15), std::string::npos);
}

TEST_F(BodyToCompound, NothingIsAddedForAnEmptyItem)
{
    const NOTEHANDLE note = Open({RichText("Body", {" "})});
    EXPECT_TRUE(ProcessItemContents(note, "Body", compound_).IsEmpty());
    EXPECT_FALSE(AddItemContents(note, "Absent", compound_));
}

TEST_F(BodyToCompound, ALongBodyArrivesWhole)
{
    std::vector<std::string> lines = Lines(2000, std::string(120, 'y'));
    std::string longLine;
    for (int i = 0; i < 30000; ++i)
        longLine += "日";
    lines.push_back(longLine);
    const NOTEHANDLE note = Open({RichText("Body", lines)});
    const std::string exported = Exported(note, "Body");
    EXPECT_TRUE(AddItemContents(note, "Body", compound_));
    std::string written = Written();
    // The flushes begin paragraphs of their own, which the text itself does not show.
    const auto withoutLineEnds = [](std::string text) {
        std::erase_if(text, [](char c) { return c == '\r' || c == '\n'; });
        return text;
    };
    EXPECT_TRUE(withoutLineEnds(written) == withoutLineEnds(exported));
}

TEST_F(BodyToCompound, ARefusedTextLeavesTheResultEmpty)
{
    const NOTEHANDLE note = Open({RichText("Body", {"text"})});
    const NamedFault fault("CompoundTextAddTextExt");
    EXPECT_TRUE(ProcessItemContents(note, "Body", compound_).IsEmpty());
}

TEST_F(BodyText, WithoutATemporaryFileThereIsNoText)
{
    const NOTEHANDLE note = Open({RichText("Body", {"text"})});
    setenv("TMPDIR", (home_ / "no such folder").c_str(), 1);
    EXPECT_EQ(Text(note, "Body"), "");
    setenv("TMPDIR", (home_ / "tmp").c_str(), 1);
    const NamedFault fault("OSCreateTempFile");
    EXPECT_EQ(IndexItemContents(note, nullptr, false, event_), 0);
    EXPECT_EQ(Property(kContent), "");
}

TEST_F(BodyText, AnExportThatFailsLeavesNoFile)
{
    const NOTEHANDLE note = Open({RichText("Body", {"text"})});
    const NamedFault fault("MailGetMessageBodyText");
    EXPECT_EQ(Text(note, "Body"), "");
}

using UnreadableExport = NoteFixture;

TEST_F(UnreadableExport, LeavesTheFileBehind)
{
    const NOTEHANDLE note = Open({RichText("Body", {"text"})});
    {
        const NamedFault fault("fopen");
        EXPECT_EQ(GetItemContents(note, "Body").toString(), "");
    }
    EXPECT_EQ(TemporaryFiles().size(), 1u);
    EXPECT_EQ(GetItemContents(note, "Body").toString().substr(0, 4), "text");
    EXPECT_EQ(TemporaryFiles().size(), 1u);
}

}  // namespace
