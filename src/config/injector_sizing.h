// The figures of the injectors: flow from power, and pulse width from flow.
#pragma once

#include <optional>

namespace zentaq {

/// What the figures are computed from, in the units of the form.
struct SizingInput {
    bool raceCam = false;
    double cylinders = 0;
    double mapBar = 0;      ///< `MAP_BAR`, rating of the sensor in bar
    double horsePower = 0;  ///< `BHP`
    double injectors = 0;
    bool alcohol = false;
    int phdSeq = 0;       ///< 0: several injections a cycle
    double revLimit = 0;  ///< RPM
    double maxBoost = 0;  ///< `MAX_Boost`
};

struct InjectorSizing {
    double InjectorFlowNeed = 0;  ///< lb/hr before the dead time
    double InjectorFlow = 0;      ///< lb/hr with the dead time
    double InjectionPeriod = 0;   ///< ms between injections at the rev limit
};

/// Dead time of an injector, ms.
inline constexpr double injectorDeadTimeMs = 1.2;

/// Nothing without power, or where a division fails: the caller keeps its last figures.
std::optional<InjectorSizing> Calculate_FLOW(const SizingInput& input);

/// The pulse width that the form calls "Zentaq Calculated TOG", ms. Nothing while a flow is 0.
std::optional<double> Calculate_UAP(const SizingInput& input, const InjectorSizing& sizing);

}  // namespace zentaq
