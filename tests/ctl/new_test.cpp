// zentaqctl new: a calibration from nothing but names and figures.
#include "ctl/ctl_fixture.h"
#include "unit/unit_kind.h"

namespace zentaq {
namespace {

class CtlNew : public Zentaqctl {
 protected:
    static constexpr const char* four = "4 Cylinder Coil per Plug, Sequential Injection";
    static constexpr const char* oneBar = "1 BAR (10-105 kPa)";

    Outcome make(const std::string& rest = {}, const std::string& unit = "ORB A Standard",
                 const std::string& engine = four, const std::string& sensor = oneBar) {
        return run("new --unit " + inQuotes(unit) + " --engine " + inQuotes(engine) + " --sensor " +
                   inQuotes(sensor) + " " + rest + " -o " + inQuotes(made));
    }
    std::string valueOf(const std::string& member) {
        const std::string out = run("get " + inQuotes(made) + " " + member).out;
        return out.substr(0, out.find('\n'));
    }
    std::string made = folder.file("made.ZQ4OA");
};

TEST_F(CtlNew, MakesAFileOfTheModelTheEngineAndTheSensor) {
    EXPECT_THAT(make(), Succeeds(IsEmpty(), IsEmpty()));
    EXPECT_EQ(fs::file_size(made), 4U * (3 + 2828));
    EXPECT_EQ(floatOf(made, 0), 3);
    EXPECT_EQ(floatOf(made, 2), 5099);
    EXPECT_EQ(valueOf("CYL_Number"), "4");
    EXPECT_EQ(valueOf("Option_Type"), "3");
    EXPECT_EQ(valueOf("MAP_ID"), "1");
    EXPECT_EQ(valueOf("REV_Limiter"), "7000");
    EXPECT_EQ(valueOf("scale1"), "8");
    EXPECT_EQ(valueOf("INJ_On"), "1");
    EXPECT_EQ(valueOf("INJ_Number"), "4");
    EXPECT_EQ(valueOf("BiName"), "made");
    EXPECT_EQ(run("image " + inQuotes(made) + " -o " + inQuotes(folder.file("made.s19"))).exitCode, 0);
}

TEST_F(CtlNew, TakesNamesWhateverTheirCapitals) {
    EXPECT_EQ(
        make("", "orb ar", "4 cylinder COIL per plug, sequential injection", "1 bar (10-105 KPA)").exitCode,
        0);
    EXPECT_EQ(valueOf("Option_Type"), "3");
}

TEST_F(CtlNew, TakesTheShortNamesOfUnitKinds) {
    const std::pair<const char*, float> kinds[] = {{"A", 3}, {"clsORBALite", 4}, {"7", 7}, {"ZQ4OC", 6}};
    for (const auto& [name, kind] : kinds) {
        made = folder.file(std::string("made") + unitKindOfSlot(static_cast<int>(kind))->extension.data());
        EXPECT_EQ(make("--force", name).exitCode, 0) << name;
        EXPECT_EQ(floatOf(made, 0), kind) << name;
    }
}

TEST_F(CtlNew, AUnitKindHasTheEnginesOfAllItsVariants) {
    const char* twelve = "12 Cylinder Wasted Spark, Paired Injection";
    EXPECT_EQ(make("", "ORB A Standard", twelve).exitCode, 1);
    EXPECT_FALSE(fs::exists(made));
    EXPECT_EQ(make("", "A", twelve).exitCode, 0);
    EXPECT_EQ(make("--force", "ORB A 6/12", twelve).exitCode, 0);
    EXPECT_EQ(valueOf("CYL_Number"), "12");
}

TEST_F(CtlNew, BasicFiguresShapeTheDefaultValues) {
    EXPECT_EQ(make("--set REV_Limiter=6400 --set CAMSTL=1 --set AMP42=1 --set INJ_On=1.5").exitCode, 0);
    EXPECT_EQ(valueOf("REV_Limiter"), "6400");
    EXPECT_EQ(valueOf("RPMTBL 0"), "400");  // 6400 / 16
    EXPECT_EQ(valueOf("RPMTBL 15"), "6400");
    EXPECT_EQ(valueOf("LOWBLD 0"), "70") << "the blend of a race cam";
    EXPECT_EQ(valueOf("AMP42"), "1");
    EXPECT_EQ(valueOf("Control3 3"), "1");
    EXPECT_EQ(valueOf("INJ_On"), "1.5");
}

TEST_F(CtlNew, BoostReachesTheTopOfThePressureAxis) {
    EXPECT_EQ(make("--set MAX_Boost=120", "ORB A Standard", four, "2.5 BAR (10-260 kPa)").exitCode, 0);
    EXPECT_EQ(valueOf("MAPTBL 15"), "221.3");  // 101.325 + 120
    EXPECT_EQ(valueOf("MAX_Boost"), "1.2") << "its reader answers bar";
}

TEST_F(CtlNew, ASensorLargerThanTheEngineNeedsTakesALongerPulseAtItsFullScale) {
    const char* threeBar = "3 BAR (1-316 kPa)";
    EXPECT_EQ(make("", "ORB A Standard", four, threeBar).exitCode, 0);
    EXPECT_EQ(valueOf("scale1"), "24");  // 8 * 3
    EXPECT_EQ(make("--force --set MAX_Boost=100", "ORB A Standard", four, threeBar).exitCode, 0);
    EXPECT_EQ(valueOf("scale1"), "12");  // 8 * 3 / (1 + 1)
    EXPECT_EQ(make("--force --set scale1=9.5", "ORB A Standard", four, threeBar).exitCode, 0);
    EXPECT_EQ(valueOf("scale1"), "9.5");
    made = folder.file("made.ZQ4PZK");
    EXPECT_EQ(make("", "PZK-2", "4 Cylinder Coil per Plug", threeBar).exitCode, 0) << "it has no injectors";
}

TEST_F(CtlNew, OtherMembersGoBehindTheDefaultValues) {
    EXPECT_EQ(make("--set KNK_MIN=44 --set TPS_FCV=0.62 --set 'NOTES_TEXT=For the hill' --set VE.ROWS=12 "
                   "--set BiName='Hill 1'")
                  .exitCode,
              0);
    EXPECT_EQ(valueOf("KNK_MIN"), "44");
    EXPECT_EQ(valueOf("TPS_FCV"), "0.62");
    EXPECT_EQ(valueOf("NOTES_TEXT"), "For the hill");
    EXPECT_EQ(valueOf("VE.ROWS"), "12");
    EXPECT_EQ(valueOf("BiName"), "Hill 1");
}

TEST_F(CtlNew, ComputesTheFlowFromThePower) {
    // k = 0.4 + 0.0125 * 4 = 0.45; 0.45 * 200 / 4 = 22.5; 22.5 * 10 / (10 - 1.2) = 25.568
    EXPECT_EQ(make("--set BHP=200 --set REV_Limiter=6000").exitCode, 0);
    EXPECT_EQ(valueOf("INJ_FlowRate"), "25.57");
    EXPECT_EQ(make("--force --set BHP=200 --set REV_Limiter=6000 --set Alcohol=1").exitCode, 0);
    EXPECT_EQ(valueOf("INJ_FlowRate"), "56.25");  // 22.5 * 2.2 * 10 / 8.8
}

TEST_F(CtlNew, KeepsAFlowThatIsGivenAndLargeEnough) {
    EXPECT_EQ(make("--set INJ_FlowRate=42 --set BHP=200 --set REV_Limiter=6000").exitCode, 0);
    EXPECT_EQ(valueOf("INJ_FlowRate"), "42");
    expectRefused(make("--force --set INJ_FlowRate=25 --set BHP=200 --set REV_Limiter=6000"),
                  outOfRange("(25.57 to 500 Lbs/hr)"));
    EXPECT_EQ(valueOf("INJ_FlowRate"), "42") << "the file is as it was";
}

TEST_F(CtlNew, CountsTheInjectorsOfTheEngine) {
    EXPECT_EQ(make("", "ORB L", "8 Cylinder Coil per Plug, Sequential Injection").exitCode, 0);
    EXPECT_EQ(valueOf("INJ_Number"), "8");
}

TEST_F(CtlNew, RefusesValuesOutsideTheirLimitsAndWritesNothing) {
    const std::pair<const char*, std::string> refused[] = {
        {"REV_Limiter=999", outOfRange("(1000 to 20000 RPM)")},
        {"INJ_Number=0", outOfRange("(1 to 24)")},
        {"INJ_Number=25", outOfRange("(1 to 24)")},
        {"MAX_Boost=100.1", outOfRange("(0 to 100 kPa)")},
        {"CAMSTL=2", outOfRange("(0 to 1)")},
        {"KNK_MIN=101", outOfRange("(2 to 100 units)")},
        {"INJ_Number=4.5", "Warning 1002: Data Input Error: Enter Whole Numbers Only"},
        {"BHP=5001", outOfRange("(0 to 5000 HP)")},
        {"BHP=many", notNumeric},
        {"BHP=", "Warning 1005: Data Input Error: Field CANNOT be NULL; please try again."},
        {"BHP=1,5", "BHP: 1,5 has a comma; decimals are written with a point, such as 12.5"},
        {"VE=5", "VE has 256 elements; make the file, then change them by zentaqctl set --index"}};
    for (const auto& [setting, why] : refused) {
        SCOPED_TRACE(setting);
        expectRefused(make(std::string("--set ") + setting), why);
        EXPECT_FALSE(fs::exists(made));
    }
}

TEST_F(CtlNew, SuggestsTheNamesThatMayBeMeant) {
    expectRefused(make("", "ORB A Standard", "4 cylinder distributor throttle"),
                  "There is no engine \"4 cylinder distributor throttle\"; did you mean \"4 Cylinder "
                  "Distributor, Throttle Body\"?");
    expectRefused(make("", "ORB A Standard", four, "1 BAR (10-106 kPa)"),
                  "There is no sensor \"1 BAR (10-106 kPa)\"; did you mean \"1 BAR (10-105 kPa)\"?");
    expectRefused(make("", "ORB A Standard", "steam turbine of the Turbinia"),
                  "There is no engine \"steam turbine of the Turbinia\"; \"zentaqctl engines\" lists them");
    expectRefused(make("", "ORB A Standard", four, "barometer of the Turbinia"),
                  "There is no sensor \"barometer of the Turbinia\"; \"zentaqctl sensors\" lists them");
    expectRefused(make("--set KNK_MINN=5"), "ORB A has no member KNK_MINN; did you mean KNK_MIN?");
    EXPECT_THAT(make("", "ORB A Standart"),
                Fails(2, HasSubstr("ORB A Standart is no unit model; did you mean \"ORB A Standard\"?")));
    EXPECT_FALSE(fs::exists(made));
}

TEST_F(CtlNew, ReplacesAFileOnlyWhenTold) {
    writeFile(made, "something else");
    expectRefused(make(), made + " is there already; --force puts the new calibration in its place");
    EXPECT_EQ(contentOf(made), "something else");
    EXPECT_EQ(make("--force").exitCode, 0);
    EXPECT_EQ(valueOf("REV_Limiter"), "7000");
}

TEST_F(CtlNew, NotesAnExtensionOfAnotherKind) {
    EXPECT_THAT(make("", "ORB L"),
                Succeeds(_, made + " holds a calibration for ORB L; such files end in .ZQ4OL\n"));
}

TEST_F(CtlNew, WrongUsageEndsWithTwo) {
    const std::string names = std::string("--engine ") + inQuotes(four) + " --sensor " + inQuotes(oneBar);
    expectWrongUsage({"new", "new --unit A " + names, "new --unit Z " + names + " -o x",
                      "new --unit A " + names + " --set KNK_MIN -o x",
                      "new --unit A " + names + " --set =5 -o x", "new --unit A " + names + " -o ''",
                      "new --unit A " + names + " --json -o x", "engines --unit Z", "engines extra",
                      "sensors --unit A"});
    expectRefused(run("new --unit A " + names + " -o -"),
                  "A calibration is not written to the standard output; name a file");
}

TEST_F(CtlNew, AFolderThatIsNotThereIsToldInOneLine) {
    made = folder.file("no/such/folder.ZQ4OA");
    EXPECT_THAT(make(), Fails(1, isOneLine));
}

TEST_F(CtlNew, NeedsTheReferenceDatabase) {
    withoutDatabase();
    for (const Outcome& outcome : {make("", "A"), run("engines"), run("sensors")}) {
        EXPECT_THAT(outcome, Fails(1, StartsWith("Cannot open the reference database " +
                                                 folder.file("bin/data/zentaq410-02.pak: "
                                                             "the file is missing"))));
    }
    EXPECT_FALSE(fs::exists(made));
}

}  // namespace
}  // namespace zentaq
