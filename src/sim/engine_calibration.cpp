#include "sim/engine_calibration.h"

#include <algorithm>

#include "base/battery_input.h"
#include "base/errors.h"
#include "sim/map_sensor.h"
#include "sim/plain_engine.h"

namespace zentaq::sim {

namespace {

constexpr double countsPerVolt = 204.6;
constexpr double countsPerVolt8 = 51;
constexpr double gainPerVoltPerKpa = 20.46 * 4096;
constexpr double perDegree = 4.25;
constexpr double perPercent = 2.55;
constexpr int none = -1;

/// Where a kind has what differs between kinds; the figures of `Common` stand at the same bytes in all.
struct Places {
    std::string_view firmwarePrefix;
    int speedAxis;
    int loadAxis;
    int sizes;  ///< columns, then rows
    int gainWord;
    int advance;
    int fuel;
    int staging;
    int mixture;
    double batteryTop;  ///< volts where the battery curve ends
};

constexpr double batteryTopOrbA = batteryinput::top(batteryinput::voltsPerCountOrbA);
constexpr double batteryTop = batteryinput::top(batteryinput::voltsPerCount);
constexpr Places usualPlaces{"", 592, 624, 590, 262, 656, 912, 1168, 1424, batteryTop};
constexpr Places otherPlaces[] = {
    {"ZQA", 592, 624, 590, 262, 656, 912, 1168, 1424, batteryTopOrbA},
    // no staged injection, so the tables behind it move up
    {"ZQD", 592, 624, 590, 262, 656, 912, none, 1168, batteryTop},
    // ignition only
    {"ZPK", 192, 224, none, 86, 256, none, none, none, batteryTop},
};

const Places& placesOf(std::string_view firmwarePrefix) {
    for (const Places& places : otherPlaces) {
        if (places.firmwarePrefix == firmwarePrefix) return places;
    }
    return usualPlaces;
}

class Memory {
 public:
    explicit Memory(std::span<const std::uint8_t> bytes) : bytes_(bytes) {}

    bool reaches(int end) const { return end <= std::ssize(bytes_); }
    double byte(int at) const {
        if (at < 0 || !reaches(at + 1)) throw BoundsError("No such byte of the memory");
        return bytes_[static_cast<std::size_t>(at)];
    }
    double word(int at) const { return byte(at) * 256 + byte(at + 1); }
    double signedByte(int at) const { return byte(at) < 128 ? byte(at) : byte(at) - 256; }
    bool bit(int at, int number) const { return (static_cast<unsigned>(byte(at)) >> number & 1u) != 0; }
    double celsius(int at) const { return byte(at) * 190 / 255 - 40; }

    template <std::size_t count, typename Value>
    void fill(std::array<double, count>& values, int first, Value value, int step = 1) const {
        for (std::size_t i = 0; i < count; ++i) values[i] = value(*this, first + static_cast<int>(i) * step);
    }

 private:
    std::span<const std::uint8_t> bytes_;
};

bool sensible(double value, double least, double most) {
    return value >= least && value <= most;
}

double sensibleOr(double plain, double value, double least, double most) {
    return sensible(value, least, most) ? value : plain;
}

// kept: a small negative word loses its sign in the high byte, as programs have always written it: -112 comes
// as 0, 144. A zero of more than 0.62 V is therefore taken for a negative one; no sensor in use has that.
double zeroVolts(const Memory& memory, int at) {
    const double word = memory.word(at);
    const double low = memory.byte(at + 1);
    const bool signLost = word >= 128 && word < 256;
    const bool negative = word >= 32768;
    if (signLost) return (word - 256) / countsPerVolt;
    if (negative) return (word - 65536 - (low > 0 ? 256 : 0)) / countsPerVolt;
    return word / countsPerVolt;
}

void readSensor(const Memory& memory, const Places& places, EngineCalibration& into) {
    const double gain = memory.word(places.gainWord) / gainPerVoltPerKpa;
    const double zero = zeroVolts(memory, places.gainWord + 2);
    constexpr double leastGain = 0.0025;
    constexpr double mostGain = 0.12;
    if (!sensible(gain, leastGain, mostGain) || !sensible(zero, -5, 3)) return;
    into.voltsPerKpa = gain;
    into.voltsAtZero = zero;
}

std::size_t sizeOf(const Memory& memory, int at) {
    constexpr double fewest = 8;
    if (at == none || !sensible(memory.byte(at), fewest, tableSide)) return tableSide;
    return static_cast<std::size_t>(memory.byte(at));
}

TableAxis readAxis(const Memory& memory, int at, std::size_t count) {
    TableAxis axis;
    axis.count = count;
    memory.fill(
        axis.stops, at, [](const Memory& from, int i) { return from.word(i); }, 2);
    return axis;
}

bool rises(const TableAxis& axis, double most) {
    for (std::size_t i = 1; i < axis.count; ++i) {
        if (axis.stops[i] <= axis.stops[i - 1]) return false;
    }
    return axis.stops[axis.count - 1] <= most;
}

struct Axes {
    TableAxis speed;
    TableAxis load;
};

Axes readAxes(const Memory& memory, const Places& places) {
    const int rows = places.sizes == none ? none : places.sizes + 1;
    return {readAxis(memory, places.speedAxis, sizeOf(memory, places.sizes)),
            readAxis(memory, places.loadAxis, sizeOf(memory, rows))};
}

bool usable(const Axes& axes) {
    constexpr double mostRpm = 20000;
    constexpr double mostCounts = 1100;  // a stop a little beyond 5 volts does no harm
    return rises(axes.speed, mostRpm) && rises(axes.load, mostCounts);
}

// The figures that stand at the same bytes in every kind.
void readIgnition(const Memory& memory, EngineCalibration& into) {
    into.initialAdvance = memory.byte(67) / perDegree;
    memory.fill(into.split, 68, [](const Memory& from, int i) { return from.byte(i) / perDegree; });
    into.revLimit = sensibleOr(into.revLimit, memory.word(58), 1000, 20000);
    into.revHysteresis = memory.byte(64);
    into.throttleClosedVolts = memory.byte(44) / countsPerVolt8;
    into.knockControl = memory.bit(0, 2);
    into.knockThreshold = memory.byte(34) / perPercent;
    into.knockAttack = memory.byte(35) / 8.5;
    into.knockDecay = memory.byte(36) / 8.5;
    into.knockMost = memory.byte(37) / 8.5;
    into.knockHighestRpm = memory.byte(38) * 51;
}

void readPulses(const Memory& memory, const Places& places, EngineCalibration& into) {
    into.fullPulseMs = sensibleOr(into.fullPulseMs, memory.word(148) / 1000, 0.5, 60);
    into.injectorOffsetMs = memory.signedByte(150) / 8;
    into.shortestPulseMs = memory.byte(151) / 50;
    into.batteryMs.last = places.batteryTop;
    memory.fill(into.batteryMs.values, 237,
                [](const Memory& from, int i) { return (from.byte(i) * 8 - 1000) / 1000; });
    memory.fill(into.warmUpPercent.values, 158, [](const Memory& from, int i) { return from.byte(i); });
    memory.fill(into.airPercent.values, 178, [](const Memory& from, int i) { return from.byte(i) - 50; });
    memory.fill(into.coolantAdvance.values, 84,
                [](const Memory& from, int i) { return from.byte(i) / perDegree; });
    memory.fill(into.airAdvance.values, 104,
                [](const Memory& from, int i) { return from.byte(i) / perDegree - 30; });
}

void readEnrichments(const Memory& memory, EngineCalibration& into) {
    into.startColdPercent = memory.byte(152);
    into.startWarmPercent = memory.byte(153);
    into.afterStartColdPercent = memory.byte(156);
    into.afterStartWarmPercent = memory.byte(157);
    into.throttleThreshold = memory.byte(198);
    into.pressureThreshold = memory.byte(199);
    into.throttleEnrichment = memory.byte(200);
    into.coldEnrichment = memory.byte(201);
    into.enrichmentSeconds = memory.byte(202) / 16;
    into.pressureEnrichment = memory.byte(203);
    into.overrunCut = memory.bit(0, 1);
    into.overrunCutRpm = memory.byte(208) * 16;
    into.overrunReturnRpm = memory.byte(209) * 16;
    into.overrunCutCounts = memory.byte(210);
    memory.fill(
        into.blendRpm, 212, [](const Memory& from, int i) { return from.word(i); }, 2);
    memory.fill(into.blendPercent, 228, [](const Memory& from, int i) { return from.byte(i); });
}

void readClosedLoop(const Memory& memory, EngineCalibration& into) {
    into.egoSlowness = sensibleOr(into.egoSlowness, memory.byte(275), 1, 64);
    into.egoLimitPercent = std::min(50.0, memory.byte(278));
    into.egoHighestRpm = memory.byte(279) * 64;
    into.egoHighestCounts = memory.byte(280);
    into.egoColdestC = memory.celsius(281);
    into.egoDelaySeconds = memory.byte(53);
    std::array<double, 10> volts{};
    memory.fill(volts, 293, [](const Memory& from, int i) { return from.byte(i) / countsPerVolt8; });
    // A sensor's curve that does not rise is no curve.
    if (!std::is_sorted(volts.begin(), volts.end()) || volts.front() == volts.back()) return;
    into.egoVolts = volts;
    memory.fill(into.egoMixture, 283, [](const Memory& from, int i) { return from.byte(i) / 255 + 0.5; });
}

void readIdle(const Memory& memory, EngineCalibration& into) {
    std::array<double, 3> celsius{};
    memory.fill(celsius, 310, [](const Memory& from, int i) { return from.celsius(i); });
    if (!std::is_sorted(celsius.begin(), celsius.end())) return;
    into.idleControl = memory.bit(1, 1);
    into.idleC = celsius;
    memory.fill(into.idleRpm, 313, [](const Memory& from, int i) { return from.byte(i) * 16; });
    if (memory.byte(316) < memory.byte(317)) {
        into.idleLeastDuty = memory.byte(316);
        into.idleMostDuty = memory.byte(317);
    }
    into.idleRetard = memory.byte(318) / perDegree;
    into.idleAdvance = memory.byte(319) / perDegree;
}

void readTables(const Memory& memory, const Places& places, EngineCalibration& into) {
    memory.fill(into.advance.cells, places.advance,
                [](const Memory& from, int i) { return from.byte(i) / perDegree; });
    if (places.fuel == none) return;
    memory.fill(into.fuel.cells, places.fuel, [](const Memory& from, int i) { return from.byte(i) - 50; });
    memory.fill(into.mixture.cells, places.mixture,
                [](const Memory& from, int i) { return from.byte(i) / 255 + 0.5; });
    into.staging = {};
    if (places.staging == none) return;
    memory.fill(into.staging.cells, places.staging,
                [](const Memory& from, int i) { return std::min(100.0, from.byte(i)); });
}

// What a new calibration holds (data/seeds/defaults.tsv), but for a closed loop that begins earlier and a
// knock control that hears more: a unit without a calibration is there to be looked at.
EngineCalibration makePlain() {
    EngineCalibration plain;
    plain.voltsPerKpa = mapScaler;
    plain.voltsAtZero = mapOffset;
    for (std::size_t i = 0; i < tableSide; ++i) {
        plain.speedAxis.stops[i] = 500 * (static_cast<double>(i) + 1);
        plain.loadAxis.stops[i] = mapSensorVolts(14 + 6 * static_cast<double>(i)) * countsPerVolt;
    }
    for (std::size_t i = 0; i < plain.fuel.cells.size(); ++i) {
        const double rpm = plain.speedAxis.stops[i % tableSide];
        const double kpa = 14 + 6 * static_cast<double>(i / tableSide);
        plain.advance.cells[i] = plainAdvance(rpm, kpa);
        plain.fuel.cells[i] = 100 * (plainFuelFactor(rpm, kpa) - 1);
        plain.mixture.cells[i] = plainMixture(rpm, kpa);
        plain.staging.cells[i] = plainStaging(rpm, kpa);
    }
    plain.fullPulseMs = 8;
    plain.injectorOffsetMs = 1;
    plain.shortestPulseMs = 1.2;
    plain.batteryMs = {
        {1, 1, 1, 1, 1, 1, 1, 1, 1, 0.88, 0.65, 0.45, 0.3, 0.18, 0.08, 0, 0, -0.06, -0.11, -0.15},
        0,
        batteryTopOrbA};
    plain.warmUpPercent = {{110, 95, 80, 67, 55, 45, 36, 28, 20, 13, 7, 2, 0, 0, 0, 0, 0, 0, 3, 6}, -40, 150};
    plain.airPercent = {
        {26, 21, 16, 11, 7, 4, 0, -3, -6, -9, -12, -15, -17, -19, -21, -23, -25, -27, -29, -31}, -40, 150};
    plain.coolantAdvance = {{8, 8, 7, 7, 6, 5, 4, 3, 2, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, -40, 150};
    plain.airAdvance = {
        {0, 0, 0, 0, 0, 0, 0, 0, 0, -1, -2, -3, -4, -5, -6, -8, -10, -10, -10, -10}, -40, 150};
    plain.split.fill(3);
    plain.initialAdvance = 10;
    plain.startColdPercent = 100;
    plain.startWarmPercent = 40;
    plain.afterStartColdPercent = 60;
    plain.afterStartWarmPercent = 20;
    plain.throttleThreshold = 4;  // 1.5 V/s
    plain.pressureThreshold = 33;
    plain.throttleEnrichment = 40;
    plain.coldEnrichment = 25;
    plain.enrichmentSeconds = 0.5;
    plain.pressureEnrichment = 50;
    plain.overrunCut = true;
    plain.overrunCutRpm = 2200;
    plain.overrunReturnRpm = 1600;
    plain.overrunCutCounts = mapSensorVolts(30) * countsPerVolt8;
    plain.throttleClosedVolts = 0.5;
    plain.revLimit = 7000;
    plain.revHysteresis = 100;
    plain.egoLimitPercent = 15;
    plain.egoHighestRpm = 4500;
    plain.egoHighestCounts = mapSensorVolts(85) * countsPerVolt8;
    plain.egoColdestC = 30;
    plain.egoDelaySeconds = 5;
    plain.egoVolts = {0, 0.45, 0.65, 1.6, 2.5, 4, 4.2, 4.62, 4.8, 5};
    constexpr std::array<double, 10> ratios = {22.4, 15.89, 14.9, 14.72, 14.64, 14.3, 13.8, 12.6, 11.2, 10};
    std::transform(ratios.begin(), ratios.end(), plain.egoMixture.begin(),
                   [](double r) { return 14.64 / r; });
    plain.knockControl = true;
    plain.knockThreshold = 25;
    plain.knockAttack = 2;
    plain.knockDecay = 0.5;
    plain.knockMost = 8;
    plain.knockHighestRpm = 6000;
    plain.idleC = {0, 40, 75};
    plain.idleRpm = {850, 850, 850};
    plain.blendRpm = {500, 1000, 1500, 2000, 2500, 3000, 4000, 5000};
    return plain;
}

}  // namespace

double TableAxis::position(double value) const {
    if (!(value > stops[0])) return 0;
    for (std::size_t i = 1; i < count; ++i) {
        if (value >= stops[i]) continue;
        return static_cast<double>(i) - (stops[i] - value) / (stops[i] - stops[i - 1]);
    }
    return static_cast<double>(count - 1);
}

double EngineTable::at(double column, double row) const {
    constexpr double last = tableSide - 1;
    const double x = std::clamp(column, 0.0, last);
    const double y = std::clamp(row, 0.0, last);
    const auto left = static_cast<std::size_t>(x);
    const auto low = static_cast<std::size_t>(y);
    const std::size_t right = std::min(left + 1, tableSide - 1);
    const std::size_t high = std::min(low + 1, tableSide - 1);
    const auto along = [&](std::size_t line) {
        const double share = x - static_cast<double>(left);
        return cells[line * tableSide + left] * (1 - share) + cells[line * tableSide + right] * share;
    };
    const double share = y - static_cast<double>(low);
    return along(low) * (1 - share) + along(high) * share;
}

template <std::size_t count>
double EvenCurve<count>::at(double x) const {
    const double place = std::clamp((x - first) / (last - first), 0.0, 1.0) * (count - 1);
    const auto left = static_cast<std::size_t>(place);
    const std::size_t right = std::min(left + 1, count - 1);
    const double share = place - static_cast<double>(left);
    return values[left] * (1 - share) + values[right] * share;
}
template struct EvenCurve<curveSteps>;

double EngineCalibration::kpaOf(double counts) const {
    return (counts / countsPerVolt - voltsAtZero) / voltsPerKpa;
}

const EngineCalibration& plainCalibration() {
    static const EngineCalibration plain = makePlain();
    return plain;
}

bool hasEngineCalibration(std::string_view firmwarePrefix, std::span<const std::uint8_t> bytes) {
    const Places& places = placesOf(firmwarePrefix);
    const Memory memory(bytes);
    return memory.reaches(places.loadAxis + 2 * static_cast<int>(tableSide)) &&
           usable(readAxes(memory, places));
}

EngineCalibration readEngineCalibration(std::string_view firmwarePrefix,
                                        std::span<const std::uint8_t> bytes) {
    EngineCalibration calibration = plainCalibration();
    if (!hasEngineCalibration(firmwarePrefix, bytes)) return calibration;
    const Places& places = placesOf(firmwarePrefix);
    const Memory memory(bytes);
    const Axes axes = readAxes(memory, places);
    calibration.fromMemory = true;
    calibration.speedAxis = axes.speed;
    calibration.loadAxis = axes.load;
    readSensor(memory, places, calibration);
    readTables(memory, places, calibration);
    readIgnition(memory, calibration);
    if (places.fuel == none) return calibration;
    readPulses(memory, places, calibration);
    readEnrichments(memory, calibration);
    readClosedLoop(memory, calibration);
    calibration.flowSensor = memory.bit(1, 0);
    readIdle(memory, calibration);
    return calibration;
}

}  // namespace zentaq::sim
