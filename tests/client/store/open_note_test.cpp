// tests/client/store/open_note_test.cpp
#include "client/store/open_note.h"

#include "client/store/engine.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using OpenNoteTest = StoreTest;

TEST_F(OpenNoteTest, ReadsVisitsAndReplacesItems)
{
    TestDatabase data(NewPath());
    data.AddNote({TextItem("A", "1"), TextItem("B", "2"), TextItem("a", "3")});
    OpenedDatabase db(data.Path());
    OpenedNote note(db, 1);
    ASSERT_EQ(SetOpenItem(note, TextItem("A", "new")), 0);
    std::vector<Item> seen;
    ASSERT_EQ(VisitOpenItems(note,
                             [&](const Item& item) {
                                 seen.push_back(item);
                                 return true;
                             }),
              0);
    EXPECT_EQ(seen, (std::vector<Item>{TextItem("B", "2"), TextItem("a", "3"), TextItem("A", "new")}));
    Item item;
    EXPECT_EQ(ReadOpenItem(note, "b", &item), 0);
    EXPECT_EQ(item, TextItem("B", "2"));
    EXPECT_EQ(ReadOpenItem(note, "C", &item), kStatusItemNotFound);
    EXPECT_EQ(item, TextItem("B", "2"));
    EXPECT_EQ(data.Get(1).items[0], TextItem("A", "1")) << "nothing was saved";
}

TEST_F(OpenNoteTest, EndsTheVisitWhenTheCallbackSaysSo)
{
    TestDatabase data(NewPath());
    data.AddNote({TextItem("A", "1"), TextItem("B", "2")});
    OpenedDatabase db(data.Path());
    OpenedNote note(db, 1);
    int calls = 0;
    EXPECT_EQ(VisitOpenItems(note, [&](const Item&) { return ++calls > 5; }), 0);
    EXPECT_EQ(calls, 1);
}

TEST_F(OpenNoteTest, AnswersBadHandles)
{
    Item item;
    EXPECT_EQ(ReadOpenItem(0, "A", &item), kStatusBadHandle);
    EXPECT_EQ(VisitOpenItems(0, [](const Item&) { return true; }), kStatusBadHandle);
    EXPECT_EQ(SetOpenItem(0, item), kStatusBadHandle);
}

TEST_F(OpenNoteTest, RefusesARowThatIsDamaged)
{
    NoteRow row;
    row.items = "not the stored form";
    EXPECT_EQ(OpenNote(nullptr, 0).Fill(row), kStatusDamaged);
}

}  // namespace
}  // namespace pavex
