#include "command_line.h"

#include <algorithm>
#include <iterator>
#include <numeric>

#include "base/number_text.h"
#include "base/shown_text.h"
#include "commands.h"
#include "config/model_list.h"
#include "near_names.h"
#include "unit/table_kinds.h"
#include "unit_names.h"

namespace zentaq::ctl {

namespace {

constexpr int done = 0;
constexpr int different = 1;

std::string validFirmware(const std::string& text) {
    return parseFirmware(text) ? std::string() : shownBriefly(text) + " is no firmware such as 5.99";
}

/// "-o $OUT" with nothing in OUT must not mean "write FILE itself".
std::string namedFile(const std::string& text) {
    return text.empty() ? "the name of the file is empty" : std::string();
}

/// With quotes where a shell needs them.
std::string modelNames() {
    std::vector<std::string> names;
    for (const ModelEntry& model : modelEntries()) {
        const std::string name(model.name);
        names.push_back(name.find(' ') == std::string::npos ? name : '"' + name + '"');
    }
    return joinedByOr(names);
}

const UnitKind* kindOrNone(const std::string& text) {
    return text.empty() ? nullptr : unitKindOf(text);
}

std::string validSetting(const std::string& text) {
    const auto sign = text.find('=');
    return sign != std::string::npos && sign > 0 ? std::string()
                                                 : shownBriefly(text) + " is not of the form MEMBER=VALUE";
}

/// The words behind the program's name, last one first as the parser takes them. "-.5" would be read as an
/// option named ".5".
std::vector<std::string> wordsOf(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    for (std::string& word : words) {
        if (word.starts_with("-.") && isNumeric(word)) word.insert(1, "0");
    }
    std::ranges::reverse(words);
    return words;
}

}  // namespace

CommandLine::CommandLine()
    : app_("Reads, changes, compares and converts calibration files of Zentaq4, and speaks with a unit",
           "zentaqctl") {
    app_.set_version_flag("--version", ZENTAQ_VERSION);
    app_.set_help_all_flag("--help-all", "Print the help of all commands and exit");
    app_.require_subcommand(1);
    app_.failure_message([](const CLI::App*, const CLI::Error& error) {
        return shownError(error.what()) + "\nRun with --help for more information.\n";
    });
    app_.footer(
        "Exit status: 0 done, 1 refused or failed (for diff also: the files differ), 2 wrong usage, 3 no "
        "unit "
        "reached,\n128 and the number of the signal that ended a command of the link.");
    addReading();
    addPins();
    addChanging();
    addTable();
    addComparing();
    addMaking();
    addDecoding();
    addLink();
}

Run CommandLine::parse(int argc, char** argv) {
    refuseUnknownCommand(argc > 1 ? argv[1] : "");
    app_.parse(wordsOf(argc, argv));
    const auto chosen =
        std::ranges::find_if(commands_, [](const auto& each) { return each.first->parsed(); });
    return chosen->second;
}

void CommandLine::refuseUnknownCommand(const std::string& word) const {
    if (word.empty() || word.starts_with('-')) return;
    const auto isIt = [&](const auto& each) { return each.first->get_name() == word; };
    if (std::ranges::none_of(commands_, isIt))
        throw CLI::ValidationError(shownBriefly(word) + " is no command");
}

CLI::App* CommandLine::add(const char* name, const char* what, Work work) {
    return add(name, what, Run([this, work = std::move(work)](const Context& context) {
                   work(context, given_);
                   return done;
               }));
}

CLI::App* CommandLine::add(const char* name, const char* what, Run run) {
    CLI::App* command = app_.add_subcommand(name, what);
    commands_.emplace_back(command, std::move(run));
    return command;
}

CLI::App* CommandLine::addOnFile(const char* name, const char* what, Work work) {
    CLI::App* command = add(name, what, std::move(work));
    command->add_option("FILE", given_.file, "Calibration file")->required();
    return command;
}

void CommandLine::addMember(CLI::App* command) {
    command->add_option("MEMBER", given_.member, "Name of a member, such as KNK_MIN, VE or NOTES_TEXT")
        ->required();
}

void CommandLine::addValue(CLI::App* command) {
    command->add_option("VALUE", given_.value, "The new value, in the unit that the windows show")
        ->required();
}

void CommandLine::addIndex(CLI::App* command) {
    command->add_option("--index", given_.index, "Element of a table or curve, from 0");
}

void CommandLine::addJson(CLI::App* command) {
    command->add_flag("--json", given_.json, "Answer in JSON");
}

CLI::Option* CommandLine::addOutput(CLI::App* command, const char* what) {
    addForce(command);
    return command->add_option("-o,--output", given_.output, what)->check(CLI::Validator(namedFile, "FILE"));
}

CLI::Option* CommandLine::addForce(CLI::App* command) {
    return command->add_flag("--force", given_.force, "Take the place of a file that is there already");
}

void CommandLine::addCutForce(CLI::App* command) {
    command->add_flag("--force", given_.force, "Take a calibration file whose end is missing all the same");
}

void CommandLine::takeCutToo(CLI::App* command) {
    command->get_option("--force")->description(
        "Take the place of a file that is there already, and a calibration file whose end is missing");
}

void CommandLine::addReading() {
    addJson(addOnFile("info", "Show what a file is",
                      [](const Context& context, const Arguments& given) { info(context, given.file); }));

    CLI::App* list = add("members",
                         "List the members of a unit kind, one a line, separated by tabs; of all kinds "
                         "where neither FILE nor --kind is given",
                         [](const Context& context, const Arguments& given) {
                             members(context, given.file, kindOrNone(given.kind));
                         });
    CLI::Option* file =
        list->add_option("FILE", given_.file, "Of this calibration, with the limits in force there");
    list->add_option("--kind", given_.kind,
                     "Unit kind: A, L, C, D, D6, PZK-2, a class, an extension or a number")
        ->check(CLI::Validator(validKind, "KIND"))
        ->excludes(file);
    addJson(list);

    CLI::App* show = addOnFile("get", "Show a value, a curve or a table",
                               [](const Context& context, const Arguments& given) {
                                   get(context, given.file, given.member, given.index);
                               });
    addMember(show);
    CLI::Option* place = show->add_option("INDEX", given_.index, "Element, from 0; without it all are shown");
    show->add_option("--index", given_.index, "The same")->excludes(place);
    addJson(show);

    CLI::App* sent = addOnFile("record", "Show the records that a change sends to a running unit, one a line",
                               [](const Context& context, const Arguments& given) {
                                   record(context, given.file, given.member, given.value, given.index);
                               });
    addMember(sent);
    addValue(sent);
    addIndex(sent);
    addJson(sent);
}

void CommandLine::addChanging() {
    constexpr const char* elsewhere = "Write here and leave FILE as it is";

    CLI::App* change =
        addOnFile("set", "Change a value in a file", [](const Context& context, const Arguments& given) {
            set(context, given.file, given.member, given.value, given.index, given.output);
        });
    addMember(change);
    addValue(change);
    addIndex(change);
    addOutput(change, elsewhere);
    takeCutToo(change);

    CLI::App* raw =
        addOnFile("cell", "Show or change a cell as it stands: nothing converted, no range checked",
                  [](const Context& context, const Arguments& given) {
                      if (!given.cell) return showCell(context, given.file, *given.index);
                      setCell(context, given.file, *given.index, *given.cell, given.output);
                  });
    raw->add_option("INDEX", given_.index, "Number of the cell, from 0")->required();
    CLI::Option* value =
        raw->add_option("VALUE", given_.cell, "The new content; without it the cell is shown");
    addOutput(raw, elsewhere)->needs(value);
    takeCutToo(raw);
    raw->add_flag("--json", given_.json, "Answer in JSON")->excludes(value);

    CLI::App* memory = addOnFile("image", "Write the memory image as S-records",
                                 [](const Context& context, const Arguments& given) {
                                     image(context, given.file, parseFirmware(given.firmware), given.output);
                                 });
    memory->add_option("--firmware", given_.firmware, "Image for this firmware, such as 5.99")
        ->check(CLI::Validator(validFirmware, "RELEASE.BUILD"));
    addOutput(memory, "S-record file to write; - is the standard output")->required();
    takeCutToo(memory);

    CLI::App* old = add(
        "import-bin", "Turn a file of the older generation into a calibration file",
        [](const Context& context, const Arguments& given) { importOld(context, given.file, given.output); });
    old->add_option("OLD", given_.file, "File of the older generation, *.BIN")->required();
    addOutput(old, "Calibration file to write")->required();
}

void CommandLine::addComparing() {
    CLI::App* compare =
        add("diff", "Show what differs between two files, one a line; exit status 1 where they differ",
            Run([this](const Context& context) {
                return diff(context, given_.file, given_.second) ? done : different;
            }));
    compare->add_option("A", given_.file, "Calibration file; - is the standard input")->required();
    compare->add_option("B", given_.second, "Calibration file")->required();
    addJson(compare);

    CLI::App* join = add("merge", "Join the changes that A and B made to BASE",
                         [](const Context& context, const Arguments& given) {
                             mergeFiles(context, given.file, given.second, given.third, given.output);
                         });
    join->add_option("BASE", given_.file, "Calibration file that both began with")->required();
    join->add_option("A", given_.second, "Calibration file")->required();
    join->add_option("B", given_.third, "Calibration file")->required();
    addOutput(join, "Calibration file to write; nothing is written on a conflict")->required();
    takeCutToo(join);

    CLI::App* listing = addOnFile("export", "Write a file as text, one value a line, for version control",
                                  [](const Context& context, const Arguments& given) {
                                      exportText(context, given.file, given.output);
                                  });
    addOutput(listing, "Text file to write; without it, or as -, the standard output");

    CLI::App* doubts =
        add("check", "List what a careful colleague would ask about; exit status 1 where there is something",
            Run([this](const Context& context) { return check(context, given_.file) ? done : different; }));
    doubts->add_option("FILE", given_.file, "Calibration file")->required();

    addLogs();

    CLI::App* paper = addOnFile(
        "print", "Write a file as a listing for people",
        [](const Context& context, const Arguments& given) { print(context, given.file, given.output); });
    addOutput(
        paper,
        "Text file to write, or a document where the name ends in .pdf; without it the standard output");

    CLI::App* back = add("import", "Turn the text of export into the same file again",
                         [](const Context& context, const Arguments& given) {
                             importText(context, given.file, given.output);
                         });
    back->add_option("TEXT", given_.file, "Text file; - is the standard input")->required();
    addOutput(back, "Calibration file to write")->required();
}

void CommandLine::addLogs() {
    CLI::App* log = add("log", "Show what a datalog holds, or write it for other programs",
                        Run([this](const Context& context) { return runLog(context); }));
    log->parse_complete_callback([this] { checkLog(); });
    log->add_option(
           "WHAT", given_.command,
           "info: format, rows, seconds; rows: all of them, parted by tabs; stats: what each channel "
           "reaches; find: where a condition holds; histogram: what a channel did in the cells of a "
           "table; export: for other programs; diff: what two logs have differently")
        ->required()
        ->check(CLI::IsMember({"info", "rows", "stats", "find", "histogram", "export", "diff"}));
    log->add_option("LOG", given_.files,
                    "Datalog, *.dat; with find the condition behind it, with diff a second datalog, with "
                    "export as many as there are")
        ->required();
    log->add_option("--channels", given_.channels, "With rows: only these, as RPM,MAP");
    log->add_option(
        "--where", given_.condition,
        "With stats and histogram: only rows for which this holds, as \"RPM > 3000 and MAP > 80\"");
    log->add_option("--table", given_.calibration,
                    "With histogram: a calibration and one of its tables, as Street.ZQ4OA:VE");
    log->add_option("--channel", given_.channel, "With histogram: whose values are counted, as AAFR");
    log->add_option("--to", given_.form, "With export: csv, msl or mlg")
        ->check(CLI::IsMember({"csv", "msl", "mlg"}));
    addOutput(log, "With export: the file to write, or a folder, where each log gets a file of its own");

    CLI::App* tune = addOnFile("autove", "Correct the fuel table of a file by a datalog",
                               [](const Context& context, const Arguments& given) {
                                   autoVe(context, given.file, given.log, given.constant, given.output);
                               });
    tune->add_option("LOG", given_.log, "Datalog, *.dat")->required();
    tune->add_option("--constant", given_.constant,
                     "From 5 to 200, as the window asks for it; the rule in use has no need of it");
    addOutput(tune, "Write here and leave FILE as it is");
    takeCutToo(tune);
}

void CommandLine::checkLog() const {
    const auto need = [this](bool there, const char* what) {
        if (!there) throw CLI::ValidationError("log " + given_.command, what);
    };
    if (given_.command == "export") {
        need(!given_.output.empty() && !given_.form.empty(), "needs -o and --to");
    } else if (given_.command == "find") {
        need(given_.files.size() == 2, "takes a datalog and a condition");
    } else if (given_.command == "diff") {
        need(given_.files.size() == 2, "takes two datalogs");
    } else {
        need(given_.files.size() == 1, "takes one datalog");
    }
    if (given_.command == "histogram")
        need(!given_.calibration.empty() && !given_.channel.empty(), "needs --table and --channel");
}

int CommandLine::runLog(const Context& context) const {
    const std::string& first = given_.files.front();
    const std::string& last = given_.files.back();
    if (given_.command == "find") return logFind(context, first, last) ? done : different;
    if (given_.command == "diff") return logDiff(context, first, last) ? done : different;
    if (given_.command == "info") logInfo(context, first);
    if (given_.command == "rows") logRows(context, first, given_.channels);
    if (given_.command == "stats") logStats(context, first, given_.condition);
    if (given_.command == "histogram")
        logHistogram(context, first, given_.calibration, given_.channel, given_.condition);
    if (given_.command == "export") logExport(context, given_.files, given_.output, given_.form);
    return done;
}

void CommandLine::addPins() {
    CLI::App* pins =
        addOnFile("gpio", "List the pins with their functions and parameters, or change one",
                  [](const Context& context, const Arguments& given) {
                      if (!given.function.empty())
                          return chooseFunction(context, given.file, given.pin, given.function, given.output);
                      if (!given.assignment.empty())
                          return setParameter(context, given.file, given.pin, given.assignment, given.output);
                      gpio(context, given.file);
                  });
    CLI::Option* pin = pins->add_option("PIN", given_.pin, "Number of a pin, from 0, as the list has it");
    CLI::Option* function = pins->add_option("--function", given_.function,
                                             "Give the pin this function of its list, by name or code; its "
                                             "parameters become 0");
    CLI::Option* value =
        pins->add_option("--set", given_.assignment, "ROW=VALUE: a parameter of the function, rows from 1");
    function->needs(pin)->excludes(value);
    value->needs(pin);
    addOutput(pins, "With a change: write here and leave FILE as it is");
    takeCutToo(pins);
}

void CommandLine::addMaking() {
    const std::string models = "Model: " + modelNames() + ", or a unit kind such as A";
    CLI::App* make =
        add("new", "Make a new calibration of an engine, a sensor and the default values",
            [](const Context& context, const Arguments& given) {
                makeNew(context, {given.model, given.engine, given.sensor, given.settings, given.output});
            });
    make->add_option("--unit", given_.model, models)->required()->check(CLI::Validator(wrongModel, "MODEL"));
    make->add_option("--engine", given_.engine, "Engine, as the command engines lists it")->required();
    make->add_option("--sensor", given_.sensor, "MAP sensor, as the command sensors lists it")->required();
    make->add_option("--set", given_.settings, "A value that is not the default one; may be given again")
        ->allow_extra_args(false)
        ->check(CLI::Validator(validSetting, "MEMBER=VALUE"));
    addOutput(make, "Calibration file to write")->required();

    CLI::App* engines =
        add("engines", "List the engines, one a line, separated by tabs",
            [](const Context& context, const Arguments& given) { listEngines(context, given.model); });
    engines->add_option("--unit", given_.model, models)->check(CLI::Validator(wrongModel, "MODEL"));
    addJson(engines);
    addJson(add("sensors", "List the MAP sensors, one a line, separated by tabs",
                [](const Context& context, const Arguments&) { listSensors(context); }));
}

void CommandLine::addDecoding() {
    CLI::App* reply =
        add("decode", "Show what a reply of a unit says, one NAME=value a line",
            [](const Context& context, const Arguments& given) {
                const std::string hex = std::accumulate(given.hex.begin(), given.hex.end(), std::string());
                decode(context, kindOrNone(given.kind), given.reply.front(), hex, given.calibration);
            });
    reply
        ->add_option("HEX", given_.hex,
                     "The bytes in hexadecimal, with or without blanks; - is the standard input")
        ->required()
        ->expected(1, -1);
    reply
        ->add_option("--kind", given_.kind,
                     "Unit kind: A, L, C, D, D6, PZK-2, a class, an extension or a number")
        ->check(CLI::Validator(validKind, "KIND"));
    reply->add_option("--reply", given_.reply, "Command that was answered")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>(std::begin(knownReplies), std::end(knownReplies))));
    reply->add_option(
        "--calibration", given_.calibration,
        "Calibration file that scales the values; without it a plain one of the newest firmware");
    addJson(reply);
    reply->final_callback([this] {
        if (!given_.kind.empty() || !given_.calibration.empty() || given_.reply == "E") return;
        throw CLI::RequiredError("--kind or --calibration");
    });
}

}  // namespace zentaq::ctl
