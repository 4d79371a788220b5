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
        const Outcome outcome = written(name, shown(name));
        EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
        EXPECT_TRUE(contentOf(file) == before) << name;
    }
}

TEST_F(ZentaqctlTable, WritesACellToItsPlace) {
    Grid grid = shown("VE");
    grid[16][2] = "-12.5";  // row 0, column 1
    grid[1][16] = "7";      // row 15, column 15
    EXPECT_EQ(written("VE", grid).exitCode, 0);
    EXPECT_EQ(cellOf(file, 912 + 1), -12.5F);
    EXPECT_EQ(cellOf(file, 912 + 255), 7);
}

TEST_F(ZentaqctlTable, WritesAnOutputTable) {
    Grid grid = shown("GPO2");
    grid[16][1] = "100";
    EXPECT_EQ(written("GPO2", grid).exitCode, 0);
    EXPECT_EQ(cellOf(file, 1936), 100);
    grid[16][1] = "101";
    EXPECT_THAT(written("GPO2", grid).error, HasSubstr("(0 to 100%) - Invalid Entry."));
    grid[16][1] = "50.5";
    EXPECT_THAT(written("GPO2", grid).error,
                HasSubstr("Warning 1002: Data Input Error: Enter Whole Numbers Only"));
    EXPECT_EQ(cellOf(file, 1936), 100);
}

TEST_F(ZentaqctlTable, WritesAxesThatDiffer) {
    Grid grid = shown("VE");
    grid[0][16] = "9000";
    EXPECT_EQ(written("VE", grid).exitCode, 0);
    EXPECT_EQ(cellOf(file, 592 + 30), 9000);

    grid = shown("GPO1");
    grid[0][16] = "9500";
    EXPECT_EQ(written("GPO1", grid).exitCode, 0);
    EXPECT_EQ(cellOf(file, 2242 + 15), 9500);
    EXPECT_EQ(cellOf(file, 592 + 30), 9000);  // its own axis
}

TEST_F(ZentaqctlTable, RefusesAnAxisThatDoesNotRise) {
    const std::string before = contentOf(file);
    Grid grid = shown("VE");
    grid[0][3] = grid[0][2];
    EXPECT_THAT(
        written("VE", grid),
        Fails(1, input + ", line 1, column 4 (header): Warning 1006: Data Input Error: The value you "
                         "entered must be higher than that of the one to the left. 875 > 875 = FALSE\n"));
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(ZentaqctlTable, RefusesAnAxisValueOutsideItsRange) {
    Grid grid = shown("VE");
    grid[0][16] = "20001";
    EXPECT_EQ(written("VE", grid).error, input +
                                             ", line 1, column 17 (header): Warning 1001: Data Input Error: "
                                             "(0 to 20000 RPM) - Invalid Entry.\n");
    grid = shown("VE");
    grid[1][0] = "5000";  // kPa
    EXPECT_THAT(written("VE", grid).error, StartsWith(input + ", line 2, column 1 (header): Warning 1001: "));
}

TEST_F(ZentaqctlTable, NamesARefusedCellAndWritesNothing) {
    Grid grid = shown("VE");
    grid[16][1] = "10";
    grid[3][5] = "50.5";
    const std::string before = contentOf(file);
    EXPECT_THAT(written("VE", grid),
                Fails(1, input + ", line 4, column 6 (" + grid[3][0] + " kPa, " + grid[0][5] +
                             " RPM): Warning 1001: Data Input Error: (-50 to 50%) - Invalid Entry.\n"));
    EXPECT_EQ(contentOf(file), before);
}

TEST_F(ZentaqctlTable, RefusesCellsThatAreNoNumbers) {
    Grid grid = shown("VE");
    grid[1][1] = "12,5";
    EXPECT_THAT(written("VE", grid).error, HasSubstr("12,5 has a comma; decimals are written with a point"));
    grid[1][1] = "rich";
    EXPECT_THAT(written("VE", grid).error, HasSubstr("Warning 1000: Data Input Error: Non-numeric value"));
    grid[1][1] = "";
    EXPECT_THAT(written("VE", grid).error, HasSubstr("Warning 1005: "));
}

TEST_F(ZentaqctlTable, TakesWhatASpreadsheetWrites) {
    Grid grid = shown("VE");
    grid[16][1] = " 11 ";
    std::string text = "\xEF\xBB\xBF" + textOf(grid) + "\t\t\n\n";
    for (std::size_t at = 0; (at = text.find('\n', at)) != std::string::npos; at += 2)
        text.insert(at, 1, '\r');
    writeFile(input, text);
    const Outcome outcome = onFile("table", "VE --from " + inQuotes(input));
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
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
    Grid grid = shown("VE");
    grid[0][0] = "";
    EXPECT_EQ(written("VE", grid).exitCode, 0);
}

TEST_F(ZentaqctlTable, WithAnOutputLeavesTheFileAlone) {
    const std::string before = contentOf(file);
    const std::string copy = folder.file("copy.ZQ4OA");
    Grid grid = shown("VE");
    grid[16][1] = "11";
    EXPECT_EQ(written("VE", grid, "-o " + inQuotes(copy)).exitCode, 0);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(cellOf(copy, 912), 11);
}

TEST_F(ZentaqctlTable, DoesNotWriteOverItsInput) {
    const Outcome outcome = onFile("table", "VE --from " + inQuotes(file));
    expectRefused(outcome, file + " would be overwritten; name another file");
    EXPECT_EQ(onFile("table", "VE --from " + inQuotes(folder.file("none.tsv"))).exitCode, 1);
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
