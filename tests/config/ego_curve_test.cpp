#include "config/ego_curve.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/fake_platform.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::Each;
using ::testing::Field;
using ::testing::SizeIs;

struct Curve {
    RecordingHost host;
    Unit unit{orbaKind(), host};
    Database database = Database::open(builtReference());
    std::vector<EgoPreset> presets = egoPresets(database);

    const EgoPreset& preset(std::string_view name) {
        return *std::ranges::find(presets, name, &EgoPreset::name);
    }
};

TEST(EgoCurve, HasTwoNarrowBandsAndAtLeastTenLinesOfWidebandOutputs) {
    Curve curve;
    EXPECT_EQ(std::ranges::count(curve.presets, int{narrowBand}, &EgoPreset::type), 2);
    EXPECT_GE(std::ranges::count(curve.presets, int{wideBand}, &EgoPreset::type), 10);
}

// The names tell the line: at the lowest volts the first ratio, at the highest the second, straight between.
TEST(EgoCurve, AWidebandPresetIsTheLineOfItsName) {
    Curve curve;
    for (const EgoPreset& preset : curve.presets) {
        if (preset.type != wideBand) continue;
        float top = 0;
        float low = 0;
        float high = 0;
        ASSERT_EQ(std::sscanf(preset.name.c_str(), "0 to %f V = %f to %f", &top, &low, &high), 3)
            << preset.name;
        for (std::size_t i = 0; i < preset.volts.size(); ++i) {
            EXPECT_NEAR(preset.ratios[i], low + (high - low) * preset.volts[i] / top, 0.0051)
                << preset.name << " " << i;
        }
        EXPECT_FLOAT_EQ(preset.volts.front(), 0);
        EXPECT_FLOAT_EQ(preset.volts.back(), top);
    }
}

TEST(EgoCurve, VoltsOfEveryPresetRiseAndEveryPresetIsTakenWhole) {
    Curve curve;
    for (const EgoPreset& preset : curve.presets) {
        EXPECT_TRUE(std::ranges::is_sorted(preset.volts, std::less_equal<>())) << preset.name;
        EXPECT_THAT(putEgoPreset(curve.unit, preset), SizeIs(0)) << preset.name;
        EXPECT_EQ(egoPresetOf(curve.unit, curve.presets), preset.name);
        EXPECT_EQ(curve.unit.get("EGO_Type"), preset.type);
    }
}

TEST(EgoCurve, AChangedPointIsACurveOfItsOwn) {
    Curve curve;
    EXPECT_THAT(putEgoPreset(curve.unit, curve.preset("0 to 5 V = 9.0 to 19.0")), SizeIs(0));
    EXPECT_TRUE(curve.unit.set("Y", 15, 5));
    EXPECT_EQ(egoPresetOf(curve.unit, curve.presets), "");
}

TEST(EgoCurve, APresetTakesTheTrimsAwayAndLeavesTheNotes) {
    Curve curve;
    curve.unit.NOTES_TEXT("Hello");
    EXPECT_TRUE(curve.unit.set("FuelTrim", -4, 2));
    EXPECT_TRUE(hasFuelTrims(curve.unit));
    EXPECT_THAT(putEgoPreset(curve.unit, curve.presets.front()), SizeIs(0));
    EXPECT_FALSE(hasFuelTrims(curve.unit));
    EXPECT_EQ(curve.unit.get("FuelTrim", 2), 0);
    EXPECT_EQ(curve.unit.NOTES_TEXT(), "Hello") << "the last trim shares its cell with their first letter";
}

TEST(EgoCurve, TheEndsOfTheRatiosAreBoundedByTheMember) {
    Curve curve;
    EXPECT_THAT(putEgoPreset(curve.unit, curve.preset("0 to 5 V = 10.0 to 20.0")), SizeIs(0));
    EXPECT_FLOAT_EQ(egoRatioLimits(curve.unit, 0).minimum, 0.12F);
    EXPECT_FLOAT_EQ(egoRatioLimits(curve.unit, 0).maximum, 11.12F);
    EXPECT_FLOAT_EQ(egoRatioLimits(curve.unit, 9).minimum, 18.88F);
    EXPECT_FLOAT_EQ(egoRatioLimits(curve.unit, 9).maximum, 29.28F);
    EXPECT_EQ(egoRatioLimits(curve.unit, 1).text, "(10 to 12.22 AFR, 2)");
}

}  // namespace
}  // namespace zentaq
