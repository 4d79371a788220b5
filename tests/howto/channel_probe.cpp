// What docs/how-to/add-a-channel.md adds shows wherever channels do; walk.py compiles and runs this, and
// tests/live/channels_test.cpp, on the edited sources.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "app/data_points.h"
#include "base/text.h"
#include "live/dashboard_readings.h"
#include "live/datalog_writer.h"
#include "live/decoding.h"
#include "refdata/schema.h"

namespace zentaq {
namespace {

class AddedChannel : public testing::Test, public test::Decoding {
 protected:
    AddedChannel() : Decoding(3) { decoder.MonitorW(unit, test::wideFrameOfOrba()); }
};

TEST_F(AddedChannel, StandsBehindThePinsOfADatalog) {
    std::ostringstream out;
    writeDatalogHeader(out, unit);
    DataRecord(out, unit, live, false, 1);
    const auto lines = split(out.str(), '\n');
    EXPECT_EQ(split(lines.at(2), '\t').at(67), "Idle Load\r");
    EXPECT_EQ(split(lines.at(3), '\t').at(67), "238\r");
}

TEST_F(AddedChannel, IsAColumnOfTheDatabase) {
    EXPECT_EQ(refdata::table("Datalog2").columns.back().name, "IS_LOAD");
}

TEST_F(AddedChannel, IsADataPointBehindThePins) {
    EXPECT_EQ(dataPointNames()[64], "GPIO16");
    EXPECT_EQ(dataPointNames()[65], "IS_LOAD");
}

TEST_F(AddedChannel, IsToldByTheDashboard) {
    const auto readings = dashboardReadings(live, unit, {});
    const DashboardReading* reading = findReading(readings, "IS_LOAD");
    ASSERT_NE(reading, nullptr);
    EXPECT_EQ(reading->text, "238");
}

TEST_F(AddedChannel, IsAmongWhatMonitorAndDecodeTellOfAWideFrame) {
    const auto carried = contentOfFrame(unit.kind(), 'W')->values;
    EXPECT_TRUE(
        std::ranges::any_of(carried, [](const Channel* channel) { return channel->name == "IS_LOAD"; }));
    EXPECT_EQ(channels.back().in(live), 238);
}

}  // namespace
}  // namespace zentaq
