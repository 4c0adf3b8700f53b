// client/windows/qt/note_window.h: a note in a window: its page, and the way along its links and back.
#pragma once

#include <QDialog>
#include <QLabel>
#include <QPushButton>
#include <QTextBrowser>
#include <vector>

#include "client/windows/note_view.h"

namespace pavex {

class NoteWindow : public QDialog {
public:
    explicit NoteWindow(const NoteWindowContent& content);

protected:
    void changeEvent(QEvent* event) override;

private:
    void AddButtons();
    void ShowPage();
    void RenderPage();
    void ShowProblem(const std::string& problem);
    void Follow(const QUrl& link);
    void GoBack();
    void Copy();

    const NoteWindowContent& content_;
    std::vector<NoteView> notes_;  // the one that is shown, behind those that led to it
    std::vector<int> places_;      // how far down each of those was read
    QTextBrowser* page_;           // these belong to the window
    QLabel* problem_;
    QPushButton* back_;
};

}  // namespace pavex
