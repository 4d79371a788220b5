#include "refdata/seed_table.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/text.h"

namespace zentaq::refdata {

SeedError::SeedError(std::string_view file, int line, std::string_view what)
    : FileError(std::string(file) + ":" + std::to_string(line) + ": " + std::string(what)) {}

namespace {

std::string readWhole(const std::string& path) {
    std::string content;
    endOnFailure(
        [&] { content = readFile(path, limits::seeds); },
        [&](const std::string& why) { throw FileError("Cannot read seed table " + path + ". " + why); });
    return content;
}

}  // namespace

SeedTable SeedTable::read(const std::string& path) {
    SeedTable table;
    table.file_ = path;
    int number = 0;
    for (const std::string& line : split(readWhole(path), '\n')) {
        ++number;
        table.parseLine(number,
                        line.ends_with('\r') ? std::string_view(line).substr(0, line.size() - 1) : line);
    }
    if (table.columns_.empty()) table.fail(1, "no header line");
    return table;
}

void SeedTable::parseLine(int number, std::string_view line) {
    if (trimmed(line).empty() || line.front() == '#') return;
    std::vector<std::string> cells = split(line, '\t');
    if (columns_.empty()) {
        std::set<std::string> seen;
        for (const std::string& name : cells) {
            if (trimmed(name).empty()) fail(number, "a column without a name");
            if (!seen.insert(upper(name)).second) fail(number, "column " + name + " stands twice");
        }
        columns_ = std::move(cells);
        headerLine_ = number;
        return;
    }
    if (cells.size() != columns_.size()) {
        fail(number, "has " + std::to_string(cells.size()) + " cells, the header has " +
                         std::to_string(columns_.size()));
    }
    for (std::string& cell : cells) cell = unescaped(number, cell);
    rows_.push_back({number, std::move(cells)});
}

std::string SeedTable::unescaped(int line, std::string_view cell) const {
    std::string text;
    for (std::size_t i = 0; i < cell.size(); ++i) {
        if (cell[i] != '\\') {
            text += cell[i];
            continue;
        }
        const char mark = i + 1 < cell.size() ? cell[++i] : ' ';
        if (mark == 'n') {
            text += '\n';
        } else if (mark == 't') {
            text += '\t';
        } else if (mark == '\\') {
            text += '\\';
        } else {
            fail(line, "a backslash must be followed by n, t or a backslash");
        }
    }
    return text;
}

bool SeedTable::has(std::string_view column) const {
    return std::find(columns_.begin(), columns_.end(), column) != columns_.end();
}

std::size_t SeedTable::indexOf(int line, std::string_view column) const {
    const auto found = std::find(columns_.begin(), columns_.end(), column);
    if (found == columns_.end()) fail(line, "no column " + std::string(column));
    return static_cast<std::size_t>(found - columns_.begin());
}

const std::string& SeedTable::text(const SeedRow& row, std::string_view column) const {
    return row.cells.at(indexOf(row.line, column));
}

double SeedTable::number(const SeedRow& row, std::string_view column) const {
    const std::string& cell = text(row, column);
    const auto value = cell.find(',') == std::string::npos ? parseNumber(cell) : std::nullopt;
    if (!value || !std::isfinite(*value)) {
        fail(row.line, std::string(column) + " must be a number, not \"" + cell + "\"");
    }
    return *value;
}

int SeedTable::integer(const SeedRow& row, std::string_view column) const {
    const double value = number(row, column);
    if (value != std::trunc(value) || std::fabs(value) > 1e9) {
        fail(row.line, std::string(column) + " must be a whole number, not " + text(row, column));
    }
    return static_cast<int>(value);
}

void SeedTable::fail(int line, std::string_view what) const {
    throw SeedError(file_, line, what);
}

}  // namespace zentaq::refdata
