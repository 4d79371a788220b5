// What a user does to the cells and headers of a table: typing, the nudge keys, the clipboard, new headers.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tables/live_overlay.h"

namespace zentaq {

/// How the edit box opens.
struct EditStart {
    std::string text;
    int selectedCharacters = 0;  ///< from the left
};

/// An axis as it would stand after an entry, from its lowest stop on, and the place of the entry.
struct AxisEntry {
    std::vector<std::string> fields;
    int index = 0;
};

class TableEditor {
 public:
    TableEditor(TableSheet& sheet, TableCursor& cursor, TableEstimates& estimates, LiveOverlay& overlay)
        : sheet_(sheet), cursor_(cursor), estimates_(estimates), overlay_(overlay) {}

    // ---- Typing
    /// The text that the edit box opens with, or nothing when this key does not start editing. Until the edit
    /// ends (`enterValue`, `leaveEdit`, the cursor let go) live tracking leaves the cursor alone.
    std::optional<EditStart> startEdit(char key);
    /// Why a key begins no number.
    static EntryOutcome checkFirstKey(char key);
    /// Whether the box may hold a text while a user types.
    static bool mayBeTyped(std::string_view text);
    /// Enter in the edit box: checks in order, then writes to every cell of the selection.
    EntryOutcome enterValue(std::string_view typed);
    /// Leaving the box without Enter: the text goes to the cell with no check and nothing is written.
    void leaveEdit(std::string_view typed);
    /// "." and ",": adds a step to every selected cell, stopping at the first that would leave its range.
    EntryOutcome nudge(bool up);
    /// Writes one value; `silent` keeps it off the wire. Ends with the overlay as it was before editing.
    EntryOutcome silentWrite(float value, int index, bool silent);

    // ---- Headers
    /// "Enter a New RPM Header Value..." for a header cell; nothing for other cells or in an active view.
    std::optional<std::string> headerPrompt(int row, int column) const;
    /// The header's axis with that answer in its place; nothing for an answer that enterHeader() passes over.
    std::optional<AxisEntry> axisEntry(int row, int column, std::string_view typed) const;
    /// A header must lie above the one before: below it, the unit would look its values up in an axis without
    /// order.
    EntryOutcome checkHeader(int row, int column, std::string_view typed) const;
    /// What the tuner is told of a header that is not below the next one of its axis; empty where it is.
    std::string axisWarning(int row, int column) const;
    /// The answer to that prompt; taken when the header changed.
    EntryOutcome enterHeader(int row, int column, std::string_view typed);

    // ---- Clipboard: cells separated by tabs, rows by line ends
    /// How the user's spreadsheet writes numbers. Where it has no decimal comma, "1,234" may be a thousand.
    enum class Decimals { Point, CommaToo };
    std::string clip(Decimals decimals = Decimals::Point) const;  ///< the selected cells
    /// Fills cells from the top left of the selection on, within a selection of more than one cell or else to
    /// the edge of the grid, and writes the grid back as saveEntireTable() does. Each cell is checked before
    /// anything is written: those that are refused keep their values, with their place in what is answered.
    /// Does nothing in a view: its cells are estimates, which written back would be taken for values.
    std::vector<Refusal> paste(std::string_view clipboard, Decimals decimals = Decimals::CommaToo);

 private:
    void enterCell(int row, int column, double value);
    EntryOutcome nudgeCell(int row, int column, double step);
    EntryOutcome enterMainHeader(bool isColumn, int line, std::string_view typed);
    EntryOutcome enterStop(bool isColumn, int line, std::string_view typed);
    struct PastedCell {
        GridCell cell;
        std::string text;
    };
    std::vector<PastedCell> pastedCells(std::string_view clipboard) const;

    TableSheet& sheet_;
    TableCursor& cursor_;
    TableEstimates& estimates_;
    LiveOverlay& overlay_;
};

}  // namespace zentaq
