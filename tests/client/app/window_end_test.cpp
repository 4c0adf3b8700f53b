// tests/client/app/window_end_test.cpp: windows that are killed, that crash and that lose their display in the middle
// of a pass: the indexing state is whole, and the next pass puts the rest right.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <fstream>
#include <random>

#include "tests/client/app/changing_notes.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;

constexpr int kNotes = 60;
constexpr int kEnds = 4;  // of each kind
constexpr int kLongestMs = 60;

// No core files from the crashes.
class NoCores {
public:
    NoCores()
    {
        getrlimit(RLIMIT_CORE, &before_);
        const rlimit none{0, before_.rlim_max};
        setrlimit(RLIMIT_CORE, &none);
    }
    ~NoCores() { setrlimit(RLIMIT_CORE, &before_); }
    NoCores(const NoCores&) = delete;
    NoCores& operator=(const NoCores&) = delete;

private:
    rlimit before_{};
};

class WindowEnd : public testing::TestWithParam<const char*> {
protected:
    WindowEnd() : seed_(std::random_device()()), random_(seed_)
    {
        for (const char* const variable : {"DISPLAY", "WAYLAND_DISPLAY", "XAUTHORITY"})
            unsetenv(variable);
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    ~WindowEnd() override { unsetenv("QT_QPA_PLATFORM"); }
    void SetUp() override
    {
        if (!fs::exists(TORVIK_BINARY_DIR "/lib/libpavexqt.so"))
            GTEST_SKIP() << "built without Qt";
        PutFirstVersions(home_, kNotes);
        home_.Enable();
        // No pauses between notes, and a log entry for each.
        std::ofstream(home_.Path("home/pavex.ini"), std::ios::app)
            << "GoogleWaitTime=0\nGoogleDebug=1\nGoogleDebugLots=1\n";
    }

    // The settings, in a window of their own or in the client's, once notes are being indexed behind it, or, where
    // the changes come slowly, the pass has found none.
    //   environment  "NAME=VALUE", for the program alone: this process's own is being read by the changer's thread.
    std::unique_ptr<Process> OpenInAPass(const std::vector<std::string>& environment)
    {
        const size_t before = Log().size();
        std::vector<std::string> command = {"env"};
        command.insert(command.end(), environment.begin(), environment.end());
        if (GetParam() == std::string("desktop"))
            command.insert(command.end(), {"LD_PRELOAD=" TORVIK_BINARY_DIR "/lib/libopens_dialog.so",
                                           "ASAN_OPTIONS=verify_asan_link_order=0"});
        command.insert(command.end(), {TORVIK_BINARY_DIR "/bin/pavex", "--home", home_.Path("home"), GetParam()});
        auto window = std::make_unique<Process>(command, windows_.Path("window"));
        EXPECT_TRUE(Eventually([&] {
            const std::string added = Log().substr(before);
            return added.find("Indexing note") != std::string::npos ||
                   added.find("Nothing has changed") != std::string::npos;
        }));
        return window;
    }
    void WaitALittle()
    {
        std::this_thread::sleep_for(
            std::chrono::milliseconds(std::uniform_int_distribution<int>(0, kLongestMs)(random_)));
    }
    std::string Log() const
    {
        const std::string path = home_.Path("home/log/pavex.log");
        return fs::exists(path) ? ReadWholeFile(path) : "";
    }

    const NoCores noCores_;
    const unsigned seed_;
    std::mt19937 random_;
    ProgramHome home_;
    ProgramHome windows_;  // its own folder for the output of the windows
};
INSTANTIATE_TEST_SUITE_P(In, WindowEnd, testing::Values("settings", "desktop"),
                         [](const auto& command) { return std::string(command.param); });

TEST_P(WindowEnd, ByAKillOrACrashHarmsNoIndexingState)
{
    SCOPED_TRACE(testing::Message() << "seed " << seed_);
    {
        const Changer changer(home_, kNotes, seed_);
        for (int end = 0; end < kEnds; ++end) {
            for (const int signal : {SIGKILL, SIGSEGV}) {
                const std::unique_ptr<Process> window = OpenInAPass({});
                WaitALittle();
                window->Signal(signal);
                EXPECT_NE(window->Wait().exit, 0);
            }
        }
    }
    ExpectAWholePassPutsItRight(home_);
}

// An X server without a screen.
class Display {
public:
    explicit Display(const ProgramHome& folder)
        : out_(folder.Path("display")), server_({"Xvfb", "-displayfd", "1", "-nolisten", "tcp"}, out_)
    {
        EXPECT_TRUE(Eventually([this] { return ReadWholeFile(out_ + ".out").ends_with('\n'); }));
        number_ = ReadWholeFile(out_ + ".out");
        number_.resize(number_.find('\n'));
    }

    // What a program needs to show its windows here.
    std::vector<std::string> Environment() const { return {"DISPLAY=:" + number_, "QT_QPA_PLATFORM=xcb"}; }

    void Die()
    {
        server_.Signal(SIGTERM);
        server_.Wait();
    }

private:
    std::string out_;
    Process server_;
    std::string number_;
};

bool IsInstalled(const std::string& program)
{
    return std::system(("command -v " + program + " >/dev/null").c_str()) == 0;
}

TEST_P(WindowEnd, ByTheDeathOfTheDisplayIsToldInOneLineAndHarmsNoIndexingState)
{
    if (!IsInstalled("Xvfb"))
        GTEST_SKIP() << "there is no X server to kill (Debian package xvfb)";
    SCOPED_TRACE(testing::Message() << "seed " << seed_);
    {
        const Changer changer(home_, kNotes, seed_);
        for (int end = 0; end < kEnds; ++end) {
            Display display(windows_);
            const std::unique_ptr<Process> window = OpenInAPass(display.Environment());
            WaitALittle();
            display.Die();
            ExpectOneClearLine(window->Wait(), 1, {"the display is gone", "not saved", "indexing"});
        }
    }
    ExpectAWholePassPutsItRight(home_);
}

TEST(NoteWindowEnd, ByTheDeathOfTheDisplayIsToldInOneLine)
{
    if (!fs::exists(TORVIK_BINARY_DIR "/lib/libpavexqt.so"))
        GTEST_SKIP() << "built without Qt";
    if (!IsInstalled("Xvfb"))
        GTEST_SKIP() << "there is no X server to kill (Debian package xvfb)";
    ProgramHome home;
    const uint32_t id = home.Put("a.vlt", R"({"items": {"Form": "Memo", "Subject": "Zebra"}})").front();
    const std::string url = home.RunJson({"note", "get", "--db", "a.vlt", "--json", std::to_string(id)})["url"];
    Display display(home);
    std::vector<std::string> command = {"env", "LEAVE_OPEN=1",
                                        "LD_PRELOAD=" TORVIK_BINARY_DIR "/lib/libreads_window.so",
                                        "ASAN_OPTIONS=verify_asan_link_order=0"};
    for (const std::string& variable : display.Environment())
        command.push_back(variable);
    command.insert(command.end(),
                   {TORVIK_BINARY_DIR "/bin/pavex", "--home", home.Path("home"), "open", "--window", url});
    Process window(command, home.Path("window"));
    EXPECT_TRUE(
        Eventually([&] { return ReadWholeFile(home.Path("window.out")).find("window: Zebra") != std::string::npos; }));
    display.Die();
    const ProgramResult result = window.Wait();
    ExpectOneClearLine({result.exit, "", result.err}, 1, {"the display is gone", "the note's window"});
}

}  // namespace
}  // namespace pavex
