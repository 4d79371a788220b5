// AutoVE against a second implementation that shares no code with the program, cell by cell.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "base/number_text.h"
#include "base/text.h"
#include "live/calibration_fixture.h"
#include "tables/auto_ve_run.h"
#include "tables/table_model.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

constexpr int autoVeCases = 200;
constexpr int autoVeFirstCell = 912;

std::vector<float> floatsOf(const std::string& text) {
    std::vector<float> numbers;
    std::istringstream in(text);
    for (std::string word; in >> word;) numbers.push_back(static_cast<float>(numberOf(word)));
    return numbers;
}

/// The 256 cells of VE when the samples of a line of auto_ve_oracle.py are through.
std::vector<float> cellsBehind(const std::vector<std::string>& fields) {
    test::Calibration calibration(3);
    Unit& unit = calibration.unit;
    const auto speeds = floatsOf(fields[3]);
    const auto pressures = floatsOf(fields[4]);
    const auto cells = floatsOf(fields[5]);
    unit.SET_TBL_DIMENSIONS("VE", "ROWS", std::stoi(fields[0]));
    unit.SET_TBL_DIMENSIONS("VE", "COLS", std::stoi(fields[1]));
    EXPECT_TRUE(unit.set("EGO_LMT", numberOf(fields[2])));
    const auto setAll = [&](const char* member, const std::vector<float>& values) {
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_TRUE(unit.set(member, plainNumber(values[i]), static_cast<int>(i)));
    };
    setAll("RPMTBL", speeds);
    setAll("MAPTBL", pressures);
    for (std::size_t i = 0; i < cells.size(); ++i)
        unit.AssignDirectIndex(cells[i], autoVeFirstCell + static_cast<int>(i));
    Ecu ecu;
    const LiveValues live;
    PaintMemory paint;
    TableModel model(unit, ecu, live, paint);
    model.Setup_Grid("VE", "VE", false);
    for (std::size_t i = 0; i < pressures.size(); ++i)
        EXPECT_EQ(model.sheet().headers(false)[i], pressures[i]);
    for (std::size_t i = 0; i < speeds.size(); ++i) EXPECT_EQ(model.sheet().headers(true)[i], speeds[i]);
    AutoVeRun run(model.sheet());
    for (const std::string& sample : split(fields[6], ' ')) {
        const auto parts = split(sample, ',');
        run.Auto_VE(static_cast<float>(numberOf(parts[0])), static_cast<float>(numberOf(parts[1])),
                    static_cast<float>(numberOf(parts[2])));
    }
    model.sheet().saveEntireTable();
    std::vector<float> after;
    for (int i = 0; i < 256; ++i) after.push_back(unit.DirectIndex(autoVeFirstCell + i));
    return after;
}

TEST(SecondAutoVe, PassesItsOwnHandWorkedTests) {
    const std::string command =
        "'" ZENTAQ_PYTHON "' -B '" ZENTAQ_SOURCE_DIR "/tests/oracle/test_auto_ve_oracle.py' 2>/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
}

TEST(SecondAutoVe, EndsWithTheSameCellsForRandomTablesAndLogs) {
    const TemporaryFolder folder;
    const std::string told = folder.file("cases");
    const std::string command = "'" ZENTAQ_PYTHON "' -B '" ZENTAQ_SOURCE_DIR
                                "/tests/oracle/auto_ve_oracle.py' --count " +
                                std::to_string(autoVeCases) + " > '" + told + "'";
    ASSERT_EQ(std::system(command.c_str()), 0);
    std::ifstream in(told);
    int cases = 0;
    int moved = 0;
    for (std::string line; std::getline(in, line); ++cases) {
        const auto fields = split(line, ';');
        ASSERT_EQ(fields.size(), 8U);
        const auto ours = cellsBehind(fields);
        const auto theirs = floatsOf(fields[7]);
        const auto before = floatsOf(fields[5]);
        ASSERT_EQ(theirs.size(), ours.size());
        for (std::size_t i = 0; i < ours.size(); ++i) {
            ASSERT_EQ(ours[i], theirs[i]) << "case " << cases << ", cell " << i << ", size " << fields[0]
                                          << " by " << fields[1] << ", limit " << fields[2];
            moved += ours[i] != before[i] ? 1 : 0;
        }
    }
    EXPECT_EQ(cases, autoVeCases);
    // They would agree about nothing as well.
    EXPECT_GT(moved, 1000);
}

}  // namespace
}  // namespace zentaq
