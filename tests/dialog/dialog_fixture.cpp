// tests/dialog/dialog_fixture.cpp: see the header.
#include "tests/dialog/dialog_fixture.h"

#include <cstdlib>
#include <filesystem>
#include <sstream>

#include "addin/lifecycle.h"
#include "client/store/host.h"
#include "client/windows/dialog_resources.h"
#include "dialog/settings_dialog.h"
#include "settings/progress.h"
#include "settings/settings.h"
#include "tests/support/test_database.h"

namespace fs = std::filesystem;

namespace {

// The notice, 116, is longer than a message box takes.
std::string StringTable()
{
    std::string table;
    for (const int id :
         {106, 107, 112, 113, 114, 115, 149, 150, 156, 157, 161, 162, 184, 185, 186, 193, 202, 203, 260, 261})
        table += "\"" + std::to_string(id) + "\" = \"<" + std::to_string(id) + ">\";\n";
    table += "\"108\" = \"<108>\";\n\"109\" = \"109:%d/%d/%d\";\n\"110\" = \"110:%d/%d/%d\";\n";
    return table + "\"116\" = \"" + std::string(1500, 'n') + "\";\n";
}

void ClearStatistics()
{
    GlobalContext.resumed = GlobalContext.upToDate = GlobalContext.historyActive = GlobalContext.inProgress = 0;
    GlobalContext.passFlag = GlobalContext.total = GlobalContext.processed = GlobalContext.database = 0;
}

}  // namespace

DialogFixture::DialogFixture()
{
    for (const char* folder : {"data", "caches", "bundle", "bundle/en.lproj"})
        fs::create_directory(home_.Path() / folder);
    setenv("LANG", "C.UTF-8", 1);
    WriteWholeFile(home_ / "bundle/en.lproj/libtorvik.strings", StringTable());
    pavex::Places places;
    places.ini = home_ / "pavex.ini";
    places.policy = home_ / "policy.ini";
    places.data = home_ / "data";
    places.caches = home_ / "caches";
    places.log = home_ / "pavex.log";
    std::string error;
    EXPECT_TRUE(pavex::StartHost(places, &error)) << error;
    pavex::SetAddInBundle(home_ / "bundle");
    ReloadSettings();
    SetJustRegistered(0);
    ClearStatistics();
    bStopAndReset = 0;
    bStartSoon = 0;
}

DialogFixture::~DialogFixture()
{
    pavex::SetFrontEnd(nullptr);
    ClearStatistics();
}

void DialogFixture::ReloadSettings()
{
    for (std::atomic<uint8_t>* off :
         {&bIniInit, &bAdminLock, &bAdminNoUI, &bIniDebug, &bIniDebugLots, &bIniIndexEncrypted, &bIniIndexDrafts,
          &bIniOnIdle, &bIniIndexDiscussion, &bIniSkipLegal, &bIniInhouse, &bIniIndexRemote})
        *off = 0;
    bIniIndexHistory = 1;
    dwIniFreq = 5;
    getIniVariables();
}

DialogRun DialogFixture::Drive(std::vector<pavex::TextAction> script, pavex::BoxAnswers answers)
{
    std::ostringstream out;
    pavex::TextFrontEndOptions options;
    options.script = std::move(script);
    options.answers = answers;
    options.out = &out;
    pavex::TextFrontEnd frontEnd(options);
    pavex::SetFrontEnd(&frontEnd);
    DialogRun run;
    run.result = RunAddInDialog(0);
    pavex::SetFrontEnd(nullptr);
    run.boxes = frontEnd.Boxes();
    run.error = frontEnd.Error();
    std::istringstream lines(out.str());
    for (std::string line; std::getline(lines, line);)
        run.shown.push_back(nlohmann::json::parse(line).at("controls"));
    return run;
}

void DialogFixture::Inspect(const std::function<void(pavex::Dialog& dialog)>& look)
{
    pavex::Dialog dialog(*pavex::FindDialogResource(kSettingsDialogResource), DlgProc);
    dialog.Send(kMessageInitialize, 0, 0);
    look(dialog);
}

void DialogFixture::SetIni(const std::string& name, const std::string& value)
{
    EXPECT_TRUE(pavex::SetVariable(name, value));
    ReloadSettings();
}

std::string DialogFixture::Ini(const std::string& name)
{
    std::string value;
    return pavex::GetVariable(name, &value) ? value : "(absent)";
}

std::string DialogFixture::MakeDatabase(const std::string& file)
{
    const std::string path = home_ / ("data/" + file);
    TestDatabase database(path);
    return path;
}

std::vector<std::string> DialogFixture::SaveDatabases(size_t count)
{
    std::vector<std::string> paths;
    for (size_t slot = 0; slot < count; ++slot) {
        paths.push_back(MakeDatabase("db" + std::to_string(slot) + ".vlt"));
        SetDbPath(static_cast<int>(slot), paths.back().c_str());
    }
    return paths;
}

std::vector<std::string> DialogFixture::Slots()
{
    std::vector<std::string> paths;
    for (int slot = 0; slot < kDatabaseSlots; ++slot) {
        char path[kMaxDbPathBytes + 1] = "";
        GetDbPath(slot, path, kMaxDbPathBytes);
        paths.emplace_back(path);
    }
    while (!paths.empty() && paths.back().empty())
        paths.pop_back();
    return paths;
}

TIMEDATE SomeTime(unsigned int hour)
{
    return TimeConstruct(2454165, hour * 360000);
}

nlohmann::json Items(const nlohmann::json& controls)
{
    return controls.at("3383").at("items");
}

bool IsEnabledIn(const nlohmann::json& controls, int id)
{
    return controls.at(std::to_string(id)).at("enabled");
}

bool IsVisibleIn(const nlohmann::json& controls, int id)
{
    return controls.at(std::to_string(id)).at("visible");
}

bool IsCheckedIn(const nlohmann::json& controls, int id)
{
    return controls.at(std::to_string(id)).at("checked");
}

std::string TextIn(const nlohmann::json& controls, int id)
{
    return controls.at(std::to_string(id)).at("text");
}
