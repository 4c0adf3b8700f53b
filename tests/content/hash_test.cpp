// tests/content/hash_test.cpp: the hash is held against a second implementation, written in Python.
#include "content/hash.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "client/store/charset.h"
#include "tests/support/temporary_directory.h"

namespace {

// Reads "modulus hex" lines, prints one value a line.
constexpr char kPython[] = R"(
import struct, sys
M = 0xFFFFFFFF
def mix(v):
    # (target, the two subtracted, shift: positive right, negative left)
    for t, s, shift in ((0, 2, 13), (1, 0, -8), (2, 1, 13), (0, 2, 12), (1, 0, -16), (2, 1, 5), (0, 2, 3), (1, 0, -10), (2, 1, 15)):
        v[t] = (v[t] - sum(v[i] for i in range(3) if i != t)) & M
        v[t] ^= (v[s] >> shift) if shift > 0 else (v[s] << -shift) & M
def value(key, modulus):
    v = [0x9E3779B9, 0x9E3779B9, 0]
    whole = len(key) // 12 * 12
    for at in range(0, whole, 12):
        for i, word in enumerate(struct.unpack('<3I', key[at:at + 12])):
            v[i] = (v[i] + word) & M
        mix(v)
    # The tail's third word starts at its second byte: the lowest one is the length's.
    tail = key[whole:]
    a, b, c = struct.unpack('<3I', tail[:8].ljust(8, b'\0') + b'\0' + tail[8:].ljust(3, b'\0'))
    v = [(v[0] + a) & M, (v[1] + b) & M, (v[2] + c + len(key)) & M]
    mix(v)
    return v[2] % modulus if modulus else (v[2] - 1) & M
for line in open(sys.argv[1]):
    modulus, key = line.rstrip('\n').split(' ')
    print(value(bytes.fromhex(key), int(modulus)))
)";

struct HashCase {
    std::string key;
    uint32_t modulus;
};

std::vector<uint32_t> PythonValues(const std::vector<HashCase>& cases)
{
    TemporaryDirectory dir;
    std::string lines;
    for (const HashCase& each : cases) {
        lines += std::to_string(each.modulus) + " ";
        for (const char byte : each.key) {
            char digits[3];
            std::snprintf(digits, sizeof digits, "%02x", static_cast<unsigned>(static_cast<unsigned char>(byte)));
            lines += digits;
        }
        lines += '\n';
    }
    WriteWholeFile(dir / "hash.py", kPython);
    WriteWholeFile(dir / "cases", lines);
    const std::string command = "python3 '" + dir / "hash.py" + "' '" + dir / "cases" + "'";
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), pclose);
    std::vector<uint32_t> values;
    unsigned long value = 0;
    while (pipe != nullptr && std::fscanf(pipe.get(), "%lu", &value) == 1)
        values.push_back(static_cast<uint32_t>(value));
    return values;
}

TEST(CstrhashImproved, AgreesWithASecondImplementationForEveryLength)
{
    std::mt19937 random(20070305);
    std::vector<HashCase> cases;
    for (size_t length = 0; length <= 300; ++length) {
        for (const uint32_t modulus : {0u, 1u, 1021u, 0xFFFFFFFFu}) {
            std::string key(length, '\0');
            for (char& byte : key)
                byte = static_cast<char>(random());
            cases.push_back({key, modulus});
        }
    }
    std::vector<uint32_t> ours;
    for (const HashCase& each : cases)
        ours.push_back(CstrhashImproved(each.key.data(), static_cast<uint32_t>(each.key.size()), each.modulus));
    EXPECT_EQ(ours, PythonValues(cases));
}

TEST(CstrhashImproved, AnEmptyStringGivesOneMixLessOne)
{
    // Golden ratio twice and nothing, mixed once: the well-known lookup2 value of nothing is 0xBD49D10D.
    EXPECT_EQ(CstrhashImproved("", 0, 0), 0xBD49D10Du - 1);
    EXPECT_EQ(CstrhashImproved("", 0, 0xFFFFFFFF), 0xBD49D10Du);
    EXPECT_EQ((std::vector<uint32_t>{CstrhashImproved("", 0, 0)}), PythonValues({{"", 0}}));
}

TEST(CstrhashImproved, TheLengthCountsAndSoDoesEveryByte)
{
    const std::string key = "abcdefghijklmnopqrstuvwxyz";
    EXPECT_NE(CstrhashImproved(key.data(), 11, 0), CstrhashImproved(key.data(), 12, 0));
    for (uint32_t length : {11u, 12u, 13u, 24u, 26u}) {
        for (uint32_t at = 0; at < length; ++at) {
            std::string changed = key;
            changed[at] = '!';
            EXPECT_NE(CstrhashImproved(key.data(), length, 0), CstrhashImproved(changed.data(), length, 0));
        }
    }
}

TEST(CstrhashImproved, AllOnesAsLengthMeansUpToTheNul)
{
    EXPECT_EQ(CstrhashImproved("a subject", 0xFFFFFFFF, 0), CstrhashImproved("a subject", 9, 0));
    EXPECT_EQ(CstrhashImproved("", 0xFFFFFFFF, 7), CstrhashImproved("", 0, 7));
}

TEST(CstrhashImproved, AModulusBoundsTheValueWithoutTheMinusOne)
{
    const uint32_t value = CstrhashImproved("abc", 3, 0) + 1;
    EXPECT_EQ(CstrhashImproved("abc", 3, 1000), value % 1000);
    EXPECT_EQ(CstrhashImproved("abc", 3, 1), 0u);
}

TEST(CstrhashImproved, ReadsUnalignedBytes)
{
    const std::string text = "xabcdefghijklmnopqrstuvwxyz";
    EXPECT_EQ(CstrhashImproved(text.data() + 1, 26, 0), CstrhashImproved("abcdefghijklmnopqrstuvwxyz", 26, 0));
}

TEST(MakeConvID, HashesTheUtf8FormOfTheText)
{
    for (const std::string subject : {"", "Re: Budget", "Grüße aus Zürich", "日本語の件名", "party 😀"}) {
        const std::string scs = pavex::ScsFromUtf8(subject);
        EXPECT_EQ(MakeConvID(scs.data(), static_cast<WORD>(scs.size())),
                  CstrhashImproved(subject.data(), static_cast<uint32_t>(subject.size()), 0))
            << subject;
    }
}

TEST(MakeConvID, AllOnesAsLengthMeansUpToTheNul)
{
    EXPECT_EQ(MakeConvID("a subject", 0xFFFF), MakeConvID("a subject", 9));
}

TEST(MakeConvID, TheFirst256BytesTakePart)
{
    const std::string subject = std::string(150, 'a') + std::string(150, 'b');
    EXPECT_EQ(MakeConvID(subject.data(), 300), MakeConvID(subject.data(), 256));
    EXPECT_EQ(MakeConvID(subject.data(), 0xFFFF), MakeConvID(subject.data(), 256));
    EXPECT_NE(MakeConvID(subject.data(), 255), MakeConvID(subject.data(), 256));
}

TEST(MakeConvID, ATextCutInsideACharacterStaysInsideItsRoom)
{
    std::string subject(255, 'a');
    subject += pavex::ScsFromUtf8("😀");
    EXPECT_EQ(MakeConvID(subject.data(), static_cast<WORD>(subject.size())), MakeConvID(subject.data(), 256));
}

}  // namespace
