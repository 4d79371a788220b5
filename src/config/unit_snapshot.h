// All that a Unit object holds of its calibration, kept aside to be put back later.
// The live state of a connected unit, such as its error codes, is no part of it.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "unit/unit.h"

namespace zentaq {

class UnitSnapshot {
 public:
    explicit UnitSnapshot(const Unit& unit);
    /// Puts everything back into an object of the same kind. Nothing is converted and nothing is sent.
    void restore(Unit& unit) const;
    int release() const { return release_; }

 private:
    std::array<float, Unit::cellCount> cells_{};
    std::array<std::uint8_t, 3> control_{};
    std::string binFile_;
    std::string firmWare_;
    std::string serial_;
    int release_;
    int build_;
    int defaultSplit_;
    Unit::Teeth teeth_;
    bool onTheFly_;
};

}  // namespace zentaq
