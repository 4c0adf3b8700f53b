// tests/client/search/query_test.cpp: what a request becomes in the search engine's language.
#include "client/search/query.h"

#include <gtest/gtest.h>

namespace pavex {
namespace {

const std::set<std::string> kFields = {"author", "due", "place", "title"};

std::string QueryOf(const std::vector<std::string>& words)
{
    SearchRequest request;
    request.words = words;
    return BuildQuery(request, kFields);
}

TEST(Query, GivesNoSignOfAWordAMeaningForTheEngine)
{
    struct Row {
        const char* word;
        const char* query;
    };
    constexpr Row kRows[] = {
        {"zebra", R"("zebra")"},
        {"Zebra", R"("zebra")"},
        {"ÄPFEL", R"("äpfel")"},
        {"İ", "\"i̇\""},
        {"東京", R"("東京")"},
        {"김 하늘", R"("김" "하늘")"},
        {"会 議 は", R"("会" "議" "は")"},
        {"会議 は", R"("会議 は"l)"},
        {"本町一丁目 東京, 12344", R"("本町一丁目" "東京, 12344"l)"},
        {"red 夜 cat tail", R"("red 夜"l "cat tail"l)"},
        {"title:林 淑芬", R"(title:"林" title:"淑芬")"},
        {"林 !", R"("林")"},
        {"red stripes", R"("red stripes"l)"},
        {" red\tstripes\n", R"("red stripes"l)"},
        {"\"quoted\"", R"("quoted")"},
        {"a\"b", R"("a b"l)"},
        {"back\\slash", R"("back slash"l)"},
        {"(zebra", R"("(zebra")"},
        {"zebra)", "\"zebra)\""},
        {"-zebra", R"("-zebra")"},
        {"OR", R"("or")"},
        {"AND", R"("and")"},
        {"ann@example.org", R"("ann@example.org")"},
        {"http://example.org/", R"("http://example.org/")"},
        {"C++", R"("c++")"},
        {"2007-03-05", R"("2007-03-05")"},
        {"zeb*", "zeb*"},
        {"*bra", R"("bra")"},
        {"ze*ra", R"("ze ra"l)"},
        {"z?bra", R"("z bra"l)"},
        {"[a-z]bra", R"("a-z bra"l)"},
        {"red zeb*", R"("red zeb"l)"},
        {"a.b*", R"("a.b")"},
        {"東京*", R"("東京")"},
        {"zeb검*", R"("zeb검")"},
        {"title:東京*", R"(title:"東京")"},
        {"は500円", R"("は" "500円")"},
        {"東京2020大会", R"("東京 2020大会"l)"},
        {"Ту154", R"("ту154")"},
        {"é5", R"("é5")"},
        {"sil\u00ADben", R"("silben")"},
        {"\u202Ezeb\u200E*", "zeb*"},
        {"می\u200Cخواهم", R"("میخواهم")"},
        {"😀", R"("😀")"},
        {"title:zebra", R"(title:"zebra")"},
        {"title:red stripes", R"(title:"red stripes"l)"},
        {"title:zeb*", "title:zeb*"},
        {"due:2007-03-05", R"(due:"2007-03-05")"},
        {"Title:Zebra", R"(title:"zebra")"},
        {"TITLE:zeb*", "title:zeb*"},
        {"due: 2007", R"(due:"2007")"},
        {"nofield:zebra", R"("nofield:zebra")"},
        {"mime:text", R"("mime:text")"},
        {":zebra", R"(":zebra")"},
        {"title:", ""},
        {"title:\"", ""},
        {"", ""},
        {" ", ""},
        {"*", ""},
        {"\"\"", ""},
        {"()", ""},
        {"!!!", ""},
    };
    for (const auto& [word, query] : kRows)
        EXPECT_EQ(QueryOf({word}), query) << word;
}

TEST(Query, AsksForAllWordsThatHoldAnything)
{
    EXPECT_EQ(QueryOf({"red", "--", "title:zebra", "black white"}), R"("red" title:"zebra" "black white"l)");
}

TEST(Query, NarrowsWordsByKindAuthorAndTime)
{
    SearchRequest request;
    request.words = {"zebra"};
    request.kind = FindKindByName("task");
    EXPECT_EQ(BuildQuery(request, kFields), R"("zebra" mime:application/x-pavex-task)");
    request.kind = nullptr;
    request.from = "Ann  O\"Neil *";
    EXPECT_EQ(BuildQuery(request, kFields), R"("zebra" author:"ann" author:"o neil"l)");
    request.from.clear();
    request.after = 1173103200;  // 2007-03-05T14:00:00Z
    EXPECT_EQ(BuildQuery(request, kFields), R"("zebra" pavexdate:20070305140000..)");
    request.before = 1173103201;
    EXPECT_EQ(BuildQuery(request, kFields), R"("zebra" pavexdate:20070305140000..20070305140000)");
    request.after.reset();
    EXPECT_EQ(BuildQuery(request, kFields), R"("zebra" pavexdate:..20070305140000)");
}

TEST(Query, TellsTimesThatNoNoteCanBeOf)
{
    constexpr int64_t kFirst = -62167219200;  // 0000-01-01
    constexpr int64_t kEnd = 253402300800;    // 10000-01-01
    struct Row {
        std::optional<int64_t> after;
        std::optional<int64_t> before;
        bool isNone;
        const char* clause;
    };
    const Row rows[] = {
        {{}, {}, false, ""},
        {0, 1, false, " pavexdate:19700101000000..19700101000000"},
        {0, 0, true, ""},
        {1, 0, true, ""},
        {{}, kFirst, true, ""},
        {{}, kFirst - 86400, true, ""},
        {{}, kFirst + 1, false, " pavexdate:..00000101000000"},
        {{}, kEnd + 86400, false, " pavexdate:..99991231235959"},
        {kFirst - 86400, {}, false, " pavexdate:00000101000000.."},
        {kEnd - 1, {}, false, " pavexdate:99991231235959.."},
        {kEnd, {}, true, ""},
        {kFirst - 86400, kEnd + 86400, false, " pavexdate:00000101000000..99991231235959"},
        {INT64_MIN, INT64_MAX, false, " pavexdate:00000101000000..99991231235959"},
    };
    for (const auto& [after, before, isNone, clause] : rows) {
        SearchRequest request;
        request.words = {"x"};
        request.after = after;
        request.before = before;
        EXPECT_EQ(HasNoTime(request), isNone) << after.value_or(-1) << " " << before.value_or(-1);
        if (!isNone) {
            EXPECT_EQ(BuildQuery(request, kFields), std::string("\"x\"") + clause);
        }
    }
}

TEST(Query, IsEmptyWithoutAWordWhateverElseIsAskedFor)
{
    SearchRequest request;
    request.words = {"?"};
    request.kind = FindKindByName("task");
    request.from = "ann";
    EXPECT_EQ(BuildQuery(request, kFields), "");
}

TEST(Query, TakesTheFormsOfWordsFromTheUsersFirstLanguage)
{
    EXPECT_EQ(StemmingLanguage({}), "english");
    EXPECT_EQ(StemmingLanguage({"de_AT", "en"}), "german");
    EXPECT_EQ(StemmingLanguage({"fr-CA"}), "french");
    EXPECT_EQ(StemmingLanguage({"es"}), "spanish");
    EXPECT_EQ(StemmingLanguage({"ja", "en"}), "");
}

TEST(Query, StampsReadBackAsTheSameTime)
{
    for (const int64_t seconds : {int64_t{0}, int64_t{1173103200}, int64_t{-2171836800}, int64_t{4102444799},
                                  int64_t{-62167219200}, int64_t{253402300799}})
        EXPECT_EQ(UnixFromStamp(StampFromUnix(seconds)), seconds) << StampFromUnix(seconds);
    EXPECT_EQ(StampFromUnix(1173103200), "20070305140000");
    for (const char* none : {"", "2007030514000", "2007030514000x", "200703051400000"})
        EXPECT_FALSE(UnixFromStamp(none)) << none;
}

}  // namespace
}  // namespace pavex
