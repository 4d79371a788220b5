#include "calibration/calibration_ranges.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <variant>

#include "base/errors.h"
#include "base/number_text.h"
#include "calibration/calibration_cells.h"
#include "config/basic_figures.h"

namespace zentaq {

namespace {

/// Readers make a value of a cell by arithmetic, so one at the end of its range may come out a hair beyond
/// it.
constexpr float hair = 1e-4F;

/// What the cells of a unit held, and hold again at the end: some readers mend the cell that they read.
class KeptCells {
 public:
    explicit KeptCells(Unit& unit) : unit_(unit) {
        for (int i = 0; i < Unit::cellCount; ++i) cells_.push_back(unit.DirectIndex(i));
    }
    ~KeptCells() {
        for (int i = 0; i < Unit::cellCount; ++i) unit_.AssignDirectIndex(at(i), i);
    }
    KeptCells(const KeptCells&) = delete;
    KeptCells& operator=(const KeptCells&) = delete;
    float at(int cell) const { return cells_[static_cast<std::size_t>(cell)]; }

 private:
    Unit& unit_;
    std::vector<float> cells_;
};

/// Nothing where the reader cannot make sense of the cell: a rating or a size that no unit has.
std::optional<float> valueOf(Unit& unit, const CellPlace& place, int cell) {
    if (place.role != CellRole::Member) return unit.DirectIndex(cell);
    std::optional<float> value;
    skipFailing([&] { value = unit.read(*place.row, place.element); });
    return value;
}

std::optional<Limits> limitsOf(Unit& unit, const CellPlace& place, float value) {
    if (place.role == CellRole::OutputTable) return Unit::outputTableLimits();
    if (place.role != CellRole::Member || place.row->readOnly) return {};
    if (std::holds_alternative<NoRange>(place.row->range)) return fixedFigureLimits(place.row->name);
    std::optional<Limits> limits;
    skipFailing([&] { limits = zentaq::limitsOf(unit, *place.row, place.element, value); });
    return limits;
}

bool isWithin(float value, const Limits& limits) {
    const float slack = hair * std::max({1.0F, std::abs(limits.minimum), std::abs(limits.maximum)});
    // What is no number lies in no range.
    return limits.unlimited() || (value >= limits.minimum - slack && value <= limits.maximum + slack);
}

}  // namespace

std::vector<std::string> valuesOutOfRange(Unit& unit, int count) {
    const CalibrationCells cells(&unit.kind());
    const KeptCells kept(unit);
    std::vector<std::string> lines;
    for (const int cell : cells.order()) {
        if (cell >= count) continue;
        const CellPlace& place = cells.place(cell);
        const auto value = valueOf(unit, place, cell);
        if (!value) continue;
        const auto limits = limitsOf(unit, place, *value);
        if (!limits || isWithin(*value, *limits)) continue;
        // A mended value that is no better is nothing that the file holds.
        const float held = unit.DirectIndex(cell) == kept.at(cell) ? *value : kept.at(cell);
        lines.push_back(cells.keyOf(cell) + " (cell " + numberText(cell) + ") holds " + numberText(held) +
                        " " + limits->text);
    }
    return lines;
}

}  // namespace zentaq
