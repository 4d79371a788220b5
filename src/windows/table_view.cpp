#include "windows/table_view.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>
#include <cmath>
#include <numeric>

#include "qt/qt_text.h"
#include "tables/cell_ground.h"
#include "windows/table_cell_painter.h"

namespace zentaq {
namespace {

constexpr int twipsPerPixel = 15;
constexpr int columnSlack = 120 / twipsPerPixel;
constexpr int gridSlack = 200 / twipsPerPixel;
constexpr int fixedColumns = 17;
constexpr double tallestRow = 1.7;  // line heights
/// Digits of the largest size against the base font, and the step in which they grow.
constexpr double largestGrowth = 1.8;
constexpr double growthStep = 0.05;
/// A column may be so many times as wide as its widest text needs.
constexpr double widestColumn = 1.6;

/// Sixteen of them and the headers must stand below the dashboard of a small screen.
int leastRow(const QFontMetrics& metrics) {
    return metrics.height();
}

QFont digitsFont(double growth) {
    QFont font = baseFont();
    font.setPointSizeF(font.pointSizeF() * growth);
    return font;
}

QFont boldOf(QFont font) {
    font.setBold(true);
    return font;
}

}  // namespace

// ---- Model

void TableGridModel::show(const TableGrid* grid) {
    beginResetModel();
    grid_ = grid;
    rows_ = grid == nullptr ? 0 : grid->rows();
    columns_ = grid == nullptr ? 0 : grid->columns();
    endResetModel();
}

void TableGridModel::refresh() {
    if (grid_ == nullptr) return;
    if (rows_ != grid_->rows() || columns_ != grid_->columns()) {
        show(grid_);
        return;
    }
    if (rows_ == 0 || columns_ == 0) return;
    Q_EMIT dataChanged(index(0, 0), index(rows_ - 1, columns_ - 1));
    Q_EMIT headerDataChanged(Qt::Horizontal, 0, columns_ - 1);
    Q_EMIT headerDataChanged(Qt::Vertical, 0, rows_ - 1);
}

void TableGridModel::refreshCell(int row, int column) {
    const QModelIndex cell = index(row - 1, column - 1);
    if (cell.isValid()) Q_EMIT dataChanged(cell, cell);
}

int TableGridModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : rows_;
}
int TableGridModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : columns_;
}

QVariant TableGridModel::data(const QModelIndex& index, int role) const {
    if (grid_ == nullptr || !grid_->hasCell(index.row() + 1, index.column() + 1)) return {};
    if (role == Qt::DisplayRole)
        return QString::fromStdString(grid_->text(index.row() + 1, index.column() + 1));
    if (role == Qt::AccessibleTextRole && words_) return words_(index.row() + 1, index.column() + 1);
    if (role == Qt::AccessibleTextRole) {
        return QStringLiteral("%1, column %2, row %3")
            .arg(data(index, Qt::DisplayRole).toString(),
                 headerData(index.column(), Qt::Horizontal, Qt::DisplayRole).toString(),
                 headerData(index.row(), Qt::Vertical, Qt::DisplayRole).toString());
    }
    return {};
}

QVariant TableGridModel::headerData(int section, Qt::Orientation orientation, int role) const {
    const bool across = orientation == Qt::Horizontal;
    if (grid_ == nullptr || section < 0 || section >= (across ? grid_->columns() : grid_->rows())) return {};
    if (role == Qt::TextAlignmentRole) return static_cast<int>(Qt::AlignRight | Qt::AlignVCenter);
    if (role != Qt::DisplayRole) return {};
    return QString::fromStdString(across ? grid_->text(0, section + 1) : grid_->text(section + 1, 0));
}

QString TableGridModel::note(const QModelIndex& index) const {
    if (grid_ == nullptr || !grid_->hasCell(index.row() + 1, index.column() + 1)) return {};
    return qString(grid_->note(index.row() + 1, index.column() + 1));
}

std::int32_t TableGridModel::colour(const QModelIndex& index) const {
    if (grid_ == nullptr || !grid_->hasCell(index.row() + 1, index.column() + 1)) return TableGrid::white;
    return grid_->colour(index.row() + 1, index.column() + 1);
}

int TableGridModel::trail(const QModelIndex& index) const {
    if (grid_ == nullptr || !grid_->hasCell(index.row() + 1, index.column() + 1)) return TableGrid::noTrail;
    return grid_->trail(index.row() + 1, index.column() + 1);
}

// ---- View

void showActing(QWidget& field, DisplayMode mode) {
    const LookColors& look = lookColors(mode);
    QPalette colors = field.palette();
    colors.setColor(QPalette::Base, look.highlight);
    colors.setColor(QPalette::Text, look.highlightText);
    field.setPalette(colors);
}

TableGridView::TableGridView(QWidget* parent)
    : QTableView(parent),
      cells_(new TableGridModel(this)),
      corner_(new QLabel(this)),
      fraDotFrame_(new QFrame(viewport())),
      marker_(new TableMarker(fraDotFrame_)) {
    // In the corner of the headers, where the lines that it is about begin.
    corner_->setObjectName("lblAxisUnits");
    corner_->setTextFormat(Qt::PlainText);
    corner_->setAlignment(Qt::AlignCenter);
    fraDotFrame_->setObjectName("fraDotFrame");
    fraDotFrame_->setAttribute(Qt::WA_TransparentForMouseEvents);
    setModel(cells_);
    setItemDelegate(new TableCellPainter(*this));
    setSelectionMode(QAbstractItemView::ContiguousSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setTabKeyNavigation(false);
    setWordWrap(false);
    setCornerButtonEnabled(false);
    setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    for (QHeaderView* header : {horizontalHeader(), verticalHeader()}) {
        header->setSectionResizeMode(QHeaderView::Fixed);
        header->setMinimumSectionSize(1);
        header->setSectionsClickable(true);
        header->setHighlightSections(true);
    }
    setMode(DisplayMode::Day);
}

void TableGridView::setMode(DisplayMode mode) {
    mode_ = mode;
    colors_ = lookColors(mode);
    marker_->setColor(colors_.liveMarker);
    moveMarker();
    viewport()->update();
}

QColor TableGridView::groundOf(const QModelIndex& cell) const {
    return QColor::fromRgb(cellGround(cells_->colour(cell), cells_->trail(cell), mode_ == DisplayMode::Night,
                                      colors_.surface.rgb() & RGB_MASK));
}

void TableGridView::nameAxes(const QString& units, const QString& inWords) {
    if (corner_->text() == units) return;
    corner_->setText(units);
    corner_->setAccessibleDescription(inWords);
    corner_->setToolTip(plainTip(inWords));
}

// ---- Sizes

int TableGridView::leastHeight(int rows) {
    const QFontMetrics metrics(baseFont());
    return (rows + 1) * leastRow(metrics) + 2 * edgeWidth(metrics);
}

TableGridView::TextWidths TableGridView::textWidths(const QFont& font) const {
    const QFontMetrics metrics(font);
    const QFontMetrics headerMetrics(boldOf(font));
    TextWidths widths;
    widths.rowHeader = metrics.horizontalAdvance(corner_->text());
    for (int row = 0; row < cells_->rowCount(); ++row) {
        const QString text = cells_->headerData(row, Qt::Vertical, Qt::DisplayRole).toString();
        widths.rowHeader = std::max(widths.rowHeader, headerMetrics.horizontalAdvance(text));
    }
    widths.rowHeader += 2 * columnSlack;
    for (int column = 0; column < cells_->columnCount(); ++column) {
        const QString header = cells_->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        int widest = headerMetrics.horizontalAdvance(header) + columnSlack / 2;
        for (int row = 0; row < cells_->rowCount(); ++row) {
            const QString text = cells_->index(row, column).data(Qt::DisplayRole).toString();
            widest = std::max(widest, metrics.horizontalAdvance(text) + space(metrics, Space::Tight));
        }
        widths.columns.append(widest + columnSlack);
    }
    return widths;
}

int TableGridView::roomAcross(const TextWidths& texts) const {
    const int rows = std::max(1, cells_->rowCount());
    const bool scrolls = (rows + 1) * leastRow(QFontMetrics(baseFont())) > height() - 2 * frameWidth();
    const int bar = scrolls ? verticalScrollBar()->sizeHint().width() : 0;
    return width() - 2 * frameWidth() - texts.rowHeader - bar;
}

// The largest digits at which the whole table stands in the window; of the base size at least.
void TableGridView::growDigits() {
    const int rows = std::max(1, cells_->rowCount());
    const int high = height() - 2 * frameWidth();
    const auto fits = [&](double growth) {
        const QFont font = digitsFont(growth);
        if ((rows + 1) * QFontMetrics(font).height() > high) return false;
        const TextWidths texts = textWidths(font);
        const int room = roomAcross(texts);
        if (fixedWidth_) return *std::ranges::max_element(texts.columns) <= room / fixedColumns;
        return std::accumulate(texts.columns.begin(), texts.columns.end(), 0) <= room;
    };
    double growth = 1;
    if (cells_->columnCount() > 0) {
        while (growth + growthStep <= largestGrowth && fits(growth + growthStep)) growth += growthStep;
    }
    if (growth == growth_ && font().pointSizeF() == digitsFont(growth).pointSizeF()) return;
    growth_ = growth;
    setFont(digitsFont(growth));
}

void TableGridView::sizeRows() {
    const int rows = std::max(1, cells_->rowCount());
    const int least = leastRow(fontMetrics());
    const int tallest = static_cast<int>(fontMetrics().height() * tallestRow);
    // The headers are one row more.
    const int row = std::clamp((height() - 2 * frameWidth()) / (rows + 1), least, tallest);
    horizontalHeader()->setFixedHeight(row);
    verticalHeader()->setDefaultSectionSize(row);
}

void TableGridView::sizeColumns(bool fixedWidth) {
    if (sizing_) return;
    const QScopedValueRollback guard(sizing_, true);
    fixedWidth_ = fixedWidth;
    growDigits();
    sizeRows();
    const TextWidths texts = textWidths(font());
    verticalHeader()->setFixedWidth(texts.rowHeader);
    const auto needed = std::accumulate(texts.columns.begin(), texts.columns.end(), 0);
    const double wider =
        needed == 0 ? 1 : std::clamp(static_cast<double>(roomAcross(texts)) / needed, 1.0, widestColumn);
    const int equal = (width() - gridSlack) / fixedColumns;
    for (int column = 0; column < texts.columns.size(); ++column) {
        setColumnWidth(column, fixedWidth ? equal : static_cast<int>(texts.columns[column] * wider));
    }
    moveMarker();
}

// Cells that stay selected have other ends then. The cursor that follows the engine selects one cell, and
// costs no more than that.
void TableGridView::selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) {
    QTableView::selectionChanged(selected, deselected);
    const auto several = [](const QItemSelection& cells) {
        return cells.size() > 1 || (cells.size() == 1 && (cells[0].width() > 1 || cells[0].height() > 1));
    };
    if (several(deselected) || several(selectionModel()->selection())) viewport()->update();
}

void TableGridView::mousePressEvent(QMouseEvent* event) {
    pressing_ = true;
    QTableView::mousePressEvent(event);
    pressing_ = false;
}

// A hand that shakes while it presses with Shift drags by a hair, and the toolkit begins what is dragged at
// the last press without Shift.
void TableGridView::setSelection(const QRect& rect, QItemSelectionModel::SelectionFlags command) {
    if (pressing_) pressedFrom_ = indexAt(rect.topLeft());
    const bool drags = state() == DragSelectingState && pressedFrom_.isValid();
    QTableView::setSelection(drags ? QRect(visualRect(pressedFrom_).center(), rect.bottomRight()) : rect,
                             command);
}

QRect TableGridView::cellRect(int row, int column) const {
    return visualRect(cells_->index(row - 1, column - 1));
}

void TableGridView::placeMarker(bool visible, double row, double column) {
    if (visible == marker_->isHidden()) marker_->setVisible(visible);
    markerRow_ = row;
    markerColumn_ = column;
    moveMarker();
}

void TableGridView::moveMarker() {
    const auto between = [](double place, auto&& middleOf) {
        const int first = static_cast<int>(place);
        const double share = place - first;
        const double from = middleOf(first);
        return share == 0 ? from : from + (middleOf(first + 1) - from) * share;
    };
    const double x = between(markerColumn_, [this](int column) {
        return columnViewportPosition(column - 1) + columnWidth(column - 1) / 2.0;
    });
    const double y = between(
        markerRow_, [this](int row) { return rowViewportPosition(row - 1) + rowHeight(row - 1) / 2.0; });
    const int row = std::clamp(static_cast<int>(std::lround(markerRow_)), 1, std::max(1, cells_->rowCount()));
    const int column =
        std::clamp(static_cast<int>(std::lround(markerColumn_)), 1, std::max(1, cells_->columnCount()));
    marker_->point(cellRect(row, column), QPoint(static_cast<int>(x), static_cast<int>(y)),
                   groundOf(cells_->index(row - 1, column - 1)));
}

QSize TableGridView::sizeHint() const {
    return {fontMetrics().averageCharWidth() * 7 * fixedColumns,
            leastHeight(std::max(16, cells_->rowCount()))};
}

QSize TableGridView::minimumSizeHint() const {
    const QFontMetrics metrics(baseFont());
    return {metrics.averageCharWidth() * 20, leastRow(metrics) * 3};
}

void TableGridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    fraDotFrame_->setGeometry(viewport()->rect());
    sizeColumns(fixedWidth_);
    Q_EMIT resized();
}

void TableGridView::updateGeometries() {
    QTableView::updateGeometries();
    const QRect rows = verticalHeader()->geometry();
    const QRect columns = horizontalHeader()->geometry();
    corner_->setGeometry(rows.left(), columns.top(), rows.width(), columns.height());
}

void TableGridView::scrollContentsBy(int dx, int dy) {
    QTableView::scrollContentsBy(dx, dy);
    // Scrolling moves the viewport's children along with the cells.
    fraDotFrame_->setGeometry(viewport()->rect());
    moveMarker();
}

}  // namespace zentaq
