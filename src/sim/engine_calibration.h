// What an engine does by a unit's memory: axes, tables and figures read out of the raw bytes, in a tuner's
// units. The engine model sees the memory only through this.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

namespace zentaq::sim {

inline constexpr std::size_t tableSide = 16;

/// Up to 16 rising stop points.
struct TableAxis {
    std::array<double, tableSide> stops{};
    std::size_t count = tableSide;  ///< 2 to 16

    /// Where a value lies, from 0 to count - 1; held at the ends.
    double position(double value) const;
};

/// 16 rows of load by 16 columns of speed; a cell is row * 16 + column.
struct EngineTable {
    std::array<double, tableSide * tableSide> cells{};

    double at(double column, double row) const;
};

/// Evenly spaced values over a range; held at the ends.
template <std::size_t count>
struct EvenCurve {
    std::array<double, count> values{};
    double first = 0;
    double last = 1;

    double at(double x) const;
};

inline constexpr std::size_t curveSteps = 20;
using TemperatureCurve = EvenCurve<curveSteps>;  ///< -40 to 150 Celsius

struct EngineCalibration {
    bool fromMemory = false;  ///< not the plain one

    // The sensor that the memory describes: volts = voltsPerKpa * kPa + voltsAtZero.
    double voltsPerKpa = 0;
    double voltsAtZero = 0;

    bool flowSensor = false;  ///< the load input is a flow sensor, and wide frames tell it in finer steps

    TableAxis speedAxis;  ///< rpm
    TableAxis loadAxis;   ///< counts of the pressure input, 204.6 a volt
    EngineTable advance;  ///< degrees
    EngineTable fuel;     ///< percent around the pulse that pressure alone gives
    EngineTable staging;  ///< percent
    EngineTable mixture;  ///< target, fuel per air as a multiple of the exact one

    double fullPulseMs = 0;  ///< at 5 volts of the pressure input, without correction
    double injectorOffsetMs = 0;
    double shortestPulseMs = 0;
    EvenCurve<curveSteps> batteryMs;  ///< from 0 to the top of the battery input
    TemperatureCurve warmUpPercent;
    TemperatureCurve airPercent;
    TemperatureCurve coolantAdvance;
    TemperatureCurve airAdvance;
    std::array<double, tableSide> split{};  ///< degrees over the speed axis
    double initialAdvance = 0;

    double startColdPercent = 0;
    double startWarmPercent = 0;
    double afterStartColdPercent = 0;
    double afterStartWarmPercent = 0;

    double throttleThreshold = 0;   ///< raw, 5 a volt per second above 0.75
    double pressureThreshold = 0;   ///< raw, as the frame tells the pressure's rise
    double throttleEnrichment = 0;  ///< percent, at a throttle that opens fast
    double pressureEnrichment = 0;
    double coldEnrichment = 0;
    double enrichmentSeconds = 0;

    bool overrunCut = false;
    double overrunCutRpm = 0;
    double overrunReturnRpm = 0;
    double overrunCutCounts = 0;  ///< of the 8-bit pressure input; the cut is only below
    double throttleClosedVolts = 0;

    double revLimit = 0;
    double revHysteresis = 0;

    double egoLimitPercent = 0;
    double egoHighestRpm = 0;
    double egoHighestCounts = 0;  ///< of the 8-bit pressure input
    double egoColdestC = 0;
    double egoDelaySeconds = 0;
    double egoSlowness = 8;  ///< 2 to 64
    std::array<double, 10> egoVolts{};
    std::array<double, 10> egoMixture{};

    bool knockControl = false;
    double knockThreshold = 0;  ///< percent
    double knockAttack = 0;     ///< degrees an event
    double knockDecay = 0;
    double knockMost = 0;
    double knockHighestRpm = 0;

    bool idleControl = false;
    std::array<double, 3> idleC{};
    std::array<double, 3> idleRpm{};
    double idleLeastDuty = 1;  ///< raw, where the idle motor is shut
    double idleMostDuty = 255;
    double idleRetard = 0;
    double idleAdvance = 0;

    std::array<double, 8> blendRpm{};
    std::array<double, 8> blendPercent{};

    double sensorVolts(double kpa) const { return voltsPerKpa * kpa + voltsAtZero; }
    double kpaOf(double counts) const;
};

/// What a unit without a usable memory runs by.
const EngineCalibration& plainCalibration();

/// Whether a memory holds a calibration that an engine can run by: both axes rise within what a unit can
/// measure.
bool hasEngineCalibration(std::string_view firmwarePrefix, std::span<const std::uint8_t> memory);

/// The calibration in a memory of the kind with this prefix of its firmware, such as "ZQA". Plain values
/// where the memory is senseless: for everything when the axes do not rise, else one by one.
EngineCalibration readEngineCalibration(std::string_view firmwarePrefix,
                                        std::span<const std::uint8_t> memory);

}  // namespace zentaq::sim
