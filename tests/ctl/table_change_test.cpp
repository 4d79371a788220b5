// The editor's operations on a table of a file, from the shell.
#include "base/text.h"
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

class TableChange : public Zentaqctl {
 protected:
    Outcome table(const std::string& rest) { return onFile("table", rest); }
    /// A cell of a table as it is shown, from 1,1 at the top left; line or column 0 are headers.
    std::string cell(const std::string& name, std::size_t row, std::size_t column) {
        return split(linesOf(table(name).out).at(row), '\t').at(column);
    }
    void setCells(const std::string& name, const std::vector<std::pair<int, std::string>>& cells) {
        for (const auto& [index, value] : cells)
            ASSERT_EQ(onFile("set", name + " " + value + " --index " + std::to_string(index)).exitCode, 0);
    }
    /// The refusal of a command that left the file as it was.
    std::string refusal(const std::string& rest) {
        const std::string before = contentOf(file);
        const Outcome outcome = table(rest);
        EXPECT_EQ(outcome.exitCode, 1) << rest;
        EXPECT_TRUE(contentOf(file) == before) << rest;
        expectOneLine(outcome.error);
        return outcome.error;
    }
};

// ---- Blocks

TEST_F(TableChange, InterpolatesABlockAndWritesTheFileItself) {
    setCells("VE", {{0, "0"}, {2, "20"}, {32, "30"}, {34, "10"}});
    EXPECT_THAT(table("VE --interpolate 14,1:16,3"), Succeeds(IsEmpty(), IsEmpty()));
    EXPECT_EQ(cell("VE", 15, 1), "15");
    EXPECT_EQ(cell("VE", 16, 2), "10");
    EXPECT_EQ(cell("VE", 15, 2), "15");
    EXPECT_EQ(cell("VE", 14, 2), "20");
}

TEST_F(TableChange, WritesElsewhereAndLeavesTheFile) {
    setCells("VE", {{0, "10"}, {1, "20"}});
    const std::string before = contentOf(file);
    const std::string other = folder.file("other.ZQ4OA");
    EXPECT_EQ(table("VE --smooth 16,1:16,2 --strength 5 -o " + inQuotes(other)).exitCode, 0);
    EXPECT_TRUE(contentOf(file) == before);
    EXPECT_EQ(run("get " + inQuotes(other) + " VE 0").out, "15\n");
    EXPECT_EQ(run("get " + inQuotes(other) + " VE 1").out, "17.5\n");
}

TEST_F(TableChange, TakesTheCornersOfABlockInAnyOrder) {
    setCells("VE", {{0, "10"}, {1, "20"}});
    EXPECT_EQ(table("VE --smooth 16,2:16,1 --strength 1").exitCode, 0);
    EXPECT_EQ(cell("VE", 16, 1), "11.7");
}

TEST_F(TableChange, OfOneCellNothingChanges) {
    const std::string before = contentOf(file);
    EXPECT_THAT(table("VE --interpolate 3,4:3,4"), Succeeds(IsEmpty(), HasSubstr("nothing has changed")));
    EXPECT_THAT(table("VE --smooth 3,4 --strength 2"), Succeeds());
    EXPECT_TRUE(contentOf(file) == before);
}

TEST_F(TableChange, InterpolatedRatiosKeepOneDecimal) {
    setCells("Get_AFR", {{0, "14.25"}, {2, "12.75"}});
    EXPECT_EQ(table("AFR --interpolate 16,1:16,3").exitCode, 0);
    EXPECT_EQ(cell("AFR", 16, 1), "14.2");
    EXPECT_EQ(cell("AFR", 16, 2), "13.5");
    EXPECT_EQ(cell("AFR", 16, 3), "12.8");
}

TEST_F(TableChange, RefusesCellsOutsideTheGridAndOtherStrengths) {
    EXPECT_EQ(refusal("VE --interpolate 1,1:17,2"), "No cells 1,1:17,2: VE has 16 rows and 16 columns\n");
    EXPECT_EQ(refusal("VE --smooth 0,1:2,2 --strength 1"),
              "No cells 0,1:2,2: VE has 16 rows and 16 columns\n");
    EXPECT_EQ(refusal("VE --smooth 1,1:2,2 --strength 0"),
              "Strength 0 is outside 1 (gentlest) to 5 (strongest)\n");
    EXPECT_EQ(refusal("VE --smooth 1,1:2,2 --strength 6"),
              "Strength 6 is outside 1 (gentlest) to 5 (strongest)\n");
}

TEST_F(TableChange, ARefusedCellKeepsItsValueAndTheRestIsWritten) {
    ASSERT_EQ(onFile("cell", "1168 300").exitCode, 0);  // SPW, lowest row, first column
    setCells("SPW", {{1, "20"}, {2, "40"}});
    const Outcome outcome = table("SPW --smooth 16,1:16,3 --strength 1");
    EXPECT_EQ(outcome.exitCode, 1);
    // (300 + 20 + 40 + 4 * 300) / 7; then (222.9 + 20 + 40 + 4 * 20) / 7 = 51.84; (222.9 + 51.8 + 40 + 160)
    // / 7.
    EXPECT_THAT(outcome.error,
                HasSubstr("SPW, cell 16,1: 222.9 is outside (0 to 100%); these keep their values, "
                          "the rest is written\n"));
    EXPECT_EQ(cell("SPW", 16, 1), "300");
    EXPECT_EQ(cell("SPW", 16, 2), "51.8");
    EXPECT_EQ(cell("SPW", 16, 3), "67.8");
}

// ---- Lines

TEST_F(TableChange, AddsAndRemovesColumnsOfAllMainTables) {
    const std::string spark = cell("ADV", 1, 4);
    EXPECT_EQ(table("VE --remove-column 3").exitCode, 0);
    EXPECT_EQ(cell("ADV", 1, 3), spark);
    EXPECT_EQ(split(linesOf(table("ADV").out)[0], '\t').size(), 16U);
    EXPECT_EQ(table("ADV --add-column 2").exitCode, 0);
    EXPECT_EQ(split(linesOf(table("VE").out)[0], '\t').size(), 17U);
}

TEST_F(TableChange, AddsAndRemovesRows) {
    EXPECT_EQ(table("VE --remove-row 16").exitCode, 0);
    EXPECT_EQ(linesOf(table("ADV").out).size(), 16U);
    setCells("VE", {{0, "10"}, {16, "20"}});
    EXPECT_EQ(table("VE --add-row 14").exitCode, 0);
    EXPECT_EQ(cell("VE", 15, 1), "15");
}

TEST_F(TableChange, RefusesLinesThatAreNotThereOrNotPossible) {
    EXPECT_EQ(refusal("VE --add-column 3"), "VE: a table has at most 16 columns\n");
    EXPECT_EQ(refusal("VE --remove-row 17"), "No row 17: VE has 16 rows and 16 columns\n");
    EXPECT_EQ(refusal("VE --remove-column 0"), "No column 0: VE has 16 rows and 16 columns\n");
}

TEST_F(TableChange, AUnitWhoseTablesKeepTheirSizeIsRefused) {
    const std::string spark = copyOf("PZK-2 Classic Four.ZQ4PZK");
    EXPECT_THAT(run("table " + inQuotes(spark) + " ADV --remove-row 3"),
                Fails(1, "ADV: the tables of a PZK-2 keep their 16 rows and 16 columns\n"));
}

// ---- Formulas

TEST_F(TableChange, AppliesAFormulaToTheCellsOfABlock) {
    setCells("VE", {{0, "10"}, {1, "20"}, {16, "-4"}});
    EXPECT_EQ(table("VE --apply '*1.05' --cells 15,1:16,2").exitCode, 0);
    EXPECT_EQ(cell("VE", 16, 1), "10.5");
    EXPECT_EQ(cell("VE", 16, 2), "21");
    EXPECT_EQ(cell("VE", 15, 1), "-4.2");
    EXPECT_EQ(table("VE --apply=-2 --cells 16,1").exitCode, 0);
    EXPECT_EQ(cell("VE", 16, 1), "8.5");
    EXPECT_EQ(table("VE --apply +10% --cells 16,2").exitCode, 0);
    EXPECT_EQ(cell("VE", 16, 2), "23.1");
    EXPECT_EQ(table("VE --apply =12 --cells 16,2").exitCode, 0);
    EXPECT_EQ(cell("VE", 16, 2), "12");
}

TEST_F(TableChange, AppliesAllOrNothing) {
    setCells("VE", {{0, "10"}, {1, "40"}, {2, "10"}});
    EXPECT_EQ(refusal("VE --apply '*2' --cells 16,1:16,3"),
              "VE, cell 16,2: 80 is outside (-50 to 50%); nothing was written\n");
    EXPECT_THAT(refusal("VE --apply 5 --cells 16,1:16,3"), StartsWith("5 begins with no =, +, -, * or /"));
    EXPECT_THAT(refusal("VE --apply '*1,05' --cells 16,1:16,3"), HasSubstr("comma"));
}

// ---- New axes

TEST_F(TableChange, RebinsColumnsAndRows) {
    setCells("RPMTBL", {{0, "500"}, {1, "1000"}});
    setCells("VE", {{0, "10"}, {1, "20"}});
    std::string columns = "750";
    for (int i = 2; i <= 16; ++i) columns += "," + std::to_string(500 * i);
    ASSERT_EQ(table("VE --rebin 500,1000,1500,2000,2500,3000,3500,4000").exitCode, 0);
    EXPECT_EQ(split(linesOf(table("SPW").out)[0], '\t').size(), 9U);
    setCells("VE", {{0, "10"}, {1, "20"}});
    EXPECT_EQ(table("VE --rebin " + columns).exitCode, 0);
    EXPECT_EQ(cell("VE", 0, 1), "750");
    EXPECT_EQ(cell("VE", 16, 1), "15");
}

TEST_F(TableChange, RebinsAllOrNothing) {
    EXPECT_THAT(refusal("VE --rebin 500,1000,900,2000,2500,3000,3500,4000"),
                HasSubstr("must rise: 1000 is followed by 900"));
    EXPECT_EQ(refusal("VE --rebin 500,1000,1500,2000,2500,3000,3500,30000"),
              "VE, column header 8: 30000 is outside (0 to 20000 RPM); nothing was written\n");
    EXPECT_THAT(refusal("VE --rows 20,30"), HasSubstr("2 rows: a table has 8 to 16"));
}

// ---- Views

TEST_F(TableChange, ShowsPulseWidthAndDutyOfEachCell) {
    // 6000 rpm at 100 kPa and more: see the estimates' own tests for the numbers of one cell.
    const auto widths = linesOf(table("VE --view pulsewidth").out);
    const auto values = linesOf(table("VE").out);
    ASSERT_EQ(widths.size(), 17U);
    EXPECT_EQ(widths[0], values[0]);
    EXPECT_EQ(split(widths[16], '\t')[0], split(values[16], '\t')[0]);
    EXPECT_THAT(split(widths[16], '\t')[1], ::testing::MatchesRegex("[0-9]+\\.[0-9][0-9]"));
    const auto duties = linesOf(table("VE --view dutycycle").out);
    EXPECT_THAT(split(duties[16], '\t')[1], ::testing::MatchesRegex("[0-9]+"));
}

TEST_F(TableChange, ShowsAViewInJsonWithTheLowestRowFirst) {
    const std::string json = table("VE --view pulsewidth --json").out;
    const auto lowest = split(linesOf(table("VE --view pulsewidth").out)[16], '\t');
    EXPECT_EQ(fromJson(json, "d[\"view\"], d[\"unit\"], d[\"values\"][0][0]"),
              "('pulsewidth', 'ms', " + lowest[1] + ")");
}

TEST_F(TableChange, ATableWithoutInjectorsHasNoViews) {
    EXPECT_EQ(refusal("ADV --view pulsewidth"),
              "ADV has no pulse widths and duty cycles: VE and SPW have them\n");
}

// ---- Usage

TEST_F(TableChange, TakesOneChangeAtATimeAndKnowsWhatBelongsTogether) {
    for (const char* wrong :
         {"VE --interpolate 1,1:2,2 --add-row 3", "VE --smooth 1,1:2,2", "VE --strength 2", "VE --apply =5",
          "VE --cells 1,1:2,2", "VE --interpolate 1:2", "VE --interpolate a,b:c,d", "VE --view watts",
          "VE --interpolate 1,1:2,2 --json", "VE --rebin ''", "VE --add-column x", "VE -o x"})
        EXPECT_EQ(table(wrong).exitCode, 2) << wrong;
}

TEST_F(TableChange, AFileThatAsksForMoreColumnsThanAreStoredLosesNoChange) {
    setCells("VE", {{240, "10"}, {241, "20"}, {224, "10"}, {225, "20"}});  // the two upper rows
    ASSERT_EQ(onFile("cell", "2293 20").exitCode, 0);
    EXPECT_EQ(table("VE --smooth 1,1:1,2 --strength 5").exitCode, 0);
    EXPECT_EQ(cell("VE", 1, 1), "15");
    EXPECT_EQ(cell("VE", 1, 2), "17.5");
    EXPECT_EQ(cell("VE", 2, 1), "10");
    EXPECT_EQ(refusal("VE --apply =5 --cells 1,17:2,18"),
              "No cells 1,17:2,18: VE has 16 rows and 16 columns\n");
    EXPECT_EQ(refusal("VE --smooth 1,15:16,20 --strength 5"),
              "No cells 1,15:16,20: VE has 16 rows and 16 columns\n");
    EXPECT_EQ(refusal("VE --remove-column 18"), "No column 18: VE has 16 rows and 16 columns\n");
}

TEST_F(TableChange, AListOfHeadersWithoutANumberIsRefused) {
    for (const char* list : {"','", "';'", "' '"})
        EXPECT_THAT(refusal(std::string("VE --rebin ") + list), HasSubstr("list of headers is empty"))
            << list;
}

TEST_F(TableChange, AFileWhoseEndIsMissingIsNotChanged) {
    fs::resize_file(file, fs::file_size(file) - 400);
    EXPECT_THAT(refusal("VE --apply =5 --cells 1,1"), HasSubstr("--force takes it all the same"));
}

}  // namespace
}  // namespace zentaq
