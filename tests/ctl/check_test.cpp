// What a careful colleague would ask about, from the shell.
#include "ctl/ctl_fixture.h"

namespace zentaq {
namespace {

class ZentaqctlCheck : public Zentaqctl {
 protected:
    void set(const std::string& words) { ASSERT_EQ(onFile("set", words).exitCode, 0) << words; }
    /// One doubt is told, of this member, with these words.
    void expectDoubt(const std::string& member, const std::vector<std::string>& words) {
        const Outcome told = onFile("check");
        EXPECT_EQ(told.exitCode, 1);
        EXPECT_THAT(told.out, StartsWith(member + "\t"));
        expectOneLine(told.out);
        for (const std::string& word : words) EXPECT_THAT(told.out, HasSubstr(word));
        EXPECT_EQ(std::count(told.out.begin(), told.out.end(), '\t'), 3) << told.out;
    }
};

TEST_F(ZentaqctlCheck, FindsNothingInSamplesWithASensorInKpa) {
    for (const char* name : {"Street 2.0 Four.ZQ4OA", "Turbo Four.ZQ4OA", "ORB L Six.ZQ4OL",
                             "ORB C Six.ZQ4OC", "ORB D Four.ZQ4OD", "PZK-2 Classic Four.ZQ4PZK"}) {
        EXPECT_THAT(run("check " + inQuotes(sample(name))), Succeeds(IsEmpty(), IsEmpty())) << name;
    }
}

TEST_F(ZentaqctlCheck, AnAxisThatDoesNotRise) {
    set("RPMTBL 9000 --index 3");
    expectDoubt("RPM axis of the tables", {"9000", "rising order"});
}

TEST_F(ZentaqctlCheck, ACurveThatDoesNotRise) {
    set("BLDTBL 400 --index 2");
    expectDoubt("BLDTBL", {"1000 is followed by 400"});
}

TEST_F(ZentaqctlCheck, ANumberThatTheUnitDividesBy) {
    const Outcome refused = onFile("set", "CONDIV 0");
    EXPECT_EQ(refused.exitCode, 1) << "only a file brings it";
    set("REV_Limiter 1000");
    EXPECT_THAT(onFile("check"), Succeeds());
}

TEST_F(ZentaqctlCheck, InjectorsThatCannotOpenLongEnough) {
    // 30 ms of full scale at 7000 turns a minute, which is one injection in 17 ms.
    set("scale1 30");
    expectDoubt("VE", {"rev limit", "cells ask the injectors to be open all the time"});
}

TEST_F(ZentaqctlCheck, ACellThatIsFarLeanerThanThoseAroundIt) {
    ASSERT_EQ(onFile("table", "AFR --apply =20 --cells 8,9:8,9").exitCode, 0);
    expectDoubt("AFR", {"cell 8,9: 20", "far leaner"});
}

TEST_F(ZentaqctlCheck, ACellThatIsFarEarlierThanThoseAroundIt) {
    set("ADV 58 --index 40");
    expectDoubt("ADV", {"cell 14,9: 58", "far earlier"});
}

TEST_F(ZentaqctlCheck, AnOptionThatTheControlByteDoesNotSay) {
    // The cell alone, as a damaged file may have it.
    ASSERT_EQ(onFile("cell", "2204 1").exitCode, 0);
    expectDoubt("AMP42", {"on", "4 Amp is off"});
}

TEST_F(ZentaqctlCheck, PressuresThatTheUnitCountsInKpa) {
    const std::string v8 = copyOf("Street V8.ZQ4OA");  // its sensor is in PSIA
    const auto lines = [&] { return linesOf(run("check " + inQuotes(v8)).out); };
    ASSERT_EQ(lines().size(), 1u);
    EXPECT_THAT(lines()[0], StartsWith("ACE1\t"));
    EXPECT_THAT(lines()[0], HasSubstr("counts this threshold on a sensor in kPa"));
    EXPECT_EQ(run("gpio " + inQuotes(v8) + " 1 --function 8").exitCode, 0);
    EXPECT_EQ(run("gpio " + inQuotes(v8) + " 1 --set 2=1").exitCode, 0);
    ASSERT_EQ(lines().size(), 2u) << "an output table that a pin goes by";
    EXPECT_THAT(lines()[1], StartsWith("GPO1\tY-Axis: BLEND MAP in PSIA\t"));
}

}  // namespace
}  // namespace zentaq
