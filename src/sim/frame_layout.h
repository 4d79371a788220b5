// Where a unit puts its live values in a reply: one row of a table for each value.
// The encoder reads only these rows; what differs between unit kinds is in the tables.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "sim/engine_model.h"

namespace zentaq::sim {

using Bytes = std::vector<std::uint8_t>;

enum class Law {
    Linear,     ///< raw = value * scale + offset
    FuelRatio,  ///< raw = (14.7 / value) * scale + offset: the unit counts in fuel per air
};

/// One value of a frame. Raw numbers are rounded half to even and clipped to the field's width.
struct FrameField {
    int byte;   ///< index of its first byte in the reply
    int width;  ///< 1, or 2 with the high byte first
    double LiveValues::*value;
    double scale = 1;
    double offset = 0;
    Law law = Law::Linear;
};

/// One raw input or output value of a frame.
struct FrameGpio {
    int byte;
    int index;  ///< into LiveValues::gpio
};

struct FrameLayout {
    int length = 0;
    /// A headed reply begins with FA A5 55 and ends in a checksum byte; the other kind is all data.
    bool headed = true;
    std::span<const FrameField> fields;
    std::span<const FrameGpio> gpio;
};

/// A reply of `length` zero bytes with its head in place.
Bytes headedReply(int length);
/// Sets the last byte to the low 8 bits of the sum of the bytes from index 2 to the last but one.
void seal(Bytes& reply);

Bytes encodeFrame(const FrameLayout& layout, const LiveValues& values);

}  // namespace zentaq::sim
