// zentaq-sim: a simulated controller unit on a pseudo-terminal. Reads the command line, nothing else.

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/shown_text.h"
#include "help_formatter.h"
#include "sim/simulator.h"

namespace {

// Lines of at most 80 columns.
constexpr const char* footer =
    R"(When its port can be opened, the unit says "ready" and the path of the port on
one line, and who it is on the next. It ends when a terminal, a pipe or a socket
that it writes to closes, so that none is left behind by a script that died.

Signals:
  SIGHUP           cycle the power: changes that were not stored are lost, and a
                   firmware that was programmed starts
  SIGUSR1          unplug the unit, power and cable, for a second
  SIGUSR2          flip the upgrade switch
  SIGTERM, SIGINT  end

A fault is KIND[=MS][@COMMAND[#N]][%PERCENT]:
  lose-byte@W%5    spoils one wide frame in twenty
  refuse@line#12   refuses the twelfth line of a transfer
  late=300         delays every reply by 300 ms
COMMAND is A, B, C, D, E, F, I, K, P1, P2, P3, S, T, W, Z or line.
Each kind is an option too, with the rest of the words behind it:
--lose-byte @W%5, --refuse @line#12, --late 300, --silence.

In upgrade mode the unit takes a firmware file of --make-firmware and no other.
Such a file is for simulated units: none is installed anywhere, since nobody may
program it into a real unit.
)";

constexpr const char* faultGroup = "Faults";
constexpr const char* adapterGroup = "Adapter";

constexpr int mostLogRecords = 1'000'000;
constexpr int longestWrite = 4096;  // what the simulator reads in one go
constexpr int fastestBaud = 4'000'000;

/// The fault options may stand alone; the library then gives this word, which is no part of a fault.
constexpr std::string_view nothingGiven = "true";

void addFaults(CLI::App& app, zentaq::sim::SimulatorOptions& options) {
    app.add_option("--fault", options.faults, "What goes wrong, see below: " + zentaq::sim::faultList())
        ->option_text("FAULT")
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->group(faultGroup);
    app.add_option("--fault-seed", options.faultSeed, "Repeats the same chances, 1 if left out")
        ->option_text("NUMBER")
        ->group(faultGroup);
    for (const zentaq::sim::FaultOption& fault : zentaq::sim::faultOptions()) {
        const auto take = [&options, fault](const std::vector<std::string>& all) {
            for (const std::string& words : all) {
                options.faults.push_back(
                    zentaq::sim::faultText(fault.name, words == nothingGiven ? "" : words));
            }
        };
        const auto usual = fault.usualDelay.count();
        app.add_option_function<std::vector<std::string>>(
               "--" + std::string(fault.name), take,
               std::string(fault.meaning) +
                   (usual > 0 ? "; MS is " + std::to_string(usual) + " if left out" : ""))
            ->option_text(usual > 0 ? "[MS][@COMMAND[#N]][%PERCENT]" : "[@COMMAND[#N]][%PERCENT]")
            ->expected(0, 1)
            ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
            ->group(faultGroup);
    }
}

void addAdapter(CLI::App& app, zentaq::sim::SimulatorOptions& options, int& burst) {
    app.add_option("--burst", burst,
                   "Hand what the unit sends to the program every so many milliseconds, as an adapter with a "
                   "latency timer of 16 does, and 62 bytes at once")
        ->option_text("MS")
        ->check(CLI::Range(1, 1000))
        ->group(adapterGroup);
    app.add_option("--drop-writes", options.adapter.dropWrites,
                   "Lose what one write has beyond so many bytes")
        ->option_text("BYTES")
        ->check(CLI::Range(0, longestWrite))
        ->group(adapterGroup);
    app.add_option("--vanish-writes", options.adapter.vanishWrites,
                   "Vanish for 700 ms over a write of more than so many bytes")
        ->option_text("BYTES")
        ->check(CLI::Range(0, longestWrite))
        ->group(adapterGroup);
    app.add_flag(
           "--rename", options.renames,
           "Announce the port under another name each time the cable comes back: .2, .3 behind the first")
        ->group(adapterGroup);
}

void addIdentity(CLI::App& app, zentaq::sim::SimulatorOptions& options) {
    using zentaq::sim::SerialFormat;
    static const std::map<std::string, SerialFormat> formats{
        {"current", SerialFormat::Current}, {"octal", SerialFormat::Octal}, {"old", SerialFormat::Old}};
    app.add_option("--unit", options.model,
                   "Model of the unit: " + zentaq::sim::modelList() + ". Words such as a612 and pzk2 do too")
        ->option_text("MODEL (required)")
        ->required();
    app.add_option("--serial", options.serial, "Serial number, within the range of the model")
        ->option_text("NUMBER");
    app.add_option_function<std::string>(
           "--serial-format",
           [&options](const std::string& word) {
               const auto format = formats.find(CLI::detail::to_lower(word));
               if (format == formats.end())
                   throw CLI::ValidationError("--serial-format", "current, octal or old, not " + word);
               options.serialFormat = format->second;
           },
           "How the unit tells its serial number: current, octal, or old (early ORB A only)")
        ->option_text("FORMAT");
    app.add_option("--firmware", options.firmware,
                   "Firmware text of the model: ZQA-405099 is release 5, build 99. Older releases of "
                   "every kind answer in narrow frames alone")
        ->option_text("TEXT");
    app.add_flag("--pic18", options.hasPic18, "Tell of the second processor in the configuration");
    app.add_flag("--any-identity", options.anyIdentity,
                 "Take serial number and firmware as they are, unchecked");
    app.add_option("--name", options.calibrationName,
                   "Name of the calibration in the unit, cut at 24 characters")
        ->option_text("TEXT");
    app.add_option("--engine", options.engine,
                   "What the engine does: idle, drive (a varied road, if left out), dyno (steps of speed and "
                   "load, and pulls), or a datalog of the program, whose drive it repeats")
        ->option_text("idle|drive|dyno|FILE.dat");
    app.add_option("--log-records", options.logRecords, "Records in the unit's own datalog")
        ->option_text("COUNT")
        ->check(CLI::Range(0, mostLogRecords));
    app.add_option("--code", options.codes, "Check-engine code that is set at the start, such as 21")
        ->option_text("CODE ...");
    app.add_option("--gpio", options.pins, "Hold a pin of the reply to I at a raw value, such as 3=128")
        ->option_text("PIN=VALUE ...");
}

void addMemory(CLI::App& app, zentaq::sim::SimulatorOptions& options) {
    app.add_option("--link", options.link, "Announce the terminal by a link here instead of the ports folder")
        ->option_text("PATH");
    app.add_option("--baud", options.baud, "Speed of the line, 38400 if left out, 0 for no pacing")
        ->option_text("RATE")
        ->check(CLI::Range(0, fastestBaud));
    app.add_option("--memory", options.memoryFile,
                   "File that holds the unit's permanent memory as raw bytes, or a folder for a file of the "
                   "unit's name. A file beside it, FILE.firmware, tells what firmware is in the unit once "
                   "that has been programmed")
        ->option_text("FILE");
    app.add_option("--running-memory", options.runningFile,
                   "File that shows the running memory, changes that are not stored included")
        ->option_text("FILE");
    app.add_flag("--upgrade-mode", options.upgradeMode, "Start with the upgrade switch on: P3 is allowed");
    app.add_flag("--with-parent", options.withParent, "End when the program that started it ends");
}

}  // namespace

// Wrong usage is caught below; what is left ends the program by its text.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
    zentaq::sim::SimulatorOptions options;
    CLI::App app{"A simulated engine controller unit on a pseudo-terminal"};
    app.formatter(std::make_shared<HelpFormatter>());
    app.footer(footer);
    app.set_version_flag("--version", ZENTAQ_VERSION);
    addIdentity(app, options);
    addMemory(app, options);
    std::optional<std::string> firmwareFile;
    app.add_option(
           "--make-firmware", firmwareFile,
           "Write a firmware file of the firmware text for SIMULATED units of the model, and end. It is "
           "never to be programmed into a real unit; none is installed anywhere")
        ->option_text("FILE.nv3");
    addFaults(app, options);
    int burst = 0;
    addAdapter(app, options, burst);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        constexpr int wrongUsage = 2;
        return app.exit(error) == 0 ? 0 : wrongUsage;
    }
    // Names of files and of the unit never speak to the terminal.
    zentaq::ShownBuffer shownOut(*std::cout.rdbuf());
    zentaq::ShownBuffer shownError(*std::cerr.rdbuf());
    std::ostream out(&shownOut);
    std::ostream error(&shownError);
    if (firmwareFile) return zentaq::sim::writeFirmwareFor(options, *firmwareFile, out, error);
    options.adapter.burst = std::chrono::milliseconds(burst);
    return zentaq::sim::runSimulatorUntilSignal(options, out, error);
}
