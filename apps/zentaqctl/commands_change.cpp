// set, cell, image, import-bin: what makes a new file out of a calibration.
#include <cmath>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "commands.h"
#include "members.h"
#include "outputs.h"
#include "unit/gpio_pins.h"

namespace zentaq::ctl {

namespace {

constexpr int controlBytes = 3;

/// Checks a number for a cell as it stands: no range, nothing converted.
float cellNumber(const std::string& value) {
    refuseComma("cell", value);
    const auto number = parseNumber(value);
    if (!number) throw Failure("cell: " + shownBriefly(value) + " is no number");
    const auto cell = static_cast<float>(*number);
    if (!std::isfinite(cell)) throw Overflow("cell: the number is too large");
    return cell;
}

/// A file that tells no release has its injectors as they are: nobody knows what they were made for.
void noteUnknownRelease(const Context& context, QuietCalibration& calibration, const std::string& file) {
    constexpr float firstRelease = 1000;
    if (calibration.unit.facts().firmwareCode >= firstRelease || !calibration.unit.has("scale1")) return;
    context.notes << file
                  << " does not tell the firmware that it was made for: its injector scaling is taken "
                  << "as it stands\n";
}

/// The pin whose function a cell holds; nothing for another cell, and for a block that has no pin.
std::optional<int> pinOfFunctionCell(const UnitKind& kind, int index) {
    constexpr int blockCells = 9;
    const int words = index - kind.gpioBase;
    if (words < 0 || words % blockCells != 0) return {};
    const GpioPin* pin = kind.pins->find(words / blockCells);
    return pin == nullptr ? std::nullopt : std::optional(pin->pin);
}

/// The one cell whose change makes others mean something else: it takes the way of GPIO_Func.
void storePinFunction(const Context& context, Unit& unit, int index, int pin, float value) {
    const std::string what = "cell " + numberText(index) + " is the function of pin " + numberText(pin);
    constexpr float most = 32767;
    if (std::trunc(value) != value || value < 0 || value > most) throw Failure(what + ", a whole number");
    if (unit.gpioFunctionWord(pin) == value) return;
    choosePinFunction(unit, what, pin, static_cast<int>(value));
    context.notes << what << ": the pin's parameters are 0 now\n";
}

void store(const Context& context, Unit& unit, int index, float value) {
    checkCell(index);
    if (index >= unit.kind().fileFloats) {
        throw BoundsError("Subscript out of range: a file of " + std::string(unit.kind().model) +
                          " ends at cell " + numberText(unit.kind().fileFloats - 1));
    }
    if (const auto pin = pinOfFunctionCell(unit.kind(), index)) {
        storePinFunction(context, unit, index, *pin, value);
        return;
    }
    unit.AssignDirectIndex(value, index);
    if (index >= controlBytes) return;
    // A save copies the control bytes to their cells.
    if (std::trunc(value) != value || value < 0 || value > 255) {
        throw Failure("cell: control bytes are whole numbers from 0 to 255");
    }
    unit.controlByte(index, static_cast<std::uint8_t>(value));
}

}  // namespace

std::optional<FirmwareChoice> parseFirmware(const std::string& text) {
    constexpr std::size_t longest = 3;
    const auto parts = split(text, '.');
    if (parts.size() != 2) return {};
    for (const std::string& part : parts) {
        if (part.empty() || part.size() > longest) return {};
        if (part.find_first_not_of("0123456789") != std::string::npos) return {};
    }
    const FirmwareChoice choice{std::stoi(parts[0]), std::stoi(parts[1])};
    return choice.release == 0 ? std::nullopt : std::optional(choice);
}

void set(const Context& context, const std::string& file, const std::string& member, const std::string& value,
         std::optional<int> index, const std::string& output) {
    Change change(context, file, output);
    QuietCalibration& calibration = change.calibration();
    const Member changed = memberOf(calibration.unit.kind(), member);
    writeMember(calibration, changed, value, index.value_or(0));
    change.save();
    if (index || changed.count == 1) return;
    context.notes << changed.name << " has " << numberText(changed.count)
                  << " elements; element 0 was changed, --index chooses another\n";
}

void setCell(const Context& context, const std::string& file, int index, const std::string& value,
             const std::string& output) {
    Change change(context, file, output);
    store(context, change.calibration().unit, index, cellNumber(value));
    change.save();
}

void image(const Context& context, const std::string& file, std::optional<FirmwareChoice> firmware,
           const std::string& output) {
    refuseSameFile(output, file);
    refuseReplacingOther(context, output, "image", beginsWithSRecord);
    const auto calibration = openCalibration(context, file, CutFile::Refused);
    Unit& unit = calibration->unit;
    if (firmware) {
        // As when a unit on the link tells its firmware: sensor and injector scaling move with it.
        calibration->host.firmwareKnown(true);
        unit.FW_Build(firmware->build);
        unit.FW_Release(firmware->release);
    }
    unit.BinFile(file);  // the unit keeps the name of the file
    try {
        unit.ConvertData();
    } catch (const Failure& failure) {
        throw Failure(file + " makes no image: " + failure.what());
    }
    const std::string records = unit.sRecordText();
    if (!wroteNew(context, output, records)) {
        refuseReplacingOther(context, output, "image", beginsWithSRecord);
        writeOutput(context, output, records);
    }
    if (firmware) noteUnknownRelease(context, *calibration, file);
    noteOutOfRange(context, file, unit, unit.kind().fileFloats);
    noteAxes(context, file, unit);
    tell(context, calibration->host);
}

void importOld(const Context& context, const std::string& file, const std::string& output) {
    refuseSameFile(output, file);
    refuseStandardOutput(output);
    refuseReplacing(context, output, "calibration");
    const FileLock lock(output);
    const auto calibration = QuietCalibration::importOld(file, context.database);
    calibration->unit.BinFile(output);
    saveCalibration(context, calibration->unit);
    noteAxes(context, output, calibration->unit);
    tell(context, calibration->host);
    noteForeignExtension(context, calibration->unit.kind(), output);
}

}  // namespace zentaq::ctl
