#include "config/new_calibration.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/rounding.h"
#include "config/kind_defaults.h"
#include "config/pressure_units.h"
#include "refdata/schema.h"
#include "unit/legacy_sensor.h"
#include "unit/table_kinds.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr int axisCells = 16;
constexpr double kpaOfOneBarSensor = 104;  ///< a sensor of rating 1 reads up to here

/// What the numbers of a set are, beside the member's own unit.
enum class Holds { MembersUnit, Kpa, KpaSpan, Celsius };

/// A set of table Defaults and the member that takes it.
struct Load {
    std::string_view set;
    std::string_view member;
    Holds holds = Holds::MembersUnit;

    constexpr Load(const char* name, Holds what = Holds::MembersUnit)  // NOLINT: mostly one name
        : set(name), member(name), holds(what) {}
    constexpr Load(const char* from, const char* into) : set(from), member(into) {}
    constexpr explicit Load(std::string_view name) : set(name), member(name) {}
};

/// Sets of one number are loaded by their member's name; here stand those that hold something else or have an
/// order. `MAP_Active` opens the range of `DCCL_3`, and options write bits of the control bytes.
constexpr Load scalars[] = {{"ACE1", Holds::KpaSpan},
                            "MAP_Active",
                            "DCCL_CutActive",
                            {"DCCL_3", Holds::Kpa},
                            {"MAP_Max", Holds::Kpa},
                            {"EGO_MAP", Holds::Kpa},
                            "Y",
                            "X",
                            "EGO_Type",
                            "opt_3Stage",
                            "opt_NoFuelCut"};

/// Behind the bits of the first control byte. The duty cells are filled by the members that use them before
/// they are set.
constexpr Load scalarsBehindBits[] = {"opt_IdleSpeed", "Reset_Duty", "IAC_Start", {"ISTMP", Holds::Celsius},
                                      "ISRPM",         "MinDuty",    "MaxDuty",   {"MAP_Default", Holds::Kpa},
                                      "BARO_ADV",      "FuelTrim",   "INJTRIM"};

/// Fills members one by one and remembers who refused. On-the-fly changes rest meanwhile.
class Filler {
 public:
    explicit Filler(Unit& unit) : unit_(unit), onTheFly_(unit.ONFLY_MODE()) { unit_.ONFLY_MODE(false); }
    ~Filler() { unit_.ONFLY_MODE(onTheFly_); }
    Filler(const Filler&) = delete;
    Filler& operator=(const Filler&) = delete;

    /// A member that the kind lacks is passed over.
    void put(std::string_view member, double value, int element = 0) {
        if (!unit_.has(member)) return;
        note(member, unit_.set(member, value, element));
    }
    void put(const KindDefaults& defaults, const Load& load) {
        if (!unit_.has(load.member)) return;
        const std::vector<float> values = defaults.of(load.set);
        for (std::size_t i = 0; i < values.size(); ++i) {
            put(load.member, inMembersUnit(load.holds, values[i]), static_cast<int>(i));
        }
    }
    void note(std::string_view member, const EntryOutcome& outcome) {
        if (!outcome) refused_.push_back({std::string(member), outcome.refusal()});
    }
    RefusedMembers refused() { return std::move(refused_); }

 private:
    double inMembersUnit(Holds holds, float value) {
        if (holds == Holds::Celsius && unit_.host().fahrenheit()) return toFahrenheit(value);
        // 0 is "none" for the pressures that have it; a small sensor takes what it can.
        if (holds == Holds::Kpa && value != 0) {
            return std::clamp(static_cast<float>(fromKpa(unit_, value)), unit_.MAPMin(), unit_.MAPMax());
        }
        if (holds == Holds::KpaSpan) return spanFromKpa(unit_, value);
        return value;
    }

    Unit& unit_;
    bool onTheFly_;
    RefusedMembers refused_;
};

void putFigures(Filler& filler, const EngineFigures& figures) {
    for (const auto& [member, number, flag] : engineFigures) {
        filler.put(member, number != nullptr ? figures.*number : figures.*flag ? 1 : 0);
    }
}

void putCurves(Filler& filler, const KindDefaults& defaults, bool raceCam) {
    filler.put(defaults, "BLDTBL");
    filler.put(defaults, {raceCam ? "LOWBLD_RACE" : "LOWBLD_STREET", "LOWBLD"});
    filler.put(defaults, "CHKTBL");
    filler.put(defaults, "MATENH");
    filler.put(defaults, "CLTTBL");
    filler.put(defaults, "MATADV");
}

void putShape(Unit& unit, const EngineFigures& figures) {
    for (const TableKind& table : tableKinds()) {
        unit.SET_TBL_DIMENSIONS(table.name, "ROWS", figures.rows);
        unit.SET_TBL_DIMENSIONS(table.name, "COLS", figures.columns);
    }
    for (const TableKind& table : outputTables()) {
        unit.SET_TBL_AXIS_TYPE(table.name, "COL-AXIS", "RPM");
        unit.SET_TBL_AXIS_TYPE(table.name, "ROW-AXIS", "BLEND MAP");
    }
}

/// Cells behind a shorter axis repeat its top.
float stopAt(const std::vector<float>& axis, int i) {
    return axis[std::min(static_cast<std::size_t>(i), axis.size() - 1)];
}

void putAxes(Filler& filler, Unit& unit, const EngineFigures& figures) {
    const auto speeds = newSpeedAxis(figures.revLimit, std::clamp(figures.columns, 1, axisCells));
    const auto pressures = newPressureAxis(unit, figures.maxBoost, std::clamp(figures.rows, 1, axisCells));
    for (int i = 0; i < axisCells; ++i) filler.put("RPMTBL", stopAt(speeds, i), i);
    for (int i = 0; i < axisCells; ++i) filler.put("MAPTBL", stopAt(pressures, i), i);
}

void putStops(Filler& filler, Unit& unit) {
    for (const TableKind& output : outputTables()) {
        const std::string_view table = output.name;
        for (int i = 0; i < axisCells; ++i) {
            // The axis reads back rounded, which may step over the end of the sensor.
            const float pressure = std::clamp(unit.get("MAPTBL", i), unit.MAPMin(), unit.MAPMax());
            auto set = unit.Set_GPO_Stop(unit.get("RPMTBL", i), i, "X-Axis", table);
            if (set) set = unit.Set_GPO_Stop(pressure, i, "Y-Axis", table);
            filler.note(table, set);
        }
    }
}

/// The split that the engine usually has, and what the defaults add to it over the speeds.
void putSplit(Filler& filler, Unit& unit, const KindDefaults& defaults) {
    if (!unit.has("SPLITBL")) return;
    const std::vector<float> more = defaults.of("SPLITBL");
    for (std::size_t i = 0; i < more.size(); ++i) {
        const int place = static_cast<int>(i);
        const float split = static_cast<float>(unit.DefaultSplit()) + more[i];
        filler.put("SPLITBL", std::min(split, unit.limits("SPLITBL", place).maximum), place);
    }
}

/// Only the set bits are stored: `DCCL_CutActive` and `opt_NoFuelCut` have theirs in the same byte.
void putControlBits(Unit& unit, const KindDefaults& defaults) {
    const std::vector<float> bits = defaults.of("Set_Control");
    for (std::size_t bit = 0; bit < bits.size(); ++bit) {
        if (bits[bit] != 0) unit.Set_Control(static_cast<int>(bit), true);
    }
}

void putPins(Unit& unit, const KindDefaults& defaults) {
    const std::vector<float> functions = defaults.of("GPIO_Func");
    const int pins = std::min(static_cast<int>(functions.size()), unit.kind().numGpio + 1);
    for (int pin = 0; pin < pins; ++pin) {
        unit.Set_GPIO_Func(pin, toInt16(functions[static_cast<std::size_t>(pin)]));
    }
}

/// A set that is one kind's own version of another one bears no member's name.
void putNumbers(Filler& filler, const KindDefaults& defaults) {
    for (const refdata::DefaultsSet& set : refdata::defaultsSets()) {
        const auto bears = [&](const Load& load) { return load.set == set.name; };
        const bool entered = std::ranges::find(startingEngineFigures, set.name, &EngineFigure::member) !=
                             startingEngineFigures.end();
        const bool loaded =
            entered || std::ranges::any_of(scalars, bears) || std::ranges::any_of(scalarsBehindBits, bears);
        if (set.count == 1 && !loaded) filler.put(defaults, Load(set.name));
    }
}

}  // namespace

void startNewCalibration(Unit& unit) {
    unit.CloseFile();
    for (int byte = 0; byte < 3; ++byte) unit.controlByte(byte, 0);
    if (unit.FW_Release() == 0) {
        unit.FW_Release(unit.kind().expected.release);
        unit.FW_Build(unit.kind().expected.build);
    }
    unit.startFile();
}

RefusedMembers chooseEngine(Unit& unit, const EngineRow& engine) {
    Filler filler(unit);
    // First of all: the limits of the tooth offsets are those of this option.
    filler.put("Option_Type", engine.optType);
    for (const EngineNumber& each : engineNumbers) filler.put(each.member, engine.*each.field);
    for (std::size_t i = 0; i < engine.injTbl.size(); ++i) {
        filler.put("INJTBL", engine.injTbl[i], static_cast<int>(i));
    }
    unit.DefaultSplit(engine.defaultSplit);
    return filler.refused();
}

RefusedMembers chooseSensor(Unit& unit, const MapSensorRow& sensor) {
    Filler filler(unit);
    filler.put("MAP_Scaler", sensor.scale);
    filler.put("MAP_Offset", sensor.offset);
    unit.MAPUnits(pressureUnitsOf(sensor.units));
    filler.put("MAP_ID", sensor.id);
    constexpr double smallestBar = 1;
    constexpr double largestBar = 10;
    const double bar = roundTo(toKpa(unit, unit.MAPMax()) / kpaOfOneBarSensor, 1);
    filler.put("MAP_BAR", std::clamp(bar, smallestBar, largestBar));
    return filler.refused();
}

RefusedMembers changeSensor(Unit& unit, const MapSensorRow& sensor) {
    const CellMap& cells = unit.kind().cells;
    const float rating = unit.DirectIndex(cells.mapBar);
    const float legacy = unit.DirectIndex(cells.legacyBar);
    RefusedMembers refused = chooseSensor(unit, sensor);
    unit.AssignDirectIndex(rating, cells.mapBar);
    unit.AssignDirectIndex(legacy, cells.legacyBar);
    return refused;
}

EngineFigures startingFigures(const Database& database, const UnitKind& kind) {
    const KindDefaults defaults(database, kind);
    EngineFigures figures;
    for (const EngineFigure& each : startingEngineFigures)
        figures.*each.number = defaults.of(each.member, 1).front();
    return figures;
}

RefusedMembers loadDefaults(Unit& unit, const Database& database, const EngineFigures& figures) {
    unit.host().sysLog("Loading Default BIN File Values...");
    const KindDefaults defaults(database, unit.kind());
    Filler filler(unit);
    putFigures(filler, figures);
    filler.put(defaults, {"AFR_Stoich", "AFR"});
    putCurves(filler, defaults, figures.raceCam);
    const PutCell put = [&](std::string_view member, double value, int cell) {
        filler.put(member, value, cell);
    };
    putBatteryCurve(unit, defaults, put);
    putShape(unit, figures);
    putAxes(filler, unit, figures);
    putEngineTables(unit, defaults, put);
    filler.put(defaults, "SPW");
    putSplit(filler, unit, defaults);
    putStops(filler, unit);
    for (const Load& scalar : scalars) filler.put(defaults, scalar);
    putControlBits(unit, defaults);
    for (const Load& scalar : scalarsBehindBits) filler.put(defaults, scalar);
    putNumbers(filler, defaults);
    putPins(unit, defaults);
    filler.put(defaults, "BARO_TRIM");
    unit.host().addToLastLine("SUCCESS!");
    return filler.refused();
}

std::vector<float> newSpeedAxis(float revLimit, int count) {
    std::vector<float> axis;
    for (int i = 1; i <= count; ++i) {
        axis.push_back(static_cast<float>(roundHalfEven(static_cast<double>(revLimit) * i / count)));
    }
    return axis;
}

std::vector<float> newPressureAxis(Unit& unit, float maxBoost, int count) {
    const PressureUnit in = pressureUnitOf(unit);
    const bool flow = unit.MAPUnits() == "%Flow";
    const auto full = static_cast<float>(in.atmosphere - in.zero + maxBoost);
    const float top = flow ? unit.MAPMax() : std::min(full, unit.MAPMax());
    const double topVolts = unit.pressureToVolts(top);
    // Many sensors have volts left for less than nothing: no engine gets there.
    const auto vacuum = static_cast<float>(-in.zero);
    const double bottomVolts = !flow && unit.MAPMin() < vacuum ? unit.pressureToVolts(vacuum) : 0;
    std::vector<float> axis;
    for (int i = 1; i <= count; ++i) {
        const double volts = bottomVolts + (topVolts - bottomVolts) * i / count;
        const float pressure = unit.voltsToPressure(static_cast<float>(volts));
        axis.push_back(std::clamp(pressure, unit.MAPMin(), unit.MAPMax()));
    }
    return axis;
}

}  // namespace zentaq
