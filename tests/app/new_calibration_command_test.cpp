#include <filesystem>

#include "app/calibration_floats.h"
#include "app/command_fixture.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class NewCalibrationCommand : public CommandTest {
 protected:
    /// An ORB A calibration of the newest length, in hand.
    void openFile() {
        open(writeFloats(path(), wholeFloats()));
        forget();
    }
    std::string path() const { return fake.folder.path("tune.ZQ4OA"); }
};

TEST_F(NewCalibrationCommand, OpensTheFormWithoutAQuestionWhenNothingIsInHand) {
    commands.files.newCalibration();
    EXPECT_TRUE(boxes().empty());
    EXPECT_TRUE(session.creating());
    EXPECT_THAT(fake.windows.calls, Contains("general config"));
}

TEST_F(NewCalibrationCommand, OffersToSaveTheCalibrationInHand) {
    openFile();
    fake.dialogs.answers = {Answer::No};
    commands.files.newCalibration();
    EXPECT_THAT(boxes(), ElementsAre(IsBox(
                             "Save Data?",
                             "Would you like to save the Current .BIN file before creating a new one?")));
    EXPECT_EQ(box().buttons, Buttons::YesNo);
    EXPECT_TRUE(session.creating());
}

TEST_F(NewCalibrationCommand, SavesOnYesBeforeTheFormOpens) {
    openFile();
    unit().set("REV_Limiter", 6250.0);
    fake.dialogs.answers = {Answer::Yes};
    commands.files.newCalibration();
    EXPECT_EQ(limitIn(path()), 6250);
    EXPECT_THAT(fake.windows.calls, Contains("general config"));
}

TEST_F(NewCalibrationCommand, StaysWithTheCalibrationInHandWhenItCannotBeSaved) {
    openFile();
    std::filesystem::remove(path());
    std::filesystem::create_directory(path());  // a file cannot take a folder's place
    fake.dialogs.answers = {Answer::Yes};
    commands.files.newCalibration();
    EXPECT_FALSE(session.creating());
    EXPECT_EQ(session.header().fileState, "OLD");
    EXPECT_THAT(fake.windows.calls, Not(Contains("general config")));
}

TEST_F(NewCalibrationCommand, KeepsAFormWhoseUserStays) {
    commands.files.newCalibration();
    fake.windows.calls.clear();
    fake.windows.leavesGeneralConfig = false;
    commands.files.newCalibration();
    EXPECT_THAT(fake.windows.calls, Not(Contains("general config")));
}

TEST_F(NewCalibrationCommand, AnUnsavedNewCalibrationStopsOpeningClosingProgrammingAndLeaving) {
    openFile();
    commands.files.newCalibration();
    fake.windows.leavesGeneralConfig = false;
    forget();

    commands.files.open();
    EXPECT_TRUE(fake.dialogs.requests.empty());
    commands.files.close();
    EXPECT_EQ(session.CurrentFile, path());
    commands.programming.programOrb();
    EXPECT_TRUE(boxes().empty());
    bool goesOn = false;
    commands.saves.offerToSave([&] { goesOn = true; });
    EXPECT_FALSE(goesOn);
}

TEST_F(NewCalibrationCommand, SaveAndSaveAsBelongToTheForm) {
    openFile();
    const auto before = std::filesystem::last_write_time(path());
    commands.files.newCalibration();
    fake.windows.calls.clear();
    commands.saves.save();
    commands.saves.saveAs();
    EXPECT_THAT(fake.windows.calls, ElementsAre("save general config", "save general config"));
    EXPECT_EQ(std::filesystem::last_write_time(path()), before);
}

TEST_F(NewCalibrationCommand, SaveIsEnabledWhileOneIsMade) {
    EXPECT_FALSE(enabled("mnuSave"));
    commands.files.newCalibration();
    EXPECT_TRUE(enabled("mnuSave"));
}

TEST_F(NewCalibrationCommand, TablesWaitForTheDefaultValues) {
    openFile();
    commands.files.newCalibration();
    fake.windows.calls.clear();
    commands.openTable("VE", "Volumetric Efficiency Table");
    EXPECT_THAT(fake.windows.calls, ElementsAre("general config"));
}

TEST_F(NewCalibrationCommand, TheNodeOfTheGeneralParametersOpensTheFormForTheCalibrationInHand) {
    openFile();
    EXPECT_EQ(commands.treeClick("root001"), 20);
    EXPECT_THAT(fake.windows.calls, Contains("general config"));
    EXPECT_FALSE(session.creating());
}

TEST(WindowCommands, HelpIsLoggedAndOpensTheGuidesContents) {
    FakeSession fake;
    MainCommands(fake.session).help();
    EXPECT_THAT(fake.windows.calls, ElementsAre("help "));
    EXPECT_THAT(fake.session.console.lines().back(), ::testing::HasSubstr(" - HELP: Opening Help File."));
}

}  // namespace
}  // namespace zentaq
