// The one small line in which a tuner says what is to become of many cells: "=12", "+3", "-2", "*1.05", "/2",
// "+5%".
#pragma once

#include <string_view>

#include "unit/entry_outcome.h"

namespace zentaq {

class CellFormula {
 public:
    /// Throws Failure with one sentence about what is wrong and what is possible. A decimal comma is taken.
    static CellFormula of(std::string_view text);

    /// What becomes of a cell. It may be no number: the table's range refuses that.
    float applied(float value) const;

 private:
    enum class Kind { Set, Add, Multiply, Divide };
    CellFormula(Kind kind, double operand) : kind_(kind), operand_(operand) {}

    Kind kind_;
    double operand_;
};

}  // namespace zentaq
