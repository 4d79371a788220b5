#include "tables/cell_colours.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

constexpr std::int32_t white = 0xFFFFFF;

std::int32_t colour(int red, int green, int blue) {
    return red + 256 * green + 65536 * blue;
}

TEST(CellShade, OfTheRelativeViewGoesFromRedThroughWhiteToGreen) {
    EXPECT_EQ(shadeOf(0, 0, 50), white);
    EXPECT_EQ(shadeOf(50, 0, 50), colour(0, 255, 0));
    EXPECT_EQ(shadeOf(-50, 0, 50), colour(255, 0, 0));
    EXPECT_EQ(shadeOf(25, 0, 50), colour(128, 255, 128));
    EXPECT_EQ(shadeOf(-10, 0, 50), colour(255, 205, 205));  // 256 - 51.2 = 204.8
}

TEST(CellShade, RoundsHalvesToEvenBeforeTheRemainder) {
    EXPECT_EQ(shadeOf(0.09765625F, 0, 50), colour(0, 255, 0));      // 255.5 rounds to 256, remainder 0
    EXPECT_EQ(shadeOf(0.29296875F, 0, 50), colour(254, 255, 254));  // 254.5 rounds to 254
}

TEST(CellShade, OfTheAbsoluteViewIsHandedOnNegativeAboveTheMidpoint) {
    EXPECT_EQ(shadeOf(100, 100, 50), white);
    EXPECT_EQ(shadeOf(110, 100, 50), colour(-51, 255, -51));  // 256 - 563.2 = -307.2; -307 mod 256 = -51
    EXPECT_EQ(shadeOf(90, 100, 50), colour(255, 205, 205));   // 256 + 460.8 = 716.8; 717 mod 256 = 205
}

TEST(Paints, HaveTheirColours) {
    EXPECT_EQ(paintColour(Paint::White), white);
    EXPECT_EQ(paintColour(Paint::Yellow), 0x00FFFF);
    EXPECT_EQ(paintColour(Paint::Green), 0x00FF00);
    EXPECT_EQ(paintColour(Paint::Red), 0x0000FF);
    EXPECT_EQ(paintColour(Paint::Blue), 0xFF0000);
    EXPECT_EQ(paintColour(Paint::Cyan), 0xFFFF00);
    EXPECT_EQ(paintColour(Paint::LightGreen), 0x80FF80);
    EXPECT_EQ(paintColour(Paint::LightRed), 0x8080FF);
}

TEST(PaintMemory, KeepsTheLastPaintOf16By16Cells) {
    PaintMemory memory;
    memory.remember(16, 16, Paint::Red);
    memory.remember(17, 1, Paint::Red);
    EXPECT_EQ(memory.at(16, 16), Paint::Red);
    EXPECT_EQ(memory.at(17, 1), Paint::White);
    memory.erase();
    EXPECT_EQ(memory.at(16, 16), Paint::White);
}

TEST(PaintMemory, BeginsAnewOnOtherAxesAndWithAnotherUnitAndTellsIt) {
    PaintMemory memory;
    memory.ofAxes("500 1000");
    memory.ofUnit(3, 200001);
    memory.remember(1, 1, Paint::Yellow);
    const auto before = memory.erasures();
    memory.ofAxes("500 1000");
    memory.ofUnit(3, 200001);
    EXPECT_EQ(memory.at(1, 1), Paint::Yellow);
    EXPECT_EQ(memory.erasures(), before);

    memory.ofAxes("500 1100");
    EXPECT_EQ(memory.at(1, 1), Paint::White);
    memory.remember(1, 1, Paint::Yellow);
    memory.ofUnit(3, 200002);
    EXPECT_EQ(memory.at(1, 1), Paint::White);
    EXPECT_EQ(memory.erasures(), before + 2);
}

}  // namespace
}  // namespace zentaq
