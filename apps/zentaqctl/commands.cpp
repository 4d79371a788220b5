#include "commands.h"

#include <filesystem>
#include <ostream>

#include "base/number_text.h"
#include "base/text.h"
#include "config/quiet_calibration.h"
#include "unit/safe_file.h"

namespace zentaq::ctl {

namespace {

constexpr int tableCells = 256;
constexpr int tableColumns = 16;

const Parameter& memberOf(const Unit& unit, const std::string& name) {
    const Parameter* row = unit.find(name);
    if (row == nullptr) throw NoSuchMember(std::string(unit.kind().model) + " has no member " + name);
    return *row;
}

void tell(const Context& context, const QuietHost& host) {
    for (const std::string& text : host.told()) context.notes << text << '\n';
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

void info(const Context& context, const std::string& file) {
    const auto calibration = QuietCalibration::open(file, context.database);
    Unit& unit = calibration->unit;
    const FileHeader& header = calibration->host.header();
    const auto bytes = std::filesystem::file_size(file);
    constexpr std::uintmax_t bytesPerFloat = 4;
    constexpr std::uintmax_t headerFloats = 3;
    context.out << "Kind:     " << numberText(header.currentUnit) << '\n'
                << "Model:    " << unit.kind().model << '\n'
                << "Version:  " << formatNumber(header.programVersion, "#0.##") << '\n'
                << "Firmware: " << numberText(header.firmwareCode) << " (release " << unit.FW_Release()
                << ", build " << unit.FW_Build() << ")\n"
                << "Name:     " << trimmed(unit.BiName()) << '\n'
                << "Floats:   " << bytes / bytesPerFloat - headerFloats << '\n'
                << "Bytes:    " << bytes << '\n'
                << "Notes:    " << unit.NOTES_TEXT() << '\n';
    tell(context, calibration->host);
}

void get(const Context& context, const std::string& file, const std::string& member,
         std::optional<int> index) {
    const auto calibration = QuietCalibration::open(file, context.database);
    Unit& unit = calibration->unit;
    const Parameter& row = memberOf(unit, member);
    if (index) {
        context.out << numberText(unit.read(row, *index)) << '\n';
        return;
    }
    const int columns = row.count == tableCells ? tableColumns : row.count;
    for (int i = 0; i < row.count; ++i) {
        const bool last = (i + 1) % columns == 0;
        context.out << numberText(unit.read(row, i)) << (last ? '\n' : ' ');
    }
}

void set(const std::string& file, const std::string& member, const std::string& value, int index,
         const std::string& outputFile, const Context& context) {
    const auto calibration = QuietCalibration::open(file, context.database);
    Unit& unit = calibration->unit;
    setOrThrow(unit, calibration->host, member, value, index);
    unit.BinFile(outputFile.empty() ? file : outputFile);
    unit.SaveFile();
    tell(context, calibration->host);
}

void image(const Context& context, const std::string& file, std::optional<FirmwareChoice> firmware,
           const std::string& outputFile) {
    const auto calibration = QuietCalibration::open(file, context.database);
    Unit& unit = calibration->unit;
    if (firmware) {
        // As when a unit on the link tells its firmware: sensor and injector scaling move with it.
        calibration->host.firmwareKnown(true);
        unit.FW_Build(firmware->build);
        unit.FW_Release(firmware->release);
    }
    unit.BinFile(file);  // the unit keeps the name of the file
    unit.ConvertData();
    writeFileSafely(outputFile, unit.sRecordText());
    tell(context, calibration->host);
}

void record(const Context& context, const std::string& file, const std::string& member,
            const std::string& value, int index) {
    const auto calibration = QuietCalibration::open(file, context.database);
    Unit& unit = calibration->unit;
    unit.ONFLY_MODE(true);
    setOrThrow(unit, calibration->host, member, value, index);
    // A number that fits no byte of the unit is stored but not sent, and the log says so.
    if (!calibration->host.lastLogLine().empty()) throw Failure(calibration->host.lastLogLine());
    for (const std::string& text : calibration->host.records()) context.out << text << '\n';
}

}  // namespace zentaq::ctl
