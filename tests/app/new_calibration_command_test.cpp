#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "app/calibration_floats.h"
#include "app/fake_platform.h"
#include "app/main_commands.h"
#include "app/menu.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::Not;

class NewCalibrationCommand : public ::testing::Test {
 protected:
    FakeSession fake;
    Session& session = fake.session;
    MainCommands commands{session};

    NewCalibrationCommand() { session.makeUnits(); }

    /// An ORB A calibration of the newest length, in hand.
    void openFile() {
        fake.dialogs.files.push_back(writeFloats(path(), wholeFloats()));
        commands.files.open();
        fake.dialogs.boxes.clear();
        fake.windows.calls.clear();
    }
    std::string path() const { return fake.folder.path("tune.ZQ4OA"); }

    bool enabled(std::string_view entry) const {
        for (const MenuEntry& row : menuTree()) {
            if (row.name == entry) return row.enabled != nullptr && row.enabled(fake.session);
        }
        ADD_FAILURE() << entry << " is no entry";
        return false;
    }
};

TEST_F(NewCalibrationCommand, OpensTheFormWithoutAQuestionWhenNothingIsInHand) {
    commands.files.newCalibration();
    EXPECT_TRUE(fake.dialogs.boxes.empty());
    EXPECT_TRUE(session.creating());
    EXPECT_THAT(fake.windows.calls, Contains("general config"));
}

TEST_F(NewCalibrationCommand, OffersToSaveTheCalibrationInHand) {
    openFile();
    fake.dialogs.answers = {Answer::No};
    commands.files.newCalibration();
    ASSERT_EQ(fake.dialogs.boxes.size(), 1u);
    EXPECT_EQ(fake.dialogs.boxes[0].title, "Save Data?");
    EXPECT_EQ(fake.dialogs.boxes[0].text,
              "Would you like to save the Current .BIN file before creating a new one?");
    EXPECT_EQ(fake.dialogs.boxes[0].buttons, Buttons::YesNo);
    EXPECT_TRUE(session.creating());
}

TEST_F(NewCalibrationCommand, SavesOnYesBeforeTheFormOpens) {
    openFile();
    session.currentUnitObject().set("REV_Limiter", 6250.0);
    fake.dialogs.answers = {Answer::Yes};
    commands.files.newCalibration();
    std::ifstream file(path(), std::ios::binary);
    file.seekg((3 + 58) * 4);
    float limit = 0;
    file.read(reinterpret_cast<char*>(&limit), sizeof limit);
    EXPECT_EQ(limit, 6250.0f);
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
    fake.dialogs.requests.clear();
    fake.dialogs.boxes.clear();

    commands.files.open();
    EXPECT_TRUE(fake.dialogs.requests.empty());
    commands.files.close();
    EXPECT_EQ(session.CurrentFile, path());
    commands.programming.programOrb();
    EXPECT_TRUE(fake.dialogs.boxes.empty());
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
    EXPECT_THAT(fake.windows.calls, ::testing::ElementsAre("save general config", "save general config"));
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
    EXPECT_THAT(fake.windows.calls, ::testing::ElementsAre("general config"));
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
    EXPECT_THAT(fake.windows.calls, ::testing::ElementsAre("help "));
    EXPECT_THAT(fake.session.console.lines().back(), ::testing::HasSubstr(" - HELP: Opening Help File."));
}

}  // namespace
}  // namespace zentaq
