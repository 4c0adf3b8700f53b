// tests/client/watch/watch_list_test.cpp: the list in the ini file, written by hand and by the program.
#include "client/watch/watch_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "client/store/host.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;
using As = ImportOptions::As;
using Outcome = AddedSource::Outcome;

class WatchListTest : public testing::Test {
protected:
    WatchListTest()
    {
        std::string error;
        EXPECT_TRUE(StartHost(FindPlaces(home_ / "home"), &error)) << error;
    }
    ~WatchListTest() override { (void)TakeFailedWrite(); }

    static std::string Ini() { return ReadWholeFile(CurrentPlaces().ini); }
    static void WriteIni(const std::string& variables) { WriteWholeFile(CurrentPlaces().ini, "[Pavex]\n" + variables); }
    // "NUMBER PATH as INTO prune" of each.
    static Lines Listed()
    {
        Lines lines;
        for (const auto& [number, source] : ReadWatchList().entries)
            lines.push_back(std::to_string(number) + " " + source.path + " " + NameOf(source.as) +
                            (source.into.empty() ? "" : " " + source.into) + (source.prune ? " prune" : ""));
        return lines;
    }
    static Outcome Add(const WatchedSource& source) { return AddToWatchList(source).outcome; }
    std::string Folder(const std::string& name) const
    {
        fs::create_directories(home_ / name);
        return home_ / name;
    }

    TemporaryDirectory home_;
};

TEST_F(WatchListTest, IsReadFromTheIniFile)
{
    WriteIni("ImportSource1=/home/ann/Maildir\nimportsource20=/b c\nIMPORTSOURCE20AS=discussion\n"
             "ImportSource3=/d.ics\nImportSource3As=mail\nImportSource3Into=own.vlt\nImportSource3Prune=1\n"
             "ImportSources=9\nImportSource0=x\nImportSource=x\nGDSFreqMinutes=5\n");
    EXPECT_EQ(Listed(), (Lines{"1 /home/ann/Maildir mail", "3 /d.ics mail own.vlt prune", "20 /b c discussion"}));
    EXPECT_EQ(ReadWatchList().problems, Lines{});
    EXPECT_EQ(DatabaseOf(ReadWatchList().entries.at(1).source), CurrentPlaces().data + "/own.vlt");
    EXPECT_EQ(DatabaseOf(ReadWatchList().entries.at(0).source), "");
}

TEST_F(WatchListTest, LeavesBadEntriesOutAndSaysWhy)
{
    WriteIni("ImportSource1=Maildir\nImportSource2=/b\nImportSource2As=news\nImportSource3=/c\nImportSource3Prune=yes\n"
             "ImportSource4Into=x.vlt\nImportSource5=/e\nImportSource5Often=1\nImportSource6=/good\n"
             "ImportSource7=/good/../good\nImportSource8=\n");
    EXPECT_EQ(Listed(), Lines{"6 /good mail"});
    const std::string& ini = CurrentPlaces().ini;
    EXPECT_THAT(
        ReadWatchList().problems,
        testing::UnorderedElementsAre(ini + ": ImportSource1=Maildir: is no absolute path",
                                      ini + ": ImportSource2As=news: is neither mail nor discussion",
                                      ini + ": ImportSource3Prune=yes: is neither 0 nor 1",
                                      ini + ": there are options of ImportSource4, but it is not there itself",
                                      ini + ": ImportSource5Often=1: is no option of a source",
                                      ini + ": ImportSource7=/good/../good: is the same source as ImportSource6",
                                      ini + ": ImportSource8=: is no absolute path"));
}

TEST_F(WatchListTest, RefusesWhatAnImportWouldChange)
{
    const std::string& data = CurrentPlaces().data;
    EXPECT_THAT(WhyItChangesItself({home_.Path().string()}), testing::HasSubstr(data));
    EXPECT_THAT(WhyItChangesItself({data}), testing::HasSubstr(data));
    EXPECT_THAT(WhyItChangesItself({fs::path(CurrentPlaces().log).parent_path().string()}), testing::HasSubstr("log"));
    EXPECT_THAT(WhyItChangesItself({Folder("mail"), As::kMail, home_ / "mail/sub/own.vlt"}),
                testing::HasSubstr("mail/sub/own.vlt"));
    EXPECT_EQ(WhyItChangesItself({Folder("mail"), As::kMail, home_ / "mail/.hidden/own.vlt"}), "");
    EXPECT_EQ(WhyItChangesItself({home_ / "mail"}), "");
    fs::create_symlink(home_.Path(), home_ / "link");
    EXPECT_NE(WhyItChangesItself({home_ / "link"}), "");
    WriteIni("ImportSource1=" + data + "\n");
    EXPECT_EQ(Listed(), Lines{});
    EXPECT_THAT(ReadWatchList().problems, testing::ElementsAre(testing::HasSubstr("the client itself writes into it")));
}

TEST_F(WatchListTest, LetsAHomeWithHiddenFoldersBeASource)
{
    std::string error;
    Places places = CurrentPlaces();
    places.data = home_ / "ann/.local/share/pavex";
    places.log = home_ / "ann/.local/state/pavex/pavex.log";
    places.caches = home_ / "ann/.cache";
    ASSERT_TRUE(StartHost(places, &error)) << error;
    EXPECT_EQ(WhyItChangesItself({home_ / "ann"}), "");
    EXPECT_NE(WhyItChangesItself({home_ / "ann/.local"}), "");
}

TEST_F(WatchListTest, AddsASourceAndKeepsAllElse)
{
    WriteIni("; mine\nGDSFreqMinutes=9\nImportSource1=/a\nImportSource2As=bad\n");
    EXPECT_EQ(Add({"/b", As::kDiscussion, "/x.vlt", true}), Outcome::kAdded);
    EXPECT_EQ(Add({"/c"}), Outcome::kAdded);
    EXPECT_THAT(Ini(), testing::HasSubstr("; mine\nGDSFreqMinutes=9\nImportSource1=/a\nImportSource2As=bad\n"));
    EXPECT_EQ(Listed(), (Lines{"1 /a mail", "3 /b discussion /x.vlt prune", "4 /c mail"}));
}

TEST_F(WatchListTest, GivesASourceThatIsListedItsNewOptions)
{
    EXPECT_EQ(Add({"/a", As::kDiscussion, "x.vlt", true}), Outcome::kAdded);
    EXPECT_EQ(Add({"/a", As::kDiscussion, "x.vlt", true}), Outcome::kUnchanged);
    EXPECT_EQ(Add({"/a", As::kMail, "", true}), Outcome::kChanged);
    EXPECT_EQ(Listed(), Lines{"1 /a mail prune"});
    EXPECT_EQ(Add({"/a"}), Outcome::kChanged);
    EXPECT_EQ(Ini(), "[Pavex]\nImportSource1=/a\n");
}

TEST_F(WatchListTest, KnowsASourceByThePlaceItLeadsTo)
{
    const std::string mail = Folder("mail");
    fs::create_symlink(mail, home_ / "link");
    EXPECT_EQ(Add({home_ / "link"}), Outcome::kAdded);
    EXPECT_EQ(Add({mail}), Outcome::kUnchanged);
    EXPECT_EQ(Listed(), Lines{"1 " + home_ / "link" + " mail"});
}

TEST_F(WatchListTest, DoesNotListWhatIsReadWithAnotherSource)
{
    const std::string mail = Folder("mail");
    const std::string work = Folder("mail/work");
    const std::string hidden = Folder("mail/.work");
    ASSERT_EQ(Add({mail}), Outcome::kAdded);
    const AddedSource part = AddToWatchList({work});
    EXPECT_EQ(part.outcome, Outcome::kCovered);
    EXPECT_EQ(part.covering, mail);
    EXPECT_EQ(Add({hidden}), Outcome::kAdded) << "it may not be read with it";
    EXPECT_EQ(Add({work, As::kDiscussion}), Outcome::kAdded) << "as something else";
    EXPECT_EQ(Add({Folder("mailing")}), Outcome::kAdded);
}

TEST_F(WatchListTest, TellsWhichSourcesArePartOfANewOne)
{
    const std::string work = Folder("mail/work");
    const std::string lists = Folder("mail/lists");
    ASSERT_EQ(Add({work}), Outcome::kAdded);
    ASSERT_EQ(Add({lists, As::kDiscussion}), Outcome::kAdded);
    const AddedSource added = AddToWatchList({home_ / "mail"});
    EXPECT_EQ(added.outcome, Outcome::kAdded);
    EXPECT_EQ(added.covered, Lines{work});
    EXPECT_EQ(Listed().size(), 3U);
}

TEST_F(WatchListTest, TakesASourceOffWithItsOptions)
{
    const std::string mail = Folder("mail");
    fs::create_symlink(mail, home_ / "link");
    WriteIni("GDSFreqMinutes=9\nImportSource1=" + mail +
             "\nImportSource1Prune=1\nImportSource1As=news\nImportSource2=/b\nImportSource2As=discussion\n");
    EXPECT_EQ(RemoveFromWatchList("/none"), RemovedSource::kNotListed);
    EXPECT_EQ(RemoveFromWatchList(home_ / "link"), RemovedSource::kRemoved) << "a bad entry, by another name";
    EXPECT_EQ(Ini(), "[Pavex]\nGDSFreqMinutes=9\nImportSource2=/b\nImportSource2As=discussion\n");
    EXPECT_EQ(RemoveFromWatchList("/b"), RemovedSource::kRemoved);
    EXPECT_EQ(RemoveFromWatchList("/b"), RemovedSource::kNotListed);
}

TEST_F(WatchListTest, ReadsBackPathsThatALineCannotHoldAsTheyStand)
{
    const std::string odd = "/new\nline \"and\" ; = [blank] ";
    EXPECT_EQ(Add({odd}), Outcome::kAdded);
    ASSERT_EQ(ReadWatchList().entries.size(), 1U);
    EXPECT_EQ(ReadWatchList().entries[0].source.path, odd);
}

TEST_F(WatchListTest, FailsWhenTheIniFileCannotBeWritten)
{
    WriteIni("");
    fs::permissions(CurrentPlaces().ini, fs::perms::owner_read);
    EXPECT_EQ(Add({"/a"}), Outcome::kFailed);
    EXPECT_THAT(TakeFailedWrite(), testing::HasSubstr("pavex.ini"));
}

}  // namespace
}  // namespace pavex
