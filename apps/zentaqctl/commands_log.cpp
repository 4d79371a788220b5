// log: what a datalog holds: its head, its rows as they are imported, and what its channels reach.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <ostream>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "commands.h"
#include "live/datalog_reader.h"

namespace zentaq::ctl {

namespace {

constexpr double secondsPerFrame = 0.02;

class LogFile {
 public:
    explicit LogFile(const std::string& path) : path_(path) {
        checkFile(path, limits::datalogByRows);
        in_.open(path, std::ios::binary);
        if (!in_) throw FileError(path + ": cannot be read.");
    }
    DatalogReading read(DatalogSink& sink) {
        try {
            return readDatalog(in_, sink);
        } catch (const Failure& failure) {
            throw FileError(path_ + ": " + failure.what());
        }
    }

 private:
    std::string path_;
    std::ifstream in_;
};

std::string many(std::int64_t count, const char* one, const char* more) {
    return numberText(static_cast<double>(count)) + " " + (count == 1 ? one : more);
}

void tellWarnings(const Context& context, const std::string& file, const DatalogReading& reading) {
    for (const DatalogWarning& warning : reading.warnings) {
        context.notes << file << ": line " << numberText(static_cast<double>(warning.line)) << ": "
                      << warning.why << "; it is left out\n";
    }
    const auto told = static_cast<std::int64_t>(reading.warnings.size());
    if (reading.skipped > told)
        context.notes << file << ": and " << many(reading.skipped - told, "more line", "more lines")
                      << " left out\n";
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

/// Where a channel stands in the rows. Throws Failure for one that the log has not.
std::vector<std::size_t> placesOf(const std::vector<std::string>& columns, const std::string& wanted) {
    std::vector<std::size_t> places;
    if (wanted.empty()) {
        for (std::size_t i = 0; i < columns.size(); ++i) places.push_back(i);
        return places;
    }
    for (const std::string& name : split(wanted, ',')) {
        const std::string upperName = upper(trimmed(name));
        const auto found =
            std::ranges::find(columns, upperName, [](const std::string& one) { return upper(one); });
        if (found == columns.end())
            throw Failure("The log has no channel " + std::string(trimmed(name)) + ". It has " +
                          inOneLine(columns) + ".");
        places.push_back(static_cast<std::size_t>(found - columns.begin()));
    }
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
    double seconds() const {
        return (last - first) * (told.format == DatalogFormat::Oldest ? 1 : secondsPerFrame);
    }

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

struct ChannelReach {
    double least = std::numeric_limits<double>::infinity();
    double most = -std::numeric_limits<double>::infinity();
    double sum = 0;
};

class Stats : public DatalogSink {
 public:
    void head(const DatalogHead& head) override {
        columns = head.columns;
        reaches.resize(columns.size());
    }
    void row(std::span<const double> values, std::int64_t /*line*/) override {
        for (std::size_t i = 0; i < values.size(); ++i) {
            reaches[i].least = std::min(reaches[i].least, values[i]);
            reaches[i].most = std::max(reaches[i].most, values[i]);
            reaches[i].sum += values[i];
        }
        ++rows;
    }

    std::vector<std::string> columns;
    std::vector<ChannelReach> reaches;
    std::int64_t rows = 0;
};

}  // namespace

void logInfo(const Context& context, const std::string& file) {
    Info info;
    const DatalogReading reading = LogFile(file).read(info);
    context.out << "Banner:   " << shownLine(info.told.banner) << '\n';
    context.out << "Format:   " << formatName(info.told.format) << '\n';
    if (!info.told.firmware.empty()) context.out << "Firmware: " << shownLine(info.told.firmware) << '\n';
    if (!info.told.mapUnits.empty()) context.out << "Pressure: " << info.told.mapUnits << '\n';
    context.out << "Rows:     " << numberText(static_cast<double>(reading.rows)) << '\n';
    context.out << "Seconds:  " << numberText(roundTo(info.seconds(), 2)) << '\n';
    context.out << "Damaged:  " << numberText(static_cast<double>(reading.skipped)) << '\n';
    tellWarnings(context, file, reading);
}

void logRows(const Context& context, const std::string& file, const std::string& channels) {
    Rows rows(context.out, channels);
    tellWarnings(context, file, LogFile(file).read(rows));
}

void logStats(const Context& context, const std::string& file) {
    Stats stats;
    const DatalogReading reading = LogFile(file).read(stats);
    context.out << "Channel\tMinimum\tMean\tMaximum\n";
    if (stats.rows == 0) return tellWarnings(context, file, reading);
    constexpr int meanDecimals = 3;
    for (std::size_t i = 0; i < stats.columns.size(); ++i) {
        const ChannelReach& reach = stats.reaches[i];
        context.out << stats.columns[i] << '\t' << numberText(reach.least) << '\t'
                    << numberText(roundTo(reach.sum / static_cast<double>(stats.rows), meanDecimals)) << '\t'
                    << numberText(reach.most) << '\n';
    }
    tellWarnings(context, file, reading);
}

}  // namespace zentaq::ctl
