// client/windows/dialog_text.cpp: a dialog's state in writing.
#include "client/windows/dialog_text.h"

#include <nlohmann/json.hpp>

#include "client/store/charset.h"
#include "client/store/printable_text.h"
#include "client/windows/dialog.h"

namespace pavex {

namespace {

std::string LeadOf(const Control& control)
{
    switch (control.kind) {
    case ControlKind::Check:
        return control.checked == 1 ? "[x]" : "[ ]";
    case ControlKind::Button:
        return "( )";
    case ControlKind::List:
    case ControlKind::Edit:
    case ControlKind::Text:
        return "   ";
    }
    return "";
}

std::string StateOf(const Control& control)
{
    std::string state;
    if (!control.enabled)
        state += " (disabled)";
    if (!control.visible)
        state += " (hidden)";
    return state;
}

std::string LineOf(const Control& control)
{
    std::string line = LeadOf(control) + " " + std::to_string(control.id) + " " + control.name + ":";
    if (!control.text.empty())
        line += " " + PrintableLine(Utf8FromScs(control.text));
    return line + StateOf(control) + "\n";
}

nlohmann::ordered_json JsonOf(const Control& control)
{
    nlohmann::ordered_json json = {{"kind", KindName(control.kind)}, {"text", Utf8FromScs(control.text)}};
    if (control.kind == ControlKind::Check)
        json["checked"] = control.checked == 1;
    if (control.kind == ControlKind::List) {
        json["items"] = nlohmann::ordered_json::array();
        for (const std::string& entry : control.entries)
            json["items"].push_back(Utf8FromScs(entry));
        json["selected"] = control.selected;
    }
    json["enabled"] = control.enabled;
    json["visible"] = control.visible;
    return json;
}

}  // namespace

std::string DialogAsText(const Dialog& dialog)
{
    std::string text = PrintableLine(dialog.Title()) + "\n";
    for (const Control& control : dialog.Controls()) {
        text += LineOf(control);
        for (size_t i = 0; i < control.entries.size(); ++i) {
            const bool selected = static_cast<long>(i) == control.selected;
            text += std::string(selected ? "  > " : "    ") + PrintableLine(Utf8FromScs(control.entries[i])) + "\n";
        }
    }
    return text;
}

std::string DialogAsJson(const Dialog& dialog)
{
    nlohmann::ordered_json controls = nlohmann::ordered_json::object();
    for (const Control& control : dialog.Controls())
        controls[std::to_string(control.id)] = JsonOf(control);
    return EscapeUnprintable(nlohmann::ordered_json{{"controls", std::move(controls)}}.dump());
}

}  // namespace pavex
