// The command line of zentaqctl: commands, options and their help. What it says is kept as plain values.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "context.h"

namespace zentaq::ctl {

/// What is to be done with a table.
struct TableWork {
    std::string interpolated;
    std::string smoothed;
    std::optional<int> strength;
    std::string lineOption;  ///< "--add-column" and its like
    int line = 0;
    std::string view;
    std::string formula;
    std::string cells;
    std::string columns;
    std::string rows;
};

/// What the command line says; each command uses its own part.
struct Arguments {
    std::string file;
    std::string second;
    std::string third;
    std::string member;
    std::string value;
    std::string output;
    int pin = 0;
    std::string function;
    std::string assignment;  ///< ROW=VALUE
    std::optional<std::string> cell;
    std::optional<std::string> from;
    TableWork table;
    std::string firmware;
    std::string kind;
    std::string reply;
    std::string calibration;
    std::vector<std::string> hex;
    std::string engine;
    std::string sensor;
    std::string model;
    std::vector<std::string> settings;
    bool force = false;
    std::string port = "1";
    std::optional<double> seconds;
    std::string log;
    std::string channels;
    std::vector<std::string> files;
    std::string condition;
    std::string channel;
    std::string form;
    int constant = 50;
    std::string trace;
    std::string command;
    std::optional<double> fromSeconds;
    std::optional<double> toSeconds;
    bool problems = false;
    bool summary = false;
    bool confirmed = false;
    std::string kindWithoutFirmware;
    bool clear = false;
    bool csv = false;
    std::optional<int> index;
    bool json = false;
};

/// A command does its work and answers the exit status: 0 done, 1 where `diff` found differences.
using Run = std::function<int(const Context& context)>;
/// One that has nothing to answer where it does not throw.
using Work = std::function<void(const Context& context, const Arguments& given)>;

class CommandLine {
 public:
    CommandLine();
    CommandLine(const CommandLine&) = delete;
    CommandLine& operator=(const CommandLine&) = delete;

    /// The command to run. Throws CLI::ParseError on wrong usage, and where help or the version is asked for.
    Run parse(int argc, char** argv);
    /// Writes help, version or what is wrong; answers whether that was asked for.
    bool explain(const CLI::ParseError& error) { return app_.exit(error) == 0; }
    bool json() const { return given_.json; }
    bool force() const { return given_.force; }
    const std::string& trace() const { return given_.trace; }

 private:
    void refuseUnknownCommand(const std::string& word) const;
    CLI::App* add(const char* name, const char* what, Work work);
    CLI::App* add(const char* name, const char* what, Run run);
    CLI::App* addOnFile(const char* name, const char* what, Work work);
    void addMember(CLI::App* command);
    void addValue(CLI::App* command);
    void addIndex(CLI::App* command);
    void addJson(CLI::App* command);
    CLI::Option* addOutput(CLI::App* command, const char* what);
    CLI::Option* addForce(CLI::App* command);
    void addCutForce(CLI::App* command);
    /// For a command that has --force already: it takes a file that was cut as well.
    static void takeCutToo(CLI::App* command);
    void addReading();
    void addLogs();
    /// Throws CLI::ParseError where a word, a file or an option is missing.
    void checkLog() const;
    int runLog(const Context& context) const;
    void addPins();
    void addChanging();
    void addComparing();
    void addMaking();
    void addDecoding();
    // command_line_table.cpp
    void addTable();
    std::vector<CLI::Option*> addTableChanges(CLI::App* table);
    // command_line_link.cpp
    void addLink();
    void addLinkTransfers();
    void addTraces();
    CLI::App* addOnPort(const char* name, const char* what, Work work);
    CLI::Option* addScaling(CLI::App* command, const char* what);

    CLI::App app_;
    Arguments given_;
    std::vector<std::pair<CLI::App*, Run>> commands_;
};

}  // namespace zentaq::ctl
