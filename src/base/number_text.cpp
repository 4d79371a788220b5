#include "base/number_text.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "base/errors.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"

namespace zentaq {

namespace {

std::string plainText(double value, int significant) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value > 0 ? "Infinity" : "-Infinity";
    if (value == 0) return "0";
    // The digits and the exponent, from the scientific form: "d.ddde±xx".
    std::array<char, 40> scientific{};
    const auto written = std::to_chars(scientific.data(), scientific.data() + scientific.size(),
                                       std::fabs(value), std::chars_format::scientific, significant - 1);
    const std::string_view form(scientific.data(), written.ptr);
    const auto mark = form.find('e');
    std::string digits(form.substr(0, 1));
    digits += form.substr(2, mark - 2);
    while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
    int exponent = 0;
    std::from_chars(form.data() + mark + 2, written.ptr, exponent);
    if (form[mark + 1] == '-') exponent = -exponent;

    std::string text;
    if (exponent >= significant || exponent < -7) {
        text = digits.substr(0, 1);
        if (digits.size() > 1) text += "." + digits.substr(1);
        text += fmt::format("E{}{:02}", exponent < 0 ? '-' : '+', std::abs(exponent));
    } else if (exponent < 0) {
        text = "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits;
    } else {
        const auto whole = static_cast<std::size_t>(exponent) + 1;
        if (digits.size() <= whole) {
            text = digits + std::string(whole - digits.size(), '0');
        } else {
            text = digits.substr(0, whole) + "." + digits.substr(whole);
        }
    }
    return value < 0 ? "-" + text : text;
}

}  // namespace

std::string numberText(float value) {
    return plainText(value, 7);
}

std::string numberText(double value) {
    return plainText(value, 15);
}

std::string numberText(int value) {
    return std::to_string(value);
}

std::string many(std::int64_t count, std::string_view one, std::string_view more) {
    return numberText(static_cast<double>(count)) + " " + std::string(count == 1 ? one : more);
}

std::string formatNumber(double value, std::string_view pattern) {
    if (!std::isfinite(value)) return plainText(value, 15);
    const auto point = pattern.find('.');
    const std::string_view wholePattern = pattern.substr(0, point);
    const std::string_view fractionPattern =
        point == std::string_view::npos ? std::string_view{} : pattern.substr(point + 1);
    const int places = static_cast<int>(fractionPattern.size());

    // Round the 15 digits that name the value, ties away from zero.
    const double scale = powerOfTen(places);
    const double scaled = std::fabs(value) * scale;
    const double guarded = scaled < 1e15 ? std::floor(scaled + 0.5 + scaled * 1e-15) : scaled;
    std::string digits =
        guarded < 1e15 ? std::to_string(static_cast<std::int64_t>(guarded)) : fmt::format("{:.0f}", guarded);
    if (digits.size() < fractionPattern.size() + 1) {
        digits.insert(0, fractionPattern.size() + 1 - digits.size(), '0');
    }
    std::string whole = digits.substr(0, digits.size() - fractionPattern.size());
    std::string fraction = digits.substr(digits.size() - fractionPattern.size());

    std::size_t minimumWhole = 0;
    for (const char c : wholePattern) minimumWhole += c == '0' ? 1 : 0;
    whole.erase(
        0, whole.find_first_not_of('0') == std::string::npos ? whole.size() : whole.find_first_not_of('0'));
    if (whole.size() < minimumWhole) whole.insert(0, minimumWhole - whole.size(), '0');
    while (!fraction.empty() && fraction.back() == '0' && fractionPattern[fraction.size() - 1] == '#') {
        fraction.pop_back();
    }
    std::string text = whole;
    if (point != std::string_view::npos) text += "." + fraction;
    const bool isZero = guarded == 0;
    return value < 0 && !isZero ? "-" + text : text;
}

std::optional<double> parseNumber(std::string_view text) {
    std::string body{trimmed(text)};
    if (const auto comma = body.find(','); comma != std::string::npos) {
        if (body.find('.') != std::string::npos || body.find(',', comma + 1) != std::string::npos) return {};
        body[comma] = '.';
    }
    if (!body.empty() && body.front() == '+') {
        body.erase(0, 1);
        if (body.starts_with('-')) return {};
    }
    if (body.empty()) return {};
    // Words such as "inf" and "nan" are numbers to the library but not to a tuner.
    const char first = body.front() == '-' && body.size() > 1 ? body[1] : body.front();
    if (!((first >= '0' && first <= '9') || first == '.')) return {};
    double value = 0;
    const auto [end, error] = std::from_chars(body.data(), body.data() + body.size(), value);
    if (error != std::errc{} || end != body.data() + body.size()) return {};
    return value;
}

bool isNumeric(std::string_view text) {
    return parseNumber(text).has_value();
}

double numberOf(std::string_view text) {
    const auto value = parseNumber(text);
    if (!value) throw TypeMismatch("\"" + shownBriefly(text) + "\" is not a number");
    return *value;
}

double plainNumber(float value) {
    return numberOf(numberText(value));
}

std::string hexText(int value) {
    if (value < 0 && value >= -32768) return fmt::format("{:X}", static_cast<std::uint16_t>(value));
    return fmt::format("{:X}", static_cast<std::uint32_t>(value));
}

}  // namespace zentaq
