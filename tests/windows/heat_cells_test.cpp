// The heat scale from the options to the screen.
#include <gtest/gtest.h>

#include "app/options.h"
#include "tables/cell_ground.h"
#include "tables/heat_scale.h"
#include "windows/table_windows_fixture.h"

namespace zentaq {
namespace {

class HeatCells : public TableWindowsTest {
 protected:
    void choose(const char* scale) {
        Options options(fake.session);
        options.change("optCellColors", scale);
        options.apply();
        settle();
    }
    std::int32_t colour(int row, int column) { return form().model()->sheet().grid().colour(row, column); }
    /// What stands beside the digits of a cell.
    QColor seen(int row, int column) {
        const QImage picture = grid().viewport()->grab().toImage();
        const double scale = picture.devicePixelRatio();
        const QRectF cell = grid().cellRect(row, column);
        return picture.pixelColor(
            QPoint(static_cast<int>((cell.left() + 4) * scale), static_cast<int>((cell.top() + 4) * scale)));
    }
    static QColor onScreen(double share, bool night) {
        return QColor::fromRgb(QRgb(
            cellGround(heatColour(share), TableGrid::noTrail, night,
                       lookColors(night ? DisplayMode::Night : DisplayMode::Day).surface.rgb() & RGB_MASK)));
    }
};

TEST_F(HeatCells, ApplyingTheOptionsShowsItAtOnceInAnOpenTable) {
    unit().set("SPW", 50, 0);
    windows.openTable("SPW", "Staged");
    settle();
    ASSERT_EQ(colour(16, 1), TableGrid::white);
    choose("1");
    EXPECT_EQ(colour(16, 1), heatColour(1));
    EXPECT_EQ(colour(1, 16), heatColour(0));
    choose("0");
    EXPECT_EQ(colour(16, 1), TableGrid::white);
    EXPECT_EQ(colour(1, 16), TableGrid::white);
}

TEST_F(HeatCells, ATableThatOpensLaterHasIt) {
    choose("1");
    unit().set("ADV", 40, 0);
    windows.openTable("ADV", "Advance");
    settle();
    EXPECT_EQ(colour(16, 1), heatColour(1));
    windows.openTable("VE", "VE");
    settle();
    EXPECT_EQ(colour(16, 1), heatColour(0.5)) << "all of it is 0";
}

TEST_F(HeatCells, WithoutTheSettingTablesAreAsTheyWere) {
    unit().set("VE", 50, 0);
    openVe();
    EXPECT_EQ(colour(16, 1), 256 * 255) << "green";
    windows.openTable("SPW", "Staged");
    settle();
    EXPECT_EQ(colour(16, 1), TableGrid::white);
}

TEST_F(HeatCells, IsSeenByDayAndByNight) {
    unit().set("SPW", 50, 0);
    unit().set("SPW", 25, 1);
    choose("1");
    windows.openTable("SPW", "Staged");
    stand(8, 8);
    for (const bool night : {true, false}) {
        night ? windows.nightMode() : windows.dayMode();
        settle();
        EXPECT_EQ(seen(16, 1), onScreen(1, night)) << night;
        EXPECT_EQ(seen(16, 2), onScreen(0.5, night)) << night;
        EXPECT_EQ(seen(16, 3), onScreen(0, night)) << night;
    }
}

TEST_F(HeatCells, ATypedValueBringsAllCellsToTheirNewPlace) {
    unit().set("SPW", 20, 0);
    choose("1");
    windows.openTable("SPW", "Staged");
    settle();
    stand(16, 2);
    type("40");
    key(Qt::Key_Return);
    stand(8, 8);
    settle();
    ASSERT_EQ(unit().get("SPW", 1), 40);
    EXPECT_EQ(seen(16, 2), onScreen(1, true));
    EXPECT_EQ(seen(16, 1), onScreen(0.5, true));
}

}  // namespace
}  // namespace zentaq
