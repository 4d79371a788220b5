// Curve graphs without a window: which there are, their labels, frames, live values, and what a move enters.
#include "config/curve_graph.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

struct Curves {
    RecordingHost host;
    Unit unit{orbaKind(), host};

    CurveGraph of(std::string_view name) { return {unit, *curveNamed(name)}; }
};

std::vector<std::string> namesOf(const UnitKind& kind) {
    RecordingHost host;
    Unit unit(kind, host);
    unit.SET_TBL_DIMENSIONS("ADV", "COLS", 16);
    std::vector<std::string> names;
    for (const CurveKind& curve : curveKinds()) {
        if (hasCurve(unit, curve)) names.emplace_back(curve.name);
    }
    return names;
}

TEST(CurveGraph, AFullUnitHasSevenAndOneThatOnlyIgnitesHasItsRetardAndItsSplit) {
    EXPECT_THAT(namesOf(orbaKind()),
                ElementsAre("TPS_Blend", "Warm_Up", "CLT_ADV", "MAT_DEN", "MAT_ENR", "EGO_CAL", "DPTS"));
    EXPECT_THAT(namesOf(*unitKindOfSlot(5)), ElementsAre("MAT_DEN", "DPTS"));
}

// Typed by hand: the labels of each graph.
TEST(CurveGraph, HasTheLabelsOfItsKind) {
    Curves curves;
    curves.unit.set("AFR", 14.64);
    curves.unit.SET_TBL_DIMENSIONS("ADV", "COLS", 16);
    struct Labels {
        const char* name;
        const char* across;
        const char* up;
    };
    const std::vector<Labels> told{
        {"TPS_Blend", "Engine Speed (RPM)", "TPS Blend (%)"},
        {"Warm_Up", "Coolant Temperature (deg °C)", "Fundamental PW Enrichment (% FPW)"},
        {"CLT_ADV", "Coolant Temperature (deg °C)", "Additional Ignition Advance (0 to 60°)"},
        {"MAT_DEN", "MAT Temperature (deg °C)", "Ignition Advance (-30 to 30°)"},
        {"MAT_ENR", "MAT Temperature (deg °C)", "Fundamental PulseWidth (-50 to 50)"},
        {"EGO_CAL", "Air Fuel Ratio = 14.64", "EGO Volts"},
        {"DPTS", "Dual Plug Timig Split(RPM)", "Additional Ignition Advance (0 to 30°)"}};
    for (const Labels& one : told) {
        const CurveGraph graph = curves.of(one.name);
        EXPECT_EQ(graph.across().title, one.across) << one.name;
        EXPECT_EQ(graph.up().title, one.up) << one.name;
    }
}

TEST(CurveGraph, TemperaturesRunFromMinus40To150AndInFahrenheitTo302) {
    Curves curves;
    CurveGraph graph = curves.of("Warm_Up");
    EXPECT_EQ(graph.across().low, -40);
    EXPECT_EQ(graph.across().high, 150);
    curves.host.isFahrenheit = true;
    EXPECT_TRUE(graph.GRAPH_LAYOUT());
    EXPECT_EQ(graph.across().low, -40);
    EXPECT_EQ(graph.across().high, 302);
    EXPECT_EQ(graph.across().title, "Coolant Temperature (deg °F)");
    EXPECT_EQ(graph.points().back().x, 302);
}

// Stops of 20 cells lie 10 degrees apart, from -40 to 150; the unit's own speeds are as they stand.
TEST(CurveGraph, ReadsItsPointsFromTheCalibration) {
    Curves curves;
    for (int i = 0; i < 20; ++i) curves.unit.set("CHKTBL", 100 - i, i);
    const CurveGraph graph = curves.of("Warm_Up");
    ASSERT_THAT(graph.points(), SizeIs(20));
    EXPECT_EQ(graph.points()[0], (ChartPoint{-40, 100}));
    EXPECT_EQ(graph.points()[6], (ChartPoint{20, 94}));
    for (int i = 0; i < 8; ++i) {
        curves.unit.set("BLDTBL", 500 + i * 500, i);
        curves.unit.set("LOWBLD", i * 10, i);
    }
    EXPECT_EQ(curves.of("TPS_Blend").points()[3], (ChartPoint{2000, 30}));
}

TEST(CurveGraph, TheEgoCurveHasTheRatioAcrossAndTheVoltsUp) {
    Curves curves;
    curves.unit.set("Y", 20, 0);
    curves.unit.set("X", 0.5, 0);
    const CurveGraph graph = curves.of("EGO_CAL");
    EXPECT_FLOAT_EQ(static_cast<float>(graph.points()[0].x), 20);
    EXPECT_FLOAT_EQ(static_cast<float>(graph.points()[0].y), 0.5);
}

// 7 to 94 by about six marks: steps of 20, outward to 0 and 100.
TEST(CurveGraph, TheFrameIsRoundedOutwardsToWholeMarks) {
    Curves curves;
    for (int i = 0; i < 20; ++i) curves.unit.set("CHKTBL", i == 0 ? 94 : 7, i);
    const CurveGraph graph = curves.of("Warm_Up");
    EXPECT_EQ(graph.up().low, 0);
    EXPECT_EQ(graph.up().high, 100);
    std::vector<std::string> texts;
    for (const ChartTick& tick : graph.up().ticks) texts.push_back(tick.text);
    EXPECT_THAT(texts, ElementsAre("   0", "20.0", "40.0", "60.0", "80.0", "100.0"));
    EXPECT_EQ(graph.across().ticks[2].text, "0") << "-40, -20, 0";
    EXPECT_EQ(graph.across().ticks[1].text, "-20.0");
}

TEST(CurveGraph, ALevelCurveStandsInTheMiddleOfItsFrame) {
    Curves curves;
    const CurveGraph graph = curves.of("Warm_Up");
    EXPECT_EQ(graph.up().low, -1);
    EXPECT_EQ(graph.up().high, 1);
}

TEST(CurveGraph, ItsLiveValueIsThatOfItsKind) {
    Curves curves;
    LiveValues live;
    live.RPM = 2350;
    live.CLT = 88;
    live.MAT = 31;
    curves.unit.SET_TBL_DIMENSIONS("ADV", "COLS", 16);
    EXPECT_EQ(curves.of("TPS_Blend").getLiveVal(live), 2350);
    EXPECT_EQ(curves.of("Warm_Up").getLiveVal(live), 88);
    EXPECT_EQ(curves.of("CLT_ADV").getLiveVal(live), 88);
    EXPECT_EQ(curves.of("MAT_DEN").getLiveVal(live), 31);
    EXPECT_EQ(curves.of("MAT_ENR").getLiveVal(live), 31);
    EXPECT_EQ(curves.of("DPTS").getLiveVal(live), 2350);
    EXPECT_EQ(curves.of("EGO_CAL").getLiveVal(live), 0);
    curves.host.isFahrenheit = true;
    EXPECT_NEAR(curves.of("Warm_Up").getLiveVal(live), 190.4, 0.001);
}

TEST(CurveGraph, TheEgoCurveHasNoDot) {
    Curves curves;
    CurveGraph graph = curves.of("EGO_CAL");
    LiveValues live;
    live.RPM = 1000;
    EXPECT_FALSE(graph.redrawDot(live));
    EXPECT_FALSE(graph.dot().has_value());
}

// Between 60 at 20 degrees and 40 at 30 the curve is at 50 at 25.
TEST(CurveGraph, TheDotMovesOnTheCurveOnlyWithAnotherValue) {
    Curves curves;
    curves.unit.set("CHKTBL", 60, 6);
    curves.unit.set("CHKTBL", 40, 7);
    CurveGraph graph = curves.of("Warm_Up");
    EXPECT_FALSE(graph.dot().has_value());
    LiveValues live;
    live.CLT = 25;
    EXPECT_TRUE(graph.redrawDot(live));
    EXPECT_FALSE(graph.redrawDot(live));
    EXPECT_EQ(graph.dot(), (ChartPoint{25, 50}));
    live.CLT = 400;
    EXPECT_TRUE(graph.redrawDot(live));
    EXPECT_EQ(graph.dot(), (ChartPoint{150, 0})) << "at the edge";
    graph.forgetLive();
    EXPECT_FALSE(graph.dot().has_value());
    EXPECT_THAT(graph.trace(), SizeIs(0));
}

TEST(CurveGraph, TheTraceHoldsTheLast24PlacesTheLastOneFirst) {
    Curves curves;
    CurveGraph graph = curves.of("Warm_Up");
    LiveValues live;
    for (int i = 0; i < 30; ++i) {
        live.CLT = static_cast<float>(i);
        graph.redrawDot(live);
    }
    const auto trace = graph.trace();
    ASSERT_THAT(trace, SizeIs(24));
    EXPECT_EQ(trace.front().x, 29);
    EXPECT_EQ(trace.back().x, 6);
}

TEST(CurveGraph, WhatIsNoNumberIsNoPlaceOnIt) {
    Curves curves;
    const int cell = curves.unit.find("CHKTBL")->index;
    curves.unit.AssignDirectIndex(NAN, cell + 3);
    curves.unit.set("CHKTBL", 50, 0);
    CurveGraph graph = curves.of("Warm_Up");
    EXPECT_EQ(graph.up().high, 50);
    EXPECT_FALSE(isPlace(graph.points()[3]));
    LiveValues live;
    live.CLT = NAN;
    EXPECT_FALSE(graph.redrawDot(live));
    live.CLT = -10;
    graph.redrawDot(live);
    EXPECT_TRUE(isPlace(*graph.dot()));
}

// ---- Changes

TEST(CurveGraph, AMoveIsRoundedToTheStepAndHeldInTheRangeOfTheMember) {
    Curves curves;
    const CurveGraph warm = curves.of("Warm_Up");
    EXPECT_EQ(warm.entryFor(4, CurveWay::Up, 33.4), "33");
    EXPECT_EQ(warm.entryFor(4, CurveWay::Up, 999), "250");
    EXPECT_EQ(warm.entryFor(4, CurveWay::Up, -999), "0");
    EXPECT_EQ(warm.entryFor(99, CurveWay::Up, 5), "");
    EXPECT_EQ(warm.entryFor(4, CurveWay::Across, 5), "") << "its stops stand still";
    const CurveGraph advance = curves.of("CLT_ADV");
    EXPECT_EQ(advance.entryFor(0, CurveWay::Up, 12.3), "12.5");
}

TEST(CurveGraph, AStepGoesOnFromTheValueThatThePointHas) {
    Curves curves;
    curves.unit.set("MATENH", -3, 2);
    const CurveGraph graph = curves.of("MAT_ENR");
    EXPECT_EQ(graph.entryAfter(2, CurveWay::Up, 1), "-2.5");
    EXPECT_EQ(graph.entryAfter(2, CurveWay::Up, -10), "-8");
}

TEST(CurveGraph, SpeedsOfTheBlendStayBetweenTheirNeighbors) {
    Curves curves;
    for (int i = 0; i < 8; ++i) curves.unit.set("BLDTBL", 1000 + 1000 * i, i);
    const CurveGraph graph = curves.of("TPS_Blend");
    EXPECT_EQ(graph.entryFor(1, CurveWay::Across, 2480), "2500");
    EXPECT_EQ(graph.entryFor(1, CurveWay::Across, 9000), "2950");
    EXPECT_EQ(graph.entryFor(1, CurveWay::Across, 0), "1050");
}

TEST(CurveGraph, VoltsOfTheSensorStayAboveTheLeftAndBelowTheRightOnes) {
    Curves curves;
    for (int i = 0; i < 10; ++i) {
        curves.unit.set("X", 0.5 * i, i);
        curves.unit.set("Y", 10 + i, i);
    }
    const CurveGraph graph = curves.of("EGO_CAL");
    EXPECT_EQ(graph.entryFor(2, CurveWay::Up, 3), "1.49");
    EXPECT_EQ(graph.entryFor(2, CurveWay::Up, 0), "0.51");
    EXPECT_EQ(graph.entryFor(2, CurveWay::Across, 30), "13");
    EXPECT_EQ(graph.entryFor(2, CurveWay::Across, 12.52), "12.5");
}

TEST(CurveGraph, TellsAPointInWords) {
    Curves curves;
    curves.unit.set("CHKTBL", 12, 6);
    EXPECT_EQ(curves.of("Warm_Up").inWords(6), "Point 7 of 20: 20 °C, 12 %");
    EXPECT_EQ(curves.of("Warm_Up").inWords(20), "");
}

// ---- What stands with it

TEST(CurveGraph, EveryKindStandsOnAPageWithTheBoxesThatItMoves) {
    std::set<int> pages;
    for (const CurveKind& kind : curveKinds()) {
        EXPECT_TRUE(pages.insert(kind.page).second) << kind.name;
        EXPECT_EQ(curveOfPage(kind.page), &kind);
        for (const CurveSide& side : {kind.across, kind.up}) {
            if (side.control.empty()) continue;
            const FieldRow* row = fieldOf(side.control);
            ASSERT_NE(row, nullptr) << side.control;
            EXPECT_EQ(row->page, kind.page);
            EXPECT_EQ(row->member, side.member);
        }
    }
    EXPECT_EQ(curveOfPage(9), nullptr);
    EXPECT_EQ(curveNamed("none"), nullptr);
}

}  // namespace
}  // namespace zentaq
