// frmCOMM: the command ring, the tick machine, the reply handlers and the transfers of the one serial link.
// Strict request and reply: one command in flight, every time-out a count of ticks.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "link/command_ring.h"
#include "link/firmware_memory.h"
#include "link/link_host.h"
#include "link/transfer.h"
#include "platform/clock.h"
#include "platform/serial_port.h"
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
    bool zeroAdvance = false;  ///< mnuZeroAdv: the unit was told to hold the timing at zero, and took it
    int UnitSubType = 0;       ///< of a kind with variants: subtype byte plus 1
    std::string UnitBinName;   ///< 24 characters, not trimmed

    /// A unit of this kind has told its firmware.
    bool tells(int slot) const { return FirmwareTold && LinkedUnitKind == slot; }
};

class Link : private LineWatch {
 public:
    Link(SerialPort& port, LinkHost& host, FrameDecoder& decoder, LiveValues& live, Clock& clock,
         Yield& yield);
    ~Link() override;

    // ---- Life of the hidden window
    void load();  ///< opens the port, empties the ring
    void unload();

    // ---- Transport
    bool RS232_Initialize(int portNumber);
    void RS232_Close();
    void RS232_OUTPUT(std::string_view command);
    void ORB_Initialize();
    void ORB_Close();
    /// Searches ports 1 to 12; answers the port or 0. Yields: ticks, replies and user events run meanwhile.
    /// Answers 0 at once while a transfer runs, whose line a search would cut, and while another search does.
    int Autodetect_COMM_Port();
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
    /// A port search runs.
    bool searching() const { return searching_; }
    /// Ends a port search: it finds nothing.
    void stopSearch() { searchStopped_ = searching_; }
    /// The last search was ended by that.
    bool searchStopped() const { return searchStopped_; }

    // ---- Queue and state machine
    void Send_ORB_Command(std::string_view command) { ring_.push(command); }
    /// In front of the polls that wait, 17 ms each: a keystroke would come some 80 ms late. It stays behind
    /// earlier records and behind whatever else a user has asked for, such as the storing of those.
    void SEND_ONFLY(std::string_view record) { ring_.pushInFrontOfPolls("P2" + std::string(record)); }
    /// "K", in front of whatever waits: only the answer to the command in flight is waited for. A unit that
    /// is programmed takes nothing else, so that there it would have to wait all the same.
    void SEND_KILL() { ring_.pushInFront("K"); }
    void tick();  ///< one firing of tmrSerial
    /// Whether a reply in RxBuffer carries a right checksum for a command. False for a short reply.
    bool commCheckSum(std::string_view command) const;
    void PROCESS_RESPONSE();
    const CommandRing& ring() const { return ring_; }
    const std::string& CurrentCommand() const { return currentCommand_; }
    bool ResponseReady() const { return responseReady_; }
    const std::vector<std::uint8_t>& RxBuffer() const { return rxBuffer_; }
    bool OnFlyBusy() const { return onFlyBusy_; }
    bool AutoPollSuspended() const { return autoPollSuspended_; }
    void AutoPollSuspended(bool on) { autoPollSuspended_ = on; }
    /// A tick or a reply is being handled: a box or a yield of the handler let other events in.
    /// Ticks do nothing meanwhile, and pollers queue nothing.
    bool handling() const { return handling_; }

    // ---- Transfers
    /// Starts a bulk transfer. `path`: the firmware file or the datalog to write; unused for a calibration.
    /// Throws FileError when a file cannot be opened, and Failure while another transfer runs, a port is
    /// searched or a tick is being handled; nothing has been queued then. The first failure also lets polling
    /// go on (AutoPollSuspended false).
    void Program_Unit(TransferMode mode, const std::string& path);
    /// The same for a firmware that has been read: `text` goes out, `path` is only told. `slot`: the kind
    /// that it is for, where no unit on the link tells, and `serial` the unit; 0: not known.
    void programFirmware(const std::string& path, std::string text, int slot, std::int32_t serial = 0);
    const Transfer& transfer() const { return transfer_; }
    /// What is known of firmwares that broke off.
    const FirmwareMemory& firmware() const { return firmware_; }
    /// Programming is on the wire: the unit takes nothing but lines.
    bool wireTaken() const;

    // ---- The unit
    const LinkedUnit& linked() const { return linked_; }
    /// The calibration in hand is of the kind of the unit on the link.
    bool kindInHand() const { return linked_.LinkedUnitKind == host_.slotInHand(); }
    /// And the unit has told all: it takes changes of that calibration.
    bool unitAgrees() const { return kindInHand() && linked_.UnitIdentified; }
    /// Units(LinkedUnitKind); the null unit while no unit is known.
    Unit& linkedUnit() { return host_.unit(linked_.LinkedUnitKind); }
    /// Who is there has been asked, and not all of it is answered.
    bool identifying() const;
    /// What the last Z that is still on its way asks for; without one what the unit has taken.
    bool zeroAdvanceAsked() const;

 private:
    using Reply = std::vector<std::uint8_t>;
    using ReplyHandler = void (Link::*)(const Reply&);

    void tell(LinkEvent event, std::string_view text = {}, std::string_view more = {}) {
        host_.heard({event, text, more});
    }
    void tellNumber(LinkEvent event, int number) { host_.heard({.event = event, .number = number}); }

    // Transport
    bool openChosenPort();
    void openByIdentity();
    void tellPort(int number, std::string_view identity);
    void tellTrouble(const std::string& why);
    void onComm(CommEvent event);
    void discardInput();
    void drainPort();
    bool waitForUnit();
    int searchPorts();

    // LineWatch
    void opened(const PortInfo& port, std::int64_t) override { tellPort(port.number, port.identity); }
    void lost(const PortInfo& port, std::int64_t) override { adapterLost(port); }
    void returned(const PortInfo& port, std::int64_t) override {
        tellPort(port.number, port.identity);
        adapterReturned(port);
    }

    // The line and its adapter
    enum class AdapterNews { None, Lost, Returned };
    /// The adapter of the open port has vanished, or is back, perhaps under another name: tells the user. The
    /// next tick gives up what the adapter took along, and asks at once who is there when it is back. A bulk
    /// transfer keeps its own ends. May come at any time, from inside a handler too.
    void adapterLost(const PortInfo& port);
    void adapterReturned(const PortInfo& port);
    void tellAdapter(LinkEvent event);
    void followAdapter();
    void restLine();
    bool lineAtRest();
    bool repliedWithMarker() const;
    bool awaitsTail();
    bool longFrame() const;
    bool frameInDoubt();

    // Tick machine
    void sendNextCommand();
    int replyLengthFor(std::string_view key);
    void prepareTransfer(std::string_view key);
    void reactToReply();
    bool gapIsOver() const;
    bool sendLine();
    void waitForReply();
    void waitForFrame();
    void timeOut();
    bool transferLost() const;
    void watchStalledTransfer();
    TransferResult stalledResult() const;
    enum class FirmwareRestore { Always, IfUnitKnown };
    void loseLink(FirmwareRestore restore);
    void tellDroppedKill();
    void tellLostLink();
    void restoreFileFirmware();
    FirmwareVersion formerFirmware();
    void abandonCommand();

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
    void acceptUnit(LinkEvent how);
    void warnOldFirmware();
    void storeFirmware(const Reply& reply);
    void warnUnitMismatch();
    void warnNewFirmware();
    void tellSubType(int subType);
    void askForConfiguration();
    void endDownload();

    // Transfers
    void startTransfer(const std::function<void()>& start);
    void startCalibration();
    void startFirmware(const std::string& path, std::string text, int slot, std::int32_t serial);
    void startDatalog(const std::string& path);
    void queueTransfer(TransferMode mode, std::int32_t serial);
    bool Send_Next_Line();
    void End_Transfer(TransferResult result);
    int slotOfTransfer() const;
    bool firmwareWaits() const;
    FirmwareMemory::Start startOfFirmware() const;

    SerialPort& port_;
    LinkHost& host_;
    FrameDecoder& decoder_;
    LiveValues& live_;
    Clock& clock_;
    Yield& yield_;
    LinkedUnit linked_;
    FirmwareVersion firmwareBefore_;  ///< of the linked unit's object, before the unit told its own
    CommandRing ring_;
    Transfer transfer_;
    FirmwareMemory firmware_;
    int commPort_ = 1;
    std::string commIdentity_;

    std::string currentCommand_;
    bool responseReady_ = false;
    bool onFlyBusy_ = false;
    bool autoPollSuspended_ = false;
    bool handling_ = false;
    bool searching_ = false;
    bool searchStopped_ = false;
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
    PortInfo adapter_;  ///< the one that vanished or came back last
    std::string responseHeader_;
    std::vector<std::uint8_t> rxBuffer_;
    bool askFirst_ = false;   ///< who is there is asked before a firmware that waits goes out
    int unknownAnswers_ = 0;  ///< to that question, from somebody who does not say who it is
    /// Serial number, release and build of a unit whose firmware the user has been warned of.
    std::optional<std::array<int, 3>> toldFirmware_;
};

}  // namespace zentaq
