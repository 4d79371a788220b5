#include "config/unit_snapshot.h"

#include <gtest/gtest.h>

#include "config/quiet_calibration.h"
#include "refdata/refdata_fixture.h"

namespace zentaq {
namespace {

void fill(Unit& unit) {
    unit.FW_Release(5);
    unit.FW_Build(12);
    for (int i = 3; i < Unit::cellCount; ++i) unit.AssignDirectIndex(static_cast<float>(i) + 0.5F, i);
    for (int byte = 0; byte < 3; ++byte) unit.controlByte(byte, static_cast<std::uint8_t>(170 + byte));
    unit.BinFile("/tunes/street.ZQ4OA");
    unit.FirmWare("ZQA-405012");
    unit.Serial("200001");
    unit.teeth({2, 43});
    unit.DefaultSplit(4);
    unit.ONFLY_MODE(true);
}

TEST(UnitSnapshot, PutsBackAllThatACalibrationIs) {
    QuietCalibration calibration(orbaKind());
    Unit& unit = calibration.unit;
    fill(unit);
    std::vector<float> cells;
    for (int i = 0; i < Unit::cellCount; ++i) cells.push_back(unit.DirectIndex(i));
    const UnitSnapshot snapshot(unit);

    unit.ONFLY_MODE(false);
    unit.CloseFile();
    unit.FW_Release(3);
    unit.FW_Build(1);
    unit.DefaultSplit(10);
    for (int byte = 0; byte < 3; ++byte) unit.controlByte(byte, 0);
    snapshot.restore(unit);

    for (int i = 0; i < Unit::cellCount; ++i) {
        EXPECT_EQ(unit.DirectIndex(i), cells[static_cast<std::size_t>(i)]) << i;
    }
    EXPECT_EQ(unit.controlByte(0), 170);
    EXPECT_EQ(unit.controlByte(2), 172);
    EXPECT_EQ(unit.BinFile(), "/tunes/street.ZQ4OA");
    EXPECT_EQ(unit.FirmWare(), "ZQA-405012");
    EXPECT_EQ(unit.Serial(), "200001");
    EXPECT_EQ(unit.FW_Release(), 5);
    EXPECT_EQ(unit.FW_Build(), 12);
    EXPECT_EQ(unit.teeth().minimum, 2);
    EXPECT_EQ(unit.teeth().maximum, 43);
    EXPECT_EQ(unit.DefaultSplit(), 4);
    EXPECT_TRUE(unit.ONFLY_MODE());
    EXPECT_TRUE(calibration.host.records().empty()) << "nothing is sent";
}

class UnitSnapshotWithReferenceData : public refdata::ReferenceDatabase {};

TEST_F(UnitSnapshotWithReferenceData, BringsBackAReleaseWithoutMovingAnything) {
    const Database database = open();
    QuietCalibration calibration(orbaKind(), &database);
    Unit& unit = calibration.unit;
    unit.FW_Release(2);
    unit.AssignDirectIndex(10, 148);
    const UnitSnapshot snapshot(unit);
    calibration.host.header().currentUnit = 3;
    calibration.host.header().firmwareCode = 2000;
    calibration.host.firmwareKnown(true);
    unit.FW_Release(5);
    ASSERT_NE(unit.DirectIndex(148), 10) << "a release across the third moves the full pulse";
    snapshot.restore(unit);
    EXPECT_EQ(unit.FW_Release(), 2);
    EXPECT_EQ(unit.DirectIndex(148), 10);
    EXPECT_EQ(calibration.host.header().currentUnit, 3);
}

}  // namespace
}  // namespace zentaq
