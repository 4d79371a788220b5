// One unit and two programs that want its port: zentaqctl, and beside it a window program that tries to open
// the port hundreds of times a second and lets go of it as soon as it has it.
#pragma once

#include <QApplication>
#include <QProcess>
#include <QTimer>
#include <chrono>
#include <memory>
#include <string>

#include "system/flight_rig.h"
#include "system/terminal_watch.h"

namespace zentaq {

class ContendedPort {
 public:
    struct Outcomes {
        int done = 0;
        int refused = 0;  ///< before the first byte: another program had the port
        int failed = 0;
        int unheard = 0;  ///< the terminals of the machine stood still meanwhile: begun again
        std::string firstFailure;
    };

    explicit ContendedPort(QApplication& application) {
        std::filesystem::create_directory(folder_.path("app"));
        // A build that goes on beside the tests takes its own away for a moment.
        std::filesystem::copy_file(std::string(ZENTAQ_APP_DIR) + "/zentaqctl", zentaqctl_);
        ready_ = makeFirmware(firmware_);
        std::filesystem::copy_file(anySample(), calibration_);
        unit_ = std::make_unique<UnitProcess>(folder_.path("unit"), folder_.path("memory.bin"),
                                              QStringList{"--upgrade-mode", "--baud", "0"});
        program_ = std::make_unique<Program>(application, folder_.path("app"), folder_.path("unit"));
        program_->kernel.load();
        ready_ = ready_ && unit_->ready();
        QObject::connect(&wanting_, &QTimer::timeout, [this] { want(); });
        wanting_.start(1);
    }

    bool ready() const { return ready_; }
    int tries() const { return tries_; }
    int openings() const { return openings_; }

    Outcomes firmware(int count) {
        return repeat(count, {"firmware", "--yes", "--unit-without-firmware", "A"}, firmware_, true);
    }
    Outcomes program(int count) { return repeat(count, {"program"}, calibration_, false); }

 private:
    /// What the session does once a second while it has no port; and gives it back, so that the other program
    /// gets its turn.
    void want() {
        Session& session = program_->session;
        if (resting_ > 0) {
            if (--resting_ == letGo) session.link.RS232_Close();
            return;
        }
        ++tries_;
        if (!skipFailing([&] { session.platform().port.open(1); })) return;
        ++openings_;
        resting_ = letGo + 5;
    }

    /// Firings for which it leaves a free port alone after it had it.
    static constexpr int letGo = 200;
    /// With half of a unit's patience gone in the terminal a run proves nothing.
    static constexpr std::chrono::milliseconds longestRest{500};
    /// For each run that is wanted.
    static constexpr int mostRuns = 6;

    Outcomes repeat(int count, const QStringList& command, const std::string& file, bool firmware) {
        Outcomes all;
        for (int run = 0; run < count * mostRuns && all.done + all.refused + all.failed < count; ++run) {
            terminals_.longestRest();
            const std::string told = once(command, file);
            const bool stoodStill = terminals_.longestRest() > longestRest;
            const bool untouched = !firmware || stateOfFirmware().find("missing") == std::string::npos;
            if (told.empty()) {
                ++all.done;
            } else if (told.find("already in use") != std::string::npos && untouched) {
                ++all.refused;
            } else if (stoodStill && told.find("did not answer") != std::string::npos) {
                ++all.unheard;
            } else {
                ++all.failed;
                if (all.firstFailure.empty()) all.firstFailure = told;
            }
            unit_->signal(SIGHUP);  // the power is cycled, as the program asks
            Program::runFor(30);
        }
        return all;
    }
    /// What zentaqctl complained of; empty for a good end.
    std::string once(QStringList words, const std::string& file) {
        words << "--port" << QString::fromStdString(folder_.path("unit")) << QString::fromStdString(file);
        QProcess process;
        process.start(QString::fromStdString(zentaqctl_), words);
        Program::waitFor([&] { return process.state() == QProcess::NotRunning; }, 120'000);
        const std::string told = process.readAllStandardError().toStdString();
        const bool good = process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
        return good ? std::string()
                    : told + " (" + std::to_string(process.exitCode()) + ", " +
                          process.errorString().toStdString() + ")";
    }
    std::string stateOfFirmware() const { return TemporaryFolder::read(folder_.path("memory.bin.firmware")); }

    TemporaryFolder folder_;
    std::string zentaqctl_ = folder_.path("app/zentaqctl");
    std::string firmware_ = folder_.path("ZQA-505100.nv3");
    std::string calibration_ = folder_.path("Street.ZQ4OA");
    std::unique_ptr<UnitProcess> unit_;
    std::unique_ptr<Program> program_;
    TerminalWatch terminals_;
    QTimer wanting_;
    int resting_ = 0;
    int tries_ = 0;
    int openings_ = 0;
    bool ready_ = false;
};

}  // namespace zentaq
