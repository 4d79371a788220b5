// The step between the marks of a scale.
#pragma once

#include <cmath>

namespace zentaq {

/// 1, 2 or 5 times a power of ten: about `wanted` of them in `range`, which is above 0.
inline double niceStep(double range, double wanted) {
    const double rough = range / wanted;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double step : {1.0, 2.0, 5.0}) {
        if (rough <= step * power) return step * power;
    }
    return 10 * power;
}

}  // namespace zentaq
