// tests/client/check/repair_test.cpp: what a repair changes, and what it leaves alone.
#include "client/check/repair.h"

#include <sys/stat.h>

#include <filesystem>

#include "client/store/engine.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class RepairTest : public StoreTest {
protected:
    ProgressRecord record_{.slot = 2, .path = "mail.vlt", .variable = "GDSTimestamp2"};
    CheckReport report_{5};
    Repair repair_{true, &report_};
};

TEST_F(RepairTest, DoesNothingUnlessItIsWanted)
{
    Repair idle(false, &report_);
    WriteWholeFile(dir_ / "file", "x");
    EXPECT_TRUE(SetVariable("GDSTimestamp2", "damaged"));
    TestDatabase data(NewPath());
    const uint32_t id = data.AddNote({});
    const TIMEDATE before = data.LastChange();
    idle.RemoveFile(Finding::kStrayFile, dir_ / "file");
    idle.MakeRoom(dir_.Path());
    idle.EmptyRecord(Finding::kRecord, record_);
    idle.IndexAgain(data.database(), record_, {{id, Finding::kMissing}});
    std::string value;
    EXPECT_TRUE(GetVariable("GDSTimestamp2", &value));
    EXPECT_EQ(value, "damaged");
    EXPECT_TRUE(fs::exists(dir_ / "file"));
    EXPECT_EQ(data.LastChange(), before);
    EXPECT_EQ(report_.Repaired(), 0U);
}

TEST_F(RepairTest, HasTheNextPassTakeTheNotesAndNoOthers)
{
    TestDatabase data(NewPath());
    for (int i = 0; i < 1002; ++i)
        data.AddNote({});
    const TIMEDATE since = data.LastChange();
    std::vector<Repair::NoteToIndex> notes;
    std::vector<uint32_t> ids;
    for (uint32_t id = 1; id <= 1001; ++id) {
        notes.push_back({id, id == 1 ? Finding::kDamagedFile : Finding::kMissing});
        ids.push_back(id);
    }
    repair_.IndexAgain(data.database(), record_, notes);
    OpenedDatabase opened(data.Path());
    EXPECT_EQ(ChangesSince(opened, since).ids, ids);
    EXPECT_EQ(report_.Of(Finding::kDamagedFile).repaired, 1U);
    EXPECT_EQ(report_.Of(Finding::kMissing).repaired, 1000U);
    EXPECT_THAT(report_.Remarks(), IsEmpty());
}

TEST_F(RepairTest, CountsANoteThatWasDeletedMeanwhileAsDone)
{
    TestDatabase data(NewPath());
    const uint32_t id = data.AddNote({});
    data.Delete(id);
    repair_.IndexAgain(data.database(), record_, {{id, Finding::kMissing}});
    EXPECT_EQ(report_.Of(Finding::kMissing).repaired, 1U);
}

TEST_F(RepairTest, HasADatabaseIndexedAsAWholeWhenItsNotesCannotBeMarked)
{
    EXPECT_TRUE(SetVariable("GDSTimestamp2", "2007-03-05 14:00:00.25"));
    TestDatabase data(NewPath());
    const uint32_t id = data.AddNote({});
    repair_.IndexAgain(data.database(), record_, {{id, Finding::kMissing}, {99, Finding::kMissing}});
    EXPECT_EQ(report_.Of(Finding::kMissing).repaired, 2U);
    EXPECT_THAT(report_.Remarks(), ElementsAre(HasSubstr("no such note")));
    std::string value = "x";
    EXPECT_TRUE(GetVariable("GDSTimestamp2", &value));
    EXPECT_EQ(value, "");
}

TEST_F(RepairTest, SaysOnceWhatCannotBeRemoved)
{
    fs::create_directories(dir_ / "full/of");
    repair_.RemoveFile(Finding::kStrayFile, dir_ / "full");
    repair_.RemoveFile(Finding::kStrayFile, dir_ / "full");
    EXPECT_TRUE(fs::exists(dir_ / "full/of"));
    EXPECT_EQ(report_.Repaired(), 0U);
    EXPECT_THAT(report_.Remarks(), ElementsAre(HasSubstr("cannot be removed: Directory not empty")));
}

TEST_F(RepairTest, RemovesALinkAndNotWhatItLeadsTo)
{
    WriteWholeFile(dir_ / "file", "x");
    fs::create_symlink(dir_ / "file", dir_ / "link");
    repair_.RemoveFile(Finding::kStrayFile, dir_ / "link");
    EXPECT_FALSE(fs::is_symlink(dir_ / "link"));
    EXPECT_TRUE(fs::exists(dir_ / "file"));
    repair_.MakeRoom(dir_ / "file");
    EXPECT_TRUE(fs::exists(dir_ / "file")) << "a file makes room by itself";
    repair_.RemoveFile(Finding::kStrayFile, dir_ / "gone");
    EXPECT_EQ(report_.Of(Finding::kStrayFile).repaired, 2U) << "what is gone is gone";
}

}  // namespace
}  // namespace pavex
