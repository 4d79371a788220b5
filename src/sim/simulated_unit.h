// A controller unit as seen from its serial line: bytes in, reply bytes out, and its memory.
// No input or output and no clock of its own; time passes only through advance().
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sim/calibration_memory.h"
#include "sim/engine_model.h"
#include "sim/firmware_memory.h"
#include "sim/serial_reply.h"
#include "sim/srecord.h"
#include "sim/unit_profile.h"

namespace zentaq::sim {

/// What tells one unit from another of its kind.
struct UnitIdentity {
    std::uint32_t serial = 0;
    std::string firmware;  ///< cut or padded with blanks to 10 characters
    std::uint8_t subtype = 0;
    int logRecords = 300;  ///< records in the unit's own datalog
    SerialFormat serialFormat = SerialFormat::Current;
    bool hasPic18 = false;  ///< what bit 0 of byte 18 of the configuration tells
};

/// The identity a unit of this kind leaves the factory with.
UnitIdentity defaultIdentity(const UnitProfile& profile);

class SimulatedUnit {
 public:
    static constexpr int codeRows = 12;
    /// A command or record that stops half way is dropped after this time.
    static constexpr double stallSeconds = 0.5;
    /// Programming that gets no further line for this time is given up; the old calibration stays.
    static constexpr double programmingPatienceSeconds = 2.0;
    /// So is programming of firmware; nothing is left then.
    static constexpr double firmwarePatienceSeconds = 10.0;

    /// `profile` must outlive the unit. Throws BoundsError for a serial number that the serial format cannot
    /// carry.
    /// `drive` is what becomes of its engine; none: the road.
    SimulatedUnit(const UnitProfile& profile, UnitIdentity identity, Drive drive = nullptr);

    /// Takes one burst of bytes as the line delivered it and gives the replies to it, joined in order.
    Bytes feed(std::span<const std::uint8_t> burst);
    /// Lets time pass, for the engine and for stalled input.
    void advance(double seconds);

    const UnitProfile& profile() const { return profile_; }
    const UnitIdentity& identity() const { return identity_; }
    /// What the unit runs on; identity() tells the same text, and the last one while there is none.
    const FirmwareMemory& firmware() const { return firmware_; }
    /// Puts in what was installed in an earlier run. Throws BoundsError for firmware of another kind.
    void installFirmware(const InstalledFirmware& firmware);
    /// The switch that lets P3 through. A unit without firmware does not ask for it.
    void setUpgradeMode(bool on) { upgradeMode_ = on; }
    bool upgradeMode() const { return upgradeMode_; }

    /// The running memory, from the profile's base address.
    const Bytes& memory() const { return memory_.running(); }
    /// Grows with every write to the memory.
    unsigned memoryRevision() const { return memory_.runningRevision(); }
    /// What a power cycle leaves.
    const Bytes& permanentMemory() const { return memory_.permanent(); }
    /// Grows with every write to the permanent memory.
    unsigned permanentRevision() const { return memory_.permanentRevision(); }
    /// Whether on-the-fly changes would be lost with the power.
    bool hasUnsavedChanges() const { return memory_.running() != memory_.permanent(); }
    /// Replaces running and permanent memory. Throws BoundsError on any other size than the memory's.
    void loadMemory(const Bytes& content);
    /// Writes the calibration's name, cut or padded to 24 characters, into running and permanent memory.
    void setCalibrationName(std::string_view name);
    /// Running memory falls back to what was stored for good, and any programming in progress is gone.
    /// Firmware that was programmed starts, with an erased calibration: all bytes FF.
    void powerCycle();
    /// A power cycle of the unit's own: it hears nothing while it boots.
    void reset(double bootSeconds);
    /// The cable is out: whoever was programming firmware is gone for good.
    void lineLost();

    /// Sets a check-engine code: row 1 to 12, bit 0 to 7. Throws BoundsError outside.
    void setCode(int row, int bit);
    /// Records that a download still gets: one that was broken off goes on where it stopped.
    int logRecordsLeft() const { return identity_.logRecords - logPosition_; }
    /// Holds an input or output at a raw value, 0 to 255, whatever the engine does. Pins count from 1 as in
    /// the reply to I. Throws BoundsError outside.
    void holdPin(int pin, int value);

 private:
    enum class Expecting { Command, TimingArgument, ProgramArgument, OnTheFlyRecord };
    using Handler = Bytes (SimulatedUnit::*)();
    struct CommandRow;

    Bytes consume(std::uint8_t byte);
    Bytes command(std::uint8_t byte);
    Bytes timingArgument(std::uint8_t byte);
    Bytes programArgument(std::uint8_t byte);
    Bytes onTheFlyByte(std::uint8_t byte);
    Bytes programmingByte(std::uint8_t byte);
    Bytes programmingLineEnd(std::uint8_t byte);
    Bytes programmingRecord();
    bool isProgramming() const;
    Bytes endOfProgramming();
    Bytes refuse();

    Bytes clearCodes();
    Bytes firmwareReply();
    Bytes configReply();
    Bytes nextLogRecord();
    Bytes serialReply();
    Bytes narrowFrame();
    Bytes inputsFrame();
    Bytes stopEngine();
    Bytes expectProgramArgument();
    Bytes storeChanges();
    Bytes codesReply();
    Bytes wideFrame();
    Bytes expectTimingArgument();
    Bytes startProgramming();
    Bytes startFirmware();
    Bytes firmwareRecord();
    Bytes idleByte(std::uint8_t byte);
    void expectRecords(std::string_view types);

    LiveValues liveValues() const;
    void showMemoryToEngine();
    int release() const;
    int programmedSize() const;

    const UnitProfile& profile_;
    UnitIdentity identity_;
    Bytes serialReply_;
    EngineSetup engineSetup_;
    EngineModel engine_;
    std::optional<EngineModel> loggedEngine_;  ///< at the last record that was read of the unit's own log
    unsigned shownRevision_ = 0;               ///< of the memory that the engine runs by
    unsigned shownWholeRevision_ = 0;
    std::array<std::uint8_t, codeRows> codes_{};
    std::vector<std::pair<std::size_t, int>> heldPins_;  ///< index and value

    CalibrationMemory memory_;
    FirmwareMemory firmware_;
    bool upgradeMode_ = false;

    Expecting expecting_ = Expecting::Command;
    SRecordCollector record_;
    double quietSeconds_ = 0;
    double bootSeconds_ = 0;
    bool dropRestOfBurst_ = false;
    int logPosition_ = 0;
};

}  // namespace zentaq::sim
