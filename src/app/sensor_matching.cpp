#include "app/sensor_matching.h"

#include "app/sensor_manager.h"
#include "base/errors.h"
#include "config/display.h"
#include "unit/legacy_sensor.h"

namespace zentaq {

namespace {

constexpr auto addTitle = "Add Sensor?";

/// The sensor of the calibration in hand, without a name.
MapSensorRow sensorInUse(Unit& unit) {
    MapSensorRow row;
    row.scale = unit.get("MAP_Scaler");
    row.offset = unit.get("MAP_Offset");
    constexpr int percentFlow = 6;
    const std::string units = unit.MAPUnits();
    for (int code = 1; code <= percentFlow; ++code) {
        if (pressureUnitsOf(code) == units) row.units = code;
    }
    return row;
}

/// A database that does not answer is no reason to offer the sensor once more.
bool surelyMissing(Session& session, const MapSensorRow& row) {
    bool missing = false;
    endOnFailure([&] { missing = !session.requireReference().mapSensorByValues(row.scale, row.offset); },
                 [&](const std::string& why) { session.sysLog(why); });
    return missing;
}

bool wantsToAdd(Session& session) {
    return session.dialogs().show({addTitle,
                                   "The sensor used in this program is not in your sensor database.\n"
                                   "Would you like to add it?",
                                   Icon::Question, Buttons::YesNo}) == Answer::Yes;
}

/// The name of the sensor once it is in the database; empty when the user declined.
std::string addSensor(Session& session, MapSensorRow row) {
    const auto name = askSensorName(session, "Sensor Name",
                                    "Enter a description for this MAP sensor:", pressureUnitsOf(row.units));
    if (!name) return {};
    row.description = *name;
    session.requireReference().addMapSensor(row);
    return *name;
}

}  // namespace

std::string sensorNameQuietly(Session& session) {
    return displayNames(session.currentUnitObject(), session.reference()).sensor;
}

std::string matchSensor(Session& session) {
    std::string shown = sensorNameQuietly(session);
    Unit& unit = session.currentUnitObject();
    const Database* database = session.reference();
    if (!unit.kind().hasCalibration || database == nullptr || database->readOnly()) return shown;
    // Taken before the question: while it stands, another calibration may come into hand.
    const MapSensorRow row = sensorInUse(unit);
    if (!surelyMissing(session, row) || !wantsToAdd(session)) return shown;
    std::string added;
    endOnFailure([&] { added = addSensor(session, row); },
                 [&](const std::string& why) {
                     session.sysLog(why);
                     session.dialogs().show({addTitle, why, Icon::Exclamation});
                 });
    if (added.empty()) return shown;
    session.windows().tell(&WindowNews::sensorsChanged);
    return added;
}

}  // namespace zentaq
