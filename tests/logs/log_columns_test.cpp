// A log in memory: times, rows, and what a stretch reaches.
#include <gtest/gtest.h>

#include <random>

#include "logs/log_fixture.h"

namespace zentaq {
namespace {

LogColumns threeRows() {
    return logOf("Frame,RPM,MAP\n10,1000,30.5\n20,2000,60.5\n40,3000,90.5\n");
}

TEST(LogColumns, HoldValuesByNameUnderBothNames) {
    const LogColumns log = threeRows();
    EXPECT_EQ(log.rows(), 3U);
    EXPECT_EQ(log.value(log.column("MAP"), 1), 60.5F);
    EXPECT_EQ(log.column("VOLT"), log.column("BATTV"));
    EXPECT_EQ(log.column("Boost"), -1);
}

TEST(LogColumns, AFrameIsAFiftiethOfASecond) {
    const LogColumns log = threeRows();
    EXPECT_DOUBLE_EQ(log.seconds(0), 0.2);
    EXPECT_DOUBLE_EQ(log.lastSeconds(), 0.8);
}

TEST(LogColumns, ARowIsFoundByItsTime) {
    const LogColumns log = threeRows();
    EXPECT_EQ(log.rowAt(0), 0U);
    EXPECT_EQ(log.rowAt(0.2), 0U);
    EXPECT_EQ(log.rowAt(0.39), 0U);
    EXPECT_EQ(log.rowAt(0.4), 1U);
    EXPECT_EQ(log.rowAt(99), 2U);
}

TEST(LogColumns, EveryRowIsFoundByTheTimeThatItTells) {
    std::string text = "Frame,RPM,MAP\n";
    for (int frame = 1; frame <= 5000; ++frame) text += std::to_string(frame) + ",1,1\n";
    const LogColumns log = logOf(text);
    for (std::size_t row = 0; row < log.rows(); ++row) ASSERT_EQ(log.rowAt(log.seconds(row)), row);
}

TEST(LogColumns, ALogWhoseTimesGoBackIsSearchedFromItsStart) {
    const LogColumns log = logOf("Frame,RPM,MAP\n10,1,1\n30,2,2\n5,3,3\n40,4,4\n");
    EXPECT_EQ(log.rowAt(0.4), 0U);
    EXPECT_EQ(log.rowAt(0.7), 2U);
}

TEST(LogColumns, AStretchReachesWhatAWalkOverItsRowsFinds) {
    std::mt19937 random(7);
    std::string text = "Frame,RPM,MAP\n";
    for (int frame = 0; frame < 3000; ++frame)
        text += std::to_string(frame) + "," + std::to_string(random() % 9000) + ",1\n";
    const LogColumns log = logOf(text);
    const int column = log.column("RPM");
    for (int i = 0; i < 500; ++i) {
        std::size_t first = random() % 3000;
        std::size_t last = random() % 3001;
        if (first > last) std::swap(first, last);
        if (first == last) continue;
        const auto values = log.values(column).subspan(first, last - first);
        const ValueReach reach = log.reach(column, first, last);
        EXPECT_EQ(reach.least, *std::ranges::min_element(values));
        EXPECT_EQ(reach.most, *std::ranges::max_element(values));
    }
}

TEST(LogColumns, ASpikeOfOneSampleIsInEveryStretchThatHoldsIt) {
    std::string text = "Frame,RPM,MAP\n";
    constexpr int rows = 20000;
    constexpr std::size_t spike = 12345;
    for (int frame = 0; frame < rows; ++frame)
        text += std::to_string(frame) + (frame == spike ? ",8999" : ",1000") + ",1\n";
    const LogColumns log = logOf(text);
    for (const std::size_t pixels : {100U, 333U, 1366U, 1920U}) {
        int seen = 0;
        for (std::size_t pixel = 0; pixel < pixels; ++pixel)
            seen +=
                log.reach(log.column("RPM"), pixel * rows / pixels, (pixel + 1) * rows / pixels).most == 8999;
        EXPECT_EQ(seen, 1) << pixels;
    }
}

TEST(LogColumns, FiguresOfAStretchAreItsLeastMostAndMean) {
    const LogColumns log = threeRows();
    const StretchFigures figures = log.figures(log.column("RPM"), 1, 3);
    EXPECT_EQ(figures.least, 2000);
    EXPECT_EQ(figures.most, 3000);
    EXPECT_EQ(figures.mean, 2500);
    EXPECT_EQ(figures.rows, 2U);
    EXPECT_EQ(log.figures(0, 3, 9).rows, 0U);
}

TEST(LogColumns, EveryRowIsFoundByItsOwnTime) {
    DatalogHead head;
    head.columns = {"Frame"};
    LogColumns log;
    log.begin(head);
    constexpr std::size_t rows = 200'000;
    for (std::size_t row = 0; row < rows; ++row) log.append(std::vector<double>{static_cast<double>(row)});
    for (std::size_t row = 0; row < rows; ++row) ASSERT_EQ(log.rowAt(log.seconds(row)), row);
}

}  // namespace
}  // namespace zentaq
