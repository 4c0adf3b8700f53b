// tests/client/windows/qt/program_icon_test.cpp: the windows' icon, with and without an installed one.
#include "client/windows/qt/program_icon.h"

#include <QImage>
#include <QPixmap>
#include <filesystem>

#include "tests/client/windows/qt/window_fixture.h"

namespace {

class ProgramIconTest : public WindowFixture {
protected:
    ~ProgramIconTest() override
    {
        QIcon::setThemeSearchPaths(searchPaths_);
        QIcon::setThemeName(theme_);
    }
    QColor Middle() { return pavex::ProgramIcon().pixmap(48).toImage().pixelColor(24, 24); }

    const QStringList searchPaths_ = QIcon::themeSearchPaths();
    const QString theme_ = QIcon::themeName();
};

TEST_F(ProgramIconTest, IsTheInstalledOneOfTheDesktopsTheme)
{
    std::filesystem::create_directories(home_.Path() / "icons/sober/48x48/apps");
    WriteWholeFile(home_ / "icons/sober/index.theme",
                   "[Icon Theme]\nName=sober\nDirectories=48x48/apps\n[48x48/apps]\nSize=48\n");
    QImage image(48, 48, QImage::Format_RGB32);
    image.fill(Qt::magenta);
    ASSERT_TRUE(image.save(QString::fromStdString(home_ / "icons/sober/48x48/apps/pavex.png")));
    QIcon::setThemeSearchPaths({QString::fromStdString(home_ / "icons")});
    QIcon::setThemeName("sober");
    EXPECT_EQ(Middle(), QColor(Qt::magenta));
}

TEST_F(ProgramIconTest, IsOneOfTheToolkitsWhereNoneIsInstalled)
{
    QIcon::setThemeSearchPaths({});
    EXPECT_FALSE(pavex::ProgramIcon().isNull());
}

TEST_F(ProgramIconTest, IsOnTheSettingsWindow)
{
    SaveDatabases(1);
    Open([&] { EXPECT_FALSE(Window().windowIcon().isNull()); });
}

}  // namespace
