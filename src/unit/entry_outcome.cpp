#include "unit/entry_outcome.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "base/warning_texts.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

Refusal outOfRange(float value, const std::string& text, std::string limits) {
    return {
        .warning = codes::OutOfRange, .text = text, .entry = numberText(value), .limits = std::move(limits)};
}

Refusal outOfRange(float value, const Limits& limits) {
    return outOfRange(value, limits.text, numberText(limits.minimum) + " to " + numberText(limits.maximum));
}

bool isStep(float value, double step) {
    // A 32-bit entry is off its decimal form by some millionths of a step, a wrong entry by a tenth at least.
    constexpr double slack = 1e-3;
    const double steps = static_cast<double>(value) / step;
    return std::abs(steps - roundHalfEven(steps)) <= slack;
}

}  // namespace

std::string Refusal::line() const {
    return warningLine(warning, text);
}

std::string Refusal::brief() const {
    return where.empty() ? reason() : reason() + ", " + where;
}

std::string Refusal::reason() const {
    constexpr std::string_view head = "Invalid Entry: ";
    switch (warning) {
        case codes::OutOfRange:
            return std::string(head) + entry + " -> " + text;
        case codes::BlankEntry:
            return std::string(head) + "blank";
        case codes::NotANumber:
            return std::string(head) + "no number";
        default:
            return line();
    }
}

void noteRefusal(std::vector<Refusal>& refused, const EntryOutcome& outcome, std::string where) {
    if (outcome || outcome.refusal().warning == 0) return;
    refused.push_back(outcome.refusal());
    refused.back().where = std::move(where);
}

// ---- Of a text

EntryOutcome checkFilled(std::string_view text) {
    if (!trimmed(text).empty()) return {};
    return Refusal{.warning = codes::BlankEntry};
}

EntryOutcome checkNumeric(std::string_view text) {
    if (isNumeric(text)) return {};
    return Refusal{.warning = codes::NotANumber, .text = "Retype Data"};
}

EntryOutcome checkTyped(std::string_view text, const Limits& limits) {
    if (auto filled = checkFilled(text); !filled) return filled;
    const auto number = parseNumber(text);
    if (!number) return checkNumeric(text);
    const auto value = static_cast<float>(*number);
    if (!std::isfinite(value)) return outOfRange(value, limits);
    return checkLimits(value, limits);
}

EntryOutcome checkAscending(std::string_view left, std::string_view right) {
    if (numberOf(left) < numberOf(right)) return {};
    return Refusal{.warning = codes::NotAscending,
                   .text = std::string(left) + " > " + std::string(right) + " = FALSE"};
}

// ---- Of a number

EntryOutcome checkWhole(double number) {
    if (number == std::trunc(number)) return {};
    return Refusal{.warning = codes::NotWhole};
}

EntryOutcome checkLimits(float value, const Limits& limits) {
    if (limits.unlimited()) return {};
    // What is no number lies in no range.
    const bool within = value >= limits.minimum && value <= limits.maximum;
    if (!within) return outOfRange(value, limits);
    const bool listed =
        limits.listed.empty() || std::ranges::find(limits.listed, value) != limits.listed.end();
    if (!listed) return outOfRange(value, limits.text, limits.text);
    if (limits.step == 0 || isStep(value, limits.step)) return {};
    const std::string& text = limits.stepText.empty() ? limits.text : limits.stepText;
    return outOfRange(value, text, text);
}

// ---- Of a member

Limits limitsOf(Unit& unit, const Parameter& row, int element, float value) {
    if (const auto* fixed = std::get_if<FixedRange>(&row.range)) {
        return {fixed->minimum, fixed->maximum, std::string(row.rangeText)};
    }
    if (const auto* listed = std::get_if<ListedValues>(&row.range)) {
        const auto& values = listed->values;
        return {values.front(), values.back(), std::string(row.rangeText), values};
    }
    if (const auto* rangeOf = std::get_if<RangeOf>(&row.range)) return (*rangeOf)(unit, element, value);
    return Limits::none();
}

EntryOutcome checkEntry(Unit& unit, const Parameter& row, const Entry& entry, int element) {
    if (entry.isBlank()) return checkFilled({});
    const float value = entry.number();
    return checkLimits(value, limitsOf(unit, row, element, value));
}

}  // namespace zentaq
