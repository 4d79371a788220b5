// What differs between kinds, and the object that stands in while no calibration is chosen.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <tuple>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

TEST(OrbaKind, TakesNoTextShorterThanItsPrefix) {
    OrbaCalibration cal;
    EXPECT_TRUE(cal.unit.ValidFirmware("ZQA"));
    EXPECT_FALSE(cal.unit.ValidFirmware("ZQ"));
}

struct KindRow {
    struct Texts {
        const char* className;
        const char* model;
        const char* extension;
        const char* filter;
        const char* prefix;
    };
    struct Cells {
        int last;
        int lastPin;
        std::uintmax_t fileBytes;
    };
    struct Numbers {
        int slot;
        float fileKind;
        int fileFilter;
    };
    struct Firmware {
        int newest;  ///< release that a file can name
        float unknown;
    };
    Numbers numbers;
    Texts texts;
    Firmware firmware;
    Cells cells;
    std::vector<int> sizes;  ///< in the order of SizeConstants
};

class Kinds : public ::testing::TestWithParam<KindRow> {
 protected:
    const KindRow& row = GetParam();
    RecordingHost host;
    Unit unit{*unitKindOfSlot(row.numbers.slot), host};
};

TEST_P(Kinds, HaveTheirConstants) {
    const UnitKind& kind = unit.kind();
    EXPECT_EQ(kind.slot, row.numbers.slot);
    EXPECT_EQ(kind.fileKind, row.numbers.fileKind);
    EXPECT_EQ(kind.className, row.texts.className);
    EXPECT_EQ(kind.model, row.texts.model);
    EXPECT_EQ(kind.extension, row.texts.extension);
    EXPECT_EQ(kind.fileFilterExtension, row.texts.filter);
    EXPECT_EQ(kind.fileFilter, row.numbers.fileFilter);
    EXPECT_EQ(kind.orbFileLength, row.cells.last);
    EXPECT_EQ(kind.numGpio, row.cells.lastPin);
    const SizeConstants& sizes = kind.sizes;
    EXPECT_EQ((std::vector<int>{sizes.monitorLen, sizes.gpioLen, sizes.serialLen, sizes.binFirmLen,
                                sizes.miscLen, sizes.codesLen, sizes.configLen, sizes.dataRecordLen,
                                sizes.datalogMax, sizes.wCmdLen}),
              row.sizes);
}

TEST_P(Kinds, AcceptOnlyFirmwareOfTheirPrefix) {
    for (const std::string prefix : {"ZQA", "ZQL", "ZQC", "ZQD", "ZPK"}) {
        EXPECT_EQ(unit.ValidFirmware(prefix + " 5.10"), prefix == row.texts.prefix) << prefix;
    }
    EXPECT_FALSE(unit.ValidFirmware(""));
}

TEST_P(Kinds, SaveFilesOfTheirOwnLengthThatOpenAgain) {
    const TemporaryFolder folder;
    const std::string path = folder.file(std::string("a") + row.texts.extension);
    unit.BinFile(path);
    unit.AssignDirectIndex(7.5F, row.cells.last - 1);
    unit.NOTES_TEXT("Dyno 3");
    unit.SaveFile();
    const std::string content = contentOf(path);
    EXPECT_EQ(content.size(), row.cells.fileBytes);
    EXPECT_EQ(unit.facts().firmwareCode, row.firmware.unknown);

    Unit again(unit.kind(), host);
    again.FileOpen(path);
    EXPECT_EQ(host.header().currentUnit, row.numbers.fileKind);
    EXPECT_EQ(again.DirectIndex(row.cells.last - 1), 7.5F);
    EXPECT_EQ(again.NOTES_TEXT(), "Dyno 3");
    EXPECT_EQ(again.BiName(), "a                       ");
    EXPECT_EQ(again.FW_Release() * 1000 + again.FW_Build(), row.firmware.unknown);
}

TEST_P(Kinds, SaveReleasesUpToTheirNewestAndLaterOnesAsUnknown) {
    const TemporaryFolder folder;
    const std::string path = folder.file(std::string("a") + row.texts.extension);
    for (int release = 0; release <= 9; ++release) {
        Unit saved(unit.kind(), host);
        saved.FW_Release(release);
        saved.FW_Build(10);
        saved.BinFile(path);
        saved.SaveFile();
        const float code =
            release <= row.firmware.newest ? static_cast<float>(release * 1000 + 10) : row.firmware.unknown;
        EXPECT_EQ(saved.facts().firmwareCode, code) << release;
        Unit again(unit.kind(), host);
        again.FileOpen(path);
        EXPECT_EQ(static_cast<float>(again.FW_Release() * 1000 + again.FW_Build()), code) << release;
    }
}

TEST_P(Kinds, KeepEveryCellOfTheirMembersInsideTheirFile) {
    for (const Parameter& parameter : unit.kind().parameters) {
        if (!parameter.hasCell()) continue;
        EXPECT_LE(parameter.cell(parameter.count - 1), row.cells.last) << parameter.name;
    }
    EXPECT_LE(unit.kind().gpioBase + 9 * (row.cells.lastPin + 1) - 1, row.cells.last);
    EXPECT_EQ(unit.kind().cells.notes, row.cells.last);
    EXPECT_LT(unit.kind().cells.notes + 499, unit.kind().fileFloats);
}

TEST_P(Kinds, GiveNoCellToTwoMembers) {
    std::map<int, std::string> owners;
    // Nibbles of one cell, the ratings, and the two names of one bit.
    const std::set<std::string> sharing = {"TACHTYP", "INJ_Events", "MAP_BAR"};
    for (const Parameter& parameter : unit.kind().parameters) {
        const std::string name(parameter.name);
        if (!parameter.hasCell() || sharing.contains(name) || name.starts_with("opt_")) continue;
        for (int i = 0; i < parameter.count; ++i) {
            const auto [place, fresh] = owners.emplace(parameter.cell(i), name);
            EXPECT_TRUE(fresh) << name << " and " << place->second << " at " << parameter.cell(i);
        }
    }
}

/// The two ORB D differ in their slots only.
KindRow orbD(int slot) {
    return {{slot, 7, 5},
            {"clsORBd", "ORB D", ".ZQ4OD", "Zentaq4 ORBd File|*.ZQ4OD", "ZQD"},
            {5, 5099},
            {2325, 6, 11316},
            {28, 21, 8, 38, 2, 16, 39, 34, 2184, 62}};
}

INSTANTIATE_TEST_SUITE_P(
    All, Kinds,
    ::testing::Values(KindRow{{3, 3, 4},
                              {"clsORBA", "ORB A", ".ZQ4OA", "Zentaq4 ORBA File|*.ZQ4OA", "ZQA"},
                              {5, 5099},
                              {2327, 7, 11324},
                              {35, 21, 8, 39, 2, 16, 39, 33, 8736, 65}},
                      KindRow{{4, 4, 2},
                              {"clsORBALite", "ORB L", ".ZQ4OL", "Zentaq4 ORBL File|*.ZQ4OL", "ZQL"},
                              {7, 7099},
                              {2327, 8, 11324},
                              {28, 21, 8, 38, 2, 16, 39, 36, 2048, 66}},
                      KindRow{{5, 5, 3},
                              {"clsPZK2", "PZK-2", ".ZQ4PZK", "Zentaq4 PZK-2 File|*.ZQ4PZK", "ZPK"},
                              {5, 5099},
                              {1200, 3, 6816},
                              {28, 21, 8, 38, 2, 16, 39, 34, 0, 23}},
                      KindRow{{6, 6, 6},
                              {"clsORBC", "ORB C", ".ZQ4OC", "Zentaq4 ORBc File|*.ZQ4OC", "ZQC"},
                              {5, 3099},
                              {2326, 12, 11320},
                              {28, 21, 8, 38, 2, 16, 39, 40, 1820, 70}},
                      orbD(7), orbD(8)),
    [](const auto& row) { return "Slot" + std::to_string(row.param.numbers.slot); });

TEST(FileKinds, SelectTheirSlot) {
    for (const int slot : {3, 4, 5, 6, 7, 8}) {
        EXPECT_EQ(unitKindOfFile(static_cast<float>(slot)), unitKindOfSlot(slot));
    }
    for (const float none : {0.0F, 2.0F, 3.5F, 99.0F, -3.0F}) EXPECT_EQ(unitKindOfFile(none), nullptr);
    EXPECT_EQ(unitKindOfFile(std::numeric_limits<float>::quiet_NaN()), nullptr);
}

TEST(NewProcessor, IsFixedOrWrittenByKind) {
    RecordingHost host;
    for (const auto& [slot, before, after] :
         {std::tuple{3, false, false}, std::tuple{4, false, true}, std::tuple{5, false, true},
          std::tuple{6, true, true}, std::tuple{7, true, true}, std::tuple{8, true, true}}) {
        Unit unit(*unitKindOfSlot(slot), host);
        EXPECT_EQ(unit.hasPIC18(), before) << slot;
        unit.hasPIC18(true);
        EXPECT_EQ(unit.hasPIC18(), after) << slot;
        unit.hasPIC18(false);
        EXPECT_EQ(unit.hasPIC18(), before) << slot;
    }
}

TEST(PinRequest, FollowsTheListThatTheLinkHasReadWhereFramesLackThePins) {
    RecordingHost host;
    for (const auto& [slot, before, after] :
         {std::tuple{3, false, false}, std::tuple{4, false, true}, std::tuple{5, true, true},
          std::tuple{6, false, true}, std::tuple{7, false, true}, std::tuple{8, false, true}}) {
        Unit unit(*unitKindOfSlot(slot), host);
        EXPECT_EQ(unit.GPIO_Req(), before) << slot;
        unit.gpioListRead(true);
        EXPECT_EQ(unit.GPIO_Req(), after) << slot;
        unit.gpioListRead(false);
        EXPECT_EQ(unit.GPIO_Req(), before) << slot;
    }
}

class Pzk2 : public ::testing::Test {
 protected:
    RecordingHost host;
    Unit unit{pzk2Kind(), host};
};

TEST_F(Pzk2, OpensWithoutSeedingStopPointsShapesOrTrims) {
    const TemporaryFolder folder;
    const std::string path = folder.file("a.ZQ4PZK");
    unit.BinFile(path);
    unit.SaveFile();
    Unit again(pzk2Kind(), host);
    again.FileOpen(path);
    for (int cell = 190; cell < 3001; ++cell) EXPECT_EQ(again.DirectIndex(cell), 0) << cell;
}

TEST_F(Pzk2, HasAnImageOf64Records) {
    unit.FW_Release(5);
    unit.ConvertData();
    const std::string text = unit.sRecordText();
    EXPECT_EQ(std::ranges::count(text, '\n'), 64 + 1);
    EXPECT_EQ(unit.memoryBytes().size(), 1024);
    EXPECT_EQ(text.substr(63 * 44, 8), "S11314F0");  // 0x1100 + 1008
}

TEST(Slots, WithoutAnObjectHaveNoDescription) {
    for (const int slot : {-1, 1, 2, 99, 100, 101}) EXPECT_EQ(unitKindOfSlot(slot), nullptr);
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
    EXPECT_EQ(unit.GET_TBL_AXIS_TYPE("VE", "ROW-AXIS"), "");
    EXPECT_EQ(unit.GET_TBL_AXIS_TYPE("GPO1", "COL-AXIS"), "");
    EXPECT_EQ(unit.Get_GPO_Stop(99, "X-Axis", "GPO1"), 0);
    EXPECT_FALSE(unit.Set_GPO_Stop(1000, 99, "X-Axis", "GPO1"));
    EXPECT_EQ(refusalOf(unit.Set_GPO_Stop("", 99, "X-Axis", "GPO1")), Refusal{}) << "nothing to tell";
    EXPECT_EQ(unit.NOTES_TEXT(), "");
    EXPECT_EQ(unit.BiName(), "");
    EXPECT_EQ(unit.MakeS19(), "");
    EXPECT_EQ(unit.Get_GPIO_Param(3, 3), 0);
    EXPECT_NO_THROW(unit.Set_GPIO_Param(3, 3, 1));
    EXPECT_NO_THROW(unit.ConvertData());
    EXPECT_NO_THROW(unit.SaveFile());
    EXPECT_NO_THROW(unit.FileOpen("/no/such/file"));
    EXPECT_TRUE(host.events.empty());
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
