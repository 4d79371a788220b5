// Any bytes as a datalog: it is read or refused, and every row has its columns.
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <sstream>
#include <string>

#include "base/errors.h"
#include "fuzzing.h"
#include "live/datalog_reader.h"

namespace zentaq::fuzzing {
namespace {

struct Counted : DatalogSink {
    std::size_t columns = 0;
    std::int64_t rows = 0;

    void head(const DatalogHead& head) override {
        require(columns == 0, "the head comes once");
        columns = head.columns.size();
    }
    void row(std::span<const double> values, std::int64_t line) override {
        require(values.size() == columns && columns > 0, "a row has a value for each column");
        require(line > 0, "lines count from 1");
        for (const double value : values)
            require(std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max()),
                    "a float holds every value");
        ++rows;
    }
};

void readLog(std::string_view text) {
    std::istringstream in{std::string(text)};
    Counted sink;
    try {
        const DatalogReading reading = readDatalog(in, sink);
        require(reading.rows == sink.rows, "every row is handed over");
        require(reading.warnings.size() <= mostDatalogWarnings, "only the first damaged lines are told");
    } catch (const Failure&) {
        require(sink.rows == 0, "what is no log has no rows");
    }
}

}  // namespace
}  // namespace zentaq::fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    zentaq::fuzzing::readLog({reinterpret_cast<const char*>(data), size});
    return 0;
}
