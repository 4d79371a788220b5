#include "calibration/calibration_recipe.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "base/file_reader.h"
#include "refdata/refdata_fixture.h"

namespace zentaq {
namespace {

using refdata::failureOf;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const std::string head =
    "Unit ORB A\n"
    "Engine 4 Cylinder Coil per Plug, Sequential Injection\n"
    "Sensor 1 BAR (10-105 kPa)\n";

std::string parseFailure(const std::string& text) {
    return failureOf<RecipeError>([&] { CalibrationRecipe::parse(text, "a.txt"); });
}

TEST(CalibrationRecipe, ReadsTheHeadTheFiguresAndTheNotes) {
    const auto recipe = CalibrationRecipe::parse(
        "# comment\n" + head + "\nCamshaft race\nREV_Limiter 7200\nscale1 7.4\nNote one\nNote two lines\n",
        "a.txt");
    EXPECT_EQ(recipe.model, "ORB A");
    EXPECT_EQ(recipe.engine, "4 Cylinder Coil per Plug, Sequential Injection");
    EXPECT_EQ(recipe.sensor, "1 BAR (10-105 kPa)");
    EXPECT_TRUE(recipe.figures.raceCam);
    EXPECT_FLOAT_EQ(recipe.figures.revLimit, 7200);
    EXPECT_FLOAT_EQ(recipe.figures.fullScalePulse, 7.4F);
    EXPECT_EQ(recipe.notes, "one\ntwo lines");
    EXPECT_THAT(recipe.values, IsEmpty());
}

TEST(CalibrationRecipe, ReadsValuesElementsRowsAndCurves) {
    const auto recipe = CalibrationRecipe::parse(head +
                                                     "KNK_MIN 45\nISRPM 2 750\nISRPM all 1500 1200\nVE row 3 "
                                                     "1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 -16\n",
                                                 "a.txt");
    ASSERT_EQ(recipe.values.size(), 4U);
    EXPECT_THAT(recipe.values[0].values, ElementsAre("45"));
    EXPECT_EQ(recipe.values[1].firstElement, 2);
    EXPECT_THAT(recipe.values[1].values, ElementsAre("750"));
    EXPECT_THAT(recipe.values[2].values, ElementsAre("1500", "1200"));
    EXPECT_EQ(recipe.values[3].firstElement, 48);
    EXPECT_EQ(recipe.values[3].values.back(), "-16");
    EXPECT_EQ(recipe.values[3].line, 7);
}

TEST(CalibrationRecipe, NamesTheLineThatIsWrong) {
    EXPECT_EQ(parseFailure(head + "VE row 3 1 2 3\n"), "a.txt:4: a row has a number and 16 values");
    EXPECT_EQ(parseFailure(head + "\nVE 1 2 3\n"), "a.txt:5: say row or all before more than one value");
    EXPECT_EQ(parseFailure(head + "KNK_MIN\n"), "a.txt:4: KNK_MIN has no value");
    EXPECT_EQ(parseFailure(head + "VE 256 1\n"), "a.txt:4: 256 is no index");
    EXPECT_EQ(parseFailure(head + "VE x 1\n"), "a.txt:4: x is no number");
    EXPECT_EQ(parseFailure(head + "Camshaft sport\n"), "a.txt:4: Camshaft is street or race");
    EXPECT_EQ(parseFailure(head + "ISRPM all\n"), "a.txt:4: ISRPM has no value");
}

TEST(CalibrationRecipe, MustNameUnitEngineAndSensor) {
    EXPECT_THAT(parseFailure("Unit ORB A\n"), HasSubstr("must be named"));
}

class MadeCalibration : public refdata::ReferenceDatabase {
 protected:
    Database database = open();

    std::unique_ptr<QuietCalibration> make(const std::string& text) {
        return makeCalibration(CalibrationRecipe::parse(text, "a.txt"), database);
    }
    std::string makeFailure(const std::string& text) {
        return failureOf<RecipeError>([&] { make(text); });
    }
};

TEST_F(MadeCalibration, HoldsTheDefaultsAndWhatTheTextChanges) {
    const auto made = make(head + "KNK_MIN 45\nVE 17 -12.5\nNote hello\n");
    EXPECT_EQ(made->unit.get("KNK_MIN"), 45);
    EXPECT_FLOAT_EQ(made->unit.get("VE", 17), -12.5F);
    EXPECT_EQ(made->unit.get("VE", 16), -26);  // 22 kPa: -27 at 20 kPa, -25 at 26 kPa
    EXPECT_EQ(made->unit.NOTES_TEXT(), "hello");
}

TEST_F(MadeCalibration, StopsAtARefusedValueWithItsLine) {
    EXPECT_EQ(makeFailure(head + "KNK_MIN 45\nKNK_MIN 101\n"),
              "a.txt:5: KNK_MIN: Warning 1001: Data Input Error: (2 to 100 units) - Invalid Entry.");
    EXPECT_THAT(makeFailure(head + "KNOCK 1\n"), StartsWith("a.txt:4: KNOCK: ORB A has no member"));
    EXPECT_THAT(makeFailure(head + "ISRPM all 600 700 800 900\n"), StartsWith("a.txt:4: ISRPM: "));
}

TEST_F(MadeCalibration, StopsAtANameThatTheDatabaseLacks) {
    EXPECT_THAT(makeFailure("Unit ORB A\nEngine Steam\nSensor 1 BAR (10-105 kPa)\n"),
                HasSubstr("there is no engine Steam"));
    EXPECT_THAT(makeFailure("Unit ORB Z\nEngine Steam\nSensor 1 BAR (10-105 kPa)\n"),
                HasSubstr("there is no unit ORB Z"));
}

/// The samples that the build makes, one test for all of them each.
class Samples : public MadeCalibration, public ::testing::WithParamInterface<const char*> {
 protected:
    std::unique_ptr<QuietCalibration> sample() {
        const std::string file = std::string(ZENTAQ_SOURCE_DIR "/data/samples/") + GetParam() + ".txt";
        return makeCalibration(CalibrationRecipe::parse(readFile(file, limits::calibrationText), file),
                               database);
    }
};

/// Half a step of the decimals in which a pressure reads back.
float readingError(Unit& unit, const Parameter& row) {
    return row.unit == "MAP" ? static_cast<float>(0.5 * std::pow(10.0, -unit.MAPPrecision())) : 0;
}

TEST_P(Samples, HoldEveryCellWithinItsRange) {
    const auto made = sample();
    Unit& unit = made->unit;
    for (const Parameter& row : unit.kind().parameters) {
        for (int i = 0; i < row.count; ++i) {
            const Limits limits = unit.limits(row.name, i);
            const float value = unit.read(row, i);
            const bool none = value == 0 && (row.name == "MAP_Max" || row.name == "SCALE2");
            if (limits.unlimited() || none) continue;
            const float slack = readingError(unit, row);
            EXPECT_GE(value, limits.minimum - slack) << row.name << ' ' << i;
            EXPECT_LE(value, limits.maximum + slack) << row.name << ' ' << i;
        }
    }
}

TEST_P(Samples, HaveAscendingAxesAndTheSizeOf16By16) {
    const auto made = sample();
    Unit& unit = made->unit;
    for (const char* axis : {"RPMTBL", "MAPTBL"}) {
        for (int i = 1; i < 16; ++i) EXPECT_GT(unit.get(axis, i), unit.get(axis, i - 1)) << axis << ' ' << i;
    }
    for (const char* table : {"ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"}) {
        EXPECT_EQ(unit.GET_TBL_DIMENSIONS(table, "ROWS"), 16) << table;
        EXPECT_EQ(unit.GET_TBL_DIMENSIONS(table, "COLS"), 16) << table;
    }
}

TEST_P(Samples, BecomeAnImageOfWholeBytes) {
    const auto made = sample();
    made->unit.ConvertData();
    int index = 0;
    for (const float byte : made->unit.ImageData()) {
        EXPECT_GE(byte, 0) << index;
        EXPECT_LE(byte, 255) << index;
        ++index;
    }
}

TEST_P(Samples, CanStartAnEngine) {
    const auto made = sample();
    Unit& unit = made->unit;
    EXPECT_EQ(unit.FW_Release(), unit.kind().expected.release);
    EXPECT_EQ(unit.FW_Build(), 99);
    EXPECT_GT(unit.get("CYL_Number"), 0);
    if (unit.has("scale1")) {
        EXPECT_GT(unit.get("INJTBL", 0), 0);
        EXPECT_GT(unit.get("SE0"), 0);  // fuel while cranking
        EXPECT_GE(unit.get("FPT"), 1);  // the pump primes
        // The pulse at full pressure fits into an engine cycle at the rev limit: 120000 / RPM milliseconds.
        EXPECT_LT(unit.get("scale1") + unit.get("INJ_On"), 120000 / unit.get("REV_Limiter"));
    }
    EXPECT_GE(unit.get("Initial_Advance"), 5);  // and the spark is early enough to start
    EXPECT_GT(unit.get("RPMTBL", 15), 5000);
    EXPECT_GE(unit.get("ADV", 255), 5);
    EXPECT_LE(unit.get("ADV", 255), 35);
    EXPECT_THAT(unit.NOTES_TEXT(), StartsWith("Sample: "));
}

TEST_P(Samples, NameASensorOfTheList) {
    const auto made = sample();
    const auto row = database.mapSensorByValues(made->unit.get("MAP_Scaler"), made->unit.get("MAP_Offset"));
    ASSERT_TRUE(row);
    EXPECT_EQ(static_cast<float>(row->id), made->unit.get("MAP_ID"));
}

INSTANTIATE_TEST_SUITE_P(All, Samples,
                         ::testing::Values("Street 2.0 Four", "Turbo Four", "Street V8", "ORB L Six",
                                           "ORB C Six", "ORB D Four", "PZK-2 Classic Four"));

TEST_F(MadeCalibration, NotesLeaveTheFuelTrimOfTheEighthCylinderAlone) {
    const auto made = make(head + "Note hello\n");
    EXPECT_EQ(made->unit.get("FuelTrim", 7), 0);
    made->unit.ConvertData();
    EXPECT_EQ(made->unit.ImageData()[511], 50);  // no trim
}

TEST_F(MadeCalibration, TheTurboSampleRetardsUnderBoostAndCutsAboveIt) {
    const std::string file = ZENTAQ_SOURCE_DIR "/data/samples/Turbo Four.txt";
    const auto made =
        makeCalibration(CalibrationRecipe::parse(readFile(file, limits::calibrationText), file), database);
    Unit& unit = made->unit;
    for (int column = 0; column < 16; ++column) {
        for (int row = 6; row < 15; ++row) {
            EXPECT_LE(unit.get("ADV", (row + 1) * 16 + column), unit.get("ADV", row * 16 + column));
        }
    }
    EXPECT_GT(unit.get("MAP_Max"), unit.get("MAPTBL", 15));
    EXPECT_LE(unit.get("MAP_Max"), unit.MAPMax());
}

}  // namespace
}  // namespace zentaq
