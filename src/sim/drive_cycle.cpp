#include "sim/drive_cycle.h"

#include <algorithm>
#include <array>
#include <vector>

#include "sim/engine_curve.h"

namespace zentaq::sim {

namespace {

constexpr double idleRpm = 850;
constexpr double idleKpa = 34;

// The first part of a round on the road, in which everything moves. Each track holds its value at both ends.
constexpr Knot startRpm[] = {{0, 850},   {8, 850},   {9.2, 3400}, {11.5, 850}, {16, 850}, {17.5, 1800},
                             {26, 6500}, {29, 2600}, {41, 2600},  {45, 850},   {48, 850}};
constexpr Knot startThrottle[] = {{0, 0},       {8, 0},     {8.4, 0.6}, {9, 0.6},  {9.3, 0},
                                  {16, 0},      {16.8, 1},  {26, 1},    {26.4, 0}, {28.5, 0},
                                  {29.2, 0.18}, {41, 0.18}, {41.4, 0},  {48, 0}};
constexpr Knot startKpa[] = {{0, 34},  {8, 34},    {8.5, 82}, {9.1, 70},  {9.6, 22},  {11.8, 34},
                             {16, 34}, {16.9, 98}, {26, 97},  {26.6, 20}, {28.6, 22}, {29.4, 48},
                             {41, 48}, {41.6, 22}, {45, 34},  {48, 34}};
constexpr double startSeconds = 48;

/// The rest of a round: speed and load are driven to these, one after the other.
struct Stage {
    double seconds;  ///< to get there
    double rpm;
    double kpa;
};
constexpr Stage road[] = {
    // through the gears in town
    {2, 1300, 55},
    {4, 2400, 62},
    {0.6, 1600, 40},
    {4, 2700, 58},
    {0.6, 1900, 38},
    {5, 3000, 52},
    {6, 2800, 36},
    {3, 1600, 24},
    {2, 850, 34},
    {3, 850, 34},
    // a slow road uphill: from light to full load at every speed
    {2, 1500, 35},
    {12, 1550, 92},
    {2, 2000, 88},
    {12, 2050, 36},
    {2, 2500, 40},
    {12, 2550, 95},
    {2, 3000, 90},
    {12, 3050, 34},
    {2, 3500, 40},
    {12, 3550, 95},
    {2, 4000, 90},
    {12, 4050, 36},
    {2, 4600, 45},
    {10, 4650, 95},
    {2, 5300, 88},
    {10, 5200, 40},
    {3, 3000, 21},
    {4, 1700, 22},
    // overtaking at half and at full load
    {1, 1500, 45},
    {10, 5800, 62},
    {2, 3000, 22},
    {1, 2000, 70},
    {8, 6200, 78},
    {3, 2600, 21},
    {1, 2000, 96},
    {8, 6400, 97},
    {3, 3000, 22},
    // a long cruise, then home
    {3, 2600, 46},
    {8, 2700, 52},
    {6, 2400, 42},
    {4, 1400, 24},
    {2, 850, 34},
    {5, 850, 34}};

/// The throttle that gives about this pressure at this speed: shut at idle and on the overrun.
double throttleFor(double rpm, double kpa) {
    const double load = std::clamp((kpa - idleKpa) / (98 - idleKpa), 0.0, 1.0);
    const double shareOfFlow = 0.25 + 0.75 * std::clamp(rpm / 6000, 0.0, 1.0);
    return load * between(shareOfFlow, 1.0, load * load);
}

class Idle : public DriveCycle {
 public:
    DrivePoint at(double /*seconds*/) const override { return {.rpm = idleRpm, .kpa = idleKpa}; }
    double length() const override { return 60; }
};

class Road : public DriveCycle {
 public:
    Road() {
        double seconds = startSeconds;
        add(seconds, idleRpm, idleKpa);
        for (const Stage& stage : road) add(seconds += stage.seconds, stage.rpm, stage.kpa);
    }
    DrivePoint at(double seconds) const override {
        if (seconds < startSeconds) {
            return {.rpm = glide(startRpm, seconds),
                    .kpa = glide(startKpa, seconds),
                    .throttle = glide(startThrottle, seconds)};
        }
        const double rpm = glide(rpm_, seconds);
        const double kpa = glide(kpa_, seconds);
        return {.rpm = rpm, .kpa = kpa, .throttle = throttleFor(rpm, kpa)};
    }
    double length() const override { return rpm_.back().x; }

 private:
    void add(double seconds, double rpm, double kpa) {
        rpm_.push_back({seconds, rpm});
        kpa_.push_back({seconds, kpa});
    }

    std::vector<Knot> rpm_;
    std::vector<Knot> kpa_;
};

class Dyno : public DriveCycle {
 public:
    DrivePoint at(double seconds) const override {
        const double pullsFrom = holdSeconds * static_cast<double>(speeds * loads.size());
        return seconds < pullsFrom ? held(seconds) : pull(seconds - pullsFrom);
    }
    double length() const override {
        return holdSeconds * static_cast<double>(speeds * loads.size()) + 2 * pullSeconds;
    }

 private:
    static constexpr double holdSeconds = 4;
    static constexpr double changeSeconds = 0.6;
    static constexpr double pullSeconds = 16;
    static constexpr double leastThrottle = 0.03;
    static constexpr std::size_t speeds = 11;
    static constexpr std::array<double, 6> loads = {30, 42, 54, 67, 81, 95};

    struct Pair {
        double rpm;
        double kpa;
    };
    static Pair pairAt(std::size_t index) {
        const std::size_t speed = index / loads.size();
        const std::size_t step = index % loads.size();
        // Up at one speed, down at the next: the load never jumps.
        const std::size_t load = speed % 2 == 0 ? step : loads.size() - 1 - step;
        return {1000 + 500 * static_cast<double>(speed), loads[load]};
    }
    static DrivePoint held(double seconds) {
        const auto index = static_cast<std::size_t>(seconds / holdSeconds);
        const Pair here = pairAt(index);
        const Pair before = index == 0 ? Pair{idleRpm, idleKpa} : pairAt(index - 1);
        const double share = smooth((seconds - holdSeconds * static_cast<double>(index)) / changeSeconds);
        DrivePoint now = point(between(before.rpm, here.rpm, share), between(before.kpa, here.kpa, share));
        // A brake pulls the engine along at no time: a throttle that is shut would cut the fuel.
        now.throttle = std::max(now.throttle, leastThrottle * (index == 0 ? share : 1));
        return now;
    }
    static DrivePoint pull(double seconds) {
        static constexpr Knot rpm[] = {{0, 6000}, {2, 1500}, {3, 1500}, {13, 6500}, {15, 2500}, {16, 1500}};
        static constexpr Knot kpa[] = {{0, 95},  {1.5, 30},  {2, 30},    {3, 97},
                                       {13, 97}, {13.5, 24}, {15.5, 24}, {16, 34}};
        static constexpr Knot secondRpm[] = {{0, 1500}, {3, 1500}, {13, 6500}, {15, 2000}, {16, 850}};
        static constexpr Knot secondKpa[] = {{0, 34},    {2, 34},  {3, 97}, {13, 97},
                                             {13.5, 24}, {15, 24}, {16, 34}};
        if (seconds < pullSeconds) return point(glide(rpm, seconds), glide(kpa, seconds));
        return point(glide(secondRpm, seconds - pullSeconds), glide(secondKpa, seconds - pullSeconds));
    }
    static DrivePoint point(double rpm, double kpa) {
        return {.rpm = rpm, .kpa = kpa, .throttle = throttleFor(rpm, kpa)};
    }
};

}  // namespace

Drive idleDrive() {
    return std::make_shared<Idle>();
}

Drive roadDrive() {
    return std::make_shared<Road>();
}

Drive dynoDrive() {
    return std::make_shared<Dyno>();
}

}  // namespace zentaq::sim
