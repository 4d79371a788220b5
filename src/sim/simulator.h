// The simulator as a program: a simulated unit joined to a pseudo-terminal at the speed of a real line,
// announced by a link, with its memory kept in a file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "sim/port_announcement.h"
#include "sim/pseudo_terminal.h"
#include "sim/simulated_unit.h"
#include "sim/wire_pacing.h"

namespace zentaq::sim {

struct SimulatorOptions {
    std::string model = "A";
    std::optional<std::uint32_t> serial;
    std::optional<std::string> firmware;
    std::optional<std::string> calibrationName;
    std::optional<std::filesystem::path> link;  ///< instead of the one in the runtime ports folder
    int baud = 38400;                           ///< 0: no pacing
    std::optional<std::filesystem::path> memoryFile;
    std::optional<int> logRecords;
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

    /// Serves the line until `stopDescriptor` is ready to read. Throws Failure when the memory file
    /// cannot be written.
    void run(int stopDescriptor);

 private:
    void serve();
    void catchUp(Moment moment);
    void saveMemory();

    SimulatorOptions options_;
    SimulatedUnit unit_;
    WirePacing wire_;
    PseudoTerminal terminal_;
    std::optional<PortAnnouncement> announcement_;
    Moment unitTime_;
    std::optional<unsigned> savedRevision_;
};

/// Runs a simulator until SIGTERM, SIGINT or SIGHUP. Writes "ready PATH" to `out` when the port can be
/// opened, and failures to `errors`. Answers the exit code.
int runSimulatorUntilSignal(const SimulatorOptions& options, std::ostream& out, std::ostream& errors);

}  // namespace zentaq::sim
