#include "unit/file_kind.h"

#include <array>
#include <filesystem>
#include <span>
#include <system_error>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/text.h"
#include "unit/file_floats.h"

namespace zentaq {

namespace {

struct LengthOfKind {
    std::uintmax_t bytes;
    int slot;
};

/// Calibration files from before their first number named the kind.
constexpr std::array unnamedLengths = {LengthOfKind{8718, 3}, LengthOfKind{9324, 4}, LengthOfKind{9320, 6},
                                       LengthOfKind{9316, 7}, LengthOfKind{4816, 5}};
constexpr std::array oldLengths = {LengthOfKind{8704, 3}, LengthOfKind{8720, 3}, LengthOfKind{9312, 4},
                                   LengthOfKind{4804, 5}};

int slotOf(std::span<const LengthOfKind> lengths, std::uintmax_t bytes) {
    for (const LengthOfKind& row : lengths) {
        if (row.bytes == bytes) return row.slot;
    }
    return 0;
}

}  // namespace

CalibrationFileKind kindOfCalibrationFile(const std::string& path) {
    constexpr std::size_t headerFloats = 3;
    const std::string header = readFileStart(path, headerFloats * floatBytes);
    if (header.size() < headerFloats * floatBytes) {
        throw FileError(path + " is no calibration file: it ends inside its header");
    }
    const UnitKind* named = unitKindOfFile(floatAt(header, 0));
    if (named != nullptr) return {named->slot, false, floatAt(header, 1)};
    std::error_code error;
    const auto length = std::filesystem::file_size(path, error);
    return {error ? 0 : slotOf(unnamedLengths, length), true, 0};
}

int kindOfOldFile(std::uintmax_t length) {
    return slotOf(oldLengths, length);
}

int cellsCutOff(const UnitKind& kind, std::uintmax_t length) {
    constexpr std::uintmax_t headerFloats = 3;
    constexpr std::uintmax_t notes = 500;  // the last cells, which the first programs did not write
    const auto whole = headerFloats + static_cast<std::uintmax_t>(kind.fileFloats);
    const std::uintmax_t floats = length / floatBytes;
    const bool older = length == (whole - notes) * floatBytes || slotOf(unnamedLengths, length) == kind.slot;
    return floats >= whole || older ? 0 : static_cast<int>(whole - floats);
}

std::string cutOffText(const UnitKind& kind, int cells) {
    return "The file ends early: " + numberText(cells) + " of its " + numberText(kind.fileFloats) +
           (cells == 1 ? " cells is missing and was taken as 0." : " cells are missing and were taken as 0.");
}

std::string calibrationFileName(std::string_view path, const UnitKind& kind) {
    const std::string extension = upper(extensionOf(path));
    if (extension.starts_with(".ZQ4")) return std::string(path);
    if (upper(path).ends_with("BIN")) path.remove_suffix(extension.size());
    return std::string(path) + std::string(kind.extension);
}

}  // namespace zentaq
