#include "unit/file_kind.h"

#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "unit/file_floats.h"
#include "unit/file_save.h"

namespace zentaq {

namespace {

/// Before its first number named the kind.
bool isUnnamedLength(const UnitKind& kind, std::uintmax_t bytes) {
    return kind.unnamedFileBytes == bytes;
}

bool isOldLength(const UnitKind& kind, std::uintmax_t bytes) {
    return std::ranges::find(kind.oldFileBytes, bytes) != kind.oldFileBytes.end();
}

int slotWhere(bool (*isLength)(const UnitKind&, std::uintmax_t), std::uintmax_t bytes) {
    for (const UnitKind& kind : unitKinds()) {
        if (isLength(kind, bytes)) return kind.slot;
    }
    return 0;
}

}  // namespace

CalibrationFileKind kindOfCalibrationFile(const std::string& path) {
    return kindOfCalibrationStart(knownStart(path), path);
}

CalibrationFileKind kindOfCalibrationStart(std::string_view start, const std::string& path) {
    constexpr std::size_t headerFloats = 3;
    if (start.size() < headerFloats * floatBytes) {
        throw FileError(path + " is no calibration file: it ends inside its header");
    }
    const UnitKind* named = unitKindOfFile(floatAt(start, 0));
    if (named != nullptr) return {named->slot, false, floatAt(start, 1)};
    return {slotWhere(isUnnamedLength, start.size()), true, 0};
}

int kindOfOldFile(std::uintmax_t length) {
    return slotWhere(isOldLength, length);
}

float programVersion() {
    const std::string_view version = ZENTAQ_VERSION;
    const double behindFirst = numberOf(version.substr(version.find('.') + 1));
    return static_cast<float>(numberOf(formatNumber(behindFirst, "##.##")));
}

int cellsCutOff(const UnitKind& kind, std::uintmax_t length) {
    constexpr std::uintmax_t headerFloats = 3;
    constexpr std::uintmax_t notes = 500;  // the last cells, which the first programs did not write
    const auto whole = headerFloats + static_cast<std::uintmax_t>(kind.fileFloats);
    const std::uintmax_t floats = length / floatBytes;
    const bool older = length == (whole - notes) * floatBytes || isUnnamedLength(kind, length);
    return floats >= whole || older ? 0 : static_cast<int>(whole - floats);
}

std::string cutOffText(const UnitKind& kind, int cells) {
    return "The file ends early: " + numberText(cells) + " of its " + numberText(kind.fileFloats) +
           (cells == 1 ? " cells is missing and was taken as 0." : " cells are missing and were taken as 0.");
}

bool isOldFileName(std::string_view path) {
    return upper(extensionOf(path)) == ".BIN";
}

std::string calibrationFileName(std::string_view path, const UnitKind& kind) {
    const std::string extension = upper(extensionOf(path));
    if (extension.starts_with(".ZQ4")) return std::string(path);
    if (upper(path).ends_with("BIN")) path.remove_suffix(extension.size());
    return std::string(path) + std::string(kind.extension);
}

}  // namespace zentaq
