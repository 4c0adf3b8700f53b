// tests/client/windows/qt/layout_test.cpp: nothing is cut and nothing overlaps, in any language, either way.
#include <QApplication>
#include <QGuiApplication>
#include <QImage>
#include <QLabel>
#include <QListWidget>
#include <QScreen>
#include <map>
#include <numeric>
#include <set>

#include "addin/lifecycle.h"
#include "client/foundation/host.h"
#include "client/store/host.h"
#include "client/windows/dialog_resources.h"
#include "client/windows/qt/colors.h"
#include "settings/progress.h"
#include "tests/client/windows/qt/measuring.h"
#include "tests/client/windows/qt/window_fixture.h"
#include "tests/client/windows/text_rooms.h"

namespace {

class LayoutOfWindow : public WindowFixture {
protected:
    LayoutOfWindow()
    {
        SetIni("GDSIndexEnabled", "1");
        SaveDatabases(2);
        GlobalContext.inProgress = 1;
        GlobalContext.processed = 1;
        GlobalContext.total = 4;
    }
    ~LayoutOfWindow() override
    {
        pavex::SetUserLanguages({});
        QApplication::setLayoutDirection(Qt::LeftToRight);
        pavex::UseColors(pavex::WindowColors::Light);
    }

    QRect Place(const QWidget* widget) { return PlaceIn(Window(), *widget); }
    void ExpectNothingCut()
    {
        EXPECT_GE(ShownTexts(Window()).size(), 20U);
        ExpectNothingCutOrOverlapping(Window());
    }
};

// Each in a process of its own, because the add-in keeps the texts that it has once read.
TEST_F(LayoutOfWindow, CutsNoTextInAnyLanguage)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::map<std::string, std::string> titles = {{"en", "Desktop Search Settings"},
                                                       {"de", "Einstellungen der Desktopsuche"},
                                                       {"es", "Ajustes de búsqueda de escritorio"},
                                                       {"fr", "Réglages de la recherche de bureau"},
                                                       {"ja", "デスクトップ検索の設定"},
                                                       {"zh-Hans", "桌面搜索设置"}};
    for (const auto& [language, title] : titles) {
        const auto measure = [&] {
            pavex::SetAddInBundle(TORVIK_SOURCE_DIR "/resources");
            pavex::SetUserLanguages({language});
            Open([&] {
                EXPECT_EQ(Window().windowTitle().toStdString(), title);
                ExpectNothingCut();
                Click(kCheckEnabled);  // another instruction
                ExpectNothingCut();
            });
            std::exit(HasFailure() ? 1 : 0);
        };
        EXPECT_EXIT(measure(), testing::ExitedWithCode(0), "") << language;
    }
}

TEST_F(LayoutOfWindow, CutsNothingWhenTheWindowIsMadeAsSmallAsItGets)
{
    Open([&] {
        Window().resize(1, 1);
        QTest::qWait(0);
        ExpectNothingCut();
    });
}

// In processes of their own, because the scale is read as the toolkit starts.
TEST_F(LayoutOfWindow, CutsNothingOnScreensOfManyDots)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const char* const scale : {"1", "1.25", "1.5", "2"}) {
        const auto measure = [&] {
            Open([&] {
                EXPECT_EQ(Window().devicePixelRatio(), std::atof(scale));
                EXPECT_EQ(Window().grab().devicePixelRatio(), std::atof(scale));
                ExpectNothingCut();
                Window().resize(1, 1);
                QTest::qWait(0);
                ExpectNothingCut();
            });
            std::exit(HasFailure() ? 1 : 0);
        };
        setenv("QT_SCALE_FACTOR", scale, 1);
        EXPECT_EXIT(measure(), testing::ExitedWithCode(0), "") << scale;
    }
    unsetenv("QT_SCALE_FACTOR");
}

// The longest path that a database can have, on every line that shows one.
TEST_F(LayoutOfWindow, GrowsForLongLinesThoughItIsMadeAsSmallAsItGets)
{
    Open([&] {
        Window().resize(1, 1);
        QTest::qWait(0);
        const int before = Window().height();
        const std::string path = MakeDatabase(std::string(240 - (home_ / "data").size(), 'm') + ".vlt");
        SetDbPath(0, path.c_str());
        EXPECT_TRUE(QTest::qWaitFor([&] { return The<QLabel>(kTextActivityStatus)->text().endsWith("m.vlt"); }));
        EXPECT_GT(Window().height(), before);
        ExpectNothingCut();
    });
}

// Text of so many columns, in words, narrow or wide.
std::string Filling(size_t columns, bool wide)
{
    std::string text;
    for (size_t column = 0; column < columns; column += wide ? 2 : 1)
        text += wide ? "索" : column % 8 == 7 ? " " : "n";
    return text;
}

bool fillWide = false;

int FillEveryText(unsigned long window, unsigned int message, unsigned long wParam, long /*lParam*/)
{
    if (message == kMessageCommand && wParam == kButtonCancel)
        EndDialog(window, kButtonCancel);
    if (message != kMessageInitialize)
        return 0;
    for (const pavex::ControlRow& row : pavex::FindDialogResource(kSettingsDialogResource)->controls) {
        const bool isLine = row.kind == pavex::ControlKind::Text && *row.text == '\0';
        const size_t columns = row.id == kTextInstructions ? kInstructionColumns
                               : isLine                    ? kLeadColumns + kStateColumns
                                                           : ColumnsOf(row.kind);
        if (columns != 0)
            UIXSetDlgItemText(window, row.id, Filling(columns, fillWide).c_str());
    }
    return 0;
}

TEST_F(LayoutOfWindow, HasTheRoomThatTranslationsMayTakeOnASmallScreen)
{
    for (fillWide = false;; fillWide = true) {
        Open(FillEveryText, [&] {
            ExpectNothingCut();
            EXPECT_LE(Window().width(), 1024);
            EXPECT_LE(Window().height(), 768);
            EXPECT_GE(Window().width(),
                      QFontMetrics(Window().font())
                          .horizontalAdvance(QString::fromStdString(Filling(kTitleColumns, fillWide))));
        });
        if (fillWide)
            break;
    }
}

TEST_F(LayoutOfWindow, CutsNothingInLargeLetters)
{
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSize(before.pointSize() * 3 / 2);
    QApplication::setFont(large);
    Open([&] { ExpectNothingCut(); });
    QApplication::setFont(before);
}

// The first and the last column of a widget in which something is drawn.
std::pair<int, int> Inked(QWidget& widget)
{
    const QImage image = widget.grab().toImage();
    const QRgb ground = image.pixel(0, 0);
    int first = image.width();
    int last = -1;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == ground)
                continue;
            first = std::min(first, x);
            last = std::max(last, x);
        }
    }
    return {first, last};
}

TEST_F(LayoutOfWindow, IsMirroredForLanguagesFromRightToLeft)
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    Open([&] {
        EXPECT_LT(Place(Widget(kButtonAdd)).right(), Place(Widget(kListDatabases)).left());
        EXPECT_GT(Place(Widget(kLabelFrequency)).left(), Place(Widget(kEditFrequency)).right());
        EXPECT_EQ(Place(Widget(kTextInstructions)).right(), Place(Widget(kCheckEnabled)).right());
        for (const int id : {kTextInstructions, kTextOverallStatus, kTextActivityStatus, kLabelDatabases}) {
            const auto [first, last] = Inked(*Widget(id));
            EXPECT_GT(first, Widget(id)->width() - 1 - last) << id << " begins at the right";
        }
        EXPECT_EQ(Widget(kListDatabases)->layoutDirection(), Qt::LeftToRight) << "a path does not end with its root";
        ExpectNothingCut();
        Click(kCheckIdle);
        EXPECT_EQ(Model(kCheckIdle).checked, 1U);
    });
}

// The mean lightness of a widget, and that of the pixel that differs from it most.
std::pair<int, int> Lightness(QWidget& widget)
{
    const QImage image = widget.grab().toImage();
    std::vector<int> pixels;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            pixels.push_back(image.pixelColor(x, y).lightness());
    }
    const int mean = static_cast<int>(std::accumulate(pixels.begin(), pixels.end(), 0L) / std::ssize(pixels));
    const int ink = *std::max_element(pixels.begin(), pixels.end(),
                                      [mean](int a, int b) { return std::abs(a - mean) < std::abs(b - mean); });
    return {mean, ink};
}

TEST_F(LayoutOfWindow, WritesLightOnDarkAndDarkOnLight)
{
    for (const bool dark : {false, true}) {
        SCOPED_TRACE(dark);
        pavex::UseColors(dark ? pavex::WindowColors::Dark : pavex::WindowColors::Light);
        Open([&] {
            for (const int id : {kTextInstructions, kCheckEnabled, kListDatabases, kButtonOk, kEditFrequency}) {
                const auto [ground, ink] = Lightness(*Widget(id));
                EXPECT_EQ(ground < 128, dark) << id;
                EXPECT_GT(dark ? ink - ground : ground - ink, 100) << id;
            }
        });
    }
}

TEST_F(LayoutOfWindow, IsOnTheScreen)
{
    if (QGuiApplication::platformName() == "offscreen")
        GTEST_SKIP() << "there is no screen to look at";
    Open([&] {
        QTest::qWait(0);
        const QImage screen = QGuiApplication::primaryScreen()
                                  ->grabWindow(0, Window().x(), Window().y(), Window().width(), Window().height())
                                  .toImage()
                                  .convertToFormat(QImage::Format_RGB32);
        ASSERT_TRUE(screen.save(TORVIK_BINARY_DIR "/settings_window.png"));
        const QImage drawn = Window().grab().toImage().convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(screen.size(), drawn.size());
        int differing = 0;
        for (int y = 0; y < drawn.height(); ++y) {
            for (int x = 0; x < drawn.width(); ++x)
                differing += screen.pixel(x, y) != drawn.pixel(x, y) ? 1 : 0;
        }
        EXPECT_LT(differing, drawn.width() * drawn.height() / 100);  // a cursor may blink, a bar move
    });
}

}  // namespace
