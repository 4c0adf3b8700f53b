// tests/client/store/formula_test.cpp: formulas over the items of a note, and their limits.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "client/store/charset.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"
#include "client/store/value_text.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

class Formulas : public HostFixture {
protected:
    // "text: ...", "list: a|b", "number: ...", or the status of the step that failed.
    std::string Computed(const std::string& source, const std::vector<Item>& items = {})
    {
        const COMPUTEHANDLE compute = Start(source);
        return compute == 0 ? "no start" : Finish(compute, NoteWith(items));
    }
    COMPUTEHANDLE Start(const std::string& source)
    {
        std::string value("\x00\x06", 2);
        value += FormulaItem("F", source).value;
        COMPUTEHANDLE compute = 99;
        const STATUS status = VLTComputeStart(value.data(), static_cast<DWORD>(value.size()), &compute);
        EXPECT_EQ(status, compute == 0 ? kStatusFormulaFailed : kStatusOk);
        return compute;
    }
    std::string Evaluate(COMPUTEHANDLE compute, NOTEHANDLE note)
    {
        const void* result = nullptr;
        DWORD bytes = 0;
        const STATUS status = VLTComputeEvaluate(compute, note, &result, &bytes);
        if (status != kStatusOk)
            return "status " + std::to_string(status);
        WORD type = 0;
        std::memcpy(&type, result, sizeof type);
        const std::string_view value(static_cast<const char*>(result) + sizeof type, bytes - sizeof type);
        const char* const kind = type == kTypeText ? "text: " : type == kTypeNumber ? "number: " : "list: ";
        return kind + TextOfValue(type, value, "|");
    }
    std::string Finish(COMPUTEHANDLE compute, NOTEHANDLE note)
    {
        const std::string result = Evaluate(compute, note);
        EXPECT_EQ(VLTComputeStop(compute), kStatusOk);
        return result;
    }
};

TEST_F(Formulas, JoinItemsOfTheNote)
{
    const std::vector<Item> items = {TextItem("Subject", "Lunch"), TextItem("From", "Ann"), NumberItem("Count", 3),
                                     TimeItem("Due", *TimeFromIso("2007-03-05T14:00:00Z"))};
    EXPECT_EQ(Computed("Subject .. \" - \" .. From", items), "text: Lunch - Ann");
    EXPECT_EQ(Computed("subject .. Count", items), "text: Lunch3");
    EXPECT_EQ(Computed("Due", items), "text: 2007-03-05 14:00:00.00");
    EXPECT_EQ(Computed("Count * 2", items), "number: 6");
    EXPECT_EQ(Computed("Count == 3", items), "number: 1");
}

TEST_F(Formulas, TakeAbsentItemsAsEmptyText)
{
    EXPECT_EQ(Computed("'<' .. Missing .. '>'"), "text: <>");
    EXPECT_EQ(Computed("nil"), "text: ");
    EXPECT_EQ(Computed(""), "text: ");
    EXPECT_EQ(Computed("Missing ~= '' and 1 or 2"), "number: 2");
}

TEST_F(Formulas, ReadAndGiveLists)
{
    const std::vector<Item> items = {TextListItem("To", {"Ann", "Bob"}), TextListItem("One", {"only"}),
                                     TextItem("$File", "a.txt")};
    EXPECT_EQ(Computed("To", items), "list: Ann|Bob");
    EXPECT_EQ(Computed("'to ' .. To", items), "text: to Ann, Bob");
    EXPECT_EQ(Computed("To[2]", items), "text: Bob");
    EXPECT_EQ(Computed("One .. '!'", items), "text: only!");
    EXPECT_EQ(Computed("{'a', 2, Missing}", items), "list: a|2|");
    EXPECT_EQ(Computed("{}", items), "list: ");
    EXPECT_EQ(Computed("_ENV['$File']", items), "text: a.txt");
}

TEST_F(Formulas, SeeRichTextAsItsText)
{
    RichTextBuilder body;
    body.AddParagraph("one");
    body.AddParagraph("two");
    EXPECT_EQ(Computed("Body", {RichTextItem("Body", body.Records())}), std::string("text: one\0two", 13));
    RichTextBuilder large;
    large.AddParagraph(std::string(200000, 'x'));
    EXPECT_EQ(Computed("#Body", {RichTextItem("Body", large.Records())}), "number: 65536");
}

TEST_F(Formulas, UseUnicodeAndLineBreaks)
{
    const std::vector<Item> items = {TextItem("Subject", "\xF0\x9F\x98\x80\nx")};
    EXPECT_EQ(Computed("utf8.len(Subject)", items), "number: 3");
    EXPECT_EQ(Computed("Subject", items), "text: " + ScsFromUtf8("\xF0\x9F\x98\x80") + std::string("\0x", 2));
    EXPECT_EQ(Computed("'a'\n.. 'b' -- comment"), "text: ab");
}

TEST_F(Formulas, HaveTheirThreeLibrariesAndNothingElse)
{
    EXPECT_EQ(Computed("Subject:upper():gsub('L', 'l')", {TextItem("Subject", "all")}), "text: All");
    EXPECT_EQ(Computed("math.max(1, 2)"), "number: 2");
    for (const char* name :
         {"io", "os", "print", "load", "require", "pcall", "debug", "coroutine", "package", "dofile"})
        EXPECT_EQ(Computed("'<' .. " + std::string(name) + " .. '>'"), "text: <>") << name;
    EXPECT_EQ(Computed("string.dump"), "text: ");
}

TEST_F(Formulas, FailWithADefiniteStatus)
{
    for (const char* source : {"Subject ..", "1 2", "x = 1", "return 1", "end", "\x1BLua"})
        EXPECT_EQ(Computed(source), "no start") << source;
    for (const char* source : {"1 + {}", "('x')()", "string.upper", "{ {} }", "string.rep('x', -1) .. {}"})
        EXPECT_EQ(Computed(source), "status 594") << source;
}

TEST_F(Formulas, EndWhenTheyTakeTooLongOrTooMuch)
{
    for (const char* source : {
             "(function() while true do end end)()",
             "(function() local s = 'x' while true do s = s .. s end end)()",
             "string.rep('x', 1 << 30)",
             "(function() local t = {} for i = 1, 1e9 do t[i] = {} end end)()",
             "(function() local s = string.rep('a', 4000000) while true do utf8.len(s) end end)()",
             "string.find(string.rep('a', 3000), '.-.-.-.-.-b')",
             "(function() local function f() return 1 + f() end return f() end)()",
         })
        EXPECT_EQ(Computed(source), "status 594") << source;
}

TEST_F(Formulas, AllowThePatternsOfEverydayUse)
{
    const std::vector<Item> items = {TextItem("Subject", "  Re: " + std::string(200, 'x') + " - the rest  ")};
    EXPECT_EQ(Computed("#Subject:match('^%s*(.-)%s*$')", items), "number: " + std::to_string(4 + 200 + 11));
    EXPECT_EQ(Computed("(Subject:gsub('x+', 'y'))", items), "text:   Re: y - the rest  ");
}

TEST_F(Formulas, StartAfreshForEveryNote)
{
    const COMPUTEHANDLE compute = Start("(function() local old = seen; seen = Subject; return old .. Subject end)()");
    EXPECT_EQ(Evaluate(compute, NoteWith({TextItem("Subject", "a")})), "text: a");
    EXPECT_EQ(Evaluate(compute, NoteWith({TextItem("Subject", "b")})), "text: b");
    EXPECT_EQ(Evaluate(compute, 0), "status 590");
    EXPECT_EQ(Finish(compute, NoteWith({TextItem("Subject", "c")})), "text: c");
    EXPECT_EQ(VLTComputeStop(compute), kStatusBadHandle);
}

TEST_F(Formulas, RefuseValuesThatAreNone)
{
    COMPUTEHANDLE compute = 7;
    EXPECT_EQ(VLTComputeStart("\x00\x05x", 3, &compute), kStatusFormulaFailed);
    EXPECT_EQ(compute, 0u);
    EXPECT_EQ(VLTComputeStart("\x00", 1, &compute), kStatusFormulaFailed);
    EXPECT_EQ(VLTComputeStart(nullptr, 0, &compute), kStatusFormulaFailed);
}
