// tests/client/app/note_json_test.cpp: notes as JSON, both ways.
#include "client/app/note_json.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

#include "client/store/richtext.h"
#include "client/store/timedate.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

using Json = nlohmann::ordered_json;

// What comes back of a note's JSON; the error when it is refused.
std::string RoundTrip(const std::string& text)
{
    Note note;
    std::string error;
    if (!NoteFromJson(Json::parse(text), &note, &error))
        return error;
    return JsonFromNote(note).dump();
}

std::string WithItems(const std::string& items)
{
    return R"({"items":)" + items +
           R"(,"created":"2007-03-01T08:00:00Z","modified":"2007-03-02T09:30:00.25Z",)"
           R"("unid":"001122334455667700257291002BF200","class":"document","sealed":false})";
}

std::string ErrorOf(const std::string& text)
{
    Note note;
    std::string error;
    EXPECT_FALSE(NoteFromJson(Json::parse(text), &note, &error)) << text;
    return error;
}

struct ValueForm {
    const char* name;
    const char* json;
    uint16_t type;
};

class NoteJsonValue : public testing::TestWithParam<ValueForm> {};

TEST_P(NoteJsonValue, ComesBackAsItWasGiven)
{
    const std::string json = WithItems(std::string(R"({"Value":)") + GetParam().json + "}");
    Note note;
    std::string error;
    ASSERT_TRUE(NoteFromJson(Json::parse(json), &note, &error)) << error;
    ASSERT_EQ(note.items.size(), 1U);
    EXPECT_EQ(note.items[0].name, "Value");
    EXPECT_EQ(note.items[0].type, GetParam().type);
    EXPECT_EQ(JsonFromNote(note).dump(), json);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, NoteJsonValue,
    testing::Values(ValueForm{"Text", R"("Plums")", kTypeText}, ValueForm{"EmptyText", R"("")", kTypeText},
                    ValueForm{"TextOfManyLines", R"("one\ntwo\n")", kTypeText},
                    ValueForm{"TextOfAllPlanes", "\"Gr\u00fc\u00dfe \u65e5\u672c \U0001f600\"", kTypeText},
                    ValueForm{"TextList", R"(["H","Work",""])", kTypeTextList},
                    ValueForm{"EmptyTextList", "[]", kTypeTextList}, ValueForm{"Number", "1.5", kTypeNumber},
                    ValueForm{"NegativeNumber", "-2000000.0", kTypeNumber},
                    ValueForm{"Time", R"({"time":"2007-03-05T14:00:00Z"})", kTypeTime},
                    ValueForm{"TimeWithHundredths", R"({"time":"2007-03-05T14:00:00.25Z"})", kTypeTime},
                    ValueForm{"Date", R"({"time":"1980-02-29"})", kTypeTime},
                    ValueForm{"TimeList", R"({"times":["2007-03-05T14:00:00Z","2007-03-12"]})", kTypeTimeRange},
                    ValueForm{"EmptyTimeList", R"({"times":[]})", kTypeTimeRange},
                    ValueForm{"RichText",
                              R"({"richtext":["First","",{"rule":true},{"link":{"replica":"0123456789ABCDEF",)"
                              R"("view":"00000000000000000000000000000000","note":"00112233445566778899AABBCCDDEEFF",)"
                              R"("text":"label"}},"Last"]})",
                              kTypeRichText},
                    ValueForm{"EmptyRichText", R"({"richtext":[]})", kTypeRichText},
                    ValueForm{"Formula", R"({"formula":"Subject .. '!'"})", kTypeFormula},
                    ValueForm{"OtherType", R"({"type":2,"hex":"0000FF7F"})", 2}),
    [](const auto& form) { return form.param.name; });

TEST(NoteJson, KeepsTheOrderOfTheItems)
{
    const std::string json = WithItems(R"({"Zebra":"z","Form":"Memo","apple":"a"})");
    EXPECT_EQ(RoundTrip(json), json);
}

TEST(NoteJson, TakesTheDocumentedExample)
{
    const std::string page = ReadWholeFile(TORVIK_SOURCE_DIR "/docs/formats/note-json.md");
    const size_t start = page.find("```json\n") + 8;
    const std::string example = page.substr(start, page.find("```", start) - start);
    Json expected = Json::parse(example);
    expected["items"]["Importance"] = 1.0;  // every number of a note is a double
    EXPECT_EQ(RoundTrip(example), expected.dump());
}

TEST(NoteJson, LeavesWhatIsNotGivenToBeMadeWhenTheNoteIsStored)
{
    Note note;
    std::string error;
    ASSERT_TRUE(NoteFromJson(Json::parse(R"({"items":{}})"), &note, &error)) << error;
    EXPECT_EQ(HexFromUnid(note.unid), std::string(32, '0'));
    EXPECT_EQ(note.created.Innards[1], 0U);
    EXPECT_EQ(note.modified.Innards[1], 0U);
    EXPECT_EQ(note.noteClass, kClassDocument);
    EXPECT_FALSE(note.sealed);
}

TEST(NoteJson, TakesATimeWithAnOffset)
{
    EXPECT_EQ(RoundTrip(WithItems(R"({"T":{"time":"2007-03-05T00:30:00+01:00"}})")),
              WithItems(R"({"T":{"time":"2007-03-04T23:30:00Z"}})"));
}

TEST(NoteJson, PassesOverWhatOnlyGetWrites)
{
    EXPECT_EQ(RoundTrip(R"({"noteid":7,"url":"Pavex:///x",)" + WithItems("{}").substr(1)), WithItems("{}"));
}

TEST(NoteJson, TellsADesignNoteAndASealedOne)
{
    Note note;
    std::string error;
    ASSERT_TRUE(NoteFromJson(Json::parse(R"({"items":{},"class":"form","sealed":true})"), &note, &error)) << error;
    EXPECT_EQ(note.noteClass, kClassForm);
    EXPECT_TRUE(note.sealed);
    const Json json = JsonFromNote(note);
    EXPECT_EQ(json["class"], "form");
    EXPECT_EQ(json["sealed"], true);
}

TEST(NoteJson, WritesADamagedValueAsItsBytes)
{
    Note note;
    note.created = note.modified = TimeFromUnix(0);
    note.items = {{"List", kTypeTextList, 0, std::string("\x05\x00", 2)},
                  {"Number", kTypeNumber, 0, "abc"},
                  {"Time", kTypeTime, 0, "x"},
                  {"Body", kTypeRichText, 0, std::string("\x81\xff\x03\x00", 4)}};
    EXPECT_EQ(JsonFromNote(note)["items"].dump(),
              R"({"List":{"type":1281,"hex":"0500"},"Number":{"type":768,"hex":"616263"},)"
              R"("Time":{"type":1024,"hex":"78"},"Body":{"type":1,"hex":"81FF0300"}})");
}

// The items that `put` makes of what `get` prints of them.
std::vector<Item> PutBack(const std::vector<Item>& items)
{
    Note note;
    note.created = note.modified = TimeFromUnix(0);
    note.items = items;
    Note again;
    std::string error;
    const std::string printed = JsonFromNote(note).dump(-1, ' ', false, Json::error_handler_t::replace);
    EXPECT_TRUE(NoteFromJson(Json::parse(printed), &again, &error)) << error << ": " << printed;
    return again.items;
}

Item WithValue(Item item, const std::function<void(std::string*)>& change)
{
    change(&item.value);
    return item;
}

// Values that stand in no form of JSON, or only in part.
std::vector<Item> OddValues()
{
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr uint32_t kDay = 2454165;
    constexpr uint32_t kZone = 0x81000000;
    const TIMEDATE times[] = {{{5040000, kNoDate}},
                              {{kNoTimeOfDay, kDay}},
                              {{kNoTimeOfDay, kNoDate}},
                              {{5040000, kDay | kZone}},
                              {{8640000, kDay}},
                              {{kNoTimeOfDay - 1, kDay}},
                              {{5040000, 0}},
                              {{8639999, 0x00FFFFFF}},
                              {{kNoTimeOfDay, kDay | kZone}},
                              {{9000000, kNoDate}},
                              {{kNoTimeOfDay, 0}}};
    std::vector<Item> items;
    for (const double number : {kNone, -kNone, kInfinity, -kInfinity, -0.0, 5e-324, 1.7976931348623157e308, 0.1})
        items.push_back(NumberItem("", number));
    for (const TIMEDATE& time : times) {
        items.push_back(TimeItem("", time));
        items.push_back(TimeListItem("", {TimeFromUnix(0), time}));
    }
    const Item list = TimeListItem("", {TimeFromUnix(0)});
    items.push_back(WithValue(list, [](std::string* value) {  // a range behind the time
        (*value)[2] = 1;
        value->append(16, '\x01');
    }));
    items.push_back(WithValue(list, [](std::string* value) { value->append("x"); }));
    items.push_back(WithValue(TextListItem("", {"a"}), [](std::string* value) { value->append("x"); }));
    for (const char* bytes : {"a\nb", "a\rb", "\xFF", "\xED\xA0\xBD", "\xC0\x80", "\xF0\x9F\x98\x80", "\xC3"}) {
        items.push_back({"", kTypeText, 0, bytes});
        items.push_back({"", kTypeFormula, 0, bytes});
    }
    RichTextBuilder body;
    body.AddParagraph("Plums");
    const Item plain = RichTextItem("", body.Records());
    items.push_back(WithValue(plain, [](std::string* value) { (*value)[8] = 7; }));  // another style
    items.push_back(WithValue(plain, [](std::string* value) { value->append("\xFD\x7F\x04\x00", 4); }));
    items.push_back(WithValue(plain, [](std::string* value) { value->append("x"); }));
    for (size_t i = 0; i < items.size(); ++i)
        items[i].name = "Item" + std::to_string(i);
    return items;
}

TEST(NoteJson, PrintsWhatPutTakesBackBitForBitWhateverTheValue)
{
    const std::vector<Item> odd = OddValues();
    const std::vector<Item> back = PutBack(odd);
    ASSERT_EQ(back.size(), odd.size());
    for (size_t i = 0; i < odd.size(); ++i)
        EXPECT_EQ(back[i], odd[i]) << testing::PrintToString(odd[i].value);
}

TEST(NoteJson, PrintsEveryTextOfTwoBytesAsPutTakesItBack)
{
    for (unsigned first = 0; first <= 0xFF; ++first) {
        std::vector<Item> texts;
        for (unsigned second = 0; second <= 0xFF; ++second)
            texts.push_back(
                {"T" + std::to_string(second), kTypeText, 0, {static_cast<char>(first), static_cast<char>(second)}});
        EXPECT_TRUE(PutBack(texts) == texts) << first;
    }
}

TEST(NoteJson, LeavesOutATimeOfCreationThatIsNone)
{
    Note note;
    note.created = {{9000000, 2454161}};
    note.modified = TimeFromUnix(0);
    const Json json = JsonFromNote(note);
    EXPECT_FALSE(json.contains("created"));
    EXPECT_EQ(json["modified"], "1970-01-01T00:00:00Z");
}

TEST(NoteJson, WritesTheFirstOfSeveralItemsOfAName)
{
    Note note;
    note.created = note.modified = TimeFromUnix(0);
    note.items = {TextItem("A", "first"), TextItem("A", "second")};
    EXPECT_EQ(JsonFromNote(note)["items"].dump(), R"({"A":"first"})");
}

struct Refusal {
    const char* json;
    const char* error;
};

TEST(NoteJson, NamesTheMemberAndTheReasonOfARefusal)
{
    constexpr Refusal kRefusals[] = {
        {"[]", "a note is an object with the member \"items\""},
        {"7", "a note is an object with the member \"items\""},
        {R"({"class":"form"})", "\"items\" is missing"},
        {R"({"items":[]})", "items is not an object"},
        {R"({"items":{},"colour":1})", "colour is not a member of a note"},
        {R"({"items":{},"created":"soon"})", "created is not a time such as \"2007-03-05T14:00:00Z\""},
        {R"({"items":{},"created":"2007-03-05"})", "created is not a time such as \"2007-03-05T14:00:00Z\""},
        {R"({"items":{},"modified":7})", "modified is not a time such as \"2007-03-05T14:00:00Z\""},
        {R"({"items":{},"unid":"0011"})", "unid is not 32 hexadecimal digits"},
        {R"({"items":{},"unid":7})", "unid is not 32 hexadecimal digits"},
        {R"({"items":{},"class":"view"})", R"(class is neither "document" nor "form")"},
        {R"({"items":{},"sealed":"yes"})", "sealed is neither true nor false"},
        {R"({"items":{"a b":"x"}})",
         "items has an item named \"a b\"; names are 1 to 255 characters of printable ASCII without blanks"},
        {R"({"items":{"":"x"}})",
         "items has an item named \"\"; names are 1 to 255 characters of printable ASCII without blanks"},
        {R"({"items":{"A":null}})", "items.A is null, which is no value of an item"},
        {R"({"items":{"A":true}})", "items.A is true, which is no value of an item"},
        {R"({"items":{"A":["x",7]}})", "items.A holds 7, which is not text"},
        {R"({"items":{"A":["x",["y"]]}})", "items.A holds a list, which is not text"},
        {R"({"items":{"A":{}}})", R"(items.A is an object without "time", "times", "richtext" or "formula")"},
        {R"({"items":{"A":{"time":"2007-02-30"}}})",
         "items.A is not a time such as \"2007-03-05T14:00:00Z\" or a date"},
        {R"({"items":{"A":{"time":7}}})", "items.A is not a time such as \"2007-03-05T14:00:00Z\" or a date"},
        {R"({"items":{"A":{"times":"2007-03-05"}}})", "items.A is not a list of times"},
        {R"({"items":{"A":{"times":["never"]}}})", "items.A holds \"never\", which is not a time"},
        {R"({"items":{"A":{"richtext":"x"}}})", "items.A is not a list of paragraphs"},
        {R"({"items":{"A":{"richtext":[7]}}})", "items.A holds 7, which is no paragraph, link or rule"},
        {R"({"items":{"A":{"richtext":[{"rule":false}]}}})",
         "items.A holds an object, which is no paragraph, link or rule"},
        {R"({"items":{"A":{"richtext":[{"link":{"replica":"12"}}]}}})",
         "items.A holds an object, which is no paragraph, link or rule"},
        {R"({"items":{"A":{"formula":1}}})", "items.A is not the text of a formula"},
        {R"({"items":{"A":{"type":769}}})", "items.A is not a type number with a value in hexadecimal digits"},
        {R"({"items":{"A":{"type":-1,"hex":""}}})", "items.A is not a type number with a value in hexadecimal digits"},
        {R"({"items":{"A":{"type":65536,"hex":""}}})",
         "items.A is not a type number with a value in hexadecimal digits"},
        {R"({"items":{"A":{"type":769,"hex":"0"}}})", "items.A is not a value in hexadecimal digits"},
        {R"({"items":{"A":{"type":769,"hex":"0g"}}})", "items.A is not a value in hexadecimal digits"},
    };
    for (const Refusal& refusal : kRefusals)
        EXPECT_EQ(ErrorOf(refusal.json), refusal.error) << refusal.json;
}

TEST(NoteJson, TakesAListEntryOf65535BytesAndRefusesALongerOne)
{
    const auto listOf = [](size_t bytes) { return R"({"items":{"A":[")" + std::string(bytes, 'x') + R"("]}})"; };
    Note note;
    std::string error;
    EXPECT_TRUE(NoteFromJson(Json::parse(listOf(65535)), &note, &error)) << error;
    EXPECT_EQ(ErrorOf(listOf(65536)), "items.A holds a text of more than 65535 bytes");
}

TEST(NoteJson, RefusesListsNestedAThousandTimesOverWithoutWritingThemOut)
{
    const size_t depth = 200000;
    EXPECT_EQ(ErrorOf(R"({"items":{"A":[)" + std::string(depth, '[') + std::string(depth, ']') + "]}}"),
              "items.A holds a list, which is not text");
}

}  // namespace
}  // namespace pavex
