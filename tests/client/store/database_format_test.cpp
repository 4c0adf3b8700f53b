// tests/client/store/database_format_test.cpp: docs/formats/database.md tells the truth.
#include <sqlite3.h>

#include "client/store/item_codec.h"
#include "client/store/schema.h"
#include "tests/client/store/store_fixture.h"

namespace pavex {
namespace {

using DatabaseFormat = StoreTest;

std::string Page()
{
    return ReadWholeFile(TORVIK_SOURCE_DIR "/docs/formats/database.md");
}

std::string FromHex(const std::string& text)
{
    std::string digits;
    for (const char c : text) {
        if (std::isxdigit(static_cast<unsigned char>(c)) != 0)
            digits += c;
    }
    std::string bytes;
    for (size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
    return bytes;
}

// The lines of the fenced block that follows a heading.
std::string Block(const std::string& page, const std::string& heading)
{
    const size_t start = page.find("\n", page.find("```", page.find(heading))) + 1;
    return page.substr(start, page.find("```", start) - start);
}

TEST_F(DatabaseFormat, WorkedExampleIsWhatTheStoreWrites)
{
    std::string bytes;
    std::vector<LargeValue> large;
    ASSERT_EQ(EncodeItems({TextItem("Subject", "Hi"), NumberItem("Importance", 2)}, false, &bytes, &large), 0);
    std::string example;
    const std::string block = Block(Page(), "## Worked example");
    // The bytes stand in front of each line's remark.
    for (size_t line = 0; line < block.size(); line = block.find('\n', line) + 1)
        example += FromHex(block.substr(line, block.find("  ;", line) - line));
    EXPECT_EQ(example, bytes);
}

TEST_F(DatabaseFormat, PageNamesEveryColumnOfEveryTable)
{
    const std::string page = Page();
    TestDatabase data(NewPath());
    sqlite3* db = nullptr;
    ASSERT_EQ(sqlite3_open(data.Path().c_str(), &db), SQLITE_OK);
    sqlite3_stmt* columns = nullptr;
    ASSERT_EQ(sqlite3_prepare_v2(db,
                                 "SELECT s.name, c.name FROM sqlite_schema s, pragma_table_info(s.name) c "
                                 "WHERE s.type = 'table'",
                                 -1, &columns, nullptr),
              SQLITE_OK);
    int seen = 0;
    while (sqlite3_step(columns) == SQLITE_ROW) {
        const std::string table = reinterpret_cast<const char*>(sqlite3_column_text(columns, 0));
        const std::string column = reinterpret_cast<const char*>(sqlite3_column_text(columns, 1));
        EXPECT_NE(page.find("| `" + table + "` | `" + column + "` |"), std::string::npos) << table << "." << column;
        ++seen;
    }
    sqlite3_finalize(columns);
    sqlite3_close(db);
    EXPECT_GT(seen, 25);
}

}  // namespace
}  // namespace pavex
