// TableGridView: the grid control of a table window. It shows a TableGrid, with headers of their own above
// and beside the cells, cell colours by day and night, compact rows that fit their space, and the live
// cross-hair.
#pragma once

#include "tables/table_grid.h"

#include <QAbstractTableModel>
#include <QFrame>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPersistentModelIndex>
#include <QStyledItemDelegate>
#include <QTableView>

#include "qt/look.h"

namespace zentaq {

/// A TableGrid for Qt's views. Grid cell 1, 1 is index 0, 0; row 0 and column 0 are the header data.
class TableGridModel : public QAbstractTableModel {
    Q_OBJECT

 public:
    explicit TableGridModel(QObject* parent) : QAbstractTableModel(parent) {}

    void show(const TableGrid* grid);
    /// All texts and colours anew; selection and current cell stay unless the size has changed.
    void refresh();
    void refreshCell(int row, int column);

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

    /// The core's colour number of a cell: red + 256 * green + 65536 * blue.
    std::int32_t colour(const QModelIndex& index) const;

 private:
    const TableGrid* grid_ = nullptr;
    int rows_ = 0;
    int columns_ = 0;
};

/// A cell's colour on the screen. By night white turns into the dark of the surface and a shade into the same
/// share of its hue, so that a sleeping table doesn't light up the cabin. Of a negative number the low 24
/// bits count.
QColor cellColor(std::int32_t colour, DisplayMode mode);

/// The live cross-hair.
class TableMarker : public QWidget {
    Q_OBJECT

 public:
    explicit TableMarker(QWidget* parent);
    void setColor(const QColor& color);

 protected:
    void paintEvent(QPaintEvent* event) override;

 private:
    QColor color_;
};

class TableGridView : public QTableView {
    Q_OBJECT

 public:
    explicit TableGridView(QWidget* parent);

    TableGridModel& cells() { return *cells_; }
    void setMode(DisplayMode mode);
    DisplayMode mode() const { return mode_; }
    /// `fixedWidth`: all columns a seventeenth of the width, else each as wide as its widest text.
    void sizeColumns(bool fixedWidth);
    /// Moves the cross-hair, in cells of the grid: column 1.5 stands between the first two column headers.
    void placeMarker(bool visible, double row, double column);
    TableMarker& marker() { return *marker_; }
    /// The place of grid cell `row`, `column` in the viewport.
    QRect cellRect(int row, int column) const;
    /// Height at which all rows show in full at the smallest row height.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 Q_SIGNALS:
    void resized();

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void updateGeometries() override;
    void mousePressEvent(QMouseEvent* event) override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;

 private:
    void sizeRows();
    int smallestRow() const;
    void moveMarker();

    TableGridModel* cells_;
    QLabel* corner_;
    QFrame* fraDotFrame_;
    TableMarker* marker_;
    DisplayMode mode_ = DisplayMode::Day;
    bool fixedWidth_ = false;
    double markerRow_ = 1;
    double markerColumn_ = 1;
    bool pressing_ = false;
    QPersistentModelIndex pressedFrom_;  ///< where the selection of the last press begins
};

}  // namespace zentaq
