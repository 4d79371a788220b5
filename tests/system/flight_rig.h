// The whole program, windows included, on a real terminal with a simulated unit as a second process.
// Only the boxes are answered by a script, and settings live in memory.
#pragma once

#include <QApplication>
#include <QDeadlineTimer>
#include <QProcess>
#include <QTimer>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "app/fake_platform.h"
#include "app/main_commands.h"
#include "app/session.h"
#include "app/start_up.h"
#include "qt/qt_clock.h"
#include "qt/qt_ticker.h"
#include "qt/qt_yield.h"
#include "testing/memory_settings.h"
#include "unit/file_writer.h"
#include "windows/window_manager.h"

namespace zentaq {

/// A simulated unit in a process of its own. Its terminal is a link in a temporary folder.
class UnitProcess {
 public:
    UnitProcess(const std::string& link, const std::string& memoryFile, QStringList options = {})
        : link_(link) {
        if (!options.contains("--unit")) options += {"--unit", "A"};
        options << "--link" << QString::fromStdString(link) << "--memory"
                << QString::fromStdString(memoryFile);
        process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process_.start(QString::fromStdString(std::string(ZENTAQ_APP_DIR) + "/zentaq-sim"), options);
        while (process_.state() != QProcess::NotRunning && !ready_.contains("ready ")) {
            if (!process_.waitForReadyRead(5000)) break;
            ready_ += process_.readAllStandardOutput();
        }
    }
    ~UnitProcess() { stop(); }
    UnitProcess(const UnitProcess&) = delete;
    UnitProcess& operator=(const UnitProcess&) = delete;

    bool running() const { return process_.state() == QProcess::Running; }
    bool ready() const { return ready_.contains("ready "); }
    void signal(int number) const { ::kill(static_cast<pid_t>(process_.processId()), number); }
    void stop() {
        if (!running()) return;
        process_.terminate();
        process_.waitForFinished(5000);
    }

 private:
    std::string link_;
    QProcess process_;
    QByteArray ready_;
};

/// The program in this process.
class Program {
 public:
    Program(QApplication& application, const std::string& folder, const std::string& link)
        : Program(application, folder, [link] { return portAt(link); }) {}
    /// With a list of ports of its own, such as one of units that are announced in a folder.
    Program(QApplication& application, const std::string& folder, PosixSerialPort::PortSource ports)
        : folder_(prepared(folder)),
          port(std::move(ports), clock),
          ticker(port.port, clock),
          session({port.port, ticker, clock, settings, dialogs, yield, folder, folder, &writer}),
          commands(session),
          kernel(session, commands),
          windows(application, session, commands, kernel) {
        settings.set("System", "FileOpen", "0");
        session.attach(windows);
    }

    /// Runs the event loop until a condition holds. False: it did not within the time.
    static bool waitFor(const std::function<bool()>& condition, int milliseconds) {
        QDeadlineTimer deadline(milliseconds);
        QTimer waker;  // so that the loop sleeps, and wakes even when nothing else happens
        waker.start(20);
        while (!condition()) {
            if (deadline.hasExpired()) return false;
            QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
        }
        return true;
    }
    static void runFor(int milliseconds) {
        waitFor([] { return false; }, milliseconds);
    }

    bool identified() const { return session.link.linked().UnitIdentified; }
    bool open(const std::string& path) {
        dialogs.files.push_back(path);
        commands.files.open();
        return session.CurrentFile == path;
    }
    bool boxShown(const std::string& text) const {
        for (const Box& box : dialogs.boxes) {
            if (box.text.find(text) != std::string::npos) return true;
        }
        return false;
    }
    std::string log() const {
        std::ifstream file(session.LogFile);
        return {std::istreambuf_iterator<char>(file), {}};
    }

 private:
    /// One port in the list: the simulated unit, if its link is there.
    static std::vector<PortInfo> portAt(const std::string& link) {
        std::error_code error;
        const auto device = std::filesystem::canonical(link, error);
        if (error) return {};
        return {{1, device.string(), "Simulated unit", link}};
    }
    static std::string prepared(const std::string& folder) {
        std::filesystem::copy(std::string(ZENTAQ_APP_DIR) + "/bin", folder + "/bin",
                              std::filesystem::copy_options::recursive);
        return folder;
    }
    struct PortHolder {
        PortHolder(PosixSerialPort::PortSource source, const Clock& clock)
            : port(clock, std::move(source), windowPort) {}
        PosixSerialPort port;
    };

    std::string folder_;
    QtClock clock;
    MemorySettings settings;
    QtYield yield;
    PortHolder port;
    QtTicker ticker;
    ThreadedFileWriter writer;

 public:
    MemorySettings& stored() { return settings; }
    PortHolder& serial() { return port; }

    ScriptedDialogs dialogs;
    Session session;
    MainCommands commands;
    Kernel kernel;
    WindowManager windows;
};

inline std::vector<std::uint8_t> bytesOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A firmware file for a simulated ORB A; false when none was made.
inline bool makeFirmware(const std::string& path) {
    const std::string command = "'" + std::string(ZENTAQ_APP_DIR) +
                                "/zentaq-sim' --unit A --firmware ZQA-505100 --make-firmware '" + path +
                                "' >/dev/null";
    return std::system(command.c_str()) == 0;
}

inline std::string anySample() {
    for (const auto& entry : std::filesystem::directory_iterator(std::string(ZENTAQ_APP_DIR) + "/samples")) {
        if (entry.path().extension() == ".ZQ4OA") return entry.path().string();
    }
    return {};
}

}  // namespace zentaq
