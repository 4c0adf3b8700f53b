// tests/client/check/metafile_state_test.cpp: a metafile held against its note.
#include "client/check/metafile_state.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>

#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

constexpr const char* kUrl = "Pavex:///8025000000000001//0123456789ABCDEF8025000000000002";

class MetafileStateTest : public StoreTest {
protected:
    MetafileStateTest()
    {
        row_.modified = *TimeFromIso("2007-03-05T14:00:00.25Z");
        row_.stamp = HundredthsOf(TimeFromUnix(1'600'000'000));
    }
    void Write(const std::string& properties, int64_t seconds = 1'650'000'000)
    {
        WriteWholeFile(path_, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n<dict>\n" +
                                  properties + "</dict>\n</plist>\n");
        SetTime(seconds);
    }
    void SetTime(int64_t seconds)
    {
        const timespec times[2] = {{seconds, 0}, {seconds, 0}};
        ASSERT_EQ(utimensat(AT_FDCWD, path_.c_str(), times, 0), 0);
    }
    static std::string Whole(const std::string& url = kUrl, const std::string& time = "2007-03-05T14:00:00Z")
    {
        return "<key>com_quorvex_morvane_pavex_metafile_version</key><string>1.0.0</string>"
               "<key>com.quorvex.pavex.uri</key><string>" +
               url + "</string><key>last_modified_time</key><date>" + time + "</date>\n";
    }
    MetafileState State(const SearchKind& kind = kSearchKinds[7]) { return StateOfMetafile(path_, kind, row_, kUrl); }
    void ExpectDamage(const std::string& reason)
    {
        const MetafileState state = State();
        EXPECT_EQ(state.state, FileState::kDamaged);
        EXPECT_THAT(state.reason, HasSubstr(reason));
    }

    const std::string path_ = dir_ / "0123456789ABCDEF8025000000000002.vPavexNote";
    NoteRow row_;
};

TEST_F(MetafileStateTest, IsGoodWhenTheFileIsTheNotesAndNewer)
{
    Write(Whole());
    const MetafileState state = State();
    EXPECT_EQ(state.state, FileState::kGood) << state.reason;
}

TEST_F(MetafileStateTest, IsMissingWhenThereIsNoFile)
{
    EXPECT_EQ(State().state, FileState::kMissing);
}

TEST_F(MetafileStateTest, IsOutdatedWhenTheNoteChangedSince)
{
    Write(Whole(), 1'599'999'990);
    EXPECT_EQ(State().state, FileState::kOutdated);
    // what a coarse file system makes of a file written just after the change
    SetTime(1'599'999'998);
    EXPECT_EQ(State().state, FileState::kGood);
    // changed by a clock that was ahead
    SetTime(1'599'999'990);
    row_.stamp = HundredthsOf(TimeFromUnix(1'700'000'000 + 3600));
    EXPECT_EQ(State().state, FileState::kGood);
}

TEST_F(MetafileStateTest, IsOutdatedWhenItIsOfAnotherStateOfTheNote)
{
    Write(Whole(kUrl, "2007-03-05T14:00:01Z"));
    EXPECT_EQ(State().state, FileState::kOutdated);
}

TEST_F(MetafileStateTest, BelievesTheNearestTimeThatAFileCanHold)
{
    row_.modified = TimeFromHundredths(100);
    Write(Whole(kUrl, "0001-01-01T00:00:00Z"));
    EXPECT_EQ(State().state, FileState::kGood);
}

TEST_F(MetafileStateTest, IsDamagedWhenTheFileIsNoWholeMetafileOfTheNote)
{
    WriteWholeFile(path_, "");
    ExpectDamage("empty");
    WriteWholeFile(path_, "<plist version=\"1.0\"><dict><key>tit");
    ExpectDamage("no property list");
    Write("<key>title</key><key>title</key><string>x</string>");
    ExpectDamage("not in order");
    Write("<key>title</key><array></array>");
    ExpectDamage("not in order");
    Write("<key>title</key>");
    ExpectDamage("not in order");
    Write("<key>title</key><string>x</string>");
    ExpectDamage("no version");
    Write(Whole("Pavex:///8025000000000001//0123456789ABCDEF8025000000000003"));
    ExpectDamage("another note");
    Write("<key>com_quorvex_morvane_pavex_metafile_version</key><string>1.0.0</string>");
    ExpectDamage("no address");
    Write(Whole(kUrl, "yesterday"));
    ExpectDamage("no last_modified_time");
}

TEST_F(MetafileStateTest, IsDamagedWhenTheFileIsAnotherKinds)
{
    Write(Whole());
    EXPECT_EQ(State(kSearchKinds[2]).state, FileState::kGood) << "tasks carry the same date";
    EXPECT_EQ(State(kSearchKinds[0]).state, FileState::kDamaged);
    EXPECT_THAT(State(kSearchKinds[0]).reason, HasSubstr("received"));
}

TEST_F(MetafileStateTest, IsDamagedWhenTheFileIsALinkOrAFolder)
{
    Write(Whole());
    fs::rename(path_, dir_ / "elsewhere");
    fs::create_symlink(dir_ / "elsewhere", path_);
    ExpectDamage("no regular file");
    fs::remove(path_);
    fs::create_directory(path_);
    ExpectDamage("no regular file");
}

}  // namespace
}  // namespace pavex
