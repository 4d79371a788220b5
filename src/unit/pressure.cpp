#include <array>
#include <cmath>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/legacy_sensor.h"
#include "unit/parameter_rules.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr double countsPerVolt = 204.6;    ///< a 10-bit converter on 5 volts
constexpr double kpaPerCount = 0.1016618;  ///< the first sensors' legacy scale, for each bar of rating
constexpr double countsPerKpa = 9.8365;
constexpr float barSpanKpa = 104;      ///< a 1 bar sensor reads 1 to 104 kPa
constexpr int firstLinearRelease = 3;  ///< from this release on a sensor is a line of the user's

LegacySensor sensorOf(Unit& unit) {
    rules::mapBar(unit);  // repairs a rating of 0
    return legacySensor(toInt16(static_cast<double>(unit.DirectIndex(unit.kind().cells.legacyBar))));
}

}  // namespace

std::string_view pressureUnitsOf(int code) {
    static constexpr std::array<std::string_view, 7> names = {"kPa",  "kPa",  "PSIA", "PSIG",
                                                              "mmHg", "inHg", "%Flow"};
    if (code < 0 || code >= static_cast<int>(names.size())) return {};
    return names[static_cast<std::size_t>(code)];
}

LegacySensor legacySensor(int rating) {
    static constexpr std::array<LegacySensor, 5> sensors = {
        {{0, 0}, {876.0 / 1024, 100}, {940.0 / 1024, 36}, {996.0 / 1024, 4}, {992.0 / 1024, 28}}};
    if (rating < 0 || rating >= static_cast<int>(sensors.size())) throw BoundsError();
    return sensors[static_cast<std::size_t>(rating)];
}

float Unit::MAPMax() {
    if (FW_Release() < firstLinearRelease) return rules::mapBar(*this) * barSpanKpa;
    return static_cast<float>((5.0 - rules::mapOffset(*this)) / rules::mapScaler(*this));
}

float Unit::MAPMin() {
    if (FW_Release() < firstLinearRelease) return rules::mapBar(*this);
    return static_cast<float>(-static_cast<double>(rules::mapOffset(*this)) / rules::mapScaler(*this));
}

float Unit::MAPRange() {
    return MAPMax() - MAPMin();
}

int Unit::MAPPrecision() {
    const float highest = MAPMax();
    if (highest >= 1000) return 0;
    if (highest >= 100) return 1;
    if (highest >= 10) return 2;
    return highest >= 0 ? 3 : 4;
}

std::string Unit::MAPUnits() const {
    if (!kind_->hasCalibration) return {};
    const double code = roundHalfEven(cellAt(kind_->cells.mapUnits));
    constexpr double highest = 6;
    if (!(code >= 0 && code <= highest)) return {};
    return std::string(pressureUnitsOf(static_cast<int>(code)));
}

void Unit::MAPUnits(std::string_view units) {
    if (!kind_->hasCalibration) return;
    constexpr int percentFlow = 6;
    constexpr int flowBit = 0;
    for (int code = 1; code <= percentFlow; ++code) {
        if (pressureUnitsOf(code) != units) continue;
        put(kind_->cells.mapUnits, code);
        Set_Control2(flowBit, code == percentFlow);
    }
}

float Unit::voltsToPressure(float volts) {
    if (!kind_->hasCalibration) return 0;
    if (FW_Release() < firstLinearRelease) return voltsToKPa(volts);
    return static_cast<float>((static_cast<double>(volts) - rules::mapOffset(*this)) /
                              rules::mapScaler(*this));
}

float Unit::pressureToVolts(float pressure) {
    if (!kind_->hasCalibration) return 0;
    if (FW_Release() < firstLinearRelease) return KpaToVolts(pressure);
    return static_cast<float>(static_cast<double>(rules::mapScaler(*this)) * pressure +
                              rules::mapOffset(*this));
}

float Unit::pressureToRatio(float pressure) {
    if (!kind_->hasCalibration) return 0;
    if (FW_Release() >= firstLinearRelease) return static_cast<float>(pressureToVolts(pressure) / 5.0);
    return static_cast<float>(pressure / (static_cast<double>(rules::mapBar(*this)) * barSpanKpa));
}

float Unit::voltsToKPa(float volts) {
    if (!kind_->hasCalibration) return 0;
    const double bar = rules::mapBar(*this);
    const auto [k, l] = sensorOf(*this);
    return static_cast<float>((k * (volts * countsPerVolt) + l) * kpaPerCount * bar);
}

float Unit::KpaToVolts(float kpa) {
    if (!kind_->hasCalibration) return 0;
    const double bar = rules::mapBar(*this);
    const auto [k, l] = sensorOf(*this);
    return static_cast<float>((((kpa / bar) / kpaPerCount - l) / k) / countsPerVolt);
}

float Unit::KpaToCounts(float kpa, bool eightBit) {
    if (!kind_->hasCalibration) return 0;
    // kept: the older firmware takes the same counts in both forms.
    if (FW_Release() < firstLinearRelease) {
        return static_cast<float>((kpa / static_cast<double>(rules::mapBar(*this))) * countsPerKpa);
    }
    const double counts = KpaToVolts(kpa) * countsPerVolt;
    return static_cast<float>(eightBit ? counts / 4 : counts);
}

}  // namespace zentaq
