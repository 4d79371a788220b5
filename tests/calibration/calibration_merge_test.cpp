#include "calibration/calibration_merge.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "calibration/calibration_bytes.h"

namespace zentaq {
namespace {

using testing::allKinds;
using testing::Cells;
using ::testing::ElementsAre;
using testing::FileOf;
using testing::fileOf;
using ::testing::IsEmpty;
using testing::KindOfFile;
using testing::plausible;
using testing::withSensor;

/// Three files that begin as one, and the cells that each side changed.
struct Three {
    FileOf base = withSensor();
    FileOf first = base;
    FileOf second = base;

    Three(const Cells& cells = {}, const Cells& ofFirst = {}, const Cells& ofSecond = {}) {
        for (FileOf* file : {&base, &first, &second}) file->set(cells);
        first.set(ofFirst);
        second.set(ofSecond);
    }
    MergeResult merged() const { return merge(base.bytes, first.bytes, second.bytes); }
    std::vector<std::string> conflicts() const {
        const MergeResult result = merged();
        EXPECT_EQ(result.bytes.empty(), !result.conflicts.empty());
        std::vector<std::string> lines;
        for (const MergeConflict& conflict : result.conflicts) lines.push_back(lineOf(conflict));
        return lines;
    }
    FileOf result() const {
        const MergeResult result = merged();
        EXPECT_THAT(result.conflicts, IsEmpty());
        return result.clean() ? fileOf(result.bytes) : base;
    }
};

void expectMerged(const Three& files, const Cells& merged) {
    const FileOf result = files.result();
    for (const auto& [cell, value] : merged) EXPECT_EQ(result.at(cell), value) << cell;
}
void expectConflict(const Three& files, const std::string& line) {
    EXPECT_THAT(files.conflicts(), ElementsAre(line));
}

TEST(CalibrationMerge, TakesWhatOnlyOneSideChanged) {
    const Three files({{34, 50}, {912, 1}}, {{34, 60}}, {{912, 2}, {19, 7}});
    const MergeResult result = files.merged();
    ASSERT_TRUE(result.clean());
    FileOf expected = files.base;
    expected.set(34, 60).set(912, 2).set(19, 7);
    EXPECT_EQ(result.bytes, expected.bytes);
    EXPECT_EQ(result.fromFirst, 1);
    EXPECT_EQ(result.fromSecond, 2);
    EXPECT_EQ(result.sameInBoth, 0);
}

TEST(CalibrationMerge, TheSameChangeOnBothSidesIsTakenOnce) {
    const Three files({{34, 50}}, {{34, 60}}, {{34, 60}});
    EXPECT_EQ(files.result().at(34), 60);
    EXPECT_EQ(files.merged().sameInBoth, 1);
}

TEST(CalibrationMerge, DifferentChangesOfAMemberAreAConflict) {
    const Three files({{34, 50}, {35, 1}}, {{34, 60}, {35, 2}}, {{34, 70}});
    EXPECT_THAT(files.conflicts(),
                ElementsAre("KNK_MIN: 50 in the base, 60 in the first, 70 in the second (units)"));
    EXPECT_EQ(files.merged().bytes, "");
}

TEST(CalibrationMerge, AConflictInATableNamesItsCell) {
    constexpr int cell = 656 + 3 * 16 + 5;
    expectConflict({{{18, 10}}, {{cell, 1}, {656, 3}}, {{cell, 2}, {657, 4}}},
                   "ADV[3,5]: 10 in the base, 11 in the first, 12 in the second (Degrees)");
}

TEST(CalibrationMerge, AConflictThatAReaderRoundsAwayShowsTheCells) {
    const Three files({{127, 0.1F}, {42, 48}}, {{42, 48.001F}}, {{42, 48.002F}});
    const auto lines = files.conflicts();
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_THAT(lines[0], ::testing::HasSubstr("(cell 48) in the base"));
    EXPECT_THAT(lines[0], ::testing::HasSubstr("(cell 48.001) in the first"));
    EXPECT_THAT(lines[0], ::testing::HasSubstr("(cell 48.002) in the second"));
}

// ---- Groups

TEST(CalibrationMerge, OptionsMergeBitByBit) {
    expectMerged({{{0, 1}}, {{0, 1 + 4}}, {{0, 16}}}, {{0, 4 + 16}});
    expectMerged({{{0, 4 + 16}}, {{0, 0}}, {{0, 4 + 16 + 128}}}, {{0, 128}});
}

TEST(CalibrationMerge, TheTwoWaysToCutExcludeEachOther) {
    expectConflict({{}, {{1, 64}}, {{2, 1}}},
                   "opt_ZeroAdv and opt_FullCut: 0, 0 in the base, 1, 0 in the first, 0, 1 in the second");
}

TEST(CalibrationMerge, TheEngineFieldOfTheOptionsIsOneValue) {
    expectConflict({{{2, 0x10}}, {{2, 0x20}}, {{2, 0x30}}},
                   "ControlByte3[4 and 5]: 1 in the base, 2 in the first, 3 in the second");
    expectMerged({{{2, 0x10}}, {{2, 0x20}}, {{2, 0x10 + 0x80 + 8}}}, {{2, 0x20 + 0x80 + 8}});
}

TEST(CalibrationMerge, ControlBytesThatAreNoBytesMergeAsNumbers) {
    expectMerged({{{0, 1}}, {{0, 0.5F}}}, {{0, 0.5F}});
    expectConflict({{{0, 1}}, {{0, 0.5F}}, {{0, 2}}},
                   "ControlByte1: 1 in the base, 0.5 in the first, 2 in the second");
}

TEST(CalibrationMerge, CylindersAndEventsMergeApart) {
    expectMerged({{{8, 8 * 16 + 4}}, {{8, 6 * 16 + 4}}, {{8, 8 * 16 + 2}}}, {{8, 6 * 16 + 2}});
    expectConflict({{{8, 8 * 16 + 4}}, {{8, 6 * 16 + 4}}, {{8, 4 * 16 + 2}}},
                   "CYL_Number: 8 in the base, 6 in the first, 4 in the second");
}

TEST(CalibrationMerge, TheTachCodeMergesApartFromTheEngineCode) {
    expectMerged({{{4, 2 * 16 + 3}}, {{4, 14 * 16 + 3}}, {{4, 2 * 16 + 5}}}, {{4, 14 * 16 + 5}});
    expectConflict({{{4, 2 * 16 + 3}}, {{4, 14 * 16 + 3}}, {{4, 10 * 16 + 5}}},
                   "TACHTYP: 2 pulses in the base, 1 pulses in the first, 6 pulses in the second");
}

TEST(CalibrationMerge, ASensorIsOneGroup) {
    expectConflict({{}, {{126, 0.02F}, {129, 2}}, {{127, -0.5F}}},
                   "MAP sensor: 0.05, 0, 4, kPa in the base, 0.02, 0, 4, PSIA in the first, "
                   "0.05, -0.5, 4, kPa in the second");
    expectMerged({{}, {{126, 0.02F}, {129, 2}}, {{34, 5}}}, {{126, 0.02F}, {129, 2}, {34, 5}});
}

TEST(CalibrationMerge, AFunctionOfOneInputOnTwoPinsIsAConflict) {
    constexpr int pin4 = 336 + 4 * 9;
    constexpr int pin5 = 336 + 5 * 9;
    expectConflict({{{pin4, 22}, {pin5, 22}}, {{pin4, 12}}, {{pin5, 12}}},
                   "GPIO[4] and [5]: 22 DISABLED, 22 DISABLED in the base, 12 Fuel Trim, 22 DISABLED "
                   "in the first, 22 DISABLED, 12 Fuel Trim in the second");
    expectMerged({{{pin4, 22}, {pin5, 22}}, {{pin4, 12}}, {{pin5, 14}}}, {{pin5, 14}});
    // One that a side has twice already is no quarrel.
    expectMerged({{{pin4, 12}, {pin5, 12}}, {{34, 60}}}, {{34, 60}, {pin5, 12}});
}

TEST(CalibrationMerge, TheSizeOfATableIsAPair) {
    const Cells square = {{2292, 16}, {2293, 16}, {2294, 16}, {2295, 16}};
    expectMerged({square, {{2292, 12}}, {{2294, 8}}}, {{2292, 12}, {2294, 8}});
    expectConflict({square, {{2292, 12}}, {{2294, 8}, {2293, 14}}},
                   "tables.ROWS and COLS: 16, 16 in the base, 12, 16 in the first, 16, 14 in the second");
}

TEST(CalibrationMerge, TheAxisKindsOfATableMergeApart) {
    const Cells base = {{2290, 3 * 16 + 7}};
    expectMerged({base, {{2290, 4 * 16 + 7}}, {{2290, 3 * 16 + 1}}}, {{2290, 4 * 16 + 1}});
    expectConflict({base, {{2290, 4 * 16 + 7}}, {{2290, 6 * 16 + 7}}},
                   "GPO1.ROW-AXIS: BLEND MAP in the base, TPS in the first, MAT in the second");
}

TEST(CalibrationMerge, TheRatingOfTheSensorIsOneValueInTwoCells) {
    Three files;
    files.first.set(39, 2).set(124, 2);
    EXPECT_EQ(files.result().at(39), 2);
    EXPECT_EQ(files.result().at(124), 2);
    files.second.set(39, 4).set(124, 2);  // each cell alone would merge
    files.first.set(39, 1).set(124, 3);
    EXPECT_EQ(files.conflicts().size(), 1U);
    EXPECT_EQ(files.merged().conflicts.front().member, "MAP_BAR");
}

TEST(CalibrationMerge, APinGoesWithItsParameters) {
    // The second side changed the next pin.
    Three files({{336, 6}, {337, 5000}}, {{336, 8}, {337, 1}, {338, 30}}, {{345, 6}, {346, 4000}});
    FileOf expected = files.first;
    expected.set(345, 6).set(346, 4000);
    EXPECT_EQ(files.result().bytes, expected.bytes);
    files.second.set(339, 1);  // a parameter that the first side left alone
    const MergeResult result = files.merged();
    ASSERT_EQ(result.conflicts.size(), 1U);
    EXPECT_EQ(result.conflicts[0].member + result.conflicts[0].element, "GPIO[0]");
    EXPECT_THAT(result.conflicts[0].base, ::testing::StartsWith("6 Shift Light, 5000, 0, "));
    EXPECT_THAT(result.conflicts[0].first, ::testing::StartsWith("8 Full Table, 1, 30, "));
}

TEST(CalibrationMerge, NameAndNotesAreOneTextEach) {
    Three files;
    for (FileOf* file : {&files.base, &files.first, &files.second}) file->text(560, "Base").text(2328, "abc");
    files.first.text(2328, "xbc");
    files.second.text(560, "Best");
    EXPECT_EQ(files.result().at(2328), 'x');
    EXPECT_EQ(files.result().at(563), 't');
    files.second.text(2328, "abz");
    EXPECT_THAT(files.conflicts(),
                ElementsAre("notes: \"abc\" in the base, \"xbc\" in the first, \"abz\" in the second"));
}

TEST(CalibrationMerge, TheSharedCellMergesWithTheTrimsOrWithTheNotes) {
    Three trim({}, {{2327, 3}});
    trim.second.text(2328, "note");
    EXPECT_EQ(trim.result().at(2327), 3);
    EXPECT_EQ(trim.result().at(2328), 'n');
    Three note;
    note.first.text(2327, "Anna");
    note.second.text(2327, "Bnna");
    EXPECT_THAT(note.conflicts(),
                ElementsAre("notes: \"\" in the base, \"Anna\" in the first, \"Bnna\" in the second"));
}

TEST(CalibrationMerge, TrimsAsSentThatCollideAreMadeAnewOfTheUsersTrims) {
    // Four cylinders become two, which changes all outputs; the other side trims the first cylinder.
    Three files({{8, 4 * 16}});
    files.first.set(8, 2 * 16);
    for (int i = 0; i < 16; ++i) files.first.set(520 + i, 1);
    files.second.set(2312, 5);
    for (int i = 0; i < 16; i += 4) files.second.set(520 + i, 5);
    const FileOf result = files.result();
    EXPECT_EQ(result.at(8), 2 * 16);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(result.at(520 + i), i % 2 == 0 ? 5 : 0) << i;
}

// ---- Header and length

TEST(CalibrationMerge, TheFirmwareConflictsAndTheNewerProgramWins) {
    Three files;
    files.first.header(1, 10.3F).header(2, 4012);
    files.second.header(1, 10.4F);
    const FileOf result = files.result();
    EXPECT_EQ(result.bytes.substr(0, 12),
              testing::fourBytes(3.0F) + testing::fourBytes(10.4F) + testing::fourBytes(4012.0F));
    files.second.header(2, 3001);
    EXPECT_THAT(files.conflicts(),
                ElementsAre("firmware: 5099 in the base, 4012 in the first, 3001 in the second"));
}

TEST(CalibrationMerge, AnOldShortFileGrows) {
    Three files;
    files.base.bytes.resize(12 + 4 * 1000);
    files.second.bytes.resize(12 + 4 * 1000);
    files.second.set(34, 5);
    FileOf expected = files.first;
    expected.set(34, 5);
    EXPECT_EQ(files.result().bytes, expected.bytes);
}

TEST(CalibrationMerge, WhatTheOtherSideChangedIsNotCutOff) {
    Three files;
    files.first.bytes.resize(12 + 4 * 2330);
    files.second.text(2328, "abcdef");
    EXPECT_THAT(files.conflicts(),
                ElementsAre("length: 11324 in the base, 9332 in the first, 11324 in the second (bytes)"));
}

TEST(CalibrationMerge, SurplusIsTakenAsAWhole) {
    Three files;
    files.first.bytes += "abc";
    files.second.set(34, 5);
    EXPECT_EQ(files.result().bytes, files.second.bytes + "abc");
    files.second.bytes += "abcd";
    EXPECT_THAT(files.conflicts(),
                ElementsAre("surplus: 0 bytes in the base, 3 bytes in the first, 4 bytes in the second"));
}

TEST(CalibrationMerge, DifferentKindsAreRefused) {
    const FileOf orbA(3);
    const FileOf orbL(4);
    try {
        merge(orbA.bytes, orbL.bytes, orbA.bytes);
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_STREQ(
            failure.what(),
            "Calibrations of different units cannot be merged: ORB A (3) in the base, ORB L (4) in the "
            "first, ORB A (3) in the second");
    }
    EXPECT_THROW(merge(orbA.bytes, orbA.bytes, "short"), Failure);
    EXPECT_THROW(merge(FileOf(9).bytes, FileOf(9).bytes, FileOf(9).bytes), Failure);
}

// ---- What holds for every file

/// A file of random bytes or of small numbers, shorter or longer than usual now and then.
std::string anyFile(const KindOfFile& kind, std::mt19937& random) {
    FileOf file(kind.number, kind.floats);
    const bool bytes = random() % 2 == 0;
    for (int i = 0; i < kind.floats; ++i) {
        file.bits(i, bytes ? static_cast<std::uint32_t>(random())
                           : std::bit_cast<std::uint32_t>(static_cast<float>(random() % 200)));
    }
    if (random() % 3 == 0) file.header(1, 9.5F).header(2, static_cast<float>(random() % 6000));
    if (random() % 4 == 0) file.bytes.resize(12 + random() % (file.bytes.size() - 12));
    if (random() % 4 == 0) file.bytes += std::string(1 + random() % 20, 'x');
    return file.bytes;
}

TEST(CalibrationMerge, AnUnchangedSideLeavesTheOtherAsItIs) {
    std::mt19937 random(10);
    for (const KindOfFile& kind : allKinds) {
        for (int run = 0; run < 8; ++run) {
            const std::string base = anyFile(kind, random);
            const std::string other = anyFile(kind, random);
            EXPECT_EQ(merge(base, base, other).bytes, other) << kind.number << ", " << run;
            EXPECT_EQ(merge(base, other, base).bytes, other) << kind.number << ", " << run;
            EXPECT_EQ(merge(base, other, other).bytes, other) << kind.number << ", " << run;
            EXPECT_EQ(merge(base, base, base).bytes, base) << kind.number << ", " << run;
        }
    }
}

TEST(CalibrationMerge, ChangesOfDifferentCellsAreBothThere) {
    // Far apart, so that no group holds both; every cell of a kind in turn.
    for (const KindOfFile& kind : allKinds) {
        const FileOf base = plausible(kind.number, kind.floats);
        for (int cell = 3; cell + 700 < kind.floats; cell += 37) {
            FileOf first = base;
            FileOf second = base;
            FileOf both = base;
            first.set(cell, base.at(cell) + 1);
            second.set(cell + 700, base.at(cell + 700) + 2);
            both.set(cell, base.at(cell) + 1).set(cell + 700, base.at(cell + 700) + 2);
            const MergeResult result = merge(base.bytes, first.bytes, second.bytes);
            EXPECT_EQ(result.bytes, both.bytes) << kind.number << ", cell " << cell;
        }
    }
}

TEST(CalibrationMerge, ConflictsDoNotDependOnTheOrderOfTheSides) {
    std::mt19937 random(11);
    for (const KindOfFile& kind : allKinds) {
        const std::string base = anyFile(kind, random);
        const std::string first = anyFile(kind, random);
        const std::string second = anyFile(kind, random);
        const MergeResult one = merge(base, first, second);
        const MergeResult two = merge(base, second, first);
        ASSERT_EQ(one.conflicts.size(), two.conflicts.size());
        EXPECT_FALSE(one.clean());
        for (std::size_t i = 0; i < one.conflicts.size(); ++i) {
            EXPECT_EQ(one.conflicts[i].member, two.conflicts[i].member);
            EXPECT_EQ(one.conflicts[i].first, two.conflicts[i].second);
        }
    }
}

}  // namespace
}  // namespace zentaq
