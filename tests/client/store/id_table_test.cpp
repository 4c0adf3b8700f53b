// tests/client/store/id_table_test.cpp
#include "client/store/id_table.h"

#include <gtest/gtest.h>

#include <vector>

namespace pavex {
namespace {

std::vector<NOTEID> Sorted(const std::vector<NOTEID>& added, uint32_t* count)
{
    IdTable table;
    for (const NOTEID id : added)
        table.Add(id);
    table.Sort();
    *count = table.Count();
    std::vector<NOTEID> ids;
    EXPECT_EQ(table.Visit([&](NOTEID id) {
        ids.push_back(id);
        return STATUS{0};
    }),
              0);
    return ids;
}

TEST(IdTable, ListsIdsInAscendingUnsignedOrderWithDeletionsLast)
{
    uint32_t count = 0;
    EXPECT_EQ(Sorted({9, kDeletionBit | 1, 3, 4, 5, 2}, &count),
              (std::vector<NOTEID>{2, 3, 4, 5, 9, kDeletionBit | 1}));
    EXPECT_EQ(count, 6U);
}

TEST(IdTable, HoldsAnIdOnceHoweverOftenItIsAdded)
{
    uint32_t count = 0;
    EXPECT_EQ(Sorted({5, 6, 7, 6, 5, 7, 8}, &count), (std::vector<NOTEID>{5, 6, 7, 8}));
    EXPECT_EQ(count, 4U);
}

TEST(IdTable, HoldsTheGreatestIdToo)
{
    uint32_t count = 0;
    EXPECT_EQ(Sorted({0xFFFFFFFF, 0xFFFFFFFE, 0}, &count), (std::vector<NOTEID>{0, 0xFFFFFFFE, 0xFFFFFFFF}));
    EXPECT_EQ(count, 3U);
}

TEST(IdTable, IsEmptyUntilAnIdIsAdded)
{
    uint32_t count = 1;
    EXPECT_TRUE(IdTable().Empty());
    EXPECT_TRUE(Sorted({}, &count).empty());
    EXPECT_EQ(count, 0U);
}

TEST(IdTable, EndsTheWalkAtTheFirstNonZeroAnswer)
{
    IdTable table;
    for (NOTEID id = 1; id < 10; ++id)
        table.Add(id);
    table.Sort();
    NOTEID last = 0;
    EXPECT_EQ(table.Visit([&](NOTEID id) {
        last = id;
        return id == 4 ? kStatusStopped : kStatusOk;
    }),
              kStatusStopped);
    EXPECT_EQ(last, 4U);
}

}  // namespace
}  // namespace pavex
