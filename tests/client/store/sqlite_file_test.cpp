// tests/client/store/sqlite_file_test.cpp
#include <thread>

#include "client/store/sqlite_engine.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using DatabaseFile = StoreTest;

std::vector<std::string> FilesIn(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

TEST_F(DatabaseFile, AppearsAloneAndWhole)
{
    const std::string folder = dir_ / "new";
    ASSERT_TRUE(std::filesystem::create_directory(folder));
    std::unique_ptr<Database> database;
    ASSERT_EQ(Database::Create(folder + "/data.vlt", "Title", &database), 0);
    database.reset();
    EXPECT_EQ(FilesIn(folder), (std::vector<std::string>{"data.vlt"}));
}

TEST_F(DatabaseFile, IsNotMadeOverOneThatIsThere)
{
    WriteWholeFile(dir_ / "there.vlt", "mine");
    std::unique_ptr<Database> database;
    EXPECT_EQ(Database::Create(dir_ / "there.vlt", "", &database), kStatusNoAccess);
    EXPECT_EQ(Database::OpenOrCreate(dir_ / "there.vlt", "", &database), kStatusNotADatabase);
    EXPECT_EQ(database, nullptr);
    EXPECT_EQ(ReadWholeFile(dir_ / "there.vlt"), "mine");
}

TEST_F(DatabaseFile, NeedsItsFolder)
{
    std::unique_ptr<Database> database;
    EXPECT_EQ(Database::Create(dir_ / "no/folder.vlt", "", &database), kStatusNoSuchFile);
    EXPECT_EQ(Database::OpenOrCreate(dir_ / "no/folder.vlt", "", &database), kStatusNoSuchFile);
}

TEST_F(DatabaseFile, IsMadeOnceByTwoThatWantItAtTheSameTime)
{
    for (int round = 0; round < 5; ++round) {
        const std::string path = NewPath();
        TIMEDATE replicas[2] = {};
        const auto make = [&](int which) {
            TestDatabase data(path);
            data.AddNote({});
            replicas[which] = data.database().ReplicaId();
        };
        std::thread other(make, 1);
        make(0);
        other.join();
        EXPECT_EQ(replicas[0], replicas[1]);
        EXPECT_EQ(TestDatabase(path).Ids().size(), 2U);
    }
}

}  // namespace
}  // namespace pavex
