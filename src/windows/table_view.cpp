#include "windows/table_view.h"

#include <QHeaderView>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "qt/colour_swatch.h"
#include "qt/contrast.h"
#include "qt/named.h"

namespace zentaq {
namespace {

constexpr int twipsPerPixel = 15;
constexpr int columnSlack = 120 / twipsPerPixel;
constexpr int gridSlack = 200 / twipsPerPixel;
constexpr int fixedColumns = 17;
constexpr double tallestRow = 1.7;  // line heights

int mixed(int from, int to, double share) {
    return static_cast<int>(std::lround(from + (to - from) * share));
}

QColor blend(const QColor& from, const QColor& to, double share) {
    return {mixed(from.red(), to.red(), share), mixed(from.green(), to.green(), share),
            mixed(from.blue(), to.blue(), share)};
}

/// Paints a cell in its own colour; a selected one is tinted, the current one framed, so that colours stay in
/// sight.
class CellPainter : public QStyledItemDelegate {
 public:
    CellPainter(const TableGridView& view, const TableGridModel& cells, QObject* parent)
        : QStyledItemDelegate(parent), view_(view), cells_(cells) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        const LookColors look = lookColors(view_.mode());
        QColor back = cellColor(cells_.colour(index), view_.mode());
        if ((option.state & QStyle::State_Selected) != 0) back = blend(back, look.accent, selectedShare);
        painter->fillRect(option.rect, back);
        painter->setPen(inkFor(back));
        painter->setFont(option.font);
        painter->drawText(option.rect.adjusted(0, 0, -sideGap, 0), Qt::AlignRight | Qt::AlignVCenter,
                          index.data(Qt::DisplayRole).toString());
        if (index != view_.currentIndex()) return;
        painter->setPen(QPen(look.accent, 2));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(option.rect.adjusted(1, 1, -1, -1));
    }

 private:
    static constexpr double selectedShare = 0.4;
    static constexpr int sideGap = 4;
    const TableGridView& view_;
    const TableGridModel& cells_;
};

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

std::int32_t TableGridModel::colour(const QModelIndex& index) const {
    if (grid_ == nullptr || !grid_->hasCell(index.row() + 1, index.column() + 1)) return TableGrid::white;
    return grid_->colour(index.row() + 1, index.column() + 1);
}

QColor cellColor(std::int32_t colour, DisplayMode mode) {
    const QColor own = colorOfNumber(colour & 0xFFFFFF);
    if (mode == DisplayMode::Day) return own;
    const int least = std::min({own.red(), own.green(), own.blue()});
    const double whiteness = least / 255.0;
    const QColor dark = lookColors(mode).surface;
    if (least == 255) return dark;
    const auto hue = [&](int part) {
        return static_cast<int>(std::lround((part - least) * 255.0 / (255 - least)));
    };
    return blend(QColor(hue(own.red()), hue(own.green()), hue(own.blue())), dark, whiteness);
}

// ---- Marker

TableMarker::TableMarker(QWidget* parent) : QWidget(parent), color_(lookColors(DisplayMode::Day).liveMarker) {
    named(this, "TblMarker", "Present point of the engine");
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void TableMarker::setColor(const QColor& color) {
    color_ = color;
    update();
}

void TableMarker::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPointF middle = QRectF(rect()).center();
    const double arm = std::min(width(), height()) / 2.0 - 2;
    // A rim of the other kind keeps the cross in sight on every cell colour.
    for (const auto& [color, thick] : {std::pair(inkFor(color_), 5.0), std::pair(color_, 2.5)}) {
        painter.setPen(QPen(color, thick));
        painter.drawLine(middle - QPointF(arm, 0), middle + QPointF(arm, 0));
        painter.drawLine(middle - QPointF(0, arm), middle + QPointF(0, arm));
        painter.drawEllipse(middle, arm * 0.55, arm * 0.55);
    }
}

// ---- View

TableGridView::TableGridView(QWidget* parent)
    : QTableView(parent),
      cells_(new TableGridModel(this)),
      corner_(new QLabel(QStringLiteral("x-axis"), this)),
      fraDotFrame_(new QFrame(viewport())),
      marker_(new TableMarker(fraDotFrame_)) {
    // In the corner of the headers: it names the line that begins beside it.
    corner_->setObjectName("Label2");
    corner_->setAlignment(Qt::AlignCenter);
    fraDotFrame_->setObjectName("fraDotFrame");
    fraDotFrame_->setAttribute(Qt::WA_TransparentForMouseEvents);
    setModel(cells_);
    setItemDelegate(new CellPainter(*this, *cells_, this));
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
    const LookColors look = lookColors(mode);
    marker_->setColor(look.liveMarker);
    QPalette colors = palette();
    colors.setColor(QPalette::Base, look.surface);
    colors.setColor(QPalette::Text, look.text);
    colors.setColor(QPalette::Mid, look.border);
    setPalette(colors);
    // The inside too: the program's style sheet leaves it the palette of the former mode.
    viewport()->setPalette(colors);
    viewport()->update();
}

int TableGridView::smallestRow() const {
    return fontMetrics().height();  // sixteen rows must stand below the dashboard of a small screen
}

void TableGridView::sizeRows() {
    const int rows = std::max(1, cells_->rowCount());
    const int tallest = static_cast<int>(fontMetrics().height() * tallestRow);
    verticalHeader()->setDefaultSectionSize(std::clamp(viewport()->height() / rows, smallestRow(), tallest));
}

void TableGridView::sizeColumns(bool fixedWidth) {
    fixedWidth_ = fixedWidth;
    QFont bold = font();
    bold.setBold(true);
    const QFontMetrics headerMetrics(bold);
    int rowHeader = 0;
    for (int row = 0; row < cells_->rowCount(); ++row) {
        const QString text = cells_->headerData(row, Qt::Vertical, Qt::DisplayRole).toString();
        rowHeader = std::max(rowHeader, headerMetrics.horizontalAdvance(text));
    }
    verticalHeader()->setFixedWidth(
        std::max(rowHeader + 2 * columnSlack, corner_->sizeHint().width() + columnSlack));
    for (int column = 0; column < cells_->columnCount(); ++column) {
        const QString header = cells_->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
        int widest = headerMetrics.horizontalAdvance(header) + columnSlack;
        for (int row = 0; row < cells_->rowCount(); ++row) {
            const QString text = cells_->index(row, column).data(Qt::DisplayRole).toString();
            widest = std::max(widest, fontMetrics().horizontalAdvance(text));
        }
        const int equal = (width() - gridSlack) / fixedColumns;
        setColumnWidth(column, fixedWidth ? equal : widest + columnSlack);
    }
    sizeRows();
    moveMarker();
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
    if (row == markerRow_ && column == markerColumn_) return;
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
    const int side = fontMetrics().height() * 3 / 2;
    marker_->setGeometry(static_cast<int>(x) - side / 2, static_cast<int>(y) - side / 2, side, side);
}

QSize TableGridView::sizeHint() const {
    const int rows = std::max(16, cells_->rowCount());
    const int header = fontMetrics().height() + 2 * columnSlack;
    return {fontMetrics().averageCharWidth() * 7 * fixedColumns,
            rows * smallestRow() + header + 2 * frameWidth()};
}

QSize TableGridView::minimumSizeHint() const {
    return {fontMetrics().averageCharWidth() * 30, smallestRow() * 6};
}

void TableGridView::resizeEvent(QResizeEvent* event) {
    QTableView::resizeEvent(event);
    fraDotFrame_->setGeometry(viewport()->rect());
    if (fixedWidth_) {
        sizeColumns(true);
    } else {
        sizeRows();
        moveMarker();
    }
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
