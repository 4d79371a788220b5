#include "calibration/calibration_diff.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "calibration/calibration_bytes.h"

namespace zentaq {
namespace {

using testing::allKinds;
using testing::Cells;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using testing::FileOf;
using ::testing::IsEmpty;
using testing::KindOfFile;
using testing::plausible;
using testing::withSensor;

std::vector<std::string> linesOf(const FileOf& first, const FileOf& second) {
    std::vector<std::string> lines;
    for (const Difference& difference : differences(first.bytes, second.bytes)) {
        lines.push_back(lineOf(difference));
    }
    return lines;
}

/// The cell of a pressure: `volts` on the scale of the first sensors, rating 1.
float cellOfVolts(double volts) {
    return static_cast<float>(((876.0 / 1024) * volts * 204.6 + 100) * 0.1016618);
}

FileOf changed(FileOf file, int cell, float value) {
    return file.set(cell, value);
}

/// What is told of a file with these cells and of the same file with those changed.
void expectLines(const Cells& cells, const Cells& changes, const std::vector<std::string>& lines) {
    const FileOf first = withSensor().set(cells);
    EXPECT_THAT(linesOf(first, FileOf(first).set(changes)), ElementsAreArray(lines));
}

TEST(CalibrationDiff, EqualFilesHaveNone) {
    for (const KindOfFile& kind : allKinds) {
        const FileOf file = plausible(kind.number, kind.floats);
        EXPECT_THAT(differences(file.bytes, file.bytes), IsEmpty());
    }
}

TEST(CalibrationDiff, AMemberIsToldByNameWithBothValuesAndItsUnit) {
    FileOf first = withSensor();
    const auto found = differences(first.set(34, 50).bytes, changed(first, 34, 60).bytes);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].in, DifferenceIn::Value);
    EXPECT_EQ(found[0].member, "KNK_MIN");
    EXPECT_EQ(found[0].element, "");
    EXPECT_EQ(found[0].first, "50");
    EXPECT_EQ(found[0].second, "60");
    EXPECT_EQ(found[0].unit, "units");
    EXPECT_FALSE(found[0].information);
    EXPECT_EQ(lineOf(found[0]), "KNK_MIN: 50 -> 60 units");
}

TEST(CalibrationDiff, ValuesAreThoseThatTheUserSees) {
    // Start enrichment is kept as a fraction, pressures on the scale of the first sensors: 2.5 volts are 50
    // kPa.
    expectLines({{152, 0.5F}, {42, cellOfVolts(2.5)}}, {{152, 0.75F}, {42, cellOfVolts(4)}},
                {"MAP_Default: 50 -> 80 kPa", "SE0: 50 -> 75 %"});
}

TEST(CalibrationDiff, ATableCellIsToldByItsAxes) {
    FileOf first = withSensor();
    first.set(624 + 2 * 3, cellOfVolts(3)).set(592 + 2 * 5, 2000).set(18, 10).set(656 + 3 * 16 + 5, 12.5F);
    const auto found = differences(first.bytes, changed(first, 656 + 3 * 16 + 5, 14).bytes);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].in, DifferenceIn::Table);
    // The cell is kept less the trigger's offset of 10 degrees; 3 volts are 60 kPa.
    EXPECT_EQ(lineOf(found[0]), "ADV[3,5] (60 kPa, 2000 RPM): 22.5 -> 24 Degrees");
}

TEST(CalibrationDiff, AnAxisThatDiffersShowsBothPlaces) {
    expectLines({{592, 500}, {624, cellOfVolts(1)}}, {{592, 750}, {912, 5}},
                {"RPMTBL[0]: 500 -> 750 RPM", "VE[0,0] (20 kPa, 500 RPM | 20 kPa, 750 RPM): 0 -> 5 %"});
}

TEST(CalibrationDiff, AnOutputTableHasItsOwnAxes) {
    expectLines({{2290, 4 * 16 + 7}, {2226 + 1, 2.5F}, {2242 + 2, 3000}},
                {{1680 + 18, 40}, {2226 + 1, 2.75F}, {2290, 4 * 16 + 6}, {2294, 12}},
                {"GPO1.ROWS: 0 -> 12", "GPO1.COL-AXIS: RPM -> MAT", "GPO1.Y-Axis[1]: 2.5 -> 2.75 Volts",
                 "GPO1[1,2] (2.5 Volts, 3000 RPM | 2.75 Volts, 3000 C): 0 -> 40 %"});
}

TEST(CalibrationDiff, ACurveIsToldByElement) {
    expectLines({}, {{104 + 7, -3}}, {"MATADV[7]: 0 -> -3 Degrees"});
}

TEST(CalibrationDiff, DigitsTellTheValuesApart) {
    FileOf first = withSensor();
    // 0.1 and the float behind it are the same in seven digits.
    first.bits(34, 0x3DCCCCCDU);
    FileOf second = first;
    second.bits(34, 0x3DCCCCCEU);
    EXPECT_THAT(linesOf(first, second), ElementsAre("KNK_MIN: 0.1 -> 0.10000001 units"));
    // The reader of a pressure rounds to the sensor's precision: the cells are shown.
    first = withSensor();
    first.set(42, 48);
    second = first;
    second.set(42, 48.001F);
    const auto found = differences(first.bytes, second.bytes);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_THAT(found[0].first, ::testing::EndsWith(" (cell 48)"));
    EXPECT_THAT(found[0].second, ::testing::EndsWith(" (cell 48.001)"));
}

TEST(CalibrationDiff, MinusZeroAndNaNsAreDifferences) {
    FileOf first = withSensor();
    FileOf second = first;
    first.bits(912, 0x7FC00001U);
    second.bits(912, 0x7FC00002U).bits(34, 0x80000000U);
    EXPECT_THAT(linesOf(first, second),
                ElementsAre("KNK_MIN: 0 -> -0 units", ::testing::EndsWith("nan:7fc00001 -> nan:7fc00002 %")));
}

TEST(CalibrationDiff, RepairsOfReadersAreNoDifferences) {
    // Cells that a reader fills in: the ratio, the rating, the type of the oxygen sensor.
    FileOf first(3);
    const FileOf second = changed(first, 34, 1);
    EXPECT_THAT(linesOf(first, second), ElementsAre("KNK_MIN: 0 -> 1 units"));
    const FileOf typed = changed(first, 2196, 129);
    EXPECT_THAT(linesOf(typed, changed(typed, 2196, 1)), ElementsAre("EGO_Type: 1 (cell 129) -> 1 (cell 1)"));
}

TEST(CalibrationDiff, OptionsAreToldOnceByTheirFirstName) {
    FileOf first = withSensor();
    FileOf second = first;
    second.set(0, 16 + 2).set(1, 64);
    const auto found = differences(first.bytes, second.bytes);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].in, DifferenceIn::Option);
    EXPECT_THAT(linesOf(first, second),
                ElementsAre("ControlByte1[1]: 0 -> 1", "opt_FuelCut: 0 -> 1", "opt_ZeroAdv: 0 -> 1"));
    EXPECT_THAT(linesOf(first, changed(first, 2, 0.5F)), ElementsAre("ControlByte3: 0 -> 0.5"));
}

TEST(CalibrationDiff, MembersThatShareACellAreToldApart) {
    const Cells cells = {{8, 8 * 16 + 4}, {4, 2 * 16 + 3}};
    expectLines(cells, {{8, 6 * 16 + 4}}, {"CYL_Number: 8 -> 6"});
    expectLines(cells, {{8, 8 * 16 + 2}}, {"INJ_Events: 4 -> 2"});
    expectLines(cells, {{8, 5.5F}}, {"cell[8]: 132 -> 5.5"});
    // Code 2 is two pulses, code 14 one.
    expectLines(cells, {{4, 14 * 16 + 3}}, {"TACHTYP: 2 -> 1"});
    expectLines(cells, {{4, 2 * 16 + 1}}, {"P2EGTP: 35 -> 33"});
}

TEST(CalibrationDiff, TheRatingOfTheSensorIsToldOnce) {
    expectLines({}, {{39, 2}, {124, 2}}, {"MAP_BAR: 1 -> 2 BAR"});
    expectLines({}, {{124, 2.5F}}, {"MAP_BAR: 1 -> 2.5 BAR"});
    expectLines({}, {{39, 2}}, {"MAP_BAR: 1 (cell 1) -> 1 (cell 2) BAR"});
}

TEST(CalibrationDiff, PressureUnitsStandWithTheValuesWhenTheyDiffer) {
    expectLines({{42, cellOfVolts(2.5)}}, {{129, 2}, {42, cellOfVolts(4)}},
                {"MAP_Default: 50 kPa -> 80 PSIA", "MAPUnits: kPa -> PSIA"});
}

TEST(CalibrationDiff, PinsAreToldByFunctionAndParameter) {
    FileOf first = withSensor();
    first.set(336, 8).set(337, 1).set(338, 30);
    FileOf second = first;
    second.set(337, 2).set(336 + 9, 6).set(336 + 10, 5000);
    const auto found = differences(first.bytes, second.bytes);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_EQ(found[0].in, DifferenceIn::Pin);
    EXPECT_EQ(found[0].member + found[0].element, "GPIO[0].parameter[0]");
    EXPECT_EQ(found[0].first + " " + found[0].second, "1 2");
    EXPECT_THAT(found[0].place, ::testing::StartsWith("pin W18, Full Table: "));
    EXPECT_EQ(lineOf(found[1]), "GPIO[1].function (pin W19): 0 DISABLED -> 6 Shift Light");
    EXPECT_EQ(found[2].member + found[2].element, "GPIO[1].parameter[0]");
    EXPECT_EQ(found[2].second, "5000 RPM");
}

TEST(CalibrationDiff, TextsAreToldAsText) {
    FileOf first = withSensor();
    first.text(560, "Street").text(2328, "Old\nnotes");
    FileOf second = first;
    second.text(560, "Strada").text(2328, "New");
    EXPECT_THAT(linesOf(first, second),
                ElementsAre("name: \"Street\" -> \"Strada\"", "notes: \"Old\\nnotes\" -> \"New\\nnotes\""));
    EXPECT_THAT(linesOf(first, changed(first, 562, 0.5F)), ElementsAre("name[2]: 114 -> 0.5"));
}

TEST(CalibrationDiff, TheSharedCellIsNoteOrTrim) {
    expectLines({}, {{2327, 5}}, {"FuelTrim[7]: 0 -> 5 %"});
    expectLines({}, {{2327, 72}}, {"notes: \"\" -> \"H\""});
}

TEST(CalibrationDiff, TrimsAsSentAreToldOnlyWithoutTheUsersTrims) {
    FileOf first = withSensor();
    FileOf second = first;
    second.set(520, 3).set(504, 2);
    const auto found = differences(first.bytes, second.bytes);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].member, "FuelTrim.sent");
    EXPECT_TRUE(found[0].information);
    EXPECT_THAT(linesOf(first, second.set(2312, 3)), ElementsAre("INJTRIM[0]: 0 -> 3 Degrees"));
}

TEST(CalibrationDiff, TheHeaderCounts) {
    FileOf first = withSensor();
    FileOf second = first;
    second.header(1, 9.44F).header(2, 4012);
    const auto found = differences(first.bytes, second.bytes);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(lineOf(found[0]), "program: 10.2 -> 9.44");
    EXPECT_TRUE(found[0].information);
    EXPECT_EQ(lineOf(found[1]), "firmware: 5099 -> 4012");
    EXPECT_FALSE(found[1].information);
}

TEST(CalibrationDiff, AShorterFileCountsAsZeroBehindItsEnd) {
    FileOf whole(3);
    whole.set(100, 5).set(34, 5);
    FileOf part = whole;
    part.bytes.resize(12 + 4 * 50);
    EXPECT_THAT(linesOf(part, whole),
                ElementsAre("length: 212 -> 11324 bytes", "CLTTBL[16]: 0 -> 5 Degrees"));
    EXPECT_THAT(linesOf(part, FileOf(3).set(34, 5)), ElementsAre("length: 212 -> 11324 bytes"));
}

TEST(CalibrationDiff, SurplusAndLooseCellsAreTold) {
    FileOf first = withSensor();
    FileOf second = first;
    second.set(19, 1).bytes += "abc";
    first.bytes += "ab";
    EXPECT_THAT(linesOf(first, second),
                ElementsAre("cell[19]: 0 -> 1", "surplus (from byte 2 on): 2 bytes -> 3 bytes"));
}

TEST(CalibrationDiff, DifferentKindsAreComparedByMember) {
    FileOf orbA = withSensor();
    orbA.set(34, 50).set(656, 10).set(1424, 14).set(19, 1);
    FileOf pzk2(5, 1701);
    pzk2.set(39, 1).set(84, 1).set(86, 0.05F).set(88, 4).set(89, 1).set(1057, 14.7F).set(34, 60).set(256, 10);
    const auto found = differences(orbA.bytes, pzk2.bytes);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].in, DifferenceIn::Kind);
    EXPECT_EQ(lineOf(found[0]), "kind: 3 ORB A -> 5 PZK-2");
    EXPECT_EQ(lineOf(found[1]), "KNK_MIN: 50 -> 60 units");
}

TEST(CalibrationDiff, TheTwoSlotsOfTheOrbDDifferInTheirKindAlone) {
    const FileOf seven = plausible(7, 2826);
    FileOf eight = seven;
    eight.header(0, 8);
    EXPECT_EQ(differences(seven.bytes, eight.bytes).size(), 1U);
}

TEST(CalibrationDiff, CellsAllOverEveryKindAreToldWhenTheyDiffer) {
    for (const KindOfFile& kind : allKinds) {
        const FileOf file = plausible(kind.number, kind.floats);
        for (int cell = static_cast<int>(kind.number); cell < kind.floats; cell += 19) {
            FileOf other = file;
            other.set(cell, file.at(cell) + 1);
            EXPECT_FALSE(differences(file.bytes, other.bytes).empty()) << kind.number << ", cell " << cell;
        }
    }
}

TEST(CalibrationDiff, FilesOfRandomBytesAreCompared) {
    std::mt19937 random(9);
    for (const KindOfFile& kind : allKinds) {
        FileOf first(kind.number, kind.floats);
        FileOf second(kind.number, kind.floats);
        for (std::size_t i = 12; i < first.bytes.size(); ++i) {
            first.bytes[i] = static_cast<char>(random());
            second.bytes[i] = static_cast<char>(random());
        }
        // Name and notes are one each, if all of it is text; of anything else there is a line for each cell.
        EXPECT_GT(differences(first.bytes, second.bytes).size(), static_cast<std::size_t>(kind.floats) - 30);
        EXPECT_THAT(differences(first.bytes, first.bytes), IsEmpty());
    }
}

TEST(CalibrationDiff, WhatIsNoCalibrationIsRefused) {
    const FileOf file(3);
    EXPECT_THROW(differences(file.bytes, "ZQ"), Failure);
    EXPECT_THROW(differences(FileOf(9).bytes, file.bytes), Failure);
    EXPECT_THROW(differences(FileOf(9).bytes, FileOf(9).bytes), Failure);
}

}  // namespace
}  // namespace zentaq
