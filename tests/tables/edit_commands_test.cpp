// The commands on the cells in hand, as menus and keys run them.
#include "tables/edit_commands.h"

#include <gmock/gmock.h>

#include <set>

#include "base/errors.h"
#include "tables/table_fixture.h"

namespace zentaq {
namespace {

using ::testing::HasSubstr;

class EditCommands : public TableWindow {
 protected:
    EditCommands() { fillAdvanceAndRatio(); }
    std::string why(std::string_view name) { return editCommandOf(name)->whyNot(model); }
    std::vector<Refusal> run(std::string_view name) { return editCommandOf(name)->run(model); }
};

TEST_F(EditCommands, EachHasANameAKeyAndAMeaningOfItsOwn) {
    std::set<std::string_view> names;
    std::set<std::string_view> keys;
    for (const EditCommand& command : editCommands()) {
        EXPECT_TRUE(names.insert(command.name).second) << command.name;
        EXPECT_TRUE(keys.insert(command.shortcut).second) << command.shortcut;
        EXPECT_FALSE(command.meaning.empty()) << command.name;
        EXPECT_EQ(editCommandOf(command.name), &command);
    }
    EXPECT_EQ(editCommandOf("mnuFlood"), nullptr);
}

TEST_F(EditCommands, InterpolationStoresTheBlockAndLeavesItStanding) {
    unit.set("VE", 10, 0);
    unit.set("VE", 30, 2);
    open("VE");
    cursor.select(16, 1, 16, 3);
    ASSERT_EQ(why("mnuInterpolate"), "");
    EXPECT_TRUE(run("mnuInterpolate").empty());
    EXPECT_EQ(unit.get("VE", 1), 20);
    EXPECT_FALSE(cursor.selection().present) << "what asks for a selection finds none";
    EXPECT_EQ(cursor.selection().right, 3);
}

TEST_F(EditCommands, InterpolationWritesWhatTheUserHasLeftInACellAsWell) {
    open("VE");
    cursor.select(1, 1, 1, 1);
    editor.leaveEdit("9");
    cursor.select(16, 1, 16, 3);
    run("mnuInterpolate");
    EXPECT_EQ(unit.get("VE", 240), 9) << "the whole grid is written back";
}

TEST_F(EditCommands, TheFiveSmoothingsGoFromTheGentlestToTheStrongest) {
    for (const auto& [name, first] :
         {std::pair("mnuSmooth_1", 11.7F), std::pair("mnuSmooth_2", 12.0F), std::pair("mnuSmooth_3", 12.5F),
          std::pair("mnuSmooth_4", 13.3F), std::pair("mnuSmooth_5", 15.0F)}) {
        unit.set("VE", 10, 0);
        unit.set("VE", 20, 1);
        open("VE");
        cursor.select(16, 1, 16, 2);
        EXPECT_TRUE(run(name).empty());
        EXPECT_EQ(unit.get("VE", 0), first) << name;
    }
}

TEST_F(EditCommands, ABlockIsNeededAndAViewBarsThem) {
    open("VE");
    cursor.select(3, 3, 3, 3);
    EXPECT_THAT(why("mnuInterpolate"), HasSubstr("Select more than one cell"));
    EXPECT_EQ(why("mnuBlend"), "");
    cursor.select(3, 3, 4, 4);
    model.togglePulsewidth();
    for (const EditCommand& command : editCommands())
        EXPECT_THAT(command.whyNot(model), HasSubstr("go back to the values")) << command.name;
}

TEST_F(EditCommands, ARefusedCellOfASmoothingKeepsItsValueAndTheRestIsStored) {
    unit.AssignDirectIndex(300, stagedBase);
    unit.set("SPW", 20, 1);
    open("SPW");
    cursor.select(16, 1, 16, 2);
    const auto refused = run("mnuSmooth_5");
    ASSERT_EQ(refused.size(), 1U);
    EXPECT_EQ(refused[0].where, "cell 16,1");
    EXPECT_EQ(text(16, 1), "300");
    // (160 + 20) / 2: the second cell has seen the new first one.
    EXPECT_EQ(unit.get("SPW", 1), 90);
}

TEST_F(EditCommands, RemovingTheLastColumnTakesTheCursorToTheNewLastOne) {
    size(9, 9);
    open("VE");
    cursor.select(9, 9, 9, 9);
    EXPECT_TRUE(run("mnuRmvCol").empty());
    EXPECT_EQ(cursor.cell(), (GridCell{9, 8}));
    run("mnuRmvRow");
    EXPECT_EQ(cursor.cell(), (GridCell{8, 8}));
    EXPECT_EQ(why("mnuRmvRow"), "A table has at least 8 rows.");
}

TEST_F(EditCommands, OnTheFlyAChangeOfAxesIsAskedFirst) {
    EXPECT_EQ(axesQuestion(unit), "");
    unit.ONFLY_MODE(true);
    EXPECT_THAT(axesQuestion(unit), HasSubstr("Turn the engine off"));
}

TEST_F(EditCommands, AFormulaGoesIntoAllSelectedCellsOrNone) {
    unit.set("VE", 10, 0);
    unit.set("VE", 30, 1);
    open("VE");
    cursor.select(16, 1, 16, 2);
    EXPECT_TRUE(applyFormula(model, "*1.5").empty());
    EXPECT_EQ(unit.get("VE", 1), 45);
    EXPECT_EQ(applyFormula(model, "*1.5").size(), 1U);
    EXPECT_EQ(unit.get("VE", 0), 15);
    EXPECT_THROW(applyFormula(model, "15"), Failure);
    model.togglePulsewidth();
    EXPECT_THROW(applyFormula(model, "=1"), Failure);
}

TEST_F(EditCommands, AFormulaInTheAbsoluteViewCountsFromAHundred) {
    open("VE");
    model.toggleAbsolute();
    cursor.select(16, 1, 16, 1);
    EXPECT_TRUE(applyFormula(model, "+5%").empty());
    EXPECT_EQ(unit.get("VE", 0), 5);
}

TEST_F(EditCommands, CopyingOutwardSaysWhereThereIsNothingLeft) {
    open("VE");
    cursor.select(1, 3, 1, 3);
    EXPECT_EQ(why("mnuCopyOut_Up"), "The selection reaches the edge of the table already.");
    EXPECT_EQ(why("mnuCopyOut_Down"), "");
    unit.set("VE", 4, 240 + 2);
    open("VE");
    EXPECT_TRUE(run("mnuCopyOut_Down").empty());
    EXPECT_EQ(unit.get("VE", 2), 4);
}

TEST_F(EditCommands, OfATableThatAsksForMoreThanIsStoredOnlyStoredCellsChange) {
    size(16, 20);
    unit.set("VE", 10, 0);
    unit.set("VE", 30, 2);
    unit.set("VE", 7, 16);  // the next stored row, which column 17 of the lowest row seems to be
    open("VE");
    cursor.select(16, 1, 16, 20);
    EXPECT_TRUE(run("mnuSmooth_5").empty());
    EXPECT_EQ(unit.get("VE", 16), 7);
    cursor.select(16, 1, 16, 3);
    unit.set("VE", 10, 0);
    unit.set("VE", 30, 2);
    open("VE");
    cursor.select(16, 1, 16, 3);
    run("mnuInterpolate");
    EXPECT_EQ(unit.get("VE", 1), 20);
    EXPECT_EQ(unit.get("VE", 16), 7);
}

}  // namespace
}  // namespace zentaq
