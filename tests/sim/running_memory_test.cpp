// The unit's engine runs by its running memory: what is written there shows in the next frames.
#include <gtest/gtest.h>

#include "engine_helpers.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

/// Advance as the wide frame tells it, 4.25 a degree. No byte of the air temperature curve is exactly 0
/// degrees.
int advanceIn(const Bytes& wide) {
    return wide.at(11);
}

SimulatedUnit idlingUnit() {
    const UnitProfile& profile = *findProfile("A");
    return {profile, defaultIdentity(profile), idleDrive()};
}

void changeAdvance(SimulatedUnit& unit, std::uint8_t raw) {
    // The four cells around 850 rpm and 34 kPa.
    for (const unsigned cell : {48u, 49u, 64u, 65u}) {
        ask(unit, "P2");
        ASSERT_EQ(askText(unit, dataRecord(0x1100 + 656 + cell, {raw})), "AX");
    }
}

TEST(RunningMemory, AChangeOnTheFlyActsAtOnceAndIsLostWithThePower) {
    SimulatedUnit unit = idlingUnit();
    unit.loadMemory(flatImage().bytes);
    unit.advance(300);
    EXPECT_NEAR(advanceIn(ask(unit, "W")), 85, 1);
    changeAdvance(unit, 51);
    unit.advance(0.005);
    EXPECT_NEAR(advanceIn(ask(unit, "W")), 51, 1);
    unit.powerCycle();
    EXPECT_NEAR(advanceIn(ask(unit, "W")), 85, 1);
}

TEST(RunningMemory, AProgrammedCalibrationActsWhenItIsVerified) {
    SimulatedUnit unit = idlingUnit();
    MemoryImage image = flatImage();
    image.fill(advancePlace, 256, 68);
    unit.advance(10);
    EXPECT_GT(advanceIn(ask(unit, "W")), 72) << "16.9 degrees, which the plain calibration has there";
    ask(unit, "P1");
    for (std::size_t row = 0; row < 147; ++row) {
        const auto first = image.bytes.begin() + static_cast<std::ptrdiff_t>(16 * row);
        ASSERT_EQ(
            askText(unit, dataRecord(0x1100 + 16 * static_cast<unsigned>(row), Bytes(first, first + 16))),
            "AX");
    }
    EXPECT_EQ(askText(unit, endRecord), "PN");
    unit.advance(0.1);
    EXPECT_NEAR(advanceIn(ask(unit, "W")), 68, 1);
}

TEST(RunningMemory, TheSameUnitWithTheSameMemoryHasTheSameEngineAgain) {
    const auto mixture = [](std::uint32_t serial) {
        const UnitProfile& profile = *findProfile("A");
        UnitIdentity identity = defaultIdentity(profile);
        identity.serial = serial;
        SimulatedUnit unit(profile, identity, idleDrive());
        MemoryImage image = flatImage();
        image.put(278, 0);
        unit.loadMemory(image.bytes);
        unit.advance(300);
        return ask(unit, "W").at(17);
    };
    EXPECT_EQ(mixture(200001), mixture(200001));
    EXPECT_NE(mixture(200001), mixture(200004));
}

TEST(RunningMemory, TheUnitsOwnLogIsOfTheSameEngine) {
    SimulatedUnit unit = idlingUnit();
    unit.loadMemory(flatImage().bytes);
    for (int i = 0; i < 20; ++i) EXPECT_NEAR(ask(unit, "D").at(10), 85, 1) << i;
}

}  // namespace
}  // namespace zentaq::sim
