#include "sim/datalog_track.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "base/errors.h"
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
    Reader(std::string_view text, std::string_view name) : lines_(split(text, '\n')), name_(name) {
        for (std::string& line : lines_) line = std::string(trimmed(line));
        while (!lines_.empty() && lines_.back().empty()) lines_.pop_back();
    }

    std::vector<Line> read() {
        constexpr std::size_t headLines = 3;
        checkBanner();
        if (lines_.size() < headLines + 2) fail("has fewer than two lines of data");
        const PressureUnit unit = pressureUnit();
        findColumns();
        std::vector<Line> result;
        for (at_ = headLines; at_ < lines_.size(); ++at_) {
            result.push_back(dataLine(unit));
            const std::size_t count = result.size();
            if (count > 1 && result[count - 1][Frame] <= result[count - 2][Frame])
                failHere("its frame does not rise");
        }
        return result;
    }

 private:
    void checkBanner() const {
        const std::string first = lines_.empty() ? std::string() : split(lines_[0], '\t')[0];
        if (std::ranges::find(banners, first) != std::end(banners)) return;
        fail(
            "is no datalog: its first line does not begin with \"ZENTAQ 4.10 DATALOG\" or \"ZENTAQ 4.5 "
            "DATALOG\"");
    }
    PressureUnit pressureUnit() const {
        const std::vector<std::string> fields = split(lines_[1], '\t');
        const std::string unit = fields.size() > unitsField ? fields[unitsField] : std::string();
        const auto found = std::ranges::find(pressureUnits, unit, &PressureUnit::name);
        if (found == std::end(pressureUnits)) fail("names no unit of pressure in line 2");
        return *found;
    }
    void findColumns() {
        const std::vector<std::string> names = split(lines_[2], '\t');
        for (std::size_t i = 0; i < channels; ++i) {
            const auto found = std::ranges::find(names, columnNames[i]);
            if (found == names.end()) fail("has no column \"" + std::string(columnNames[i]) + "\"");
            columns_[i] = static_cast<std::size_t>(found - names.begin());
        }
    }
    Line dataLine(const PressureUnit& unit) const {
        const std::vector<std::string> fields = split(lines_[at_], '\t');
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
        throw Failure(std::string(name_) + ", line " + std::to_string(at_ + 1) + ": " + what);
    }

    std::vector<std::string> lines_;
    std::string_view name_;
    std::array<std::size_t, channels> columns_{};
    std::size_t at_ = 0;
};

}  // namespace

Drive datalogDrive(std::string_view text, std::string_view name) {
    return std::make_shared<Track>(Reader(text, name).read());
}

Drive datalogDriveFromFile(const std::filesystem::path& path) {
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw FileError(path.string() + " is a folder, not a datalog");
    std::ifstream file(path, std::ios::binary);
    if (!file) throw FileError("Cannot read " + path.string() + ": " + std::strerror(errno));
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    if (file.bad()) throw FileError("Cannot read " + path.string());
    return datalogDrive(text, path.string());
}

Drive driveOf(const std::filesystem::path& word) {
    if (word == "idle") return idleDrive();
    if (word == "drive") return roadDrive();
    if (word == "dyno") return dynoDrive();
    if (!std::filesystem::exists(word))
        throw FileError("There is no file " + word.string() +
                        ": --engine takes idle, drive, dyno or a datalog");
    return datalogDriveFromFile(word);
}

}  // namespace zentaq::sim
