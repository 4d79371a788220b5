// What a value of an input/output function may be, and what an entry does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/number_text.h"
#include "unit/gpio_fixture.h"
#include "unit/gpio_limits.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;

struct Span {
    const char* word;
    float minimum;
    float maximum;
    const char* text;
};

class SpanOf : public ::testing::TestWithParam<Span> {};

TEST_P(SpanOf, ItsUnitWord) {
    const auto& [word, minimum, maximum, text] = GetParam();
    GpioCalibration cal(3);
    const Limits limits = gpioLimitsOf(cal.unit, word);
    EXPECT_TRUE(checkLimits(minimum, limits));
    EXPECT_TRUE(checkLimits(maximum, limits));
    EXPECT_TRUE(checkLimits(minimum + 0.25F, limits));
    EXPECT_TRUE(checkLimits(maximum - 0.25F, limits));
    for (const float beyond : {minimum - 0.05F, maximum + 0.05F}) {
        const Refusal refusal = refusalOf(checkLimits(beyond, limits));
        EXPECT_EQ(refusal.warning, 1001);
        EXPECT_EQ(refusal.text, text);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Words, SpanOf,
    ::testing::Values(
        Span{"RPM", 0, 20000, "(0 to 20000 RPM)"}, Span{"Valet RPM", 1500, 11000, "(1500 to 11000 RPM)"},
        Span{"Kickup RPM", 0, 4000, "(0 to 4000 RPM)"}, Span{"°C", -40, 150, "(-40 to 150 °C)"},
        Span{"°F", -40, 302, "(-40 to 302 °F)"}, Span{"Deg", 0, 60, "(0 to 60 Degrees)"},
        Span{"Deg Adv", 0, 30, "(0 to 30 Degrees)"}, Span{"Deg Ret", -30, -1, "(-30 to -1 Degrees)"},
        Span{"Deg Adv/Ret", -30, 30, "(-30 to 30 Degrees)"}, Span{"GAMA Enrich", 0, 50, "(0 to 50 %GAMA)"},
        Span{"GAMA Lean", -50, -1, "(-50 to -1 %GAMA)"}, Span{"Secs", 0, 2, "(0 to 2 secs, steps of .05)"},
        Span{"Seconds", 0, 10, "(0 to 10 secs, steps of .05)"}, Span{"Volts", 0, 5, "(0 to 5 volts)"},
        Span{"Hys. RPM", 0, 250, "(0 to 250 RPM)"}, Span{"ms", 0, 1000, "(0 to 1000)"},
        Span{"MPH", 0, 255, "(0 to 255 MPH)"}, Span{"%", 0, 100, "(0 to 100%)"},
        Span{"inches", 0, 100, "(0 to 100 inches)"}));

struct Listed {
    const char* word;
    std::vector<float> values;
    std::vector<float> refused;
    const char* text;
};

TEST(GpioLimitsOf, WordsWithListedValues) {
    const std::vector<Listed> words = {
        {"Hz", {60, 120}, {30, 59, 61, 90, 119, 121}, "(60, 120)"},
        {"Hz (Cycles per sec)", {30, 60}, {29, 31, 45, 59, 61, 120}, "(30, 60)"},
        {"Hz (Freq)",
         {24, 16, 31, 61, 122, 244},
         {15, 17, 23, 25, 30, 32, 60, 62, 121, 123, 243, 245},
         "(24, 16, 31, 61, 122, 244)"},
        {"TBL", {1, 2}, {0, 1.5F, 3}, "(1 or 2)"},
        {"Samp. per sec", {5, 10, 20}, {4, 6, 9, 11, 15, 19, 21}, "(5, 10, 20)"},
        {"High/Low", {0, 1}, {-1, 0.5F, 2}, "0 = active high, 1 = active low"},
        {"CLT/MAT", {0, 1}, {-1, 0.5F, 2}, "0 = CLT, 1 = MAT"},
        {"Spd In", {1, 2}, {0, 1.5F, 3}, "(1 or 2)"}};
    for (const auto& [word, values, refused, text] : words) {
        GpioCalibration cal(3);
        const Limits limits = gpioLimitsOf(cal.unit, word);
        for (const float value : values) EXPECT_TRUE(checkLimits(value, limits)) << word << value;
        for (const float value : refused) {
            const Refusal refusal = refusalOf(checkLimits(value, limits));
            EXPECT_EQ(refusal.warning, 1001) << word << " " << value;
            EXPECT_EQ(refusal.text, text);
        }
    }
}

TEST(GpioLimitsOf, TimesComeInSteps) {
    GpioCalibration cal(3);
    for (const char* word : {"Secs", "Seconds"}) {
        const Limits limits = gpioLimitsOf(cal.unit, word);
        for (const float value : {0.05F, 0.1F, 0.15F, 0.35F, 1.95F}) {
            EXPECT_TRUE(checkLimits(value, limits)) << value;
        }
        for (const float value : {0.01F, 0.049F, 0.051F, 0.07F, 1.99F}) {
            EXPECT_EQ(refusalOf(checkLimits(value, limits)),
                      (Refusal{1001, limits.text, numberText(value), limits.text}));
        }
    }
}

TEST(GpioLimitsOf, PressureWordsHaveTheSensorsRange) {
    for (const char* word : {"kPa", "PSIA", "PSIG", "mmHg", "inHg", "%Flow"}) {
        GpioCalibration cal(3);
        cal.plainSensor(word);
        const Limits limits = gpioLimitsOf(cal.unit, word);
        EXPECT_EQ(limits.text, "(-10 to 90)");
        for (const float value : {-9.99F, 0.0F, 89.99F}) EXPECT_TRUE(checkLimits(value, limits));
        for (const float value : {-10.01F, 90.01F}) EXPECT_FALSE(checkLimits(value, limits));
    }
}

TEST(GpioLimitsOf, AnUnknownWordHasNone) {
    GpioCalibration cal(3);
    EXPECT_TRUE(gpioLimitsOf(cal.unit, "").unlimited());
    EXPECT_TRUE(gpioLimitsOf(cal.unit, "rpm").unlimited());
    EXPECT_FALSE(checkTyped("1e39", Limits::none())) << "fits no cell";
}

TEST(GpioLimitsOf, EveryRowWithAValueHasThem) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        for (const int release : {1, 3, 5, 7}) {
            GpioCalibration cal(slot, release);
            cal.plainSensor();
            for (int function = 0; function < 30; ++function) {
                for (const GpioParamRow& row : cal.model.Show_GPIO_Param(0, function)) {
                    if (row.parameter < 0) continue;
                    EXPECT_FALSE(row.limits.unlimited()) << row.mode;
                    EXPECT_LT(row.limits.minimum, row.limits.maximum) << row.mode;
                    EXPECT_FALSE(row.limits.text.empty()) << row.mode;
                }
            }
        }
    }
}

// ---- Entries

struct Manager : GpioCalibration {
    explicit Manager(int function, int release = 5, int slot = 3) : GpioCalibration(slot, release) {
        plainSensor();
        unit.Set_GPIO_Func(1, function);
    }
    float cell(int parameter) const { return unit.Get_GPIO_Param(1, parameter); }
};

TEST(GpioEntry, IsStoredInTheRowsCell) {
    Manager cal(9);
    EXPECT_TRUE(cal.model.enter(1, 0, "1000"));
    EXPECT_TRUE(cal.model.enter(1, 1, " 2000.5 "));
    EXPECT_EQ(cal.cell(0), 1000);
    EXPECT_EQ(cal.cell(2), 2000.5F);
    EXPECT_EQ(cal.cell(1), 0);
}

TEST(GpioEntry, OutsideTheLimitsIsRefusedAndTheValueStays) {
    Manager cal(6);
    EXPECT_TRUE(cal.model.enter(1, 0, "20000"));
    EXPECT_EQ(refusalOf(cal.model.enter(1, 0, "20001")),
              (Refusal{1001, "(0 to 20000 RPM)", "20001", "0 to 20000"}));
    EXPECT_EQ(cal.cell(0), 20000);
}

TEST(GpioEntry, ThatIsNoNumberIsRefused) {
    Manager cal(6);
    for (const char* text : {"abc", "12x", "--1", "1e"}) {
        EXPECT_EQ(refusalOf(cal.model.enter(1, 0, text)), (Refusal{1000, "Retype Data"})) << text;
    }
    EXPECT_EQ(refusalOf(cal.model.enter(1, 0, "  ")), Refusal{1005});
    EXPECT_FALSE(cal.model.enter(1, 0, "1E99"));
    EXPECT_EQ(cal.cell(0), 0);
}

TEST(GpioEntry, InARowWithoutAValueDoesNothing) {
    Manager cal(8);
    for (const int row : {2, 3, -1}) {
        const auto outcome = cal.model.enter(1, row, "1");
        EXPECT_FALSE(outcome);
        EXPECT_EQ(refusalOf(outcome), Refusal{}) << "nothing to tell";
    }
}

TEST(GpioEntry, OfATemperatureInFahrenheitIsKeptInCelsius) {
    Manager cal(3);
    cal.host.isFahrenheit = true;
    EXPECT_TRUE(cal.model.enter(1, 0, "302"));
    EXPECT_EQ(cal.cell(0), 150);
    EXPECT_FALSE(cal.model.enter(1, 0, "302.1"));
    EXPECT_TRUE(cal.model.enter(1, 1, "-40"));
    EXPECT_EQ(cal.cell(1), -40);
    cal.host.isFahrenheit = false;
    EXPECT_FALSE(cal.model.enter(1, 0, "151"));
}

TEST(GpioEntry, OfATrimGoesByTheHint) {
    for (const int function : {17, 18}) {
        Manager cal(function);
        EXPECT_TRUE(cal.model.enter(1, 0, "50"));
        EXPECT_EQ(refusalOf(cal.model.enter(1, 0, "50.5")).text, "(0% to 50%)");
        EXPECT_FALSE(cal.model.enter(1, 0, "-1"));
        EXPECT_TRUE(cal.model.enter(1, 1, "-50"));
        EXPECT_TRUE(cal.model.enter(1, 1, "-1"));
        EXPECT_EQ(refusalOf(cal.model.enter(1, 1, "0")).text, "(-50% to -1%)");
    }
}

TEST(GpioEntry, OfATimedAdvanceTakesTheStepOfItsHint) {
    Manager cal(20);
    EXPECT_TRUE(cal.model.enter(1, 1, "0.125"));
    EXPECT_EQ(cal.cell(2), 0.125F);
    EXPECT_TRUE(cal.model.enter(1, 1, "9.995"));
    EXPECT_EQ(refusalOf(cal.model.enter(1, 1, "0.123")).text, "(0 to 10 steps of .005)");
    EXPECT_EQ(refusalOf(cal.model.enter(1, 1, "10.005")).text, "(0 to 10 secs, steps of .05)");
    Manager older(20, 4);
    EXPECT_FALSE(older.model.enter(1, 1, "0.125"));
    EXPECT_TRUE(older.model.enter(1, 1, "10"));
    EXPECT_EQ(older.cell(3), 10);
    Manager oldest(20, 1);
    EXPECT_FALSE(oldest.model.enter(1, 1, "2.05"));
    EXPECT_TRUE(oldest.model.enter(1, 1, "2"));
    EXPECT_EQ(oldest.cell(1), 2);
}

TEST(GpioEntry, OfTheHysteresisOfTheOrbC) {
    Manager cal(1, 3, 6);
    EXPECT_TRUE(cal.model.enter(1, 2, "250"));
    EXPECT_FALSE(cal.model.enter(1, 2, "251"));
    EXPECT_EQ(cal.cell(4), 250);
}

TEST(GpioEntry, IsSentToARunningUnit) {
    Manager cal(6);
    cal.unit.ONFLY_MODE(true);
    EXPECT_TRUE(cal.model.enter(1, 0, "1000"));
    EXPECT_FALSE(cal.model.enter(1, 0, "99999"));
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(336 + 9 + 1, {3, 232})));
}

// ---- Pulses per mile

// A wheel of 63360 / pi inches turns once in a mile... of 20.168 inches a thousand times:
// 63360 / (pi * 20.168115) = 1000.000.
TEST(PulsesPerMile, AreThoseOfTheWheelTimesAxleTimesSensor) {
    EXPECT_NEAR(gpioPulsesPerMile(20.168115F, 1, 1), 1000, 0.01);
    EXPECT_NEAR(gpioPulsesPerMile(20.168115F, 4, 2), 8000, 0.05);
}

TEST(PulsesPerMile, FollowTheOtherThreeOnceAllAreSet) {
    Manager cal(21);
    EXPECT_TRUE(cal.model.enter(1, 0, "20.168115"));
    EXPECT_EQ(cal.cell(3), 20.168115F);
    EXPECT_TRUE(cal.model.enter(1, 1, "4"));
    EXPECT_EQ(cal.cell(0), 0);
    EXPECT_TRUE(cal.model.enter(1, 2, "2"));
    EXPECT_NEAR(cal.cell(0), 8000, 0.05);
    EXPECT_TRUE(cal.model.enter(1, 1, "2"));
    EXPECT_NEAR(cal.cell(0), 4000, 0.05);
    EXPECT_TRUE(cal.model.enter(1, 2, "0"));
    EXPECT_NEAR(cal.cell(0), 4000, 0.05) << "a missing one leaves the last result";
}

TEST(PulsesPerMile, AnEnteredNumberOverridesTheComputedOne) {
    Manager cal(21);
    for (const auto& [row, text] : std::vector<std::pair<int, const char*>>{{0, "25"}, {1, "4"}, {2, "8"}}) {
        EXPECT_TRUE(cal.model.enter(1, row, text));
    }
    EXPECT_TRUE(cal.model.enter(1, 3, "8000"));
    EXPECT_EQ(cal.cell(0), 8000);
    cal.model.Show_GPIO_Param(1, 21);
    EXPECT_EQ(cal.cell(0), 8000);
    EXPECT_FALSE(cal.model.enter(1, 3, "32768"));
    EXPECT_FALSE(cal.model.enter(1, 3, "-1"));
    EXPECT_EQ(cal.cell(0), 8000);
}

TEST(PulsesPerMile, RefuseADiameterAnAxleOrPulsesOutsideTheirLimits) {
    Manager cal(21);
    for (const auto& [row, text] : std::vector<std::pair<int, const char*>>{
             {0, "100.1"}, {0, "-1"}, {1, "20.1"}, {1, "-1"}, {2, "60.1"}, {2, "-1"}}) {
        EXPECT_FALSE(cal.model.enter(1, row, text)) << row << " " << text;
    }
    EXPECT_TRUE(cal.model.enter(1, 0, "100"));
    EXPECT_TRUE(cal.model.enter(1, 1, "20"));
    EXPECT_TRUE(cal.model.enter(1, 2, "60"));
}

TEST(PulsesPerMile, AreSentWhenTheyChange) {
    Manager cal(21);
    cal.unit.ONFLY_MODE(true);
    EXPECT_TRUE(cal.model.enter(1, 3, "100"));
    // The three that they are made of stay with the calibration.
    EXPECT_TRUE(cal.model.enter(1, 0, "27"));
    EXPECT_THAT(cal.host.sent, ElementsAre(recordOf(336 + 9 + 1, {100})));
}

}  // namespace
}  // namespace zentaq::testing
