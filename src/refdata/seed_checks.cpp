#include "refdata/seed_checks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <set>

#include "base/number_text.h"
#include "base/text.h"
#include "refdata/schema.h"
#include "refdata/sensor_match.h"
#include "unit/unit_kind.h"

namespace zentaq::refdata {

namespace {

using std::to_string;

void checkHeader(const SeedTable& seed, const Table& schema) {
    for (const Column& column : schema.columns) {
        if (!seed.has(column.name)) seed.fail(seed.headerLine(), "column " + column.name + " is missing");
    }
    if (seed.columns().size() != schema.columns.size()) {
        seed.fail(seed.headerLine(), "a column that table " + schema.name + " does not have");
    }
}

int within(const SeedTable& seed, const SeedRow& row, std::string_view column, int minimum, int maximum) {
    const int value = seed.integer(row, column);
    if (value < minimum || value > maximum) {
        seed.fail(row.line, std::string(column) + " must be " + to_string(minimum) + " to " +
                                to_string(maximum) + ", not " + to_string(value));
    }
    return value;
}

const std::string& filled(const SeedTable& seed, const SeedRow& row, std::string_view column) {
    const std::string& value = seed.text(row, column);
    if (trimmed(value).empty()) seed.fail(row.line, std::string(column) + " is empty");
    if (trimmed(value) != value) seed.fail(row.line, std::string(column) + " begins or ends with a blank");
    return value;
}

/// Keys that may stand only once.
class Once {
 public:
    Once(const SeedTable& seed, std::string what) : seed_(seed), what_(std::move(what)) {}
    void add(const SeedRow& row, const std::string& key) {
        const auto [place, fresh] = seen_.try_emplace(key, row.line);
        if (!fresh)
            seed_.fail(row.line, what_ + " " + key + " stands already in line " + to_string(place->second));
    }

 private:
    const SeedTable& seed_;
    std::string what_;
    std::map<std::string, int> seen_;
};

// Tach pulses in one turn of the crank, by the high nibble of P2EgTp; nothing for a code that no unit knows.
// With code 0 a unit puts no pulses out.
std::optional<int> tachPulses(int code) {
    constexpr std::array<std::pair<int, int>, 6> pulsesOfCode{
        {{0, 0}, {14, 1}, {2, 2}, {8, 3}, {3, 4}, {10, 6}}};
    for (const auto& [known, pulses] : pulsesOfCode) {
        if (known == code) return pulses;
    }
    return std::nullopt;
}

// There is no tach code for 5 pulses a turn: engines of five and ten cylinders have no tach output.
constexpr int ignitionsWithoutTach = 5;

/// The lower nibble of P1EgTp, how the coils are wired.
namespace layout {
constexpr int distributor = 1;
constexpr int wasted = 2;
constexpr int coilPerPlug = 3;
constexpr int oddFire = 4;
constexpr int rotary = 5;
constexpr int dualWasted = 6;
constexpr int dualCoilPerPlug = 7;
}  // namespace layout

/// The lower nibble of P2EgTp, how the events are spaced.
namespace spacing {
constexpr int even = 1;
constexpr int odd = 2;
constexpr int rotary = 3;
}  // namespace spacing

/// Coil outputs that an engine needs, by the layout of its coils; 0 for a layout that no unit knows.
int coilsOf(int wiring, int cylinders, int ignitions) {
    switch (wiring) {
        case layout::distributor:
            return 1;
        case layout::wasted:
            return ignitions;
        case layout::coilPerPlug:
        case layout::oddFire:
        case layout::dualWasted:
            return cylinders;
        case layout::rotary:
        case layout::dualCoilPerPlug:
            return 2 * cylinders;
        default:
            return 0;
    }
}

/// Only the larger variants of a kind have as many coil outputs as its largest.
constexpr int firstLargeVariant = 2;

const UnitKind* kindOfEngines(int number) {
    const auto found = std::ranges::find(unitKinds(), number, &UnitKind::engines);
    return found == unitKinds().end() ? nullptr : &*found;
}

void checkIdentity(const SeedTable& seed, const SeedRow& row) {
    const int number = seed.integer(row, "OrbUnit");
    const UnitKind* kind = kindOfEngines(number);
    if (kind == nullptr) {
        seed.fail(row.line, "OrbUnit " + to_string(number) + " is no unit kind with calibration files");
    }
    within(seed, row, "OrbSubType", 0, kind->models.back().variant);
    within(seed, row, "OptType", 1, 255);
    filled(seed, row, "DisplayValue");
}

void checkCoils(const SeedTable& seed, const SeedRow& row, int cylinders, int ignitions) {
    const int code = within(seed, row, "P1EgTp", 1, 255);
    const int wiring = code % 16;
    const int needed = coilsOf(wiring, cylinders, ignitions);
    if (needed == 0) seed.fail(row.line, "P1EgTp has no layout of 1 to 7 in its low nibble");
    if (code / 16 != needed) {
        seed.fail(row.line, "P1EgTp counts " + to_string(code / 16) + " coil outputs, the engine needs " +
                                to_string(needed));
    }
    const auto [smallest, largest] = kindOfEngines(seed.integer(row, "OrbUnit"))->coilOutputs;
    const int outputs = seed.integer(row, "OrbSubType") >= firstLargeVariant ? largest : smallest;
    if (needed > outputs) seed.fail(row.line, "the unit has only " + to_string(outputs) + " coil outputs");
    const bool rotary = seed.integer(row, "Stroke") == 1;
    if ((wiring == layout::rotary) != rotary) {
        seed.fail(row.line, "layout 5 of P1EgTp and Stroke 1, rotary, go together");
    }
    const bool dualPlug = wiring >= layout::rotary;
    if (dualPlug != (within(seed, row, "EditDFUB", 0, 1) == 1)) {
        seed.fail(row.line, "EditDFUB must be 1 for the layouts with two plugs, 5 to 7, and for no other");
    }
    const int split = within(seed, row, "DefaultSplit", 0, 30);
    if (!dualPlug && split != 0) seed.fail(row.line, "DefaultSplit needs an engine with dual plugs");
}

void checkOffsets(const SeedTable& seed, const SeedRow& row) {
    const int low = within(seed, row, "MinOffset", 1, 58);
    const int high = within(seed, row, "MaxOffset", low, 58);
    const int primary = within(seed, row, "Offset_A", low, high);
    const int apart = within(seed, row, "Offset_B", primary, 58) - primary;
    if (high + apart > 58) {
        seed.fail(row.line, "MaxOffset leaves no room on the wheel for the second bank");
    }
    const int type = seed.integer(row, "P2EgTp") % 16;
    const int fits = seed.integer(row, "Stroke") == 1 ? spacing::rotary
                     : apart != 0                     ? spacing::odd
                                                      : spacing::even;
    if (type != fits) {
        seed.fail(row.line, "P2EgTp must have engine type " + to_string(fits) + " in its low nibble, not " +
                                to_string(type));
    }
}

// With an odd number of cylinders every coil fires once a turn: half the cylinders is no whole number.
int ignitionsOf(int cylinders, bool rotary) {
    return rotary || cylinders % 2 != 0 ? cylinders : cylinders / 2;
}

void checkIgnition(const SeedTable& seed, const SeedRow& row) {
    const int cylinders = within(seed, row, "Cylinders", 1, 15);
    const bool rotary = within(seed, row, "Stroke", 0, 1) == 1;
    const int ignitions = within(seed, row, "IGNRev", 1, 8);
    if (ignitions != ignitionsOf(cylinders, rotary)) {
        seed.fail(row.line, "IGNRev does not agree with Cylinders");
    }
    const auto tach = tachPulses(within(seed, row, "P2EgTp", 0, 255) / 16);
    if (!tach) seed.fail(row.line, "P2EgTp has no tach code of 0, 14, 2, 8, 3 or 10 in its high nibble");
    if (*tach != (ignitions == ignitionsWithoutTach ? 0 : ignitions)) {
        seed.fail(row.line, "the tach code of P2EgTp does not agree with IGNRev");
    }
    checkCoils(seed, row, cylinders, ignitions);
    checkOffsets(seed, row);
}

void checkInjection(const SeedTable& seed, const SeedRow& row) {
    const int events = within(seed, row, "InjEvents", 1, 8);
    const int mode = within(seed, row, "InjMode", 0, 3);
    const int phase = within(seed, row, "PhdSeq", 1, 3);
    constexpr std::array phaseOfMode{3, 2, 1, 1};
    if (phase != phaseOfMode[static_cast<std::size_t>(mode)]) {
        seed.fail(row.line, "PhdSeq does not agree with InjMode");
    }
    // Units read both numbers from one option byte, EngType in steps of 32 and PhdSeq in steps of 64. A
    // higher EngType would run into the bits of PhdSeq, and beside PhdSeq 3 out of the byte.
    const int type = within(seed, row, "EngType", 0, 1);
    if ((type == 1) != (mode == 3))
        seed.fail(row.line, "EngType 1 and InjMode 3, throttle body, go together");
    if (mode == 0 && events != seed.integer(row, "Cylinders")) {
        seed.fail(row.line, "a sequential engine has one InjEvents for each cylinder");
    }
    within(seed, row, "InjReset", mode <= 1 ? events : 0, mode <= 1 ? events : 0);
    for (int entry = 1; entry <= 8; ++entry) {
        within(seed, row, "InjTBL_" + to_string(entry), entry <= events ? 1 : 0, entry <= events ? 255 : 0);
    }
}

/// An option number stands for one engine, whatever the kind: a tuner who moves a calibration to another
/// unit finds the same engine there, and the ORB D reads rows of the ORB L. Only the name may differ, where a
/// unit drives no injectors, and who sees the row.
class OneMeaning {
 public:
    explicit OneMeaning(const SeedTable& seed) : seed_(seed) {}
    void add(const SeedRow& row) {
        const auto [place, fresh] = first_.try_emplace(seed_.integer(row, "OptType"), &row);
        if (fresh) return;
        for (const std::string& column : seed_.columns()) {
            if (column == "OrbUnit" || column == "OrbSubType" || column == "DisplayValue") continue;
            if (seed_.integer(row, column) == seed_.integer(*place->second, column)) continue;
            seed_.fail(row.line, column + " differs from the engine of the same option in line " +
                                     to_string(place->second->line));
        }
    }

 private:
    const SeedTable& seed_;
    std::map<int, const SeedRow*> first_;
};

}  // namespace

void checkEngines(const SeedTable& engines) {
    checkHeader(engines, table("Engines"));
    Once options(engines, "option");
    Once names(engines, "engine");
    OneMeaning meaning(engines);
    for (const SeedRow& row : engines.rows()) {
        checkIdentity(engines, row);
        checkIgnition(engines, row);
        checkInjection(engines, row);
        const std::string kind = "of kind " + engines.text(row, "OrbUnit");
        options.add(row, engines.text(row, "OptType") + " " + kind);
        names.add(row, upper(engines.text(row, "DisplayValue")) + " " + kind);
        meaning.add(row);
    }
}

namespace {

void checkDistinct(const SeedTable& sensors) {
    for (const SeedRow& row : sensors.rows()) {
        for (const SeedRow& other : sensors.rows()) {
            if (other.line >= row.line) break;
            const double gap =
                sensorDistance(sensors.number(row, "Scale"), sensors.number(row, "Offset"),
                               sensors.number(other, "Scale"), sensors.number(other, "Offset"));
            if (gap >= 0)
                sensors.fail(row.line, "calibrations cannot tell it from line " + to_string(other.line));
        }
    }
}

}  // namespace

void checkSensors(const SeedTable& sensors) {
    checkHeader(sensors, table("MAPCals"));
    Once ids(sensors, "ID");
    Once names(sensors, "sensor");
    std::set<int> ratings{1, 2, 3, 4};
    for (const SeedRow& row : sensors.rows()) {
        const int id = within(sensors, row, "ID", 1, 1'000'000);
        ids.add(row, sensors.text(row, "ID"));
        names.add(row, upper(filled(sensors, row, "Description")));
        if (!(sensors.number(row, "Scale") > 0)) sensors.fail(row.line, "Scale must be above 0");
        sensors.number(row, "Offset");
        const int units = within(sensors, row, "Units", 1, 5);
        if (ratings.erase(id) == 1 && units != 1) {
            sensors.fail(row.line,
                         "sensors 1 to 4 must be in kPa: calibrations of older firmware are moved to them");
        }
    }
    if (!ratings.empty()) {
        sensors.fail(sensors.headerLine(), "no sensor with ID " + to_string(*ratings.begin()) +
                                               ": calibrations of older firmware are moved to it");
    }
    checkDistinct(sensors);
}

void checkHelp(const SeedTable& help) {
    checkHeader(help, table("FastHelp"));
    Once ids(help, "ID");
    Once keys(help, "HELP_KEY");
    for (const SeedRow& row : help.rows()) {
        within(help, row, "ID", 1, 1'000'000);
        ids.add(row, help.text(row, "ID"));
        keys.add(row, upper(filled(help, row, "HELP_KEY")));
        filled(help, row, "TOPIC");
        filled(help, row, "HELP");
    }
}

void checkTips(const SeedTable& tips) {
    checkHeader(tips, table("Tips"));
    Once texts(tips, "tip");
    for (const SeedRow& row : tips.rows()) texts.add(row, upper(filled(tips, row, "HELP")));
    if (tips.rows().empty()) tips.fail(tips.headerLine(), "no tips");
}

namespace {

const DefaultsSet* findSet(std::string_view name) {
    const auto sets = defaultsSets();
    const auto found =
        std::find_if(sets.begin(), sets.end(), [&](const DefaultsSet& set) { return set.name == name; });
    return found == sets.end() ? nullptr : &*found;
}

void checkValue(const SeedTable& seed, const SeedRow& row, const DefaultsSet& set, double value,
                const double* before) {
    if (value < set.minimum || value > set.maximum) {
        seed.fail(row.line, std::string(set.name) + " takes " + numberText(set.minimum) + " to " +
                                numberText(set.maximum) + ", not " + numberText(value));
    }
    if (set.ascending && before && !(value > *before)) {
        seed.fail(row.line, std::string(set.name) + " must ascend, " + numberText(value) + " does not");
    }
}

}  // namespace

DefaultsValues readDefaults(const SeedTable& defaults) {
    DefaultsValues values;
    for (const SeedRow& row : defaults.rows()) {
        const DefaultsSet* set = findSet(defaults.text(row, "Set"));
        if (!set) defaults.fail(row.line, "no set of default values is called " + defaults.text(row, "Set"));
        std::vector<double>& list = values[std::string(set->name)];
        for (const std::string& word : split(defaults.text(row, "Values"), ' ')) {
            if (word.empty()) continue;
            const auto value = word.find(',') == std::string::npos ? parseNumber(word) : std::nullopt;
            if (!value) defaults.fail(row.line, "\"" + word + "\" is no number");
            checkValue(defaults, row, *set, *value, list.empty() ? nullptr : &list.back());
            list.push_back(*value);
        }
        if (static_cast<int>(list.size()) > set->count) {
            defaults.fail(row.line,
                          std::string(set->name) + " has more than " + to_string(set->count) + " values");
        }
    }
    for (const DefaultsSet& set : defaultsSets()) {
        const auto found = values.find(set.name);
        const auto size = found == values.end() ? std::size_t{0} : found->second.size();
        if (size != static_cast<std::size_t>(set.count)) {
            defaults.fail(defaults.headerLine(), std::string(set.name) + " needs " + to_string(set.count) +
                                                     " values and has " + to_string(size));
        }
    }
    return values;
}

}  // namespace zentaq::refdata
