// client/windows/front_end.h: what shows dialogs, message boxes and the file chooser to the user.
// A front end turns what the user does into the dialog's user actions (client/windows/dialog.h), which
// send the messages; what they mean is for the dialog procedure to decide.
#pragma once

#include <string>

namespace pavex {

class Dialog;

enum class BoxIcon { None, Question, Warning };

// A message box; text in UTF-8.
struct MessageBoxRequest {
    std::string text;
    std::string caption;
    BoxIcon icon = BoxIcon::None;
    bool canCancel = false;  // has a Cancel button beside OK
};

constexpr int kBoxAnswerOk = 1;
constexpr int kBoxAnswerCancel = 2;

class FrontEnd {
public:
    virtual ~FrontEnd() = default;
    // Shows the dialog until dialog.Ended().  Returning earlier abandons it: it then ends as cancelled.
    virtual void Run(Dialog& dialog) = 0;
    // kBoxAnswerOk or kBoxAnswerCancel.  Called from inside Run when a dialog asks.
    virtual int MessageBox(const MessageBoxRequest& box) = 0;
    // A local file, native path in UTF-8.  False when the user cancelled.
    virtual bool ChooseFile(std::string* path) = 0;
};

// The front end of the process, borrowed: it must outlive its use.  Null: no dialog can be opened, and
// message boxes are answered 0.
void SetFrontEnd(FrontEnd* frontEnd);
FrontEnd* CurrentFrontEnd();

}  // namespace pavex
