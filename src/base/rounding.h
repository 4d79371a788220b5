// The one implementation of rounding and of conversions to integers.
#pragma once

#include <cstdint>

namespace zentaq {

/// Nearest whole number, ties to even. NaN and infinities pass through.
double roundHalfEven(double value);

/// Without the time that a general power takes.
double powerOfTen(int exponent);

/// `value` rounded to `decimals` places (0 to 15), ties to even, applied to the value as it is held:
/// 0.125f with 2 places is a tie and gives 0.12; 0.15f with 1 place is none, it lies above 0.15.
float roundTo(float value, int decimals);
double roundTo(double value, int decimals);

/// Rounds half to even. Throws Overflow outside -32768 to 32767 and for NaN.
std::int16_t toInt16(double value);

/// Rounds half to even. Throws Overflow outside the 32-bit range and for NaN.
std::int32_t toInt32(double value);

/// Rounds half to even. Throws Overflow outside 0 to 255 and for NaN.
std::uint8_t toByte(double value);

/// The whole part, toward zero.
double truncate(double value);

}  // namespace zentaq
