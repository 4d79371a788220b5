#include "context.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <ostream>
#include <system_error>

#include "base/errors.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "calibration/calibration_ranges.h"
#include "outputs.h"
#include "unit/axis_order.h"
#include "unit/file_kind.h"
#include "unit/safe_file.h"

namespace zentaq::ctl {

namespace {

constexpr std::string_view standardStream = "-";

std::unique_ptr<QuietCalibration> readCalibration(const Context& context, const std::string& file) {
    try {
        return QuietCalibration::open(file, context.database);
    } catch (const FileError&) {
        throw;  // names the file
    } catch (const Overflow& failure) {
        throw Failure(file + ": the file is damaged, it holds a number out of all range. " + failure.what());
    } catch (const Failure& failure) {
        throw Failure(file + ": " + failure.what());
    }
}

std::string damageOf(const std::string& file, const UnitKind& kind, int cellsCutOff) {
    return file + " is damaged: " + cutOffText(kind, cellsCutOff);
}

const std::string& targetOf(const Context& context, const std::string& file, const std::string& output) {
    refuseStandardOutput(output);
    refuseReplacing(context, output, "calibration", {file});
    return output.empty() ? file : output;
}

}  // namespace

void refuseStandardOutput(const std::string& file) {
    if (file == standardStream)
        throw Failure("A calibration is not written to the standard output; name a file");
}

std::unique_ptr<QuietCalibration> openCalibration(const Context& context, const std::string& file,
                                                  CutFile cut) {
    auto calibration = readCalibration(context, file);
    const int cells = calibration->unit.facts().cellsCutOff;
    if (cells > 0 && cut == CutFile::Refused && !context.force) {
        throw Failure(cutFileRefusal(file, calibration->unit.kind(), cells));
    }
    noteCutOff(context, file, calibration->unit.kind(), cells);
    return calibration;
}

void noteCutOff(const Context& context, const std::string& file, const UnitKind& kind, int cellsCutOff) {
    if (cellsCutOff > 0) context.notes << damageOf(file, kind, cellsCutOff) << '\n';
}

std::string cutFileRefusal(const std::string& file, const UnitKind& kind, int cellsCutOff) {
    return damageOf(file, kind, cellsCutOff) + " Look for a whole copy; --force takes it all the same";
}

void noteAxes(const Context& context, const std::string& file, Unit& unit) {
    for (const std::string& line : axesWithoutOrder(unit)) {
        context.notes << file << ": " << line << "; the unit looks its values up in rising order\n";
    }
}

void tell(const Context& context, const QuietHost& host) {
    for (const std::string& text : host.told()) context.notes << shownError(text) << '\n';
}

Change::Change(const Context& context, const std::string& file, const std::string& output)
    : context_(context),
      file_(file),
      output_(output.empty() ? file : output),
      lock_(targetOf(context, file, output)) {
    // A save writes whole files: what is missing would be 0 from then on, and no sign of it left.
    calibration_ = openCalibration(context, file, CutFile::Refused);
    calibration_->unit.BinFile(output_);
}

void Change::save() {
    saveCalibration(context_, calibration_->unit, {file_});
    noteAxes(context_, output_, calibration_->unit);
    tell(context_, calibration_->host);
}

std::string readInput(const std::string& file, const FileLimit& limit) {
    if (file == standardStream) return readStream(STDIN_FILENO, "the standard input", limit);
    return readFile(file, limit);
}

void writeOutput(const Context& context, const std::string& file, std::string_view content) {
    if (file.empty() || file == standardStream) {
        context.data << content;
    } else {
        writeFileSafely(file, content);
    }
}

void noteForeignExtension(const Context& context, const UnitKind& kind, const std::string& file) {
    const std::string extension = upper(extensionOf(file));
    if (!extension.starts_with(".ZQ4") || extension == kind.extension) return;
    context.notes << file << " holds a calibration for " << kind.model << "; such files end in "
                  << kind.extension << '\n';
}

void noteOutOfRange(const Context& context, const std::string& file, Unit& unit, int count) {
    constexpr std::size_t mostTold = 20;
    const auto values = valuesOutOfRange(unit, count);
    const std::size_t told = std::min(mostTold, values.size());
    for (std::size_t i = 0; i < told; ++i) context.notes << file << ": " << values[i] << '\n';
    if (told < values.size()) {
        context.notes << file << ": " << values.size() - told << " more values are outside their ranges\n";
    }
}

void refuseSameFile(const std::string& output, const std::string& input) {
    std::error_code error;
    if (output == input || std::filesystem::equivalent(output, input, error)) {
        if (output != standardStream) throw Failure(output + " would be overwritten; name another file");
    }
}

}  // namespace zentaq::ctl
