// Tables as tab-separated text, shown and written back.
#include "base/text.h"
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

using Grid = std::vector<std::vector<std::string>>;

Grid gridOf(const std::string& text) {
    Grid grid;
    for (const std::string& line : linesOf(text)) grid.push_back(split(line, '\t'));
    return grid;
}

std::string textOf(const Grid& grid) {
    std::string text;
    for (const auto& line : grid) {
        for (std::size_t i = 0; i < line.size(); ++i) text += (i == 0 ? "" : "\t") + line[i];
        text += '\n';
    }
    return text;
}

class ZentaqctlTable : public Zentaqctl {
 protected:
    Grid shown(const std::string& table) { return gridOf(onFile("table", table).out); }
    Outcome written(const std::string& table, const Grid& grid, const std::string& rest = {}) {
        writeFile(input, textOf(grid));
        return onFile("table", table + " --from " + inQuotes(input) + " " + rest);
    }
    struct Edit {
        std::size_t line;
        std::size_t column;
        std::string text;
    };
    /// A table is written as it is shown, but for these cells of the text.
    Outcome edited(const std::string& table, const std::vector<Edit>& edits, const std::string& rest = {}) {
        Grid grid = shown(table);
        for (const Edit& edit : edits) grid[edit.line][edit.column] = edit.text;
        return written(table, grid, rest);
    }
    std::string input = folder.file("in.tsv");
};

TEST_F(ZentaqctlTable, ShowsTheHighestRowOnTop) {
    const Grid grid = shown("ADV");
    ASSERT_EQ(grid.size(), 17U);
    for (const auto& line : grid) EXPECT_EQ(line.size(), 17U);
    EXPECT_EQ(grid[0][0], "ADV");
    EXPECT_EQ(grid[0][1], onFile("get", "RPMTBL 0").out.substr(0, grid[0][1].size()));
    EXPECT_EQ(grid[16][1], "12.5");  // cell 0
    EXPECT_EQ(grid[16][16], "43.5");
    EXPECT_EQ(grid[1][16] + "\n", onFile("get", "ADV 255").out);
    EXPECT_EQ(grid[1][0] + "\n", onFile("get", "MAPTBL 15").out);
    EXPECT_EQ(grid[16][0] + "\n", onFile("get", "MAPTBL 0").out);
}

TEST_F(ZentaqctlTable, ShowsAllSixTables) {
    for (const char* name : {"ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"}) {
        EXPECT_THAT(onFile("table", name), Succeeds(StartsWith(std::string(name) + "\t"))) << name;
    }
}

TEST_F(ZentaqctlTable, ShowsOnlyTheRowsAndColumnsInUse) {
    ASSERT_EQ(onFile("set", "VE.ROWS 8").exitCode, 0);
    ASSERT_EQ(onFile("set", "VE.COLS 10").exitCode, 0);
    const Grid grid = shown("VE");
    ASSERT_EQ(grid.size(), 9U);
    EXPECT_EQ(grid[0].size(), 11U);
    EXPECT_EQ(grid[1][1] + "\n", onFile("get", "VE 112").out);  // row 7 of 16 columns
}

TEST_F(ZentaqctlTable, AnswersInJsonWithTheLowestRowFirst) {
    const std::string json = onFile("table", "ADV --json").out;
    EXPECT_EQ(fromJson(json, "d[\"table\"], d[\"unit\"], d[\"rows\"][\"kind\"], d[\"rows\"][\"unit\"]"),
              "('ADV', 'Degrees', 'BLEND MAP', 'kPa')");
    EXPECT_EQ(fromJson(json, "d[\"columns\"][\"kind\"], d[\"columns\"][\"unit\"]"), "('RPM', 'RPM')");
    EXPECT_EQ(fromJson(json, "d[\"values\"][0][0], len(d[\"values\"]), len(d[\"values\"][15])"),
              "(12.5, 16, 16)");
    EXPECT_EQ(fromJson(json, "d[\"rows\"][\"values\"] == sorted(d[\"rows\"][\"values\"])"), "True");
}

TEST_F(ZentaqctlTable, AKindWithoutATableSaysSo) {
    expectRefused(run("table " + inQuotes(sample("PZK-2 Classic Four.ZQ4PZK")) + " VE"),
                  "PZK-2 has no table VE");
    expectRefused(run("table " + inQuotes(sample("ORB D Four.ZQ4OD")) + " SPW"), "ORB D has no table SPW");
    EXPECT_EQ(run("table " + inQuotes(sample("PZK-2 Classic Four.ZQ4PZK")) + " ADV").exitCode, 0);
}

TEST_F(ZentaqctlTable, WhatItShowsWritesTheSameFileBack) {
    ASSERT_EQ(onFile("set", "KNK_MIN 40").exitCode, 0);  // the file's own name first
    const std::string before = contentOf(file);
    for (const char* name : {"ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"}) {
        EXPECT_THAT(edited(name, {}), Succeeds());
        EXPECT_TRUE(contentOf(file) == before) << name;
    }
}

TEST_F(ZentaqctlTable, WritesACellToItsPlace) {
    // Row 0, column 1 and row 15, column 15.
    EXPECT_EQ(edited("VE", {{16, 2, "-12.5"}, {1, 16, "7"}}).exitCode, 0);
    EXPECT_EQ(cellOf(file, 912 + 1), -12.5F);
    EXPECT_EQ(cellOf(file, 912 + 255), 7);
}

TEST_F(ZentaqctlTable, WritesAnOutputTable) {
    EXPECT_EQ(edited("GPO2", {{16, 1, "100"}}).exitCode, 0);
    EXPECT_EQ(cellOf(file, 1936), 100);
    EXPECT_THAT(edited("GPO2", {{16, 1, "101"}}).error, HasSubstr("(0 to 100%) - Invalid Entry."));
    EXPECT_THAT(edited("GPO2", {{16, 1, "50.5"}}).error,
                HasSubstr("Warning 1002: Data Input Error: Enter Whole Numbers Only"));
    EXPECT_EQ(cellOf(file, 1936), 100);
}

TEST_F(ZentaqctlTable, WritesAxesThatDiffer) {
    EXPECT_EQ(edited("VE", {{0, 16, "9000"}}).exitCode, 0);
    EXPECT_EQ(cellOf(file, 592 + 30), 9000);
    EXPECT_EQ(edited("GPO1", {{0, 16, "9500"}}).exitCode, 0);
    EXPECT_EQ(cellOf(file, 2242 + 15), 9500);
    EXPECT_EQ(cellOf(file, 592 + 30), 9000);  // its own axis
}

TEST_F(ZentaqctlTable, RefusesAnAxisThatDoesNotRise) {
    const std::string before = contentOf(file);
    EXPECT_THAT(
        edited("VE", {{0, 3, "875"}}),
        Fails(1, input + ", line 1, column 4 (header): Warning 1006: Data Input Error: The value you "
                         "entered must be higher than that of the one to the left. 875 > 875 = FALSE\n"));
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(ZentaqctlTable, RefusesAnAxisValueOutsideItsRange) {
    expectRefused(edited("VE", {{0, 16, "20001"}}),
                  input + ", line 1, column 17 (header): " + outOfRange("(0 to 20000 RPM)"));
    EXPECT_THAT(edited("VE", {{1, 0, "5000"}}).error,  // kPa
                StartsWith(input + ", line 2, column 1 (header): Warning 1001: "));
}

TEST_F(ZentaqctlTable, NamesARefusedCellAndWritesNothing) {
    const Grid grid = shown("VE");
    const std::string before = contentOf(file);
    expectRefused(edited("VE", {{16, 1, "10"}, {3, 5, "50.5"}}), input + ", line 4, column 6 (" + grid[3][0] +
                                                                     " kPa, " + grid[0][5] +
                                                                     " RPM): " + outOfRange("(-50 to 50%)"));
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(ZentaqctlTable, RefusesCellsThatAreNoNumbers) {
    for (const auto& [text, why] : {std::pair("12,5", "12,5 has a comma; decimals are written with a point"),
                                    std::pair("rich", "Warning 1000: Data Input Error: Non-numeric value"),
                                    std::pair("", "Warning 1005: ")}) {
        EXPECT_THAT(edited("VE", {{1, 1, text}}).error, HasSubstr(why)) << text;
    }
}

TEST_F(ZentaqctlTable, TakesWhatASpreadsheetWrites) {
    Grid grid = shown("VE");
    grid[16][1] = " 11 ";
    std::string text = "\xEF\xBB\xBF" + textOf(grid) + "\t\t\n\n";
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, 1, '\r');
    writeFile(input, text);
    EXPECT_THAT(onFile("table", "VE --from " + inQuotes(input)), Succeeds());
    EXPECT_EQ(cellOf(file, 912), 11);
}

TEST_F(ZentaqctlTable, TakesTheStandardInput) {
    Grid grid = shown("VE");
    grid[16][1] = "9";
    EXPECT_EQ(onFile("table", "VE --from -", textOf(grid)).exitCode, 0);
    EXPECT_EQ(cellOf(file, 912), 9);
    grid[16][1] = "99";
    EXPECT_THAT(onFile("table", "VE --from -", textOf(grid)).error,
                StartsWith("standard input, line 17, column 2 ("));
}

TEST_F(ZentaqctlTable, RefusesATextOfAnotherShape) {
    const Grid whole = shown("VE");
    Grid grid = whole;
    grid.pop_back();
    expectRefused(written("VE", grid), input + " has 16 lines; VE has a line of headers and 16 rows");
    grid = whole;
    grid[4].pop_back();
    expectRefused(written("VE", grid), input + ", line 5: 16 fields; VE has a header and 16 columns");
    expectRefused(written("VE", {}), input + " has 0 lines; VE has a line of headers and 16 rows");
    expectRefused(written("ADV", whole), input + ", line 1: this is table VE, not ADV");
}

TEST_F(ZentaqctlTable, TakesABlankCorner) {
    EXPECT_EQ(edited("VE", {{0, 0, ""}}).exitCode, 0);
}

TEST_F(ZentaqctlTable, WithAnOutputLeavesTheFileAlone) {
    const std::string before = contentOf(file);
    const std::string copy = folder.file("copy.ZQ4OA");
    EXPECT_EQ(edited("VE", {{16, 1, "11"}}, "-o " + inQuotes(copy)).exitCode, 0);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(cellOf(copy, 912), 11);
}

TEST_F(Zentaqctl, ATableWithOtherSeparatorsIsRefusedWithTheRightOne) {
    const std::string text = folder.file("ve.csv");
    std::string table = onFile("table", "VE").out;
    std::ranges::replace(table, '\t', ';');
    writeFile(text, table);
    expectRefused(onFile("table", "VE --from " + inQuotes(text)),
                  text + ", line 1: 1 field; VE has a header and 16 columns, separated by tabs");
}

}  // namespace
}  // namespace zentaq
