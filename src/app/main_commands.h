// The commands of the main window: the life of the calibration file, and the doors to the unit.
// Windows call them and show what the session holds afterwards.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "app/session.h"

namespace zentaq {

class MainCommands {
 public:
    explicit MainCommands(Session& session) : session_(session) {}

    // ---- The file. All report by boxes and leave the former state on a failure.
    void newCalibration();  ///< mnuNew
    void open();            ///< mnuOpen
    void save();            ///< mnuSave: nothing without a current file
    void saveAs();          ///< mnuSaveAs
    void close();           ///< mnuClose

    /// Asks "Save changes?" if there are any. False when the user wanted to save and it failed: the caller
    /// then leaves everything as it is.
    bool offerToSave();

    // ---- The unit
    void programOrb();       ///< mnuProgramORB
    void firmwareUpgrade();  ///< mnuFirmwareUpgrade
    /// While a transfer runs or waits to: tells that the command must wait, and answers true. Commands that
    /// would change the calibration, the port or the line under it begin with this question.
    bool refusedByTransfer();
    /// Before the program ends: asks whether a transfer that runs or waits may be broken off. False: stay.
    bool mayBreakTransfer();
    void killEngine();            ///< mnuMonitor_KillEngine
    void zeroAdvance();           ///< mnuZeroAdv: toggles
    void refreshCodes();          ///< mnuClearDashCodes
    void clearCodes();            ///< mnuORB_ClearCodes
    void storeOnFly();            ///< makes on-the-fly changes permanent in the unit
    void identify();              ///< asks the unit again who it is
    /// The user's choice: opened, and stored by number and identity. Without an identity the device that has
    /// the number now.
    void choosePort(int number, const std::string& identity = {});
    /// Port search; on success stores the port. Answers the port or 0.
    int autodetectPort();
    /// 2 starts a monitor session, 3 ends it.
    void loadCommand(int code);

    // ---- Windows of their own
    void options();          ///< mnuOptions, mnuControlPanel
    void dashboardColors();  ///< mnuMonitor_ChangeColors: the options' page of the colours
    void sensorManager();    ///< mnuMAPSensors
    void help();             ///< mnuHelpContents

    // ---- The display
    void dayMode();
    void nightMode();
    /// Opens a table window; without a calibration error 1003.
    void openTable(const std::string& table, const std::string& title);
    /// Tree click: opens a table or answers the page of `sstMenu`; -1 for a table.
    int treeClick(const std::string& key);

 private:
    enum class Next { Done, AskAgain };
    Next openOnce();
    Next openCalibration(const std::string& path);
    Next openOlder(const std::string& path, std::uintmax_t length);
    /// Reads a file into the object of a slot, which becomes the current one. False, with a line in the log,
    /// when it cannot be read: all is as before.
    bool read(int slot, const std::function<void(Unit&)>& file);
    Next askAgain(const std::string& title, const std::string& text);
    void finishOpening(const std::string& path);
    void noteShortFile(const std::string& path);
    void repairOldFields();
    /// Ends the form of the general parameters. False: it holds a new calibration that the user keeps.
    bool leaveGeneralConfig();
    /// Saves to the current file, one of the older generation under a new name. False when that failed or was
    /// cancelled.
    bool saveCurrent();
    bool saveUnderNewName();
    /// The firmware file of the user's choice; empty when there is none.
    std::string chooseFirmware();
    /// The slot of the unit that a firmware will go to; 0 when nobody knows.
    int slotForFirmware() const;
    bool firmwareIsValid(const std::string& path, int slot);
    /// The text of a whole firmware file; nothing, after a box, of any other.
    std::optional<std::string> readFirmware(const std::string& path);
    void startFirmware(const std::string& path, const std::string& text, int slot);
    /// Number and identity of the port that the program means, into the settings.
    void storePort();
    /// Saves and tells a failure. True when the file is whole on the disk.
    bool saveChecked();

    Session& session_;
};

}  // namespace zentaq
