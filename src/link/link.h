// frmCOMM: the command ring, the tick machine, the reply handlers and the transfers of the one serial link.
// Strict request and reply: one command in flight, every time-out a count of ticks.
#pragma once

#include <array>
#include <cstdint>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "link/link_host.h"
#include "link/link_status.h"
#include "link/progress.h"
#include "link/reply_decoding.h"
#include "platform/clock.h"
#include "platform/serial_port.h"
#include "platform/settings_store.h"
#include "platform/yield.h"

namespace zentaq {

class FrameDecoder;

/// What the unit on the link has told about itself.
struct LinkedUnit {
    std::int32_t SerialNumber = 0;  ///< 0 means none
    int LinkedUnitKind = 0;         ///< 0 means none
    bool UnitFound = false;
    bool FirmwareTold = false;  ///< the unit has told its firmware: a calibration may be brought to it
    bool UnitIdentified = false;
    bool WideMonitor = false;
    bool OldFirmware = false;
    int UnitSubType = 0;      ///< kind 3 only: subtype byte plus 1
    std::string UnitBinName;  ///< 24 characters, not trimmed

    /// A unit of this kind has told its firmware.
    bool tells(int slot) const { return FirmwareTold && LinkedUnitKind == slot; }
};

enum class TransferMode { Calibration = 1, Firmware = 2, Datalog = 3 };

class Link : private LineWatch {
 public:
    static constexpr int ringSize = 512;

    Link(SerialPort& port, LinkHost& host, FrameDecoder& decoder, LiveValues& live, SettingsStore& settings,
         Clock& clock, Yield& yield);
    ~Link() override;

    // ---- Life of the hidden window
    void load();    ///< "COMM. Initialized.", opens the port, empties the ring
    void unload();  ///< "COMM. Terminated."

    // ---- Transport
    bool RS232_Initialize(int portNumber);
    void RS232_Close();
    void RS232_OUTPUT(std::string_view command);
    void ORB_Initialize();
    void ORB_Close();
    /// Searches ports 1 to 12; answers the port or 0. Yields: ticks, replies and user events run meanwhile.
    /// Answers 0 at once while a transfer runs, whose line a search would cut, and while another search does.
    int Autodetect_COMM_Port();
    void COMM_StatusMessage(std::string_view title, std::string_view line1, std::string_view line2,
                            std::string_view state);
    /// The port that the program means, by its number. It is opened with the next ORB_Initialize.
    int commPort() const { return commPort_; }
    /// Means the device that has this number at this moment, whatever number it gets later.
    void commPort(int number);
    /// Means a device by its identity; without one whatever has the number.
    void commPort(int number, std::string identity);
    /// Empty where only the number is known.
    const std::string& commIdentity() const { return commIdentity_; }
    /// The port that is meant, as the list of this moment has it; nothing while it is absent.
    std::optional<PortInfo> chosenPort() const;

    // ---- Queue and state machine
    void Send_ORB_Command(std::string_view command);
    void SEND_ONFLY(std::string_view record);
    /// "K", in front of whatever waits: only the answer to the command in flight is waited for.
    void SEND_KILL();
    void tick();  ///< one firing of tmrSerial
    /// Whether a reply in RxBuffer carries a right checksum for a command. False for a short reply.
    bool commCheckSum(std::string_view command) const;
    void PROCESS_RESPONSE();

    // ---- Transfers
    /// Starts a bulk transfer. `path`: the firmware file or the datalog to write; unused for a calibration.
    /// Throws FileError when a file cannot be opened, and Failure while another transfer runs, a port is
    /// searched or a tick is being handled; nothing has been queued then. The first failure also lets polling
    /// go on (AutoPollSuspended false).
    void Program_Unit(TransferMode mode, const std::string& path);
    /// The same for a firmware that has been read: `text` goes out, `path` is only told. `slot`: the kind
    /// that it is for, where no unit on the link tells, and `serial` the unit; 0: not known.
    void programFirmware(const std::string& path, std::string text, int slot, std::int32_t serial = 0);
    /// Closes a bulk transfer, tells the user how it ended and lets polling go on.
    void End_Transfer(bool success);

    // ---- State that others read
    /// What the last Z that is still on its way asks for; without one what the unit has taken.
    bool zeroAdvanceAsked() const;
    const LinkedUnit& linked() const { return linked_; }
    const LinkStatus& status() const { return status_; }
    LinkStatus& editStatus();  ///< for a window that changes what it shows itself, such as the port label
    /// Where the time of a frame goes, in words.
    void showFrameTimes(std::string_view text) { show(&LinkStatus::frameTimes, text); }
    /// Brings the panel over the dashboard into view with a text, or moves it out of sight.
    void showNoConnectPanel(std::string_view text);
    void hideNoConnectPanel();
    /// Units(LinkedUnitKind); the null unit while no unit is known.
    Unit& linkedUnit() { return host_.unit(linked_.LinkedUnitKind); }
    /// A tick or a reply is being handled: a box or a yield of the handler let other events in.
    /// Ticks do nothing meanwhile, and pollers queue nothing.
    bool handling() const { return handling_; }
    int QueueHead() const { return queueHead_; }
    int QueueTail() const { return queueTail_; }
    bool ResponseReady() const { return responseReady_; }
    int QueuedCommands() const { return queuedCommands_; }
    const std::string& CurrentCommand() const { return currentCommand_; }
    bool TransferActive() const { return transferActive_; }
    /// A bulk transfer runs, or its command still waits in the queue.
    bool transferPending() const { return transferActive_ || !openTransfer_.empty(); }
    /// Programming is on the wire: the unit takes nothing but lines.
    bool wireTaken() const;
    /// A port search runs.
    bool searching() const { return searching_; }
    /// Who is there has been asked, and not all of it is answered.
    bool identifying() const;
    /// A firmware transfer, from its start to its end.
    bool firmwarePending() const { return openTransfer_ == "P3"; }
    /// A calibration or a firmware goes to the unit, from its start to its end.
    bool programming() const { return openTransfer_ == "P1" || openTransfer_ == "P3"; }
    /// A firmware run broke off between its lines, and neither a good run nor a unit that tells its firmware
    /// has come since.
    bool firmwareLost() const { return firmwareLost_; }
    /// The kind of the unit that lost its firmware, as the run was for; 0: none did, or not known.
    int firmwareLostSlot() const { return firmwareLost_ ? firmwareSlot_ : 0; }
    bool OnFlyBusy() const { return onFlyBusy_; }
    bool AutoPollSuspended() const { return autoPollSuspended_; }
    void AutoPollSuspended(bool on) { autoPollSuspended_ = on; }
    int TransferLine() const { return transferLine_; }
    int TransferLines() const { return transferLines_; }
    const std::vector<std::uint8_t>& RxBuffer() const { return rxBuffer_; }

 private:
    using Reply = std::vector<std::uint8_t>;
    using ReplyHandler = void (Link::*)(const Reply&);

    // Transport
    bool openChosenPort();
    void openByIdentity();
    void showPort(const PortInfo& port);
    void tellTrouble();
    void showNoConnection();
    void onComm(CommEvent event);
    void showReplyStatus();
    void showCommandStatus(std::string_view key);
    void discardInput();
    void drainPort();
    bool waitForUnit();
    void queueInFront(std::string command);
    int searchPorts();
    void log(std::string_view text);
    /// The one place that changes the status: `changes` moves when the value does.
    template <typename T, typename V>
    void show(T LinkStatus::*field, V&& value) {
        T wanted(std::forward<V>(value));
        if (status_.*field == wanted) return;
        status_.*field = std::move(wanted);
        ++status_.changes;
    }
    void startProgress();
    void stepProgress(int current, int total);
    void removeProgress();
    void showProgress();

    // LineWatch
    void opened(const PortInfo& port, std::int64_t) override { showPort(port); }
    void lost(const PortInfo& port, std::int64_t) override { adapterLost(port); }
    void returned(const PortInfo& port, std::int64_t) override {
        showPort(port);
        adapterReturned(port);
    }

    // The line and its adapter
    enum class AdapterNews { None, Lost, Returned };
    /// The adapter of the open port has vanished, or is back, perhaps under another name: tells the user. The
    /// next tick gives up what the adapter took along, and asks at once who is there when it is back. A bulk
    /// transfer keeps its own ends. May come at any time, from inside a handler too.
    void adapterLost(const PortInfo& port);
    void adapterReturned(const PortInfo& port);
    void showAdapter();
    void followAdapter();
    void restLine();
    bool lineAtRest();
    bool isCurrentIdentify() const;
    bool awaitsTail();
    bool longFrame() const;
    bool frameInDoubt();

    // Tick machine
    void sendNextCommand();
    bool nothingToSend() const;
    int replyLengthFor(std::string_view key);
    void prepareTransfer(std::string_view key);
    void dropQueueBehindHead();
    bool waits(std::string_view command) const;
    void reactToReply();
    bool gapIsOver() const;
    bool sendLine();
    void waitForReply();
    void waitForFrame();
    void timeOut();
    bool transferLost() const;
    void watchStalledTransfer();
    enum class FirmwareRestore { Always, IfUnitKnown };
    void loseLink(FirmwareRestore restore);
    void tellDroppedKill();
    void showLostLink();
    void restoreFileFirmware();
    FirmwareNumber formerFirmware();
    void abandonCommand();
    std::string& place(int index) { return commandQueue_.at(static_cast<std::size_t>(index)); }
    const std::string& place(int index) const { return commandQueue_.at(static_cast<std::size_t>(index)); }
    static int wrapped(int index) { return index & (ringSize - 1); }

    // Replies
    void processResponse();
    static ReplyHandler handlerFor(std::string_view key);
    void replyClearCodes(const Reply& reply);
    void replyFirmware(const Reply& reply);
    void replyConfiguration(const Reply& reply);
    void replyDatalogRecord(const Reply& reply);
    void replyIdentify(const Reply& reply);
    void replyFrame(const Reply& reply);
    void replyGpio(const Reply& reply);
    void replyNothing(const Reply& reply);
    void replyLine(const Reply& reply);
    void replyOnTheFly(const Reply& reply);
    void replySaved(const Reply& reply);
    void replyCodes(const Reply& reply);
    void replyWideFrame(const Reply& reply);
    void replyZeroAdvance(const Reply& reply);
    bool readSerialNumber(const Reply& reply);
    /// `former`: the serial number told before.
    bool findUnitKind(std::int32_t former);
    bool isStranger(int slot) const;
    void leaveFormerUnit();
    void knowsWhoIsThere();
    void countUnknownAnswer();
    void fillDashboardDefaults();
    void acceptUnit(std::string_view text);
    void warnOldFirmware();
    void storeFirmware(const Reply& reply);
    void warnUnitMismatch();
    void warnNewFirmware();
    void showSubType(int subType);
    void askForConfiguration();
    void endDownload();

    // Transfers
    void startCalibration();
    void startTransfer(const std::function<void()>& start);
    void startFirmware(const std::string& path, std::string text, int slot, std::int32_t serial);
    void startDatalog(const std::string& path);
    void queueTransfer(std::string_view key);
    void openTransferFile(const std::string& path, std::ios::openmode mode);
    void closeTransferFile();
    bool Send_Next_Line();
    bool nextLine(std::string& line);
    int slotOfTransfer() const;
    bool firmwareWaits() const;
    int firmwareFailure();
    int silentFirmwareStart();
    void firmwareMended();
    void reportSuccess(std::string_view key);
    void reportFailure(std::string_view key);

    SerialPort& port_;
    LinkHost& host_;
    FrameDecoder& decoder_;
    LiveValues& live_;
    SettingsStore& settings_;
    Clock& clock_;
    Yield& yield_;
    LinkedUnit linked_;
    FirmwareNumber firmwareBefore_;  ///< of the linked unit's object, before the unit told its own
    LinkStatus status_;
    Progress progress_;
    int commPort_ = 1;
    std::string commIdentity_;

    std::array<std::string, ringSize> commandQueue_;
    int queueHead_ = 0;
    int queueTail_ = 0;
    int queuedCommands_ = 0;
    std::string currentCommand_;
    bool transferActive_ = false;
    bool responseReady_ = false;
    bool onFlyBusy_ = false;
    bool autoPollSuspended_ = false;
    bool handling_ = false;
    bool searching_ = false;
    int transferLine_ = 0;
    int transferLines_ = 0;
    int tickCount_ = 0;
    int paceCount_ = 0;
    std::int64_t replySeenUs_ = 0;  ///< when the last reply came, by the monotonic clock
    int retryCount_ = 0;
    int stallCount_ = 0;    ///< ticks since a transfer lost its command
    int askedBytes_ = 0;    ///< length of the reply to the command in flight
    int tailTicks_ = 0;     ///< ticks that the rest of an E reply is still waited for; 0: nothing is missing
    int restTicks_ = 0;     ///< ticks that the line must stay quiet before the next command
    int restPatience_ = 0;  ///< ticks after which it is written all the same
    bool longFrameCame_ = false;  ///< the frame before this one brought more bytes than it has
    AdapterNews adapterNews_ = AdapterNews::None;
    bool adapterAway_ = false;
    std::string adapterLine_;  ///< what became of the adapter, in words
    std::string responseHeader_;
    std::vector<std::uint8_t> rxBuffer_;
    std::string openTrouble_;  ///< why the port could not be opened
    bool firmwareLost_ = false;
    bool brokeAfterLines_ = false;     ///< it was lost by a run of which lines had gone out
    int silentStarts_ = 0;             ///< starts since then that got no answer at all, one behind the other
    int firmwareSlot_ = 0;             ///< the kind that the last firmware was for; 0: not known
    std::int32_t transferSerial_ = 0;  ///< the unit that the transfer was begun for; 0: not known
    bool askFirst_ = false;            ///< who is there is asked before a firmware that waits goes out
    int unknownAnswers_ = 0;           ///< to that question, from somebody who does not say who it is
    /// Serial number, release and build of a unit whose firmware the user has been warned of.
    std::optional<std::array<int, 3>> toldFirmware_;
    bool lineBroke_ = false;    ///< the line was not there all the time since a firmware run began
    std::string openTransfer_;  ///< key of a transfer from its start to its end, on the wire or still queued
    std::fstream transferStream_;
    std::istringstream firmwareText_;  ///< what a firmware run sends
};

}  // namespace zentaq
