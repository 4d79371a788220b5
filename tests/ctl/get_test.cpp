// Values, curves and tables of a file.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, GetShowsAScalar) {
    EXPECT_EQ(onFile("get", "REV_Limiter").out, "7000\n");
}

TEST_F(Zentaqctl, GetShowsOneElement) {
    EXPECT_EQ(onFile("get", "ISRPM 1").out, "1150\n");
    EXPECT_EQ(onFile("get", "Get_VE 16").out, "-26\n");
}

TEST_F(Zentaqctl, GetShowsACurveOnOneLine) {
    EXPECT_EQ(onFile("get", "ISRPM").out, "1500 1150 850\n");
}

TEST_F(Zentaqctl, GetShowsATableAsItsRows) {
    const std::string out = onFile("get", "ADV").out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 16);
    EXPECT_THAT(out, StartsWith("12.5 15.5 21.5 28 33 36 38 39.5 41.5 42.5 43 43 43.5 43.5 43.5 43.5\n"));
}

TEST_F(Zentaqctl, GetOfAnUnknownMemberFails) {
    EXPECT_THAT(onFile("get", "KNOCK"), Fails(1, "ORB A has no member KNOCK\n"));
}

TEST_F(Zentaqctl, GetOutsideATableFails) {
    for (const char* index : {"256", "-1"}) {
        EXPECT_THAT(onFile("get", std::string("VE ") + index), Fails(1, isOneLine)) << index;
    }
}

TEST_F(Zentaqctl, GetTakesItsIndexAsAnOptionToo) {
    EXPECT_EQ(onFile("get", "ISRPM --index 1").out, "1150\n");
    EXPECT_EQ(onFile("get", "ISRPM 1 --index 1").exitCode, 2);
}

TEST_F(Zentaqctl, GetAnswersInJson) {
    EXPECT_EQ(onFile("get", "REV_Limiter --json").out, "{\"member\":\"REV_Limiter\",\"value\":7000}\n");
    EXPECT_EQ(onFile("get", "ISRPM 1 --json").out, "{\"member\":\"ISRPM\",\"index\":1,\"value\":1150}\n");
    EXPECT_EQ(onFile("get", "ISRPM --json").out, "{\"member\":\"ISRPM\",\"values\":[1500,1150,850]}\n");
    EXPECT_EQ(fromJson(onFile("get", "VE --json").out, "len(d[\"values\"])"), "256");
}

TEST_F(Zentaqctl, GetShowsWhatIsNoNumberAsTextInJson) {
    plant(34, NAN);
    plant(35, INFINITY);
    EXPECT_EQ(onFile("get", "KNK_MIN").out, "NaN\n");
    EXPECT_EQ(fromJson(onFile("get", "KNK_MIN --json").out, "d[\"value\"]"), "NaN");
    EXPECT_EQ(fromJson(onFile("get", "KNK_ATK --json").out, "d[\"value\"]"), "Infinity");
}

TEST_F(Zentaqctl, GetShowsTextsAndFirmware) {
    EXPECT_EQ(onFile("get", "BiName").out, "Street 2.0 Four\n");
    EXPECT_EQ(onFile("get", "MAPUnits").out, "kPa\n");
    EXPECT_EQ(onFile("get", "FW_Release").out, "5\n");
    EXPECT_EQ(onFile("get", "FW_Build").out, "99\n");
    EXPECT_THAT(onFile("get", "NOTES_TEXT").out, StartsWith("Sample: 2.0 liter four"));
    EXPECT_EQ(onFile("get", "MAPUnits --json").out, "{\"member\":\"MAPUnits\",\"value\":\"kPa\"}\n");
}

TEST_F(Zentaqctl, GetShowsControlBitsAndBytes) {
    plant(1, 0x85);
    EXPECT_EQ(onFile("get", "ControlByte2").out, "133\n");
    EXPECT_EQ(onFile("get", "Control2").out, "1 0 1 0 0 0 0 1\n");
    EXPECT_EQ(onFile("get", "Get_Control2 7").out, "1\n");
    EXPECT_EQ(onFile("get", "opt_TDCParam2").out, "1\n");  // bit 2
}

TEST_F(Zentaqctl, GetShowsInputsAndOutputs) {
    plant(336 + 9 * 3, 6);  // pin 3: shift light
    plant(336 + 9 * 3 + 1, 6500);
    EXPECT_EQ(onFile("get", "GPIO_Func 3").out, "6\n");
    EXPECT_EQ(onFile("get", "GPIO_Param 24").out, "6500\n");
    const auto pins = linesOf(onFile("get", "GPIO_Param").out);
    ASSERT_EQ(pins.size(), 8U);
    EXPECT_EQ(pins[3], "6500 0 0 0 0 0 0 0");
    EXPECT_EQ(onFile("get", "GPIO_Func 8").exitCode, 1);
    EXPECT_EQ(run("get " + inQuotes(sample("ORB C Six.ZQ4OC")) + " GPIO_Func 12").exitCode, 0);
}

TEST_F(Zentaqctl, GetShowsTheShapeOfTables) {
    EXPECT_EQ(onFile("get", "VE.ROWS").out, "16\n");
    EXPECT_EQ(onFile("get", "GPO1.ROW-AXIS").out, "BLEND MAP\n");
    EXPECT_EQ(onFile("get", "ADV.COL-AXIS").out, "RPM\n");
    EXPECT_EQ(onFile("get", "VE.X-Axis").out, onFile("get", "RPMTBL").out);
    EXPECT_EQ(onFile("get", "GPO2.Y-Axis 0").out, onFile("get", "MAPTBL 0").out);
    EXPECT_EQ(linesOf(onFile("get", "GPO1").out).size(), 16U);
}

TEST_F(Zentaqctl, AMemberOfNearlyTheNameIsSuggested) {
    expectRefused(onFile("get", "KNK_MN"), "ORB A has no member KNK_MN; did you mean KNK_MIN?");
    expectRefused(onFile("get", "knk_min"), "ORB A has no member knk_min; did you mean KNK_MIN?");
    expectRefused(onFile("set", "ve 5 --index 3"), "ORB A has no member ve; did you mean VE?");
    expectRefused(onFile("get", "Rev_Limit"), "ORB A has no member Rev_Limit; did you mean REV_Limiter?");
    expectRefused(onFile("get", "KnockActive"),
                  "ORB A has no member KnockActive; did you mean opt_KnockActive?");
    expectRefused(onFile("get", "ax"), "ORB A has no member ax");
    expectRefused(onFile("get", std::string(5000, 'x')),
                  "ORB A has no member " + std::string(38, 'x') + " ... " + std::string(37, 'x'));
}

TEST_F(Zentaqctl, AnElementOutsideAMemberTellsWhichThereAre) {
    expectRefused(onFile("get", "ISRPM 3"), "Subscript out of range: ISRPM has elements 0 to 2");
    expectRefused(onFile("get", "KNK_MIN 1"), "Subscript out of range: KNK_MIN has one value, element 0");
}

}  // namespace
}  // namespace zentaq
