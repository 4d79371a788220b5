// A plain engine as functions of its speed and manifold pressure: what a sensible calibration for it holds.
// The simulated engines are variations of it, and a unit with an empty memory runs by it.
#pragma once

namespace zentaq::sim {

/// The fuel that the engine needs as a multiple of the pulse that pressure alone gives: 0.72 to 1.12.
double plainFuelFactor(double rpm, double kpa);
/// Degrees before top dead centre.
double plainAdvance(double rpm, double kpa);
/// Fuel per air as a multiple of the exact mixture: 1 burns all, above 1 is rich.
double plainMixture(double rpm, double kpa);
/// Second set of injectors, percent of the first.
double plainStaging(double rpm, double kpa);

}  // namespace zentaq::sim
