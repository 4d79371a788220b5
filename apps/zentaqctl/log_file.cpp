#include "log_file.h"

#include <cerrno>
#include <cstdio>
#include <ostream>
#include <system_error>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "logs/log_channel.h"

namespace zentaq::ctl {

namespace {

std::string reason() {
    return std::generic_category().message(errno);
}

}  // namespace

LogFile::LogFile(const std::string& path) : path_(path) {
    checkFile(path, limits::datalogByRows);
    in_.open(path, std::ios::binary);
    if (!in_) throw FileError(path + ": cannot be read: " + reason());
}

DatalogReading LogFile::read(DatalogSink& sink) {
    try {
        return readDatalog(in_, sink);
    } catch (const Failure& failure) {
        throw FileError(path_ + ": " + failure.what());
    }
}

NewFile::NewFile(const std::string& path) : path_(path), partial_(path + ".part") {
    out_.open(partial_, std::ios::binary | std::ios::trunc);
    if (!out_) throw FileError("Cannot write " + path_ + ": " + reason());
}

NewFile::~NewFile() {
    if (!kept_) std::remove(partial_.c_str());
}

void NewFile::keep() {
    out_.close();
    if (!out_ || std::rename(partial_.c_str(), path_.c_str()) != 0)
        throw FileError("Cannot write " + path_ + ": " + reason());
    kept_ = true;
}

std::string warningsText(const std::string& file, const DatalogReading& reading) {
    std::string text;
    for (const DatalogWarning& warning : reading.warnings) {
        text += file + ": line " + numberText(static_cast<double>(warning.line)) + ": " + warning.why +
                "; it is left out\n";
    }
    const auto told = static_cast<std::int64_t>(reading.warnings.size());
    if (reading.skipped > told)
        text += file + ": and " + many(reading.skipped - told, "more line", "more lines") + " left out\n";
    return text;
}

void tellWarnings(const Context& context, const std::string& file, const DatalogReading& reading) {
    context.notes << warningsText(file, reading);
}

std::size_t channelPlace(const std::vector<std::string>& columns, std::string_view name) {
    const int place = columnOfChannel(columns, name);
    if (place >= 0) return static_cast<std::size_t>(place);
    std::string all;
    for (const std::string& one : columns) all += (all.empty() ? "" : ", ") + one;
    throw Failure("The log has no channel " + shownBriefly(trimmed(name)) + ". It has " + all + ".");
}

void notePressureUnits(const Context& context, const std::string& mapUnits, const Unit& unit) {
    if (mapUnits.empty() || mapUnits == unit.MAPUnits()) return;
    context.notes << "Pressures of the log are in " << mapUnits << ", those of the calibration in "
                  << unit.MAPUnits() << ": they are compared as they stand\n";
}

}  // namespace zentaq::ctl
