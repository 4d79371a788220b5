#include "sim/engine_calibration.h"

#include <gtest/gtest.h>

#include "engine_helpers.h"
#include "sim/map_sensor.h"
#include "sim/plain_engine.h"
#include "sim/unit_profile.h"

namespace zentaq::sim {
namespace {

using namespace test;
using Memory = std::vector<std::uint8_t>;

TEST(EngineCalibration, ReadsAxesAndTablesInATunersUnits) {
    MemoryImage image = flatImage();
    image.put(fuelPlace + 3 * 16 + 5, 62);
    image.put(advancePlace + 3 * 16 + 5, 119);
    image.put(ratioPlace + 3 * 16 + 5, 255);
    const EngineCalibration read = calibrationOf(image);
    EXPECT_TRUE(read.fromMemory);
    EXPECT_EQ(read.speedAxis.stops[0], 500);
    EXPECT_EQ(read.speedAxis.stops[15], 8000);
    EXPECT_EQ(read.loadAxis.stops[15], 1015);  // 104 kPa: 4.9594 V
    EXPECT_EQ(read.fuel.cells[53], 12);
    EXPECT_EQ(read.advance.cells[53], 28);
    EXPECT_EQ(read.mixture.cells[53], 1.5);
    EXPECT_EQ(read.fullPulseMs, 8);
    EXPECT_EQ(read.injectorOffsetMs, 1);
    EXPECT_EQ(read.revLimit, 7000);
    EXPECT_NEAR(read.warmUpPercent.at(-15), 73.5, 0.001);  // half way from 80 at -20 to 67 at -10
    EXPECT_NEAR(read.batteryMs.at(17.2), -0.152, 0.001);   // -150 us in steps of 8
}

// Cell 13 of 20 stands at 13 / 19 of a full byte: 255 * 0.067432 on the ORB A, 255 * 0.078431 on the others.
TEST(EngineCalibration, TheBatteryCurveStandsOnTheVoltsThatTheKindMeasures) {
    MemoryImage image = flatImage();
    image.put(237 + 13, 250);  // 1 ms
    const auto timeAt = [&](const char* prefix, double volts) {
        return readEngineCalibration(prefix, image.bytes).batteryMs.at(volts);
    };
    EXPECT_NEAR(timeAt("ZQA", 11.765), 1, 0.001);
    for (const char* prefix : {"ZQL", "ZQC", "ZQD"}) {
        EXPECT_NEAR(timeAt(prefix, 13.684), 1, 0.001) << prefix;
        EXPECT_LT(timeAt(prefix, 11.765), 0.7) << prefix;
    }
}

TEST(EngineCalibration, ANegativeInjectorOffsetKeepsItsSign) {
    MemoryImage image = flatImage();
    image.put(150, 256 - 4);
    EXPECT_EQ(calibrationOf(image).injectorOffsetMs, -0.5);
}

struct SensorCase {
    const char* name;
    double voltsPerKpa;
    double voltsAtZero;
    int high;  ///< of the zero word
    int low;
};

// Zero words by hand: round(volts * 204.6), high byte truncated toward zero, low byte its low 8 bits.
constexpr SensorCase sensors[] = {
    {"1 BAR", 0.05295, -0.54738, 0, 144},           // -112
    {"3 BAR", 0.0159, -0.01765, 0, 252},            // -4
    {"0.5 V at 0 kPa", 0.04, 0.5, 0, 102},          // 102
    {"barometric", 0.069231, -3.211538, 254, 111},  // -657: high -2
};

TEST(EngineCalibration, TheSensorsZeroIsReadThroughItsLostSign) {
    for (const SensorCase& sensor : sensors) {
        MemoryImage image = flatImage();
        image.putWord(262, sensor.voltsPerKpa * 20.46 * 4096);
        image.put(264, sensor.high);
        image.put(265, sensor.low);
        const EngineCalibration read = calibrationOf(image);
        EXPECT_NEAR(read.voltsPerKpa, sensor.voltsPerKpa, 0.00001) << sensor.name;
        EXPECT_NEAR(read.voltsAtZero, sensor.voltsAtZero, 0.5 / 204.6) << sensor.name;
    }
}

TEST(EngineCalibration, MemoryWithoutSenseGivesThePlainOne) {
    Memory falling = flatImage().bytes;
    std::swap(falling[592 + 4], falling[592 + 10]);
    for (const Memory& memory : {Memory(147 * 16), Memory(147 * 16, 0xFF), Memory(3), Memory{}, falling}) {
        EXPECT_FALSE(hasEngineCalibration("ZQA", memory));
        const EngineCalibration read = readEngineCalibration("ZQA", memory);
        EXPECT_FALSE(read.fromMemory);
        EXPECT_EQ(read.fuel.cells, plainCalibration().fuel.cells);
        EXPECT_EQ(read.fullPulseMs, 8);
    }
}

TEST(EngineCalibration, ASingleFigureWithoutSenseIsThePlainOne) {
    MemoryImage image = flatImage();
    image.putWord(58, 65535);  // rev limit
    image.putWord(148, 0);     // gama time
    image.putWord(262, 0);     // sensor gain
    image.fill(293, 10, 7);    // a sensor curve that does not rise
    const EngineCalibration read = calibrationOf(image);
    EXPECT_TRUE(read.fromMemory);
    EXPECT_EQ(read.revLimit, 7000);
    EXPECT_EQ(read.fullPulseMs, 8);
    EXPECT_EQ(read.voltsPerKpa, mapScaler);
    EXPECT_EQ(read.egoVolts, plainCalibration().egoVolts);
}

TEST(EngineCalibration, TheOrbDHasItsMixtureWhereOthersHaveStaging) {
    MemoryImage image = flatImage();
    image.fill(1168, 256, 255);
    const EngineCalibration read = readEngineCalibration("ZQD", image.bytes);
    EXPECT_EQ(read.mixture.cells[100], 1.5);
    EXPECT_EQ(read.staging.cells[100], 0);
    EXPECT_EQ(calibrationOf(image).staging.cells[100], 100) << "an ORB A reads percent there";
}

TEST(EngineCalibration, TheIgnitionOnlyUnitHasItsAxesAndAdvanceInItsSmallMemory) {
    const MemoryImage large = flatImage();
    Memory small(64 * 16);
    std::copy_n(large.bytes.begin() + 592, 64, small.begin() + 192);
    std::fill_n(small.begin() + 256, 256, std::uint8_t{34});
    const EngineCalibration read = readEngineCalibration("ZPK", small);
    EXPECT_TRUE(read.fromMemory);
    EXPECT_EQ(read.speedAxis.stops[3], 2000);
    EXPECT_EQ(read.advance.cells[255], 8);
    EXPECT_EQ(read.fuel.cells, plainCalibration().fuel.cells) << "it has no fuel of its own";
}

TEST(EngineCalibration, FewerColumnsAreFewerStops) {
    MemoryImage image = flatImage();
    image.put(590, 8);
    image.put(591, 12);
    image.putWord(592 + 16, 3);  // behind the last column: nobody looks
    const EngineCalibration read = calibrationOf(image);
    EXPECT_TRUE(read.fromMemory);
    EXPECT_EQ(read.speedAxis.count, 8u);
    EXPECT_EQ(read.loadAxis.count, 12u);
    EXPECT_EQ(read.speedAxis.position(9000), 7);
}

TEST(TableAxis, PlacesAreHeldAtTheEndsAndLinearBetween) {
    const TableAxis axis = calibrationOf(flatImage()).speedAxis;
    EXPECT_EQ(axis.position(0), 0);
    EXPECT_EQ(axis.position(500), 0);
    EXPECT_EQ(axis.position(750), 0.5);
    EXPECT_EQ(axis.position(1000), 1);
    EXPECT_EQ(axis.position(20000), 15);
}

TEST(EngineTable, IsReadBetweenFourCells) {
    EngineTable table;
    table.cells[0] = 10;
    table.cells[1] = 20;
    table.cells[16] = 30;
    table.cells[17] = 80;
    EXPECT_EQ(table.at(0, 0), 10);
    EXPECT_EQ(table.at(0.5, 0), 15);
    EXPECT_EQ(table.at(0, 0.5), 20);
    EXPECT_EQ(table.at(0.5, 0.5), 35);
    EXPECT_EQ(table.at(99, 99), table.cells[255]);
}

// The first and last cells, and the middle, of the tables that a new calibration starts from.
TEST(PlainEngine, IsTheStartOfANewCalibration) {
    EXPECT_NEAR(plainFuelFactor(500, 14), 0.72, 0.0001);
    EXPECT_NEAR(plainFuelFactor(4500, 104), 1.06, 0.0001);
    EXPECT_NEAR(plainFuelFactor(8000, 50), 0.83, 0.0051);
    EXPECT_EQ(plainAdvance(500, 14), 12.5);
    EXPECT_EQ(plainAdvance(8000, 104), 31);
    EXPECT_NEAR(plainAdvance(4500, 74), 37, 0.6);
    EXPECT_NEAR(14.64 / plainMixture(2000, 50), 14.7, 0.001);
    EXPECT_NEAR(14.64 / plainMixture(3500, 98), 12.8, 0.001);
    EXPECT_NEAR(14.64 / plainMixture(1500, 80), 13.7, 0.1);
    EXPECT_NEAR(14.64 / plainMixture(3500, 184), 11.6, 0.001);
}

}  // namespace
}  // namespace zentaq::sim
