// tests/client/app/program_watch_test.cpp: sources that pavex run reads in by itself, to the hit of pavex search.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <random>
#include <sstream>
#include <thread>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;
using testing::AllOf;
using testing::HasSubstr;
using Lines = std::vector<std::string>;

std::string Message(const std::string& subject)
{
    return "From: Ann <ann@example.org>\nTo: bo@example.org\nDate: Mon, 5 Mar 2007 14:00:00 +0000\nSubject: " +
           subject + "\nMessage-ID: <" + subject + "@example.org>\n\ntext\n";
}

class ProgramWatch : public testing::Test {
protected:
    ProgramWatch()
    {
        for (const char* folder : {"m/cur", "m/new", "m/tmp"})
            fs::create_directories(home_.Path(folder));
    }

    std::string Mail() const { return home_.Path("m"); }
    void Deliver(const std::string& subject)
    {
        WriteWholeFile(home_.Path("m/tmp/" + subject), Message(subject));
        fs::rename(home_.Path("m/tmp/" + subject), home_.Path("m/new/" + subject));
    }
    void Watch(Lines arguments)
    {
        arguments.insert(arguments.begin(), "watch");
        const ProgramResult result = home_.Run(arguments);
        ASSERT_EQ(result.exit, 0) << result.err;
    }
    Json WatchedSource() { return home_.RunJson({"watch", "--json"})["sources"].at(0); }
    // The subjects of all mail, sorted.
    Lines Subjects()
    {
        Lines subjects;
        if (!fs::exists(home_.Path("home/data/mail.vlt")))
            return subjects;
        std::istringstream lines(home_.Run({"note", "list", "--db", "mail.vlt", "--json"}).out);
        for (std::string line; std::getline(lines, line);)
            subjects.push_back(Json::parse(line)["subject"]);
        std::sort(subjects.begin(), subjects.end());
        return subjects;
    }
    Lines Search(const std::string& word)
    {
        Lines found;
        std::istringstream lines(home_.Run({"search", "--json", word}).out);
        for (std::string line; std::getline(lines, line);)
            found.push_back(Json::parse(line)["title"]);
        return found;
    }
    // An mbox of messages "0", "1" ...; their subjects, sorted.
    Lines WriteMailbox(int messages)
    {
        Lines subjects;
        std::string mailbox;
        for (int i = 0; i < messages; ++i) {
            subjects.push_back(std::to_string(i));
            mailbox += "From ann@example.org Mon Mar  5 14:00:00 2007\n" + Message(subjects.back()) + "\n";
        }
        WriteWholeFile(home_.Path("inbox.mbox"), mailbox);
        std::sort(subjects.begin(), subjects.end());
        return subjects;
    }
    std::string LogText() { return ReadWholeFile(home_.Path("home/log/pavex.log")); }

    ProgramHome home_;
};

// The way of a message, in real time: the add-in takes its first turn a whole period, here a minute, after the start.
TEST_F(ProgramWatch, ANewMessageIsFoundAndOneThatWentIsNotWithNothingButRunGoing)
{
    Deliver("quince");
    Watch({"--prune", Mail()});
    ASSERT_EQ(home_.Run({"import", Mail()}).exit, 0);
    ASSERT_EQ(home_.Run({"settings", "--enable", "--frequency", "1", "--yes"}).exit, 0);
    (void)home_.Index();
    ASSERT_EQ(Search("quince"), Lines{"quince"});
    const Metafiles before = home_.ReadMetafiles();
    ASSERT_EQ(before.size(), 1U);

    const std::unique_ptr<Process> running = home_.Start({"run"});
    ASSERT_TRUE(Eventually([this] { return !WatchedSource()["read"].is_null(); }));
    Deliver("medlar");
    fs::remove(home_.Path("m/new/quince"));
    ASSERT_TRUE(Eventually(
        [&] {
            const Metafiles now = home_.ReadMetafiles();
            return now.size() == 1 && now.begin()->first != before.begin()->first;
        },
        300));
    EXPECT_EQ(Search("medlar"), Lines{"medlar"});
    EXPECT_EQ(Search("quince"), Lines{});
    running->Signal(SIGTERM);
    EXPECT_EQ(running->Wait().exit, 0);
}

TEST_F(ProgramWatch, ReadsCalendarsAndContactsInToo)
{
    const std::string calendar = home_.Path("calendar.ics");
    WriteWholeFile(home_.Path("contacts.vcf"), "BEGIN:VCARD\nVERSION:3.0\nFN:Ann Lee\nN:Lee;Ann;;;\nEND:VCARD\n");
    WriteWholeFile(calendar, "BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\nUID:1\nDTSTART:20070305T140000Z\n"
                             "SUMMARY:One\nEND:VEVENT\nEND:VCALENDAR\n");
    Watch({calendar, home_.Path("contacts.vcf")});
    const std::unique_ptr<Process> running = home_.Start({"run"});
    const auto listed = [this](const std::string& database, const std::string& text) {
        return Eventually([&] {
            return fs::exists(home_.Path("home/data/" + database)) &&
                   home_.Run({"note", "list", "--db", database}).out.find(text) != std::string::npos;
        });
    };
    EXPECT_TRUE(listed("calendar.vlt", "One"));
    EXPECT_TRUE(Eventually([this] { return fs::exists(home_.Path("home/data/names.vlt")); }));
    // As editors do: written aside and renamed.
    WriteWholeFile(calendar + "~", "BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\nUID:1\nSEQUENCE:1\n"
                                   "DTSTART:20070305T140000Z\nSUMMARY:Moved\nEND:VEVENT\nEND:VCALENDAR\n");
    fs::rename(calendar + "~", calendar);
    EXPECT_TRUE(listed("calendar.vlt", "Moved"));
}

TEST_F(ProgramWatch, AKilledRunLeavesNothingThatTheNextDoesNotPutRight)
{
    const Lines all = WriteMailbox(6000);
    Watch({home_.Path("inbox.mbox")});
    const unsigned seed = std::random_device()();
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 random(seed);
    for (int kill = 0; kill < 4; ++kill) {
        const std::unique_ptr<Process> running = home_.Start({"run"});
        ASSERT_TRUE(Eventually([this] { return fs::exists(home_.Path("home/data/mail.vlt")); }));
        std::this_thread::sleep_for(std::chrono::milliseconds(std::uniform_int_distribution<int>(0, 400)(random)));
        running->Signal(SIGKILL);
        EXPECT_EQ(running->Wait().exit, 128 + SIGKILL);
    }
    const std::unique_ptr<Process> running = home_.Start({"run"});
    ASSERT_TRUE(Eventually([this] { return !WatchedSource()["read"].is_null(); }, 300));
    EXPECT_EQ(Subjects(), all);
    running->Signal(SIGTERM);
    EXPECT_EQ(running->Wait().exit, 0);
}

TEST_F(ProgramWatch, ABigImportEndsInOrderWhenRunIsToEnd)
{
    constexpr int kMessages = 60000;
    (void)WriteMailbox(kMessages);
    Watch({home_.Path("inbox.mbox")});
    const std::unique_ptr<Process> running = home_.Start({"run"});
    ASSERT_TRUE(Eventually([this] { return fs::exists(home_.Path("home/data/mail.vlt")); }));
    running->Signal(SIGTERM);
    const ProgramResult result = running->Wait();
    EXPECT_EQ(result.exit, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_LT(Subjects().size(), size_t{kMessages}) << "it did not read on to the end";
    EXPECT_THAT(LogText(), testing::Not(HasSubstr("inbox.mbox"))) << "to be ended is nothing to complain of";
}

TEST_F(ProgramWatch, RunGoesOnWithoutAThreadForIt)
{
    Watch({Mail()});
    Process running({"env", "LD_PRELOAD=" TORVIK_BINARY_DIR "/lib/libno_threads.so",
                     "ASAN_OPTIONS=verify_asan_link_order=0", TORVIK_BINARY_DIR "/bin/pavex", "--home",
                     home_.Path("home"), "run"},
                    home_.Path("run"));
    ASSERT_TRUE(Eventually([this] {
        return fs::exists(home_.Path("home/log/pavex.log")) && LogText().find("not read in again") != std::string::npos;
    }));
    running.Signal(SIGTERM);
    EXPECT_EQ(running.Wait().exit, 0);
}

// ---- The list ---------------------------------------------------------------------------------

TEST_F(ProgramWatch, ShowsTheListAndWhetherAClientRuns)
{
    EXPECT_EQ(home_.Run({"watch"}).out, "no sources are watched; pavex watch SOURCE adds one\n");
    const ProgramResult added =
        home_.Run({"watch", Mail() + "/../m/", "--as", "discussion", "--into", "own.vlt", "--prune"});
    EXPECT_THAT(added.out, AllOf(HasSubstr(Mail() + ": watched from now on, as discussion, into "), HasSubstr("pruned"),
                                 HasSubstr("nothing is read in until the client runs: pavex run")));
    const Json before = home_.RunJson({"watch", "--list", "--json"});
    EXPECT_EQ(before, (Json{{"running", false},
                            {"sources",
                             {{{"source", Mail()},
                               {"as", "discussion"},
                               {"into", home_.Path("home/data/own.vlt")},
                               {"prune", true},
                               {"exists", true},
                               {"read", nullptr},
                               {"rejected", 0},
                               {"error", nullptr}}}},
                            {"problems", Json::array()}}));
    const std::unique_ptr<Process> running = home_.Start({"run"});
    EXPECT_TRUE(Eventually([this] { return home_.RunJson({"watch", "--json"})["running"] == true; }));
    EXPECT_TRUE(Eventually([this] { return WatchedSource()["read"].is_string(); }));
    EXPECT_THAT(home_.Run({"watch"}).out, AllOf(HasSubstr(": read 20"), testing::Not(HasSubstr("nothing is read"))));
    running->Signal(SIGKILL);
    (void)running->Wait();
    EXPECT_EQ(home_.RunJson({"watch", "--json"})["running"], false) << "also after a kill";
    fs::remove_all(Mail());
    EXPECT_EQ(WatchedSource()["exists"], false);
    EXPECT_THAT(home_.Run({"watch"}).out, HasSubstr("; is not there"));
}

TEST_F(ProgramWatch, RefusesSourcesOneByOneWithTheReason)
{
    const ProgramResult result = home_.Run({"watch", home_.Path("none"), Mail(), home_.Path("home"), "/dev/null"});
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.out, HasSubstr(Mail() + ": watched from now on"));
    EXPECT_THAT(result.err,
                AllOf(HasSubstr("pavex: " + home_.Path("none") + ": cannot be watched: cannot be read: No such"),
                      HasSubstr(home_.Path("home") + ": cannot be watched: the client itself writes into it"),
                      HasSubstr("/dev/null: cannot be watched: is neither a file nor a folder")));
    EXPECT_EQ(home_.RunJson({"watch", "--json"})["sources"].size(), 1U);
}

TEST_F(ProgramWatch, TakesSourcesOffTheList)
{
    Watch({Mail()});
    EXPECT_EQ(home_.Run({"watch", "--remove", Mail()}).out, Mail() + ": not watched any more; its notes stay\n");
    ExpectOneClearLine(home_.Run({"watch", "--remove", Mail()}), 1, {Mail(), "is not watched"});
    EXPECT_EQ(home_.RunJson({"watch", "--json"})["sources"].size(), 0U);
}

TEST_F(ProgramWatch, SaysWhichEntriesOfTheListAreBad)
{
    fs::create_directories(home_.Path("home"));
    WriteWholeFile(home_.Path("home/pavex.ini"), "[Pavex]\nImportSource1=" + Mail() + "\nImportSource2=mail\n");
    const ProgramResult result = home_.Run({"watch"});
    EXPECT_EQ(result.exit, 1);
    EXPECT_THAT(result.out, HasSubstr(Mail() + ": not read yet"));
    EXPECT_EQ(result.err, "pavex: " + home_.Path("home/pavex.ini") + ": ImportSource2=mail: is no absolute path\n");
}

TEST_F(ProgramWatch, TellsWrongUse)
{
    for (const Lines& arguments : {Lines{"--remove"},
                                   {"--json", "x"},
                                   {"--prune"},
                                   {"--list", "x"},
                                   {"--remove", "--prune", "x"},
                                   {"--as", "news", "x"}}) {
        Lines command = arguments;
        command.insert(command.begin(), "watch");
        EXPECT_EQ(home_.Run(command).exit, 2) << testing::PrintToString(arguments);
    }
}

// ---- what is read in, and not indexed --------------------------------------------------------------

TEST_F(ProgramWatch, RunNamesTheDatabaseThatIsReadIntoAndNotIndexed)
{
    Deliver("quince");
    Watch({Mail()});
    const ProgramResult enabled = home_.Run({"settings", "--enable", "--yes"});
    EXPECT_EQ(enabled.exit, 0);
    EXPECT_THAT(enabled.err, HasSubstr("pavex: nothing will be indexed: there are no notes; bring some in first"));
    const std::string line = Mail() + " is read into " + home_.Path("home/data/mail.vlt") +
                             ", which is not among the indexed databases; add it with: pavex settings --add mail.vlt";
    const std::unique_ptr<Process> running = home_.Start({"run"});
    EXPECT_TRUE(Eventually([&] { return home_.Run({"watch"}).out.ends_with(line + "\n"); }));
    EXPECT_TRUE(
        Eventually([&] { return running->Error() == "pavex: " + line + ", then end pavex run and start it again\n"; }));
    running->Signal(SIGTERM);
    EXPECT_EQ(running->Wait().exit, 0);

    ExpectOneClearLine(
        home_.Run({"search", "quince"}), 1,
        {"nothing is indexed yet: no databases are chosen", "pavex settings --add mail.vlt, then pavex index"});
    ASSERT_EQ(home_.Run({"settings", "--add", "mail.vlt"}).exit, 0);
    ExpectOneClearLine(home_.Run({"search", "quince"}), 1, {"nothing is indexed yet: index with: pavex index"});
    (void)home_.Index();
    EXPECT_EQ(Search("quince"), Lines{"quince"});
    EXPECT_THAT(home_.Run({"watch"}).out, Not(HasSubstr("indexed")));
}

// The commands of the manual page, up to the one that stays.
TEST_F(ProgramWatch, TheExampleOfTheManualPageMakesEverythingFound)
{
    Deliver("quince");
    fs::create_directories(home_.Path("lists"));
    fs::rename(home_.Path("m"), home_.Path("Maildir"));
    WriteWholeFile(home_.Path("lists/gardeners"),
                   "From ann@example.org Mon Mar  5 14:00:00 2007\n" + Message("medlar"));
    WriteWholeFile(home_.Path("calendar.ics"),
                   "BEGIN:VCALENDAR\nVERSION:2.0\nBEGIN:VEVENT\nUID:1\n"
                   "DTSTART:20070305T140000Z\nSUMMARY:Planting\nEND:VEVENT\nEND:VCALENDAR\n");
    const std::string page = ReadWholeFile(TORVIK_SOURCE_DIR "/man/pavex-watch.1");
    const std::string begin = ".Bd -literal -offset indent\n";
    const size_t first = page.find(begin, page.find(".Sh EXAMPLES")) + begin.size();
    std::string commands = page.substr(first, page.find("pavex run\n.Ed", first) - first);
    for (size_t at = commands.find("\\e\n"); at != commands.npos; at = commands.find("\\e\n"))
        commands.erase(at + 1, 1);
    ASSERT_THAT(commands, AllOf(HasSubstr("pavex watch"), HasSubstr("pavex settings")));
    Process shell(
        {"env", "HOME=" + home_.Path(""), "sh", "-ec",
         "pavex() { " TORVIK_BINARY_DIR "/bin/pavex --home " + home_.Path("home") + " \"$@\"; }\n" + commands},
        home_.Path("shell"));
    const ProgramResult example = shell.Wait();
    EXPECT_EQ(example.exit, 0) << commands << example.err;
    EXPECT_THAT(home_.Run({"watch"}).out, Not(HasSubstr("indexed")));
    ASSERT_EQ(home_.Run({"index", "--full-speed"}).exit, 0);
    EXPECT_EQ(Search("quince"), Lines{"quince"});
    EXPECT_EQ(Search("medlar"), Lines{"medlar"});
    EXPECT_EQ(Search("planting"), Lines{"Planting"});
}

TEST_F(ProgramWatch, HintsMayBePastedWhateverAPathHolds)
{
    const std::string odd = home_.Path("od d/it's;c");
    fs::create_directories(odd);
    Watch({odd});
    const std::string out = home_.Run({"watch", home_.Path("od d")}).out;
    const std::string hint = "pavex watch --remove ";
    ASSERT_THAT(out, HasSubstr(hint));
    const size_t begin = out.find(hint) + hint.size();
    const std::string word = out.substr(begin, out.find('\n', begin) - begin);
    Process shell({"sh", "-c", TORVIK_BINARY_DIR "/bin/pavex --home " + home_.Path("home") + " watch --remove " + word},
                  home_.Path("shell"));
    EXPECT_EQ(shell.Wait().out, odd + ": not watched any more; its notes stay\n");
}

}  // namespace
}  // namespace pavex
