#include "config/chart.h"

#include "base/nice_step.h"
#include "base/number_text.h"

namespace zentaq {

namespace {

/// What lies beside a mark by the error of a division stands on it.
constexpr double hair = 1e-6;

}  // namespace

ChartScale chartScale(double low, double high, bool rounded, double marks, const std::string& zero) {
    ChartScale scale;
    const bool flat = !(high > low);
    const double step = flat ? niceStep(std::fmax(std::fabs(low), 1.0), 1) : niceStep(high - low, marks);
    scale.low = low;
    scale.high = high;
    if (rounded || flat) {
        scale.low = std::floor(low / step + hair) * step - (flat ? step : 0);
        scale.high = std::ceil(high / step - hair) * step + (flat ? step : 0);
    }
    const double first = std::ceil(scale.low / step - hair);
    const double last = std::floor(scale.high / step + hair);
    for (double at = first; at <= last; ++at) {
        const double value = at * step;
        scale.ticks.push_back({value, at == 0 ? zero : formatNumber(value, "#.0")});
    }
    return scale;
}

}  // namespace zentaq
