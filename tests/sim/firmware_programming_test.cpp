// Firmware over the line: what a unit answers before, during and after P3.
#include <gtest/gtest.h>

#include <sstream>

#include "base/errors.h"
#include "sim/firmware_file.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

SimulatedUnit inUpgradeMode(std::string_view model = "A") {
    SimulatedUnit unit = unitOf(model);
    unit.setUpgradeMode(true);
    return unit;
}

std::string lineEndOf(const SimulatedUnit& unit) {
    return unit.profile().linesEndInLineFeed ? "\r\n" : "";
}

/// The lines of a firmware file without their ends.
std::vector<std::string> firmwareLines(std::string_view text) {
    std::vector<std::string> lines;
    std::istringstream file(simulatedFirmware(text));
    for (std::string line; std::getline(file, line);) lines.push_back(line.substr(0, line.size() - 1));
    return lines;
}

/// Sends P3 and the first lines of a file.
void begin(SimulatedUnit& unit, std::string_view firmware, std::size_t lines) {
    ASSERT_EQ(askText(unit, "P3"), "AX");
    const auto all = firmwareLines(firmware);
    for (std::size_t i = 0; i < lines; ++i) ASSERT_EQ(askText(unit, all.at(i) + lineEndOf(unit)), "AX") << i;
}

void program(SimulatedUnit& unit, std::string_view firmware) {
    const auto lines = firmwareLines(firmware);
    begin(unit, firmware, lines.size() - 1);
    ASSERT_EQ(askText(unit, lines.back() + lineEndOf(unit)), "PN");
}

std::string firmwareTold(SimulatedUnit& unit) {
    const Bytes reply = ask(unit, "B");
    return reply.size() < 37 ? "" : textOf({reply.begin() + 27, reply.begin() + 37});
}

void expectBootLoaderOnly(SimulatedUnit& unit) {
    for (const char* command :
         {"E", "B", "C", "F", "W", "I", "T", "D", "A", "K", "S", "P1", "P2", "S10411228048"}) {
        EXPECT_EQ(askText(unit, command), "") << command;
    }
    EXPECT_EQ(askText(unit, "P3"), "AX");
}

class FirmwareOfOrbA : public testing::Test {
 protected:
    SimulatedUnit unit = inUpgradeMode();
};

TEST_F(FirmwareOfOrbA, IsRefusedOutsideOfUpgradeModeAndNothingChanges) {
    unit.setUpgradeMode(false);
    EXPECT_EQ(askText(unit, "P3"), "AR");
    EXPECT_EQ(firmwareTold(unit), "ZQA-405099");
    EXPECT_EQ(unit.firmware().revision(), 0u);
}

TEST_F(FirmwareOfOrbA, UpgradeModeAloneChangesNothingElse) {
    EXPECT_EQ(ask(unit, "E").size(), 8u);
    EXPECT_EQ(ask(unit, "W").size(), 65u);
}

class FirmwareOfEveryKind : public testing::TestWithParam<const UnitProfile*> {};

TEST_P(FirmwareOfEveryKind, RunsFromTheNextPowerCycleOnWithAnErasedCalibration) {
    SimulatedUnit unit = inUpgradeMode(GetParam()->model);
    unit.setCalibrationName("STREET");
    const std::string text = std::string(GetParam()->firmwarePrefix) + "-509123";
    const Bytes serial = ask(unit, "E");
    program(unit, text);
    // Only the power brings it back: not even the boot loader answers.
    for (const char* command : {"E", "B", "P3", "W"}) EXPECT_EQ(askText(unit, command), "") << command;
    unit.advance(60);
    EXPECT_EQ(askText(unit, "P3"), "");
    unit.powerCycle();
    EXPECT_EQ(ask(unit, "E"), serial);
    EXPECT_EQ(firmwareTold(unit), text);
    EXPECT_EQ(unit.identity().firmware, text);
    EXPECT_EQ(unit.memory(), Bytes(unit.memory().size(), 0xFF));
    EXPECT_EQ(unit.permanentMemory(), Bytes(unit.memory().size(), 0xFF));
    const Bytes reply = ask(unit, "B");
    EXPECT_EQ(Bytes(reply.begin() + 3, reply.begin() + 27), Bytes(24, 0xFF));
    EXPECT_TRUE(isSealed(reply));
}

INSTANTIATE_TEST_SUITE_P(Models, FirmwareOfEveryKind,
                         testing::ValuesIn(allProfiles().begin(), allProfiles().end()),
                         [](const auto& row) { return plainName(row.param->model); });

TEST(Firmware, BringsTheWideFrameWithItsRelease) {
    SimulatedUnit unit = unitOf("A", "ZQA-404099");
    unit.setUpgradeMode(true);
    ASSERT_TRUE(ask(unit, "W").empty());
    program(unit, "ZQA-405001");
    unit.powerCycle();
    EXPECT_EQ(ask(unit, "W").size(), 65u);
}

TEST(Firmware, LinesOfAllKindsButTheOrbACountWithTheirEnd) {
    SimulatedUnit unit = inUpgradeMode("L");
    ASSERT_EQ(askText(unit, "P3"), "AX");
    const auto lines = firmwareLines("ZQL-408001");
    EXPECT_EQ(askText(unit, lines[0]), "");
    EXPECT_EQ(askText(unit, "\r\n"), "AX");
    SimulatedUnit orb = inUpgradeMode("A");
    ASSERT_EQ(askText(orb, "P3"), "AX");
    EXPECT_EQ(askText(orb, firmwareLines("ZQA-505100")[0]), "AX");
    EXPECT_EQ(askText(orb, firmwareLines("ZQA-505100")[1] + "\r\n"), "AR");
}

TEST_F(FirmwareOfOrbA, OfAnotherKindIsRefusedAndTheOldOneStays) {
    ASSERT_EQ(askText(unit, "P3"), "AX");
    EXPECT_EQ(askText(unit, firmwareLines("ZQL-408001")[0]), "AR");
    EXPECT_EQ(firmwareTold(unit), "ZQA-405099");
}

TEST(Firmware, DamagedLineIsRefusedAndLeavesOnlyTheBootLoader) {
    const auto lines = firmwareLines("ZQA-505100");
    std::string flipped = lines[3];
    flipped[20] = flipped[20] == '0' ? '1' : '0';
    for (const std::string& bad :
         {flipped, lines[4], lines[0], std::string("E"), std::string("S5030003F9")}) {
        SimulatedUnit unit = inUpgradeMode();
        begin(unit, "ZQA-505100", 3);
        EXPECT_EQ(askText(unit, bad), "AR") << bad;
        EXPECT_EQ(unit.firmware().installed().state, FirmwareState::Missing);
        expectBootLoaderOnly(unit);
    }
}

TEST_F(FirmwareOfOrbA, MissingOneIsPutInWithoutTheUpgradeSwitch) {
    begin(unit, "ZQA-505100", 3);
    unit.setUpgradeMode(false);
    EXPECT_EQ(askText(unit, "X"), "AR");
    program(unit, "ZQA-505101");
    unit.powerCycle();
    EXPECT_EQ(firmwareTold(unit), "ZQA-505101");
}

TEST(Firmware, ResetHangUpOrTenSecondsOnTheWayLeaveOnlyTheBootLoader) {
    struct Row {
        const char* what;
        void (*ends)(SimulatedUnit&);
    };
    for (const Row& row : {Row{"reset", [](SimulatedUnit& unit) { unit.powerCycle(); }},
                           Row{"hung up", [](SimulatedUnit& unit) { unit.lineLost(); }},
                           Row{"left alone", [](SimulatedUnit& unit) { unit.advance(10.1); }}}) {
        SCOPED_TRACE(row.what);
        SimulatedUnit unit = inUpgradeMode();
        begin(unit, "ZQA-505100", 3);
        row.ends(unit);
        expectBootLoaderOnly(unit);
    }
}

TEST_F(FirmwareOfOrbA, PauseOfLessThanTenSecondsIsBorne) {
    begin(unit, "ZQA-505100", 3);
    unit.advance(9.9);
    EXPECT_EQ(askText(unit, firmwareLines("ZQA-505100")[3]), "AX");
}

TEST_F(FirmwareOfOrbA, TransferThatNeverSendsALineLeavesTheOldOneAtWork) {
    ASSERT_EQ(askText(unit, "P3"), "AX");
    unit.advance(10.1);
    EXPECT_EQ(firmwareTold(unit), "ZQA-405099");
    ASSERT_EQ(askText(unit, "P3"), "AX");
    unit.powerCycle();
    EXPECT_EQ(firmwareTold(unit), "ZQA-405099");
}

TEST_F(FirmwareOfOrbA, CalibrationStaysUntilTheNewOneStarts) {
    ask(unit, "P2S10411228048");
    ask(unit, "S");
    program(unit, "ZQA-505100");
    EXPECT_EQ(unit.permanentMemory()[34], 0x80);
}

TEST_F(FirmwareOfOrbA, WithoutItACalibrationCannotBeProgrammed) {
    begin(unit, "ZQA-505100", 2);
    unit.powerCycle();
    EXPECT_EQ(askText(unit, "P1"), "");
    EXPECT_EQ(askText(unit, imageRow(0, 1)), "");
}

TEST_F(FirmwareOfOrbA, OfAnEarlierRunIsTakenUp) {
    unit.installFirmware({FirmwareState::Running, "ZQA-505100"});
    EXPECT_EQ(firmwareTold(unit), "ZQA-505100");
    unit.installFirmware({FirmwareState::Missing, ""});
    EXPECT_EQ(askText(unit, "E"), "");
    EXPECT_THROW(unit.installFirmware({FirmwareState::Running, "ZQL-407099"}), BoundsError);
    EXPECT_THROW(unit.installFirmware({FirmwareState::Running, ""}), BoundsError);
}

TEST(UnitReset, LosesWhatWasNotStoredAndHearsNothingWhileItBoots) {
    SimulatedUnit unit = orbA();
    ask(unit, "P2S10411228048");
    unit.reset(0.4);
    EXPECT_EQ(unit.memory()[34], 0);
    EXPECT_EQ(askText(unit, "E"), "");
    unit.advance(0.39);
    EXPECT_EQ(askText(unit, "E"), "");
    unit.advance(0.02);
    EXPECT_EQ(ask(unit, "E").size(), 8u);
}

TEST(UnitReset, EndsProgrammingAndTheOldCalibrationStays) {
    SimulatedUnit unit = orbA();
    const Bytes before = unit.memory();
    ASSERT_EQ(askText(unit, "P1"), "AX");
    ASSERT_EQ(askText(unit, imageRow(0, 7)), "AX");
    unit.reset(0.4);
    unit.advance(0.5);
    EXPECT_EQ(ask(unit, "E").size(), 8u);
    EXPECT_EQ(unit.memory(), before);
}

TEST(UnitPins, HeldPinKeepsItsValueInEveryFrame) {
    SimulatedUnit unit = orbA();
    unit.holdPin(1, 7);
    EXPECT_EQ(ask(unit, "I").at(3), 7);
    EXPECT_EQ(ask(unit, "W").at(56), 7);
    EXPECT_EQ(ask(unit, "F").at(12), 7);
    unit.advance(20);
    EXPECT_EQ(ask(unit, "I").at(3), 7);
    EXPECT_THROW(unit.holdPin(0, 1), BoundsError);
    EXPECT_THROW(unit.holdPin(10, 1), BoundsError);
    EXPECT_THROW(unit.holdPin(1, 256), BoundsError);
}

TEST(UnitLog, MayBeLongerThanAUnitHasRoomFor) {
    const UnitProfile& profile = *findProfile("D");
    UnitIdentity identity = defaultIdentity(profile);
    identity.logRecords = 2184 + 3;  // 2184 are full
    SimulatedUnit unit(profile, identity);
    int records = 0;
    while (records < 3000 && ask(unit, "D").at(3) <= 82) ++records;
    EXPECT_EQ(records, 2187);
}

}  // namespace
}  // namespace zentaq::sim
