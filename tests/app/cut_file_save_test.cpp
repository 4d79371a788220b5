// Saves of a calibration whose file was cut: the file would look whole, so nothing is written unasked.
#include <filesystem>

#include "app/calibration_floats.h"
#include "app/command_fixture.h"
#include "app/general_config.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr std::size_t wholeCount = 3 + 2828;
constexpr std::size_t cutCount = 1750;
constexpr std::uintmax_t wholeBytes = 11324;
constexpr std::uintmax_t cutBytes = 7000;
constexpr const char* damaged = "Damaged File";

class CutFile : public CommandTest {
 protected:
    CutFile() {
        write(path, cutCount);
        open(path);
        EXPECT_EQ(session.currentUnitObject().facts().cellsCutOff, 1081);
        forget();
        change(7000);
    }
    static void write(const std::string& file, std::size_t count) {
        std::vector<float> floats = wholeFloats();
        floats.resize(count);
        floats[3 + 58] = 6500;  // rev limit
        writeFloats(file, floats);
    }
    void expectAsItWas() {
        EXPECT_EQ(std::filesystem::file_size(path), cutBytes);
        EXPECT_EQ(limitIn(path), 6500);
        EXPECT_EQ(session.CurrentFile, path);
        EXPECT_EQ(unit().BinFile(), path);
        EXPECT_EQ(session.currentUnitObject().facts().cellsCutOff, 1081);
        EXPECT_TRUE(session.DataModified);
    }

    std::string path = fake.folder.path("cut.ZQ4OA");
};

TEST_F(CutFile, ASaveAsksFirstAndNoWritesNothing) {
    commands.saves.save();
    EXPECT_THAT(boxes(), ElementsAre(IsBox(
                             damaged,
                             "The file ends early: 1081 of its 2828 cells are missing and were taken as 0.\n"
                             "A save makes it look whole, and nothing will warn of it again.\n"
                             "Save all the same?")));
    EXPECT_EQ(box().icon, Icon::Exclamation);
    EXPECT_EQ(box().buttons, Buttons::YesNo);
    EXPECT_TRUE(box().declines);
    EXPECT_TRUE(logged("Calibration file not saved: it was cut, and the user thought better of it."));
    expectAsItWas();
}

TEST_F(CutFile, YesSavesItAndTheSignStaysWithTheCalibrationInHand) {
    fake.dialogs.answers = {Answer::Yes};
    commands.saves.save();
    EXPECT_THAT(titles(), ElementsAre(damaged, "Data Saved."));
    EXPECT_EQ(std::filesystem::file_size(path), wholeBytes);
    EXPECT_EQ(limitIn(path), 7000);
    EXPECT_FALSE(session.DataModified);
    EXPECT_EQ(session.currentUnitObject().facts().cellsCutOff, 1081);
}

TEST_F(CutFile, SaveAsAsksBeforeItAsksForAName) {
    const std::string other = fake.folder.path("other.ZQ4OA");
    fake.dialogs.files = {other};
    commands.saves.saveAs();
    EXPECT_THAT(titles(), ElementsAre(damaged));
    EXPECT_THAT(fake.dialogs.requests, IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(other));
    expectAsItWas();

    boxes().clear();
    fake.dialogs.answers = {Answer::Yes};
    commands.saves.saveAs();
    EXPECT_THAT(titles(), ElementsAre(damaged, "Data Saved."));
    EXPECT_EQ(std::filesystem::file_size(other), wholeBytes);
    EXPECT_EQ(std::filesystem::file_size(path), cutBytes);
    EXPECT_EQ(session.currentUnitObject().facts().cellsCutOff, 1081);
}

TEST_F(CutFile, ACommandWhoseSaveIsDeclinedThereEndsWithIt) {
    const std::vector<std::function<void()>> withSave = {
        [&] { open(path); },
        [&] { commands.files.close(); },
        [&] { kernel.closeRequested(); },
        [&] { EXPECT_FALSE(kernel.System_Shutdown(false)); },
        [&] {
            during("Save Data?", [&] { fake.dialogs.answers = {Answer::Yes, Answer::No}; });
            commands.files.newCalibration();
        },
    };
    for (std::size_t i = 0; i < withSave.size(); ++i) {
        SCOPED_TRACE(i);
        boxes().clear();
        withSave[i]();
        EXPECT_EQ(box().title, damaged);
        expectAsItWas();
        EXPECT_FALSE(session.creating());
    }
    EXPECT_THAT(fake.windows.calls, Not(Contains("closeMain")));
    EXPECT_THAT(fake.windows.calls, Not(Contains("general config")));
    EXPECT_THAT(fake.dialogs.requests, IsEmpty());
}

TEST_F(CutFile, TheKeyOfTheGeneralParametersAsksToo) {
    unit().store("MAP_ID", 1);
    GeneralConfig form(session);
    form.load();
    EXPECT_FALSE(form.save());
    EXPECT_THAT(titles(), ElementsAre(damaged));
    expectAsItWas();
}

TEST_F(CutFile, WhatTheCalibrationHoldsBehindTheBoxIsSaved) {
    during(damaged, [&] {
        change(8000);
        fake.dialogs.answers = {Answer::Yes};
    });
    commands.saves.save();
    EXPECT_EQ(limitIn(path), 8000);
    EXPECT_FALSE(session.DataModified);
}

TEST_F(CutFile, ACalibrationThatComesIntoHandBehindTheBoxIsNotSavedByItsAnswer) {
    const std::string whole = fake.folder.path("whole.ZQ4OA");
    write(whole, wholeCount);
    const auto openWhole = [&] {
        session.DataModified = false;
        open(whole);
        change(8000);
        fake.dialogs.answers = {Answer::Yes};
    };
    during(damaged, openWhole);
    commands.saves.save();
    EXPECT_EQ(session.CurrentFile, whole);
    EXPECT_EQ(limitIn(whole), 6500);
    EXPECT_EQ(std::filesystem::file_size(path), cutBytes);
    EXPECT_THAT(titles(), Not(Contains("Data Saved.")));
    EXPECT_TRUE(logged("Calibration file not saved: another command came while it was asked about."));
}

TEST_F(CutFile, ACutCalibrationThatComesIntoHandBehindTheNameDialogIsNotSavedUnasked) {
    const std::string whole = fake.folder.path("whole.ZQ4OA");
    const std::string other = fake.folder.path("other.ZQ4OA");
    write(whole, wholeCount);
    session.DataModified = false;
    open(whole);
    boxes().clear();
    bool opened = false;
    fake.dialogs.meanwhile = [&](const std::string& title) {
        if (!title.empty() || std::exchange(opened, true)) return;
        open(path);
        fake.dialogs.files = {other};
    };
    commands.saves.saveAs();
    EXPECT_EQ(session.CurrentFile, path);
    EXPECT_FALSE(std::filesystem::exists(other));
}

TEST_F(CutFile, AFileThatAnotherProgramHasChangedIsAskedAboutOnceForEachReason) {
    write(path, cutCount + 10);
    fake.dialogs.answers = {Answer::Yes, Answer::Yes};
    commands.saves.save();
    EXPECT_THAT(titles(), ElementsAre(damaged, "File Changed", "Data Saved."));
    EXPECT_EQ(limitIn(path), 7000);
}

}  // namespace
}  // namespace zentaq
