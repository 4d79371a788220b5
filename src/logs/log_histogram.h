// What a channel did in each cell of a table: rows of a log fall into the cell whose headers are nearest.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "logs/log_figures.h"
#include "tables/table_sheet.h"

namespace zentaq {

/// The headers of one axis, and the channel of a log that runs along it.
struct HistogramAxis {
    std::string channel;         ///< "RPM"
    std::string title;           ///< "RPM", "BLEND MAP"
    std::vector<float> headers;  ///< as the table holds them, the lowest line first
    bool fahrenheit = false;     ///< the headers are; a log is in Celsius
};

class LogHistogram {
 public:
    /// By a table's own axes. Throws Failure for an axis that no channel of a log runs along.
    explicit LogHistogram(const TableSheet& sheet);
    LogHistogram(HistogramAxis columns, HistogramAxis rows);

    const HistogramAxis& columns() const { return columns_; }
    const HistogramAxis& rows() const { return rows_; }

    /// A row of a log: where it stands on both axes, in the units of a log, and the value of the channel.
    void add(double column, double row, double value);
    /// Rows count from the lowest header.
    const RunningFigures& cell(std::size_t row, std::size_t column) const {
        return cells_.at(row * columns_.headers.size() + column);
    }
    std::int64_t count() const { return count_; }
    /// What holds for the rows of a log that fall into a cell: "RPM > 750 and RPM <= 1250 and MAP <= 30".
    /// Empty where every row falls into it, and where the headers are out of order: no stretch of theirs
    /// tells then.
    std::string conditionOf(std::size_t row, std::size_t column) const;

 private:
    HistogramAxis columns_;
    HistogramAxis rows_;
    std::vector<RunningFigures> cells_;
    std::int64_t count_ = 0;
};

/// The place of the header that is nearest; of two equally near ones the lower.
std::size_t nearestHeader(std::span<const float> headers, double value);

enum class HistogramShows { Mean, Least, Most, Count };
inline constexpr HistogramShows histogramShows[] = {HistogramShows::Mean, HistogramShows::Least,
                                                    HistogramShows::Most, HistogramShows::Count};
/// "mean", "minimum", "maximum", "count".
std::string_view histogramWord(HistogramShows shows);
/// What a cell shows; nothing was there: NaN, and 0 as a count.
double shownOf(const RunningFigures& cell, HistogramShows shows);

}  // namespace zentaq
