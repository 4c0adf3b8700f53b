// tests/client/app/program_users_test.cpp: two users of one machine, each with a client of their own: neither sees a
// file of the other's.  Only the administrator can become two users.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <set>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

constexpr const char* kProgram = TORVIK_BINARY_DIR "/bin/pavex";

// Until the end of the block the test itself is another user, of no group but their own, as far as files are concerned.
class Being {
public:
    explicit Being(uid_t user)
    {
        groups_.resize(static_cast<size_t>(getgroups(0, nullptr)));
        (void)getgroups(static_cast<int>(groups_.size()), groups_.data());
        isDone_ = setgroups(0, nullptr) == 0 && setegid(user) == 0 && seteuid(user) == 0;
        EXPECT_TRUE(isDone_) << std::strerror(errno);
    }
    ~Being()
    {
        EXPECT_TRUE(seteuid(0) == 0 && setegid(getgid()) == 0 && setgroups(groups_.size(), groups_.data()) == 0);
        (void)prctl(PR_SET_DUMPABLE, 1);  // lost with the change; what looks for leaks at the end wants it
    }
    Being(const Being&) = delete;
    Being& operator=(const Being&) = delete;

private:
    std::vector<gid_t> groups_;
    bool isDone_ = false;
};

// A user with a home as it is on many machines: others may look into it and into the folders that programs share, so
// that what the client makes there is private by itself or not at all.
class User {
public:
    User(const TemporaryDirectory& machine, const std::string& name, uid_t id) : home_(machine / name), id_(id)
    {
        for (const char* shared :
             {"", ".config", ".cache", ".local", ".local/share", ".local/state", "Mail", "Mail/cur", "Mail/new"}) {
            fs::create_directories(home_ / shared);
            fs::permissions(home_ / shared, fs::perms(0755));
            EXPECT_EQ(chown((home_ / shared).c_str(), id, id), 0);
        }
        before_ = Paths();
    }

    void Deliver(const std::string& subject)
    {
        const std::string path = home_ / "Mail/new" / subject;
        WriteWholeFile(path, "From: Ann <ann@example.org>\nDate: Mon, 5 Mar 2007 14:00:00 +0000\nSubject: " + subject +
                                 "\nMessage-ID: <" + subject + "@example.org>\n\nlentils\n");
        EXPECT_EQ(chown(path.c_str(), id_, id_), 0);
        before_.insert(path);
    }
    std::unique_ptr<Process> Start(const Lines& arguments)
    {
        const std::string id = std::to_string(id_);
        Lines command = {"setpriv", "--reuid=" + id, "--regid=" + id, "--clear-groups", "env"};
        for (const char* variable : {"XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_STATE_HOME",
                                     "XDG_RUNTIME_DIR", "PAVEX_HOME", "TMPDIR"})
            command.insert(command.end(), {"-u", variable});
        command.insert(command.end(), {"HOME=" + home_.string(), kProgram});
        command.insert(command.end(), arguments.begin(), arguments.end());
        return std::make_unique<Process>(command, home_.string() + "-" + std::to_string(runs_++));
    }
    std::string Run(const Lines& arguments)
    {
        const ProgramResult result = Start(arguments)->Wait();
        EXPECT_EQ(result.exit, 0) << testing::PrintToString(arguments) << result.err;
        return result.out;
    }
    // All that a user can do; ends with a client that stays.
    void UseAll()
    {
        (void)Run({"import", Home() + "/Mail"});
        (void)Run({"settings", "--enable", "--yes"});
        (void)Run({"index", "--full-speed"});
        (void)Run({"search", "lentils"});
        (void)Run({"open", "1"});
        (void)Run({"check", "--repair"});
        (void)Run({"watch", Home() + "/Mail"});
        client_ = Start({"run"});
        const std::string records = Home() + "/.local/share/pavex/watched.json";
        ASSERT_TRUE(Eventually(
            [&] { return fs::exists(records) && ReadWholeFile(records).find("\"read\": \"2") != std::string::npos; }));
    }
    void EndClient()
    {
        client_->Signal(SIGTERM);
        const ProgramResult result = client_->Wait();
        EXPECT_EQ(result.exit, 0);
        EXPECT_EQ(result.err, "");
    }
    // What there is of the client's making, below the home.
    std::set<std::string> Made() const
    {
        std::set<std::string> made = Paths();
        for (const std::string& path : before_)
            made.erase(path);
        return made;
    }
    std::string Home() const { return home_.string(); }
    uid_t Id() const { return id_; }

private:
    std::set<std::string> Paths() const
    {
        std::set<std::string> paths;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(home_))
            paths.insert(entry.path().string());
        return paths;
    }

    fs::path home_;
    uid_t id_;
    std::set<std::string> before_;  // what there was without a client
    std::unique_ptr<Process> client_;
    int runs_ = 0;
};

// Those of the paths that the user may read, change or go into.
Lines Reachable(const std::set<std::string>& paths, uid_t user)
{
    const Being being(user);
    Lines reachable;
    for (const std::string& path : paths) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        const int error = errno;
        if (file >= 0 || eaccess(path.c_str(), W_OK) == 0 || eaccess(path.c_str(), X_OK) == 0)
            reachable.push_back(path);
        else if (error != EACCES)
            reachable.push_back(path + ": " + std::strerror(error));
        if (file >= 0)
            close(file);
    }
    return reachable;
}

class ProgramUsers : public testing::Test {
protected:
    void SetUp() override
    {
        if (geteuid() != 0)
            GTEST_SKIP() << "only the administrator can become two users";
        fs::permissions(machine_.Path(), fs::perms(0755));
        ann_ = std::make_unique<User>(machine_, "ann", 12345);
        bob_ = std::make_unique<User>(machine_, "bob", 12346);
        const Being bob(bob_->Id());
        if (access(kProgram, X_OK) != 0 || access(machine_.Path().c_str(), X_OK) != 0)
            GTEST_SKIP() << "other users may not reach the program or the folder for temporary files";
    }

    TemporaryDirectory machine_;
    std::unique_ptr<User> ann_;
    std::unique_ptr<User> bob_;
};

TEST_F(ProgramUsers, NeverSeeEachOthersFilesWhileBothClientsRun)
{
    ann_->Deliver("quince");
    bob_->Deliver("medlar");
    ann_->UseAll();
    bob_->UseAll();
    for (const auto& [owner, other] : {std::pair(ann_.get(), bob_.get()), std::pair(bob_.get(), ann_.get())}) {
        SCOPED_TRACE(owner->Home());
        std::set<std::string> known;
        for (const char* file :
             {".config/pavex/pavex.ini", ".local/share/pavex/client.lock", ".local/share/pavex/watch.lock",
              ".local/share/pavex/watched.json", ".local/share/pavex/mail.vlt", ".local/share/pavex/bookmark.vlt",
              ".local/state/pavex/pavex.log", ".local/state/pavex/last-search", ".cache/pavex/search/xapiandb",
              ".cache/pavex/search.lock", ".cache/Metadata"})
            known.insert(owner->Home() + "/" + file);
        const std::set<std::string> made = owner->Made();
        EXPECT_TRUE(std::includes(made.begin(), made.end(), known.begin(), known.end()));
        EXPECT_EQ(Reachable(made, other->Id()), Lines());
        EXPECT_EQ(Reachable(known, owner->Id()), Lines(known.begin(), known.end())) << "their own they can";
    }
    EXPECT_THAT(ann_->Run({"search", "lentils"}),
                testing::AllOf(testing::HasSubstr("quince"), testing::Not(testing::HasSubstr("medlar"))));
    EXPECT_THAT(bob_->Run({"search", "lentils"}),
                testing::AllOf(testing::HasSubstr("medlar"), testing::Not(testing::HasSubstr("quince"))));
    ann_->EndClient();
    bob_->EndClient();
}

TEST_F(ProgramUsers, CannotUseTheHomeOfAnother)
{
    ann_->Deliver("quince");
    const std::string home = ann_->Home() + "/notes";
    (void)ann_->Run({"--home", home, "import", ann_->Home() + "/Mail"});
    const std::set<std::string> made = ann_->Made();
    for (const Lines& command :
         {Lines{"search", "lentils"}, {"note", "list", "--db", "mail.vlt"}, {"status"}, {"run"}}) {
        Lines arguments = {"--home", home};
        arguments.insert(arguments.end(), command.begin(), command.end());
        ExpectOneClearLine(bob_->Start(arguments)->Wait(), 1, {home, "Permission denied"});
    }
    EXPECT_EQ(ann_->Made(), made);
    EXPECT_EQ(bob_->Made(), std::set<std::string>());
}

}  // namespace
}  // namespace pavex
