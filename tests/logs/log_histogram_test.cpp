// What a channel did in the cells of a table.
#include <gtest/gtest.h>

#include <cmath>

#include "logs/log_histogram.h"

namespace zentaq {
namespace {

LogHistogram small() {
    return LogHistogram({"RPM", "RPM", {1000, 2000, 4000}}, {"MAP", "BLEND MAP", {30, 60}});
}

TEST(LogHistogram, ARowFallsIntoTheCellWhoseHeadersAreNearest) {
    LogHistogram histogram = small();
    histogram.add(1400, 40, 14);
    histogram.add(1501, 50, 15);
    histogram.add(3001, 100, 16);
    histogram.add(0, 0, 12);
    EXPECT_EQ(histogram.cell(0, 0).count, 2);
    EXPECT_EQ(histogram.cell(1, 1).count, 1);
    EXPECT_EQ(histogram.cell(1, 2).count, 1);
    EXPECT_EQ(histogram.count(), 4);
}

TEST(LogHistogram, HalfWayBetweenTwoHeadersTheLowerOneTakesIt) {
    const std::vector<float> headers{1000, 2000, 4000};
    EXPECT_EQ(nearestHeader(headers, 1500), 0U);
    EXPECT_EQ(nearestHeader(headers, 3000), 1U);
    EXPECT_EQ(nearestHeader(headers, 1e9), 2U);
}

TEST(LogHistogram, ACellShowsMeanLeastMostAndCount) {
    LogHistogram histogram = small();
    for (const double value : {14.0, 15.0, 17.5}) histogram.add(1000, 30, value);
    const RunningFigures& cell = histogram.cell(0, 0);
    EXPECT_DOUBLE_EQ(shownOf(cell, HistogramShows::Mean), 15.5);
    EXPECT_EQ(shownOf(cell, HistogramShows::Least), 14);
    EXPECT_EQ(shownOf(cell, HistogramShows::Most), 17.5);
    EXPECT_EQ(shownOf(cell, HistogramShows::Count), 3);
}

TEST(LogHistogram, ACellWhereNothingWasShowsNothing) {
    const LogHistogram histogram = small();
    EXPECT_TRUE(std::isnan(shownOf(histogram.cell(0, 0), HistogramShows::Mean)));
    EXPECT_EQ(shownOf(histogram.cell(0, 0), HistogramShows::Count), 0);
}

TEST(LogHistogram, AnAxisInFahrenheitTakesTheCelsiusOfALog) {
    LogHistogram histogram({"CLT", "CLT", {32, 212}, true}, {"MAP", "MAP", {30}});
    histogram.add(100, 30, 1);
    EXPECT_EQ(histogram.cell(0, 1).count, 1);
}

TEST(LogHistogram, TellsWhatHoldsForTheRowsOfACell) {
    const LogHistogram histogram = small();
    EXPECT_EQ(histogram.conditionOf(0, 0), "RPM <= 1500 and MAP <= 45");
    EXPECT_EQ(histogram.conditionOf(1, 1), "RPM > 1500 and RPM <= 3000 and MAP > 45");
    const LogHistogram warm({"CLT", "CLT", {32, 212}, true}, {"MAP", "MAP", {30}});
    EXPECT_EQ(warm.conditionOf(0, 1), "CLT > 50") << "122 F";
}

TEST(LogHistogram, HeadersOutOfOrderHaveNoStretchOfTheirOwn) {
    const LogHistogram histogram({"RPM", "RPM", {1000, 500, 2000}}, {"MAP", "MAP", {30}});
    EXPECT_EQ(histogram.conditionOf(0, 1), "");
}

}  // namespace
}  // namespace zentaq
