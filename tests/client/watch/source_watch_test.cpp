// tests/client/watch/source_watch_test.cpp: changes of files and folders into changes of sources.
#include "client/watch/source_watch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>

#include "tests/support/eventually.h"
#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;
using Changes = std::set<std::string>;

constexpr int kSource = 7;

// "file PATH" and so on; a source other than kSource in front.
std::string TextOf(const SourceChange& change, const std::string& root)
{
    std::string text = change.source == kSource ? "" : std::to_string(change.source) + " ";
    switch (change.kind) {
    case SourceChange::Kind::kFile:
        text += "file ";
        break;
    case SourceChange::Kind::kAttributes:
        text += "attributes ";
        break;
    case SourceChange::Kind::kGone:
        text += "gone ";
        break;
    case SourceChange::Kind::kFolders:
        return text + "folders";
    case SourceChange::Kind::kAnything:
        return text + "anything";
    }
    return text + change.path.substr(root.size() + 1);
}

// With the system's own events.
class SourceWatchTest : public testing::Test {
protected:
    SourceWatchTest() : events_(OpenFolderEvents(&error_)), watch_(events_.get())
    {
        for (const char* folder : {"m/cur", "m/new", "m/tmp", "notes/sub"})
            fs::create_directories(folder_ / folder);
    }

    std::string Root() const { return folder_.Path().string(); }
    void Write(const std::string& name, const std::string& content = "x") const
    {
        WriteWholeFile(folder_ / name, content);
    }
    void Rename(const std::string& from, const std::string& to) const { fs::rename(folder_ / from, folder_ / to); }
    SourceWatch::Placed Place(const std::string& name, int source = kSource)
    {
        return watch_.Place(source, folder_ / name, [] { return true; });
    }
    // The changes that the system has told of until now.
    Changes Read()
    {
        Changes changes;
        watch_.Read([&](const SourceChange& change) { changes.insert(TextOf(change, Root())); });
        return changes;
    }

    TemporaryDirectory folder_;
    std::string error_;
    std::unique_ptr<FolderEvents> events_;
    SourceWatch watch_;
};

TEST_F(SourceWatchTest, SeesANewMessageOfAMaildir)
{
    const SourceWatch::Placed placed = Place("m");
    EXPECT_TRUE(placed.changed);
    EXPECT_EQ(placed.canonicalPath, fs::canonical(folder_ / "m").string());
    Write("m/tmp/1");
    EXPECT_THAT(Read(), IsEmpty()) << "not delivered yet";
    Rename("m/tmp/1", "m/new/1");
    EXPECT_THAT(Read(), ElementsAre("file m/new/1"));
    Write("m/tmp/2");
    fs::create_hard_link(folder_ / "m/tmp/2", folder_ / "m/new/2");
    fs::remove(folder_ / "m/tmp/2");
    EXPECT_THAT(Read(), ElementsAre("file m/new/2"));
}

TEST_F(SourceWatchTest, TakesAMessageThatWasReadForTheSameOne)
{
    Write("m/new/1");
    (void)Place("m");
    Rename("m/new/1", "m/cur/1:2,S");
    EXPECT_THAT(Read(), ElementsAre("file m/cur/1:2,S"));
    Rename("m/cur/1:2,S", "elsewhere");
    EXPECT_THAT(Read(), ElementsAre("gone m/cur/1:2,S"));
    Rename("elsewhere", "m/cur/1:2,RS");
    fs::remove(folder_ / "m/cur/1:2,RS");
    EXPECT_THAT(Read(), ElementsAre("file m/cur/1:2,RS", "gone m/cur/1:2,RS"));
}

TEST_F(SourceWatchTest, TakesAnotherFileThatWasRenamedForOneThatWentAndOneThatCame)
{
    Write("notes/a.md");
    (void)Place("notes");
    Rename("notes/a.md", "notes/b.md");
    EXPECT_THAT(Read(), ElementsAre("file notes/b.md", "gone notes/a.md"));
}

TEST_F(SourceWatchTest, PassesOverWhatAnImportWouldNotRead)
{
    (void)Place("m");
    (void)Place("notes", 8);
    for (const char* name : {"m/tmp/1", "m/dovecot.index.log", "m/cur/.nfs1", "m/dovecot-uidlist.lock",
                             "notes/.a.md.swp", "notes/inbox.msf", "other"})
        Write(name);
    EXPECT_THAT(Read(), IsEmpty());
}

TEST_F(SourceWatchTest, SeesAFileThatEditorsReplaceAndOthersWriteTo)
{
    Write("cal.ics");
    Write("beside");
    ASSERT_TRUE(Place("cal.ics").changed);
    Write("beside", "xy");
    EXPECT_FALSE(Place("cal.ics").changed);
    (void)Read();
    Write("cal.ics", "xy");
    EXPECT_THAT(Read(), ElementsAre("file cal.ics"));
    Write("cal.ics~new", "xyz");
    EXPECT_THAT(Read(), IsEmpty());
    Rename("cal.ics~new", "cal.ics");
    EXPECT_TRUE(Read().contains("folders"));
    EXPECT_TRUE(Place("cal.ics").changed) << "another file of the name";
    (void)Read();
    Write("cal.ics", "xyza");
    EXPECT_THAT(Read(), ElementsAre("file cal.ics"));
}

TEST_F(SourceWatchTest, FollowsFoldersThatComeMoveAndGo)
{
    (void)Place("notes");
    fs::create_directories(folder_ / "notes/new/deep");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_TRUE(Place("notes").changed);
    EXPECT_FALSE(Place("notes").changed);
    (void)Read();
    Write("notes/new/deep/a.md");
    EXPECT_THAT(Read(), ElementsAre("file notes/new/deep/a.md"));
    Rename("notes/new/deep", "notes/sub/deep");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_TRUE(Place("notes").changed);
    (void)Read();
    Write("notes/sub/deep/b.md");
    EXPECT_THAT(Read(), ElementsAre("file notes/sub/deep/b.md")) << "under its new name alone";
    fs::remove_all(folder_ / "notes/sub");
    EXPECT_TRUE(Read().contains("folders"));
    EXPECT_TRUE(Place("notes").changed);
}

TEST_F(SourceWatchTest, SeesAHiddenFolderBecomeAMaildir)
{
    fs::create_directories(folder_ / "m/.Work");
    (void)Place("m");
    Write("m/.Work/a");
    fs::create_directory(folder_ / "m/.Work/tmp");
    EXPECT_THAT(Read(), IsEmpty());
    fs::create_directory(folder_ / "m/.Work/new");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_TRUE(Place("m").changed);
    (void)Read();
    Write("m/.Work/new/1");
    EXPECT_THAT(Read(), ElementsAre("file m/.Work/new/1"));
}

TEST_F(SourceWatchTest, WaitsForASourceThatIsNotThereYet)
{
    const SourceWatch::Placed placed = Place("later/on/mail");
    EXPECT_FALSE(placed.changed);
    EXPECT_EQ(placed.canonicalPath, "");
    Write("else");
    EXPECT_THAT(Read(), IsEmpty());
    fs::create_directory(folder_ / "later");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_FALSE(Place("later/on/mail").changed);
    fs::create_directories(folder_ / "later/on");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_FALSE(Place("later/on/mail").changed);
    fs::create_directory(folder_ / "later/on/mail");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_TRUE(Place("later/on/mail").changed);
}

TEST_F(SourceWatchTest, SeesASourceThatGoesAndComesBack)
{
    (void)Place("m");
    Rename("m", "away");
    EXPECT_TRUE(Read().contains("folders"));
    EXPECT_TRUE(Place("m").changed);
    (void)Read();
    Write("away/new/1");
    EXPECT_THAT(Read(), IsEmpty()) << "it is not the source any more";
    for (const char* folder : {"m/cur", "m/new", "m/tmp"})
        fs::create_directories(folder_ / folder);
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_TRUE(Place("m").changed);
    (void)Read();
    Write("m/new/1");
    EXPECT_THAT(Read(), ElementsAre("file m/new/1"));
}

TEST_F(SourceWatchTest, SeesASourceReplacedByOneOfTheSameFolders)
{
    (void)Place("m");
    fs::remove_all(folder_ / "m");
    for (const char* folder : {"m/cur", "m/new", "m/tmp"})
        fs::create_directories(folder_ / folder);
    EXPECT_TRUE(Read().contains("folders"));
    EXPECT_TRUE(Place("m").changed);
}

TEST_F(SourceWatchTest, SeesAFolderAboveTheSourceMove)
{
    fs::create_directories(folder_ / "a/b/mail");
    (void)Place("a/b/mail");
    Rename("a", "z");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_TRUE(Place("a/b/mail").changed);
}

TEST_F(SourceWatchTest, FollowsASourceBehindASymbolicLink)
{
    fs::create_symlink(folder_ / "m", folder_ / "link");
    EXPECT_EQ(Place("link").canonicalPath, fs::canonical(folder_ / "m").string());
    Write("m/new/1");
    EXPECT_THAT(Read(), ElementsAre("file m/new/1"));
    fs::remove(folder_ / "link");
    fs::create_symlink(folder_ / "notes", folder_ / "link");
    EXPECT_TRUE(Read().contains("folders"));
    EXPECT_TRUE(Place("link").changed);
    (void)Read();
    Write("notes/a.md");
    Write("m/new/2");
    EXPECT_THAT(Read(), ElementsAre("file notes/a.md"));
}

TEST_F(SourceWatchTest, SeesTheTargetOfASymbolicLinkComeBack)
{
    fs::create_directories(folder_ / "disk/mail");
    fs::create_symlink("disk/mail", folder_ / "second");
    fs::create_symlink(folder_ / "second", folder_ / "link");
    EXPECT_FALSE(Place("link").canonicalPath.empty());
    for (const char* goes : {"disk/mail", "disk"}) {
        SCOPED_TRACE(goes);
        Rename(goes, "away");
        EXPECT_TRUE(Read().contains("folders"));
        EXPECT_EQ(Place("link").canonicalPath, "");
        (void)Read();
        Rename("away", goes);
        EXPECT_THAT(Read(), ElementsAre("folders"));
        EXPECT_EQ(Place("link").canonicalPath, fs::canonical(folder_ / "disk/mail").string());
    }
}

TEST_F(SourceWatchTest, SeesALinkBetweenChange)
{
    fs::create_symlink("m", folder_ / "second");
    fs::create_symlink("second", folder_ / "link");
    (void)Place("link");
    fs::remove(folder_ / "second");
    fs::create_symlink("notes", folder_ / "second");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_EQ(Place("link").canonicalPath, fs::canonical(folder_ / "notes").string());
    fs::remove(folder_ / "second");
    fs::create_symlink("link", folder_ / "second");
    (void)Read();
    EXPECT_EQ(Place("link").canonicalPath, "") << "they lead round in a circle";
}

TEST_F(SourceWatchTest, FollowsASymbolicLinkToAFolderInTheSource)
{
    (void)Place("notes");
    fs::create_directories(folder_ / "far");
    fs::create_symlink(folder_ / "far", folder_ / "notes/near");
    EXPECT_THAT(Read(), ElementsAre("folders"));
    EXPECT_TRUE(Place("notes").changed);
    (void)Read();
    Write("far/a.md");
    EXPECT_THAT(Read(), ElementsAre("file notes/near/a.md")) << "by the path that the import knows it by";
}

TEST_F(SourceWatchTest, SeesThatAFolderMayBeReadAgain)
{
    (void)Place("notes");
    fs::permissions(folder_ / "notes/sub", fs::perms::none);
    EXPECT_THAT(Read(), ElementsAre("folders"));
    (void)Place("notes");
    fs::permissions(folder_ / "notes/sub", fs::perms::owner_all);
    EXPECT_TRUE(Read().contains("folders"));
}

TEST_F(SourceWatchTest, TellsEverySourceThatAFileBelongsTo)
{
    (void)Place("m");
    (void)Place("m/new", 8);
    Write("m/new/1");
    EXPECT_THAT(Read(), ElementsAre("8 file m/new/1", "file m/new/1"));
    watch_.Remove(kSource);
    Write("m/new/2");
    Write("m/cur/3");
    EXPECT_THAT(Read(), ElementsAre("8 file m/new/2"));
    watch_.Remove(8);
    Write("m/new/4");
    EXPECT_THAT(Read(), IsEmpty());
}

// Events that a test makes up, and a limit to the watches.
class MadeUpEvents : public FolderEvents {
public:
    int Watch(const std::string& path, Depth) override
    {
        if (watches_.size() < most_ && fs::exists(path))
            return watches_.try_emplace(path, static_cast<int>(watches_.size())).first->second;
        const auto known = watches_.find(path);
        errno = fs::exists(path) ? ENOSPC : ENOENT;
        return known == watches_.end() ? -1 : known->second;
    }
    void Unwatch(int) override {}
    int Descriptor() const override { return -1; }
    void Read(const std::function<void(const FolderEvent& event)>& take) override
    {
        for (const FolderEvent& event : std::exchange(pending_, {}))
            take(event);
    }

    std::map<std::string, int> watches_;
    size_t most_ = 1000;
    std::vector<FolderEvent> pending_;
};

TEST(SourceWatchLimits, SayThatNoMoreFoldersCanBeWatched)
{
    const TemporaryDirectory folder;
    fs::create_directories(folder / "a/b/c");
    MadeUpEvents events;
    SourceWatch watch(&events);
    const auto place = [&] { return watch.Place(kSource, folder.Path().string(), [] { return true; }); };
    events.most_ = 4;
    EXPECT_THAT(place().whyUnseen, testing::HasSubstr("fs.inotify.max_user_watches"));
    events.most_ = 1000;
    EXPECT_EQ(place().whyUnseen, "");
}

TEST(SourceWatchLimits, TellEverySourceWhenEventsWereLost)
{
    const TemporaryDirectory folder;
    MadeUpEvents events;
    SourceWatch watch(&events);
    for (const int source : {kSource, 8})
        (void)watch.Place(source, folder.Path().string(), [] { return true; });
    events.pending_ = {{}};
    Changes changes;
    watch.Read([&](const SourceChange& change) { changes.insert(TextOf(change, "")); });
    EXPECT_THAT(changes, ElementsAre("8 anything", "anything"));
}

TEST(SourceWatchLimits, SayThatTheSystemTellsNothing)
{
    const TemporaryDirectory folder;
    SourceWatch watch(nullptr, "there are too many watchers");
    const SourceWatch::Placed placed = watch.Place(kSource, folder.Path().string(), [] { return true; });
    EXPECT_EQ(placed.whyUnseen, "there are too many watchers");
    EXPECT_EQ(placed.canonicalPath, fs::canonical(folder.Path()).string());
    watch.Read([](const SourceChange&) { ADD_FAILURE(); });
    watch.Remove(kSource);
}

TEST(SourceWatchLimits, EndThePlacingWhenAsked)
{
    const TemporaryDirectory folder;
    fs::create_directories(folder / "a/b/c/d");
    MadeUpEvents events;
    SourceWatch watch(&events);
    int asked = 0;
    (void)watch.Place(kSource, folder.Path().string(), [&asked] { return ++asked < 2; });
    EXPECT_EQ(asked, 2);
}

}  // namespace
}  // namespace pavex
