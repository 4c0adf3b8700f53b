// tests/client/store/c_idtable_test.cpp
#include "tests/client/store/store_fixture.h"

namespace {

using TableCalls = StoreTest;

TEST_F(TableCalls, AnswerBadHandlesWithoutCallingBack)
{
    const auto never = [](void*, NOTEID) {
        ADD_FAILURE();
        return STATUS{0};
    };
    for (const IDTABLE table : {0U, 0xFFFFFFF0U}) {
        EXPECT_EQ(IDEntries(table), 0U);
        EXPECT_EQ(IDEnumerate(table, never, nullptr), kStatusBadHandle);
        EXPECT_EQ(IDDestroyTable(table), kStatusBadHandle);
    }
}

TEST_F(TableCalls, EnumerateUntilTheCallbackAnswersOtherThanZero)
{
    TestDatabase data(NewPath());
    for (int i = 0; i < 5; ++i)
        data.AddNote({});
    OpenedDatabase db(data.Path());
    TIMEDATE until{};
    IDTABLE table = 0;
    ASSERT_EQ(VLTDbGetModifiedNoteTable(db, 1, kMinimumTime, &until, &table), 0);
    EXPECT_EQ(IDEntries(table), 5U);
    NOTEID last = 0;
    const auto third = [](void* context, NOTEID id) {
        *static_cast<NOTEID*>(context) = id;
        return id == 3 ? kStatusStopped : kStatusOk;
    };
    EXPECT_EQ(IDEnumerate(table, third, &last), kStatusStopped);
    EXPECT_EQ(last, 3U);
    EXPECT_EQ(IDDestroyTable(table), 0);
    EXPECT_EQ(IDDestroyTable(table), kStatusBadHandle);
}

TEST_F(TableCalls, EnumerateWhatWasThereWhenTheTableWasMade)
{
    TestDatabase data(NewPath());
    data.AddNote({});
    OpenedDatabase db(data.Path());
    TIMEDATE until{};
    IDTABLE table = 0;
    ASSERT_EQ(VLTDbGetModifiedNoteTable(db, 1, kMinimumTime, &until, &table), 0);
    data.AddNote({});
    data.Delete(1);
    EXPECT_EQ(IdsOf(table), (std::vector<NOTEID>{1}));
    EXPECT_EQ(IDDestroyTable(table), 0);
}

}  // namespace
