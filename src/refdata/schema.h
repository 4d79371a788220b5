// The tables of the reference database, and what each named set of default values must look like.
// The builder makes files by this description, and the reader refuses files that lack a part of it.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zentaq::refdata {

enum class ColumnType { Integer, Number, Text, NameText, Boolean };

struct Column {
    std::string name;
    ColumnType type = ColumnType::Number;
    bool rowKey = false;  ///< integer key given out by the database; a key once used never comes back
};

struct Table {
    std::string name;
    std::vector<Column> columns;
    bool scratch = false;  ///< emptied before it is filled; nothing of it is kept
};

/// A named set of default values for a new calibration: one column of table Defaults.
struct DefaultsSet {
    std::string_view name;  ///< the member or table that takes the values
    int count = 1;          ///< values in the set, 256 for a table of 16 rows of 16 columns
    double minimum = 0;     ///< limits of the member in a calibration with the standard 1 bar sensor
    double maximum = 0;
    bool ascending = false;  ///< an axis: each value lies above the one before
};

/// Every set that table Defaults holds. Pressures are in kPa, temperatures in Celsius.
std::span<const DefaultsSet> defaultsSets();

/// All tables in the order in which they are made.
const std::vector<Table>& tables();

/// The table of a name. Throws NoSuchMember if there is none.
const Table& table(std::string_view name);

}  // namespace zentaq::refdata
