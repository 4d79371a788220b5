// The default values of a new calibration as one unit kind sees them, and those that are read at its axes.
#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "refdata/database.h"
#include "unit/unit.h"

namespace zentaq {

/// The sets of table Defaults: the kind's own version of a set, or else the plain one. All sets are of one
/// state of the database.
class KindDefaults {
 public:
    KindDefaults(const Database& database, const UnitKind& kind);

    /// Throws Failure when there is neither.
    std::vector<float> of(std::string_view set) const;
    /// Throws Failure as well when the set has another number of values.
    std::vector<float> of(std::string_view set, std::size_t count) const;

 private:
    const Database& database_;
    Database::Reading reading_;
    std::string_view suffix_;
    std::set<std::string> names_;
};

/// Takes the value of a member's cell.
using PutCell = std::function<void(std::string_view member, double value, int cell)>;

/// The tables of the defaults stand on axes of their own; a new calibration has other ones, up to its rev
/// limit and its boost, so its cells are read between the cells of the defaults: ADV, VE and AFR at the axes
/// of the unit's calibration, as far as the kind has them. Beyond the atmosphere the boost curves take timing
/// off and add fuel. The tables are those of a piston engine; a rotary one gets less advance.
void putEngineTables(Unit& unit, const KindDefaults& defaults, const PutCell& put);

/// The battery curve of the defaults stands on volts of its own; the cells of a kind stand where its input
/// measures.
void putBatteryCurve(const Unit& unit, const KindDefaults& defaults, const PutCell& put);

}  // namespace zentaq
