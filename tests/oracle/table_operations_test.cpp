// The table operations against a second implementation that shares no code with the program: random tables,
// of which every cell, header and size must come out the same to the last bit, the sign of a zero aside.
#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "base/number_text.h"
#include "base/text.h"
#include "live/calibration_fixture.h"
#include "tables/block_operations.h"
#include "tables/cell_changes.h"
#include "tables/cell_formula.h"
#include "tables/line_commands.h"
#include "tables/rebin.h"
#include "tables/table_sheet.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

constexpr int tableCasesPerOperation = 1000;
constexpr int tableCaseSeed = 7;
/// Both axes, the six tables, the stops and the sizes.
constexpr int firstTableCell = 592;
constexpr int lastTableCell = 2297;
constexpr int tableDifferencesShown = 5;

/// Four bytes, the lowest first, as eight digits.
std::uint32_t tableBitsOf(std::string_view digits) {
    std::uint32_t bits = 0;
    for (std::size_t at = 8; at > 0; at -= 2) {
        unsigned byte = 0;
        std::from_chars(digits.data() + at - 2, digits.data() + at, byte, 16);
        bits = bits << 8U | byte;
    }
    return bits;
}

/// One line of table_oracle.py.
struct TableCase {
    explicit TableCase(const std::string& line) {
        const auto fields = split(line, ';');
        if (fields.size() != 6) throw std::runtime_error("no case: " + line.substr(0, 200));
        name = fields[0];
        table = fields[1];
        arguments = split(fields[2], ' ');
        offset = tableBitsOf(fields[3]);
        for (std::size_t at = 0; at + 8 <= fields[4].size(); at += 8)
            before.push_back(tableBitsOf(std::string_view(fields[4]).substr(at, 8)));
        after = before;
        if (fields[5].empty()) return;
        for (const std::string& change : split(fields[5], ' ')) {
            const auto colon = change.find(':');
            const int index = std::stoi(change.substr(0, colon));
            after.at(static_cast<std::size_t>(index - firstTableCell)) =
                tableBitsOf(std::string_view(change).substr(colon + 1));
        }
    }

    int number(std::size_t argument) const { return std::stoi(arguments.at(argument)); }
    /// Top, left, bottom, right from this argument on.
    Selection block(std::size_t first) const {
        return {number(first), number(first + 2), number(first + 1), number(first + 3), true};
    }
    std::string told() const {
        std::string text = "seed " + numberText(tableCaseSeed) + ", case " + name + ", " + table;
        for (const std::string& argument : arguments) text += " " + argument;
        return text;
    }

    std::string name;
    std::string table;
    std::vector<std::string> arguments;
    std::uint32_t offset = 0;
    std::vector<std::uint32_t> before;
    std::vector<std::uint32_t> after;
};

void setTablesUp(Unit& unit, const TableCase& given) {
    constexpr int displayCell = 124;
    constexpr int ratingCell = 39;
    for (std::size_t i = 0; i < given.before.size(); ++i)
        unit.AssignDirectIndex(std::bit_cast<float>(given.before[i]), firstTableCell + static_cast<int>(i));
    unit.AssignDirectIndex(std::bit_cast<float>(given.offset), test::moffsetCell);
    unit.AssignDirectIndex(1, displayCell);
    unit.AssignDirectIndex(1, ratingCell);
}

std::string placeOf(int index) {
    const std::map<int, const char*> places = {
        {592, "speed"},      {624, "pressure"},   {656, "ADV"},        {912, "VE"},
        {1168, "SPW"},       {1424, "AFR"},       {1680, "GPO1"},      {1936, "GPO2"},
        {2192, "cell"},      {2225, "AFR"},       {2226, "GPO1 rows"}, {2242, "GPO1 cols"},
        {2258, "GPO2 rows"}, {2274, "GPO2 cols"}, {2290, "axis kind"}, {2292, "size"}};
    const auto found = std::prev(places.upper_bound(index));
    return std::string(found->second) + "[" + numberText(index - found->first) + "]";
}

std::string tableValue(std::uint32_t bits) {
    std::ostringstream text;
    text.precision(9);
    text << std::bit_cast<float>(bits);
    return text.str();
}

/// The first cell in which the two part, or nothing.
std::string firstTableDifference(const Unit& unit, const TableCase& given) {
    for (std::size_t i = 0; i < given.after.size(); ++i) {
        const int index = firstTableCell + static_cast<int>(i);
        const auto ours = std::bit_cast<std::uint32_t>(unit.DirectIndex(index));
        // A zero below a rounded -0.04 may have a sign, which no text shows.
        if (ours == given.after[i] || std::bit_cast<float>(ours) == std::bit_cast<float>(given.after[i]))
            continue;
        return placeOf(index) + ": before " + tableValue(given.before[i]) + ", the program has " +
               tableValue(ours) + ", the second implementation " + tableValue(given.after[i]);
    }
    return {};
}

std::string tablePython(const std::string& script) {
    return "'" ZENTAQ_PYTHON "' -B '" ZENTAQ_SOURCE_DIR "/tests/oracle/" + script + "'";
}

TEST(SecondTableOperations, PassTheirOwnHandWorkedTests) {
    EXPECT_EQ(std::system((tablePython("test_table_oracle.py") + " 2>/dev/null").c_str()), 0);
}

class TableOperations : public ::testing::Test {
 protected:
    using Operation = std::function<void(TableSheet& sheet, const TableCase& given)>;

    std::filesystem::path generated(const std::string& operation) {
        const auto file = folder_.path() / (operation + ".txt");
        const std::string command = tablePython("table_oracle.py") + " --operation " + operation +
                                    " --count " + numberText(tableCasesPerOperation) + " --seed " +
                                    numberText(tableCaseSeed) + " >'" + file.string() + "'";
        EXPECT_EQ(std::system(command.c_str()), 0) << command;
        return file;
    }

    /// Every case through the program; `fewestChanged` of them must change something.
    void expectSame(const std::string& operation, int fewestChanged, const Operation& ours) {
        std::ifstream lines(generated(operation));
        std::string line;
        std::getline(lines, line);
        ASSERT_EQ(line, "seed " + numberText(tableCaseSeed));
        int cases = 0;
        int changed = 0;
        int different = 0;
        std::string report;
        while (std::getline(lines, line)) {
            const TableCase given(line);
            ASSERT_EQ(given.before.size(), lastTableCell - firstTableCell + 1U) << given.told();
            ++cases;
            changed += given.before != given.after;
            const std::string difference = differenceOf(given, ours);
            if (difference.empty()) continue;
            if (++different <= tableDifferencesShown) report += given.told() + "\n  " + difference + "\n";
        }
        EXPECT_EQ(cases, tableCasesPerOperation);
        EXPECT_GE(changed, fewestChanged);
        EXPECT_EQ(different, 0) << report;
    }

 private:
    std::string differenceOf(const TableCase& given, const Operation& ours) {
        setTablesUp(calibration_.unit, given);
        TableSheet sheet(calibration_.unit);
        sheet.read(given.table, "A table", false);
        ours(sheet, given);
        return firstTableDifference(calibration_.unit, given);
    }

    TemporaryFolder folder_;
    test::Calibration calibration_{3};
};

TEST_F(TableOperations, OfInterpolationAreThoseOfTheSecondImplementation) {
    expectSame("interpolate", 900, [](TableSheet& sheet, const TableCase& given) {
        interpolateBlock(sheet.grid(), given.block(0));
        sheet.saveEntireTable();
    });
}

TEST_F(TableOperations, OfSmoothingAreThoseOfTheSecondImplementation) {
    expectSame("smooth", 900, [](TableSheet& sheet, const TableCase& given) {
        smoothBlock(sheet.grid(), given.block(1), given.number(0));
        sheet.saveEntireTable();
    });
}

void changeLinesBy(TableSheet& sheet, const TableCase& given, LineCommand command) {
    changeLines(sheet, command, given.number(0));
}

TEST_F(TableOperations, ThatAddAColumnAreThoseOfTheSecondImplementation) {
    expectSame("add-column", 800, [](TableSheet& sheet, const TableCase& given) {
        changeLinesBy(sheet, given, LineCommand::AddColumn);
    });
}

TEST_F(TableOperations, ThatAddARowAreThoseOfTheSecondImplementation) {
    expectSame("add-row", 800, [](TableSheet& sheet, const TableCase& given) {
        changeLinesBy(sheet, given, LineCommand::AddRow);
    });
}

TEST_F(TableOperations, ThatRemoveAColumnAreThoseOfTheSecondImplementation) {
    expectSame("remove-column", 800, [](TableSheet& sheet, const TableCase& given) {
        changeLinesBy(sheet, given, LineCommand::RemoveColumn);
    });
}

TEST_F(TableOperations, ThatRemoveARowAreThoseOfTheSecondImplementation) {
    expectSame("remove-row", 800, [](TableSheet& sheet, const TableCase& given) {
        changeLinesBy(sheet, given, LineCommand::RemoveRow);
    });
}

TEST_F(TableOperations, OfFormulasAreThoseOfTheSecondImplementation) {
    expectSame("apply", 300, [](TableSheet& sheet, const TableCase& given) {
        const CellFormula formula = CellFormula::of(given.arguments.at(0));
        storeAll(sheet, changesOf(sheet, given.block(1),
                                  [&](GridCell, float value) { return formula.applied(value); }));
    });
}

TEST_F(TableOperations, OnNewAxesAreThoseOfTheSecondImplementation) {
    expectSame("rebin", 800, [](TableSheet& sheet, const TableCase& given) {
        const auto headers = [&](std::size_t argument) {
            const std::string& text = given.arguments.at(argument);
            return text == "-" ? std::vector<float>() : headersOf(text);
        };
        store(sheet, rebinned(sheet, {headers(0), headers(1)}));
    });
}

}  // namespace
}  // namespace zentaq
