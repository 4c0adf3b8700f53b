// client/windows/qt/qt_front_end.cpp: dialogs, message boxes and the file chooser as windows of Qt.
#include "client/windows/qt/qt_front_end.h"

#include <QFileDialog>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <utility>
#include <vector>

#include "client/store/host.h"
#include "client/windows/dialog.h"
#include "client/windows/qt/client_window.h"
#include "client/windows/qt/control_widgets.h"
#include "client/windows/qt/dialog_window.h"
#include "client/windows/qt/note_window.h"

namespace pavex {

namespace {

QMessageBox::Icon IconFor(BoxIcon icon)
{
    switch (icon) {
    case BoxIcon::None:
        return QMessageBox::NoIcon;
    case BoxIcon::Question:
        return QMessageBox::Question;
    case BoxIcon::Warning:
        return QMessageBox::Warning;
    }
    return QMessageBox::NoIcon;
}

// A box speaks as the dialog that asks.
QPushButton* AddBoxButton(QMessageBox& box, QMessageBox::StandardButton button, const Dialog* dialog, int control)
{
    QPushButton* const added = box.addButton(button);
    added->setIcon({});  // the dialog's buttons have none
    if (const Control* const named = dialog == nullptr ? nullptr : dialog->Find(control))
        added->setText(QtText(named->text).replace('&', "&&"));
    return added;
}

}  // namespace

void QtFrontEnd::Run(Dialog& dialog)
{
    Dialog* const outer = std::exchange(dialog_, &dialog);
    {
        DialogWindow window(dialog, QApplication::activeWindow());
        window.exec();
    }
    QCoreApplication::processEvents();  // gone from the screen before what follows takes its time
    dialog_ = outer;
}

int QtFrontEnd::MessageBox(const MessageBoxRequest& request)
{
    QMessageBox box(QApplication::activeModalWidget());
    box.setWindowTitle(QString::fromStdString(request.caption));
    box.setTextFormat(Qt::PlainText);
    box.setText(QString::fromStdString(request.text));
    box.setIcon(IconFor(request.icon));
    QPushButton* const ok =
        AddBoxButton(box, QMessageBox::Ok, dialog_, dialog_ == nullptr ? 0 : dialog_->DefaultButton());
    box.setDefaultButton(ok);
    if (request.canCancel) {
        box.setEscapeButton(
            AddBoxButton(box, QMessageBox::Cancel, dialog_, dialog_ == nullptr ? 0 : dialog_->CancelButton()));
    }
    return box.exec() == QMessageBox::Ok || !request.canCancel ? kBoxAnswerOk : kBoxAnswerCancel;
}

bool QtFrontEnd::ChooseFile(std::string* path)
{
    QFileDialog chooser(QApplication::activeModalWidget(), {}, QString::fromStdString(CurrentPlaces().data));
    if (dialog_ != nullptr)
        chooser.setWindowTitle(QString::fromStdString(dialog_->Title()));
    chooser.setFileMode(QFileDialog::ExistingFile);
    chooser.setViewMode(QFileDialog::List);  // the columns of the other one are cut
    chooser.setNameFilters({"*.vlt", "*"});
    if (chooser.exec() != QDialog::Accepted || chooser.selectedFiles().isEmpty())
        return false;
    *path = chooser.selectedFiles().front().toStdString();
    return true;
}

void QtFrontEnd::RunClient(const ClientWindowContent& content)
{
    {
        ClientWindow window(content);
        window.show();
        window.WaitUntilClosed();
    }
    QCoreApplication::processEvents();
}

void QtFrontEnd::ShowNote(const NoteWindowContent& content)
{
    NoteWindow(content).exec();
}

void QtFrontEnd::CloseAll()
{
    // One may take another along, as the client's window does its icon in the tray.
    std::vector<QPointer<QWidget>> widgets;
    for (QWidget* const widget : QApplication::topLevelWidgets())
        widgets.emplace_back(widget);
    for (const QPointer<QWidget>& widget : widgets) {
        if (auto* const window = qobject_cast<QDialog*>(widget); window != nullptr && window->isVisible())
            window->done(QDialog::Rejected);
        else if (dynamic_cast<ClientWindow*>(widget.data()) != nullptr)
            widget->close();
    }
}

void QtFrontEnd::CloseOn(int descriptor)
{
    closeRequest_ = std::make_unique<QSocketNotifier>(descriptor, QSocketNotifier::Read);
    QObject::connect(closeRequest_.get(), &QSocketNotifier::activated, closeRequest_.get(), [this] {
        closeRequest_->setEnabled(false);
        CloseAll();
    });
}

}  // namespace pavex
