// The input/output manager: pins of every kind, functions of every pin, and what choosing one does.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/gpio_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr int noSelection = -999;

// ---- Pins

TEST(GpioPins, OfTheOrbA) {
    const GpioCalibration cal(3);
    EXPECT_THAT(cal.pinTexts(),
                ElementsAre("1 (Output)             (pin W18)", "2 (Output)             (pin W19)",
                            "3 (Output)             (pin W20)", "4 (Output)             (pin W21)",
                            "1 (Input)              (pin G16)", "2 (Input)              (pin G17)",
                            "3 (Input)              (pin G18)", "4 (Input)              (pin G19)"));
    EXPECT_EQ(GpioModel::tagOf(cal.model.Show_GPIO()), "0001020304050607");
}

TEST(GpioPins, TheEighthOfTheOrbACameWithRelease2) {
    for (const int release : {0, 1}) {
        const GpioCalibration old(3, release, 99);
        EXPECT_EQ(GpioModel::tagOf(old.model.Show_GPIO()), "00010203040506");
    }
    const GpioCalibration cal(3, 2, 0);
    EXPECT_EQ(cal.pinNumbers().back(), 7);
}

TEST(GpioPins, OfTheOrbL) {
    const GpioCalibration cal(4, 7);
    EXPECT_THAT(cal.pinTexts(),
                ElementsAre("1 (Input/Output)       (pin G10)", "2 (Input/Output)       (pin G20)",
                            "3 (Input/Output)       (pin G14)", "4 (Input/Output)       (pin G15)",
                            "5 (Input/Output)       (pin G26)", "6 (Input/Output)       (pin G27)",
                            "7 (Input/Output)       (pin G4)", "8 (Input/Output)       (pin G9)",
                            "9 (Input/Output)       (pin G22)"));
    EXPECT_EQ(GpioModel::tagOf(cal.model.Show_GPIO()), "000102030405060708");
}

TEST(GpioPins, OfTheOrbCSkipRowAndPinOfNumber7) {
    const GpioCalibration cal(6, 3);
    EXPECT_THAT(cal.pinTexts(),
                ElementsAre("1 CAM Output             (pin 7)", "2 IAC inverted           (pin 2)",
                            "3 IAC                    (pin 29)", "4 EVAP Solenoid          (pin 36)",
                            "5 GPO                    (pin 9)", "6 BMW A/C Control        (pin 48)",
                            "8 A/C Console Sw         (pin 64)", "9 Ignition Retard Input  (pin 57)",
                            "10 Park/Neutral Input    (pin 81)", "11 GPI 1                 (pin 10)",
                            "12 GPI 2                 (pin 76)", "13 Speed Input           (pin 42)"));
    EXPECT_EQ(GpioModel::tagOf(cal.model.Show_GPIO()), "000102030405070809101112");
}

TEST(GpioPins, OfTheOrbDAndItsSmallModel) {
    const GpioCalibration cal(7);
    EXPECT_THAT(cal.pinTexts(),
                ElementsAre("1 (Input/Output)       (pin 5)", "2 (Input/Output)       (pin 7)",
                            "3 (Input/Output)       (pin 4)", "4 (Input/Output)       (pin 2)",
                            "5 (Input/Output)       (pin 8)"));
    const GpioCalibration small(8);
    EXPECT_THAT(small.pinTexts(),
                ElementsAre("1 (Input/Output)       (pin 5)", "2 (Input/Output)       (pin 7)",
                            "3 (Input/Output)       (pin 4)", "4 (Input/Output)       (pin 2)"));
    EXPECT_THAT(small.pinNumbers(), ElementsAre(0, 1, 2, 3));
}

TEST(GpioPins, OfThePzk2) {
    const GpioCalibration cal(5);
    EXPECT_THAT(cal.pinTexts(),
                ElementsAre("1 (Input/Output)       (pin B2)", "2 (Input/Output)       (pin B4)",
                            "3 (Input/Output)       (pin B5)", "4 (Input/Output)       (pin B12)"));
}

TEST(GpioPins, NoneWithoutACalibration) {
    GpioCalibration cal(0);
    EXPECT_THAT(cal.pinTexts(), IsEmpty());
    EXPECT_THAT(cal.functions(0), IsEmpty());
    EXPECT_THROW(cal.model.choose(0, 1), BoundsError);
    EXPECT_EQ(cal.unit.GPIO_Function_Name(3), "FAN Thermo Control");
    EXPECT_EQ(cal.unit.GPIO_Function_Name(24), "GPIO ERROR: ENTRY NOT FOUND!");
}

// ---- Functions

TEST(GpioFunctionsOf, AnOrbAOutput) {
    const GpioCalibration cal(3);
    for (const int pin : {0, 1, 2, 3}) {
        EXPECT_THAT(cal.functions(pin),
                    ElementsAre("0 DISABLED", "1 A/C Control", "2 Auxiliary Fuel Pump Control",
                                "3 Thermo Control", "4 Intake Runner Control", "5 Nitrous Control",
                                "6 Shift Light", "7 Torque Converter Control", "8 Full Table (PWM)",
                                "9 Custom #1 (AND)", "10 Custom #2 (OR)", "25 Boost Control"));
    }
}

TEST(GpioFunctionsOf, AnOrbAInputWhereDisabledCarries22) {
    const GpioCalibration cal(3);
    for (const int pin : {4, 5}) {
        EXPECT_THAT(cal.functions(pin),
                    ElementsAre("22 DISABLED", "12 Fuel Trim", "13 AC Load", "14 Valet Switch",
                                "15 Datalog Enable", "16 Advance Trim", "17 GPO Trim #1", "18 GPO Trim #2",
                                "19 Nitrous Retard", "20 Timed Advance", "23 Timed Power Cut"));
    }
    EXPECT_THAT(cal.functions(6), Contains("21 Speed Input 1"));
    EXPECT_THAT(cal.functions(7), Contains("21 Speed Input 2"));
    EXPECT_THAT(cal.functions(6), Not(Contains("21 Speed Input 2")));
    EXPECT_THAT(cal.functions(7), Not(Contains("21 Speed Input 1")));
}

const std::vector<std::string> orbLOutputs = {"0 DISABLED",
                                              "1 A/C Control",
                                              "2 Auxiliary Fuel Pump Control",
                                              "3 Thermo Control",
                                              "4 Intake Runner Control",
                                              "5 Nitrous Control",
                                              "6 Shift Light",
                                              "7 Torque Converter Control",
                                              "8 Full Table (PWM)",
                                              "9 Custom #1 (AND)",
                                              "10 Custom #2 (OR)",
                                              "11 IAC Output"};

std::vector<std::string> sumOf(std::vector<std::string> first, const std::vector<std::string>& second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

TEST(GpioFunctionsOf, AnOrbLPinAreOutputsThenInputs) {
    const GpioCalibration cal(4, 7);
    const auto with = [](const std::vector<std::string>& speed) {
        const auto upTo20 =
            sumOf(orbLOutputs, {"25 Boost Control", "12 Fuel Trim", "13 AC Load", "14 Valet Switch",
                                "15 Datalog Enable", "16 Advance Trim", "17 GPO Trim #1", "18 GPO Trim #2",
                                "19 Nitrous Retard", "20 Timed Advance"});
        return sumOf(sumOf(upTo20, speed), {"22 Voltage Input", "23 Timed Power Cut"});
    };
    for (const int pin : {0, 1, 2, 3, 4, 5, 8}) {
        EXPECT_THAT(cal.functions(pin), ElementsAreArray(with({}))) << pin;
    }
    EXPECT_THAT(cal.functions(6), ElementsAreArray(with({"21 Speed Input 1"})));
    EXPECT_THAT(cal.functions(7), ElementsAreArray(with({"21 Speed Input 2"})));
}

TEST(GpioFunctionsOf, AnOrbDPinHasTheCheckEngineLightAndNoDatalogEnable) {
    for (const int slot : {7, 8}) {
        const GpioCalibration cal(slot);
        const auto with = [](const std::vector<std::string>& speed) {
            const auto upTo20 =
                sumOf(orbLOutputs, {"24 Check Engine Light", "25 Boost Control", "12 Fuel Trim", "13 AC Load",
                                    "14 Valet Switch", "16 Advance Trim", "17 GPO Trim #1", "18 GPO Trim #2",
                                    "19 Nitrous Retard", "20 Timed Advance"});
            return sumOf(sumOf(upTo20, speed), {"22 Voltage Input", "23 Timed Power Cut"});
        };
        EXPECT_THAT(cal.functions(0), ElementsAreArray(with({})));
        EXPECT_THAT(cal.functions(1), ElementsAreArray(with({})));
        EXPECT_THAT(cal.functions(2), ElementsAreArray(with({"21 Speed Input 1"})));
        EXPECT_THAT(cal.functions(3), ElementsAreArray(with({"21 Speed Input 2"})));
    }
    EXPECT_FALSE(GpioCalibration(7).functions(4).empty());
    EXPECT_TRUE(GpioCalibration(8).functions(4).empty());
}

TEST(GpioFunctionsOf, AnOrbCPin) {
    const GpioCalibration cal(6, 3);
    for (const int pin : {0, 1, 2, 3, 4, 5}) {
        EXPECT_THAT(cal.functions(pin),
                    ElementsAre("0 DISABLED", "1 BMW A/C Control", "2 Auxiliary Fuel Pump Control",
                                "3 Thermo Control", "4 Intake Runner Control", "5 Nitrous Control",
                                "6 Shift Light", "7 Torque Converter Control", "8 Full Table (PWM)",
                                "9 Custom #1 (AND)", "10 Custom #2 (OR)", "11 IAC Output", "24 CAM Control",
                                "25 Boost Control", "29 IAC Output (inverted)"));
    }
    EXPECT_THAT(cal.functions(6), IsEmpty());
    for (const int pin : {7, 8, 9, 10}) {
        EXPECT_THAT(cal.codes(pin), ElementsAre(0, 12, 13, 14, 15, 16, 17, 18, 19, 20, 22, 23));
    }
    EXPECT_THAT(cal.functions(11), Contains("21 Speed Input 2"));
    EXPECT_THAT(cal.functions(12), Contains("21 Speed Input 1"));
}

TEST(GpioFunctionsOf, APzk2Pin) {
    const GpioCalibration cal(5);
    for (const int pin : {0, 1, 2, 3}) {
        EXPECT_THAT(cal.functions(pin),
                    ElementsAre("0 DISABLED", "5 Nitrous Control", "6 Shift Light", "8 Full Table",
                                "9 Custom #1 (AND)", "10 Custom #2 (OR)", "14 Valet Switch",
                                "16 Advance Trim", "17 GPO Trim #1", "18 GPO Trim #2", "19 Nitrous Retard",
                                "20 Timed Advance", "23 Timed Power Cut"));
    }
}

TEST(GpioFunctionsOf, AnInputThatAnotherInputHasAreLeftOut) {
    GpioCalibration cal(3);
    for (const int code : {12, 13, 14, 15, 16, 17, 18, 19, 20, 23}) {
        cal.unit.Set_GPIO_Func(5, code);
        EXPECT_THAT(cal.codes(5), Contains(code));
        EXPECT_EQ(cal.selectedCode(5), code);
        for (const int other : {4, 6, 7}) EXPECT_THAT(cal.codes(other), Not(Contains(code))) << other;
    }
    cal.unit.Set_GPIO_Func(5, 22);
    EXPECT_THAT(cal.codes(4), Contains(23));
}

TEST(GpioFunctionsOf, BothPinsThatHaveAnInputStillOfferIt) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(4, 12);
    cal.unit.Set_GPIO_Func(5, 12);
    EXPECT_EQ(cal.selectedCode(4), 12);
    EXPECT_EQ(cal.selectedCode(5), 12);
}

TEST(GpioFunctionsOf, AnInputCodeOnAnOrbAOutputDoesNotCount) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(0, 12);
    EXPECT_THAT(cal.codes(4), Contains(12));
}

TEST(GpioFunctionsOf, TheHiddenEighthPinOfOldFirmwareStillCounts) {
    GpioCalibration cal(3, 1, 0);
    cal.unit.Set_GPIO_Func(7, 12);
    EXPECT_THAT(cal.codes(4), Not(Contains(12)));
}

TEST(GpioFunctionsOf, OutputsDisabledAndVoltageInputsMayBeOnAnyNumberOfPins) {
    GpioCalibration cal(4, 7);
    for (const int code : {0, 8, 22}) {
        cal.unit.Set_GPIO_Func(0, code);
        EXPECT_THAT(cal.codes(1), Contains(code));
    }
    GpioCalibration orbA(3);
    orbA.unit.Set_GPIO_Func(4, 22);
    EXPECT_THAT(orbA.codes(5), Contains(22));
}

TEST(GpioFunctionsOf, BothSpeedInputsMayBeInUse) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(6, 21);
    cal.unit.Set_GPIO_Func(7, 21);
    EXPECT_EQ(cal.selectedCode(6), 21);
    EXPECT_EQ(cal.selectedCode(7), 21);
}

TEST(GpioFunctionsOf, OnTheOtherKindsTheRuleCountsEveryPinThatCanBeAnInput) {
    struct Case {
        int slot;
        int first;
        int last;
    };
    for (const auto& [slot, first, last] :
         {Case{4, 0, 8}, Case{5, 0, 3}, Case{6, 7, 12}, Case{7, 0, 4}, Case{8, 0, 3}}) {
        GpioCalibration cal(slot);
        cal.unit.Set_GPIO_Func(last, 16);
        EXPECT_THAT(cal.codes(first), Not(Contains(16))) << slot;
        EXPECT_THAT(cal.codes(last), Contains(16)) << slot;
    }
    GpioCalibration small(8);
    small.unit.Set_GPIO_Func(4, 16);  // a pin that the small model does not have
    EXPECT_THAT(small.codes(0), Contains(16));
}

TEST(GpioFunctionsOf, AStoredCodeOutsideTheListSelectsNothing) {
    GpioCalibration cal(3);
    EXPECT_EQ(cal.selectedCode(0), 0);
    EXPECT_EQ(cal.selectedCode(4), noSelection);  // 0 on an input: DISABLED carries 22 there
    cal.unit.Set_GPIO_Func(4, 22);
    EXPECT_EQ(cal.selectedCode(4), 22);
    for (const int code : {11, 12, 22, 24, 29, 99}) {
        cal.unit.Set_GPIO_Func(0, code);
        EXPECT_EQ(cal.selectedCode(0), noSelection) << code;
    }
    for (const float rubbish : {1e20F, -7.0F, 40000.0F}) {
        cal.unit.AssignDirectIndex(rubbish, 336);
        EXPECT_EQ(cal.selectedCode(0), noSelection);
    }
}

TEST(GpioFunctionsOf, IndexPollingDoesNotChangeTheList) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(1, 6);
    cal.unit.IndexPolling(true);
    EXPECT_EQ(cal.selectedCode(1), 6);
}

struct FirmwareCase {
    float code;
    int release;
    bool offered;
};

bool offersOn(int pin, int code, const FirmwareCase& firmware, int slot = 3) {
    GpioCalibration cal(slot, 1, 1);
    cal.unit.FW_Release(firmware.release);
    setFirmwareCode(cal.unit, firmware.code);
    return ::testing::Value(cal.codes(pin), Contains(code));
}

TEST(GpioFunctionsOf, DatalogEnableNeedsRelease2OrACodeAndARelease) {
    for (const FirmwareCase& firmware :
         {FirmwareCase{0, 1, false}, FirmwareCase{0, 2, true}, FirmwareCase{999, 1, false},
          FirmwareCase{999, 2, true}, FirmwareCase{1000, 1, true}, FirmwareCase{1000, 0, false},
          FirmwareCase{5099, 5, true}}) {
        EXPECT_EQ(offersOn(4, 15, firmware), firmware.offered) << firmware.code << " " << firmware.release;
    }
}

TEST(GpioFunctionsOf, BoostControlNeedsACodeOrAReleaseOf4) {
    for (const FirmwareCase& firmware :
         {FirmwareCase{0, 3, false}, FirmwareCase{0, 4, true}, FirmwareCase{3, 3, false},
          FirmwareCase{4, 0, true}, FirmwareCase{1001, 1, true}, FirmwareCase{0, 5, true}}) {
        EXPECT_EQ(offersOn(0, 25, firmware), firmware.offered) << firmware.code << " " << firmware.release;
    }
}

// ---- Names

TEST(GpioNames, FollowTheKind) {
    EXPECT_EQ(GpioCalibration(3).unit.GPIO_Function_Name(22), "DISABLED");
    EXPECT_EQ(GpioCalibration(5).unit.GPIO_Function_Name(22), "DISABLED");
    for (const int slot : {4, 6, 7, 8}) {
        EXPECT_EQ(GpioCalibration(slot).unit.GPIO_Function_Name(22), "Voltage Input") << slot;
    }
    EXPECT_EQ(GpioCalibration(6).unit.GPIO_Function_Name(1), "A/C Control");
    EXPECT_EQ(GpioCalibration(6).unit.GPIO_Function_Name(24), "CAM Control");
    EXPECT_EQ(GpioCalibration(7).unit.GPIO_Function_Name(24), "Check Engine Light");
    EXPECT_EQ(GpioCalibration(6).unit.GPIO_Function_Name(29), "IAC Output (inverted)");
    for (const int slot : {3, 4, 5, 7}) {
        EXPECT_EQ(GpioCalibration(slot).unit.GPIO_Function_Name(29), "GPIO ERROR: ENTRY NOT FOUND!") << slot;
    }
    const std::vector<std::string> names = {"DISABLED",
                                            "A/C Control",
                                            "Auxiliary Fuel Pump Control",
                                            "FAN Thermo Control",
                                            "Intake Runner Control",
                                            "Nitrous Control",
                                            "Shift Light",
                                            "Torque Converter Control",
                                            "Full Table",
                                            "Custom GPO #1",
                                            "Custom GPO #2",
                                            "IAC Output",
                                            "Fuel Trim",
                                            "AC Load",
                                            "Valet Switch",
                                            "Datalog Enable",
                                            "Advance Trim",
                                            "GPO Trim #1",
                                            "GPO Trim #2",
                                            "NOS Retard",
                                            "Timed Advance",
                                            "Speed Gauge"};
    for (const auto& [slot, base, pins] : pinBlocks) {
        const GpioCalibration cal(slot);
        for (std::size_t code = 0; code < names.size(); ++code) {
            EXPECT_EQ(cal.unit.GPIO_Function_Name(static_cast<int>(code)), names[code]) << slot;
        }
        EXPECT_EQ(cal.unit.GPIO_Function_Name(23), "Timed Power Cut");
        EXPECT_EQ(cal.unit.GPIO_Function_Name(25), "Boost Control");
        for (const int code : {-1, 26, 28, 30, 99}) {
            EXPECT_EQ(cal.unit.GPIO_Function_Name(code), "GPIO ERROR: ENTRY NOT FOUND!") << code;
        }
    }
}

// ---- Choosing

TEST(ChoosingAFunction, ZeroesAllParametersOfThatPinOnly) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        GpioCalibration cal(slot);
        for (int i = base; i < base + 9 * pins; ++i) cal.unit.AssignDirectIndex(7, i);
        EXPECT_EQ(cal.model.choose(1, 6), GpioChoice::Changed);
        for (int i = base; i < base + 9 * pins; ++i) {
            const float expected = i == base + 9 ? 6 : (i > base + 9 && i < base + 18) ? 0 : 7;
            EXPECT_EQ(cal.unit.DirectIndex(i), expected) << slot << " cell " << i;
        }
        EXPECT_EQ(cal.selectedCode(1), 6);
    }
}

TEST(ChoosingAFunction, ThatThePinHasAlreadyKeepsItsParameters) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(0, 6);
    cal.unit.Set_GPIO_Param(0, 0, 6500);
    EXPECT_EQ(cal.model.choose(0, 6), GpioChoice::Unchanged);
    EXPECT_EQ(cal.unit.Get_GPIO_Param(0, 0), 6500);
}

TEST(ChoosingAFunction, IsRefusedWhileTheUnitFollows) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(0, 6);
    cal.unit.Set_GPIO_Param(0, 0, 6500);
    cal.unit.ONFLY_MODE(true);
    EXPECT_EQ(cal.model.choose(0, 8), GpioChoice::UnitInUse);
    EXPECT_EQ(cal.model.choose(0, 6), GpioChoice::UnitInUse);
    EXPECT_EQ(cal.selectedCode(0), 6);
    EXPECT_EQ(cal.unit.Get_GPIO_Param(0, 0), 6500);
    EXPECT_THAT(cal.host.sent, IsEmpty());
    EXPECT_EQ(gpioUnitInUseText,
              "GPIO function cannot be changed ONFLY.\n"
              "Please turn the unit off or disconnect the serial cable.");
    EXPECT_EQ(gpioUnitInUseTitle, "Unit Connected");
}

TEST(ChoosingAFunction, OnAPinThatTheKindDoesNotHaveThrows) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        GpioCalibration cal(slot);
        EXPECT_NO_THROW(cal.model.choose(pins - 1, 6));
        EXPECT_THROW(cal.model.choose(pins, 6), BoundsError);
        EXPECT_THROW(cal.model.choose(-1, 6), BoundsError);
    }
}

TEST(ChoosingAFunction, ThatThePinDoesNotOfferChangesNothing) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(0, 6);
    cal.unit.Set_GPIO_Param(0, 0, 6500);
    for (const int code : {11, 12, 22, 26, 29, 99, -1}) {
        EXPECT_EQ(cal.model.choose(0, code), GpioChoice::NotOffered) << code;
        EXPECT_FALSE(cal.model.whyNot(0, code).empty()) << code;
    }
    EXPECT_EQ(cal.unit.Get_GPIOFUNC(0), 6);
    EXPECT_EQ(cal.unit.Get_GPIO_Param(0, 0), 6500);
}

TEST(ChoosingAFunction, IsAllowedForEveryFunctionOfTheListAndForNoOther) {
    for (const auto& [slot, base, pins] : pinBlocks) {
        for (const int release : {1, 2, 4, 5}) {
            GpioCalibration cal(slot, release);
            for (const GpioPinRow& row : cal.model.Show_GPIO()) {
                const std::vector<int> offered = cal.codes(row.pin);
                for (int code = -1; code <= 40; ++code) {
                    const bool listed = std::ranges::find(offered, code) != offered.end();
                    EXPECT_EQ(cal.model.whyNot(row.pin, code).empty(), listed)
                        << slot << " pin " << row.pin << " code " << code;
                }
            }
        }
    }
}

TEST(RefusedFunctions, TellTheReasonAndWhatThePinOffers) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(4, 12);
    const std::string inputs =
        "; the pin offers 22 DISABLED, 13 AC Load, 14 Valet Switch, 15 Datalog Enable, 16 Advance Trim, "
        "17 GPO Trim #1, 18 GPO Trim #2, 19 Nitrous Retard, 20 Timed Advance, 23 Timed Power Cut";
    EXPECT_EQ(cal.model.whyNot(5, 12),
              "\"Fuel Trim\" is on pin 4 (G16) already, and only one input may have it" + inputs);
    EXPECT_EQ(cal.model.whyNot(5, 6), "\"Shift Light\" is for outputs, and pin 5 (G17) is an input" + inputs);
    EXPECT_EQ(cal.model.whyNot(5, 26), "26 is no function of ORB A" + inputs);
    EXPECT_EQ(cal.model.whyNot(5, 11), "\"IAC Output\" is no function of ORB A" + inputs);
    EXPECT_EQ(cal.model.whyNot(5, 21), "\"Speed Input 2\" is not on pin 5 (G17)" + inputs);
    EXPECT_THAT(cal.model.whyNot(0, 16),
                ::testing::StartsWith("\"Advance Trim\" is for inputs, and pin 0 (W18) is an output; "));
    EXPECT_EQ(cal.model.whyNot(8, 6), "ORB A has no pin 8");
    cal.unit.FW_Release(3);
    setFirmwareCode(cal.unit, 0);
    EXPECT_THAT(cal.model.whyNot(0, 25),
                ::testing::StartsWith("\"Boost Control\" needs firmware of release 4, and the calibration is "
                                      "for release 3; "));
}

TEST(OddFunctions, OfAFileAreNamedPinByPin) {
    GpioCalibration cal(3);
    for (int pin = 0; pin < 8; ++pin)
        cal.unit.Set_GPIO_Func(pin, 0);  // an input of an older file has 0 as well
    EXPECT_TRUE(cal.model.oddFunctions().empty());
    cal.unit.Set_GPIO_Func(1, 12);
    cal.unit.Set_GPIO_Func(4, 14);
    cal.unit.Set_GPIO_Func(6, 14);
    const auto odd = cal.model.oddFunctions();
    ASSERT_EQ(odd.size(), 2U);
    EXPECT_THAT(odd[0], ::testing::StartsWith("pin 1 (W19): \"Fuel Trim\" is for inputs"));
    EXPECT_EQ(odd[1], "\"Valet Switch\", which only one input may have, is on pin 4 (G16), pin 6 (G18)");
    EXPECT_EQ(cal.model.doubled(), (std::vector<GpioDouble>{{14, {4, 6}}}));
}

// ---- The firmware that a function tells

struct Recorded {
    float code;
    int release;
    int build;
    bool operator==(const Recorded&) const = default;
};

Recorded recordedAfter(int slot, int function, float code = 0, int release = 0, int build = 0) {
    GpioCalibration cal(slot, 0, 0);
    cal.unit.FW_Release(release);
    cal.unit.FW_Build(build);
    setFirmwareCode(cal.unit, code);
    cal.unit.Set_GPIO_Func(2, function);
    EXPECT_EQ(cal.unit.Get_GPIOFUNC(2), function);
    return {cal.unit.facts().firmwareCode, cal.unit.FW_Release(), cal.unit.FW_Build()};
}

TEST(OrbLWithoutFirmware, RecordsTheReleaseThatAFunctionNeeds) {
    EXPECT_EQ(recordedAfter(4, 15), (Recorded{2000, 2, 0}));
    EXPECT_EQ(recordedAfter(4, 22), (Recorded{2000, 2, 0}));
    EXPECT_EQ(recordedAfter(4, 25), (Recorded{4000, 4, 0}));
    for (const int other : {0, 1, 8, 12, 20, 21, 23}) {
        EXPECT_EQ(recordedAfter(4, other), (Recorded{0, 0, 0})) << other;
    }
}

TEST(OrbLWithoutFirmware, AKnownFirmwareStays) {
    EXPECT_EQ(recordedAfter(4, 25, 1000, 0, 0), (Recorded{1000, 0, 0}));
    EXPECT_EQ(recordedAfter(4, 25, 0, 1, 0), (Recorded{0, 1, 0}));
    EXPECT_EQ(recordedAfter(4, 25, 0, 0, 7), (Recorded{0, 0, 7}));
    EXPECT_EQ(recordedAfter(4, 15, 7099, 7, 99), (Recorded{7099, 7, 99}));
}

TEST(OrbLWithoutFirmware, NoOtherKindRecordsAnything) {
    for (const int slot : {3, 5, 6, 7, 8}) {
        for (const int function : {15, 22, 25}) {
            EXPECT_EQ(recordedAfter(slot, function), (Recorded{0, 0, 0})) << slot;
        }
    }
}

TEST(OrbLWithoutFirmware, OffersTheFunctionsThatTellIt) {
    GpioCalibration cal(4, 0, 0);
    for (const int code : {15, 22, 25}) EXPECT_THAT(cal.codes(0), Contains(code));
    EXPECT_EQ(cal.model.choose(0, 15), GpioChoice::Changed);
    // Release 2 has no boost control.
    EXPECT_THAT(cal.codes(1), Contains(22));
    setFirmwareCode(cal.unit, 0);
    EXPECT_THAT(cal.codes(1), Not(Contains(25)));
    GpioCalibration orbA(3, 0, 0);
    EXPECT_THAT(orbA.codes(4), Not(Contains(15)));
    EXPECT_THAT(orbA.codes(0), Not(Contains(25)));
}

TEST(GpioParameters, AreFoundByTheRowThatEditsThem) {
    GpioCalibration cal(3);
    cal.unit.Set_GPIO_Func(0, 8);  // frequency, table, "Edit Table"
    EXPECT_EQ(cal.model.rowOf(0, 0), 1);
    EXPECT_EQ(cal.model.rowOf(0, 1), 0);
    EXPECT_EQ(cal.model.rowOf(0, 2), -1);
    EXPECT_EQ(cal.model.rowOf(0, -1), -1);  // an action's row edits nothing
    cal.unit.Set_GPIO_Func(0, 0);
    EXPECT_EQ(cal.model.rowOf(0, 0), -1);
    EXPECT_THROW(cal.model.rowOf(8, 0), BoundsError);
}

TEST(GpioParameters, AreShownInTheUsersScaleAndOthersAsTheyStand) {
    GpioCalibration cal(3);
    cal.host.isFahrenheit = true;
    cal.unit.Set_GPIO_Func(0, 3);
    cal.unit.Set_GPIO_Param(0, 0, 100);
    cal.unit.Set_GPIO_Param(0, 5, 100);
    EXPECT_EQ(cal.model.shownParameter(0, 0), 212);
    EXPECT_EQ(cal.model.shownParameter(0, 5), 100);
}

}  // namespace
}  // namespace zentaq::testing
