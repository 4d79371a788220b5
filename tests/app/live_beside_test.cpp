// What the engine does now, beside the settings.
#include "app/live_beside.h"

#include <gtest/gtest.h>

#include "config/field_pages.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

TEST(LiveBeside, EveryReadingThatIsNamedIsOneOfThePanel) {
    RecordingHost host;
    Unit unit(orbaKind(), host);
    const auto readings = dashboardReadings({}, unit, {});
    int named = 0;
    for (const FieldRow& row : fieldRows()) {
        const std::string_view reading = readingBeside(row.member);
        if (reading.empty()) continue;
        ++named;
        EXPECT_NE(findReading(readings, reading), nullptr) << row.member;
    }
    EXPECT_GT(named, 30);
}

TEST(LiveBeside, TellsValueAndUnit) {
    RecordingHost host;
    Unit unit(orbaKind(), host);
    LiveValues live;
    live.RPM = 2350;
    live.TPS = 1.5F;
    const auto readings = dashboardReadings(live, unit, {});
    EXPECT_EQ(liveBeside(readings, "REV_Limiter"), "now 2350 rpm");
    EXPECT_EQ(liveBeside(readings, "TPS_FCV"), "now 1.50 v");
    EXPECT_EQ(liveBeside(readings, "NOTES"), "");
    EXPECT_EQ(liveBeside({}, "REV_Limiter"), "") << "no unit tells it";
}

TEST(LiveBeside, WhatANarrowFrameDoesNotCarryIsNotTold) {
    RecordingHost host;
    Unit unit(orbaKind(), host);
    LiveValues live;
    EXPECT_EQ(liveBeside(dashboardReadings(live, unit, {}), "ACE2"), "");
    live.INJ_ACE2 = 12;
    EXPECT_EQ(liveBeside(dashboardReadings(live, unit, {}), "ACE2"), "now 12 %");
}

}  // namespace
}  // namespace zentaq
