#include "base/rounding.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "base/errors.h"
#include "base/number_text.h"

namespace zentaq {

double roundHalfEven(double value) {
    return std::nearbyint(value);
}

namespace {

/// Apart from the way of the numbers that fit, which every byte of an image takes.
[[noreturn]] void refuse(double value, double least, double most) {
    throw Overflow("The number " + numberText(value) + " does not fit here: " + numberText(least) + " to " +
                   numberText(most) + " do");
}

template <typename Integer>
Integer rounded(double value) {
    constexpr auto least = static_cast<double>(std::numeric_limits<Integer>::min());
    constexpr auto most = static_cast<double>(std::numeric_limits<Integer>::max());
    const double whole = roundHalfEven(value);
    if (!(whole >= least && whole <= most)) refuse(value, least, most);
    return static_cast<Integer>(whole);
}

}  // namespace

double powerOfTen(int exponent) {
    static constexpr std::array powers = {1.0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const auto at = static_cast<std::size_t>(exponent);
    return at < powers.size() ? powers[at] : std::pow(10.0, exponent);
}

float roundTo(float value, int decimals) {
    return static_cast<float>(roundTo(static_cast<double>(value), decimals));
}

double roundTo(double value, int decimals) {
    // A 32-bit value times a small power of ten is exact in 64 bits, so a tie is a tie of the value itself.
    const double scale = powerOfTen(decimals);
    return roundHalfEven(value * scale) / scale;
}

std::int16_t toInt16(double value) {
    return rounded<std::int16_t>(value);
}

std::int32_t toInt32(double value) {
    return rounded<std::int32_t>(value);
}

std::uint8_t toByte(double value) {
    return rounded<std::uint8_t>(value);
}

double truncate(double value) {
    return std::trunc(value);
}

}  // namespace zentaq
