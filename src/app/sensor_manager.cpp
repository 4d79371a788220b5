#include "app/sensor_manager.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "unit/legacy_sensor.h"

namespace zentaq {

namespace {

constexpr double lowestVolts = 0;
constexpr double highestVolts = 5;
// A sensor that is edited is shown by these two points.
constexpr double lowerPointVolts = 0.5;
constexpr double upperPointVolts = 4.5;

constexpr auto formTitle = "MAP Sensor Manager";
constexpr auto noneSelected = "None Selected";

constexpr std::array<SensorUnit, 5> units = {
    {{"kPa", 1}, {"mmHg", 4}, {"PSIA", 2}, {"inHg", 5}, {"PSIG", 3}}};

constexpr std::array<std::string_view, sensorBoxes> boxNames = {"Low point volts", "High point volts",
                                                                "Low point pressure", "High point pressure"};

using Numbers = std::array<double, sensorBoxes>;

Numbers numbersOf(const SensorEntry& entry) {
    Numbers numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) numbers[i] = numberOf(entry.points[i]);
    return numbers;
}

SensorLine lineThrough(const Numbers& at) {
    SensorLine line;
    line.scale = (at[secondVolts] - at[firstVolts]) / (at[secondPressure] - at[firstPressure]);
    line.offset = at[secondVolts] - at[secondPressure] * line.scale;
    return line;
}

std::optional<SensorFault> numericFault(const SensorEntry& entry) {
    for (const SensorBox box : {firstVolts, secondVolts, firstPressure, secondPressure}) {
        if (!isNumeric(entry.points[box])) {
            return SensorFault{"Invalid entry", entry.points[box] + " not a valid number", box};
        }
    }
    return {};
}

std::optional<SensorFault> rangeFault(const SensorEntry& entry, const Numbers& at) {
    for (const SensorBox box : {firstVolts, secondVolts}) {
        if (at[box] < lowestVolts || at[box] > highestVolts) {
            return SensorFault{"Entry out of Range", entry.points[box] + " is out of range.  Must be 0 - 5v",
                               box};
        }
    }
    return {};
}

// Kept: an equal pair passes here. What it does to the line is told by lineFault.
std::optional<SensorFault> orderFault(const SensorEntry& entry, const Numbers& at) {
    constexpr std::array<std::pair<SensorBox, SensorBox>, 2> pairs = {
        {{firstVolts, secondVolts}, {firstPressure, secondPressure}}};
    for (const auto& [lower, upper] : pairs) {
        if (at[lower] > at[upper]) {
            return SensorFault{"Entry out of Order",
                               entry.points[lower] + " Must be smaller than " + entry.points[upper] +
                                   "\nPlease rearrange your entries.",
                               lower};
        }
    }
    return {};
}

bool fitsSingle(double value) {
    return std::fabs(value) <= std::numeric_limits<float>::max();
}

/// What the tests of the boxes let pass and yet makes no line that a calibration can hold.
std::optional<SensorFault> lineFault(const Numbers& at) {
    constexpr auto title = "Invalid entry";
    if (at[firstPressure] == at[secondPressure]) {
        return SensorFault{title,
                           "Division by zero: both pressures are the same.\nPlease enter two different "
                           "pressures.",
                           secondPressure};
    }
    if (at[firstVolts] == at[secondVolts]) {
        return SensorFault{
            title, "Both volts are the same, so the sensor has no slope.\nPlease enter two different volts.",
            secondVolts};
    }
    const SensorLine line = lineThrough(at);
    if (fitsSingle(line.scale) && fitsSingle(line.offset) &&
        line.scale >= std::numeric_limits<float>::min()) {
        return {};
    }
    return SensorFault{title, "No line can be worked out from these pressures.\nPlease check your entries.",
                       secondPressure};
}

double pressureAt(const SensorLine& line, double volts) {
    return (volts - line.offset) / line.scale;
}

std::string wholeText(const std::optional<double>& pressure) {
    return pressure ? numberText(roundHalfEven(*pressure)) : std::string();
}

/// As many decimals as suit the upper end of a range, as pressures are shown elsewhere.
int decimalsFor(double highest) {
    const double size = std::fabs(highest);
    if (size >= 1000) return 0;
    if (size >= 100) return 1;
    return size >= 10 ? 2 : 3;
}

std::string pressureText(double pressure, int decimals, std::string_view unit) {
    return numberText(roundTo(pressure, decimals)) + " " + std::string(unit);
}

std::string rangeOf(const MapSensorRow& sensor) {
    const auto lowest = sensorPressure(sensor, lowestVolts);
    const auto highest = sensorPressure(sensor, highestVolts);
    const std::string range =
        lowest && highest ? wholeText(lowest) + " - " + wholeText(highest) : "unknown: the slope is 0";
    return "Range:\n" + range + "\nUnits: " + std::string(pressureUnitsOf(sensor.units));
}

std::string entered(const SensorEntry& entry, SensorBox volts, SensorBox pressure, const std::string& unit) {
    return numberText(numberOf(entry.points[volts])) + " V at " +
           numberText(numberOf(entry.points[pressure])) + " " + unit;
}

void drawRange(SensorSketch& sketch, double lowest, double highest) {
    sketch.drawn = true;
    sketch.lowest = lowest;
    sketch.highest = highest;
    const int decimals = decimalsFor(highest);
    sketch.lowestText = pressureText(lowest, decimals, sketch.unit);
    sketch.highestText = pressureText(highest, decimals, sketch.unit);
    sketch.words = "Line from " + sketch.lowestText + " at 0 V to " + sketch.highestText + " at 5 V";
}

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

/// The first line, with the name of the box: the picture stands beside all four.
std::string reasonOf(const SensorFault& fault, const SensorEntry& entry) {
    const std::string name(boxNames[fault.box]);
    if (trimmed(entry.points[fault.box]).empty()) return name + ": no value yet.";
    return name + ": " + firstLine(fault.text);
}

SensorSketch noSketch(std::string_view unit, const std::string& why) {
    SensorSketch sketch;
    sketch.unit = unit;
    sketch.why = why;
    sketch.words = "No line. " + why;
    return sketch;
}

SensorSketch sketchOfEntry(const SensorEntry& entry) {
    const std::string_view unit = pressureUnitsOf(entry.unitsCode);
    if (const auto fault = sensorFault(entry)) return noSketch(unit, reasonOf(*fault, entry));
    SensorSketch sketch;
    sketch.unit = unit;
    const Numbers at = numbersOf(entry);
    const SensorLine line = lineThrough(at);
    drawRange(sketch, pressureAt(line, lowestVolts), pressureAt(line, highestVolts));
    sketch.points = {{at[firstVolts], at[firstPressure]}, {at[secondVolts], at[secondPressure]}};
    sketch.words += ", through " + entered(entry, firstVolts, firstPressure, sketch.unit) + " and " +
                    entered(entry, secondVolts, secondPressure, sketch.unit) + ".";
    return sketch;
}

SensorSketch sketchOfStored(const std::optional<MapSensorRow>& sensor) {
    if (!sensor) return noSketch({}, "Choose a sensor to see its line.");
    const std::string_view unit = pressureUnitsOf(sensor->units);
    const auto lowest = sensorPressure(*sensor, lowestVolts);
    const auto highest = sensorPressure(*sensor, highestVolts);
    if (!lowest || !highest) return noSketch(unit, "This sensor has a slope of 0.");
    SensorSketch sketch;
    sketch.unit = unit;
    drawRange(sketch, *lowest, *highest);
    sketch.words += ".";
    return sketch;
}

}  // namespace

std::span<const SensorUnit> sensorUnits() {
    return units;
}

std::optional<SensorFault> sensorFault(const SensorEntry& entry) {
    if (auto fault = numericFault(entry)) return fault;
    const Numbers at = numbersOf(entry);
    if (auto fault = rangeFault(entry, at)) return fault;
    if (auto fault = orderFault(entry, at)) return fault;
    return lineFault(at);
}

SensorLine sensorLine(const SensorEntry& entry) {
    if (const auto fault = sensorFault(entry)) throw Failure(fault->text);
    return lineThrough(numbersOf(entry));
}

std::optional<double> sensorPressure(const MapSensorRow& sensor, double volts) {
    const SensorLine line{plainNumber(sensor.scale), plainNumber(sensor.offset)};
    if (line.scale == 0) return {};
    return pressureAt(line, volts);
}

std::optional<std::string> askSensorName(Session& session, const std::string& title,
                                         const std::string& prompt, std::string_view unit) {
    std::string typed;
    while (true) {
        const auto answer = session.dialogs().input(title, prompt, typed);
        typed = answer ? std::string(trimmed(*answer)) : std::string();
        if (typed.empty()) return {};
        std::string name = typed + " (" + std::string(unit) + ")";
        if (!session.requireReference().mapSensorByName(name)) return name;
        session.dialogs().show({"Duplicate name",
                                "There is already a sensor with that name.\n"
                                "Use a different name or edit that sensor.",
                                Icon::Exclamation});
    }
}

// ---- The list

SensorManager::SensorManager(Session& session) : session_(session), lblGeneral_(noneSelected) {
    load();
}

void SensorManager::load() {
    sensors_.clear();
    failure_.clear();
    endOnFailure(
        [&] {
            for (const MapSensorRow& row : session_.requireReference().mapSensors()) {
                sensors_.push_back(row.description);
            }
        },
        [&](const std::string& why) { failure_ = why; });
    // An entry in hand stays in hand: saving tells if its sensor is gone.
    if (task_ == SensorTask::None) showSelected();
}

std::string SensorManager::problem() const {
    return failure_.empty() ? whyNotWrite() : failure_;
}

void SensorManager::select(const std::string& name) {
    if (task_ != SensorTask::None) return;
    selected_ = name;
    if (!sensors_.empty()) failure_.clear();
    showSelected();
}

void SensorManager::showSelected() {
    shown_.reset();
    lblGeneral_ = noneSelected;
    if (std::ranges::find(sensors_, selected_) == sensors_.end()) selected_.clear();
    if (selected_.empty()) return;
    endOnFailure(
        [&] {
            shown_ = session_.requireReference().mapSensorByName(selected_);
            if (!shown_)
                throw Failure("There is no sensor " + shownLine(selected_) + " in the database any more.");
            lblGeneral_ = rangeOf(*shown_);
        },
        [&](const std::string& why) {
            selected_.clear();
            failure_ = why;
        });
}

// ---- Commands

void SensorManager::tell(const std::string& text) const {
    session_.sysLog(text);
    session_.dialogs().show({formTitle, text, Icon::Exclamation});
}

bool SensorManager::attempt(const std::function<void()>& command) {
    return endOnFailure(command, [&](const std::string& why) { tell(why); });
}

bool SensorManager::warned(std::string_view first) const {
    // Kept: the sentence ends as the users of the program know it.
    const std::string text = std::string(first) + "\nAre you sure this is what you want to do?.";
    return session_.dialogs().show({"MAP Sensor Warning", text, Icon::Exclamation, Buttons::YesNo}) ==
           Answer::Yes;
}

void SensorManager::begin(SensorTask task, SensorEntry entry) {
    task_ = task;
    entry_ = std::move(entry);
}

bool SensorManager::edit() {
    if (!whyNotEdit().empty()) return false;
    const std::string asked = selected_;
    if (!warned("You are about to modify the calibration for this MAP sensor.")) return false;
    return attempt([&] {
        const auto row = session_.requireReference().mapSensorByName(asked);
        if (!row) throw Failure("There is no sensor " + shownLine(asked) + " in the database any more.");
        selected_ = asked;
        shown_ = row;
        SensorEntry entry;
        entry.points[firstVolts] = numberText(lowerPointVolts);
        entry.points[secondVolts] = numberText(upperPointVolts);
        entry.points[firstPressure] = wholeText(sensorPressure(*row, lowerPointVolts));
        entry.points[secondPressure] = wholeText(sensorPressure(*row, upperPointVolts));
        constexpr int kpa = 1;
        entry.unitsCode = row->units == 0 ? kpa : row->units;
        begin(SensorTask::Edit, std::move(entry));
    });
}

bool SensorManager::create() {
    if (!whyNotCreate().empty()) return false;
    if (!warned("You are about to enter the calibration for a new MAP sensor.")) return false;
    begin(SensorTask::Create, {});
    return true;
}

void SensorManager::cancel() {
    if (task_ == SensorTask::None) return;
    begin(SensorTask::None, {});
    load();
}

bool SensorManager::remove() {
    if (!whyNotRemove().empty()) return false;
    const std::string asked = selected_;  // another program's change may take the selection along
    const Box question{"Delete?", "Remove " + shownLine(asked) + "?", Icon::Question, Buttons::YesNo};
    if (session_.dialogs().show(question) != Answer::Yes) return false;
    bool removed = false;
    attempt([&] { removed = session_.requireReference().deleteMapSensor(asked); });
    load();
    if (removed) session_.windows().tell(&WindowNews::sensorsChanged);
    return removed;
}

SensorManager::Saved SensorManager::save(const SensorEntry& entry) {
    if (!whyNotSave().empty()) return {};
    if (const auto fault = sensorFault(entry)) {
        session_.sysLog(fault->title + ": " + firstLine(fault->text));
        session_.dialogs().show({fault->title, fault->text, Icon::Exclamation});
        return {false, fault->box};
    }
    const SensorLine line = sensorLine(entry);
    MapSensorRow row;
    row.scale = static_cast<float>(line.scale);
    row.offset = static_cast<float>(line.offset);
    row.units = entry.unitsCode;
    if (!store(row)) return {};
    begin(SensorTask::None, {});
    load();
    session_.windows().tell(&WindowNews::sensorsChanged);
    return {true, {}};
}

bool SensorManager::store(const MapSensorRow& row) {
    bool stored = false;
    attempt([&] {
        MapSensorRow named = row;
        if (task_ == SensorTask::Edit) {
            named.description = selected_;
            stored = session_.requireReference().updateMapSensor(named);
            if (!stored)
                throw Failure("There is no sensor " + shownLine(selected_) + " in the database any more.");
            return;
        }
        const auto name = askSensorName(session_, formTitle, "Enter a Description for this sensor.",
                                        pressureUnitsOf(row.units));
        if (!name) return;
        named.description = *name;
        session_.requireReference().addMapSensor(named);
        selected_ = *name;
        stored = true;
    });
    return stored;
}

std::string SensorManager::inHand() const {
    if (task_ == SensorTask::Create) return "A new sensor.";
    if (task_ == SensorTask::None) return {};
    std::string text = "Editing " + shownLine(selected_) + ".";
    if (const std::string points = storedPoints(); !points.empty()) text += " " + points;
    return text;
}

std::string SensorManager::storedPoints() const {
    const auto lower = sensorPressure(*shown_, lowerPointVolts);
    const auto upper = sensorPressure(*shown_, upperPointVolts);
    constexpr int decimals = 2;
    if (!lower || !upper) return {};
    const double storedLower = roundTo(*lower, decimals);
    const double storedUpper = roundTo(*upper, decimals);
    if (storedLower == roundHalfEven(*lower) && storedUpper == roundHalfEven(*upper)) return {};
    return "Stored: " + numberText(lowerPointVolts) + " V at " + numberText(storedLower) + ", " +
           numberText(upperPointVolts) + " V at " + numberText(storedUpper) + " " +
           std::string(pressureUnitsOf(shown_->units)) +
           ". The boxes start with whole numbers; saving stores what they hold.";
}

// ---- What can work now

std::string SensorManager::whyNotWrite() const {
    const Database* database = session_.reference();
    if (database == nullptr) return "The reference database could not be opened.";
    if (database->readOnly()) return "The reference database is write-protected.";
    return {};
}

std::string SensorManager::whyNotCreate() const {
    if (auto why = whyNotWrite(); !why.empty()) return why;
    return task_ == SensorTask::None ? "" : "Save or cancel the sensor in hand first.";
}

std::string SensorManager::whyNotEdit() const {
    if (auto why = whyNotCreate(); !why.empty()) return why;
    return selected_.empty() ? "Choose a sensor in the list first." : "";
}

std::string SensorManager::whyNotSave() const {
    if (auto why = whyNotWrite(); !why.empty()) return why;
    return task_ == SensorTask::None ? "Choose Edit or Create New first." : "";
}

SensorSketch SensorManager::sketch(const SensorEntry& entry) const {
    if (task_ == SensorTask::None) return sketchOfStored(shown_);
    SensorSketch sketch = sketchOfEntry(entry);
    if (task_ != SensorTask::Edit || !shown_) return sketch;
    const auto lowest = sensorPressure(*shown_, lowestVolts);
    const auto highest = sensorPressure(*shown_, highestVolts);
    // In another unit the two lines have nothing to do with each other.
    const bool comparable = pressureUnitsOf(shown_->units) == pressureUnitsOf(entry.unitsCode);
    if (lowest && highest && comparable) sketch.former = {*lowest, *highest};
    return sketch;
}

}  // namespace zentaq
