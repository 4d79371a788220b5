// The simulator as a program: a simulated unit joined to a pseudo-terminal at the speed of a real line,
// announced by a link, with its memory kept in a file.
#pragma once

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

#include "sim/adapter.h"
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
    std::optional<std::filesystem::path> link;  ///< instead of the one in the runtime ports folder
    int baud = 38400;                           ///< 0: no pacing
    /// Holds the permanent memory. Or a folder, for a file named after the unit.
    std::optional<std::filesystem::path> memoryFile;
    /// Shows the running memory, changes that are not stored included. Written only.
    std::optional<std::filesystem::path> runningFile;
    std::optional<int> logRecords;
    std::string engine = "drive";     ///< or "idle", "dyno", the path of a datalog
    std::vector<std::string> faults;  ///< in the words of parseFault
    unsigned faultSeed = 1;
    std::vector<int> codes;         ///< check-engine codes as numbered on the dashboard: 21 is row 2, bit 0
    std::vector<std::string> pins;  ///< "3=128": pin 3 of the reply to I is held at 128
    bool upgradeMode = false;       ///< the unit takes firmware
    AdapterOptions adapter;
    bool renames = false;     ///< the cable comes back under another name: ".2", ".3" behind the first
    bool withParent = false;  ///< the program ends when the one that started it does
};

/// What a simulator watches besides its line. A negative descriptor is not watched. Each one but `stop` is
/// read once for each notice.
struct SimulatorControls {
    int stop = -1;             ///< ends it
    int power = -1;            ///< takes the unit's power away for a moment
    int unplug = -1;           ///< takes power and cable away for a second
    int upgradeSwitch = -1;    ///< flips it
    std::vector<int> streams;  ///< a hang-up of one of these ends it
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

    /// Serves the line until told to stop. Throws Failure when a file of the unit cannot be written.
    void run(const SimulatorControls& controls);

 private:
    void serve();
    void hear(Bytes written);
    void answer(const WirePacing::Arrival& arrival);
    FaultyReply replyTo(const Bytes& burst);
    void act(const SimulatorControls& controls, int notified);
    void powerCycle();
    void unplug();
    void restoreUnit();
    std::filesystem::path linkName() const;
    void connect();
    void pullCable(Moment until);
    std::optional<Moment> nextDue() const;
    void catchUp(Moment moment);
    void refuseOtherFiles() const;
    void saveMemory();

    SimulatorOptions options_;
    SimulatedUnit unit_;
    FaultInjector faults_;
    WirePacing wire_;
    Adapter adapter_;
    std::optional<PseudoTerminal> terminal_;  ///< none while the cable is out
    std::optional<PortAnnouncement> announcement_;
    std::optional<Moment> cableBack_;
    int connections_ = 0;
    std::optional<std::filesystem::path> memoryFile_;
    Moment unitTime_;
    std::optional<unsigned> savedMemory_;
    std::optional<unsigned> savedRunning_;
    unsigned savedFirmware_ = 0;
};

/// Runs a simulator until SIGTERM or SIGINT, or until one of the process's standard streams closes: a
/// terminal, or a pipe or socket that it writes to. SIGHUP cycles the unit's power, SIGUSR1 unplugs it for a
/// second, SIGUSR2 flips its upgrade switch. Writes "ready PATH" and a line about the unit to `out` when the
/// port can be opened, and failures to `errors`. Answers the exit code.
int runSimulatorUntilSignal(const SimulatorOptions& options, std::ostream& out, std::ostream& errors);

/// Writes a firmware file for units of the model and firmware of the options and says so to `out`, failures
/// to `errors`. Answers the exit code.
int writeFirmwareFor(const SimulatorOptions& options, const std::filesystem::path& file, std::ostream& out,
                     std::ostream& errors);

}  // namespace zentaq::sim
