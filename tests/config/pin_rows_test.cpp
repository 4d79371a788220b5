#include "config/pin_rows.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "config/tree.h"
#include "unit/recording_host.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

struct Pins {
    RecordingHost host;
    Unit unit;

    explicit Pins(const UnitKind& kind = orbaKind()) : unit(kind, host) { unit.FW_Release(5); }
    void give(int pin, int code, float first) {
        unit.Set_GPIO_Func(pin, code);
        unit.Set_GPIO_Param(pin, 0, first);
    }
    std::vector<PageRow> rows() { return pinRows(unit); }
    std::vector<std::string> column(std::string Field::*text) {
        std::vector<std::string> texts;
        for (const PageRow& row : rows()) texts.push_back(row.*text);
        return texts;
    }
    Field lastElement(std::size_t pin) { return rows().at(pin).elements.back(); }
};

TEST(PinRows, EachPinStandsWithItsWireAndItsFunction) {
    Pins pins;
    pins.give(0, 6, 6200);
    pins.give(1, 8, 2);
    pins.give(4, 12, 10);
    EXPECT_THAT(pins.column(&Field::caption),
                ElementsAre("1 (Output)             (pin W18)", "2 (Output)             (pin W19)",
                            "3 (Output)             (pin W20)", "4 (Output)             (pin W21)",
                            "1 (Input)              (pin G16)", "2 (Input)              (pin G17)",
                            "3 (Input)              (pin G18)", "4 (Input)              (pin G19)"));
    EXPECT_THAT(pins.column(&Field::text), ElementsAre("Shift Light", "Full Table", "DISABLED", "DISABLED",
                                                       "Fuel Trim", "DISABLED", "DISABLED", "DISABLED"));
}

TEST(PinRows, ThePageOfTheTreeShowsThem) {
    Pins pins;
    ASSERT_THAT(pageRows(pins.unit, managerPage, ""), SizeIs(8));
    EXPECT_EQ(pageRows(pins.unit, managerPage, "").at(4).caption, "1 (Input)              (pin G16)");
}

TEST(PinRows, AFunctionTellsItsParametersAndWhatTheyMayBe) {
    Pins pins;
    pins.give(0, 6, 6200);
    const PageRow row = pins.rows().at(0);
    ASSERT_THAT(row.elements, SizeIs(1));
    EXPECT_EQ(row.elements[0].caption, "RPM above which Shift Light is ON");
    EXPECT_EQ(row.elements[0].text, "6200");
    EXPECT_EQ(row.elements[0].unit, "RPM");
    EXPECT_EQ(row.elements[0].limits, "0 to 20000 RPM");
    EXPECT_NE(row.elements[0].kind, FieldKind::Action);
}

TEST(PinRows, AFunctionWithoutParametersHasNothingBelowIt) {
    EXPECT_THAT(Pins().rows().at(0).elements, IsEmpty());
    Pins pins;
    pins.give(4, 15, 3000);  // two parameters; the unit's own datalog is fetched by the menu
    EXPECT_THAT(pins.rows().at(4).elements, SizeIs(2));
}

TEST(PinRows, AFullTableLeadsToTheTableOfItsNumber) {
    Pins pins;
    pins.give(2, 8, 2);
    EXPECT_EQ(pins.lastElement(2).caption, "Edit Table");
    EXPECT_EQ(pins.lastElement(2).kind, FieldKind::Action);
    EXPECT_EQ(pins.lastElement(2).element, 2);
    EXPECT_TRUE(pins.lastElement(2).enabled);
    EXPECT_EQ(pins.lastElement(2).text, "Full Table - Table#2");
    ASSERT_NE(tableOfPin(pins.unit, 2), nullptr);
    EXPECT_EQ(tableOfPin(pins.unit, 2)->name, "GPO2");
    pins.give(2, 8, 1);
    EXPECT_EQ(tableOfPin(pins.unit, 2)->name, "GPO1");
    EXPECT_EQ(tableOfPin(pins.unit, 2)->title, "Full Table - Table#1");
}

TEST(PinRows, ANumberThatIsNoTableOpensNothingAndIsToldWithThoseThatThereAre) {
    for (const auto& [number, told] : {std::pair(0.0f, "There is no table 0"),
                                       {3.0f, "There is no table 3"},
                                       {-1.0f, "There is no table -1"},
                                       {70000.0f, "There is no table 70000"}}) {
        Pins pins;
        pins.give(0, 8, number);
        EXPECT_EQ(tableOfPin(pins.unit, 0), nullptr);
        EXPECT_FALSE(pins.lastElement(0).enabled);
        EXPECT_EQ(pins.lastElement(0).text, told);
        EXPECT_EQ(pins.lastElement(0).limits, "1 or 2");
    }
}

TEST(PinRows, OtherFunctionsHaveNoTableWhateverTheirFirstParameterIs) {
    Pins pins;
    pins.give(0, 6, 1);
    EXPECT_EQ(tableOfPin(pins.unit, 0), nullptr);
    EXPECT_EQ(tableOfPin(pins.unit, 99), nullptr);
    EXPECT_EQ(tableOfPin(pins.unit, -1), nullptr);
    RecordingHost host;
    const Unit none{nullKind(), host};
    EXPECT_EQ(tableOfPin(none, 0), nullptr);
}

TEST(PinRows, WhatAFileHoldsInAPinsPlaceIsToldAsItIs) {
    Pins pins;
    pins.unit.Set_GPIO_Func(0, 77);
    EXPECT_EQ(pins.rows().at(0).text, "GPIO ERROR: ENTRY NOT FOUND!");
    EXPECT_THAT(pins.rows(), SizeIs(8));
}

TEST(PinRows, EveryKindHasAFullTableOnItsFirstPin) {
    for (const UnitKind& kind : unitKinds()) {
        if (!kind.hasCalibration) continue;
        Pins pins(kind);
        pins.give(0, 8, 1);
        EXPECT_EQ(pins.lastElement(0).text, "Full Table - Table#1") << kind.model;
    }
}

TEST(PinRows, TheListFollowsTheStoredCodeWhileMembersAnswerIndexes) {
    Pins pins;
    pins.give(0, 8, 1);
    pins.unit.IndexPolling(true);
    EXPECT_EQ(pins.rows().at(0).text, "Full Table");
}

}  // namespace
}  // namespace zentaq
