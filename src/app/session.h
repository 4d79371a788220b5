// What the process owns: the Unit objects, the live values, the reference database, the link and the run
// flags. It is handed down by reference; nothing of it is global.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/console.h"
#include "app/curve_windows.h"
#include "app/fold.h"
#include "app/messages.h"
#include "app/notices.h"
#include "app/recent_files.h"
#include "app/saving.h"
#include "app/surface_windows.h"
#include "app/tick_guard.h"
#include "app/unit_memory.h"
#include "app/window_set.h"
#include "base/channels.h"
#include "link/frame_timing.h"
#include "link/link.h"
#include "link/link_teller.h"
#include "link/poller.h"
#include "live/check_engine.h"
#include "live/ecu.h"
#include "live/frame_decoder.h"
#include "live/frame_feed.h"
#include "platform/clock.h"
#include "platform/dialogs.h"
#include "platform/held_signals.h"
#include "platform/serial_port.h"
#include "platform/settings_store.h"
#include "platform/side_work.h"
#include "platform/ticker.h"
#include "platform/yield.h"
#include "refdata/database.h"
#include "tables/cell_colours.h"
#include "trace/wire_trace.h"
#include "unit/unit.h"
#include "unit/unit_host.h"

namespace zentaq {

/// The cell in hand of a table, in words; empty without a table.
struct CellContext {
    std::string line;
    std::string words;
};

class FlightRecord;

/// What the program has in hand beside the calibration itself.
struct FileInHand {
    FileHeader fileHeader;
    std::string CurrentFile;
    std::optional<std::string> fileHolds;  ///< what CurrentFile began with when it was read or saved last
    bool fileIsSample = false;             ///< CurrentFile came with the program, and is not written over
    bool DataModified = false;
    int FileFilterIndex = 1;
    std::shared_ptr<const Calibration> opened{};  ///< as it was when it came into hand; none: nothing is
};

/// The outside world of one session.
struct Platform {
    SerialPort& port;
    Ticker& ticker;
    Clock& clock;
    SettingsStore& settings;
    Dialogs& dialogs;
    Yield& yield;
    std::string applicationFolder;  ///< folder of the programs
    std::string userFolder;         ///< the user's documents folder + "/Zentaq"
    FileWriter* writer = nullptr;   ///< of saves beside the program's thread; nullptr: each is done at once
    SideWork* side = nullptr;       ///< for files on a slow disk; nullptr: all is done at once
};

class Session : public UnitHost, public LinkTeller, public FileInHand {
 public:
    static constexpr int slotCount = 101;

    explicit Session(const Platform& platform);
    ~Session() override;

    void attach(WindowSet& windows) { windows_ = &windows; }
    WindowSet& windows() { return *windows_; }

    // ---- Units
    /// Makes the objects of all known kinds.
    void makeUnits();
    /// Units(slot). BoundsError outside 0 to 100; an empty slot answers as slot 0.
    Unit& Units(int slot);
    Unit& currentUnitObject() { return Units(slotInHand()); }
    bool hasUnit(int slot) const;
    /// The kind in the header of the calibration in hand, as its file has it; 0 for none.
    float CurrentUnit() const { return fileHeader.currentUnit; }
    void CurrentUnit(float kind) { fileHeader.currentUnit = kind; }
    /// A new calibration is being made, and no file holds it yet.
    bool creating() const { return fileHeader.fileState == "NEW"; }

    /// What is in hand now is what changes are counted from.
    void noteOpened() { opened = std::make_shared<const Calibration>(currentUnitObject().calibration()); }
    /// To be copied before another calibration comes into hand, and put back with its own value.
    FileInHand& fileInHand() { return *this; }

    // ---- State of the process
    std::string AppName = "Zentaq4";
    int StartingUp = 1;
    std::string VersionText;
    bool Monitoring = false;
    bool AutoMonitoring = false;
    bool AutoVEActive = false;  ///< the open fuel table corrects itself
    std::string LogFile;
    std::string DatabaseFile;
    int TableColorMode = 0;
    // The firmware that the program expects, by slot: that of the kinds, once their units are made.
    std::array<int, slotCount> FW_ReleaseTable{};
    std::array<int, slotCount> FW_BuildTable{};
    std::optional<Database> database;  ///< as the start left it: ask reference()

    // ---- Parts
 private:
    // First, because the parts use them.
    DialogsBetweenTicks dialogs_;
    YieldBetweenTicks yield_;

 public:
    Console console;
    Messages messages;
    LiveValues live;
    FrameDecoder decoder;
    FrameFeed frames;  ///< tells of each frame that was decoded, paint and windows alike
    Link link;
    Poller poller;
    WireTrace trace;
    FrameTiming timing;
    CheckEngineDisplay codes;  ///< the dashboard's check-engine list
    Ecu ecu;                   ///< holds the pulse widths and duty cycles of the cells
    PaintMemory paintMemory;   ///< where the engine has been on a table; outlives the table's window
    Saving saving;
    UnitMemory unitMemory;  ///< of the one on the link
    Notices notices;        ///< what is told without a box
    RecentFiles recentFiles;
    SurfaceWindows surfaces;
    CurveWindows curves;
    std::vector<Doubt> doubtsLeft;  ///< that the user has seen and programmed all the same
    CellContext cellContext;        ///< of the table's window, for the status bar
    Folds folds;
    std::unique_ptr<FlightRecord> recorder;

    Platform& platform() { return platform_; }
    SettingsStore& settings() { return platform_.settings; }
    Dialogs& dialogs() { return dialogs_; }

    /// The reference database. One that could not be opened is tried again, at most once a second; nullptr
    /// while there is none.
    Database* reference();
    /// The same for what cannot do without. Throws Failure with the reason.
    Database& requireReference();
    /// The next question tries again at once: the user has begun something that may need it.
    void retryReference() { nextReferenceUs_ = 0; }

    /// A setting as a number; TypeMismatch where it has no value, which each caller's policy handles.
    double settingNumber(const std::string& key) const;
    /// The cells of all tables stand on the heat scale.
    bool heatScaleChosen() const;
    /// One firing of the dashboard's timer: polls the unit, and opens a port that has appeared.
    void poll(bool secondTabShowing);
    /// Begins or ends the wire trace by the setting.
    void applyTrace();
    /// The file that the wire trace goes to.
    std::string traceFile() const { return platform_.applicationFolder + "/zentaq.trace"; }
    /// Empties the code list and asks the unit for its codes.
    void refreshCodes();
    /// The file or link changed what the dashboard shows: Day_Mode or Night_Mode by the setting.
    void applyMonitorMode();
    bool dayMode() const;
    /// Two slots hold one class of units: a calibration in hand of that class is in the slot of the unit on
    /// the link. Its object stays the same, only its slot changes.
    void followLinkedKind();
    /// The slot for a file of this one: that of the unit on the link, where both are one class.
    int slotForFile(int slot) const;
    /// A calibration came into hand behind the unit on the link: what closing the former one has wiped is
    /// known of the unit all the same.
    void retellLinkedUnit();
    /// A value of the calibration in hand was changed by the user.
    void markModified();
    /// Goes up with each change of the user's: what was saved before the last one is not what is in hand.
    std::uint64_t userChanges() const { return userChanges_; }

    // ---- What the units and the link ask as everybody does
    void sysLog(std::string_view text) override;
    void addToLastLine(std::string_view text) override;
    /// A plain box with OK; lines separated by '\n'.
    void inform(std::string_view text);
    /// A line of the state strip and of the log, for what no command has to wait for.
    /// A box where the strip is not seen. `stands`: whether what it is about still is.
    void notice(std::string_view text, const std::function<bool()>& stands = {});
    bool fahrenheit() const override;
    FileHeader& header() override { return fileHeader; }
    std::string applicationFolder() const override { return platform_.applicationFolder; }
    int slotInHand() const override;
    void show(const Box& box) override;
    FirmwareVersion expectedFirmware(int slot) const override;
    /// A calibration has a file: the title and the recent files tell which.
    void fileNamed(const std::string& path, bool sample);
    /// The unit and the file agree (true), or they do not or the link is lost (false).
    void initializeOnFly(bool on);

 private:
    // ---- What the units alone ask
    void heard(const UnitNews& news) override;
    void sendOnFly(std::string_view record) override;
    std::optional<EngineFacts> engine(int kind, int optionType) override;
    std::optional<SensorFacts> mapSensor(int id) override;
    bool firmwareKnownFromLink(int slot) const override;
    LinkedState& linkedState(int slot) override { return linkedStates_[slot]; }
    void yield() override;
    void formsChanged() override;

    // ---- What the link alone asks and tells
    Unit& unit(int slot) override { return Units(slot); }
    float fileFirmwareCode() const override;
    void heard(const LinkNews& news) override;
    void commLog(std::string_view text) override;
    void displayMessage(int code) override;
    void transferEnded(const TransferEnd& end) override;

    std::array<LineWatch*, 2> watchers() { return {&trace, &timing}; }
    void showFrameTimes();
    void unitKindFound(int slot);
    void rememberUnit();
    void codesReceived();
    void codesCleared();
    void holdSignals();
    bool insideTick() const { return link.handling(); }

    Platform platform_;
    WindowSet quiet_;
    WindowSet* windows_ = &quiet_;
    std::array<std::unique_ptr<Unit>, slotCount> units_;
    std::map<int, LinkedState> linkedStates_;  ///< by slot
    std::int64_t nextPortCheckUs_ = 0;
    std::int64_t nextTimesUs_ = 0;
    std::optional<HeldSignals> heldSignals_;
    std::int64_t nextReferenceUs_ = 0;
    std::uint64_t userChanges_ = 0;
    std::string noReference_;  ///< why the last try failed; empty before the first
    FrameFeed::Subscription paintFollows_;
    std::vector<Box> boxesToShow_;  ///< of the link: they wait, or the first one is being read
};

}  // namespace zentaq
