// Cells of the input/output blocks; image bytes and on-the-fly records of every input/output function on
// every kind of unit.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/gpio_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;

constexpr int kept = 170;  // what the block held before

// 27.959934 kPa are one volt of a 1 bar sensor: 204.6 counts, 205 = 00 CD. Twice the volts need
// (409.2 * 0.85546875 + 100) * 0.1016618 = 45.753685 kPa: 409.2 counts, 409 = 01 99.
constexpr float oneVolt = 27.959934F;
constexpr float twoVolts = 45.753685F;

struct Block {
    int function;
    std::vector<float> parameters;
    std::vector<int> bytes;
    int release = 5;
    int build = 99;
};

// Worked by hand. 6500 = 19 64, 3000 = 0B B8 as words; (92 + 40) * 255 / 190 = 177.16 = B1,
// (85 + 40) * 255 / 190 = 167.76 = A8.
const std::vector<Block> blocks = {
    {0, {1, 2, 3, 4, 5, 6, 7, 8}, {0, 0, 0, 0, 0, 0, 0, 0, 0}},
    {1, {1, 2, 6500, 4, 5, 6, twoVolts, 8}, {0x03, 0, 0, 0x19, 0x64, 0, 0, 0x01, 0x99}},
    {2, {3000, 2, 3, 4, oneVolt, 6, 7, 8}, {0x03, 0x0B, 0xB8, 0xFF, 0xFF, 0x00, 0xCD, 0xFF, 0xFF}},
    {3, {92, 85, 1}, {0x04, 0xB1, 0xA8, 0x01, 0, 0, 0, 0, kept}},
    {4, {6500, 2, 3, 4, twoVolts, 6, 7, 8}, {0x03, 0x19, 0x64, 0xFF, 0xFF, 0x01, 0x99, 0xFF, 0xFF}},
    {5, {3000, 2, 3, 4, twoVolts, 6, 7, 8}, {0x03, 0x0B, 0xB8, 0xFF, 0xFF, 0x01, 0x99, 0xFF, 0xFF}},
    {6, {6500}, {0x03, 0x19, 0x64, 0xFF, 0xFF, 0, 0, 0, kept}},
    {7, {45, 40, oneVolt, 4, twoVolts, 6, 2}, {0x05, 0x2D, 0x28, 0x00, 0xCD, 0x01, 0x99, 0x02, kept}},
    // Both pairs of frequencies: 60 is the slow one of older, the fast one of newer firmware.
    {8, {2, 60}, {0x01, 0x02, 0x01, 0, 0, 0, kept, kept, kept}},
    {8, {1, 30}, {0x01, 0x01, 0x00, 0, 0, 0, kept, kept, kept}, 2, 7},
    {8, {1, 60}, {0x01, 0x01, 0x00, 0, 0, 0, kept, kept, kept}, 2, 6},
    {8, {2, 120}, {0x01, 0x02, 0x01, 0, 0, 0, kept, kept, kept}, 1, 99},
    {8, {1, 60}, {0x01, 0x01, 0x01, 0, 0, 0, kept, kept, kept}, 2, 7},
    {8, {1, 120}, {0x01, 0x01, 0x01, 0, 0, 0, kept, kept, kept}, 2, 6},
    {9, {3000, 2, 6500, 4, oneVolt, 6, twoVolts}, {0x03, 0x0B, 0xB8, 0x19, 0x64, 0x00, 0xCD, 0x01, 0x99}},
    {10, {3000, 2, 6500, 4, oneVolt, 6, twoVolts}, {0x02, 0x0B, 0xB8, 0x19, 0x64, 0x00, 0xCD, 0x01, 0x99}},
    {11, {1, 2, 3, 4, 5, 6, 7, 8}, {0x06, 0, 0, 0, 0, 0, 0, 0, 0}},
    {12, {35, 20}, {0x12, 0x23, 0x14, 0, 0, 0, kept, kept, kept}},
    {12, {40, -10}, {0x12, 0x28, -10, 0, 0, 0, kept, kept, kept}},
    {13, {300, 9}, {0x19, 0x01, 0x2C, 0, 0, 0, 0, 0, 0}},
    {14, {45, 200}, {0x1A, 0x2D, 0xC8, kept, kept, kept, kept, kept, kept}},
    {15, {3000, 2, 20}, {0x1B, 0x0B, 0xB8, 0x14, 0, 0, 0, 0, 0}},
    // (-20 + 30) * 4.25 = 42.5, a tie: 42 = 2A. (12 + 30) * 4.25 = 178.5: 178 = B2
    {16, {-20, 12}, {0x11, 0x2A, 0xB2, kept, kept, kept, kept, kept, kept}},
    // (30 + 50) * 2.55 = 204 = CC, (-30 + 50) * 2.55 = 51 = 33
    {17, {30, -30}, {0x14, 0xCC, 0x33, 0, 0, 0, 0, 0, 0}},
    {18, {30, -30}, {0x15, 0xCC, 0x33, 0, 0, 0, 0, 0, 0}},
    // (-14 + 30) * 4.25 = 68 = 44, (0 + 30) * 4.25 = 127.5, a tie: 128 = 80
    {19, {-14, 0}, {0x13, 0x44, 0x80, 0, kept, kept, kept, kept, kept}},
    // (10 + 30) * 4.25 = 170 = AA. 1.5 * 122 = 183 = B7, 0.5 * 122 = 61 = 3D
    {20, {10, 1.5F, 0.5F}, {0x16, 0xAA, 0xB7, 0x3D, 0, kept, kept, kept, kept}, 2, 17},
    {20, {10, 1, 2}, {0x16, 0xAA, 0x7A, 0xF4, 0, kept, kept, kept, kept}, 1, 30},
    // 5 * 122 = 610 = 02 62, 0.5 * 122 = 61
    {20, {10, 2, 3, 5, 9, 0.5F}, {0x16, 0xAA, 0, 0, 0x02, 0x62, 0x00, 0x3D, 0}, 2, 18},
    {20, {10, 2, 3, 5, 9, 0.5F}, {0x16, 0xAA, 0, 0, 0x02, 0x62, 0x00, 0x3D, 0}, 4, 99},
    {20, {10, 1, 1, 4, 1, 4}, {0x16, 0xAA, 0, 0, 0x01, 0xE8, 0x01, 0xE8, 0}, 3, 0},
    // 0.5 * 244 = 122 = 7A, 10 * 244 = 2440 = 09 88, 2 * 244 = 488 = 01 E8
    {20, {10, 1, 0.5F, 9, 10, 9, 2}, {0x16, 0xAA, 0xFF, 0x00, 0x7A, 0x09, 0x88, 0x01, 0xE8}, 5, 0},
    {20, {10, 0, 0.5F, 9, 10, 9, 2}, {0x16, 0xAA, 0x00, 0x00, 0x7A, 0x09, 0x88, 0x01, 0xE8}, 7, 99},
    {21, {200, 2, 3, 4, 5}, {0x1F, 0xC8, 0, 0, 0, 0, 0, 0, 0}},
    {22, {1, 2, 3, 4, 5, 6, 7, 8}, {0x10, 0, 0, 0, 0, 0, 0, 0, 0}},
    // 512 / 4.096 = 125 = 7D, 1000 / 4.096 = 244.14 = F4
    {23, {512, 1000, 3000, 4, twoVolts, 6, 1}, {0x1C, 0x7D, 0xF4, 0x0B, 0xB8, 0x01, 0x99, 0x01, 0}},
    {24, {1, 2, 3, 4, 5, 6, 7, 8}, {kept, kept, kept, kept, kept, kept, kept, kept, kept}},
    // 40 * 2.55 = 102 = 66, 80 * 2.55 = 204 = CC
    {25, {30, 90, 40, 80, 2}, {0x09, 0x1E, 0x5A, 0x66, 0xCC, 0x02, 0, 0, 0}, 4, 2},
    {25, {30, 90, 40, 80, 2}, {0x09, 0x1E, 0x5A, 0x66, 0xCC, 0x02, 0, 0, 0}, 3, 99},
    {25, {30, 60, 90, 120, 0, 20, 40, 80}, {0x09, 0x1E, 0x3C, 0x5A, 0x78, 0x00, 0x33, 0x66, 0xCC}, 4, 3},
    // 50 and 70 percent are ties: 127.5 and 178.5 go to the even count.
    {25, {10, 20, 30, 40, 50, 60, 70, 80}, {0x09, 10, 20, 30, 40, 128, 153, 178, 204}, 5, 0},
    {99, {1, 2}, {kept, kept, kept, kept, kept, kept, kept, kept, kept}},
    {-1, {1, 2}, {kept, kept, kept, kept, kept, kept, kept, kept, kept}},
    {29, {1, 2, 3, 4, 5, 6, 7, 8}, {kept, kept, kept, kept, kept, kept, kept, kept, kept}},
};

/// Makes every byte of a pin's block `kept`: boost control's eight parameters reach all but the first byte.
void fillBlock(GpioCalibration& cal, int pin) {
    cal.unit.FW_Release(5);
    cal.unit.Set_GPIO_Func(pin, 25);
    for (int p = 0; p < 8; ++p) cal.unit.Set_GPIO_Param(pin, p, p < 4 ? kept : kept / 2.55F);
    cal.unit.ConvertData();
}

TEST(GpioBytes, OfEveryFunctionOnTheLastPinOfEveryKind) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        for (const Block& block : blocks) {
            GpioCalibration cal(slot);
            cal.host.head.currentUnit = 0;  // releases come and go without moving the sensor's cells
            const int pin = pins - 1;
            fillBlock(cal, pin);
            cal.unit.FW_Release(block.release);
            cal.unit.FW_Build(block.build);
            cal.unit.Zeroize_GPIO(pin);
            cal.unit.Set_GPIO_Func(pin, block.function);
            for (std::size_t p = 0; p < block.parameters.size(); ++p) {
                cal.unit.Set_GPIO_Param(pin, static_cast<int>(p), block.parameters[p]);
            }
            std::vector<int> expected = block.bytes;
            if (expected.front() == kept) expected.front() = 9;  // the code of the boost control before
            cal.unit.ConvertData();
            EXPECT_THAT(cal.bytes(base + 9 * pin, 9), ElementsAreArray(expected))
                << slot << " function " << block.function << " release " << block.release;
        }
    }
}

TEST(GpioBytes, OfPressuresBeforeRelease3AreTheLegacyCounts) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        GpioCalibration cal(slot, 2, 99);
        cal.unit.Set_GPIO_Func(0, 5);
        cal.unit.Set_GPIO_Param(0, 4, 80);
        cal.unit.ConvertData();
        // 80 * 9.8365 = 786.92: 787 = 03 13
        EXPECT_THAT(cal.bytes(base, 9), ElementsAre(3, 0, 0, 255, 255, 3, 0x13, 255, 255)) << slot;
    }
}

TEST(GpioBytes, BlocksFollowEachOther) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        GpioCalibration cal(slot);
        std::vector<int> expected;
        for (int pin = 0; pin < pins; ++pin) {
            cal.unit.Set_GPIO_Func(pin, 13);
            cal.unit.Set_GPIO_Param(pin, 0, static_cast<float>(256 + pin));
            for (const int byte : {25, 1, pin, 0, 0, 0, 0, 0, 0}) expected.push_back(byte);
        }
        cal.unit.ConvertData();
        EXPECT_THAT(cal.bytes(base, 9 * pins), ElementsAreArray(expected)) << slot;
    }
}

TEST(GpioBytes, ATableNumberOtherThan1Or2Becomes1) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        for (const float number : {0.0F, 3.0F, -1.0F, 1.5F}) {
            GpioCalibration cal(slot);
            cal.unit.Set_GPIO_Func(0, 8);
            cal.unit.Set_GPIO_Param(0, 0, number);
            cal.unit.ConvertData();
            EXPECT_EQ(cal.bytes(base + 1, 1).front(), 1);
            EXPECT_EQ(cal.unit.DirectIndex(base + 1), 1);
            EXPECT_EQ(cal.unit.Get_GPO_TblNum(0), 1);
        }
    }
}

TEST(GpioBytes, AnUnknownFrequencyKeepsTheCodeOfTheBlockBefore) {
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

// ---- On the fly

struct Sent {
    int function;
    int parameter;
    float value;
    std::vector<int> bytes;  ///< empty: nothing is sent
    int release = 5;
    int build = 99;
};

const std::vector<Sent> records = {
    {1, 2, 6500, {0x19, 0x64}},
    {1, 6, twoVolts, {0x01, 0x99}},
    {2, 0, 3000, {0x0B, 0xB8}},
    {2, 4, oneVolt, {0x00, 0xCD}},
    {3, 0, 92, {0xB1}},
    {3, 1, 85, {0xA8}},
    {3, 2, 1, {1}},
    {4, 0, 3000, {0x0B, 0xB8}},
    {4, 4, twoVolts, {0x01, 0x99}},
    {5, 0, 3000, {0x0B, 0xB8}},
    {5, 4, twoVolts, {0x01, 0x99}},
    {6, 0, 6500, {0x19, 0x64}},
    {7, 0, 45, {0x2D}},
    {7, 1, 40, {0x28}},
    {7, 2, oneVolt, {0x00, 0xCD}},
    {7, 4, twoVolts, {0x01, 0x99}},
    {7, 6, 2, {2}},
    // A running unit counts tables from 0.
    {8, 0, 1, {0}},
    {8, 0, 2, {1}},
    {8, 1, 30, {0}},
    {8, 1, 60, {1}},
    {8, 1, 60, {0}, 2, 6},
    {8, 1, 120, {1}, 2, 6},
    {8, 1, 120, {}},
    {8, 1, 30, {}, 2, 6},
    {8, 1, 45, {}},
    {9, 0, 3000, {0x0B, 0xB8}},
    {9, 2, 6500, {0x19, 0x64}},
    {9, 4, oneVolt, {0x00, 0xCD}},
    {9, 6, twoVolts, {0x01, 0x99}},
    {10, 0, 3000, {0x0B, 0xB8}},
    {10, 2, 6500, {0x19, 0x64}},
    {10, 4, oneVolt, {0x00, 0xCD}},
    {10, 6, twoVolts, {0x01, 0x99}},
    {12, 0, 35, {85}},
    {12, 1, -20, {30}},
    {13, 0, 300, {0x01, 0x2C}},
    {14, 0, 45, {0x2D}},
    {14, 1, 200, {0xC8}},
    {15, 0, 3000, {0x0B, 0xB8}},
    {15, 2, 20, {0x14}},
    {16, 1, 12, {51}},    // 12 * 4.25
    {16, 0, -20, {171}},  // -20 * 4.25 = -85, the byte 256 - 85
    {17, 0, 40, {102}},   // 40 * 2.55
    {17, 1, -40, {154}},  // -102, the byte 256 - 102
    {18, 0, 20, {51}},
    {18, 1, -20, {205}},
    {19, 0, -14, {16}},
    {20, 0, -10, {20}},
    // 2 * 122 = 244, 1.5 * 122 = 183
    {20, 1, 2, {244}, 2, 17},
    {20, 2, 1.5F, {183}, 2, 17},
    {20, 3, 5, {0x02, 0x62}, 2, 18},
    {20, 2, 2, {244}, 4, 0},
    {20, 5, 0.5F, {0x00, 0x3D}, 4, 99},
    {20, 1, 1, {122}},
    {20, 1, 0, {0}},
    {20, 2, 0.5F, {0x00, 0x7A}},
    {20, 4, 10, {0x09, 0x88}},
    {20, 6, 2, {0x01, 0xE8}},
    {20, 6, 2, {0x01, 0xE8}, 7, 0},
    {21, 0, 200, {0xC8}},
    {21, 3, 27, {}},
    {21, 4, 4, {}},
    {21, 5, 8, {}},
    {23, 0, 512, {0x7D}},
    {23, 1, 1000, {0xF4}},
    {23, 2, 3000, {0x0B, 0xB8}},
    {23, 4, twoVolts, {0x01, 0x99}},
    {23, 6, 1, {1}},
    {25, 0, 30, {30}},
    {25, 3, 120, {120}},
    {25, 4, 20, {51}},
    {25, 7, 80, {204}},
    {25, 0, 30, {30}, 4, 2},
    {25, 1, 90, {90}, 4, 2},
    {25, 2, 40, {102}, 4, 2},
    {25, 3, 80, {204}, 4, 2},
    {25, 4, 2, {2}, 4, 2},
    // Functions without parameters, or without bytes of their own.
    {0, 0, 1, {}},
    {11, 0, 1, {}},
    {22, 0, 1, {}},
    {24, 0, 1, {}},
    {29, 0, 1, {}},
    // Parameters that the image does not hold.
    {6, 1, 1000, {}},
    {12, 5, 1, {}},
    {14, 2, 1, {}},
    {99, 0, 1, {}},
    {1, 4, 100, {}},  // the hysteresis of the ORB C
};

TEST(GpioRecords, OfEveryParameterOnEveryKind) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        for (const auto& [function, parameter, value, bytes, release, build] : records) {
            GpioCalibration cal(slot, release, build);
            cal.unit.Set_GPIO_Func(pins - 1, function);
            cal.unit.ONFLY_MODE(true);
            cal.unit.Set_GPIO_Param(pins - 1, parameter, value);
            std::vector<std::string> expected;
            if (!bytes.empty()) expected = {recordOf(base + 9 * (pins - 1) + 1 + parameter, bytes)};
            EXPECT_THAT(cal.host.sent, ElementsAreArray(expected))
                << slot << " function " << function << " parameter " << parameter << " release " << release;
            EXPECT_EQ(cal.unit.Get_GPIO_Param(pins - 1, parameter), value);
        }
    }
}

TEST(GpioRecords, EveryRowThatTheUnitsMemoryHoldsIsSent) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        for (const auto& [release, build] : std::vector<std::pair<int, int>>{
                 {1, 0}, {2, 6}, {2, 17}, {2, 18}, {4, 2}, {4, 3}, {5, 0}, {7, 99}}) {
            GpioCalibration cal(slot, release, build);
            cal.unit.ONFLY_MODE(true);
            for (const int function :
                 {1, 2, 3, 4, 5, 6, 7, 9, 10, 12, 13, 14, 15, 16, 17, 18, 19, 20, 23, 25}) {
                cal.unit.Set_GPIO_Func(0, function);
                for (const GpioParamRow& row : cal.model.Show_GPIO_Param(0, function)) {
                    if (row.parameter < 0 || row.unit == "Hys. RPM") continue;
                    cal.host.forget();
                    cal.unit.Set_GPIO_Param(0, row.parameter, 1);
                    EXPECT_EQ(cal.host.sent.size(), 1U) << slot << " " << row.mode << " release " << release;
                }
            }
        }
    }
}

TEST(GpioRecords, IndexPollingDoesNotChangeWhatIsSent) {
    OrbaCalibration cal;
    cal.unit.Set_GPIO_Func(1, 6);
    cal.unit.ONFLY_MODE(true);
    cal.unit.IndexPolling(true);
    cal.unit.Set_GPIO_Param(1, 0, 1000);
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(336 + 9 + 1, {3, 232})));
}

TEST(GpioRecords, TableCellsAreSentInCountsInSilentModeToo) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.SILENT_MODE(true);
    cal.unit.Set_GPIO_Table(1, 5, 40);
    cal.unit.Set_GPIO_Table(2, 255, 100);
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(1685, {102}), recordOf(2191, {255})));
    EXPECT_EQ(cal.unit.Get_GPIO_Table(2, 255), 100);
}

TEST(GpioRecords, TheFunctionItselfIsNeverSent) {
    OrbaCalibration cal;
    cal.unit.ONFLY_MODE(true);
    cal.unit.Set_GPIO_Func(0, 5);
    cal.unit.Zeroize_GPIO(0);
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

}  // namespace
}  // namespace zentaq::testing
