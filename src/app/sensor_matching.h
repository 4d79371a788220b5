// Which MAP sensor of the reference database a calibration uses: found by its slope and offset, and offered
// for adding when the database does not hold it.
#pragma once

#include <string>

#include "app/session.h"

namespace zentaq {

/// The name to show for the sensor of the calibration in hand: its row's Description, or
/// "Unknown (Range: low to high unit)". Empty without a calibration. Asks nothing, changes nothing.
std::string sensorNameQuietly(Session& session);

/// As sensorNameQuietly, but a sensor that the database lacks is offered for adding ("Add Sensor?"), and the
/// name of an added one is returned. Nothing is asked while the database is missing, write-protected or
/// locked: an answer could not be kept. Windows hear of an added sensor by sensorsChanged().
std::string matchSensor(Session& session);

}  // namespace zentaq
