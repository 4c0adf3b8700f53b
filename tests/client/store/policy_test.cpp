// tests/client/store/policy_test.cpp: what the administrator has locked.
#include <gtest/gtest.h>

#include "tests/client/store/host_fixture.h"

using namespace pavex;

class Policy : public HostFixture {
protected:
    static STATUS Get(const char* policy, NOTEHANDLE* note)
    {
        return NAMEGetPolicy("Ann", 0, 0, "$Users", 0, 0, policy, 0, 0, note);
    }
};

TEST_F(Policy, LocksTheListedFieldsWithoutRegardToCase)
{
    WriteWholeFile(CurrentPlaces().policy, "[DesktopSets]\nLocked= GDSIndexEnabled , GDSFreqMinutes,,\n");
    NOTEHANDLE note = 0;
    ASSERT_EQ(Get("DesktopSets", &note), kStatusOk);
    EXPECT_TRUE(NAMEDPIsFieldLocked(note, "GDSIndexEnabled"));
    EXPECT_TRUE(NAMEDPIsFieldLocked(note, "gdsfreqminutes"));
    EXPECT_FALSE(NAMEDPIsFieldLocked(note, "GDSIndexDrafts"));
    EXPECT_FALSE(NAMEDPIsFieldLocked(note, ""));
    EXPECT_EQ(VLTNoteClose(note), kStatusOk);
}

TEST_F(Policy, IsAbsentWithoutAFileOrASection)
{
    NOTEHANDLE note = 7;
    EXPECT_EQ(Get("DesktopSets", &note), kStatusNotFound);
    EXPECT_EQ(note, 0u);
    WriteWholeFile(CurrentPlaces().policy, "[Other]\nLocked=GDSIndexEnabled\n");
    EXPECT_EQ(Get("DesktopSets", &note), kStatusNotFound);
    EXPECT_FALSE(NAMEDPIsFieldLocked(0, "GDSIndexEnabled"));
}

TEST_F(Policy, WithoutALockListLocksNothing)
{
    WriteWholeFile(CurrentPlaces().policy, "[DesktopSets]\nx=1\n");
    NOTEHANDLE note = 0;
    ASSERT_EQ(Get("DesktopSets", &note), kStatusOk);
    EXPECT_FALSE(NAMEDPIsFieldLocked(note, "GDSIndexEnabled"));
    VLTNoteClose(note);
}

TEST_F(Policy, ThatCannotBeReadIsLogged)
{
    std::filesystem::create_directory(CurrentPlaces().policy);
    NOTEHANDLE note = 7;
    EXPECT_EQ(Get("DesktopSets", &note), kStatusIoError);
    EXPECT_EQ(note, 0u);
    EXPECT_NE(ReadWholeFile(CurrentPlaces().log).find(CurrentPlaces().policy), std::string::npos);
}
