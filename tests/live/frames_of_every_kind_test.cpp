// The replies of every kind, one frame of each made by hand: which bytes are read, and how many pins follow.
#include <gtest/gtest.h>

#include "live/check_engine.h"
#include "live/decoding.h"

namespace zentaq {
namespace {

using test::Bytes;
using test::frame;

constexpr std::int16_t untouched = -1;

/// A reply whose pins from `first` to its end carry 100, 101, ...
Bytes withPins(std::size_t length, std::size_t first, std::size_t pins) {
    Bytes reply(length, 0xEE);
    for (std::size_t pin = 0; pin < pins; ++pin) reply.at(first + pin) = static_cast<std::uint8_t>(100 + pin);
    return reply;
}

struct KindCase {
    int slot;
    std::size_t wideLength;  ///< 0: no such reply
    std::size_t widePins;
    std::size_t listedPins;    ///< of the I reply; 0: none
    std::size_t recordLength;  ///< of the unit's own log
    float batteryVolts;        ///< of the byte 180: 0.067432 or 0.078431 volts a step
};

class EveryKind : public testing::TestWithParam<KindCase> {
 protected:
    EveryKind() {
        unit.GPIOData().fill(untouched);
        unit.AssignDirectIndex(10, test::moffsetCell);
        if (GetParam().slot == 5) return;
        unit.AssignDirectIndex(55, test::minDutyCell);
        unit.AssignDirectIndex(255, test::maxDutyCell);
        unit.AssignDirectIndex(14.7F, test::afrCell);
    }
    /// A kind gives no reply of a sort that carries no pins.
    void expectContent(char command, std::size_t pins) {
        const auto content = contentOfFrame(unit.kind(), command);
        ASSERT_EQ(content.has_value(), pins > 0) << command;
        if (!content) return;
        EXPECT_EQ(content->pins.size(), pins) << command;
        EXPECT_EQ(content->values.empty(), command == 'I');
    }
    void expectPins(std::size_t count) {
        for (std::size_t pin = 0; pin < count; ++pin) {
            EXPECT_EQ(unit.GPIOData()[pin], 100 + static_cast<int>(pin)) << pin;
        }
        for (std::size_t pin = count; pin < unit.GPIOData().size(); ++pin) {
            EXPECT_EQ(unit.GPIOData()[pin], untouched) << pin;
        }
    }

    test::Calibration calibration{GetParam().slot};
    Unit& unit = calibration.unit;
    LiveValues live;
    FrameDecoder decoder{live};
};

TEST_P(EveryKind, HasRepliesOfItsOwnLengths) {
    const SizeConstants& sizes = unit.kind().sizes;
    if (GetParam().wideLength > 0) {
        EXPECT_EQ(sizes.wCmdLen, static_cast<int>(GetParam().wideLength));
    }
    EXPECT_EQ(sizes.dataRecordLen, static_cast<int>(GetParam().recordLength));
    EXPECT_EQ(unit.kind().hasWideMonitor(), GetParam().wideLength > 0);
    EXPECT_TRUE(contentOfFrame(unit.kind(), 'D').has_value());
    expectContent('W', GetParam().widePins);
    expectContent('I', GetParam().listedPins);
}

TEST_P(EveryKind, EndsItsWideFrameWithItsPinsAndAChecksum) {
    if (GetParam().wideLength == 0) {
        decoder.MonitorW(unit, withPins(70, 56, 13));
        EXPECT_EQ(live.RPM, 0);
        EXPECT_EQ(live.frames, 0U);
        return expectPins(0);
    }
    // One pin more than there is would show the checksum, 0xEE.
    decoder.MonitorW(unit, withPins(GetParam().wideLength, 56, GetParam().widePins));
    expectPins(GetParam().widePins);
    EXPECT_EQ(live.frames, 1U);
}

TEST_P(EveryKind, ReadsTheValuesOfItsWideFrame) {
    if (GetParam().wideLength == 0) return;
    decoder.MonitorW(unit, frame(GetParam().wideLength, {{3, 0x0C},
                                                         {4, 0x1C},
                                                         {5, 102},
                                                         {11, 85},
                                                         {12, 34},
                                                         {14, 0x01},
                                                         {15, 0x05},
                                                         {20, 0x13},
                                                         {21, 0x88},
                                                         {26, 128},
                                                         {28, 180},
                                                         {29, 9},
                                                         {47, 0xEE},
                                                         {55, 60}}));
    EXPECT_EQ(live.RPM, 3100);  // 12 * 256 + 28
    EXPECT_EQ(live.TPS, 2);
    EXPECT_EQ(live.PRIADV, 30);  // 85 / 4.25 + 10
    EXPECT_EQ(live.SECADV, 18);
    EXPECT_EQ(live.GAMA, 261);  // 256 + 5, as it stands on all kinds
    EXPECT_EQ(live.PRIPW, 5);   // 5000 / 1000
    EXPECT_EQ(live.IACP, 50);   // 128 / 2.55 = 50.2
    EXPECT_EQ(live.BATTV, GetParam().batteryVolts);
    EXPECT_TRUE(live.CHKE);
    EXPECT_EQ(live.ISRPM, 960);
    EXPECT_EQ(live.ADV_MAT, static_cast<float>(-128 / 4.25));
}

TEST_P(EveryKind, ListsItsPinsBehindAHeadOfThreeBytes) {
    decoder.Monitor_GPIO(unit, withPins(21, 3, GetParam().listedPins));
    expectPins(GetParam().listedPins);
}

TEST_P(EveryKind, LogsActualBeforeDesiredRatioAndFineSteps) {
    const std::map<int, int> bytes{{3, 0x0C},  {4, 0x1C}, {5, 102}, {7, 160},   {8, 90},    {9, 51},
                                   {10, 85},   {11, 34},  {12, 17}, {13, 1},    {14, 5},    {15, 255},
                                   {16, 127},  {17, 133}, {18, 51}, {19, 0x13}, {20, 0x88}, {21, 0x09},
                                   {22, 0xC4}, {23, 105}, {24, 180}};
    live.CHKE = true;
    decoder.Internal_Data_Conv(unit, frame(GetParam().recordLength, bytes));
    EXPECT_EQ(live.RPM, 3100);
    EXPECT_EQ(live.TPS, 2);
    EXPECT_EQ(live.CLT, 79);    // 160 * 190 / 255 - 40 = 79.2
    EXPECT_EQ(live.MAT, 27);    // 90 * 190 / 255 - 40 = 27.06
    EXPECT_EQ(live.KNOCK, 20);  // 51 / 2.55
    EXPECT_EQ(live.PRIADV, 30);
    EXPECT_EQ(live.SECADV, 18);
    EXPECT_EQ(live.KNKRET, 2);
    EXPECT_EQ(live.GAMA, 261);  // no coarse steps, not even on kind 3
    EXPECT_EQ(live.PRIPW, 5);   // 5000 / 1000
    EXPECT_EQ(live.SECPW, 2.5F);
    EXPECT_EQ(live.EGOC, 5);
    EXPECT_EQ(live.EGOV, 1);
    EXPECT_EQ(live.BATTV, GetParam().batteryVolts);
    EXPECT_TRUE(live.CHKE) << "a record has no lamp";
    EXPECT_EQ(live.IACD, 0) << "nor the direction of the idle motor";
    if (GetParam().slot == 5) return;  // no stoichiometric ratio to scale by, no idle motor
    EXPECT_EQ(live.IACP, 25);          // (105 - 55) / 200
    EXPECT_EQ(live.AAFR, 9.8F);        // 14.7 / (255 / 255 + 0.5)
    EXPECT_EQ(live.DAFR, 14.73F);      // 14.7 / (127 / 255 + 0.5)
}

TEST_P(EveryKind, TakesTwelveWordsOfCodesBehindAHeadOfThreeBytes) {
    Bytes reply(16, 255);
    for (std::size_t i = 0; i < 12; ++i) reply[3 + i] = static_cast<std::uint8_t>(i + 1);
    reply[15] = 77;  // no word of codes
    unit.Set_ECData(reply);
    for (int i = 0; i < 12; ++i) EXPECT_EQ(unit.Get_ECData(i), i + 1);

    reply.assign(16, 255);
    reply[6] = 0xFE;  // row 4, bit 0 cleared
    unit.Set_ECData(reply);
    const std::string expected = GetParam().slot == 3 ? "41 - AD1 Failed High" : "41 - GPO5 Failed";
    EXPECT_EQ(activeCodes(unit), std::vector<std::string>{expected});
}

INSTANTIATE_TEST_SUITE_P(Kinds, EveryKind,
                         testing::Values(KindCase{3, 65, 8, 0, 33, 12.1F},    // 12.138
                                         KindCase{4, 66, 9, 9, 36, 14.1F},    // 14.118
                                         KindCase{5, 0, 0, 9, 34, 14.1F},     //
                                         KindCase{6, 70, 13, 13, 40, 14.1F},  //
                                         KindCase{7, 62, 5, 9, 34, 14.1F},    //
                                         KindCase{8, 62, 5, 9, 34, 14.1F}));

}  // namespace
}  // namespace zentaq
