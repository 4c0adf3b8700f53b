// tests/client/windows/dialog_text_test.cpp
#include "client/windows/dialog_text.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include "client/store/charset.h"
#include "tests/client/windows/recording_procedure.h"

namespace {

using testing::HasSubstr;

TEST(DialogText, WritesEveryControlAsJson)
{
    RecordedDialog dialog;
    const std::string path = "/\"quoted\"\n\xF0\x9F\x98\x80.vlt";
    UIXListboxAddItem(dialog.Window(), 3383, pavex::ScsFromUtf8(path).c_str());
    SendMessage(GetDlgItem(dialog.Window(), 3383), kListSetSelection, 0, 0);
    CheckDlgButton(dialog.Window(), 3382, 1);
    UIXSetDlgItemText(dialog.Window(), 3395, "12");
    EnableWindow(GetDlgItem(dialog.Window(), 3397), false);
    WINShowWindow(GetDlgItem(dialog.Window(), 3400), kShowHidden);

    const nlohmann::json controls = nlohmann::json::parse(pavex::DialogAsJson(dialog)).at("controls");
    EXPECT_EQ(controls.size(), dialog.Controls().size());
    EXPECT_EQ(controls.at("3382"), nlohmann::json({{"kind", "check"},
                                                   {"text", "Index my databases for desktop search"},
                                                   {"checked", true},
                                                   {"enabled", true},
                                                   {"visible", true}}));
    EXPECT_EQ(controls.at("3383"), nlohmann::json({{"kind", "list"},
                                                   {"text", ""},
                                                   {"items", nlohmann::json::array({path})},
                                                   {"selected", 0},
                                                   {"enabled", true},
                                                   {"visible", true}}));
    EXPECT_EQ(controls.at("3395"),
              nlohmann::json({{"kind", "edit"}, {"text", "12"}, {"enabled", true}, {"visible", true}}));
    EXPECT_EQ(controls.at("3397").at("enabled"), false);
    EXPECT_EQ(controls.at("3400").at("visible"), false);
}

TEST(DialogText, WritesAnEmptyListAsJsonWithoutASelection)
{
    RecordedDialog dialog;
    const nlohmann::json list = nlohmann::json::parse(pavex::DialogAsJson(dialog)).at("controls").at("3383");
    EXPECT_EQ(list.at("items"), nlohmann::json::array());
    EXPECT_EQ(list.at("selected"), -1);
}

TEST(DialogText, ShowsStatesMarksAndEntriesAsLines)
{
    RecordedDialog dialog;
    UIXListboxAddItem(dialog.Window(), 3383, "/a.vlt");
    UIXListboxAddItem(dialog.Window(), 3383, "/b.vlt");
    SendMessage(GetDlgItem(dialog.Window(), 3383), kListSetSelection, 1, 0);
    CheckDlgButton(dialog.Window(), 3388, 1);
    EnableWindow(GetDlgItem(dialog.Window(), 3397), false);
    WINShowWindow(GetDlgItem(dialog.Window(), 3397), kShowHidden);
    const std::string text = pavex::DialogAsText(dialog);
    EXPECT_THAT(text, HasSubstr("Desktop Search Settings\n"));
    EXPECT_THAT(text, HasSubstr("[x] 3388 encrypted: Index encrypted notes\n"));
    EXPECT_THAT(text, HasSubstr("[ ] 3389 drafts: Index drafts\n"));
    EXPECT_THAT(text, HasSubstr("    3383 databases:\n    /a.vlt\n  > /b.vlt\n"));
    EXPECT_THAT(text, HasSubstr("( ) 3397 apply: Apply (disabled) (hidden)\n"));
}

}  // namespace
