#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include <QApplication>

#include "app/rappwindow.h"
#include "graphics/palette.h"

namespace {

bool isSet(const char* variable)
{
    const char* const value = std::getenv(variable);
    return value && *value;
}

// Without a display the program runs all the same: it draws on no screen and asks nobody.
void choosePlatform()
{
    if (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !isSet("QT_QPA_PLATFORM"))
        ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
}

// While the application object is made, the toolkit looks for a display's socket and complains if the system
// has no place for one; a run without a display has nothing to do with that.
void dropSocketComplaint(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (text.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR"))) return;
    const QByteArray line = qFormatLogMessage(type, context, text).toLocal8Bit();
    std::fprintf(stderr, "%s\n", line.constData());
}

bool hasScreen()
{
    const QString platform = QGuiApplication::platformName();
    return platform != QLatin1String("offscreen") && platform != QLatin1String("minimal");
}

// Everything that has to be there before the first plot, then the command line.
void start(app::RAppWindow& window, const std::vector<std::string>& arguments)
{
    window.restoreGeometryOfSettings();
    window.buildMenus();
    static_cast<void>(window.checkInstallation()); // it told the user, and the window is closing
    graphics::LoadPalette("dummy");                // no such file: the built-in palette
    window.paintIdleScreen();
    window.loadHistories();
    window.workThrough(app::readArguments(arguments));
}

} // namespace

int main(int argc, char** argv)
{
    const std::string programPath = argc > 0 ? argv[0] : "";
    choosePlatform();
    const QtMessageHandler usual = qInstallMessageHandler(dropSocketComplaint);
    QApplication application(argc, argv);
    qInstallMessageHandler(usual);
    std::setlocale(LC_NUMERIC, "C"); // the toolkit has just set the user's
    QObject::connect(&application, &QGuiApplication::lastWindowClosed, &application, &QCoreApplication::quit);
    app::RAppWindow window(programPath, hasScreen());
    start(window, {argv, argv + argc});
    // A window that nobody sees can't be closed by anybody: then the program ends with its arguments.
    const int result = window.isClosed() || !hasScreen() ? 0 : QApplication::exec();
    window.finish();
    return result != 0 ? result : window.exitCode();
}
