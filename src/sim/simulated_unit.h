// A controller unit as seen from its serial line: bytes in, reply bytes out, and its memory.
// No input or output and no clock of its own; time passes only through advance().
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "sim/engine_model.h"
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

    /// `profile` must outlive the unit. Throws BoundsError for a serial number that the serial format cannot
    /// carry.
    SimulatedUnit(const UnitProfile& profile, UnitIdentity identity);

    /// Takes one burst of bytes as the line delivered it and gives the replies to it, joined in order.
    Bytes feed(std::span<const std::uint8_t> burst);
    /// Lets time pass, for the engine and for stalled input.
    void advance(double seconds);

    const UnitProfile& profile() const { return profile_; }
    const UnitIdentity& identity() const { return identity_; }
    /// The running memory, from the profile's base address.
    const Bytes& memory() const { return memory_; }
    /// Grows with every write to the memory.
    unsigned memoryRevision() const { return revision_; }
    /// Whether on-the-fly changes would be lost with the power.
    bool hasUnsavedChanges() const { return memory_ != permanent_; }
    /// Replaces running and permanent memory. Throws BoundsError on any other size than the memory's.
    void loadMemory(const Bytes& content);
    /// Writes the calibration's name, cut or padded to 24 characters, into running and permanent memory.
    void setCalibrationName(std::string_view name);
    /// Running memory falls back to what was stored for good, and any programming in progress is gone.
    void powerCycle();

    /// Sets a check-engine code: row 1 to 12, bit 0 to 7. Throws BoundsError outside.
    void setCode(int row, int bit);

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

    LiveValues liveValues() const;
    int release() const;
    int programmedSize() const;
    /// Whether a data record lies in the first `size` bytes of the memory.
    bool fitsIn(int size, const SRecord& record) const;
    void write(Bytes& target, const SRecord& record) const;

    const UnitProfile& profile_;
    UnitIdentity identity_;
    Bytes serialReply_;
    EngineModel engine_;
    std::array<std::uint8_t, codeRows> codes_{};

    Bytes memory_;
    Bytes permanent_;
    unsigned revision_ = 0;

    // Programming works on a copy, so that a transfer that fails leaves the old calibration whole.
    struct Programming {
        Bytes staging;
        std::vector<bool> covered;
    };
    std::optional<Programming> programming_;

    Expecting expecting_ = Expecting::Command;
    SRecordCollector record_;
    double quietSeconds_ = 0;
    bool dropRestOfBurst_ = false;
    int logPosition_ = 0;
};

}  // namespace zentaq::sim
