#include "sim/calibration_memory.h"

#include <gtest/gtest.h>

namespace zentaq::sim {
namespace {

constexpr int base = 0x1100;

SRecord data(int offset, Bytes bytes) {
    return {'1', base + offset, std::move(bytes)};
}

class MemoryOf32Bytes : public testing::Test {
 protected:
    CalibrationMemory memory{base, 32};
};

TEST_F(MemoryOf32Bytes, AChangeIsLostWithThePowerUntilItIsStored) {
    EXPECT_TRUE(memory.change(data(31, {7})));
    EXPECT_EQ(memory.running().at(31), 7);
    EXPECT_EQ(memory.permanent().at(31), 0);
    memory.cyclePower();
    EXPECT_EQ(memory.running().at(31), 0);
    EXPECT_TRUE(memory.change(data(30, {1, 2})));
    memory.store();
    memory.cyclePower();
    EXPECT_EQ(memory.running().at(31), 2);
}

TEST_F(MemoryOf32Bytes, AChangeOutsideOrOfMoreThanTwoBytesIsRefused) {
    EXPECT_FALSE(memory.change(data(-1, {7})));
    EXPECT_FALSE(memory.change(data(31, {7, 7})));
    EXPECT_FALSE(memory.change(data(32, {7})));
    EXPECT_FALSE(memory.change(data(0, {})));
    EXPECT_FALSE(memory.change(data(0, {1, 2, 3})));
    EXPECT_FALSE(memory.change({'9', base, {7}}));
    EXPECT_EQ(memory.running(), Bytes(32));
    EXPECT_EQ(memory.runningRevision(), 0u);
}

TEST_F(MemoryOf32Bytes, ProgrammingTakesEffectAtItsEndAndOnlyWhenEveryByteHasCome) {
    memory.beginProgramming();
    EXPECT_TRUE(memory.program(data(0, Bytes(16, 9)), 32));
    EXPECT_EQ(memory.running(), Bytes(32));
    EXPECT_FALSE(memory.finishProgramming(32));
    EXPECT_TRUE(memory.program(data(16, Bytes(16, 9)), 32));
    EXPECT_TRUE(memory.finishProgramming(32));
    EXPECT_EQ(memory.running(), Bytes(32, 9));
    EXPECT_EQ(memory.permanent(), Bytes(32, 9));
    EXPECT_EQ(memory.wholeRevision(), 1u);
    EXPECT_FALSE(memory.programming());
}

TEST_F(MemoryOf32Bytes, OlderFirmwareProgramsTheFirstPartAndTheRestStays) {
    memory.keepForGood(Bytes(32, 5));
    memory.beginProgramming();
    EXPECT_FALSE(memory.program(data(16, Bytes(16, 9)), 16));
    EXPECT_TRUE(memory.program(data(0, Bytes(16, 9)), 16));
    EXPECT_TRUE(memory.finishProgramming(16));
    EXPECT_EQ(memory.running().at(15), 9);
    EXPECT_EQ(memory.running().at(16), 5);
}

TEST(CalibrationMemory, ProgrammingThatIsGivenUpLeavesTheOldContent) {
    CalibrationMemory memory(base, 16);
    memory.beginProgramming();
    EXPECT_TRUE(memory.program(data(0, Bytes(16, 9)), 16));
    memory.abandonProgramming();
    EXPECT_FALSE(memory.finishProgramming(16));
    EXPECT_EQ(memory.permanent(), Bytes(16));
    EXPECT_FALSE(memory.program(data(0, {1}), 16)) << "nothing was begun";
}

TEST(CalibrationMemory, TextIsPaddedAndCutInBoth) {
    CalibrationMemory memory(base, 8);
    memory.keepText(2, "AB", 4);
    EXPECT_EQ(memory.running(), (Bytes{0, 0, 'A', 'B', ' ', ' ', 0, 0}));
    memory.keepText(2, "ABCDEFG", 4);
    EXPECT_EQ(memory.permanent(), (Bytes{0, 0, 'A', 'B', 'C', 'D', 0, 0}));
    EXPECT_EQ(memory.wholeRevision(), 0u);
}

}  // namespace
}  // namespace zentaq::sim
