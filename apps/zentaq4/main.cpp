// zentaq4: the desktop program. It makes the platform, the session and the windows, runs the start sequence
// and then the event loop.
#include "app/main_commands.h"
#include "app/session.h"
#include "app/start_up.h"
#include "platform/home_folder.h"
#include "platform/posix_ports.h"
#include "platform/runtime_folder.h"
#include "platform/single_instance.h"
#include "qt/application.h"
#include "qt/folders.h"
#include "qt/look.h"
#include "qt/qt_clock.h"
#include "qt/qt_dialogs.h"
#include "qt/qt_settings.h"
#include "qt/qt_ticker.h"
#include "qt/qt_yield.h"
#include "unit/file_writer.h"
#include "windows/window_manager.h"

namespace {

using namespace zentaq;

int run(Application& application, QtDialogs& dialogs) {
    QtClock clock;
    QtSettings settings;
    QtYield yield;
    PosixSerialPort port(clock, posixPorts, windowPort);
    QtTicker ticker(port, clock);
    ThreadedFileWriter writer;
    ThreadedSideWork side;
    Session session(
        {port, ticker, clock, settings, dialogs, yield, applicationFolder(), userFolder(), &writer, &side});
    MainCommands commands(session);
    Kernel kernel(session, commands);
    settings.onTrouble([&kernel](const std::string& trouble) { kernel.report(trouble); });
    WindowManager windows(application, session, commands, kernel);
    dialogs.setParent(&windows.main());
    application.onFailure([&](const std::string& why) {
        session.sysLog("Failure: " + why);
        dialogs.show({MdiMain::frameTitle, why, Icon::Critical, Buttons::Ok});
    });
    QObject::connect(&windows, &WindowManager::mainClosed, &application, [] { Application::exit(0); });
    if (const auto trouble = runtimeFolderTrouble()) kernel.report(*trouble);
    kernel.load();
    const int result = windows.closed() ? 0 : Application::exec();
    application.onFailure({});
    settings.onTrouble({});
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    settleHome();
    Application application(argc, argv);
    Application::setApplicationName(QStringLiteral("Zentaq4"));
    Application::setApplicationVersion(QStringLiteral(ZENTAQ_VERSION));
    Application::setQuitOnLastWindowClosed(false);
    QtDialogs dialogs;
    const SingleInstance instance;
    if (instance.anotherRuns()) applyLook(application, DisplayMode::Night);  // no window has done so
    if (!firstInstance(instance, dialogs)) return 0;
    return run(application, dialogs);
}
