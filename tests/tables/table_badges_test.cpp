#include "tables/table_badges.h"

#include "tables/table_fixture.h"

namespace zentaq {
namespace {

class Badges : public TableWindow {
 protected:
    std::string view() { return std::string(badgesOf(model).view); }
    std::string hand() { return std::string(badgesOf(model).cursor); }
};

TEST_F(Badges, TellTheViewInForce) {
    open("VE");
    EXPECT_EQ(view(), "VALUES");
    EXPECT_TRUE(badgesOf(model).asStored);
    model.toggleAbsolute();
    EXPECT_EQ(view(), "ABSOLUTE");
    EXPECT_FALSE(badgesOf(model).asStored);
    model.togglePulsewidth();
    EXPECT_EQ(view(), "PULSE WIDTH ms");
    model.toggleDutyCycle();
    EXPECT_EQ(view(), "DUTY %");
    EXPECT_FALSE(badgesOf(model).asStored);
}

TEST_F(Badges, OfATableWithoutAnAbsoluteViewIsNeverAbsolute) {
    open("VE");
    model.toggleAbsolute();
    open("ADV");
    EXPECT_EQ(view(), "VALUES");
}

TEST_F(Badges, TellWhoMovesTheCursor) {
    open("VE");
    EXPECT_EQ(hand(), "FOLLOW");
    cursor.hold();
    EXPECT_EQ(hand(), "HOLD");
    cursor.letGo();
    EXPECT_EQ(hand(), "FOLLOW");
    cursor.beginEdit();
    EXPECT_EQ(hand(), "HOLD") << "an open box holds its cell";
    cursor.letGo();
    press('O');
    EXPECT_EQ(hand(), "HOLD");
}

TEST_F(Badges, CornerTellsTheUnitsOfTheAxes) {
    open("VE");
    EXPECT_EQ(cornerOf(sheet), unit.MAPUnits() + " \\ RPM");
    EXPECT_EQ(acrossOf(sheet), "RPM");
    open("GPO1");  // its empty axes are given those of the main tables
    EXPECT_EQ(axesInWords(sheet), "Rows BLEND MAP in " + unit.MAPUnits() + ", columns RPM in RPM");
    model.pickAxis("Y_TPS");
    model.pickAxis("X_CLT");
    EXPECT_EQ(cornerOf(sheet), "Volts \\ C");
    model.pickAxis("X_GPIO3");
    EXPECT_EQ(axesInWords(sheet), "Rows TPS in Volts, columns GPIO3 in %");
}

TEST_F(Badges, TrailFadesInTheCellsThatThePointHasLeft) {
    open("ADV");
    overlay.Show_Current_Activity(1000, 40);
    EXPECT_EQ(sheet.grid().trail(11, 2), 0);
    EXPECT_EQ(sheet.grid().trail(11, 3), TableGrid::noTrail);
    overlay.takeFaded();
    overlay.Show_Current_Activity(1500, 40);
    EXPECT_EQ(sheet.grid().trail(11, 2), 1);
    EXPECT_EQ(sheet.grid().trail(11, 3), 0);
    EXPECT_EQ(sheet.grid().colour(11, 2), 0x00FFFF) << "its colour is the paint's as before";
    const std::vector<GridCell> faded = overlay.takeFaded();
    ASSERT_EQ(faded.size(), 1U);
    EXPECT_EQ(faded.front(), (GridCell{11, 2}));
    overlay.Show_Current_Activity(1500, 40);
    EXPECT_TRUE(overlay.takeFaded().empty()) << "nothing is drawn anew while the point stays in its cell";
    model.rebuild();
    EXPECT_EQ(sheet.grid().trail(11, 2), 1) << "a new build shows the same";
}

}  // namespace
}  // namespace zentaq
