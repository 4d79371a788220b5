#include "live/check_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "base/errors.h"
#include "live/calibration_fixture.h"

namespace zentaq {
namespace {

using Texts = std::vector<std::string>;

/// A T reply whose data byte `n` (1 to 12) has a value; all others hold no code.
Texts codesWith(int slot, int n, int value) {
    test::Calibration calibration(slot);
    std::vector<std::uint8_t> reply(16, 255);
    reply[static_cast<std::size_t>(n + 2)] = static_cast<std::uint8_t>(value);
    calibration.unit.Set_ECData(reply);
    return activeCodes(calibration.unit);
}

TEST(CheckEngine, AWordOf255HoldsNoCode) {
    EXPECT_EQ(codesWith(3, 1, 255), Texts{});
}

TEST(CheckEngine, AClearedBitIsASetCode) {
    EXPECT_EQ(codesWith(3, 1, 0xFD), Texts{"12 - Trigger Wheel Error"});
    EXPECT_EQ(codesWith(3, 2, 0xFF - 0x01 - 0x20),
              (Texts{"21 - TPS Sensor Failed High", "26 - CLT Sensor Failed Low"}));
}

TEST(CheckEngine, AWordOf0HoldsAllEightOfItsRow) {
    EXPECT_EQ(codesWith(3, 3, 0), (Texts{"31 - MAT Sensor Failed High", "32 - MAT Sensor Failed Low",
                                         "33 - BAT Voltage Failed High", "34 - BAT Voltage Failed Low",
                                         "35 - Knock Response too Long", "36 - Knock Not Detected",
                                         "37 - EGO Lean Too Long", "38 - EGO Rich Too Long"}));
    EXPECT_EQ(codesWith(4, 12, 0),
              (Texts{"Intermittent ISC1 Thermal Shutdown", "Intermittent ISC2 Short to Battery or Open Load",
                     "Intermittent ISC3 Short to Ground", " ", " ", " ", " ", " "}));
}

TEST(CheckEngine, Kind3HasAnalogueInputsWhereOthersHaveOutputs) {
    EXPECT_EQ(codesWith(3, 4, 0x7F), Texts{"48 - AD4 Failed Low"});
    EXPECT_EQ(codesWith(4, 4, 0xEF), Texts{"45 - GPO9 Failed"});
    EXPECT_EQ(codesWith(3, 10, 0xFE), Texts{"Intermittent AD1 Failed High"});
    EXPECT_EQ(codesWith(7, 10, 0xFE), Texts{"Intermittent GPO5 Failed"});
}

TEST(CheckEngine, TheIntermittentRowsKeepTheirOddPlaces) {
    EXPECT_EQ(CheckEngineTexts::text(*unitKindOfSlot(3), 7, 0), " ");
    EXPECT_EQ(CheckEngineTexts::text(*unitKindOfSlot(3), 11, 6), "Spare Out");
    EXPECT_THROW(CheckEngineTexts::text(*unitKindOfSlot(3), 0, 0), BoundsError);
    EXPECT_THROW(CheckEngineTexts::text(*unitKindOfSlot(3), 13, 0), BoundsError);
}

TEST(ShortCodes, AreTwoFieldsOf7Characters) {
    EXPECT_EQ(shortCode("21 - TPS Sensor Failed High"), (ShortCode{"TPS SEN", "FAIL HI"}));
    EXPECT_EQ(shortCode("12 - Trigger Wheel Error"), (ShortCode{"TRIGGER", "ERROR  "}));
    EXPECT_EQ(shortCode("Intermittent TPS Sensor High"), (ShortCode{"INTRMT ", "TPS HI "}));
    EXPECT_EQ(shortCode(" "), std::nullopt);
    EXPECT_EQ(shortCode("no such code"), std::nullopt);
}

TEST(ShortCodes, CoverEveryTextOfEveryKindWithoutRepeating) {
    std::set<std::string> shown;
    std::set<std::string_view> texts;
    for (const int slot : {3, 4}) {
        for (int row = 1; row <= 12; ++row) {
            for (int bit = 0; bit < 8; ++bit) {
                const std::string_view text = CheckEngineTexts::text(*unitKindOfSlot(slot), row, bit);
                if (text == " ") continue;
                const auto code = shortCode(text);
                ASSERT_TRUE(code) << text;
                EXPECT_EQ(code->top.size(), 7U) << text;
                EXPECT_EQ(code->bottom.size(), 7U) << text;
                texts.insert(text);
                shown.insert(code->top + code->bottom);
            }
        }
    }
    EXPECT_EQ(texts.size(), 94U);  // 48 + 5 failures, 36 + 5 intermittent
    EXPECT_EQ(shown.size(), texts.size());
}

TEST(CheckEngineDisplay, StepsThroughFilledEntriesAndBeginsAgain) {
    CheckEngineDisplay display;
    EXPECT_EQ(display.step(), std::nullopt);
    display.Update_CHKE("Intermittent ISC3 Short to Ground");
    display.Update_CHKE("12 - Trigger Wheel Error");
    display.Update_CHKE("12 - Trigger Wheel Error");
    display.Update_CHKE(" ");
    EXPECT_EQ(display.step()->top, "TRIGGER");
    EXPECT_EQ(display.step()->bottom, "ISC3   ");
    EXPECT_EQ(display.step()->top, "TRIGGER");
}

TEST(CheckEngineDisplay, ClearingEmptiesIt) {
    CheckEngineDisplay display;
    display.Update_CHKE("58 - TACH Failed");
    EXPECT_FALSE(display.empty());
    display.Clear_CHKE();
    EXPECT_TRUE(display.empty());
    EXPECT_EQ(display.step(), std::nullopt);
}

TEST(CheckEngineDisplay, ListsAllItsCodesInTheOrderOfTheSteps) {
    CheckEngineDisplay display;
    EXPECT_TRUE(display.texts().empty());
    display.Update_CHKE("58 - TACH Failed");
    display.Update_CHKE("12 - Trigger Wheel Error");
    EXPECT_EQ(display.texts(),
              (std::vector<std::string_view>{"12 - Trigger Wheel Error", "58 - TACH Failed"}));
    display.Clear_CHKE();
    EXPECT_TRUE(display.texts().empty());
}

TEST(CheckEngineDisplay, OnOneLineACodeStandsBehindHowManyThereAre) {
    const ShortCode throttle{"TPS SEN", "FAIL HI"};
    EXPECT_EQ(codeLine(throttle, 1), "1 code: TPS SEN FAIL HI");
    EXPECT_EQ(codeLine(throttle, 12), "12 codes: TPS SEN FAIL HI");
    EXPECT_EQ(codeLine({"EGO    ", "LEAN   "}, 2), "2 codes: EGO LEAN");
    EXPECT_EQ(codeLine({"CODES  ", "CLEARED"}, 0), "CODES CLEARED");
}

TEST(CheckEngineDisplay, TheTipHasAllCodesInFullAndSaysHowManyMoreThereAre) {
    const ShortCode throttle{"TPS SEN", "FAIL HI"};
    EXPECT_EQ(codeTip(throttle, {"12 - Trigger Wheel Error", "21 - TPS Sensor Failed High"}),
              "2 codes: TPS SEN FAIL HI\n12 - Trigger Wheel Error\n21 - TPS Sensor Failed High");
    EXPECT_EQ(codeTip({"CODES  ", "CLEARED"}, {}), "CODES CLEARED");
    const std::vector<std::string_view> many(20, "41 - AD1 Failed High");
    const std::string tip = codeTip(throttle, many);
    EXPECT_EQ(std::ranges::count(tip, '\n'), 17);
    EXPECT_TRUE(tip.ends_with("41 - AD1 Failed High\nand 4 more"));
}

TEST(CheckEngineDisplay, ThatTheCodesWereClearedIsToldForThreeSteps) {
    CheckEngineDisplay display;
    display.tellCleared();
    EXPECT_TRUE(display.empty());
    for (int step = 0; step < 3; ++step) {
        EXPECT_FALSE(display.silent());
        EXPECT_EQ(display.step(), (ShortCode{"CODES  ", "CLEARED"}));
        display.Clear_CHKE();  // the codes are asked for again all the time
    }
    EXPECT_TRUE(display.silent());
    EXPECT_EQ(display.step(), std::nullopt);
}

TEST(CheckEngineDisplay, ACodeThatComesEndsWhatWasToldOfClearedOnes) {
    CheckEngineDisplay display;
    display.tellCleared();
    display.Update_CHKE("58 - TACH Failed");
    display.Clear_CHKE();
    EXPECT_TRUE(display.silent());
}

}  // namespace
}  // namespace zentaq
