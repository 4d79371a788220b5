// The simulator as a program: a simulated unit joined to a pseudo-terminal at the speed of a real line,
// announced by a link, with its memory kept in a file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "sim/faults.h"
#include "sim/port_announcement.h"
#include "sim/pseudo_terminal.h"
#include "sim/simulated_unit.h"
#include "sim/wire_pacing.h"

namespace zentaq::sim {

struct SimulatorOptions {
    std::string model = "A";
    std::optional<std::uint32_t> serial;
    std::optional<std::string> firmware;
    SerialFormat serialFormat = SerialFormat::Current;
    bool hasPic18 = false;     ///< besides the kinds that have it anyway
    bool anyIdentity = false;  ///< serial number and firmware are not checked against the kind
    std::optional<std::string> calibrationName;
    std::optional<std::filesystem::path> link;        ///< instead of the one in the runtime ports folder
    int baud = 38400;                                 ///< 0: no pacing
    std::optional<std::filesystem::path> memoryFile;  ///< or a folder, for a file named after the unit
    std::optional<int> logRecords;
    std::vector<std::string> faults;  ///< in the words of parseFault
    unsigned faultSeed = 1;
    std::vector<int> codes;  ///< check-engine codes as numbered on the dashboard: 21 is row 2, bit 0
};

class Simulator {
 public:
    /// Sets everything up; the terminal answers once run() runs. Throws Failure when something is wrong
    /// with the options, the files or the terminal.
    explicit Simulator(const SimulatorOptions& options);

    /// What a program opens when --link was given: the link. Otherwise the terminal's device.
    std::string portPath() const;
    const std::filesystem::path& linkPath() const { return announcement_->path(); }

    /// Who answers on the line, in one sentence.
    std::string description() const;

    /// Serves the line until `stopDescriptor` is ready to read. Each time that `powerDescriptor` is, reads it
    /// once and takes the unit's power away for a moment. Throws Failure when the memory file cannot be
    /// written.
    void run(int stopDescriptor, int powerDescriptor = -1);

 private:
    void serve();
    void answer(const WirePacing::Arrival& arrival);
    void powerCycle();
    void connect();
    void pullCable(Moment until);
    std::optional<Moment> nextDue() const;
    void catchUp(Moment moment);
    void saveMemory();

    SimulatorOptions options_;
    SimulatedUnit unit_;
    FaultInjector faults_;
    WirePacing wire_;
    std::optional<PseudoTerminal> terminal_;  ///< none while the cable is out
    std::optional<PortAnnouncement> announcement_;
    std::optional<Moment> cableBack_;
    std::optional<std::filesystem::path> memoryFile_;
    Moment unitTime_;
    std::optional<unsigned> savedRevision_;
};

/// Runs a simulator until SIGTERM, SIGINT or SIGHUP; SIGUSR1 cycles the unit's power. Writes "ready PATH" and
/// a line about the unit to `out` when the port can be opened, and failures to `errors`. Answers the exit
/// code.
int runSimulatorUntilSignal(const SimulatorOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace zentaq::sim
