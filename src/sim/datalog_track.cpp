#include "sim/datalog_track.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/text.h"
#include "sim/engine_curve.h"

namespace zentaq::sim {

namespace {

constexpr double secondsPerFrame = 0.02;
constexpr std::string_view banners[] = {"ZENTAQ 4.10 DATALOG", "ZENTAQ 4.5 DATALOG"};
constexpr std::size_t unitsField = 23;  ///< of line 2, behind three limits, sixteen pins and four zeros

enum Channel : std::size_t { Frame, Rpm, Pressure, Throttle, Coolant, Air, Battery, channels };
constexpr std::array<std::string_view, channels> columnNames = {"Frame", "RPM", "MAP",   "TPS",
                                                                "CLT",   "MAT", "Batt V"};

using Line = std::array<double, channels>;

/// kPa of a pressure as the file has it.
struct PressureUnit {
    std::string_view name;
    double kpaPerUnit;
    double kpaAtZero;
};
constexpr double atmosphere = 101.325;
constexpr PressureUnit pressureUnits[] = {{"kPa", 1, 0},
                                          {"PSIA", atmosphere / 14.696, 0},
                                          {"PSIG", atmosphere / 14.696, atmosphere},
                                          {"mmHg", atmosphere / 760, 0},
                                          {"inHg", atmosphere / 29.921, 0},
                                          // percent of the flow sensor: full flow is full load
                                          {"%Flow", 1, 0}};

class Track : public DriveCycle {
 public:
    explicit Track(std::vector<Line> lines) : lines_(std::move(lines)) {}

    double length() const override { return secondsOf(lines_.back()) + secondsPerFrame; }
    DrivePoint at(double seconds) const override {
        const auto right = std::find_if(lines_.begin(), lines_.end() - 1,
                                        [&](const Line& line) { return secondsOf(line) >= seconds; });
        const Line here = right == lines_.begin() ? *right : mixed(*(right - 1), *right, seconds);
        constexpr double closedVolts = 0.5;
        constexpr double voltsToOpen = 4;
        return {.rpm = here[Rpm],
                .kpa = here[Pressure],
                .throttle = std::clamp((here[Throttle] - closedVolts) / voltsToOpen, 0.0, 1.0),
                .measured = true,
                .coolantC = here[Coolant],
                .airC = here[Air],
                .batteryVolts = here[Battery],
                .tpsVolts = here[Throttle]};
    }

 private:
    double secondsOf(const Line& line) const {
        return (line[Frame] - lines_.front()[Frame]) * secondsPerFrame;
    }
    Line mixed(const Line& left, const Line& right, double seconds) const {
        const double share =
            std::min(1.0, (seconds - secondsOf(left)) / (secondsOf(right) - secondsOf(left)));
        Line line{};
        for (std::size_t i = 0; i < channels; ++i) line[i] = between(left[i], right[i], share);
        return line;
    }

    std::vector<Line> lines_;
};

/// Reads a datalog's text line by line and says where it stumbled.
class Reader {
 public:
    /// Blank lines at the end are no fault.
    Reader(std::string_view text, std::string_view name) : rest_(withoutBlankEnd(text)), name_(name) {}

    std::vector<Line> read() {
        checkBanner();
        const std::string_view settings = takeLine();
        const std::string_view names = takeLine();
        if (rest_.find('\n') == std::string_view::npos) fail("has fewer than two lines of data");
        const PressureUnit unit = pressureUnit(settings);
        findColumns(names);
        std::vector<Line> result;
        while (!rest_.empty()) {
            result.push_back(dataLine(takeLine(), unit));
            const std::size_t count = result.size();
            if (count > 1 && result[count - 1][Frame] <= result[count - 2][Frame])
                failHere("its frame does not rise");
        }
        return result;
    }

 private:
    static std::string_view withoutBlankEnd(std::string_view text) {
        return text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
    }
    /// Line by line: a hostile file of line ends alone would make millions of them.
    std::string_view takeLine() {
        const auto end = std::min(rest_.find('\n'), rest_.size());
        const std::string_view line = trimmed(rest_.substr(0, end));
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        ++number_;
        return line;
    }
    /// No line of a datalog has more; what stands behind them is not looked at.
    static std::vector<std::string> fieldsOf(std::string_view line) {
        constexpr std::size_t longestLine = 65536;
        return split(line.substr(0, longestLine), '\t');
    }
    void checkBanner() {
        const std::string first = fieldsOf(takeLine())[0];
        if (std::ranges::find(banners, first) != std::end(banners)) return;
        fail(
            "is no datalog: its first line does not begin with \"ZENTAQ 4.10 DATALOG\" or \"ZENTAQ 4.5 "
            "DATALOG\"");
    }
    PressureUnit pressureUnit(std::string_view settings) const {
        const std::vector<std::string> fields = fieldsOf(settings);
        const std::string unit = fields.size() > unitsField ? fields[unitsField] : std::string();
        const auto found = std::ranges::find(pressureUnits, unit, &PressureUnit::name);
        if (found == std::end(pressureUnits)) fail("names no unit of pressure in line 2");
        return *found;
    }
    void findColumns(std::string_view line) {
        const std::vector<std::string> names = fieldsOf(line);
        for (std::size_t i = 0; i < channels; ++i) {
            const auto found = std::ranges::find(names, columnNames[i]);
            if (found == names.end()) fail("has no column \"" + std::string(columnNames[i]) + "\"");
            columns_[i] = static_cast<std::size_t>(found - names.begin());
        }
    }
    Line dataLine(std::string_view text, const PressureUnit& unit) const {
        const std::vector<std::string> fields = fieldsOf(text);
        Line line{};
        for (std::size_t i = 0; i < channels; ++i) {
            const auto number = columns_[i] < fields.size() ? parseNumber(fields[columns_[i]]) : std::nullopt;
            if (!number || !std::isfinite(*number)) {
                failHere("there is no number for \"" + std::string(columnNames[i]) + "\"");
            }
            line[i] = *number;
        }
        line[Rpm] = std::clamp(line[Rpm], 0.0, 20000.0);
        line[Pressure] = std::clamp(line[Pressure] * unit.kpaPerUnit + unit.kpaAtZero, 0.0, 1000.0);
        line[Throttle] = std::clamp(line[Throttle], 0.0, 5.0);
        line[Coolant] = std::clamp(line[Coolant], -40.0, 150.0);
        line[Air] = std::clamp(line[Air], -40.0, 150.0);
        line[Battery] = std::clamp(line[Battery], 0.0, 20.0);
        return line;
    }
    [[noreturn]] void fail(const std::string& what) const { throw Failure(std::string(name_) + " " + what); }
    [[noreturn]] void failHere(const std::string& what) const {
        throw Failure(std::string(name_) + ", line " + std::to_string(number_) + ": " + what);
    }

    std::string_view rest_;
    std::string_view name_;
    std::array<std::size_t, channels> columns_{};
    std::size_t number_ = 0;  ///< of the line taken last, from 1
};

}  // namespace

Drive datalogDrive(std::string_view text, std::string_view name) {
    return std::make_shared<Track>(Reader(text, name).read());
}

Drive datalogDriveFromFile(const std::filesystem::path& path) {
    return datalogDrive(readFile(path.string(), limits::datalog), path.string());
}

Drive driveOf(const std::filesystem::path& word) {
    if (word == "idle") return idleDrive();
    if (word == "drive") return roadDrive();
    if (word == "dyno") return dynoDrive();
    std::error_code unreadable;
    if (!std::filesystem::exists(word, unreadable) && !unreadable)
        throw FileError("There is no file " + word.string() +
                        ": --engine takes idle, drive, dyno or a datalog");
    return datalogDriveFromFile(word);
}

}  // namespace zentaq::sim
