// tests/client/store/item_codec_test.cpp
#include "client/store/item_codec.h"

#include <gtest/gtest.h>

#include <cstring>

namespace pavex {
namespace {

std::string Encoded(const std::vector<Item>& items, std::vector<LargeValue>* large)
{
    std::string bytes;
    EXPECT_EQ(EncodeItems(items, false, &bytes, large), 0);
    return bytes;
}

TEST(ItemCodec, GivesBackWhatWasStored)
{
    const std::vector<Item> items = {TextItem("Subject", "Grüße"), NumberItem("Importance", 2.5),
                                     TextListItem("SendTo", {"a", "b"}), TextItem("Empty", "")};
    std::vector<LargeValue> large;
    const std::string bytes = Encoded(items, &large);
    EXPECT_TRUE(large.empty());
    std::vector<StoredItem> stored;
    ASSERT_TRUE(DecodeItems(bytes, &stored));
    std::vector<Item> back;
    for (const StoredItem& item : stored)
        back.push_back({std::string(item.name), item.type, item.flags, std::string(item.data + 2, item.bytes - 2)});
    EXPECT_EQ(back, items);
}

TEST(ItemCodec, PutsTheTypeWordInFrontOfEachValue)
{
    std::vector<LargeValue> large;
    const std::string bytes = Encoded({TextItem("A", "xyz")}, &large);
    std::vector<StoredItem> stored;
    ASSERT_TRUE(DecodeItems(bytes, &stored));
    EXPECT_EQ(std::string(stored[0].data, stored[0].bytes), std::string("\x00\x05xyz", 5));
}

TEST(ItemCodec, KeepsLargeValuesBesideTheNote)
{
    const std::string most(kLargestInlineValue - 2, 'x');
    std::vector<LargeValue> large;
    const std::string bytes = Encoded({TextItem("Fits", most), TextItem("Body", most + "y")}, &large);
    ASSERT_EQ(large.size(), 1U);
    EXPECT_EQ(large[0].position, 1U);
    EXPECT_EQ(large[0].bytes, std::string("\x00\x05", 2) + most + "y");
    std::vector<StoredItem> stored;
    ASSERT_TRUE(DecodeItems(bytes, &stored));
    EXPECT_NE(stored[0].data, nullptr);
    EXPECT_EQ(stored[1].data, nullptr);
    EXPECT_EQ(stored[1].bytes, kLargestInlineValue + 1);
    EXPECT_EQ(stored[1].type, kTypeText);
}

TEST(ItemCodec, NoticesEveryFlippedBitAndEveryCut)
{
    std::vector<LargeValue> large;
    const std::string bytes = Encoded({TextItem("Subject", "hello"), NumberItem("N", 1)}, &large);
    for (size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string damaged = bytes;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << (bit % 8)));
        std::vector<StoredItem> stored;
        EXPECT_FALSE(DecodeItems(damaged, &stored)) << "bit " << bit;
    }
    for (size_t length = 0; length < bytes.size(); ++length) {
        std::vector<StoredItem> stored;
        EXPECT_FALSE(DecodeItems(std::string_view(bytes).substr(0, length), &stored)) << length << " bytes";
    }
}

TEST(ItemCodec, ReadsNothingOutsideOfRunsWhoseChecksumFitsButWhoseLengthsDoNot)
{
    const std::string runs[] = {
        std::string("\x05\x00\x00\x00\x02\x00\x00\x00", 8),           // a name that is not there
        std::string("\x00\x00\x00\x00\x02\x00\x00\x00\x00\x05", 10),  // no name
        std::string("\x01\x00\x00\x00\x01\x00\x00\x00"
                    "A\x00",
                    10),  // too small for a type word
        std::string("\x01\x00\x00\x00\xFF\xFF\xFF\xFF"
                    "A\x00\x05",
                    11),
        std::string("\x01\x01\x00\x00\xFF\x00\x00\x00"
                    "A\x00",
                    10),  // beside, half a type word
        std::string("\x01", 1),
    };
    for (const std::string& run : runs) {
        const uint64_t sum = Checksum(run);
        std::string bytes(reinterpret_cast<const char*>(&sum), sizeof sum);
        std::vector<StoredItem> stored;
        EXPECT_FALSE(DecodeItems(bytes + run, &stored));
    }
}

TEST(ItemCodec, RefusesNamesThatAreEmptyOrTooLong)
{
    std::string bytes;
    std::vector<LargeValue> large;
    EXPECT_EQ(EncodeItems({TextItem("", "x")}, false, &bytes, &large), kStatusBadText);
    EXPECT_EQ(EncodeItems({TextItem(std::string(256, 'n'), "x")}, false, &bytes, &large), kStatusBadText);
    EXPECT_EQ(EncodeItems({TextItem(std::string(255, 'n'), "x")}, false, &bytes, &large), 0);
}

TEST(Checksum, DiffersByLengthSeedAndContent)
{
    EXPECT_NE(Checksum(""), Checksum(std::string(1, '\0')));
    EXPECT_NE(Checksum("a"), Checksum("a", 1));
    EXPECT_NE(Checksum("abcdefgh1"), Checksum("abcdefgh2"));
    EXPECT_EQ(Checksum("abcdefgh1"), Checksum("abcdefgh1"));
}

}  // namespace
}  // namespace pavex
