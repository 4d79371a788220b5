// zentaq4: the desktop program. It makes the platform, the session and the windows, runs the start sequence
// and then the event loop.
#include <QLockFile>
#include <filesystem>
#include <memory>

#include "app/main_commands.h"
#include "app/session.h"
#include "app/start_up.h"
#include "base/errors.h"
#include "platform/runtime_folder.h"
#include "qt/application.h"
#include "qt/folders.h"
#include "qt/port_list.h"
#include "qt/qt_clock.h"
#include "qt/qt_dialogs.h"
#include "qt/qt_serial_port.h"
#include "qt/qt_settings.h"
#include "qt/qt_ticker.h"
#include "qt/qt_yield.h"
#include "windows/window_manager.h"

namespace {

using namespace zentaq;

/// Beside the folder of the ports; it holds the process number, so that a lock left by a crash is known as
/// dead.
QString lockPath() {
    return QString::fromStdString((createRuntimePortsFolder().parent_path() / "zentaq4.lock").string());
}

/// False when an earlier instance runs. A lock that cannot be made stops nobody from working.
bool claimInstance(std::unique_ptr<QLockFile>& lock) {
    const bool possible = skipFailing([&] { lock = std::make_unique<QLockFile>(lockPath()); });
    if (!possible) return true;
    lock->setStaleLockTime(0);
    return lock->tryLock(0) || lock->error() != QLockFile::LockFailedError;
}

int run(Application& application, QtDialogs& dialogs) {
    QtClock clock;
    QtSettings settings;
    QtYield yield;
    QtSerialPort port(clock, systemPorts);
    QtTicker ticker(port, clock);
    Session session({port, ticker, clock, settings, dialogs, yield, applicationFolder(), userFolder()});
    MainCommands commands(session);
    Kernel kernel(session, commands);
    WindowManager windows(application, session, commands, kernel);
    dialogs.setParent(&windows.main());
    application.onFailure([&](const std::string& why) {
        session.sysLog("Failure: " + why);
        dialogs.show({MdiMain::frameTitle, why, Icon::Critical, Buttons::Ok});
    });
    QObject::connect(&windows, &WindowManager::mainClosed, &application, [] { Application::exit(0); });
    kernel.load();
    const int result = windows.closed() ? 0 : Application::exec();
    application.onFailure({});
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    Application application(argc, argv);
    Application::setApplicationName(QStringLiteral("Zentaq4"));
    Application::setApplicationVersion(QStringLiteral(ZENTAQ_VERSION));
    Application::setQuitOnLastWindowClosed(false);
    QtDialogs dialogs;
    std::unique_ptr<QLockFile> lock;
    if (!claimInstance(lock)) {
        dialogs.show(
            {"Zentaq4", "Zentaq4 already running!  Program will now close.", Icon::None, Buttons::Ok});
        return 0;
    }
    return run(application, dialogs);
}
