// A calibration as a value, and the one hook that every change of the one in hand passes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <limits>
#include <random>

#include "base/errors.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using What = CalibrationChange::What;

/// What the hook has told, member by name.
struct Told {
    What what;
    int place;
    std::string member;
    int element;
    float before;
    float after;
    bool operator==(const Told&) const = default;
};

void PrintTo(const Told& told, std::ostream* out) {
    *out << static_cast<int>(told.what) << " at " << told.place << ' ' << told.member << '[' << told.element
         << "] " << told.before << " -> " << told.after;
}

Told wholeChange() {
    return {What::All, 0, "", 0, 0, 0};
}
Told factsChange() {
    return {What::Facts, 0, "", 0, 0, 0};
}

struct WatchedOrba : OrbaCalibration {
    std::vector<Told> told;

    WatchedOrba() {
        unit.watch([this](const CalibrationChange& change, const Calibration&) {
            told.push_back({change.what, change.place,
                            change.member == nullptr ? std::string() : std::string(change.member->name),
                            change.element, change.before, change.after});
        });
    }
    std::string file() { return unit.fileContent().bytes; }
};

// ---- The value

TEST(Calibration, ACopyIsEqualUntilAnythingOfItDiffers) {
    OrbaCalibration cal;
    const Calibration before = cal.unit.calibration();
    EXPECT_EQ(cal.unit.calibration(), before);
    const std::vector<std::function<void(Calibration&)>> changes = {
        [](Calibration& one) { one.cells[3000] = 1; },
        [](Calibration& one) { one.control[2] = 1; },
        [](Calibration& one) { one.facts.binFile = "x"; },
        [](Calibration& one) { one.facts.release = 4; },
        [](Calibration& one) { one.facts.owedRelease = 4; },
        [](Calibration& one) { one.facts.build = 4; },
        [](Calibration& one) { one.facts.defaultSplit = 4; },
        [](Calibration& one) { one.facts.teeth.maximum = 4; },
    };
    for (const auto& change : changes) {
        Calibration copy = before;
        change(copy);
        EXPECT_NE(copy, before);
    }
}

TEST(Calibration, ACellThatHoldsNoNumberIsEqualToItself) {
    Calibration one;
    one.cells[7] = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(Calibration(one), one);
    Calibration other = one;
    other.cells[7] = 0;
    EXPECT_NE(other, one);
}

TEST(Calibration, PutBackIsAllThatItWasAndNothingIsSent) {
    OrbaCalibration cal;
    Unit& unit = cal.unit;
    for (int i = 3; i < Unit::cellCount; ++i) unit.AssignDirectIndex(static_cast<float>(i) + 0.5F, i);
    for (int byte = 0; byte < 3; ++byte) unit.controlByte(byte, static_cast<std::uint8_t>(170 + byte));
    unit.BinFile("/tunes/street.ZQ4OA");
    unit.FW_Build(12);
    unit.teeth({2, 43});
    unit.DefaultSplit(4);
    const Calibration kept = unit.calibration();

    unit.CloseFile();
    unit.FW_Release(3);
    unit.FW_Build(1);
    unit.DefaultSplit(10);
    for (int byte = 0; byte < 3; ++byte) unit.controlByte(byte, 0);
    unit.ONFLY_MODE(true);
    unit.calibration(kept);

    EXPECT_EQ(unit.calibration(), kept);
    for (int i = 700; i < 720; ++i) EXPECT_EQ(unit.DirectIndex(i), static_cast<float>(i) + 0.5F) << i;
    EXPECT_EQ(unit.controlByte(2), 172);
    EXPECT_EQ(unit.BinFile(), "/tunes/street.ZQ4OA");
    EXPECT_EQ(unit.FW_Release(), 5);
    EXPECT_EQ(unit.FW_Build(), 12);
    EXPECT_EQ(unit.teeth().maximum, 43);
    EXPECT_EQ(unit.DefaultSplit(), 4);
    EXPECT_TRUE(unit.ONFLY_MODE());
    EXPECT_THAT(cal.host.sent, IsEmpty());
}

TEST(Calibration, ItsReleaseComesBackWithoutMovingAnything) {
    OrbaCalibration cal(2, 0);
    cal.host.sensors[1] = {.scale = 0.05F, .offset = -0.5F, .unitsCode = 1};
    setFirmwareCode(cal.unit, 2000);
    cal.host.firmwareIsKnownFromLink = true;
    cal.unit.AssignDirectIndex(10, 148);
    const Calibration kept = cal.unit.calibration();
    cal.unit.FW_Release(5);
    ASSERT_NE(cal.unit.DirectIndex(148), 10) << "a release across the third moves the full pulse";
    cal.unit.calibration(kept);
    EXPECT_EQ(cal.unit.FW_Release(), 2);
    EXPECT_EQ(cal.unit.DirectIndex(148), 10);
    EXPECT_EQ(cal.host.head.currentUnit, 3);
}

TEST(Calibration, ACopyKnowsWhatItsFileToldAndGoesOnAsTheOneInHand) {
    OrbaCalibration opened;
    opened.unit.FileOpen("tune.ZQ4OA", FileOfFloats(10.2F, 2010, {{148, 10}}).bytes());
    OrbaCalibration copy;
    copy.unit.calibration(opened.unit.calibration());
    for (OrbaCalibration* one : {&opened, &copy}) {
        one->host.firmwareIsKnownFromLink = true;
        for (const int size : {2292, 2293}) one->unit.AssignDirectIndex(0, size);
        EXPECT_EQ(one->unit.GET_TBL_DIMENSIONS("ADV", "ROWS"), 0) << "of a program that knew sizes";
        one->unit.FW_Release(5);
        EXPECT_EQ(one->unit.DirectIndex(148), 8.555F) << "it was made for a release below the third";
    }
    EXPECT_EQ(copy.unit.calibration(), opened.unit.calibration());
}

TEST(Calibration, OneThatOwesAReleaseStaysOffTheWireWhenItIsPutBack) {
    OrbaCalibration cal(2, 0);
    setFirmwareCode(cal.unit, 2000);
    cal.host.referenceTrouble = "locked";
    cal.unit.FW_Release(5);
    const Calibration owing = cal.unit.calibration();
    ASSERT_EQ(owing.facts.owedRelease, 5);
    cal.unit.FW_Release(2);
    cal.unit.ONFLY_MODE(true);
    ASSERT_TRUE(cal.unit.ONFLY_MODE());
    cal.unit.calibration(owing);
    EXPECT_FALSE(cal.unit.ONFLY_MODE());
    EXPECT_THROW(cal.unit.ConvertData(), Failure);
}

TEST(Calibration, WhatTheUnitHasToldIsNoPartOfIt) {
    OrbaCalibration cal;
    const Calibration kept = cal.unit.calibration();
    cal.unit.FirmWare("ZQA-405012");
    cal.unit.Serial("200001");
    cal.unit.GPIOData()[2] = 7;
    EXPECT_EQ(cal.unit.calibration(), kept);
    cal.unit.calibration(kept);
    EXPECT_EQ(cal.unit.FirmWare(), "ZQA-405012");
    EXPECT_EQ(cal.unit.Serial(), "200001");
    EXPECT_EQ(cal.unit.GPIOData()[2], 7);
}

TEST(LinkedState, StaysWithItsSlotWhenTheCalibrationTakesAnother) {
    RecordingHost host;
    Unit inHand(orbdKind(), host);
    Unit other(orbd6Kind(), host);
    other.FirmWare("ZQD-405010");
    other.gpioListRead(true);
    inHand.exchangeSlots(other);
    EXPECT_EQ(inHand.kind().slot, 8);
    EXPECT_EQ(inHand.FirmWare(), "ZQD-405010");
    EXPECT_TRUE(inHand.GPIO_Req());
    EXPECT_EQ(other.FirmWare(), "");
    EXPECT_FALSE(other.GPIO_Req());
}

// ---- The hook

TEST(CalibrationHook, TellsMemberElementBeforeAndAfter) {
    WatchedOrba cal;
    EXPECT_TRUE(cal.unit.set("VE", 12, 17));
    EXPECT_TRUE(cal.unit.set("VE", -3, 17));
    cal.unit.store("KNK_MIN", 40);
    EXPECT_THAT(cal.told,
                ElementsAre(Told{What::Cell, 929, "VE", 17, 0, 12}, Told{What::Cell, 929, "VE", 17, 12, -3},
                            Told{What::Cell, 34, "KNK_MIN", 0, 0, 40}));
}

TEST(CalibrationHook, OfMembersThatShareACellTheOneThatWasEnteredIsTold) {
    WatchedOrba cal;
    EXPECT_TRUE(cal.unit.set("TACHTYP", 2));
    cal.unit.AssignDirectIndex(5, 4);
    EXPECT_THAT(cal.told, ElementsAre(Told{What::Cell, 4, "TACHTYP", 0, 0, 32},
                                      Told{What::Cell, 4, "P2EGTP", 0, 32, 5}));
}

TEST(CalibrationHook, ARawCellTellsWhoseItIs) {
    WatchedOrba cal;
    cal.unit.AssignDirectIndex(3000, 594);
    cal.unit.AssignDirectIndex(1, 593);
    EXPECT_THAT(cal.told,
                ElementsAre(Told{What::Cell, 594, "RPMTBL", 1, 0, 3000}, Told{What::Cell, 593, "", 0, 0, 1}));
}

TEST(CalibrationHook, AnEntryThatChangesMoreTellsEachPlace) {
    WatchedOrba cal;
    EXPECT_TRUE(cal.unit.set("MAP_BAR", 2.5));
    EXPECT_TRUE(cal.unit.set("EGO_Type", 2));
    EXPECT_TRUE(cal.unit.set("opt_TachInv", 1));
    EXPECT_THAT(cal.told, ElementsAre(Told{What::Cell, 124, "MAP_DISP_MULT", 0, 0, 2.5F},
                                      Told{What::Cell, 39, "MAP_BAR", 0, 0, 4},
                                      Told{What::ControlByte, 1, "EGO_Type", 0, 0, 128},
                                      Told{What::Cell, 2196, "EGO_Type", 0, 0, 2},
                                      Told{What::ControlByte, 1, "opt_TachInv", 0, 128, 144}));
}

TEST(CalibrationHook, TellsNothingWhereNothingChanges) {
    WatchedOrba cal;
    EXPECT_TRUE(cal.unit.set("KNK_MIN", 50));
    cal.unit.FW_Release(5);  // defines the sensor
    cal.told.clear();
    EXPECT_TRUE(cal.unit.set("KNK_MIN", 50));
    EXPECT_FALSE(cal.unit.set("KNK_MIN", 500));
    EXPECT_THROW(cal.unit.set("KNK_MIN", "fifty"), TypeMismatch);
    EXPECT_THROW(cal.unit.AssignDirectIndex(1, 3001), BoundsError);
    cal.unit.FW_Release(5);
    cal.unit.controlByte(1, 0);
    EXPECT_THAT(cal.told, IsEmpty());
}

TEST(CalibrationHook, ARepairByAReaderIsTold) {
    WatchedOrba cal;
    EXPECT_EQ(cal.unit.get("MAP_BAR"), 1);
    EXPECT_THAT(cal.told, ElementsAre(Told{What::Cell, 39, "MAP_BAR", 0, 0, 1},
                                      Told{What::Cell, 124, "MAP_DISP_MULT", 0, 0, 1}));
}

TEST(CalibrationHook, AFileIsOneChangeAndOneThatCannotBeReadIsNone) {
    WatchedOrba cal;
    cal.unit.set("KNK_MIN", 50);
    const std::string bytes = cal.file();
    cal.unit.set("KNK_MIN", 60);
    cal.told.clear();
    cal.unit.FileOpen("x.ZQ4OA", bytes);
    EXPECT_THAT(cal.told, ElementsAre(wholeChange()));
    EXPECT_EQ(cal.unit.get("KNK_MIN"), 50);

    cal.told.clear();
    const Calibration before = cal.unit.calibration();
    cal.host.referenceTrouble = "locked";
    std::string old = bytes;
    const auto code = std::bit_cast<std::array<char, 4>>(2010.0F);
    std::copy(code.begin(), code.end(), old.begin() + 8);
    cal.host.firmwareIsKnownFromLink = true;  // the unit's newer release asks for another sensor
    EXPECT_THROW(cal.unit.FileOpen("y.ZQ4OA", old), Failure);
    EXPECT_THAT(cal.told, IsEmpty());
    EXPECT_EQ(cal.unit.calibration(), before);
}

TEST(CalibrationHook, AReleaseThatMovesTheCalibrationTellsEachCellBehindItsEnd) {
    WatchedOrba cal;
    cal.unit.FW_Release(2);
    cal.host.sensors[1] = {.scale = 0.05F, .offset = -0.5F, .unitsCode = 1};
    setFirmwareCode(cal.unit, 2000);
    cal.unit.get("MAP_BAR");
    cal.told.clear();
    cal.unit.FW_Release(5);
    EXPECT_THAT(cal.told, ElementsAre(Told{What::Cell, 126, "MAP_Scaler", 0, 0, 0.05F},
                                      Told{What::Cell, 127, "MAP_Offset", 0, 0, -0.5F},
                                      Told{What::Cell, 128, "MAP_ID", 0, 0, 1},
                                      Told{What::Cell, 129, "", 0, 0, 1}, factsChange()));
    cal.host.referenceTrouble = "locked";
    cal.unit.FW_Release(2);
    cal.unit.calibration(Calibration{.facts = {.release = 2}});
    cal.told.clear();
    cal.unit.FW_Release(5);
    EXPECT_THAT(cal.told, ElementsAre(factsChange())) << "the release is owed, no cell has moved";
}

TEST(CalibrationHook, CopiesPutBackAndSlotsExchangedAreOneChangeEach) {
    WatchedOrba cal;
    cal.unit.calibration(Calibration{});
    cal.unit.CloseFile();
    EXPECT_THAT(cal.told, ElementsAre(wholeChange(), wholeChange()));

    RecordingHost host;
    Unit one(orbdKind(), host);
    Unit other(orbd6Kind(), host);
    int told = 0;
    one.watch([&](const CalibrationChange& change, const Calibration&) { told += change.what == What::All; });
    other.watch(
        [&](const CalibrationChange& change, const Calibration&) { told += change.what == What::All; });
    one.exchangeSlots(other);
    EXPECT_EQ(told, 2);
}

// ---- What the hook tells is all that happens

bool isSame(float one, float other) {
    return std::bit_cast<std::uint32_t>(one) == std::bit_cast<std::uint32_t>(other);
}

/// A second calibration that knows nothing but the news of the first.
class Follower {
 public:
    explicit Follower(Unit& unit) : calibration(unit.calibration()) {
        unit.watch([this](const CalibrationChange& change, const Calibration& now) { follow(change, now); });
    }

    Calibration calibration;
    std::map<What, int> news;

 private:
    void follow(const CalibrationChange& change, const Calibration& now) {
        ++news[change.what];
        const auto place = static_cast<std::size_t>(change.place);
        if (change.what == What::All) calibration = now;
        if (change.what == What::Facts) calibration.facts = now.facts;
        if (change.what == What::Cell) {
            EXPECT_TRUE(isSame(calibration.cells.at(place), change.before)) << "cell " << place;
            EXPECT_FALSE(isSame(change.before, change.after)) << "cell " << place;
            calibration.cells.at(place) = change.after;
        }
        if (change.what == What::ControlByte) {
            EXPECT_EQ(static_cast<float>(calibration.control.at(place)), change.before);
            calibration.control.at(place) = static_cast<std::uint8_t>(change.after);
        }
    }
};

/// Whatever a program may do to a calibration, in random order and with random numbers.
class RandomWork {
 public:
    RandomWork(Unit& unit, RecordingHost& host, unsigned seed) : unit_(unit), host_(host), random_(seed) {
        kept_ = unit.calibration();
        file_ = unit.fileContent().bytes;
        host.sensors = {{1, {0.05F, -0.5F, 1}}, {2, {0.02F, -0.2F, 3}}, {4, {0.01F, 0.1F, 6}}};
        host.head.currentUnit = unit.kind().fileKind;
    }

    void step() {
        try {
            work();
        } catch (const std::exception&) {
            ++refused;  // hostile numbers are refused
        }
        host_.forget();
    }

    int refused = 0;

 private:
    int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
    bool coin() { return below(2) == 0; }
    float number() {
        static constexpr float few[] = {0, 1, 2, 4, -1, 14.7F, 128, 255, 1e30F};
        if (coin()) return few[below(std::size(few))];
        return static_cast<float>(below(40000)) / 100 - 50;
    }
    const Parameter& row() {
        return unit_.kind()
            .parameters[static_cast<std::size_t>(below(static_cast<int>(unit_.kind().parameters.size())))];
    }
    std::string table() {
        return std::array{"ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"}.at(static_cast<std::size_t>(below(6)));
    }
    std::string axis() { return coin() ? "X-Axis" : "Y-Axis"; }

    void work() {
        switch (below(28)) {
            case 0:
            case 1:
            case 2:
            case 3: {
                const Parameter& one = row();
                unit_.write(one, static_cast<double>(number()), below(one.count));
                return;
            }
            case 4: {
                const Parameter& one = row();
                return unit_.store(one.name, number(), below(one.count));
            }
            case 5:
                return unit_.AssignDirectIndex(number(), below(Unit::cellCount));
            case 6: {
                const Parameter& one = row();
                unit_.read(one, below(one.count));
                return;
            }
            case 7:
                unit_.limits(row().name);
                return;
            case 8:
                return unit_.controlByte(below(3), static_cast<std::uint8_t>(below(256)));
            case 9:
                coin() ? unit_.Set_Control2(below(8), coin()) : unit_.Set_Control3(below(8), coin());
                return;
            case 10:
                return unit_.BinFile("/tunes/" + std::to_string(below(50)) + ".ZQ4OA");
            case 11:
                return unit_.NOTES_TEXT(std::string(static_cast<std::size_t>(below(300)), 'n'));
            case 12:
                setFirmwareCode(unit_, static_cast<float>(below(7) * 1000));
                return unit_.FW_Release(below(7));
            case 13:
                unit_.FW_Build(below(100));
                return unit_.DefaultSplit(below(9));
            case 14:
                return unit_.teeth({number(), number()});
            case 15:
                return unit_.MAPUnits(coin() ? "PSIG" : "%Flow");
            case 16:
                return unit_.SET_TBL_DIMENSIONS(table(), coin() ? "ROWS" : "COLS", below(26));
            case 17:
                return unit_.SET_TBL_AXIS_TYPE(table(), coin() ? "ROW-AXIS" : "COL-AXIS",
                                               coin() ? "CLT" : "RPM");
            case 18:
                unit_.Set_GPO_Stop(static_cast<double>(number()), below(16), axis(), table());
                return;
            case 19:
                unit_.GET_TBL_DIMENSIONS(table(), "ROWS");
                return;
            case 20:
                return unit_.Set_GPIO_Func(below(8), below(26));
            case 21:
                return unit_.Set_GPIO_Param(below(8), below(8), number());
            case 22:
                unit_.Set_GPIO_Table(1 + below(2), below(256), number());
                return;
            case 23:
                return coin() ? unit_.Zeroize_GPIO(below(8)) : unit_.Initialize_Trims();
            case 24:
                return unit_.ConvertData();
            case 25:
                host_.referenceTrouble = coin() ? "locked" : "";
                host_.firmwareIsKnownFromLink = coin();
                host_.linkedSlot = unit_.kind().slot;
                return;
            case 26:
                if (coin()) return unit_.calibration(std::exchange(kept_, unit_.calibration()));
                file_ = unit_.fileContent().bytes;
                return;
            default:
                return rarely();
        }
    }
    void rarely() {
        switch (below(6)) {
            case 0:
                return unit_.FileOpen("read.ZQ4OA", file_);
            case 1: {
                std::string cut = file_.substr(0, 12 + 4 * static_cast<std::size_t>(below(2828)));
                const auto code = std::bit_cast<std::array<char, 4>>(static_cast<float>(below(7) * 1000));
                std::copy(code.begin(), code.end(), cut.begin() + 8);
                return unit_.FileOpen("cut.ZQ4OA", cut);
            }
            case 2: {
                std::string hostile = file_;
                for (std::size_t i = 12; i < hostile.size(); ++i) hostile[i] = static_cast<char>(below(256));
                return unit_.FileOpen("hostile.ZQ4OA", hostile);
            }
            case 3:
                unit_.settleFirmware();
                return;
            case 4:
                return unit_.SpreadTrim(below(8));
            default:
                return unit_.CloseFile();
        }
    }

    Unit& unit_;
    RecordingHost& host_;
    std::mt19937 random_;
    Calibration kept_;
    std::string file_;
};

TEST(CalibrationHook, TenThousandRandomStepsReplayedFromItsNewsGiveTheSameCalibration) {
    for (const int slot : {3, 4, 5, 6, 7}) {
        RecordingHost host;
        Unit unit(*unitKindOfSlot(slot), host);
        Follower follower(unit);
        RandomWork work(unit, host, static_cast<unsigned>(slot));
        for (int i = 0; i < 2000; ++i) {
            work.step();
            ASSERT_EQ(follower.calibration, unit.calibration()) << "slot " << slot << ", step " << i;
        }
        for (const What what : {What::Cell, What::ControlByte, What::Facts, What::All})
            EXPECT_GT(follower.news[what], 20) << slot;
        EXPECT_LT(work.refused, 1000) << "most of the work is done";
    }
}

TEST(CalibrationHook, AnOldFileIsOneChange) {
    OrbaCalibration cal;
    const TemporaryFolder folder;
    Follower follower(cal.unit);
    const std::string path = folder.write("Old.BIN", std::string(2501 * 4, '\0'));
    cal.unit.OldFileOpen(path);
    EXPECT_EQ(follower.news, (std::map<What, int>{{What::All, 1}}));
    EXPECT_EQ(follower.calibration, cal.unit.calibration());
}

}  // namespace
}  // namespace zentaq::testing
