// Saves beside the thread of the windows: what is told and done while one runs, and when it has ended. The
// disk is driven by hand.
#include "app/saving.h"

#include <filesystem>

#include "app/calibration_floats.h"
#include "app/command_fixture.h"
#include "unit/safe_file.h"

namespace zentaq {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

/// A disk that takes a save when the test says so.
class SlowDisk : public FileWriter {
 public:
    void begin(FileSave save) override {
        EXPECT_FALSE(busy) << "one save at a time";
        busy = true;
        last = std::move(save);
    }
    std::optional<FileSaved> outcome() override {
        if (!busy || !ready) return std::nullopt;
        busy = ready = false;
        return failure.empty() ? saveFile(last)
                               : FileSaved{FileSaved::Outcome::Failed, std::exchange(failure, {}), {}};
    }

    bool busy = false;
    bool ready = false;
    std::string failure;
    FileSave last;
};

class SavingBeside : public CommandTest {
 protected:
    SlowDisk disk;
    LateWindows windows;
    std::string path = fake.folder.path("tune.ZQ4OA");

    SavingBeside() : CommandTest(&disk) {
        session.attach(windows);
        fake.ticker.start();
        write(path, 6500);
        open(path);
        EXPECT_EQ(session.CurrentFile, path);
        windows.runEvents();
        forget();
    }
    static void write(const std::string& file, float revLimit) {
        std::vector<float> floats = wholeFloats();
        floats[3 + 58] = revLimit;
        writeFloats(file, floats);
    }
    /// Time passes: ticks, and what they have left for the event loop.
    void passes(int ticks = 10) {
        fake.ticker.run(ticks);
        windows.runEvents();
    }
    void diskIsDone() {
        disk.ready = true;
        passes();
    }
};

TEST_F(SavingBeside, TheCommandReturnsAtOnceAndTheBoxComesWhenTheFileIsOnTheDisk) {
    change(7000);
    commands.saves.save();
    passes(1000);
    EXPECT_TRUE(session.saving.running());
    EXPECT_THAT(boxes(), IsEmpty());
    EXPECT_TRUE(session.DataModified);
    EXPECT_EQ(limitIn(path), 6500);
    diskIsDone();
    EXPECT_THAT(titles(), ElementsAre("Data Saved."));
    EXPECT_FALSE(session.DataModified);
    EXPECT_EQ(limitIn(path), 7000);
    EXPECT_FALSE(session.saving.running());
}

TEST_F(SavingBeside, NoBoxComesFromInsideATick) {
    commands.saves.save();
    disk.ready = true;
    fake.ticker.run(10);
    EXPECT_THAT(boxes(), IsEmpty());
    windows.runEvents();
    EXPECT_THAT(titles(), ElementsAre("Data Saved."));
}

TEST_F(SavingBeside, WhatIsChangedMeanwhileIsNotInTheFileAndStaysToBeSaved) {
    change(7000);
    commands.saves.save();
    change(8000);
    diskIsDone();
    EXPECT_EQ(limitIn(path), 7000);
    EXPECT_TRUE(session.DataModified);
    EXPECT_EQ(unit().get("REV_Limiter"), 8000);
}

TEST_F(SavingBeside, AFailureIsToldAndTheChangesStay) {
    change(7000);
    commands.saves.save();
    disk.failure = "Cannot write " + path + ": No space left on device";
    diskIsDone();
    ASSERT_THAT(titles(), ElementsAre("File Save Error"));
    EXPECT_EQ(boxes()[0].text, "The calibration could not be saved.\nCannot write " + path +
                                   ": No space left on device\n"
                                   "The calibration is still in memory: choose Save As and another "
                                   "folder.");
    EXPECT_TRUE(session.DataModified);
    commands.saves.save();
    diskIsDone();
    EXPECT_EQ(limitIn(path), 7000);
}

TEST_F(SavingBeside, ASecondSaveWaitsForTheFirstAndComesOnce) {
    change(7000);
    commands.saves.save();
    change(8000);
    commands.saves.save();
    commands.saves.save();
    diskIsDone();
    EXPECT_EQ(limitIn(path), 7000);
    EXPECT_TRUE(session.saving.running());
    diskIsDone();
    EXPECT_EQ(limitIn(path), 8000);
    EXPECT_FALSE(session.saving.running());
    EXPECT_THAT(titles(), ElementsAre("Data Saved.", "Data Saved."));
}

TEST_F(SavingBeside, CloseWaitsForIt) {
    change(7000);
    commands.saves.save();
    commands.files.close();
    passes(1000);
    EXPECT_EQ(session.CurrentFile, path);
    diskIsDone();
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_EQ(limitIn(path), 7000);
    EXPECT_THAT(titles(), ElementsAre("Data Saved."));
}

TEST_F(SavingBeside, WhatWaitedForASaveDoesNotRunUnderABox) {
    change(7000);
    commands.saves.save();
    commands.files.close();
    windows.box = true;
    diskIsDone();
    passes(1000);
    EXPECT_EQ(limitIn(path), 7000);
    EXPECT_EQ(session.CurrentFile, path) << "the box stands on a window of the calibration";
    EXPECT_THAT(boxes(), IsEmpty());
    windows.box = false;
    passes();
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_THAT(titles(), ElementsAre("Data Saved."));
}

TEST_F(SavingBeside, ABoxThatOpensBeforeTheEventLoopHasItsTurnHoldsBackToo) {
    commands.saves.save();
    disk.ready = true;
    fake.ticker.run(1);
    windows.box = true;
    windows.runEvents();
    EXPECT_THAT(boxes(), IsEmpty());
    windows.box = false;
    passes();
    EXPECT_THAT(titles(), ElementsAre("Data Saved."));
}

TEST_F(SavingBeside, CloseThatWaitedAsksForWhatWasChangedMeanwhile) {
    commands.saves.save();
    change(8000);
    commands.files.close();
    diskIsDone();
    EXPECT_THAT(titles(), ElementsAre("Data Saved.", "SAVE"));  // answered OK: saved again
    EXPECT_EQ(session.CurrentFile, path);
    diskIsDone();
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_EQ(limitIn(path), 8000);
}

TEST_F(SavingBeside, CloseWithChangesGoesOnWhenTheyAreOnTheDisk) {
    change(7000);
    commands.files.close();  // "Save changes?" is answered OK
    passes(1000);
    EXPECT_EQ(session.CurrentFile, path);
    diskIsDone();
    EXPECT_EQ(session.CurrentFile, "");
    EXPECT_EQ(limitIn(path), 7000);
}

TEST_F(SavingBeside, CloseWithChangesThatCannotBeSavedStaysOpen) {
    change(7000);
    commands.files.close();
    disk.failure = "the disk is full";
    diskIsDone();
    EXPECT_EQ(session.CurrentFile, path);
    EXPECT_TRUE(session.DataModified);
}

TEST_F(SavingBeside, OpenNewAndSaveAsWaitForIt) {
    commands.saves.save();
    fake.dialogs.answers = {Answer::Ok, Answer::No};  // "Data Saved.", "Save Data?"
    commands.files.open();
    commands.saves.saveAs();
    commands.files.newCalibration();
    passes(1000);
    EXPECT_THAT(fake.dialogs.requests, IsEmpty());
    EXPECT_FALSE(session.creating());
    diskIsDone();
    EXPECT_THAT(fake.dialogs.requests, SizeIs(2));
    EXPECT_TRUE(session.creating());
}

TEST_F(SavingBeside, ProgrammingWaitsForIt) {
    commands.saves.save();
    commands.programming.programOrb();
    passes(1000);
    EXPECT_THAT(boxes(), IsEmpty());
    diskIsDone();
    ASSERT_THAT(boxes(), SizeIs(2));  // then it tells that no unit is there
    EXPECT_EQ(boxes()[1].title, "Error 1005");
}

TEST_F(SavingBeside, TheEndOfTheProgramWaitsForIt) {
    change(7000);
    commands.saves.save();
    kernel.closeRequested();
    EXPECT_FALSE(kernel.System_Shutdown(false));
    passes(1000);
    EXPECT_THAT(windows.calls, Not(Contains("closeMain")));
    EXPECT_TRUE(fake.ticker.running());
    diskIsDone();
    EXPECT_THAT(windows.calls, Contains("closeMain"));
    EXPECT_EQ(limitIn(path), 7000);
}

TEST_F(SavingBeside, BothWaysOutOfTheProgramWaitAsOne) {
    change(7000);
    commands.saves.save();
    EXPECT_FALSE(kernel.System_Shutdown(false));
    kernel.closeRequested();
    EXPECT_FALSE(kernel.System_Shutdown(false));
    EXPECT_EQ(std::ranges::count_if(
                  session.console.lines(),
                  [](const std::string& line) { return line.find("waits until") != std::string::npos; }),
              1);
    boxes().clear();
    fake.dialogs.answers = {Answer::Ok, Answer::Cancel};  // "Data Saved.", then the question
    diskIsDone();
    passes(1000);
    EXPECT_EQ(std::ranges::count(boxes(), "Shutdown", &Box::title), 1) << "the user hears of it once";
    EXPECT_THAT(windows.calls, Not(Contains("closeMain"))) << "and stays";
}

TEST_F(SavingBeside, TheEndOfTheProgramWithChangesComesWhenTheyAreOnTheDisk) {
    change(7000);
    kernel.closeRequested();
    passes(1000);
    EXPECT_THAT(windows.calls, Not(Contains("closeMain")));
    diskIsDone();
    EXPECT_THAT(windows.calls, Contains("closeMain"));
    EXPECT_EQ(limitIn(path), 7000);
}

TEST_F(SavingBeside, TheEndOfTheProgramWithChangesThatCannotBeSavedDoesNotCome) {
    change(7000);
    kernel.closeRequested();
    disk.failure = "the disk is full";
    diskIsDone();
    EXPECT_THAT(windows.calls, Not(Contains("closeMain")));
}

TEST_F(SavingBeside, SaveAsTakesTheNewNameWhenTheFileIsThereAndKeepsTheOldOneWhenNot) {
    const std::string other = fake.folder.path("other.ZQ4OA");
    fake.dialogs.files = {other, other};
    commands.saves.saveAs();
    EXPECT_EQ(session.CurrentFile, path);
    disk.failure = "the disk is full";
    diskIsDone();
    EXPECT_EQ(session.CurrentFile, path);
    EXPECT_EQ(unit().BinFile(), path);
    commands.saves.saveAs();
    diskIsDone();
    EXPECT_EQ(session.CurrentFile, other);
    EXPECT_EQ(limitIn(other), 6500);
    EXPECT_EQ(windows.title, "Current Calibration File: " + other);
}

TEST_F(SavingBeside, AFirmwareThatTheUnitTellsMeanwhileIsNotForgotten) {
    commands.saves.save();
    Unit& unit = session.currentUnitObject();
    Calibration moved = unit.calibration();
    moved.facts.firmwareCode = 4001;
    unit.calibration(moved);
    diskIsDone();
    EXPECT_EQ(unit.facts().firmwareCode, 4001);
}

// ---- Another program on the file

constexpr const char* changedTitle = "File Changed";

TEST_F(SavingBeside, AFileThatAnotherProgramHasChangedIsAskedAbout) {
    write(path, 5000);
    change(7000);
    fake.dialogs.answers = {Answer::No};
    commands.saves.save();
    diskIsDone();
    ASSERT_THAT(titles(), ElementsAre(changedTitle));
    EXPECT_EQ(boxes()[0].text, "FILE CHANGED:   " + path +
                                   "\nThe file was changed by another program since it was opened.\n"
                                   "Overwrite?");
    EXPECT_TRUE(boxes()[0].declines);
    EXPECT_EQ(limitIn(path), 5000);
    EXPECT_TRUE(session.DataModified);
}

TEST_F(SavingBeside, YesOverwritesWhatWasAskedAboutAndNothingLater) {
    write(path, 5000);
    change(7000);
    fake.dialogs.answers = {Answer::Yes, Answer::Yes};
    commands.saves.save();
    diskIsDone();
    write(path, 5500);  // while the question stood
    diskIsDone();
    EXPECT_THAT(titles(), ElementsAre(changedTitle, changedTitle));
    diskIsDone();
    EXPECT_EQ(limitIn(path), 7000);
    EXPECT_EQ(titles().back(), "Data Saved.");
}

TEST_F(SavingBeside, ItsOwnSavesAreNoChangeOfAnotherProgram) {
    for (const double limit : {7000.0, 7100.0, 7200.0}) {
        change(limit);
        commands.saves.save();
        diskIsDone();
        EXPECT_EQ(limitIn(path), limit);
    }
    EXPECT_THAT(titles(), Not(Contains(changedTitle)));
}

TEST_F(SavingBeside, AFileThatWasTouchedButHoldsTheSameIsNoChange) {
    write(path, 6500);
    change(7000);
    commands.saves.save();
    diskIsDone();
    EXPECT_THAT(titles(), ElementsAre("Data Saved."));
}

TEST_F(SavingBeside, AFileThatIsGoneIsWrittenAnew) {
    std::filesystem::remove(path);
    commands.saves.save();
    diskIsDone();
    EXPECT_EQ(limitIn(path), 6500);
    EXPECT_THAT(titles(), ElementsAre("Data Saved."));
}

TEST_F(SavingBeside, SaveAsOverTheFileInHandAsksAboutTheChangeToo) {
    write(path, 5000);
    fake.dialogs.files = {path};
    fake.dialogs.answers = {Answer::Yes, Answer::No};
    commands.saves.saveAs();
    diskIsDone();
    EXPECT_THAT(titles(), ElementsAre("File Exists", changedTitle));
    EXPECT_EQ(limitIn(path), 5000);
}

}  // namespace
}  // namespace zentaq
