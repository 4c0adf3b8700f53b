// client/windows/dialog_text.h: a dialog's state in writing.
#pragma once

#include <string>

namespace pavex {

class Dialog;

// One line a control in the dialog's order, the entries of a list below it; UTF-8.
// In neither text anything is left that a terminal would obey.
std::string DialogAsText(const Dialog& dialog);
// {"controls":{"3382":{"kind":"check","text":"...","checked":true,"enabled":true,"visible":true},
//              "3383":{"kind":"list","text":"","items":["..."],"selected":0,...},...}}, one line, UTF-8.
// selected is -1 for none.
std::string DialogAsJson(const Dialog& dialog);

}  // namespace pavex
