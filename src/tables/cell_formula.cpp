#include "tables/cell_formula.h"

#include <cmath>
#include <string>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"

namespace zentaq {

namespace {

constexpr std::string_view forms =
    "=12 sets, +3 and -2 add, *1.05 and /2 multiply, +5% and -5% change by a share";

/// Digits alone: a sign behind the operator would leave it open which of the two was meant.
double operandOf(std::string_view digits, std::string_view whole) {
    const bool plain = !digits.empty() && digits.find_first_of("+ \t") == std::string_view::npos;
    const auto number = plain ? parseNumber(digits) : std::nullopt;
    if (!number || !std::isfinite(*number))
        throw Failure(shownBriefly(whole) + " is not understood: " + std::string(forms));
    return *number;
}

}  // namespace

CellFormula CellFormula::of(std::string_view text) {
    constexpr std::string_view operators = "=+-*/";
    const std::string_view whole = trimmed(text);
    if (whole.empty() || operators.find(whole.front()) == std::string_view::npos)
        throw Failure(
            (whole.empty() ? "Nothing is entered" : shownBriefly(whole) + " begins with no =, +, -, * or /") +
            ": " + std::string(forms));
    const char sign = whole.front();
    std::string_view digits = trimmed(whole.substr(1));
    const bool percent = digits.ends_with('%');
    if (percent) digits = trimmed(digits.substr(0, digits.size() - 1));
    const bool signedOperand = digits.starts_with('-') && sign != '=';
    const double operand = operandOf(signedOperand ? std::string_view() : digits, whole);
    if (percent && sign != '+' && sign != '-')
        throw Failure(shownBriefly(whole) + ": a share is added or taken away, as +5% or -5%");
    if (percent) return {Kind::Multiply, 1 + (sign == '+' ? operand : -operand) / 100};
    switch (sign) {
        case '=':
            return {Kind::Set, operand};
        case '*':
            return {Kind::Multiply, operand};
        case '/':
            if (operand == 0) throw Failure("Nothing can be divided by 0");
            return {Kind::Divide, operand};
        default:
            return {Kind::Add, sign == '+' ? operand : -operand};
    }
}

float CellFormula::applied(float value) const {
    const double cell = plainNumber(value);
    switch (kind_) {
        case Kind::Set:
            return static_cast<float>(operand_);
        case Kind::Add:
            return static_cast<float>(cell + operand_);
        case Kind::Multiply:
            return static_cast<float>(cell * operand_);
        case Kind::Divide:
            return static_cast<float>(cell / operand_);
    }
    return value;
}

}  // namespace zentaq
