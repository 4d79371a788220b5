// The pictures of what settings do.
#include "config/setting_sketch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::SizeIs;

struct Sketches {
    RecordingHost host;
    Unit unit{orbaKind(), host};
};

std::vector<std::string> texts(const SettingSketch& sketch) {
    std::vector<std::string> all;
    for (const SketchMark& mark : sketch.marks) all.push_back(mark.text);
    return all;
}

TEST(SettingSketch, TheExtraFuelOfAnAccelerationFallsToNothingInItsTime) {
    Sketches one;
    one.unit.set("ACE4", 0.5);
    one.unit.set("ACE2", 40);
    one.unit.set("ACE7", 25);
    const auto sketch = settingSketch(one.unit, 2);
    ASSERT_TRUE(sketch);
    ASSERT_THAT(sketch->lines, SizeIs(5));
    EXPECT_THAT(sketch->lines.front().points, ElementsAre(ChartPoint{0, 40}, ChartPoint{0.5, 0}));
    EXPECT_EQ(sketch->lines.back().points.front(), (ChartPoint{0, 25}));
    EXPECT_THAT(sketch->words, HasSubstr("in 0.5 seconds"));
}

TEST(SettingSketch, TheRevLimiterTellsWhereEachStageBeginsAndWhereItEnds) {
    Sketches one;
    one.unit.set("REV_Limiter", 7000);
    one.unit.set("REV_Hysteresis", 150);
    one.unit.set("OVR1THR", 50);
    one.unit.set("OVR2THR", 120);
    const auto sketch = settingSketch(one.unit, 9);
    ASSERT_TRUE(sketch);
    EXPECT_THAT(texts(*sketch),
                ElementsAre("Limit 7000", "Stage 1: 7050", "Stage 2: 7120", "Back below 6850"));
    EXPECT_EQ(sketch->marks[1].at.x, 7050);
    one.unit.set("opt_FullCut", 1);
    EXPECT_THAT(texts(*settingSketch(one.unit, 9)), ElementsAre("Limit 7000", "Back below 6850"));
}

TEST(SettingSketch, TheIdleSpeedIsLevelBeyondItsTemperatures) {
    Sketches one;
    for (int i = 0; i < 3; ++i) {
        one.unit.set("ISTMP", 20 * i, i);
        one.unit.set("ISRPM", 1400 - 200 * i, i);
    }
    one.unit.set("IAC_RPM_HI", 2000);
    const auto sketch = settingSketch(one.unit, 10);
    ASSERT_TRUE(sketch);
    EXPECT_THAT(sketch->lines.front().points,
                ElementsAre(ChartPoint{-10, 1400}, ChartPoint{0, 1400}, ChartPoint{20, 1200},
                            ChartPoint{40, 1000}, ChartPoint{50, 1000}));
    ASSERT_THAT(sketch->lines, SizeIs(2));
    EXPECT_EQ(sketch->lines.back().name, "control ends above");
}

TEST(SettingSketch, ThereIsNoneOfWhatTheKindHasNot) {
    RecordingHost host;
    Unit spark(*unitKindOfSlot(5), host);
    EXPECT_FALSE(settingSketch(spark, 2));
    EXPECT_FALSE(settingSketch(spark, 10));
    EXPECT_TRUE(settingSketch(spark, 9));
    Sketches one;
    EXPECT_FALSE(settingSketch(one.unit, 11));
}

}  // namespace
}  // namespace zentaq
