// What differs between kinds, and the object that stands in while no calibration is chosen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

TEST(OrbaKind, HasItsConstants) {
    const UnitKind& kind = *unitKindOfSlot(3);
    EXPECT_EQ(kind.className, "clsORBA");
    EXPECT_EQ(kind.model, "ORB A");
    EXPECT_EQ(kind.fileKind, 3);
    EXPECT_EQ(kind.extension, ".ZQ4OA");
    EXPECT_EQ(kind.fileFilterExtension, "Zentaq4 ORBA File|*.ZQ4OA");
    EXPECT_EQ(kind.fileFilter, 4);
    EXPECT_EQ(kind.numGpio, 7);
    EXPECT_EQ(kind.orbFileLength, 2327);
    const SizeConstants& sizes = kind.sizes;
    EXPECT_EQ((std::vector<int>{sizes.monitorLen, sizes.gpioLen, sizes.serialLen, sizes.binFirmLen,
                                sizes.miscLen, sizes.codesLen, sizes.configLen, sizes.dataRecordLen,
                                sizes.datalogMax, sizes.wCmdLen}),
              (std::vector<int>{35, 21, 8, 39, 2, 16, 39, 33, 8736, 65}));
}

TEST(OrbaKind, AcceptsFirmwareOfItsPrefix) {
    OrbaCalibration cal;
    EXPECT_TRUE(cal.unit.ValidFirmware("ZQA 5.10"));
    EXPECT_TRUE(cal.unit.ValidFirmware("ZQA"));
    EXPECT_FALSE(cal.unit.ValidFirmware("ZQD 5.10"));
    EXPECT_FALSE(cal.unit.ValidFirmware("ZQ"));
    EXPECT_FALSE(cal.unit.ValidFirmware(""));
    EXPECT_FALSE(cal.unit.GPIO_Req());
    EXPECT_FALSE(cal.unit.hasPIC18());
}

TEST(Slots, WithoutAnObjectHaveNoDescription) {
    for (const int slot : {-1, 1, 2, 9, 100, 101}) EXPECT_EQ(unitKindOfSlot(slot), nullptr);
    EXPECT_EQ(unitKindOfSlot(0), &nullKind());
}

TEST(CheckEngineWords, AreTheTwelveBytesBehindTheHead) {
    OrbaCalibration cal;
    std::vector<std::uint8_t> reply(16);
    for (std::size_t i = 0; i < reply.size(); ++i) reply[i] = static_cast<std::uint8_t>(100 + i);
    cal.unit.Set_ECData(reply);
    EXPECT_EQ(cal.unit.Get_ECData(0), 103);
    EXPECT_EQ(cal.unit.Get_ECData(11), 114);
    EXPECT_THROW(cal.unit.Get_ECData(12), BoundsError);
    EXPECT_THROW(cal.unit.Get_ECData(-1), BoundsError);
    EXPECT_THROW(cal.unit.Set_ECData(std::span(reply).first(14)), BoundsError);
}

class NullUnit : public ::testing::Test {
 protected:
    RecordingHost host;
    Unit unit{nullKind(), host};
};

TEST_F(NullUnit, AnswersItsMembers) {
    EXPECT_EQ(unit.get("MAP_BAR"), 1);
    EXPECT_EQ(unit.get("MAPMax"), 104);
    EXPECT_EQ(unit.get("MAPMin"), 1);
    EXPECT_EQ(unit.get("MOFFSET"), 0);
    EXPECT_EQ(unit.get("MinDuty"), 0);
    EXPECT_EQ(unit.get("MaxDuty"), 255);
    EXPECT_EQ(unit.get("Engine_Type"), 0);
    EXPECT_EQ(unit.get("PHDSEQ"), 1);
    EXPECT_EQ(unit.get("AFR"), 14.64F);
    EXPECT_EQ(unit.MAPMax(), 104);
    EXPECT_EQ(unit.MAPMin(), 1);
    EXPECT_EQ(unit.BinFile(), "None.");
    EXPECT_EQ(unit.MAPUnits(), "");
    EXPECT_EQ(unit.Get_GPIOFUNC(0), 0);
    EXPECT_TRUE(unit.ValidFirmware(""));
    EXPECT_TRUE(unit.ValidFirmware("anything"));
    EXPECT_FALSE(unit.GPIO_Req());
    EXPECT_FALSE(unit.hasPIC18());
    EXPECT_FALSE(unit.ONFLY_MODE());
    const SizeConstants& sizes = unit.kind().sizes;
    EXPECT_EQ((std::vector<int>{sizes.monitorLen, sizes.gpioLen, sizes.serialLen, sizes.binFirmLen,
                                sizes.miscLen, sizes.codesLen, sizes.configLen, sizes.dataRecordLen,
                                sizes.datalogMax, sizes.wCmdLen}),
              (std::vector<int>{1, 1, 1, 1, 2, 1, 1, 1, 1, 1}));
}

TEST_F(NullUnit, IsSilentAboutEverythingElse) {
    EXPECT_EQ(unit.get("KNK_MIN"), 0);
    EXPECT_EQ(unit.get("VE", 9999), 0);
    EXPECT_FALSE(unit.set("KNK_MIN", 50));
    EXPECT_EQ(unit.voltsToPressure(2), 0);
    EXPECT_EQ(unit.KpaToCounts(50, true), 0);
    EXPECT_EQ(unit.GET_TBL_DIMENSIONS("VE", "ROWS"), 0);
    EXPECT_EQ(unit.Get_GPIO_Param(3, 3), 0);
    EXPECT_NO_THROW(unit.Set_GPIO_Param(3, 3, 1));
    EXPECT_NO_THROW(unit.ConvertData());
    EXPECT_NO_THROW(unit.SaveFile());
    EXPECT_NO_THROW(unit.FileOpen("/no/such/file"));
    EXPECT_TRUE(host.inputChecks.empty());
    EXPECT_TRUE(host.messages.empty());
}

TEST_F(NullUnit, TakesNoWrites) {
    unit.ONFLY_MODE(true);
    unit.set("AFR", 9);
    unit.set("MinDuty", 9);
    unit.MAPUnits("PSIA");
    unit.Set_Control(1, true);
    unit.Set_Control2(1, true);
    unit.Set_Control3(1, true);
    unit.BinFile("a.ZQ4OA");
    unit.FW_Release(5);
    unit.AssignDirectIndex(5, 100);
    EXPECT_FALSE(unit.ONFLY_MODE());
    EXPECT_EQ(unit.get("AFR"), 14.64F);
    EXPECT_EQ(unit.get("MinDuty"), 0);
    EXPECT_EQ(unit.MAPUnits(), "");
    EXPECT_FALSE(unit.Get_Control(1) || unit.Get_Control2(1) || unit.Get_Control3(1));
    EXPECT_EQ(unit.BinFile(), "None.");
    EXPECT_EQ(unit.FW_Release(), 0);
    EXPECT_EQ(unit.DirectIndex(100), 0);
    unit.CloseFile();
    EXPECT_EQ(unit.BinFile(), "None.");
}

}  // namespace
}  // namespace zentaq::testing
