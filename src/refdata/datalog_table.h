// Rows of an imported log in one of the scratch tables of the reference database, through a handle of its
// own, so that it can be filled beside the program's thread. The file is locked for no longer than a block of
// rows takes.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq {

class DatalogTable {
 public:
    static constexpr std::int64_t blockRows = 8192;

    /// `table` "Datalog" or "Datalog2". Throws Failure with the reason: a write-protected, locked or missing
    /// file.
    DatalogTable(const std::string& database, std::string_view table);
    ~DatalogTable();
    DatalogTable(const DatalogTable&) = delete;
    DatalogTable& operator=(const DatalogTable&) = delete;

    // All throw Failure. A file that another program has locked is waited for, up to some seconds.
    void clear();
    /// One value for each column of the table.
    void add(std::span<const double> values);
    /// What was added is in the file.
    void flush();

 private:
    struct Handle;
    std::unique_ptr<Handle> handle_;
};

}  // namespace zentaq
