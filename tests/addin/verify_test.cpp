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

constexpr const char* kNoSuchDatabase = "There is no database of this name, or the file is not a database.";
constexpr const char* kCannotOpen = "This database cannot be opened for indexing.";

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
    EXPECT_EQ(recorder_.boxes[0].text, "This is not the path of a database.");
    EXPECT_EQ(recorder_.boxes[0].caption, "");
    EXPECT_EQ(recorder_.boxes[0].icon, pavex::BoxIcon::Warning);
    EXPECT_FALSE(recorder_.boxes[0].canCancel);
}

TEST_F(VerifyDatabaseTest, AMissingFileIsSaidSoUnderItsPath)
{
    DBHANDLE db = 77;
    EXPECT_EQ(VerifyDatabase(1, PathOf("none.vlt").c_str(), &db), 259);
    EXPECT_EQ(db, 0U);
    ASSERT_EQ(recorder_.boxes.size(), 1U);
    EXPECT_EQ(recorder_.boxes[0].text, kNoSuchDatabase);
    EXPECT_EQ(recorder_.boxes[0].caption, PathOf("none.vlt"));
}

TEST_F(VerifyDatabaseTest, AFileOfAnotherKindIsNotADatabase)
{
    WriteWholeFile(PathOf("letter.vlt"), "Dear Bo,\n");
    EXPECT_EQ(VerifyDatabase(1, PathOf("letter.vlt").c_str(), nullptr), 513);
    ASSERT_EQ(recorder_.boxes.size(), 1U);
    EXPECT_EQ(recorder_.boxes[0].text, kNoSuchDatabase);
}

TEST_F(VerifyDatabaseTest, ARemotePathIsNotOpenedUnlessAllowed)
{
    const NamedFault mustNotOpen("VLTDbOpen", 1313);
    EXPECT_EQ(VerifyDatabase(1, "//server/mail/mail.vlt", nullptr), 788);
    ASSERT_EQ(recorder_.boxes.size(), 1U);
    EXPECT_EQ(recorder_.boxes[0].text, "This database is on a server. Only databases on this computer can be indexed.");
    EXPECT_EQ(recorder_.boxes[0].caption, "//server/mail/mail.vlt");
}

TEST_F(VerifyDatabaseTest, AnAllowedRemotePathIsTried)
{
    SetVariable("GoogleAllowRemote", "1");
    EXPECT_EQ(VerifyDatabase(0, "//server/mail/mail.vlt", nullptr), 789);
    EXPECT_TRUE(recorder_.boxes.empty());
}

TEST_F(VerifyDatabaseTest, AModeThatCannotBeReadIsRefusedAndTheDatabaseClosed)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    const int open = pavex::OpenHandles();
    DBHANDLE db = 0;
    const NamedFault fault("VLTDbModeGet", 1111);
    EXPECT_EQ(VerifyDatabase(1, mail.Path().c_str(), &db), 1111);
    EXPECT_EQ(db, 0U);
    EXPECT_EQ(pavex::OpenHandles(), open);
    ASSERT_EQ(recorder_.boxes.size(), 1U);
    EXPECT_EQ(recorder_.boxes[0].text, kCannotOpen);
}

TEST_F(VerifyDatabaseTest, AModeWithoutTheLowestBitIsUnsuitable)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    const int open = pavex::OpenHandles();
    DBHANDLE db = 77;
    const NamedFault modeOfZero("VLTDbModeGet", 0);  // succeeds, and sets no bit
    EXPECT_EQ(VerifyDatabase(1, mail.Path().c_str(), &db), 540);
    EXPECT_EQ(db, 0U);
    EXPECT_EQ(pavex::OpenHandles(), open);
    ASSERT_EQ(recorder_.boxes.size(), 1U);
    EXPECT_EQ(recorder_.boxes[0].text, kCannotOpen);
    EXPECT_EQ(recorder_.boxes[0].caption, mail.Path());
}

TEST_F(VerifyDatabaseTest, EachFailureToOpenHasItsText)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    for (const STATUS status : {kStatusNoSuchFile, kStatusNotADatabase, kStatusNewerFormat, kStatusLocked,
                                kStatusReadOnly, kStatusNoAccess, kStatusRemoteUnreachable}) {
        const NamedFault fault("VLTDbOpen", status);
        EXPECT_EQ(VerifyDatabase(1, mail.Path().c_str(), nullptr), status);
        EXPECT_EQ(recorder_.boxes.back().text, status == 259 || status == 513 ? kNoSuchDatabase : kCannotOpen)
            << status;
    }
    EXPECT_EQ(recorder_.boxes.size(), 7U);
}

TEST_F(VerifyDatabaseTest, WithoutAWindowNothingIsShown)
{
    EXPECT_EQ(VerifyDatabase(0, "", nullptr), 259);
    EXPECT_EQ(VerifyDatabase(0, PathOf("none.vlt").c_str(), nullptr), 259);
    EXPECT_EQ(VerifyDatabase(0, "//server/mail/mail.vlt", nullptr), 788);
    EXPECT_TRUE(recorder_.boxes.empty());
}

TEST_F(VerifyDatabaseTest, ADatabaseOpensAgainAfterItWasClosed)
{
    Mailbox mail(PathOf("mail.vlt"), "Mail");
    const uint32_t id = mail.Add("note");
    const int open = pavex::OpenHandles();
    for (int round = 0; round < 3; ++round) {
        DBHANDLE db = 0;
        ASSERT_EQ(VerifyDatabase(0, mail.Path().c_str(), &db), 0);
        NOTEHANDLE note = 0;
        EXPECT_EQ(VLTNoteOpen(db, id, 0, &note), 0);
        EXPECT_EQ(VLTNoteClose(note), 0);
        EXPECT_EQ(VLTDbClose(db), 0);
        EXPECT_EQ(VLTNoteOpen(db, id, 0, &note), kStatusBadHandle);  // the closed handle opens nothing
        EXPECT_EQ(pavex::OpenHandles(), open);
    }
}

TEST_F(VerifyDatabaseTest, APathThatCannotBeParsedIsRefusedWithThatStatus)
{
    const NamedFault fault("OSPathNetParse", 1212);
    EXPECT_EQ(VerifyDatabase(1, "x.vlt", nullptr), 1212);
    ASSERT_EQ(recorder_.boxes.size(), 1U);
    EXPECT_EQ(recorder_.boxes[0].text, "This is not the path of a database.");
}

}  // namespace
