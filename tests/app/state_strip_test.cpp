#include "app/state_strip.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "app/calibration_floats.h"
#include "app/command_fixture.h"
#include "app/strip_facts.h"

namespace zentaq {

void PrintTo(const StripRow& row, std::ostream* out) {
    *out << row.text << " [" << row.command << row.topic << "]";
}

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using Transfer = StripFacts::Transfer;

StripRow row(const StripFacts& facts, StripPart part) {
    const std::vector<StripRow> rows = stripRows(facts);
    return *std::ranges::find(rows, part, &StripRow::part);
}

/// What is to be read, from left to right.
std::string reading(const StripFacts& facts) {
    std::string text;
    for (const StripRow& one : stripRows(facts)) {
        if (!one.text.empty()) text += (text.empty() ? "" : " | ") + one.text;
    }
    return text;
}

// ---- What is read

TEST(StateStrip, AtTheStartThereIsNoPortAndNoCalibration) {
    EXPECT_EQ(reading({}), "NO PORT | Gauges not live | No calibration");
    EXPECT_EQ(row({}, StripPart::Unit).tone, StripTone::Plain);
    EXPECT_EQ(row({}, StripPart::Unit).command, "mnuAutoDetectPort");
    EXPECT_EQ(row({}, StripPart::Gauges).tone, StripTone::Plain);
    EXPECT_EQ(row({}, StripPart::File).command, "mnuOpen");
}

TEST(StateStrip, APortWithoutAUnit) {
    const StripRow unit = row({.portOpen = true, .port = "3"}, StripPart::Unit);
    EXPECT_EQ(unit.text, "NO UNIT");
    EXPECT_THAT(unit.meaning, HasSubstr("Port 3 is open"));
    EXPECT_EQ(unit.command, "mnuIdentifyORB");
}

TEST(StateStrip, WhileTuningAllIsGood) {
    EXPECT_EQ(reading(tuning()), "ORB A 001234 | ONFLY | ORB A  tune.ZQ4OA | ZQA5099");
    const StripRow unit = row(tuning(), StripPart::Unit);
    EXPECT_EQ(unit.tone, StripTone::Good);
    EXPECT_EQ(unit.meaning,
              "On the link is ORB A 001234, firmware ZQA5099. Press to ask it again who it is.");
    const StripRow onFly = row(tuning(), StripPart::OnFly);
    EXPECT_EQ(onFly.tone, StripTone::OnFly);
    EXPECT_EQ(onFly.topic, "on-the-fly");
}

TEST(StateStrip, ChangesAreInNeitherPlaceUntilBothCommandsHaveRun) {
    StripFacts facts = tuning();
    facts.modified = facts.changesNotStored = true;
    EXPECT_EQ(reading(facts),
              "ORB A 001234 | ONFLY | Not stored in ORB | Modified, not saved | ORB A  tune.ZQ4OA | ZQA5099");
    EXPECT_EQ(row(facts, StripPart::NotStored).command, "mnuStoreONFLY");
    EXPECT_EQ(row(facts, StripPart::NotStored).tone, StripTone::Changed);
    EXPECT_EQ(row(facts, StripPart::NotSaved).command, "mnuSave");
    facts.modified = false;  // saved
    EXPECT_EQ(row(facts, StripPart::NotSaved).text, "");
    facts.changesNotStored = false;  // stored
    EXPECT_EQ(reading(facts), reading(tuning()));
}

TEST(StateStrip, WhatCannotBeStoredNowIsExplained) {
    StripFacts facts = tuning();
    facts.changesNotStored = true;
    facts.unitFound = facts.identified = facts.kindAgrees = false;
    facts.unitLost = true;
    const StripRow stored = row(facts, StripPart::NotStored);
    EXPECT_EQ(stored.text, "Not stored in ORB");
    EXPECT_EQ(stored.command, "");
    EXPECT_EQ(stored.topic, "on-the-fly#store");
}

TEST(StateStrip, ALostLinkIsAnAlarmAndItsGaugesAreOld) {
    StripFacts facts = tuning();
    facts.unitFound = facts.identified = facts.onFly = facts.kindAgrees = facts.framesCome = false;
    facts.unitLost = true;
    EXPECT_EQ(reading(facts), "LINK LOST | Gauges not live | ORB A  tune.ZQ4OA | ZQA5099");
    EXPECT_EQ(row(facts, StripPart::Unit).tone, StripTone::Alarm);
    EXPECT_THAT(row(facts, StripPart::Unit).meaning, HasSubstr("ORB A 001234 does not answer any more."));
    EXPECT_EQ(row(facts, StripPart::Gauges).tone, StripTone::Warning);
    EXPECT_EQ(row(facts, StripPart::Gauges).meaning,
              "No values come from a unit. What the gauges show is old. Press to ask who is there.");
}

TEST(StateStrip, AnAdapterThatWasPulledIsAskedFor) {
    const StripRow unit = row({.portOpen = true, .adapterAway = true, .unitLost = true}, StripPart::Unit);
    EXPECT_EQ(unit.text, "ADAPTER UNPLUGGED");
    EXPECT_EQ(unit.tone, StripTone::Alarm);
}

TEST(StateStrip, AnotherKindThanTheCalibrationIsNamedWithBoth) {
    StripFacts facts = tuning();
    facts.kindAgrees = facts.onFly = false;
    facts.model = "ORB L";
    const StripRow unit = row(facts, StripPart::Unit);
    EXPECT_EQ(unit.text, "ORB A 001234, FILE FOR ORB L");
    EXPECT_EQ(unit.tone, StripTone::Warning);
    facts.inHand = false;
    EXPECT_EQ(row(facts, StripPart::Unit).text, "ORB A 001234") << "without a file nothing disagrees";
    facts.inHand = facts.creating = true;
    EXPECT_EQ(row(facts, StripPart::Unit).text, "ORB A 001234") << "what is being made is not for this unit";
}

TEST(StateStrip, WhileProgrammingTheUnitIsLeftAloneAndTheGaugesAreNotLive) {
    StripFacts facts = tuning();
    facts.transfer = Transfer::Calibration;
    facts.percent = 42;
    EXPECT_EQ(row(facts, StripPart::Unit).text, "PROGRAMMING 42%");
    EXPECT_EQ(row(facts, StripPart::Unit).tone, StripTone::Warning);
    const StripRow gauges = row(facts, StripPart::Gauges);
    EXPECT_EQ(gauges.text, "Gauges not live");
    EXPECT_EQ(gauges.meaning, "No values come while a transfer runs. What the gauges show is old.");
    EXPECT_EQ(gauges.command, "");
    facts.transfer = Transfer::Firmware;
    EXPECT_EQ(row(facts, StripPart::Unit).text, "FIRMWARE 42%");
    facts.transfer = Transfer::Datalog;
    EXPECT_EQ(row(facts, StripPart::Unit).text, "READING DATALOG");
}

TEST(StateStrip, AnOldFirmwareIsAnAlarm) {
    StripFacts facts = tuning();
    facts.oldFirmware = true;
    facts.identified = false;
    EXPECT_EQ(row(facts, StripPart::Unit).text, "OLD FIRMWARE");
    EXPECT_EQ(row(facts, StripPart::Unit).tone, StripTone::Alarm);
}

TEST(StateStrip, AUnitThatHasNotToldItsFirmwareIsNotGoodYet) {
    StripFacts facts = tuning();
    facts.identified = false;
    EXPECT_EQ(row(facts, StripPart::Unit).text, "ORB A 001234");
    EXPECT_EQ(row(facts, StripPart::Unit).tone, StripTone::Plain);
}

TEST(StateStrip, ASearchCanBeEnded) {
    StripFacts facts = tuning();
    facts.searching = true;
    EXPECT_EQ(row(facts, StripPart::Unit).text, "Searching ports");
    EXPECT_EQ(row(facts, StripPart::Unit).command, "mnuAutoDetectPort");
}

TEST(StateStrip, ZeroAdvanceIsAnAlarmThatEndsIt) {
    StripFacts facts = tuning();
    facts.zeroAdvanceAsked = true;
    EXPECT_EQ(row(facts, StripPart::ZeroAdvance).text, "Zero advance asked");
    facts.zeroAdvance = true;
    EXPECT_EQ(row(facts, StripPart::ZeroAdvance).text, "ZERO ADVANCE");
    EXPECT_EQ(row(facts, StripPart::ZeroAdvance).tone, StripTone::Alarm);
    EXPECT_EQ(row(facts, StripPart::ZeroAdvance).command, "mnuZeroAdv");
    EXPECT_THAT(row(facts, StripPart::ZeroAdvance).meaning, HasSubstr("Press to give the timing back."));
    facts.zeroAdvanceAsked = false;
    EXPECT_THAT(row(facts, StripPart::ZeroAdvance).meaning, HasSubstr("asked to end that"));
}

TEST(StateStrip, ACalibrationThatIsBeingMadeIsInNoFile) {
    StripFacts facts = tuning();
    facts.creating = true;
    facts.file.clear();
    EXPECT_EQ(row(facts, StripPart::NotSaved).text, "New, not saved");
    EXPECT_EQ(row(facts, StripPart::File).text, "ORB A  new calibration");
}

TEST(StateStrip, WorkIsNamedWhileItLasts) {
    EXPECT_EQ(row({.reading = true}, StripPart::Work).text, "Opening . . .");
    EXPECT_EQ(row({.saving = true}, StripPart::Work).text, "Saving . . .");
    EXPECT_EQ(row({}, StripPart::Work).text, "");
}

TEST(StateStrip, EveryPartHasANameOfItsOwnAMeaningAndSomewhereToGo) {
    StripFacts facts = tuning();
    facts.changesNotStored = facts.modified = facts.zeroAdvance = facts.saving = true;
    facts.framesCome = false;
    facts.notice = "Told.";
    facts.cell = "20 kPa, 500 RPM: 4 %";
    facts.cellState = "The cell in hand.";
    std::set<std::string_view> names;
    for (const StripRow& one : stripRows(facts)) {
        names.insert(stripName(one.part));
        EXPECT_FALSE(one.text.empty()) << stripName(one.part);
        EXPECT_FALSE(one.meaning.empty()) << one.text;
        // A message is put away, and a cell is gone to.
        if (one.part == StripPart::Notice || one.part == StripPart::Cell) continue;
        EXPECT_NE(one.command.empty(), one.topic.empty()) << one.text;
    }
    EXPECT_EQ(names.size(), 11u);
}

TEST(StateStrip, CommandsAreEntriesOfTheMenu) {
    StripFacts facts = tuning();
    facts.changesNotStored = facts.modified = facts.zeroAdvance = true;
    facts.framesCome = false;
    for (const StripFacts& all : {facts, StripFacts{}, StripFacts{.portOpen = true}}) {
        for (const StripRow& one : stripRows(all)) {
            if (one.command.empty()) continue;
            EXPECT_NE(std::ranges::find(menuTree(), one.command, &MenuEntry::name), menuTree().end())
                << one.text;
        }
    }
}

TEST(StateStrip, AMessageAndAnAlarmAreToldAtOnceAndOnceAndAStateIsNot) {
    StripFacts facts = tuning();
    const StripFacts before = facts;
    const auto told = [&](StripPart part) { return isToldAtOnce(row(facts, part), row(before, part)); };
    facts.notice = "Not there any more: /tune.ZQ4OA";
    facts.zeroAdvance = true;
    facts.modified = true;
    EXPECT_TRUE(told(StripPart::Notice));
    EXPECT_TRUE(told(StripPart::ZeroAdvance)) << row(facts, StripPart::ZeroAdvance).text;
    EXPECT_FALSE(told(StripPart::NotSaved));
    EXPECT_FALSE(isToldAtOnce(row(facts, StripPart::Notice), row(facts, StripPart::Notice)));
    EXPECT_FALSE(isToldAtOnce(row(before, StripPart::Notice), row(facts, StripPart::Notice))) << "it goes";
}

// ---- Folding

constexpr int allWide[] = {100, 100, 100, 100, 100, 100, 100, 100, 100, 100, 100};

TEST(StateStrip, FoldsNothingWhereAllHaveRoom) {
    const auto folded = foldedParts(allWide, 11 * 100 + 10 * 5, 40, 5);
    EXPECT_EQ(std::ranges::count(folded, true), 0);
}

TEST(StateStrip, FoldsFirmwareFirstAndZeroAdvanceLast) {
    const auto first = foldedParts(allWide, 11 * 100 + 10 * 5 - 1, 40, 5);
    EXPECT_THAT(first, ElementsAre(false, false, false, false, false, false, false, false, false, false, true));
    const auto most = foldedParts(allWide, 2 * 100 + 40 + 2 * 5, 40, 5);
    EXPECT_THAT(most, ElementsAre(false, true, true, true, true, false, true, true, true, true, true))
        << "unit and zero advance stay";
    const auto least = foldedParts(allWide, 100 + 40 + 5, 40, 5);
    EXPECT_THAT(least, ElementsAre(true, true, true, true, true, false, true, true, true, true, true));
}

TEST(StateStrip, APartThatSaysNothingIsNotFolded) {
    const int widths[] = {100, 0, 0, 0, 0, 0, 0, 0, 100, 0, 100};
    const auto folded = foldedParts(widths, 250, 40, 5);
    EXPECT_THAT(folded, ElementsAre(false, false, false, false, false, false, false, false, false, false, true));
}

// ---- Of a session

class StateStripOfSession : public CommandTest {
 protected:
    std::string text(StripPart part) { return row(stripFacts(session), part).text; }
    void tune() {
        connect(200001, "ZQA-405099");
        open(writeFloats(fake.folder.path("tune.ZQ4OA"), wholeFloats()));
    }
};

TEST_F(StateStripOfSession, FollowsAUnitFromItsComingToItsGoing) {
    EXPECT_EQ(text(StripPart::Unit), "NO PORT");
    session.link.load();
    EXPECT_EQ(text(StripPart::Unit), "NO UNIT");
    tune();
    EXPECT_EQ(text(StripPart::Unit), "ORB A 200001");
    EXPECT_EQ(text(StripPart::OnFly), "ONFLY");
    loseUnit();
    EXPECT_EQ(text(StripPart::Unit), "LINK LOST");
    EXPECT_EQ(text(StripPart::OnFly), "");
    identify(200001);
    EXPECT_EQ(text(StripPart::Unit), "ORB A 200001");
}

TEST_F(StateStripOfSession, AChangeIsNotStoredAndNotSavedUntilItIs) {
    tune();
    change(6800);
    EXPECT_EQ(text(StripPart::NotStored), "Not stored in ORB");
    EXPECT_EQ(text(StripPart::NotSaved), "Modified, not saved");
    commands.saves.save();
    EXPECT_EQ(text(StripPart::NotSaved), "");
    EXPECT_EQ(text(StripPart::NotStored), "Not stored in ORB") << "the file is not the unit";
    commands.unit.storeOnFly();
    for (int i = 0; i < 40 && session.link.CurrentCommand() != "S"; ++i) answer("AX");
    EXPECT_EQ(text(StripPart::NotStored), "Not stored in ORB") << "until the unit has answered";
    answer("AX");
    EXPECT_EQ(text(StripPart::NotStored), "");
}

TEST_F(StateStripOfSession, GaugesAreLiveWhileFramesCome) {
    fake.clock.nowUs = 10'000'000;
    EXPECT_FALSE(gaugesLive(session));
    fake.forLink.heard({LinkEvent::FrameDecoded});
    EXPECT_TRUE(gaugesLive(session));
    fake.clock.nowUs += 1'000'001;
    EXPECT_FALSE(gaugesLive(session));
}

TEST_F(StateStripOfSession, GaugesAreNotLiveWhileATransferRunsHoweverFreshTheLastFrameIs) {
    std::vector<float> floats = wholeFloats(3, 5099, 2);
    giveRisingAxes(floats);
    open(writeFloats(fake.folder.path("tune.ZQ4OA"), floats));
    identify(200001);
    answer(firmwareReply("", "ZQA-504099", 39));
    fake.forLink.heard({LinkEvent::FrameDecoded});
    ASSERT_TRUE(gaugesLive(session));
    commands.programming.programOrb();
    ASSERT_TRUE(session.link.transfer().pending());
    fake.forLink.heard({LinkEvent::FrameDecoded});
    EXPECT_FALSE(gaugesLive(session));
    EXPECT_EQ(text(StripPart::Gauges), "Gauges not live");
}

TEST_F(StateStripOfSession, AtASlowRateGaugesAreLiveForThreeFrames) {
    fake.settings.set("System", "ADUR", "1");
    fake.forLink.heard({LinkEvent::FrameDecoded});
    fake.clock.nowUs += 2'900'000;
    EXPECT_TRUE(gaugesLive(session));
    fake.clock.nowUs += 200'000;
    EXPECT_FALSE(gaugesLive(session));
}

TEST_F(StateStripOfSession, ANoticeStandsInTheLogAndForAWhileInTheStrip) {
    session.notice("The search for a unit was ended.");
    EXPECT_TRUE(logged("The search for a unit was ended."));
    EXPECT_EQ(text(StripPart::Notice), "The search for a unit was ended.");
    session.notices.userIsThere(fake.clock.nowUs);
    fake.clock.nowUs += Notices::standsUs;
    EXPECT_EQ(text(StripPart::Notice), "");
}

TEST_F(StateStripOfSession, NoticesStandBehindEachOther) {
    session.notice("One.");
    session.notice("Two.");
    const StripRow both = row(stripFacts(session), StripPart::Notice);
    EXPECT_EQ(both.text, "Two. (+1 more)");
    EXPECT_EQ(both.meaning,
              "Press to put this message away and to read the one before it. It stands in the console too.");
    session.notices.dismiss(fake.clock.nowUs);
    EXPECT_EQ(text(StripPart::Notice), "One.");
}

TEST_F(StateStripOfSession, ASearchThatIsEndedFindsNothingAndGivesTheOwnPortBack) {
    fake.yield.meanwhile = [this] {
        EXPECT_EQ(text(StripPart::Unit), "Searching ports");
        commands.unit.searchPorts();
    };
    fake.yield.passing = [this] { fake.clock.nowUs += 10'000; };
    fake.port.presentNumber = 1;
    EXPECT_EQ(commands.unit.autodetectPort(), 0);
    EXPECT_LE(fake.clock.nowUs, 20'000) << "it did not wait for an answer";
    EXPECT_FALSE(session.link.searching());
    EXPECT_EQ(text(StripPart::Notice), "The search for a unit was ended.");
    EXPECT_TRUE(boxes().empty());
    EXPECT_TRUE(fake.port.isOpen());
}

}  // namespace
}  // namespace zentaq
