// zentaqctl: reads, changes and converts calibration files without a window. Reads the command line,
// nothing else; the commands stand in commands.cpp.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "base/errors.h"
#include "base/number_text.h"
#include "commands.h"

namespace {

constexpr int done = 0;
constexpr int refusedOrFailed = 1;
constexpr int wrongUsage = 2;

/// The database of the application folder that this program stands in; none where it is missing or damaged.
std::optional<zentaq::Database> openDatabase() {
    std::optional<zentaq::Database> database;
    zentaq::skipFailing([&] {
        const auto folder = std::filesystem::read_symlink("/proc/self/exe").parent_path();
        database = zentaq::Database::open((folder / "bin/data/zentaq410-02.pak").string());
    });
    return database;
}

/// What the command line says; each command uses its own part.
struct Arguments {
    std::string file;
    std::string member;
    std::string value;
    std::string output;
    std::string firmware;
    std::optional<int> index;
};

CLI::App* addCommand(CLI::App& app, Arguments& arguments, const char* name, const char* what) {
    CLI::App* command = app.add_subcommand(name, what);
    command->add_option("FILE", arguments.file, "Calibration file")->required();
    return command;
}

void addMember(CLI::App* command, Arguments& arguments) {
    command->add_option("MEMBER", arguments.member, "Name of a member, such as KNK_MIN or VE")->required();
}

void addChange(CLI::App* command, Arguments& arguments) {
    addMember(command, arguments);
    command->add_option("VALUE", arguments.value, "The new value, in the unit that the windows show")
        ->required();
    command->add_option("--index", arguments.index, "Element of a table or curve, from 0");
}

std::string validFirmware(const std::string& text) {
    return zentaq::ctl::parseFirmware(text) ? std::string() : text + " is no firmware such as 5.99";
}

/// The words behind the program's name, last one first as the parser takes them. "-.5" would be read as an
/// option named ".5".
std::vector<std::string> wordsOf(int argc, char** argv) {
    std::vector<std::string> words(argv + 1, argv + argc);
    for (std::string& word : words) {
        if (word.starts_with("-.") && zentaq::isNumeric(word)) word.insert(1, "0");
    }
    std::ranges::reverse(words);
    return words;
}

std::string onOneLine(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    return text;
}

/// Runs one command under the policy "ends at the first failure, told in one line".
template <typename Command>
int run(Command&& command) {
    const bool good = zentaq::endOnFailure(
        std::forward<Command>(command), [](const std::string& why) { std::cerr << onOneLine(why) << '\n'; });
    return good ? done : refusedOrFailed;
}

int runProgram(int argc, char** argv) {
    using namespace zentaq;
    CLI::App app{"Reads, changes and converts calibration files of Zentaq4", "zentaqctl"};
    app.set_version_flag("--version", ZENTAQ_VERSION);
    app.require_subcommand(1);
    Arguments given;

    CLI::App* info = addCommand(app, given, "info", "Show what a file is");
    CLI::App* get = addCommand(app, given, "get", "Show a value, a curve or a table");
    addMember(get, given);
    get->add_option("INDEX", given.index, "Element, from 0; without it all are shown");
    CLI::App* set = addCommand(app, given, "set", "Change a value in a file");
    addChange(set, given);
    set->add_option("-o,--output", given.output, "Write here and leave FILE as it is");
    CLI::App* image = addCommand(app, given, "image", "Write the memory image as S-records");
    image->add_option("--firmware", given.firmware, "Image for this firmware, such as 5.99")
        ->check(CLI::Validator(validFirmware, "RELEASE.BUILD"));
    image->add_option("-o,--output", given.output, "S-record file to write")->required();
    CLI::App* record = addCommand(app, given, "record", "Show what a change would send to a running unit");
    addChange(record, given);

    try {
        app.parse(wordsOf(argc, argv));
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == done ? done : wrongUsage;
    }

    const auto database = openDatabase();
    const ctl::Context context{database ? &*database : nullptr, std::cout, std::cerr};
    return run([&] {
        if (info->parsed()) ctl::info(context, given.file);
        if (get->parsed()) ctl::get(context, given.file, given.member, given.index);
        if (set->parsed()) {
            ctl::set(given.file, given.member, given.value, given.index.value_or(0), given.output, context);
        }
        if (image->parsed()) {
            ctl::image(context, given.file, ctl::parseFirmware(given.firmware), given.output);
        }
        if (record->parsed()) {
            ctl::record(context, given.file, given.member, given.value, given.index.value_or(0));
        }
        std::cout.flush();
        if (!std::cout) throw Failure("Cannot write to standard output");
    });
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return runProgram(argc, argv);
    } catch (const std::exception& failure) {
        std::fputs(failure.what(), stderr);
        std::fputc('\n', stderr);
        return refusedOrFailed;
    }
}
