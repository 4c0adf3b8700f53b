// client/app/settings_command.cpp: pavex settings: the settings dialog, a window or driven by options or commands.
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <memory>
#include <optional>

#include "client/app/addin_host.h"
#include "client/app/command.h"
#include "client/app/indexing_state.h"
#include "client/windows/text_front_end.h"

namespace pavex {

namespace {

// The dialog's controls, as the dialog resource numbers them.
constexpr int kOk = 1;
constexpr int kCancel = 2;
constexpr int kEnable = 3382;
constexpr int kDatabases = 3383;
constexpr int kAdd = 3384;
constexpr int kRemove = 3385;
constexpr int kFrequency = 3395;
constexpr int kReindex = 3393;

struct SettingsArguments {
    bool show = false;
    bool json = false;
    bool text = false;
    bool enable = false;
    bool disable = false;
    bool reindex = false;
    bool yes = false;
    bool no = false;
    std::vector<std::string> add;
    std::vector<std::string> remove;
    std::optional<int> frequency;
    std::string toggles[5];
};

struct ToggleOption {
    const char* flag;
    int control;
    const char* help;
};
constexpr ToggleOption kToggles[] = {
    {"--encrypted", 3388, "index sealed notes"},
    {"--drafts", 3389, "index unsent mail"},
    {"--history", 3390, "index the history"},
    {"--discussion", 3391, "index discussion postings"},
    {"--idle", 3392, "index only when the machine is idle"},
};

// What the options ask for, as a user would do it: switching on first, because the other controls can be
// used only then, and switching off last.
std::vector<TextAction> ChangesAskedFor(const SettingsArguments& arguments)
{
    std::vector<TextAction> changes;
    if (arguments.enable)
        changes.push_back(SetCheckAction(kEnable, true, true));
    for (const std::string& name : arguments.remove)
        changes.push_back(RemoveFileAction(kRemove, kDatabases, DatabasePath(name)));
    for (const std::string& name : arguments.add)
        changes.push_back(AddFileAction(kAdd, kDatabases, DatabasePath(name)));
    for (size_t i = 0; i < std::size(kToggles); ++i)
        if (!arguments.toggles[i].empty())
            changes.push_back(SetCheckAction(kToggles[i].control, arguments.toggles[i] == "on"));
    if (arguments.frequency)
        changes.push_back(TypeTextAction(kFrequency, std::to_string(*arguments.frequency)));
    if (arguments.reindex)
        changes.push_back(SetCheckAction(kReindex, true));
    if (arguments.disable)
        changes.push_back(SetCheckAction(kEnable, false));
    return changes;
}

TextFrontEndOptions FrontEndFor(const SettingsArguments& arguments)
{
    TextFrontEndOptions options;
    options.script = ChangesAskedFor(arguments);
    const bool changes = !options.script.empty();
    if (arguments.show || arguments.json)
        options.script.push_back(arguments.json ? ShowJsonAction() : ShowTextAction());
    options.interactive = arguments.text;
    if (!options.interactive)
        options.script.push_back(PressAction(changes ? kOk : kCancel));
    options.answers = arguments.yes ? BoxAnswers::Yes : arguments.no ? BoxAnswers::No : BoxAnswers::Ask;
    if (options.interactive || isatty(STDIN_FILENO) != 0)
        options.input = STDIN_FILENO;
    options.out = &std::cout;
    options.messages = &std::cerr;
    return options;
}

// A question that was declined, or a box that told of a failure, is a failure of what was asked for.
int Judge(const TextFrontEnd& frontEnd, bool changesAsked)
{
    if (!frontEnd.Error().empty())
        return Fail(frontEnd.Error());
    for (const ShownBox& shown : frontEnd.Boxes())
        if (shown.box.canCancel && shown.answer != kBoxAnswerOk)
            return Fail("not changed: the question \"" + shown.box.caption + "\" was not answered with yes (--yes)");
    if (changesAsked && frontEnd.Result() != kOk)
        return Fail("not changed");
    return kExitDone;
}

// Nothing is to be done or printed: the user wants to see the window.
bool WantsWindow(const SettingsArguments& arguments)
{
    return !arguments.text && !arguments.show && !arguments.json && ChangesAskedFor(arguments).empty();
}

// Indexing is on, and yet there is nothing that it could index.
void WarnOfNoDatabases()
{
    const std::vector<Slot> slots = ReadSlots();
    if (std::ranges::none_of(slots, [](const Slot& slot) { return slot.number != kHistorySlot; }))
        Warn("nothing will be indexed: " + HowToIndex(slots));
}

int RunSettings(const SettingsArguments& arguments)
{
    if (WantsWindow(arguments)) {
        if (!arguments.yes && !arguments.no)
            return ShowSettingsWindow();
        Fail("--yes and --no answer the questions of what other options change");
        return kExitWrongUse;
    }
    std::string error;
    const std::unique_ptr<AddIn> addIn = AddIn::Load(&error);
    if (addIn == nullptr)
        return Fail(error);
    TextFrontEnd frontEnd(FrontEndFor(arguments));
    SetFrontEnd(&frontEnd);
    addIn->OpenDialog();
    SetFrontEnd(nullptr);
    if (const std::string failed = TakeFailedWrite(); !failed.empty())
        return Fail(failed);
    const int exit = Judge(frontEnd, !ChangesAskedFor(arguments).empty());
    if (exit == kExitDone && arguments.enable)
        WarnOfNoDatabases();
    return exit;
}

}  // namespace

CommandFunction ConfigureSettings(CLI::App& options)
{
    const auto values = std::make_shared<SettingsArguments>();
    options.add_flag("--show", values->show, "print every control and status line");
    options.add_flag("--json", values->json, "print them as JSON");
    options.add_flag("--text", values->text, "take commands from standard input in place of the window");
    CLI::Option* const enable = options.add_flag("--enable", values->enable, "switch indexing on");
    options.add_flag("--disable", values->disable, "switch indexing off")->excludes(enable);
    options.add_option("--add", values->add, "add a database to the list")->type_name("FILE")->take_all();
    options.add_option("--remove", values->remove, "take a database off the list")->type_name("FILE")->take_all();
    options.add_option("--frequency", values->frequency, "minutes between two cycles")->check(CLI::Range(1, 99));
    for (size_t i = 0; i < std::size(kToggles); ++i)
        options.add_option(kToggles[i].flag, values->toggles[i], kToggles[i].help)->check(CLI::IsMember({"on", "off"}));
    options.add_flag("--reindex", values->reindex, "index everything again from scratch");
    CLI::Option* const yes = options.add_flag("--yes", values->yes, "answer questions with yes");
    options.add_flag("--no", values->no, "answer questions with no")->excludes(yes);
    return [values] { return RunSettings(*values); };
}

}  // namespace pavex
