// tests/client/app/log_failures_test.cpp: what the log tells of failed indexing.
#include "client/app/log_failures.h"

#include <gmock/gmock.h>

#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LogFailuresTest : public StoreTest {
protected:
    static void Write(const std::string& lines) { WriteWholeFile(CurrentPlaces().log, lines); }
};

TEST_F(LogFailuresTest, AreThoseOfTheDatabaseAndTheNote)
{
    const std::string cannot = "2026-11-21 10:11:12 134 Database mail.vlt cannot be indexed (status 515)";
    const std::string note = "2026-11-21 10:11:13 147 Note 1F could not be opened (status 518)";
    Write("2026-11-21 10:11:11 134 Database other.vlt cannot be indexed (status 259)\n" + cannot + "\n" + note +
          "\n2026-11-21 10:11:14 147 Note 1F0 could not be opened (status 518)\n"
          "2026-11-21 10:11:15 135 Database mail.vlt is open for indexing\n"
          "2026-11-21 10:11:16 0 mail.vlt\nnonsense mail.vlt\n\n");
    EXPECT_THAT(LastFailures("mail.vlt", 31), ElementsAre(cannot, note));
    EXPECT_THAT(LastFailures("none.vlt", 1), IsEmpty());
}

TEST_F(LogFailuresTest, AreNotThoseOfAnotherDatabasesNoteOfTheSameNumber)
{
    const std::string note = "2026-11-21 10:11:13 147 Note 1F could not be opened (status 518)";
    Write("2026-11-21 10:11:11 135 Database other.vlt is open for indexing\n" + note + "\n");
    EXPECT_THAT(LastFailures("mail.vlt", 31), IsEmpty());
    EXPECT_THAT(LastFailures("other.vlt", 31), ElementsAre(note));
}

TEST_F(LogFailuresTest, AreKnownInAnyLanguage)
{
    const std::string line = "2026-11-21 10:11:12 143 mail.vlt の変更された文書を一覧できません (status 518)";
    Write(line + "\n");
    EXPECT_THAT(LastFailures("mail.vlt", 1), ElementsAre(line));
}

TEST_F(LogFailuresTest, AreTheLastOfManyAndOfALongLog)
{
    std::string lines;
    for (int i = 0; i < 40000; ++i)
        lines += "2026-11-21 10:11:12 134 Database mail.vlt cannot be indexed (status " + std::to_string(i) + ")\n";
    Write(lines);
    EXPECT_THAT(LastFailures("mail.vlt", 1),
                ElementsAre(testing::HasSubstr("39997"), testing::HasSubstr("39998"), testing::HasSubstr("39999")));
}

TEST_F(LogFailuresTest, AreNoneWithoutALog)
{
    EXPECT_THAT(LastFailures("mail.vlt", 1), IsEmpty());
}

}  // namespace
}  // namespace pavex
