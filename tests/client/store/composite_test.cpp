// tests/client/store/composite_test.cpp: the record-level calls on rich text.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "client/store/ods.h"
#include "client/store/richtext.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

class Composite : public HostFixture {
protected:
    // The block of a rich-text item with these records.
    BLOCKID Block(const std::string& records, DWORD* bytes)
    {
        const NOTEHANDLE note = NoteWith({RichTextItem("Body", records)});
        BLOCKID value{};
        EXPECT_EQ(VLTItemInfo(note, "Body", 4, nullptr, nullptr, &value, bytes), kStatusOk);
        return value;
    }
};

namespace {

struct Walk {
    std::vector<WORD> signatures;
    STATUS answer = 0;  // at the second record
};

STATUS NoteRecord(const char* record, WORD signature, DWORD recordBytes, void* context)
{
    Walk& walk = *static_cast<Walk*>(context);
    WORD length;
    std::memcpy(&length, record + 2, sizeof length);
    EXPECT_EQ(length, recordBytes);
    walk.signatures.push_back(signature);
    return walk.signatures.size() == 2 ? walk.answer : kStatusOk;
}

std::string TwoParagraphs()
{
    RichTextBuilder builder;
    builder.AddParagraph("a");
    builder.AddParagraph("b");
    return builder.Records();
}

}  // namespace

TEST_F(Composite, WalksAllRecords)
{
    DWORD bytes = 0;
    const BLOCKID value = Block(TwoParagraphs(), &bytes);
    Walk walk;
    EXPECT_EQ(EnumCompositeBuffer(value, bytes, NoteRecord, &walk), kStatusOk);
    EXPECT_EQ(walk.signatures, (std::vector<WORD>{kRecordParagraph, kRecordText, kRecordParagraph, kRecordText}));
}

TEST_F(Composite, EndsTheWalkAtTheFirstAnswer)
{
    DWORD bytes = 0;
    const BLOCKID value = Block(TwoParagraphs(), &bytes);
    Walk walk;
    walk.answer = 413;
    EXPECT_EQ(EnumCompositeBuffer(value, bytes, NoteRecord, &walk), 413);
    EXPECT_EQ(walk.signatures.size(), 2u);
}

TEST_F(Composite, EndsTheWalkAtADamagedRecordOrABadBlock)
{
    DWORD bytes = 0;
    const std::string records = TwoParagraphs();
    const BLOCKID value = Block(records.substr(0, records.size() - 1), &bytes);
    Walk walk;
    EXPECT_EQ(EnumCompositeBuffer(value, bytes, NoteRecord, &walk), kStatusDamaged);
    EXPECT_EQ(walk.signatures.size(), 3u);
    EXPECT_EQ(EnumCompositeBuffer(value, 1, NoteRecord, &walk), kStatusDamaged);
    EXPECT_EQ(EnumCompositeBuffer({0, 0}, 10, NoteRecord, &walk), kStatusBadHandle);
}

TEST(Ods, KnowsTheLengthsOfItsStructures)
{
    EXPECT_EQ(ODSLength(kOdsLinkRecord), 24);
    EXPECT_EQ(ODSLength(kOdsNoteLink), 44);
    EXPECT_EQ(ODSLength(kOdsWord), 2);
    EXPECT_EQ(ODSLength(4), 0);
}

TEST(Ods, ReadsBackWhatWasWritten)
{
    NOTELINK link{};
    link.replica = {{0x01020304, 0x05060708}};
    link.note.Note = {{0x11121314, 0x15161718}};
    std::string bytes;
    AppendNoteLink(&bytes, link);
    ASSERT_EQ(bytes.size(), 44u);
    EXPECT_EQ(bytes.substr(0, 4), "\x04\x03\x02\x01");
    const char* position = bytes.data();
    NOTELINK again{};
    ASSERT_EQ(ODSReadMemory(&position, bytes.data() + bytes.size(), kOdsNoteLink, &again, 1), kStatusOk);
    EXPECT_EQ(std::memcmp(&link, &again, sizeof link), 0);
    EXPECT_EQ(position, bytes.data() + 44);
}

TEST(Ods, ReadsSeveralInARow)
{
    const std::string bytes("\x01\x02\x03\x04", 4);
    const char* position = bytes.data();
    WORD words[2] = {};
    ASSERT_EQ(ODSReadMemory(&position, bytes.data() + 4, kOdsWord, words, 2), kStatusOk);
    EXPECT_EQ(words[0], 0x0201);
    EXPECT_EQ(words[1], 0x0403);
}

TEST(Ods, WritesNothingWhenTooLittleIsLeft)
{
    for (const WORD type : {kOdsLinkRecord, kOdsNoteLink, kOdsWord}) {
        for (size_t length = 0; length < ODSLength(type); ++length) {
            const std::vector<char> bytes(length, 'x');
            const char* position = bytes.data();
            char out[64] = "untouched";
            EXPECT_EQ(ODSReadMemory(&position, bytes.data() + length, type, out, 1), kStatusDamaged);
            EXPECT_STREQ(out, "untouched");
            EXPECT_EQ(position, bytes.data());
        }
    }
    const char bytes[200] = "";
    const char* position = bytes;
    char out[200];
    EXPECT_EQ(ODSReadMemory(&position, bytes + 200, kOdsNoteLink, out, 65535), kStatusDamaged);
    EXPECT_EQ(ODSReadMemory(&position, bytes + 200, 77, out, 1), kStatusDamaged);
    position = bytes + 10;
    EXPECT_EQ(ODSReadMemory(&position, bytes + 5, kOdsWord, out, 1), kStatusDamaged);
}
