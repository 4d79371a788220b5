#include "sim/simulated_unit.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

Bytes timing(std::uint8_t argument) {
    return {'Z', argument};
}

unsigned wideRpm(SimulatedUnit& unit) {
    return word(ask(unit, "W"), 3);
}

void startProgramming(SimulatedUnit& unit) {
    ASSERT_EQ(askText(unit, "P1"), "AX");
}

void sendRows(SimulatedUnit& unit, int end, unsigned seed, int first = 0) {
    for (int row = first; row < end; ++row) ASSERT_EQ(askText(unit, imageRow(row, seed)), "AX") << row;
}

class OrbA : public testing::Test {
 protected:
    SimulatedUnit unit = orbA();
};
using OnTheFly = OrbA;
using Programming = OrbA;

TEST_F(OrbA, EGivesTheSerialNumberHighByteFirst) {
    // 200001 = 00030D41; 55 + 00 + 03 + 0D + 41 = A6
    EXPECT_EQ(ask(unit, "E"), (Bytes{0xFA, 0xA5, 0x55, 0x00, 0x03, 0x0D, 0x41, 0xA6}));
}

TEST_F(OrbA, BGivesNameFirmwareAndSubtype) {
    unit.setCalibrationName("BASE MAP");
    const Bytes reply = ask(unit, "B");
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(textOf({reply.begin() + 3, reply.begin() + 27}), "BASE MAP                ");
    EXPECT_EQ(textOf({reply.begin() + 27, reply.begin() + 37}), "ZQA-405099");
    EXPECT_EQ(reply[37], 0);
    // 0x55 + name 537 + 16 blanks of 32 + firmware 596 + 0 = 1730 = 6 * 256 + 0xC2
    EXPECT_EQ(reply[38], 0xC2);
}

TEST(SimulatedUnit, ShortFirmwareTextIsPaddedWithBlanksAndALongOneCut) {
    for (const auto& [firmware, told] : {std::pair("ZQA", "ZQA       "), {"ABCDEFGHIJKL", "ABCDEFGHIJ"}}) {
        SimulatedUnit unit(*findProfile("A"), {.serial = 1, .firmware = firmware, .subtype = 2});
        const Bytes reply = ask(unit, "B");
        EXPECT_EQ(textOf({reply.begin() + 27, reply.begin() + 37}), told);
        EXPECT_EQ(reply[37], 2);
        EXPECT_TRUE(isSealed(reply));
    }
}

TEST_F(OrbA, CGivesThirtyNineBytesWithNoOptionBit) {
    const Bytes reply = ask(unit, "C");
    ASSERT_EQ(reply.size(), 39u);
    EXPECT_EQ(reply[18] & 1, 0);
    EXPECT_EQ(reply[38], 0x55);  // only the third head byte adds to the sum
}

TEST_F(OrbA, FGivesTheNarrowFrameFromByteZero) {
    const Bytes reply = ask(unit, "F");
    ASSERT_EQ(reply.size(), 35u);
    EXPECT_NEAR(word(reply, 0), 850, 30);
    EXPECT_EQ(reply[9], 26);  // closed throttle, 0.5 V * 51 = 25.5, the even neighbour is 26
}

TEST_F(OrbA, WGivesTheWideFrameAfterItsHead) {
    const Bytes reply = ask(unit, "W");
    ASSERT_EQ(reply.size(), 65u);
    EXPECT_TRUE(isSealed(reply));
    EXPECT_NEAR(word(reply, 3), 850, 30);
}

TEST_F(OrbA, IGivesTwentyOneBytesWithTheOutputs) {
    const Bytes reply = ask(unit, "I");
    ASSERT_EQ(reply.size(), 21u);
    EXPECT_TRUE(isSealed(reply));
    EXPECT_EQ(reply[3], 255);  // the fuel pump runs
}

TEST_F(OrbA, TOfAHealthyUnitHasNoCode) {
    Bytes expected{0xFA, 0xA5, 0x55};
    expected.resize(15, 0xFF);
    expected.push_back(0x49);  // 0x55 + 12 * 255 = 3145 = 12 * 256 + 0x49
    EXPECT_EQ(ask(unit, "T"), expected);
    EXPECT_EQ(ask(unit, "W").at(29), 0);
}

TEST_F(OrbA, ASetCodeIsAClearedBitAndLightsTheLampUntilACommandA) {
    unit.setCode(2, 0);  // throttle sensor high
    unit.setCode(9, 7);
    const Bytes codes = ask(unit, "T");
    EXPECT_EQ(codes[4], 0xFE);
    EXPECT_EQ(codes[11], 0x7F);
    EXPECT_TRUE(isSealed(codes));
    EXPECT_EQ(ask(unit, "W").at(29), 1);
    EXPECT_EQ(ask(unit, "F").at(11), 1);
    EXPECT_EQ(askText(unit, "A"), "AX");
    EXPECT_EQ(ask(unit, "T").at(4), 0xFF);
    EXPECT_EQ(ask(unit, "W").at(29), 0);
}

TEST_F(OrbA, AnIntermittentCodeLeavesTheLampDark) {
    unit.setCode(7, 1);
    EXPECT_EQ(ask(unit, "T").at(9), 0xFD);
    EXPECT_EQ(ask(unit, "F").at(11), 0);
}

TEST_F(OrbA, CodesOutsideTheTableAreRefused) {
    EXPECT_THROW(unit.setCode(0, 0), BoundsError);
    EXPECT_THROW(unit.setCode(13, 0), BoundsError);
    EXPECT_THROW(unit.setCode(1, 8), BoundsError);
    EXPECT_THROW(unit.setCode(1, -1), BoundsError);
}

TEST_F(OrbA, KStopsTheEngineForAWhile) {
    EXPECT_EQ(askText(unit, "K"), "AX");
    unit.advance(2);
    EXPECT_EQ(wideRpm(unit), 0u);
    unit.advance(4.5);
    EXPECT_GT(wideRpm(unit), 700u);
}

TEST_F(OrbA, ZSetsTimingToZeroAndRestoresIt) {
    EXPECT_EQ(textOf(unit.feed(timing(0xFF))), "AX");
    EXPECT_EQ(ask(unit, "W").at(11), 0);
    EXPECT_EQ(textOf(unit.feed(timing(0x00))), "AX");
    EXPECT_GT(ask(unit, "W").at(11), 40);
}

TEST(SimulatedUnit, DGivesTheWholeLogThenItsEndThenStartsOver) {
    SimulatedUnit unit(*findProfile("A"), {.serial = 200001, .firmware = "ZQA-405099", .logRecords = 3});
    const Bytes first = ask(unit, "D");
    ASSERT_EQ(first.size(), 33u);
    EXPECT_TRUE(isSealed(first));
    EXPECT_LE(first[3], 82);
    EXPECT_LE(ask(unit, "D").at(3), 82);
    EXPECT_LE(ask(unit, "D").at(3), 82);
    const Bytes end = ask(unit, "D");
    ASSERT_EQ(end.size(), 33u);
    EXPECT_EQ(end[3], 0xFF);
    EXPECT_EQ(end[32], 0x54);  // 0x55 + 0xFF
    EXPECT_EQ(ask(unit, "D"), first);
}

TEST(SimulatedUnit, EmptyLogIsItsEndAtOnce) {
    SimulatedUnit unit(*findProfile("A"), {.serial = 200001, .firmware = "ZQA-405099", .logRecords = 0});
    EXPECT_GT(ask(unit, "D").at(3), 82);
    EXPECT_GT(ask(unit, "D").at(3), 82);
}

TEST_F(OrbA, GluedCommandsAreAnsweredInOrder) {
    const Bytes reply = ask(unit, "EP2S10411228048AET");
    ASSERT_EQ(reply.size(), 8u + 2 + 2 + 8 + 16);
    EXPECT_EQ(reply[0], 0xFA);
    EXPECT_EQ(textOf({reply.begin() + 8, reply.begin() + 12}), "AXAX");
    EXPECT_EQ(reply[12], 0xFA);
    EXPECT_EQ(reply[20], 0xFA);
    EXPECT_EQ(unit.memory()[34], 0x80);
}

TEST_F(OrbA, CommandsByteByByteAreAnsweredAtTheirLastByte) {
    const std::string record = "P2S10411228048";
    for (std::size_t i = 0; i + 1 < record.size(); ++i)
        EXPECT_EQ(askText(unit, record.substr(i, 1)), "") << i;
    EXPECT_EQ(askText(unit, record.substr(record.size() - 1)), "AX");
    EXPECT_EQ(askText(unit, "Z"), "");
    EXPECT_EQ(textOf(unit.feed(Bytes{0xFF})), "AX");
    EXPECT_EQ(askText(unit, "P"), "");
    EXPECT_EQ(askText(unit, "3"), "AR");
}

TEST_F(OrbA, UnknownBytesAndLineEndsAreIgnored) {
    EXPECT_TRUE(ask(unit, "\r\nxyz01 ").empty());
    EXPECT_EQ(ask(unit, "\r\nE\r\n").size(), 8u);
}

TEST_F(OrbA, BrokenTwoByteCommandLetsTheNextOneThrough) {
    EXPECT_EQ(ask(unit, "ZE").size(), 8u);
    EXPECT_EQ(ask(unit, "PE").size(), 8u);
    EXPECT_EQ(askText(unit, "PP3"), "AR");
}

TEST_F(OrbA, HalfACommandIsDroppedAfterHalfASecond) {
    ask(unit, "Z");
    unit.advance(0.51);
    EXPECT_TRUE(unit.feed(Bytes{0xFF}).empty());  // no argument any more, but noise
    ask(unit, "P2S1041122");
    unit.advance(0.51);
    EXPECT_EQ(ask(unit, "E").size(), 8u);
}

TEST_F(OrbA, HalfACommandSurvivesAShorterPause) {
    ask(unit, "P2S1041122");
    unit.advance(0.49);
    EXPECT_EQ(askText(unit, "80"), "");
    unit.advance(0.49);
    EXPECT_EQ(askText(unit, "48"), "AX");
}

TEST_F(OnTheFly, TwoByteRecordChangesBothBytes) {
    // 5 + 12 + 06 + 12 + 34 = 63 hexadecimal; the complement is 9C
    EXPECT_EQ(askText(unit, "P2S105120612349C"), "AX");
    EXPECT_EQ(unit.memory()[0x106], 0x12);
    EXPECT_EQ(unit.memory()[0x107], 0x34);
}

TEST_F(OnTheFly, BadChecksumAddressOrFormIsRefusedAndChangesNothing) {
    const Bytes before = unit.memory();
    const unsigned revision = unit.memoryRevision();
    for (const std::string& record :
         {std::string("S10411228049"), dataRecord(0x10FF, {1}), dataRecord(0x1100 + 2352, {1}),
          dataRecord(0x1100 + 2351, {1, 2}), dataRecord(0x1122, {1, 2, 3}), dataRecord(0x1122, {}),
          std::string("S9030000FC"), std::string("X10411228048"), std::string("S1ZZ11228048")}) {
        EXPECT_EQ(askText(unit, "P2" + record), "AR") << record;
    }
    EXPECT_EQ(unit.memory(), before);
    EXPECT_EQ(unit.memoryRevision(), revision);
}

TEST_F(OnTheFly, RemainsOfARefusedRecordAreNotTakenForCommands) {
    // more digits than the count tells: A, B, C, E and F at its end would all be commands
    EXPECT_EQ(askText(unit, "P2S1051122FFFFFF80ABCEF"), "AR");
    EXPECT_EQ(ask(unit, "E").size(), 8u);
}

TEST_F(OnTheFly, ChangesAreLostWithThePowerUntilStored) {
    ask(unit, "P2S10411228048");
    EXPECT_TRUE(unit.hasUnsavedChanges());
    unit.powerCycle();
    EXPECT_EQ(unit.memory()[34], 0);
    ask(unit, "P2S10411228048");
    EXPECT_EQ(askText(unit, "S"), "AX");
    EXPECT_FALSE(unit.hasUnsavedChanges());
    unit.powerCycle();
    EXPECT_EQ(unit.memory()[34], 0x80);
}

TEST_F(Programming, ZeroRowIsTheKnownRecord) {
    startProgramming(unit);
    // 13 + 11 + 00 hexadecimal = 36; 255 - 36 = 219 = DB
    EXPECT_EQ(askText(unit, "S1131100" + std::string(32, '0') + "DB"), "AX");
}

TEST_F(Programming, NameOfTheNewCalibrationIsReported) {
    startProgramming(unit);
    for (int row = 0; row < 147; ++row) {
        Bytes data(16, row == 35 || row == 36 ? 'N' : 0);  // 560 = 35 * 16
        ASSERT_EQ(askText(unit, dataRecord(0x1100u + 16u * static_cast<unsigned>(row), data)), "AX");
    }
    ASSERT_EQ(askText(unit, endRecord), "PN");
    const Bytes reply = ask(unit, "B");
    EXPECT_EQ(textOf({reply.begin() + 3, reply.begin() + 27}), std::string(24, 'N'));
}

TEST_F(Programming, LinesMayComeByteByByte) {
    startProgramming(unit);
    std::string replies;
    for (const char c : imageRow(0, 1)) replies += askText(unit, std::string(1, c));
    EXPECT_EQ(replies, "AX");
    sendRows(unit, 147, 1, 1);
    EXPECT_EQ(askText(unit, endRecord), "PN");
}

TEST(SimulatedUnit, AnOrbARefusesALineWithAnEndWhichIsMeantForAnotherKind) {
    for (const std::string end : {"\r\n", "\n", "\r"}) {
        SimulatedUnit unit = orbA();
        const Bytes before = unit.permanentMemory();
        startProgramming(unit);
        ASSERT_EQ(askText(unit, imageRow(0, 1)), "AX");
        EXPECT_EQ(askText(unit, imageRow(1, 1) + end), "AR");
        EXPECT_EQ(unit.permanentMemory(), before);
    }
    SimulatedUnit unit = orbA();
    startProgramming(unit);
    ASSERT_EQ(askText(unit, imageRow(0, 1)), "AX");
    EXPECT_EQ(askText(unit, "\r\n"), "AR") << "also where the end comes late";
}

TEST_F(Programming, MissingLineIsRefusedAtTheEndRecordAndTheOldCalibrationStays) {
    const Bytes before = unit.memory();
    startProgramming(unit);
    sendRows(unit, 90, 3);
    sendRows(unit, 147, 3, 91);
    EXPECT_EQ(askText(unit, endRecord), "AR");
    EXPECT_EQ(unit.memory(), before);
}

TEST(SimulatedUnit, OlderFirmwareIsCompleteWith137Lines) {
    SimulatedUnit unit = unitOf("A", "ZQA-404099");
    startProgramming(unit);
    sendRows(unit, 137, 3);
    EXPECT_EQ(askText(unit, endRecord), "PN");
    EXPECT_EQ(unit.memory()[2191], (2191u + 3) % 251);
    EXPECT_EQ(unit.memory()[2192], 0);
}

TEST_F(Programming, EndRecordAloneIsRefused) {
    startProgramming(unit);
    EXPECT_EQ(askText(unit, endRecord), "AR");
}

TEST(SimulatedUnit, BadLineIsRefusedEndsProgrammingAndLeavesTheOldCalibration) {
    std::string flipped = imageRow(5, 3);
    flipped[20] = flipped[20] == '0' ? '1' : '0';
    for (const std::string& bad :
         {flipped, dataRecord(0x10F0, Bytes(16)), dataRecord(0x1A30, Bytes(16)),
          dataRecord(0x1A28, Bytes(16)), std::string("E"), std::string("S2"), std::string("S9030000FD")}) {
        SimulatedUnit unit = orbA();
        const Bytes before = unit.memory();
        startProgramming(unit);
        sendRows(unit, 5, 3);
        EXPECT_EQ(askText(unit, bad), "AR") << bad;
        EXPECT_EQ(unit.memory(), before);
        EXPECT_EQ(ask(unit, "E").size(), 8u) << bad;
    }
}

TEST_F(Programming, LineThatStallsIsDroppedAndCanBeSentAgain) {
    startProgramming(unit);
    const std::string line = imageRow(0, 3);
    EXPECT_EQ(askText(unit, line.substr(0, 20)), "");
    unit.advance(0.6);
    EXPECT_EQ(askText(unit, line), "AX");
}

TEST_F(Programming, IsGivenUpWhenNoLineComes) {
    const Bytes before = unit.memory();
    startProgramming(unit);
    sendRows(unit, 5, 3);
    unit.advance(2.1);
    EXPECT_EQ(ask(unit, "E").size(), 8u);
    EXPECT_EQ(unit.memory(), before);
}

TEST_F(Programming, RecordsAreNoCommandsOutsideOfIt) {
    // the letter S on its own stores, the digits behind it are noise
    EXPECT_EQ(askText(unit, "S1"), "AX");
}

TEST_F(OrbA, ContentOfAnotherSizeIsRefused) {
    EXPECT_THROW(unit.loadMemory(Bytes(2351)), BoundsError);
    unit.loadMemory(Bytes(2352, 9));
    EXPECT_EQ(unit.memory()[100], 9);
    EXPECT_FALSE(unit.hasUnsavedChanges());
}

}  // namespace
}  // namespace zentaq::sim
