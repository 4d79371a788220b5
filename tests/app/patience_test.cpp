// A file on a disk that is slow, asleep or gone.
#include "app/patience.h"

#include "app/calibration_floats.h"
#include "app/command_fixture.h"
#include "app/state_strip.h"

namespace zentaq {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// A disk that answers when the test says so.
class SleepingDisk : public SideWork {
 public:
    void begin(std::function<void()> work) override { awake ? work() : void(asleep = std::move(work)); }
    void wake() {
        if (const auto work = std::exchange(asleep, nullptr)) work();
    }
    bool awake = false;
    std::function<void()> asleep;
};

struct Disk {
    SleepingDisk disk;
};

class HeldDisk : private Disk, public CommandTest {
 protected:
    HeldDisk() : CommandTest(nullptr, &disk) {}

    SleepingDisk& slow() { return disk; }
    std::string tune() { return writeFloats(fake.folder.path("tune.ZQ4OA"), wholeFloats()); }
    std::string work() { return row().text; }
    StripRow row() {
        const auto rows = stripRows(stripFacts(session));
        return *std::ranges::find(rows, StripPart::Work, &StripRow::part);
    }
};

constexpr auto waiting = "Waiting for the Disk";

TEST_F(HeldDisk, AnAnswerWithinAMomentIsNotWorthAWord) {
    slow().awake = true;
    open(tune());
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_THAT(boxes(), IsEmpty());
}

TEST_F(HeldDisk, ABoxAndTheStripTellWhatIsWaitedForAndTheFileOpensWhenItComes) {
    during(waiting, [&] {
        EXPECT_EQ(work(), "Opening . . .");
        EXPECT_TRUE(box().stands());
        slow().wake();
        EXPECT_FALSE(box().stands()) << "it goes by itself";
    });
    open(tune());
    EXPECT_THAT(boxes(), ElementsAre(IsBox(waiting,
                                           "Opening tune.ZQ4OA . . .\nThe disk has not answered yet. "
                                           "Cancel gives it up.")));
    EXPECT_EQ(box().buttons, Buttons::Cancel);
    EXPECT_EQ(session.slotInHand(), 3);
    EXPECT_EQ(work(), "");
}

TEST_F(HeldDisk, WhatIsGivenUpLeavesTheFormerCalibrationInHandEvenWhenItComesLater) {
    slow().awake = true;
    const std::string former = tune();
    open(former);
    slow().awake = false;
    const std::string next = writeFloats(fake.folder.path("next.ZQ4OA"), wholeFloats());
    fake.dialogs.answers = {Answer::Cancel};
    open(next);
    EXPECT_EQ(session.CurrentFile, former);
    EXPECT_TRUE(logged("Opening next.ZQ4OA: given up, the disk did not answer."));
    slow().wake();
    EXPECT_EQ(session.CurrentFile, former);
    EXPECT_EQ(work(), "");
}

TEST_F(HeldDisk, ACommandThatComesMeanwhileComesBehindTheOpening) {
    bool ran = false;
    during(waiting, [&] {
        EXPECT_TRUE(session.saving.putsOffWhileReading("Save", [&] { ran = true; }));
        slow().wake();
    });
    open(tune());
    session.saving.poll();
    EXPECT_TRUE(ran);
}

TEST_F(HeldDisk, ARecentFileThatCannotBeLookedForIsNotForgotten) {
    const std::string path = tune();
    session.recentFiles.add(path);
    fake.dialogs.answers = {Answer::Cancel};
    commands.files.open(path);
    EXPECT_THAT(session.recentFiles.paths(), ElementsAre(path));
    EXPECT_THAT(titles(), ElementsAre(waiting));
}

TEST_F(HeldDisk, SavingAndNamingASampleAskTheDiskNothingButBesideTheProgram) {
    std::filesystem::create_directory(fake.folder.path("samples"));
    slow().awake = true;
    open(writeFloats(fake.folder.path("samples/Turbo.ZQ4OA"), wholeFloats()));
    EXPECT_TRUE(session.fileIsSample);
    EXPECT_THAT(session.recentFiles.paths(), IsEmpty());

    // The folder is gone as a disk is: only what was learnt of the file while it was read says what it is.
    std::filesystem::remove_all(fake.folder.path("samples"));
    commands.saves.save();
    EXPECT_THAT(fake.dialogs.requests.back().title, "Zentaq4 User Calibration Files") << "under a new name";
}

TEST_F(HeldDisk, TheSameFileByAnotherNameIsKnownBesideTheProgram) {
    slow().awake = true;
    const std::string file = tune();
    open(file);
    const std::string link = fake.folder.path("link.ZQ4OA");
    std::filesystem::create_symlink(file, link);
    EXPECT_TRUE(lookAt(session, link)->inHand);
    EXPECT_FALSE(lookAt(session, fake.folder.path("other.ZQ4OA"))->inHand);

    slow().awake = false;
    fake.dialogs.files = {link};
    fake.dialogs.answers = {Answer::Cancel};
    commands.saves.saveAs();
    EXPECT_EQ(session.CurrentFile, file);
    EXPECT_TRUE(logged("Looking for link.ZQ4OA: given up, the disk did not answer."));
}

TEST_F(HeldDisk, AFileOfTheOlderGenerationIsReadOnceBesideTheProgram) {
    constexpr std::size_t floats = 8704 / 4;  // an older ORB A
    const std::string path = writeFloats(fake.folder.path("old.BIN"), std::vector<float>(floats, 1.0F));
    during(waiting, [&] {
        slow().wake();
        std::filesystem::remove(path);  // the disk goes again: what was read is whole
    });
    open(path);
    EXPECT_EQ(session.CurrentFile, path);
    EXPECT_NE(session.slotInHand(), 0);
}

}  // namespace
}  // namespace zentaq
