// client/windows/dialog.cpp: a dialog as a model, and what a user can do in it.
#include "client/windows/dialog.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <utility>

#include "client/store/charset.h"
#include "client/store/host.h"
#include "client/windows/command_handles.h"
#include "client/windows/dialog_resources.h"
#include "client/windows/resource_text.h"
#include "client/windows/window_table.h"

namespace pavex {

namespace {

// What a command message carries above the control's id.
constexpr unsigned long kNotifyClicked = 0;
constexpr unsigned long kNotifySelectionChanged = 1;
constexpr unsigned long kNotifyTextChanged = 0x300;

unsigned long CommandOf(int id, unsigned long notification)
{
    return notification << 16 | (static_cast<unsigned long>(id) & 0xFFFF);
}

std::string Described(const Control& control)
{
    return std::to_string(control.id) + " (" + control.name + ")";
}

bool Refuse(std::string* error, std::string why)
{
    *error = std::move(why);
    return false;
}

}  // namespace

const char* KindName(ControlKind kind)
{
    switch (kind) {
    case ControlKind::Button:
        return "button";
    case ControlKind::Check:
        return "check";
    case ControlKind::List:
        return "list";
    case ControlKind::Edit:
        return "edit";
    case ControlKind::Text:
        return "text";
    }
    return "";
}

uint64_t SteadyMilliseconds()
{
    using namespace std::chrono;
    return static_cast<uint64_t>(duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count());
}

Dialog::Dialog(const DialogResource& resource, DialogProcedure procedure)
    : window_(RegisterWindow(this, 0)), title_(ResourceText(resource.number, {}, resource.title)),
      defaultButton_(resource.defaultButton), cancelButton_(resource.cancelButton), procedure_(procedure)
{
    controls_.reserve(resource.controls.size());
    for (const ControlRow& row : resource.controls) {
        Control control;
        control.id = row.id;
        control.kind = row.kind;
        control.name = row.name;
        control.text = ScsFromUtf8(ResourceText(resource.number, row.id, row.text));
        control.handle = RegisterWindow(this, row.id);
        controls_.push_back(std::move(control));
    }
}

Dialog::~Dialog()
{
    for (const Control& control : controls_)
        UnregisterWindow(control.handle);
    UnregisterWindow(window_);
}

const Control* Dialog::Find(int id) const
{
    const auto found = std::find_if(controls_.begin(), controls_.end(), [id](const Control& c) { return c.id == id; });
    return found == controls_.end() ? nullptr : &*found;
}

Control* Dialog::Find(int id)
{
    return const_cast<Control*>(std::as_const(*this).Find(id));
}

const Control* Dialog::FindNamed(std::string_view numberOrName) const
{
    int id = 0;
    const char* end = numberOrName.data() + numberOrName.size();
    const auto read = std::from_chars(numberOrName.data(), end, id);
    if (read.ec == std::errc() && read.ptr == end)
        return Find(id);
    const auto found = std::find_if(controls_.begin(), controls_.end(),
                                    [numberOrName](const Control& c) { return c.name == numberOrName; });
    return found == controls_.end() ? nullptr : &*found;
}

// What one message changes in the settings is written together: each write waits for the disk, and the user for all.
int Dialog::Send(unsigned int message, unsigned long wParam, long lParam)
{
    const VariableBatch batch;
    return Ended() || procedure_ == nullptr ? 0 : procedure_(window_, message, wParam, lParam);
}

void Dialog::End(long result)
{
    if (!Ended())
        result_ = result;  // the first end counts: the procedure is not called after it
}

Control* Dialog::Usable(int id, ControlKind kind, std::string* error)
{
    Control* control = Find(id);
    if (Ended())
        *error = "the dialog has ended";
    else if (control == nullptr)
        *error = "the dialog has no control " + std::to_string(id);
    else if (control->kind != kind)
        *error = "control " + Described(*control) + " is a " + KindName(control->kind) + ", not a " + KindName(kind);
    else if (!control->visible)
        *error = "control " + Described(*control) + " is hidden";
    else if (!control->enabled)
        *error = "control " + Described(*control) + " is disabled";
    else
        return control;
    return nullptr;
}

bool Dialog::Press(int id, std::string* error)
{
    if (Usable(id, ControlKind::Button, error) == nullptr)
        return false;
    Send(kMessageCommand, CommandOf(id, kNotifyClicked), 0);
    return true;
}

bool Dialog::PressDefault(std::string* error)
{
    if (Usable(defaultButton_, ControlKind::Button, error) == nullptr)
        return false;
    Send(kMessageCommand, CommandHandleOf(defaultButton_), 0);
    return true;
}

bool Dialog::Toggle(int id, std::string* error)
{
    Control* control = Usable(id, ControlKind::Check, error);
    if (control == nullptr)
        return false;
    control->checked = control->checked == 1 ? 0 : 1;
    Send(kMessageCommand, CommandOf(id, kNotifyClicked), 0);
    return true;
}

bool Dialog::Type(int id, std::string_view utf8, std::string* error)
{
    Control* control = Usable(id, ControlKind::Edit, error);
    if (control == nullptr)
        return false;
    std::string text = ScsFromUtf8(utf8);
    if (Utf16FromScs(text).size() > control->editLimit) {
        return Refuse(error, "control " + Described(*control) + " takes at most " + std::to_string(control->editLimit) +
                                 " characters");
    }
    control->text = std::move(text);
    Send(kMessageCommand, CommandOf(id, kNotifyTextChanged), 0);
    return true;
}

bool Dialog::Select(int id, long index, std::string* error)
{
    Control* control = Usable(id, ControlKind::List, error);
    if (control == nullptr)
        return false;
    if (index < 0 || static_cast<size_t>(index) >= control->entries.size()) {
        return Refuse(error, "control " + Described(*control) + " has no entry " + std::to_string(index) + "; it has " +
                                 std::to_string(control->entries.size()));
    }
    control->selected = index;
    Send(kMessageCommand, CommandOf(id, kNotifySelectionChanged), 0);
    return true;
}

bool Dialog::StartTimer(unsigned long id, uint32_t periodMs)
{
    if (periodMs == 0)
        return false;
    std::erase_if(timers_, [id](const DialogTimer& timer) { return timer.id == id; });
    timers_.push_back({id, periodMs, SteadyMilliseconds() + periodMs});
    return true;
}

void Dialog::SendDueTimers(uint64_t nowMs)
{
    // A procedure may start timers while it is called, so the ones due are noted first.
    std::vector<unsigned long> due;
    for (DialogTimer& timer : timers_) {
        if (timer.dueMs <= nowMs) {
            timer.dueMs = nowMs + timer.periodMs;
            due.push_back(timer.id);
        }
    }
    for (const unsigned long id : due)
        Send(kMessageTimer, id, 0);
}

std::optional<uint64_t> Dialog::MillisecondsToNextTimer(uint64_t nowMs) const
{
    std::optional<uint64_t> shortest;
    for (const DialogTimer& timer : timers_) {
        const uint64_t wait = timer.dueMs > nowMs ? timer.dueMs - nowMs : 0;
        shortest = std::min(shortest.value_or(wait), wait);
    }
    return shortest;
}

void Dialog::SendAllTimers()
{
    const std::vector<DialogTimer> all = timers_;
    for (const DialogTimer& timer : all)
        Send(kMessageTimer, timer.id, 0);
}

}  // namespace pavex
