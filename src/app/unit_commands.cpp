#include "app/unit_commands.h"

#include "app/command_guards.h"
#include "app/flight_record.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/settings_keys.h"

namespace zentaq {

void UnitCommands::storeOnFly() {
    afterEdits(session_, "Store Changes in ORB", [commands = *this]() mutable { commands.storeNow(); });
}

bool UnitCommands::mayLeave(LeftBehind& agreed) {
    if (!mayBreakTransfer(agreed)) return false;
    if (agreed.zeroAdvance || !zeroAdvanceOn()) return true;
    agreed.zeroAdvance = askToLeaveZeroAdvance("End the program all the same?") == Answer::Yes;
    return agreed.zeroAdvance;
}

// While the box is read one transfer may end and another begin, of which there is something else to say.
bool UnitCommands::mayBreakTransfer(LeftBehind& agreed) {
    const Link& link = session_.link;
    while (link.transfer().pending()) {
        const bool firmware = link.transfer().firmware();
        bool& broken = firmware ? agreed.firmware : agreed.transfer;
        if (broken) return true;
        const auto stands = [&link, firmware] {
            return link.transfer().pending() && link.transfer().firmware() == firmware;
        };
        broken = askToBreakTransfer(firmware, stands) == Answer::Yes;
        if (!broken && (stands() || !link.transfer().pending())) return false;
    }
    return true;
}

Answer UnitCommands::askToBreakTransfer(bool firmware, const std::function<bool()>& stands) {
    return session_.dialogs().show(
        {.title = "Transfer Running",
         .text = firmware ? "A firmware upgrade is running.\n"
                            "If the program ends now there will be no firmware on this unit, and the upgrade "
                            "must be completed successfully before the unit will function.\n"
                            "End the program all the same?"
                          : "The unit is being programmed, or its datalog retrieved.\n"
                            "If the program ends now the transfer fails. The unit keeps the calibration that "
                            "it has, and its power must be cycled.\n"
                            "End the program all the same?",
         .icon = Icon::Critical,
         .buttons = Buttons::YesNo,
         .declines = true,
         .stands = stands});
}

bool UnitCommands::zeroAdvanceOn() const {
    return session_.link.linked().zeroAdvance || session_.link.zeroAdvanceAsked();
}

// A box that goes by itself is answered No, but nobody said so, and nothing is left behind any more.
bool UnitCommands::mayLeaveZeroAdvance(const std::string& goOn) {
    if (!zeroAdvanceOn()) return true;
    return askToLeaveZeroAdvance(goOn) == Answer::Yes || !zeroAdvanceOn();
}

Answer UnitCommands::askToLeaveZeroAdvance(const std::string& goOn) {
    const Answer answer =
        session_.dialogs().show({.title = "Zero Advance",
                                 .text = "The unit still runs with zero advance.\n"
                                         "It does so without the program too, until its power is cycled.\n"
                                         "To end it now, stay and choose Set Zero Advance once more.\n" +
                                         goOn,
                                 .icon = Icon::Exclamation,
                                 .buttons = Buttons::YesNo,
                                 .declines = true,
                                 .stands = [this] { return zeroAdvanceOn(); }});
    if (answer != Answer::Yes && zeroAdvanceOn()) {
        session_.sysLog("The unit runs with zero advance: stayed with it.");
    }
    return answer;
}

// Not refused by a download, nor by a run that still waits: it goes out in front of both.
void UnitCommands::killEngine() {
    session_.sysLog("USER: Kill Engine Requested.");
    if (session_.link.wireTaken()) return tellKillRefused(session_);
    if (!session_.platform().port.isOpen()) {
        session_.sysLog("Kill Engine was not sent: no port is open.");
        session_.inform("Kill Engine was not sent: no port is open.");
        return;
    }
    session_.link.SEND_KILL();
}

void UnitCommands::zeroAdvance() {
    if (refusedByTransfer(session_)) return;
    const bool on = !session_.link.zeroAdvanceAsked();
    session_.link.Send_ORB_Command(on ? std::string("Z\xFF") : std::string("Z\0", 2));
}

void UnitCommands::refreshCodes() {
    if (refusedByTransfer(session_)) return;
    session_.refreshCodes();
}

void UnitCommands::clearCodes() {
    if (refusedByTransfer(session_)) return;
    session_.codes.Clear_CHKE();
    session_.link.Send_ORB_Command("A");
}

void UnitCommands::storeNow() {
    if (refusedByTransfer(session_)) return;
    session_.unitMemory.storeAsked();
    session_.link.Send_ORB_Command("S");
}

void UnitCommands::identify() {
    if (refusedByTransfer(session_)) return;
    session_.link.Send_ORB_Command("E");
    session_.link.Send_ORB_Command("B");
}

void UnitCommands::searchPorts() {
    session_.link.searching() ? session_.link.stopSearch() : static_cast<void>(autodetectPort());
}

int UnitCommands::autodetectPort() {
    if (refusedByTransfer(session_) || refusedBySearch(session_)) return 0;
    if (!mayLeaveZeroAdvance("Search the ports all the same?")) return 0;
    if (refusedByTransfer(session_) || refusedBySearch(session_)) return 0;  // begun while the box was read
    const int former = session_.link.commPort();
    const std::string formerIdentity = session_.link.commIdentity();
    const int port = session_.link.Autodetect_COMM_Port();
    if (port == 0) {
        // The search leaves the last port it tried; the user's own is the one to wait at.
        session_.link.commPort(former, formerIdentity);
        session_.link.ORB_Initialize();
        if (session_.link.searchStopped()) {
            session_.notice("The search for a unit was ended.");
            return 0;
        }
        session_.notice("Could not Find ORB Unit.  Please check the serial connection.");
        return 0;
    }
    storePort();
    return port;
}

void UnitCommands::storePort() {
    SettingsStore& store = session_.settings();
    store.set(settings::system, settings::CommPort, numberText(session_.link.commPort()));
    store.set(settings::system, settings::CommPortIdentity, session_.link.commIdentity());
}

void UnitCommands::choosePort(int number, const std::string& identity) {
    if (refusedByTransfer(session_) || refusedBySearch(session_)) return;
    if (!mayLeaveZeroAdvance("Choose another port all the same?")) return;
    if (refusedByTransfer(session_) || refusedBySearch(session_)) return;  // begun while the box was read
    if (identity.empty()) {
        session_.link.commPort(number);
    } else {
        session_.link.commPort(number, identity);
    }
    session_.link.ORB_Initialize();
    storePort();
    // Another unit may be there, and an idle link would take it for the one of the former port.
    session_.link.Send_ORB_Command("E");
}

void UnitCommands::loadCommand(int code) {
    if (code == 2) {
        if (refusedByTransfer(session_) || refusedBySearch(session_)) return;  // it opens the port anew
        session_.Monitoring = true;
        skipFailing([&] { session_.AutoMonitoring = session_.settingNumber(settings::AutoMonitor) == 1; });
        // A port that is answering stays as it is: what is in flight there would be lost.
        const bool answering = session_.platform().port.isOpen() && session_.link.linked().UnitFound;
        if (!answering) session_.link.ORB_Initialize();
        session_.recorder->monitorSession(true);
    } else if (code == 3) {
        session_.Monitoring = false;
        session_.AutoMonitoring = false;
        session_.recorder->monitorSession(false);
        session_.windows().tell(&WindowNews::resetDashboard);
    }
}

}  // namespace zentaq
