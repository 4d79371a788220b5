// AutoVE's window without the window: what may be started, what is asked, what becomes of the changes.
#include "app/auto_ve_tuning.h"

#include "app/command_fixture.h"
#include "app/flight_record.h"

namespace zentaq {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

struct AutoVeTrail : AutoVeGrid {
    void prepareAutoVE() override { trail.push_back("prepare"); }
    void Init_Auto_VE_Ranges(int constant) override { trail.push_back("ranges " + std::to_string(constant)); }
    void Auto_VE(float rpm, float map, float correction) override {
        samples.push_back({rpm, map, correction});
    }
    void Show_Current_Activity(float, float) override { ++shown; }
    void autoVeActive(bool on) override { trail.push_back(on ? "on" : "off"); }
    void keepChanges() override { trail.push_back("keep"); }
    void restore() override { trail.push_back("restore"); }

    std::vector<std::string> trail;
    std::vector<std::array<float, 3>> samples;
    int shown = 0;
};

class AutoVeWindow : public CommandTest {
 protected:
    AutoVeTrail grid;
    AutoVeTuning tuning{session, grid};

    void link() {
        connect(200001, "ZQA405099");
        tuning.follow();
    }
    std::string logWith(const std::string& rows) const {
        return fake.folder.write("run.dat", "Frame,RPM,MAP,EGOC\n" + rows);
    }
    void runLog(const std::string& rows) {
        fake.dialogs.files = {logWith(rows)};
        tuning.dataLog();
        while (tuning.follow()) tuning.runRecords(1);
    }
};

TEST_F(AutoVeWindow, WithoutAUnitOnlyALogCanBeUsed) {
    EXPECT_FALSE(tuning.shown().liveEnabled);
    EXPECT_EQ(tuning.shown().liveCaption, "Please connect ECU.");
    EXPECT_TRUE(tuning.shown().logEnabled);
    EXPECT_EQ(tuning.shown().logCaption, "Using a data log");
}

TEST_F(AutoVeWindow, WithAUnitOnlyItsFramesCanBeUsed) {
    link();
    EXPECT_TRUE(tuning.shown().liveEnabled);
    EXPECT_EQ(tuning.shown().liveCaption, "Using live data");
    EXPECT_FALSE(tuning.shown().logEnabled);
    EXPECT_EQ(tuning.shown().logCaption, "Please disconnect ECU.");
}

TEST_F(AutoVeWindow, AConstantOutside5To200LeavesAllIdle) {
    link();
    for (const char* typed : {"4", "201", "", "many", "99999"}) {
        tuning.constant = typed;
        tuning.live();
        EXPECT_EQ(box().text, "Please use a value from 5 to 200.") << typed;
        EXPECT_FALSE(session.AutoVEActive);
    }
    EXPECT_TRUE(grid.trail.empty());
}

TEST_F(AutoVeWindow, LiveItPreparesTheTableAndTellsWhatItDoes) {
    link();
    tuning.constant = "200";
    tuning.live();
    EXPECT_TRUE(session.AutoVEActive);
    EXPECT_THAT(grid.trail, ElementsAre("ranges 200", "prepare", "on"));
    EXPECT_EQ(tuning.shown().liveCaption, "Stop AutoVE");
    EXPECT_FALSE(tuning.shown().cancelEnabled);
    EXPECT_FALSE(tuning.shown().constantEnabled);
    EXPECT_EQ(tuning.shown().message, "Making Live Adjustments...");
}

TEST_F(AutoVeWindow, TheEndAsksAndAYesKeepsWithANote) {
    link();
    tuning.live();
    grid.trail.clear();
    fake.dialogs.answers = {Answer::Yes};
    tuning.live();
    EXPECT_FALSE(session.AutoVEActive);
    EXPECT_THAT(grid.trail, ElementsAre("off", "keep"));
    ASSERT_GE(boxes().size(), 2U);
    const Box& question = boxes()[boxes().size() - 2];
    EXPECT_THAT(question, IsBox("AutoVE", "Would you like to keep the changes AutoVE has made?"));
    EXPECT_THAT(box(), IsBox("Save", "NOTE: You must still save the BIN file and reprogram the unit to apply "
                                     "the changes."));
    EXPECT_EQ(tuning.shown().liveCaption, "Using live data");
    EXPECT_TRUE(tuning.shown().cancelEnabled);
}

TEST_F(AutoVeWindow, ANoBringsTheTableBackWithoutANote) {
    link();
    tuning.live();
    fake.dialogs.answers = {Answer::No};
    tuning.live();
    EXPECT_EQ(grid.trail.back(), "restore");
    EXPECT_EQ(box().title, "AutoVE");
}

TEST_F(AutoVeWindow, ALogGivesASampleARecordInWholeNumbers) {
    fake.dialogs.answers = {Answer::Yes};
    runLog("1,1000.5,60.25,4.5\n2,1001.5,61,-3.5\n3,40000,61,1\n");
    EXPECT_THAT(grid.samples, ElementsAre(std::array{1000.0F, 60.25F, 4.0F}, std::array{1002.0F, 61.0F, -4.0F}));
    EXPECT_EQ(grid.shown, 2);
    // No prepare: colours and sums stay as they were.
    EXPECT_THAT(grid.trail, ElementsAre("ranges 50", "on", "off", "keep"));
    EXPECT_FALSE(session.AutoVEActive);
    EXPECT_FALSE(tuning.shown().progressVisible);
}

TEST_F(AutoVeWindow, WhileALogRunsTheBarGoesUpAndThePressOfCancelEndsIt) {
    fake.dialogs.files = {logWith("1,1000,60,4\n2,1000,60,4\n3,1000,60,4\n4,1000,60,4\n")};
    tuning.dataLog();
    EXPECT_EQ(tuning.shown().logCaption, "Cancel");
    ASSERT_TRUE(tuning.follow());
    tuning.runRecords(1);
    EXPECT_TRUE(tuning.shown().progressVisible);
    EXPECT_EQ(tuning.shown().percent, 25);
    fake.dialogs.answers = {Answer::No};
    tuning.dataLog();
    EXPECT_FALSE(session.AutoVEActive);
    EXPECT_EQ(grid.samples.size(), 1U);
    EXPECT_EQ(grid.trail.back(), "restore");
    EXPECT_EQ(tuning.shown().logCaption, "Using a data log");
}

TEST_F(AutoVeWindow, WithoutAFileNothingIsAskedAndAllIsIdle) {
    tuning.dataLog();
    EXPECT_FALSE(session.AutoVEActive);
    EXPECT_TRUE(boxes().empty());
    EXPECT_TRUE(tuning.shown().constantEnabled);
    ASSERT_EQ(fake.dialogs.requests.size(), 1U);
    EXPECT_EQ(fake.dialogs.requests[0].title, "Open Zentaq Datalog File");
    EXPECT_EQ(fake.dialogs.requests[0].filter, "Zentaq Datalog (*.DAT)|*.dat");
}

TEST_F(AutoVeWindow, WhatIsNoDatalogIsSaid) {
    fake.dialogs.files = {fake.folder.write("diary.dat", "Dear diary\n")};
    tuning.dataLog();
    EXPECT_EQ(tuning.shown().message, "Error Processing File.");
    EXPECT_FALSE(session.AutoVEActive);
    EXPECT_TRUE(grid.samples.empty());
}

TEST_F(AutoVeWindow, AUnitThatComesWhileTheWindowStandsIsSeenAtTheMomentOfActing) {
    fake.dialogs.files = {logWith("1,1000,60,4\n")};
    connect(200001, "ZQA405099");
    tuning.dataLog();
    EXPECT_FALSE(session.AutoVEActive);
    EXPECT_EQ(tuning.shown().logCaption, "Please disconnect ECU.");
}

TEST_F(AutoVeWindow, LeavingTheTableHasItsOwnQuestionAndItsOwnNote) {
    link();
    tuning.live();
    grid.trail.clear();
    fake.dialogs.answers = {Answer::Yes};
    tuning.leaveTable();
    const Box& question = boxes()[boxes().size() - 2];
    EXPECT_EQ(question.text, "Leaving the VE table turns off AutoVE.  Would you like to keep the changes AutoVE "
                             "has made so far?");
    EXPECT_THAT(box(),
                IsBox("Save", "NOTE: You must still save the BIN file and reprogram to apply the changes."));
    EXPECT_THAT(grid.trail, ElementsAre("keep", "off"));
    EXPECT_FALSE(session.AutoVEActive);
    tuning.leaveTable();
    EXPECT_EQ(grid.trail.size(), 2U);
}

}  // namespace
}  // namespace zentaq
