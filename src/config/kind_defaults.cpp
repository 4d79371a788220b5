#include "config/kind_defaults.h"

#include <algorithm>

#include "base/battery_input.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "config/pressure_units.h"

namespace zentaq {

KindDefaults::KindDefaults(const Database& database, const UnitKind& kind)
    : database_(database), reading_(database), suffix_(kind.defaultsSuffix) {
    for (const std::string& name : database.defaultsSets()) names_.insert(upper(name));
}

std::vector<float> KindDefaults::of(std::string_view set) const {
    const std::string own = std::string(set) + std::string(suffix_);
    return database_.defaults(names_.contains(upper(own)) ? own : set);
}

std::vector<float> KindDefaults::of(std::string_view set, std::size_t count) const {
    std::vector<float> values = of(set);
    if (values.size() == count) return values;
    throw Failure("Set " + std::string(set) + " of table Defaults has " +
                  numberText(static_cast<double>(values.size())) + " values, not " +
                  numberText(static_cast<double>(count)));
}

namespace {

/// Where a value lies on an axis, in cells and parts of a cell; values beyond the ends lie on the ends.
double placeOn(const std::vector<float>& axis, double value) {
    if (value <= axis.front()) return 0;
    for (std::size_t i = 1; i < axis.size(); ++i) {
        if (value > axis[i]) continue;
        const double below = axis[i - 1];
        return static_cast<double>(i) - 1 + (value - below) / (static_cast<double>(axis[i]) - below);
    }
    return static_cast<double>(axis.size() - 1);
}

/// The value at a place between two cells, which lie `stride` apart.
double between(const std::vector<float>& values, std::size_t first, std::size_t stride, double place) {
    const auto low = static_cast<std::size_t>(place);
    const double part = place - static_cast<double>(low);
    const double lower = values[first + low * stride];
    return part == 0 ? lower : lower + part * (values[first + (low + 1) * stride] - lower);
}

bool isRotary(Unit& unit) {
    constexpr int layoutBits = 15;
    constexpr int rotaryLayout = 5;
    return (toInt16(static_cast<double>(unit.get("P1EGTP"))) & layoutBits) == rotaryLayout;
}

class EngineTables {
 public:
    EngineTables(Unit& unit, const KindDefaults& defaults)
        : unit_(unit),
          defaults_(defaults),
          speeds_(defaults.of("RPMTBL", cells)),
          pressures_(defaults.of("MAPTBL", cells)),
          boosts_(defaults.of("BOOST", boostCells)) {}

    void put(const PutCell& put) const {
        if (unit_.has("ADV")) putAdvance(put);
        if (unit_.has("VE")) putEfficiency(put);
        putRatios();
    }

 private:
    static constexpr int cells = 16;  ///< of an axis
    static constexpr std::size_t tableCells = cells * cells;
    static constexpr std::size_t boostCells = 8;

    void putAdvance(const PutCell& put) const {
        const auto table = defaults_.of("ADV", tableCells);
        const auto retard = defaults_.of("BOOST_RTD", boostCells);
        const double least = defaults_.of("BOOST_ADV", 1).front();
        const double rotary = isRotary(unit_) ? defaults_.of("ROTARY_RTD", 1).front() : 0;
        eachCell([&](int cell, double rpm, double kpa) {
            const double advance = at(table, rpm, kpa);
            const double retarded = std::max(advance - rotary - ofBoost(retard, kpa, 0), least);
            constexpr double stepsInADegree = 2;
            put("ADV", roundHalfEven(std::min(advance, retarded) * stepsInADegree) / stepsInADegree, cell);
        });
    }
    void putEfficiency(const PutCell& put) const {
        const auto table = defaults_.of("VE", tableCells);
        const auto more = defaults_.of("BOOST_VE", boostCells);
        eachCell([&](int cell, double rpm, double kpa) {
            put("VE", roundHalfEven(at(table, rpm, kpa) + ofBoost(more, kpa, 0)), cell);
        });
    }
    /// The set and the cells stand on the same base of 14.7, whatever the fuel.
    void putRatios() const {
        const Parameter* row = unit_.find("Get_AFR");
        if (row == nullptr) return;
        const auto table = defaults_.of("AFR", tableCells);
        const auto leanest = defaults_.of("BOOST_AFR", boostCells);
        eachCell([&](int cell, double rpm, double kpa) {
            const double ratio = at(table, rpm, kpa);
            const double value = roundTo(std::min(ratio, ofBoost(leanest, kpa, ratio)), 1);
            unit_.AssignDirectIndex(static_cast<float>(value), row->cell(cell));
        });
    }

    template <typename Visit>
    void eachCell(Visit&& visit) const {
        for (int row = 0; row < cells; ++row) {
            // An air flow in percent is a load as the pressure in kPa is: 100 is all that the engine takes.
            const double kpa = toKpa(unit_, unit_.get("MAPTBL", row));
            for (int column = 0; column < cells; ++column) {
                visit(row * cells + column, static_cast<double>(unit_.get("RPMTBL", column)), kpa);
            }
        }
    }
    double at(const std::vector<float>& table, double rpm, double kpa) const {
        const double row = placeOn(pressures_, kpa);
        const double column = placeOn(speeds_, rpm);
        const auto low = static_cast<std::size_t>(row);
        const double lower = between(table, low * cells, 1, column);
        if (row == static_cast<double>(low)) return lower;
        return lower +
               (row - static_cast<double>(low)) * (between(table, (low + 1) * cells, 1, column) - lower);
    }
    double ofBoost(const std::vector<float>& curve, double kpa, double withoutBoost) const {
        const double boost = kpa - atmosphereKpa;
        return boost > 0 ? between(curve, 0, 1, placeOn(boosts_, boost)) : withoutBoost;
    }

    Unit& unit_;
    const KindDefaults& defaults_;
    std::vector<float> speeds_;
    std::vector<float> pressures_;
    std::vector<float> boosts_;
};

}  // namespace

void putEngineTables(Unit& unit, const KindDefaults& defaults, const PutCell& put) {
    EngineTables(unit, defaults).put(put);
}

void putBatteryCurve(const Unit& unit, const KindDefaults& defaults, const PutCell& put) {
    const Parameter* row = unit.find("BATCom");
    if (row == nullptr) return;
    constexpr double step = 10;  // microseconds; the unit takes steps of 8
    const std::vector<float> volts = defaults.of("BATVOLTS");
    const std::vector<float> times = defaults.of("BATCOM", volts.size());
    for (int cell = 0; cell < row->count; ++cell) {
        const double here = batteryinput::stop(unit.kind().batteryVoltsPerCount, cell, row->count);
        put("BATCom", roundHalfEven(between(times, 0, 1, placeOn(volts, here)) / step) * step, cell);
    }
}

}  // namespace zentaq
