// tests/dialog/dialog_fixture.h: the settings dialog on a real ini file and real databases, driven by the
// text front end.
// The string table is the test's own: a text reads "<number>", the formats 109 and 110 "number:%d/%d/%d".
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "client/windows/dialog.h"
#include "client/windows/text_front_end.h"
#include "dialog/control_ids.h"
#include "platform/store.h"
#include "tests/support/temporary_directory.h"

// What a run of the dialog showed and ended with.
struct DialogRun {
    std::vector<nlohmann::json> shown;  // the "controls" of each show, in order
    std::vector<pavex::ShownBox> boxes;
    std::string error;
    long result = -1;
};

class DialogFixture : public testing::Test {
protected:
    DialogFixture();
    ~DialogFixture() override;

    // The settings as a new process would read them.
    void ReloadSettings();
    // Runs the dialog through the add-in's own call.
    DialogRun Drive(std::vector<pavex::TextAction> script, pavex::BoxAnswers answers = pavex::BoxAnswers::No);
    // Opens the dialog and looks into it without a front end; it is cancelled afterwards.
    void Inspect(const std::function<void(pavex::Dialog& dialog)>& look);

    void SetIni(const std::string& name, const std::string& value);
    std::string Ini(const std::string& name);  // "(absent)" when there is none
    std::string IniFile() const { return ReadWholeFile(home_ / "pavex.ini"); }
    // Makes an empty database in the data directory; its path.
    std::string MakeDatabase(const std::string& file);
    // Saves databases in slots 0, 1, ...; made when they are not there.
    std::vector<std::string> SaveDatabases(size_t count);
    // The paths in the slots, "" for a free one, without the free ones at the end.
    std::vector<std::string> Slots();

    TemporaryDirectory home_;
};

// A time on 5 March 2007, GMT.
TIMEDATE SomeTime(unsigned int hour);
nlohmann::json Items(const nlohmann::json& controls);
bool IsEnabledIn(const nlohmann::json& controls, int id);
bool IsVisibleIn(const nlohmann::json& controls, int id);
bool IsCheckedIn(const nlohmann::json& controls, int id);
std::string TextIn(const nlohmann::json& controls, int id);
