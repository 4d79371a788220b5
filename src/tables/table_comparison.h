// Another state of a table beside the one in hand: that of another calibration, or the one at opening. Where
// the axes differ its values are taken between its own headers.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tables/table_sheet.h"

namespace zentaq {

class TableComparison {
 public:
    explicit TableComparison(const TableSheet& sheet) : sheet_(sheet) {}

    /// Compares with the same table of another calibration, called `name` ("Turbo.ZQ4OA", "the state at
    /// opening"). Throws Failure where it has no such table, or its axes stand for something else.
    void with(const Calibration& other, const UnitKind& kind, std::string name);
    void off();
    bool on() const { return !name_.empty(); }
    const std::string& name() const { return name_; }
    /// The other one stands on other headers.
    bool otherAxes() const { return otherAxes_; }

    /// The sheet has been read anew: its axes may be others.
    void follow();

    // By table index, 0 to 255; nothing while it is off.
    std::optional<float> other(int index) const;
    /// What the table in hand has more than the other one; nothing where both show the same.
    std::optional<float> difference(int index) const;
    /// "+2.5", "-1"; empty for none.
    std::string differenceText(int index) const;

 private:
    void take(Unit& other);

    const TableSheet& sheet_;
    std::string name_;
    std::shared_ptr<const Calibration> calibration_;
    const UnitKind* kind_ = nullptr;
    bool otherAxes_ = false;
    std::string table_;
    std::vector<float> values_;
};

}  // namespace zentaq
