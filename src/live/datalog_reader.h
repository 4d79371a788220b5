// Reads a datalog, row by row, without a window and without holding it: the formats of this program, and the
// plain one with a line of names. A damaged line is skipped and counted, and never takes another one along.
#pragma once

#include <cstdint>
#include <functional>
#include <istream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

enum class DatalogFormat : std::uint8_t {
    Newest,  ///< "ZENTAQ 4.10 DATALOG", and 4.5 with the same columns: 50 frames a second
    Oldest,  ///< "ZENTAQ 4.0 DATALOG": seconds in the place of frames
    Plain,   ///< no banner: a line with the names of the columns, then values
};

struct DatalogHead {
    DatalogFormat format = DatalogFormat::Newest;
    std::string banner;                 ///< the first field as it stands
    std::string firmware;               ///< of the unit; empty where it is not told
    std::string mapUnits;               ///< "kPa"; empty where it is not told
    float mapBar = 0;                   ///< 0 where it is not told
    std::vector<std::string> settings;  ///< the fields of the line behind the banner
    std::vector<std::string> columns;   ///< of each row, as the table of the reference data calls them
};

struct DatalogWarning {
    std::int64_t line = 0;  ///< from 1
    std::string why;
};

/// What came of reading.
struct DatalogReading {
    std::int64_t rows = 0;
    std::int64_t skipped = 0;              ///< damaged lines
    std::vector<DatalogWarning> warnings;  ///< of the first of them, at most `mostWarnings`
    bool cancelled = false;
};
inline constexpr std::size_t mostDatalogWarnings = 20;

/// Takes what is read.
class DatalogSink {
 public:
    virtual ~DatalogSink() = default;
    /// Once, before the rows.
    virtual void head(const DatalogHead& head) = 0;
    /// One value for each column.
    virtual void row(std::span<const double> values, std::int64_t line) = 0;
};

struct DatalogOptions {
    /// Injections are `cycleFactor / rpm` seconds apart: 120 for a sequential engine, else 60.
    double cycleFactor = 120;
    /// Asked now and then, with the bytes that were read; false ends the reading.
    std::function<bool(std::uint64_t bytes)> goOn{};
};

/// The columns of the rows of a format.
std::vector<std::string> datalogColumns(DatalogFormat format);

/// Reads to the end. Throws Failure, with what is wrong, for what is no datalog.
DatalogReading readDatalog(std::istream& in, DatalogSink& sink, const DatalogOptions& options = {});

}  // namespace zentaq
