// tests/client/windows/qt/window_fixture.cpp: see the header.
#include "tests/client/windows/qt/window_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <cstdlib>
#include <stdexcept>

#include "addin/lifecycle.h"

namespace {

// One a process, for all tests of it.
void NeedApplication()
{
    static int count = 1;
    static char name[] = "test";
    static char* arguments[] = {name, nullptr};
    if (QCoreApplication::instance() != nullptr)
        return;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    static QApplication* const application = new QApplication(count, arguments);  // ends with the process
    application->setQuitOnLastWindowClosed(false);
}

// A check box is hit on its box and text only.
QPoint PlaceToHit(const QWidget& widget)
{
    if (qobject_cast<const QCheckBox*>(&widget) == nullptr)
        return widget.rect().center();
    const int y = widget.height() / 2;
    return widget.isRightToLeft() ? QPoint(widget.width() - 8, y) : QPoint(8, y);
}

SeenBox See(const QMessageBox& box)
{
    SeenBox seen{box.text().toStdString(), box.windowTitle().toStdString(), box.icon(), {}, {}};
    QList<QAbstractButton*> buttons = box.buttons();
    std::sort(buttons.begin(), buttons.end(),
              [](const QAbstractButton* a, const QAbstractButton* b) { return a->x() < b->x(); });
    for (const QAbstractButton* const button : buttons)
        seen.buttons.push_back(button->text().toStdString());
    if (box.defaultButton() != nullptr)
        seen.defaultButton = box.defaultButton()->text().toStdString();
    return seen;
}

}  // namespace

WindowFixture::WindowFixture()
{
    NeedApplication();
    QObject::connect(&watch_, &QTimer::timeout, [this] { LookForModals(); });
}

WindowFixture::~WindowFixture()
{
    EXPECT_TRUE(boxAnswers_.empty()) << "a box was expected and did not come";
    EXPECT_TRUE(chooserAnswers_.empty()) << "a file chooser was expected and did not come";
}

long WindowFixture::Open(const std::function<void()>& use)
{
    return Run([] { return static_cast<long>(RunAddInDialog(0)); }, use);
}

long WindowFixture::Open(DialogProcedure procedure, const std::function<void()>& use)
{
    return Run([procedure] { return UIXDialogBox(0, kSettingsDialogResource, procedure); }, use);
}

long WindowFixture::Run(const std::function<long()>& run, const std::function<void()>& use)
{
    pavex::SetFrontEnd(&frontEnd_);
    watch_.start(1);
    QTimer::singleShot(0, [this, &use] {
        window_ = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (window_ == nullptr) {
            ADD_FAILURE() << "no window";
        } else {
            EXPECT_TRUE(QTest::qWaitForWindowActive(window_));
            use();
        }
        pavex::QtFrontEnd::CloseAll();
    });
    const long result = run();
    watch_.stop();
    window_ = nullptr;
    pavex::SetFrontEnd(nullptr);
    return result;
}

void WindowFixture::LookForModals()
{
    QWidget* const modal = QApplication::activeModalWidget();
    if (modal == nullptr || modal == window_ || !modal->isVisible())
        return;
    watch_.stop();  // the answer's own events are no time to look again
    if (auto* const box = qobject_cast<QMessageBox*>(modal)) {
        boxes_.push_back(See(*box));
        if (boxAnswers_.empty()) {
            ADD_FAILURE() << "an unexpected box: " << boxes_.back().text;
            box->reject();
        } else {
            const auto answer = boxAnswers_.front();
            boxAnswers_.pop_front();
            answer(*box);
        }
    } else if (auto* const chooser = qobject_cast<QFileDialog*>(modal)) {
        if (chooserAnswers_.empty()) {
            ADD_FAILURE() << "an unexpected file chooser";
            chooser->reject();
        } else {
            const auto answer = chooserAnswers_.front();
            chooserAnswers_.pop_front();
            answer(*chooser);
        }
    }
    watch_.start(1);
}

QWidget* WindowFixture::Widget(int id)
{
    for (QWidget* const widget : window_->findChildren<QWidget*>()) {
        if (widget->property("controlId") == QVariant(id))
            return widget;
    }
    ADD_FAILURE() << "no widget for control " << id;
    return nullptr;
}

void WindowFixture::Click(int id)
{
    QWidget* const widget = Widget(id);
    QTest::mouseClick(widget, Qt::LeftButton, {}, PlaceToHit(*widget));
}

void WindowFixture::ClickEntry(int row, Qt::KeyboardModifiers modifiers)
{
    auto* const list = The<QListWidget>(kListDatabases);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, modifiers, list->visualItemRect(list->item(row)).center());
}

void WindowFixture::Type(int id, const char* text)
{
    QWidget* const widget = Widget(id);
    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(widget, text);
}

void WindowFixture::Key(Qt::Key key, Qt::KeyboardModifiers modifiers)
{
    QWidget* const focused = QApplication::focusWidget();
    QTest::keyClick(focused == nullptr ? window_ : focused, key, modifiers);
}

int WindowFixture::Focus()
{
    const QWidget* const focused = QApplication::focusWidget();
    return focused == nullptr ? 0 : focused->property("controlId").toInt();
}

void WindowFixture::NextBox(std::function<void(QMessageBox& box)> answer)
{
    boxAnswers_.push_back(std::move(answer));
}

void WindowFixture::NextChooser(std::function<void(QFileDialog& chooser)> answer)
{
    chooserAnswers_.push_back(std::move(answer));
}

QMainWindow& ClientWindowShown()
{
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (auto* const window = qobject_cast<QMainWindow*>(widget))
            return *window;
    }
    throw std::runtime_error("no window");
}

std::function<void(QMessageBox&)> Answer(QMessageBox::StandardButton button)
{
    return [button](QMessageBox& box) { QTest::mouseClick(box.button(button), Qt::LeftButton); };
}

std::function<void(QMessageBox&)> AnswerByKey(Qt::Key key)
{
    return [key](QMessageBox& box) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(&box));
        QTest::keyClick(&box, key);
    };
}

std::function<void(QFileDialog&)> Choose(const std::string& path)
{
    return [path](QFileDialog& chooser) {
        auto* const name = chooser.findChild<QLineEdit*>("fileNameEdit");
        name->setText(QString::fromStdString(path));
        auto* const buttons = chooser.findChild<QDialogButtonBox*>();
        QTest::mouseClick(buttons->button(QDialogButtonBox::Open), Qt::LeftButton);
    };
}

std::function<void(QFileDialog&)> ChooseNothing()
{
    return [](QFileDialog& chooser) { QTest::keyClick(&chooser, Qt::Key_Escape); };
}
