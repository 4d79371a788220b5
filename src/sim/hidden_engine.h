// What a simulated engine truly is, which no memory tells: the fuel it needs and the advance at which it
// knocks. Every serial number has an engine of its own, near the plain one, for ever the same.
#pragma once

#include <array>
#include <cstdint>

namespace zentaq::sim {

class HiddenEngine {
 public:
    /// The most that an engine's need differs from the plain engine's, as a share.
    static constexpr double largestDifference = 0.12;

    explicit HiddenEngine(std::uint32_t serial);

    /// The multiple of the pulse that pressure alone gives with which the mixture is that of the plain
    /// engine.
    double fuelFactor(double rpm, double kpa) const;
    /// Degrees of advance above which the engine knocks. Cold air takes more, hot air less.
    double knockLimit(double rpm, double kpa, double airC) const;

 private:
    std::array<double, 5> phases_{};  // 0 to 1
};

}  // namespace zentaq::sim
