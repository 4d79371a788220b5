// program: a calibration gets into the unit as a whole, and every failure tells what stands in it now.
#include "ctl/link_fixture.h"

namespace zentaq {
namespace {

constexpr const char* failed = "The BIN program operation failed.";
constexpr const char* previousStays = "The previous BIN file is still loaded.";

/// The data bytes of S-records, in their order.
std::string bytesOf(const std::string& records) {
    std::string bytes;
    for (const std::string& line : linesOf(records)) {
        if (!line.starts_with("S1")) continue;
        for (std::size_t i = 8; i < 40; i += 2)
            bytes += static_cast<char>(std::stoi(line.substr(i, 2), nullptr, 16));
    }
    return bytes;
}

TEST_F(ZentaqctlOnLink, ProgramPutsTheImageOfTheFileIntoTheUnit) {
    startUnit("A", {"--memory", memory});
    EXPECT_THAT(
        programFile(),
        Succeeds(
            "ORB A 200001: You have successfully programmed your ORB unit. Please cycle the power on the "
            "unit before continuing.\n",
            ""));
    const std::string image = bytesOf(onFile("image", "--firmware 5.99 -o -").out);
    ASSERT_EQ(image.size(), 147U * 16U);
    EXPECT_EQ(contentOf(memory).substr(0, image.size()), image);
    EXPECT_THAT(onUnit("identify").out, HasSubstr("calibration \"Street\""));
}

TEST_F(ZentaqctlOnLink, ProgramRefusesACutFileWithoutForce) {
    startUnit("A", {"--memory", memory});
    const std::string before = contentOf(memory);
    writeFile(file, contentOf(file).substr(0, 7000));
    expectFailure(onUnit("program", inQuotes(file)), 1, "1081 of its 2828 cells are missing");
    EXPECT_TRUE(contentOf(memory) == before);
}

TEST_F(ZentaqctlOnLink, ProgramTellsOfAnAxisThatDoesNotRise) {
    startUnit("A", {"--memory", memory});
    plant(592 + 14, 9000);
    EXPECT_THAT(programFile(),
                Succeeds(_, HasSubstr(file + ": RPM axis of the tables: 9000 is followed by ")));
}

TEST_F(ZentaqctlOnLink, ProgramLeavesNothingInTheFolderItIsCalledIn) {
    startUnit("A");
    ASSERT_EQ(programFile().exitCode, 0);
    EXPECT_FALSE(fs::exists("ORB.s19"));
    EXPECT_FALSE(fs::exists(folder.file("ORB.s19")));
}

TEST_F(ZentaqctlOnLink, ProgramFollowsTheFirmwareOfTheUnitAndWarnsOfAnOlderOne) {
    startUnit("A", {"--firmware", "ZQA-404099", "--memory", memory});
    EXPECT_THAT(programFile(), Succeeds(_, StartsWith("Warning 1007: Older ORB Unit firmware detected.")));
    const std::string image = bytesOf(onFile("image", "--firmware 4.99 -o -").out);
    ASSERT_EQ(image.size(), 137U * 16U);
    EXPECT_EQ(contentOf(memory).substr(0, image.size()), image);
}

TEST_F(ZentaqctlOnLink, ProgramSaysThatNewerFirmwareIsNotFullySupported) {
    startUnit("A", {"--firmware", "ZQA-406001", "--any-identity"});
    EXPECT_THAT(programFile().error, HasSubstr("This version of firmware is not fully supported"));
}

// The files of the ORB D and the D6 are the same, and say 7.
TEST_F(ZentaqctlOnLink, ProgramPutsAFileOfAnOrbDIntoAD6) {
    fs::copy_file(sample("ORB D Four.ZQ4OD"), file, fs::copy_options::overwrite_existing);
    startUnit("D6", {"--memory", memory});
    EXPECT_THAT(programFile(),
                Succeeds(StartsWith("ORB D6 750001: You have successfully programmed your ORB unit.")));
    const std::string image = bytesOf(onFile("image", "--firmware 5.99 -o -").out);
    EXPECT_EQ(contentOf(memory).substr(0, image.size()), image);
    EXPECT_THAT(onUnit("send", "KNK_MIN 40 --file " + inQuotes(file)),
                Succeeds(HasSubstr("accepted by ORB D6")));
}

TEST_F(ZentaqctlOnLink, ProgramRefusesAUnitOfAnotherKind) {
    startUnit("L", {"--memory", memory});
    ASSERT_EQ(onUnit("identify").exitCode, 0);
    const std::string before = contentOf(memory);
    expectFailure(programFile(), 1, "Error 1006: Incorrect ORB Unit is Connected to the System!");
    EXPECT_EQ(contentOf(memory), before);
}

TEST_F(ZentaqctlOnLink, ProgramAsksNoUnitWhereTheFileIsNoCalibration) {
    writeFile(file, "no calibration");
    expectFailure(programFile(), 1, "is no calibration file");
}

TEST_F(ZentaqctlOnLink, ProgramSendsNothingWhereTheFileMakesNoImage) {
    startUnit("A", {"--memory", memory});
    ASSERT_EQ(onUnit("identify").exitCode, 0);
    const std::string before = contentOf(memory);
    constexpr int revLimiterCell = 44;
    plant(revLimiterCell, 1e9F);
    const Outcome outcome = programFile();
    expectFailure(outcome, 1, "makes no image");
    EXPECT_THAT(outcome.error, HasSubstr("Nothing was sent to the unit."));
    EXPECT_EQ(contentOf(memory), before);
}

class ZentaqctlProgramFault : public ZentaqctlOnLink, public testing::WithParamInterface<Fault> {};

TEST_P(ZentaqctlProgramFault, EndsWithOneAndThePreviousCalibrationStays) {
    startUnit("A", {"--memory", memory, "--fault", GetParam().fault});
    const Outcome outcome = programFile();
    expectFailure(outcome, 1, failed);
    EXPECT_THAT(outcome.error, HasSubstr(previousStays));
    EXPECT_THAT(outcome.error, HasSubstr(GetParam().told));
    EXPECT_EQ(contentOf(memory).find("Street"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, ZentaqctlProgramFault,
    testing::Values(Fault{"refuse@P1", "The unit refused the start of programming."},
                    Fault{"refuse@line#12", "The unit refused line 12 of 148."},
                    Fault{"silence@P1", "The unit did not answer to the start of programming."},
                    Fault{"silence@line#12", "The unit did not answer to line 12 of 148."},
                    Fault{"lose-byte@line#3", "The unit did not answer to line 3 of 148."},
                    Fault{"hang-up@line#5", "The unit did not answer to line 5 of 148."}),
    nameOfRow);

TEST_F(ZentaqctlOnLink, ProgramGoesOnWhereALineIsAnsweredLate) {
    startUnitWith("late=600@line#7");
    EXPECT_EQ(programFile().exitCode, 0);
}

TEST_F(ZentaqctlOnLink, ProgramIsNotDoneWhereTheEndIsNotVerified) {
    startUnitWith("flip-bit@line#148");
    const Outcome outcome = programFile();
    expectFailure(outcome, 1, "The unit took 148 of 148 lines and did not verify the program.");
    EXPECT_THAT(outcome.error, HasSubstr("Which calibration it holds now is not known"));
}

TEST_F(ZentaqctlOnLink, ProgramTellsThatALostLastAnswerLeavesTheStateOpen) {
    startUnit("A", {"--memory", memory, "--fault", "silence@line#148"});
    const Outcome outcome = programFile();
    expectFailure(outcome, 1, "The unit did not answer to the last of 148 lines.");
    EXPECT_THAT(outcome.error, Not(HasSubstr(previousStays)));
    EXPECT_NE(contentOf(memory).find("Street"), std::string::npos) << "this unit did take it";
}

TEST_F(ZentaqctlOnLink, ProgramShowsItsProgressOnATerminal) {
    startUnit("A");
    OnTerminal terminal({"program", "--port", port, file}, folder.file("out"));
    EXPECT_THAT(terminal.until("50%"), HasSubstr("Programming ORB... "));
    EXPECT_EQ(terminal.program().wait(), 0);
}

TEST_F(ZentaqctlOnLink, CtrlCEndsAProgramBetweenTwoLinesAndTellsWhatTheUnitHolds) {
    startUnit("A", {"--memory", memory});
    OnTerminal terminal({"program", "--port", port, file}, folder.file("out"));
    terminal.until("10%");
    terminal.program().signal(SIGINT);
    const std::string told = terminal.until("before continuing.");
    EXPECT_EQ(terminal.program().wait(), 128 + SIGINT);
    EXPECT_THAT(told, HasSubstr("Interrupted after "));
    EXPECT_THAT(told, HasSubstr(" of 148 lines. The previous calibration is still in the unit."));
    EXPECT_EQ(contentOf(folder.file("out")), "");
    EXPECT_EQ(contentOf(memory).find("Street"), std::string::npos);
}

}  // namespace
}  // namespace zentaq
