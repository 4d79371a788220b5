#include "config/injector_sizing.h"

#include <cmath>

namespace zentaq {

namespace {

constexpr double msPerMinute = 60'000;
constexpr double alcoholFactor = 2.2;

/// What a boosted engine takes more, by the rating of its sensor in bar.
double boostShare(double mapBar) {
    if (mapBar >= 3.5) return 0.1;
    if (mapBar > 2.5) return 0.075;
    // kept: a rating of exactly 2.5 adds nothing.
    if (mapBar > 1.5 && mapBar < 2.5) return 0.05;
    return 0;
}

/// lb/hr of fuel for each horse power.
double fuelShare(const SizingInput& input) {
    constexpr double raceShare = 0.55;
    const double base = input.raceCam ? raceShare : 0.4 + 0.0125 * input.cylinders;
    return base + boostShare(input.mapBar);
}

}  // namespace

std::optional<InjectorSizing> Calculate_FLOW(const SizingInput& input) {
    if (input.horsePower == 0) return {};
    InjectorSizing sizing;
    sizing.InjectorFlowNeed = fuelShare(input) * input.horsePower / input.injectors;
    if (input.alcohol) sizing.InjectorFlowNeed *= alcoholFactor;
    const double injectionsATurn = input.phdSeq == 0 ? input.cylinders / 2 : 1;
    sizing.InjectionPeriod = (msPerMinute / input.revLimit) / injectionsATurn;
    sizing.InjectorFlow =
        sizing.InjectorFlowNeed * sizing.InjectionPeriod / (sizing.InjectionPeriod - injectorDeadTimeMs);
    const bool divided = std::isfinite(sizing.InjectorFlowNeed) && std::isfinite(sizing.InjectionPeriod) &&
                         std::isfinite(sizing.InjectorFlow);
    return divided ? std::optional(sizing) : std::nullopt;
}

std::optional<double> Calculate_UAP(const SizingInput& input, const InjectorSizing& sizing) {
    if (sizing.InjectorFlow == 0 || sizing.InjectorFlowNeed == 0) return {};
    const double width = sizing.InjectionPeriod * sizing.InjectorFlowNeed / sizing.InjectorFlow;
    const double pulse = width * input.mapBar / (1 + input.maxBoost);
    const double shown = input.phdSeq == 0 ? 2 * pulse + injectorDeadTimeMs : pulse;
    return std::isfinite(shown) ? std::optional(shown) : std::nullopt;
}

}  // namespace zentaq
