// table: one of the six tables with its axes, as tab-separated text that a spreadsheet opens and writes.
#include <algorithm>
#include <ostream>
#include <vector>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/text.h"
#include "base/warning_texts.h"
#include "commands.h"
#include "members.h"
#include "tables/table_cells.h"
#include "unit/axis_kinds.h"

namespace zentaq::ctl {

namespace {

/// An axis of a table: how it is asked for, and how many of its headers are in use.
struct Axis {
    std::string_view name;      ///< of the headers, "X-Axis"
    std::string_view kindName;  ///< of its kind, "COL-AXIS"
    int count = 0;
};

/// A table of a calibration as a user sees it.
class TableView {
 public:
    TableView(QuietCalibration& calibration, const std::string& name)
        : calibration_(calibration), unit_(calibration.unit), name_(name), kind_(findTable(name)) {
        if (kind_ == nullptr || (!kind_->isGpo() && !unit_.has(kind_->member))) {
            throw NoSuchMember(std::string(unit_.kind().model) + " has no table " + name);
        }
        // A file may ask for more rows and columns than a table has cells.
        rows_ = {"Y-Axis", "ROW-AXIS", std::min(shownRows(unit_, name), storedHeaders)};
        columns_ = {"X-Axis", "COL-AXIS", std::min(shownColumns(unit_, name), storedColumns)};
    }

    const std::string& name() const { return name_; }
    const Axis& rows() const { return rows_; }
    const Axis& columns() const { return columns_; }
    float header(const Axis& axis, int line) { return tableHeader(unit_, name_, axis.name, line); }
    float value(int row, int column) { return get_binValueByIndex(unit_, name_, cell(row, column), false); }
    std::string axisKind(const Axis& axis) { return unit_.GET_TBL_AXIS_TYPE(name_, axis.kindName); }
    std::string axisUnit(const Axis& axis);
    std::string unitOfValues() { return kind_->isGpo() ? "%" : std::string(unit_.find(kind_->member)->unit); }

    void setHeader(const Axis& axis, int line, const std::string& text) {
        writeMember(calibration_, memberOf(unit_.kind(), name_ + "." + std::string(axis.name)), text, line);
    }
    void setValue(int row, int column, const std::string& text) {
        const std::string member = kind_->isGpo() ? name_ : std::string(kind_->member);
        writeMember(calibration_, memberOf(unit_.kind(), member), text, cell(row, column));
    }

 private:
    static int cell(int row, int column) { return row * storedColumns + column; }

    QuietCalibration& calibration_;
    Unit& unit_;
    std::string name_;
    const TableKind* kind_;
    Axis rows_;
    Axis columns_;
};

std::string TableView::axisUnit(const Axis& axis) {
    const AxisKind* kind = axisKindOf(axisKind(axis));
    return kind != nullptr && kind->temperature ? "Celsius" : zentaq::axisUnit(unit_, kind);
}

void writeText(std::ostream& out, TableView& table) {
    out << table.name();
    for (int column = 0; column < table.columns().count; ++column) {
        out << '\t' << numberText(table.header(table.columns(), column));
    }
    out << '\n';
    for (int row = table.rows().count - 1; row >= 0; --row) {
        out << numberText(table.header(table.rows(), row));
        for (int column = 0; column < table.columns().count; ++column) {
            out << '\t' << numberText(table.value(row, column));
        }
        out << '\n';
    }
}

void writeAxis(JsonWriter& json, TableView& table, std::string_view name, const Axis& axis) {
    json.key(name).beginObject().member("kind", table.axisKind(axis));
    json.member("unit", table.axisUnit(axis)).key("values").beginArray();
    for (int line = 0; line < axis.count; ++line) json.value(table.header(axis, line));
    json.endArray().endObject();
}

void writeJson(std::ostream& out, TableView& table) {
    JsonWriter json(out);
    json.beginObject().member("table", table.name());
    json.member("unit", table.unitOfValues());
    writeAxis(json, table, "rows", table.rows());
    writeAxis(json, table, "columns", table.columns());
    json.key("values").beginArray();
    for (int row = 0; row < table.rows().count; ++row) {
        json.beginArray();
        for (int column = 0; column < table.columns().count; ++column) json.value(table.value(row, column));
        json.endArray();
    }
    json.endArray().endObject();
    out << '\n';
}

// ---- Reading a table from text

using Line = std::vector<std::string>;

std::vector<Line> linesOf(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    std::vector<Line> lines;
    for (const std::string& line : split(text, '\n')) {
        Line fields;
        for (const std::string& field : split(line, '\t')) fields.emplace_back(trimmed(field));
        lines.push_back(std::move(fields));
    }
    // What a spreadsheet leaves behind the last row.
    const auto blank = [](const Line& line) {
        return std::ranges::all_of(line, [](const std::string& field) { return field.empty(); });
    };
    while (!lines.empty() && blank(lines.back())) lines.pop_back();
    return lines;
}

/// Tab-separated text on its way into a table. Only what differs from what the table shows is written: a
/// value that is shown rounded keeps its digits.
class TableInput {
 public:
    TableInput(TableView& table, const std::string& file, std::string_view text)
        : table_(table), file_(file == "-" ? "standard input" : file), lines_(linesOf(text)) {}

    void apply() {
        checkShape();
        applyAxis(table_.columns());
        applyAxis(table_.rows());
        for (int row = table_.rows().count - 1; row >= 0; --row) {
            for (int column = 0; column < table_.columns().count; ++column) applyCell(row, column);
        }
    }

 private:
    [[noreturn]] void refuse(const std::string& where, const std::string& why) const {
        throw Failure(file_ + ", " + where + ": " + why);
    }
    std::size_t lineOfRow(int row) const { return static_cast<std::size_t>(table_.rows().count - row); }
    const std::string& field(std::size_t line, int column) const {
        return lines_[line][static_cast<std::size_t>(column)];
    }
    static std::string place(std::size_t line, int column) {
        return "line " + numberText(static_cast<int>(line) + 1) + ", column " + numberText(column + 1);
    }

    void checkShape() const {
        const int rows = table_.rows().count;
        const int columns = table_.columns().count;
        if (std::ssize(lines_) != rows + 1) {
            throw Failure(file_ + " has " + numberText(static_cast<int>(lines_.size())) + " lines; " +
                          table_.name() + " has a line of headers and " + numberText(rows) + " rows");
        }
        for (std::size_t line = 0; line < lines_.size(); ++line) {
            if (std::ssize(lines_[line]) == columns + 1) continue;
            const bool oneField = lines_[line].size() == 1;
            const bool otherSeparator = oneField && lines_[line][0].find_first_of(",;") != std::string::npos;
            refuse("line " + numberText(static_cast<int>(line) + 1),
                   numberText(static_cast<int>(lines_[line].size())) + (oneField ? " field; " : " fields; ") +
                       table_.name() + " has a header and " + numberText(columns) + " columns" +
                       (otherSeparator ? ", separated by tabs" : ""));
        }
        const std::string& corner = lines_[0][0];
        if (corner != table_.name() && findTable(corner) != nullptr) {
            refuse("line 1", "this is table " + corner + ", not " + table_.name());
        }
    }

    /// Where the header of a line of the table stands in the text.
    std::pair<std::size_t, int> headerPlace(const Axis& axis, int line) const {
        if (axis.name == "X-Axis") return {0, line + 1};
        return {lineOfRow(line), 0};
    }
    const std::string& headerText(const Axis& axis, int line) const {
        const auto [at, column] = headerPlace(axis, line);
        return field(at, column);
    }

    void applyAxis(const Axis& axis) {
        std::vector<int> changed;
        for (int line = 0; line < axis.count; ++line) {
            if (headerText(axis, line) != numberText(table_.header(axis, line))) changed.push_back(line);
        }
        for (const int line : changed) {
            const auto [at, column] = headerPlace(axis, line);
            endOnFailure(
                [&, text = headerText(axis, line)] { table_.setHeader(axis, line, text); },
                [&, where = place(at, column)](const std::string& why) { refuse(where + " (header)", why); });
        }
        if (!changed.empty()) checkAscending(axis);
    }

    void checkAscending(const Axis& axis) {
        for (int line = 1; line < axis.count; ++line) {
            if (table_.header(axis, line) > table_.header(axis, line - 1)) continue;
            const auto [at, column] = headerPlace(axis, line);
            refuse(place(at, column) + " (header)",
                   warningLine(codes::NotAscending, numberText(table_.header(axis, line - 1)) + " > " +
                                                        numberText(table_.header(axis, line)) + " = FALSE"));
        }
    }

    void applyCell(int row, int column) {
        const std::size_t line = lineOfRow(row);
        const std::string& text = field(line, column + 1);
        if (text == numberText(table_.value(row, column))) return;
        endOnFailure([&] { table_.setValue(row, column, text); },
                     [&](const std::string& why) {
                         refuse(place(line, column + 1) + " (" +
                                    numberText(table_.header(table_.rows(), row)) + " " +
                                    table_.axisUnit(table_.rows()) + ", " +
                                    numberText(table_.header(table_.columns(), column)) + " " +
                                    table_.axisUnit(table_.columns()) + ")",
                                why);
                     });
    }

    TableView& table_;
    std::string file_;
    std::vector<Line> lines_;
};

}  // namespace

void showTable(const Context& context, const std::string& file, const std::string& name) {
    const auto calibration = openCalibration(context, file);
    TableView table(*calibration, name);
    if (context.json) {
        writeJson(context.out, table);
    } else {
        writeText(context.out, table);
    }
}

void setTable(const Context& context, const std::string& file, const std::string& name,
              const std::string& input, const std::string& output) {
    refuseSameFile(output.empty() ? file : output, input);
    Change change(context, file, output);
    TableView table(change.calibration(), name);
    TableInput(table, input, readInput(input, limits::table)).apply();
    change.save();
}

}  // namespace zentaq::ctl
