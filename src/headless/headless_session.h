// A link without windows: the program around it, and its commands as calls that wait for their end and tell
// how it came. What a window would show in a box is kept as plain data.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "link/link.h"
#include "link/link_teller.h"
#include "live/frame_decoder.h"
#include "platform/clock.h"
#include "platform/serial_port.h"
#include "platform/yield.h"
#include "trace/wire_trace.h"
#include "unit/unit.h"
#include "unit/unit_host.h"

namespace zentaq {

/// Who answers on the port.
enum class Found {
    Nobody,
    OldFirmware,  ///< the unit must be upgraded before it takes anything
    Untold,       ///< a unit that does not tell its firmware
    Damaged,      ///< somebody answers, but each time with a wrong checksum
    Identified,
    Stopped
};

/// How a command or a transfer ended.
enum class Ending {
    Done,     ///< accepted; a transfer: verified
    Refused,  ///< "AR"; a download: the unit has nothing to give
    Unclear,  ///< answered, but with something else; a calibration: all lines went out, nothing verified it
    Silent,   ///< no answer in time, and the link is lost
    NotWritten,  ///< a download: the file cannot be written
    Stopped      ///< the user wanted to end
};

/// How a transfer ended here, and how far it has come.
struct TransferReport {
    Ending ending = Ending::Stopped;
    int lines = 0;                                 ///< lines sent, or records read
    int total = 0;                                 ///< lines of the file; 0 for a download
    FirmwareLeft firmware = FirmwareLeft::Former;  ///< of a firmware run that failed
};

class HeadlessSession : public LinkTeller {
 public:
    struct Surroundings {
        SerialPort& port;
        Clock& clock;
        /// Lets about a millisecond pass: bytes and ticks come meanwhile.
        Yield& pass;
        UnitHost& unitHost;  ///< of the units of which no calibration is in hand
        /// The calibration in hand; nullptr for none. Of two slots of its class it gets that of the unit that
        /// is found.
        Unit* calibration = nullptr;
        /// The user wants to end; asked after each step. Empty: never.
        std::function<bool()> stopWanted{};
        /// Called after each step that changed the link's status.
        std::function<void(const LinkStatus&)> watch{};
        /// Gets notes of what the program does; nullptr for none.
        WireTrace* trace = nullptr;
    };

    /// How long a unit is looked for: three times the patience of the command that finds it.
    static constexpr std::int64_t searchUs = 3'200'000;

    explicit HeadlessSession(const Surroundings& surroundings);

    /// Throws Failure where the port cannot be opened, with the reason.
    void open(int portNumber);
    /// Asks who is on the port until somebody has told all, or nobody has in `patienceUs`. The link trusts
    /// such replies as they come; here one with a wrong checksum is asked for again.
    Found findUnit(std::int64_t patienceUs = searchUs);
    /// Asks anew, for a caller that is about to send what only the unit that was found may get. Tells who is
    /// there now, which may be another one.
    Found findAgain();
    /// Sends one command that is answered by "AX" or "AR", and waits for the answer.
    Ending command(std::string_view text);
    /// Asks for the check-engine words and stores them in the linked unit. Unclear: the answer was damaged.
    Ending readCodes();
    /// Runs a bulk transfer to its end; `path` as in Link::Program_Unit, whose failures it throws.
    /// A stop waits for the answer to the line in flight, and for the end when that is the last line.
    TransferReport transfer(TransferMode mode, const std::string& path = {});
    /// The same for a firmware, as in Link::programFirmware. It needs no unit that was found: its start goes
    /// out all the same.
    TransferReport transferFirmware(const std::string& path, const std::string& text, int slot);

    /// One step: time passes, the status is shown. For callers that wait for something else.
    void pass();
    bool stopWanted() const { return around_.stopWanted && around_.stopWanted(); }

    Link& link() { return link_; }
    LiveValues& live() { return live_; }
    Unit& linkedUnit() { return link_.linkedUnit(); }
    Clock& clock() { return around_.clock; }
    /// The boxes that a user would have seen.
    const std::vector<Box>& boxes() const { return boxes_; }
    /// Called for each frame, from inside the reply's handler: it must not throw and not use the link.
    void onFrame(std::function<void()> handler) { onFrame_ = std::move(handler); }

    // ---- LinkHost
    Unit& unit(int slot) override;
    int slotInHand() const override;
    float fileFirmwareCode() const override;
    void sysLog(std::string_view text) override {
        if (around_.trace != nullptr) around_.trace->note(text);
    }
    void commLog(std::string_view) override {}
    void addToLastLine(std::string_view text) override { sysLog(text); }
    void displayMessage(int) override {}
    void show(const Box& box) override { boxes_.push_back(box); }
    FirmwareVersion expectedFirmware(int slot) const override;
    void heard(const LinkNews& news) override;
    void transferEnded(const TransferEnd& end) override;

 private:
    bool idle() const;
    Unit* emptyUnit(int slot) const;
    void passUntilIdle();
    bool passAndCheckIdentity();
    TransferReport passUntilEnd(const std::function<void()>& start);
    bool mayStop() const;
    Ending answer() const;
    void initializeOnFly(bool on);
    void takeSlot(int slot);

    Surroundings around_;
    std::vector<std::unique_ptr<Unit>> units_;  ///< without a calibration; the null unit first
    LiveValues live_;
    FrameDecoder decoder_;
    NoYield noYield_;  ///< the link's own yields are inside a tick, where no other one may start
    std::vector<Box> boxes_;
    std::optional<TransferEnd> ended_;  ///< nothing while a transfer runs
    std::function<void()> onFrame_;
    std::uint64_t shown_ = 0;
    Link link_;
};

}  // namespace zentaq
