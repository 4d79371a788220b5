#include "windows/cell_box.h"

#include <algorithm>

#include "qt/look.h"
#include "qt/named.h"
#include "qt/qt_text.h"

namespace zentaq {
namespace {

/// Digits of the box against those of the grid: what is being typed is read at arm's length.
constexpr qreal inputSize = 1.35;
constexpr int inputPlaces = 6;

}  // namespace

CellBox::CellBox(TableGridView& grid) : QLineEdit(grid.viewport()), grid_(grid) {
    named(this, "txtInputValue", "New value of the selected cells");
    setAlignment(Qt::AlignRight);
    setFont(valueFont(inputSize));
    setValidator(new TypingValidator(this));
    hide();
}

void CellBox::open(const EditStart& start, GridCell cell, bool entered) {
    entered_ = entered;
    setText(qString(start.text));
    place(cell);
    show();
    raise();
    setFocus();
    end(false);
    if (start.selectedCharacters > 0) setSelection(0, start.selectedCharacters);
}

void CellBox::bringBack(const std::string& text) {
    setText(qString(text));
    entered_ = false;
    show();
    setFocus();
    selectAll();
}

void CellBox::place(GridCell at) {
    const QFont wanted = valueFont(inputSize * grid_.growth());
    if (font().pointSizeF() != wanted.pointSizeF()) setFont(wanted);
    const QRect cell = grid_.cellRect(at.row, at.column);
    // Larger than its cell, so that the digits are; it grows to the left and to both sides in height, and
    // stays in sight at the edges of the grid.
    const int width =
        std::max(cell.width(), digitsWidth(fontMetrics(), inputPlaces) + 4 * edgeWidth(fontMetrics()));
    const int height = std::max(cell.height(), fontMetrics().height() + 3 * edgeWidth(fontMetrics()));
    QRect place(cell.right() + 1 - width, cell.center().y() - height / 2, width, height);
    place.moveLeft(std::max(place.left(), 0));
    place.moveTop(std::clamp(place.top(), 0, std::max(0, grid_.viewport()->height() - height)));
    setGeometry(place);
}

void CellBox::setMode(DisplayMode mode) {
    showActing(*this, mode);
}

}  // namespace zentaq
