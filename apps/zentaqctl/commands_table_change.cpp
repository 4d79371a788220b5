// table with a command: the editor's operations on a table of a file, by the same core as its window.
#include <algorithm>
#include <charconv>
#include <functional>
#include <ostream>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "commands.h"
#include "members.h"
#include "open_table.h"
#include "tables/block_operations.h"
#include "tables/cell_changes.h"
#include "tables/cell_formula.h"
#include "tables/line_commands.h"
#include "tables/rebin.h"
#include "tables/table_model.h"

namespace zentaq::ctl {

namespace {

// A file may ask for more rows and columns than are stored.
int rowsOf(const TableSheet& sheet) {
    return std::min(sheet.rows(), storedHeaders);
}
int columnsOf(const TableSheet& sheet) {
    return std::min(sheet.columns(), storedColumns);
}

std::string sizeOf(const TableSheet& sheet) {
    return sheet.table() + " has " + numberText(rowsOf(sheet)) + " rows and " + numberText(columnsOf(sheet)) +
           " columns";
}

std::optional<int> lineNumber(std::string_view text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size()) return {};
    return number;
}

std::optional<GridCell> cellOf(std::string_view text) {
    const auto comma = text.find(',');
    if (comma == std::string_view::npos) return {};
    const auto row = lineNumber(text.substr(0, comma));
    const auto column = lineNumber(text.substr(comma + 1));
    if (!row || !column) return {};
    return GridCell{*row, *column};
}

/// "2,3:5,8", corners in any order, or one cell.
std::optional<Selection> blockOf(std::string_view text) {
    const auto colon = text.find(':');
    const auto first = cellOf(text.substr(0, colon));
    const auto second = colon == std::string_view::npos ? first : cellOf(text.substr(colon + 1));
    if (!first || !second) return {};
    return Selection{std::min(first->row, second->row), std::max(first->row, second->row),
                     std::min(first->column, second->column), std::max(first->column, second->column),
                     *first != *second};
}

Selection blockIn(const TableSheet& sheet, const std::string& text) {
    const auto block = blockOf(text);
    if (!block || !sheet.isStored({block->top, block->left}) ||
        !sheet.isStored({block->bottom, block->right}))
        throw Failure("No cells " + shownBriefly(text) + ": " + sizeOf(sheet));
    return *block;
}

void refuseAll(const TableSheet& sheet, const std::vector<Refusal>& refused) {
    if (refused.empty()) return;
    throw Failure(sheet.table() + ", " + cellsOf(refused) + "; nothing was written");
}

/// A calibration with one of its tables open.
class TableChange {
 public:
    TableChange(const Context& context, const std::string& file, const std::string& name,
                const std::string& output)
        : context_(context),
          change_(context, file, output),
          table_(context, change_.calibration().unit, name) {}

    TableSheet& sheet() { return table_.sheet; }
    const Context& context() const { return context_; }
    /// What was refused keeps its value; the rest is written all the same.
    void save(const std::vector<Refusal>& refused = {}) {
        change_.save();
        if (refused.empty()) return;
        throw Failure(sheet().table() + ", " + cellsOf(refused) +
                      "; these keep their values, the rest is written");
    }

 private:
    const Context& context_;
    Change change_;
    OpenTable table_;
};

void writeBlock(const Context& context, const std::string& file, const std::string& name,
                const std::string& cells, const std::string& output,
                const std::function<void(TableGrid& grid, const Selection& block)>& operation) {
    TableChange change(context, file, name, output);
    const Selection block = blockIn(change.sheet(), cells);
    if (!block.present) {
        if (!output.empty()) change.save();
        context.notes << "One cell has no others to take a value from; nothing has changed\n";
        return;
    }
    operation(change.sheet().grid(), block);
    change.save(change.sheet().saveEntireTable());
}

LineCommand lineCommandOf(const std::string& option) {
    if (option == "--add-column") return LineCommand::AddColumn;
    if (option == "--add-row") return LineCommand::AddRow;
    return option == "--remove-column" ? LineCommand::RemoveColumn : LineCommand::RemoveRow;
}

}  // namespace

std::string wrongBlock(const std::string& text) {
    return blockOf(text) ? std::string() : shownBriefly(text) + " is no block of cells such as 2,3:5,8";
}

void interpolateTable(const Context& context, const std::string& file, const std::string& name,
                      const std::string& cells, const std::string& output) {
    writeBlock(context, file, name, cells, output, interpolateBlock);
}

void smoothTable(const Context& context, const std::string& file, const std::string& name,
                 const std::string& cells, int strength, const std::string& output) {
    if (strength < gentlestSmoothing || strength > strongestSmoothing)
        throw Failure("Strength " + numberText(strength) + " is outside 1 (gentlest) to 5 (strongest)");
    writeBlock(context, file, name, cells, output,
               [strength](TableGrid& grid, const Selection& block) { smoothBlock(grid, block, strength); });
}

void changeTableLines(const Context& context, const std::string& file, const std::string& name,
                      const std::string& option, int line, const std::string& output) {
    TableChange change(context, file, name, output);
    const LineCommand command = lineCommandOf(option);
    const std::string why = whyNot(change.sheet(), command);
    if (!why.empty()) throw Failure(name + ": " + why);
    const int count = isOfColumns(command) ? columnsOf(change.sheet()) : rowsOf(change.sheet());
    if (line < 1 || line > count)
        throw Failure("No " + std::string(isOfColumns(command) ? "column " : "row ") + numberText(line) +
                      ": " + sizeOf(change.sheet()));
    change.save(changeLines(change.sheet(), command, line));
}

void applyToTable(const Context& context, const std::string& file, const std::string& name,
                  const std::string& formula, const std::string& cells, const std::string& output) {
    refuseComma("--apply", formula);
    const CellFormula wanted = CellFormula::of(formula);
    TableChange change(context, file, name, output);
    const Selection block = blockIn(change.sheet(), cells);
    refuseAll(change.sheet(),
              storeAll(change.sheet(), changesOf(change.sheet(), block, [&](GridCell, float value) {
                           return wanted.applied(value);
                       })));
    change.save();
}

void rebinTable(const Context& context, const std::string& file, const std::string& name,
                const std::string& columns, const std::string& rows, const std::string& output) {
    const TableAxes wanted{headersOf(columns), headersOf(rows)};
    if ((!columns.empty() && wanted.columns.empty()) || (!rows.empty() && wanted.rows.empty()))
        throw Failure("The list of headers is empty: headers are listed as 500,1000,1500");
    TableChange change(context, file, name, output);
    refuseAll(change.sheet(), store(change.sheet(), rebinned(change.sheet(), wanted)));
    change.save();
}

void showTableView(const Context& context, const std::string& file, const std::string& name,
                   const std::string& view) {
    const auto calibration = openCalibration(context, file);
    OpenTable table(context, calibration->unit, name);
    if (!table.model.estimates().offered())
        throw Failure(name + " has no pulse widths and duty cycles: VE and SPW have them");
    table.model.showView(view == "dutycycle" ? zentaq::TableView::DutyCycle : zentaq::TableView::PulseWidth);
    const TableGrid& grid = table.sheet.grid();
    if (!context.json) {
        for (int row = 0; row <= grid.rows(); ++row) {
            context.out << (row == 0 ? name : grid.text(row, 0));
            for (int column = 1; column <= grid.columns(); ++column)
                context.out << '\t' << grid.text(row, column);
            context.out << '\n';
        }
        return;
    }
    JsonWriter json(context.out);
    json.beginObject().member("table", name).member("view", view);
    json.member("unit", view == "dutycycle" ? "%" : "ms").key("values").beginArray();
    for (int stored = 0; stored < grid.rows(); ++stored) {
        json.beginArray();
        for (int column = 1; column <= grid.columns(); ++column)
            json.value(table.sheet.shownNumber(table.sheet.gridRow(stored), column));
        json.endArray();
    }
    json.endArray().endObject();
    context.out << '\n';
}

}  // namespace zentaq::ctl
