// zentaq-sim: a simulated controller unit on a pseudo-terminal. Reads the command line, nothing else.

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "sim/simulator.h"

namespace {

constexpr const char* footer =
    "When its port can be opened, the unit says \"ready\" and the path of the port on one line, and who it "
    "is on\n"
    "the next. SIGUSR1 takes its power away for a moment: changes that were not stored are lost.\n"
    "SIGTERM, SIGINT and SIGHUP end it.\n"
    "\n"
    "A fault is KIND[=MILLISECONDS][@COMMAND[#N]][%PERCENT]: \"lose-byte@W%5\" spoils one wide frame in "
    "twenty,\n"
    "\"refuse@line#12\" refuses the twelfth line of programming, \"late=300\" delays every reply.\n";

}  // namespace

// Wrong usage is caught below; what is left ends the program by its text.
// NOLINTNEXTLINE(bugprone-exception-escape)
int main(int argc, char** argv) {
    using zentaq::sim::SerialFormat;
    zentaq::sim::SimulatorOptions options;
    CLI::App app{"A simulated engine controller unit on a pseudo-terminal"};
    app.footer(footer);
    app.set_version_flag("--version", ZENTAQ_VERSION);
    app.add_option(
           "--unit", options.model,
           "Model of the unit: " + zentaq::sim::modelList() + ". \"a612\" and \"pzk2\" will do as well")
        ->required();
    app.add_option("--serial", options.serial, "Serial number, out of the range of the model");
    app.add_option("--serial-format", options.serialFormat,
                   "How the unit tells its serial number: current, octal, or old (early ORB A only)")
        ->option_text("FORMAT")
        ->transform(
            CLI::CheckedTransformer(std::map<std::string, SerialFormat>{{"current", SerialFormat::Current},
                                                                        {"octal", SerialFormat::Octal},
                                                                        {"old", SerialFormat::Old}},
                                    CLI::ignore_case));
    app.add_option("--firmware", options.firmware,
                   "Firmware text of the model, such as ZQA-405099 for release 5.99");
    app.add_flag("--pic18", options.hasPic18, "Tell of the second processor in the configuration");
    app.add_flag("--any-identity", options.anyIdentity,
                 "Take serial number and firmware as they are, unchecked");
    app.add_option("--name", options.calibrationName,
                   "Name of the calibration in the unit, up to 24 characters");
    app.add_option("--link", options.link,
                   "Announce the terminal by a link here instead of the ports folder");
    app.add_option("--baud", options.baud, "Speed of the line, 0 for no pacing")
        ->capture_default_str()
        ->check(CLI::NonNegativeNumber);
    app.add_option(
        "--memory", options.memoryFile,
        "File that holds the unit's memory as raw bytes, or a folder for a file of the unit's name");
    app.add_option("--log-records", options.logRecords, "Records in the unit's own datalog")
        ->check(CLI::NonNegativeNumber);
    app.add_option("--code", options.codes, "Check-engine code that is set at the start, such as 21");
    app.add_option("--fault", options.faults, "What goes wrong, see below: " + zentaq::sim::faultList());
    app.add_option("--fault-seed", options.faultSeed, "Repeats the same chances")->capture_default_str();
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        constexpr int wrongUsage = 2;
        return app.exit(error) == 0 ? 0 : wrongUsage;
    }
    return zentaq::sim::runSimulatorUntilSignal(options, std::cout, std::cerr);
}
