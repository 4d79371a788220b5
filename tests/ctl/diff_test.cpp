// What differs between two files.
#include <chrono>

#include "ctl/compare_fixture.h"

namespace zentaq {
namespace {

TEST_F(ZentaqctlVersions, DiffOfEqualFilesIsSilentAndDone) {
    EXPECT_THAT(compare(base, mine), Succeeds(IsEmpty(), IsEmpty()));
    EXPECT_EQ(compare(base, mine, "--json").out, "[]\n");
}

TEST_F(ZentaqctlVersions, DiffTellsEachDifferenceOnALineAndEndsWithOne) {
    change(mine, "KNK_MIN 50");
    change(mine, "VE -5 --index 17");
    const Outcome outcome = compare(base, mine);
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.error, IsEmpty());
    const auto lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 2U) << outcome.out;
    EXPECT_EQ(lines[0], "KNK_MIN: 40 -> 50 units");
    EXPECT_THAT(lines[1], StartsWith("VE[1,1] ("));
    EXPECT_THAT(lines[1], HasSubstr(" -> -5 %"));
}

TEST_F(ZentaqctlVersions, DiffAnswersInJson) {
    change(mine, "KNK_MIN 50");
    const Outcome outcome = compare(base, mine, "--json");
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(fromJson(outcome.out, "len(d), sorted(d[0].items())"),
              "(1, [('element', ''), ('first', '40'), ('in', 'value'), ('information', False), ('member', "
              "'KNK_MIN'), "
              "('place', ''), ('second', '50'), ('unit', 'units')])");
}

TEST_F(ZentaqctlVersions, DiffIsReadyInTheTimeOfAFrameOnTheScreen) {
    change(mine, "KNK_MIN 50");
    constexpr int rounds = 10;
    auto shortest = std::chrono::steady_clock::duration::max();
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        compare(base, mine);
        shortest = std::min(shortest, std::chrono::steady_clock::now() - start);
    }
    // 20 ms is the aim on a release build; a debug build with sanitizers beside other tests gets more.
    EXPECT_LT(std::chrono::duration_cast<std::chrono::milliseconds>(shortest).count(), 200);
}

TEST_F(ZentaqctlVersions, DiffNamesTheFileThatIsNoCalibration) {
    const std::string text = folder.file("text.ZQ4OA");
    writeFile(text, "hello");
    const std::string why = text + ": This is no calibration file: it ends inside its header, after 5 bytes";
    for (const Outcome& outcome : {compare(base, text), compare(text, base)}) {
        expectRefused(outcome, why);
        EXPECT_THAT(outcome.out, IsEmpty());
    }
}

TEST_F(ZentaqctlVersions, DiffTakesOneFileFromTheStandardInput) {
    change(mine, "KNK_MIN 50");
    EXPECT_THAT(run("diff - " + inQuotes(mine), contentOf(base)), Fails(1, _, "KNK_MIN: 40 -> 50 units\n"));
    EXPECT_EQ(run("diff " + inQuotes(base) + " -", contentOf(base)).exitCode, 0);
    expectRefused(run("diff - -", contentOf(base)), "Only one of the files can be the standard input");
    EXPECT_THAT(run("diff - " + inQuotes(mine), "hello").error, StartsWith("standard input: "));
}

TEST_F(ZentaqctlVersions, DiffShowsNamesWithoutTheBlanksThatFillThemUp) {
    change(mine, "BiName 'Wet track'");
    EXPECT_EQ(compare(base, mine).out, "name: \"tune\" -> \"Wet track\"\n");
}

}  // namespace
}  // namespace zentaq
