// log: what a datalog holds: its head, its rows as they are imported, what its channels reach, where a
// condition holds, what a channel did in the cells of a table, and what another log has differently.
#include <algorithm>
#include <cmath>
#include <optional>
#include <ostream>
#include <utility>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "commands.h"
#include "log_file.h"
#include "logs/log_columns.h"
#include "logs/log_expression.h"
#include "logs/log_figures.h"
#include "logs/log_finding.h"
#include "logs/log_histogram.h"
#include "open_table.h"

namespace zentaq::ctl {

namespace {

constexpr int timeDecimals = 3;
constexpr int meanDecimals = 3;

std::string counted(std::int64_t count) {
    return numberText(static_cast<double>(count));
}

double secondsPerStep(const DatalogHead& head) {
    return head.format == DatalogFormat::Oldest ? 1 : secondsPerFrame;
}

std::string formatName(DatalogFormat format) {
    switch (format) {
        case DatalogFormat::Newest:
            return "frames, 50 a second";
        case DatalogFormat::Oldest:
            return "seconds";
        case DatalogFormat::Plain:
            break;
    }
    return "plain, by the names in the first line";
}

std::string inOneLine(const std::vector<std::string>& names) {
    std::string line;
    for (const std::string& name : names) line += (line.empty() ? "" : ", ") + name;
    return line;
}

/// Where channels stand in the rows; all of them where none is named.
std::vector<std::size_t> placesOf(const std::vector<std::string>& columns, const std::string& wanted) {
    std::vector<std::size_t> places;
    if (wanted.empty()) {
        for (std::size_t i = 0; i < columns.size(); ++i) places.push_back(i);
        return places;
    }
    for (const std::string& name : split(wanted, ',')) places.push_back(channelPlace(columns, name));
    return places;
}

class Info : public DatalogSink {
 public:
    void head(const DatalogHead& head) override { told = head; }
    void row(std::span<const double> values, std::int64_t /*line*/) override {
        if (!begun) first = values.front();
        begun = true;
        last = values.front();
    }
    double seconds() const { return (last - first) * secondsPerStep(told); }

    DatalogHead told;
    bool begun = false;
    double first = 0;
    double last = 0;
};

class Rows : public DatalogSink {
 public:
    Rows(std::ostream& out, const std::string& channels) : out_(out), channels_(channels) {}
    void head(const DatalogHead& head) override {
        places_ = placesOf(head.columns, channels_);
        write([&](std::size_t place) { return head.columns[place]; });
    }
    void row(std::span<const double> values, std::int64_t /*line*/) override {
        write([&](std::size_t place) { return numberText(values[place]); });
    }

 private:
    template <typename Text>
    void write(const Text& text) {
        line_.clear();
        for (const std::size_t place : places_) {
            if (!line_.empty()) line_ += '\t';
            line_ += text(place);
        }
        out_ << line_ << '\n';
    }

    std::ostream& out_;
    std::string channels_;
    std::vector<std::size_t> places_;
    std::string line_;
};

/// Rows with whether a condition holds for them; it does for all where it is empty.
class Where : public DatalogSink {
 public:
    explicit Where(std::string text) : text_(std::move(text)) {}

    void head(const DatalogHead& head) final {
        if (!text_.empty()) condition_.emplace(text_, head.columns);
        begin(head);
    }
    void row(std::span<const double> values, std::int64_t /*line*/) final {
        const auto at = [&](int column) { return values[static_cast<std::size_t>(column)]; };
        take(values, row_++, !condition_ || condition_->holds(at));
    }

 protected:
    virtual void begin(const DatalogHead& head) = 0;
    virtual void take(std::span<const double> values, std::size_t row, bool holds) = 0;

 private:
    std::string text_;
    std::optional<LogExpression> condition_;
    std::size_t row_ = 0;
};

class Stats : public Where {
 public:
    using Where::Where;

    std::vector<std::string> columns;
    std::vector<RunningFigures> reaches;
    bool anyRow = false;

 private:
    void begin(const DatalogHead& head) override {
        columns = head.columns;
        reaches.resize(columns.size());
    }
    void take(std::span<const double> values, std::size_t /*row*/, bool holds) override {
        if (!holds) return;
        anyRow = true;
        for (std::size_t i = 0; i < values.size(); ++i) reaches[i].add(values[i]);
    }
};

class Finder : public Where {
 public:
    Finder(std::ostream& out, const std::string& condition) : Where(condition), out_(out) {}
    void end() { tell(hits_.end()); }
    bool found() const { return found_; }

 private:
    void begin(const DatalogHead& head) override {
        step_ = secondsPerStep(head);
        out_ << "From\tTo\tRows\n";
    }
    void take(std::span<const double> values, std::size_t row, bool holds) override {
        tell(hits_.row(row, holds));
        if (!holds) return;
        last_ = values.front() * step_;
        if (!std::exchange(in_, true)) first_ = last_;
    }
    void tell(const std::optional<LogHit>& hit) {
        if (!hit) return;
        out_ << numberText(roundTo(first_, timeDecimals)) << '\t' << numberText(roundTo(last_, timeDecimals))
             << '\t' << counted(static_cast<std::int64_t>(hit->last - hit->first) + 1) << '\n';
        in_ = false;
        found_ = true;
    }

    std::ostream& out_;
    HitCollector hits_;
    double step_ = secondsPerFrame;
    double first_ = 0;
    double last_ = 0;
    bool in_ = false;
    bool found_ = false;
};

class HistogramRows : public Where {
 public:
    HistogramRows(LogHistogram& histogram, std::string channel, const std::string& condition)
        : Where(condition), histogram_(histogram), channel_(std::move(channel)) {}

    std::string mapUnits;

 private:
    void begin(const DatalogHead& head) override {
        mapUnits = head.mapUnits;
        column_ = channelPlace(head.columns, histogram_.columns().channel);
        row_ = channelPlace(head.columns, histogram_.rows().channel);
        value_ = channelPlace(head.columns, channel_);
    }
    void take(std::span<const double> values, std::size_t /*row*/, bool holds) override {
        if (holds) histogram_.add(values[column_], values[row_], values[value_]);
    }

    LogHistogram& histogram_;
    std::string channel_;
    std::size_t column_ = 0;
    std::size_t row_ = 0;
    std::size_t value_ = 0;
};

/// Rows as they are, for a comparison with those of another log.
class Kept : public DatalogSink {
 public:
    void head(const DatalogHead& head) override { log.begin(head); }
    void row(std::span<const double> values, std::int64_t /*line*/) override { log.append(values); }

    LogColumns log;
};

/// Tells what differs, line by line.
class Comparison {
 public:
    Comparison(std::ostream& out, const LogColumns& one, const LogColumns& other)
        : out_(out), one_(one), other_(other) {}

    bool same(const std::string& first, const std::string& second) {
        fact("Banner", one_.head().banner, other_.head().banner);
        fact("Firmware", one_.head().firmware, other_.head().firmware);
        fact("Settings", inOneLine(one_.head().settings), inOneLine(other_.head().settings));
        fact("Rows", counted(static_cast<std::int64_t>(one_.rows())),
             counted(static_cast<std::int64_t>(other_.rows())));
        for (const std::string& name : one_.names()) {
            const int there = other_.column(name);
            there < 0 ? onlyIn(name, first) : channel(name, one_.column(name), there);
        }
        for (const std::string& name : other_.names()) {
            if (one_.column(name) < 0) onlyIn(name, second);
        }
        return same_;
    }

 private:
    void fact(const char* what, const std::string& here, const std::string& there) {
        if (here == there) return;
        same_ = false;
        out_ << what << '\t' << shownLine(here) << '\t' << shownLine(there) << '\n';
    }
    void onlyIn(const std::string& name, const std::string& file) {
        same_ = false;
        out_ << name << "\tonly in " << shownLine(file) << '\n';
    }
    void channel(const std::string& name, int here, int there) {
        std::int64_t rows = 0;
        std::size_t first = 0;
        double most = 0;
        for (std::size_t row = 0; row < std::min(one_.rows(), other_.rows()); ++row) {
            const auto value = static_cast<double>(one_.value(here, row));
            const auto otherValue = static_cast<double>(other_.value(there, row));
            if (value == otherValue) continue;
            if (rows++ == 0) first = row;
            most = std::max(most, std::fabs(value - otherValue));
        }
        if (rows == 0) return;
        same_ = false;
        out_ << name << '\t' << many(rows, "row differs", "rows differ") << "\tfirst at "
             << numberText(roundTo(one_.seconds(first), timeDecimals)) << " s\tby at most "
             << numberText(roundTo(most, meanDecimals)) << '\n';
    }

    std::ostream& out_;
    const LogColumns& one_;
    const LogColumns& other_;
    bool same_ = true;
};

}  // namespace

void logInfo(const Context& context, const std::string& file) {
    Info info;
    const DatalogReading reading = LogFile(file).read(info);
    context.out << "Banner:   " << shownLine(info.told.banner) << '\n';
    context.out << "Format:   " << formatName(info.told.format) << '\n';
    if (!info.told.firmware.empty()) context.out << "Firmware: " << shownLine(info.told.firmware) << '\n';
    if (!info.told.mapUnits.empty()) context.out << "Pressure: " << info.told.mapUnits << '\n';
    context.out << "Rows:     " << counted(reading.rows) << '\n';
    context.out << "Seconds:  " << numberText(roundTo(info.seconds(), 2)) << '\n';
    context.out << "Damaged:  " << counted(reading.skipped) << '\n';
    tellWarnings(context, file, reading);
}

void logRows(const Context& context, const std::string& file, const std::string& channels) {
    Rows rows(context.out, channels);
    tellWarnings(context, file, LogFile(file).read(rows));
}

void logStats(const Context& context, const std::string& file, const std::string& condition) {
    Stats stats(condition);
    const DatalogReading reading = LogFile(file).read(stats);
    context.out << "Channel\tMinimum\tMean\tMaximum\n";
    for (std::size_t i = 0; stats.anyRow && i < stats.columns.size(); ++i) {
        const RunningFigures& reach = stats.reaches[i];
        context.out << stats.columns[i] << '\t' << numberText(reach.least) << '\t'
                    << numberText(roundTo(reach.mean(), meanDecimals)) << '\t' << numberText(reach.most)
                    << '\n';
    }
    if (reading.rows > 0 && !stats.anyRow) context.notes << file << ": the condition holds for no row\n";
    tellWarnings(context, file, reading);
}

bool logFind(const Context& context, const std::string& file, const std::string& condition) {
    Finder finder(context.out, condition);
    const DatalogReading reading = LogFile(file).read(finder);
    finder.end();
    tellWarnings(context, file, reading);
    return finder.found();
}

void logHistogram(const Context& context, const std::string& file, const std::string& table,
                  const std::string& channel, const std::string& condition) {
    const auto colon = table.rfind(':');
    if (colon == std::string::npos)
        throw Failure("--table takes a calibration and the name of a table in it, as Street.ZQ4OA:VE.");
    const auto calibration = openCalibration(context, table.substr(0, colon));
    OpenTable open(context, calibration->unit, upper(table.substr(colon + 1)));
    LogHistogram histogram(open.sheet);
    HistogramRows rows(histogram, channel, condition);
    const DatalogReading reading = LogFile(file).read(rows);
    notePressureUnits(context, rows.mapUnits, calibration->unit);
    context.out << histogram.columns().title << '\t' << histogram.rows().title
                << "\tCount\tMean\tMinimum\tMaximum\n";
    for (std::size_t row = 0; row < histogram.rows().headers.size(); ++row) {
        for (std::size_t column = 0; column < histogram.columns().headers.size(); ++column) {
            const RunningFigures& cell = histogram.cell(row, column);
            if (cell.count == 0) continue;
            context.out << numberText(histogram.columns().headers[column]) << '\t'
                        << numberText(histogram.rows().headers[row]) << '\t' << counted(cell.count) << '\t'
                        << numberText(roundTo(cell.mean(), meanDecimals)) << '\t' << numberText(cell.least)
                        << '\t' << numberText(cell.most) << '\n';
        }
    }
    tellWarnings(context, file, reading);
}

bool logDiff(const Context& context, const std::string& first, const std::string& second) {
    Kept one;
    Kept other;
    tellWarnings(context, first, LogFile(first).read(one));
    tellWarnings(context, second, LogFile(second).read(other));
    return Comparison(context.out, one.log, other.log).same(first, second);
}

}  // namespace zentaq::ctl
