// The numbers that no straight line makes of a cell.
#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/counts.h"
#include "unit/parameter_rules.h"
#include "unit/unit.h"

namespace zentaq::rules {

double accelerationFactor(Unit& unit) {
    const double range = unit.MAPRange();
    // A sensor of next to no volts a unit has no span.
    if (!std::isfinite(range) || range == 0) throw Overflow("Division by zero");
    return 137 / (range * 0.0388);
}

double toothByte(Unit&, double cell) {
    const double teeth = toCount(14 - cell);
    return teeth < 0 ? teeth + 60 : teeth;
}

double pressureByte(Unit& unit, double cell) {
    return std::clamp<double>(unit.KpaToCounts(static_cast<float>(cell), true), 0.0, 255.0);
}

double pressureByteOrZero(Unit& unit, double cell) {
    return cell == 0 ? 0 : pressureByte(unit, cell);
}

double inactivePressureByte(Unit& unit, double cell) {
    return unit.DirectIndex(unit.kind().cells.mapActive) == 0 ? 255 : pressureByteOrZero(unit, cell);
}

double pressureWord(Unit& unit, double cell) {
    return unit.KpaToCounts(static_cast<float>(cell), false);
}

double dutyByte(Unit& unit, double cell) {
    const double low = unit.DirectIndex(unit.kind().cells.minDuty);
    const double high = unit.DirectIndex(unit.kind().cells.maxDuty);
    return (high - low) * (cell / 100) + low;
}

double eighthsByte(Unit&, double cell) {
    return toCount(cell * 8) & 255;
}

double fiftiethsByte(Unit&, double cell) {
    return toCount(cell * 50) & 255;
}

double quartersOfWhole(Unit&, double cell) {
    return truncate(toCount(cell) / 4.0);
}

double accelerationByte(Unit& unit, double cell) {
    return accelerationFactor(unit) * cell;
}

double ratioByte(Unit& unit, double value) {
    return ((stoichiometricRatio(unit) / value) - 0.5) * 255;
}

double lambdaByte(Unit&, double cell) {
    return ((petrolRatio / cell) - 0.5) * 255;
}

}  // namespace zentaq::rules
