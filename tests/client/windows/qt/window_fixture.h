// tests/client/windows/qt/window_fixture.h: the settings dialog in its window, used as a person does: clicks
// and keys on real widgets, with the add-in's own dialog procedure behind them.
// Runs on the display of QT_QPA_PLATFORM, which is "offscreen" unless set.
#pragma once

#include <QDialog>
#include <QFileDialog>
#include <QMainWindow>
#include <QMessageBox>
#include <QTest>
#include <QTimer>
#include <deque>
#include <functional>

#include "client/windows/qt/qt_front_end.h"
#include "tests/dialog/dialog_fixture.h"

// A message box as the user saw it.
struct SeenBox {
    std::string text;
    std::string caption;
    QMessageBox::Icon icon;
    std::vector<std::string> buttons;  // as they stand, left to right
    std::string defaultButton;
};

class WindowFixture : public DialogFixture {
protected:
    WindowFixture();
    ~WindowFixture() override;

    // Opens the dialog through the add-in's own call, and lets the user at it once it is on the screen.  What
    // is still open afterwards is closed.  Returns what the dialog ended with.
    long Open(const std::function<void()>& use);
    // The same window for a procedure of the test's own.
    long Open(DialogProcedure procedure, const std::function<void()>& use);

    // Only while it is open.
    QDialog& Window() { return *window_; }
    unsigned long Handle() { return frontEnd_.dialog->Window(); }  // as the C calls know it
    QWidget* Widget(int id);
    template <typename Kind> Kind* The(int id) { return dynamic_cast<Kind*>(Widget(id)); }
    const pavex::Control& Model(int id) { return *std::as_const(*frontEnd_.dialog).Find(id); }

    void Click(int id);
    // A click on an entry of the list.
    void ClickEntry(int row, Qt::KeyboardModifiers modifiers = {});
    void Type(int id, const char* text);
    // To whatever has the focus.
    void Key(Qt::Key key, Qt::KeyboardModifiers modifiers = {});
    // The control that has the focus; 0 when none has.
    int Focus();

    // What the user will do with the next box, the next file chooser.  A box that nobody expects fails the
    // test and is closed.
    void NextBox(std::function<void(QMessageBox& box)> answer);
    void NextChooser(std::function<void(QFileDialog& chooser)> answer);
    const std::vector<SeenBox>& Boxes() const { return boxes_; }

private:
    struct WatchedFrontEnd : pavex::QtFrontEnd {
        void Run(pavex::Dialog& opened) override
        {
            dialog = &opened;
            QtFrontEnd::Run(opened);
            dialog = nullptr;
        }
        pavex::Dialog* dialog = nullptr;
    };
    long Run(const std::function<long()>& run, const std::function<void()>& use);
    void LookForModals();

    WatchedFrontEnd frontEnd_;
    QDialog* window_ = nullptr;
    QTimer watch_;
    std::deque<std::function<void(QMessageBox&)>> boxAnswers_;
    std::deque<std::function<void(QFileDialog&)>> chooserAnswers_;
    std::vector<SeenBox> boxes_;
};

// The client's own window; the test fails when there is none.
QMainWindow& ClientWindowShown();

// Answers for NextBox: a click on a button, a key.
std::function<void(QMessageBox&)> Answer(QMessageBox::StandardButton button);
std::function<void(QMessageBox&)> AnswerByKey(Qt::Key key);
// Answers for NextChooser.
std::function<void(QFileDialog&)> Choose(const std::string& path);
std::function<void(QFileDialog&)> ChooseNothing();
