// tests/client/app/settings_window_test.cpp: pavex settings without options, which is the window.
// The window is shown on Qt's display without a screen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>

#include "tests/client/app/program_fixture.h"

namespace pavex {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

class SettingsWindow : public testing::Test {
protected:
    SettingsWindow()
    {
        for (const char* const variable : {"DISPLAY", "WAYLAND_DISPLAY"})
            unsetenv(variable);
        setenv("QT_QPA_PLATFORM", "offscreen", 1);
    }
    ~SettingsWindow() override { unsetenv("QT_QPA_PLATFORM"); }
    void SetUp() override
    {
        if (!fs::exists(TORVIK_BINARY_DIR "/lib/libpavexqt.so"))
            GTEST_SKIP() << "built without Qt";
    }

    std::string Log() const
    {
        return fs::exists(home_.Path("home/log/pavex.log")) ? ReadWholeFile(home_.Path("home/log/pavex.log")) : "";
    }

    ProgramHome home_;
};

TEST_F(SettingsWindow, TellsTheWayWithoutWindowsWhereThereIsNoDisplay)
{
    unsetenv("QT_QPA_PLATFORM");
    ExpectOneClearLine(home_.Run({"settings"}), 1, {"there is no display", "settings --show", "settings --help"});
    EXPECT_EQ(home_.Run({"settings", "--show"}).exit, 0);
}

TEST_F(SettingsWindow, TellsTheWayWithoutWindowsWhereTheDisplayCannotBeUsed)
{
    setenv("QT_QPA_PLATFORM", "no-such-display", 1);
    ExpectOneClearLine(home_.Run({"settings"}), 1, {"the display cannot be used", "settings --show"});
}

TEST_F(SettingsWindow, TellsTheWayWithoutWindowsWhereItsLibraryIsNotInstalled)
{
    fs::create_directory(home_.Path("bin"));
    fs::create_directory(home_.Path("lib"));
    fs::copy(TORVIK_BINARY_DIR "/bin/pavex", home_.Path("bin/pavex"));
    for (const fs::directory_entry& library : fs::directory_iterator(TORVIK_BINARY_DIR "/lib")) {
        if (library.path().filename() != "libpavexqt.so")
            fs::create_symlink(library.path(), fs::path(home_.Path("lib")) / library.path().filename());
    }
    Process program({home_.Path("bin/pavex"), "--home", home_.Path("home"), "settings"}, home_.Path("alone"));
    ExpectOneClearLine(program.Wait(), 1, {"libpavexqt.so", "settings --show", "settings --help"});
}

TEST_F(SettingsWindow, IndexesWhileItIsOpenAndEndsWellWhenAskedTo)
{
    home_.ImportSample();
    const std::unique_ptr<Process> window = home_.Start({"settings"});
    EXPECT_TRUE(Eventually([this] { return home_.CountMetafiles() > 0; }));
    window->Signal(SIGTERM);
    const ProgramResult result = window->Wait();
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(Log(), HasSubstr("The indexing thread has ended"));
}

TEST_F(SettingsWindow, IndexesNothingBesideAClientThatIsAtWork)
{
    home_.ImportSample();
    const std::unique_ptr<Process> client = home_.Start({"run"});
    EXPECT_TRUE(Eventually([this] { return Log().find("indexing thread has started") != std::string::npos; }));
    const std::unique_ptr<Process> window = home_.Start({"settings"});
    EXPECT_TRUE(Eventually([this] { return Log().find("the settings window indexes nothing") != std::string::npos; }));
    window->Signal(SIGINT);
    EXPECT_EQ(window->Wait().exit, 0);
    EXPECT_THAT(Log(), Not(HasSubstr("The indexing thread has ended")));  // the client's goes on
    client->Signal(SIGTERM);
    EXPECT_EQ(client->Wait().exit, 0);
}

TEST_F(SettingsWindow, HasTheClientsOwnWindowBesideItWhichEndsAsRunDoes)
{
    home_.ImportSample();
    const std::unique_ptr<Process> client = home_.Start({"desktop"});
    EXPECT_TRUE(Eventually([this] { return Log().find("indexing thread has started") != std::string::npos; }));
    ExpectOneClearLine(home_.Run({"index"}), 1, {"another pavex"});
    client->Signal(SIGTERM);
    const ProgramResult result = client->Wait();
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(Log(), HasSubstr("The indexing thread has ended"));
}

TEST_F(SettingsWindow, AndTheClientsOwnNeedADisplay)
{
    unsetenv("QT_QPA_PLATFORM");
    ExpectOneClearLine(home_.Run({"desktop"}), 1, {"there is no display", "pavex run"});
}

TEST_F(SettingsWindow, GivesWayToCommandsWithText)
{
    const std::string command = TORVIK_BINARY_DIR "/bin/pavex --home " + home_.Path("home") + " settings";
    Process session(
        {"sh", "-c", "printf 'check enabled on\\ncheck drafts on\\npress ok\\n' | " + command + " --text --yes"},
        home_.Path("session"));
    const ProgramResult result = session.Wait();
    EXPECT_EQ(result.exit, 0) << result.err;
    EXPECT_THAT(result.err, HasSubstr("3389 drafts"));
    EXPECT_EQ(home_.RunJson({"settings", "--show", "--json"})["controls"]["3389"]["checked"], true);
}

TEST_F(SettingsWindow, TakesNoAnswersBeforehand)
{
    for (const char* const answer : {"--yes", "--no"})
        ExpectOneClearLine(home_.Run({"settings", answer}), 2, {"--yes and --no"});
}

TEST(SettingsProgram, LoadsNoWindowToolkit)
{
    TemporaryDirectory folder;
    Process ldd({"ldd", TORVIK_BINARY_DIR "/bin/pavex"}, folder / "ldd");
    const ProgramResult result = ldd.Wait();
    ASSERT_EQ(result.exit, 0);
    EXPECT_THAT(result.out, HasSubstr("libpavexws"));
    EXPECT_THAT(result.out, Not(HasSubstr("Qt")));
}

}  // namespace
}  // namespace pavex
