#include <gtest/gtest.h>

#include <set>

#include "qt/contrast.h"
#include "qt/look.h"
#include "qt/style_shapes.h"

namespace zentaq {
namespace {

std::string nameOf(QColor LookColors::*part) {
    for (const LookColor& row : lookTable()) {
        if (row.part == part) return row.name;
    }
    return {};
}

TEST(LookColors, EveryPairIsSeenByDayAndByNight) {
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
        const LookColors colors = lookColors(mode);
        for (const auto& [ink, ground, least] : lookPairs()) {
            EXPECT_GE(contrast(colors.*ink, colors.*ground), least)
                << nameOf(ink) << " on " << nameOf(ground)
                << (mode == DisplayMode::Day ? " by day" : " by night");
        }
    }
}

// A colour without a pair would be one that nobody has measured.
TEST(LookColors, EachButTheLinesThatMeanNothingStandsInAPair) {
    std::set<std::string> paired{"border"};
    for (const auto& [ink, ground, least] : lookPairs()) {
        paired.insert(nameOf(ink));
        paired.insert(nameOf(ground));
    }
    std::set<std::string> all;
    for (const LookColor& row : lookTable()) all.insert(row.name);
    EXPECT_EQ(paired, all);
}

// What the style frames a badge with: the color of the look, or what is seen where that is not.
TEST(LookColors, TheFrameOfTheKeyboardAndTheEdgeAreSeenOnEveryBadge) {
    using Of = LookColors;
    for (const DisplayMode mode : {DisplayMode::Day, DisplayMode::Night}) {
        const LookColors colors = lookColors(mode);
        for (QColor Of::*ground : {&Of::badge, &Of::goodBadge, &Of::changedBadge, &Of::warningBadge,
                                   &Of::alarmBadge, &Of::highlight}) {
            for (QColor Of::*mark : {&Of::focus, &Of::edge}) {
                const QColor drawn = seenOn(colors.*mark, colors.*ground);
                EXPECT_GE(contrast(drawn, colors.*ground), leastMarkContrast)
                    << nameOf(mark) << " on " << nameOf(ground)
                    << (mode == DisplayMode::Day ? " by day" : " by night");
            }
        }
    }
}

TEST(LookColors, EachHasItsRow) {
    EXPECT_EQ(lookTable().size() * sizeof(QColor), sizeof(LookColors));
}

// By hand, from the definition: (1 + 0.05) / (0 + 0.05); red alone has 0.2126 of the light.
TEST(Contrast, IsTheOneOfTheAccessibilityGuidelines) {
    EXPECT_DOUBLE_EQ(contrast(Qt::white, Qt::black), 21);
    EXPECT_DOUBLE_EQ(contrast(Qt::white, Qt::white), 1);
    EXPECT_NEAR(contrast(Qt::red, Qt::black), (0.2126 + 0.05) / 0.05, 1e-4);
}

TEST(Contrast, InkIsBlackOrWhiteWhicheverReadsBetter) {
    EXPECT_EQ(inkFor(Qt::red), QColor(Qt::black));
    EXPECT_EQ(inkFor(Qt::blue), QColor(Qt::white));
}

}  // namespace
}  // namespace zentaq
