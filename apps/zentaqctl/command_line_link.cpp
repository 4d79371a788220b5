// The commands that speak with a unit, on the command line.
#include "base/number_text.h"
#include "base/shown_text.h"
#include "command_line.h"
#include "commands.h"
#include "commands_link.h"
#include "link/link_commands.h"
#include "link_desk.h"
#include "unit_names.h"

namespace zentaq::ctl {

namespace {

std::string validPort(const std::string& text) {
    const PortChoice choice = portChoice(text);
    const bool good = !text.empty() && choice.number >= 1;
    return good ? std::string() : "\"" + shownBriefly(text) + "\" is neither a number from 1 on nor a path";
}

std::string validSeconds(const std::string& text) {
    return parseNumber(text).value_or(0) > 0 ? std::string() : shownBriefly(text) + " is no time in seconds";
}

std::string validTrace(const std::string& text) {
    return text.empty() || text == "-" ? "a trace goes to a file" : std::string();
}

std::string validTracedCommand(const std::string& text) {
    return findCommand(text) != nullptr || text == "?" ? std::string()
                                                       : shownBriefly(text) + " is no command of the line";
}

std::string validMoment(const std::string& text) {
    return parseNumber(text).value_or(-1) >= 0 ? std::string()
                                               : shownBriefly(text) + " is no time in seconds";
}

MonitorForm formOf(const Arguments& given) {
    if (given.csv) return MonitorForm::Csv;
    return given.json ? MonitorForm::Json : MonitorForm::Seconds;
}

}  // namespace

CLI::App* CommandLine::addOnPort(const char* name, const char* what, Work work) {
    CLI::App* command = add(name, what, std::move(work));
    command
        ->add_option("--trace", given_.trace,
                     "Record what passes over the line; the command trace shows the file")
        ->check(CLI::Validator(validTrace, "FILE"));
    command
        ->add_option("--port", given_.port,
                     "Number of the port, as the command ports lists it, or the path of a device")
        ->option_text("PORT [1]")
        ->check(CLI::Validator(validPort, "PORT"));
    return command;
}

CLI::Option* CommandLine::addScaling(CLI::App* command, const char* what) {
    return command->add_option("--file,--calibration", given_.calibration, what);
}

void CommandLine::addLink() {
    addJson(add("ports", "List the serial ports, one a line, separated by tabs; nothing is sent to them",
                [](const Context& context, const Arguments&) { listPorts(context); }));
    addJson(addOnPort("identify", "Ask the unit who it is",
                      [](const Context& context, const Arguments& given) { identify(context, given.port); }));

    CLI::App* sent = addOnPort(
        "send", "Change a value of the running unit", [](const Context& context, const Arguments& given) {
            send(context, given.port,
                 {given.member, given.value, given.index.value_or(0), given.calibration});
        });
    addMember(sent);
    addValue(sent);
    addIndex(sent);
    addScaling(sent, "Calibration that the unit runs on, for values that depend on it");
    addCutForce(sent);
    addJson(sent);
    addOnPort("store", "Have the unit keep the changes that were sent",
              [](const Context& context, const Arguments& given) { store(context, given.port); });
    addOnPort("kill", "Stop the engine",
              [](const Context& context, const Arguments& given) { kill(context, given.port); });

    CLI::App* list = addOnPort(
        "codes", "Show the active check-engine codes, one a line",
        [](const Context& context, const Arguments& given) { codes(context, given.port, given.clear); });
    CLI::Option* clear = list->add_flag("--clear", given_.clear, "Have the unit forget its codes instead");
    list->add_flag("--json", given_.json, "Answer in JSON")->excludes(clear);
    addLinkTransfers();
    addTraces();
}

void CommandLine::addLinkTransfers() {
    CLI::App* load = addOnPort(
        "program", "Program a calibration into the unit",
        [](const Context& context, const Arguments& given) { program(context, given.port, given.file); });
    load->add_option("FILE", given_.file, "Calibration file")->required();
    addCutForce(load);

    CLI::App* upgrade = addOnPort(
        "firmware", "Give the unit a new firmware", [](const Context& context, const Arguments& given) {
            firmware(context, given.port, {given.file, given.confirmed, given.kindWithoutFirmware});
        });
    upgrade->add_option("FILE", given_.file, "Firmware file (*.nv3)")->required();
    upgrade->add_flag("--yes", given_.confirmed,
                      "Do not ask: I have read the guide's page on firmware upgrades");
    upgrade
        ->add_option(
            "--unit-without-firmware", given_.kindWithoutFirmware,
            "Mend a unit that lost its firmware and answers nothing: its kind, A, L, C, D, D6 or PZK-2")
        ->check(CLI::Validator(validKind, "KIND"));

    CLI::App* log = addOnPort("datalog", "Retrieve the unit's own datalog",
                              [](const Context& context, const Arguments& given) {
                                  datalog(context, given.port, given.output, given.calibration);
                              });
    log->add_option("OUT", given_.output, "Datalog to write")->required();
    addForce(log);
    addScaling(log, "Calibration file that scales the values and tells the log rate");

    CLI::App* watch = addOnPort(
        "monitor", "Show the live values, one line a second, until Ctrl-C",
        [](const Context& context, const Arguments& given) {
            monitor(context, given.port, {given.seconds, given.log, given.calibration, formOf(given)});
        });
    watch->add_option("--seconds", given_.seconds, "How long")
        ->check(CLI::Validator(validSeconds, "SECONDS"));
    watch->add_option("--log", given_.log, "Record a datalog, as the flight recorder does");
    addForce(watch);
    addScaling(watch, "Calibration file that scales the values");
    CLI::Option* csv = watch->add_flag("--csv", given_.csv, "One line a frame, separated by commas");
    watch->add_flag("--json", given_.json, "One line of JSON a frame")->excludes(csv);
}

void CommandLine::addTraces() {
    CLI::App* shown =
        add("trace", "Show a wire trace, made by --trace or the program",
            [](const Context& context, const Arguments& given) {
                showTrace(context, given.file,
                          {given.command, given.fromSeconds, given.toSeconds, given.problems}, given.summary);
            });
    shown->add_option("FILE", given_.file, "Wire trace")->required();
    shown->add_option("--command", given_.command, "Only what belongs to this command")
        ->check(CLI::Validator(validTracedCommand, "COMMAND"));
    shown->add_option("--from", given_.fromSeconds, "Only from this time on, counted from the beginning")
        ->check(CLI::Validator(validMoment, "SECONDS"));
    shown->add_option("--to", given_.toSeconds, "Only up to this time")
        ->check(CLI::Validator(validMoment, "SECONDS"));
    shown->add_flag("--problems", given_.problems, "Only what went wrong, each behind the command before it");
    shown->add_flag("--summary", given_.summary, "Only counts, times and problems by kind");
    addJson(shown);
}

}  // namespace zentaq::ctl
