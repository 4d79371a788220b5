// The cells of a calibration file as its user sees them: values through the readers of the members, their
// units, and where a table's cell lies on its axes. The file itself stays as it is.
#pragma once

#include <array>
#include <optional>
#include <string>

#include "calibration/calibration_cells.h"
#include "unit/gpio_rows.h"
#include "unit/quiet_host.h"
#include "unit/unit.h"

namespace zentaq {

class CalibrationView {
 public:
    /// Of a known kind. `file` and `cells`, which are those of the kind, must outlive the view.
    CalibrationView(const CalibrationBytes& file, const CalibrationCells& cells);

    /// The number that a user sees: through the reader of a member, for another cell as it stands.
    /// Nothing where the reader cannot make sense of the cell.
    std::optional<float> number(int cell);
    /// The unit of that number, with the pressure unit of the file; empty for none.
    std::string unitOf(const CellPlace& place) const;
    /// The number as text, or the name that stands for it: a pin's function, a pressure unit, an axis kind.
    std::string text(int cell);
    /// "60.2 kPa, 2000 RPM" for a table's cell, "rows" before columns; empty for a place that has no axes.
    std::string axesText(const CellPlace& place);
    /// "pin W18, Full Table", and for a parameter what it sets: "pin W18, Full Table: Table Select".
    std::string pinText(const CellPlace& place) const;
    /// Name of a pin's function; empty for a code that is none.
    std::string functionName(int code) const;

    const CalibrationBytes& file() const { return file_; }
    /// The calibration for what needs a whole Unit object. Its readers may repair cells in it.
    Unit& unit() { return unit_; }

 private:
    const GpioRow* rowOf(const CellPlace& place) const;
    float userPressure(float kpa);
    std::string headerText(const CellPlace& place, bool rows);
    std::string stopUnit(int table, bool rows) const;

    const CalibrationBytes& file_;
    const CalibrationCells& cells_;
    QuietHost host_;
    Unit unit_;
    std::array<std::array<std::optional<std::string>, 32>, 3> headers_;  ///< by table; rows, then columns
};

/// Two numbers with as many digits as tell them apart; the bits' own text where a reader rounds them alike.
struct ShownPair {
    std::string first;
    std::string second;
};
ShownPair shownPair(CalibrationView& first, int firstCell, CalibrationView& second, int secondCell);

}  // namespace zentaq
