// AutoVE: corrects a VE table from the oxygen correction that the unit reports. Wherever the engine runs, the
// cells around that point drift towards the value that would have made the correction zero. A table goes in,
// samples go in, cells that have changed come out; who shows and stores them is not known here.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "tables/table_cells.h"

namespace zentaq {

/// What the engine did at one moment.
struct AutoVeSample {
    float rpm = 0;
    float map = 0;         ///< in the units of the table's rows
    float correction = 0;  ///< percent: above 0 the unit adds fuel
};

/// The table that is corrected, as it stood when it was shown last.
struct AutoVeTable {
    std::vector<float> columnHeaders;  ///< speeds, the lowest first; as many as it has columns
    std::vector<float> rowHeaders;     ///< pressures, the lowest first
    std::span<const float> base;       ///< by x + 16 * y, whatever the number of columns
    float limit = 0;                   ///< EGO_LMT, percent: no cell is moved further
};

/// A cell that a sample has moved.
struct AutoVeChange {
    int x = 0;  ///< column from 0
    int y = 0;  ///< row from 0, the lowest pressure first
    int value = 0;
    std::optional<std::int32_t> colour;  ///< nothing: the cell keeps the one it has

    bool operator==(const AutoVeChange&) const = default;
};

class AutoVe {
 public:
    static constexpr int lines = 17;

    /// Forgets the running corrections. Kept: the first column keeps its own, as do all of them where a run
    /// from a log begins, which does not ask for this.
    void prepare();
    /// The window's number of samples a cell. Kept: the rule in use has no need of it, the older one has.
    void constant(int samples) { constant_ = samples; }

    /// The rule in use: each cell near the point keeps a slow running value, one part new to 99 parts old,
    /// which never leaves the limit. At most nine cells.
    std::vector<AutoVeChange> add(const AutoVeTable& table, const AutoVeSample& sample);

    /// Kept: the older form of the rule, which moves one cell when it has seen more samples than the
    /// constant. Nothing calls it.
    std::optional<AutoVeChange> addByCount(const AutoVeTable& table, const AutoVeSample& sample);

    float sum(int x, int y) const { return sums_[at(x, y)]; }

 private:
    static std::size_t at(int x, int y) {
        return static_cast<std::size_t>(y) * lines + static_cast<std::size_t>(x);
    }

    std::array<float, std::size_t{lines} * lines> sums_{};
    std::array<float, std::size_t{lines} * lines> counts_{};
    int constant_ = 50;
};

}  // namespace zentaq
