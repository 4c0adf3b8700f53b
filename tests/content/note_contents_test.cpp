// tests/content/note_contents_test.cpp
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "client/store/host.h"
#include "content/body_text.h"
#include "content/buffers.h"
#include "content/note_url.h"
#include "tests/content/note_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

constexpr char kContent[] = "com.quorvex.pavex.content";

class NoteContents : public NoteFixture {
protected:
    ~NoteContents() override
    {
        EXPECT_EQ(TemporaryFiles(), std::vector<std::string>());
        EXPECT_EQ(database_->Ids().size(), notesMade_) << "the scratch note was saved";
    }

    NOTEHANDLE Make(std::vector<pavex::Item> items)
    {
        ++notesMade_;
        return Open(std::move(items));
    }
    // The lines of the content that IndexNoteContents adds, blank ones left out.
    std::vector<std::string> LinesOf(NOTEHANDLE note, bool render)
    {
        bool done = false;
        EXPECT_EQ(IndexNoteContents(note, 0, 1, render, &done, event_), kStatusOk);
        EXPECT_TRUE(done);
        std::vector<std::string> lines;
        const std::string text = Property(kContent).value_or("");
        for (size_t at = 0; at < text.size();) {
            const size_t end = std::min(text.find("\r\n", at), text.size());
            if (end > at)
                lines.push_back(text.substr(at, end - at));
            at = end + 2;
        }
        return lines;
    }
    static std::string UrlOf(NOTEHANDLE note)
    {
        char url[kNoteUrlBytes] = "";
        GetNoteURL(note, url);
        return url;
    }
    static std::string Markers() { return std::string(CookieLead) + CookieDefault; }

    size_t notesMade_ = 0;
};

TEST_F(NoteContents, WritesEveryItemInStoredOrderThenTheUrlAndTheMarkers)
{
    const NOTEHANDLE note = Make({pavex::TextItem("Subject", "The subject"), RichText("Body", {"first", "second"}),
                                  pavex::TextListItem("Tags", {"a", "b"}), pavex::NumberItem("Count", 7),
                                  pavex::TextItem("Empty", ""), pavex::TextItem("Lines", "one\ntwo")});
    const std::vector<std::string> expected = {"The subject", "first", "second",    "a, b",   "7",
                                               "one",         "two",   UrlOf(note), Markers()};
    EXPECT_EQ(LinesOf(note, false), expected);
}

TEST_F(NoteContents, WritesARichTextOnceWhateverTheCaseOfItsName)
{
    const NOTEHANDLE note = Make({RichText("Body", {"the body"}), RichText("BODY", {"again"}),
                                  RichText("Other", {"the other"}), RichText("body", {"and again"})});
    EXPECT_EQ(LinesOf(note, false), (std::vector<std::string>{"the body", "the other", UrlOf(note), Markers()}));
}

TEST_F(NoteContents, RendersTheNoteAsTheClientShowsIt)
{
    const NOTEHANDLE note = Make({pavex::TextItem("Subject", "The subject"), RichText("Body", {"the body"})});
    const std::vector<std::string> lines = LinesOf(note, true);
    ASSERT_GE(lines.size(), 3u);
    EXPECT_EQ(lines[lines.size() - 2], UrlOf(note));
    EXPECT_EQ(lines.back(), Markers());
    const std::string text = Property(kContent).value();
    EXPECT_NE(text.find("The subject"), std::string::npos);
    EXPECT_NE(text.find("the body"), std::string::npos);
}

TEST_F(NoteContents, ANoteWithoutItemsHasItsUrlAndTheMarkers)
{
    const NOTEHANDLE note = Make({});
    EXPECT_EQ(LinesOf(note, false), (std::vector<std::string>{UrlOf(note), Markers()}));
}

TEST_F(NoteContents, TheScratchNoteMayBeMadeInAnotherDatabase)
{
    const NOTEHANDLE note = Make({pavex::TextItem("Subject", "x")});
    const TestDatabase other(home_ / "data/other.vlt");
    DBHANDLE db = 0;
    ASSERT_EQ(VLTDbOpen(other.Path().c_str(), &db), kStatusOk);
    bool done = false;
    EXPECT_EQ(IndexNoteContents(note, db, 0, false, &done, event_), kStatusOk);
    EXPECT_TRUE(done);
    EXPECT_NE(Property(kContent).value().find(UrlOf(note)), std::string::npos);
    EXPECT_EQ(VLTDbClose(db), kStatusOk);
}

TEST_F(NoteContents, ADatabaseThatTakesNoNoteIsReplacedByTheNotesOwn)
{
    const NOTEHANDLE note = Make({pavex::TextItem("Subject", "x")});
    bool done = false;
    EXPECT_EQ(IndexNoteContents(note, 0xDEAD, 0, false, &done, event_), kStatusOk);
    EXPECT_TRUE(done);
}

TEST_F(NoteContents, WithoutAScratchNoteNothingIsDone)
{
    const NOTEHANDLE note = Make({pavex::TextItem("Subject", "x")});
    bool done = true;
    const NamedFault fault("VLTNoteCreate");
    EXPECT_EQ(IndexNoteContents(note, 0, 0, false, &done, event_), kStatusOk);
    EXPECT_FALSE(done);
    EXPECT_EQ(Property(kContent), std::nullopt);
}

TEST_F(NoteContents, AnyRefusedStepOfTheCompoundTextAbandonsTheNotesText)
{
    const NOTEHANDLE note = Make({pavex::TextItem("Subject", "x")});
    for (const char* call : {"CompoundTextCreate", "CompoundTextDefineStyle", "CompoundTextAddParagraphExt",
                             "VLTItemScan", "CompoundTextAddRenderedNote"}) {
        const NamedFault fault(call);
        const bool render = std::strcmp(call, "CompoundTextAddRenderedNote") == 0;
        bool done = true;
        EXPECT_EQ(IndexNoteContents(note, 0, 0, render, &done, event_), kStatusOk);
        EXPECT_FALSE(done) << call;
        EXPECT_EQ(Property(kContent), std::nullopt) << call;
    }
}

TEST_F(NoteContents, AnySingleFailureLeavesNoHandleOpen)
{
    const NOTEHANDLE note = Make({pavex::TextItem("Subject", "x"), RichText("Body", {"text"})});
    const int handles = pavex::OpenHandles();
    for (const bool render : {false, true}) {
        bool fired = true;
        for (int failing = 1; fired; ++failing) {
            SearchEngineEvent event(kSearchEventNote);
            bool done = true;
            {
                const FaultPlan plan(failing);
                EXPECT_EQ(IndexNoteContents(note, 0, 0, render, &done, event), kStatusOk);
                fired = plan.Fired();
                SCOPED_TRACE(plan.Name());
                EXPECT_EQ(pavex::OpenHandles(), handles);
            }
            if (!fired) {
                EXPECT_TRUE(done);
            }
        }
    }
    // A file that could not be read back, or not be deleted, was left; nothing else is.
    for (const std::string& file : TemporaryFiles())
        std::filesystem::remove(home_.Path() / "tmp" / file);
}

class WriteItemTest : public NoteContents {
protected:
    WriteItemTest()
    {
        EXPECT_EQ(VLTNoteCreate(db_, 0, &scratch_), kStatusOk);
        EXPECT_EQ(CompoundTextCreate(scratch_, "Body", &compound_), kStatusOk);
    }
    ~WriteItemTest() override
    {
        CompoundTextDiscard(compound_);
        EXPECT_EQ(VLTNoteClose(scratch_), kStatusOk);
    }

    NOTEHANDLE scratch_ = 0;
    COMPOUNDHANDLE compound_ = 0;
};

TEST_F(WriteItemTest, RemembersTheLowerCasedNamesOfRichTexts)
{
    ItemScanContext context{Make({RichText("DetailedReport", {"x"})}), compound_, {}};
    const WORD type = kTypeRichText;
    EXPECT_EQ(WriteItem(0, 0, "DetailedReport", 14, &type, sizeof type, &context), kStatusOk);
    EXPECT_EQ(WriteItem(0, 0, "DETAILEDREPORT", 14, &type, sizeof type, &context), kStatusOk);
    EXPECT_EQ(context.richTextWritten, (std::vector<CString>{CString("detailedreport")}));
}

TEST_F(WriteItemTest, TakesNamesOfAnyLengthAndValuesOfNone)
{
    ItemScanContext context{Make({}), compound_, {}};
    const std::string name(70000, 'n');
    const WORD type = kTypeText;
    EXPECT_EQ(WriteItem(0, 0, name.data(), 65535, &type, sizeof type, &context), kStatusOk);
    EXPECT_EQ(WriteItem(0, 0, "Name", 4, nullptr, 0, &context), kStatusOk);
    EXPECT_EQ(WriteItem(0, 0, "Name", 4, &type, 1, &context), kStatusOk);
}

TEST_F(WriteItemTest, PassesTheStatusOfTheParagraphOn)
{
    ItemScanContext context{Make({pavex::TextItem("Subject", "x")}), compound_, {}};
    const WORD type = kTypeText;
    const NamedFault fault("CompoundTextAddParagraphExt", kStatusNoMemory);
    EXPECT_EQ(WriteItem(0, 0, "Subject", 7, &type, sizeof type, &context), kStatusNoMemory);
    EXPECT_EQ(WriteItem(0, 0, "Absent", 6, &type, sizeof type, &context), kStatusOk);
}

}  // namespace
