// A seed table: a text file of tab-separated cells with a header line, from which a table of the
// reference database is made. Lines that are blank or begin with '#' are comments.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/errors.h"

namespace zentaq::refdata {

/// A seed file is wrong. The text begins with "file:line: ".
class SeedError : public FileError {
 public:
    SeedError(std::string_view file, int line, std::string_view what);
};

struct SeedRow {
    int line = 0;                    ///< line number in the file, from 1
    std::vector<std::string> cells;  ///< as many as the header has columns; "\n", "\t" and "\\" are resolved
};

class SeedTable {
 public:
    /// Reads a whole file. Throws FileError if it cannot be read, SeedError on a row of the wrong
    /// width, a repeated or empty column name, an unknown escape or a file without a header.
    static SeedTable read(const std::string& path);

    const std::string& file() const { return file_; }
    const std::vector<std::string>& columns() const { return columns_; }
    const std::vector<SeedRow>& rows() const { return rows_; }
    int headerLine() const { return headerLine_; }

    /// Whether the header names this column.
    bool has(std::string_view column) const;
    /// The cell of a row. Throws SeedError if the header lacks the column.
    const std::string& text(const SeedRow& row, std::string_view column) const;
    /// The cell as a number. Throws SeedError when it is none.
    double number(const SeedRow& row, std::string_view column) const;
    /// The cell as a whole number. Throws SeedError when it is none.
    int integer(const SeedRow& row, std::string_view column) const;

    [[noreturn]] void fail(int line, std::string_view what) const;

 private:
    void parseLine(int number, std::string_view line);
    std::size_t indexOf(int line, std::string_view column) const;
    std::string unescaped(int line, std::string_view cell) const;

    std::string file_;
    int headerLine_ = 0;
    std::vector<std::string> columns_;
    std::vector<SeedRow> rows_;
};

}  // namespace zentaq::refdata
