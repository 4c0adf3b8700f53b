// client/windows/qt/control_widgets.cpp: how each kind of control looks as a widget.
// An action that the dialog refuses changes nothing, and showing the model again takes it back.
#include "client/windows/qt/control_widgets.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QSignalBlocker>
#include <algorithm>
#include <climits>
#include <utility>

#include "client/store/charset.h"

namespace pavex {

namespace {

void ShowCheck(const Control& control, QWidget* widget)
{
    static_cast<QCheckBox*>(widget)->setChecked(control.checked == 1);
}

bool HasEntries(const QListWidget& list, const std::vector<std::string>& entries)
{
    if (static_cast<size_t>(list.count()) != entries.size())
        return false;
    for (int row = 0; row < list.count(); ++row) {
        if (list.item(row)->text() != QtText(entries[static_cast<size_t>(row)]))
            return false;
    }
    return true;
}

void ShowList(const Control& control, QWidget* widget)
{
    auto* const list = static_cast<QListWidget*>(widget);
    if (!HasEntries(*list, control.entries)) {
        list->clear();
        for (const std::string& entry : control.entries)
            list->addItem(QtText(entry));
    }
    const auto selected = static_cast<int>(control.selected);
    if (list->currentRow() != selected || list->selectedItems().isEmpty() == (selected >= 0))
        list->setCurrentRow(selected);
}

void ShowEdit(const Control& control, QWidget* widget)
{
    auto* const edit = static_cast<QLineEdit*>(widget);
    constexpr size_t kQtLimit = SHRT_MAX;
    // Both move the cursor, so only a change is set.
    if (const auto limit = static_cast<int>(std::min(control.editLimit, kQtLimit)); edit->maxLength() != limit)
        edit->setMaxLength(limit);
    if (const QString text = QtText(control.text); edit->text() != text)
        edit->setText(text);
}

void ShowText(const Control& control, QWidget* widget)
{
    auto* const label = static_cast<QLabel*>(widget);
    if (const QString text = QtText(control.text); label->buddy() == nullptr && label->text() != text)
        label->setText(text);
}

void ShowButton(const Control& /*control*/, QWidget* /*widget*/) {}

void ConnectButton(QWidget* widget, Dialog& dialog, int id, const std::function<void()>& done)
{
    auto* const button = static_cast<QPushButton*>(widget);
    QObject::connect(button, &QPushButton::clicked, button, [&dialog, id, done] {
        std::string refused;
        dialog.Press(id, &refused);
        done();
    });
}

void ConnectCheck(QWidget* widget, Dialog& dialog, int id, const std::function<void()>& done)
{
    auto* const box = static_cast<QCheckBox*>(widget);
    QObject::connect(box, &QCheckBox::clicked, box, [&dialog, id, done] {
        std::string refused;
        dialog.Toggle(id, &refused);
        done();
    });
}

void ConnectList(QWidget* widget, Dialog& dialog, int id, const std::function<void()>& done)
{
    auto* const list = static_cast<QListWidget*>(widget);
    QObject::connect(list, &QListWidget::itemSelectionChanged, list, [&dialog, id, list, done] {
        std::string refused;
        if (!list->selectedItems().isEmpty())
            dialog.Select(id, list->row(list->selectedItems().front()), &refused);
        done();  // a selection cannot be taken away: it comes back
    });
}

void ConnectEdit(QWidget* widget, Dialog& dialog, int id, const std::function<void()>& done)
{
    auto* const edit = static_cast<QLineEdit*>(widget);
    QObject::connect(edit, &QLineEdit::textEdited, edit, [&dialog, id, done](const QString& text) {
        std::string refused;
        dialog.Type(id, text.toStdString(), &refused);
        done();
    });
}

void ConnectText(QWidget* /*widget*/, Dialog& /*dialog*/, int /*id*/, const std::function<void()>& /*done*/) {}

struct KindRow {
    ControlKind kind;
    void (*show)(const Control& control, QWidget* widget);
    void (*connect)(QWidget* widget, Dialog& dialog, int id, const std::function<void()>& done);
};
constexpr KindRow kKinds[] = {
    {ControlKind::Button, ShowButton, ConnectButton}, {ControlKind::Check, ShowCheck, ConnectCheck},
    {ControlKind::List, ShowList, ConnectList},       {ControlKind::Edit, ShowEdit, ConnectEdit},
    {ControlKind::Text, ShowText, ConnectText},
};

const KindRow& RowOf(ControlKind kind)
{
    return *std::find_if(std::begin(kKinds), std::end(kKinds), [kind](const KindRow& row) { return row.kind == kind; });
}

}  // namespace

QString QtText(const std::string& scs)
{
    return QString::fromStdString(Utf8FromScs(scs));
}

void ShowControl(const Control& control, QWidget* widget)
{
    const QSignalBlocker quiet(widget);
    RowOf(control.kind).show(control, widget);
    widget->setEnabled(control.enabled);
    widget->setVisible(control.visible);
}

void ConnectControl(Dialog& dialog, int id, QWidget* widget, const std::function<void()>& done)
{
    RowOf(std::as_const(dialog).Find(id)->kind).connect(widget, dialog, id, done);
}

}  // namespace pavex
