// trace, and --trace of the commands of the link.
#include <filesystem>

#include "ctl/link_fixture.h"

namespace zentaq {
namespace {

const std::string head =
    "Zentaq4 wire trace, format 1\nprogram  4.10.2\nbegun    today\npart     1\n"
    "port     1, /dev/ttyS0, 38400,N,8,1\n\n";
const std::string three =
    "       10.000 >    1  S: store on-the-fly changes, 2 bytes expected | 53\n"
    "       30.000 <    2  !refused S: refused (AR), 2 of 2 bytes, after 20.0 ms | 41 52\n"
    "     1500.000 >    1  E: identify, 6 bytes expected | 45\n";

class ZentaqctlTrace : public ZentaqctlOnLink {
 protected:
    std::string trace = folder.file("line.trace");

    Outcome shown(const std::string& rest = {}) { return run("trace " + inQuotes(trace) + " " + rest); }
    void given(const std::string& content) { writeFile(trace, content); }
};

TEST_F(ZentaqctlTrace, ShowsTheLinesAndWhatTheyAddUpTo) {
    given(head + three);
    const Outcome outcome = shown();
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.error, "");
    const auto lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 11u) << outcome.out;
    EXPECT_THAT(lines[0], StartsWith("       10.000 >    1  S: store on-the-fly changes, 2 bytes expected "));
    EXPECT_THAT(lines[1], ::testing::EndsWith(" | 41 52"));
    EXPECT_EQ(lines[3], "");
    EXPECT_EQ(lines[4], "Trace of Zentaq4 4.10.2, begun today; port 1, /dev/ttyS0, 38400,N,8,1");
    EXPECT_EQ(lines[5], "3 lines in 1.5 s");
    EXPECT_EQ(lines[6],
              "Command   written   replies    min ms    median      95 %       max  in lumps  problems");
    EXPECT_EQ(lines[7],
              "E               1         0         -         -         -         -         0         0");
    EXPECT_EQ(lines[8],
              "S               1         1      20.0      20.0      20.0      20.0         0         1");
    EXPECT_EQ(lines[9], "Problems:");
    EXPECT_EQ(lines[10], "  refused        1  at 0.0 s, at S");
}

TEST_F(ZentaqctlTrace, ChoosesByCommandTimeAndTrouble) {
    given(head + three);
    EXPECT_THAT(shown("--command E").out, Not(HasSubstr("refused (AR)")));
    EXPECT_THAT(shown("--from 1").out, Not(HasSubstr("store")));
    EXPECT_THAT(shown("--to 1").out, Not(HasSubstr("identify")));
    const std::string problems = shown("--problems").out;
    EXPECT_THAT(problems, HasSubstr("store on-the-fly changes")) << "the line before";
    EXPECT_THAT(problems, HasSubstr("refused (AR)"));
    EXPECT_THAT(problems, Not(HasSubstr("identify")));
    EXPECT_THAT(shown("--summary").out, StartsWith("Trace of Zentaq4 4.10.2"));
}

TEST_F(ZentaqctlTrace, AnswersInJson) {
    given(head + three);
    const std::string answer = shown("--json").out;
    EXPECT_EQ(fromJson(answer, "[l[\"ms\"] for l in d[\"lines\"]]"), "[10, 30, 1500]");
    EXPECT_EQ(fromJson(answer, "d[\"lines\"][1][\"problem\"],d[\"lines\"][1][\"bytes\"]"),
              "('refused', '41 52')");
    EXPECT_EQ(fromJson(answer, "d[\"summary\"][\"commands\"][\"S\"][\"medianMs\"]"), "20");
    EXPECT_EQ(fromJson(answer, "d[\"summary\"][\"problems\"]"),
              "{'refused': {'count': 1, 'firstMs': 30, 'lastMs': 30, 'commands': {'S': 1}}}");
    EXPECT_EQ(fromJson(shown("--json --summary").out, "\"lines\" in d"), "False");
}

TEST_F(ZentaqctlTrace, TellsWhatItCouldNotRead) {
    given(head + "what is this\n" + three + "     1600.000 >    1  E: ident");
    EXPECT_THAT(shown("--summary"), Succeeds(_,
                                             "1 line was not understood and left out\n"
                                             "The trace ends in the middle of a line, which was left out\n"));
}

TEST_F(ZentaqctlTrace, RefusesWhatIsNoTrace) {
    given("12:34:56 Connection with ORB Established.\n");
    expectFailure(shown(), 1, trace + ": is no wire trace");
    expectFailure(run("trace " + inQuotes(folder.file("none"))), 1, "none: No such file or directory");
    given(head);
    EXPECT_EQ(shown("--command Q").exitCode, 2);
    EXPECT_EQ(shown("--from yesterday").exitCode, 2);
}

TEST_F(ZentaqctlTrace, ACommandOfTheLinkRecordsWhatPassed) {
    startUnit("A", {"--serial", "201234"});
    EXPECT_EQ(onUnit("identify", "--trace " + inQuotes(trace)).exitCode, 0);
    const std::string text = shown().out;
    EXPECT_THAT(text, HasSubstr("E: identify, 6 bytes expected"));
    EXPECT_THAT(text, HasSubstr("E: serial 201234, unit A, 8 of 8 bytes, sum right"));
    EXPECT_THAT(text, HasSubstr("B: firmware ZQA-405099, calibration "));
    EXPECT_THAT(text, HasSubstr("program: ORB :: Firmware: ZQA-405099"));
    EXPECT_THAT(text, HasSubstr("Unit: serial 201234, unit A\n"));
    EXPECT_THAT(text, HasSubstr("*       port closed\n")) << "the port is closed while the trace runs";
    EXPECT_THAT(text, HasSubstr("the trace ends"));
    EXPECT_THAT(text, HasSubstr("port 1, " + port));
    EXPECT_THAT(text, HasSubstr("Problems: none"));
}

TEST_F(ZentaqctlTrace, EveryLineOfAProgrammingIsThere) {
    startUnit("A");
    EXPECT_EQ(onUnit("program", "--trace " + inQuotes(trace) + " " + inQuotes(file)).exitCode, 0);
    const std::string text = shown("--command P1").out;
    EXPECT_THAT(text, HasSubstr("P1: line 1, S"));
    EXPECT_THAT(text, HasSubstr("P1: programming finished and verified (PN)"));
}

TEST_F(ZentaqctlTrace, ASilentUnitLeavesItsTimeOuts) {
    startUnitWith("silence@E");
    EXPECT_EQ(onUnit("identify", "--trace " + inQuotes(trace)).exitCode, 3);
    EXPECT_EQ(fromJson(shown("--json").out, "d[\"summary\"][\"problems\"][\"time-out\"][\"count\"] >= 1"),
              "True");
}

// A file that is opened in the place of a closed stream would get the words for the reader.
TEST_F(ZentaqctlTrace, ClosedStandardStreamsLeaveTheTraceAlone) {
    startUnit("A", {"--serial-format", "old"});
    for (const char* closed : {"<&- 2>&-", "<&- >&- 2>&-", ">&- 2>&-"}) {
        onUnit("identify", "--trace " + inQuotes(trace) + " " + closed);
        EXPECT_THAT(shown("--summary"), Succeeds(HasSubstr("must be upgraded"), "")) << closed;
        std::filesystem::remove(trace);
    }
}

TEST_F(ZentaqctlTrace, ACalibrationIsNotTakenForATrace) {
    startUnit("A");
    const std::string before = contentOf(file);
    expectFailure(onUnit("identify", "--trace " + inQuotes(file)), 1, "no trace; it is left alone");
    EXPECT_EQ(contentOf(file), before);
    EXPECT_EQ(onUnit("identify", "--trace -").exitCode, 2);
}

}  // namespace
}  // namespace zentaq
