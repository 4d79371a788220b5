#include <gmock/gmock.h>

#include <algorithm>

#include "base/text.h"
#include "refdata/seed_table.h"
#include "refdata_fixture.h"

namespace zentaq::refdata {
namespace {

namespace fs = std::filesystem;

const std::string twelve = "3\t2\t16\t12 Cylinder Wasted Spark, Paired Injection\t6\t98\t";

/// A copy of the project's seeds that a test may spoil.
class SeedBuilder : public testing::Test {
 protected:
    SeedBuilder() { fs::copy(projectSeeds, seeds, fs::copy_options::recursive); }

    void build() { buildDatabase(seeds, output); }

    /// Replaces the only place of `from` in a seed file; the line number where it stood.
    int replace(const std::string& file, const std::string& from, const std::string& to) {
        const std::string path = seeds + "/" + file;
        std::string content = contentOf(path);
        const auto at = content.find(from);
        EXPECT_NE(at, std::string::npos) << from;
        EXPECT_EQ(content.find(from, at + 1), std::string::npos) << from << " stands twice";
        writeFile(path, content.replace(at, from.size(), to));
        return 1 +
               static_cast<int>(std::count(content.begin(), content.begin() + static_cast<long>(at), '\n'));
    }

    void append(const std::string& file, const std::string& line) {
        std::ofstream(seeds + "/" + file, std::ios::app) << line << '\n';
    }

    int lineCount(const std::string& file) const {
        const std::string content = contentOf(seeds + "/" + file);
        return static_cast<int>(std::count(content.begin(), content.end(), '\n'));
    }

    void expectError(const std::string& file, int line, const std::string& what) {
        EXPECT_EQ(failureOf<SeedError>([&] { build(); }),
                  seeds + "/" + file + ":" + std::to_string(line) + ": " + what);
        EXPECT_FALSE(fs::exists(output));
    }

    TemporaryFolder folder;
    std::string seeds = folder.file("seeds");
    std::string output = folder.file("out.pak");
};

TEST_F(SeedBuilder, EqualSeedsGiveEqualBytes) {
    build();
    buildDatabase(seeds, folder.file("second.pak"));
    EXPECT_EQ(contentOf(output), contentOf(folder.file("second.pak")));
}

TEST_F(SeedBuilder, LeavesNothingBesideTheDatabase) {
    build();
    int files = 0;
    for (const auto& entry : fs::directory_iterator(folder.path())) files += entry.is_regular_file() ? 1 : 0;
    EXPECT_EQ(files, 1);
}

TEST_F(SeedBuilder, AFailureLeavesTheOlderFileWhole) {
    writeFile(output, "older");
    replace("tips.tsv", "HELP\n", "HALP\n");
    EXPECT_THROW(build(), SeedError);
    EXPECT_EQ(contentOf(output), "older");
}

TEST_F(SeedBuilder, AMissingSeedTableIsNamed) {
    fs::remove(seeds + "/mapcals.tsv");
    EXPECT_EQ(failureOf<FileError>([&] { build(); }), "Cannot read seed table " + seeds +
                                                          "/mapcals.tsv. Cannot open " + seeds +
                                                          "/mapcals.tsv: No such file or directory");
}

TEST_F(SeedBuilder, AnOutputFolderThatDoesNotExistIsAFileError) {
    output = folder.file("nowhere/out.pak");
    EXPECT_THAT(failureOf<FileError>([&] { build(); }), testing::StartsWith("Cannot write " + output));
}

struct Spoilt {
    std::string name;
    std::string file;
    std::string from;  ///< empty: a line more
    std::string to;
    std::string told;
};

class SpoiltSeeds : public SeedBuilder, public testing::WithParamInterface<Spoilt> {};

TEST_P(SpoiltSeeds, AreToldWithTheirLine) {
    const auto& [name, file, from, to, told] = GetParam();
    if (from.empty()) append(file, to);
    expectError(file, from.empty() ? lineCount(file) : replace(file, from, to), told);
}

const std::string sixCoils = "3\t0\t7\t6 Cylinder Coil per Plug, Sequential Injection\t3\t";
const std::string v4 = "3\t0\t35\tV4 90 Degree Odd Fire, Sequential Injection\t2\t68\t";
const std::string v4Events = v4 + "34\t4\t0\t1\t43\t14\t29\t";
const std::string dualPlug =
    "3\t0\t5\t4 Cylinder Dual Plug Wasted Spark, Paired "
    "Injection\t2\t70\t33\t4\t0\t1\t58\t14\t14\t2\t1\t2\t2\t5\t10"
    "\t0\t0\t0\t0\t0\t0\t0\t1\t";
const std::string fourOfOrbL = "4\t0\t1\t4 Cylinder Wasted Spark, Paired Injection\t2\t34\t33\t4\t0\t1\t";

INSTANTIATE_TEST_SUITE_P(
    Tables, SpoiltSeeds,
    testing::Values(
        Spoilt{"ARowOfTheWrongWidth", "mapcals.tsv", "", "400\tSensor\t0.05",
               "has 3 cells, the header has 5"},
        Spoilt{"ATextWhereANumberBelongs", "mapcals.tsv", "", "400\tSensor\t0,05\t0\t1",
               "Scale must be a number, not \"0,05\""},
        Spoilt{"AMissingColumn", "tips.tsv", "HELP\n", "HALP\n", "column HELP is missing"},
        Spoilt{"ASensorNameThatStandsTwice", "mapcals.tsv", "", "400\t1 bar (10-105 KPA)\t0.5\t0\t1",
               "sensor 1 BAR (10-105 KPA) stands already in line 6"},
        Spoilt{"TwoSensorsThatACalibrationCannotTellApart", "mapcals.tsv", "",
               "400\tLookalike (10-105 kPa)\t0.05296\t-0.5474\t1", "calibrations cannot tell it from line 6"},
        Spoilt{"AnUnknownTachCode", "engines.tsv", twelve + "161", twelve + "81",
               "P2EgTp has no tach code of 0, 14, 2, 8, 3 or 10 in its high nibble"},
        Spoilt{"TachPulsesThatDoNotFitTheCylinders", "engines.tsv", twelve + "161", twelve + "33",
               "the tach code of P2EgTp does not agree with IGNRev"},
        Spoilt{"TooFewCoils", "engines.tsv", sixCoils + "99", sixCoils + "51",
               "P1EgTp counts 3 coil outputs, the engine needs 6"},
        Spoilt{"AnOddFireEngineMarkedAsEven", "engines.tsv", v4 + "34", v4 + "33",
               "P2EgTp must have engine type 2 in its low nibble, not 1"},
        Spoilt{"ASecondBankThatCanLeaveTheWheel", "engines.tsv", v4 + "34\t4\t0\t1\t43",
               v4 + "34\t4\t0\t1\t44", "MaxOffset leaves no room on the wheel for the second bank"},
        Spoilt{"ATriggerBehindItsLastTooth", "engines.tsv", v4 + "34\t4\t0\t1\t43\t14",
               v4 + "34\t4\t0\t1\t43\t44", "Offset_A must be 1 to 43, not 44"},
        Spoilt{"ASecondBankInFrontOfTheFirst", "engines.tsv", v4Events, v4 + "34\t4\t0\t1\t43\t14\t13\t",
               "Offset_B must be 14 to 58, not 13"},
        Spoilt{"MoreEventsThanInjectorOutputs", "engines.tsv", v4Events + "4\t0\t3", v4Events + "9\t0\t3",
               "InjEvents must be 1 to 8, not 9"},
        Spoilt{"AnInjectorBehindTheLastEvent", "engines.tsv", v4Events + "4\t0\t3\t4\t1\t2\t4\t8\t0",
               v4Events + "4\t0\t3\t4\t1\t2\t4\t8\t1", "InjTBL_5 must be 0 to 0, not 1"},
        Spoilt{"ASplitOfMoreThan30Degrees", "engines.tsv", dualPlug + "4\n", dualPlug + "31\n",
               "DefaultSplit must be 0 to 30, not 31"},
        Spoilt{"AToothBeforeTheFirst", "engines.tsv", v4 + "34\t4\t0\t1\t", v4 + "34\t4\t0\t0\t",
               "MinOffset must be 1 to 58, not 0"},
        Spoilt{"MoreCylindersThanANibbleHolds", "engines.tsv", v4 + "34\t4\t", v4 + "34\t16\t",
               "Cylinders must be 1 to 15, not 16"},
        Spoilt{"AnEngineTypeOfTwoBits", "engines.tsv", v4 + "34\t4\t0\t", v4 + "34\t4\t2\t",
               "EngType must be 0 to 1, not 2"},
        Spoilt{"APhaseOfAnotherMode", "engines.tsv", v4Events + "4\t0\t3", v4Events + "4\t0\t2",
               "PhdSeq does not agree with InjMode"},
        Spoilt{"AResetThatIsNoEvent", "engines.tsv", v4Events + "4\t0\t3\t4", v4Events + "4\t0\t3\t5",
               "InjReset must be 4 to 4, not 5"},
        Spoilt{"AnEventWithoutAnInjector", "engines.tsv", v4Events + "4\t0\t3\t4\t1\t2\t4\t8",
               v4Events + "4\t0\t3\t4\t1\t2\t4\t0", "InjTBL_4 must be 1 to 255, not 0"},
        Spoilt{"ASplitWithoutDualPlugs", "engines.tsv",
               v4Events + "4\t0\t3\t4\t1\t2\t4\t8\t0\t0\t0\t0\t0\t0\t0\n",
               v4Events + "4\t0\t3\t4\t1\t2\t4\t8\t0\t0\t0\t0\t0\t0\t3\n",
               "DefaultSplit needs an engine with dual plugs"},
        Spoilt{"AnEngineNameThatStandsTwice", "engines.tsv", "3\t0\t2\t4 Cylinder Wasted Spark, Sequential",
               "3\t0\t2\t4 Cylinder Wasted spark, Paired",
               "engine 4 CYLINDER WASTED SPARK, PAIRED INJECTION of kind 3 stands already in line 4"},
        Spoilt{"AnOptionThatIsAnotherEngineOnAnotherKind", "engines.tsv", fourOfOrbL + "58",
               fourOfOrbL + "57", "MaxOffset differs from the engine of the same option in line 4"},
        Spoilt{"ADefaultOutsideItsLimits", "defaults.tsv", "KNK_MIN\t50\n", "KNK_MIN\t101\n",
               "KNK_MIN takes 2 to 100, not 101"},
        Spoilt{"ADefaultOfOneKindOutsideThePlainOnesLimits", "defaults.tsv", "REV_Limiter_PZK2\t6000",
               "REV_Limiter_PZK2\t600", "REV_Limiter_PZK2 takes 1000 to 20000, not 600"},
        Spoilt{"AnAxisThatDoesNotAscend", "defaults.tsv", "RPMTBL\t500 1000", "RPMTBL\t500 500",
               "RPMTBL must ascend, 500 does not"},
        Spoilt{"ASetWithTooManyValues", "defaults.tsv", "ISRPM\t1400 1150 850\n",
               "ISRPM\t1400 1150 850 800\n", "ISRPM has more than 3 values"}),
    [](const auto& row) { return row.param.name; });

TEST_F(SeedBuilder, TheFourSensorsOfOlderCalibrationsMayNotGo) {
    replace("mapcals.tsv", "\n4\t4 BAR", "\n400\t4 BAR");
    expectError("mapcals.tsv", 5, "no sensor with ID 4: calibrations of older firmware are moved to it");
}

TEST_F(SeedBuilder, AnEngineOptionThatStandsTwiceIsTold) {
    const int line = replace("engines.tsv", "3\t2\t16\t", "3\t2\t17\t");
    expectError("engines.tsv", line + 1,
                "option 17 of kind 3 stands already in line " + std::to_string(line));
}

TEST_F(SeedBuilder, AnEngineWithMoreCoilsThanTheUnitHasIsTold) {
    const int line = replace("engines.tsv", twelve, "3\t2\t16\t12 Cylinder, Paired Injection\t6\t195\t");
    replace("engines.tsv", "3\t2\t16\t12 Cylinder, Paired", "3\t1\t16\t12 Cylinder, Paired");
    expectError("engines.tsv", line, "the unit has only 8 coil outputs");
}

TEST_F(SeedBuilder, ASetWithTooFewValuesIsTold) {
    replace("defaults.tsv", "ISRPM\t1400 1150 850\n", "ISRPM\t1400 1150\n");
    expectError("defaults.tsv", 4, "ISRPM needs 3 values and has 2");
}

TEST_F(SeedBuilder, AHelpKeyThatStandsTwiceWhateverItsCaseIsTold) {
    append("fasthelp.tsv", "900\tAgain\tText\thelpKNOCK");
    EXPECT_THAT(failureOf<SeedError>([&] { build(); }),
                testing::HasSubstr("fasthelp.tsv:" + std::to_string(lineCount("fasthelp.tsv")) +
                                   ": HELP_KEY HELPKNOCK stands already in line"));
}

TEST_F(SeedBuilder, LinesEndedByCarriageReturnAreRead) {
    const std::string path = seeds + "/tips.tsv";
    std::string content = contentOf(path);
    for (std::size_t at = 0; (at = content.find('\n', at)) != std::string::npos; at += 2)
        content.insert(at, "\r");
    writeFile(path, content);
    build();
    for (const std::string& tip : Database::open(output).tips()) EXPECT_NE(tip.back(), '\r');
}

TEST(SeedTableFile, ResolvesEscapesInCells) {
    const TemporaryFolder folder;
    writeFile(folder.file("a.tsv"), "# comment\n\nA\tB\none\\ntwo\tback\\\\slash\\ttab\n");
    const SeedTable table = SeedTable::read(folder.file("a.tsv"));
    ASSERT_EQ(table.rows().size(), 1u);
    EXPECT_EQ(table.rows()[0].line, 4);
    EXPECT_EQ(table.text(table.rows()[0], "A"), "one\ntwo");
    EXPECT_EQ(table.text(table.rows()[0], "B"), "back\\slash\ttab");
}

TEST(SeedTableFile, RefusesAnUnknownEscape) {
    const TemporaryFolder folder;
    writeFile(folder.file("a.tsv"), "A\nx\\y\n");
    EXPECT_THROW(SeedTable::read(folder.file("a.tsv")), SeedError);
}

}  // namespace
}  // namespace zentaq::refdata
