// client/windows/qt/qt_front_end.h: dialogs, message boxes and the file chooser as windows of Qt.
#pragma once

#include <QApplication>
#include <QSocketNotifier>
#include <memory>

#include "client/windows/window_plugin.h"

namespace pavex {

// Needs a QApplication.
class QtFrontEnd : public WindowFrontEnd {
public:
    void Run(Dialog& dialog) override;
    int MessageBox(const MessageBoxRequest& box) override;
    bool ChooseFile(std::string* path) override;
    void RunClient(const ClientWindowContent& content) override;
    void ShowNote(const NoteWindowContent& content) override;

    // Closes every window, abandoning dialogs and cancelling questions.
    static void CloseAll();
    // Does so as soon as there is something to read from the descriptor, which is borrowed.
    void CloseOn(int descriptor);

private:
    Dialog* dialog_ = nullptr;  // the one that is open; its OK and Cancel name those of boxes
    std::unique_ptr<QSocketNotifier> closeRequest_;
};

}  // namespace pavex
