#include "trace/trace_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

const std::string head =
    "Zentaq4 wire trace, format 1\n"
    "program  4.10.2\n"
    "begun    1/2/2003 12:34:56\n"
    "part     1\n"
    "port     none is open\n"
    "columns  whatever\n"
    "\n";

const std::string session =
    "        0.000 *       the trace begins\n"
    "        1.000 *       port opened: 2, /dev/ttyUSB0, adapter\n"
    "       10.000 >    1  W: wide frame, 3 bytes expected | 57\n"
    "       30.000 <    3  W: 3 of 3 bytes, sum right, after 20.0 ms | 01 02 03\n"
    "       40.000 >    1  W: wide frame, 3 bytes expected | 57\n"
    "       70.000 <    3  W: 3 of 3 bytes, sum right, after 30.0 ms, in 2 lumps 2+1, 16.0 ms apart | 01 02 "
    "03\n"
    "       80.000 >    1  W: wide frame, 3 bytes expected | 57\n"
    "       90.000 <    3  !wrong-sum W: 3 of 3 bytes, sum wrong, after 10.0 ms | 01 02 03\n"
    "     2000.000 >    1  S: store, 2 bytes expected | 53\n"
    "     7002.000 *       !time-out S: no answer for 5002.0 ms\n"
    "     7002.000 >    1  E: identify, 6 bytes expected | 45\n"
    "     7010.000 *       !link-lost the unit is given up\n";

TEST(TraceFiles, HeadAndLinesAreRead) {
    const TraceFile trace = parseTrace(head + session);
    EXPECT_EQ(trace.program, "4.10.2");
    EXPECT_EQ(trace.begun, "1/2/2003 12:34:56");
    EXPECT_EQ(trace.port, "2, /dev/ttyUSB0, adapter") << "that was opened later";
    ASSERT_EQ(trace.lines.size(), 12u);
    EXPECT_EQ(trace.lines[3].timeUs, 30'000);
    EXPECT_EQ(trace.lines[3].bytes, "\x01\x02\x03");
    EXPECT_EQ(trace.lines[9].problem, "time-out");
    EXPECT_EQ(trace.lines[9].command, "S");
    EXPECT_EQ(trace.unknownLines, 0);
    EXPECT_FALSE(trace.cut);
}

TEST(TraceFiles, LineEndsOfTheOtherSystemAreTaken) {
    std::string text;
    for (const char each : head + session) text += each == '\n' ? std::string("\r\n") : std::string(1, each);
    const TraceFile trace = parseTrace(text);
    EXPECT_EQ(trace.lines.size(), 12u);
    EXPECT_EQ(trace.unknownLines, 0);
    EXPECT_EQ(trace.begun, "1/2/2003 12:34:56");
}

TEST(TraceFiles, ALastLineThatIsCutIsLeftOutWhereverItIsCut) {
    const std::string last = "       30.000 <    3  W: 3 of 3 bytes | 01 02 03";
    for (std::size_t length = 1; length < last.size(); ++length) {
        if (last.substr(0, length).find_first_not_of(' ') == std::string::npos) continue;
        const TraceFile trace = parseTrace(head + session + last.substr(0, length));
        EXPECT_EQ(trace.lines.size(), 12u) << length;
        EXPECT_TRUE(trace.cut) << length;
        EXPECT_EQ(trace.unknownLines, 0) << length;
    }
    EXPECT_EQ(parseTrace(head + session + last).lines.size(), 13u) << "only its end is missing";
}

TEST(TraceFiles, UnknownLinesAreCounted) {
    const TraceFile trace = parseTrace(head + "hello\n" + session + "see what it did here:\n");
    EXPECT_EQ(trace.unknownLines, 2);
    EXPECT_EQ(trace.lines.size(), 12u);
}

TEST(TraceFiles, AnythingElseIsNoTrace) {
    EXPECT_THROW(parseTrace(""), FileError);
    EXPECT_THROW(parseTrace("12:34:56 Connection with ORB Established."), FileError);
    EXPECT_THROW(parseTrace("Zentaq4 wire trace, format 2\n"), FileError);
}

TEST(TraceFiles, FilesThatCannotBeReadAreNamed) {
    const TemporaryFolder folder;
    const auto why = [&](const std::string& path) {
        std::string text;
        endOnFailure([&] { readTrace(path); }, [&](const std::string& reason) { text = reason; });
        return text;
    };
    EXPECT_EQ(why(folder.file("none")), "Cannot open " + folder.file("none") + ": No such file or directory");
    EXPECT_EQ(why(folder.path().string()), "Cannot read " + folder.path().string() + ": Is a directory");
    EXPECT_EQ(why(folder.write("a.log", "x")), folder.file("a.log") + ": is no wire trace");
}

std::string partNumbered(int part, const std::string& begun, const std::string& line) {
    return "Zentaq4 wire trace, format 1\nbegun    " + begun + "\npart     " + std::to_string(part) + "\n\n" +
           line;
}

TEST(TraceFiles, TheOlderHalfOfTheSameTraceGoesInFront) {
    const TemporaryFolder folder;
    const std::string path = folder.write("t", partNumbered(3, "today", "        2.000 *       new\n"));
    const auto texts = [&] {
        std::vector<std::string> all;
        for (const TraceLine& line : readTrace(path).lines) all.push_back(line.text);
        return all;
    };
    EXPECT_THAT(texts(), ElementsAre("new"));
    folder.write("t.old", partNumbered(2, "today", "        1.000 *       old\n"));
    EXPECT_THAT(texts(), ElementsAre("old", "new"));
    folder.write("t.old", partNumbered(2, "yesterday", "        1.000 *       old\n"));
    EXPECT_THAT(texts(), ElementsAre("new"));
    folder.write("t.old", partNumbered(1, "today", "        1.000 *       old\n"));
    EXPECT_THAT(texts(), ElementsAre("new")) << "a part between them is missing";
}

TEST(TraceLines, AreChosenByCommandAndTime) {
    const TraceFile trace = parseTrace(head + session);
    EXPECT_THAT(chosenLines(trace, {.command = "S"}), ElementsAre(8, 9));
    EXPECT_THAT(chosenLines(trace, {.fromSeconds = 0.08, .toSeconds = 2}), ElementsAre(6, 7, 8));
    EXPECT_EQ(chosenLines(trace, {}).size(), 12u);
}

TEST(TraceLines, OfTroubleComeWithTheLineBefore) {
    const TraceFile trace = parseTrace(head + session);
    EXPECT_THAT(chosenLines(trace, {.problems = true}), ElementsAre(6, 7, 8, 9, 10, 11));
    EXPECT_THAT(chosenLines(trace, {.command = "W", .problems = true}), ElementsAre(6, 7));
    EXPECT_THAT(chosenLines(trace, {.command = "E", .problems = true}), IsEmpty());
}

TEST(TraceLines, OfTroubleComeWithTheCommandThoughTheProgramSpokeBetween) {
    const TraceFile trace = parseTrace(head +
                                       "       10.000 >    1  S: store, 2 bytes expected | 53\n"
                                       "     5012.000 *       program: FAIL!\n"
                                       "     5012.000 *       !time-out S: no answer for 5002.0 ms\n"
                                       "     5012.000 *       !link-lost the unit is given up\n");
    EXPECT_THAT(chosenLines(trace, {.problems = true}), ElementsAre(0, 2, 3));
}

TEST(TraceSummaries, CountCommandsTimesFramesLumpsAndTrouble) {
    const TraceFile trace = parseTrace(head + session);
    const TraceSummary summary = summaryOf(trace, chosenLines(trace, {}));
    EXPECT_EQ(summary.lines, 12);
    EXPECT_DOUBLE_EQ(summary.seconds, 7.01);
    const CommandSummary& wide = summary.commands.at("W");
    EXPECT_EQ(wide.written, 3);
    EXPECT_EQ(wide.replies, 3);
    EXPECT_EQ(wide.lumped, 1);
    EXPECT_EQ(wide.problems, 1);
    EXPECT_THAT(wide.replyMs, ElementsAre(10, 20, 30));
    EXPECT_EQ(summary.commands.at("S").written, 1);
    EXPECT_EQ(summary.commands.at("S").replies, 0);
    EXPECT_EQ(summary.frames, 2) << "a damaged one is none";
    EXPECT_DOUBLE_EQ(summary.framesPerSecond, 25) << "40 ms from the one to the other";
    ASSERT_EQ(summary.problems.size(), 3u);
    EXPECT_EQ(summary.problems.at("link-lost").count, 1);
    EXPECT_THAT(summary.problems.at("link-lost").commands, IsEmpty());
    EXPECT_EQ(summary.problems.at("time-out").firstUs, 7'002'000);
    EXPECT_EQ(summary.problems.at("wrong-sum").rank, 1u) << "the order in which they came";
    EXPECT_EQ(summary.problems.at("time-out").rank, 2u);
    EXPECT_EQ(summary.problems.at("link-lost").rank, 3u);
    EXPECT_THAT(summary.problems.at("wrong-sum").commands, ElementsAre(Pair("W", 1)));
    EXPECT_DOUBLE_EQ(summary.longestPauseMs, 40);
    EXPECT_EQ(summary.pauseEndUs, 70'000);
}

TEST(TraceSummaries, TellWhoSaidWhoItIsOnce) {
    const std::string line =
        "       20.000 <    1  E: serial 201234, unit A, 1 of 1 bytes, sum right, after 5.0 ms | 00\n"
        "       30.000 <    1  B: firmware ZQA-405099, calibration \"2 bytes, of mine\", 1 of 1 bytes, sum "
        "right | 00\n";
    const std::string damaged = "       40.000 <    1  !unclear E: no identification, 1 of 8 bytes | 00\n";
    const TraceFile trace = parseTrace(head + line + damaged + line);
    EXPECT_THAT(
        summaryOf(trace, chosenLines(trace, {})).units,
        ElementsAre("serial 201234, unit A", "firmware ZQA-405099, calibration \"2 bytes, of mine\""));
}

TEST(TraceSummaries, OfTroubleHaveItsFirstAndItsLastTime) {
    const std::string late =
        "       95.000 >    1  W: wide frame | 57\n"
        "      110.000 <    3  !wrong-sum W: 3 of 3 bytes | 01 02 04\n";
    const TraceFile trace = parseTrace(head + session + late);
    const ProblemSummary problem = summaryOf(trace, chosenLines(trace, {})).problems.at("wrong-sum");
    EXPECT_EQ(problem.count, 2);
    EXPECT_EQ(problem.firstUs, 90'000);
    EXPECT_EQ(problem.lastUs, 110'000);
    EXPECT_THAT(problem.commands, ElementsAre(Pair("W", 2)));
}

TEST(TraceSummaries, OfNothingAreEmpty) {
    const TraceSummary summary = summaryOf({}, {});
    EXPECT_EQ(summary.lines, 0);
    EXPECT_THAT(summary.commands, IsEmpty());
    EXPECT_EQ(summary.framesPerSecond, 0);
}

TEST(Quantiles, AreValuesOfTheSample) {
    std::vector<double> values;
    EXPECT_EQ(quantile(values, 0.5), 0);
    for (int i = 1; i <= 20; ++i) values.push_back(i);
    EXPECT_EQ(quantile(values, 0), 1);
    EXPECT_EQ(quantile(values, 0.5), 10);
    EXPECT_EQ(quantile(values, 0.95), 19);
    EXPECT_EQ(quantile(values, 1), 20);
}

}  // namespace
}  // namespace zentaq
