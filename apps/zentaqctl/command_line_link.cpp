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

constexpr int done = 0;
constexpr int notConfirmed = 2;
constexpr int noUnit = 3;
constexpr int interrupted = 128;

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

/// A command of the link; where no unit is reached, or a signal ends it, scripts see another status than for
/// a unit that refused.
template <typename Work>
Run linking(Work&& work) {
    return [work = std::forward<Work>(work)](const Context& context) {
        try {
            work(context);
            return done;
        } catch (const NoUnit& failure) {
            context.notes << shownError(failure.what()) << '\n';
            return noUnit;
        } catch (const NotConfirmed& failure) {
            context.notes << shownError(failure.what()) << '\n';
            return notConfirmed;
        } catch (const Interrupted& failure) {
            context.notes << shownError(failure.what()) << '\n';
            return interrupted + failure.signal;
        }
    };
}

MonitorForm formOf(const Arguments& given) {
    if (given.csv) return MonitorForm::Csv;
    return given.json ? MonitorForm::Json : MonitorForm::Seconds;
}

}  // namespace

CLI::App* CommandLine::addOnPort(const char* name, const char* what, Run run) {
    const auto traced = [this, run = std::move(run)](const Context& context) {
        Context given = context;
        given.trace = given_.trace;
        return run(given);
    };
    CLI::App* command = add(name, what, traced);
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
    Arguments& given = given_;
    addJson(add("ports", "List the serial ports, one a line, separated by tabs; nothing is sent to them",
                linking([](const Context& context) { listPorts(context); })));
    addJson(addOnPort("identify", "Ask the unit who it is",
                      linking([&given](const Context& context) { identify(context, given.port); })));

    CLI::App* sent =
        addOnPort("send", "Change a value of the running unit", linking([&given](const Context& context) {
                      send(context, given.port,
                           {given.member, given.value, given.index.value_or(0), given.calibration});
                  }));
    addMember(sent);
    addValue(sent);
    addIndex(sent);
    addScaling(sent, "Calibration that the unit runs on, for values that depend on it");
    addCutForce(sent);
    addJson(sent);
    addOnPort("store", "Have the unit keep the changes that were sent",
              linking([&given](const Context& context) { store(context, given.port); }));
    addOnPort("kill", "Stop the engine",
              linking([&given](const Context& context) { kill(context, given.port); }));

    CLI::App* list =
        addOnPort("codes", "Show the active check-engine codes, one a line",
                  linking([&given](const Context& context) { codes(context, given.port, given.clear); }));
    CLI::Option* clear = list->add_flag("--clear", given.clear, "Have the unit forget its codes instead");
    list->add_flag("--json", given.json, "Answer in JSON")->excludes(clear);
    addLinkTransfers();
    addTraces();
}

void CommandLine::addLinkTransfers() {
    Arguments& given = given_;
    CLI::App* load =
        addOnPort("program", "Program a calibration into the unit",
                  linking([&given](const Context& context) { program(context, given.port, given.file); }));
    load->add_option("FILE", given.file, "Calibration file")->required();
    addCutForce(load);

    CLI::App* upgrade =
        addOnPort("firmware", "Give the unit a new firmware", linking([&given](const Context& context) {
                      firmware(context, given.port, {given.file, given.confirmed, given.kindWithoutFirmware});
                  }));
    upgrade->add_option("FILE", given.file, "Firmware file (*.nv3)")->required();
    upgrade->add_flag("--yes", given.confirmed,
                      "Do not ask: I have read the guide's page on firmware upgrades");
    upgrade
        ->add_option(
            "--unit-without-firmware", given.kindWithoutFirmware,
            "Mend a unit that lost its firmware and answers nothing: its kind, A, L, C, D, D6 or PZK-2")
        ->check(CLI::Validator(validKind, "KIND"));

    CLI::App* log =
        addOnPort("datalog", "Retrieve the unit's own datalog", linking([&given](const Context& context) {
                      datalog(context, given.port, given.output, given.calibration);
                  }));
    log->add_option("OUT", given.output, "Datalog to write")->required();
    addForce(log);
    addScaling(log, "Calibration file that scales the values and tells the log rate");

    CLI::App* watch = addOnPort(
        "monitor", "Show the live values, one line a second, until Ctrl-C",
        linking([&given](const Context& context) {
            monitor(context, given.port, {given.seconds, given.log, given.calibration, formOf(given)});
        }));
    watch->add_option("--seconds", given.seconds, "How long")->check(CLI::Validator(validSeconds, "SECONDS"));
    watch->add_option("--log", given.log, "Record a datalog, as the flight recorder does");
    addForce(watch);
    addScaling(watch, "Calibration file that scales the values");
    CLI::Option* csv = watch->add_flag("--csv", given.csv, "One line a frame, separated by commas");
    watch->add_flag("--json", given.json, "One line of JSON a frame")->excludes(csv);
}

void CommandLine::addTraces() {
    Arguments& given = given_;
    CLI::App* shown =
        add("trace", "Show a wire trace, made by --trace or the program", [&given](const Context& context) {
            showTrace(context, given.file,
                      {given.command, given.fromSeconds, given.toSeconds, given.problems}, given.summary);
            return done;
        });
    shown->add_option("FILE", given.file, "Wire trace")->required();
    shown->add_option("--command", given.command, "Only what belongs to this command")
        ->check(CLI::Validator(validTracedCommand, "COMMAND"));
    shown->add_option("--from", given.fromSeconds, "Only from this time on, counted from the beginning")
        ->check(CLI::Validator(validMoment, "SECONDS"));
    shown->add_option("--to", given.toSeconds, "Only up to this time")
        ->check(CLI::Validator(validMoment, "SECONDS"));
    shown->add_flag("--problems", given.problems, "Only what went wrong, each behind the command before it");
    shown->add_flag("--summary", given.summary, "Only counts, times and problems by kind");
    addJson(shown);
}

}  // namespace zentaq::ctl
