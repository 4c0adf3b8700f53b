// tests/client/import/source_walk_test.cpp: which files of a folder are read.
#include "client/import/source_walk.h"

#include <algorithm>
#include <filesystem>
#include <vector>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tests/support/temporary_directory.h"

namespace pavex {
namespace {

class SourceWalkTest : public testing::Test {
protected:
    void Write(const std::string& name, const std::string& content = "x") const
    {
        const std::filesystem::path path = folder_ / name;
        std::filesystem::create_directories(path.parent_path());
        WriteWholeFile(path.string(), content);
    }

    // Paths below the folder, with "unread" and "draft" after those that are known to be, and "deleted".
    std::vector<std::string> Walk(const std::string& start = "")
    {
        std::vector<std::string> found;
        const size_t prefix = folder_.Path().string().size() + 1;
        const WalkHandler handler{[&](const SourceFile& file) {
                                      found.push_back(file.path.substr(prefix) +
                                                      (file.unread == true ? " unread" : "") +
                                                      (file.draft ? " draft" : "") + (file.deleted ? " deleted" : ""));
                                      return true;
                                  },
                                  [&](const std::string& path, const std::string& reason) {
                                      unreadable_.push_back(path.substr(prefix) + ": " + reason);
                                  }};
        EXPECT_TRUE(WalkSource(start.empty() ? folder_.Path().string() : folder_ / start, handler));
        return found;
    }

    TemporaryDirectory folder_;
    std::vector<std::string> unreadable_;
};

using Found = std::vector<std::string>;

TEST_F(SourceWalkTest, VisitsASingleFile)
{
    Write("one.eml");
    EXPECT_EQ(Walk("one.eml"), Found{"one.eml"});
}

TEST_F(SourceWalkTest, VisitsFoldersInTheOrderOfNames)
{
    for (const char* name : {"b/2", "a/1", "c", "b/1", "a/sub/0"})
        Write(name);
    EXPECT_EQ(Walk(), (Found{"c", "a/1", "a/sub/0", "b/1", "b/2"}));
}

TEST_F(SourceWalkTest, ReadsTheFlagsOfAMaildir)
{
    for (const char* name : {"m/new/1", "m/new/2:2,S", "m/cur/3:2,S", "m/cur/4:2,", "m/cur/5:2,DS", "m/cur/6:2,ST",
                             "m/cur/7;2,RS", "m/cur/8", "m/tmp/9", "m/.Work/cur/1:2,"})
        Write(name);
    EXPECT_EQ(Walk(), (Found{"m/.Work/cur/1:2, unread", "m/cur/3:2,S", "m/cur/4:2, unread", "m/cur/5:2,DS draft",
                             "m/cur/6:2,ST deleted", "m/cur/7;2,RS", "m/cur/8 unread", "m/new/1 unread",
                             "m/new/2:2,S unread"}));
}

TEST_F(SourceWalkTest, ReadsTheFlagsOfAMaildirAlsoByItsParts)
{
    for (const char* name : {"m/new/1", "m/cur/2:2,", "m/cur/3:2,S", "other/cur"})
        Write(name);
    EXPECT_EQ(Walk("m/cur"), (Found{"m/cur/2:2, unread", "m/cur/3:2,S"}));
    EXPECT_EQ(Walk("m/new"), (Found{"m/new/1 unread"}));
    EXPECT_EQ(Walk("m/cur/2:2,"), (Found{"m/cur/2:2, unread"}));
    EXPECT_EQ(Walk("other/cur"), (Found{"other/cur"}));
}

TEST_F(SourceWalkTest, TakesFilesThatAreOnlyNamedLikeControlFiles)
{
    const Found names = {"courier.eml", "dovecot-migration.eml", "dovecot.eml", "maildirsize.eml", "subscriptions.eml"};
    for (const std::string& name : names)
        Write(name);
    EXPECT_EQ(Walk(), names);
}

TEST_F(SourceWalkTest, PassesOverKeepersAndControlFiles)
{
    for (const char* name : {".noindex", "m/cur/.gitkeep", "m/dovecot.index.cache", "m/dovecot-uidlist", "inbox.msf",
                             "m/maildirsize", ".hidden/mail.eml", "m/cur/1:2,S"})
        Write(name);
    Write("empty", "");
    Write("empty.eml", "");
    EXPECT_EQ(Walk(), (Found{"empty.eml", "m/cur/1:2,S"}));
}

TEST_F(SourceWalkTest, EntersEachFolderOnceWhateverLinksLeadThere)
{
    Write("a/mail.eml");
    std::filesystem::create_directory_symlink(folder_.Path(), folder_ / "a/loop");
    std::filesystem::create_directory_symlink(folder_ / "a", folder_ / "b");
    std::filesystem::create_symlink("nowhere", folder_ / "a/broken.eml");
    EXPECT_EQ(Walk(), Found{"a/mail.eml"});
    EXPECT_EQ(unreadable_, Found{"a/broken.eml: cannot be opened: No such file or directory"});
}

TEST_F(SourceWalkTest, IsNotHeldUpByPipes)
{
    ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(Walk(), Found{});
    EXPECT_EQ(unreadable_, Found{"pipe: is neither a file nor a folder"});
}

TEST_F(SourceWalkTest, ReportsWhatMayNotBeRead)
{
    if (::geteuid() == 0)
        GTEST_SKIP() << "everything may be read by this user";
    Write("closed/mail.eml");
    std::filesystem::permissions(folder_ / "closed", std::filesystem::perms::none);
    EXPECT_EQ(Walk(), Found{});
    std::filesystem::permissions(folder_ / "closed", std::filesystem::perms::owner_all);
    EXPECT_EQ(unreadable_, Found{"closed: cannot be opened: Permission denied"});
}

TEST_F(SourceWalkTest, StopsWhenTold)
{
    Write("a");
    Write("b");
    int seen = 0;
    EXPECT_FALSE(WalkSource(folder_.Path().string(), {[&](const SourceFile&) { return ++seen < 1; }, {}}));
    EXPECT_EQ(seen, 1);
}

TEST_F(SourceWalkTest, TellsTheFoldersItEntersAndThoseThatAreNoMaildirYet)
{
    for (const char* name : {"m/cur/1", "m/tmp/2", "m/.Work/new/3", "m/.Empty/x", "notes/a.md", ".git/HEAD"})
        Write(name);
    std::vector<std::string> folders;
    const size_t prefix = folder_.Path().string().size();
    WalkHandler handler;
    handler.unreadable = [](const std::string&, const std::string&) {};
    handler.folder = [&](const std::string& path, bool entered) {
        folders.push_back(path.substr(prefix) + (entered ? "" : " passed over"));
        return true;
    };
    EXPECT_TRUE(WalkSource(folder_.Path().string(), handler));
    EXPECT_EQ(folders, (Found{"", "/.git passed over", "/m", "/m/.Empty passed over", "/m/.Work", "/m/.Work/new",
                              "/m/cur", "/notes"}));
    handler.folder = [&](const std::string&, bool) { return false; };
    EXPECT_FALSE(WalkSource(folder_.Path().string(), handler));
}

TEST_F(SourceWalkTest, VisitsSingleFilesAsTheWholeWalkWould)
{
    const Found names = {"m/new/1", "m/cur/2:2,", "m/cur/3:2,S", "m/cur/cur/4", "one.eml", "sub/new/5:2,DS"};
    for (const std::string& name : names)
        Write(name);
    Write("outside/cur/6");
    Found whole = Walk();
    const size_t prefix = folder_.Path().string().size() + 1;
    const auto visit = [&](const std::string& source, const Found& files) {
        Found found;
        Found paths;
        for (const std::string& file : files)
            paths.push_back(folder_ / file);
        const WalkHandler handler{[&](const SourceFile& file) {
                                      found.push_back(file.path.substr(prefix) +
                                                      (file.unread == true ? " unread" : "") +
                                                      (file.draft ? " draft" : ""));
                                      return true;
                                  },
                                  [](const std::string&, const std::string&) {}};
        EXPECT_TRUE(WalkFiles(source.empty() ? folder_.Path().string() : folder_ / source, paths, handler));
        return found;
    };
    Found all = names;
    all.emplace_back("outside/cur/6");
    Found one = visit("", all);
    std::sort(whole.begin(), whole.end());
    std::sort(one.begin(), one.end());
    EXPECT_EQ(one, whole);
    EXPECT_EQ(visit("m", {"m/new/1", "outside/cur/6", "m/new/gone", "m/cur"}), (Found{"m/new/1 unread"}));
    Write("m/cur/dovecot-uidlist");
    EXPECT_EQ(visit("m", {"m/cur/dovecot-uidlist"}), Found{});
}

TEST_F(SourceWalkTest, KnowsTheFilesOfAMaildirByTheirPlace)
{
    for (const char* name : {"m/new/1", "m/cur/2", "other/cur/3"})
        Write(name);
    const std::string root = folder_.Path().string();
    EXPECT_TRUE(IsMaildirFile(root, folder_ / "m/new/1"));
    EXPECT_TRUE(IsMaildirFile(folder_ / "m/cur", folder_ / "m/cur/2"));
    EXPECT_TRUE(IsMaildirFile(root, folder_ / "other/cur/3"));
    EXPECT_FALSE(IsMaildirFile(folder_ / "other/cur", folder_ / "other/cur/3")) << "no Maildir without both";
    EXPECT_FALSE(IsMaildirFile(root, folder_ / "m/1"));
    EXPECT_FALSE(IsMaildirFile(root, folder_ / "m/new/cur/1"));
}

}  // namespace
}  // namespace pavex
