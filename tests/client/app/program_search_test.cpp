// tests/client/app/program_search_test.cpp: notes of every kind are found by what they hold, with the real engine.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

constexpr const char* kNotes = R"(
{"items": {"Form": "Memo", "Subject": "Zebra crossing in Zürich", "From": "Ann Müller <ann@example.org>", "SendTo": ["carl@example.org", "Dora Doe/Acme"], "CopyTo": ["eve@example.org"], "ReplyTo": ["desk@example.org"], "PostedDate": {"time": "2007-03-05T14:00:00Z"}, "Body": {"richtext": ["The stripes were painted yesterday.", "Straße <b>bold</b> & naïve café"]}}}
{"items": {"Form": "Memo", "Subject": "東京の会議", "From": "佐藤花子 <sato@example.jp>", "SendTo": ["ann@example.org"], "PostedDate": {"time": "2007-04-01T09:00:00Z"}, "Body": {"richtext": ["明日は東京都庁で会議があります。", "한국어 검색 엔진"]}}}
{"items": {"Form": "Memo", "Subject": "Квартальный отчёт", "From": "Иван Петров <ivan@example.ru>", "SendTo": ["ann@example.org"], "PostedDate": {"time": "2007-05-01T09:00:00Z"}, "Body": {"richtext": ["Продажи выросли на 12.5 процента", "Привет, мир"]}}}
{"items": {"Form": "Appointment", "Subject": "Review meeting", "Chair": "Boris Boss/Acme", "RequiredAttendees": ["Ann Müller/Acme"], "OptionalAttendees": ["Tom Thumb/Acme"], "Location": "Room Kilimanjaro", "Categories": ["Work", "Safari"], "StartDateTime": {"time": "2008-03-05T14:00:00Z"}, "EndDateTime": {"time": "2008-03-05T15:00:00Z"}, "CalendarDateTime": {"times": ["2008-03-05T14:00:00Z"]}, "Body": {"richtext": ["Bring the zebra slides"]}}, "modified": "2008-01-01T00:00:00Z"}
{"items": {"Form": "Task", "Subject": "Paint fence", "Chair": "Tom Thumb/Acme", "Categories": ["Garden"], "Importance": 1, "DueState": 9, "CompletedDateTime": {"time": "2009-12-24T18:00:00Z"}, "CalendarDateTime": {"times": ["2009-03-05T14:00:00Z"]}, "Body": {"richtext": ["white paint, two brushes"]}}, "modified": "2009-01-01T00:00:00Z"}
{"items": {"Form": "Person", "FullName": "Grete Hermann", "OfficePhoneNumber": "+49 421 5551234", "OfficeFAXPhoneNumber": "+49 421 5559999", "CellPhoneNumber": "0170-7654321", "OfficeStreetAddress": "Am Wall 1", "OfficeCity": "Bremen", "City": "Göttingen", "MailAddress": "grete@example.de", "InternetAddress": "gh@example.net", "JobTitle": "Mathematician", "Department": "Physics", "CompanyName": "Universität", "Birthday": {"time": "1901-03-02"}, "Spouse": "Nobody", "WebSite": "http://www.example.de/grete", "Categories": ["Science"]}, "modified": "2006-01-01T00:00:00Z"}
{"items": {"Form": "JournalEntry", "Subject": "Tagebuch", "Categories": ["Privat"], "TimeCreated": {"time": "2005-05-05T20:00:00Z"}, "Body": {"richtext": ["Heute Äpfel gepflückt und Œuvre gelesen"]}}}
{"items": {"Form": "MainTopic", "Subject": "Proposition de réunion", "From": "Éloïse Dupont/Acme", "Body": {"richtext": ["L'année prochaine à Besançon", "mañana por la tarde"]}}, "created": "2004-06-01T10:00:00Z"}
{"items": {"Form": "Quotation", "Subject": "Steel beams", "$WindowTitle": {"formula": "Subject"}, "Body": {"richtext": ["Forty beams of steel"]}}, "modified": "2003-01-01T00:00:00Z"}
)";

// A home where every kind is indexed; the history has the first note.
class ProgramSearch : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        home_ = new ProgramHome;
        std::string lines(kNotes);
        (void)home_->Put("mail.vlt", lines.substr(1));
        std::ofstream(home_->Path("home/pavex.ini")) << "[Pavex]\nGoogleComputeOK=1\n";
        ASSERT_EQ(home_->Run({"settings", "--enable", "--discussion", "on", "--yes"}).exit, 0);
        ASSERT_EQ(home_->Run({"open", FirstUrl()}).exit, 0);
        ASSERT_EQ(home_->Run({"index", "--full-speed"}).exit, 0);
    }
    static void TearDownTestSuite()
    {
        delete home_;
        home_ = nullptr;
    }

    static std::string FirstUrl() { return home_->RunJson({"note", "get", "--db", "mail.vlt", "--json", "1"})["url"]; }
    static std::vector<Json> Search(Lines arguments)
    {
        arguments.insert(arguments.begin(), {"search", "--json"});
        const ProgramResult result = home_->Run(arguments);
        EXPECT_EQ(result.exit, 0) << result.err;
        EXPECT_EQ(result.err, result.out.empty() ? "pavex: nothing found\n" : "");
        std::vector<Json> hits;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);)
            hits.push_back(Json::parse(line));
        return hits;
    }
    // "KIND TITLE" of each hit.
    static Lines Found(const Lines& arguments)
    {
        Lines found;
        for (const Json& hit : Search(arguments))
            found.push_back(hit["kind"].get<std::string>() + " " + hit["title"].get<std::string>());
        return found;
    }

    static ProgramHome* home_;
};
ProgramHome* ProgramSearch::home_ = nullptr;

constexpr const char* kZebra = "mail Zebra crossing in Zürich";
constexpr const char* kVisited = "history Zebra crossing in Zürich";
constexpr const char* kTokyo = "mail 東京の会議";
constexpr const char* kReport = "mail Квартальный отчёт";
constexpr const char* kReview = "calendar Review meeting";
constexpr const char* kFence = "task Paint fence";
constexpr const char* kGrete = "contact Grete Hermann";
constexpr const char* kDiary = "journal Tagebuch";
constexpr const char* kTopic = "discussion Proposition de réunion";
constexpr const char* kBeams = "note Steel beams";

struct QueryRow {
    Lines arguments;
    Lines found;  // newest first
};

void ExpectRows(const std::vector<QueryRow>& rows, const std::function<Lines(const Lines&)>& search)
{
    for (const QueryRow& row : rows)
        EXPECT_EQ(search(row.arguments), row.found) << testing::PrintToString(row.arguments);
}

TEST_F(ProgramSearch, FindsExactlyTheNotesThatHoldTheWords)
{
    ExpectRows(
        {
            {{"zebra"}, {kVisited, kReview, kZebra}},
            {{"ZEBRA"}, {kVisited, kReview, kZebra}},
            {{"zebra", "slides"}, {kReview}},
            {{"zebra", "fence"}, {}},
            {{"zebr*"}, {kVisited, kReview, kZebra}},
            {{"zebr"}, {}},
            {{"ebra"}, {}},
            {{"stripe"}, {kZebra}},
            {{"painting"}, {kFence, kZebra}},
            {{"the stripes were"}, {kZebra}},
            {{"were the stripes"}, {}},
            {{"stripes were paint"}, {}},
            {{"bold"}, {kZebra}},
            {{"strasse"}, {kZebra}},
            {{"Straße"}, {kZebra}},
            {{"東京 会議"}, {}},
            {{"한국어 검색"}, {kTokyo}},
            {{"검색 엔진"}, {kTokyo}},
            {{"naive", "cafe"}, {kZebra}},
            {{"naïve café"}, {kZebra}},
            {{"zurich"}, {kVisited, kZebra}},
            {{"müller"}, {kReview, kZebra}},
            {{"muller"}, {kReview, kZebra}},
            {{"東京"}, {kTokyo}},
            {{"会議"}, {kTokyo}},
            {{"東京都庁"}, {kTokyo}},
            {{"大阪"}, {}},
            {{"佐藤"}, {kTokyo}},
            {{"검색"}, {kTokyo}},
            {{"한국어", "엔진"}, {kTokyo}},
            {{"отчет"}, {kReport}},
            {{"ОТЧЁТ"}, {kReport}},
            {{"привет мир"}, {kReport}},
            {{"12.5"}, {kReport}},
            {{"иван"}, {kReport}},
            {{"apfel"}, {kDiary}},
            {{"Äpfel"}, {kDiary}},
            {{"gepfluckt"}, {kDiary}},
            {{"oeuvre"}, {kDiary}},
            {{"réunion"}, {kTopic}},
            {{"reunion"}, {kTopic}},
            {{"besancon"}, {kTopic}},
            {{"l'année"}, {kTopic}},
            {{"manana"}, {kTopic}},
            {{"éloïse"}, {kTopic}},
            {{"kilimanjaro"}, {kReview}},
            {{"safari"}, {kReview}},
            {{"thumb"}, {kFence, kReview}},
            {{"brushes"}, {kFence}},
            {{"garden"}, {kFence}},
            {{"hermann"}, {kGrete}},
            {{"5551234"}, {kGrete}},
            {{"+49 421 5551234"}, {kGrete}},
            {{"7654321"}, {kGrete}},
            {{"bremen"}, {kGrete}},
            {{"gottingen"}, {kGrete}},
            {{"mathematician"}, {kGrete}},
            {{"physics"}, {kGrete}},
            {{"universitat"}, {kGrete}},
            {{"grete@example.de"}, {kGrete}},
            {{"gh@example.net"}, {kGrete}},
            {{"http://www.example.de/grete"}, {kGrete}},
            {{"science"}, {kGrete}},
            {{"steel"}, {kBeams}},
            {{"forty", "beams"}, {kBeams}},
            {{"quotation"}, {kBeams}},
            {{"desk@example.org"}, {kZebra}},
            {{"eve"}, {kZebra}},
        },
        Found);
}

TEST_F(ProgramSearch, TakesFormsOfAWordAsOneInTheUsersLanguage)
{
    const auto search = [](const std::string& locale, const std::string& word) {
        Process process({"env", "LC_ALL=" + locale, TORVIK_BINARY_DIR "/bin/pavex", "--home", home_->Path("home"),
                         "search", "--json", word},
                        home_->Path("locale"));
        const std::string out = process.Wait().out;
        return out.empty() ? "" : Json::parse(out)["title"].get<std::string>();
    };
    EXPECT_EQ(search("de_DE.UTF-8", "gelesenen"), "Tagebuch");
    EXPECT_EQ(search("C", "gelesenen"), "");
    EXPECT_EQ(search("C", "brush"), "Paint fence");
    EXPECT_EQ(search("ja_JP.UTF-8", "brush"), "");
    EXPECT_EQ(search("ja_JP.UTF-8", "brushes"), "Paint fence");
    EXPECT_EQ(search("fr_FR.UTF-8", "prochaines"), "Proposition de réunion");
}

TEST_F(ProgramSearch, FindsNotesByFieldKindPeopleAndDate)
{
    ExpectRows(
        {
            {{"title:zebra"}, {kVisited, kZebra}},
            {{"subject:review"}, {kReview}},
            {{"from:ann"}, {kZebra}},
            {{"author:ann@example.org"}, {kZebra}},
            {{"to:ann"}, {kReview, kReport, kTokyo}},
            {{"recipient:eve"}, {kZebra}},
            {{"cc:eve"}, {kZebra}},
            {{"cc:carl"}, {}},
            {{"replyto:desk"}, {kZebra}},
            {{"organizer:boris"}, {kReview}},
            {{"from:boris"}, {kReview}},
            {{"attendees:tom"}, {kReview}},
            {{"owner:tom"}, {kFence}},
            {{"place:kilimanjaro"}, {kReview}},
            {{"location:room kilimanjaro"}, {kReview}},
            {{"title:kilimanjaro"}, {}},
            {{"category:work"}, {kReview}},
            {{"keywords:privat"}, {kDiary}},
            {{"start:2008-03-05"}, {kReview}},
            {{"enddate:2008-03-05 15:00"}, {kReview}},
            {{"start:2008-03-06"}, {}},
            {{"duration:3600"}, {kReview}},
            {{"status:2"}, {kFence}},
            {{"importance:2"}, {kFence}},
            {{"datecompleted:2009-12-24"}, {kFence}},
            {{"received:2007-03-05"}, {kZebra}},
            {{"messagetime:2004-06-01"}, {kTopic}},
            {{"starttime:2005-05-05"}, {kDiary}},
            {{"lastmodifiedtime:2003-01-01"}, {kBeams}},
            {{"birthday:1901-03-02"}, {kGrete}},
            {{"phone:5551234"}, {kGrete}},
            {{"businessphone:5551234"}, {kGrete}},
            {{"mobilephone:7654321"}, {kGrete}},
            {{"homephone:5551234"}, {}},
            {{"fax:5559999"}, {kGrete}},
            {{"phone:5559999"}, {}},
            {{"address:bremen"}, {kGrete}},
            {{"homeaddress:göttingen"}, {kGrete}},
            {{"office:wall"}, {kGrete}},
            {{"email:grete@example.de"}, {kGrete}},
            {{"email:gh@example.net"}, {kGrete}},
            {{"job:mathematician"}, {kGrete}},
            {{"company:universität"}, {kGrete}},
            {{"spouse:nobody"}, {kGrete}},
            {{"--kind", "mail", "zebra"}, {kZebra}},
            {{"--kind", "calendar", "zebra"}, {kReview}},
            {{"--kind", "history", "zebra"}, {kVisited}},
            {{"--kind", "task", "zebra"}, {}},
            {{"--kind", "task", "paint"}, {kFence}},
            {{"--kind", "contact", "grete"}, {kGrete}},
            {{"--kind", "journal", "heute"}, {kDiary}},
            {{"--kind", "discussion", "réunion"}, {kTopic}},
            {{"--kind", "note", "steel"}, {kBeams}},
            {{"--from", "ann", "zebra"}, {kZebra}},
            {{"--from", "Müller Ann", "zebra"}, {kZebra}},
            {{"--from", "boris", "zebra"}, {kReview}},
            {{"--from", "carl", "zebra"}, {}},
            {{"--after", "2007-03-05T14:00:00Z", "--before", "2007-03-05T14:00:01Z", "zebra"}, {kZebra}},
            {{"--after", "2007-03-05T14:00:01Z", "--kind", "mail", "zebra"}, {}},
            {{"--before", "2007-03-05T14:00:00Z", "zebra"}, {}},
            {{"--after", "2008-03-05", "--before", "2008-03-06", "zebra"}, {kReview}},
            {{"--before", "2008-03-05", "zebra"}, {kZebra}},
            {{"--limit", "2", "zebra"}, {kVisited, kReview}},
            {{"--limit", "1", "zebra"}, {kVisited}},
            {{"--limit", "1", "--before", "2009-01-01", "zebra"}, {kReview}},
            {{"--limit", "2", "--before", "2009-01-01", "zebra"}, {kReview, kZebra}},
        },
        Found);
}

TEST_F(ProgramSearch, FindsNothingThatIsNotInANote)
{
    for (const char* word : {"plist",
                             "dict",
                             "string",
                             "key",
                             "xml",
                             "dtd",
                             "apple",
                             "title",
                             "from",
                             "categories",
                             "location",
                             "com_quorvex_morvane_pavex_business_phone",
                             "com",
                             "quorvex",
                             "last_modified_time",
                             "content",
                             "vPavexMessage",
                             "vpavexcontact",
                             "1.0.0",
                             "xqzTorvikLeadingMarkervqjx",
                             "xqzTorvikDefaultMarkervqj",
                             "html",
                             "meta",
                             "body",
                             "p",
                             "Spotlight",
                             "Metadata",
                             "caches",
                             "application",
                             "pavexdate"})
        EXPECT_EQ(Found({word}), Lines()) << word;
}

TEST_F(ProgramSearch, TakesTheNamesOfFieldsInAnyCase)
{
    EXPECT_EQ(Found({"From:ann"}), Found({"from:ann"}));
    EXPECT_EQ(Found({"From:ann"}), Lines{kZebra});
    EXPECT_EQ(Found({"PLACE:Kilimanjaro"}), Lines{kReview});
    EXPECT_EQ(Found({"Subject: review"}), Lines{kReview});
}

TEST_F(ProgramSearch, TakesEveryDateThatCanBeWritten)
{
    const Lines all = {kVisited, kReview, kZebra};
    for (const char* early : {"0000-01-01", "0000-01-01T00:00:00Z", "-0044-03-15", "0001-01-01", "1969-12-31T23:59:59Z",
                              "1970-01-01", "2007-03-05T15:00:00+01:00", "2007-03-05T14:00Z", "2007-03-05 14:00:00Z"}) {
        EXPECT_EQ(Found({"--after", early, "zebra"}), all) << early;
        EXPECT_EQ(Found({"--before", early, "zebra"}), Lines()) << early;
    }
    for (const char* late : {"9999-12-31", "10000-01-01", "40000-01-01", "2999-02-28T12:00:00.25Z"}) {
        EXPECT_EQ(Found({"--after", late, "zebra"}), Lines()) << late;
        EXPECT_EQ(Found({"--before", late, "zebra"}), all) << late;
    }
    EXPECT_EQ(Found({"--after", "-0044-03-15", "--before", "20000-01-01", "zebra"}), all);
    for (const char* none :
         {"", "T10:00:00Z", "2007", "2007-3-5", "2007-02-29", "2007-03-05T14:00:00", "99999999-01-01", "today"})
        EXPECT_EQ(home_->Run({"search", "--before", none, "zebra"}).exit, 2) << none;
}

TEST_F(ProgramSearch, FindsNothingInATimeThatEndsBeforeItBegins)
{
    for (const auto& [after, before] : {std::pair{"2009-01-01", "2000-01-01"}, std::pair{"2007-03-05", "2007-03-05"}}) {
        const ProgramResult result = home_->Run({"search", "--after", after, "--before", before, "zebra"});
        EXPECT_EQ(result.exit, 0);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, std::string("pavex: nothing found: --after ") + after + " is no earlier than --before " +
                                  before + "\n");
        ExpectOneClearLine(home_->Run({"open", "1"}), 1, {"no result 1"});
    }
}

TEST_F(ProgramSearch, FindsNoWordsTogetherThatStandInTwoProperties)
{
    for (const char* words : {"slides room", "meeting boris", "kilimanjaro work", "safari kilimanjaro",
                              "brushes garden", "tagebuch privat", "bremen goettingen", "physics universität"})
        EXPECT_EQ(Found({words}), Lines()) << words;
}

TEST_F(ProgramSearch, TakesEverySignAsText)
{
    for (const char* words :
         {"zebra\"", "\"zebra", "(zebra", "zebra)", "-zebra", "zebra:", ":zebra", "zebra\\", "zebra,"})
        EXPECT_EQ(Found({"--", words}), (Lines{kVisited, kReview, kZebra})) << words;
    for (const char* words :
         {"zebra OR fence", "zebra AND slides", "mime:text", "dir:/", "date:2007", "zebra|fence", "$(id)"})
        EXPECT_EQ(Found({words}), Lines()) << words;
    for (const char* none : {"!!!", "\"", "()", "*", ""}) {
        ExpectOneClearLine(home_->Run({"search", none}), 2, {"no word to look for"});
        const ProgramResult result = home_->Run({"search", "--from", none, "zebra"});
        EXPECT_EQ(result.exit, 2);
        EXPECT_THAT(result.err, HasSubstr("no name to look for"));
    }
}

TEST_F(ProgramSearch, TellsWhatANoteIsAndWhereToOpenIt)
{
    const std::vector<Json> hits = Search({"title:crossing", "--kind", "mail"});
    ASSERT_EQ(hits.size(), 1U);
    EXPECT_EQ(hits[0], (Json{{"url", FirstUrl()},
                             {"kind", "mail"},
                             {"title", "Zebra crossing in Zürich"},
                             {"date", "2007-03-05T14:00:00Z"},
                             {"people",
                              {"Ann Müller <ann@example.org>", "carl@example.org", "Dora Doe/Acme", "eve@example.org"}},
                             {"snippet", "The stripes were painted yesterday. Straße <b>bold</b> & naïve café"},
                             {"hits", Json::array()}}));
    EXPECT_EQ(Search({"kilimanjaro"}).at(0)["snippet"], "Room Kilimanjaro") << "the text with the hit";
}

TEST_F(ProgramSearch, TellsProgramsWhereTheWordsStandInTheSnippet)
{
    const std::vector<Json> hits = Search({"naïve", "yesterday"});
    ASSERT_EQ(hits.size(), 1U);
    EXPECT_EQ(hits[0]["hits"], (Json{{25, 34}, {57, 62}})) << "in characters: " << hits[0]["snippet"];
    EXPECT_EQ(Search({"会議", "東京"}).at(0)["hits"], (Json{{3, 5}, {8, 10}})) << "明日は東京都庁で会議があります。";
}

TEST_F(ProgramSearch, PrintsPlainTextWhereThereIsNoTerminal)
{
    const ProgramResult result = home_->Run({"search", "slides"});
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, testing::MatchesRegex("1\\. calendar  2008-03-0[456] [0-9:]+  Review meeting\n"
                                                  "    Boris Boss/Acme, Ann Müller/Acme, Tom Thumb/Acme\n"
                                                  "    Bring the zebra \\*slides\\*\n"
                                                  "    Pavex:///[0-9A-F]{16}//[0-9A-F]{32}\n"));
}

TEST_F(ProgramSearch, OpensAResultByItsNumber)
{
    ASSERT_EQ(Found({"zebra"}), (Lines{kVisited, kReview, kZebra}));
    const ProgramResult opened = home_->Run({"open", "2"});
    EXPECT_EQ(opened.exit, 0) << opened.err;
    EXPECT_THAT(opened.out, HasSubstr("Subject: Review meeting\n"));
    EXPECT_THAT(opened.out, HasSubstr("\nBring the zebra slides\n"));
    ExpectOneClearLine(home_->Run({"open", "4"}), 1, {"no result 4"});
    ExpectOneClearLine(home_->Run({"open", "0"}), 1, {"no result 0"});
}

TEST_F(ProgramSearch, KeepsItsFilesToTheUser)
{
    (void)Found({"zebra"});
    constexpr fs::perms kOthers = fs::perms::group_all | fs::perms::others_all;
    for (const char* folder : {"home/caches/pavex", "home/log"})
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(home_->Path(folder)))
            EXPECT_EQ(entry.status().permissions() & kOthers, fs::perms::none) << entry.path();
    EXPECT_TRUE(fs::exists(home_->Path("home/caches/pavex/search/xapiandb")));
}

TEST_F(ProgramSearch, AnswersFromAnIndexThatCannotBeBroughtUpToDate)
{
    (void)Found({"zebra"});
    fs::create_directories(home_->Path("bin"));
    std::error_code none;
    fs::create_symlink("/usr/bin/recollq", home_->Path("bin/recollq"), none);
    fs::remove(home_->Path("home/caches/pavex/search/up-to-date"));
    Process process({"env", "PATH=" + home_->Path("bin"), TORVIK_BINARY_DIR "/bin/pavex", "--home", home_->Path("home"),
                     "search", "--json", "slides"},
                    home_->Path("old"));
    const ProgramResult result = process.Wait();
    EXPECT_EQ(result.exit, 1);
    EXPECT_EQ(Json::parse(result.out)["title"], "Review meeting");
    EXPECT_THAT(result.err, HasSubstr("not up to date"));
    EXPECT_THAT(result.err, HasSubstr("recollindex is missing"));
}

}  // namespace
}  // namespace pavex
