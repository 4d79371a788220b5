#include "tables/cell_ground.h"

#include <gtest/gtest.h>

#include <array>

#include "tables/cell_colours.h"
#include "tables/table_grid.h"

namespace zentaq {
namespace {

constexpr Rgb daySurface = 0xFFFFFF;
constexpr Rgb nightSurface = 0x0B0D10;
constexpr Rgb dayText = 0x10141A;
constexpr Rgb nightText = 0xF0F2F5;
constexpr int noTrail = TableGrid::noTrail;

Rgb byDay(std::int32_t colour, int trail = noTrail) {
    return cellGround(colour, trail, false, daySurface);
}
Rgb byNight(std::int32_t colour, int trail = noTrail) {
    return cellGround(colour, trail, true, nightSurface);
}

TEST(Contrast, OfBlackAndWhiteIs21AndOfTheSameColourIs1) {
    EXPECT_NEAR(contrastOf(0x000000, 0xFFFFFF), 21, 0.001);
    EXPECT_NEAR(contrastOf(0x777777, 0x777777), 1, 0.001);
    EXPECT_NEAR(contrastOf(0xFF0000, 0xFFFFFF), 3.998, 0.001);
}

TEST(CellGround, ByDayIsTheColourItself) {
    EXPECT_EQ(byDay(0xFFFFFF), 0xFFFFFFU);
    EXPECT_EQ(byDay(0x00FFFF), 0xFFFF00U) << "yellow: red + 256 * green";
    EXPECT_EQ(byDay(0xFF0000), 0x0000FFU) << "blue";
    EXPECT_EQ(byDay(-1), 0xFFFFFFU) << "of a negative number the low 24 bits count";
}

TEST(CellGround, NightTurnsWhiteCellsDarkAndKeepsTheHueOfAShade) {
    EXPECT_EQ(byNight(0xFFFFFF), nightSurface);
    EXPECT_EQ(byNight(0x00FFFF), 0xFFFF00U);
    EXPECT_EQ(byNight(0x00FF00), 0x00FF00U);
    EXPECT_EQ(byNight(0x80FF80), 0x068608U) << "half of green, half of the surface";
}

TEST(CellGround, NewestCellOfTheTrailKeepsItsPaintByDayAndOlderOnesFadeTowardsTheSurface) {
    EXPECT_EQ(byDay(0x00FFFF, 0), 0xFFFF00U);
    EXPECT_EQ(byDay(0x00FFFF, 1), 0xFFFF4DU);
    EXPECT_EQ(byDay(0x00FFFF, 2), 0xFFFF80U);
    EXPECT_EQ(byDay(0x00FFFF, 3), 0xFFFFA6U);
    EXPECT_EQ(byDay(0x00FFFF, 4), 0xFFFFA6U) << "what stays";
}

TEST(CellGround, NightDimsTheWholeTrail) {
    double before = contrastOf(byNight(0x00FFFF), nightSurface);
    for (int step = 0; step <= 3; ++step) {
        const double now = contrastOf(byNight(0x00FFFF, step), nightSurface);
        EXPECT_LT(now, before) << step;
        EXPECT_GT(now, 1.2) << "still seen at step " << step;
        before = now;
    }
}

// Every colour that a shade or a paint can give, each step of the trail, day and night, in steps of 5 a part.
TEST(CellInk, ReadsOnEveryColourThatACellCanHave) {
    double worst = 21;
    for (int red = 0; red <= 255; red += 5) {
        for (int green = 0; green <= 255; green += 5) {
            for (int blue = 0; blue <= 255; blue += 5) {
                const std::int32_t colour = red + 256 * green + 65536 * blue;
                for (int trail = noTrail; trail <= 3; ++trail) {
                    const Rgb day = byDay(colour, trail);
                    const Rgb night = byNight(colour, trail);
                    worst = std::min({worst, contrastOf(cellInk(day, dayText), day),
                                      contrastOf(cellInk(night, nightText), night)});
                }
            }
        }
    }
    EXPECT_GE(worst, 4.5);
}

TEST(CellInk, ReadsOnEveryShadeOfAValueThroughTheWholeRange) {
    for (int tenths = -2000; tenths <= 2000; ++tenths) {
        for (const double scale : {30.0, 50.0}) {
            const std::int32_t colour = shadeOf(static_cast<float>(tenths) / 10, 0, scale);
            const Rgb day = byDay(colour);
            const Rgb night = byNight(colour);
            ASSERT_GE(contrastOf(cellInk(day, dayText), day), 4.5) << tenths;
            ASSERT_GE(contrastOf(cellInk(night, nightText), night), 4.5) << tenths;
        }
    }
}

TEST(CellInk, IsTheColourOfTextWhereThatReads) {
    EXPECT_EQ(cellInk(0xFFFFFF, dayText), dayText);
    EXPECT_EQ(cellInk(0x0000FF, dayText), 0xFFFFFFU) << "on blue";
    EXPECT_EQ(cellInk(0xFFFF00, nightText), 0x000000U) << "on yellow by night";
}

TEST(Trail, FadesByTheNumberOfCellsThatWereEnteredSince) {
    EXPECT_EQ(trailStep(0), 0);
    EXPECT_EQ(trailStep(1), 1);
    EXPECT_EQ(trailStep(3), 1);
    EXPECT_EQ(trailStep(4), 2);
    EXPECT_EQ(trailStep(11), 2);
    EXPECT_EQ(trailStep(12), 3);
    EXPECT_EQ(trailStep(200), 3);
    PaintMemory memory;
    memory.remember(5, 5, Paint::Yellow);
    memory.remember(5, 5, Paint::Yellow);
    EXPECT_EQ(memory.age(5, 5), 0) << "standing still is no way";
    memory.remember(5, 6, Paint::Yellow);
    memory.remember(5, 7, Paint::Yellow);
    EXPECT_EQ(memory.age(5, 5), 2);
    memory.remember(5, 5, Paint::Red);
    EXPECT_EQ(memory.age(5, 5), 0) << "entered again it is the newest";
    EXPECT_EQ(memory.age(5, 6), 2);
}

}  // namespace
}  // namespace zentaq
