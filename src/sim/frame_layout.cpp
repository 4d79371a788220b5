#include "sim/frame_layout.h"

#include <algorithm>
#include <numeric>

#include "base/rounding.h"

namespace zentaq::sim {

namespace {

constexpr double fuelBaseRatio = 14.7;

unsigned rawValue(double value, double highest) {
    return static_cast<unsigned>(std::clamp(roundHalfEven(value), 0.0, highest));
}

void place(Bytes& reply, const FrameField& field, double value) {
    const double number = field.law == Law::FuelRatio ? fuelBaseRatio / value : value;
    const double highest = field.width == 2 ? 65535 : 255;
    const unsigned raw = rawValue(number * field.scale + field.offset, highest);
    const auto at = static_cast<std::size_t>(field.byte);
    if (field.width == 2) {
        reply.at(at) = static_cast<std::uint8_t>(raw >> 8);
        reply.at(at + 1) = static_cast<std::uint8_t>(raw & 0xFF);
    } else {
        reply.at(at) = static_cast<std::uint8_t>(raw);
    }
}

}  // namespace

Bytes headedReply(int length) {
    Bytes reply(static_cast<std::size_t>(length));
    reply.at(0) = 0xFA;
    reply.at(1) = 0xA5;
    reply.at(2) = 0x55;
    return reply;
}

void seal(Bytes& reply) {
    reply.back() = static_cast<std::uint8_t>(std::accumulate(reply.begin() + 2, reply.end() - 1, 0u) & 0xFFu);
}

Bytes encodeFrame(const FrameLayout& layout, const LiveValues& values) {
    Bytes reply = layout.headed ? headedReply(layout.length) : Bytes(static_cast<std::size_t>(layout.length));
    for (const FrameField& field : layout.fields) place(reply, field, values.*field.value);
    for (const FrameGpio& gpio : layout.gpio) {
        reply.at(static_cast<std::size_t>(gpio.byte)) =
            static_cast<std::uint8_t>(rawValue(values.gpio.at(static_cast<std::size_t>(gpio.index)), 255));
    }
    if (layout.headed) seal(reply);
    return reply;
}

}  // namespace zentaq::sim
