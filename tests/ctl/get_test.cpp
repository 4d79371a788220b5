// Values, curves and tables of a file.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

TEST_F(Zentaqctl, GetShowsValuesCurvesAndTexts) {
    expectAnswers("get", {{"REV_Limiter", "7000\n"},
                          {"ISRPM 1", "1150\n"},
                          {"ISRPM --index 1", "1150\n"},
                          {"Get_VE 16", "-26\n"},
                          {"ISRPM", "1500 1150 850\n"},
                          {"BiName", "Street 2.0 Four\n"},
                          {"MAPUnits", "kPa\n"},
                          {"FW_Release", "5\n"},
                          {"FW_Build", "99\n"},
                          {"NOTES_TEXT", StartsWith("Sample: 2.0 liter four")}});
    EXPECT_EQ(onFile("get", "ISRPM 1 --index 1").exitCode, 2);
}

TEST_F(Zentaqctl, GetShowsATableAsItsRows) {
    const std::string out = onFile("get", "ADV").out;
    EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 16);
    EXPECT_THAT(out, StartsWith("12.5 15.5 21.5 28 33 36 38 39.5 41.5 42.5 43 43 43.5 43.5 43.5 43.5\n"));
}

TEST_F(Zentaqctl, GetAnswersInJson) {
    expectAnswers("get", {{"REV_Limiter --json", "{\"member\":\"REV_Limiter\",\"value\":7000}\n"},
                          {"ISRPM 1 --json", "{\"member\":\"ISRPM\",\"index\":1,\"value\":1150}\n"},
                          {"ISRPM --json", "{\"member\":\"ISRPM\",\"values\":[1500,1150,850]}\n"},
                          {"MAPUnits --json", "{\"member\":\"MAPUnits\",\"value\":\"kPa\"}\n"}});
    EXPECT_EQ(fromJson(onFile("get", "VE --json").out, "len(d[\"values\"])"), "256");
}

TEST_F(Zentaqctl, GetShowsWhatIsNoNumberAsTextInJson) {
    plant(34, NAN);
    plant(35, INFINITY);
    EXPECT_EQ(onFile("get", "KNK_MIN").out, "NaN\n");
    EXPECT_EQ(fromJson(onFile("get", "KNK_MIN --json").out, "d[\"value\"]"), "NaN");
    EXPECT_EQ(fromJson(onFile("get", "KNK_ATK --json").out, "d[\"value\"]"), "Infinity");
}

TEST_F(Zentaqctl, GetShowsControlBitsAndBytes) {
    plant(1, 0x85);
    expectAnswers("get", {{"ControlByte2", "133\n"},
                          {"Control2", "1 0 1 0 0 0 0 1\n"},
                          {"Get_Control2 7", "1\n"},
                          {"opt_TDCParam2", "1\n"}});  // bit 2
}

TEST_F(Zentaqctl, GetShowsInputsAndOutputs) {
    plant(336 + 9 * 3, 6);  // pin 3: shift light
    plant(336 + 9 * 3 + 1, 6500);
    expectAnswers("get", {{"GPIO_Func 3", "6\n"}, {"GPIO_Param 24", "6500\n"}});
    const auto pins = linesOf(onFile("get", "GPIO_Param").out);
    ASSERT_EQ(pins.size(), 8U);
    EXPECT_EQ(pins[3], "6500 0 0 0 0 0 0 0");
    EXPECT_EQ(onFile("get", "GPIO_Func 8").exitCode, 1);
    EXPECT_EQ(run("get " + inQuotes(sample("ORB C Six.ZQ4OC")) + " GPIO_Func 12").exitCode, 0);
}

TEST_F(Zentaqctl, GetShowsTheShapeOfTables) {
    expectAnswers("get", {{"VE.ROWS", "16\n"},
                          {"GPO1.ROW-AXIS", "BLEND MAP\n"},
                          {"ADV.COL-AXIS", "RPM\n"},
                          {"VE.X-Axis", onFile("get", "RPMTBL").out},
                          {"GPO2.Y-Axis 0", onFile("get", "MAPTBL 0").out}});
    EXPECT_EQ(linesOf(onFile("get", "GPO1").out).size(), 16U);
}

TEST_F(Zentaqctl, AMemberOfNearlyTheNameIsSuggested) {
    expectRefusals("get", {{"KNOCK", "ORB A has no member KNOCK"},
                           {"KNK_MN", "ORB A has no member KNK_MN; did you mean KNK_MIN?"},
                           {"knk_min", "ORB A has no member knk_min; did you mean KNK_MIN?"},
                           {"Rev_Limit", "ORB A has no member Rev_Limit; did you mean REV_Limiter?"},
                           {"KnockActive", "ORB A has no member KnockActive; did you mean opt_KnockActive?"},
                           {"ax", "ORB A has no member ax"},
                           {std::string(5000, 'x'),
                            "ORB A has no member " + std::string(38, 'x') + " ... " + std::string(37, 'x')}});
    expectRefusals("set", {{"ve 5 --index 3", "ORB A has no member ve; did you mean VE?"}});
}

TEST_F(Zentaqctl, AnElementOutsideAMemberTellsWhichThereAre) {
    expectRefusals("get", {{"ISRPM 3", "Subscript out of range: ISRPM has elements 0 to 2"},
                           {"VE 256", "Subscript out of range: VE has elements 0 to 255"},
                           {"VE -1", "Subscript out of range: VE has elements 0 to 255"},
                           {"KNK_MIN 1", "Subscript out of range: KNK_MIN has one value, element 0"}});
}

}  // namespace
}  // namespace zentaq
