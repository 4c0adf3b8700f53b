// tests/client/import/mail_address_test.cpp: address fields as people read them.
#include "client/import/mail_address.h"

#include <chrono>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pavex {
namespace {

using testing::ElementsAre;

std::vector<std::string> Read(std::string_view text)
{
    return ReadAddressList(text, {});
}

TEST(MailAddress, ShowsNamesWithTheirAddresses)
{
    EXPECT_THAT(Read("Ann Lee <ann@x.org>, ben@y.org,\"Dee, Dora\" <dora@z.org>"),
                ElementsAre("Ann Lee <ann@x.org>", "ben@y.org", "Dee, Dora <dora@z.org>"));
}

TEST(MailAddress, LeavesAnAddressBareWhenItIsItsOwnName)
{
    EXPECT_THAT(Read("ann@x.org <ANN@x.org>, \"ben@y.org\" <ben@y.org>, <carl@z.org>"),
                ElementsAre("ANN@x.org", "ben@y.org", "carl@z.org"));
}

TEST(MailAddress, TakesNamesFromComments)
{
    EXPECT_THAT(Read("kim@x.org (Kim (the) Stone), lea at y.org (Lea Wood)"),
                ElementsAre("Kim (the) Stone <kim@x.org>", "Lea Wood <lea at y.org>"));
    EXPECT_THAT(Read("Pete(A chap) <pete(his account)@silly.test(his host)>"), ElementsAre("Pete <pete@silly.test>"));
}

TEST(MailAddress, GivesTheMembersOfGroups)
{
    EXPECT_THAT(Read("Friends: ann@x.org, Ben <ben@y.org>;, eve@z.org"),
                ElementsAre("ann@x.org", "Ben <ben@y.org>", "eve@z.org"));
    EXPECT_THAT(Read("undisclosed-recipients:;"), ElementsAre());
    EXPECT_THAT(Read("Nobody: (that I know) ;"), ElementsAre());
}

TEST(MailAddress, DecodesNames)
{
    EXPECT_THAT(Read("=?utf-8?q?J=C3=BCrgen?= <j@x.org>, \"=?utf-8?q?Zo=C3=A9?=\" <z@x.org>"),
                ElementsAre("Jürgen <j@x.org>", "Zoé <z@x.org>"));
    EXPECT_THAT(Read("=?utf-8?Q?Lee,_Ann?= <ann@x.org>, =?utf-8?Q?Lee, Ben?= <ben@x.org>"),
                ElementsAre("Lee, Ann <ann@x.org>", "Lee, Ben <ben@x.org>"));
    EXPECT_THAT(Read("S\xF8ren <s@x.org>"), ElementsAre("Søren <s@x.org>"));
}

TEST(MailAddress, KeepsUnusualAddressesWhole)
{
    EXPECT_THAT(
        Read("\"john doe\"@x.org, <@a.org,@b.org:ann@x.org>, Jos\xC3\xA9 <jos\xC3\xA9@\xC3\xA9t\xC3\xA9.example>"),
        ElementsAre("\"john doe\"@x.org", "ann@x.org", "José <josé@été.example>"));
}

TEST(MailAddress, TakesWhatProgramsGetWrong)
{
    EXPECT_THAT(Read("'Ann Lee' <ann@x.org>"), ElementsAre("Ann Lee <ann@x.org>"));
    EXPECT_THAT(Read("Ann <ann@x.org, Ben <ben@x.org>"), ElementsAre("Ann <ann@x.org>", "Ben <ben@x.org>"));
    EXPECT_THAT(Read("Ann Lee, <ann@x.org"), ElementsAre("Ann Lee", "ann@x.org"));
    EXPECT_THAT(Read("\"Ann Lee <ann@x.org>"), ElementsAre("Ann Lee <ann@x.org>"));
    EXPECT_THAT(Read(", ,;, <>, ann@x.org,"), ElementsAre("ann@x.org"));
    EXPECT_THAT(Read("MAILER-DAEMON"), ElementsAre("MAILER-DAEMON"));
    EXPECT_THAT(Read(""), ElementsAre());
}

TEST(MailAddress, ReadsAMegabyteOfAnythingInTime)
{
    const auto start = std::chrono::steady_clock::now();
    for (const char c : {':', '(', '<', '"', '\\', '=', ',', 'a'})
        (void)Read(std::string(1'000'000, c));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(60));
}

}  // namespace
}  // namespace pavex
