// tests/addin/failure_test.cpp: every single call made to fail in turn, and the process killed at every
// change of a file or database: the next complete pass puts everything right.
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "addin/lifecycle.h"
#include "addin/pass.h"
#include "client/foundation/host.h"
#include "strings/string_ids.h"
#include "tests/addin/addin_fixture.h"
#include "tests/support/fault_plan.h"

namespace {

namespace fs = std::filesystem;

class Failure : public AddInTest {
protected:
    Failure() : mail_(PathOf("mail.vlt"), "Mail")
    {
        SetVariable("GoogleWaitTime", "0");
        SetVariable("GoogleDebug", "1");
        SetVariable("GDSIndexDrafts", "1");
        SetVariable("GDSIndexDiscussion", "1");
        SetVariable("GDSIndexEncrypted", "1");
        Configure(0, mail_.Path());
    }

    // A note of each kind, one that changed its kind, one that is deleted; indexed before it changed.
    void FillMailbox()
    {
        for (const char* form : {"Person", "JournalEntry", "MainTopic", "Recipe", "Task"})
            mail_.AddPlain(form, form);
        mail_.Add("Memo");
        const uint32_t changes = mail_.AddPlain("changes its kind", "JournalEntry");
        const uint32_t goes = mail_.Add("goes");
        IndexFile(0, false);
        pavex::Note note;
        ASSERT_EQ(mail_.Db().Get(changes, &note), 0);
        note.Set(pavex::TextItem("Form", "Person"));
        ASSERT_EQ(mail_.Db().Put(&note), 0);
        mail_.Delete(goes);
        mail_.Add("comes");
    }

    // All files below the metadata root with their contents, what is half written too.
    std::map<std::string, std::string> AllFiles() const
    {
        std::map<std::string, std::string> files;
        if (fs::exists(MetadataRoot()))
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(MetadataRoot()))
                if (entry.is_regular_file())
                    files[fs::relative(entry.path(), MetadataRoot()).string()] = ReadWholeFile(entry.path().string());
        return files;
    }

    Mailbox mail_;
};

TEST_F(Failure, OfAnySingleCallLeavesNothingBehindThatTheNextPassesDoNotPutRight)
{
    FillMailbox();
    const std::string ini = ReadWholeFile(home_ / "pavex.ini");
    IndexFile(0, false);
    const std::map<std::string, std::string> expected = AllFiles();
    ASSERT_EQ(expected.size(), 7U);  // a task without any time is not indexed
    const long objects = pavex::LiveObjects();
    const int handles = pavex::OpenHandles();

    std::string name = "before the first call";
    for (int failing = 1; !name.empty(); ++failing) {
        SCOPED_TRACE(testing::Message() << "call " << failing << ", after " << name);
        StopAndReset();  // everything is to be done again
        bStopAndReset = 0;
        {
            const FaultPlan plan(failing);
            IndexFile(0, false);
            name = plan.Name();
        }
        EXPECT_EQ(pavex::LiveObjects(), objects) << name;
        EXPECT_EQ(pavex::OpenHandles(), handles) << name;
        EXPECT_EQ(GlobalContext.inProgress, 0) << name;
        IndexFile(0, false);
        if (AllFiles() == expected)
            continue;
        // A failure that counted as done (an item that seemed absent, a write that nobody checks) is put
        // right by the next pass over the note, which a reset brings.
        StopAndReset();
        bStopAndReset = 0;
        IndexFile(0, false);
        EXPECT_EQ(AllFiles(), expected) << name;
        if (HasFailure())
            break;
    }
}

TEST_F(Failure, KilledAtEveryChangeOfAFileOrDatabaseTheNextPassGivesWhatAnUndisturbedOneGives)
{
    FillMailbox();
    const fs::path before = home_.Path() / "before";
    const fs::path caches = home_.Path() / "caches";
    const fs::path ini = home_.Path() / "pavex.ini";
    fs::create_directory(before);
    fs::copy(caches, before / "caches", fs::copy_options::recursive);
    fs::copy(ini, before / "pavex.ini");
    const auto restore = [&] {
        fs::remove_all(caches);
        fs::copy(before / "caches", caches, fs::copy_options::recursive);
        fs::copy(before / "pavex.ini", ini, fs::copy_options::overwrite_existing);
    };
    // Each run is a process of its own; 0 means it was not killed.
    const auto run = [](int change) {
        const pid_t child = fork();
        if (child == 0) {
            DieAtChange(change);
            IndexFile(0, false);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    };
    ASSERT_EQ(run(0), 0);
    const std::map<std::string, std::string> expected = AllFiles();
    ASSERT_EQ(expected.size(), 7U);  // a task without any time is not indexed

    int killed = 1;
    for (int change = 1; killed != 0; ++change) {
        SCOPED_TRACE(testing::Message() << "killed at change " << change);
        restore();
        killed = run(change);
        ASSERT_EQ(run(0), 0);
        ASSERT_EQ(AllFiles(), expected);
    }
}

}  // namespace
