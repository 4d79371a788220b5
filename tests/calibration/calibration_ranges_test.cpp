#include "calibration/calibration_ranges.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "config/quiet_calibration.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(CalibrationRanges, AskingChangesNoCellAndTellsTheSameAgain) {
    constexpr int egoType = 2196;
    QuietCalibration calibration(orbaKind());
    Unit& unit = calibration.unit;
    unit.AssignDirectIndex(0, egoType);
    std::vector<float> before;
    for (int i = 0; i < Unit::cellCount; ++i) before.push_back(unit.DirectIndex(i));

    const auto told = valuesOutOfRange(unit, unit.kind().fileFloats);
    EXPECT_THAT(told, Contains("EGO_Type (cell 2196) holds 0 (1 to 2)"));
    for (int i = 0; i < Unit::cellCount; ++i) {
        EXPECT_EQ(unit.DirectIndex(i), before[static_cast<std::size_t>(i)]) << i;
    }
    EXPECT_EQ(valuesOutOfRange(unit, unit.kind().fileFloats), told);
}

TEST(CalibrationRanges, AValueThatItsReaderMakesGoodIsNotTold) {
    constexpr int egoType = 2196;
    QuietCalibration calibration(orbaKind());
    calibration.unit.AssignDirectIndex(128 + 2, egoType);  // as older files keep it
    EXPECT_THAT(valuesOutOfRange(calibration.unit, calibration.unit.kind().fileFloats),
                Not(Contains(HasSubstr("EGO_Type"))));
    EXPECT_EQ(calibration.unit.DirectIndex(egoType), 130);
}

}  // namespace
}  // namespace zentaq
