// The grid of the detail monitor.
#include "live/detail_info.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "live/calibration_fixture.h"

namespace zentaq {
namespace {

class DetailGrid : public testing::Test {
 protected:
    std::string valueOf(const std::string& caption, bool fahrenheit = false) {
        for (const DetailCell& cell : detailInfo(live, calibration.unit, fahrenheit)) {
            if (cell.caption == caption) return cell.value;
        }
        return "no such caption";
    }
    test::Calibration calibration{3};
    LiveValues live;
};

TEST_F(DetailGrid, HasItsCaptionsInTheirOrder) {
    std::vector<std::string> captions;
    for (const DetailCell& cell : detailInfo(live, calibration.unit, false)) captions.push_back(cell.caption);
    const std::vector<std::string> wanted{
        "RPM",        "MAP",      "MAP V",     "ExtRet",   "TPS",       "CLT",      "MAT",         "Knock",
        "Batt V",     "Cur Blend %", "MAP Delta", "TPS Delta", "EGO V",  "AFR",      "Des AFR",     "Idle RPM",
        "IAC Pos",    "IAC Dir",  "CEL",       "Pri Adv",  "Sec Adv",   "Table Adv", "CLT Adv",    "MAT Adv",
        "BARO Adv",   "IDLE Adv", "Knk Ret",   "Base TOG", "GAMMA",     "Pri PW",   "Pri Duty",    "Staged %",
        "Sec PW",     "Sec Duty", "Voltage Cmp", "SE0",    "ASE0",      "ASE1",     "ACE2",        "ACE5",
        "ACE6",       "VE Trim%", "MAT Trim%", "CLT Trim%", "BARO Trim%", "EGO Cor%", "SE1",       "AC3",
        "AC7",        "PW0",      "AC8",       "DC4",      "DFC"};
    ASSERT_GT(captions.size(), wanted.size());
    captions.resize(wanted.size());
    EXPECT_EQ(captions, wanted);
}

TEST_F(DetailGrid, ThePinsOfTheKindStandBehindTheValues) {
    live.frames = 1;
    calibration.unit.GPIOData()[2] = 17;
    EXPECT_EQ(valueOf("GPIO 2"), "17");
    EXPECT_EQ(valueOf("GPIO 0"), "0");
}

TEST_F(DetailGrid, BeforeTheFirstFrameThereAreNoNumbers) {
    EXPECT_EQ(valueOf("RPM"), "");
    EXPECT_EQ(valueOf("CEL"), "");
    EXPECT_EQ(valueOf("GPIO 0"), "");
}

TEST_F(DetailGrid, EachKindOfValueHasItsFormat) {
    live.frames = 1;
    live.RPM = 850.4F;
    live.MAP = 33.25F;
    live.SEN_MAP = 1.5F;
    live.BATTV = 13.8F;
    live.PRIADV = 18.04F;
    live.KNOCK = 6.6F;
    live.PRIPW = 3.456F;
    live.INJ_TOG = 4.1F;
    live.CHKE = true;
    live.AAFR = 14.7F;
    EXPECT_EQ(valueOf("RPM"), "850");
    EXPECT_EQ(valueOf("MAP"), "33.3");
    EXPECT_EQ(valueOf("MAP V"), "1.50");
    EXPECT_EQ(valueOf("Batt V"), "13.80");
    EXPECT_EQ(valueOf("Pri Adv"), "18.0");
    EXPECT_EQ(valueOf("Knock"), "7");
    EXPECT_EQ(valueOf("Pri PW"), "3.46");
    EXPECT_EQ(valueOf("Base TOG"), "4.100");
    EXPECT_EQ(valueOf("AFR"), "14.70");
    EXPECT_EQ(valueOf("CEL"), "1");
}

TEST_F(DetailGrid, WhatNoFrameCarriesIsNoNumber) {
    live.frames = 1;
    for (const char* caption : {"ExtRet", "SE1", "AC3", "AC7", "PW0", "AC8", "DC4", "DFC"})
        EXPECT_EQ(valueOf(caption), "-") << caption;
}

TEST_F(DetailGrid, TemperaturesFollowTheUsersScale) {
    live.frames = 1;
    live.CLT = 100;
    EXPECT_EQ(valueOf("CLT"), "100");
    EXPECT_EQ(valueOf("CLT", true), "212");
}

}  // namespace
}  // namespace zentaq
