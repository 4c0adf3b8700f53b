// tests/client/store/mail_fields_test.cpp: the fields of a message by their numbers.
#include <gtest/gtest.h>

#include <string>

#include "client/store/charset.h"
#include "client/store/timedate.h"
#include "tests/client/store/host_fixture.h"

using namespace pavex;

class MailFields : public HostFixture {
protected:
    std::string Field(NOTEHANDLE note, WORD number, WORD most = 1000)
    {
        std::string text(most + 1u, '#');
        WORD length = 99;
        const STATUS status = MailGetMessageItem(note, number, text.data(), most, &length);
        EXPECT_EQ(text[length], '\0');
        return status == kStatusOk ? text.substr(0, length) : "status " + std::to_string(status);
    }
};

TEST_F(MailFields, AreFoundByNumber)
{
    const NOTEHANDLE note =
        NoteWith({TextListItem("SendTo", {"a", "b"}), TextItem("CopyTo", "c"), TextItem("From", "f"),
                  TextItem("Subject", "two\nlines"), TextItem("BlindCopyTo", "d"), TextItem("ReplyTo", "r")});
    EXPECT_EQ(Field(note, 0), "a, b");
    EXPECT_EQ(Field(note, 1), "c");
    EXPECT_EQ(Field(note, 2), "f");
    EXPECT_EQ(Field(note, 3), "two lines");
    EXPECT_EQ(Field(note, 13), "d");
    EXPECT_EQ(Field(note, 123), "r");
    EXPECT_EQ(Field(note, 5), "status 546");
    EXPECT_EQ(Field(note, 77), "status 546");
    EXPECT_EQ(Field(0, 3), "status 590");
}

TEST_F(MailFields, AreCutBetweenCharacters)
{
    const NOTEHANDLE note = NoteWith({TextItem("Subject", "ab\xF0\x9F\x98\x80")});
    EXPECT_EQ(Field(note, 3, 7), "ab");
    EXPECT_EQ(Field(note, 3, 8), ScsFromUtf8("ab\xF0\x9F\x98\x80"));
    EXPECT_EQ(Field(note, 3, 0), "");
}

TEST_F(MailFields, GiveTheTimeOfPosting)
{
    const TIMEDATE posted = *TimeFromIso("2007-03-05T14:00:00.25Z");
    TIMEDATE time{};
    EXPECT_EQ(MailGetMessageItemTimeDate(NoteWith({TimeItem("PostedDate", posted)}), 5, &time), kStatusOk);
    EXPECT_EQ(IsoFromTime(time), "2007-03-05T14:00:00.25Z");
    EXPECT_EQ(MailGetMessageItemTimeDate(NoteWith({TextItem("PostedDate", "x")}), 5, &time), kStatusItemNotFound);
    EXPECT_EQ(MailGetMessageItemTimeDate(NoteWith({}), 5, &time), kStatusItemNotFound);
}
