// A bulk transfer by itself: its lines and numbers; and what is known of a firmware that broke off.
#include "link/transfer.h"

#include <gtest/gtest.h>

#include "base/errors.h"
#include "link/firmware_memory.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

TEST(Transfer, OfACalibrationGivesTheLinesOfItsFileWithoutTheirEnds) {
    const TemporaryFolder folder;
    Transfer transfer;
    transfer.sendFile(folder.write("ORB.s19", "S0a\r\nS1b\nS9c"));
    EXPECT_EQ(transfer.begin(TransferMode::Calibration, 200001), "P1");
    EXPECT_EQ(transfer.lines(), 3);
    EXPECT_EQ(transfer.total(), 3);
    EXPECT_EQ(transfer.serial(), 200001);
    std::string line;
    for (const char* wanted : {"S0a", "S1b", "S9c"}) {
        ASSERT_TRUE(transfer.nextLine(line));
        EXPECT_EQ(line, wanted);
    }
    EXPECT_FALSE(transfer.nextLine(line));
    EXPECT_FALSE(transfer.readFailed());
}

TEST(Transfer, OfAFirmwareCountsOneLineMoreThanItsText) {
    Transfer transfer;
    transfer.sendText("S0a\r\nS9c\r\n");
    EXPECT_EQ(transfer.begin(TransferMode::Firmware, 0), "P3");
    EXPECT_EQ(transfer.lines(), 3);
    EXPECT_EQ(transfer.total(), 2) << "lines of the file";
    EXPECT_TRUE(transfer.firmware());
    EXPECT_TRUE(transfer.programming());
    transfer.lineSent();
    EXPECT_EQ(transfer.done(), 1);
}

TEST(Transfer, OfADatalogCountsItsRecords) {
    const TemporaryFolder folder;
    Transfer transfer;
    transfer.writeFile(folder.path("log.dat"));
    EXPECT_EQ(transfer.begin(TransferMode::Datalog, 0), "D");
    transfer.recordCame();
    transfer.file() << "record";
    transfer.closeFile();
    EXPECT_EQ(transfer.done(), 1);
    EXPECT_EQ(transfer.total(), 0);
    EXPECT_EQ(TemporaryFolder::read(folder.path("log.dat")), "record");
}

TEST(Transfer, IsPendingFromItsStartUntilItIsOverOnTheWireToo) {
    Transfer transfer;
    transfer.sendText("S9c");
    transfer.begin(TransferMode::Firmware, 0);
    EXPECT_TRUE(transfer.pending());
    EXPECT_FALSE(transfer.active());
    transfer.activate();
    transfer.close();
    EXPECT_FALSE(transfer.open());
    EXPECT_TRUE(transfer.pending());
    EXPECT_EQ(transfer.lines(), 2) << "the numbers are still to be told";
    transfer.deactivate();
    transfer.forgetNumbers();
    EXPECT_FALSE(transfer.pending());
    EXPECT_EQ(transfer.lines(), 0);
}

TEST(Transfer, AFileThatCannotBeOpenedIsAFileError) {
    Transfer transfer;
    EXPECT_THROW(transfer.sendFile("/absent/ORB.s19"), FileError);
    EXPECT_THROW(transfer.writeFile("/absent/log.dat"), FileError);
    EXPECT_FALSE(transfer.open());
}

// ---- What is known of a unit's firmware

using Start = FirmwareMemory::Start;

TEST(FirmwareMemory, AStartThatWasRefusedOrNeverWrittenLeavesTheFormerFirmware) {
    FirmwareMemory memory;
    memory.begin(3, 0, true);
    EXPECT_EQ(memory.failed(Start::Refused, 0, true), FirmwareLeft::Former);
    EXPECT_EQ(memory.failed(Start::NotWritten, 0, true), FirmwareLeft::Former);
    EXPECT_FALSE(memory.lost());
    EXPECT_EQ(memory.lostSlot(), 0);
}

TEST(FirmwareMemory, AStartThatWasTakenOrLinesThatWentOutLeaveNone) {
    for (const auto& [start, lines] : {std::pair(Start::Taken, 0), std::pair(Start::Refused, 1)}) {
        FirmwareMemory memory;
        memory.begin(3, 0, true);
        EXPECT_EQ(memory.failed(start, lines, true), FirmwareLeft::None);
        EXPECT_EQ(memory.lostSlot(), 3);
        EXPECT_EQ(memory.failed(Start::NotWritten, 0, true), FirmwareLeft::None) << "still lost";
        memory.mended();
        EXPECT_FALSE(memory.lost());
    }
}

/// What the third silent start behind a run says that broke off.
FirmwareLeft thirdSilentStart(int linesSent, bool lineThere, bool portOpen) {
    FirmwareMemory memory;
    memory.begin(3, 0, true);
    memory.failed(Start::Taken, linesSent, true);
    FirmwareLeft left = FirmwareLeft::Former;
    for (int start = 1; start <= 3; ++start) {
        EXPECT_NE(left, FirmwareLeft::Lost);
        memory.begin(0, 0, lineThere);
        left = memory.failed(Start::NotAnswered, 0, portOpen);
    }
    return left;
}

TEST(FirmwareMemory, TheThirdSilentStartBehindLinesThatWentOutIsALostUnit) {
    EXPECT_EQ(thirdSilentStart(5, true, true), FirmwareLeft::Lost);
    EXPECT_EQ(thirdSilentStart(0, true, true), FirmwareLeft::None) << "no line went out";
    EXPECT_EQ(thirdSilentStart(5, false, true), FirmwareLeft::None) << "the line was not there";
    EXPECT_EQ(thirdSilentStart(5, true, false), FirmwareLeft::None) << "the port is closed";
}

TEST(FirmwareMemory, ASecondRunForAnUnknownUnitKeepsTheKindOfTheOneThatBrokeOff) {
    FirmwareMemory memory;
    memory.begin(0, 5, true);
    EXPECT_EQ(memory.slot(), 5);
    memory.failed(Start::Taken, 1, true);
    memory.begin(0, 0, true);
    EXPECT_EQ(memory.slot(), 5);
    memory.begin(3, 5, true);
    EXPECT_EQ(memory.slot(), 3) << "who answers tells its kind";
    memory.mended();
    memory.begin(0, 0, true);
    EXPECT_EQ(memory.slot(), 0);
}

}  // namespace
}  // namespace zentaq
