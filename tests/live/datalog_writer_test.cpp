#include "live/datalog_writer.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>

#include "base/text.h"
#include "live/calibration_fixture.h"

namespace zentaq {
namespace {

using ::testing::EndsWith;
using ::testing::StartsWith;

class Datalog : public testing::Test {
 protected:
    Datalog() : calibration(3), unit(calibration.unit) {
        unit.AssignDirectIndex(1, 39);
        unit.AssignDirectIndex(1, 124);
        unit.AssignDirectIndex(1, test::minDutyCell);
        unit.AssignDirectIndex(255, test::maxDutyCell);
        unit.AssignDirectIndex(14.64F, test::afrCell);
        unit.FirmWare("ZQA5.099");
    }

    std::vector<std::string> headerLines() {
        std::ostringstream out;
        writeDatalogHeader(out, unit);
        return split(out.str(), '\n');
    }
    std::string line(bool scaled, int frame) {
        std::ostringstream out;
        DataRecord(out, unit, live, scaled, frame);
        return out.str();
    }
    std::string column(std::size_t number) { return split(line(false, 1), '\t').at(number); }

    test::Calibration calibration;
    Unit& unit;
    LiveValues live;
};

TEST_F(Datalog, HeaderHasBannerAndSettings) {
    unit.AssignDirectIndex(6, 336);           // pin 0: shift light
    unit.AssignDirectIndex(15, 336 + 9 * 7);  // pin 7: datalog switch
    const auto lines = headerLines();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_EQ(lines[0], "ZENTAQ 4.10 DATALOG\tZQA5.099\r");
    EXPECT_EQ(lines[1],
              "1\t1\t255\t6\t0\t0\t0\t0\t0\t0\t15\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\t0\tkPa\t14.64\r");
    EXPECT_EQ(lines[3], "");
    EXPECT_THAT(lines[2], EndsWith("\r"));  // the names are in channels_test.cpp
}

TEST_F(Datalog, DataLineRoundsByColumn) {
    live.RPM = 3100;
    live.MAP = 65.94F;
    live.TPS = 1.996F;
    live.CLT = 79;
    live.MAT = 27;
    live.BATTV = 13.85F;  // 13.8500004
    live.KNOCK = 20.5F;
    live.EGOV = 0.125F;
    live.CHKE = true;
    live.PRIADV = 30.25F;
    live.GAMA = 103;
    live.PRIDUTY = 20.04F;
    live.PRIPW = 5.126F;
    live.EGOC = -5;
    live.DAFR = 14.7F;
    live.IACP = 50;
    live.INJ_TOG = 9.0004F;
    live.MAPACCL = 2.67433F;
    live.INJ_VLTCOMP = 0.08F;
    live.ADV_TBL = 20.47059F;
    live.ISRPM = 960;
    unit.GPIOData()[0] = 21;
    unit.GPIOData()[8] = 29;
    unit.GPIOData()[9] = 30;
    const std::string written = line(false, 7);
    EXPECT_THAT(written, EndsWith("\r\n"));
    EXPECT_THAT(
        written,
        StartsWith("7\t3100\t65.9\t2\t79\t27\t13.9\t20\t0.12\t1\t30.2\t0\t0\t103\t20\t5.13\t0\t0\t0\t-5\t14."
                   "7\t0\t50\t0\t9\t0"
                   "\t0\t0\t0\t0\t0\t0\t0\t2.674\t0\t0\t0\t0\t0.08\t0\t0\t20.47059\t0\t0\t0\t0\t960"
                   "\t21\t0\t0\t0\t0\t0\t0\t0\t29\t 0\t 0\t 0\t 0\t 0\t 0\t 0\t 0\t 0\t 0\t 0"));
}

TEST_F(Datalog, LampIs1Or0) {
    EXPECT_EQ(column(9), "0");
    live.CHKE = true;
    EXPECT_EQ(column(9), "1");
}

TEST_F(Datalog, FramesOfTheUnitsOwnLogComeToThe50HzTimeBase) {
    unit.AssignDirectIndex(15, 336 + 9 * 6);        // pin 6: datalog switch
    unit.AssignDirectIndex(20, 336 + 9 * 6 + 3);    // its parameter 2: 20 records a second
    EXPECT_EQ(split(line(true, 3), '\t')[0], "7");  // 50 / 20 * 3 = 7.5
    EXPECT_EQ(split(line(true, 4), '\t')[0], "10");
    EXPECT_EQ(split(line(false, 3), '\t')[0], "3");
}

TEST_F(Datalog, WithoutALogRateFramesCountAsTheyAre) {
    EXPECT_EQ(split(line(true, 12), '\t')[0], "12");
}

}  // namespace
}  // namespace zentaq
