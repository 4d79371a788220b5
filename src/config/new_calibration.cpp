#include "config/new_calibration.h"

#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>

#include "base/battery_input.h"
#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "unit/legacy_sensor.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr int axisCells = 16;
constexpr double kpaOfOneBarSensor = 104;  ///< a sensor of rating 1 reads up to here

/// One atmosphere in a pressure unit, and where the unit's zero lies: the values of the unit's sensor words.
struct PressureUnit {
    std::string_view name;
    double atmosphere;
    double zero;
};
constexpr std::array<PressureUnit, 5> pressureUnits = {{{"kPa", 101.325, 0},
                                                        {"PSIA", 14.696, 0},
                                                        {"PSIG", 14.696, 14.696},
                                                        {"mmHg", 760, 0},
                                                        {"inHg", 29.921, 0}}};

PressureUnit pressureUnitOf(const Unit& unit) {
    const std::string name = unit.MAPUnits();
    const auto found = std::ranges::find(pressureUnits, name, &PressureUnit::name);
    return found == pressureUnits.end() ? pressureUnits.front() : *found;
}

double fromKpa(const Unit& unit, double kpa) {
    const PressureUnit in = pressureUnitOf(unit);
    return kpa * in.atmosphere / pressureUnits.front().atmosphere - in.zero;
}

/// A difference or a rate: the zero does not count.
double spanFromKpa(const Unit& unit, double kpa) {
    return kpa * pressureUnitOf(unit).atmosphere / pressureUnits.front().atmosphere;
}

double toKpa(const Unit& unit, double pressure) {
    const PressureUnit in = pressureUnitOf(unit);
    return (pressure + in.zero) * pressureUnits.front().atmosphere / in.atmosphere;
}

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
};

/// The order matters: `MAP_Active` opens the range of `DCCL_3`, and the duty cells are filled by the
/// members that use them before they are set.
constexpr Load scalars[] = {"Initial_Advance",
                            "TBSOFF",
                            "ACE0",
                            {"ACE1", Holds::KpaSpan},
                            "ACE2",
                            "ACE3",
                            "ACE4",
                            "ACE5",
                            "ACE6",
                            "ACE7",
                            "ACCL_PW",
                            "ACCL_TM",
                            "SE0",
                            "SE1",
                            "SEPW",
                            "SECLT",
                            "ASE0",
                            "ASE1",
                            "FPT",
                            "MT",
                            "SCALE2",
                            "MAP_Active",
                            "DCCL_CutActive",
                            "DCCL_0",
                            "DCCL_1",
                            {"DCCL_3", Holds::Kpa},
                            "DCCL_4",
                            {"MAP_Max", Holds::Kpa},
                            "BSTCTTM",
                            "CONDIV",
                            "AVRDIV",
                            "Register_Number",
                            "EGO_LMT",
                            "EGO_RPM",
                            {"EGO_MAP", Holds::Kpa},
                            "EGO_TMP",
                            "EGO_RPML",
                            "Y",
                            "X",
                            "EGO_HighVoltage",
                            "EGO_LowVoltage",
                            "EGO_Type",
                            "KNK_MIN",
                            "KNK_ATK",
                            "KNK_DCY",
                            "KNK_MAX",
                            "KNK_RPM",
                            "opt_3Stage",
                            "opt_NoFuelCut",
                            "OVR1THR",
                            "OVR2THR",
                            "REV_Hysteresis",
                            "REV_AuxLimiter",
                            "REV_Limit_Approach",
                            "CYL_OvrThr",
                            "CYL_CutDly"};

/// Behind the bits of the first control byte.
constexpr Load scalarsBehindBits[] = {"opt_IdleSpeed", "NEGPGAIN",    "POSPGAIN",
                                      "NEGDGAIN",      "POSDGAIN",    "Reset_Duty",
                                      "IAC_RPM_HI",    "IAC_RPM_LO",  "IAC_Start",
                                      "IS_RTD",        "IS_ADV",      {"ISTMP", Holds::Celsius},
                                      "ISRPM",         "MinDuty",     "MaxDuty",
                                      "CLT_FailHigh",  "CLT_FailLow", "CLT_Default",
                                      "MAP_FailHigh",  "MAP_FailLow", {"MAP_Default", Holds::Kpa},
                                      "MAP_FIL",       "TPS_FCV",     "TPS_WOV",
                                      "TPS_FailHigh",  "TPS_FailLow", "TPS_Default",
                                      "EGO_FailTime",  "EGO_SUD",     "MAT_FailHigh",
                                      "MAT_FailLow",   "MAT_Default", "KNK_Timer",
                                      "MAFMax",        "BARO_ADV",    "FuelTrim",
                                      "INJTRIM"};

/// The sets of table Defaults as one unit kind sees them: its own version of a set, or else the plain one.
/// All sets are of one state of the database.
class KindDefaults {
 public:
    KindDefaults(const Database& database, const UnitKind& kind)
        : database_(database), reading_(database), suffix_(kind.defaultsSuffix) {
        for (const std::string& name : database.defaultsSets()) names_.insert(upper(name));
    }

    /// Throws Failure when there is neither.
    std::vector<float> of(std::string_view set) const {
        const std::string own = std::string(set) + std::string(suffix_);
        return database_.defaults(names_.contains(upper(own)) ? own : set);
    }
    /// Throws Failure as well when the set has another number of values.
    std::vector<float> of(std::string_view set, std::size_t count) const {
        std::vector<float> values = of(set);
        if (values.size() == count) return values;
        throw Failure("Set " + std::string(set) + " of table Defaults has " +
                      numberText(static_cast<double>(values.size())) + " values, not " +
                      numberText(static_cast<double>(count)));
    }

 private:
    const Database& database_;
    Database::Reading reading_;
    std::string_view suffix_;
    std::set<std::string> names_;
};

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
    filler.put("REV_Limiter", figures.revLimit);
    filler.put("scale1", figures.fullScalePulse);
    filler.put("INJ_On", figures.openingTime);
    filler.put("INJ_Number", figures.injectors);
    filler.put("CAMSTL", figures.raceCam ? 1 : 0);
    filler.put("MAX_Boost", figures.maxBoost);
    filler.put("AMP42", figures.fourAmpPeak ? 1 : 0);
    filler.put("BHP", figures.horsePower);
    filler.put("Alcohol", figures.alcohol ? 1 : 0);
    filler.put("INJ_FlowRate", figures.injectorFlow);
}

void putCurves(Filler& filler, const KindDefaults& defaults, bool raceCam) {
    filler.put(defaults, "BLDTBL");
    filler.put(defaults, {raceCam ? "LOWBLD_RACE" : "LOWBLD_STREET", "LOWBLD"});
    filler.put(defaults, "CHKTBL");
    filler.put(defaults, "MATENH");
    filler.put(defaults, "CLTTBL");
    filler.put(defaults, "MATADV");
}

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

/// The battery curve of the defaults stands on volts of its own; the cells of a kind stand where its input
/// measures.
void putBattery(Filler& filler, const Unit& unit, const KindDefaults& defaults) {
    const Parameter* row = unit.find("BATCom");
    if (row == nullptr) return;
    constexpr double step = 10;  // microseconds; the unit takes steps of 8
    const std::vector<float> volts = defaults.of("BATVOLTS");
    const std::vector<float> times = defaults.of("BATCOM", volts.size());
    for (int cell = 0; cell < row->count; ++cell) {
        const double here = batteryinput::stop(unit.kind().batteryVoltsPerCount, cell, row->count);
        filler.put("BATCom", roundHalfEven(between(times, 0, 1, placeOn(volts, here)) / step) * step, cell);
    }
}

void putShape(Unit& unit, const EngineFigures& figures) {
    for (const std::string_view table : {"ADV", "GPO1", "GPO2"}) {
        unit.SET_TBL_DIMENSIONS(table, "ROWS", figures.rows);
        unit.SET_TBL_DIMENSIONS(table, "COLS", figures.columns);
    }
    for (const std::string_view table : {"GPO1", "GPO2"}) {
        unit.SET_TBL_AXIS_TYPE(table, "COL-AXIS", "RPM");
        unit.SET_TBL_AXIS_TYPE(table, "ROW-AXIS", "BLEND MAP");
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
    for (const std::string_view table : {"GPO1", "GPO2"}) {
        for (int i = 0; i < axisCells; ++i) {
            // The axis reads back rounded, which may step over the end of the sensor.
            const float pressure = std::clamp(unit.get("MAPTBL", i), unit.MAPMin(), unit.MAPMax());
            filler.note(table, unit.Set_GPO_Stop(unit.get("RPMTBL", i), i, "X-Axis", table));
            filler.note(table, unit.Set_GPO_Stop(pressure, i, "Y-Axis", table));
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

bool isRotary(Unit& unit) {
    constexpr int layoutBits = 15;
    constexpr int rotaryLayout = 5;
    return (toInt16(static_cast<double>(unit.get("P1EGTP"))) & layoutBits) == rotaryLayout;
}

/// The engine tables of the defaults stand on axes of their own. A new calibration has other ones, up to its
/// rev limit and its boost, so its cells are read between the cells of the defaults. Beyond the atmosphere
/// the boost curves take timing off and add fuel. The tables are those of a piston engine; a rotary one gets
/// less advance.
class EngineTables {
 public:
    EngineTables(Unit& unit, const KindDefaults& defaults)
        : unit_(unit),
          defaults_(defaults),
          speeds_(defaults.of("RPMTBL", cells)),
          pressures_(defaults.of("MAPTBL", cells)),
          boosts_(defaults.of("BOOST", boostCells)) {}

    void put(Filler& filler) const {
        if (unit_.has("ADV")) putAdvance(filler);
        if (unit_.has("VE")) putEfficiency(filler);
        putRatios();
    }

 private:
    static constexpr std::size_t cells = axisCells;
    static constexpr std::size_t tableCells = cells * cells;
    static constexpr std::size_t boostCells = 8;

    void putAdvance(Filler& filler) const {
        const auto table = defaults_.of("ADV", tableCells);
        const auto retard = defaults_.of("BOOST_RTD", boostCells);
        const double least = defaults_.of("BOOST_ADV", 1).front();
        const double rotary = isRotary(unit_) ? defaults_.of("ROTARY_RTD", 1).front() : 0;
        eachCell([&](int cell, double rpm, double kpa) {
            const double advance = at(table, rpm, kpa);
            const double retarded = std::max(advance - rotary - ofBoost(retard, kpa, 0), least);
            constexpr double stepsInADegree = 2;
            filler.put("ADV", roundHalfEven(std::min(advance, retarded) * stepsInADegree) / stepsInADegree,
                       cell);
        });
    }
    void putEfficiency(Filler& filler) const {
        const auto table = defaults_.of("VE", tableCells);
        const auto more = defaults_.of("BOOST_VE", boostCells);
        eachCell([&](int cell, double rpm, double kpa) {
            filler.put("VE", roundHalfEven(at(table, rpm, kpa) + ofBoost(more, kpa, 0)), cell);
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

    template <typename Put>
    void eachCell(Put&& put) const {
        for (int row = 0; row < axisCells; ++row) {
            // An air flow in percent is a load as the pressure in kPa is: 100 is all that the engine takes.
            const double kpa = toKpa(unit_, unit_.get("MAPTBL", row));
            for (int column = 0; column < axisCells; ++column) {
                put(row * axisCells + column, static_cast<double>(unit_.get("RPMTBL", column)), kpa);
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
        const double boost = kpa - pressureUnits.front().atmosphere;
        return boost > 0 ? between(curve, 0, 1, placeOn(boosts_, boost)) : withoutBoost;
    }

    Unit& unit_;
    const KindDefaults& defaults_;
    std::vector<float> speeds_;
    std::vector<float> pressures_;
    std::vector<float> boosts_;
};

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

}  // namespace

void startNewCalibration(Unit& unit) {
    unit.CloseFile();
    for (int byte = 0; byte < 3; ++byte) unit.controlByte(byte, 0);
    if (unit.FW_Release() == 0) {
        unit.FW_Release(unit.kind().defaultRelease);
        unit.FW_Build(unit.kind().defaultBuild);
    }
    FileHeader& header = unit.host().header();
    header.currentUnit = static_cast<float>(unit.kind().slot);
    header.programVersion = unit.host().programVersion();
    header.firmwareCode = static_cast<float>(unit.FW_Release() * 1000 + unit.FW_Build());
    header.fileState = "NEW";
}

RefusedMembers chooseEngine(Unit& unit, const EngineRow& engine) {
    Filler filler(unit);
    // First of all: the limits of the tooth offsets are those of this option.
    filler.put("Option_Type", engine.optType);
    filler.put("IGN_REV", engine.ignRev);
    filler.put("P1EGTP", engine.p1EgTp);
    filler.put("P2EGTP", engine.p2EgTp);
    filler.put("CYL_Number", engine.cylinders);
    filler.put("Engine_Type", engine.engType);
    filler.put("TOOTHMAX", engine.maxOffset);
    filler.put("TOOTHMIN", engine.minOffset);
    filler.put("TOFFSET1", engine.offsetA);
    filler.put("TOFFSET2", engine.offsetB);
    filler.put("INJ_Events", engine.injEvents);
    filler.put("INJ_Mode", engine.injMode);
    filler.put("PHDSEQ", engine.phdSeq);
    filler.put("INJ_Reset", engine.injReset);
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

EngineFigures startingFigures(const Database& database, const UnitKind& kind) {
    const KindDefaults defaults(database, kind);
    EngineFigures figures;
    figures.revLimit = defaults.of("REV_Limiter", 1).front();
    figures.fullScalePulse = defaults.of("scale1", 1).front();
    figures.openingTime = defaults.of("INJ_On", 1).front();
    figures.injectors = defaults.of("INJ_Number", 1).front();
    return figures;
}

RefusedMembers loadDefaults(Unit& unit, const Database& database, const EngineFigures& figures) {
    unit.host().sysLog("Loading Default BIN File Values...");
    const KindDefaults defaults(database, unit.kind());
    Filler filler(unit);
    putFigures(filler, figures);
    filler.put(defaults, {"AFR_Stoich", "AFR"});
    putCurves(filler, defaults, figures.raceCam);
    putBattery(filler, unit, defaults);
    putShape(unit, figures);
    putAxes(filler, unit, figures);
    EngineTables(unit, defaults).put(filler);
    filler.put(defaults, "SPW");
    putSplit(filler, unit, defaults);
    putStops(filler, unit);
    for (const Load& scalar : scalars) filler.put(defaults, scalar);
    putControlBits(unit, defaults);
    for (const Load& scalar : scalarsBehindBits) filler.put(defaults, scalar);
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
