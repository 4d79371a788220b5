// monitor and datalog: live values and the unit's own log.

#include "ctl/link_fixture.h"

namespace zentaq {
namespace {

constexpr std::size_t datalogColumns = 67;  ///< Frame, 46 values, 20 pins

std::size_t columnsOf(const std::string& line) {
    return static_cast<std::size_t>(std::count(line.begin(), line.end(), '\t')) + 1;
}

class ZentaqctlLog : public ZentaqctlOnLink {
 protected:
    std::string log = folder.file("own.dat");
};

TEST_F(ZentaqctlLog, MonitorShowsALineASecond) {
    startUnit("A");
    const Outcome outcome = onUnit("monitor", "--seconds 2.2");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    const auto lines = linesOf(outcome.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_THAT(lines[0], StartsWith("t=1 RPM="));
    EXPECT_THAT(lines[1], StartsWith("t=2 RPM="));
    EXPECT_THAT(lines[1], HasSubstr(" BATTV="));
}

TEST_F(ZentaqctlLog, MonitorWritesALineOfJsonAFrame) {
    startUnit("A");
    const auto lines = linesOf(onUnit("monitor", "--seconds 0.5 --json").out);
    ASSERT_GE(lines.size(), 5U);
    EXPECT_EQ(fromJson(lines[1], "d[\"RPM\"] > 100, d[\"CHKE\"], \"ISRPM\" in d"), "(True, False, True)");
    EXPECT_EQ(fromJson(lines[4], "0 < d[\"Seconds\"] < 1"), "True");
}

TEST_F(ZentaqctlLog, MonitorOfANarrowUnitShowsOnlyWhatItsFramesCarry) {
    startUnit("PZK-2");
    const auto lines = linesOf(onUnit("monitor", "--seconds 0.5 --csv").out);
    ASSERT_GE(lines.size(), 3U);
    EXPECT_EQ(lines[0], "Seconds,RPM,MAP,TPS,KNOCK,PRIADV,SECADV,KNKRET,BATTV,CHKE");
    EXPECT_EQ(std::count(lines[1].begin(), lines[1].end(), ','), 9);
}

TEST_F(ZentaqctlLog, MonitorRecordsADatalog) {
    startUnit("A");
    EXPECT_THAT(onUnit("monitor", "--seconds 1 --log " + inQuotes(log)),
                Succeeds(_, HasSubstr(" lines written to " + log)));
    const auto lines = linesOf(contentOf(log));
    EXPECT_EQ(lines.at(0), "ZENTAQ 4.10 DATALOG\tZQA-405099\r");
    EXPECT_THAT(lines.at(2), StartsWith("Frame\tRPM\tMAP\tTPS\t"));
    // 50 lines a second at most; a busy machine writes fewer, and the first frame takes its time.
    EXPECT_LE(lines.size(), 3U + 50U);
    ASSERT_GE(lines.size(), 3U + 20U);
    for (std::size_t i = 3; i < lines.size(); ++i) EXPECT_EQ(columnsOf(lines[i]), datalogColumns) << lines[i];
    EXPECT_GT(std::stoi(lines.back()), std::stoi(lines.at(3)));
    EXPECT_LE(std::stoi(lines.back()), 51);
}

TEST_F(ZentaqctlLog, MonitorWaitsForAUnitThatComesBack) {
    startUnitWith("hang-up=700@W#10");
    const Outcome outcome = onUnit("monitor", "--seconds 4 --csv");
    EXPECT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_THAT(outcome.error,
                StartsWith("The unit does not answer; waiting for it.\nThe unit answers again.\n"));
    EXPECT_GT(linesOf(outcome.out).size(), 20U);
}

TEST_F(ZentaqctlLog, MonitorFailsWhereTheUnitIsGoneAtTheEndOrStaysAway) {
    for (const char* seconds : {"--seconds 2", ""}) {
        startUnitWith("hang-up=60000@W#10");
        EXPECT_THAT(onUnit("monitor", seconds),
                    Fails(1, HasSubstr("The unit does not answer any more (9 frames).\n")));
    }
}

TEST_F(ZentaqctlLog, MonitorFailsWhereEveryFrameIsDamaged) {
    startUnitWith("wrong-sum@W");
    expectFailure(onUnit("monitor", "--seconds 1"), 1,
                  "The unit answers, but its frames cannot be read (0 frames).");
}

TEST_F(ZentaqctlLog, MonitorDropsADamagedFrameAndGoesOn) {
    startUnitWith("lose-byte@W#3");
    EXPECT_EQ(onUnit("monitor", "--seconds 2").exitCode, 0);
}

TEST_F(ZentaqctlLog, MonitorFailsWhereTheLogCannotBeWritten) {
    startUnit("A");
    expectFailure(onUnit("monitor", "--seconds 1 --log " + inQuotes(folder.file("none/x.dat"))), 1,
                  "Cannot write " + folder.file("none/x.dat"));
    // No file grows beyond a kilobyte: a datalog's first line is longer.
    EXPECT_THAT(
        shell("bash -c \"trap '' XFSZ; ulimit -f 1; exec " + zentaqctl + " monitor --seconds 3 --port " +
              inQuotes(port) + " --log " + inQuotes(log) + "\" >/dev/null"),
        Fails(1, HasSubstr("Cannot write " + log + ": File too large\n")));
}

TEST_F(ZentaqctlLog, MonitorEndsByItselfWhereItsLinesCannotBeWritten) {
    startUnit("A");
    EXPECT_THAT(shell(zentaqctl + " monitor --port " + inQuotes(port) + " >/dev/full"),
                Fails(1, "Cannot write to the standard output\n"));
}

TEST_F(ZentaqctlLog, MonitorTakesTheScalesOfACalibration) {
    startUnit("A");
    EXPECT_EQ(onUnit("monitor", "--seconds 0.5 --file " + inQuotes(file)).exitCode, 0);
    startUnit("C");
    expectFailure(onUnit("monitor", "--seconds 0.5 --file " + inQuotes(file)), 1, "Error 1006:");
}

TEST_F(ZentaqctlLog, CtrlCEndsAMonitorWellAndItsLogIsWhole) {
    startUnit("A");
    const int null = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    Piped program(ZENTAQ_APP_DIR "/zentaqctl", {"monitor", "--port", port, "--log", log}, null);
    program.until("t=1 ");
    program.running->signal(SIGINT);
    EXPECT_EQ(program.running->wait(), 0);
    ::close(null);
    const std::string content = contentOf(log);
    EXPECT_TRUE(content.ends_with("\r\n"));
    EXPECT_EQ(columnsOf(linesOf(content).back()), datalogColumns);
}

TEST_F(ZentaqctlLog, AMonitorForLongerThanAnybodyWaitsRunsUntilItIsEnded) {
    startUnit("A");
    Piped program(ZENTAQ_APP_DIR "/zentaqctl", {"monitor", "--port", port, "--seconds", "1e30"});
    EXPECT_THAT(program.until("t=1 "), HasSubstr("t=1 "));
    program.running->signal(SIGINT);
    EXPECT_EQ(program.running->wait(), 0);
}

// ---- Datalog

TEST_F(ZentaqctlLog, DatalogRetrievesTheUnitsOwnLog) {
    startUnit("A", {"--log-records", "25"});
    EXPECT_THAT(onUnit("datalog", inQuotes(log)),
                Succeeds("ORB A 200001: The datalog has been successfully downloaded. (25 records in " + log +
                         ")\n"));
    const auto lines = linesOf(contentOf(log));
    ASSERT_EQ(lines.size(), 3U + 25U);
    EXPECT_THAT(lines[0], StartsWith("ZENTAQ 4.10 DATALOG\t"));
    EXPECT_THAT(lines[3], StartsWith("1\t"));
    EXPECT_THAT(lines[27], StartsWith("25\t"));
    for (std::size_t i = 3; i < lines.size(); ++i) EXPECT_EQ(columnsOf(lines[i]), datalogColumns);
}

TEST_F(ZentaqctlLog, DatalogOfAnOrbDHoldsWhatTheUnitHasLogged) {
    for (const char* model : {"D", "D6"}) {
        startUnit(model, {"--log-records", "40"});
        ASSERT_EQ(onUnit("datalog", "--force " + inQuotes(log)).exitCode, 0);
        const auto lines = linesOf(contentOf(log));
        ASSERT_EQ(lines.size(), 3U + 40U);
        for (std::size_t i = 3; i < lines.size(); ++i) {
            const std::size_t speed = lines[i].find('\t') + 1;
            EXPECT_GT(std::stoi(lines[i].substr(speed)), 300) << model << ": " << lines[i];
        }
    }
}

TEST_F(ZentaqctlLog, DatalogCountsByTheLogRateOfTheCalibration) {
    ASSERT_EQ(onFile("set", "GPIO_Func 15 --index 4").exitCode, 0);
    ASSERT_EQ(onFile("set", "GPIO_Param 10 --index 34").exitCode,
              0);  // parameter 2 of pin 4: 10 records a second
    startUnit("A", {"--log-records", "3"});
    ASSERT_EQ(onUnit("datalog", inQuotes(log) + " --file " + inQuotes(file)).exitCode, 0);
    const auto lines = linesOf(contentOf(log));
    ASSERT_EQ(lines.size(), 6U);
    EXPECT_THAT(lines[3], StartsWith("5\t")) << "50 / 10";
    EXPECT_THAT(lines[5], StartsWith("15\t"));
}

class ZentaqctlDatalogFault : public ZentaqctlLog, public testing::WithParamInterface<Fault> {};

TEST_P(ZentaqctlDatalogFault, LeavesTheFileAsItWas) {
    startUnit("A", {"--log-records", "20", "--fault", GetParam().fault});
    writeFile(log, "former");
    expectFailure(onUnit("datalog", "--force " + inQuotes(log)), 1, GetParam().told);
    EXPECT_EQ(contentOf(log), "former");
}

INSTANTIATE_TEST_SUITE_P(
    Faults, ZentaqctlDatalogFault,
    testing::Values(Fault{"silence@D#1", "The unit did not answer after 0 records; nothing was written."},
                    Fault{"silence@D#8", "The unit did not answer after 7 records; nothing was written."},
                    Fault{"lose-byte@D#4", "The unit did not answer after 3 records; nothing was written."},
                    Fault{"hang-up@D#8", "The unit did not answer after 7 records; nothing was written."}),
    nameOfRow);

TEST_F(ZentaqctlLog, DatalogOfAnEmptyLogFailsInTheWordsOfTheProgram) {
    startUnit("A", {"--log-records", "0"});
    expectFailure(onUnit("datalog", inQuotes(log)), 1, "The unit either has no datalog data");
    EXPECT_FALSE(fs::exists(log));
}

// ---- Files that are there

TEST_F(ZentaqctlLog, ALogThatIsThereIsLeftAloneAndNoUnitIsAsked) {
    // No unit was started: who looked for one would end with 3.
    writeFile(log, "a day on the dyno");
    const std::string why = log + " is there already; --force puts the new datalog in its place";
    expectRefused(onUnit("datalog", inQuotes(log)), why);
    expectRefused(onUnit("monitor", "--seconds 1 --log " + inQuotes(log)), why);
    expectRefused(onUnit("monitor", "--seconds 1 --log " + inQuotes(file)),
                  file + " is there already; --force puts the new datalog in its place");
    EXPECT_EQ(contentOf(log), "a day on the dyno");
}

TEST_F(ZentaqctlLog, ALogThatIsThereIsReplacedWhereThatIsWanted) {
    startUnit("A", {"--log-records", "5"});
    writeFile(log, std::string(1'000'000, 'x'));
    EXPECT_EQ(onUnit("datalog", "--force " + inQuotes(log)).exitCode, 0);
    EXPECT_EQ(linesOf(contentOf(log)).size(), 3U + 5U);
    writeFile(log, std::string(1'000'000, 'x'));
    EXPECT_EQ(onUnit("monitor", "--seconds 0.5 --force --log " + inQuotes(log)).exitCode, 0);
    EXPECT_THAT(contentOf(log), StartsWith("ZENTAQ 4.10 DATALOG\t"));
}

TEST_F(ZentaqctlLog, AnEmptyFileIsNoLossForALog) {
    startUnit("A", {"--log-records", "5"});
    writeFile(log, "");
    EXPECT_EQ(onUnit("datalog", inQuotes(log)).exitCode, 0);
    writeFile(log, "");
    EXPECT_EQ(onUnit("monitor", "--seconds 0.5 --log " + inQuotes(log)).exitCode, 0);
}

TEST_F(ZentaqctlLog, ALogNeverTakesThePlaceOfWhatTheCommandReadsOrTraces) {
    for (const std::string command : {"datalog --force ", "monitor --force --seconds 1 --log "}) {
        expectRefused(onUnit(command + inQuotes(log), "--trace " + inQuotes(log)),
                      log + " would be overwritten; name another file");
        expectRefused(onUnit(command + inQuotes(file), "--file " + inQuotes(file)),
                      file + " would be overwritten; name another file");
    }
    EXPECT_FALSE(fs::exists(log));
    EXPECT_EQ(contentOf(file), contentOf(sample("Street 2.0 Four.ZQ4OA")));
}

TEST_F(ZentaqctlLog, AMonitorWaitsForNobodyAtAPipe) {
    startUnit("A");
    log = folder.file("pipe");
    ASSERT_EQ(::mkfifo(log.c_str(), 0600), 0);
    expectFailure(onUnit("monitor", "--seconds 1 --log " + inQuotes(log)), 1,
                  "Cannot write " + log + ": it is a pipe, not a file");
}

TEST_F(ZentaqctlLog, NoLogOrTraceGoesToAnythingButAFile) {
    const std::string pipe = folder.file("pipe");
    const std::string device = folder.file("device");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    fs::create_symlink("/dev/null", device);
    const std::pair<std::string, std::string> others[] = {{pipe, "it is a pipe, not a file"},
                                                          {device, "it is a device, not a file"},
                                                          {folder.path().string(), "Is a directory"}};
    startUnit("A");
    for (const auto& [path, what] : others) {
        const std::string why = "Cannot write " + path + ": " + what;
        expectRefused(onUnit("monitor", "--seconds 1 --force --log " + inQuotes(path)), why);
        expectRefused(onUnit("datalog", "--force " + inQuotes(path)), why);
        expectRefused(onUnit("identify", "--trace " + inQuotes(path)), why);
        expectRefused(onFile("set", "KNK_MIN 5 --force -o " + inQuotes(path)), why);
        expectRefused(onFile("export", "--force -o " + inQuotes(path)), why);
    }
    EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST_F(ZentaqctlLog, ANameThatIsTooLongIsToldInPlainWords) {
    log = folder.file(std::string(300, 'n'));
    EXPECT_THAT(onUnit("datalog", inQuotes(log)),
                Fails(1, AllOf(HasSubstr(": File name too long\n"), StartsWith("Cannot write "))));
}

TEST_F(ZentaqctlLog, DatalogAsksNoUnitWhereTheFileCannotBeWritten) {
    log = folder.file("none/own.dat");
    expectRefused(onUnit("datalog", inQuotes(log)),
                  "Cannot write " + log + ": its folder takes no new file: No such file or directory");
    expectRefused(onUnit("datalog", inQuotes(folder.path().string())),
                  "Cannot write " + folder.path().string() + ": Is a directory");
}

}  // namespace
}  // namespace zentaq
