// Conditions, histograms, exports and comparisons of datalogs from the shell, and AutoVE.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

class ZentaqctlLogWork : public Zentaqctl {
 protected:
    ZentaqctlLogWork() { writeFile(log, text); }
    const std::string text =
        "Frame,RPM,MAP,EGOC,AAFR\n1,1000,30,4,14\n2,4000,90,4,12\n3,4100,91,4,13\n4,900,30,4,15\n";
    const std::string log = folder.file("run.dat");
    const std::string sample = ZENTAQ_APP_DIR "/samples/Street 2.0 Four.ZQ4OA";
    Outcome ask(const std::string& words) { return run("log " + words); }
};

TEST_F(ZentaqctlLogWork, FindTellsTheStretchesWhereAConditionHolds) {
    const Outcome found = ask("find " + inQuotes(log) + " 'RPM > 3000 and MAP > 80'");
    EXPECT_EQ(found.exitCode, 0);
    EXPECT_EQ(found.out, "From\tTo\tRows\n0.04\t0.06\t2\n");
    EXPECT_EQ(ask("find " + inQuotes(log) + " 'RPM > 9000'").exitCode, 1);
    EXPECT_THAT(ask("find " + inQuotes(log) + " 'BOOST > 1'"),
                Fails(1, HasSubstr("The log has no channel BOOST (at place 1)")));
    EXPECT_EQ(ask("find " + inQuotes(log)).exitCode, 2);
}

TEST_F(ZentaqctlLogWork, StatsTakeTheRowsForWhichAConditionHolds) {
    EXPECT_THAT(ask("stats " + inQuotes(log) + " --where 'MAP > 80'").out,
                HasSubstr("\nRPM\t4000\t4050\t4100\n"));
    EXPECT_THAT(ask("stats " + inQuotes(log) + " --where 'MAP > 800'").error, HasSubstr("holds for no row"));
}

TEST_F(ZentaqctlLogWork, AHistogramCountsInTheCellsOfATable) {
    const Outcome told =
        ask("histogram " + inQuotes(log) + " --table " + inQuotes(sample + ":VE") + " --channel AAFR");
    EXPECT_EQ(told.exitCode, 0) << told.error;
    EXPECT_THAT(told.out, HasSubstr("Count\tMean\tMinimum\tMaximum\n"));
    EXPECT_EQ(ask("histogram " + inQuotes(log)).exitCode, 2);
    EXPECT_EQ(ask("histogram " + inQuotes(log) + " --table nothing --channel AAFR").exitCode, 1);
}

TEST_F(ZentaqctlLogWork, ExportsKeepWhatStandsThereAndSeveralLogsNeedAFolder) {
    const std::string target = folder.file("run.csv");
    EXPECT_EQ(ask("export " + inQuotes(log) + " --to csv -o " + inQuotes(target)).exitCode, 0);
    EXPECT_THAT(contentOf(target), StartsWith("Time (s),Frame,RPM (rpm),MAP,TPS (v),"));
    EXPECT_THAT(contentOf(target), HasSubstr("\r\n0.040,2,4000.0,90.0,"));
    EXPECT_THAT(ask("export " + inQuotes(log) + " --to csv -o " + inQuotes(target)),
                Fails(1, HasSubstr("--force")));
    EXPECT_THAT(
        ask("export " + inQuotes(log) + " " + inQuotes(log) + " --to csv -o " + inQuotes(folder.file("x"))),
        Fails(1, HasSubstr("Several logs go into a folder")));
    EXPECT_EQ(ask("export " + inQuotes(log) + " --to csv").exitCode, 2);
}

TEST_F(ZentaqctlLogWork, DiffTellsWhatTwoLogsHaveDifferently) {
    EXPECT_EQ(ask("diff " + inQuotes(log) + " " + inQuotes(log)).exitCode, 0);
    const std::string other = folder.file("other.dat");
    writeFile(other,
              "Frame,RPM,MAP,EGOC,AAFR\n1,1000,30,4,14\n2,4000,90,4,12\n3,4150,91,4,13\n4,900,30,4,15\n");
    const Outcome told = ask("diff " + inQuotes(log) + " " + inQuotes(other));
    EXPECT_EQ(told.exitCode, 1);
    EXPECT_THAT(told.out, HasSubstr("RPM\t1 row differs\tfirst at 0.06 s\tby at most 50\n"));
}

TEST_F(ZentaqctlLogWork, AutoVeCorrectsTheTableAndRefusesAConstantOutsideItsRange) {
    std::string rows = "Frame,RPM,MAP,EGOC\n";
    for (int i = 1; i <= 2000; ++i) rows += std::to_string(i) + ",2600,62,12\n";
    writeFile(log, rows);
    const std::string out = folder.file("better.ZQ4OA");
    const Outcome done = run("autove " + inQuotes(sample) + " " + inQuotes(log) + " -o " + inQuotes(out));
    EXPECT_EQ(done.exitCode, 0) << done.error;
    EXPECT_THAT(done.error, HasSubstr("2000 rows, "));
    EXPECT_THAT(run("diff " + inQuotes(sample) + " " + inQuotes(out)).out, HasSubstr("VE"));
    EXPECT_THAT(run("autove " + inQuotes(sample) + " " + inQuotes(log) + " --constant 4 -o " + inQuotes(out)),
                Fails(1, HasSubstr("Please use a value from 5 to 200.")));
}

}  // namespace
}  // namespace zentaq
