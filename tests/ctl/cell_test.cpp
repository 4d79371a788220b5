// Cells as they stand, shown and changed.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, CellShowsACellAsItStands) {
    expectAnswers("cell",
                  {{"58", "7000\n"}, {"3000", "0\n"}, {"58 --json", "{\"cell\":58,\"value\":7000}\n"}});
}

TEST_F(Zentaqctl, CellShowsWhatIsNoNumberAsTextInJson) {
    plant(58, NAN);
    EXPECT_EQ(onFile("cell", "58").out, "NaN\n");
    EXPECT_EQ(onFile("cell", "58 --json").out, "{\"cell\":58,\"value\":\"NaN\"}\n");
    plant(58, -INFINITY);
    EXPECT_EQ(fromJson(onFile("cell", "58 --json").out, "d[\"value\"]"), "-Infinity");
}

TEST_F(Zentaqctl, CellChangesACellWithoutARangeCheck) {
    EXPECT_EQ(onFile("cell", "34 101.5").exitCode, 0);  // the member refuses above 100
    EXPECT_EQ(cellOf(file, 34), 101.5F);
    EXPECT_EQ(onFile("cell", "34 -7").exitCode, 0);
    EXPECT_EQ(cellOf(file, 34), -7);
}

TEST_F(Zentaqctl, CellWithAnOutputLeavesTheFileAlone) {
    const std::string before = contentOf(file);
    const std::string copy = folder.file("copy.ZQ4OA");
    EXPECT_EQ(onFile("cell", "34 50 -o " + inQuotes(copy)).exitCode, 0);
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(cellOf(copy, 34), 50);
}

TEST_F(Zentaqctl, CellChangesTheControlBytesThatASaveWrites) {
    EXPECT_EQ(onFile("cell", "1 129").exitCode, 0);
    EXPECT_EQ(cellOf(file, 1), 129);
    EXPECT_EQ(onFile("get", "Control2").out, "1 0 0 0 0 0 0 1\n");
    expectRefusals("cell", {{"1 256", "cell: control bytes are whole numbers from 0 to 255"},
                            {"1 1.5", "cell: control bytes are whole numbers from 0 to 255"}});
}

TEST_F(Zentaqctl, CellChangesACharacterOfTheName) {
    EXPECT_EQ(onFile("cell", "560 90").exitCode, 0);
    EXPECT_EQ(cellOf(file, 560), 'Z');
    EXPECT_EQ(cellOf(file, 561), 't');  // of "Street", the name of the file
}

TEST_F(Zentaqctl, CellOfAFunctionGoesTheWayOfGpioFunc) {
    ASSERT_EQ(onFile("set", "GPIO_Func 6 --index 3").exitCode, 0);
    ASSERT_EQ(onFile("set", "GPIO_Param 6500 --index 24").exitCode, 0);
    EXPECT_EQ(onFile("cell", "363 6").exitCode, 0);  // as it is
    EXPECT_EQ(cellOf(file, 364), 6500);
    EXPECT_THAT(
        onFile("cell", "363 12").error,
        StartsWith("cell 363 is the function of pin 3: \"Fuel Trim\" is for inputs, and pin 3 (W21) is "
                   "an output; "));
    EXPECT_EQ(cellOf(file, 363), 6);
    expectRefusals("cell", {{"363 6.5", "cell 363 is the function of pin 3, a whole number"},
                            {"363 -1", "cell 363 is the function of pin 3, a whole number"}});
    EXPECT_THAT(onFile("cell", "363 8"),
                Succeeds(_, "cell 363 is the function of pin 3: the pin's parameters are 0 now\n"));
    EXPECT_EQ(cellOf(file, 363), 8);
    EXPECT_EQ(cellOf(file, 364), 0);
    EXPECT_EQ(onFile("cell", "364 6500").exitCode, 0);  // a parameter as it stands
    EXPECT_EQ(cellOf(file, 364), 6500);
}

TEST_F(Zentaqctl, CellThatAFileDoesNotKeepIsRefused) {
    EXPECT_EQ(onFile("cell", "2827 5").exitCode, 0);
    expectRefused(onFile("cell", "2828 5"), "Subscript out of range: a file of ORB A ends at cell 2827");
}

TEST_F(Zentaqctl, CellTakesNumbersOnly) {
    expectRefusals("cell",
                   {{"34 fast", "cell: fast is no number"},
                    {"34 ''", "cell:  is no number"},
                    {"34 1e39", "cell: the number is too large"},
                    {"34 1,5", "cell: 1,5 has a comma; decimals are written with a point, such as 12.5"}});
}

TEST_F(Zentaqctl, CellOutsideTheCalibrationTellsWhichThereAre) {
    for (const char* index : {"-1", "3001", "-1 5", "3001 5"}) {
        expectRefused(onFile("cell", index), "Subscript out of range: a calibration has the cells 0 to 3000");
    }
}

}  // namespace
}  // namespace zentaq
