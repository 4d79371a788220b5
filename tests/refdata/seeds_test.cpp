#include <algorithm>
#include <cmath>
#include <map>
#include <regex>
#include <set>

#include "base/errors.h"
#include "base/rounding.h"
#include "base/text.h"
#include "refdata/schema.h"
#include "refdata_fixture.h"
#include "unit/unit_kind.h"

namespace zentaq::refdata {
namespace {

class Seeds : public ReferenceDatabase {
 protected:
    std::vector<EngineRow> allEngines() const {
        std::vector<EngineRow> all;
        const Database database = open();
        for (const int kind : {3, 4, 5, 6, 7}) {
            std::set<int> seen;
            for (const int variant : {0, 1, 2, 3}) {
                for (const EngineRow& engine : database.engines(kind, variant)) {
                    if (seen.insert(engine.optType).second) all.push_back(engine);
                }
            }
        }
        return all;
    }
};

// ---- Engines. That the values fit the cells they go into is checked when the database is built.

TEST_F(Seeds, EachModelOffersTheEnginesThatItServes) {
    const Database database = open();
    for (const int variant : {1, 2, 3}) EXPECT_GE(database.engines(3, variant).size(), 25u) << variant;
    for (const int kind : {4, 5, 6, 7}) EXPECT_GE(database.engines(kind, 0).size(), 15u) << kind;
}

TEST_F(Seeds, OneToTwelveCylindersOneToFourRotorsAndEachWayOfIgnitionAndInjectionAreThere) {
    std::set<float> cylinders, rotors;
    std::set<int> layouts, spacings;
    std::set<float> injections;
    for (const EngineRow& engine : allEngines()) {
        (engine.rotary ? rotors : cylinders).insert(engine.cylinders);
        layouts.insert(static_cast<int>(engine.p1EgTp) % 16);
        spacings.insert(static_cast<int>(engine.p2EgTp) % 16);
        injections.insert(engine.injMode);
    }
    EXPECT_EQ(cylinders, (std::set<float>{1, 2, 3, 4, 5, 6, 8, 10, 12}));
    EXPECT_EQ(rotors, (std::set<float>{1, 2, 3, 4}));
    EXPECT_EQ(layouts, (std::set<int>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(spacings, (std::set<int>{1, 2, 3}));
    EXPECT_EQ(injections, (std::set<float>{0, 1, 2, 3}));
}

// Calibrations hold the number, so it goes on meaning what it meant.
TEST_F(Seeds, TheFirstEighteenOptionsKeepTheirMeaning) {
    const std::vector<std::string> names{"4 Cylinder Wasted Spark, Paired Injection",
                                         "4 Cylinder Wasted Spark, Sequential Injection",
                                         "4 Cylinder Coil per Plug, Sequential Injection",
                                         "4 Cylinder Distributor, Throttle Body",
                                         "4 Cylinder Dual Plug Wasted Spark, Paired Injection",
                                         "6 Cylinder Wasted Spark, Paired Injection",
                                         "6 Cylinder Coil per Plug, Sequential Injection",
                                         "V6 90 Degree Odd Fire, Sequential Injection",
                                         "8 Cylinder Wasted Spark, Bank Injection",
                                         "8 Cylinder Coil per Plug, Sequential Injection",
                                         "8 Cylinder Distributor, Throttle Body",
                                         "V-Twin 60 Degree Odd Fire, Sequential Injection",
                                         "V-Twin 90 Degree Odd Fire, Sequential Injection",
                                         "2 Rotor Rotary, Leading and Trailing Plugs",
                                         "3 Rotor Rotary, Leading and Trailing Plugs",
                                         "12 Cylinder Wasted Spark, Paired Injection",
                                         "6 Cylinder Dual Plug Coil per Plug, Sequential Injection",
                                         "V8 Flat Crank Coil per Plug, Sequential Injection"};
    const Database database = open();
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto engine = database.engine(3, static_cast<int>(i) + 1);
        ASSERT_TRUE(engine) << i;
        EXPECT_EQ(engine->displayValue, names[i]);
    }
}

TEST_F(Seeds, TheAngleInTheNameOfATwinIsItsTeeth) {
    static const std::regex twin(R"((V-Twin|V4) (\d+) Degree.*)");
    int checked = 0;
    for (const EngineRow& engine : allEngines()) {
        std::smatch part;
        if (!std::regex_match(engine.displayValue, part, twin)) continue;
        EXPECT_EQ((engine.offsetB - engine.offsetA) * 6, std::stof(part[2])) << engine.displayValue;
        ++checked;
    }
    EXPECT_GE(checked, 6);
}

TEST_F(Seeds, AnIgnitionOnlyUnitNamesNoInjection) {
    for (const EngineRow& engine : open().engines(5, 0)) {
        EXPECT_EQ(engine.displayValue.find("Injection"), std::string::npos) << engine.displayValue;
        EXPECT_EQ(engine.displayValue.find("Throttle"), std::string::npos) << engine.displayValue;
    }
}

TEST_F(Seeds, ASequentialEngineOpensEachOutputOnce) {
    const auto engine = open().engine(3, 10);
    ASSERT_TRUE(engine);
    EXPECT_EQ(engine->cylinders, 8);
    EXPECT_EQ(engine->phdSeq, 3);
    EXPECT_EQ(engine->injTbl, (std::array<float, 8>{1, 2, 4, 8, 16, 32, 64, 128}));
}

TEST_F(Seeds, RotaryEnginesAreMarkedAndHaveDualPlugs) {
    const auto rotary = open().engine(3, 14);
    ASSERT_TRUE(rotary);
    EXPECT_TRUE(rotary->rotary);
    EXPECT_TRUE(rotary->editDfub);
    EXPECT_EQ(rotary->defaultSplit, 10);
    EXPECT_FALSE(open().engine(3, 1)->rotary);
}

// Kind 7 takes its dual plug facts from the row of kind 4 with the same option.
TEST_F(Seeds, EachEngineOfKindSevenStandsInKindFourToo) {
    const Database database = open();
    for (const EngineRow& engine : database.engines(7, 0)) {
        const auto twin = database.engine(4, engine.optType);
        ASSERT_TRUE(twin) << engine.displayValue;
        EXPECT_EQ(twin->displayValue, engine.displayValue);
    }
}

// ---- Sensors

TEST_F(Seeds, SensorNamesStandOnceAndAllFiveUnitsAreThere) {
    std::set<std::string> names;
    std::set<int> units;
    const auto sensors = open().mapSensors();
    for (const MapSensorRow& sensor : sensors) {
        EXPECT_TRUE(names.insert(upper(sensor.description)).second) << sensor.description;
        units.insert(sensor.units);
    }
    EXPECT_GE(sensors.size(), 40u);
    EXPECT_EQ(units, (std::set<int>{1, 2, 3, 4, 5}));
}

TEST_F(Seeds, TheFirstSensorIsTheStandardOne) {
    const auto sensor = open().mapSensor(1);
    ASSERT_TRUE(sensor);
    EXPECT_EQ(sensor->scale, 0.05295f);
    EXPECT_EQ(sensor->offset, -0.54738f);
}

TEST_F(Seeds, SensorsOneToFourCoverOneToFourBarInKpa) {
    const Database database = open();
    for (int bar = 1; bar <= 4; ++bar) {
        const auto sensor = database.mapSensor(bar);
        ASSERT_TRUE(sensor);
        EXPECT_EQ(sensor->units, 1);
        // A rating of b bar reads up to b atmospheres, give or take a tenth of one.
        EXPECT_NEAR((5 - sensor->offset) / sensor->scale, bar * 104.0, 10.4) << sensor->description;
    }
}

struct StatedRange {
    double low = 0, high = 0, lastDigit = 1;
    std::string unit;
};

/// "1 BAR (1.5-15.2 PSIA)" or "5 BAR (-9.4 to 84.4 PSIA)".
StatedRange statedRange(const std::string& description) {
    static const std::regex form(R"(^.* \((-?\d+(\.\d+)?)(?:-| to )(-?\d+(?:\.\d+)?) (\w+)\)$)");
    std::smatch part;
    if (!std::regex_match(description, part, form)) return {};
    return {std::stod(part[1]), std::stod(part[3]), part[2].matched ? 0.1 : 1.0, part[4]};
}

TEST_F(Seeds, SensorNamesStateTheirUnitAndTheirRangeFrom0To5Volts) {
    const std::array<std::string, 6> unitNames{"kPa", "kPa", "PSIA", "PSIG", "mmHg", "inHg"};
    for (const MapSensorRow& sensor : open().mapSensors()) {
        const StatedRange stated = statedRange(sensor.description);
        EXPECT_EQ(stated.unit, unitNames.at(static_cast<std::size_t>(sensor.units))) << sensor.description;
        // Rounding of the name to its last digit, and of 6 decimals of the slope.
        const double tolerance = 0.52 * stated.lastDigit;
        EXPECT_NEAR(-sensor.offset / sensor.scale, stated.low, tolerance) << sensor.description;
        EXPECT_NEAR((5 - sensor.offset) / sensor.scale, stated.high, tolerance) << sensor.description;
    }
}

// "0.5-4.5 V from 0 to 300 kPa": the line goes through both points.
TEST_F(Seeds, SensorNamesWithVoltsAndPressuresTellTheirLine) {
    static const std::regex form(R"(.*, ([\d.]+)-([\d.]+) V from (-?[\d.]+) to (-?[\d.]+) (\w+) \(.*)");
    int checked = 0;
    for (const MapSensorRow& sensor : open().mapSensors()) {
        std::smatch part;
        if (!std::regex_match(sensor.description, part, form)) continue;
        EXPECT_NEAR(sensor.scale * std::stod(part[3]) + sensor.offset, std::stod(part[1]), 0.002)
            << sensor.description;
        EXPECT_NEAR(sensor.scale * std::stod(part[4]) + sensor.offset, std::stod(part[2]), 0.002)
            << sensor.description;
        EXPECT_TRUE(sensor.description.ends_with(part[5].str() + ")")) << sensor.description;
        ++checked;
    }
    EXPECT_GE(checked, 30);
}

// A calibration shows slope and offset rounded to 4 decimals: the span stays true to 1 percent.
TEST_F(Seeds, SensorRangesSurviveTheRoundingOfACalibration) {
    for (const MapSensorRow& sensor : open().mapSensors()) {
        const double span = 5 / roundTo(sensor.scale, 4);
        EXPECT_NEAR(span, 5 / sensor.scale, 0.01 * span) << sensor.description;
    }
}

TEST_F(Seeds, SensorsOfOneBarAgreeAcrossUnits) {
    const Database database = open();
    const double kpa = (5 - database.mapSensor(1)->offset) / database.mapSensor(1)->scale;
    const std::map<int, double> unitsOfAtmosphere{{2, 14.696}, {4, 760}, {5, 29.921}};
    int compared = 0;
    for (const MapSensorRow& sensor : database.mapSensors()) {
        if (!sensor.description.starts_with("1 BAR (") || sensor.units == 1) continue;
        const double atmospheres = (5 - sensor.offset) / sensor.scale / unitsOfAtmosphere.at(sensor.units);
        EXPECT_NEAR(atmospheres, kpa / 101.325, 0.0005) << sensor.description;
        ++compared;
    }
    EXPECT_EQ(compared, 3);
}

// ---- Default values

TEST_F(Seeds, DefaultSetsHaveTheShapeOfTheirTables) {
    const Database database = open();
    const std::map<std::string, std::size_t> lengths{
        {"ADV", 256},        {"VE", 256},     {"SPW", 256},   {"AFR", 256},          {"RPMTBL", 16},
        {"MAPTBL", 16},      {"SPLITBL", 16}, {"BLDTBL", 8},  {"LOWBLD_RACE", 8},    {"LOWBLD_STREET", 8},
        {"BATCOM", 20},      {"CHKTBL", 20},  {"MATENH", 20}, {"CLTTBL", 20},        {"MATADV", 20},
        {"MATADV_PZK2", 20}, {"X", 10},       {"Y", 10},      {"ISTMP", 3},          {"ISRPM", 3},
        {"BARO_TRIM", 8},    {"FuelTrim", 8}, {"KNK_MIN", 1}, {"Initial_Advance", 1}};
    for (const auto& [set, length] : lengths) EXPECT_EQ(database.defaults(set).size(), length) << set;
}

TEST_F(Seeds, TableDefaultsAreWhatAnEngineCanRunOn) {
    const Database database = open();
    const auto advance = database.defaults("ADV");
    const auto mixture = database.defaults("AFR");
    for (std::size_t cell = 0; cell < 256; ++cell) {
        EXPECT_GE(advance[cell], 8) << cell;
        EXPECT_LE(advance[cell], 45) << cell;
        EXPECT_GE(mixture[cell], 12) << cell;
        EXPECT_LE(mixture[cell], 14.7f) << cell;
    }
    for (std::size_t column = 0; column < 16; ++column) {
        EXPECT_GE(advance[column], advance[240 + column]) << "advance falls with load, column " << column;
        EXPECT_GE(mixture[column], mixture[240 + column])
            << "the mixture gets richer with load, column " << column;
    }
}

TEST_F(Seeds, FailureVoltsEncloseTheWorkingRange) {
    const Database database = open();
    for (const std::string sensor : {"CLT", "MAP", "TPS", "MAT"}) {
        EXPECT_LT(database.defaults(sensor + "_FailLow").at(0),
                  database.defaults(sensor + "_FailHigh").at(0));
    }
    EXPECT_LT(database.defaults("TPS_FailLow").at(0), database.defaults("TPS_FCV").at(0));
    EXPECT_LT(database.defaults("TPS_FCV").at(0), database.defaults("TPS_WOV").at(0));
    EXPECT_LT(database.defaults("TPS_WOV").at(0), database.defaults("TPS_FailHigh").at(0));
}

TEST_F(Seeds, AirTemperatureEnrichmentFollowsAirDensity) {
    const auto enrichment = open().defaults("MATENH");
    EXPECT_EQ(enrichment.at(6), 0) << "20 Celsius";
    EXPECT_EQ(enrichment.at(4), 7) << "0 Celsius: 293 / 273 = 1.073";
    EXPECT_EQ(enrichment.at(12), -17) << "80 Celsius: 293 / 353 = 0.830";
}

TEST_F(Seeds, ASetForOneKindHasTheShapeAndTheLimitsOfThePlainOne) {
    std::map<std::string, DefaultsSet> plain;
    for (const DefaultsSet& set : defaultsSets()) plain.emplace(set.name, set);
    // One value a pin, and the kinds have 9, 4, 13 and 7.
    const std::map<std::string, int> pins{
        {"GPIO_Func_ORBL", 9}, {"GPIO_Func_PZK2", 4}, {"GPIO_Func_ORBC", 13}, {"GPIO_Func_ORBD", 7}};
    int compared = 0;
    for (const auto& [name, set] : plain) {
        for (const int slot : {4, 5, 6, 7}) {
            const std::string suffix(unitKindOfSlot(slot)->defaultsSuffix);
            if (!name.ends_with(suffix)) continue;
            const auto other = plain.find(name.substr(0, name.size() - suffix.size()));
            ASSERT_NE(other, plain.end()) << name;
            const int count = pins.contains(name) ? pins.at(name) : other->second.count;
            EXPECT_EQ(set.count, count) << name;
            EXPECT_EQ(set.minimum, other->second.minimum) << name;
            EXPECT_EQ(set.maximum, other->second.maximum) << name;
            EXPECT_EQ(set.ascending, other->second.ascending) << name;
            ++compared;
        }
    }
    EXPECT_GE(compared, 15);
    EXPECT_EQ(orbaKind().defaultsSuffix, "");
    EXPECT_EQ(orbd6Kind().defaultsSuffix, orbdKind().defaultsSuffix);
}

TEST_F(Seeds, DefaultsOfEachKindAgreeWithEachOther) {
    const Database database = open();
    const auto sets = database.defaultsSets();
    for (const int slot : {3, 4, 5, 6, 7}) {
        const auto value = [&](const std::string& set, std::size_t i = 0) {
            const std::string own = set + std::string(unitKindOfSlot(slot)->defaultsSuffix);
            const bool has = std::find(sets.begin(), sets.end(), own) != sets.end();
            return database.defaults(has ? own : set).at(i);
        };
        EXPECT_LT(value("REV_AuxLimiter"), value("REV_Limiter")) << slot;
        EXPECT_LT(value("KNK_RPM"), value("REV_Limiter") + 1) << slot;
        // The idle speed falls as the engine warms up, and fuel comes back above the cold idle.
        EXPECT_GT(value("ISRPM", 0), value("ISRPM", 1)) << slot;
        EXPECT_GT(value("ISRPM", 1), value("ISRPM", 2)) << slot;
        EXPECT_GT(value("DCCL_1"), value("ISRPM", 0)) << slot;
        EXPECT_GT(value("DCCL_0"), value("DCCL_1")) << slot;
        EXPECT_GT(value("IAC_RPM_HI"), value("IAC_RPM_LO")) << slot;
        EXPECT_GE(value("EGO_RPML"), value("ISRPM", 2)) << slot;
        EXPECT_LE(value("Initial_Advance"), 10) << slot;
    }
}

TEST_F(Seeds, BoostTakesTimingOffAndAddsFuelWithoutAStep) {
    const Database database = open();
    const auto retard = database.defaults("BOOST_RTD");
    const auto ratio = database.defaults("BOOST_AFR");
    const auto fuel = database.defaults("BOOST_VE");
    EXPECT_EQ(database.defaults("BOOST").front(), 0);
    EXPECT_EQ(retard.front(), 0);
    EXPECT_EQ(fuel.front(), 0);
    const auto mixture = database.defaults("AFR");
    EXPECT_GE(ratio.front(), *std::max_element(mixture.end() - 16, mixture.end()));
    EXPECT_TRUE(std::is_sorted(retard.begin(), retard.end()));
    EXPECT_TRUE(std::is_sorted(fuel.begin(), fuel.end()));
    EXPECT_TRUE(std::is_sorted(ratio.rbegin(), ratio.rend()));
}

}  // namespace
}  // namespace zentaq::refdata
