#include "app/start_up.h"

#include <chrono>
#include <filesystem>
#include <random>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "platform/system_text.h"

namespace zentaq {

namespace {

constexpr const char* ruler =
    "--------------------------------------------------------------------------------";

/// Slots in the order in which their objects are made, with the firmware that this program expects.
struct ExpectedFirmware {
    int slot, release, build;
};
constexpr std::array expectedFirmware{
    ExpectedFirmware{3, 5, 99}, ExpectedFirmware{4, 7, 99}, ExpectedFirmware{5, 5, 99},
    ExpectedFirmware{6, 3, 99}, ExpectedFirmware{7, 5, 99}, ExpectedFirmware{8, 5, 99},
};

}  // namespace

bool Kernel::onByPolicy(const char* key) const {
    bool on = true;
    skipFailing([&] { on = session_.settingNumber(key) == 1; });
    return on;
}

void Kernel::load() {
    WindowSet& windows = session_.windows();
    skipFailing([&] { windows.showMain(); });
    skipFailing([&] { windows.enableToolbar(false); });
    session_.AppName = "Zentaq4";
    session_.StartingUp = 1;
    skipFailing([&] { windows.splash("Setting Up Environment"); });
    setUpEnvironment();
    skipFailing([&] { windows.splash("Initializing Console"); });
    startConsole();
    skipFailing([&] { windows.splash("Initializing Database"); });
    openDatabase();
    skipFailing([&] { windows.showConfig(); });
    writeBanner();
    skipFailing([&] { windows.splash("Program Activated"); });
    skipFailing([&] { windows.enableToolbar(true); });
    session_.StartingUp = 0;
    skipFailing([&] { windows.showLink(); });
    skipFailing([&] { session_.link.load(); });
    skipFailing([&] { session_.platform().ticker.start(); });
    skipFailing([&] { windows.showDashboard(); });
    skipFailing([&] { session_.link.ORB_Initialize(); });
    skipFailing([&] { session_.TableColorMode = toInt16(session_.settingNumber("TableColor")); });
    skipFailing([&] { windows.showCommList(onByPolicy("CommDialog")); });
    skipFailing([&] { windows.focusForm("frmConfig"); });
    showTip();
    if (onByPolicy("FileOpen")) skipFailing([&] { commands_.open(); });
}

void Kernel::setUpEnvironment() {
    WindowSet& windows = session_.windows();
    skipFailing([&] {
        session_.link.commPort(toInt16(numberOf(session_.settings().get("System", "CommPort", "1"))));
    });
    session_.VersionText = ZENTAQ_VERSION;
    skipFailing([&] { session_.makeUnits(); });
    skipFailing([&] { windows.makeGraphPools(); });
    session_.Monitoring = false;
    session_.AutoMonitoring = false;
    session_.CurrentFile.clear();
    session_.FileFilterIndex = 1;
    for (const ExpectedFirmware& row : expectedFirmware) {
        session_.FW_ReleaseTable[static_cast<std::size_t>(row.slot)] = row.release;
        session_.FW_BuildTable[static_cast<std::size_t>(row.slot)] = row.build;
    }
}

void Kernel::startConsole() {
    session_.LogFile = session_.applicationFolder() + "/zentaq.log";
    session_.console.logFile(session_.LogFile);
    // Also when the setting was never written: the log is on until a user turns it off.
    if (!onByPolicy("AutoLog")) return;
    skipFailing([&] { std::filesystem::remove(session_.LogFile); });
    session_.console.LogToFile(true);
}

void Kernel::openDatabase() {
    session_.DatabaseFile = session_.applicationFolder() + "/bin/data/zentaq410-02.pak";
    // kept: a database that is missing stops nothing and is not logged; it shows itself with the first query
    // that fails.
    skipFailing([&] { session_.database = Database::open(session_.DatabaseFile); });
}

void Kernel::writeBanner() {
    skipFailing([&] { session_.console.plainLine(ruler); });
    skipFailing([&] { session_.sysLog("Norvalia Zentaq Engine Management Software"); });
    skipFailing([&] { session_.sysLog("v" + session_.VersionText); });
    skipFailing([&] { session_.console.plainLine(ruler); });
    skipFailing([&] { session_.console.plainLine(""); });
    skipFailing([&] { session_.sysLog(session_.platform().clock.dateText()); });
    skipFailing([&] { session_.sysLog("Program Initialized on " + systemText()); });
    skipFailing([&] { session_.sysLog("COMM: Listening on Port #" + numberText(session_.link.commPort())); });
    skipFailing([&] { session_.sysLog("User Interface Initialized."); });
}

void Kernel::showTip() {
    skipFailing([&] {
        if (!session_.database) return;
        const auto tips = session_.database->tips();
        if (tips.empty()) return;
        std::mt19937 random(static_cast<unsigned>(std::chrono::system_clock::now().time_since_epoch() /
                                                  std::chrono::milliseconds(1)));
        std::uniform_int_distribution<std::size_t> draw(0, tips.size() - 1);
        session_.windows().showTip(tips[draw(random)]);
    });
}

bool Kernel::System_Shutdown(bool confirmed) {
    session_.sysLog("System Shutdown Requested.");
    if (!confirmed) {
        const Answer answer = session_.dialogs().show(
            {"Shutdown", "Would you like to Shutdown Zentaq?", Icon::Question, Buttons::OkCancel});
        if (answer != Answer::Ok) return false;
        if (!commands_.offerToSave()) return false;
    }
    session_.Monitoring = false;
    session_.AutoMonitoring = false;
    skipFailing([&] { session_.windows().killTimers(); });
    skipFailing([&] { session_.link.RS232_Close(); });
    skipFailing([&] { session_.link.unload(); });
    session_.platform().ticker.stop();
    session_.sysLog("System Shutdown!");
    skipFailing([&] { session_.windows().closeMain(); });
    return true;
}

void Kernel::closeRequested() {
    // Intended: Cancel declines the save and does not keep the program open. A save that fails does, because
    // the changes would be lost with the process.
    if (commands_.offerToSave()) System_Shutdown(true);
}

}  // namespace zentaq
