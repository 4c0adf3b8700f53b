// client/windows/qt/dialog_window.cpp: a dialog as a window: its model shown, and the user's hand on it.
#include "client/windows/qt/dialog_window.h"

#include <QKeyEvent>
#include <QLabel>
#include <QLayout>
#include <QProgressBar>
#include <QPushButton>
#include <QStyle>
#include <utility>

#include "client/windows/qt/control_widgets.h"
#include "client/windows/qt/mnemonics.h"
#include "client/windows/qt/percentage.h"
#include "client/windows/qt/program_icon.h"
#include "ui_settings_dialog.h"

namespace pavex {

namespace {

// Dynamic properties of the layout's widgets.
constexpr const char* kControlId = "controlId";
constexpr const char* kProgressOf = "progressOf";
constexpr const char* kShownWith = "shownWith";
constexpr const char* kDescribedBy = "describedBy";

// An edit field is as wide as the most that fits in it.
void FitToLimit(const Control& control, QWidget* widget)
{
    constexpr size_t kMostCharacters = 20;
    const auto characters = static_cast<int>(std::min(control.editLimit, kMostCharacters));
    const QFontMetrics metrics(widget->font());
    widget->setFixedWidth(metrics.horizontalAdvance('0') * (characters + 3));
}

// Where lines begin in this layout, also in a language that is written the other way.
void AlignAtBeginning(QLabel& label)
{
    label.setAlignment(QStyle::visualAlignment(label.layoutDirection(), Qt::AlignLeft) | Qt::AlignAbsolute |
                       Qt::AlignVCenter);
}

bool IsRead(const QWidget* widget)
{
    const auto* const label = qobject_cast<const QLabel*>(widget);
    return label != nullptr && label->buddy() != nullptr;
}

void SetLabelText(QWidget* widget, const QString& withMnemonic, const QString& plain)
{
    if (auto* const button = qobject_cast<QAbstractButton*>(widget)) {
        button->setText(withMnemonic);
    } else if (auto* const label = qobject_cast<QLabel*>(widget)) {
        label->setText(withMnemonic);
        label->buddy()->setAccessibleName(plain);
    }
}

}  // namespace

DialogWindow::DialogWindow(Dialog& dialog, QWidget* parent) : QDialog(parent), dialog_(dialog)
{
    Ui::SettingsDialog layout;
    layout.setupUi(this);
    setWindowIcon(ProgramIcon());
    setWindowTitle(QString::fromStdString(dialog.Title()));
    FindWidgets();
    ConnectWidgets();
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { SendTimers(); });
    Refresh();
}

void DialogWindow::FindWidgets()
{
    for (QWidget* const widget : findChildren<QWidget*>()) {
        const QVariant id = widget->property(kControlId);
        if (id.isValid() && std::as_const(dialog_).Find(id.toInt()) != nullptr)
            widgets_[id.toInt()] = widget;
        if (auto* const label = qobject_cast<QLabel*>(widget))
            AlignAtBeginning(*label);
        if (auto* const bar = qobject_cast<QProgressBar*>(widget)) {
            QSizePolicy policy = bar->sizePolicy();
            policy.setRetainSizeWhenHidden(true);
            bar->setSizePolicy(policy);
        }
    }
    // Return and Escape are the keys of the default button and of Cancel.
    for (const Control& control : dialog_.Controls()) {
        const auto found = widgets_.find(control.id);
        if (found != widgets_.end() && control.id != dialog_.DefaultButton() && control.id != dialog_.CancelButton() &&
            (control.kind == ControlKind::Button || control.kind == ControlKind::Check || IsRead(found->second)))
            mnemonicControls_.push_back(control.id);
    }
}

void DialogWindow::ConnectWidgets()
{
    for (const auto& [id, widget] : widgets_) {
        ConnectControl(dialog_, id, widget, [this] { Refresh(); });
        if (const Control* const more = std::as_const(dialog_).Find(widget->property(kDescribedBy).toInt()))
            widget->setAccessibleDescription(QtText(more->text));
        if (const Control& control = *std::as_const(dialog_).Find(id); control.kind == ControlKind::Edit)
            FitToLimit(control, widget);
    }
    if (auto* const button = qobject_cast<QPushButton*>(widgets_[dialog_.DefaultButton()]))
        button->setDefault(true);
}

void DialogWindow::Refresh()
{
    if (dialog_.Ended()) {
        timer_.stop();
        done(QDialog::Accepted);
        return;
    }
    for (const auto& [id, widget] : widgets_)
        ShowControl(*std::as_const(dialog_).Find(id), widget);
    ShowMnemonics();
    ShowProgress();
    MakeRoom();
    WaitForTimer();
}

void DialogWindow::ShowMnemonics()
{
    std::vector<MnemonicText> texts;
    for (const int id : mnemonicControls_) {
        const Control& control = *std::as_const(dialog_).Find(id);
        texts.push_back({QtText(control.text), QString::fromStdString(control.name)});
    }
    std::vector<QString> shown = WithMnemonics(texts);
    if (shown == mnemonicTexts_)
        return;
    mnemonicTexts_ = std::move(shown);
    for (size_t i = 0; i < mnemonicControls_.size(); ++i)
        SetLabelText(widgets_[mnemonicControls_[i]], mnemonicTexts_[i], texts[i].text);
    for (const int id : {dialog_.DefaultButton(), dialog_.CancelButton()})
        SetLabelText(widgets_[id], QtText(std::as_const(dialog_).Find(id)->text).replace('&', "&&"), {});
}

void DialogWindow::ShowProgress()
{
    const auto shownControl = [this](int id) -> const Control* {
        const Control* const control = std::as_const(dialog_).Find(id);
        return control != nullptr && control->visible ? control : nullptr;
    };
    for (QProgressBar* const bar : findChildren<QProgressBar*>()) {
        std::optional<int> percentage;
        QString line;
        for (const QString& id : bar->property(kProgressOf).toString().split(' ')) {
            const Control* const control = shownControl(id.toInt());
            if (control == nullptr || percentage)
                continue;
            percentage = PercentageIn(QtText(control->text));
            line = QtText(control->text);
        }
        bar->setRange(0, percentage ? 100 : 0);  // without an end: something is going on
        bar->setValue(percentage.value_or(0));
        bar->setAccessibleName(line);
        bar->setVisible(shownControl(bar->property(kShownWith).toInt()) != nullptr);
    }
}

// Texts change, and with them the lines they take.
void DialogWindow::MakeRoom()
{
    if (isVisible())
        setMinimumHeight(layout()->totalMinimumHeightForWidth(width()));
}

void DialogWindow::WaitForTimer()
{
    if (const std::optional<uint64_t> wait = dialog_.MillisecondsToNextTimer(SteadyMilliseconds()))
        timer_.start(static_cast<int>(*wait));
}

void DialogWindow::SendTimers()
{
    dialog_.SendDueTimers(SteadyMilliseconds());
    Refresh();
}

void DialogWindow::reject()
{
    std::string refused;
    dialog_.Press(dialog_.CancelButton(), &refused);
    Refresh();
}

void DialogWindow::keyPressEvent(QKeyEvent* event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!isReturn || qobject_cast<QPushButton*>(focusWidget()) != nullptr) {
        QDialog::keyPressEvent(event);  // Return on a button presses that button
        return;
    }
    std::string refused;
    dialog_.PressDefault(&refused);
    Refresh();
}

void DialogWindow::resizeEvent(QResizeEvent* event)
{
    QDialog::resizeEvent(event);
    MakeRoom();
}

void DialogWindow::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    MakeRoom();
}

}  // namespace pavex
