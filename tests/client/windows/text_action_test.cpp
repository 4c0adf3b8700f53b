// tests/client/windows/text_action_test.cpp
#include "client/windows/text_action.h"

#include <gmock/gmock.h>

#include "tests/client/windows/recording_procedure.h"

namespace {

using pavex::ActionKind;
using pavex::TextAction;
using testing::ElementsAre;
using testing::HasSubstr;

// kind, control, list, on, index, text
auto Fields(const TextAction& action)
{
    return std::make_tuple(action.kind, action.control, action.list, action.on, action.index, action.text);
}

TextAction Parsed(const std::string& line)
{
    RecordedDialog dialog;
    TextAction action;
    std::string error;
    EXPECT_TRUE(pavex::ParseAction(dialog, line, &action, &error)) << line << ": " << error;
    return action;
}

std::string Refusal(const std::string& line)
{
    RecordedDialog dialog;
    TextAction action;
    std::string error;
    EXPECT_FALSE(pavex::ParseAction(dialog, line, &action, &error)) << line;
    return error;
}

TEST(TextAction, ReadsEveryCommand)
{
    EXPECT_EQ(Fields(Parsed("check 3382 on")), Fields(pavex::SetCheckAction(3382, true)));
    EXPECT_EQ(Fields(Parsed("  check\tidle   off ")), Fields(pavex::SetCheckAction(3392, false)));
    EXPECT_EQ(Fields(Parsed("type frequency 10")), Fields(pavex::TypeTextAction(3395, "10")));
    EXPECT_EQ(Fields(Parsed("type 3395")), Fields(pavex::TypeTextAction(3395, "")));
    EXPECT_EQ(Fields(Parsed("select 0")), Fields(pavex::SelectAction(3383, 0)));
    EXPECT_EQ(Fields(Parsed("press ok")), Fields(pavex::PressAction(1)));
    EXPECT_EQ(Fields(Parsed("press 3397")), Fields(pavex::PressAction(3397)));
    EXPECT_EQ(Fields(Parsed("add /my data/a.vlt")), Fields(pavex::AddFileAction(3384, 3383, "/my data/a.vlt")));
    EXPECT_EQ(Fields(Parsed("remove a.vlt")), Fields(pavex::RemoveFileAction(3385, 3383, "a.vlt")));
    EXPECT_EQ(Fields(Parsed("tick")), Fields(pavex::TickAction()));
    EXPECT_EQ(Fields(Parsed("show")), Fields(pavex::ShowTextAction()));
    EXPECT_EQ(Fields(Parsed("show json")), Fields(pavex::ShowJsonAction()));
    EXPECT_EQ(Parsed("help").kind, ActionKind::Help);
}

TEST(TextAction, SaysWhatItDoesNotUnderstand)
{
    const std::vector<std::string> refusals = {
        Refusal("dance"),         Refusal("check 3395 on"), Refusal("check 3382"),
        Refusal("check 3382 up"), Refusal("press nothing"), Refusal("select x"),
        Refusal("select 1 2"),    Refusal("add"),           Refusal("show all")};
    EXPECT_THAT(refusals,
                ElementsAre("no command \"dance\"; help lists them", "no check \"3395\" in this dialog",
                            "check CONTROL on|off", "check CONTROL on|off", "no button \"nothing\" in this dialog",
                            "select INDEX, counted from 0", "select INDEX, counted from 0", "add FILE", "show [json]"));
}

TEST(TextAction, HelpsWithALineForEachCommand)
{
    const std::string help = pavex::ActionHelp();
    for (const char* usage : {"check CONTROL on|off", "type CONTROL TEXT", "select INDEX", "press BUTTON", "add FILE",
                              "remove FILE", "tick", "show [json]", "help"})
        EXPECT_THAT(help, HasSubstr(std::string(usage) + " "));
}

}  // namespace
