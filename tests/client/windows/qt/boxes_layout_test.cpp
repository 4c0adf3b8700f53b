// tests/client/windows/qt/boxes_layout_test.cpp: message boxes and the client's window, in every language: nothing is
// cut and nothing overlaps.
#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QScreen>

#include "client/foundation/host.h"
#include "client/store/host.h"
#include "client/windows/qt/client_window.h"
#include "client/windows/resource_text.h"
#include "strings/string_ids.h"
#include "tests/client/windows/qt/measuring.h"
#include "tests/client/windows/qt/window_fixture.h"
#include "tests/client/windows/text_rooms.h"
#include "tests/support/translations.h"

namespace {

using pavex::BoxIcon;

// The add-in's boxes; without a caption of their own they have the path of a database.
struct BoxRow {
    int text;
    int caption;
    BoxIcon icon;
    bool canCancel;
};
constexpr BoxRow kBoxes[] = {
    {kStringEnableNotice, kStringEnableCaption, BoxIcon::Warning, true},
    {kStringReindexQuestion, kStringReindexCaption, BoxIcon::Question, true},
    {kStringListFull, kStringListFullCaption, BoxIcon::None, false},
    {kStringNoDatabaseChosen, 0, BoxIcon::Warning, false},
    {kStringRemoteNotAllowed, 0, BoxIcon::Warning, false},
    {kStringCannotOpenDatabase, 0, BoxIcon::Warning, false},
    {kStringNoSuchDatabase, 0, BoxIcon::Warning, false},
};

const std::vector<std::string> kLanguages = {"en", "de", "es", "fr", "ja", "zh-Hans"};

class LayoutOfBoxes : public WindowFixture, public testing::WithParamInterface<std::string> {
protected:
    LayoutOfBoxes()
    {
        pavex::SetAddInBundle(TORVIK_SOURCE_DIR "/resources");
        pavex::SetUserLanguages({GetParam()});
        SaveDatabases(1);
    }
    ~LayoutOfBoxes() override
    {
        pavex::SetUserLanguages({});
        QApplication::setLayoutDirection(Qt::LeftToRight);
    }

    void Measure(const pavex::MessageBoxRequest& request)
    {
        NextBox([&](QMessageBox& box) {
            EXPECT_TRUE(QTest::qWaitForWindowExposed(&box));
            ExpectNothingCutOrOverlapping(box);
            EXPECT_GE(box.width(), box.fontMetrics().horizontalAdvance(box.windowTitle()));
            EXPECT_LE(box.width(), 800);
            EXPECT_LE(box.height(), 400);
            box.reject();
        });
        pavex::CurrentFrontEnd()->MessageBox(request);
    }
};
INSTANTIATE_TEST_SUITE_P(In, LayoutOfBoxes, testing::ValuesIn(kLanguages),
                         [](const auto& language) { return language.param.substr(0, language.param.find('-')); });

TEST_P(LayoutOfBoxes, CutsNothingEitherWay)
{
    const std::map<std::string, std::string> texts = ReadTable(GetParam(), "libtorvik");
    for (const Qt::LayoutDirection direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        QApplication::setLayoutDirection(direction);
        Open([&] {
            for (const BoxRow& row : kBoxes) {
                const std::string caption =
                    row.caption == 0 ? "/home/ann/data/mail.vlt" : texts.at(std::to_string(row.caption));
                Measure({texts.at(std::to_string(row.text)), caption, row.icon, row.canCancel});
            }
            Measure({Localized(pavex::kTextPathTooLong), "/home/ann/data/mail.vlt", BoxIcon::Warning, false});
        });
    }
}

TEST_P(LayoutOfBoxes, NamesTheButtonsAsTheDialogDoes)
{
    const std::string cancel =
        GetParam() == "en" ? "Cancel" : ReadTable(GetParam(), "dialogs").at("2070." + std::to_string(kButtonCancel));
    NextBox(Answer(QMessageBox::Cancel));
    Open([&] { pavex::CurrentFrontEnd()->MessageBox({"text", "caption", BoxIcon::Question, true}); });
    EXPECT_EQ(std::count(Boxes().at(0).buttons.begin(), Boxes().at(0).buttons.end(), cancel), 1);
}

// The client's menu, and the name of its log.
TEST_P(LayoutOfBoxes, OfTheClientIsWholeInItsMenuAndSpeaksTheLanguage)
{
    const std::string menuText = ReadTable(GetParam(), "libtorvik").at(std::to_string(kStringMenuEntry));
    QTimer::singleShot(0, [&] {
        QMainWindow& window = ClientWindowShown();
        QMenu* const menu = window.menuBar()->actions().front()->menu();
        menu->popup(QPoint(0, 0));
        EXPECT_TRUE(QTest::qWaitForWindowExposed(menu));
        for (const QAction* const action : menu->actions()) {
            const int text = menu->fontMetrics().horizontalAdvance(action->text().remove('&'));
            EXPECT_GE(menu->actionGeometry(const_cast<QAction*>(action)).width(), text);
            EXPECT_TRUE(menu->rect().contains(menu->actionGeometry(const_cast<QAction*>(action))));
            EXPECT_TRUE(action->isSeparator() || action->text().contains('&')) << action->text().toStdString();
        }
        EXPECT_TRUE(menu->actions().front()->text().remove('&').startsWith(QString::fromStdString(menuText).left(4)));
        EXPECT_TRUE(
            menu->actions().back()->text().remove('&').startsWith(QString::fromStdString(Localized(pavex::kTextQuit))));
        EXPECT_EQ(window.findChild<QPlainTextEdit*>()->accessibleName().toStdString(), Localized(pavex::kTextLog));
        menu->close();
        pavex::QtFrontEnd::CloseAll();
    });
    pavex::QtFrontEnd().RunClient({menuText, [] {}, home_ / "client.log"});
}

// A box filled to the room that translations may take.
TEST_P(LayoutOfBoxes, HasTheRoomThatTranslationsMayTake)
{
    const bool wide = GetParam() == "ja" || GetParam() == "zh-Hans";
    const auto filling = [wide](size_t columns) {
        QString text;
        for (size_t column = 0; column < columns; column += wide ? 2 : 1)
            text += wide ? QString("索") : column % 8 == 7 ? QString(" ") : QString("n");
        return text.toStdString();
    };
    Open([&] {
        for (const size_t columns : {kBoxColumns, kQuestionColumns, kNoticeColumns})
            Measure({filling(columns), filling(kCaptionColumns), BoxIcon::Question, true});
    });
}

}  // namespace
