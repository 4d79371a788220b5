#include "logs/plot_measures.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/rounding.h"
#include "logs/log_channel.h"

namespace zentaq {

namespace {

std::string digits(std::string_view channel, double value) {
    const int decimals = channelDecimals(channel);
    const std::string pattern =
        decimals == 0 ? "0" : "0." + std::string(static_cast<std::size_t>(decimals), '0');
    return formatNumber(roundTo(value, decimals), pattern);
}

std::string captionWithUnit(std::string_view channel, const LogColumns& log) {
    const std::string unit = channelUnit(channel, log.head().mapUnits);
    return channelCaption(channel) + (unit.empty() ? "" : " (" + unit + ")");
}

}  // namespace

std::vector<MeasureRow> measureRows(const LogColumns& log, const std::vector<std::string>& shown, double a,
                                    double b) {
    std::vector<MeasureRow> rows;
    if (log.empty()) return rows;
    const std::size_t rowA = log.rowAt(a);
    const std::size_t rowB = log.rowAt(b);
    const auto [first, last] = std::minmax(rowA, rowB);
    for (const std::string& channel : shown) {
        const int column = log.column(channel);
        if (column < 0) continue;
        const auto atA = static_cast<double>(log.value(column, rowA));
        const auto atB = static_cast<double>(log.value(column, rowB));
        const StretchFigures figures = log.figures(column, first, last + 1);
        rows.push_back({captionWithUnit(channel, log), digits(channel, atA), digits(channel, atB),
                        digits(channel, atB - atA), digits(channel, figures.least),
                        digits(channel, figures.most), digits(channel, figures.mean)});
    }
    return rows;
}

}  // namespace zentaq
