#include "live/frame_decoder.h"

#include <gtest/gtest.h>

#include "live/decoding.h"

namespace zentaq {
namespace {

using test::Bytes;
using test::Decoding;
using test::frame;
using test::wideBytes;
using test::wideFrameOfOrba;

const std::map<int, int> narrowBytesOfOrba{
    {0, 0x0C},  {1, 0x1C}, {2, 85},    {3, 255},   {4, 160},  {5, 0},   {6, 204},  {7, 51},   {8, 90},
    {9, 102},   {10, 205}, {11, 2},    {12, 7},    {13, 8},   {14, 9},  {15, 127}, {16, 133}, {17, 255},
    {18, 0xEE}, {19, 51},  {20, 0xEE}, {21, 0},    {22, 250}, {23, 1},  {24, 244}, {25, 11},  {26, 12},
    {27, 13},   {28, 14},  {29, 10},   {30, 0xEE}, {31, 34},  {32, 17}, {33, 105}, {34, 2}};

class NarrowFrameOfOrba : public testing::Test, public Decoding {
 protected:
    NarrowFrameOfOrba() : Decoding(3) {}
    void monitor() { decoder.Monitor(unit, frame(35, narrowBytesOfOrba)); }
};

TEST_F(NarrowFrameOfOrba, CarriesSpeedAndSensors) {
    monitor();
    EXPECT_EQ(live.RPM, 3100);     // 12 * 256 + 28
    EXPECT_EQ(live.MAP, 104.8F);   // (5 + 0.54738) / 0.05295 = 104.766
    EXPECT_EQ(live.TPS, 2);        // 102 / 51
    EXPECT_EQ(live.CLT, 79);       // 160 * 190 / 255 - 40 = 79.2
    EXPECT_EQ(live.MAT, 27);       // 90 * 190 / 255 - 40 = 27.06
    EXPECT_EQ(live.BATTV, 13.8F);  // 205 * 0.067432 = 13.82
    EXPECT_EQ(live.KNOCK, 20);     // 51 / 2.55
    EXPECT_EQ(live.EGOV, 1);
}

TEST_F(NarrowFrameOfOrba, CarriesAdvanceWithTheEnginesOffset) {
    monitor();
    EXPECT_EQ(live.PRIADV, 30);  // 85 / 4.25 + 10
    EXPECT_EQ(live.SECADV, 18);  // 34 / 4.25 + 10
    EXPECT_EQ(live.KNKRET, 2);   // 17 / 8.5
}

TEST_F(NarrowFrameOfOrba, CarriesFuelInItsOwnCoarseSteps) {
    monitor();
    EXPECT_EQ(live.GAMA, 80);  // 204 * 100 / 255
    EXPECT_EQ(live.SECPW, 2);  // 250 / 125
    EXPECT_EQ(live.PRIPW, 4);  // 500 / 125
    EXPECT_EQ(live.SECPERCENT, 50);
    EXPECT_EQ(live.AAFR, 14.73F);  // 14.7 / (127 / 255 + 0.5)
    EXPECT_EQ(live.DAFR, 9.8F);    // 14.7 / 1.5
    EXPECT_EQ(live.EGOC, 5);
}

TEST_F(NarrowFrameOfOrba, CarriesIdleMotorAndPins) {
    monitor();
    EXPECT_EQ(live.IACP, 25);  // (105 - 55) / 200
    EXPECT_EQ(live.IACD, 2);
    const std::array<std::int16_t, 8> pins{7, 10, 8, 9, 11, 12, 13, 14};
    for (std::size_t pin = 0; pin < pins.size(); ++pin) EXPECT_EQ(unit.GPIOData()[pin], pins[pin]) << pin;
}

TEST_F(NarrowFrameOfOrba, AnyNonZeroLampByteLightsTheLampAndZeroClearsIt) {
    monitor();
    EXPECT_TRUE(live.CHKE);
    auto bytes = narrowBytesOfOrba;
    bytes[11] = 0;
    decoder.Monitor(unit, frame(35, bytes));
    EXPECT_FALSE(live.CHKE);
}

TEST_F(NarrowFrameOfOrba, LoadByteIsAirMassWhenTheOptionSaysSo) {
    unit.Set_Control2(0, true);
    monitor();
    EXPECT_EQ(live.MAP, 100);
}

TEST_F(NarrowFrameOfOrba, AdvanceKeepsOneDecimal) {
    auto bytes = narrowBytesOfOrba;
    bytes[2] = 100;
    unit.AssignDirectIndex(-5.5F, test::moffsetCell);
    decoder.Monitor(unit, frame(35, bytes));
    EXPECT_EQ(live.PRIADV, 18);  // 23.5294 shown as 23.5, minus 5.5
}

TEST_F(NarrowFrameOfOrba, ZeroesAllThatOnlyTheWideFrameCarries) {
    live.PRIDUTY = live.SECDUTY = live.INJ_TOG = live.SEN_MAP = live.INJ_VE = live.INJ_MAT = live.INJ_CLT = 9;
    live.INJ_BARO = live.INJ_SE0 = live.INJ_ASE0 = live.INJ_ASE1 = live.MAPACCL = live.TPSACCL = 9;
    live.INJ_ACE2 = live.INJ_ACE5 = live.INJ_ACE6 = live.INJ_VLTCOMP = live.SEN_BLEND = live.INJ_STAGE = 9;
    live.ADV_TBL = live.ADV_CLT = live.ADV_MAT = live.ADV_BARO = live.ADV_IDLE = live.ISRPM = 9;
    monitor();
    EXPECT_EQ(live.PRIDUTY + live.SECDUTY + live.INJ_TOG + live.SEN_MAP + live.INJ_VE + live.INJ_MAT, 0);
    EXPECT_EQ(live.INJ_CLT + live.INJ_BARO + live.INJ_SE0 + live.INJ_ASE0 + live.INJ_ASE1 + live.MAPACCL, 0);
    EXPECT_EQ(live.TPSACCL + live.INJ_ACE2 + live.INJ_ACE5 + live.INJ_ACE6 + live.INJ_VLTCOMP, 0);
    EXPECT_EQ(live.SEN_BLEND + live.INJ_STAGE + live.ADV_TBL + live.ADV_CLT + live.ADV_MAT, 0);
    EXPECT_EQ(live.ADV_BARO + live.ADV_IDLE + live.ISRPM, 0);
}

TEST_F(NarrowFrameOfOrba, AShortFrameKeepsTheValuesPastItsEnd) {
    live.KNOCK = 77;
    live.GAMA = 66;
    auto reply = frame(35, narrowBytesOfOrba);
    reply.resize(6);  // the high byte of GAMA is there, the low one is not
    decoder.Monitor(unit, reply);
    EXPECT_EQ(live.CLT, 79);
    EXPECT_EQ(live.GAMA, 66);
    EXPECT_EQ(live.KNOCK, 77);
}

TEST_F(NarrowFrameOfOrba, ABadValueLeavesTheLiveValueAsItWas) {
    unit.AssignDirectIndex(255, test::minDutyCell);  // no span between the limits
    live.IACP = 33;
    monitor();
    EXPECT_EQ(live.IACP, 33);
    EXPECT_EQ(live.IACD, 2);
}

TEST_F(NarrowFrameOfOrba, PinsShowTheirFunctionsText) {
    unit.AssignDirectIndex(6, 336);      // pin 0: shift light
    unit.AssignDirectIndex(8, 336 + 9);  // pin 1: table output
    monitor();
    EXPECT_EQ(unit.GPIODisplay()[0], "ON");
    EXPECT_EQ(unit.GPIODisplay()[1], "4%");  // 10 / 2.55 = 3.9
    EXPECT_EQ(unit.GPIODisplay()[2], "DISABLED");
}

TEST_F(NarrowFrameOfOrba, CountsFrames) {
    monitor();
    monitor();
    EXPECT_EQ(live.frames, 2U);
}

const std::map<int, int> narrowBytesOfOthers{
    {3, 0x0C},  {4, 0x1C},  {5, 102},   {6, 255},   {7, 160},  {8, 90},   {9, 51},   {10, 85},
    {11, 34},   {12, 17},   {13, 0},    {14, 103},  {15, 255}, {16, 127}, {17, 133}, {18, 51},
    {19, 0x13}, {20, 0x88}, {21, 0x09}, {22, 0xC4}, {23, 105}, {24, 2},   {25, 180}, {26, 1}};

class NarrowFrameOfOthers : public testing::TestWithParam<int> {};

TEST_P(NarrowFrameOfOthers, HasAHeadAndFineSteps) {
    Decoding d(GetParam());
    d.live.PRIDUTY = 9;
    d.decoder.Monitor(d.unit, frame(28, narrowBytesOfOthers));
    EXPECT_EQ(d.live.RPM, 3100);
    EXPECT_EQ(d.live.TPS, 2);
    EXPECT_EQ(d.live.MAP, 104.8F);
    EXPECT_EQ(d.live.CLT, 79);
    EXPECT_EQ(d.live.MAT, 27);
    EXPECT_EQ(d.live.KNOCK, 20);
    EXPECT_EQ(d.live.PRIADV, 30);
    EXPECT_EQ(d.live.SECADV, 18);
    EXPECT_EQ(d.live.KNKRET, 2);
    EXPECT_EQ(d.live.GAMA, 103);
    EXPECT_EQ(d.live.DAFR, 9.8F);
    EXPECT_EQ(d.live.AAFR, 14.73F);
    EXPECT_EQ(d.live.EGOC, 5);
    EXPECT_EQ(d.live.EGOV, 1);
    EXPECT_EQ(d.live.PRIPW, 5);     // 5000 / 1000
    EXPECT_EQ(d.live.SECPW, 2.5F);  // 2500 / 1000
    EXPECT_EQ(d.live.SECPERCENT, 50);
    EXPECT_EQ(d.live.IACP, 25);
    EXPECT_EQ(d.live.IACD, 2);
    EXPECT_EQ(d.live.BATTV, 14.1F);  // 180 * 0.078431 = 14.118
    EXPECT_TRUE(d.live.CHKE);
    EXPECT_EQ(d.live.PRIDUTY, 9);  // only kind 3 zeroes the wide values
    EXPECT_EQ(d.live.frames, 1U);
}

INSTANTIATE_TEST_SUITE_P(Kinds, NarrowFrameOfOthers, testing::Values(4, 6, 7, 8));

TEST(NarrowFrameOfPzk2, ReadsOnlyItsNineValuesWithTheThrottleAtByte8) {
    Decoding d(5);
    d.live.CLT = 44;
    d.live.PRIPW = 3;
    d.decoder.Monitor(d.unit, frame(28, {{3, 0x0C},
                                         {4, 0x1C},
                                         {5, 255},
                                         {7, 160},
                                         {8, 102},
                                         {9, 51},
                                         {10, 85},
                                         {11, 34},
                                         {12, 17},
                                         {19, 9},
                                         {25, 180},
                                         {26, 1}}));
    EXPECT_EQ(d.live.RPM, 3100);
    EXPECT_EQ(d.live.TPS, 2);
    EXPECT_EQ(d.live.KNOCK, 20);
    EXPECT_EQ(d.live.KNKRET, 2);
    EXPECT_EQ(d.live.BATTV, 14.1F);
    EXPECT_TRUE(d.live.CHKE);
    EXPECT_EQ(d.live.CLT, 44);
    EXPECT_EQ(d.live.PRIPW, 3);
}

class WideFrameOfOrba : public testing::Test, public Decoding {
 protected:
    WideFrameOfOrba() : Decoding(3) {}
    const Bytes reply = wideFrameOfOrba();
};

TEST_F(WideFrameOfOrba, LeavesTheSecondaryShareToNarrowFrames) {
    live.SECPERCENT = 12;
    decoder.MonitorW(unit, reply);
    EXPECT_EQ(live.SECPERCENT, 12);
}

TEST_F(WideFrameOfOrba, AirMassWordIsTakenInTenths) {
    unit.Set_Control2(0, true);
    decoder.MonitorW(unit, reply);
    EXPECT_EQ(live.MAP, 23.5F);  // 60 / 2.55 = 23.53
}

TEST(Frames, OfAnyLengthAndContentAreTaken) {
    for (const int slot : {3, 4, 5, 6, 7, 8}) {
        Decoding d(slot);
        for (std::size_t length = 0; length <= 80; ++length) {
            const std::vector<std::uint8_t> reply(length, 255);
            EXPECT_NO_THROW(d.decoder.Monitor(d.unit, reply));
            EXPECT_NO_THROW(d.decoder.MonitorW(d.unit, reply));
            EXPECT_NO_THROW(d.decoder.Monitor_GPIO(d.unit, reply));
            EXPECT_NO_THROW(d.decoder.Internal_Data_Conv(d.unit, reply));
        }
        EXPECT_EQ(d.live.RPM, 65535);
    }
}

TEST(Frames, WithoutACalibrationChangeNothing) {
    RecordingHost host;
    Unit none(nullKind(), host);
    LiveValues live;
    FrameDecoder decoder(live);
    decoder.Monitor(none, frame(35, narrowBytesOfOrba));
    decoder.MonitorW(none, frame(65, wideBytes()));
    EXPECT_EQ(live.RPM, 0);
    EXPECT_EQ(live.frames, 0U);
}

}  // namespace
}  // namespace zentaq
