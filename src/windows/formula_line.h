// The one small line over the cells in hand: "=12", "+3", "*1.05", "+5%" for all of them.
#pragma once

#include <QLineEdit>

#include "windows/table_view.h"

namespace zentaq {

class FormulaLine : public QLineEdit {
    Q_OBJECT

 public:
    explicit FormulaLine(TableGridView& grid);

    /// Shows it below the cell where there is room, with the keyboard and this text.
    void open(const QString& text, int row, int column);
    void setMode(DisplayMode mode);
    /// The keys that open it on the grid: they begin no number.
    static bool opens(char key) { return key == '=' || key == '+' || key == '*' || key == '/'; }

 private:
    TableGridView& grid_;
};

}  // namespace zentaq
