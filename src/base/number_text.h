// Numbers to text and back, in the forms that users and files see.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace zentaq {

/// The plain decimal form of a 32-bit value: up to 7 significant digits, no trailing zeros,
/// "0.5" with its leading zero, "1E+20" style only from 1E+07 on, where the digits end, and below 1E-7.
std::string numberText(float value);

/// The plain decimal form of a 64-bit value: up to 15 significant digits, "1E+20" style from 1E+15 on.
std::string numberText(double value);
std::string numberText(int value);
/// "1 line", "3 lines".
std::string many(std::int64_t count, std::string_view one, std::string_view more);

/// Formats by a pattern of '0' (digit always shown), '#' (digit shown if needed) and one '.'.
/// "##.0" of 0.5 gives ".5", "#0.00" gives "0.50", "000000" of 42 gives "000042".
/// Ties go away from zero, as users of such patterns expect. A value that is no number gives its plain text.
std::string formatNumber(double value, std::string_view pattern);

/// Whether a text, blanks at both ends aside, is a number: sign, digits, one decimal point or
/// one decimal comma, exponent.
bool isNumeric(std::string_view text);

/// The number that a text holds, or nothing. A single comma is read as a decimal comma.
std::optional<double> parseNumber(std::string_view text);

/// parseNumber, throwing TypeMismatch on no number.
double numberOf(std::string_view text);
/// What the decimal form of a 32-bit value names: a user means 0.05295, not the float a hair below it.
double plainNumber(float value);

/// Upper-case hexadecimal text of a 32-bit value: no padding; negative numbers as two's complement of 16 bits
/// where they fit, else of 32 bits.
std::string hexText(int value);

}  // namespace zentaq
