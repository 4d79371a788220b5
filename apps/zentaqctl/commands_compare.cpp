// diff, merge, export, import: calibrations under version control.
#include <array>
#include <ostream>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/number_text.h"
#include "calibration/calibration_cells.h"
#include "calibration/calibration_diff.h"
#include "calibration/calibration_listing.h"
#include "calibration/calibration_merge.h"
#include "calibration/calibration_view.h"
#include "commands.h"
#include "config/quiet_calibration.h"
#include "outputs.h"
#include "unit/file_kind.h"
#include "unit/file_lock.h"
#include "unit/gpio_model.h"

namespace zentaq::ctl {

namespace {

/// In the order of DifferenceIn.
constexpr std::array<std::string_view, 10> places = {"kind",  "header", "text", "option", "value",
                                                     "curve", "table",  "pin",  "cell",   "surplus"};

void writeJson(std::ostream& out, const std::vector<Difference>& found) {
    JsonWriter json(out);
    json.beginArray();
    for (const Difference& each : found) {
        json.beginObject()
            .member("in", places.at(static_cast<std::size_t>(each.in)))
            .member("member", each.member);
        json.member("element", each.element).member("place", each.place);
        json.member("first", each.first).member("second", each.second);
        json.member("unit", each.unit).member("information", each.information).endObject();
    }
    json.endArray();
    out << '\n';
}

std::string nameOf(const std::string& file) {
    return file == "-" ? "standard input" : file;
}

/// A core failure tells what is wrong with the bytes; the user wants to know in which file.
template <typename Work>
auto naming(const std::string& file, Work&& work) {
    try {
        return work();
    } catch (const FileError&) {
        throw;
    } catch (const Failure& failure) {
        throw Failure(file + ": " + failure.what());
    }
}

void noteCut(const Context& context, const std::string& file, const CalibrationBytes& calibration,
             std::string_view bytes) {
    if (calibration.kind == nullptr) return;
    noteCutOff(context, file, *calibration.kind, cellsCutOff(*calibration.kind, bytes.size()));
}

/// The bytes of a file that is known to be a calibration.
std::string calibrationOf(const Context& context, const std::string& file, CutFile cut) {
    std::string bytes = readInput(file, limits::calibration);
    const std::string name = nameOf(file);
    const auto& kind = *naming(name, [&] { return knownCalibration(bytes); }).kind;
    const int cells = cellsCutOff(kind, bytes.size());
    if (cells > 0 && cut == CutFile::Refused && !context.force) {
        throw Failure(cutFileRefusal(name, kind, cells) + ". Nothing was written");
    }
    noteCutOff(context, name, kind, cells);
    return bytes;
}

using Name = std::vector<CellBits>;

/// The name that saving as a file gives to a calibration.
Name nameOfFile(const UnitKind& kind, const std::string& file) {
    QuietCalibration scratch(kind, DatabaseSource());
    scratch.unit.BiName(file);
    Name name;
    for (int i = 0; i < CalibrationCells::nameLength; ++i) {
        name.push_back(bitsOf(scratch.unit.DirectIndex(kind.cells.name + i)));
    }
    return name;
}

Name nameIn(const CalibrationBytes& calibration) {
    Name name;
    for (int i = 0; i < CalibrationCells::nameLength; ++i) {
        name.push_back(calibration.cell(calibration.kind->cells.name + i));
    }
    return name;
}

bool namedAfter(std::string_view bytes, const std::string& file) {
    const CalibrationBytes calibration = knownCalibration(bytes);
    return nameIn(calibration) == nameOfFile(*calibration.kind, file);
}

void rename(std::string& bytes, const Name& name) {
    CalibrationBytes calibration = knownCalibration(bytes);
    for (std::size_t i = 0; i < name.size(); ++i) {
        const auto cell = static_cast<std::size_t>(calibration.kind->cells.name) + i;
        if (cell < calibration.cells.size()) calibration.cells[cell] = name[i];
    }
    bytes = calibration.bytes();
}

/// Each save names the calibration after its file. Where both sides have such names, and neither is the one
/// that they began with, nobody chose them: the result is named after its own file.
void settleNames(const std::string& base, std::string& first, std::string& second,
                 const std::string& output) {
    const CalibrationBytes began = knownCalibration(base);
    const Name ofFirst = nameIn(knownCalibration(first));
    const Name ofSecond = nameIn(knownCalibration(second));
    if (ofFirst == ofSecond || ofFirst == nameIn(began) || ofSecond == nameIn(began)) return;
    const Name ofResult = nameOfFile(*began.kind, output);
    rename(first, ofResult);
    rename(second, ofResult);
}

/// A text comes back bit for bit, whatever it holds; a user who wrote it hears of what no entry would give.
void noteOddValues(const Context& context, const std::string& file, std::string_view bytes) {
    const CalibrationBytes calibration = CalibrationBytes::of(bytes);
    if (calibration.kind == nullptr) return;
    const CalibrationCells cells(calibration.kind);
    CalibrationView view(calibration, cells);
    noteCut(context, file, calibration, bytes);
    noteOutOfRange(context, file, view.unit(), calibration.count());
    noteAxes(context, file, view.unit());
    for (const std::string& line : GpioModel(view.unit()).oddFunctions()) {
        context.notes << file << ": " << line << '\n';
    }
}

/// Each side may have moved another stop of one axis.
void noteMergedAxes(const Context& context, const std::string& file, std::string_view bytes) {
    const CalibrationBytes calibration = knownCalibration(bytes);
    const CalibrationCells cells(calibration.kind);
    CalibrationView view(calibration, cells);
    noteAxes(context, file, view.unit());
}

}  // namespace

bool diff(const Context& context, const std::string& first, const std::string& second) {
    if (first == "-" && second == "-") throw Failure("Only one of the files can be the standard input");
    const std::string firstBytes = calibrationOf(context, first, CutFile::Told);
    const std::string secondBytes = calibrationOf(context, second, CutFile::Told);
    const auto found = differences(firstBytes, secondBytes);
    if (context.json) {
        writeJson(context.out, found);
    } else {
        for (const Difference& each : found) context.out << lineOf(each) << '\n';
    }
    return found.empty();
}

void mergeFiles(const Context& context, const std::string& base, const std::string& first,
                const std::string& second, const std::string& output) {
    refuseStandardOutput(output);
    refuseReplacing(context, output, "calibration", {base, first, second});
    const FileLock lock(output);  // it may be one of those that are read
    const std::string baseBytes = calibrationOf(context, base, CutFile::Refused);
    std::string firstBytes = calibrationOf(context, first, CutFile::Refused);
    std::string secondBytes = calibrationOf(context, second, CutFile::Refused);
    if (namedAfter(firstBytes, first) && namedAfter(secondBytes, second)) {
        settleNames(baseBytes, firstBytes, secondBytes, output);
    }
    const MergeResult result = merge(baseBytes, firstBytes, secondBytes);
    if (result.clean()) {
        writeCalibration(context, output, result.bytes, {base, first, second});
        return noteMergedAxes(context, output, result.bytes);
    }
    for (const MergeConflict& conflict : result.conflicts) context.out << lineOf(conflict) << '\n';
    const auto count = static_cast<int>(result.conflicts.size());
    throw Failure(numberText(count) + (count == 1 ? " conflict" : " conflicts") + ": nothing was written");
}

void exportText(const Context& context, const std::string& file, const std::string& output) {
    refuseSameFile(output, file);
    refuseReplacingOther(context, output, "text", beginsListing);
    const std::string bytes = readInput(file, limits::calibration);
    const std::string text = naming(nameOf(file), [&] { return listingOf(bytes); });
    noteCut(context, nameOf(file), CalibrationBytes::of(bytes), bytes);
    if (wroteNew(context, output, text)) return;
    refuseReplacingOther(context, output, "text", beginsListing);
    writeOutput(context, output, text);
}

void importText(const Context& context, const std::string& input, const std::string& output) {
    refuseStandardOutput(output);
    refuseSameFile(output, input);
    refuseReplacing(context, output, "calibration");
    const std::string text = readInput(input, limits::calibrationText);
    const std::string bytes = naming(nameOf(input), [&] { return fileFromListing(text); });
    const FileLock lock(output);
    writeCalibration(context, output, bytes);
    noteOddValues(context, output, bytes);
}

}  // namespace zentaq::ctl
