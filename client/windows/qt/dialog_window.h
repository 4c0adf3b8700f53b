// client/windows/qt/dialog_window.h: a dialog as a window: its model shown, and the user's hand on it.
#pragma once

#include <QDialog>
#include <QTimer>
#include <map>
#include <vector>

#include "client/windows/dialog.h"

namespace pavex {

// Every control is shown by the widget that carries its id.  After each action, and each timer, the whole
// model is shown again.  Closes when the dialog has ended.
class DialogWindow : public QDialog {
public:
    // dialog: borrowed, outlives the window.  parent: what it stands before; may be null.
    explicit DialogWindow(Dialog& dialog, QWidget* parent = nullptr);

    // The Escape key and the window's close button: presses Cancel.
    void reject() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void FindWidgets();
    void ConnectWidgets();
    void Refresh();
    void ShowMnemonics();
    void ShowProgress();
    void MakeRoom();
    void WaitForTimer();
    void SendTimers();

    Dialog& dialog_;
    std::map<int, QWidget*> widgets_;  // by control
    std::vector<int> mnemonicControls_;
    std::vector<QString> mnemonicTexts_;  // as they are shown
    QTimer timer_;
};

}  // namespace pavex
