#include "trace/wire_trace.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>

#include "base/errors.h"
#include "temporary_folder.h"
#include "testing/manual_clock.h"
#include "testing/scripted_port.h"
#include "trace/trace_file.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::StartsWith;

/// A wide frame of an ORB A: head and zeroes, so that its sum is byte 2.
std::vector<std::uint8_t> wideFrame() {
    std::vector<std::uint8_t> bytes{0xFA, 0xA5, 0x55};
    bytes.resize(65);
    bytes.back() = 0x55;
    return bytes;
}

constexpr std::uint8_t orbA[] = {0xFA, 0xA5, 0x55, 0x00, 0x00, 0x00, 0x7B, 0xD0};  // serial 123

class WireTraceTest : public ::testing::Test {
 protected:
    TemporaryFolder folder;
    std::string path = folder.file("line.trace");
    const std::vector<std::uint8_t> frame = wideFrame();
    ManualClock clock;
    WireTrace trace{clock};

    void begin() { trace.start(path); }
    void after(std::int64_t us) { clock.advanceUs(us); }
    void write(std::string_view bytes) { trace.written(bytes, clock.monotonicUs()); }
    void arrive(std::span<const std::uint8_t> bytes) { trace.arrived(bytes, clock.monotonicUs()); }
    void arrive(std::string_view text) {
        arrive(std::span(reinterpret_cast<const std::uint8_t*>(text.data()), text.size()));
    }
    void deliver(std::size_t bytes) { trace.delivered(bytes, clock.monotonicUs()); }
    void answer(std::span<const std::uint8_t> reply) {
        arrive(reply);
        deliver(reply.size());
    }
    void answer(std::string_view text) {
        arrive(text);
        deliver(text.size());
    }
    /// A command and its whole reply.
    template <typename Reply>
    void exchange(std::string_view command, const Reply& reply) {
        write(command);
        answer(reply);
    }
    void identify() { exchange("E", orbA); }
    std::vector<TraceLine> lines() {
        trace.stop();
        return readTrace(path).lines;
    }
    /// Meanings between "the trace begins" and "the trace ends".
    std::vector<std::string> meanings() {
        std::vector<std::string> texts;
        for (const TraceLine& line : lines()) {
            if (!line.text.starts_with("the trace ")) texts.push_back(traceMeaning(line));
        }
        return texts;
    }
};

class RunningTrace : public WireTraceTest {
 protected:
    RunningTrace() { begin(); }
};

/// The trace runs, and an ORB A has been identified.
class TracedUnit : public RunningTrace {
 protected:
    TracedUnit() { identify(); }
};

// ---- The form of a line

TEST(TraceLineForm, HasTimeDirectionCountMeaningAndBytesInColumns) {
    EXPECT_EQ(formatTraceLine({.timeUs = 1'234'567,
                               .direction = TraceDirection::Written,
                               .bytes = "W",
                               .command = "W",
                               .text = "wide frame, 65 bytes expected"}),
              "     1234.567 >    1  W: wide frame, 65 bytes expected" + std::string(28, ' ') + " | 57");
    EXPECT_EQ(formatTraceLine({.timeUs = 7, .problem = "time-out", .command = "W", .text = "no answer"}),
              "        0.007 *       !time-out W: no answer");
}

TEST(TraceLineForm, ComesBackAsItWas) {
    const TraceLine written{.timeUs = 86'400'000'001,
                            .direction = TraceDirection::Received,
                            .bytes = std::string("\x00\xFF|\n", 4),
                            .problem = "wrong-sum",
                            .command = "P2",
                            .text = "odd | text: with marks"};
    const auto back = parseTraceLine(formatTraceLine(written));
    ASSERT_TRUE(back);
    EXPECT_EQ(back->timeUs, written.timeUs);
    EXPECT_EQ(back->direction, written.direction);
    EXPECT_EQ(back->bytes, written.bytes);
    EXPECT_EQ(back->problem, written.problem);
    EXPECT_EQ(back->command, written.command);
    EXPECT_EQ(back->text, written.text);
}

TEST(TraceLineForm, ANoteIsNoCommandWhateverItHolds) {
    const auto note = parseTraceLine("        1.000 *       program: W: 65 | 57");
    ASSERT_TRUE(note);
    EXPECT_EQ(note->command, "");
    EXPECT_EQ(note->text, "program: W: 65 | 57");
    EXPECT_EQ(note->bytes, "");
}

TEST(TraceLineForm, RefusesWhatIsNoLine) {
    for (const char* text : {"", "hello", "1.00 > 1  W: x | 57", "1.000 ? 1  W: x | 57",
                             "1.000 > 2  W: x | 57", "1.000 > 1  W: x | 5", "1.000 > 1  W: x | 5G",
                             "1.000 > 1  W: x", "-1.000 * x", "99999999999999999999.000 * x"}) {
        EXPECT_FALSE(parseTraceLine(text)) << text;
    }
}

// ---- What the lines say

TEST_F(WireTraceTest, TheFirstLinesTellProgramTimeAndPort) {
    trace.opened({2, "/dev/ttyUSB0", "USB adapter", "x"}, 0);
    begin();
    trace.stop();
    const std::string content = TemporaryFolder::read(path);
    EXPECT_THAT(content, StartsWith("Zentaq4 wire trace, format 1\nprogram  " ZENTAQ_VERSION
                                    "\nbegun    1/2/2003 12:34:56\npart     1\n"
                                    "port     2, /dev/ttyUSB0, USB adapter, 38400,N,8,1\ncolumns  "));
    EXPECT_THAT(content, HasSubstr("\n\n        0.000 *       the trace begins\n"));
    EXPECT_THAT(content, EndsWith("        0.000 *       the trace ends\n"));
}

TEST_F(TracedUnit, AnIdentificationTellsSerialAndUnitAndGivesLaterRepliesTheirLength) {
    write("W");
    after(17'400);
    answer(frame);
    EXPECT_THAT(meanings(), ElementsAre("E: identify, 6 bytes expected",
                                        "E: serial 000123, unit A, 8 of 8 bytes, sum right, after 0.0 ms",
                                        "W: wide frame, 65 bytes expected",
                                        "W: 65 of 65 bytes, sum right, after 17.4 ms"));
}

TEST_F(TracedUnit, TheBytesOfAFrameAreComplete) {
    exchange("W", frame);
    const auto all = lines();
    EXPECT_EQ(all.at(4).bytes, std::string(frame.begin(), frame.end()));
}

TEST_F(WireTraceTest, AUnitThatIsLinkedAlreadyNeedsNoIdentification) {
    trace.start(path, 4);
    write("W");
    EXPECT_THAT(meanings(), ElementsAre("W: wide frame, 66 bytes expected"));
}

TEST_F(RunningTrace, WithoutAUnitTheLengthOfAFrameIsNotKnown) {
    write("W");
    EXPECT_THAT(meanings(), ElementsAre("W: wide frame, length of the reply not known yet"));
}

TEST_F(WireTraceTest, AFrameTellsWhetherItIsWholeAndRight) {
    std::vector<std::uint8_t> damaged = frame, tooLong = frame, tooMany = frame;
    damaged[30] = 1;
    tooLong.push_back(7);
    tooMany.insert(tooMany.begin() + 5, 7);  // a byte too many that spoils the sum as well
    struct Row {
        const char* command;
        std::vector<std::uint8_t> reply;
        const char* meaning;
    };
    const Row rows[] = {
        {"W", damaged, "!wrong-sum W: 65 of 65 bytes, sum wrong, after 0.0 ms"},
        {"F", std::vector<std::uint8_t>(35, 9), "F: 35 of 35 bytes, after 0.0 ms"},  // has no sum on an ORB A
        {"W", tooLong, "!surplus W: 66 of 65 bytes, sum right, after 0.0 ms"},
        {"W", tooMany, "!surplus W: 66 of 65 bytes, sum wrong, after 0.0 ms"}};
    for (const Row& row : rows) {
        begin();
        identify();
        exchange(row.command, row.reply);
        EXPECT_EQ(meanings().back(), row.meaning);
    }
}

TEST_F(TracedUnit, AReplyInLumpsNamesThem) {
    write("W");
    after(2'000);
    arrive(std::span(frame).first(62));
    after(16'100);
    arrive(std::span(frame).last(3));
    after(520);
    deliver(65);
    EXPECT_EQ(meanings().back(),
              "W: 65 of 65 bytes, sum right, after 18.6 ms, in 2 lumps 62+3, 16.1 ms apart");
}

// The first identification of a session is asked for as if it had six bytes.
TEST_F(RunningTrace, AnIdentificationThatComesInTwoDeliveriesIsOneAnswer) {
    write("E");
    after(3'000);
    answer(std::span(orbA).first(6));
    after(16'000);
    answer(std::span(orbA).last(2));
    write("W");
    const auto all = lines();
    ASSERT_EQ(all.size(), 5u);
    EXPECT_EQ(
        traceMeaning(all[2]),
        "E: serial 000123, unit A, 8 of 8 bytes, sum right, after 19.0 ms, in 2 lumps 6+2, 16.0 ms apart");
    EXPECT_EQ(hexBytes(all[2].bytes), "FA A5 55 00 00 00 7B D0");
    EXPECT_EQ(all[3].text, "wide frame, 65 bytes expected") << "the unit is known";
}

TEST_F(RunningTrace, AnIdentificationWhoseRestNeverComesIsShort) {
    write("E");
    after(3'000);
    answer(std::span(orbA).first(7));
    after(41'000);
    write("E");
    answer(orbA);
    EXPECT_THAT(meanings(), ElementsAre("E: identify, 6 bytes expected",
                                        "!short E: 7 of 8 bytes, never whole, the last byte after 3.0 ms",
                                        "E: identify, 6 bytes expected",
                                        "E: serial 000123, unit A, 8 of 8 bytes, sum right, after 0.0 ms"));
}

TEST_F(RunningTrace, CheckEngineCodesAreNamed) {
    std::string none = "\xFA\xA5\x55" + std::string(12, '\xFF');
    none += '\x49';  // 0x55 + 12 x 0xFF
    std::string two = none;
    two[3] = '\xFE';   // the lowest bit of the first word is cleared,
    two[14] = '\x7F';  // and the highest of the last one
    two[15] = '\xC8';  // 0x49 - 0x01 - 0x80
    exchange("T", none);
    identify();
    exchange("T", none);
    exchange("T", two);
    const auto all = meanings();
    EXPECT_EQ(all.at(1), "T: no codes, 16 bytes, after 0.0 ms");
    EXPECT_EQ(all.at(5), "T: no codes, 16 of 16 bytes, sum right, after 0.0 ms");
    EXPECT_THAT(all.at(7), StartsWith("T: 2 codes"));
    EXPECT_THAT(all.at(7), EndsWith(", 16 of 16 bytes, sum right, after 0.0 ms"));
}

TEST_F(RunningTrace, AnEarlyUnitIsToldByItsSixBytes) {
    // Octal 1234 is 668: 0x029C.
    constexpr std::uint8_t early[] = {0, 0, 2, 0x9C, 'A', 'X'};
    exchange("E", early);
    EXPECT_EQ(meanings().back(), "E: serial 001234, unit A, must be upgraded, 6 of 6 bytes, after 0.0 ms");
}

TEST_F(RunningTrace, TwoByteAnswersAreSaidInWords) {
    exchange("P2S10411415059", "AX");
    exchange("P2S10411415059", "AR");
    exchange("S", "?!");
    EXPECT_THAT(meanings(),
                ElementsAre("P2: on-the-fly change S10411415059, 2 bytes expected",
                            "P2: accepted (AX), 2 of 2 bytes, after 0.0 ms",
                            "P2: on-the-fly change S10411415059, 2 bytes expected",
                            "!refused P2: refused (AR), 2 of 2 bytes, after 0.0 ms",
                            "S: store on-the-fly changes, 2 bytes expected",
                            "!unclear S: neither accepted nor refused (?!), 2 of 2 bytes, after 0.0 ms"));
}

TEST_F(RunningTrace, LinesOfATransferAreCountedUntilTheUnitHasVerifiedThem) {
    exchange("P1", "AX");
    exchange("S1130000AA\r\n", "AX");
    exchange("S9030000FC\r\n", "PN");
    write("W");
    EXPECT_THAT(meanings(),
                ElementsAre("P1: program a calibration, 2 bytes expected",
                            "P1: accepted (AX), 2 of 2 bytes, after 0.0 ms",
                            "P1: line 1, S1130000AA, 2 bytes expected",
                            "P1: accepted (AX), 2 of 2 bytes, after 0.0 ms",
                            "P1: line 2, S9030000FC, 2 bytes expected",
                            "P1: programming finished and verified (PN), 2 of 2 bytes, after 0.0 ms",
                            "W: wide frame, length of the reply not known yet"));
}

TEST_F(TracedUnit, ALineWithoutAnAnswerIsNamed) {
    exchange("P1", "AX");
    for (int line = 1; line <= 2; ++line) {
        write("S113");
        if (line == 1) answer("AX");
    }
    after(1'001'000);
    trace.linkLost();
    const auto all = meanings();
    EXPECT_EQ(all.at(all.size() - 2), "!time-out P1: line 2, no answer for 1001.0 ms");
    EXPECT_EQ(all.back(), "!link-lost the unit is given up");
}

TEST_F(WireTraceTest, AUnitThatWasThereBeforeIsNamedAtTheBeginning) {
    trace.start(path, 3, false);
    EXPECT_EQ(lines().at(0).text, "the trace begins; the unit on the link is of kind 3, ORB A");
}

TEST_F(RunningTrace, ATransferThatRunsOutOfLinesIsFollowedByCommandsAgain) {
    exchange("P1", "AX");
    exchange("S9030000FC", "AX");
    write("E");
    EXPECT_EQ(meanings().back(), "E: identify, 6 bytes expected");
}

TEST_F(TracedUnit, RecordsOfTheLogAreCountedToItsEnd) {
    std::vector<std::uint8_t> record(33, 0);
    record[0] = 0xFA;
    record[1] = 0xA5;
    exchange("D", record);
    record[3] = record[32] = 83;  // above 82 x 256 rpm
    exchange("D", record);
    const auto all = meanings();
    EXPECT_EQ(all.at(3), "D: record 1, 33 of 33 bytes, sum right, after 0.0 ms");
    EXPECT_EQ(all.at(5), "D: end of the log, 33 of 33 bytes, sum right, after 0.0 ms");
}

TEST_F(RunningTrace, TimingCommandsAreToldByTheirSecondByte) {
    exchange("Z\xFF", "AX");
    write(std::string_view("Z\0", 2));
    const auto all = meanings();
    EXPECT_EQ(all.at(0), "Z: ignition timing to zero, 2 bytes expected");
    EXPECT_EQ(all.at(2), "Z: ignition timing back, 2 bytes expected");
}

// ---- What goes wrong

TEST_F(RunningTrace, ACommandThatIsWrittenOverAnUnansweredOneTellsTheTimeOut) {
    write("E");
    after(1'001'000);
    write("E");
    EXPECT_THAT(meanings(),
                ElementsAre("E: identify, 6 bytes expected", "!time-out E: no answer for 1001.0 ms",
                            "E: identify, 6 bytes expected"));
}

TEST_F(TracedUnit, AFrameThatNeverBecomesWholeIsThereWithItsBytes) {
    write("W");
    after(15'000);
    arrive(std::span(frame).first(62));
    after(986'000);
    write("E");
    const auto all = lines();
    EXPECT_EQ(traceMeaning(all.at(4)), "!short W: 62 of 65 bytes, never whole, the last byte after 15.0 ms");
    EXPECT_EQ(all.at(4).bytes.size(), 62u);
    EXPECT_EQ(all.at(5).command, "E") << "one trouble is told once";
}

TEST_F(TracedUnit, BytesThatNobodyAskedForAreThere) {
    after(3'000);
    arrive("xy");
    after(60'000);
    trace.tend();
    EXPECT_EQ(meanings().back(), "!unasked E: 2 bytes that nobody waited for, 3.0 ms after the command");
}

TEST_F(TracedUnit, BytesThatThePortHeldAreThereAgainInTheReplyTheyPrecede) {
    arrive("x");
    write("S");
    arrive("AX");
    deliver(3);
    const auto all = lines();
    EXPECT_EQ(all.at(5).bytes, "xAX");
    EXPECT_THAT(all.at(5).text, EndsWith("; the first 1 came before"));
}

TEST_F(RunningTrace, BytesThatWereThrownAwayAreThereBeforeTheReply) {
    write("S");
    arrive("xxAX");
    deliver(2);
    const auto all = lines();
    EXPECT_EQ(all.at(2).bytes, "xx");
    EXPECT_EQ(all.at(3).bytes, "AX");
}

TEST_F(TracedUnit, ALostPortAndALostLinkAreTold) {
    write("W");
    after(84'000);
    trace.linkLost();
    trace.linkLost();
    trace.lost({1, "/dev/ttyUSB0", "adapter", ""}, clock.monotonicUs());
    trace.returned({1, "/dev/ttyUSB1", "adapter", ""}, clock.monotonicUs());
    trace.closed(clock.monotonicUs());
    const auto all = meanings();
    EXPECT_THAT(std::vector(all.begin() + 3, all.end()),
                ElementsAre("!time-out W: no answer for 84.0 ms", "!link-lost the unit is given up",
                            "!port-lost the port has vanished: 1, /dev/ttyUSB0, adapter",
                            "the port is back: 1, /dev/ttyUSB1, adapter", "port closed"));
}

TEST_F(TracedUnit, WhatIsUnderWayWhenThePortIsClosedIsNoTrouble) {
    write("W");
    arrive(std::span(frame).first(10));
    after(5'000);
    trace.closed(clock.monotonicUs());
    const auto all = meanings();
    EXPECT_EQ(all.at(3), "W: 10 of 65 bytes, never whole, as it was not waited for");
    EXPECT_EQ(all.at(4), "port closed; W was written 5.0 ms before");
}

TEST_F(RunningTrace, AReplyThatWasUnderWayAtTheBeginningIsNoTrouble) {
    answer("AX");
    EXPECT_THAT(meanings(), ElementsAre("?: 2 bytes that were under way when the trace began"));
}

TEST_F(RunningTrace, NotesAreTheProgramsAndStayOnOneLine) {
    trace.note("two\nlines\x1B[31m");
    EXPECT_THAT(meanings(), ElementsAre("program: two\\nlines\\x1B[31m"));
}

TEST_F(WireTraceTest, NothingIsWrittenWhileNoTraceRuns) {
    identify();
    trace.note("hello");
    trace.linkLost();
    trace.tend();
    trace.closed(0);
    EXPECT_FALSE(trace.running());
    EXPECT_THAT(folder.names(), IsEmpty());
}

TEST_F(WireTraceTest, OnAPortItSeesWhatTheWireBrings) {
    ScriptedPort port(clock);
    port.watch(trace);
    // Ten bits a byte at 38400 baud are 260 us; the last byte comes a little late.
    const std::string identity(reinterpret_cast<const char*>(orbA), sizeof orbA);
    port.always("E", {.bytes = identity, .delayUs = 300, .byteUs = 260, .splitAt = 7, .pauseUs = 200});
    begin();
    port.open(1);
    port.setReceiveThreshold(6);
    port.write("E");
    port.advanceUs(50'000);
    port.loseDevice();
    port.returnDevice("/dev/ttyUSB7");
    port.unwatch(trace);
    EXPECT_THAT(meanings(),
                ElementsAre("port opened: 1, /dev/ttyUSB0, scripted", "E: identify, 6 bytes expected",
                            // 300 + 7 x 260 + 200 us for the last byte, and 520 us of a quiet line
                            // and no lumps: bytes that come one by one have no pause between them
                            "E: serial 000123, unit A, 8 of 8 bytes, sum right, after 2.8 ms",
                            "!port-lost the port has vanished: 1, /dev/ttyUSB0, scripted",
                            "the port is back: 1, /dev/ttyUSB7, scripted"));
}

// ---- The file

TEST_F(RunningTrace, LinesReachTheFileWithinASecondAndTroubleAtOnce) {
    write("E");
    EXPECT_THAT(TemporaryFolder::read(path), Not(HasSubstr("E: identify")));
    after(999'999);
    trace.tend();
    EXPECT_THAT(TemporaryFolder::read(path), Not(HasSubstr("E: identify")));
    after(1);
    trace.tend();
    EXPECT_THAT(TemporaryFolder::read(path), HasSubstr("E: identify"));
    write("E");
    EXPECT_THAT(TemporaryFolder::read(path), HasSubstr("!time-out"));
}

TEST_F(WireTraceTest, AFileThatIsDeletedEndsTheTraceAndIsToldOnce) {
    std::vector<std::string> told;
    trace.onFailure([&](const std::string& reason) { told.push_back(reason); });
    begin();
    std::filesystem::remove(path);
    for (int i = 0; i < 5; ++i) {
        after(1'001'000);
        trace.tend();
    }
    EXPECT_THAT(told, ElementsAre("Cannot write " + path + ": No such file or directory"));
    EXPECT_FALSE(trace.running());
}

TEST_F(WireTraceTest, AFullFileLosesItsOlderHalfOnly) {
    WireTrace small(clock, 20'000);
    small.start(path);
    for (int i = 0; i < 1000; ++i) {
        clock.advanceUs(1000);
        small.note("note " + std::to_string(i));
    }
    small.stop();
    EXPECT_LE(std::filesystem::file_size(path), 10'000u);
    EXPECT_LE(std::filesystem::file_size(path + ".old"), 10'000u);
    const TraceFile read = readTrace(path);
    EXPECT_GT(read.part, 2);
    ASSERT_GT(read.lines.size(), 200u);
    // Of the notes the last ones, without a gap.
    const std::size_t notes = read.lines.size() - 1;
    for (std::size_t i = 0; i < notes; ++i) {
        EXPECT_EQ(read.lines[i].text, "program: note " + std::to_string(1000 - notes + i));
    }
    EXPECT_THAT(folder.names(), testing::UnorderedElementsAre("line.trace", "line.trace.old"));
}

TEST_F(RunningTrace, TheTraceOfTheRunBeforeIsKeptAside) {
    trace.note("first run");
    trace.stop();
    begin();
    trace.stop();
    EXPECT_THAT(TemporaryFolder::read(path), Not(HasSubstr("first run")));
    EXPECT_THAT(TemporaryFolder::read(path + ".old"), HasSubstr("first run"));
    EXPECT_EQ(readTrace(path).lines.size(), 2u) << "the former run is no part of this one";
}

TEST_F(WireTraceTest, AFileThatIsNoTraceIsLeftAlone) {
    folder.write("line.trace", "my calibration");
    EXPECT_THROW(begin(), FileError);
    EXPECT_EQ(TemporaryFolder::read(path), "my calibration");
    EXPECT_FALSE(trace.running());
    folder.write("other.trace.old", "my calibration");
    EXPECT_THROW(trace.start(folder.file("other.trace")), FileError);
    EXPECT_EQ(TemporaryFolder::read(folder.file("other.trace.old")), "my calibration");
}

TEST_F(WireTraceTest, WhatIsNoFileIsLeftAloneAndNeverWaitedFor) {
    const auto refusal = [&](const std::string& name) {
        std::string why;
        endOnFailure([&] { trace.start(folder.file(name)); }, [&](const std::string& text) { why = text; });
        return why;
    };
    const auto words = [&](const std::string& name, const std::string& what) {
        return "Cannot write " + folder.file(name) + ": " + what;
    };
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("/dev/null", folder.file("device"));
    EXPECT_EQ(refusal("pipe"), words("pipe", "it is a pipe, not a file"));
    EXPECT_EQ(refusal("device"), words("device", "it is a device, not a file"));
    EXPECT_EQ(refusal(""), words("", "Is a directory"));
    ASSERT_EQ(::mkfifo(folder.file("line.trace.old").c_str(), 0600), 0);
    EXPECT_EQ(refusal("line.trace"), words("line.trace.old", "it is a pipe, not a file"));
    EXPECT_TRUE(std::filesystem::is_fifo(folder.file("line.trace.old")));
    EXPECT_FALSE(trace.running());
}

TEST_F(WireTraceTest, AFileThatCannotBeMadeIsNamed) {
    try {
        trace.start(folder.file("missing/line.trace"));
        FAIL();
    } catch (const FileError& failure) {
        EXPECT_THAT(failure.what(), HasSubstr("missing/line.trace: No such file"));
    }
}

TEST_F(WireTraceTest, ADiskThatFillsUpEndsTheTraceAndIsToldOnce) {
    int told = 0;
    std::string why;
    trace.onFailure([&](const std::string& reason) {
        ++told;
        why = reason;
    });
    begin();
    // No file may grow beyond a kilobyte from here on.
    rlimit before{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &before), 0);
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    rlimit narrow = before;
    narrow.rlim_cur = 1024;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &narrow), 0);
    for (int i = 0; i < 50; ++i) {
        write("E");
        after(1'001'000);
    }
    ::setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(told, 1);
    EXPECT_THAT(why, HasSubstr("line.trace"));
    EXPECT_FALSE(trace.running());
}

}  // namespace
}  // namespace zentaq
