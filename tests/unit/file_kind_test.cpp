#include "unit/file_kind.h"

#include <gtest/gtest.h>

#include <limits>

#include "base/errors.h"
#include "temporary_folder.h"
#include "unit/file_floats.h"

namespace zentaq {
namespace {

/// A file of so many bytes behind a first and a second number.
std::string fileOf(float first, float second, std::size_t bytes) {
    std::string content;
    appendFloat(content, first);
    appendFloat(content, second);
    content.resize(bytes, '\0');
    return content;
}

TEST(FileKind, FilesCarryTheMinorPartOfTheProgramsVersion) {
    const std::string version = ZENTAQ_VERSION;  // "4.10.2" is written as 10.2
    EXPECT_FLOAT_EQ(programVersion(), std::stof(version.substr(version.find('.') + 1)));
}

TEST(FileKind, TheFirstNumberNamesTheUnit) {
    const TemporaryFolder folder;
    for (const int slot : {3, 4, 5, 6, 7, 8}) {
        const std::string path = folder.write("a", fileOf(static_cast<float>(slot), 9.44F, 12));
        const CalibrationFileKind kind = kindOfCalibrationFile(path);
        EXPECT_EQ(kind.slot, slot);
        EXPECT_FALSE(kind.byLength);
        EXPECT_EQ(kind.programVersion, 9.44F);
    }
}

TEST(FileKind, TheExactLengthNamesTheUnitWhereTheFirstNumberDoesNot) {
    const TemporaryFolder folder;
    const std::pair<std::size_t, int> lengths[] = {{8718, 3}, {9324, 4}, {9320, 6}, {9316, 7}, {4816, 5}};
    for (const auto& [bytes, slot] : lengths) {
        for (const float first : {0.0F, 2.0F, 99.0F, 3.5F, -3.0F, std::numeric_limits<float>::quiet_NaN()}) {
            const CalibrationFileKind kind =
                kindOfCalibrationFile(folder.write("a", fileOf(first, 9, bytes)));
            EXPECT_EQ(kind.slot, slot) << bytes;
            EXPECT_TRUE(kind.byLength);
        }
        EXPECT_EQ(kindOfCalibrationFile(folder.write("a", fileOf(0, 9, bytes + 1))).slot, 0) << bytes;
        EXPECT_EQ(kindOfCalibrationFile(folder.write("a", fileOf(0, 9, bytes - 1))).slot, 0) << bytes;
    }
}

TEST(FileKind, TheFirstNumberGoesBeforeTheLength) {
    const TemporaryFolder folder;
    EXPECT_EQ(kindOfCalibrationFile(folder.write("a", fileOf(6, 9, 9324))).slot, 6);
}

TEST(FileKind, AFileThatEndsInItsHeaderIsNoCalibration) {
    const TemporaryFolder folder;
    for (std::size_t bytes = 0; bytes < 12; ++bytes) {
        const std::string path = folder.write("a", fileOf(3, 9, 12).substr(0, bytes));
        EXPECT_THROW(kindOfCalibrationFile(path), FileError) << bytes;
    }
    EXPECT_THROW(kindOfCalibrationFile(folder.file("none")), FileError);
}

TEST(FileKind, ANameGetsTheExtensionOfItsKindUnlessItHasOneOfACalibration) {
    const UnitKind& kind = *unitKindOfSlot(3);
    EXPECT_EQ(calibrationFileName("/tunes/V-Twin", kind), "/tunes/V-Twin.ZQ4OA");
    EXPECT_EQ(calibrationFileName("/tunes/V-Twin 1.2", kind), "/tunes/V-Twin 1.2.ZQ4OA");
    EXPECT_EQ(calibrationFileName("/tunes/V-Twin.ZQ4OA", kind), "/tunes/V-Twin.ZQ4OA");
    EXPECT_EQ(calibrationFileName("/tunes/V-Twin.zq4oa", kind), "/tunes/V-Twin.zq4oa");
    EXPECT_EQ(calibrationFileName("/tunes/old.BIN", kind), "/tunes/old.ZQ4OA");
    EXPECT_EQ(calibrationFileName("/tunes 2.0/cabin", kind), "/tunes 2.0/cabin.ZQ4OA");
}

TEST(FileKind, FilesOfTheOlderGenerationAreKnownByTheirLengthAlone) {
    for (std::uintmax_t bytes = 0; bytes <= 10008; ++bytes) {
        const int slot = bytes == 8704 || bytes == 8720 ? 3 : bytes == 9312 ? 4 : bytes == 4804 ? 5 : 0;
        EXPECT_EQ(kindOfOldFile(bytes), slot) << bytes;
    }
}

TEST(FileKind, AFileIsWholeByItsCellsAndCutBelowThem) {
    // Bytes of a whole file and of one without notes, the last 500 cells.
    struct Lengths {
        int slot, whole, early;
    };
    for (const Lengths& each : {Lengths{3, 11324, 9324}, Lengths{4, 11324, 9324}, Lengths{5, 6816, 4816},
                                Lengths{6, 11320, 9320}, Lengths{7, 11316, 9316}, Lengths{8, 11316, 9316}}) {
        SCOPED_TRACE(each.slot);
        const UnitKind& kind = *unitKindOfSlot(each.slot);
        const auto cut = [&](int length) { return cellsCutOff(kind, static_cast<std::uintmax_t>(length)); };
        EXPECT_EQ(cut(each.whole), 0);
        EXPECT_EQ(cut(each.whole + 400), 0) << "a longer file lacks nothing";
        EXPECT_EQ(cut(each.whole - 1), 1);
        EXPECT_EQ(cut(each.whole - 4), 1);
        EXPECT_EQ(cut(each.whole - 5), 2);
        EXPECT_EQ(cut(each.early), 0);
        EXPECT_EQ(cut(each.early + 4), 499);
        EXPECT_EQ(cut(each.early - 4), 501);
        EXPECT_EQ(cut(12), (each.whole - 12) / 4) << "a header alone";
    }
    EXPECT_EQ(cellsCutOff(*unitKindOfSlot(3), 8718), 0) << "from before the first number named the kind";
}

}  // namespace
}  // namespace zentaq
