// ports, identify, and who is reached at all.
#include <sys/file.h>

#include "ctl/link_fixture.h"
#include "scoped_variable.h"

namespace zentaq {
namespace {

TEST_F(ZentaqctlOnLink, IdentifyTellsTheUnitOnOneLine) {
    startUnit("A", {"--serial", "201234", "--name", "TRACK"});
    EXPECT_THAT(
        onUnit("identify"),
        Succeeds("ORB A 201234 (A Std) on " + port + ", firmware ZQA-405099, calibration \"TRACK\"\n", ""))
        << "progress is for terminals";
}

TEST_F(ZentaqctlOnLink, IdentifyTellsEveryUnitKind) {
    struct Case {
        const char* unit;
        const char* start;
        int kind;
    };
    constexpr Case cases[] = {{"A r", "ORB A 2", 3}, {"L", "ORB L 3", 4},    {"C", "ORB C 35", 6},
                              {"D", "ORB D 7", 7},   {"D6", "ORB D6 75", 8}, {"PZK-2", "PZK-2 5", 5}};
    for (const Case& row : cases) {
        startUnit(row.unit);
        EXPECT_THAT(onUnit("identify").out, StartsWith(row.start)) << row.unit;
        EXPECT_EQ(fromJson(onUnit("identify", "--json").out, "d[\"kind\"]"), std::to_string(row.kind));
    }
}

TEST_F(ZentaqctlOnLink, IdentifyAnswersInJson) {
    startUnit("L", {"--serial", "300007", "--firmware", "ZQL-407012", "--name", "ROAD"});
    const std::string answer = onUnit("identify", "--json").out;
    EXPECT_EQ(
        fromJson(answer, "d[\"serial\"],d[\"release\"],d[\"build\"],d[\"calibration\"],d[\"wideFrames\"]"),
        "(300007, 7, 12, 'ROAD', True)");
    EXPECT_EQ(fromJson(answer, "d[\"mustBeUpgraded\"]"), "False");
}

TEST_F(ZentaqctlOnLink, AnEarlyUnitIsToldAndTakesNoCommands) {
    startUnit("A", {"--serial-format", "old"});
    EXPECT_THAT(onUnit("identify"), Succeeds(HasSubstr("must be upgraded"),
                                             HasSubstr("It MUST be sent to Norvalia for upgrade")));
    EXPECT_THAT(programFile(), Fails(1, HasSubstr("must be upgraded before it takes commands."), ""));
}

TEST_F(ZentaqctlOnLink, ASilentUnitIsNoUnit) {
    startUnitWith("silence@E");
    expectFailure(onUnit("identify"), 3, "Error 1005: No ORB Unit is Connected to the System!");
}

TEST_F(ZentaqctlOnLink, AUnitThatMissesTheFirstQuestionIsAskedAgainAndASlowOneIsWaitedFor) {
    for (const char* fault : {"silence@E#1", "late=400"}) {
        startUnitWith(fault);
        EXPECT_EQ(onUnit("identify").exitCode, 0) << fault;
    }
}

TEST_F(ZentaqctlOnLink, AUnitThatDoesNotTellItsFirmwareTakesNoCommands) {
    startUnitWith("silence@B");
    expectFailure(onUnit("store"), 1, "does not tell its firmware");
}

TEST_F(ZentaqctlOnLink, APortThatIsNotThereIsNoUnit) {
    expectFailure(onUnit("identify"), 3, "Port not available: " + port + ": No such file or directory");
    expectFailure(run("identify --port 9999"), 3, "Port not available: Port 9999 is not present");
    expectFailure(run("identify --port " + inQuotes(file)), 3, "no serial port");
}

TEST_F(ZentaqctlOnLink, APortThatAnotherProgramHoldsIsLeftAlone) {
    startUnit("A");
    const int other = ::open(port.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
    ASSERT_EQ(::flock(other, LOCK_EX | LOCK_NB), 0);
    expectFailure(onUnit("identify"), 3, "Error 1001: Port is already in use by another process.");
    ::close(other);
    EXPECT_EQ(onUnit("identify").exitCode, 0);
}

TEST_F(ZentaqctlOnLink, WrongUsageOfTheLinkCommandsEndsWithTwo) {
    expectWrongUsage({"identify --port 0", "identify --port ''", "identify x", "program",
                      "monitor --seconds 0", "monitor --seconds x", "monitor --csv --json", "send KNK_MIN",
                      "codes --clear --json", "datalog", "store --json", "ports --port 1",
                      "send KNK_MIN 5 --index x"});
}

/// Simulated units announce themselves in a folder of the test.
class ZentaqctlPorts : public ZentaqctlOnLink {
 protected:
    const ScopedVariable runtimeFolder{"XDG_RUNTIME_DIR", folder.path().c_str()};
};

TEST_F(ZentaqctlPorts, ListsASimulatedUnitFirst) {
    start({"--unit", "C", "--baud", "0"});
    const auto lines = linesOf(run("ports").out);
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines[0], "Port\tDevice\tDescription\tIdentity");
    EXPECT_THAT(lines[1], StartsWith("1\t/dev/pts/"));
    EXPECT_THAT(lines[1], HasSubstr("\tSimulated unit "));
    EXPECT_EQ(fromJson(run("ports --json").out, "d[0][\"number\"], d[0][\"identity\"][:4]"), "(1, 'sim:')");
}

TEST_F(ZentaqctlPorts, TheFirstPortOfTheListIsTakenWhereNoneIsNamed) {
    start({"--unit", "C", "--baud", "0"});
    EXPECT_THAT(run("identify").out, HasSubstr("ORB C 350001 (C) on port 1,"));
    EXPECT_THAT(run("identify --port 1").out, HasSubstr(" on port 1,"));
}

TEST_F(ZentaqctlPorts, AFolderThatIsOpenToOthersHasNoUnitsAndIsTold) {
    start({"--unit", "C", "--baud", "0"});
    fs::permissions(folder.file(""), fs::perms::all);
    EXPECT_THAT(
        run("ports"),
        Succeeds(Not(HasSubstr("Simulated unit")),
                 AllOf(HasSubstr(" is open to other users. Simulated units are not looked for there."),
                       isOneLine)));
    EXPECT_THAT(run("identify --port 1").error, HasSubstr(" is open to other users."));
}

}  // namespace
}  // namespace zentaq
