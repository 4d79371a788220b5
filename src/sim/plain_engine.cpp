#include "sim/plain_engine.h"

#include <algorithm>

#include "sim/engine_curve.h"

namespace zentaq::sim {

namespace {

// The shapes of the tables that a new calibration starts from (data/seeds/defaults.tsv): there a cell is,
// within its rounding, a part by speed plus a part by pressure, or a way between a table of low and one of
// high load.
constexpr Knot fuelBySpeed[] = {{500, -16}, {1000, -12}, {1500, -9}, {2000, -6}, {2500, -3}, {3000, 0},
                                {3500, 2},  {4000, 4},   {4500, 6},  {5000, 6},  {5500, 5},  {6000, 2},
                                {6500, -1}, {7000, -5},  {7500, -8}, {8000, -12}};
constexpr Knot fuelByPressure[] = {{14, -12}, {20, -11}, {26, -9}, {32, -8}, {38, -7}, {44, -6},
                                   {50, -5},  {56, -4},  {62, -3}, {74, -2}, {86, -1}, {104, 0},
                                   {144, 2},  {184, 3},  {224, 4}, {264, 5}, {344, 6}};

constexpr Knot advanceAtLowLoad[] = {{500, 12.5}, {1000, 16.5}, {1500, 24.5}, {2000, 32},
                                     {2500, 35},  {3000, 38},   {3500, 39.5}, {4000, 41.5},
                                     {4500, 43},  {6500, 43.5}, {8000, 44}};
constexpr Knot advanceAtFullLoad[] = {{500, 10},  {1000, 12},   {1500, 15.5}, {2000, 19}, {2500, 22},
                                      {3000, 25}, {3500, 26.5}, {4000, 28.5}, {4500, 30}, {8000, 31}};
constexpr Knot retardByBoost[] = {{104, 0},  {124, 3},  {144, 6},  {164, 9},
                                  {184, 12}, {224, 17}, {264, 22}, {344, 30}};
constexpr double leastAdvanceUnderBoost = 6;

constexpr Knot ratioAtLowLoad[] = {{500, 14},    {1000, 14.2}, {1500, 14.7}, {4000, 14.7},
                                   {4500, 14.4}, {5000, 14.1}, {5500, 13.8}, {6000, 13.7},
                                   {6500, 13.6}, {7000, 13.4}, {7500, 13.3}, {8000, 13.2}};
constexpr Knot ratioAtFullLoad[] = {{500, 13},    {1500, 13},   {2000, 12.9}, {3500, 12.8}, {4500, 12.8},
                                    {5000, 12.7}, {5500, 12.6}, {6500, 12.6}, {7000, 12.5}, {8000, 12.4}};
constexpr Knot leanestUnderBoost[] = {{104, 13},   {124, 12.3}, {144, 12},   {164, 11.8},
                                      {184, 11.6}, {224, 11.4}, {264, 11.2}, {344, 11}};
constexpr double exactRatio = 14.64;  ///< of petrol

}  // namespace

double plainFuelFactor(double rpm, double kpa) {
    return 1 + (interpolate(fuelBySpeed, rpm) + interpolate(fuelByPressure, kpa)) / 100;
}

double plainAdvance(double rpm, double kpa) {
    const double share = std::clamp((kpa - 44) / 60, 0.0, 1.0);
    const double advance =
        between(interpolate(advanceAtLowLoad, rpm), interpolate(advanceAtFullLoad, rpm), share);
    if (kpa <= retardByBoost[0].x) return advance;
    return std::max(leastAdvanceUnderBoost, advance - interpolate(retardByBoost, kpa));
}

double plainMixture(double rpm, double kpa) {
    const double share = std::clamp((kpa - 62) / 30, 0.0, 1.0);
    double ratio = between(interpolate(ratioAtLowLoad, rpm), interpolate(ratioAtFullLoad, rpm), share);
    if (kpa > leanestUnderBoost[0].x) ratio = std::min(ratio, interpolate(leanestUnderBoost, kpa));
    return exactRatio / ratio;
}

double plainStaging(double rpm, double kpa) {
    return 30 * smooth((kpa - 80) / 15) * smooth((rpm - 4000) / 1000);
}

}  // namespace zentaq::sim
