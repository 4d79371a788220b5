// The cell in hand in words.
#include "tables/table_context.h"

#include <gmock/gmock.h>

#include "tables/table_fixture.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;
using TableContext = TableWindow;

TEST_F(TableContext, TellsPlaceValueAndLimits) {
    unit.set("VE", -21, 17);
    open("VE");
    cursor.select(15, 2, 15, 2);
    EXPECT_EQ(contextLine(model), "20 kPa, 1000 RPM: -21 % (-50 to 50%)");
}

TEST_F(TableContext, OfSeveralCellsTheirNumberTheirSpanAndTheirMean) {
    unit.set("VE", -21, 0);
    unit.set("VE", 4, 1);
    unit.set("VE", 3, 2);
    open("VE");
    cursor.select(16, 1, 16, 3);
    EXPECT_EQ(contextLine(model), "3 cells: -21 to 4, mean -4.67 (-50 to 50%)");
}

TEST_F(TableContext, InAViewTellsWhatTheCellsShow) {
    open("VE");
    model.togglePulsewidth();
    cursor.select(16, 1, 16, 1);
    EXPECT_EQ(contextLine(model), "15 kPa, 500 RPM: " + text(16, 1) + " ms");
    EXPECT_THAT(contextInWords(model), HasSubstr("The cells show PULSE WIDTH ms."));
}

TEST_F(TableContext, TellsWhatTheOtherCalibrationHas) {
    const Calibration before = unit.calibration();
    unit.set("VE", 5, 0);
    open("VE");
    model.compare(before, unit.kind(), "as opened");
    cursor.select(16, 1, 16, 1);
    EXPECT_EQ(contextLine(model), "15 kPa, 500 RPM: 5 % (-50 to 50%), as opened: 0");
    EXPECT_EQ(cellInWords(model, 16, 1), "5 %, row 15 kPa, column 500 RPM, as opened: 0");
}

TEST_F(TableContext, InWordsTellsWhoMovesTheCursorAndWhatIsTyped) {
    open("VE");
    EXPECT_EQ(contextInWords(model),
              "A table, cell in hand: row 1 of 16, column 1 of 16. The cursor follows the engine. Press to "
              "go to the "
              "table.");
    cursor.hold();
    cursor.beginEdit();
    EXPECT_THAT(contextInWords(model),
                HasSubstr("A value is being typed. The cursor stays where you put it."));
}

TEST_F(TableContext, ACellSaysThatTheEngineIsThere) {
    open("VE");
    overlay.Show_Current_Activity(1000, 20);
    EXPECT_THAT(cellInWords(model, 15, 2), HasSubstr("the engine is here"));
    EXPECT_THAT(cellInWords(model, 15, 3), ::testing::Not(HasSubstr("the engine is here")));
    EXPECT_EQ(cellInWords(model, 17, 1), "");
}

}  // namespace
}  // namespace zentaq
