// The recorder: recording of a unit on the link, loading, and playback by its buttons.
#include "app/flight_record.h"

#include <fstream>
#include <random>
#include <thread>

#include "app/command_fixture.h"
#include "other_program.h"

namespace zentaq {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

constexpr int stopButton = 3;
constexpr int playButton = 4;
constexpr int recordButton = 5;

class Recorder : public CommandTest {
 protected:
    FlightRecord& recorder = *session.recorder;

    /// A log by the names in its first line, with a row for each of these frames.
    std::string logOf(const std::vector<int>& frames, const std::string& name = "run.dat") const {
        std::string text = "Frame,RPM,MAP,AAFR\n";
        for (const int frame : frames)
            text += std::to_string(frame) + "," + std::to_string(1000 + frame) + ",60.5,14.7\n";
        return fake.folder.write(name, text);
    }
    void load(const std::vector<int>& frames) { recorder.LoadData(logOf(frames)); }
    void link() { connect(200001, "ZQA405099"); }
    void beginRecording(const std::string& name = "Test Run") {
        fake.dialogs.inputs = {name};
        recorder.Toolbar(recordButton);
    }
    void passMs(std::int64_t ms) { fake.clock.nowUs += ms * 1000; }
    std::string recorded(const std::string& name = "Test Run") const {
        return TemporaryFolder::read(session.recorder->path().empty() ? name : session.recorder->path());
    }
    /// Data lines of the file on the disk, once all of it is there.
    std::vector<std::string> lines() {
        recorder.endAll();
        std::vector<std::string> all;
        std::ifstream in(recorder.path());
        for (std::string line; std::getline(in, line);) all.push_back(line);
        all.erase(all.begin(), all.begin() + std::min<std::ptrdiff_t>(3, std::ssize(all)));
        return all;
    }
};

// ---- Recording

TEST_F(Recorder, WithoutAUnitTellsSoAndDoesNothing) {
    recorder.Toolbar(recordButton);
    EXPECT_EQ(box().text, "No unit connected");
    EXPECT_FALSE(recorder.Recording);
}

TEST_F(Recorder, SuggestsTheNameOfTheCalibrationWithDateAndTime) {
    link();
    fake.dialogs.inputs = {std::nullopt};
    recorder.Toolbar(recordButton);
    EXPECT_EQ(box().title, "Flight Record Session");
    EXPECT_THAT(box().text, HasSubstr("Autocross #1, Drag Attempt, etc.)\nSession_20261121_123456"));
    session.CurrentFile = "/somewhere/Street 2.0.ZQ4OA";
    fake.dialogs.inputs = {""};
    recorder.Toolbar(recordButton);
    EXPECT_THAT(box().text, HasSubstr("\nStreet 2.0_20261121_123456"));
    EXPECT_FALSE(recorder.Recording);
}

TEST_F(Recorder, ASessionIsMadeFitForAFileAndTrimmedForItAlone) {
    EXPECT_EQ(sessionForFile("Lap 3: dry/wet \"fast\"\\a"), "Lap 3- dry-wet ''fast''-a");
    link();
    beginRecording("  Run: 1 ");
    EXPECT_EQ(recorder.SessionName, "  Run- 1 ");
    EXPECT_THAT(recorder.path(), testing::EndsWith("/Run- 1.dat"));
}

TEST_F(Recorder, WritesThreeHeadLinesAndALineAFiring) {
    link();
    session.live.RPM = 3210;
    beginRecording();
    EXPECT_EQ(recorder.status(), "Recording");
    EXPECT_EQ(recorder.recordingIntervalMs(), 20);
    for (int i = 1; i <= 3; ++i) {
        passMs(20);
        recorder.RecordData();
        EXPECT_EQ(recorder.frameText(), std::to_string(i));
    }
    EXPECT_EQ(recorder.timeText(), "00:00.06");
    const auto written = lines();
    ASSERT_EQ(written.size(), 3U);
    EXPECT_THAT(written[0], StartsWith("1\t3210\t"));
    EXPECT_THAT(written[2], StartsWith("3\t3210\t"));
    EXPECT_THAT(recorded(), StartsWith("ZENTAQ 4.10 DATALOG\t"));
}

TEST_F(Recorder, ABusyMachineLosesNoLineAndALongPauseLeavesTheTimeRight) {
    link();
    beginRecording();
    passMs(100);
    recorder.RecordData();
    EXPECT_EQ(recorder.linesRecorded(), 5);
    passMs(60'000);
    recorder.RecordData();
    EXPECT_EQ(recorder.linesRecorded(), 6);
    EXPECT_EQ(recorder.frameText(), "3005");
}

TEST_F(Recorder, TheStopButtonEndsItAndTheLogCanBePlayed) {
    link();
    session.live.RPM = 3210;
    beginRecording();
    for (int i = 0; i < 4; ++i) {
        passMs(20);
        recorder.RecordData();
    }
    EXPECT_TRUE(recorder.enabled(RecorderButton::Stop));
    EXPECT_TRUE(recorder.enabled(RecorderButton::Record));
    EXPECT_FALSE(recorder.enabled(RecorderButton::Play));
    recorder.Toolbar(stopButton);
    EXPECT_FALSE(recorder.Recording);
    EXPECT_EQ(recorder.status(), "Stopped");
    EXPECT_EQ(recorder.log().rows(), 4U);
    EXPECT_EQ(recorder.log().value(recorder.log().column("RPM"), 0), 3210);
    EXPECT_TRUE(recorder.enabled(RecorderButton::Play));
}

TEST_F(Recorder, TheLossOfTheUnitEndsItWithTheNextFiringAndLoadsWhatWasRecorded) {
    link();
    beginRecording();
    passMs(20);
    recorder.RecordData();
    loseUnit();
    recorder.RecordData();
    EXPECT_FALSE(recorder.Recording);
    EXPECT_EQ(recorder.log().rows(), 1U);
    EXPECT_EQ(recorder.SessionName, "Test Run");
}

TEST_F(Recorder, AskedWhetherToRecordOverAFileItStaysByDefault) {
    link();
    const std::string path = fake.session.platform().userFolder + "/Test Run.dat";
    std::filesystem::create_directories(fake.session.platform().userFolder);
    std::ofstream(path) << "precious";
    writeMarks(path, {{1.5, "of the old log"}});
    beginRecording();
    EXPECT_EQ(box().title, "File Exists");
    EXPECT_FALSE(recorder.Recording);
    EXPECT_EQ(TemporaryFolder::read(path), "precious");
    EXPECT_EQ(readMarks(path).size(), 1U);
    fake.dialogs.answers = {Answer::Yes};
    beginRecording();
    EXPECT_TRUE(recorder.Recording);
    EXPECT_TRUE(readMarks(path).empty());
}

TEST_F(Recorder, AUnitThatGoesWhileTheBoxStandsIsNotRecorded) {
    link();
    during("Flight Record Session", [this] { loseUnit(); });
    beginRecording();
    EXPECT_FALSE(recorder.Recording);
    EXPECT_EQ(box().text, "No unit connected");
}

TEST_F(Recorder, AFolderThatVanishesEndsItWithABoxThatSaysWhatIsKept) {
    link();
    beginRecording();
    passMs(20);
    recorder.RecordData();
    const auto untilTold = [&] {
        for (int i = 0; i < 2000 && recorder.Recording; ++i) {
            passMs(20);
            recorder.RecordData();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    };
    const std::string there = fake.session.platform().userFolder;
    std::filesystem::rename(there, there + "-gone");
    untilTold();
    std::filesystem::rename(there + "-gone", there);
    EXPECT_FALSE(recorder.Recording);
    EXPECT_THAT(fake.dialogs.boxes, testing::Contains(testing::Field(
                                        &Box::text, HasSubstr("The recording has ended: the file cannot be "
                                                              "written."))));
}

TEST_F(Recorder, AMonitorSessionEndsWithTheFirstButton) {
    link();
    session.Monitoring = true;
    beginRecording();
    EXPECT_FALSE(session.Monitoring);
    EXPECT_TRUE(recorder.Recording);
}

// ---- The log in hand

TEST_F(Recorder, LoadsALogIntoMemoryAndIntoTheTable) {
    const std::string database = fake.folder.path("own.pak");
    std::filesystem::copy_file(builtReference(), database);
    session.DatabaseFile = database;
    load({1, 2, 3});
    EXPECT_EQ(recorder.log().rows(), 3U);
    EXPECT_EQ(recorder.SessionName, "run");
    EXPECT_EQ(recorder.LastFrame(), 3);
    EXPECT_EQ(recorder.status(), "Ready");
    EXPECT_TRUE(logged("Load Datalog: "));
    EXPECT_TRUE(logged("Processing Zentaq 4.5 Datalog Format..."));
    EXPECT_TRUE(logged("Adding RPM: 1003 on line 4"));
    EXPECT_FALSE(logged("Adding RPM: 1002 on line 3"));
    EXPECT_EQ(OtherProgram(database).count("SELECT count(*) FROM Datalog2"), 3);
}

TEST_F(Recorder, EveryRowOfABlockStandsInTheLogFile) {
    const std::string database = fake.folder.path("own.pak");
    std::filesystem::copy_file(builtReference(), database);
    session.DatabaseFile = database;
    session.console.logFile(fake.folder.path("zentaq.log"));
    session.console.LogToFile(true);
    load({1, 2, 3});
    const std::string log = TemporaryFolder::read(fake.folder.path("zentaq.log"));
    EXPECT_THAT(log, HasSubstr("12:34:56 - Adding RPM: 1001 on line 2"));
    EXPECT_THAT(log, HasSubstr("12:34:56 - Adding RPM: 1002 on line 3"));
    EXPECT_THAT(log, HasSubstr("12:34:56 - Adding RPM: 1003 on line 4"));
}

TEST_F(Recorder, WhatIsNoDatalogIsToldAndLeavesNothingInHand) {
    const std::string path = fake.folder.write("diary.dat", "Dear diary\n");
    recorder.LoadData(path);
    EXPECT_THAT(box().text, HasSubstr("The datalog cannot be read.\nIt is no datalog"));
    EXPECT_EQ(recorder.status(), "Error Processing File.");
    EXPECT_TRUE(recorder.log().empty());
    recorder.Toolbar(playButton);
    EXPECT_EQ(recorder.PlayState, 0);
}

TEST_F(Recorder, TheUnitsOfALogBecomeThoseOfTheCalibrationAndTheTunerHearsOfIt) {
    open(fake.folder.write("none", ""));
    session.CurrentUnit(3);
    const std::string before = session.currentUnitObject().MAPUnits();
    ASSERT_EQ(before, "kPa");
    std::string text = "ZENTAQ 4.10 DATALOG\tX\r\n1\t0\t0";
    for (int i = 0; i < 20; ++i) text += "\t0";
    text += "\tPSIA\t14.7\r\nFrame\r\n1";
    for (int i = 0; i < 66; ++i) text += "\t5";
    recorder.LoadData(fake.folder.write("psia.dat", text + "\r\n"));
    EXPECT_EQ(session.currentUnitObject().MAPUnits(), "PSIA");
    EXPECT_TRUE(logged("Datalog: pressure units PSIA in place of kPa"));
}

// ---- Playback

TEST_F(Recorder, NothingButRecordActsWithoutALog) {
    for (const int button : {0, 1, 2, 3, 4, 6, 7}) {
        recorder.Toolbar(button);
        EXPECT_EQ(recorder.status(), "") << button;
    }
}

TEST_F(Recorder, PlaysToTheEndAndStops) {
    load({1, 2, 3});
    recorder.Toolbar(playButton);
    EXPECT_EQ(recorder.caption(RecorderButton::Play), "||");
    EXPECT_EQ(recorder.playbackIntervalMs(), 20);
    for (int i = 0; i < 3; ++i) recorder.firePlayback();
    EXPECT_EQ(recorder.CurrentRow(), 3);
    recorder.firePlayback();
    EXPECT_EQ(recorder.status(), "End");
    EXPECT_EQ(recorder.playbackIntervalMs(), 0);
    EXPECT_EQ(recorder.caption(RecorderButton::Play), ">");
}

TEST_F(Recorder, ASecondPressOfPlayPausesAndASecondStopGoesBackToTheStart) {
    load({1, 2, 3});
    recorder.Toolbar(playButton);
    recorder.firePlayback();
    recorder.firePlayback();
    recorder.Toolbar(playButton);
    EXPECT_EQ(recorder.playbackIntervalMs(), 0);
    EXPECT_EQ(recorder.CurrentRow(), 2);
    recorder.Toolbar(playButton);
    recorder.Toolbar(stopButton);
    EXPECT_EQ(recorder.CurrentRow(), 2);
    recorder.Toolbar(stopButton);
    EXPECT_EQ(recorder.CurrentRow(), 0);
    EXPECT_EQ(recorder.frameText(), "0");
}

TEST_F(Recorder, TheSliderOfTheSpeedGivesFiveIntervals) {
    for (const auto& [place, ms] :
         {std::pair{0, 80}, {24, 80}, {25, 40}, {49, 40}, {50, 20}, {74, 20}, {75, 10}, {99, 10}, {100, 5}})
        EXPECT_EQ(FlightRecord::intervalOf(place), ms) << place;
    load({1, 2, 3});
    recorder.Toolbar(playButton);
    recorder.playbackSpeed(100);
    EXPECT_EQ(recorder.playbackIntervalMs(), 5);
}

TEST_F(Recorder, AtTheEndsTheStepsSayWhereTheyAre) {
    load({1, 2, 3});
    recorder.Toolbar(7);
    EXPECT_EQ(recorder.status(), "Full Forward");
    recorder.Toolbar(6);
    EXPECT_EQ(recorder.status(), "End");
    recorder.Toolbar(0);
    EXPECT_EQ(recorder.status(), "Full Back");
    recorder.Toolbar(1);
    EXPECT_EQ(recorder.status(), "Step Back");
    recorder.Toolbar(1);
    EXPECT_EQ(recorder.status(), "Beginning");
}

TEST_F(Recorder, TheModesOpenTheButtonsThatTheyHave) {
    const auto open = [&] {
        std::string all;
        for (int i = 0; i < recorderButtons; ++i)
            all += recorder.enabled(static_cast<RecorderButton>(i)) ? '1' : '0';
        return all;
    };
    recorder.Mode(0);
    EXPECT_EQ(open(), "00000000");
    recorder.Mode(1);
    EXPECT_EQ(open(), "11111111");
    EXPECT_EQ(recorder.status(), "Ready");
    recorder.Mode(2);
    EXPECT_EQ(open(), "00000100");
    EXPECT_EQ(recorder.status(), "");
    recorder.Mode(3);
    EXPECT_EQ(open(), "11111011");
    EXPECT_EQ(recorder.status(), "Ready");
}

TEST_F(Recorder, AMonitorSessionOpensTheRecordButtonAndItsEndClosesIt) {
    recorder.Mode(0);
    commands.Load_Command(2);
    EXPECT_TRUE(recorder.enabled(RecorderButton::Record));
    commands.Load_Command(3);
    EXPECT_FALSE(recorder.enabled(RecorderButton::Record));
}

TEST_F(Recorder, TheRowOnShowIsToldWithCaptionValueAndUnit) {
    load({1, 2, 3});
    recorder.Toolbar(7);
    const auto shown = recorder.shown();
    EXPECT_EQ(shown[0].caption, "RPM");
    EXPECT_EQ(shown[0].value, "1003");
    EXPECT_EQ(shown[1].caption, "Manifold Pressure");
    EXPECT_EQ(shown[1].value, "60.5");
    EXPECT_EQ(shown[5].caption, "Actual Air-to-Fuel Ratio");
    EXPECT_EQ(shown[5].value, "14.70");
    EXPECT_EQ(shown[5].unit, ":1");
}

TEST_F(Recorder, WhileItsPageIsSeenTheGaugesShowTheLogAndNobodyPolls) {
    load({1, 2, 3});
    EXPECT_FALSE(recorder.showsLog());
    recorder.pageShown(true);
    recorder.Toolbar(7);
    EXPECT_TRUE(recorder.showsLog());
    EXPECT_EQ(session.live.RPM, 1003);
    recorder.pageShown(false);
    EXPECT_FALSE(recorder.showsLog());
    EXPECT_TRUE(std::isnan(session.live.RPM));
}

TEST_F(Recorder, BehindAnotherPageAUnitOnTheLinkComesFirst) {
    load({1, 2, 3});
    recorder.Toolbar(playButton);
    recorder.firePlayback();
    EXPECT_TRUE(recorder.showsLog());
    link();
    recorder.firePlayback();
    EXPECT_FALSE(recorder.showsLog());
    EXPECT_EQ(recorder.PlayState, 1);
}

TEST_F(Recorder, ATimeOfThePlotIsGoneTo) {
    load({1, 2, 3, 50, 51});
    recorder.goTo(0.06);
    EXPECT_EQ(recorder.row(), 2U);
    recorder.goTo(99);
    EXPECT_EQ(recorder.row(), 4U);
    recorder.goTo(0);
    EXPECT_EQ(recorder.row(), 0U);
}

// ---- Against a second model

/// A set of records with a place in front of the first one, and the counters, as they were described.
class ModelRecorder {
 public:
    explicit ModelRecorder(std::vector<int> frames) : frames_(std::move(frames)) {}

    int frameNumber = 0;
    int currentRow = 0;
    int playState = 0;
    std::string status = "Ready";
    int position = 0;

    void press(int button) {
        const int last = static_cast<int>(frames_.size()) - 1;
        switch (button) {
            case 0:
                playState = 0;
                position = 0;
                frameNumber = currentRow = frames_[0];
                status = "Full Back";
                break;
            case 7:
                playState = 0;
                position = last;
                frameNumber = currentRow = frames_.back();
                status = "Full Forward";
                break;
            case 1:
                playState = 0;
                status = currentRow != 0 && update(-1) == 0 ? "Step Back" : "Beginning";
                break;
            case 6:
                playState = 0;
                status = currentRow != frames_.back() && update(1) == 0 ? "Step Forward" : "End";
                break;
            case 2:
            case 4: {
                const int direction = button == 4 ? 1 : -1;
                const bool pause = playState == direction;
                playState = pause ? 0 : direction;
                status = pause ? "Stopped" : direction > 0 ? "Playing" : "Reverse";
                break;
            }
            case 3:
                if (playState == 0) position = frameNumber = currentRow = 0;
                playState = 0;
                status = "Stopped";
                break;
            default:
                break;
        }
    }
    void fire() {
        if (playState == 0) return;
        if (update(playState) == 0) return;
        status = playState > 0 ? "End" : "Beginning";
        playState = 0;
    }
    void jump(float share) {
        position = 0;
        if (share >= 1) position = static_cast<int>(frames_.size()) - 1;
        if (share > 0 && share < 1)
            for (int i = 0; i < static_cast<int>(static_cast<double>(share) * frames_.back()); ++i)
                if (position + 1 < static_cast<int>(frames_.size())) ++position;
        frameNumber = frames_[static_cast<std::size_t>(position)];
        currentRow = position + 1;
    }

 private:
    int update(int step) {
        if (step < 0) {
            if (currentRow == 0) return 2;
            frameNumber -= 1;
            if (position >= 0 && frameNumber < frames_[static_cast<std::size_t>(position)]) position -= 1;
        } else {
            if (currentRow == frames_.back() || position + 1 == static_cast<int>(frames_.size())) return 1;
            position += 1;
            frameNumber += 1;
            if (frameNumber < frames_[static_cast<std::size_t>(position)]) position -= 1;
        }
        currentRow = position + 1;
        return 0;
    }
    std::vector<int> frames_;
};

TEST_F(Recorder, AgreesWithASecondModelThroughTenThousandRandomPresses) {
    std::mt19937 random(11);
    for (int log = 0; log < 10; ++log) {
        std::vector<int> frames;
        int frame = 0;
        const int widest = log < 3 ? 1 : 12;
        for (int i = 0; i < 40; ++i) frames.push_back(frame += 1 + static_cast<int>(random() % widest));
        load(frames);
        ModelRecorder model(frames);
        for (int step = 0; step < 1000; ++step) {
            const auto what = static_cast<int>(random() % 12);
            if (what == recordButton) continue;
            if (what < 8) {
                model.press(what);
                recorder.Toolbar(what);
            } else if (what < 11) {
                for (int i = 0; i < static_cast<int>(random() % 30); ++i) {
                    model.fire();
                    recorder.firePlayback();
                }
            } else {
                const float share = static_cast<float>(random() % 130) / 100 - 0.1F;
                model.jump(share);
                recorder.FrameUpdate(0, share);
            }
            const std::string told = "log " + std::to_string(log) + ", step " + std::to_string(step);
            ASSERT_EQ(recorder.FrameNumber(), model.frameNumber) << told;
            ASSERT_EQ(recorder.CurrentRow(), model.currentRow) << told;
            ASSERT_EQ(recorder.row(), static_cast<std::size_t>(std::max(model.position, 0))) << told;
            ASSERT_EQ(recorder.PlayState, model.playState) << told;
            ASSERT_EQ(recorder.status(), model.status) << told;
            ASSERT_EQ(recorder.caption(RecorderButton::Play), model.playState > 0 ? "||" : ">") << told;
            ASSERT_EQ(recorder.caption(RecorderButton::Reverse), model.playState < 0 ? "||" : "<") << told;
            ASSERT_EQ(recorder.playbackIntervalMs() != 0, model.playState != 0) << told;
        }
    }
}

}  // namespace
}  // namespace zentaq
