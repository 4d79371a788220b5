#include "logs/plot_spans.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace zentaq {
namespace {

using Spans = std::vector<PlotSpan>;

/// A second is a pixel, value 0 stands at pixel 100 and value 1 a pixel above it; 20 by 101 pixels.
constexpr PlotGrid handGrid{.foot = 100, .lastX = 19, .top = 0, .bottom = 100};

Spans spansOf(const std::vector<PlotPoint>& points) {
    Spans spans;
    plotSpans(points, handGrid, spans);
    return spans;
}

TEST(PlotSpans, AreAStrokeAColumnFromItsLowestToItsHighestValue) {
    EXPECT_EQ(spansOf({{3.5, 10}, {3.5, 40}}), (Spans{{3, 60, 90}}));
}

TEST(PlotSpans, OfALevelLineAreTwoPixelsThick) {
    EXPECT_EQ(spansOf({{3.5, 10}, {4.5, 10}}), (Spans{{3, 90, 91}, {4, 90, 91}}));
}

TEST(PlotSpans, TouchTheColumnBefore) {
    // From 90 up to 60; the stroke that goes up there goes down again as well.
    EXPECT_EQ(spansOf({{3.5, 10}, {4.5, 40}, {5.5, 10}}), (Spans{{3, 90, 91}, {4, 60, 89}, {5, 90, 91}}));
}

TEST(PlotSpans, BridgeColumnsWithoutAPoint) {
    // From 90 to 87 in three steps of a pixel.
    EXPECT_EQ(spansOf({{3.5, 10}, {6.5, 13}}), (Spans{{3, 90, 91}, {4, 89, 90}, {5, 88, 89}, {6, 87, 88}}));
    EXPECT_EQ(spansOf({{-400, 10}, {900, 10}}).size(), 20U) << "all of the pane";
}

TEST(PlotSpans, AreCutAtThePane) {
    EXPECT_EQ(spansOf({{3.5, -50}, {3.5, 500}}), (Spans{{3, 0, 100}}));
    EXPECT_TRUE(spansOf({{3.5, 300}, {3.5, 500}}).empty());
    EXPECT_TRUE(spansOf({{-9, 10}, {-1, 10}}).empty());
    EXPECT_TRUE(spansOf({{20, 10}, {30, 10}}).empty());
    EXPECT_EQ(spansOf({{3.5, 1e30F}, {3.5, 10}}), (Spans{{3, 0, 90}}));
}

TEST(PlotSpans, PartWhereAValueIsNoNumber) {
    const float none = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(spansOf({{3.5, 10}, {4.5, none}, {5.5, 40}}), (Spans{{3, 90, 91}, {5, 60, 61}}));
}

TEST(PlotCover, LeavesWhatIsNotHiddenInFront) {
    PlotCover cover;
    cover.begin(handGrid);
    Spans front{{3, 20, 40}, {4, 0, 100}};
    cover.takeVisible(front);
    EXPECT_EQ(front, (Spans{{3, 20, 40}, {4, 0, 100}}));
    Spans back{{3, 10, 50}, {4, 50, 60}, {5, 1, 2}};
    cover.takeVisible(back);
    EXPECT_EQ(back, (Spans{{3, 10, 19}, {3, 41, 50}, {5, 1, 2}}));
    Spans last{{3, 0, 100}};
    cover.takeVisible(last);
    EXPECT_EQ(last, (Spans{{3, 0, 9}, {3, 51, 100}}));
    cover.begin(handGrid);
    cover.takeVisible(last = {{3, 20, 40}});
    EXPECT_EQ(last, (Spans{{3, 20, 40}})) << "another picture";
}

// A second way: every pixel belongs to the first stroke that reaches it.
TEST(PlotCover, GivesEveryPixelToTheFirstThatReachesIt) {
    std::uint32_t noise = 7;
    const auto random = [&](int below) {
        noise = noise * 1664525 + 1013904223;
        return static_cast<int>((noise >> 16) % static_cast<std::uint32_t>(below));
    };
    PlotCover cover;
    cover.begin(handGrid);
    std::set<std::pair<int, int>> taken;
    for (int line = 0; line < 200; ++line) {
        const int x = random(3);
        const int top = random(95);
        Spans spans{{x, top, top + random(6)}};
        std::set<std::pair<int, int>> expected;
        for (int y = spans[0].top; y <= spans[0].bottom; ++y) {
            if (taken.insert({x, y}).second) expected.insert({x, y});
        }
        cover.takeVisible(spans);
        std::set<std::pair<int, int>> seen;
        for (const PlotSpan& span : spans) {
            for (int y = span.top; y <= span.bottom; ++y) EXPECT_TRUE(seen.insert({span.x, y}).second);
        }
        EXPECT_EQ(seen, expected) << line;
    }
}

}  // namespace
}  // namespace zentaq
