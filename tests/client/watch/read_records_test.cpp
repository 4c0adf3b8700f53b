// tests/client/watch/read_records_test.cpp: watched.json, as it is documented, and damaged.
#include "client/watch/read_records.h"

#include <gtest/gtest.h>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

class ReadRecordsTest : public testing::Test {
protected:
    std::string Folder() const { return folder_.Path().string(); }
    TemporaryDirectory folder_;
};

TEST_F(ReadRecordsTest, AreReadBack)
{
    const ReadRecords records = {{"/home/ann/Mail", {"2026-11-22T06:45:00Z", "", 3, {"/d/a.vlt", "/d/b.vlt"}}},
                                 {"/mnt/\"x\"", {"", "cannot be read: No such file or directory", 0}}};
    EXPECT_TRUE(SaveReadRecords(Folder(), records));
    EXPECT_EQ(LoadReadRecords(Folder()), records);
    EXPECT_TRUE(SaveReadRecords(Folder(), {}));
    EXPECT_EQ(LoadReadRecords(Folder()), ReadRecords{});
}

TEST_F(ReadRecordsTest, AreWrittenInTheirFormat)
{
    EXPECT_TRUE(SaveReadRecords(Folder(), {{"/home/ann/Mail", {"2026-11-22T06:45:00Z", "", 3, {"/d/mail.vlt"}}}}));
    EXPECT_EQ(ReadWholeFile(folder_ / "watched.json"), R"({
 "sources": [
  {
   "source": "/home/ann/Mail",
   "read": "2026-11-22T06:45:00Z",
   "error": "",
   "rejected": 3,
   "databases": [
    "/d/mail.vlt"
   ]
  }
 ]
}
)");
}

TEST_F(ReadRecordsTest, AreNoneWhenTheFileIsMissingOrDamaged)
{
    EXPECT_EQ(LoadReadRecords(Folder()), ReadRecords{});
    for (const char* text : {"", "{", "[]", "{}", R"({"sources":{}})", R"({"sources":[1]})"}) {
        WriteWholeFile(folder_ / "watched.json", text);
        EXPECT_EQ(LoadReadRecords(Folder()), ReadRecords{}) << text;
    }
    WriteWholeFile(folder_ / "watched.json", R"({"sources":[{"source":"/a","read":1,"rejected":-1}]})");
    EXPECT_EQ(LoadReadRecords(Folder()), (ReadRecords{{"/a", {}}}));
}

TEST_F(ReadRecordsTest, CannotBeSavedWhereThereIsNoFolder)
{
    EXPECT_FALSE(SaveReadRecords(folder_ / "none", {}));
}

}  // namespace
}  // namespace pavex
