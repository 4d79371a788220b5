// The commands of zentaqctl. Each writes its answer to `out`, and throws Failure with one line of text where
// it is refused or fails; then no file was written.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "context.h"
#include "trace/trace_file.h"

namespace zentaq::ctl {

// ---- Reading: commands_read.cpp

void info(const Context& context, const std::string& file);
/// With a file the members of its kind, with the limits in force there; with neither, those of all kinds.
void members(const Context& context, const std::string& file, const UnitKind* kind);
/// Without an index all values: a table as its rows, a curve on one line.
void get(const Context& context, const std::string& file, const std::string& member,
         std::optional<int> index);
/// Throws BoundsError for a cell that no calibration has.
void checkCell(int index);
void showCell(const Context& context, const std::string& file, int index);
/// The records that a change of a connected unit sends.
void record(const Context& context, const std::string& file, const std::string& member,
            const std::string& value, std::optional<int> index);

// ---- Changing: commands_change.cpp

struct FirmwareChoice {
    int release = 0;
    int build = 0;
};
/// "5.99" as release and build. Nothing for a text of another form.
std::optional<FirmwareChoice> parseFirmware(const std::string& text);

void set(const Context& context, const std::string& file, const std::string& member, const std::string& value,
         std::optional<int> index, const std::string& output);
void setCell(const Context& context, const std::string& file, int index, const std::string& value,
             const std::string& output);
void image(const Context& context, const std::string& file, std::optional<FirmwareChoice> firmware,
           const std::string& output);
void importOld(const Context& context, const std::string& file, const std::string& output);

// ---- Tables: commands_table.cpp

void showTable(const Context& context, const std::string& file, const std::string& table);
void setTable(const Context& context, const std::string& file, const std::string& table,
              const std::string& input, const std::string& output);

// ---- Operations on tables: commands_table_change.cpp. Rows and columns as the editor shows them, from 1,1
// at the top left.

/// What is wrong with a block such as "2,3:5,8"; empty for a good one.
std::string wrongBlock(const std::string& text);
void interpolateTable(const Context& context, const std::string& file, const std::string& table,
                      const std::string& cells, const std::string& output);
/// `strength` 1 to 5.
void smoothTable(const Context& context, const std::string& file, const std::string& table,
                 const std::string& cells, int strength, const std::string& output);
/// `option` "--add-column", "--add-row", "--remove-column" or "--remove-row".
void changeTableLines(const Context& context, const std::string& file, const std::string& table,
                      const std::string& option, int line, const std::string& output);
void applyToTable(const Context& context, const std::string& file, const std::string& table,
                  const std::string& formula, const std::string& cells, const std::string& output);
/// Lists of headers; an empty one leaves its axis as it is.
void rebinTable(const Context& context, const std::string& file, const std::string& table,
                const std::string& columns, const std::string& rows, const std::string& output);
/// `view` "pulsewidth" or "dutycycle".
void showTableView(const Context& context, const std::string& file, const std::string& table,
                   const std::string& view);

// ---- Comparing and text form: commands_compare.cpp

/// Whether the files are the same.
bool diff(const Context& context, const std::string& first, const std::string& second);
void mergeFiles(const Context& context, const std::string& base, const std::string& first,
                const std::string& second, const std::string& output);
void exportText(const Context& context, const std::string& file, const std::string& output);
/// A listing for people; a document where `output` ends in ".pdf", the standard output where it is empty.
void print(const Context& context, const std::string& file, const std::string& output);

/// Lists what is legal but doubtful, one a line. True where there is nothing.
bool check(const Context& context, const std::string& file);

// ---- Pins count from 0
void gpio(const Context& context, const std::string& file);
/// `function` is a name of the pin's list or a code. All parameters of the pin become 0.
void chooseFunction(const Context& context, const std::string& file, int number, const std::string& function,
                    const std::string& output);
/// `assignment` is ROW=VALUE, rows from 1.
void setParameter(const Context& context, const std::string& file, int number, const std::string& assignment,
                  const std::string& output);

void importText(const Context& context, const std::string& input, const std::string& output);

// ---- New calibrations: commands_new.cpp

struct NewCalibration {
    std::string model;  ///< entry of the model list, or a unit kind: then any engine of the kind goes
    std::string engine;
    std::string sensor;
    std::vector<std::string> settings;  ///< "MEMBER=VALUE"
    std::string output;
};
/// What is wrong with the name of a model, with the names nearest to it; empty for a good one.
std::string wrongModel(const std::string& text);
void makeNew(const Context& context, const NewCalibration& wanted);
/// Of all unit kinds where `model` is empty.
void listEngines(const Context& context, const std::string& model);
void listSensors(const Context& context);

// ---- Datalogs: commands_log.cpp, commands_log_out.cpp
void logInfo(const Context& context, const std::string& file);
/// Channels by their names, parted by commas; empty for all.
void logRows(const Context& context, const std::string& file, const std::string& channels);
/// Of the rows for which a condition holds; all of them where it is empty. Likewise below.
void logStats(const Context& context, const std::string& file, const std::string& condition);
/// The stretches where it holds. Whether there are any.
bool logFind(const Context& context, const std::string& file, const std::string& condition);
/// `table` is a calibration, a colon and the name of a table in it.
void logHistogram(const Context& context, const std::string& file, const std::string& table,
                  const std::string& channel, const std::string& condition);
/// Whether both hold the same.
bool logDiff(const Context& context, const std::string& first, const std::string& second);
/// `form` "csv", "msl" or "mlg"; several logs go into a folder.
void logExport(const Context& context, const std::vector<std::string>& logs, const std::string& output,
               const std::string& form);
void autoVe(const Context& context, const std::string& file, const std::string& log, int constant,
            const std::string& output);

// ---- Wire traces: commands_trace.cpp

/// The chosen lines and what they add up to, or that alone.
void showTrace(const Context& context, const std::string& file, const TraceFilter& filter, bool summaryOnly);

// ---- Replies: commands_decode.cpp

/// The replies that `decode` knows, by their commands.
inline constexpr const char* knownReplies[] = {"B", "C", "D", "E", "F", "I", "T", "W"};

/// `kind` may be nullptr where a calibration is given, and for E. `hex` "-" is the standard input.
void decode(const Context& context, const UnitKind* kind, char reply, const std::string& hex,
            const std::string& calibration);

}  // namespace zentaq::ctl
