#include "logs/plot_measures.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

LogColumns fiveRows() {
    DatalogHead head;
    head.columns = {"Frame", "RPM", "MAP"};
    head.mapUnits = "kPa";
    LogColumns log;
    log.begin(head);
    const std::vector<double> pressures{20, 30, 100.5, 10, 40};
    for (std::size_t row = 0; row < pressures.size(); ++row)
        log.append(std::vector<double>{static_cast<double>(row), 1000.0 + 10.0 * static_cast<double>(row),
                                       pressures[row]});
    return log;
}

// Rows 1 to 3 hold 30, 100.5 and 10: their mean is 46.83.
TEST(MeasureRows, TellValuesAtBothCursorsTheirDifferenceAndWhatIsBetween) {
    const auto rows = measureRows(fiveRows(), {"MAP"}, 0.02, 0.06);
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].caption, "Manifold Pressure (kPa)");
    EXPECT_EQ(rows[0].atA, "30.0");
    EXPECT_EQ(rows[0].atB, "10.0");
    EXPECT_EQ(rows[0].difference, "-20.0");
    EXPECT_EQ(rows[0].least, "10.0");
    EXPECT_EQ(rows[0].most, "100.5");
    EXPECT_EQ(rows[0].mean, "46.8");
}

TEST(MeasureRows, TakeTheCursorsInAnyOrder) {
    const auto rows = measureRows(fiveRows(), {"MAP"}, 0.06, 0.02);
    EXPECT_EQ(rows.at(0).difference, "20.0");
    EXPECT_EQ(rows.at(0).mean, "46.8");
}

TEST(MeasureRows, LeaveOutWhatTheLogHasNot) {
    EXPECT_EQ(measureRows(fiveRows(), {"KNOCK", "RPM"}, 0, 0).size(), 1U);
    EXPECT_TRUE(measureRows(LogColumns(), {"RPM"}, 0, 0).empty());
}

}  // namespace
}  // namespace zentaq
