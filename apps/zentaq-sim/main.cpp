// zentaq-sim: a simulated controller unit on a pseudo-terminal. Reads the command line, nothing else.

#include <CLI/CLI.hpp>
#include <iostream>

#include "sim/simulator.h"

// NOLINTNEXTLINE(bugprone-exception-escape): wrong usage is caught below; what is left ends the program by
// its text
int main(int argc, char** argv) {
    zentaq::sim::SimulatorOptions options;
    CLI::App app{"A simulated engine controller unit on a pseudo-terminal"};
    app.set_version_flag("--version", ZENTAQ_VERSION);
    app.add_option("--unit", options.model, "Model of the unit: A")->required();
    app.add_option("--serial", options.serial, "Serial number");
    app.add_option("--firmware", options.firmware, "Firmware text, up to 10 characters");
    app.add_option("--name", options.calibrationName,
                   "Name of the calibration in the unit, up to 24 characters");
    app.add_option("--link", options.link,
                   "Announce the terminal by a link here instead of the ports folder");
    app.add_option("--baud", options.baud, "Speed of the line, 0 for no pacing")
        ->capture_default_str()
        ->check(CLI::NonNegativeNumber);
    app.add_option("--memory", options.memoryFile, "File that holds the unit's memory as raw bytes");
    app.add_option("--log-records", options.logRecords, "Records in the unit's own datalog")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--code", options.codes, "Check-engine code that is set at the start, such as 21");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        constexpr int wrongUsage = 2;
        return app.exit(error) == 0 ? 0 : wrongUsage;
    }
    return zentaq::sim::runSimulatorUntilSignal(options, std::cout, std::cerr);
}
