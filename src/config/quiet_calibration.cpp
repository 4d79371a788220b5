#include "config/quiet_calibration.h"

#include <cstdint>
#include <filesystem>
#include <system_error>
#include <utility>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "unit/file_kind.h"

namespace zentaq {

namespace {

const UnitKind& kindOfSlot(int slot) {
    const UnitKind* kind = unitKindOfSlot(slot);
    if (kind == nullptr) throw FileError("Unit kind " + numberText(slot) + " is not supported");
    return *kind;
}

CalibrationFileKind recognised(const std::string& path) {
    const CalibrationFileKind file = kindOfCalibrationFile(path);
    if (file.slot == 0) {
        throw FileError(path + " is no calibration file: it does not begin with a unit kind");
    }
    return file;
}

std::uintmax_t lengthOf(const std::string& path) {
    checkFile(path, limits::calibration);
    std::error_code error;
    const auto length = std::filesystem::file_size(path, error);
    if (error) throw FileError("Cannot read " + path + ": " + error.message());
    return length;
}

}  // namespace

std::unique_ptr<QuietCalibration> QuietCalibration::open(const std::string& path, DatabaseSource database) {
    const CalibrationFileKind file = recognised(path);
    auto calibration = std::make_unique<QuietCalibration>(kindOfSlot(file.slot), std::move(database));
    calibration->unit.FileOpen(path);
    calibration->host.header().currentUnit = static_cast<float>(file.slot);
    return calibration;
}

std::unique_ptr<QuietCalibration> QuietCalibration::importOld(const std::string& path,
                                                              DatabaseSource database) {
    const std::uintmax_t length = lengthOf(path);
    const int slot = kindOfOldFile(length);
    if (slot == 0) {
        throw FileError(path + " is no file of the older generation: no unit kind has files of " +
                        std::to_string(length) + " bytes");
    }
    auto calibration = std::make_unique<QuietCalibration>(kindOfSlot(slot), std::move(database));
    calibration->unit.OldFileOpen(path);
    return calibration;
}

}  // namespace zentaq
