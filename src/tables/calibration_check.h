// What a careful colleague would ask about before a calibration is programmed: what is legal, and yet is
// likely not meant. Nothing is changed, and nothing is refused for it.
#pragma once

#include <string>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

struct Doubt {
    std::string member;  ///< "VE", "RPMTBL"
    std::string value;   ///< what it holds, with its place: "cell 3,12: 14.7"
    std::string why;
    std::string advice;

    /// On one line, parted by tabs.
    std::string line() const;
    bool operator==(const Doubt&) const = default;
};

/// In the order of the pages; empty where nothing is in doubt. What cannot be read is passed over.
std::vector<Doubt> doubtsOf(Unit& unit);

}  // namespace zentaq
