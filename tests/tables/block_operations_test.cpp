// Filling and smoothing a block; all expected numbers are worked out by hand.
#include "tables/block_operations.h"

#include "base/text.h"
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

/// A grid with these cells, rows by lines.
TableGrid blockGrid(const std::string& cells) {
    TableGrid grid;
    const auto lines = split(cells, '\n');
    grid.resize(static_cast<int>(lines.size()), static_cast<int>(split(lines.front(), ' ').size()));
    for (int row = 1; row <= grid.rows(); ++row) {
        const auto words = split(lines[static_cast<std::size_t>(row - 1)], ' ');
        for (int column = 1; column <= grid.columns(); ++column)
            grid.text(row, column, words[static_cast<std::size_t>(column - 1)]);
    }
    return grid;
}

std::string cellsIn(const TableGrid& grid) {
    std::string cells;
    for (int row = 1; row <= grid.rows(); ++row) {
        for (int column = 1; column <= grid.columns(); ++column)
            cells += (column > 1 ? " " : "") + grid.text(row, column);
        if (row < grid.rows()) cells += '\n';
    }
    return cells;
}

Selection wholeOf(const TableGrid& grid) {
    return {1, grid.rows(), 1, grid.columns(), true};
}

std::string interpolatedCells(const std::string& cells) {
    TableGrid grid = blockGrid(cells);
    interpolateBlock(grid, wholeOf(grid));
    return cellsIn(grid);
}

std::string smoothedCells(const std::string& cells, int strength) {
    TableGrid grid = blockGrid(cells);
    smoothBlock(grid, wholeOf(grid), strength);
    return cellsIn(grid);
}

// ---- Interpolation

TEST(Interpolation, FillsABlockFromItsFourCorners) {
    // Ends of the middle row: half of the way down; its middle: half of the way across.
    EXPECT_EQ(interpolatedCells("10 0 20\n"
                                "0 0 0\n"
                                "30 0 60"),
              "10 15 20\n"
              "20 30 40\n"
              "30 45 60");
}

TEST(Interpolation, OfTwoByTwoCellsRoundsTheCornersToOneDecimalAndNothingElse) {
    EXPECT_EQ(interpolatedCells("10.26 20.74\n"
                                "30.05 40"),
              "10.3 20.7\n"
              "30 40");  // 30.05 as a 32-bit float lies a hair below the tie
}

TEST(Interpolation, RoundsATieToTheEvenDigit) {
    EXPECT_EQ(interpolatedCells("0.25 0.75"), "0.2 0.8");
}

TEST(Interpolation, OfOneRowTakesTheCornersOfThatRow) {
    EXPECT_EQ(interpolatedCells("10 99 99 40"), "10 20 30 40");
}

TEST(Interpolation, OfOneColumnTakesItsEnds) {
    EXPECT_EQ(interpolatedCells("10\n99\n99\n40"), "10\n20\n30\n40");
}

TEST(Interpolation, WorksOutTheMiddleFromTheRoundedEndsOfItsRow) {
    // Row 2: left 0.1 / 3 gives 0, right 1 / 3 gives 0.3; between them 0.15, a hair above as a float: 0.2.
    EXPECT_EQ(interpolatedCells("0 0 0\n"
                                "9 9 9\n"
                                "9 9 9\n"
                                "0.1 9 1"),
              "0 0 0\n"
              "0 0.2 0.3\n"
              "0.1 0.4 0.7\n"
              "0.1 0.6 1");
}

TEST(Interpolation, LeavesTheCellsAroundTheBlock) {
    TableGrid grid = blockGrid("1 2 3\n4 5 6\n7 8 9");
    interpolateBlock(grid, {2, 3, 2, 3, true});
    EXPECT_EQ(cellsIn(grid), "1 2 3\n4 5 6\n7 8 9");
    interpolateBlock(grid, {1, 3, 1, 1, true});
    EXPECT_EQ(cellsIn(grid), "1 2 3\n4 5 6\n7 8 9");
    grid.text(2, 1, "0");
    interpolateBlock(grid, {1, 3, 1, 1, true});
    EXPECT_EQ(cellsIn(grid), "1 2 3\n4 5 6\n7 8 9");
}

// ---- Smoothing

TEST(Smoothing, OfTwoCellsAtWeightNoneShowsTheSecondTheNewFirst) {
    // (10 + 20) / 2 = 15, then (15 + 20) / 2 = 17.5.
    EXPECT_EQ(smoothedCells("10 20", 5), "15 17.5");
}

TEST(Smoothing, CountsTheCellItselfOneToFiveTimes) {
    // Weight 4: (10 + 20 + 4 * 10) / 6 = 11.67; then (11.7 + 20 + 4 * 20) / 6 = 18.62.
    EXPECT_EQ(smoothedCells("10 20", 1), "11.7 18.6");
    // Weight 3: 60 / 5 = 12; then (12 + 20 + 60) / 5 = 18.4.
    EXPECT_EQ(smoothedCells("10 20", 2), "12 18.4");
    // Weight 2: 50 / 4 = 12.5; then (12.5 + 20 + 40) / 4 = 18.125.
    EXPECT_EQ(smoothedCells("10 20", 3), "12.5 18.1");
    // Weight 1: 40 / 3 = 13.33; then (13.3 + 20 + 20) / 3 = 17.77.
    EXPECT_EQ(smoothedCells("10 20", 4), "13.3 17.8");
}

TEST(Smoothing, AveragesAllNineCellsOfThreeByThreeWithThoseAlreadyDone) {
    // The sum is 90 at first; each cell is the sum of the nine by then, over nine.
    // 90/9 = 10; 100/9 = 11.1; 111.1/9 = 12.3; 123.4/9 = 13.7; 137.1/9 = 15.2;
    // 152.3/9 = 16.9; 169.2/9 = 18.8; 188/9 = 20.9; 208.9/9 = 23.2.
    EXPECT_EQ(smoothedCells("0 0 0\n0 0 0\n0 0 90", 5), "10 11.1 12.3\n13.7 15.2 16.9\n18.8 20.9 23.2");
}

TEST(Smoothing, ReachesTwoCellsFarAndNoFarther) {
    // The fourth cell is none of the first one's neighbors: (0 + 0 + 0) / 3; the second one sees it: 40 / 4.
    // Third: (0 + 10 + 0 + 40) / 4 = 12.5; fourth: (10 + 12.5 + 40) / 3 = 20.8.
    EXPECT_EQ(smoothedCells("0 0 0 40", 5), "0 10 12.5 20.8");
}

TEST(Smoothing, NeverLooksBeyondTheBlock) {
    TableGrid grid = blockGrid("90 90 90 90\n90 10 20 90\n90 90 90 90");
    smoothBlock(grid, {2, 2, 2, 3, true}, 5);
    EXPECT_EQ(cellsIn(grid), "90 90 90 90\n90 15 17.5 90\n90 90 90 90");
}

}  // namespace
}  // namespace zentaq
