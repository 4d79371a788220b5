// One entry into cells of a table, whether typed, nudged, pasted or saved: what a cell takes, and one box
// for all that it does not.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "unit/unit.h"

namespace zentaq {

class CellEntry {
 public:
    CellEntry(Unit& unit, std::string_view table, bool absoluteVe);

    /// The number that a text stands for, where a cell of the table takes it. Anything else is noted for
    /// `tell`.
    std::optional<float> accepted(std::string_view text);
    bool accepts(float value);
    bool hasRefusals() const { return !refusals_.empty(); }
    /// Tells what was refused: the first in the box of its check, each further one in the log. Belongs at the
    /// end of the entry, when every cell shows what the calibration holds: behind the box the world goes on.
    void tell() const;

 private:
    struct Refusal {
        int check = 0;  ///< of the input checks; 0: the range
        std::string text;
        float value = 0;
    };
    std::string logLine(const Refusal& refusal) const;

    UnitHost& host_;
    Limits limits_;
    std::vector<Refusal> refusals_;
};

}  // namespace zentaq
