// tests/client/store/sqlite_connection_test.cpp: which files open, and what their errors become.
#include "client/store/sqlite_connection.h"

#include <sys/stat.h>
#include <unistd.h>

#include "client/store/sqlite_engine.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using ConnectionTest = StoreTest;
using testing::ElementsAre;

STATUS OpenStatus(const std::string& path)
{
    std::unique_ptr<Database> database;
    const STATUS status = Database::Open(path, &database);
    EXPECT_EQ(database == nullptr, status != 0);
    return status;
}

// Changes a database file with plain SQLite statements.
void Alter(TestDatabase& data, const char* sql)
{
    ASSERT_EQ(dynamic_cast<SqliteEngine&>(data.database().engine()).connection().Execute(sql), 0);
}

// The rights of an ordinary user while it lives; root passes every check.
class OrdinaryUser {
public:
    OrdinaryUser() : was_(geteuid())
    {
        constexpr uid_t kNobody = 65534;
        if (was_ == 0) {
            EXPECT_EQ(seteuid(kNobody), 0);
        }
    }
    ~OrdinaryUser() { EXPECT_EQ(seteuid(was_), 0); }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

private:
    uid_t was_;
};

void SetMode(const std::string& path, mode_t mode)
{
    ASSERT_EQ(chmod(path.c_str(), mode), 0) << path;
}

TEST_F(ConnectionTest, RefusesWhatIsNotADatabase)
{
    EXPECT_EQ(OpenStatus(dir_ / "missing.vlt"), kStatusNoSuchFile);
    EXPECT_EQ(OpenStatus(dir_ / "no" + std::string("/folder.vlt")), kStatusNoSuchFile);
    EXPECT_EQ(OpenStatus(dir_.Path().string()), kStatusNotADatabase) << "a folder";
    WriteWholeFile(dir_ / "empty.vlt", "");
    EXPECT_EQ(OpenStatus(dir_ / "empty.vlt"), kStatusNotADatabase);
    WriteWholeFile(dir_ / "text.vlt", std::string(10'000, 'x'));
    EXPECT_EQ(OpenStatus(dir_ / "text.vlt"), kStatusNotADatabase);
    WriteWholeFile(dir_ / "start.vlt", std::string("SQLite format 3\0", 16));
    EXPECT_EQ(OpenStatus(dir_ / "start.vlt"), kStatusNotADatabase);
    ASSERT_EQ(mkfifo((dir_ / "pipe.vlt").c_str(), 0600), 0);
    EXPECT_EQ(OpenStatus(dir_ / "pipe.vlt"), kStatusNotADatabase) << "and does not wait for a writer";
}

TEST_F(ConnectionTest, RefusesADatabaseOfAnotherProgramAndANewerOne)
{
    TestDatabase other(NewPath());
    Alter(other, "PRAGMA application_id=1");
    EXPECT_EQ(OpenStatus(other.Path()), kStatusNotADatabase);
    TestDatabase unfinished(NewPath());
    Alter(unfinished, "PRAGMA user_version=0");
    EXPECT_EQ(OpenStatus(unfinished.Path()), kStatusNotADatabase);
    TestDatabase newer(NewPath());
    Alter(newer, "PRAGMA user_version=2");
    EXPECT_EQ(OpenStatus(newer.Path()), kStatusNewerFormat);
}

TEST_F(ConnectionTest, OpensFilesWithUnusualNames)
{
    const std::string path = dir_ / "a?mode=ro#%41 é.vlt";
    TestDatabase(path).AddNote({});
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_THAT(TestDatabase(path).Ids(), ElementsAre(1));
}

TEST_F(ConnectionTest, GivesUpAfterAWhileWhenAnotherKeepsTheLock)
{
    const std::string path = NewPath();
    TestDatabase holder(path);
    Connection::SetBusyTimeout(50);
    TestDatabase other(path);
    ASSERT_EQ(holder.database().Begin(), 0);
    EXPECT_EQ(other.database().Begin(), kStatusLocked);
    Note note;
    EXPECT_EQ(other.database().Put(&note), kStatusLocked);
    EXPECT_EQ(note.id, 0U);
    EXPECT_TRUE(other.Ids().empty()) << "readers do not wait for writers";
    ASSERT_EQ(holder.database().Commit(), 0);
    EXPECT_EQ(other.database().Put(&note), 0);
    Connection::SetBusyTimeout(10'000);
}

TEST_F(ConnectionTest, ReportsAFullDiskAndGoesOnWhenThereIsRoomAgain)
{
    TestDatabase data(NewPath());
    data.AddNote({TextItem("Subject", "before")});
    Alter(data, "PRAGMA max_page_count=40");
    Note note;
    note.items = {TextItem("Body", std::string(1'000'000, 'x'))};
    ASSERT_EQ(data.database().Begin(), 0);
    EXPECT_EQ(data.database().Put(&note), kStatusDiskFull);
    data.database().Rollback();
    EXPECT_EQ(data.database().Put(&note), kStatusDiskFull);
    EXPECT_THAT(data.Ids(), ElementsAre(1));
    Alter(data, "PRAGMA max_page_count=100000");
    EXPECT_EQ(data.database().Put(&note), 0);
    EXPECT_THAT(data.Ids(), ElementsAre(1, 2));
}

class ReadOnlyTest : public StoreTest {
protected:
    void SetUp() override
    {
        SetMode(dir_.Path().string(), 0755);
        ASSERT_TRUE(std::filesystem::create_directory(folder_));
        TestDatabase data(path_);
        data.AddNote({TextItem("Subject", "one"), TextItem("Body", std::string(5000, 'x'))});
    }
    // Opens, reads and fails to write, each as a user may.
    void ExpectReadable(size_t notes)
    {
        std::unique_ptr<Database> database;
        ASSERT_EQ(Database::Open(path_, &database), 0);
        Note note;
        EXPECT_EQ(database->Get(1, &note), 0);
        EXPECT_EQ(note.items.size(), 2U);
        uint64_t count = 0;
        EXPECT_EQ(database->CountNotes(&count), 0);
        EXPECT_EQ(count, notes);
        note = Note{};
        EXPECT_EQ(database->Put(&note), kStatusReadOnly);
        OpenedDatabase db(path_);
        EXPECT_EQ(ChangesSince(db, kMinimumTime).ids.size(), notes);
    }
    const std::string folder_ = dir_ / "shared";
    const std::string path_ = folder_ + "/data.vlt";
};

TEST_F(ReadOnlyTest, ReadsAFileThatMayNotBeWritten)
{
    SetMode(path_, 0444);
    SetMode(folder_, 0777);
    const OrdinaryUser user;
    ExpectReadable(1);
    ExpectReadable(1);
}

TEST_F(ReadOnlyTest, ReadsAFileInAFolderWhereNothingCanBeMade)
{
    SetMode(path_, 0666);
    SetMode(folder_, 0555);
    const OrdinaryUser user;
    ExpectReadable(1);
}

TEST_F(ReadOnlyTest, ReadsWhatAKilledWriterLeftInTheLog)
{
    {
        // The files as they are in mid-life, copied: what a kill leaves.
        TestDatabase data(path_);
        data.AddNote({});
        for (const char* suffix : {"", "-wal"})
            std::filesystem::copy_file(path_ + suffix, folder_ + "/killed.vlt" + suffix);
    }
    for (const char* suffix : {"", "-wal"}) {
        std::filesystem::rename(folder_ + "/killed.vlt" + suffix, path_ + suffix);
        SetMode(path_ + suffix, 0444);
    }
    SetMode(folder_, 0555);
    const OrdinaryUser user;
    ExpectReadable(2);
}

TEST_F(ReadOnlyTest, ReadsWhileAnotherUserWrites)
{
    SetMode(path_, 0644);
    SetMode(folder_, 0755);
    TestDatabase writer(path_);
    writer.AddNote({});
    const OrdinaryUser user;
    ExpectReadable(2);
}

TEST_F(ReadOnlyTest, RefusesAFileThatMayNotBeReadOrReached)
{
    SetMode(path_, 0600);
    {
        const OrdinaryUser user;
        if (access(path_.c_str(), R_OK) == 0 && geteuid() == getuid())
            GTEST_SKIP() << "runs as the file's owner, who may read it";
        EXPECT_EQ(OpenStatus(path_), kStatusNoAccess);
    }
    SetMode(folder_, 0700);
    const OrdinaryUser user;
    EXPECT_EQ(OpenStatus(path_), kStatusNoAccess);
}

}  // namespace
}  // namespace pavex
