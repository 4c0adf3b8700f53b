// tests/addin/verify_test.cpp: whether a database can be indexed.
#include "addin/pass.h"
#include "client/windows/front_end.h"
#include "tests/addin/addin_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

class BoxRecorder : public pavex::FrontEnd {
public:
    void Run(pavex::Dialog&) override {}
    int MessageBox(const pavex::MessageBoxRequest& box) override
    {
        boxes.push_back(box);
        return pavex::kBoxAnswerOk;
    }
    bool ChooseFile(std::string*) override { return false; }
    std::vector<pavex::MessageBoxRequest> boxes;
};

class VerifyDatabaseTest : public AddInTest {
protected:
    VerifyDatabaseTest() { pavex::SetFrontEnd(&recorder_); }
    ~VerifyDatabaseTest() override { pavex::SetFrontEnd(nullptr); }
    BoxRecorder recorder_;
};

TEST_F(VerifyDatabaseTest, OpensADatabaseForTheCaller)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    DBHANDLE db = 0;
    EXPECT_EQ(VerifyDatabase(1, mail.Path().c_str(), &db), 0);
    EXPECT_NE(db, 0U);
    EXPECT_TRUE(recorder_.boxes.empty());
    EXPECT_EQ(VLTDbClose(db), 0);
}

TEST_F(VerifyDatabaseTest, KeepsNoHandleThatNobodyAskedFor)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    const int open = pavex::OpenHandles();
    EXPECT_EQ(VerifyDatabase(0, mail.Path().c_str(), nullptr), 0);
    EXPECT_EQ(pavex::OpenHandles(), open);
}

TEST_F(VerifyDatabaseTest, AnEmptyPathIsNoDatabase)
{
    EXPECT_EQ(VerifyDatabase(1, "", nullptr), 259);
    ASSERT_EQ(recorder_.boxes.size(), 1U);
    EXPECT_EQ(recorder_.boxes[0].caption, "");
    EXPECT_EQ(recorder_.boxes[0].icon, pavex::BoxIcon::Warning);
}

TEST_F(VerifyDatabaseTest, AMissingFileIsSaidSoUnderItsPath)
{
    DBHANDLE db = 77;
    EXPECT_EQ(VerifyDatabase(1, PathOf("none.vlt").c_str(), &db), 259);
    EXPECT_EQ(db, 0U);
    ASSERT_EQ(recorder_.boxes.size(), 1U);
    EXPECT_EQ(recorder_.boxes[0].caption, PathOf("none.vlt"));
}

TEST_F(VerifyDatabaseTest, AFileOfAnotherKindIsNotADatabase)
{
    WriteWholeFile(PathOf("letter.vlt"), "Dear Bo,\n");
    EXPECT_EQ(VerifyDatabase(1, PathOf("letter.vlt").c_str(), nullptr), 513);
    EXPECT_EQ(recorder_.boxes.size(), 1U);
}

TEST_F(VerifyDatabaseTest, ARemotePathIsNotOpenedUnlessAllowed)
{
    EXPECT_EQ(VerifyDatabase(1, "//server/mail/mail.vlt", nullptr), 788);
    EXPECT_EQ(recorder_.boxes.size(), 1U);
}

TEST_F(VerifyDatabaseTest, AnAllowedRemotePathIsTried)
{
    SetVariable("GoogleAllowRemote", "1");
    EXPECT_EQ(VerifyDatabase(0, "//server/mail/mail.vlt", nullptr), 789);
    EXPECT_TRUE(recorder_.boxes.empty());
}

TEST_F(VerifyDatabaseTest, AModeThatDoesNotFitIsRefusedAndTheDatabaseClosed)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    const int open = pavex::OpenHandles();
    DBHANDLE db = 0;
    const NamedFault fault("VLTDbModeGet", 1111);
    EXPECT_EQ(VerifyDatabase(1, mail.Path().c_str(), &db), 1111);
    EXPECT_EQ(db, 0U);
    EXPECT_EQ(pavex::OpenHandles(), open);
    EXPECT_EQ(recorder_.boxes.size(), 1U);
}

TEST_F(VerifyDatabaseTest, APathThatCannotBeParsedIsRefusedWithThatStatus)
{
    const NamedFault fault("OSPathNetParse", 1212);
    EXPECT_EQ(VerifyDatabase(1, "x.vlt", nullptr), 1212);
    EXPECT_EQ(recorder_.boxes.size(), 1U);
}

}  // namespace
