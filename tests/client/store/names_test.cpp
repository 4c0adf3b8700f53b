// tests/client/store/names_test.cpp: abbreviated names and the user's.
#include <gtest/gtest.h>

#include <string>

#include "client/store/charset.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

namespace {

std::string Abbreviated(const std::string& name, WORD size = 256)
{
    std::string out(size + 1u, '#');
    WORD length = 99;
    EXPECT_EQ(DNAbbreviate(0, nullptr, name.c_str(), out.data(), size, &length), kStatusOk);
    EXPECT_EQ(out[size], '#');
    EXPECT_EQ(out[length], '\0');
    return out.substr(0, length);
}

}  // namespace

TEST(DNAbbreviate, LeavesTheKeysOfHierarchicalNamesOut)
{
    EXPECT_EQ(Abbreviated("CN=Ann Lee/O=Acme"), "Ann Lee/Acme");
    EXPECT_EQ(Abbreviated("CN=Ann Lee/OU=Sales/O=Acme/C=US"), "Ann Lee/Sales/Acme/US");
    EXPECT_EQ(Abbreviated("cn=Ann Lee/ou=Sales/o=Acme"), "Ann Lee/Sales/Acme");
    EXPECT_EQ(Abbreviated("O=Acme"), "Acme");
    EXPECT_EQ(Abbreviated("CN=a=b/O=c"), "a=b/c");
}

TEST(DNAbbreviate, LeavesOtherNamesAsTheyAre)
{
    for (const char* name : {"Ann Lee/Acme", "Ann Lee", "", "ann@x.org", "Ann Lee <ann@x.org>", "x=y/z", "/", "a/CN=b",
                             "\"Lee, Ann\" <ann@x.org>"})
        EXPECT_EQ(Abbreviated(name), name);
}

TEST(DNAbbreviate, CutsBetweenCharacters)
{
    EXPECT_EQ(Abbreviated("CN=ab\xC3\xBC/O=x", 4), "ab");
    EXPECT_EQ(Abbreviated("CN=ab", 1), "");
    char in[32] = "CN=Ann/O=Acme";
    EXPECT_EQ(DNAbbreviate(0, nullptr, in, in, sizeof in, nullptr), kStatusOk);
    EXPECT_STREQ(in, "Ann/Acme");
    EXPECT_EQ(DNAbbreviate(0, nullptr, "a", in, 0, nullptr), kStatusBadText);
    EXPECT_EQ(DNAbbreviate(0, nullptr, nullptr, in, sizeof in, nullptr), kStatusBadText);
}

using UserInfo = HostFixture;

TEST_F(UserInfo, ComesFromTheSettingsFirst)
{
    ASSERT_TRUE(SetVariable("UserName", "CN=J\xC3\xB6rg \xF0\x9F\x98\x80/O=Acme"));
    char name[256];
    ASSERT_EQ(SECKFMUserInfo(1, name, nullptr), kStatusOk);
    EXPECT_EQ(name, ScsFromUtf8("CN=J\xC3\xB6rg \xF0\x9F\x98\x80/O=Acme"));
    EXPECT_EQ(SECKFMUserInfo(2, name, nullptr), kStatusNotFound);
}

TEST_F(UserInfo, ComesFromTheAccountElse)
{
    char name[256] = "";
    ASSERT_EQ(SECKFMUserInfo(1, name, nullptr), kStatusOk);
    EXPECT_EQ(name, ScsFromUtf8(UserName()));
    EXPECT_STRNE(name, "");
}

TEST_F(UserInfo, IsCutToItsBuffer)
{
    ASSERT_TRUE(SetVariable("UserName", std::string(500, 'n')));
    char name[256];
    ASSERT_EQ(SECKFMUserInfo(1, name, nullptr), kStatusOk);
    EXPECT_EQ(name, std::string(255, 'n'));
}
