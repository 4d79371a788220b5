// How a computed number becomes a whole count of the unit.
// Every image byte, record byte and trim goes through here.
#pragma once

#include "base/rounding.h"

namespace zentaq {

/// Takes the number as a 32-bit float and rounds it half to even, so that 50 * 2.55 is the tie 127.5 and
/// gives 128, though in 64 bits it lies a hair below. Throws Overflow outside 16 bits and for NaN.
inline int toCount(double value) {
    return toInt16(static_cast<double>(static_cast<float>(value)));
}

}  // namespace zentaq
