// send, store, codes, kill: single commands to a unit, and what its answers and silences come to.
#include "ctl/link_fixture.h"

namespace zentaq {
namespace {

TEST_F(ZentaqctlOnLink, SendChangesTheRunningUnit) {
    startUnit("A", {"--running-memory", memory});
    EXPECT_THAT(onUnit("send", "KNK_MIN 50"), Succeeds("S10411228048 accepted by ORB A 200001\n"));
    EXPECT_EQ(static_cast<unsigned char>(contentOf(memory).at(34)), 0x80) << "50 * 2.55 at index 34";
}

TEST_F(ZentaqctlOnLink, SendChangesOneElement) {
    startUnit("A");
    // VE 17 of -5: 45 = 0x2D at 0x1100 + 912 + 17 = 0x14A1; 4 + 0x14 + 0xA1 + 0x2D = 0xE6
    EXPECT_EQ(onUnit("send", "VE -5 --index 17").out, "S10414A12D19 accepted by ORB A 200001\n");
    EXPECT_EQ(fromJson(onUnit("send", "VE -5 --index 17 --json").out,
                       "d[\"member\"], d[\"index\"], d[\"serial\"], d[\"records\"]"),
              "('VE', 17, 200001, ['S10414A12D19'])");
}

TEST_F(ZentaqctlOnLink, SendRefusesWhatNoUnitIsSent) {
    startUnit("A");
    for (const auto& [change, why] :
         {std::pair("BiName x", "BiName is not sent on the fly: it never reaches a unit"),
          std::pair("NOTES_TEXT x", "it never reaches a unit, only the program reads it."),
          std::pair("KNK_MIN 101", "(2 to 100 units) - Invalid Entry."),
          std::pair("KNK_MIN much", "Non-numeric value detected."),
          std::pair("VE 1 --index 256", "VE has elements 0 to 255"),
          std::pair("KNK_MINI 5", "ORB A has no member KNK_MINI; did you mean KNK_MIN?")}) {
        SCOPED_TRACE(change);
        expectFailure(onUnit("send", change), 1, why);
    }
}

TEST_F(ZentaqctlOnLink, SendAsksForTheCalibrationWhereTheBytesDependOnIt) {
    startUnit("A");
    expectFailure(onUnit("send", "EGO_MAP 80"), 1,
                  "EGO_MAP depends on the rest of the calibration; name it with --file.");
    const std::string record = onFile("record", "EGO_MAP 80").out;
    EXPECT_THAT(onUnit("send", "EGO_MAP 80 --file " + inQuotes(file)),
                Succeeds(StartsWith(record.substr(0, record.size() - 1) + " accepted")));
}

TEST_F(ZentaqctlOnLink, SendRefusesAStopThatIsNotAboveTheOneToItsLeft) {
    startUnit("A", {"--running-memory", memory});
    const std::string before = contentOf(memory);
    expectFailure(onUnit("send", "RPMTBL 100 --index 7"), 1,
                  "RPMTBL depends on the rest of the calibration; name it with --file.");
    expectFailure(onUnit("send", "RPMTBL 100 --index 7 --file " + inQuotes(file)), 1,
                  "must be higher than that of the one to the left.");
    EXPECT_TRUE(contentOf(memory) == before);
    EXPECT_THAT(onUnit("send", "RPMTBL 9000 --index 7 --file " + inQuotes(file)),
                Succeeds(_, HasSubstr("RPM axis of the tables: 9000 is followed by ")));
}

TEST_F(ZentaqctlOnLink, SendRefusesACutFileWithoutForce) {
    startUnit("A");
    writeFile(file, contentOf(file).substr(0, 7000));
    expectFailure(onUnit("send", "KNK_MIN 50 --file " + inQuotes(file)), 1,
                  "1081 of its 2828 cells are missing");
    EXPECT_EQ(onUnit("send", "KNK_MIN 50 --force --file " + inQuotes(file)).exitCode, 0);
}

TEST_F(ZentaqctlOnLink, SendRefusesACalibrationOfAnotherKind) {
    startUnit("C");
    expectFailure(onUnit("send", "KNK_MIN 50 --file " + inQuotes(file)), 1, "Error 1006:");
}

TEST_F(ZentaqctlOnLink, SendAsksNoUnitForAMemberThatTheFileLacks) {
    expectFailure(onUnit("send", "Nonsense 5 --file " + inQuotes(file)), 1, "ORB A has no member Nonsense");
}

struct CommandFault {
    const char* command;
    const char* rest;
    const char* fault;
    const char* told;
};

class ZentaqctlCommandFault : public ZentaqctlOnLink, public testing::WithParamInterface<CommandFault> {};

TEST_P(ZentaqctlCommandFault, EndsWithOneLineAndOne) {
    startUnitWith(GetParam().fault);
    expectFailure(onUnit(GetParam().command, GetParam().rest), 1, GetParam().told);
}

INSTANTIATE_TEST_SUITE_P(
    Faults, ZentaqctlCommandFault,
    testing::Values(
        CommandFault{"send", "KNK_MIN 50", "refuse@P2", "The unit refused to take the change S10411228048."},
        CommandFault{"send", "KNK_MIN 50", "silence@P2",
                     "did not answer when it was asked to take the change"},
        CommandFault{"send", "KNK_MIN 50", "flip-bit@P2", "its answer was damaged"},
        CommandFault{"send", "KNK_MIN 50", "hang-up@P2", "did not answer"},
        CommandFault{"store", "", "refuse@S", "The unit refused to save the changes."},
        CommandFault{"store", "", "flip-bit@S", "its answer was damaged"},
        CommandFault{"store", "", "silence@S", "did not answer when it was asked to save the changes"},
        CommandFault{"kill", "", "refuse@K", "The unit refused to stop the engine."},
        CommandFault{"kill", "", "silence@K", "Whether it did is not known."},
        CommandFault{"codes", "--clear", "refuse@A", "The unit refused to clear its codes."},
        CommandFault{"codes", "", "silence@T", "did not answer when it was asked to tell its codes"},
        CommandFault{"codes", "", "wrong-sum@T", "its answer was damaged"}),
    [](const auto& row) {
        return nameOfFault(std::string(row.param.command) + row.param.rest + " " + row.param.fault);
    });

TEST_F(ZentaqctlOnLink, StoreIsToldInTheWordsOfTheConsole) {
    startUnit("A");
    EXPECT_EQ(onUnit("store").out, "ORB A 200001: ONFLY changes saved\n");
}

TEST_F(ZentaqctlOnLink, CodesShowsTheTextsOfTheActiveCodes) {
    startUnit("A", {"--code", "35", "--code", "21"});
    EXPECT_EQ(onUnit("codes").out, "21 - TPS Sensor Failed High\n35 - Knock Response too Long\n");
    EXPECT_EQ(fromJson(onUnit("codes", "--json").out, "d[\"codes\"]"),
              "['21 - TPS Sensor Failed High', '35 - Knock Response too Long']");
}

TEST_F(ZentaqctlOnLink, CodesClearHasTheUnitForgetThem) {
    startUnit("L", {"--code", "41"});
    EXPECT_EQ(onUnit("codes").out, "41 - GPO5 Failed\n");
    EXPECT_THAT(onUnit("codes", "--clear").out, HasSubstr("CheckEngine Codes Successfully Cleared."));
    EXPECT_EQ(onUnit("codes").out, "No active codes\n");
    EXPECT_EQ(fromJson(onUnit("codes", "--json").out, "d[\"codes\"]"), "[]");
}

TEST_F(ZentaqctlOnLink, KillStopsTheEngine) {
    startUnit("A");
    EXPECT_EQ(onUnit("kill").out, "ORB A 200001: engine stopped\n");
    const auto lines = linesOf(onUnit("monitor", "--seconds 1.5 --csv").out);
    ASSERT_GT(lines.size(), 2U);
    EXPECT_THAT(lines.front(), StartsWith("Seconds,RPM,"));
    EXPECT_EQ(lines.back().substr(lines.back().find(',')).substr(0, 3), ",0,") << "0 RPM: " << lines.back();
}

}  // namespace
}  // namespace zentaq
