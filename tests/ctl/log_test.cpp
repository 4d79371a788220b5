// Datalogs from the shell.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

class ZentaqctlDatalog : public Zentaqctl {
 protected:
    ZentaqctlDatalog() {
        std::string text = "ZENTAQ 4.0 DATALOG\tZQA-405099\r\n";
        for (int row = 0; row < 3; ++row) {
            text += "Run\t" + std::to_string(row) + ".5\t" + std::to_string(1000 + 500 * row);
            for (int i = 0; i < 37; ++i) text += "\t1";
            text += "\r\n";
        }
        writeFile(log, text + "torn\r\n");
    }
    const std::string log = folder.file("run.dat");
    Outcome ask(const std::string& what, const std::string& more = {}) {
        return run("log " + what + " " + inQuotes(log) + " " + more);
    }
};

TEST_F(ZentaqctlDatalog, TellsFormatRowsSecondsAndWhatIsDamaged) {
    const Outcome told = ask("info");
    EXPECT_EQ(told.exitCode, 0);
    EXPECT_THAT(told.out, HasSubstr("Banner:   ZENTAQ 4.0 DATALOG\n"));
    EXPECT_THAT(told.out, HasSubstr("Firmware: ZQA-405099\n"));
    EXPECT_THAT(told.out, HasSubstr("Rows:     3\nSeconds:  2\nDamaged:  1\n"));
    EXPECT_THAT(told.error, HasSubstr("line 5: It has too few fields; it is left out"));
}

TEST_F(ZentaqctlDatalog, WritesTheRowsOfTheChannelsThatAreAskedFor) {
    EXPECT_EQ(ask("rows", "--channels Seconds,rpm").out, "Seconds\tRPM\n0.5\t1000\n1.5\t1500\n2.5\t2000\n");
    EXPECT_THAT(ask("rows").out, StartsWith("Seconds\tRPM\tMAP\tTPS\tCLT\t"));
}

TEST_F(ZentaqctlDatalog, TellsWhatEachChannelReaches) {
    EXPECT_THAT(ask("stats").out, HasSubstr("\nRPM\t1000\t1500\t2000\n"));
}

TEST_F(ZentaqctlDatalog, SaysWhatIsWrong) {
    const Outcome unknown = ask("rows", "--channels RPM,BOOST");
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_THAT(unknown.error, HasSubstr("The log has no channel BOOST. It has Seconds, RPM,"));
    writeFile(log, "Dear diary\n");
    EXPECT_EQ(ask("info").exitCode, 1);
    EXPECT_THAT(ask("info").error, HasSubstr("It is no datalog"));
    EXPECT_EQ(run("log info /no/such/file").exitCode, 1);
    EXPECT_EQ(run("log info " + inQuotes(folder.file(""))).exitCode, 1);
    EXPECT_EQ(ask("sing").exitCode, 2);
}

}  // namespace
}  // namespace zentaq
