#include "config/quiet_calibration.h"

#include <bit>
#include <cmath>
#include <cstdint>

#include "base/errors.h"
#include "base/number_text.h"
#include "unit/safe_file.h"

namespace zentaq {

namespace {

float firstNumber(const std::string& path) {
    constexpr std::size_t header = 12;
    const std::string bytes = readFileStart(path, header);
    if (bytes.size() < header) throw FileError(path + " is no calibration file: it ends inside its header");
    std::uint32_t bits = 0;
    for (unsigned i = 0; i < 4; ++i) bits |= std::uint32_t{static_cast<std::uint8_t>(bytes[i])} << (8 * i);
    return std::bit_cast<float>(bits);
}

const UnitKind& kindOf(const std::string& path) {
    constexpr float firstKind = 3;
    constexpr float lastKind = 8;
    const float number = firstNumber(path);
    if (!(number >= firstKind && number <= lastKind) || std::trunc(number) != number) {
        throw FileError(path + " is no calibration file: it does not begin with a unit kind");
    }
    const UnitKind* kind = unitKindOfSlot(static_cast<int>(number));
    if (kind == nullptr) {
        throw FileError(path + " is for unit kind " + numberText(number) +
                        ", which this version does not support");
    }
    return *kind;
}

}  // namespace

std::unique_ptr<QuietCalibration> QuietCalibration::open(const std::string& path, const Database* database) {
    auto calibration = std::make_unique<QuietCalibration>(kindOf(path), database);
    calibration->unit.FileOpen(path);
    return calibration;
}

}  // namespace zentaq
