// tests/content/note_url_test.cpp
#include "content/note_url.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstring>
#include <string>
#include <string_view>

#include "client/store/timedate.h"
#include "content/buffers.h"
#include "tests/content/note_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

constexpr char kKey[] = "com.quorvex.pavex.uri";

class NoteUrl : public NoteFixture {
protected:
    // From the database's own view of the note.
    std::string ExpectedUrl(const UNID& unid) const
    {
        return "Pavex:///" + pavex::HexFromId(database_->database().ReplicaId()) + "//" + pavex::HexFromUnid(unid);
    }
    static ORIGINATORID OriginatorId(NOTEHANDLE note)
    {
        ORIGINATORID oid{};
        VLTNoteGetInfo(note, kNoteInfoOriginatorId, &oid);
        return oid;
    }
};

TEST_F(NoteUrl, NamesReplicaAndNoteInHexadecimal)
{
    pavex::Note note;
    note.unid = {{{0x01234567, 0x89ABCDEF}}, {{0x00000001, 0xFEDCBA98}}};
    const NOTEHANDLE handle = Open(note);
    const std::string expected = ExpectedUrl(OriginatorId(handle).Unid);
    ASSERT_EQ(expected.size(), 59u);
    char url[kNoteUrlBytes];
    EXPECT_EQ(GetNoteURL(handle, url), 59);
    EXPECT_EQ(url, expected);
    EXPECT_NE(expected.find("89ABCDEF01234567FEDCBA9800000001"), std::string::npos);
    EXPECT_EQ(GetNoteOIDURL(db_, OriginatorId(handle), url), 59);
    EXPECT_EQ(url, expected);
    EXPECT_EQ(IndexNoteURL(handle, event_, kKey), 0);
    EXPECT_EQ(Property(kKey), expected);
    EXPECT_EQ(IndexNoteOIDURL(db_, OriginatorId(handle), event_, "other"), 0);
    EXPECT_EQ(Property("other"), expected);
}

TEST_F(NoteUrl, WithoutADatabaseTheBufferStaysAndTheKeyIsEmpty)
{
    char url[kNoteUrlBytes] = "untouched";
    EXPECT_EQ(GetNoteURL(0, url), 0);
    EXPECT_EQ(GetNoteOIDURL(0, ORIGINATORID{}, url), 0);
    EXPECT_STREQ(url, "untouched");
    EXPECT_EQ(IndexNoteURL(0, event_, kKey), 0);
    EXPECT_EQ(Property(kKey), "");
    EXPECT_EQ(IndexNoteOIDURL(0, ORIGINATORID{}, event_, "other"), 0);
    EXPECT_EQ(Property("other"), "");
}

TEST_F(NoteUrl, WithoutAReplicaIdItIsTheSame)
{
    const NOTEHANDLE note = Open(std::vector<pavex::Item>{});
    const NamedFault fault("VLTDbReplicaInfoGet");
    char url[kNoteUrlBytes] = "untouched";
    EXPECT_EQ(GetNoteURL(note, url), 0);
    EXPECT_STREQ(url, "untouched");
    EXPECT_EQ(IndexNoteURL(note, event_, kKey), 0);
    EXPECT_EQ(Property(kKey), "");
    EXPECT_EQ(IndexNoteURLAndCookies(note, false, event_, "marked"), 0);
    EXPECT_EQ(Property("marked"), std::string(CookieLead) + CookieDefault);
}

TEST_F(NoteUrl, MarkersFollowTheUrlWhateverTheFlag)
{
    const NOTEHANDLE note = Open(std::vector<pavex::Item>{});
    const std::string expected = ExpectedUrl(OriginatorId(note).Unid) + CookieLead + CookieDefault;
    EXPECT_EQ(IndexNoteURLAndCookies(note, false, event_, "plain"), 0);
    EXPECT_EQ(IndexNoteURLAndCookies(note, true, event_, "flagged"), 0);
    EXPECT_EQ(Property("plain"), expected);
    EXPECT_EQ(Property("flagged"), expected);
}

TEST_F(NoteUrl, TheUrlOfADeletedNoteIsTheOneItHad)
{
    const NOTEID id = database_->AddNote({});
    const std::string before = database_->Url(id);
    database_->Delete(id);
    ORIGINATORID oid{};
    ASSERT_EQ(VLTDbGetNoteInfo(db_, id, &oid, nullptr, nullptr), kStatusNoteDeleted);
    char url[kNoteUrlBytes];
    EXPECT_EQ(GetNoteOIDURL(db_, oid, url), 59);
    EXPECT_EQ(url, before);
}

TEST(Cookies, AreBlankLettersBlankAndDiffer)
{
    for (const std::string_view cookie : {CookieLead, CookieDefault, CookieAlternate}) {
        ASSERT_GE(cookie.size(), 3u);
        EXPECT_EQ(cookie.front(), ' ');
        EXPECT_EQ(cookie.back(), ' ');
        for (const char letter : cookie.substr(1, cookie.size() - 2))
            EXPECT_TRUE(std::isalpha(static_cast<unsigned char>(letter))) << cookie;
    }
    EXPECT_EQ(std::strlen(CookieLead), 28u);
    EXPECT_EQ(std::strlen(CookieDefault), 27u);
    EXPECT_EQ(std::strlen(CookieAlternate), 27u);
    EXPECT_STRNE(CookieDefault, CookieAlternate);
}

TEST(Cookies, StandLeadFirst)
{
    char buffer[100];
    EXPECT_EQ(GetCookies(false, buffer, sizeof buffer), 55);
    EXPECT_EQ(buffer, std::string(CookieLead) + CookieDefault);
    EXPECT_EQ(GetCookies(true, buffer, sizeof buffer), 55);
    EXPECT_EQ(buffer, std::string(CookieLead) + CookieAlternate);
}

TEST(Cookies, StayInsideEverySize)
{
    const std::string whole = std::string(CookieLead) + CookieDefault;
    for (WORD size = 0; size < 60; ++size) {
        std::string buffer(64, '\x55');
        const WORD length = GetCookies(false, buffer.data(), size);
        EXPECT_EQ(buffer.substr(size), std::string(64u - size, '\x55')) << size;
        if (size == 0) {
            EXPECT_EQ(length, 0);
        } else {
            EXPECT_EQ(std::string(buffer.c_str()), whole.substr(0, size - 1u)) << size;
        }
    }
}

TEST(Cookies, ASizeOfOneGivesAnEmptyString)
{
    char buffer[2] = {'x', 'y'};
    EXPECT_EQ(GetCookies(false, buffer, 1), 0);
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(buffer[1], 'y');
}

}  // namespace
