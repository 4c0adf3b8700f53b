// tests/client/import/importer_test.cpp: whole imports, read again and again.
#include "client/import/importer.h"

#include <filesystem>

#include "client/store/host.h"
#include <sys/stat.h>

#include "tests/client/import/import_fixture.h"

namespace pavex {
namespace {

class ImporterTest : public ImportTest {};
using Found = std::vector<std::string>;

const std::string kFrom = "From ann@example.org Mon Mar  5 12:00:00 2007\n";

TEST_F(ImporterTest, MakesMailInTheDataDirectory)
{
    Write("a.eml", Message("1@x", "one"));
    EXPECT_EQ(Counts(Run({"a.eml"})), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(OpenMail()->Title(), "Mail");
    EXPECT_EQ(OpenMail()->Path(), options_.dataDirectory + "/mail.vlt");
}

TEST_F(ImporterTest, MakesTheDatabaseItIsTold)
{
    Write("a.eml", Message("1@x", "one"));
    options_.into = home_ / "Old letters.vlt";
    Run({"a.eml"});
    EXPECT_EQ(OpenMail()->Title(), "Old letters");
    EXPECT_EQ(Subjects(), Found{"one"});
    EXPECT_FALSE(std::filesystem::exists(options_.dataDirectory + "/mail.vlt"));
}

TEST_F(ImporterTest, TakesOneMessageFromAnMboxAMaildirAndAFileForOne)
{
    const std::string message = Message("1@x", "one", "From me\n\nto you\n");
    std::string crlf;
    for (const char c : message)
        crlf += c == '\n' ? "\r\n" : std::string(1, c);
    Write("box", kFrom + "Status: RO\n" + Message("1@x", "one", ">From me\n\nto you\n") + "\n");
    Write("maildir/cur/1:2,S", message);
    Write("one.eml", crlf);
    EXPECT_EQ(Counts(Run({"box", "maildir", "one.eml"})), "added 1 updated 0 unchanged 2 removed 0 rejected 0");
    EXPECT_EQ(Notes().at(0)["Body"], "From me\n\nto you\n");
}

TEST_F(ImporterTest, FollowsFlagsWithoutWritingNotes)
{
    Write("m/new/1", Message("1@x", "one"));
    Write("m/cur/2:2,S", Message("2@x", "two"));
    Run({"m"});
    EXPECT_EQ(UnreadSubjects(), Found{"one"});
    const auto before = Versions();
    Rename("m/new/1", "m/cur/1:2,RS");
    Rename("m/cur/2:2,S", "m/cur/2:2,");
    EXPECT_EQ(Counts(Run({"m"})), "added 0 updated 0 unchanged 2 removed 0 rejected 0");
    EXPECT_EQ(UnreadSubjects(), Found{"two"});
    EXPECT_EQ(Versions(), before);
}

TEST_F(ImporterTest, LeavesMarksThatItsUserMadeWhereTheSourceSaysNothingNew)
{
    Write("m/new/1", Message("1@x", "one"));
    Run({"m"});
    ASSERT_EQ(OpenMail()->SetUnread(UserName(), Versions().at(0).first, false), 0);
    Run({"m"});
    EXPECT_EQ(UnreadSubjects(), Found{});
}

TEST_F(ImporterTest, TurnsADraftIntoMailWhenItIsSent)
{
    Write("m/cur/1:2,DS", Message("1@x", "one"));
    Run({"m"});
    EXPECT_EQ(Notes().at(0).count("PostedDate"), 0U);
    Rename("m/cur/1:2,DS", "m/cur/1:2,S");
    EXPECT_EQ(Counts(Run({"m"})), "added 0 updated 1 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Notes().at(0)["PostedDate"], "2007-03-05T12:00:00Z");
}

TEST_F(ImporterTest, ReportsWhatTheReaderTrashedAndPrunesIt)
{
    Write("m/cur/1:2,S", Message("1@x", "one"));
    Write("m/cur/2:2,S", Message("2@x", "two"));
    Run({"m"});
    Rename("m/cur/1:2,S", "m/cur/1:2,ST");
    EXPECT_EQ(Counts(Run({"m"})), "added 0 updated 0 unchanged 1 removed 0 rejected 1");
    EXPECT_EQ(Run({"m"}).rejected[0].reason, "is marked as deleted in its mailbox");
    options_.prune = true;
    EXPECT_EQ(Counts(Run({"m"})), "added 0 updated 0 unchanged 1 removed 1 rejected 1");
    Remove("m/cur/2:2,S");
    EXPECT_EQ(Counts(Run({"m"})), "added 0 updated 0 unchanged 0 removed 1 rejected 1");
    EXPECT_EQ(Subjects(), Found{});
}

TEST_F(ImporterTest, RemovesNothingForAFileThatIsEmptyForAMoment)
{
    const std::string card = "BEGIN:VCARD\nVERSION:3.0\nFN:Ann\nUID:1\nEND:VCARD\n";
    Write("cards/a.vcf", card);
    options_.into = options_.dataDirectory + "/names.vlt";
    options_.prune = true;
    Run({"cards"});
    Write("cards/a.vcf", "");
    EXPECT_EQ(Counts(Run({"cards"})), "added 0 updated 0 unchanged 0 removed 0 rejected 1");
    Write("cards/a.vcf", card);
    EXPECT_EQ(Counts(Run({"cards"})), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
}

TEST_F(ImporterTest, UpdatesAChangedMailbox)
{
    Write("box", kFrom + Message("1@x", "one") + "\n" + kFrom + Message("2@x", "two"));
    Run({"box"});
    Write("box", kFrom + Message("2@x", "two, corrected") + "\n" + kFrom + Message("3@x", "three") + "\n");
    options_.prune = true;
    EXPECT_EQ(Counts(Run({"box"})), "added 1 updated 1 unchanged 0 removed 1 rejected 0");
    EXPECT_EQ(Subjects(), (Found{"two, corrected", "three"}));
}

TEST_F(ImporterTest, MakesADiscussionByThreads)
{
    const auto posting = [](const std::string& id, const std::string& header) {
        return kFrom + header + Message(id, id) + "\n";
    };
    Write("box", posting("1@x", "") + posting("2@x", "In-Reply-To: <1@x>\n") +
                     posting("3@x", "In-Reply-To: your message of Monday <2@x>\n") +
                     posting("4@x", "References: <1@x>\nIn-Reply-To: <2@x>\n") +
                     posting("5@x", "References: <0@x> <gone@x>\n") + posting("6@x", "References: <gone@x>\n"));
    options_.as = ImportOptions::As::kDiscussion;
    EXPECT_EQ(Counts(Run({"box"})), "added 6 updated 0 unchanged 0 removed 0 rejected 0");
    options_.into = options_.dataDirectory + "/documents.vlt";
    std::vector<std::string> forms;
    for (NoteText& note : Notes())
        forms.push_back(note["Form"]);
    EXPECT_EQ(forms,
              (Found{"MainTopic", "Response", "ResponseToResponse", "Response", "ResponseToResponse", "Response"}));
    EXPECT_EQ(Counts(Run({"box"})), "added 0 updated 0 unchanged 6 removed 0 rejected 0");
}

TEST_F(ImporterTest, PlacesPostingsThatStandBeforeTheirParents)
{
    const auto posting = [](const std::string& id, const std::string& header) {
        return kFrom + header + Message(id, id) + "\n";
    };
    Write("box", posting("3@x", "In-Reply-To: <2@x>\n") + posting("2@x", "In-Reply-To: <1@x>\n") + posting("1@x", ""));
    options_.as = ImportOptions::As::kDiscussion;
    EXPECT_EQ(Counts(Run({"box"})), "added 3 updated 0 unchanged 0 removed 0 rejected 0");
    options_.into = options_.dataDirectory + "/documents.vlt";
    std::vector<std::string> forms;
    for (NoteText& note : Notes())
        forms.push_back(note["Form"]);
    EXPECT_EQ(forms, (Found{"ResponseToResponse", "Response", "MainTopic"}));
    EXPECT_EQ(Counts(Run({"box"})), "added 0 updated 0 unchanged 3 removed 0 rejected 0");
}

TEST_F(ImporterTest, MakesMailAndADiscussionOfTheSameMessages)
{
    Write("box", kFrom + Message("1@x", "one"));
    Run({"box"});
    EXPECT_EQ(Notes().at(0)["Form"], "Memo");
    options_.as = ImportOptions::As::kDiscussion;
    EXPECT_EQ(Counts(Run({"box"})), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    options_.into = options_.dataDirectory + "/mail.vlt";
    options_.prune = true;
    EXPECT_EQ(Counts(Run({"box"})), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Notes().at(0)["Form"], "Memo");
    EXPECT_EQ(Notes().at(1)["Form"], "MainTopic");
}

TEST_F(ImporterTest, ReadsASourceNamedTwiceOnce)
{
    Write("a.eml", Message("1@x", "one"));
    EXPECT_EQ(Counts(Run({"a.eml", "a.eml"})), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
}

TEST_F(ImporterTest, FailsOnASourceThatIsNotThereAndReadsTheOthers)
{
    Write("a.eml", Message("1@x", "one"));
    ImportReport report;
    std::string error;
    EXPECT_FALSE(Import({home_ / "none", home_ / "a.eml"}, options_, {}, &report, &error));
    EXPECT_EQ(error, (home_ / "none") + ": cannot be read: No such file or directory");
    EXPECT_EQ(report.added, 1U);
}

TEST_F(ImporterTest, FailsOnASourceThatCannotBeReadAndReadsTheOthers)
{
    ASSERT_EQ(::mkfifo((home_ / "pipe").c_str(), 0600), 0);
    Write("a.eml", Message("1@x", "one"));
    ImportReport report;
    std::string error;
    EXPECT_FALSE(Import({home_ / "pipe", home_ / "a.eml"}, options_, {}, &report, &error));
    EXPECT_EQ(error, (home_ / "pipe") + ": is neither a file nor a folder");
    EXPECT_EQ(Counts(report), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
}

TEST_F(ImporterTest, UpdatesManyChangedMessagesEachOnce)
{
    const auto box = [](const std::string& suffix) {
        std::string text;
        for (int i = 0; i < 300; ++i)
            text += kFrom + Message(std::to_string(i / 2) + "@x", std::to_string(i) + suffix) + "\n";
        return text;
    };
    Write("box", box(""));
    EXPECT_EQ(Counts(Run({"box"})), "added 300 updated 0 unchanged 0 removed 0 rejected 0");
    Write("box", box(" changed") + box(" changed"));
    EXPECT_EQ(Counts(Run({"box"})), "added 0 updated 300 unchanged 300 removed 0 rejected 0");
    EXPECT_EQ(Counts(Run({"box"})), "added 0 updated 0 unchanged 600 removed 0 rejected 0");
    EXPECT_EQ(Subjects().size(), 300U);
}

TEST_F(ImporterTest, FailsOnATargetThatIsNoDatabase)
{
    Write("a.eml", Message("1@x", "one"));
    Write("bad.vlt", std::string(5000, 'x'));
    options_.into = home_ / "bad.vlt";
    ImportReport report;
    std::string error;
    EXPECT_FALSE(Import({home_ / "a.eml"}, options_, {}, &report, &error));
    EXPECT_TRUE(error.starts_with(options_.into + ": ")) << error;
}

TEST_F(ImporterTest, KeepsWhatWasReadWhenItIsEnded)
{
    std::string box;
    for (int i = 0; i < 50; ++i)
        box += kFrom + Message(std::to_string(i) + "@x", std::to_string(i)) + "\n";
    Write("box", box);
    const ImportProgressCallback endAtTen = [](const ImportProgress& progress) { return progress.entries < 10; };
    ImportReport report;
    std::string error;
    options_.prune = true;
    EXPECT_FALSE(Import({home_ / "box"}, options_, endAtTen, &report, &error));
    EXPECT_EQ(error, "the import was ended; what was read until then is kept");
    EXPECT_EQ(Subjects().size(), 10U);
    EXPECT_EQ(Counts(Run({"box"})), "added 40 updated 0 unchanged 10 removed 0 rejected 0");
}

TEST_F(ImporterTest, TellsHowFarItIs)
{
    const std::string box = kFrom + Message("1@x", "one") + "\n" + kFrom + Message("2@x", "two");
    Write("box", box);
    ImportProgress last;
    const ImportProgressCallback keep = [&](const ImportProgress& progress) {
        last = progress;
        return true;
    };
    ImportReport report;
    std::string error;
    ASSERT_TRUE(Import({home_ / "box"}, options_, keep, &report, &error)) << error;
    EXPECT_EQ(last.source, home_ / "box");
    EXPECT_EQ(last.entries, 2U);
    EXPECT_EQ(last.bytes, box.size());
    EXPECT_EQ(last.totalBytes, box.size());
}

// ---- Some files of a source alone -------------------------------------------------------------

TEST_F(ImportTest, ReadsTheFilesAloneThatItIsToldToRead)
{
    Write("m/cur/1:2,S", Message("1", "one"));
    Write("m/new/2", Message("2", "two"));
    options_.prune = true;
    options_.only = {Source("m/new/2"), Source("m/new/gone")};
    EXPECT_EQ(Counts(Run({"m"})), "added 1 updated 0 unchanged 0 removed 0 rejected 0");
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"two"}));
    EXPECT_EQ(UnreadSubjects(), (std::vector<std::string>{"two"}));
    Rename("m/new/2", "m/cur/2:2,S");
    options_.only = {Source("m/cur/2:2,S")};
    EXPECT_EQ(Counts(Run({"m"})), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(UnreadSubjects(), std::vector<std::string>{});
    options_.only.clear();
    EXPECT_EQ(Counts(Run({"m"})), "added 1 updated 0 unchanged 1 removed 0 rejected 0") << "one source, however read";
    Remove("m/cur/2:2,S");
    EXPECT_EQ(Counts(Run({"m"})), "added 0 updated 0 unchanged 1 removed 1 rejected 0");
}

TEST_F(ImportTest, TellsThatTheWholeSourceMustBeReadForAnOlderContentToGo)
{
    Write("mail/one.eml", Message("1", "draft"));
    Write("mail/two.eml", Message("2", "two"));
    (void)Run({"mail"});
    Write("mail/one.eml", Message("1", "final"));
    options_.only = {Source("mail/one.eml")};
    const ImportReport some = Run({"mail"});
    EXPECT_EQ(Counts(some), "added 0 updated 0 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(some.passedOver, 1U);
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"draft", "two"}));
    options_.only.clear();
    const ImportReport all = Run({"mail"});
    EXPECT_EQ(Counts(all), "added 0 updated 1 unchanged 1 removed 0 rejected 0");
    EXPECT_EQ(all.passedOver, 0U);
    EXPECT_EQ(Subjects(), (std::vector<std::string>{"final", "two"}));
}

}  // namespace
}  // namespace pavex
