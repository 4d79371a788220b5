// Blending with neighbors and copying outward, worked out by hand.
#include "tables/neighbor_commands.h"

#include <gmock/gmock.h>

#include "tables/table_fixture.h"

namespace zentaq {
namespace {

class NeighborCommands : public TableWindow {
 protected:
    NeighborCommands() { size(8, 8); }
    float changeAt(const std::vector<CellChange>& changes, GridCell cell) {
        for (const CellChange& change : changes) {
            if (change.cell == cell) return change.value;
        }
        ADD_FAILURE() << "no change of " << cell.row << "," << cell.column;
        return 0;
    }
};

TEST_F(NeighborCommands, BlendingGoesHalfOfTheWayToTheMeanOfTheEightAround) {
    for (const int index : {0, 1, 2, 16, 18, 32, 33, 34}) unit.set("VE", 8, index);
    unit.set("VE", 20, 17);
    open("VE");
    const auto changes = blended(sheet, {7, 7, 2, 2, false});
    EXPECT_EQ(changeAt(changes, {7, 2}), 14);
}

TEST_F(NeighborCommands, ACornerHasThreeNeighbors) {
    unit.set("VE", 30, 1);
    unit.set("VE", 6, 17);
    open("VE");
    // Lowest row, first column: neighbors 30, 6 and 0 have the mean 12; half of the way from 0.
    EXPECT_EQ(changeAt(blended(sheet, {8, 8, 1, 1, false}), {8, 1}), 6);
}

TEST_F(NeighborCommands, AllCellsOfABlockAreBlendedFromTheValuesBefore) {
    unit.set("VE", 16, 0);
    open("VE");
    const auto changes = blended(sheet, {8, 8, 1, 2, true});
    EXPECT_EQ(changeAt(changes, {8, 1}), 8) << "its neighbors are 0";
    // Five neighbors, one of them 16: their mean is 3.2, half of it 1.6.
    EXPECT_EQ(changeAt(changes, {8, 2}), 1.6F);
}

TEST_F(NeighborCommands, BlendingRoundsAsTheTableDoes) {
    open("GPO1");
    unit.Set_GPIO_Table(1, 1, 5);
    // 16 by 16 cells: the corner's neighbors are 5, 0 and 0; half of 1.67 is 0.83.
    EXPECT_EQ(changeAt(blended(sheet, {16, 16, 1, 1, false}), {16, 1}), 1);
}

TEST_F(NeighborCommands, ARowIsCopiedToTheEdgeAboveIt) {
    unit.set("VE", 5, 16 * 2);  // grid row 6
    unit.set("VE", 7, 16 * 2 + 1);
    open("VE");
    const auto changes = copiedOutward(sheet, {6, 8, 1, 2, true}, Outward::Up);
    EXPECT_EQ(changes.size(), 10U);
    EXPECT_EQ(changeAt(changes, {5, 1}), 5);
    EXPECT_EQ(changeAt(changes, {1, 2}), 7);
}

TEST_F(NeighborCommands, TheFourWaysEndAtTheEdges) {
    unit.set("VE", 3, 16 * 4 + 3);  // grid row 4, column 4
    open("VE");
    const Selection cell{4, 4, 4, 4, false};
    for (const auto& [way, far, count] :
         {std::tuple(Outward::Up, GridCell{1, 4}, 3U), std::tuple(Outward::Down, GridCell{8, 4}, 4U),
          std::tuple(Outward::Left, GridCell{4, 1}, 3U), std::tuple(Outward::Right, GridCell{4, 8}, 4U)}) {
        const auto changes = copiedOutward(sheet, cell, way);
        EXPECT_EQ(changes.size(), count);
        EXPECT_EQ(changeAt(changes, far), 3);
    }
    EXPECT_TRUE(copiedOutward(sheet, {1, 2, 1, 8, true}, Outward::Up).empty());
}

}  // namespace
}  // namespace zentaq
