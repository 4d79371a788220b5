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
    // What needs a save that runs to have ended begins anew then.
    void newCalibration();  ///< mnuNew
    void open();            ///< mnuOpen
    void save();            ///< mnuSave: nothing without a current file
    void saveAs();          ///< mnuSaveAs
    void close();           ///< mnuClose

    /// Told whether the file is whole on the disk, behind the boxes about it: when the save has ended.
    using Saved = std::function<void(bool saved)>;
    /// Saves the calibration in hand to its file, or asks for one.
    void saveInHand(const Saved& then);
    /// Asks "Save changes?" if there are any, saves, and goes on. It does not go on when the user wanted to
    /// save and it failed: everything stays as it is.
    void offerToSave(std::function<void()> goOn);

    // ---- The unit
    void programOrb();       ///< mnuProgramORB
    void firmwareUpgrade();  ///< mnuFirmwareUpgrade
    /// While a transfer runs or waits to: tells that the command must wait, and answers true. Commands that
    /// would change the calibration, the port or the line under it begin with this question.
    bool refusedByTransfer();
    /// While a port is searched: the same for commands that open a port.
    bool refusedBySearch();
    /// What the user has agreed to leave behind at the unit.
    struct LeftBehind {
        bool transfer = false;  ///< of a calibration or a datalog, broken off
        bool firmware = false;  ///< likewise
        bool zeroAdvance = false;
    };
    /// Before the program ends: asks whether a transfer that runs or waits may be broken off, and whether the
    /// unit may go on with zero advance, each unless it is agreed. False: stay. A question whose reason goes
    /// meanwhile goes with it, and the user stays.
    bool mayLeaveUnit(LeftBehind& agreed);
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
    /// 2 starts a monitor session, 3 ends it.
    void loadCommand(int code);

    // ---- The display
    void help();  ///< mnuHelpContents
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
    enum class Outcome { Whole, Corrupt, NeedsReference };
    /// Reads a file into the object of a slot, which becomes the current one. When it cannot be read there is
    /// a line in the log, and all is as before.
    Outcome read(int slot, const std::function<void(Unit&)>& file, std::string& why);
    Next tellNotRead(Outcome outcome, const std::string& path, const std::string& why);
    Next askAgain(const std::string& title, const std::string& text);
    void finishOpening(const std::string& path);
    void noteShortFile(const std::string& path);
    void tellCutFile(const std::string& path);
    /// What speaks against programming the calibration in hand, one line each; empty for nothing.
    std::string doubts();
    void repairOldFields();
    /// Saves to the current file, one of the older generation under a new name.
    void saveCurrent(const Saved& then);
    void saveUnderNewName(const Saved& then);
    /// The calibration that a box in front of a save is about.
    struct InHand {
        const Unit* unit = nullptr;
        std::string file;
        int cellsCutOff = 0;

        bool operator==(const InHand&) const = default;
    };
    InHand inHand();
    /// False, with a line in the log: another calibration, or another save, has come meanwhile.
    bool isStillInHand(const InHand& asked);
    /// Asks, where the file in hand was cut, whether to save it all the same.
    bool maySaveCutFile();
    std::string askNewName();
    void afterEdits(const std::string& caption, void (MainCommands::*command)());
    void newNow();
    void openNow();
    void saveNow();
    void saveAsNow();
    void closeNow();
    void programNow();
    void upgradeNow();
    void storeNow();

    /// The unit that a command was begun with.
    struct LinkedIdentity {
        int kind = 0;  ///< 0: none
        std::int32_t serial = 0;
    };
    LinkedIdentity linkedIdentity() const;
    bool mayBreakTransfer(LeftBehind& agreed);
    Answer askToBreakTransfer(bool firmware, const std::function<bool()>& stands);
    bool zeroAdvanceOn() const;
    /// Asks, where the unit runs with zero advance, whether to go on all the same. True too where zero
    /// advance has ended meanwhile.
    bool mayLeaveZeroAdvance(const std::string& goOn);
    Answer askToLeaveZeroAdvance(const std::string& goOn);
    /// Tells with the numbered errors why the calibration in hand cannot go to the unit on the link.
    bool mayProgram();
    bool isStillThere(const LinkedIdentity& unit, const std::string& title);
    void sendCalibration();
    /// The firmware file of the user's choice; empty when there is none.
    std::string chooseFirmware();
    /// The slot of the unit that a firmware will go to; 0 when nobody knows.
    int slotForFirmware(const LinkedIdentity& begunWith) const;
    bool firmwareIsValid(const std::string& path, int slot);
    bool mayUpgrade(const std::string& path, const LinkedIdentity& begunWith);
    /// The text of a whole firmware file; nothing, after a box, of any other.
    std::optional<std::string> readFirmware(const std::string& path);
    void startFirmware(const std::string& path, const std::string& text, const LinkedIdentity& begunWith);
    /// Number and identity of the port that the program means, into the settings.
    void storePort();
    /// What is written, what is known of the file, and what follows.
    struct SaveJob {
        Unit::FileContent content;
        FileSave save;
        float formerCode = 0;       ///< of the header
        std::uint64_t changes = 0;  ///< of the user's, so far
        std::function<void()> stored;
        Saved then;
    };
    /// Saves under the name that the Unit object has. `stored` is run before the user is told of the end.
    void saveChecked(std::optional<std::string> known, const std::function<void()>& stored,
                     const Saved& then);
    void saveEnded(SaveJob& job, const FileSaved& saved);
    void tellNotSaved(const std::string& why);
    bool mayOverwriteChange(const std::string& path);
    void startOpening();
    void startNew();
    void finishClosing();
    void startProgramming(const LinkedIdentity& unit);
    void takeName(const std::string& path);
    bool broughtToFirmware();
    void tellNotConverted(const std::string& why);

    Session& session_;
};

}  // namespace zentaq
