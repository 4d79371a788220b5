#include "config/new_calibration.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "base/rounding.h"
#include "unit/legacy_sensor.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr int axisCells = 16;
constexpr int ignitionOnlyKind = 5;
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

/// Tables of the engine, behind their axes. The AFR table is loaded apart.
constexpr Load tables[] = {"ADV", "VE", "SPW"};

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
                                      "MAFMax",        "SPLITBL",     "BARO_ADV",
                                      "FuelTrim",      "INJTRIM"};

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
        if (!unit_.set(member, value, element)) refused_.emplace_back(member);
    }
    void put(const Database& database, const Load& load) {
        if (!unit_.has(load.member)) return;
        const std::vector<float> values = database.defaults(load.set);
        for (std::size_t i = 0; i < values.size(); ++i) {
            put(load.member, inMembersUnit(load.holds, values[i]), static_cast<int>(i));
        }
    }
    void refuse(std::string_view member) { refused_.emplace_back(member); }
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

void putCurves(Filler& filler, Unit& unit, const Database& database, bool raceCam) {
    filler.put(database, "BLDTBL");
    filler.put(database, {raceCam ? "LOWBLD_RACE" : "LOWBLD_STREET", "LOWBLD"});
    filler.put(database, {"BATCOM", "BATCom"});
    filler.put(database, "CHKTBL");
    filler.put(database, "MATENH");
    filler.put(database, "CLTTBL");
    filler.put(database, {unit.kind().slot == ignitionOnlyKind ? "MATADV_PZK2" : "MATADV", "MATADV"});
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
            const bool taken = unit.Set_GPO_Stop(unit.get("RPMTBL", i), i, "X-Axis", table) &&
                               unit.Set_GPO_Stop(pressure, i, "Y-Axis", table);
            if (!taken) filler.refuse(table);
        }
    }
}

/// The set and the cells stand on the same base of 14.7, whatever the fuel.
void putRatios(Unit& unit, const Database& database) {
    const Parameter* table = unit.find("Get_AFR");
    if (table == nullptr) return;
    const std::vector<float> ratios = database.defaults("AFR");
    for (std::size_t i = 0; i < ratios.size(); ++i) {
        unit.AssignDirectIndex(ratios[i], table->cell(static_cast<int>(i)));
    }
}

/// Only the set bits are stored: `DCCL_CutActive` and `opt_NoFuelCut` have theirs in the same byte.
void putControlBits(Unit& unit, const Database& database) {
    const std::vector<float> bits = database.defaults("Set_Control");
    for (std::size_t bit = 0; bit < bits.size(); ++bit) {
        if (bits[bit] != 0) unit.Set_Control(static_cast<int>(bit), true);
    }
}

void putPins(Unit& unit, const Database& database) {
    const std::vector<float> functions = database.defaults("GPIO_Func");
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

RefusedMembers loadDefaults(Unit& unit, const Database& database, const EngineFigures& figures) {
    unit.host().sysLog("Loading Default BIN File Values...");
    Filler filler(unit);
    putFigures(filler, figures);
    if (const auto ratio = database.defaults("AFR_Stoich"); !ratio.empty()) filler.put("AFR", ratio.front());
    putCurves(filler, unit, database, figures.raceCam);
    putShape(unit, figures);
    putAxes(filler, unit, figures);
    for (const Load& table : tables) filler.put(database, table);
    putRatios(unit, database);
    putStops(filler, unit);
    for (const Load& scalar : scalars) filler.put(database, scalar);
    putControlBits(unit, database);
    for (const Load& scalar : scalarsBehindBits) filler.put(database, scalar);
    putPins(unit, database);
    filler.put(database, "BARO_TRIM");
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
    std::vector<float> axis;
    for (int i = 1; i <= count; ++i) {
        const float pressure = unit.voltsToPressure(static_cast<float>(topVolts * i / count));
        axis.push_back(std::clamp(pressure, unit.MAPMin(), unit.MAPMax()));
    }
    return axis;
}

}  // namespace zentaq
