#include "unit/old_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <fstream>
#include <limits>
#include <map>
#include <random>
#include <set>

#include "base/errors.h"
#include "base/text.h"
#include "unit/old_file_encoder.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::UnorderedElementsAre;

constexpr const char* customSensor =
    "Your BIN file appears to use a custom MAP sensor.\n"
    "Your tune has been preserved, but the senor must be defined to give accurate readings.\n"
    "You can define the customer sensor under Sensor Parameters->MAP and selecting the Custom button.";
constexpr const char* updated =
    "Your BIN file has been updated to work with this firmware.\n"
    "You should do a Save As... and reprogram your unit.";

/// A Unit object without a calibration in hand, and a place for files.
struct Import {
    TemporaryFolder folder;
    RecordingHost host;
    Unit unit;

    explicit Import(const UnitKind& kind = orbaKind()) : unit(kind, host) {}
    void open(const std::string& bytes) {
        const std::string path = folder.write("old.BIN", bytes);
        unit.OldFileOpen(path);
    }
    void open(const LegacyFile& file) { open(file.bytes()); }
    float cell(int index) const { return unit.DirectIndex(index); }
    std::vector<float> cells(int first, int count) const {
        std::vector<float> list;
        for (int i = 0; i < count; ++i) list.push_back(cell(first + i));
        return list;
    }
};

/// An old file whose sensor is known, so that nothing is told of it.
LegacyFile ratedFile(float rating = 1, int floats = 2176) {
    LegacyFile file(floats);
    file[292] = rating;
    file[27] = 16;
    return file;
}

// ---- The map

const std::vector<const UnitKind*> allKinds = {&orbaKind(), &orbLiteKind(), &pzk2Kind(),
                                               &orbcKind(), &orbdKind(),    &orbd6Kind()};

/// Old cells and today's cells that the layout of a kind joins, in pairs.
std::vector<std::pair<int, int>> joinedCells(const UnitKind& kind) {
    std::vector<std::pair<int, int>> pairs;
    for (const old::Place& place : old::places(kind)) {
        for (int i = 0; i < place.row->count; ++i) pairs.emplace_back(place.cell(i), place.row->cell(i));
    }
    for (const old::Loose& run : old::looseCells(kind)) {
        for (int i = 0; i < run.count; ++i) pairs.emplace_back(run.first + i, run.cell + i);
    }
    for (const old::Table& table : old::tables(kind)) {
        for (int i = 0; i < 256; ++i) pairs.emplace_back(table.first + i, table.cell + i);
    }
    for (int pin = 0; pin < 7 && pin <= kind.numGpio; ++pin) {
        for (int word = 0; word < 7; ++word) {
            pairs.emplace_back(old::blockCell(pin, word), kind.gpioBase + 9 * pin + word);
        }
    }
    for (int byte = 0; byte < 3; ++byte) pairs.emplace_back(byte, byte);
    return pairs;
}

TEST(OldFileLayout, EveryOldCellIsUsedOnceAndEveryCellOfTodayIsFilledOnce) {
    for (const UnitKind* kind : allKinds) {
        std::map<int, int> oldUses, newUses;
        for (const auto& [from, to] : joinedCells(*kind)) {
            ++oldUses[from];
            ++newUses[to];
        }
        for (const auto& [cell, uses] : oldUses) EXPECT_EQ(uses, 1) << kind->model << " old cell " << cell;
        for (const auto& [cell, uses] : newUses) EXPECT_EQ(uses, 1) << kind->model << " cell " << cell;
        EXPECT_FALSE(oldUses.contains(292)) << "the rating has its own way";
    }
}

TEST(OldFileLayout, EveryCellOfAKindLiesInsideItsFile) {
    const std::map<const UnitKind*, int> floats = {
        {&orbaKind(), 2176}, {&orbLiteKind(), 2328}, {&pzk2Kind(), 1201}};
    for (const auto& [kind, length] : floats) {
        for (const auto& [from, to] : joinedCells(*kind)) {
            EXPECT_LT(from, length) << kind->model;
            EXPECT_LE(to, kind->orbFileLength) << kind->model;
        }
    }
}

TEST(OldFileLayout, OnlySharedCellsAndTheSensorHaveNoPlace) {
    for (const UnitKind* kind : {&orbaKind(), &orbLiteKind(), &pzk2Kind()}) {
        std::set<int> filled;
        for (const auto& [from, to] : joinedCells(*kind)) filled.insert(to);
        std::set<std::string_view> missing;
        for (const Parameter& row : kind->parameters) {
            for (int i = 0; row.hasCell() && i < row.count; ++i) {
                if (!filled.contains(row.cell(i))) missing.insert(row.name);
            }
        }
        EXPECT_THAT(missing,
                    UnorderedElementsAre("MAP_BAR", "MAP_DISP_MULT", "MAP_Scaler", "MAP_Offset", "MAP_ID"))
            << kind->model;
    }
}

TEST(OldFileLayout, TheNotesAndTheEighthFuelTrimShareACellThatTheFileFills) {
    EXPECT_EQ(old::placeOf(orbaKind(), "FuelTrim").cell(7), 639);
    EXPECT_EQ(old::placeOf(orbaKind(), "FuelTrim").row->cell(7), 2327);
}

/// "61 to 76", "592 to 622, every other" or "18" as cells; nothing for "none".
std::vector<int> cellsOfText(const std::string& text) {
    int first = 0;
    int last = 0;
    const int numbers = std::sscanf(text.c_str(), "%d to %d", &first, &last);
    const int step = text.find("every other") == std::string::npos ? 1 : 2;
    std::vector<int> cells;
    for (int cell = first; numbers > 0 && cell <= (numbers == 2 ? last : first); cell += step)
        cells.push_back(cell);
    return cells;
}

std::vector<int> cellsOf(const Parameter& row) {
    std::vector<int> cells;
    for (int i = 0; i < row.count; ++i) cells.push_back(row.cell(i));
    return cells;
}

TEST(OldFileLayout, TheTableOfThePageTellsEveryMember) {
    std::ifstream page(ZENTAQ_SOURCE_DIR "/docs/legacy-files.md");
    std::size_t members = 0;
    for (std::string line; std::getline(page, line);) {
        const auto columns = split(line, '|');
        if (columns.size() < 6 || cellsOfText(columns[1]).empty()) continue;
        const std::string content(trimmed(columns[2]));
        if (content.size() < 3 || content.front() != '`' || content.back() != '`') continue;
        const std::string member = content.substr(1, content.size() - 2);
        for (const auto& [kind, column] : {std::pair(&orbaKind(), 3), std::pair(&pzk2Kind(), 4)}) {
            const old::Place place = old::placeOf(*kind, member);
            const std::vector<int> told = cellsOfText(columns[static_cast<std::size_t>(column)]);
            if (place.row == nullptr) {
                EXPECT_TRUE(told.empty()) << member;
                continue;
            }
            ++members;
            EXPECT_EQ(told, cellsOf(*place.row)) << member;
            std::vector<int> old;
            for (int i = 0; i < place.row->count; ++i) old.push_back(place.cell(i));
            EXPECT_EQ(cellsOfText(columns[1]), old) << member;
        }
    }
    EXPECT_EQ(members, old::places(orbaKind()).size() + old::places(pzk2Kind()).size());
}

// ---- There and back

float between(std::mt19937& random, float low, float high) {
    return std::uniform_real_distribution<float>(low, high)(random);
}

int oneOf(std::mt19937& random, const std::vector<int>& choices) {
    return choices[std::uniform_int_distribution<std::size_t>(0, choices.size() - 1)(random)];
}

void putRandomPins(Unit& unit, const LegacyMap& map, std::mt19937& random) {
    for (int pin = 0; pin < map.pins; ++pin) {
        const int first = map.blockBase + 9 * pin;
        const std::vector<int> outputs = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
        const std::vector<int> inputs = {12, 13, 14, 15, 16, 17, 18, 19, 21, 22};
        const int code = oneOf(random, pin >= 4 ? inputs : outputs);
        unit.AssignDirectIndex(static_cast<float>(code), first);
        for (int i = 0; code != 0 && i < 5; ++i)
            unit.AssignDirectIndex(between(random, 0, 500), first + 1 + i);
    }
}

/// Any calibration that both formats can hold.
void putRandomCalibration(Unit& unit, const LegacyMap& map, float rating, std::mt19937& random) {
    unit.store("MAP_BAR", rating);
    for (const LegacyRun& run : map.runs) {
        for (int i = 0; i < run.count; ++i) {
            unit.AssignDirectIndex(between(random, 0.5F, 250), run.newFirst + i * run.newStride);
        }
    }
    for (int i = 0; i < 16; ++i) {
        // In the reach of the sensor, whose ends are the ends of the axis.
        unit.AssignDirectIndex(between(random, 30, 90) * rating,
                               map.pressures.newFirst + i * map.pressures.newStride);
    }
    for (const LegacyTable& table : map.tables) {
        for (int i = 0; i < 256; ++i) unit.AssignDirectIndex(between(random, 0.5F, 60), table.newFirst + i);
    }
    putRandomPins(unit, map, random);
    const auto put = [&](std::string_view member, const std::vector<int>& choices) {
        const Parameter* row = unit.find(member);
        for (int i = 0; row != nullptr && i < row->count; ++i) {
            unit.store(member, static_cast<float>(oneOf(random, choices)), i);
        }
    };
    for (int byte = 0; byte < 3; ++byte) unit.controlByte(byte, static_cast<std::uint8_t>(random() & 255U));
    unit.Set_Control2(0, false);  // belongs to the sensor
    if (!unit.has("EGO_Type")) {
        // Bits of members that the kind lacks are off.
        unit.Set_Control(1, false);
        unit.Set_Control2(7, false);
        unit.Set_Control3(3, false);
    }
    unit.AssignDirectIndex(16 * 6 + 3, 8);
    put("EGO_Type", {1, 2});
    put("Engine_Type", {0, 1});
    put("PHDSEQ", {1, 2, 3});
    put("AMP42", {0, 1});
    put("DCCL_CutActive", {0, 1});
    put("Option_Type", {1, 2, 40});
    put("CYLORDER", {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 16});
    put("INJTRIM", {-15, -3, 0, 4, 15});
    put("FuelTrim", {-15, -3, 0, 4, 15});
    put("TPS_MARGIN_TOGGLE", {0, 1});
    unit.Initialize_Trims();
}

/// What the import makes of injector figures, worked out from the tables of the first sensors.
std::pair<float, float> movedInjectors(float injOn, float scale1, int rating) {
    const double k[] = {0, 876.0 / 1024, 940.0 / 1024, 996.0 / 1024, 992.0 / 1024};
    const double l[] = {0, 100.0 / 1023, 36.0 / 1023, 4.0 / 1023, 28.0 / 1023};
    return {static_cast<float>(injOn + scale1 * l[rating]),
            static_cast<float>(std::nearbyint(scale1 * k[rating] * 1000) / 1000)};
}

void expectSameCells(const Unit& before, const Unit& after, const LegacyMap& map) {
    for (const LegacyRun& run : map.runs) {
        for (int i = 0; i < run.count; ++i) {
            const int cell = run.newFirst + i * run.newStride;
            const bool injectors = map.blockBase == 336 && (cell == 148 || cell == 150);
            if (injectors) continue;
            EXPECT_EQ(after.DirectIndex(cell), before.DirectIndex(cell)) << "cell " << cell;
        }
    }
    for (int i = 0; i < 16; ++i) {
        const int cell = map.pressures.newFirst + i * map.pressures.newStride;
        EXPECT_FLOAT_EQ(after.DirectIndex(cell), before.DirectIndex(cell)) << "pressure " << i;
    }
    for (int byte = 0; byte < 3; ++byte) EXPECT_EQ(after.controlByte(byte), before.controlByte(byte));
}

void expectSameTables(const Unit& before, const Unit& after, const LegacyMap& map, int columns) {
    for (const LegacyTable& table : map.tables) {
        for (int i = 0; i < 256; ++i) {
            const int cell = table.newFirst + i;
            const bool held = i % 16 < columns;
            const float spare = table.oldFirst == 1152 ? 14.64F : 0.0F;
            EXPECT_FLOAT_EQ(after.DirectIndex(cell), held ? before.DirectIndex(cell) : spare)
                << "cell " << cell;
        }
    }
}

void expectSamePins(const Unit& before, const Unit& after, const LegacyMap& map) {
    for (int pin = 0; pin < map.pins; ++pin) {
        const int first = map.blockBase + 9 * pin;
        EXPECT_EQ(after.DirectIndex(first), before.DirectIndex(first)) << "function of pin " << pin;
        for (int word = 1; word < 9; ++word) {
            EXPECT_FLOAT_EQ(after.DirectIndex(first + word), before.DirectIndex(first + word))
                << "pin " << pin << " word " << word;
        }
    }
}

void expectRoundTrip(const UnitKind& kind, const LegacyMap& map, unsigned seed, int rating, int columns) {
    SCOPED_TRACE(std::string(kind.model) + ", seed " + std::to_string(seed) + ", rating " +
                 std::to_string(rating) + ", columns " + std::to_string(columns));
    std::mt19937 random(seed);
    Import source(kind);
    putRandomCalibration(source.unit, map, static_cast<float>(rating), random);
    Import import(kind);
    import.open(encodeLegacy(map, source.unit, static_cast<float>(rating), columns));
    expectSameCells(source.unit, import.unit, map);
    expectSameTables(source.unit, import.unit, map, columns);
    expectSamePins(source.unit, import.unit, map);
    EXPECT_EQ(import.unit.get("MAP_BAR"), static_cast<float>(rating));
    EXPECT_EQ(import.unit.get("RPM_Size"), static_cast<float>(columns));
    for (int i = 0; i < 16; ++i) {
        EXPECT_EQ(import.cell(kind.cells.trimSent + i), source.cell(kind.cells.trimSent + i));
    }
    if (kind.cells.scale1 == CellMap::none) return;
    const auto [injOn, scale1] = movedInjectors(source.cell(150), source.cell(148), rating);
    EXPECT_FLOAT_EQ(import.cell(150), injOn);
    EXPECT_FLOAT_EQ(import.cell(148), scale1);
}

TEST(OldFile, WhatBothFormatsHoldComesBackOnAnOrbA) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        for (int rating = 1; rating <= 4; ++rating)
            expectRoundTrip(orbaKind(), legacyOrba(), seed, rating, 16);
    }
    for (const int columns : {1, 8, 12, 15}) expectRoundTrip(orbaKind(), legacyOrba(), 20, 2, columns);
}

TEST(OldFile, TheLongerFileOfAnOrbAHoldsTheSame) {
    for (unsigned seed = 30; seed < 34; ++seed) expectRoundTrip(orbaKind(), legacyOrba(2180), seed, 3, 16);
}

TEST(OldFile, WhatBothFormatsHoldComesBackOnAnOrbL) {
    for (unsigned seed = 40; seed < 44; ++seed) {
        for (int rating = 1; rating <= 4; ++rating) {
            expectRoundTrip(orbLiteKind(), legacyOrba(2328), seed, rating, 16);
        }
    }
}

TEST(OldFile, WhatBothFormatsHoldComesBackOnAPzk2) {
    for (unsigned seed = 50; seed < 54; ++seed) {
        for (int rating = 1; rating <= 4; ++rating)
            expectRoundTrip(pzk2Kind(), legacyPzk2(), seed, rating, 16);
    }
    expectRoundTrip(pzk2Kind(), legacyPzk2(), 55, 1, 10);
}

TEST(OldFile, CellsThatTheFormatDoesNotHoldAreEmptyOrSeeded) {
    std::mt19937 random(60);
    Import source;
    const LegacyMap map = legacyOrba();
    putRandomCalibration(source.unit, map, 2, random);
    Import import;
    import.open(encodeLegacy(map, source.unit, 2));
    std::set<int> known = {0, 1, 2, 39, 124, 128, 2194};
    const auto add = [&known](int first, int count, int stride = 1) {
        for (int i = 0; i < count; ++i) known.insert(first + i * stride);
    };
    for (const LegacyRun& run : map.runs) add(run.newFirst, run.count, run.newStride);
    for (const LegacyTable& table : map.tables) add(table.newFirst, 256);
    add(624, 16, 2);
    add(336, 72);
    add(504, 8);  // trims as the unit takes them
    add(520, 16);
    add(2226, 72);  // stop points, axis kinds, sizes
    for (int cell = 0; cell < Unit::cellCount; ++cell) {
        EXPECT_TRUE(known.contains(cell) || import.cell(cell) == 0) << cell;
    }
}

// ---- The sensor's rating

TEST(OldFile, ARatingOf1To4IsTheBarRatingOfTheSensor) {
    for (int rating = 1; rating <= 4; ++rating) {
        Import import;
        import.open(ratedFile(static_cast<float>(rating)));
        EXPECT_EQ(import.cell(124), static_cast<float>(rating));
        EXPECT_EQ(import.cell(39), static_cast<float>(rating));
        EXPECT_EQ(import.unit.get("MAP_ID"), static_cast<float>(rating));
        EXPECT_THAT(import.host.informed, ElementsAre(updated));
    }
}

TEST(OldFile, ARatingOf5SetsNoBarRatingAndTheCustomSensorIsTold) {
    for (const float rating : {5.0F, 0.0F, 2.5F, -1.0F, 1e30F, std::numeric_limits<float>::quiet_NaN()}) {
        Import import;
        import.host.sensors[4] = {0.012105F, -0.0421F, 1};
        import.open(ratedFile(rating));
        EXPECT_EQ(import.unit.get("MAP_BAR"), 1) << "what an unset rating reads as";
        EXPECT_EQ(import.unit.get("MAP_ID"), 4);
        EXPECT_FLOAT_EQ(import.unit.get("MAP_Scaler"), 0.0121F);
        EXPECT_THAT(import.host.informed, ElementsAre(customSensor, updated)) << rating;
    }
}

// ---- Defaults

TEST(OldFile, AnEmptyFileGetsTheDefaults) {
    Import import;
    import.open(ratedFile());
    EXPECT_THAT(import.cells(293, 10),
                ElementsAre(0, 0.45F, 0.65F, 1.6F, 2.5F, 4.0F, 4.2F, 4.62F, 4.8F, 5.0F));
    EXPECT_THAT(import.cells(283, 10),
                ElementsAre(22.4F, 15.89F, 14.9F, 14.72F, 14.64F, 14.3F, 13.8F, 12.6F, 11.2F, 10.0F));
    EXPECT_EQ(import.unit.get("MAP_FailLow"), 0);
    EXPECT_EQ(import.unit.get("MAP_FailHigh"), 5.0F);
    EXPECT_EQ(import.unit.get("EGO_Type"), 1.0F);
    EXPECT_EQ(import.unit.get("Register_Number"), 12.0F);
    EXPECT_EQ(import.unit.get("EGO_TMP"), 80.0F);
    for (const float ratio : import.cells(1424, 256)) EXPECT_EQ(ratio, 14.64F);
}

TEST(OldFile, WhatTheFileHasStaysWhereThereIsADefault) {
    LegacyFile file = ratedFile();
    file[77] = 0.5F;
    file[78] = 4.5F;
    file[147] = 2;
    file[622] = 6;
    file[102] = 40;
    file[1152] = 13.2F;
    file[179] = 1;      // the first volts
    file[190] = 17.5F;  // the second ratio
    Import import;
    import.open(file);
    EXPECT_EQ(import.unit.get("MAP_FailLow"), 0.5F);
    EXPECT_EQ(import.unit.get("MAP_FailHigh"), 4.5F);
    EXPECT_EQ(import.unit.get("EGO_Type"), 2);
    EXPECT_EQ(import.unit.get("Register_Number"), 6);
    EXPECT_EQ(import.unit.get("EGO_TMP"), 40);
    EXPECT_EQ(import.cell(1424), 13.2F);
    EXPECT_EQ(import.cell(1425), 14.64F);
    // A curve with a voltage is the file's own, and 0 volts are volts; a ratio of 0 is none.
    EXPECT_THAT(import.cells(293, 10), ElementsAre(1, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    EXPECT_THAT(import.cells(283, 3), ElementsAre(22.4F, 17.5F, 14.9F));
}

TEST(OldFile, DefaultsOfBlocksGoIntoBlocksWithoutAFunctionOnly) {
    OldFile file(ratedFile().bytes(), "old.BIN");
    file.fillDefaults();
    EXPECT_EQ(file.at(102), 80);
    EXPECT_EQ(file.at(405), 80);
    EXPECT_EQ(file.at(410), 3500);
    EXPECT_EQ(file.at(411), 1500);
    EXPECT_EQ(file.at(415), 0);
    EXPECT_EQ(file.at(416), 0);

    LegacyFile used = ratedFile();
    used[404] = 11;  // the sixth pin trims fuel
    used[406] = -10;
    OldFile other(used.bytes(), "old.BIN");
    other.fillDefaults();
    EXPECT_EQ(other.at(405), 0);
    EXPECT_EQ(other.at(410), 0);
    EXPECT_EQ(other.at(411), 1500);
}

// ---- Measures

TEST(OldFile, SharesBecomePercentAndPressuresTakeTheRating) {
    LegacyFile file = ratedFile(3);
    file[640] = 0.25F;
    file[895] = -0.5F;
    file[896] = 0.25F;  // the next table is not kept as shares
    file[61] = 30;      // 30 of a rating of 1 are 90 of a rating of 3
    file[76] = 100;
    Import import;
    import.open(file);
    EXPECT_EQ(import.cell(912), 25);
    EXPECT_EQ(import.cell(1167), -50);
    EXPECT_EQ(import.cell(1168), 0.25F);
    EXPECT_EQ(import.cell(624), 90);
    EXPECT_EQ(import.cell(654), 300);
}

// ---- Rubbish and flags

TEST(OldFile, TrimsAndFiringOrdersThatAreNoneAreCleared) {
    LegacyFile file = ratedFile();
    file[624] = 15;
    file[625] = 15.5F;
    file[626] = -15;
    file[632] = -16;
    file[633] = 7;
    file[639] = 9;
    file[520] = 4;
    file[521] = 2.5F;
    file[522] = -1;
    file[523] = 17;
    file[532] = 16;
    Import import;
    import.open(file);
    EXPECT_THAT(import.cells(2312, 4), ElementsAre(15, 0, -15, 0));
    EXPECT_THAT(import.cells(2320, 2), ElementsAre(0, 7));
    EXPECT_EQ(import.unit.get("FuelTrim", 7), 9);
    EXPECT_THAT(import.cells(2207, 4), ElementsAre(4, 0, 0, 0));
    EXPECT_EQ(import.cell(2219), 16);
}

TEST(OldFile, CellsBehindTheBlocksAreCleared) {
    LegacyFile file = ratedFile();
    file.fill(410, 110, 7);
    OldFile old(file.bytes(), "old.BIN");
    old.clearRubbish();
    EXPECT_EQ(old.at(416), 7);
    for (int cell = 417; cell < 520; ++cell) EXPECT_EQ(old.at(cell), 0) << cell;
}

TEST(OldFile, FlagsOfFunctionsBecomeTheirNumbers) {
    LegacyFile file = ratedFile();
    file.fill(534, 15, -1);
    file[540] = 6.5F;  // no flag
    OldFile old(file.bytes(), "old.BIN");
    old.numberFunctions();
    std::vector<float> numbers;
    for (int cell = 534; cell < 546; ++cell) numbers.push_back(old.at(cell));
    EXPECT_THAT(numbers, ElementsAre(0, 0, 0, 1, 2, 3, 6.5F, 5, 6, 7, 8, -1));
}

TEST(OldFile, MarginAndRatioOfTheFuelStayUnlessTheyAreFlags) {
    LegacyFile file = ratedFile();
    file[534] = 1;
    file[535] = 0.12F;
    file[536] = 6.4F;
    Import import;
    import.open(file);
    EXPECT_EQ(import.unit.get("TPS_MARGIN_TOGGLE"), 1);
    EXPECT_EQ(import.unit.get("TPS_MARGIN_VALUE"), 0.12F);
    EXPECT_EQ(import.unit.get("AFR"), 6.4F);
    file.fill(534, 3, -1);
    import.open(file);
    EXPECT_EQ(import.unit.get("TPS_MARGIN_TOGGLE"), 1) << "as in a new file";
    EXPECT_EQ(import.unit.get("TPS_MARGIN_VALUE"), 0.08F);
    EXPECT_EQ(import.unit.get("AFR"), 14.64F);
}

// ---- Input/output blocks

TEST(OldFile, OldFunctionCodesBecomeTodays) {
    const std::vector<std::pair<int, int>> codes = {
        {0, 0},   {1, 1},   {2, 2},   {3, 3},   {4, 4},   {5, 5},   {6, 6},
        {7, 7},   {8, 8},   {9, 9},   {10, 10}, {11, 12}, {12, 13}, {13, 14},
        {14, 15}, {15, 16}, {16, 17}, {17, 18}, {18, 19}, {19, 21}, {20, 22}};
    for (const auto& [from, to] : codes) {
        LegacyFile file = ratedFile();
        file[369] = static_cast<float>(from);
        Import import;
        import.open(file);
        EXPECT_EQ(import.unit.Get_GPIOFUNC(0), to) << from;
        EXPECT_THAT(import.host.log, IsEmpty());
    }
}

TEST(OldFile, AFunctionThatNeverWasIsDisabledAndLogged) {
    for (const float code : {21.0F, 99.0F, -1.0F, 2.5F}) {
        LegacyFile file = ratedFile();
        file[376] = code;  // the second pin
        file[377] = 5;
        Import import;
        import.open(file);
        EXPECT_THAT(import.cells(345, 9), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0, 0));
        ASSERT_EQ(import.host.log.size(), 1u);
        EXPECT_THAT(import.host.log[0], HasSubstr("Input/output 2 of the old file: function "));
    }
}

TEST(OldFile, SpeedsAndTimesOfTheOldTimingAreDivided) {
    LegacyFile file = ratedFile();
    const auto block = [&file](int pin, const std::vector<float>& words) {
        for (std::size_t i = 0; i < words.size(); ++i) file[369 + 7 * pin + static_cast<int>(i)] = words[i];
    };
    block(0, {7, 101.6F, 76.2F, 80, 60, 1});  // converter: speeds of 40 and 30, pressures, input
    block(1, {9, 254, 127, 90, 30});          // custom: nothing in old timing
    block(4, {13, 254, 5000});                // valet: 100 and engine speed
    block(5, {14, 3000, 42.3333F});           // log: engine speed, 10 samples
    block(6, {19, 25.4F, 3.73F, 12, 1000});   // speed input: tyre and gears
    Import import;
    import.open(file);
    const auto pin = [&import](int number) { return import.cells(336 + 9 * number, 6); };
    using ::testing::FloatEq;
    EXPECT_THAT(pin(0), ElementsAre(7, FloatEq(40), FloatEq(30), 80, 60, 1));
    EXPECT_THAT(pin(1), ElementsAre(9, 254, 127, 90, 30, 0));
    EXPECT_THAT(pin(4), ElementsAre(14, FloatEq(100), 5000, 0, 0, 0));
    EXPECT_THAT(pin(5), ElementsAre(15, 3000, FloatEq(10), 0, 0, 0));
    EXPECT_THAT(pin(6), ElementsAre(21, 25.4F, 3.73F, 12, 1000, 0));
}

TEST(OldFile, PinsWithoutAFunctionAreDisabledAsInANewCalibration) {
    Import import;
    import.open(ratedFile());
    for (int pin = 0; pin < 8; ++pin) {
        EXPECT_THAT(import.cells(336 + 9 * pin, 9), ElementsAre(pin < 4 ? 0 : 22, 0, 0, 0, 0, 0, 0, 0, 0));
    }
    Import ninePins(orbLiteKind());
    ninePins.open(ratedFile(1, 2328));
    EXPECT_EQ(ninePins.unit.Get_GPIOFUNC(7), 22);
    EXPECT_EQ(ninePins.unit.Get_GPIOFUNC(8), 0);
    Import fourPins(pzk2Kind());
    fourPins.open(ratedFile(1, 1201));
    EXPECT_THAT(fourPins.cells(94, 36), ::testing::Each(0));
}

// ---- Option bits

TEST(OldFile, OptionBitsComeFromTheOldFlagsAndOtherBitsFromTheirMembers) {
    LegacyFile file = ratedFile();
    file[0] = 255;
    file[1] = 255;
    file[2] = 255;
    file[147] = 1;  // type 1 has bit 7 of the second byte clear
    Import import;
    import.open(file);
    EXPECT_EQ(import.unit.controlByte(0), 255 - 2) << "bit 1 is the deceleration cut";
    EXPECT_EQ(import.unit.controlByte(1), 255 - 1 - 128) << "bit 0 is the flow unit, bit 7 the sensor type";
    EXPECT_EQ(import.unit.controlByte(2), 7) << "the other bits are driver current and engine";
    EXPECT_THAT(import.cells(0, 3), ElementsAre(253, 126, 7));
}

TEST(OldFile, BitsOfMembersAreInStepWithThem) {
    LegacyFile file = ratedFile();
    file[100] = 1;    // deceleration cut: bit 1 of the first byte
    file[147] = 130;  // 128 plus type 2: bit 7 of the second
    file[354] = 1;    // throttle body: 32 in the third
    file[357] = 1;    // driver current: 8
    file[358] = 3;    // sequential: 192
    Import import;
    import.open(file);
    EXPECT_EQ(import.unit.controlByte(0), 2);
    EXPECT_EQ(import.unit.controlByte(1), 128);
    EXPECT_EQ(import.unit.controlByte(2), 32 + 8 + 192);
    EXPECT_EQ(import.unit.get("EGO_Type"), 2);
    EXPECT_EQ(import.unit.get("PHDSEQ"), 3);
}

TEST(OldFile, FlagBytesThatAreNoBytesSetNothing) {
    for (const float byte : {-1.0F, 256.0F, 4.5F, std::numeric_limits<float>::infinity()}) {
        LegacyFile file = ratedFile();
        file[0] = byte;
        Import import;
        import.open(file);
        EXPECT_EQ(import.unit.controlByte(0), 0) << byte;
    }
}

// ---- The engine

EngineFacts sixCylinders() {
    EngineFacts facts;
    facts.toothMin = 3;
    facts.toothMax = 43;
    facts.engType = 1;
    facts.injMode = 2;
    facts.phdSeq = 2;
    facts.injReset = 6;
    facts.injTbl = {9, 18, 36, 0, 0, 0, 0, 128};
    return facts;
}

TEST(OldFile, TheEngineLayoutComesFromTheReferenceDataOfTheOption) {
    LegacyFile file = ratedFile();
    file[355] = 6;
    file[354] = 0;
    file[358] = 3;
    file[7] = 1;
    file.fill(9, 9, 77);
    Import import;
    import.host.engines[{3, 6}] = sixCylinders();
    import.open(file);
    EXPECT_EQ(import.unit.get("Option_Type"), 6);
    EXPECT_EQ(import.unit.get("TOOTHMIN"), 3);
    EXPECT_EQ(import.unit.get("TOOTHMAX"), 43);
    EXPECT_EQ(import.unit.get("Engine_Type"), 1);
    EXPECT_EQ(import.unit.get("INJ_Mode"), 2);
    EXPECT_EQ(import.unit.get("PHDSEQ"), 2);
    EXPECT_EQ(import.unit.get("INJ_Reset"), 6);
    EXPECT_THAT(import.cells(9, 8), ElementsAre(9, 18, 36, 0, 0, 0, 0, 128));
    EXPECT_EQ(import.unit.controlByte(2), 32 + 128) << "the bits follow the data, not the file";
}

TEST(OldFile, WithoutTheOptionInTheReferenceDataTheFilesLayoutStays) {
    LegacyFile file = ratedFile();
    file[355] = 7;
    file[354] = 1;
    file[358] = 3;
    file[7] = 1;
    file.fill(9, 8, 5);
    file[17] = 4;
    Import import;
    import.host.engines[{3, 6}] = sixCylinders();
    import.open(file);
    EXPECT_EQ(import.unit.get("Engine_Type"), 1);
    EXPECT_EQ(import.unit.get("INJ_Mode"), 1);
    EXPECT_EQ(import.unit.get("PHDSEQ"), 3);
    EXPECT_EQ(import.unit.get("INJ_Reset"), 4);
    EXPECT_THAT(import.cells(9, 8), ElementsAre(5, 5, 5, 5, 5, 5, 5, 5));
}

TEST(OldFile, EachKindAsksForItsOwnEngines) {
    LegacyFile file = ratedFile(1, 1201);
    file[355] = 6;
    Import import(pzk2Kind());
    import.host.engines[{3, 6}].phdSeq = 1;
    import.host.engines[{5, 6}] = sixCylinders();
    import.open(file);
    EXPECT_EQ(import.unit.get("PHDSEQ"), 2);
    EXPECT_EQ(import.unit.get("TOOTHMAX"), 43);
}

TEST(OldFile, AnOptionThatIsNoNumberOfAnOptionIsNone) {
    for (const float option : {40000.0F, -3.0F, 1.5F}) {
        LegacyFile file = ratedFile();
        file[355] = option;
        Import import;
        import.open(file);
        EXPECT_EQ(import.unit.get("Option_Type"), 0);
        EXPECT_EQ(import.unit.get("TOOTHMIN"), 0) << "reading it looks up the option";
    }
}

// ---- The moves, by number

TEST(OldFile, TablesOf12ColumnsAreSpreadOverRowsOf16) {
    LegacyFile file = ratedFile();
    file[27] = 12;
    for (int i = 0; i < 256; ++i) file[1920 + i] = static_cast<float>(i);
    Import import;
    import.open(file);
    EXPECT_EQ(import.cell(656), 0);
    EXPECT_EQ(import.cell(656 + 11), 11);
    EXPECT_EQ(import.cell(656 + 12), 0) << "a column that the old table did not have";
    EXPECT_EQ(import.cell(656 + 16), 12);
    EXPECT_EQ(import.cell(656 + 15 * 16 + 11), 15 * 12 + 11);
    EXPECT_EQ(import.unit.get("RPM_Size"), 12);
    EXPECT_EQ(import.cell(1424 + 12), 14.64F) << "a ratio of 0 has no byte";
}

TEST(OldFile, AColumnCountThatIsNoneStandsFor16) {
    for (const float columns :
         {0.0F, 0.5F, 15.5F, 17.0F, -16.0F, 1e9F, std::numeric_limits<float>::quiet_NaN(),
          -std::numeric_limits<float>::infinity()}) {
        LegacyFile file = ratedFile();
        file[27] = columns;
        for (int i = 0; i < 256; ++i) file[896 + i] = static_cast<float>(i);
        Import import;
        import.open(file);
        EXPECT_EQ(import.cell(1168 + 255), 255) << columns;
        EXPECT_EQ(import.unit.get("RPM_Size"), 16) << columns;
    }
}

// ---- The sensor

TEST(OldFile, TheSensorOfTheRatingIsTakenFromTheReferenceData) {
    Import import;
    import.host.sensors[2] = {0.0251F, -0.2209F, 2};
    import.open(ratedFile(2));
    EXPECT_EQ(import.unit.get("MAP_ID"), 2);
    EXPECT_FLOAT_EQ(import.unit.get("MAP_Scaler"), 0.0251F);
    EXPECT_FLOAT_EQ(import.unit.get("MAP_Offset"), -0.2209F);
    EXPECT_EQ(import.unit.MAPUnits(), "PSIA");
}

TEST(OldFile, FirmwareBelow3OnTheLinkKeepsTheRatingAndTheInjectors) {
    Import import;
    import.unit.FW_Release(2);
    import.unit.FW_Build(10);
    import.host.firmwareIsKnownFromLink = true;
    LegacyFile file = ratedFile(5);
    file[148] = 10;
    file[150] = 1;
    import.open(file);
    EXPECT_EQ(import.unit.FW_Release(), 2);
    EXPECT_EQ(import.cell(128), 0);
    EXPECT_EQ(import.cell(148), 10);
    EXPECT_EQ(import.cell(150), 1);
    EXPECT_EQ(import.unit.facts().firmwareCode, 2010);
    EXPECT_THAT(import.host.informed, ElementsAre(updated));
}

// ---- Stop points and shapes

TEST(OldFile, StopPointsAxesAndSizesAreSeeded) {
    LegacyFile file = ratedFile();
    for (int i = 0; i < 16; ++i) {
        file[592 + i] = 500.0F * static_cast<float>(i + 1);
        file[61 + i] = 20 + 5.0F * static_cast<float>(i);
    }
    file.fill(537, 12, 9);  // today's stop points of the first table
    Import import;
    import.open(file);
    for (int i = 0; i < 16; ++i) {
        for (const char* table : {"GPO1", "GPO2"}) {
            EXPECT_EQ(import.unit.Get_GPO_Stop(i, "X-Axis", table), 500 * (i + 1));
            EXPECT_EQ(import.unit.Get_GPO_Stop(i, "Y-Axis", table), import.unit.get("MAPTBL", i));
        }
    }
    for (const char* table : {"GPO1", "GPO2"}) {
        EXPECT_EQ(import.unit.GET_TBL_AXIS_TYPE(table, "ROW-AXIS"), "BLEND MAP");
        EXPECT_EQ(import.unit.GET_TBL_AXIS_TYPE(table, "COL-AXIS"), "RPM");
    }
    for (int cell = 2292; cell < 2298; ++cell) EXPECT_TRUE(import.cell(cell) == 16 || cell > 2293) << cell;
    for (const char* table : {"ADV", "AFR", "SPW", "VE", "GPO1", "GPO2"}) {
        EXPECT_EQ(import.unit.GET_TBL_DIMENSIONS(table, "ROWS"), 16);
        EXPECT_EQ(import.unit.GET_TBL_DIMENSIONS(table, "COLS"), 16);
    }
}

TEST(OldFile, PressuresOutsideTheSensorAreMovedInside) {
    LegacyFile file = ratedFile();
    file.fill(61, 16, 50);
    file[61] = 1;     // below 0 volts
    file[76] = 1000;  // above 5 volts
    Import import;
    import.open(file);
    EXPECT_NEAR(import.unit.get("MAPTBL", 0), import.unit.MAPMin() + 0.1, 0.06);
    EXPECT_NEAR(import.unit.get("MAPTBL", 15), import.unit.MAPMax() - 0.1, 0.06);
}

// ---- Injectors

TEST(OldFile, InjectorScalingIsMovedBySensorTables) {
    LegacyFile file = ratedFile(2);
    file[148] = 10;
    file[150] = 1;
    Import import;
    import.open(file);
    EXPECT_FLOAT_EQ(import.cell(150), 1.351906F);  // 1 + 10 * 36 / 1023
    EXPECT_FLOAT_EQ(import.cell(148), 9.18F);      // 10 * 940 / 1024 = 9.1797
}

// ---- The end

TEST(OldFile, TheUserIsToldAndTheStateIsOld) {
    Import import(orbLiteKind());
    import.open(ratedFile(1, 2328));
    EXPECT_THAT(import.host.informed, ElementsAre(updated));
    EXPECT_EQ(import.host.head.fileState, "OLD");
    EXPECT_EQ(import.host.head.currentUnit, 4);
    EXPECT_EQ(import.unit.facts().programVersion, 0);
    EXPECT_EQ(import.unit.facts().firmwareCode, 7099);
    EXPECT_EQ(import.unit.FW_Release(), 7);
    EXPECT_EQ(import.unit.FW_Build(), 99);
    EXPECT_EQ(import.host.formChanges, 1);
    EXPECT_EQ(import.host.yields, 1);
}

TEST(OldFile, ASaveAfterTheImportWritesAWholeCalibrationOfKind3) {
    Import import;
    import.open(ratedFile());
    const std::string path = import.folder.file("new.ZQ4OA");
    import.unit.BinFile(path);
    import.unit.SaveFile();
    const std::string saved = TemporaryFolder::read(path);
    EXPECT_EQ(saved.size(), 11324u);
    EXPECT_EQ(floatAt(saved, 0), 3.0F);
    EXPECT_EQ(floatAt(saved, 2), 5099.0F);
    Import again;
    again.unit.FileOpen(path);
    EXPECT_EQ(again.unit.get("EGO_TMP"), 80);
    EXPECT_THAT(again.host.informed, IsEmpty());
}

TEST(OldFile, AnEmptyFileTurnsIntoAnImage) {
    for (const UnitKind* kind : allKinds) {
        Import import(*kind);
        import.open(std::string());
        EXPECT_NO_THROW(import.unit.ConvertData()) << kind->model;
    }
}

// ---- Files that are not as they should be

TEST(OldFile, FilesOfEveryLengthUpTo2501FloatsAreRead) {
    LegacyFile file(2501);
    file.fill(0, 2501, 3);
    file[292] = 1;
    const std::string bytes = file.bytes();
    for (std::size_t floats = 0; floats <= 2501; ++floats) {
        OldFile old(std::string_view(bytes).substr(0, floats * 4), "old.BIN");
        for (std::size_t cell = 0; cell <= 2500; ++cell) {
            const float expected = cell >= floats ? 0 : cell == 292 ? 1 : 3;
            ASSERT_EQ(old.at(static_cast<int>(cell)), expected) << floats;
        }
        if (floats % 61 != 0 && floats < 2400) continue;
        Import import;
        EXPECT_NO_THROW(import.open(bytes.substr(0, floats * 4))) << floats;
        EXPECT_EQ(import.host.head.fileState, "OLD");
    }
}

TEST(OldFile, BytesBehindTheLastWholeFloatAreNotLookedAt) {
    const std::string bytes = ratedFile().bytes();
    for (std::size_t surplus = 1; surplus < 4; ++surplus) {
        OldFile old(bytes + std::string(surplus, '\x7f'), "old.BIN");
        EXPECT_EQ(old.at(2176), 0);
    }
    LegacyFile longest(2501);
    EXPECT_NO_THROW(OldFile(longest.bytes() + "abc", "old.BIN"));
}

/// What must be as before when an import fails.
struct State {
    std::vector<float> cells;
    std::array<int, 3> control;
    int release;
    FileHeader header;
    float firmwareCode;

    explicit State(Import& import)
        : cells(import.cells(0, Unit::cellCount)),
          control{import.unit.controlByte(0), import.unit.controlByte(1), import.unit.controlByte(2)},
          release(import.unit.FW_Release()),
          header(import.host.head),
          firmwareCode(import.unit.facts().firmwareCode) {}
};

void expectSame(const State& a, const State& b) {
    EXPECT_EQ(a.cells, b.cells);
    EXPECT_EQ(a.control, b.control);
    EXPECT_EQ(a.release, b.release);
    EXPECT_EQ(a.header.currentUnit, b.header.currentUnit);
    EXPECT_EQ(a.firmwareCode, b.firmwareCode);
    EXPECT_EQ(a.header.fileState, b.header.fileState);
}

TEST(OldFile, ATooLongFileIsABoundsErrorAndChangesNothing) {
    Import import;
    LegacyFile good = ratedFile(2);
    good[34] = 55;
    good[0] = 4;
    import.open(good);
    const State before(import);
    EXPECT_THROW(import.open(LegacyFile(2502)), BoundsError);
    EXPECT_THROW(import.open(LegacyFile(100000)), BoundsError);
    EXPECT_THROW(import.unit.OldFileOpen(import.folder.file("none.BIN")), FileError);
    expectSame(State(import), before);
}

/// A host without patience: the n-th box ends in a failure.
class FailingHost : public RecordingHost {
 public:
    int boxesLeft = 0;
    void heard(const UnitNews& news) override {
        if (boxesLeft-- == 0) throw Failure("no box");
        RecordingHost::heard(news);
    }
};

TEST(OldFile, AFailureHalfWayLeavesTheFormerCalibrationWhole) {
    for (int boxes = 0; boxes < 2; ++boxes) {
        TemporaryFolder folder;
        FailingHost host;
        Unit unit(orbaKind(), host);
        unit.AssignDirectIndex(55, 34);
        unit.controlByte(0, 4);
        host.head.fileState = "NEW";
        host.boxesLeft = boxes;
        const std::string path = folder.write("old.BIN", ratedFile(5).bytes());
        EXPECT_THROW(unit.OldFileOpen(path), Failure);
        EXPECT_EQ(unit.DirectIndex(34), 55);
        EXPECT_EQ(unit.DirectIndex(128), 0);
        EXPECT_EQ(unit.controlByte(0), 4);
        EXPECT_EQ(unit.FW_Release(), 0);
        EXPECT_EQ(host.head.fileState, "NEW");
        EXPECT_EQ(host.formChanges, 0);
    }
}

TEST(OldFile, CellsThatAreNoNumbersAreUnsetAndLogged) {
    for (const float rubbish :
         {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
          -std::numeric_limits<float>::infinity(), 1e7F, -3e38F}) {
        LegacyFile file(2176);
        file.fill(0, 2176, rubbish);
        Import import;
        import.open(file);
        Import empty;
        empty.open(LegacyFile(2176));
        EXPECT_EQ(import.cells(0, Unit::cellCount), empty.cells(0, Unit::cellCount)) << rubbish;
        EXPECT_THAT(import.host.log,
                    ElementsAre("Old file: 2176 values that are no numbers were taken as 0."));
    }
}

TEST(OldFile, AnyBytesAtAllAreReadOrRefusedAndLeaveNumbers) {
    std::mt19937 random(70);
    for (int round = 0; round < 300; ++round) {
        const UnitKind& kind = *allKinds[static_cast<std::size_t>(round) % allKinds.size()];
        std::string bytes(std::uniform_int_distribution<std::size_t>(0, 10004)(random), '\0');
        // Every other file of plausible numbers, which reach deeper.
        for (char& byte : bytes) byte = static_cast<char>(random() & 255U);
        for (std::size_t i = 3; round % 2 == 0 && i < bytes.size(); i += 4) {
            bytes[i] = static_cast<char>(0x3E + random() % 10 + 128 * (random() % 2));
        }
        Import import(kind);
        EXPECT_NO_THROW(import.open(bytes)) << round;
        for (int cell = 0; cell < Unit::cellCount; ++cell) {
            EXPECT_TRUE(std::isfinite(import.cell(cell))) << "round " << round << " cell " << cell;
        }
    }
}

TEST(OldFile, NothingOfTheFormerCalibrationStays) {
    Import import;
    for (int cell = 0; cell < Unit::cellCount; ++cell) import.unit.AssignDirectIndex(7, cell);
    for (int byte = 0; byte < 3; ++byte) import.unit.controlByte(byte, 255);
    import.unit.teeth({2, 40});
    setProgramVersion(import.unit, 10.2F);
    import.open(ratedFile());
    Import fresh;
    fresh.open(ratedFile());
    EXPECT_EQ(import.cells(0, Unit::cellCount), fresh.cells(0, Unit::cellCount));
    for (int byte = 0; byte < 3; ++byte) EXPECT_EQ(import.unit.controlByte(byte), 0);
    EXPECT_EQ(import.unit.get("TOOTHMIN"), 0);
    EXPECT_EQ(import.unit.get("TOOTHMAX"), 0);
}

TEST(OldFile, NothingIsSentToARunningUnit) {
    std::mt19937 random(80);
    Import source;
    putRandomCalibration(source.unit, legacyOrba(), 2, random);
    Import import;
    import.host.engines[{3, 1}] = sixCylinders();
    import.unit.ONFLY_MODE(true);
    import.open(encodeLegacy(legacyOrba(), source.unit, 2));
    EXPECT_THAT(import.host.sent, IsEmpty());
    EXPECT_TRUE(import.unit.ONFLY_MODE());
}

TEST(OldFile, ReadingIndexesInThePlaceOfValuesChangesNothing) {
    Import plain, polling;
    LegacyFile file = ratedFile(2);
    file.fill(61, 16, 50);
    file[148] = 10;
    plain.open(file);
    polling.unit.IndexPolling(true);
    polling.open(file);
    EXPECT_EQ(polling.cells(0, Unit::cellCount), plain.cells(0, Unit::cellCount));
}

TEST(OldFile, TheObjectWithoutACalibrationOpensNothing) {
    Import import(nullKind());
    EXPECT_NO_THROW(import.unit.OldFileOpen(import.folder.file("none.BIN")));
    EXPECT_THAT(import.host.informed, IsEmpty());
}

}  // namespace
}  // namespace zentaq::testing
