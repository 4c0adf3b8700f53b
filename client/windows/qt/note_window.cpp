// client/windows/qt/note_window.cpp: a note in a window.
#include "client/windows/qt/note_window.h"

#include <QClipboard>
#include <QEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QShortcut>
#include <QTextDocumentFragment>
#include <QUrl>
#include <QVBoxLayout>

#include "client/windows/qt/mnemonics.h"
#include "client/windows/qt/note_page.h"

namespace pavex {

namespace {

// Of labels: between the text and what it stands on, near enough to the text to be read.
QColor Quiet(const QPalette& palette)
{
    const QColor text = palette.color(QPalette::Text);
    const QColor base = palette.color(QPalette::Base);
    const auto mixed = [](int a, int b) { return (a * 2 + b) / 3; };
    return {mixed(text.red(), base.red()), mixed(text.green(), base.green()), mixed(text.blue(), base.blue())};
}

}  // namespace

NoteWindow::NoteWindow(const NoteWindowContent& content)
    : content_(content), notes_{content.note}, page_(new QTextBrowser), problem_(new QLabel), back_(new QPushButton)
{
    setWindowFlags(windowFlags() | Qt::WindowMinMaxButtonsHint);
    auto* const layout = new QVBoxLayout(this);
    page_->setOpenLinks(false);
    page_->setFrameShape(QFrame::NoFrame);
    page_->document()->setDocumentMargin(fontMetrics().height());
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(page_, 1);
    problem_->setTextFormat(Qt::PlainText);
    problem_->setWordWrap(true);
    problem_->setMargin(fontMetrics().height() / 2);
    layout->addWidget(problem_);
    AddButtons();
    connect(page_, &QTextBrowser::anchorClicked, this, [this](const QUrl& link) { Follow(link); });
    resize(fontMetrics().averageCharWidth() * 80, fontMetrics().lineSpacing() * 30);
    ShowPage();
    page_->setFocus();
}

void NoteWindow::AddButtons()
{
    auto* const row = new QHBoxLayout;
    const int margin = fontMetrics().height() / 2;
    row->setContentsMargins(margin, margin, margin, margin);
    auto* const copy = new QPushButton;
    auto* const close = new QPushButton;
    const NoteWindowTexts& words = content_.texts;
    const std::vector<QString> texts = WithMnemonics({{QString::fromStdString(words.back), "back"},
                                                      {QString::fromStdString(words.copy), "copy"},
                                                      {QString::fromStdString(words.close), "close"}});
    size_t place = 0;
    for (QPushButton* const button : {back_, copy, close}) {
        button->setText(texts[place++]);
        button->setAutoDefault(false);  // the Enter key follows a link
    }
    row->addWidget(back_);
    row->addStretch(1);
    row->addWidget(copy);
    row->addWidget(close);
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
    connect(back_, &QPushButton::clicked, this, [this] { GoBack(); });
    connect(copy, &QPushButton::clicked, this, [this] { Copy(); });
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(new QShortcut(QKeySequence::Back, this), &QShortcut::activated, this, [this] { GoBack(); });
    connect(new QShortcut(QKeySequence::Close, this), &QShortcut::activated, this, &QDialog::reject);
}

void NoteWindow::ShowPage()
{
    const NoteView& note = notes_.back();
    const QString title = QString::fromStdString(note.title.empty() ? content_.texts.untitled : note.title);
    setWindowTitle(title);
    page_->setAccessibleName(title);
    back_->setEnabled(notes_.size() > 1);
    ShowProblem(note.problem);
    RenderPage();
}

void NoteWindow::RenderPage()
{
    page_->document()->setDefaultStyleSheet("p { margin: 0 0 4px 0 } h2 { margin: 0 0 10px 0 } td.label { color: " +
                                            Quiet(palette()).name() + "; padding-right: 12px; white-space: nowrap }");
    page_->setHtml(PageOfNote(notes_.back()));
}

void NoteWindow::ShowProblem(const std::string& problem)
{
    problem_->setText(QString::fromStdString(problem));
    problem_->setVisible(!problem.empty());
}

// The page has the colours of the palette that it was made with.
void NoteWindow::changeEvent(QEvent* event)
{
    QDialog::changeEvent(event);
    if (event->type() != QEvent::PaletteChange)
        return;
    const int place = page_->verticalScrollBar()->value();
    RenderPage();
    page_->verticalScrollBar()->setValue(place);
}

void NoteWindow::Follow(const QUrl& link)
{
    const size_t place = link.path().toULongLong();
    if (link.scheme() != "note" || place >= notes_.back().body.size())
        return;
    NoteView next;
    std::string error;
    if (!content_.follow(notes_.back().body[place].url, &next, &error)) {
        ShowProblem(error);
        return;
    }
    places_.push_back(page_->verticalScrollBar()->value());
    notes_.push_back(std::move(next));
    ShowPage();
}

void NoteWindow::GoBack()
{
    if (notes_.size() < 2)
        return;
    notes_.pop_back();
    ShowPage();
    page_->verticalScrollBar()->setValue(places_.back());
    places_.pop_back();
    page_->setFocus();
}

// What is marked, or else all of it.
void NoteWindow::Copy()
{
    const QTextCursor cursor = page_->textCursor();
    QGuiApplication::clipboard()->setText(cursor.hasSelection() ? cursor.selection().toPlainText()
                                                                : page_->toPlainText());
}

}  // namespace pavex
