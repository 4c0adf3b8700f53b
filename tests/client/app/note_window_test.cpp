// tests/client/app/note_window_test.cpp: what the window of a note shows.
#include "client/app/note_window.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

#include "client/app/note_labels.h"
#include "client/store/richtext.h"
#include "client/store/timedate.h"
#include "tests/support/translations.h"

namespace pavex {
namespace {

std::vector<std::string> FieldsOf(const NoteView& view)
{
    std::vector<std::string> fields;
    for (const NoteField& field : view.fields)
        fields.push_back(field.label + "=" + field.value);
    return fields;
}

TEST(NoteWindow, ShowsThePeopleFirstAndNothingTwice)
{
    RichTextBuilder body;
    body.AddParagraph("First\u202E\u0085 one");
    body.AddRule();
    NOTELINK link{};
    link.replica = TimeFromUnix(1'000'000'000);
    body.AddLink(link, "label");
    Note note;
    note.items = {TextItem("Form", "Memo"),
                  TextItem("Extra", "more"),
                  TextItem("Subject", "Zebra\u202E"),
                  TextItem("From", "Ann"),
                  TextItem("$Hidden", "no"),
                  TextItem("Empty", " "),
                  TextListItem("SendTo", {"Bo", "Cy"}),
                  TextItem("Title", "other"),
                  TextItem("Lines", "one\ntwo"),
                  RichTextItem("Body", body.Records())};
    const NoteView view = ViewOfNote(note);
    EXPECT_EQ(view.title, "Zebra");
    EXPECT_THAT(FieldsOf(view),
                testing::ElementsAre("From=Ann", "To=Bo, Cy", "Extra=more", "Title=other", "Lines=one\ntwo"));
    ASSERT_EQ(view.body.size(), 3U);
    EXPECT_EQ(view.body[0].text, "First  one");
    EXPECT_EQ(view.body[1].kind, NotePiece::Kind::kRule);
    EXPECT_EQ(view.body[2].text, "label");
    EXPECT_THAT(view.body[2].url, testing::StartsWith("Pavex:///"));
}

TEST(NoteWindow, ShowsTimesAsTheyAreWhereTheUserIs)
{
    Note note;
    note.items = {TimeItem("PostedDate", TimeFromUnix(1'173'103'200)), TimeItem("Birthday", *TimeFromIso("1980-02-29")),
                  TimeListItem("Times", {TimeFromUnix(1'173'103'200), TimeFromUnix(1'173'189'600)})};
    setenv("TZ", "Asia/Tokyo", 1);
    const NoteView view = ViewOfNote(note);
    unsetenv("TZ");
    EXPECT_THAT(FieldsOf(view), testing::ElementsAre("Date=2007-03-05 23:00", "Birthday=1980-02-29",
                                                     "Times=2007-03-05 23:00, 2007-03-06 23:00"));
}

class NoteWords : public testing::TestWithParam<std::string> {};
INSTANTIATE_TEST_SUITE_P(Shipped, NoteWords, testing::ValuesIn(kTranslations),
                         [](const auto& language) { return language.param.substr(0, language.param.find('-')); });

TEST_P(NoteWords, AreAllTranslatedAndNoneIsCut)
{
    constexpr size_t kMostColumns = 18;
    const std::map<std::string, std::string> texts = ReadTable(GetParam(), "note");
    for (const NoteTextRow& row : NoteTexts()) {
        ASSERT_TRUE(texts.contains(row.key)) << row.key;
        EXPECT_LE(Columns(texts.at(row.key)), kMostColumns) << row.key;
        EXPECT_EQ(BadPunctuation(GetParam(), texts.at(row.key)), "");
        EXPECT_NE(texts.at(row.key), "") << row.key;
    }
    EXPECT_EQ(texts.size(), NoteTexts().size());
}

}  // namespace
}  // namespace pavex
