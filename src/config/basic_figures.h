// The basic figures of an engine as a calibration holds them: what may be entered, and what the injector
// figures and the default values are computed from. The form and the command line take the same ones.
#pragma once

#include <string>
#include <string_view>

#include "config/injector_sizing.h"
#include "config/new_calibration.h"
#include "refdata/database.h"
#include "unit/unit.h"

namespace zentaq {

/// The rating of the sensor (`MAP_BAR`) in the sensor's own unit, rounded as its pressures are shown.
float sensorRange(Unit& unit);
/// "Max Boost Pressure (0 to 100 kPa)"; a sensor of %Flow knows no boost.
std::string maxBoostCaption(Unit& unit);
bool boostUsed(const Unit& unit);
/// `MAX_Boost` as it was entered, in the sensor's own unit; its reader answers bar.
float enteredBoost(const Unit& unit);

/// What the calibration holds.
SizingInput sizingInput(Unit& unit);
EngineFigures figuresOf(Unit& unit);

/// The limits of an entry. Some members have none in the parameter table, since a calibration may hold
/// anything there; what a user enters has those of this piece: basic figures, switches, codes that share a
/// cell or a control byte with others.
Limits figureLimits(Unit& unit, std::string_view member);

/// The limits of a figure as text, where no calibration is in hand; empty for a member without any here.
std::string_view figureRange(std::string_view member);

/// Limits of a figure that follow from no other member; Limits::none() for any other member.
Limits fixedFigureLimits(std::string_view member);

/// Checks an entry for a member by `figureLimits`, and whether it must be whole.
EntryOutcome checkFigure(Unit& unit, std::string_view member, double number);

/// As it is shown and stored, lb/hr: "###.00".
std::string flowText(double flow);

/// The full scale pulse to begin with, ms. `plain`, that of table Defaults, is for a sensor that ends where
/// the engine does; on a larger one the engine works in a part of the scale, and the whole of it takes the
/// more.
float usualPulse(Unit& unit, float plain);

/// How many injectors an engine mostly has: one a cylinder, or as many as a throttle body has outputs.
int usualInjectors(const EngineRow& engine);

}  // namespace zentaq
