#include "app/start_up.h"
#include "app/flight_record.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <random>
#include <utility>

#include "base/number_text.h"
#include "base/rounding.h"
#include "base/settings_keys.h"
#include "base/text.h"
#include "platform/system_text.h"

namespace zentaq {

namespace {

constexpr const char* ruler =
    "--------------------------------------------------------------------------------";
/// Both ways out: whoever waits for both is told once, and asked once.
constexpr const char* exitProgram = "Exit Program";

double drawFromTimeOfDay() {
    const auto now = std::chrono::system_clock::now().time_since_epoch() / std::chrono::microseconds(1);
    std::minstd_rand random(static_cast<unsigned>(now));
    return std::uniform_real_distribution<double>(0, 1)(random);
}

/// The reason at the end of a failure's text: a line of the log is short, and the file has one place only.
std::string reasonBehind(const std::string& path, const std::string& failure) {
    const auto at = failure.find(path + ": ");
    return at == std::string::npos ? failure : failure.substr(at + path.size() + 2);
}

}  // namespace

bool firstInstance(const SingleInstance& instance, Dialogs& dialogs) {
    if (!instance.anotherRuns()) return true;
    dialogs.show({"Zentaq4", "Zentaq4 already running!  Program will now close.", Icon::None, Buttons::Ok});
    return false;
}

std::string versionText() {
    std::string text;
    for (const std::string& part : split(ZENTAQ_VERSION, '.')) {
        text += (text.empty() ? "" : ".") + std::string(trimmed(part));
    }
    return text;
}

int tipNumber(double random, int count) {
    if (count < 1) return 0;
    const auto drawn = static_cast<int>(truncate(random * count + 1));
    return std::clamp(drawn, 1, count);
}

void Kernel::load() {
    WindowSet& windows = session_.windows();
    resumeNext_.statement([&] { windows.open(window::main); });
    resumeNext_.statement([&] { windows.tell(&WindowNews::enableToolbar, false); });
    session_.AppName = settings::application;
    session_.StartingUp = 1;
    resumeNext_.statement([&] { windows.open(window::splash, "Setting Up Environment"); });
    setUpEnvironment();
    resumeNext_.statement([&] { windows.open(window::splash, "Initializing Console"); });
    startConsole();
    resumeNext_.statement([&] { windows.open(window::splash, "Initializing Database"); });
    openDatabase();
    resumeNext_.statement([&] { windows.open(window::config); });
    writeBanner();
    resumeNext_.statement([&] { windows.open(window::splash, "Program Activated"); });
    activate();
}

void Kernel::setUpEnvironment() {
    resumeNext_.statement([&] { takeStoredPort(); });
    resumeNext_.statement([&] { session_.VersionText = versionText(); });
    resumeNext_.statement([&] { session_.makeUnits(); });
    resumeNext_.statement([&] { session_.windows().tell(&WindowNews::makeGraphPools); });
    clearRunState();
    session_.FileFilterIndex = 1;
}

// Numbers move when a unit or an adapter comes or goes, so that the device decides and its number follows. A
// number that was stored without one keeps the device that has it now.
void Kernel::takeStoredPort() {
    SettingsStore& store = session_.settings();
    const std::string written = store.get(settings::system, settings::CommPort);
    const std::string identity = store.get(settings::system, settings::CommPortIdentity);
    const int number = toInt16(numberOf(store.get(settings::system, settings::CommPort, "1")));
    session_.link.commPort(number, identity);
    if (written.empty()) return;  // nobody has chosen one yet
    const auto port = session_.link.chosenPort();
    if (!port) return;
    session_.link.commPort(port->number, port->identity);
    if (port->number != number) store.set(settings::system, settings::CommPort, numberText(port->number));
    if (port->identity != identity) {
        store.set(settings::system, settings::CommPortIdentity, port->identity);
    }
}

void Kernel::clearRunState() {
    session_.Monitoring = false;
    session_.AutoMonitoring = false;
    session_.DataModified = false;
    session_.CurrentFile.clear();
    session_.CurrentUnit(0);
}

void Kernel::startConsole() {
    resumeNext_.statement([&] { session_.LogFile = session_.applicationFolder() + "/zentaq.log"; });
    session_.console.logFile(session_.LogFile);
    resumeNext_.guarded([&] { return readsOne(settings::AutoLog); },
                        [&] {
                            // The log holds one run only.
                            resumeNext_.statement([&] { std::filesystem::remove(session_.LogFile); });
                            session_.console.LogToFile(true);
                        });
}

void Kernel::openDatabase() {
    resumeNext_.statement(
        [&] { session_.DatabaseFile = session_.applicationFolder() + "/bin/data/zentaq410-02.pak"; });
    // kept: a database that does not open stops nothing; each later query fails on its own. The log says why.
    // What needs it tries again.
    endOnFailure([&] { session_.requireReference(); },
                 [&](const std::string& why) {
                     report("No reference database: " + reasonBehind(session_.DatabaseFile, why));
                 });
}

void Kernel::report(const std::string& trouble) {
    if (!bannerStands_) {
        early_.push_back(trouble);
        return;
    }
    resumeNext_.statement([&] { session_.sysLog(trouble); });
}

void Kernel::writeBanner() {
    resumeNext_.statement([&] { session_.console.plainLine(ruler); });
    resumeNext_.statement([&] { session_.sysLog("Norvalia Zentaq Engine Management Software"); });
    resumeNext_.statement([&] { session_.sysLog("v" + session_.VersionText); });
    resumeNext_.statement([&] { session_.console.plainLine(ruler); });
    resumeNext_.statement([&] { session_.console.plainLine(""); });
    resumeNext_.statement([&] { session_.sysLog(session_.platform().clock.dateText()); });
    resumeNext_.statement([&] { session_.sysLog("Program Initialized on " + systemText()); });
    resumeNext_.statement(
        [&] { session_.sysLog("COMM: Listening on Port #" + numberText(session_.link.commPort())); });
    resumeNext_.statement([&] { session_.sysLog("User Interface Initialized."); });
    bannerStands_ = true;
    for (const std::string& trouble : early_) report(trouble);
    early_.clear();
}

void Kernel::activate() {
    WindowSet& windows = session_.windows();
    resumeNext_.statement([&] { windows.tell(&WindowNews::enableToolbar, true); });
    session_.StartingUp = 0;
    showLinkAndDashboard();
    resumeNext_.statement(
        [&] { session_.TableColorMode = toInt16(session_.settingNumber(settings::TableColor)); });
    resumeNext_.guarded([&] { return readsOne(settings::CommDialog); },
                        [&] { windows.tell(&WindowNews::showCommList, true); },
                        [&] { windows.tell(&WindowNews::showCommList, false); });
    resumeNext_.statement([&] { windows.focus(window::config); });
    resumeNext_.statement([&] { showTip(); });
    resumeNext_.guarded([&] { return readsOne(settings::FileOpen); }, [&] { commands_.files.open(); });
}

void Kernel::showLinkAndDashboard() {
    resumeNext_.statement([&] { session_.applyTrace(); });
    resumeNext_.statement([&] { session_.windows().open(window::link); });
    resumeNext_.statement([&] { session_.link.load(); });
    resumeNext_.statement([&] { session_.platform().ticker.start(); });
    resumeNext_.statement([&] { session_.windows().open(window::dashboard); });
    // kept: loading the link opens the port, and loading the dashboard opens it once more, with its own
    // lines.
    resumeNext_.statement([&] { session_.link.ORB_Initialize(); });
}

void Kernel::showTip() {
    const Database* database = session_.reference();
    if (database == nullptr) return;
    const auto count = static_cast<int>(database->tips().size());
    const int number = tipNumber(drawFromTimeOfDay(), count);
    if (number > 0) session_.windows().tell(&WindowNews::showTip, database->tip(number));
}

bool Kernel::System_Shutdown(bool confirmed) {
    if (ended_ || confirmed) return shutDown(confirmed);
    session_.windows().afterEdits(exitProgram, [this] { shutDown(false); });
    return ended_;
}

bool Kernel::shutDown(bool confirmed) {
    if (ended_) return true;
    if (session_.saving.putsOff(exitProgram, [this, confirmed] { System_Shutdown(confirmed); })) return false;
    session_.sysLog("System Shutdown Requested.");
    if (!confirmed) {
        const Answer answer = session_.dialogs().show(
            {"Shutdown", "Would you like to Shutdown Zentaq?", Icon::Question, Buttons::OkCancel});
        UnitCommands::LeftBehind agreed;
        if (answer != Answer::Ok || !commands_.unit.mayLeave(agreed)) return false;
        // Also on this way out: the user's work must not be lost because a menu was used for leaving.
        afterSaving(agreed, [this] { end(); });
        return ended_;
    }
    end();
    return true;
}

void Kernel::afterSaving(UnitCommands::LeftBehind agreed, const std::function<void()>& goOn) {
    // What begins while the disk is busy has not been asked about.
    commands_.saves.offerToSave([this, agreed, goOn]() mutable {
        if (commands_.unit.mayLeave(agreed)) goOn();
    });
}

void Kernel::end() {
    if (std::exchange(ended_, true)) return;
    session_.saving.dropWaiting();
    if (session_.link.transfer().pending()) {
        skipFailing([&] { session_.sysLog("Transfer broken off by the user."); });
    }
    session_.Monitoring = false;
    session_.AutoMonitoring = false;
    skipFailing([&] { session_.recorder->endAll(); });
    skipFailing([&] { session_.windows().tell(&WindowNews::killTimers); });
    skipFailing([&] { session_.link.RS232_Close(); });
    skipFailing([&] { session_.link.unload(); });
    skipFailing([&] { session_.platform().ticker.stop(); });
    skipFailing([&] { session_.sysLog("System Shutdown!"); });
    skipFailing([&] { session_.windows().close(window::main); });
}

void Kernel::closeRequested() {
    // Intended: Cancel declines the save and does not keep the program open. A save that fails does, because
    // the changes would be lost with the process.
    session_.windows().afterEdits(exitProgram, [this] { closeNow(); });
}

void Kernel::closeNow() {
    if (ended_) return;
    if (session_.saving.putsOff(exitProgram, [this] { closeRequested(); })) return;
    UnitCommands::LeftBehind agreed;
    if (!commands_.unit.mayLeave(agreed)) return;
    afterSaving(agreed, [this] { System_Shutdown(true); });
}

}  // namespace zentaq
