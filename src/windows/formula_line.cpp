#include "windows/formula_line.h"

#include <algorithm>

#include "qt/look.h"
#include "qt/named.h"

namespace zentaq {

namespace {

constexpr auto forms = "=12  +3  -2  *1.05  +5%";
constexpr auto meaning =
    "Change of the selected cells: =12 sets, +3 and -2 add, *1.05 and /2 multiply, +5% and -5% "
    "change by a share";

}  // namespace

FormulaLine::FormulaLine(TableGridView& grid) : QLineEdit(grid.viewport()), grid_(grid) {
    named(this, "txtFormula", meaning);
    setPlaceholderText(forms);
    setToolTip(meaning);
    hide();
}

void FormulaLine::open(const QString& text, int row, int column) {
    setFont(valueFont());
    setText(text);
    const QRect cell = grid_.cellRect(row, column);
    const int width = fontMetrics().horizontalAdvance(forms) + 4 * fontMetrics().averageCharWidth();
    const int height = std::max(cell.height(), sizeHint().height());
    const QSize room = grid_.viewport()->size();
    const bool below = cell.bottom() + height <= room.height();
    const int top = below ? cell.bottom() + 1 : std::max(0, cell.top() - height);
    setGeometry(std::clamp(cell.left(), 0, std::max(0, room.width() - width)), top, width, height);
    show();
    raise();
    setFocus();
    end(false);
}

void FormulaLine::setMode(DisplayMode mode) {
    showActing(*this, mode);
}

}  // namespace zentaq
