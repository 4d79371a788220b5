// Table sizes, axis kinds, stop points, pressure units, control bits and first answers, for every unit kind.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>

#include "base/errors.h"
#include "base/number_text.h"
#include "unit/expectations/kind_calibration.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr float infinity = std::numeric_limits<float>::infinity();

struct ShapeCase {
    const char* name;
    const UnitKind& (*kind)();
    std::array<int, 2> outputTables;         ///< first of 256 cells and bytes each
    std::vector<std::pair<int, int>> zeros;  ///< image bytes that stay 0, first and last
    bool hasAxisWords = true;
    int newerFrom = 5;       ///< first release that takes stop points and table sizes
    int unitsCell = 129;     ///< code of the pressure unit
    int barCell = 124;       ///< rating
    int ratioCell = 2225;    ///< stoichiometric ratio
    int marginValue = 2224;  ///< cell of TPS_MARGIN_VALUE
    int rpmCell = 592;       ///< first of 16, two apart
    int mapCell = 624;       ///< first of 16, two apart
};

void PrintTo(const ShapeCase& kind, std::ostream* out) {
    *out << kind.name;
}

struct StopRange {
    const char* kind;
    float low;
    float high;
    const char* text;
};

/// With a sensor from 8 to 88 kPa and a ratio of 12.
const std::vector<StopRange> stopRanges = {
    {"CLT", -40, 150, "(-40 to 150 C)"},
    {"RAW MAP", 8, 88, "(8 to 88 kPa)"},
    {"BLEND MAP", 8, 88, "(8 to 88 kPa)"},
    {"TPS", 0, 5, "(0 to 5 Volts)"},
    {"ACTUAL AFR", 8.004F, 24, "(8.004 to 24 AFR)"},
    {"MAT", -40, 150, "(-40 to 150 C)"},
    {"RPM", 0, 20000, "(0 to 20000 RPM)"},
    {"GPIO1", 0, 100, "(0 to 100%)"},
    {"GPIO2", 0, 100, "(0 to 100%)"},
    {"GPIO3", 0, 100, "(0 to 100%)"},
    {"GPIO4", 0, 100, "(0 to 100%)"},
    {"GPIO5", 0, 100, "(0 to 100%)"},
    {"GPIO6", 0, 100, "(0 to 100%)"},
    {"GPIO7", 0, 100, "(0 to 100%)"},
    {"GPIO8", 0, 100, "(0 to 100%)"},
};

struct StopAxis {
    const char* table;
    const char* axis;      ///< of the stops
    const char* axisKind;  ///< of the kind
    int cell;              ///< first of 16
    int image;             ///< first of 16 words
};

const std::vector<StopAxis> stopAxes = {{"GPO1", "Y-Axis", "ROW-AXIS", 2226, 2228},
                                        {"GPO1", "X-Axis", "COL-AXIS", 2242, 2196},
                                        {"GPO2", "Y-Axis", "ROW-AXIS", 2258, 2294},
                                        {"GPO2", "X-Axis", "COL-AXIS", 2274, 2262}};

const std::vector<const char*> tables = {"ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"};

class KindShapes : public ::testing::TestWithParam<ShapeCase> {
 protected:
    const ShapeCase& shape = GetParam();
    KindCalibration cal{shape.kind()};
    Unit& unit = cal.unit;
    RecordingHost& host = cal.host;

    void useSensorFrom8To88() {
        unit.set("MAP_Scaler", 0.0625);
        unit.set("MAP_Offset", -0.5);
        unit.set("AFR", 12);
        host.forget();
    }
    void expectStopLimits(const StopAxis& axis, const StopRange& range) {
        SCOPED_TRACE(std::string(axis.table) + " " + axis.axis + " " + range.kind);
        for (const float value : {range.low, std::nextafter(range.low, infinity),
                                  std::nextafter(range.high, -infinity), range.high}) {
            EXPECT_TRUE(unit.Set_GPO_Stop(static_cast<double>(value), 1, axis.axis, axis.table)) << value;
        }
        const auto cells = cal.cells();
        for (const float value :
             {std::nextafter(range.low, -infinity), std::nextafter(range.high, infinity)}) {
            const std::string limits = numberText(range.low) + " to " + numberText(range.high);
            EXPECT_EQ(refusalOf(unit.Set_GPO_Stop(static_cast<double>(value), 1, axis.axis, axis.table)),
                      (Refusal{1001, range.text, numberText(value), limits}));
        }
        EXPECT_EQ(refusalOf(unit.Set_GPO_Stop(" ", 1, axis.axis, axis.table)), Refusal{1005});
        EXPECT_EQ(cal.cells(), cells);
    }
};

// ---- Stop points

TEST_P(KindShapes, StopPointsTakeTheRangeOfTheirAxisKind) {
    if (!shape.hasAxisWords) return;
    useSensorFrom8To88();
    for (const StopAxis& axis : stopAxes) {
        for (const StopRange& range : stopRanges) {
            unit.SET_TBL_AXIS_TYPE(axis.table, axis.axisKind, range.kind);
            expectStopLimits(axis, range);
        }
    }
}

TEST_P(KindShapes, StopPointsWithoutAxisWordsAreTheTwoAxes) {
    if (shape.hasAxisWords) return;
    useSensorFrom8To88();
    for (const char* table : {"GPO1", "GPO2"}) {
        expectStopLimits({table, "Y-Axis", "", 0, 0}, {"BLEND MAP", 8, 88, "(8 to 88 kPa)"});
        expectStopLimits({table, "X-Axis", "", 0, 0}, {"RPM", 0, 20000, "(0 to 20000 RPM)"});
        for (const int i : {0, 1, 15}) {
            EXPECT_TRUE(unit.Set_GPO_Stop(4000 + i, i, "X-Axis", table));
            EXPECT_EQ(unit.DirectIndex(shape.rpmCell + 2 * i), static_cast<float>(4000 + i));
            EXPECT_EQ(unit.Get_GPO_Stop(i, "X-Axis", table), static_cast<float>(4000 + i));
            EXPECT_TRUE(unit.Set_GPO_Stop(20 + i, i, "Y-Axis", table));
            EXPECT_EQ(unit.get("MAPTBL", i), static_cast<float>(20 + i));
            EXPECT_NE(unit.DirectIndex(shape.mapCell + 2 * i), 0);
        }
    }
}

TEST_P(KindShapes, StopPointsHaveTheirCells) {
    if (!shape.hasAxisWords) return;
    unit.ONFLY_MODE(true);
    for (const auto& [table, axis, axisKind, cell, image] : stopAxes) {
        unit.SET_TBL_AXIS_TYPE(table, axisKind, "RPM");
        auto cells = cal.cells();
        for (const int i : {0, 1, 15}) {
            const auto value = static_cast<float>(cell + 100 * i);
            EXPECT_TRUE(unit.Set_GPO_Stop(static_cast<double>(value), i, axis, table));
            EXPECT_EQ(unit.Get_GPO_Stop(i, axis, table), value);
            cells.at(static_cast<std::size_t>(cell + i)) = value;
        }
        EXPECT_EQ(cal.cells(), cells);
        EXPECT_THROW(unit.Get_GPO_Stop(16, axis, table), BoundsError);
        EXPECT_THROW(unit.Get_GPO_Stop(-1, axis, table), BoundsError);
    }
    EXPECT_THAT(host.sent, IsEmpty());
}

TEST_P(KindShapes, StopPointsReachTheImageByTheirAxisKind) {
    if (!shape.hasAxisWords) return;
    KindCalibration newer(shape.kind(), shape.newerFrom);
    Unit& modern = newer.unit;
    modern.set("AFR", 12);
    struct Counted {
        const char* kind;
        float stop;
        int counts;
    };
    // 56.874783 kPa of the legacy scale are 2.625 volts, 537.075 counts.
    for (const auto& [kind, stop, counts] : std::vector<Counted>{{"CLT", 17, 76},  // 76.5, a tie
                                                                 {"MAT", -21, 26},
                                                                 {"RAW MAP", 56.874783F, 537},
                                                                 {"BLEND MAP", 56.874783F, 537},
                                                                 {"TPS", 1.5F, 76},
                                                                 {"ACTUAL AFR", 15, 76},
                                                                 {"RPM", 4660.5F, 4660},
                                                                 {"GPIO1", 50, 128},
                                                                 {"GPIO8", 30, 76}}) {
        for (const auto& [table, axis, axisKind, cell, image] : stopAxes) {
            modern.SET_TBL_AXIS_TYPE(table, axisKind, kind);
            for (int i = 0; i < 16; ++i) modern.AssignDirectIndex(stop, cell + i);
        }
        const auto bytes = newer.image();
        for (const StopAxis& axis : stopAxes) {
            for (int i = 0; i < 16; ++i) {
                const auto high = static_cast<std::size_t>(axis.image + 2 * i);
                EXPECT_EQ(bytes.at(high) * 256 + bytes.at(high + 1), static_cast<float>(counts))
                    << kind << " " << axis.table << " " << axis.axis << " " << i;
            }
        }
    }
}

TEST_P(KindShapes, OlderFirmwareSeesNoStopPoints) {
    if (!shape.hasAxisWords) return;
    for (const int release : {shape.newerFrom - 1, shape.newerFrom}) {
        KindCalibration some(shape.kind(), release);
        for (const auto& [table, axis, axisKind, cell, image] : stopAxes) {
            some.unit.SET_TBL_AXIS_TYPE(table, axisKind, "RPM");
            for (int i = 0; i < 16; ++i) some.unit.AssignDirectIndex(257, cell + i);
        }
        some.unit.SET_TBL_DIMENSIONS("GPO1", "ROWS", 9);
        some.unit.SET_TBL_DIMENSIONS("GPO1", "COLS", 10);
        const auto bytes = some.image();
        const bool hidden = release < shape.newerFrom;
        for (std::size_t i = 2196; i < 2208; ++i) EXPECT_EQ(bytes.at(i), hidden ? 0.0F : 1.0F) << i;
        const std::vector<float> head(bytes.begin() + 2192, bytes.begin() + 2196);
        EXPECT_EQ(head, hidden ? std::vector<float>(4) : std::vector<float>({119, 119, 10, 9}));
        EXPECT_EQ(bytes.at(2208), 1) << "only 2192 to 2207 are hidden";
    }
}

TEST_P(KindShapes, TemperatureStopsAreEnteredInFahrenheitWhenTheUserWantsIt) {
    if (!shape.hasAxisWords) return;
    host.isFahrenheit = true;
    for (const char* kind : {"CLT", "MAT"}) {
        unit.SET_TBL_AXIS_TYPE("GPO2", "ROW-AXIS", kind);
        expectStopLimits(stopAxes[2], {kind, -40, 302, "(-40 to 302 F)"});
    }
}

TEST_P(KindShapes, ARatioOfOneIsLambda) {
    if (!shape.hasAxisWords) return;
    unit.set("AFR", 1);
    unit.SET_TBL_AXIS_TYPE("GPO1", "COL-AXIS", "ACTUAL AFR");
    expectStopLimits(stopAxes[1], {"ACTUAL AFR", 0.667F, 2, "(0.667 to 2 lambda)"});
}

// ---- Sizes and axis kinds

TEST_P(KindShapes, SizesFrom8To24AreStoredInTheirCells) {
    for (const char* table : tables) {
        const std::string name = table;
        const int pair = name == "GPO1" ? 2294 : name == "GPO2" ? 2296 : 2292;
        for (const auto& [what, cell] :
             std::vector<std::pair<const char*, int>>{{"ROWS", pair}, {"COLS", pair + 1}}) {
            for (const auto& [count, stored] :
                 std::vector<std::pair<int, int>>{{8, 8}, {7, 8}, {25, 8}, {24, 24}, {-1, 24}, {12, 12}}) {
                SCOPED_TRACE(name + " " + what + " " + numberText(count));
                auto cells = cal.cells();
                unit.SET_TBL_DIMENSIONS(table, what, count);
                if (shape.hasAxisWords) cells.at(static_cast<std::size_t>(cell)) = static_cast<float>(stored);
                EXPECT_EQ(cal.cells(), cells);
                EXPECT_EQ(unit.GET_TBL_DIMENSIONS(table, what), shape.hasAxisWords ? stored : 16);
            }
        }
    }
}

TEST_P(KindShapes, AnOldCalibrationIs16By16OnFirstUse) {
    setProgramVersion(unit, 9.44F);
    for (const char* table : tables) {
        EXPECT_EQ(unit.GET_TBL_DIMENSIONS(table, "ROWS"), 16) << table;
        EXPECT_EQ(unit.GET_TBL_DIMENSIONS(table, "COLS"), 16) << table;
    }
    for (int cell = 2292; cell < 2298; ++cell) {
        EXPECT_EQ(unit.DirectIndex(cell), shape.hasAxisWords ? 16.0F : 0.0F) << cell;
    }
}

TEST_P(KindShapes, AxisKindsArePackedInTheirWord) {
    for (const auto& [table, word] :
         std::vector<std::pair<const char*, int>>{{"GPO1", 2290}, {"GPO2", 2291}}) {
        for (std::size_t i = 0; i < stopRanges.size(); ++i) {
            const StopRange& row = stopRanges[i];
            const StopRange& column = stopRanges[stopRanges.size() - 1 - i];
            auto cells = cal.cells();
            unit.SET_TBL_AXIS_TYPE(table, "ROW-AXIS", row.kind);
            unit.SET_TBL_AXIS_TYPE(table, "COL-AXIS", column.kind);
            unit.SET_TBL_AXIS_TYPE(table, "ROW-AXIS", "OIL");
            if (!shape.hasAxisWords) {
                EXPECT_EQ(cal.cells(), cells);
                EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS"), "BLEND MAP");
                EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "COL-AXIS"), "RPM");
                continue;
            }
            cells.at(static_cast<std::size_t>(word)) =
                static_cast<float>((i + 1) * 16 + stopRanges.size() - i);
            EXPECT_EQ(cal.cells(), cells);
            EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS"), row.kind);
            EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "COL-AXIS"), column.kind);
        }
    }
    for (const char* table : {"ADV", "AFR", "SPW", "VE"}) {
        unit.SET_TBL_AXIS_TYPE(table, "ROW-AXIS", "TPS");
        EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS"), "BLEND MAP");
        EXPECT_EQ(unit.GET_TBL_AXIS_TYPE(table, "COL-AXIS"), "RPM");
    }
}

// ---- Output tables and bytes without a meaning

TEST_P(KindShapes, OutputTablesHaveTheirCellsBytesAndRecords) {
    unit.ONFLY_MODE(true);
    for (int table = 1; table <= 2; ++table) {
        const int first = shape.outputTables.at(static_cast<std::size_t>(table - 1));
        for (const int i : {0, 1, 255}) {
            SCOPED_TRACE(numberText(first + i));
            auto cells = cal.cells();
            auto bytes = cal.image();
            host.forget();
            unit.Set_GPIO_Table(table, i, 30);  // 76.5, a tie
            cells.at(static_cast<std::size_t>(first + i)) = 30;
            bytes.at(static_cast<std::size_t>(first + i)) = 76;
            EXPECT_EQ(unit.Get_GPIO_Table(table, i), 30);
            EXPECT_EQ(cal.cells(), cells);
            EXPECT_EQ(cal.image(), bytes);
            EXPECT_THAT(host.sent, ElementsAre(recordOf(first + i, {76})));
        }
        EXPECT_THROW(unit.Get_GPIO_Table(table, 256), BoundsError);
        EXPECT_THROW(unit.Set_GPIO_Table(table, -1, 1), BoundsError);
    }
}

TEST_P(KindShapes, BytesWithoutAMeaningAreZeroWhateverTheCellsHold) {
    for (int i = 0; i < Unit::cellCount; ++i) unit.AssignDirectIndex(7, i);
    unit.AssignDirectIndex(0, unit.kind().cells.mapScaler);  // a sensor of 7 volts a kPa has no gain word
    unit.AssignDirectIndex(1, unit.kind().cells.legacyBar);  // 7 is no rating
    for (const auto& [first, last] : shape.zeros) {
        for (int i = first; i <= last; ++i) unit.AssignDirectIndex(99, i);
    }
    const auto image = cal.image();
    for (const auto& [first, last] : shape.zeros) {
        for (int i = first; i <= last; ++i) EXPECT_EQ(image.at(static_cast<std::size_t>(i)), 0) << i;
    }
}

// ---- Pressure units, control bits, first answers

TEST_P(KindShapes, PressureUnitsAreKeptAsACodeAndFlowSetsAnOptionBit) {
    const std::vector<const char*> names = {"", "kPa", "PSIA", "PSIG", "mmHg", "inHg", "%Flow"};
    EXPECT_EQ(unit.MAPUnits(), "kPa");  // code 0
    unit.ONFLY_MODE(true);
    for (int code = 6; code >= 1; --code) {
        const char* name = names[static_cast<std::size_t>(code)];
        unit.MAPUnits(name);
        EXPECT_EQ(unit.MAPUnits(), name);
        EXPECT_EQ(unit.DirectIndex(shape.unitsCell), static_cast<float>(code));
        EXPECT_EQ(unit.Get_Control2(0), code == 6) << name;
    }
    unit.MAPUnits("%Flow");
    const auto cells = cal.cells();
    for (const char* other : {"bar", "", "KPA"}) unit.MAPUnits(other);
    EXPECT_EQ(cal.cells(), cells);
    EXPECT_EQ(unit.MAPUnits(), "%Flow");
    EXPECT_TRUE(unit.Get_Control2(0));
    EXPECT_THAT(host.sent, IsEmpty());
}

TEST_P(KindShapes, EveryControlBitIsSetAndClearedAloneAndNeverSent) {
    using Reader = bool (Unit::*)(int) const;
    using Writer = void (Unit::*)(int, bool);
    const std::array<Reader, 3> readers = {&Unit::Get_Control, &Unit::Get_Control2, &Unit::Get_Control3};
    const std::array<Writer, 3> writers = {&Unit::Set_Control, &Unit::Set_Control2, &Unit::Set_Control3};
    unit.ONFLY_MODE(true);
    for (std::size_t which = 0; which < 3; ++which) {
        for (int bit = 0; bit < 8; ++bit) {
            std::array<int, 3> bytes{};
            bytes.at(which) = 1 << bit;
            for (int twice = 0; twice < 2; ++twice) std::invoke(writers.at(which), unit, bit, true);
            EXPECT_EQ(cal.controlBytes(), bytes);
            for (int other = 0; other < 8; ++other) {
                EXPECT_EQ(std::invoke(readers.at(which), unit, other), other == bit) << other;
            }
            const auto image = cal.image();
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_EQ(image.at(i), static_cast<float>(bytes.at(i)));
                EXPECT_EQ(unit.DirectIndex(static_cast<int>(i)), static_cast<float>(bytes.at(i)));
            }
            std::invoke(writers.at(which), unit, bit, false);
            EXPECT_EQ(cal.controlBytes(), (std::array<int, 3>{}));
        }
    }
    EXPECT_THAT(host.sent, IsEmpty());
}

TEST_P(KindShapes, AFreshCalibrationAnswersItsDefaultsAndRepairsItsCells) {
    RecordingHost quiet;
    Unit fresh{shape.kind(), quiet};
    EXPECT_EQ(fresh.get("MAP_BAR"), 1);
    EXPECT_EQ(fresh.DirectIndex(39), 1);
    EXPECT_EQ(fresh.DirectIndex(shape.barCell), 1);
    EXPECT_EQ(fresh.get("AFR"), 14.64F);
    EXPECT_EQ(fresh.DirectIndex(shape.ratioCell), 14.64F);
    EXPECT_EQ(fresh.get("TPS_MARGIN_TOGGLE"), 1);
    EXPECT_EQ(fresh.get("TPS_MARGIN_VALUE"), 0.08F);
    EXPECT_EQ(fresh.DirectIndex(shape.marginValue), 0);
    fresh.AssignDirectIndex(3, 39);
    fresh.AssignDirectIndex(0, shape.barCell);
    EXPECT_EQ(fresh.get("MAP_BAR"), 3);
    EXPECT_EQ(fresh.DirectIndex(shape.barCell), 3);
    fresh.AssignDirectIndex(0, shape.barCell);
    EXPECT_EQ(fresh.get("MAP_DISP_MULT"), 1);
    EXPECT_EQ(fresh.DirectIndex(shape.barCell), 1);
}

TEST_P(KindShapes, AnOldOxygenSensorTypeLosesItsMark) {
    if (!unit.has("EGO_Type")) return;
    for (const auto& [cell, type] :
         std::vector<std::pair<float, float>>{{129, 1}, {130, 2}, {1, 1}, {2, 2}}) {
        unit.AssignDirectIndex(cell, 2196);
        EXPECT_EQ(unit.get("EGO_Type"), type);
        EXPECT_EQ(unit.DirectIndex(2196), type);
    }
}

using Zeros = std::vector<std::pair<int, int>>;
const Zeros orbaZeros = {{18, 33},   {134, 139}, {268, 274}, {323, 335},  {408, 503},
                         {512, 519}, {536, 559}, {584, 589}, {2326, 2500}};
const Zeros orbLiteZeros = {{18, 33},   {134, 139}, {268, 274}, {323, 335},  {417, 503},
                            {512, 519}, {536, 559}, {584, 589}, {2326, 2500}};
const Zeros orbcZeros = {{18, 33},   {134, 139}, {268, 274}, {323, 333},  {451, 503},
                         {512, 519}, {536, 559}, {584, 589}, {2326, 2500}};
const Zeros orbdZeros = {{18, 33},   {134, 139}, {268, 274}, {323, 335},   {399, 503},
                         {512, 519}, {536, 559}, {584, 589}, {1936, 2191}, {2326, 2500}};
const Zeros pzk2Zeros = {{7, 7}, {9, 33}, {52, 53}, {65, 66}, {90, 93}, {190, 191}, {1024, 2500}};

INSTANTIATE_TEST_SUITE_P(
    AllKinds, KindShapes,
    ::testing::Values(ShapeCase{"OrbA", orbaKind, {1680, 1936}, orbaZeros},
                      ShapeCase{"OrbL", orbLiteKind, {1680, 1936}, orbLiteZeros},
                      ShapeCase{"OrbC", orbcKind, {1680, 1936}, orbcZeros},
                      ShapeCase{"OrbD", orbdKind, {1424, 1680}, orbdZeros},
                      ShapeCase{"OrbD6", orbd6Kind, {1424, 1680}, orbdZeros},
                      ShapeCase{
                          "Pzk2", pzk2Kind, {512, 768}, pzk2Zeros, false, 0, 89, 84, 1057, 1056, 192, 224}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zentaq::testing
