#include "config/injector_sizing.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

/// A sequential four on a 1 bar sensor: k = 0.4 + 0.0125 * 4 = 0.45; 60,000 / 6000 = 10 ms.
SizingInput four() {
    return {.raceCam = false,
            .cylinders = 4,
            .mapBar = 1,
            .horsePower = 200,
            .injectors = 4,
            .alcohol = false,
            .phdSeq = 3,
            .revLimit = 6000,
            .maxBoost = 0};
}

double needAt(double mapBar) {
    SizingInput input = four();
    input.mapBar = mapBar;
    return Calculate_FLOW(input).value().InjectorFlowNeed;
}

double pulseOf(const SizingInput& input) {
    return Calculate_UAP(input, Calculate_FLOW(input).value()).value();
}

TEST(InjectorSizing, AStreetCamNeedsMoreWithEachCylinder) {
    const InjectorSizing sizing = Calculate_FLOW(four()).value();
    EXPECT_NEAR(sizing.InjectorFlowNeed, 22.5, 1e-12);  // 0.45 * 200 / 4
    EXPECT_NEAR(sizing.InjectionPeriod, 10, 1e-12);
    EXPECT_NEAR(sizing.InjectorFlow, 25.568181818181817, 1e-12);  // 22.5 * 10 / 8.8
    SizingInput eight = four();
    eight.cylinders = 8;
    EXPECT_NEAR(Calculate_FLOW(eight)->InjectorFlowNeed, 25, 1e-12);  // (0.4 + 0.1) * 50
}

TEST(InjectorSizing, ARaceCamNeedsTheSameWhateverTheCylinders) {
    SizingInput race = four();
    race.raceCam = true;
    EXPECT_NEAR(Calculate_FLOW(race)->InjectorFlowNeed, 27.5, 1e-12);  // 0.55 * 50
    race.cylinders = 8;
    EXPECT_NEAR(Calculate_FLOW(race)->InjectorFlowNeed, 27.5, 1e-12);
}

TEST(InjectorSizing, ASensorOfMoreRangeAddsItsShare) {
    EXPECT_NEAR(needAt(1), 22.5, 1e-12);
    EXPECT_NEAR(needAt(1.5), 22.5, 1e-12);  // exactly 1.5 adds nothing
    EXPECT_NEAR(needAt(1.51), 25, 1e-12);   // (0.45 + 0.05) * 50
    EXPECT_NEAR(needAt(2.49), 25, 1e-12);
    EXPECT_NEAR(needAt(2.5), 22.5, 1e-12);    // exactly 2.5 adds nothing
    EXPECT_NEAR(needAt(2.51), 26.25, 1e-12);  // (0.45 + 0.075) * 50
    EXPECT_NEAR(needAt(3.49), 26.25, 1e-12);
    EXPECT_NEAR(needAt(3.5), 27.5, 1e-12);  // (0.45 + 0.1) * 50
    EXPECT_NEAR(needAt(10), 27.5, 1e-12);
}

TEST(InjectorSizing, AlcoholTakes22TimesTheFuel) {
    SizingInput alcohol = four();
    alcohol.alcohol = true;
    EXPECT_NEAR(Calculate_FLOW(alcohol)->InjectorFlowNeed, 49.5, 1e-12);  // 22.5 * 2.2
}

TEST(InjectorSizing, SeveralInjectionsATurnShareItsTime) {
    SizingInput input = four();
    input.phdSeq = 0;
    const InjectorSizing sizing = Calculate_FLOW(input).value();
    EXPECT_NEAR(sizing.InjectionPeriod, 5, 1e-12);                // 10 / (4 / 2)
    EXPECT_NEAR(sizing.InjectorFlow, 29.605263157894736, 1e-12);  // 22.5 * 5 / 3.8
    for (const int other : {1, 2, 3}) {
        input.phdSeq = other;
        EXPECT_NEAR(Calculate_FLOW(input)->InjectionPeriod, 10, 1e-12) << other;
    }
}

TEST(InjectorSizing, CountsIn64Bits) {
    SizingInput input = four();
    input.revLimit = 7000;
    // 60,000 / 7000 = 8.571428571428571; 22.5 * 8.571428571428571 / 7.371428571428571
    EXPECT_NEAR(Calculate_FLOW(input)->InjectorFlow, 26.162790697674417, 1e-13);
}

TEST(InjectorSizing, KeepsTheFormulaWhereTheDeadTimeIsLongerThanThePeriod) {
    SizingInput input = four();
    input.phdSeq = 0;
    input.cylinders = 8;
    input.revLimit = 20000;  // 3 ms in 4 parts: 0.75 ms
    EXPECT_NEAR(Calculate_FLOW(input)->InjectorFlow, 25 * 0.75 / (0.75 - 1.2), 1e-12);
}

TEST(InjectorSizing, NothingIsComputedWithoutPower) {
    SizingInput input = four();
    input.horsePower = 0;
    EXPECT_FALSE(Calculate_FLOW(input));
}

TEST(InjectorSizing, ADivisionByNothingGivesNothing) {
    SizingInput input = four();
    input.revLimit = 0;  // an empty field
    EXPECT_FALSE(Calculate_FLOW(input));
    input = four();
    input.injectors = 0;
    EXPECT_FALSE(Calculate_FLOW(input));
    input = four();
    input.phdSeq = 0;
    input.cylinders = 0;
    EXPECT_FALSE(Calculate_FLOW(input));
    input = four();
    input.revLimit = 50000;  // 1.2 ms, all of it dead time
    EXPECT_FALSE(Calculate_FLOW(input));
}

TEST(InjectorSizing, ThePulseIsThePeriodLessTheDeadTimeOnTheComputedFlow) {
    EXPECT_NEAR(pulseOf(four()), 8.8, 1e-12);  // 10 * 22.5 / 25.568 * 1 / (1 + 0)
    SizingInput boosted = four();
    boosted.mapBar = 2;
    boosted.maxBoost = 0.5;
    EXPECT_NEAR(pulseOf(boosted), 8.8 * 2 / 1.5, 1e-12);
}

TEST(InjectorSizing, SeveralInjectionsATurnShowTwoPulsesAndTheDeadTime) {
    SizingInput input = four();
    input.phdSeq = 0;
    EXPECT_NEAR(pulseOf(input), 2 * 3.8 + 1.2, 1e-12);
}

TEST(InjectorSizing, LargerInjectorsTakeAShorterPulse) {
    InjectorSizing sizing = Calculate_FLOW(four()).value();
    sizing.InjectorFlow = 45;
    EXPECT_NEAR(Calculate_UAP(four(), sizing).value(), 5, 1e-12);  // 10 * 22.5 / 45
}

TEST(InjectorSizing, ThereIsNoPulseWithoutAFlow) {
    EXPECT_FALSE(Calculate_UAP(four(), {.InjectorFlowNeed = 0, .InjectorFlow = 25, .InjectionPeriod = 10}));
    EXPECT_FALSE(Calculate_UAP(four(), {.InjectorFlowNeed = 22, .InjectorFlow = 0, .InjectionPeriod = 10}));
    SizingInput vacuum = four();
    vacuum.maxBoost = -1;
    EXPECT_FALSE(Calculate_UAP(vacuum, Calculate_FLOW(four()).value()));
}

}  // namespace
}  // namespace zentaq
