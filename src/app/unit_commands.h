// The doors to the unit on the link and to its port.
#pragma once

#include <functional>
#include <string>

#include "app/session.h"

namespace zentaq {

class UnitCommands {
 public:
    explicit UnitCommands(Session& session) : session_(session) {}

    void killEngine();    ///< mnuMonitor_KillEngine
    void zeroAdvance();   ///< mnuZeroAdv: toggles
    void refreshCodes();  ///< mnuClearDashCodes
    void clearCodes();    ///< mnuORB_ClearCodes
    void storeOnFly();    ///< makes on-the-fly changes permanent in the unit
    void identify();      ///< asks the unit again who it is
    /// The user's choice: opened, and stored by number and identity. Without an identity the device that has
    /// the number now.
    void choosePort(int number, const std::string& identity = {});
    /// Port search; on success stores the port. Answers the port or 0.
    int autodetectPort();
    /// mnuAutoDetectPort: the same; while a search runs it ends that one.
    void searchPorts();
    /// 2 starts a monitor session, 3 ends it.
    void loadCommand(int code);

    /// What the user has agreed to leave behind at the unit.
    struct LeftBehind {
        bool transfer = false;  ///< of a calibration or a datalog, broken off
        bool firmware = false;  ///< likewise
        bool zeroAdvance = false;
    };
    /// Before the program ends: asks whether a transfer that runs or waits may be broken off, and whether the
    /// unit may go on with zero advance, each unless it is agreed. False: stay. A question whose reason goes
    /// meanwhile goes with it, and the user stays.
    bool mayLeave(LeftBehind& agreed);

 private:
    bool mayBreakTransfer(LeftBehind& agreed);
    Answer askToBreakTransfer(bool firmware, const std::function<bool()>& stands);
    bool zeroAdvanceOn() const;
    /// Asks, where the unit runs with zero advance, whether to go on all the same. True too where zero
    /// advance has ended meanwhile.
    bool mayLeaveZeroAdvance(const std::string& goOn);
    Answer askToLeaveZeroAdvance(const std::string& goOn);
    void storeNow();
    /// Number and identity of the port that the program means, into the settings.
    void storePort();

    Session& session_;
};

}  // namespace zentaq
