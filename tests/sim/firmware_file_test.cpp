#include "sim/firmware_file.h"

#include <gtest/gtest.h>

#include <fstream>

#include "base/errors.h"
#include "link/firmware_file.h"
#include "sim/firmware_memory.h"
#include "sim/firmware_state_file.h"
#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;

std::vector<std::string> linesOf(const std::string& text) {
    std::vector<std::string> lines;
    std::size_t at = 0;
    for (std::size_t end; (end = text.find("\r\n", at)) != std::string::npos; at = end + 2) {
        lines.push_back(text.substr(at, end - at));
    }
    EXPECT_EQ(at, text.size()) << "the last line ends, too";
    return lines;
}

TEST(FirmwareFile, BeginsWithItsHeaderAndEndsWithItsEnd) {
    const auto lines = linesOf(simulatedFirmware("ZQA-505100"));
    ASSERT_EQ(lines.size(), 1u + 256 + 128 + 1 + 1);
    // count 0x17 = 2 + 20 + 1; the characters sum to 712 and 580; 23 + 1292 = 1315 = 5 * 256 + 0x23
    EXPECT_EQ(lines.front(),
              "S0170000"
              "53494D554C4154454420"
              "5A51412D353035313030"
              "DC");
    EXPECT_EQ(lines[lines.size() - 2], "S50301807B");  // 384 = 0x180; 3 + 1 + 0x80 = 0x84
    EXPECT_EQ(lines.back(), "S804000000FB");
}

TEST(FirmwareFile, LinesFollowEachOtherAcrossTheShortAddresses) {
    const auto lines = linesOf(simulatedFirmware("ZQA-505100"));
    std::int64_t next = 0xF000;
    for (std::size_t i = 1; i + 2 < lines.size(); ++i) {
        const auto record = parseSRecord(lines[i], firmwareRecords);
        ASSERT_TRUE(record) << lines[i];
        EXPECT_EQ(record->type, next > 0xFFFF ? '2' : '1');
        EXPECT_EQ(record->address, next);
        next += static_cast<std::int64_t>(record->data.size());
    }
    EXPECT_EQ(next, 0x10800);
}

TEST(FirmwareFile, IsWholeForWhoeverReadsFirmwareAndForTheUnit) {
    const std::string text = simulatedFirmware("ZQA-505100");
    EXPECT_EQ(checkFirmware(text).text, text);
    FirmwareMemory memory("ZQA", "ZQA-405099");
    memory.begin();
    auto verdict = FirmwareMemory::Verdict::Refused;
    for (const std::string& line : linesOf(text)) {
        verdict = memory.take(parseSRecord(line, firmwareRecords));
        ASSERT_NE(verdict, FirmwareMemory::Verdict::Refused) << line;
    }
    EXPECT_EQ(verdict, FirmwareMemory::Verdict::Verified);
}

// A line that is lost or comes twice: neither reader takes it, whatever the other one would have said.
TEST(FirmwareFile, ALineThatIsLostOrDoubledIsRefusedByBothReaders) {
    const auto lines = linesOf(simulatedFirmware("ZQA-505100"));
    const auto taken = [](const std::vector<std::string>& changed) {
        std::string text;
        for (const std::string& line : changed) text += line + "\r\n";
        const bool file = skipFailing([&] { checkFirmware(text); });
        FirmwareMemory memory("ZQA", "ZQA-405099");
        memory.begin();
        bool unit = false;
        for (const std::string& line : changed) {
            const auto verdict = memory.take(parseSRecord(line, firmwareRecords));
            unit = verdict == FirmwareMemory::Verdict::Verified;
            if (verdict == FirmwareMemory::Verdict::Refused) break;
        }
        return std::pair(file, unit);
    };
    for (const std::size_t at : {std::size_t{1}, std::size_t{200}, std::size_t{257}, lines.size() - 3}) {
        auto lost = lines;
        lost.erase(lost.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_EQ(taken(lost), std::pair(false, false)) << "lost " << at;
        auto doubled = lines;
        doubled.insert(doubled.begin() + static_cast<std::ptrdiff_t>(at), lines[at]);
        EXPECT_EQ(taken(doubled), std::pair(false, false)) << "doubled " << at;
    }
    EXPECT_EQ(taken(lines), std::pair(true, true));
}

TEST(FirmwareFile, DiffersFromFirmwareToFirmware) {
    EXPECT_NE(linesOf(simulatedFirmware("ZQA-505100"))[5], linesOf(simulatedFirmware("ZQA-505101"))[5]);
}

TEST(FirmwareFile, ReplacesOneOfItsKindAndNothingElse) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "ZQA505100.nv3";
    makeFirmwareFile(file, "ZQA-505100");
    makeFirmwareFile(file, "ZQA-505101");
    EXPECT_EQ(TemporaryFolder::read(file.string()), simulatedFirmware("ZQA-505101"));
    // a header without the word that tells it is simulated, as a real file has it
    const std::string real = sRecordText({'0', 0, bytesOf("ZQA-505100")}) + "\r\nS804000000FB\r\n";
    std::ofstream(file, std::ios::binary) << real;
    EXPECT_THROW(makeFirmwareFile(file, "ZQA-505100"), FileError);
    EXPECT_EQ(TemporaryFolder::read(file.string()), real);
    std::ofstream(file, std::ios::trunc);
    EXPECT_NO_THROW(makeFirmwareFile(file, "ZQA-505100")) << "an empty file is nothing to lose";
}

TEST(FirmwareFile, FolderThatDoesNotExistIsAnError) {
    const TemporaryFolder folder;
    EXPECT_THROW(makeFirmwareFile(folder.path() / "none" / "a.nv3", "ZQA-505100"), FileError);
}

TEST(FirmwareState, WhatIsWrittenIsRead) {
    const TemporaryFolder folder;
    const auto file = firmwareStateFile(folder.path() / "unit.mem");
    EXPECT_EQ(file, folder.path() / "unit.mem.firmware");
    EXPECT_FALSE(readFirmwareState(file));
    for (const InstalledFirmware& firmware : {InstalledFirmware{FirmwareState::Running, "ZQA-505100"},
                                              InstalledFirmware{FirmwareState::Programmed, "ZQA-505100"},
                                              InstalledFirmware{FirmwareState::Missing, ""}}) {
        writeFirmwareState(file, firmware);
        EXPECT_EQ(readFirmwareState(file), firmware);
    }
    EXPECT_EQ(TemporaryFolder::read(file.string()), "missing\n");
}

TEST(FirmwareState, AnythingElseIsAnError) {
    const TemporaryFolder folder;
    const auto file = folder.path() / "unit.mem.firmware";
    for (const char* text : {"", "walking ZQA-505100", "running", "programmed ", "missing ZQA-505100"}) {
        std::ofstream(file, std::ios::trunc) << text << "\n";
        EXPECT_THROW(readFirmwareState(file), FileError) << text;
    }
}

}  // namespace
}  // namespace zentaq::sim
