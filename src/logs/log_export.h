// Datalogs as other programs read them: CSV, MSL text and MLG binary. Whatever format a log has, its channels
// come out under the names of the newer one and in the same order, so that all files of a folder are alike.
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "live/datalog_reader.h"
#include "logs/log_marks.h"

namespace zentaq {

enum class LogExport : std::uint8_t { Csv, Msl, Mlg };

/// "csv", "msl", "mlg".
std::string_view exportName(LogExport format);

struct ExportedLog {
    std::string name;            ///< told in the comment of an MSL file
    std::int64_t startedAt = 0;  ///< seconds since 1970, for MLG
    std::vector<LogMark> marks;  ///< CSV has no place for them
};

/// Reads to the end of `in`. Throws Failure for what is no datalog, and where `out` fails.
DatalogReading exportLog(std::istream& in, std::ostream& out, LogExport format, const ExportedLog& about,
                         const DatalogOptions& options = {});

}  // namespace zentaq
