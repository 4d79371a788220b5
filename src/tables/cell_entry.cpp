#include "tables/cell_entry.h"

#include "base/number_text.h"
#include "base/text.h"
#include "tables/table_kind.h"

namespace zentaq {

namespace {

constexpr int notANumber = 1000;
constexpr int blank = 1003;

}  // namespace

CellEntry::CellEntry(Unit& unit, std::string_view table, bool absoluteVe)
    : host_(unit.host()), limits_(cellLimits(unit, table, absoluteVe)) {}

std::optional<float> CellEntry::accepted(std::string_view text) {
    const auto number = parseNumber(text);
    if (!number) {
        const bool nothing = trimmed(text).empty();
        refusals_.push_back({.check = nothing ? blank : notANumber, .text = std::string(text)});
        return {};
    }
    const auto value = static_cast<float>(*number);
    return accepts(value) ? std::optional(value) : std::nullopt;
}

bool CellEntry::accepts(float value) {
    if (value >= limits_.minimum && value <= limits_.maximum) return true;
    refusals_.push_back({.value = value});
    return false;
}

void CellEntry::tell() const {
    if (refusals_.empty()) return;
    for (auto further = refusals_.begin() + 1; further != refusals_.end(); ++further)
        host_.sysLog(logLine(*further));
    const Refusal& first = refusals_.front();
    if (first.check != 0) {
        host_.checkInput(first.check, first.text);
    } else {
        host_.checkRange(first.value, limits_.minimum, limits_.maximum, limits_.text);
    }
}

std::string CellEntry::logLine(const Refusal& refusal) const {
    constexpr std::string_view head = "Invalid Entry: ";
    if (refusal.check != 0) return std::string(head) + (refusal.check == blank ? "blank" : "no number");
    return std::string(head) + numberText(refusal.value) + " -> " + limits_.text;
}

}  // namespace zentaq
