// The commands of the main window while the reference database cannot be asked, and when it is back.
#include <filesystem>

#include "app/command_fixture.h"
#include "other_program.h"
#include "unit/old_file_encoder.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using zentaq::testing::LegacyFile;

class ReferenceTrouble : public ProgramTest {
 protected:
    std::string database = fake.folder.path("bin/data/zentaq410-02.pak");

    ReferenceTrouble() {
        std::filesystem::create_directories(fake.folder.path("bin/data"));
        std::filesystem::copy_file(builtReference(), database);
        fake.settings.set("System", "FileOpen", "0");
    }
    std::string oldFile() {
        LegacyFile cells(2176);
        cells[292] = 2;
        cells[58] = 6500;
        return fake.folder.write("tune.BIN", cells.bytes());
    }
};

TEST_F(ReferenceTrouble, AFileThatMustBeConvertedIsNotOpenedAndTheBoxSaysWhy) {
    std::filesystem::remove(database);
    kernel.load();
    open(oldFile());
    EXPECT_THAT(
        boxes(),
        ElementsAre(IsBox(
            "Reference Database",
            "FILE CANNOT BE CONVERTED:   tune.BIN\n"
            "This file was made for another firmware and must be converted.\n"
            "Engine 0 of the reference database is needed to convert it: Cannot open the reference "
            "database " +
                database +
                ": the file is missing\n"
                "Nothing was opened. Close the program that uses the database, or install this one again.\n"
                "Do you want to enter a new filename?")));
    EXPECT_EQ(session.slotInHand(), 0);
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_EQ(session.Units(3).get("REV_Limiter"), 0);
}

TEST_F(ReferenceTrouble, ADatabaseThatWasLockedAtTheStartIsTriedAgainWhenItIsNeeded) {
    {
        const WritingProgram other(database);
        kernel.load();
        EXPECT_FALSE(session.database);
        EXPECT_TRUE(
            logged("No reference database: it is locked: it is in use by another program; try again"));
        EXPECT_EQ(session.StartingUp, 0);
        EXPECT_TRUE(fake.windows.tip.empty());
        open(oldFile());
        EXPECT_THAT(box().text, HasSubstr("it is in use by another program"));
        EXPECT_EQ(session.slotInHand(), 0);
    }
    open(oldFile());  // no time has passed
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_EQ(unit().get("MAP_ID"), 2);
    EXPECT_FLOAT_EQ(unit().get("MAP_Scaler"), 0.0251F);
    EXPECT_TRUE(session.database);
}

TEST_F(ReferenceTrouble, ALockedDatabaseIsTriedOnceASecondForWhatIsOnlyShown) {
    const WritingProgram other(database);
    kernel.load();
    std::filesystem::rename(database, database + ".moved");
    std::filesystem::copy_file(builtReference(), database);
    EXPECT_EQ(session.reference(), nullptr);
    fake.clock.nowUs += 1'000'000;
    EXPECT_NE(session.reference(), nullptr);
}

TEST_F(ReferenceTrouble, ALockedDatabaseIsTriedAtOnceWhereACalibrationIsConverted) {
    {
        const WritingProgram other(database);
        kernel.load();
        EXPECT_THROW(fake.forUnits.mapSensor(2), Failure);
    }
    EXPECT_EQ(session.reference(), nullptr) << "no time has passed";
    EXPECT_TRUE(fake.forUnits.mapSensor(2));
}

TEST_F(ReferenceTrouble, ADatabaseLockedWhileAFileIsOpenedIsNoReasonForHalfAFile) {
    kernel.load();
    ASSERT_TRUE(session.database);
    {
        const WritingProgram other(database);
        open(oldFile());
        EXPECT_EQ(session.slotInHand(), 0);
    }
    open(oldFile());
    EXPECT_EQ(session.slotInHand(), 3);
}

}  // namespace
}  // namespace zentaq
