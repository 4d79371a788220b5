// zentaqctl engines and sensors: what a new calibration can be made of.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

using ::testing::Contains;

const std::string fourOfOrbA =
    "ORB A\t4 Cylinder Coil per Plug, Sequential Injection\t3\t4\t2\tsequential\t1 to 58";
const std::string twelve =
    "ORB A 6/12\t12 Cylinder Wasted Spark, Paired Injection\t16\t12\t6\tpaired\t1 to 58";

TEST_F(Zentaqctl, EnginesListsThoseOfAllKindsBelowALineOfHeaders) {
    const auto lines = linesOf(run("engines").out);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), "Model\tEngine\tOption\tCylinders\tIgnitions a turn\tInjection\tTooth offset");
    EXPECT_THAT(lines, Contains(fourOfOrbA));
    EXPECT_THAT(lines, Contains(twelve));
    EXPECT_THAT(
        lines,
        Contains("ORB L\t4 Cylinder Coil per Plug, Sequential Injection\t3\t4\t2\tsequential\t1 to 58"));
    EXPECT_THAT(lines, Contains("PZK-2\t4 Cylinder Coil per Plug\t3\t4\t2\tnone\t1 to 58"));
    EXPECT_THAT(lines, Contains(StartsWith("ORB C\t")));
    EXPECT_THAT(lines, Contains(StartsWith("ORB D\t")));
    EXPECT_THAT(lines, Not(Contains(StartsWith("ORB D6\t")))) << "the engines of the ORB D";
}

TEST_F(Zentaqctl, EnginesOfAModelAreThoseOfItsVariant) {
    const auto standard = linesOf(run("engines --unit 'orb a standard'").out);
    EXPECT_THAT(standard, Contains(fourOfOrbA));
    EXPECT_THAT(standard, Not(Contains(twelve)));
    EXPECT_THAT(linesOf(run("engines --unit 'ORB A 6/12'").out), Contains(twelve));
    const auto all = linesOf(run("engines --unit A").out);
    EXPECT_THAT(all, Contains(twelve));
    EXPECT_EQ(std::count(all.begin(), all.end(), fourOfOrbA), 1);
    for (std::size_t i = 1; i < all.size(); ++i) EXPECT_THAT(all[i], StartsWith("ORB A"));
}

TEST_F(Zentaqctl, TheD6HasTheEnginesOfTheOrbD) {
    EXPECT_EQ(linesOf(run("engines --unit D6").out).size(), linesOf(run("engines --unit D").out).size());
    EXPECT_GT(linesOf(run("engines --unit D6").out).size(), 1U);
}

TEST_F(Zentaqctl, EnginesAnswerInJson) {
    const Outcome outcome = run("engines --unit A --json");
    EXPECT_EQ(outcome.exitCode, 0);
    expectOneLine(outcome.out);
    const std::string found = "[e for e in d if e[\"option\"] == 14][0]";
    EXPECT_EQ(fromJson(outcome.out, found + "[\"engine\"]"), "2 Rotor Rotary, Leading and Trailing Plugs");
    EXPECT_EQ(
        fromJson(outcome.out, found + "[\"rotary\"], " + found + "[\"dualPlug\"], " + found + "[\"kind\"]"),
        "(True, True, 3)");
    EXPECT_EQ(fromJson(outcome.out, "[e[\"toothMax\"] for e in d if e[\"option\"] == 4]"), "[30]");
}

TEST_F(Zentaqctl, SensorsAreListedWithTheirLineAndTheirSpan) {
    const auto lines = linesOf(run("sensors").out);
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.front(), "ID\tSensor\tVolts a unit\tVolts at 0\tUnit\tFrom\tTo");
    // 0.54738 / 0.05295 = 10.34; 5.54738 / 0.05295 = 104.77
    EXPECT_THAT(lines, Contains("1\t1 BAR (10-105 kPa)\t0.05295\t-0.54738\tkPa\t10.3\t104.8"));
    // -2.322358 / 0.173058 = -13.42; 2.677642 / 0.173058 = 15.47
    EXPECT_THAT(lines, Contains("14\t2 BAR (-13.4 to 15.5 PSIG)\t0.173058\t2.322358\tPSIG\t-13.4\t15.5"));
}

TEST_F(Zentaqctl, SensorsAnswerInJson) {
    const Outcome outcome = run("sensors --json");
    EXPECT_EQ(outcome.exitCode, 0);
    expectOneLine(outcome.out);
    EXPECT_EQ(fromJson(outcome.out, "d[0][\"id\"], d[0][\"unit\"], d[0][\"from\"]"), "(1, 'kPa', 10.3)");
}

}  // namespace
}  // namespace zentaq
