#include "tables/table_comparison.h"

#include <tuple>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "tables/line_commands.h"
#include "tables/rebin.h"
#include "unit/quiet_host.h"

namespace zentaq {

namespace {

/// The user's temperature scale is that of the host in hand, so that headers can be compared.
class ComparedHost : public QuietHost {
 public:
    explicit ComparedHost(bool fahrenheit) : fahrenheit_(fahrenheit) {}
    bool fahrenheit() const override { return fahrenheit_; }

 private:
    bool fahrenheit_;
};

void checkSameAxes(const TableSheet& here, const TableSheet& there, bool columns) {
    const std::string axis = columns ? "COL-AXIS" : "ROW-AXIS";
    const std::string own = here.unit().GET_TBL_AXIS_TYPE(here.table(), axis);
    const std::string other = there.unit().GET_TBL_AXIS_TYPE(there.table(), axis);
    if (own != other)
        throw Failure(std::string(columns ? "Its columns" : "Its rows") + " stand for " + other +
                      ", here for " + own);
    const std::string unit = here.unit().MAPUnits();
    if (own == "BLEND MAP" && unit != there.unit().MAPUnits())
        throw Failure("Its pressures are in " + there.unit().MAPUnits() + ", here in " + unit);
}

}  // namespace

void TableComparison::with(const Calibration& other, const UnitKind& kind, std::string name) {
    const auto before = std::make_tuple(name_, calibration_, kind_, otherAxes_, table_, values_);
    calibration_ = std::make_shared<const Calibration>(other);
    kind_ = &kind;
    name_ = std::move(name);
    table_.clear();
    try {
        follow();
    } catch (...) {
        std::tie(name_, calibration_, kind_, otherAxes_, table_, values_) = before;
        throw;
    }
}

void TableComparison::off() {
    name_.clear();
    calibration_.reset();
    values_.clear();
}

void TableComparison::follow() {
    if (!calibration_) return;
    ComparedHost host(sheet_.unit().host().fahrenheit());
    Unit unit(*kind_, host);
    unit.calibration(*calibration_);
    take(unit);
}

void TableComparison::take(Unit& other) {
    if (!hasTable(other.kind(), sheet_.table()))
        throw Failure("It is for " + std::string(other.kind().model) + ", which has no such table");
    TableSheet there(other);
    there.read(sheet_.table(), {}, false);
    for (const bool columns : {false, true}) checkSameAxes(sheet_, there, columns);
    const TableAxes own = axesOf(sheet_);
    const TableAxes axes = axesOf(there);
    otherAxes_ = own != axes;
    values_.assign(storedCells, 0);
    // Between headers that do not rise nothing can be looked up; the same ones need no looking up.
    const bool same = !otherAxes_;
    if (!same) static_cast<void>(rebinned(there, {}));
    const TableSurface surface(there, sheet_.table());
    for (std::size_t row = 0; row < own.rows.size(); ++row) {
        for (std::size_t column = 0; column < own.columns.size(); ++column) {
            const std::size_t index = row * storedColumns + column;
            values_[index] =
                same ? there.value(static_cast<int>(index))
                     : roundTo(static_cast<float>(surface.at(own.columns[column], own.rows[row]).value),
                               sheet_.kind().commandDecimals());
        }
    }
}

std::optional<float> TableComparison::other(int index) const {
    if (!on() || index < 0 || index >= static_cast<int>(values_.size())) return {};
    const float value = values_[static_cast<std::size_t>(index)];
    const AbsoluteView* absolute = sheet_.kind().absoluteIf(sheet_.absoluteVe());
    return absolute != nullptr ? value + absolute->base : value;
}

std::optional<float> TableComparison::difference(int index) const {
    const auto there = other(index);
    if (!there) return {};
    const float here = sheet_.value(index);
    if (numberText(here) == numberText(*there)) return {};
    return static_cast<float>(plainNumber(here) - plainNumber(*there));
}

std::string TableComparison::differenceText(int index) const {
    const auto apart = difference(index);
    if (!apart) return {};
    return (*apart > 0 ? "+" : "") + numberText(*apart);
}

}  // namespace zentaq
