#include "logs/plot_lines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace zentaq {
namespace {

/// Zeros in "MAP", 50 rows a second, with spikes of one row each, up and down.
LogColumns flatLog(std::size_t rows, const std::vector<std::size_t>& spikes) {
    DatalogHead head;
    head.columns = {"Frame", "MAP"};
    LogColumns log;
    log.begin(head, rows);
    std::size_t next = 0;
    for (std::size_t row = 0; row < rows; ++row) {
        const bool spike = next < spikes.size() && spikes[next] == row;
        // Each has a height of its own, so that one is not taken for another.
        const double height = spike ? 100.0 + static_cast<double>(next) : 0.0;
        const double value = next % 2 == 0 ? height : -height;
        if (spike) ++next;
        log.append(std::vector<double>{static_cast<double>(row), value});
    }
    return log;
}

std::vector<PlotPoint> pointsOf(const LogColumns& log, double from, double to, int pixels) {
    std::vector<PlotPoint> points;
    plotLine(log, 1, plotBuckets(log, from, to, pixels), points);
    return points;
}

TEST(PlotLines, FindEverySpikeOfOneRowAtEveryZoom) {
    // So far apart that no two of them share a column of pixels, where the higher one hides the other.
    std::vector<std::size_t> spikes{0};
    for (std::size_t row = 4'877; row < 195'000; row += 4'877) spikes.push_back(row);
    spikes.push_back(199'999);
    const LogColumns log = flatLog(200'000, spikes);
    for (const double length : {0.5, 3.0, 17.0, 40.0, 100.0, 333.0, 1000.0, 3999.98}) {
        for (const int pixels : {100, 640, 1333}) {
            std::vector<bool> found(spikes.size());
            for (double from = 0; from < 3999.98; from += length) {
                const double pixel = length / pixels;
                for (const PlotPoint& point : pointsOf(log, from, from + length, pixels)) {
                    if (point.value == 0) continue;
                    const auto which = static_cast<std::size_t>(std::abs(point.value) - 100);
                    ASSERT_LT(which, spikes.size());
                    found[which] = true;
                    EXPECT_NEAR(point.seconds, 0.02 * static_cast<double>(spikes[which]), 1.01 * pixel);
                }
            }
            EXPECT_EQ(std::ranges::count(found, false), 0) << length << " s in " << pixels;
        }
    }
}

TEST(PlotLines, AreAboutTwoPointsAColumnOfPixelsHoweverLongTheLogIs) {
    const LogColumns log = flatLog(200'000, {});
    EXPECT_LE(pointsOf(log, 0, 3999.98, 500).size(), 2U * 503);
    EXPECT_GE(pointsOf(log, 0, 3999.98, 500).size(), 2U * 499);
}

TEST(PlotLines, AreTheRowsThemselvesWhereFewAreShownWithOneMoreAtEachEnd) {
    const LogColumns log = flatLog(1000, {11});
    // Seconds 0.2 to 0.24 are the rows 10 to 12.
    EXPECT_EQ(pointsOf(log, 0.2, 0.24, 500), (std::vector<PlotPoint>{{log.seconds(9), 0},
                                                                     {log.seconds(10), 0},
                                                                     {log.seconds(11), 100},
                                                                     {log.seconds(12), 0},
                                                                     {log.seconds(13), 0}}));
}

TEST(PlotLines, StandStillWhileThePictureMoves) {
    const LogColumns log = flatLog(200'000, {50'000, 100'000});
    const double step = 1000.0 / 500;
    const auto spikes = [&](double from) {
        auto points = pointsOf(log, from, from + 1000, 500);
        std::erase_if(points, [](const PlotPoint& point) { return point.value == 0; });
        return points;
    };
    ASSERT_EQ(spikes(800).size(), 1U);
    ASSERT_EQ(spikes(800 + step / 3).size(), 1U);
    EXPECT_NEAR(spikes(800 + step / 3)[0].seconds, spikes(800)[0].seconds, step * 1e-6);
}

TEST(PlotLines, AreNoneWithoutRowsColumnsOrRoom) {
    EXPECT_TRUE(pointsOf(flatLog(0, {}), 0, 10, 100).empty());
    const LogColumns log = flatLog(100, {});
    EXPECT_TRUE(pointsOf(log, 0, 2, 0).empty());
    EXPECT_TRUE(pointsOf(log, 1, 1, 100).empty());
    std::vector<PlotPoint> points{{1, 1}};
    plotLine(log, -1, plotBuckets(log, 0, 2, 100), points);
    EXPECT_TRUE(points.empty());
}

// ---- Scales

LogColumns oneColumn(const std::string& name, const std::vector<double>& values) {
    DatalogHead head;
    head.columns = {"Frame", name};
    LogColumns log;
    log.begin(head);
    for (std::size_t row = 0; row < values.size(); ++row)
        log.append(std::vector<double>{static_cast<double>(row), values[row]});
    return log;
}

TEST(PlotScaleOfAChannel, HoldsAllValuesBetweenRoundNumbers) {
    EXPECT_EQ(plotScale(oneColumn("MAP", {23, 101.4, 55}), 1), (PlotScale{20, 110}));
    EXPECT_EQ(plotScale(oneColumn("TPS", {0.6, 4.4}), 1), (PlotScale{0.5, 4.5}));
    EXPECT_EQ(plotScale(oneColumn("MAP", {-7, 7}), 1), (PlotScale{-8, 8}));
}

TEST(PlotScaleOfAChannel, IsARangeAlsoWhereAllValuesAreOne) {
    EXPECT_EQ(plotScale(oneColumn("CLT", {80, 80}), 1), (PlotScale{79, 81}));
}

TEST(PlotScaleOfAChannel, OfTheCorrectionIsItsOwnWhateverTheLogHolds) {
    EXPECT_EQ(plotScale(oneColumn("EGOC", {1, 2}), 1), (PlotScale{-50, 50}));
    EXPECT_TRUE(hasRangeOfItsOwn("EGOC"));
    EXPECT_FALSE(hasRangeOfItsOwn("MAP"));
}

TEST(PlotScaleOfAChannel, JoinsAnother) {
    EXPECT_EQ(joined({0, 10}, {-5, 7}), (PlotScale{-5, 10}));
}

// ---- Texts

TEST(PlotTimeText, IsMinutesAndSecondsThatNeverReadSixty) {
    EXPECT_EQ(plotTimeText(0), "00:00.00");
    EXPECT_EQ(plotTimeText(62.5), "01:02.50");
    EXPECT_EQ(plotTimeText(59.999), "01:00.00");
    EXPECT_EQ(plotTimeText(28799.98), "479:59.98");
    EXPECT_EQ(plotTimeText(-1.5), "-00:01.50");
    EXPECT_EQ(plotTimeText(-0.001), "00:00.00");
    EXPECT_EQ(plotTimeText(75, 0), "01:15");
}

TEST(PlotValueText, HasTheDigitsAndTheUnitOfItsChannel) {
    EXPECT_EQ(plotValueText("MAP", 101.26, "kPa"), "101.3 kPa");
    EXPECT_EQ(plotValueText("RPM", 4200, "kPa"), "4200 rpm");
    EXPECT_EQ(plotValueText("AAFR", 14.7, "kPa"), "14.70:1");
    EXPECT_EQ(plotValueText("EGOC", -3, "kPa"), "-3%");
    EXPECT_EQ(plotValueText("GPIO3", 1, "kPa"), "1");
}

}  // namespace
}  // namespace zentaq
