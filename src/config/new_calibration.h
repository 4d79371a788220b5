// Makes a new calibration: an empty Unit object is given an engine, a pressure sensor, the figures that a
// tuner enters, and the default values of the reference database, in the order that the members depend on.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "refdata/database.h"
#include "unit/unit.h"

namespace zentaq {

/// The basic figures of an engine, as the tuner gives them.
struct EngineFigures {
    float revLimit = 7000;     ///< RPM, `REV_Limiter`
    float fullScalePulse = 8;  ///< ms at full sensor scale, `scale1`
    float openingTime = 1;     ///< ms, `INJ_On`
    float injectors = 4;       ///< `INJ_Number`
    float maxBoost = 0;        ///< above the atmosphere, in the sensor's own unit, `MAX_Boost`
    float horsePower = 0;      ///< `BHP`
    float injectorFlow = 0;    ///< lb/hr, `INJ_FlowRate`
    bool raceCam = false;      ///< `CAMSTL`
    bool alcohol = false;      ///< `Alcohol`
    bool fourAmpPeak = false;  ///< `AMP42`
    int rows = 16;             ///< of all tables, 8 to 16 of the cells that a table holds are used
    int columns = 16;
};

/// A figure and its member, in the order that their limits need; the first four have defaults of their own.
struct EngineFigure {
    std::string_view member;
    float EngineFigures::*number = nullptr;
    bool EngineFigures::*flag = nullptr;
};
inline constexpr std::array<EngineFigure, 10> engineFigures = {
    {{"REV_Limiter", &EngineFigures::revLimit},
     {"scale1", &EngineFigures::fullScalePulse},
     {"INJ_On", &EngineFigures::openingTime},
     {"INJ_Number", &EngineFigures::injectors},
     {"CAMSTL", nullptr, &EngineFigures::raceCam},
     {"MAX_Boost", &EngineFigures::maxBoost},
     {"AMP42", nullptr, &EngineFigures::fourAmpPeak},
     {"BHP", &EngineFigures::horsePower},
     {"Alcohol", nullptr, &EngineFigures::alcohol},
     {"INJ_FlowRate", &EngineFigures::injectorFlow}}};
inline constexpr std::span startingEngineFigures = std::span(engineFigures).first<4>();

/// The members that did not take their value; empty when all was taken. A refusal stops nothing.
struct RefusedMember {
    std::string name;
    Refusal why;
};
using RefusedMembers = std::vector<RefusedMember>;

/// Empties the Unit object and gives it the firmware of its kind where it has none.
void startNewCalibration(Unit& unit);

/// Copies a row of the engine list into the calibration.
RefusedMembers chooseEngine(Unit& unit, const EngineRow& engine);

/// Copies a row of the sensor list into the calibration, and the sensor's rating in bar (`MAP_BAR`).
RefusedMembers chooseSensor(Unit& unit, const MapSensorRow& sensor);

/// The same in a calibration that is filled: its pressures are kept by volts on the scale of its rating,
/// which stays, since with another one all of them would move.
RefusedMembers changeSensor(Unit& unit, const MapSensorRow& sensor);

/// What to offer before the tuner types anything: rev limit, full scale pulse, opening time and number of
/// injectors from table Defaults, as the kind has them. Throws Failure when the database lacks one.
EngineFigures startingFigures(const Database& database, const UnitKind& kind);

/// Stores the figures and loads the sets of table Defaults, each in the version of the unit's kind if there
/// is one. The tables of the engine are read at the new axes; above the atmosphere they are retarded and
/// enriched. The engine and the sensor must have been chosen: limits depend on them. Nothing is sent to a
/// unit. Throws Failure when the database lacks a set, or a table or axis of it is not whole.
RefusedMembers loadDefaults(Unit& unit, const Database& database, const EngineFigures& figures);

/// The axes that a new calibration gets: equal steps up to the rev limit, and equal steps of sensor volts
/// from 0 volts, or from the volts of no pressure at all, up to the atmosphere plus the boost. `count`
/// values, ascending.
std::vector<float> newSpeedAxis(float revLimit, int count);
std::vector<float> newPressureAxis(Unit& unit, float maxBoost, int count);

}  // namespace zentaq
