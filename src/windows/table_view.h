// TableGridView: the grid control of a table window. It shows a TableGrid, with headers of their own above
// and beside the cells, cell colours by day and night, digits that grow with the window, rows that fit their
// space, and the mark of the live point.
#pragma once

#include "tables/table_grid.h"

#include <QAbstractTableModel>
#include <QFrame>
#include <QItemSelectionModel>
#include <QLabel>
#include <QPersistentModelIndex>
#include <QTableView>
#include <functional>

#include "qt/look.h"
#include "windows/table_marker.h"

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

    /// What a screen reader says of a cell, by row and column of the grid.
    void speakBy(std::function<QString(int row, int column)> words) { words_ = std::move(words); }
    /// What stands in the corner of a cell.
    QString note(const QModelIndex& index) const;
    /// The core's colour number of a cell: red + 256 * green + 65536 * blue.
    std::int32_t colour(const QModelIndex& index) const;
    /// How far the trail in it has faded, as TableGrid has it.
    int trail(const QModelIndex& index) const;

 private:
    const TableGrid* grid_ = nullptr;
    std::function<QString(int row, int column)> words_;
    int rows_ = 0;
    int columns_ = 0;
};

/// A field over the cells: what is typed into it acts on them.
void showActing(QWidget& field, DisplayMode mode);

class TableGridView : public QTableView {
    Q_OBJECT

 public:
    explicit TableGridView(QWidget* parent);

    TableGridModel& cells() { return *cells_; }
    const TableGridModel& cells() const { return *cells_; }
    void setMode(DisplayMode mode);
    const LookColors& colors() const { return colors_; }
    /// What a cell looks like, without selection.
    QColor groundOf(const QModelIndex& cell) const;
    /// Units of rows and columns, in the corner of the headers; `inWords` for a screen reader.
    void nameAxes(const QString& units, const QString& inWords);
    /// `fixedWidth`: all columns a seventeenth of the width, else each as wide as its widest text at least,
    /// and wider where there is room.
    void sizeColumns(bool fixedWidth);
    /// Moves the marker, in cells of the grid: column 1.5 stands between the first two column headers.
    void placeMarker(bool visible, double row, double column);
    TableMarker& marker() { return *marker_; }
    /// Whether current cell and selection are drawn as those with the keyboard.
    virtual bool hasKeyboard() const { return hasFocus(); }
    /// The place of grid cell `row`, `column` in the viewport.
    QRect cellRect(int row, int column) const;
    /// How much larger than the base font the digits are.
    double growth() const { return growth_; }
    /// The height in which `rows` rows and the headers are seen whole.
    static int leastHeight(int rows);
    /// Height at which all rows show in full at the smallest row height.
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

 Q_SIGNALS:
    void resized();

 protected:
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void updateGeometries() override;
    void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;
    void mousePressEvent(QMouseEvent* event) override;
    void setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) override;

 private:
    struct TextWidths {
        int rowHeader = 0;
        QList<int> columns;
    };
    TextWidths textWidths(const QFont& font) const;
    int roomAcross(const TextWidths& texts) const;
    void growDigits();
    void sizeRows();
    void moveMarker();

    TableGridModel* cells_;
    QLabel* corner_;
    QFrame* fraDotFrame_;
    TableMarker* marker_;
    DisplayMode mode_ = DisplayMode::Day;
    LookColors colors_ = lookColors(DisplayMode::Day);
    double growth_ = 1;
    bool sizing_ = false;
    bool fixedWidth_ = false;
    double markerRow_ = 1;
    double markerColumn_ = 1;
    bool pressing_ = false;
    QPersistentModelIndex pressedFrom_;  ///< where the selection of the last press begins
};

}  // namespace zentaq
