// What the cells of a table look like: a selection has its ends on every ground, with the keyboard and
// without.
#include <gtest/gtest.h>

#include <QImage>
#include <array>

#include "qt/contrast.h"
#include "tables/cell_colours.h"
#include "tables/table_grid.h"
#include "windows/table_view.h"

namespace zentaq {
namespace {

constexpr std::array paints{Paint::White, Paint::Yellow, Paint::Green,      Paint::Red,
                            Paint::Blue,  Paint::Cyan,   Paint::LightGreen, Paint::LightRed};

class PosedTable : public TableGridView {
 public:
    explicit PosedTable(bool keyboard) : TableGridView(nullptr), keyboard_(keyboard) {}
    bool hasKeyboard() const override { return keyboard_; }

 private:
    bool keyboard_;
};

struct Look {
    DisplayMode mode;
    bool keyboard;
};

class TableCells : public testing::TestWithParam<Look> {
 protected:
    TableCells() : table_(GetParam().keyboard) {
        grid_.resize(4, static_cast<int>(paints.size()));
        for (int row = 1; row <= 4; ++row) {
            for (int column = 1; column <= grid_.columns(); ++column) {
                grid_.text(row, column, "5");
                grid_.colour(row, column, paintColour(paints[static_cast<std::size_t>(column - 1)]));
            }
        }
        table_.setMode(GetParam().mode);
        table_.cells().show(&grid_);
        table_.resize(900, 300);
        table_.show();
    }
    void select(int row, int column, int lastRow, int lastColumn) {
        auto& cells = table_.cells();
        const QItemSelection block(cells.index(row - 1, column - 1),
                                   cells.index(lastRow - 1, lastColumn - 1));
        table_.selectionModel()->setCurrentIndex(block[0].topLeft(), QItemSelectionModel::NoUpdate);
        table_.selectionModel()->select(block, QItemSelectionModel::ClearAndSelect);
    }
    QImage picture() { return table_.viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32); }
    /// How well the line at the left, right, upper or lower end of a cell is seen beside the cell's own
    /// ground.
    double endOf(const QImage& picture, int row, int column, int dx, int dy) const {
        const QRect cell = table_.cellRect(row, column);
        const QPoint middle(cell.left() + cell.width() / 4, cell.center().y());
        QPoint end = middle;
        if (dx != 0) end.setX(dx < 0 ? cell.left() : cell.right());
        if (dy != 0) end.setY(dy < 0 ? cell.top() : cell.bottom());
        return contrast(picture.pixelColor(end), picture.pixelColor(middle));
    }

    TableGrid grid_;
    PosedTable table_;
};

TEST_P(TableCells, ASelectionHasItsEndsOnEveryGround) {
    const int last = grid_.columns();
    select(2, 1, 3, last);
    const QImage shown = picture();
    for (int column = 1; column <= last; ++column) {
        EXPECT_GE(endOf(shown, 2, column, 0, -1), leastMarkContrast) << "above " << column;
        EXPECT_GE(endOf(shown, 3, column, 0, 1), leastMarkContrast) << "below " << column;
    }
    EXPECT_GE(endOf(shown, 3, 1, -1, 0), leastMarkContrast);
    EXPECT_GE(endOf(shown, 2, last, 1, 0), leastMarkContrast);
    EXPECT_LT(endOf(shown, 3, 3, -1, 0), leastMarkContrast) << "nothing parts what is selected";
}

TEST_P(TableCells, TheCellInHandIsFramedOnEveryGround) {
    for (int column = 1; column <= grid_.columns(); ++column) {
        select(2, column, 2, column);
        const QImage shown = picture();
        for (const QPoint side : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) {
            EXPECT_GE(endOf(shown, 2, column, side.x(), side.y()), leastMarkContrast)
                << "column " << column << ", side " << side.x() << ' ' << side.y();
        }
    }
}

TEST_P(TableCells, ASelectionThatGrowsLeavesNoEndInside) {
    select(1, 4, 2, 5);
    table_.viewport()->repaint();
    const QImage former = picture();
    ASSERT_GE(endOf(former, 2, 5, 0, 1), leastMarkContrast);
    int painted = 0;
    struct Watch : QObject {
        int& painted;
        const QRect cell;
        Watch(int& count, const QRect& where) : painted(count), cell(where) {}
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() == QEvent::Paint) {
                painted += static_cast<QPaintEvent*>(event)->region().contains(cell) ? 1 : 0;
            }
            return false;
        }
    } watch(painted, table_.cellRect(2, 5));
    QApplication::processEvents();
    table_.viewport()->installEventFilter(&watch);
    table_.selectionModel()->select(QItemSelection(table_.cells().index(2, 3), table_.cells().index(2, 4)),
                                    QItemSelectionModel::Select);
    QApplication::processEvents();
    EXPECT_GE(painted, 1) << "a cell that stays selected is drawn again";
    EXPECT_LT(endOf(picture(), 2, 5, 0, 1), leastMarkContrast);
    table_.viewport()->removeEventFilter(&watch);
}

INSTANTIATE_TEST_SUITE_P(InEveryLook, TableCells,
                         testing::Values(Look{DisplayMode::Day, true}, Look{DisplayMode::Day, false},
                                         Look{DisplayMode::Night, true}, Look{DisplayMode::Night, false}),
                         [](const auto& look) {
                             return std::string(look.param.mode == DisplayMode::Day ? "Day" : "Night") +
                                    (look.param.keyboard ? "WithKeyboard" : "WithoutKeyboard");
                         });

}  // namespace
}  // namespace zentaq
