// Input/output blocks: cells, image bytes by function and firmware, records.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Fills a block with 99s, sets function and parameters, converts and gives the block's image.
/// A byte that the function leaves alone reads 99 of the block before it.
std::vector<int> blockOf(int function, const std::vector<float>& parameters, int release = 5,
                         int build = 99) {
    OrbaCalibration cal(release, build);
    cal.unit.Set_GPIO_Func(2, 25);  // boost control of the last firmware fills the whole block
    for (int p = 0; p < 8; ++p) cal.unit.Set_GPIO_Param(2, p, p < 4 ? 99.0F : 99 / 2.55F);
    cal.unit.FW_Release(5);
    cal.unit.FW_Build(99);
    cal.unit.ConvertData();
    cal.unit.FW_Release(release);
    cal.unit.FW_Build(build);
    cal.unit.Zeroize_GPIO(2);
    cal.unit.Set_GPIO_Func(2, function);
    for (std::size_t p = 0; p < parameters.size(); ++p) {
        cal.unit.Set_GPIO_Param(2, static_cast<int>(p), parameters[p]);
    }
    cal.unit.ConvertData();
    return cal.imageBytes(336 + 9 * 2, 9);
}

// 1000 = 0x03E8, 2000 = 0x07D0. 27.959934 kPa of a 1 bar sensor is one volt, 205 counts.
constexpr float oneVoltKpa = 27.959934F;

TEST(GpioImage, FunctionsWithoutParameters) {
    EXPECT_THAT(blockOf(0, {}), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(blockOf(11, {5}), ElementsAre(6, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(blockOf(22, {5}), ElementsAre(16, 0, 0, 0, 0, 0, 0, 0, 0));
}

TEST(GpioImage, SwitchedOutputs) {
    EXPECT_THAT(blockOf(1, {7, 7, 1000, 7, 7, 7, oneVoltKpa}), ElementsAre(3, 0, 0, 3, 232, 0, 0, 0, 205));
    for (const int function : {2, 4, 5}) {
        EXPECT_THAT(blockOf(function, {1000, 0, 0, 0, oneVoltKpa}),
                    ElementsAre(3, 3, 232, 255, 255, 0, 205, 255, 255));
    }
    EXPECT_THAT(blockOf(6, {1000}), ElementsAre(3, 3, 232, 255, 255, 0, 0, 0, 99));
    EXPECT_THAT(blockOf(9, {1000, 0, 2000, 0, oneVoltKpa, 0, oneVoltKpa}),
                ElementsAre(3, 3, 232, 7, 208, 0, 205, 0, 205));
    EXPECT_THAT(blockOf(10, {1000, 0, 2000, 0, oneVoltKpa, 0, oneVoltKpa}),
                ElementsAre(2, 3, 232, 7, 208, 0, 205, 0, 205));
}

TEST(GpioImage, FanAndConverter) {
    // (90 + 40) * 255 / 190 = 174.47, (80 + 40) * 255 / 190 = 161.05
    EXPECT_THAT(blockOf(3, {90, 80, 1}), ElementsAre(4, 174, 161, 1, 0, 0, 0, 0, 99));
    EXPECT_THAT(blockOf(7, {60, 55, oneVoltKpa, 0, oneVoltKpa, 0, 1}),
                ElementsAre(5, 60, 55, 0, 205, 0, 205, 1, 99));
}

TEST(GpioImage, AFullTableNamesItsTableAndFrequency) {
    EXPECT_THAT(blockOf(8, {2, 60}), ElementsAre(1, 2, 1, 0, 0, 0, 99, 99, 99));
    EXPECT_THAT(blockOf(8, {1, 30}), ElementsAre(1, 1, 0, 0, 0, 0, 99, 99, 99));
    EXPECT_THAT(blockOf(8, {1, 120}, 2, 6), ElementsAre(1, 1, 1, 0, 0, 0, 99, 99, 99));
    EXPECT_THAT(blockOf(8, {1, 60}, 1, 9), ElementsAre(1, 1, 0, 0, 0, 0, 99, 99, 99));
    EXPECT_THAT(blockOf(8, {1, 60}, 2, 7), ElementsAre(1, 1, 1, 0, 0, 0, 99, 99, 99));
}

TEST(GpioImage, ATableNumberOtherThan1Or2Becomes1) {
    OrbaCalibration cal;
    cal.unit.Set_GPIO_Func(0, 8);
    cal.unit.Set_GPIO_Param(0, 0, 5);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(337), 1);
    EXPECT_EQ(cal.unit.DirectIndex(337), 1);
    EXPECT_EQ(cal.unit.Get_GPO_TblNum(0), 1);
}

TEST(GpioImage, AnUnknownFrequencyKeepsTheCodeOfTheBlockBefore) {
    OrbaCalibration cal;
    for (const int pin : {0, 1}) {
        cal.unit.Set_GPIO_Func(pin, 8);
        cal.unit.Set_GPIO_Param(pin, 0, 1);
    }
    cal.unit.Set_GPIO_Param(0, 1, 60);
    cal.unit.Set_GPIO_Param(1, 1, 45);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(338), 1);
    EXPECT_EQ(cal.image(338 + 9), 1);
    cal.unit.Set_GPIO_Param(0, 1, 30);
    cal.unit.ConvertData();
    EXPECT_EQ(cal.image(338 + 9), 0);
}

TEST(GpioImage, Inputs) {
    EXPECT_THAT(blockOf(12, {40, -10}), ElementsAre(18, 40, -10, 0, 0, 0, 99, 99, 99));
    EXPECT_THAT(blockOf(13, {1000, 5, 5}), ElementsAre(25, 3, 232, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(blockOf(14, {30, 40}), ElementsAre(26, 30, 40, 99, 99, 99, 99, 99, 99));
    EXPECT_THAT(blockOf(15, {2000, 0, 10}), ElementsAre(27, 7, 208, 10, 0, 0, 0, 0, 0));
    // (-10 + 30) * 4.25 = 85, (10 + 30) * 4.25 = 170
    EXPECT_THAT(blockOf(16, {-10, 10}), ElementsAre(17, 85, 170, 99, 99, 99, 99, 99, 99));
    EXPECT_THAT(blockOf(19, {-10, 10}), ElementsAre(19, 85, 170, 0, 99, 99, 99, 99, 99));
    // (50 + 50) * 2.55 = 255, (-50 + 50) * 2.55 = 0
    EXPECT_THAT(blockOf(17, {50, -50}), ElementsAre(20, 255, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(blockOf(18, {50, -50}), ElementsAre(21, 255, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(blockOf(21, {27}), ElementsAre(31, 27, 0, 0, 0, 0, 0, 0, 0));
    // 409.6 / 4.096 = 100, 204.8 / 4.096 = 50
    EXPECT_THAT(blockOf(23, {409.6F, 204.8F, 2000, 0, oneVoltKpa, 0, 1}),
                ElementsAre(28, 100, 50, 7, 208, 0, 205, 1, 0));
}

TEST(GpioImage, TimedAdvanceHasThreeGenerations) {
    // 2 * 244 = 488 = 0x01E8
    EXPECT_THAT(blockOf(20, {10, 1, 2, 0, 2, 0, 2}, 5, 0), ElementsAre(22, 170, 255, 1, 232, 1, 232, 1, 232));
    EXPECT_THAT(blockOf(20, {10, 0, 2, 0, 2, 0, 2}, 6, 1), ElementsAre(22, 170, 0, 1, 232, 1, 232, 1, 232));
    // 4 * 122 = 488
    for (const auto& [release, build] : std::vector<std::pair<int, int>>{{2, 18}, {3, 0}, {4, 99}}) {
        EXPECT_THAT(blockOf(20, {10, 1, 1, 4, 1, 4}, release, build),
                    ElementsAre(22, 170, 0, 0, 1, 232, 1, 232, 0));
    }
    EXPECT_THAT(blockOf(20, {10, 1, 2}, 2, 17), ElementsAre(22, 170, 122, 244, 0, 99, 99, 99, 99));
    EXPECT_THAT(blockOf(20, {10, 1, 2}, 1, 30), ElementsAre(22, 170, 122, 244, 0, 99, 99, 99, 99));
}

TEST(GpioImage, BoostControlHasTwoGenerations) {
    const std::vector<float> parameters = {10, 20, 30, 40, 50, 60, 70, 80};
    // 50 and 70 percent are ties: 127.5 and 178.5 go to the even count.
    EXPECT_THAT(blockOf(25, parameters, 5, 0), ElementsAre(9, 10, 20, 30, 40, 128, 153, 178, 204));
    EXPECT_THAT(blockOf(25, parameters, 4, 3), ElementsAre(9, 10, 20, 30, 40, 128, 153, 178, 204));
    EXPECT_THAT(blockOf(25, parameters, 4, 2), ElementsAre(9, 10, 20, 76, 102, 50, 0, 0, 0));
    EXPECT_THAT(blockOf(25, parameters, 3, 50), ElementsAre(9, 10, 20, 76, 102, 50, 0, 0, 0));
}

TEST(GpioImage, AnUnknownFunctionLeavesTheBlockAsItWas) {
    for (const int function : {24, 29, 99, -1}) {
        EXPECT_THAT(blockOf(function, {1, 2}), ElementsAre(9, 99, 99, 99, 99, 99, 99, 99, 99));
    }
}

TEST(Gpio, CellsOfAPin) {
    OrbaCalibration cal;
    cal.unit.Set_GPIO_Func(7, 12);
    cal.unit.Set_GPIO_Param(7, 7, 3.5F);
    EXPECT_EQ(cal.unit.DirectIndex(399), 12);
    EXPECT_EQ(cal.unit.DirectIndex(407), 3.5F);
    EXPECT_EQ(cal.unit.Get_GPIOFUNC(7), 12);
    EXPECT_EQ(cal.unit.Get_GPIO_Param(7, 7), 3.5F);
    EXPECT_EQ(cal.unit.Get_GPIOFUNC(8), 0);
    EXPECT_EQ(cal.unit.Get_GPIOFUNC(15), 0);
    cal.unit.IndexPolling(true);
    EXPECT_EQ(cal.unit.Get_GPIOFUNC(7), 399);
    EXPECT_THROW(cal.unit.Set_GPIO_Param(8, 0, 1), BoundsError);
    EXPECT_THROW(cal.unit.Set_GPIO_Param(0, 8, 1), BoundsError);
    EXPECT_THROW(cal.unit.Set_GPIO_Param(0, -1, 1), BoundsError);
    EXPECT_THROW(cal.unit.Get_GPIO_Table(3, 0), BoundsError);
    EXPECT_THROW(cal.unit.Get_GPIO_Table(1, 256), BoundsError);
}

TEST(Gpio, ClearingAPinTouchesOnlyItsNineWords) {
    OrbaCalibration cal;
    for (int i = 336; i < 408; ++i) cal.unit.AssignDirectIndex(1, i);
    cal.unit.Zeroize_GPIO(1);
    for (int i = 336; i < 408; ++i) EXPECT_EQ(cal.unit.DirectIndex(i), i >= 345 && i < 354 ? 0 : 1) << i;
}

TEST(Gpio, FunctionNames) {
    const OrbaCalibration cal;
    EXPECT_EQ(cal.unit.GPIO_Function_Name(0), "DISABLED");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(3), "FAN Thermo Control");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(9), "Custom GPO #1");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(19), "NOS Retard");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(21), "Speed Gauge");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(22), "DISABLED");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(23), "Timed Power Cut");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(25), "Boost Control");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(99), "GPIO ERROR: ENTRY NOT FOUND!");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(-1), "GPIO ERROR: ENTRY NOT FOUND!");
}

// ---- On the fly

std::vector<std::string> sentFor(int function, int parameter, float value, int release = 5, int build = 99) {
    OrbaCalibration cal(release, build);
    cal.unit.Set_GPIO_Func(1, function);
    cal.unit.ONFLY_MODE(true);
    cal.unit.Set_GPIO_Param(1, parameter, value);
    EXPECT_EQ(cal.unit.Get_GPIO_Param(1, parameter), value);
    return cal.host.sent;
}
constexpr int firstParameter = 336 + 9 + 1;

TEST(GpioOnTheFly, FunctionsWithTheirOwnRunningForm) {
    EXPECT_THAT(sentFor(3, 0, 90), ElementsAre(recordOf(firstParameter, {174})));
    EXPECT_THAT(sentFor(3, 1, 80), ElementsAre(recordOf(firstParameter + 1, {161})));
    EXPECT_THAT(sentFor(3, 2, 1), ElementsAre(recordOf(firstParameter + 2, {1})));
    EXPECT_THAT(sentFor(8, 0, 2), ElementsAre(recordOf(firstParameter, {1})));
    EXPECT_THAT(sentFor(12, 1, -10), ElementsAre(recordOf(firstParameter + 1, {40})));
    EXPECT_THAT(sentFor(19, 0, -10), ElementsAre(recordOf(firstParameter, {20})));
    EXPECT_THAT(sentFor(17, 0, 40), ElementsAre(recordOf(firstParameter, {102})));
    EXPECT_THAT(sentFor(18, 1, 20), ElementsAre(recordOf(firstParameter + 1, {51})));
    EXPECT_THAT(sentFor(16, 1, 20), ElementsAre(recordOf(firstParameter + 1, {85})));
}

TEST(GpioOnTheFly, AFrequencyIsSentAsItsCodeAndAnUnknownOneNotAtAll) {
    EXPECT_THAT(sentFor(8, 1, 30), ElementsAre(recordOf(firstParameter + 1, {0})));
    EXPECT_THAT(sentFor(8, 1, 60), ElementsAre(recordOf(firstParameter + 1, {1})));
    EXPECT_THAT(sentFor(8, 1, 60, 2, 6), ElementsAre(recordOf(firstParameter + 1, {0})));
    EXPECT_THAT(sentFor(8, 1, 45), IsEmpty());
}

TEST(GpioOnTheFly, TimedAdvanceByFirmware) {
    EXPECT_THAT(sentFor(20, 0, -10), ElementsAre(recordOf(firstParameter, {20})));
    EXPECT_THAT(sentFor(20, 2, 2), ElementsAre(recordOf(firstParameter + 2, {1, 232})));
    EXPECT_THAT(sentFor(20, 4, 1), ElementsAre(recordOf(firstParameter + 4, {0, 244})));
    EXPECT_THAT(sentFor(20, 1, 1), ElementsAre(recordOf(firstParameter + 1, {122})));
    EXPECT_THAT(sentFor(20, 3, 4, 4, 0), ElementsAre(recordOf(firstParameter + 3, {1, 232})));
    EXPECT_THAT(sentFor(20, 2, 2, 4, 0), ElementsAre(recordOf(firstParameter + 2, {244})));
    EXPECT_THAT(sentFor(20, 2, 1, 2, 17), ElementsAre(recordOf(firstParameter + 2, {122})));
}

TEST(GpioOnTheFly, OtherFunctionsSendWhatTheImageWouldHold) {
    EXPECT_THAT(sentFor(6, 0, 1000), ElementsAre(recordOf(firstParameter, {3, 232})));
    EXPECT_THAT(sentFor(4, 4, oneVoltKpa), ElementsAre(recordOf(firstParameter + 4, {0, 205})));
    EXPECT_THAT(sentFor(14, 1, 55), ElementsAre(recordOf(firstParameter + 1, {55})));
    EXPECT_THAT(sentFor(25, 7, 80), ElementsAre(recordOf(firstParameter + 7, {204})));
}

TEST(GpioOnTheFly, IndexPollingDoesNotChangeWhatIsSent) {
    OrbaCalibration cal;
    cal.unit.Set_GPIO_Func(1, 6);
    cal.unit.ONFLY_MODE(true);
    cal.unit.IndexPolling(true);
    cal.unit.Set_GPIO_Param(1, 0, 1000);
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(firstParameter, {3, 232})));
}

TEST(GpioOnTheFly, ParametersThatTheImageDoesNotHoldAreNotSent) {
    EXPECT_THAT(sentFor(6, 1, 1000), IsEmpty());
    EXPECT_THAT(sentFor(14, 2, 1), IsEmpty());
    EXPECT_THAT(sentFor(0, 0, 1), IsEmpty());
    EXPECT_THAT(sentFor(99, 0, 1), IsEmpty());
    EXPECT_THAT(sentFor(12, 5, 1), IsEmpty());
}

TEST(GpioOnTheFly, TableCellsAreSentInCounts) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.SILENT_MODE(true);
    cal.unit.Set_GPIO_Table(1, 5, 40);
    cal.unit.Set_GPIO_Table(2, 255, 100);
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(1685, {102}), recordOf(2191, {255})));
    EXPECT_EQ(cal.unit.Get_GPIO_Table(2, 255), 100);
}

TEST(GpioOnTheFly, TheFunctionItselfIsNeverSent) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.Set_GPIO_Func(0, 5);
    cal.unit.Zeroize_GPIO(0);
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

}  // namespace
}  // namespace zentaq::testing
