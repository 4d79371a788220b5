// The three ways in which units have told their serial number over the years.
// What a reply carries is fixed by the number and the format alone.
#pragma once

#include <cstdint>

#include "sim/frame_layout.h"

namespace zentaq::sim {

enum class SerialFormat {
    Current,  ///< head FA A5 55, four bytes, checksum
    Octal,    ///< head FA A5 54, four bytes whose octal digits read as the number, checksum
    Old       ///< no head: four bytes whose octal digits read as the number, then "AX"
};

/// The reply to E. Throws BoundsError where octal digits are asked of a number with an 8 or a 9 in it.
Bytes serialReplyOf(SerialFormat format, std::uint32_t serial);

}  // namespace zentaq::sim
