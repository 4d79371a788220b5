// A link without windows on a scripted port in virtual time: who is found, and how commands and transfers
// end.
#include "headless/headless_session.h"

#include <gmock/gmock.h>

#include "base/errors.h"
#include "headless/headless_bench.h"

namespace zentaq {
namespace {

using testing::ElementsAre;

/// With a calibration in hand.
class Headless : public HeadlessBench {
 protected:
    Headless() : HeadlessBench(&calibration) {
        unitHost.applicationFolder(folder.path());
        // Any calibration that converts: some cells are divisors, and the sensor must be one.
        for (int index = 0; index < Unit::cellCount; ++index) calibration.AssignDirectIndex(20, index);
        const CellMap& cells = calibration.kind().cells;
        calibration.AssignDirectIndex(1, cells.legacyBar);
        calibration.AssignDirectIndex(1, cells.mapUnits);
        calibration.AssignDirectIndex(0.05F, cells.mapScaler);
        calibration.AssignDirectIndex(0.5F, cells.mapOffset);
    }
    /// Every line of a program is answered; the n-th by `odd`.
    void answerLines(int number, const std::string& odd, const std::string& end = "PN") {
        port.otherwise([this, number, odd, end](const std::string& line) -> std::optional<ScriptedReply> {
            if (!line.starts_with("S")) return std::nullopt;
            ++lines;
            if (lines == number) return atOnce(odd);
            return atOnce(line.starts_with("S9") ? end : "AX");
        });
    }
    TransferReport program() { return session.transfer(TransferMode::Calibration); }

    TemporaryFolder folder;
    Unit calibration{orbaKind(), unitHost};
    int lines = 0;
};

/// How the start and the lines of a transfer are answered, and how it ends.
struct AnsweredLines {
    const char* start;
    int oddLine;  ///< 0: none
    const char* odd;
    const char* last;
    Ending ending;
    int lines;
    FirmwareLeft left = FirmwareLeft::Former;
};

/// An ORB A has been identified.
class HeadlessUnit : public Headless {
 protected:
    void SetUp() override { identify(); }
};

TEST_F(Headless, APortThatCannotBeOpenedThrows) {
    port.refuse(3);
    EXPECT_THROW(session.open(3), Failure);
    session.open(4);
    EXPECT_EQ(session.link().commPort(), 4);
}

TEST_F(Headless, FindsAUnitAndWaitsUntilItHasToldAll) {
    answerAsOrbA();
    session.open(1);
    EXPECT_EQ(session.findUnit(), Found::Identified);
    EXPECT_THAT(port.written(), ElementsAre("E", "B", "C"));
    EXPECT_EQ(session.linkedUnit().kind().slot, 3);
    EXPECT_EQ(&session.linkedUnit(), &calibration) << "the calibration in hand is of that kind";
    EXPECT_GT(watched, 0);
}

TEST_F(Headless, AsksAgainWhereAReplyThatTellsTheUnitHasAWrongChecksum) {
    answerAsOrbA();
    std::string other = identifyReply(200001);
    other[6] = static_cast<char>(other[6] ^ 0x04);  // the number reads 200005 now
    port.once("E", other);
    std::string garbled = firmwareReply("DEMO", "ZQA-405099");
    garbled[31] = '6';
    port.once("B", garbled);
    session.open(1);
    EXPECT_EQ(session.findUnit(), Found::Identified);
    EXPECT_EQ(session.link().linked().SerialNumber, 200001);
    EXPECT_EQ(session.linkedUnit().FirmWare(), "ZQA-405099");
    EXPECT_TRUE(session.boxes().empty());
}

TEST_F(Headless, RepliesThatAreDamagedEachTimeIdentifyNobody) {
    answerAsOrbA();
    std::string other = identifyReply(200001);
    other[7] = static_cast<char>(other[7] ^ 0x01);
    port.always("E", other);
    session.open(1);
    EXPECT_EQ(session.findUnit(), Found::Damaged);
}

TEST_F(Headless, AsksThreeTimesBeforeNobodyIsThere) {
    session.open(1);
    EXPECT_EQ(session.findUnit(), Found::Nobody);
    EXPECT_THAT(port.written(), ElementsAre("E", "E", "E", "E"));
    EXPECT_EQ(clock.monotonicUs(), HeadlessSession::searchUs);
}

TEST_F(Headless, AUnitWithoutAFirmwareReplyIsUntold) {
    port.always("E", identifyReply(200001));
    session.open(1);
    EXPECT_EQ(session.findUnit(), Found::Untold);
}

TEST_F(Headless, AnEarlyUnitIsFoundByItsOldFormat) {
    port.always("E", bytes({0, 0, 0, 0144, 'A', 'X'}));  // octal 144: unit 144
    session.open(1);
    EXPECT_EQ(session.findUnit(), Found::OldFirmware);
    ASSERT_EQ(session.boxes().size(), 1U);
    EXPECT_EQ(session.boxes()[0].title, "Old ORBA Firmware");
}

TEST_F(Headless, ASearchEndsWhenTheUserWants) {
    session.open(1);
    pass.meanwhile = [this] { stop = pass.count > 100; };
    EXPECT_EQ(session.findUnit(), Found::Stopped);
    EXPECT_LT(clock.monotonicUs(), 200'000);
}

TEST_F(Headless, ACommandEndsAsItIsAnswered) {
    struct Case {
        const char* reply;
        Ending ending;
    };
    identify();
    for (const Case& row :
         {Case{"AX", Ending::Done}, Case{"AR", Ending::Refused}, Case{"A?", Ending::Unclear}}) {
        port.once("P2S10411228048", row.reply);
        EXPECT_EQ(session.command("P2S10411228048"), row.ending) << row.reply;
    }
}

TEST_F(HeadlessUnit, ACommandWithoutAnAnswerIsSilentWhateverCameBefore) {
    port.once("K", "AX");
    EXPECT_EQ(session.command("K"), Ending::Done);
    const std::int64_t start = clock.monotonicUs();
    EXPECT_EQ(session.command("K"), Ending::Silent);
    EXPECT_NEAR(static_cast<double>(clock.monotonicUs() - start), 1'001'000, 5'000);
    EXPECT_EQ(session.link().linked().LinkedUnitKind, 0);
}

TEST_F(HeadlessUnit, AStopLeavesACommandUnanswered) {
    pass.meanwhile = [this] { stop = true; };
    EXPECT_EQ(session.command("S"), Ending::Stopped);
}

TEST_F(HeadlessUnit, CodesAreReadOnlyFromAWholeReply) {
    port.once("T", framed(16, {{3, 255}, {4, 0xFE}}));
    EXPECT_EQ(session.readCodes(), Ending::Done);
    EXPECT_EQ(session.linkedUnit().Get_ECData(1), 0xFE);
    std::string damaged = framed(16, {{3, 255}});
    damaged[5] = 1;
    port.once("T", damaged);
    EXPECT_EQ(session.readCodes(), Ending::Unclear);
    EXPECT_EQ(session.readCodes(), Ending::Silent);
}

// ---- Programming: an image of 147 rows and the end record

TEST_F(Headless, AProgramEndsAsItsLinesAreAnswered) {
    constexpr AnsweredLines rows[] = {{"AX", 0, "", "PN", Ending::Done, 148},
                                      {"AX", 0, "", "AX", Ending::Unclear, 148},  // taken, not verified
                                      {"AX", 9, "AR", "PN", Ending::Refused, 9},
                                      {"AR", 0, "", "PN", Ending::Refused, 0},
                                      {"AX", 9, "", "PN", Ending::Silent, 9}};
    for (const AnsweredLines& row : rows) {
        identify();
        lines = 0;
        port.once("P1", row.start);
        answerLines(row.oddLine, row.odd, row.last);
        const TransferReport end = program();
        EXPECT_EQ(end.ending, row.ending);
        EXPECT_EQ(end.lines, row.lines);
        EXPECT_EQ(end.total, 148);
        EXPECT_EQ(lines, row.lines);
    }
}

TEST_F(HeadlessUnit, AStopWaitsForTheAnswerToTheLineInFlight) {
    port.once("P1", "AX");
    answerLines(9, "AX");
    pass.meanwhile = [this] { stop = lines >= 9; };
    const TransferReport end = program();
    EXPECT_EQ(end.ending, Ending::Stopped);
    EXPECT_EQ(end.lines, 9);
    EXPECT_TRUE(session.link().ResponseReady());
}

TEST_F(HeadlessUnit, AStopAtTheLastLineWaitsForTheVerdict) {
    port.once("P1", "AX");
    answerLines(0, {});
    pass.meanwhile = [this] { stop = lines == 148; };
    EXPECT_EQ(program().ending, Ending::Done);
}

TEST_F(HeadlessUnit, AStopBeforeTheFirstByteSendsNothing) {
    stop = true;
    EXPECT_EQ(program().ending, Ending::Stopped);
    EXPECT_TRUE(port.written().empty());
}

TEST_F(HeadlessUnit, ACalibrationThatMakesNoImageThrows) {
    unitHost.applicationFolder(folder.path("nowhere"));
    EXPECT_THROW(program(), FileError);
    EXPECT_TRUE(port.written().empty());
}

// ---- Firmware

class HeadlessFirmware : public Headless {
 protected:
    void findNobody() {
        session.open(1);
        ASSERT_EQ(session.findUnit(), Found::Nobody);
        port.takeWritten();
    }
    TransferReport upgrade(const std::string& text = "S0a\r\nS1b\r\nS9c\r\n") {
        return session.transfer(TransferMode::Firmware, folder.write("ZQA-505100.nv3", text));
    }
};

TEST_F(HeadlessFirmware, AFirmwareEndsAsItsLinesAreAnswered) {
    constexpr AnsweredLines rows[] = {{"AX", 0, "", "PN", Ending::Done, 3},
                                      {"AX", 0, "", "AX", Ending::Unclear, 3},
                                      {"AR", 0, "", "PN", Ending::Refused, 0, FirmwareLeft::Former},
                                      {"AX", 2, "AR", "PN", Ending::Refused, 2, FirmwareLeft::None},
                                      {"AX", 2, "", "PN", Ending::Silent, 2, FirmwareLeft::None}};
    for (const AnsweredLines& row : rows) {
        identify();
        lines = 0;
        port.always("P3", atOnce(row.start));
        answerLines(row.oddLine, row.odd, row.last);
        const TransferReport end = upgrade();
        EXPECT_EQ(end.ending, row.ending);
        EXPECT_EQ(end.lines, row.lines);
        EXPECT_EQ(end.total, 3) << "the lines of the file, though the link counts one more";
        EXPECT_EQ(end.firmware, row.left);
        const Texts sent{"P3", "S0a", "S1b", "S9c"};
        EXPECT_EQ(port.written(), Texts(sent.begin(), sent.begin() + 1 + row.lines));
    }
}

TEST_F(HeadlessFirmware, AskedAnewItTellsWhoIsThereNow) {
    identify();
    const std::int32_t first = session.link().linked().SerialNumber;
    EXPECT_EQ(session.findAgain(), Found::Identified);
    EXPECT_EQ(session.link().linked().SerialNumber, first);
    EXPECT_THAT(port.written(), testing::Contains("E")) << "not from memory";
    port.always("E", atOnce(identifyReply(static_cast<std::uint32_t>(first) + 1)));
    EXPECT_EQ(session.findAgain(), Found::Identified);
    EXPECT_EQ(session.link().linked().SerialNumber, first + 1);
    port.always("E", atOnce(""));
    EXPECT_EQ(session.findAgain(), Found::Nobody);
}

TEST_F(HeadlessFirmware, AUnitThatAnswersNothingButTheStartIsProgrammed) {
    findNobody();
    port.always("P3", atOnce("AX"));
    port.always("S9c\r\n", atOnce("PN"));
    answerLines(0, "");
    EXPECT_EQ(upgrade().ending, Ending::Done) << "the poll that is still waited for takes nothing with it";
    EXPECT_FALSE(session.link().firmware().lost());
}

TEST_F(HeadlessFirmware, AUnitThatAnswersNothingGetsItsLinesAsItsKindTakesThem) {
    findNobody();
    port.always("P3", atOnce("AX"));
    answerLines(0, "");
    const TransferReport end = session.transferFirmware("ZQA-505100.nv3", "S0a\r\nS9c\r\n", 3);
    EXPECT_EQ(end.ending, Ending::Done);
    EXPECT_EQ(end.total, 2);
    EXPECT_THAT(port.written(), ElementsAre("P3", "S0a", "S9c"));
}

TEST_F(HeadlessFirmware, AUnitWithoutFirmwareThatRefusesTheStartIsNotTakenForASilentOne) {
    findNobody();
    port.always("P3", atOnce("AR"));
    const TransferReport end = upgrade();
    EXPECT_EQ(end.ending, Ending::Refused);
    EXPECT_EQ(end.firmware, FirmwareLeft::Former);
}

TEST_F(HeadlessFirmware, AUnitThatDoesNotAnswerTheStartIsToldAsOneWithoutFirmware) {
    findNobody();
    const TransferReport end = upgrade();
    EXPECT_EQ(end.ending, Ending::Silent);
    EXPECT_EQ(end.firmware, FirmwareLeft::None);
}

TEST_F(HeadlessFirmware, AStopWaitsForTheEndOfTheLastLine) {
    identify();
    port.always("P3", atOnce("AX"));
    answerLines(0, "");
    pass.meanwhile = [this] { stop = lines == 3; };
    EXPECT_EQ(upgrade().ending, Ending::Done);
    lines = 0;
    stop = false;
    pass.meanwhile = [this] { stop = lines == 2; };
    const TransferReport end = upgrade();
    EXPECT_EQ(end.ending, Ending::Stopped);
    EXPECT_EQ(end.lines, 2);
    EXPECT_EQ(end.total, 3);
}

TEST_F(HeadlessFirmware, AnAbsentFileThrowsAndSendsNothing) {
    identify();
    EXPECT_THROW(session.transfer(TransferMode::Firmware, folder.path("absent.nv3")), FileError);
    EXPECT_TRUE(port.written().empty());
}

// ---- Download. A record is 33 bytes; byte 3 above 82 is the end.

class HeadlessDownload : public HeadlessUnit {
 protected:
    void record(int rpmHigh) { port.once("D", framed(33, {{3, rpmHigh}})); }
    TransferReport download() { return session.transfer(TransferMode::Datalog, log); }
    std::string log = folder.path("log.dat");
};

TEST_F(HeadlessDownload, IsDoneAtTheEndMark) {
    for (const int high : {3, 4, 5, 83}) record(high);
    const TransferReport end = download();
    EXPECT_EQ(end.ending, Ending::Done);
    EXPECT_EQ(end.lines, 3);
}

TEST_F(HeadlessDownload, OfOneRecordOrNoneIsRefused) {
    record(83);
    EXPECT_EQ(download().ending, Ending::Refused);
    record(3);
    record(83);
    EXPECT_EQ(download().ending, Ending::Refused);
}

TEST_F(HeadlessDownload, WithoutAnAnswerIsSilent) {
    record(3);
    record(4);
    const TransferReport end = download();
    EXPECT_EQ(end.ending, Ending::Silent);
    EXPECT_EQ(end.lines, 2);
}

TEST_F(HeadlessDownload, StandsStillBehindADamagedRecord) {
    record(3);
    std::string damaged = framed(33, {{3, 4}});
    damaged[0] = 'x';
    port.once("D", damaged);
    EXPECT_EQ(download().ending, Ending::Unclear);
}

TEST_F(HeadlessDownload, TellsThatTheFileCannotBeWritten) {
    log = "/dev/full";
    for (int i = 0; i < 400; ++i) record(3);  // more than a stream keeps to itself
    record(83);
    EXPECT_EQ(download().ending, Ending::NotWritten);
}

TEST_F(HeadlessDownload, TellsThatAShortFileCannotBeWrittenToo) {
    log = "/dev/full";
    for (const int high : {3, 4, 83}) record(high);
    EXPECT_EQ(download().ending, Ending::NotWritten);
}

TEST_F(HeadlessDownload, StopsAtOnce) {
    for (int i = 0; i < 50; ++i) record(3);
    pass.meanwhile = [this] { stop = session.link().transfer().lines() >= 5; };
    const TransferReport end = download();
    EXPECT_EQ(end.ending, Ending::Stopped);
    EXPECT_EQ(end.lines, 5);
}

}  // namespace
}  // namespace zentaq
