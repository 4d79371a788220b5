#include "sim/firmware_memory.h"

#include <gtest/gtest.h>

#include "sim_helpers.h"

namespace zentaq::sim {
namespace {

using namespace test;
using Verdict = FirmwareMemory::Verdict;

SRecord header(const char* text) {
    return {'0', 0, bytesOf(text)};
}

SRecord data(char type, std::int64_t address, std::size_t length = 4) {
    return {type, address, Bytes(length, 1)};
}

const SRecord endOfShort{'9', 0, {}};

class FirmwareProgramming : public testing::Test {
 protected:
    FirmwareProgramming() { memory.begin(); }
    void accept(const SRecord& record) { ASSERT_EQ(memory.take(record), Verdict::Accepted); }
    FirmwareState state() const { return memory.installed().state; }

    FirmwareMemory memory{"ZQA", "ZQA-405099"};
};

TEST_F(FirmwareProgramming, OldFirmwareStaysUntilTheFirstRecordIsAccepted) {
    EXPECT_TRUE(memory.programming());
    EXPECT_EQ(memory.installed(), (InstalledFirmware{FirmwareState::Running, "ZQA-405099"}));
    accept(header("SIMULATED ZQA-505100"));
    EXPECT_EQ(memory.installed(), (InstalledFirmware{FirmwareState::Missing, ""}));
}

TEST_F(FirmwareProgramming, EndRecordPutsItInPlaceAndAPowerCycleStartsIt) {
    accept(header("SIMULATED ZQA-505100"));
    accept(data('1', 0xFFFC));
    accept(data('2', 0x10000));
    EXPECT_EQ(memory.take(SRecord{'8', 0, {}}), Verdict::Verified);
    EXPECT_FALSE(memory.programming());
    EXPECT_EQ(memory.installed(), (InstalledFirmware{FirmwareState::Programmed, "ZQA-505100"}));
    EXPECT_TRUE(memory.cyclePower());
    EXPECT_EQ(memory.installed(), (InstalledFirmware{FirmwareState::Running, "ZQA-505100"}));
    EXPECT_FALSE(memory.cyclePower());
}

TEST_F(FirmwareProgramming, EveryEndRecordEndsIt) {
    for (const char type : {'7', '8', '9'}) {
        memory.begin();
        accept(header("SIMULATED ZQA-505100"));
        accept(data('3', 0x100000));
        EXPECT_EQ(memory.take(SRecord{type, 0, {}}), Verdict::Verified) << type;
    }
}

TEST_F(FirmwareProgramming, HeaderOfAnotherKindOrOfARealFileIsRefusedAndTheOldFirmwareStays) {
    for (const char* text :
         {"SIMULATED ZQL-407099", "ZQA-505100", "simulated ZQA-505100", "SIMULATED ZQA-50510",
          "SIMULATED ZQA-5051000", "SIMULATED ZQA-5O5100", "SIMULATED ", ""}) {
        memory.begin();
        EXPECT_EQ(memory.take(header(text)), Verdict::Refused) << text;
        EXPECT_FALSE(memory.programming());
        EXPECT_EQ(state(), FirmwareState::Running) << text;
    }
}

TEST_F(FirmwareProgramming, DataOrEndBeforeTheHeaderIsRefused) {
    EXPECT_EQ(memory.take(data('1', 0)), Verdict::Refused);
    memory.begin();
    EXPECT_EQ(memory.take(endOfShort), Verdict::Refused);
    EXPECT_EQ(state(), FirmwareState::Running);
}

TEST_F(FirmwareProgramming, WrongContentBehindTheHeaderLeavesNoFirmware) {
    const std::optional<SRecord> damaged;
    for (const auto& bad :
         {damaged, std::optional(header("SIMULATED ZQA-505100")), std::optional(data('1', 8)),
          std::optional(data('1', 0)), std::optional(data('1', 4, 0))}) {
        memory.begin();
        accept(header("SIMULATED ZQA-505100"));
        accept(data('1', 0));  // goes on at 4
        EXPECT_EQ(memory.take(bad), Verdict::Refused);
        EXPECT_EQ(state(), FirmwareState::Missing);
        EXPECT_FALSE(memory.cyclePower());
        EXPECT_EQ(state(), FirmwareState::Missing);
    }
}

TEST_F(FirmwareProgramming, TheNumberOfDataRecordsMustBeRightAndNothingButTheEndComesBehindIt) {
    const auto begun = [&] {
        memory.begin();
        accept(header("SIMULATED ZQA-505100"));
        accept(data('1', 0));
        accept(data('1', 4));
    };
    for (const char type : {'5', '6'}) {
        begun();
        accept({type, 2, {}});
        EXPECT_EQ(memory.take(endOfShort), Verdict::Verified);
        begun();
        EXPECT_EQ(memory.take(SRecord{type, 3, {}}), Verdict::Refused);
        for (const SRecord& behind : {data('1', 8), SRecord{type, 2, {}}}) {
            begun();
            accept({type, 2, {}});
            EXPECT_EQ(memory.take(behind), Verdict::Refused);
        }
    }
}

TEST_F(FirmwareProgramming, EndWithoutAnyDataIsRefused) {
    accept(header("SIMULATED ZQA-505100"));
    EXPECT_EQ(memory.take(endOfShort), Verdict::Refused);
    EXPECT_EQ(state(), FirmwareState::Missing);
}

TEST_F(FirmwareProgramming, PowerCycleOnTheWayLeavesNone) {
    accept(header("SIMULATED ZQA-505100"));
    accept(data('1', 0));
    EXPECT_FALSE(memory.cyclePower());
    EXPECT_FALSE(memory.programming());
    EXPECT_EQ(state(), FirmwareState::Missing);
}

TEST_F(FirmwareProgramming, RevisionGrowsOnlyWithWhatIsInstalled) {
    const unsigned before = memory.revision();
    memory.begin();
    EXPECT_EQ(memory.revision(), before);
    accept(header("SIMULATED ZQA-505100"));
    EXPECT_EQ(memory.revision(), before + 1);
    accept(data('1', 0));
    EXPECT_EQ(memory.revision(), before + 1);
}

}  // namespace
}  // namespace zentaq::sim
