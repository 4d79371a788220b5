// The edit box over a cell of a table, and what may be typed into it and into the times beside the grid.
#pragma once

#include "tables/table_editor.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QValidator>

#include "windows/table_view.h"

namespace zentaq {

/// Lets through what may be typed on the way to a number.
class TypingValidator : public QValidator {
 public:
    using QValidator::QValidator;
    State validate(QString& text, int&) const override {
        return TableEditor::mayBeTyped(text.toStdString()) ? Acceptable : Invalid;
    }
};

class CellBox : public QLineEdit {
    Q_OBJECT

 public:
    explicit CellBox(TableGridView& grid);

    /// Shows the box over a cell, with the keyboard. `entered`: its text is an entry, not the cell's own.
    void open(const EditStart& start, GridCell cell, bool entered);
    /// Shows the cell's own text again behind a refusal.
    void bringBack(const std::string& text);
    void place(GridCell cell);
    void setMode(DisplayMode mode);
    /// What it shows is the user's; a box that only shows its cell must not fill a whole selection with it.
    bool holdsEntry() const { return entered_ || isModified(); }

 private:
    TableGridView& grid_;
    bool entered_ = false;
};

}  // namespace zentaq
