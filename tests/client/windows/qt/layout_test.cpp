// tests/client/windows/qt/layout_test.cpp: nothing is cut and nothing overlaps, in any language, either way.
#include <QApplication>
#include <QElapsedTimer>
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
#include "client/windows/qt/colors.h"
#include "tests/client/windows/qt/window_fixture.h"

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

    std::vector<QWidget*> ShownControls()
    {
        std::vector<QWidget*> shown;
        for (QWidget* const widget : Window().findChildren<QWidget*>()) {
            if (widget->isVisible() && widget->property("controlId").isValid())
                shown.push_back(widget);
        }
        return shown;
    }
    QRect Place(const QWidget* widget) { return {widget->mapTo(&Window(), QPoint(0, 0)), widget->size()}; }

    void ExpectNothingCutOrOverlapping()
    {
        const std::vector<QWidget*> shown = ShownControls();
        EXPECT_GE(shown.size(), 20U);
        for (const QWidget* const widget : shown) {
            const int id = widget->property("controlId").toInt();
            EXPECT_TRUE(Window().rect().contains(Place(widget))) << id;
            EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << id;
            const int height = widget->hasHeightForWidth() ? widget->heightForWidth(widget->width())
                                                           : widget->minimumSizeHint().height();
            EXPECT_GE(widget->height(), height) << id;
            for (const QWidget* const other : shown)
                EXPECT_TRUE(other == widget || !Place(other).intersects(Place(widget)))
                    << id << " and " << other->property("controlId").toInt();
        }
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
                ExpectNothingCutOrOverlapping();
                Click(kCheckEnabled);  // another instruction
                ExpectNothingCutOrOverlapping();
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
        ExpectNothingCutOrOverlapping();
    });
}

TEST_F(LayoutOfWindow, CutsNothingInLargeLetters)
{
    const QFont before = QApplication::font();
    QFont large = before;
    large.setPointSize(before.pointSize() * 3 / 2);
    QApplication::setFont(large);
    Open([&] { ExpectNothingCutOrOverlapping(); });
    QApplication::setFont(before);
}

TEST_F(LayoutOfWindow, IsMirroredForLanguagesFromRightToLeft)
{
    QApplication::setLayoutDirection(Qt::RightToLeft);
    Open([&] {
        EXPECT_LT(Place(Widget(kButtonAdd)).right(), Place(Widget(kListDatabases)).left());
        EXPECT_GT(Place(Widget(kLabelFrequency)).left(), Place(Widget(kEditFrequency)).right());
        EXPECT_EQ(Place(Widget(kTextInstructions)).right(), Place(Widget(kCheckEnabled)).right());
        ExpectNothingCutOrOverlapping();
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

TEST_F(LayoutOfWindow, IsThereInHalfASecond)
{
    QElapsedTimer since;
    since.start();
    Open([&] { EXPECT_LE(since.elapsed(), 500); });
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
