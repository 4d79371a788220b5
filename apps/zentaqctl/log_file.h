// A datalog that a command reads, a file that one writes row by row, and what is told of what was left out.
#pragma once

#include <fstream>
#include <string>
#include <vector>

#include "context.h"
#include "live/datalog_reader.h"
#include "unit/unit.h"

namespace zentaq::ctl {

class LogFile {
 public:
    /// Throws FileError.
    explicit LogFile(const std::string& path);
    /// Throws FileError with the name of the file for what is no datalog.
    DatalogReading read(DatalogSink& sink);
    std::istream& stream() { return in_; }

 private:
    std::string path_;
    std::ifstream in_;
};

/// Written beside its target, which it becomes when it is kept: a command that fails leaves nothing behind.
class NewFile {
 public:
    /// Throws FileError.
    explicit NewFile(const std::string& path);
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    std::ostream& stream() { return out_; }
    /// Throws FileError.
    void keep();

 private:
    std::string path_;
    std::string partial_;
    std::ofstream out_;
    bool kept_ = false;
};

/// The lines that were left out, as they are told.
std::string warningsText(const std::string& file, const DatalogReading& reading);
void tellWarnings(const Context& context, const std::string& file, const DatalogReading& reading);

/// The place of a channel in the rows. Throws Failure for one that the log has not.
std::size_t channelPlace(const std::vector<std::string>& columns, std::string_view name);

/// Notes it where the pressures of a log are in other units than those of a calibration.
void notePressureUnits(const Context& context, const std::string& mapUnits, const Unit& unit);

}  // namespace zentaq::ctl
