// Small logs for tests, written as a recording or another program writes them.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "logs/log_columns.h"

namespace zentaq {

/// Takes rows into columns.
class ColumnSink : public DatalogSink {
 public:
    explicit ColumnSink(LogColumns& log) : log_(log) {}
    void head(const DatalogHead& head) override { log_.begin(head); }
    void row(std::span<const double> values, std::int64_t /*line*/) override { log_.append(values); }

 private:
    LogColumns& log_;
};

/// A log with names in its first line.
inline LogColumns logOf(const std::string& text) {
    LogColumns log;
    ColumnSink sink(log);
    std::istringstream in(text);
    readDatalog(in, sink);
    return log;
}

}  // namespace zentaq
