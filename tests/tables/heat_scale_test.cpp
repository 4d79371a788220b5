#include "tables/heat_scale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "tables/cell_colours.h"
#include "tables/cell_ground.h"
#include "tables/table_grid.h"

namespace zentaq {
namespace {

constexpr int lastHeatStep = 255;
constexpr Rgb heatDaySurface = 0xFFFFFF;
constexpr Rgb heatNightSurface = 0x0B0D10;
constexpr Rgb heatDayText = 0x10141A;
constexpr Rgb heatNightText = 0xF0F2F5;

/// As light, 0 to 1.
using Light = std::array<double, 3>;

Rgb heatGround(int step, int trail, bool night) {
    return cellGround(heatColour(step / 255.0), trail, night, night ? heatNightSurface : heatDaySurface);
}
Rgb heatByDay(int step) {
    return heatGround(step, TableGrid::noTrail, false);
}
Rgb heatAtNight(int step) {
    return heatGround(step, TableGrid::noTrail, true);
}

double lightOfPart(Rgb colour, int shift) {
    const double share = static_cast<double>(colour >> shift & 0xFFU) / 255;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
}
Light lightOf(Rgb colour) {
    return {lightOfPart(colour, 16), lightOfPart(colour, 8), lightOfPart(colour, 0)};
}
double luminanceOf(const Light& light) {
    return 0.2126 * light[0] + 0.7152 * light[1] + 0.0722 * light[2];
}
/// L* of the usual color space, 0 for black and 100 for white.
double lightnessOf(Rgb colour) {
    return 116 * std::cbrt(luminanceOf(lightOf(colour))) - 16;
}

/// Machado, Oliveira and Fernandes 2009, severity 1.
using Blindness = std::array<Light, 3>;
constexpr Blindness protanopia{
    {{0.152286, 1.052583, -0.204868}, {0.114503, 0.786281, 0.099216}, {-0.003882, -0.048116, 1.051998}}};
constexpr Blindness deuteranopia{
    {{0.367322, 0.860646, -0.227968}, {0.280085, 0.672501, 0.047413}, {-0.011820, 0.042940, 0.968881}}};

Light asSeenWith(const Blindness& blindness, const Light& light) {
    Light seen{};
    for (std::size_t i = 0; i < 3; ++i) {
        const Light& row = blindness.at(i);
        seen.at(i) = std::clamp(row[0] * light[0] + row[1] * light[1] + row[2] * light[2], 0.0, 1.0);
    }
    return seen;
}

TEST(HeatScale, GoesFromDarkBlueOverGrayToYellow) {
    EXPECT_EQ(heatByDay(0), 0x002570U);
    EXPECT_EQ(heatByDay(255), 0xFFDE44U);
    const Rgb middle = heatByDay(128);
    const std::array parts{middle >> 16 & 0xFFU, middle >> 8 & 0xFFU, middle & 0xFFU};
    const auto [least, most] = std::ranges::minmax(parts);
    EXPECT_LE(most - least, 6U) << "no hue is told in the middle";
}

TEST(HeatScale, MixesTwoNeighbouringPointsByTheirShares) {
    EXPECT_EQ(heatByDay(51), 0x334C78U);
    // 17 of 51 steps on: a third of the way from 51, 76, 120 to 102, 110, 127.
    EXPECT_EQ(heatByDay(68), 0x44577AU);
}

TEST(HeatScale, HoldsItsEndsBeyondThemAndHasNoColourForNoNumber) {
    EXPECT_EQ(heatColour(-1), heatColour(0));
    EXPECT_EQ(heatColour(7), heatColour(1));
    EXPECT_EQ(heatColour(std::numeric_limits<double>::quiet_NaN()), TableGrid::white);
}

TEST(HeatScale, IsToldFromShadesAndPaint) {
    EXPECT_TRUE(isHeatColour(heatColour(0)));
    EXPECT_TRUE(isHeatColour(heatColour(1)));
    EXPECT_FALSE(isHeatColour(TableGrid::white));
    EXPECT_FALSE(isHeatColour(-1));
    for (int tenths = -2000; tenths <= 2000; ++tenths) {
        ASSERT_FALSE(isHeatColour(shadeOf(static_cast<float>(tenths) / 10, 100, 50))) << tenths;
    }
}

TEST(HeatScale, LuminanceRisesFromEachStepToTheNext) {
    for (int step = 1; step <= lastHeatStep; ++step) {
        ASSERT_GT(luminanceOf(lightOf(heatByDay(step))), luminanceOf(lightOf(heatByDay(step - 1)))) << step;
    }
}

TEST(HeatScale, LightnessRisesEvenly) {
    const double whole = lightnessOf(heatByDay(255)) - lightnessOf(heatByDay(0));
    EXPECT_GT(whole, 65) << "a scale that is seen";
    constexpr int part = 15;  // of 17 parts
    for (int step = part; step <= lastHeatStep; ++step) {
        const double rise = lightnessOf(heatByDay(step)) - lightnessOf(heatByDay(step - part));
        ASSERT_NEAR(rise, whole / 17, 0.15 * whole / 17) << step;
    }
}

TEST(HeatScale, WhoIsBlindToRedOrGreenSeesTheSameOrder) {
    for (const Blindness& blindness : {protanopia, deuteranopia}) {
        for (int step = 1; step <= lastHeatStep; ++step) {
            ASSERT_GT(luminanceOf(asSeenWith(blindness, lightOf(heatByDay(step)))),
                      luminanceOf(asSeenWith(blindness, lightOf(heatByDay(step - 1)))))
                << step;
        }
    }
}

// Half the parts of a color are left, too few for 256 steps that all differ.
TEST(HeatScale, NightKeepsTheOrderOfValuesAndDimsThem) {
    constexpr int seen = 4;
    for (int step = seen; step <= lastHeatStep; ++step) {
        const Light now = lightOf(heatAtNight(step));
        const Light before = lightOf(heatAtNight(step - seen));
        ASSERT_GT(luminanceOf(now), luminanceOf(before)) << step;
        for (const Blindness& blindness : {protanopia, deuteranopia}) {
            ASSERT_GT(luminanceOf(asSeenWith(blindness, now)), luminanceOf(asSeenWith(blindness, before)))
                << step;
        }
    }
    EXPECT_LT(luminanceOf(lightOf(heatAtNight(255))), 0.3 * luminanceOf(lightOf(heatByDay(255))));
}

TEST(HeatScale, DigitsReadOnEveryStepByDayAndByNight) {
    for (int step = 0; step <= lastHeatStep; ++step) {
        for (int trail = TableGrid::noTrail; trail <= 3; ++trail) {
            const Rgb day = heatGround(step, trail, false);
            const Rgb night = heatGround(step, trail, true);
            ASSERT_GE(contrastOf(cellInk(day, heatDayText), day), 4.5) << step << " trail " << trail;
            ASSERT_GE(contrastOf(cellInk(night, heatNightText), night), 4.5) << step << " trail " << trail;
        }
    }
}

// ---- The cells that it spans

class HeatMapTest : public testing::Test {
 protected:
    HeatMapTest() { map.resize(2, 2); }
    void fill(float first, float second, float third, float fourth) {
        map.put(1, 1, first);
        map.put(1, 2, second);
        map.put(2, 1, third);
        map.put(2, 2, fourth);
        map.measure();
    }
    HeatMap map;
};

TEST_F(HeatMapTest, SpansFromTheLowestToTheHighestValue) {
    fill(-10, 0, 20, 30);
    EXPECT_EQ(map.colour(1, 1), heatColour(0));
    EXPECT_EQ(map.colour(1, 2), heatColour(0.25));
    EXPECT_EQ(map.colour(2, 1), heatColour(0.75));
    EXPECT_EQ(map.colour(2, 2), heatColour(1));
}

TEST_F(HeatMapTest, EqualValuesStandInTheMiddle) {
    fill(7, 7, 7, 7);
    EXPECT_EQ(map.colour(1, 1), heatColour(0.5));
    EXPECT_EQ(map.colour(2, 2), heatColour(0.5));
}

TEST_F(HeatMapTest, TellsWhetherAValueHasMovedTheSpan) {
    fill(0, 10, 20, 30);
    map.put(1, 2, 15);
    EXPECT_FALSE(map.measure());
    map.put(1, 2, 60);
    EXPECT_TRUE(map.measure());
    EXPECT_EQ(map.colour(2, 2), heatColour(0.5));
    map.put(1, 2, 15);
    EXPECT_TRUE(map.measure()) << "the highest is gone";
    EXPECT_EQ(map.colour(2, 2), heatColour(1));
}

TEST_F(HeatMapTest, WhatIsNoNumberHasNoColourAndNoPartInTheSpan) {
    fill(0, std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(), 10);
    EXPECT_EQ(map.colour(1, 2), TableGrid::white);
    EXPECT_EQ(map.colour(2, 1), TableGrid::white);
    EXPECT_EQ(map.colour(2, 2), heatColour(1));
}

TEST_F(HeatMapTest, TheWidestSpanThatFloatsHaveIsOne) {
    constexpr float most = std::numeric_limits<float>::max();
    fill(-most, 0, 0, most);
    EXPECT_EQ(map.colour(1, 1), heatColour(0));
    EXPECT_EQ(map.colour(1, 2), heatColour(0.5));
    EXPECT_EQ(map.colour(2, 2), heatColour(1));
}

TEST_F(HeatMapTest, CellsOutsideAreWhite) {
    fill(0, 1, 2, 3);
    map.put(3, 1, 100);
    EXPECT_FALSE(map.measure());
    for (const auto& [row, column] : {std::pair(0, 1), {1, 0}, {3, 1}, {1, 3}, {-1, 1}}) {
        EXPECT_EQ(map.colour(row, column), TableGrid::white);
    }
    HeatMap empty;
    EXPECT_EQ(empty.colour(1, 1), TableGrid::white);
}

}  // namespace
}  // namespace zentaq
