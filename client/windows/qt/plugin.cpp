// client/windows/qt/plugin.cpp: the library's entry: an application of Qt on the user's display.
#include <QApplication>
#include <QLibraryInfo>
#include <QTranslator>
#include <memory>

#include "client/foundation/languages.h"
#include "client/store/host.h"
#include "client/windows/qt/colors.h"
#include "client/windows/qt/qt_front_end.h"
#include "client/windows/window_plugin.h"

namespace pavex {

namespace {

void (*failed)(const char* reason) = nullptr;

// What Qt has to say goes to the client's log; a display that cannot be used is told to the user.
void HandleMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        Log("window: " + message.toStdString());
    if (type == QtFatalMsg && failed != nullptr)
        failed("the display cannot be used");
}

// The application, and the front end on it.
class ApplicationFrontEnd : public QtFrontEnd {
public:
    explicit ApplicationFrontEnd(const WindowPluginOptions& options) : application_(argumentCount_, arguments_)
    {
        QApplication::setApplicationName("pavex");
        QApplication::setDesktopFileName("pavex-desktop");
        QApplication::setQuitOnLastWindowClosed(false);
        UseColors(options.colors);
        UseLanguage();
        if (options.closeRequest >= 0)
            CloseOn(options.closeRequest);
    }

private:
    // The few texts of Qt's own, in the file chooser, where the system has them in the user's language.
    void UseLanguage()
    {
        for (const std::string& language : cf::CurrentLanguages().languages) {
            if (translator_.load(QLocale(QString::fromStdString(language)), "qtbase", "_",
                                 QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
                QCoreApplication::installTranslator(&translator_);
                return;
            }
        }
    }

    int argumentCount_ = 1;
    char name_[6] = "pavex";
    char* arguments_[2] = {name_, nullptr};
    QApplication application_;
    QTranslator translator_;
};

}  // namespace

}  // namespace pavex

extern "C" __attribute__((visibility("default"))) pavex::WindowFrontEnd*
PavexMakeWindowFrontEnd(const pavex::WindowPluginOptions* options)
{
    pavex::failed = options->fail;
    qInstallMessageHandler(pavex::HandleMessage);
    auto frontEnd = std::make_unique<pavex::ApplicationFrontEnd>(*options);
    pavex::failed = nullptr;
    return frontEnd.release();
}
