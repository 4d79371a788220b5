#include "unit/gpio_model.h"

#include <algorithm>
#include <numbers>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/gpio_limits.h"
#include "unit/temperature.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

// The parameters of a speed input. The first is what the unit takes.
constexpr int pulsesPerMileParameter = 0;
constexpr int tireDiameterParameter = 3;
constexpr int axleRatioParameter = 4;
constexpr int pulsesPerTurnParameter = 5;

std::string textOf(const GpioPin& pin, std::size_t wireColumn) {
    std::string text = numberText(pin.number) + " " + std::string(pin.what);
    text.resize(std::max(text.size() + 1, wireColumn), ' ');
    return text + "(pin " + std::string(pin.wire) + ")";
}

std::string filledIn(std::string_view label, std::string_view name) {
    constexpr std::string_view gap = "{}";
    std::string text(label);
    if (const auto at = text.find(gap); at != std::string::npos) text.replace(at, gap.size(), name);
    return text;
}

std::string joined(const std::string& label, const std::string& hint) {
    if (hint.empty()) return label;
    return label + (label.ends_with(' ') ? "" : " ") + hint;
}

bool hasValue(GpioRowForm form) {
    using enum GpioRowForm;
    return form == Number || form == Temperature || form == Pressure || form == PressureHint;
}

bool isPressure(GpioRowForm form) {
    return form == GpioRowForm::Pressure || form == GpioRowForm::PressureHint;
}

std::string wordOf(const Unit& unit, const GpioRow& row) {
    if (isPressure(row.form)) return unit.MAPUnits();
    if (row.form == GpioRowForm::Temperature) return unit.host().fahrenheit() ? "°F" : "°C";
    return std::string(row.word);
}

std::string pinNameOf(const GpioPin& pin) {
    return "pin " + numberText(pin.pin) + " (" + std::string(pin.wire) + ")";
}

/// The release that a need stands for, where no firmware code says more.
int releaseFor(GpioNeeds needs) {
    switch (needs) {
        case GpioNeeds::DatalogFirmware:
            return 2;
        case GpioNeeds::BoostFirmware:
            return 4;
        default:
            return 0;
    }
}

bool takes(GpioSide pin, GpioSide function) {
    return pin == function || pin == GpioSide::Both || function == GpioSide::Both;
}

}  // namespace

float gpioPulsesPerMile(float tireDiameter, float axleRatio, float pulsesPerTurn) {
    constexpr double inchesPerMile = 63360;
    const double wheelTurns = inchesPerMile / (std::numbers::pi * static_cast<double>(tireDiameter));
    return static_cast<float>(wheelTurns * static_cast<double>(axleRatio) *
                              static_cast<double>(pulsesPerTurn));
}

// ---- Pins

const GpioPins& GpioModel::pins() const {
    return *unit_.kind().pins;
}

std::vector<GpioPinRow> GpioModel::Show_GPIO() const {
    std::vector<GpioPinRow> rows;
    for (const GpioPin& pin : pins().rows) {
        if (unit_.FW_Release() < pin.fromRelease) continue;
        rows.push_back({textOf(pin, pins().wireColumn), pin.pin});
    }
    return rows;
}

std::string GpioModel::tagOf(const std::vector<GpioPinRow>& rows) {
    std::string tag;
    for (const GpioPinRow& row : rows) tag += formatNumber(row.pin, "00");
    return tag;
}

int GpioModel::storedCode(int pin) const {
    // A file may hold anything here. What is no code is a function that no list has.
    int code = -1;
    const float word = unit_.gpioFunctionWord(pin);
    skipFailing([&] { code = toInt16(static_cast<double>(word)); });
    return code;
}

// ---- Functions

const GpioPin* GpioModel::pinWith(int code, int besides) const {
    const auto found = std::ranges::find_if(pins().rows, [&](const GpioPin& other) {
        return other.pin != besides && other.side != GpioSide::Output && storedCode(other.pin) == code;
    });
    return found == pins().rows.end() ? nullptr : &*found;
}

bool GpioModel::firmwareAllows(const GpioFunction& function) const {
    const float code = unit_.facts().firmwareCode;
    const int release = unit_.FW_Release();
    const bool unknown = code == 0 && unit_.firmware() == FirmwareVersion{};
    // Choosing such a function is what tells the firmware.
    if (unknown && pins().recordsRelease && function.recordsRelease != 0) return true;
    constexpr float firstNumbered = 1000;
    switch (function.needs) {
        case GpioNeeds::DatalogFirmware:
            return code < firstNumbered ? release >= 2 : release != 0;
        case GpioNeeds::BoostFirmware:
            // kept: a code counts in thousands, so any code that tells a firmware passes.
            return code >= 4 || release >= 4;
        case GpioNeeds::Nothing:
            break;
    }
    return true;
}

bool GpioModel::isOnSpeedPin(const GpioFunction& function, const GpioPin& pin) const {
    if (function.speedInput == 0) return true;
    return pins().speedPins.at(static_cast<std::size_t>(function.speedInput - 1)) == pin.pin;
}

bool GpioModel::offers(const GpioFunction& function, const GpioPin& pin) const {
    if ((function.offeredOn & pins().kind) == 0 || !takes(pin.side, function.side)) return false;
    if (!isOnSpeedPin(function, pin) || !firmwareAllows(function)) return false;
    if (!function.onePinOnly) return true;
    return storedCode(pin.pin) == function.code || !elsewhere(function.code, pin.pin);
}

GpioFunctionList GpioModel::Show_GPIO_Func(int pin) const {
    GpioFunctionList list;
    const GpioPin* row = pins().find(pin);
    if (row == nullptr) return list;
    for (const GpioFunction& function : gpioFunctions()) {
        if (!offers(function, *row)) continue;
        if (function.code == storedCode(pin)) list.selected = static_cast<int>(list.items.size());
        list.items.push_back({std::string(function.listText), function.code});
    }
    return list;
}

GpioChoice GpioModel::choose(int pin, int code) {
    if (unit_.ONFLY_MODE()) return GpioChoice::UnitInUse;
    if (storedCode(pin) == code) return GpioChoice::Unchanged;
    if (!whyNot(pin, code).empty()) return GpioChoice::NotOffered;
    unit_.Zeroize_GPIO(pin);
    unit_.Set_GPIO_Func(pin, code);
    return GpioChoice::Changed;
}

std::string GpioModel::whyNot(int pin, int code) const {
    const GpioPin* row = pins().find(pin);
    if (row == nullptr) return std::string(unit_.kind().model) + " has no pin " + numberText(pin);
    std::string reason;
    for (const GpioFunction& function : gpioFunctions()) {
        if (function.code != code) continue;
        if (offers(function, *row)) return {};
        // Of two rows with one code, the one that the kind has tells more.
        if (reason.empty() || (function.offeredOn & pins().kind) != 0) reason = whyNot(function, *row);
    }
    if (reason.empty()) reason = numberText(code) + " is no function of " + std::string(unit_.kind().model);
    return reason + "; " + offeredText(pin);
}

std::string GpioModel::whyNot(const GpioFunction& function, const GpioPin& pin) const {
    const std::string name = "\"" + std::string(function.listText) + "\"";
    const std::string here = pinNameOf(pin);
    if ((function.offeredOn & pins().kind) == 0) {
        return name + " is no function of " + std::string(unit_.kind().model);
    }
    if (!takes(pin.side, function.side)) {
        const bool input = function.side == GpioSide::Input;
        return name + " is for " + (input ? "inputs" : "outputs") + ", and " + here + " is an " +
               (input ? "output" : "input");
    }
    if (!isOnSpeedPin(function, pin)) return name + " is not on " + here;
    if (!firmwareAllows(function)) {
        return name + " needs firmware of release " + numberText(releaseFor(function.needs)) +
               ", and the calibration is for release " + numberText(unit_.FW_Release());
    }
    const GpioPin* other = pinWith(function.code, pin.pin);
    return name + " is on " + (other == nullptr ? "another pin" : pinNameOf(*other)) +
           " already, and only one input may have it";
}

std::string GpioModel::offeredText(int pin) const {
    std::string text;
    for (const GpioFunctionList::Item& item : Show_GPIO_Func(pin).items) {
        text += (text.empty() ? "" : ", ") + numberText(item.code) + " " + item.text;
    }
    return "the pin offers " + (text.empty() ? "nothing" : text);
}

std::vector<std::string> GpioModel::oddFunctions() const {
    std::vector<std::string> lines;
    for (const GpioPin& pin : pins().rows) {
        const int code = storedCode(pin.pin);
        const std::string reason = code == 0 ? std::string() : whyNot(pin.pin, code);
        if (!reason.empty()) lines.push_back(pinNameOf(pin) + ": " + reason);
    }
    for (const GpioDouble& each : doubled()) {
        std::string on;
        for (const int pin : each.pins) on += (on.empty() ? "" : ", ") + pinNameOf(*pins().find(pin));
        lines.push_back("\"" + unit_.GPIO_Function_Name(each.code) +
                        "\", which only one input may have, is on " + on);
    }
    return lines;
}

std::vector<GpioDouble> GpioModel::doubled() const {
    std::vector<GpioDouble> found;
    for (const GpioFunction& function : gpioFunctions()) {
        if (!function.onePinOnly || (function.offeredOn & pins().kind) == 0) continue;
        GpioDouble with{function.code, {}};
        for (const GpioPin& pin : pins().rows) {
            if (pin.side != GpioSide::Output && storedCode(pin.pin) == function.code)
                with.pins.push_back(pin.pin);
        }
        if (with.pins.size() > 1) found.push_back(std::move(with));
    }
    return found;
}

// ---- Parameters

float GpioModel::fromCell(const GpioRow& row, float cell) const {
    if (row.form == GpioRowForm::Temperature) return unit_.host().fahrenheit() ? toFahrenheit(cell) : cell;
    // A cell of 0 is one that was never set.
    if (!isPressure(row.form) || cell == 0) return cell;
    return roundTo(unit_.voltsToPressure(unit_.KpaToVolts(cell)), unit_.MAPPrecision());
}

float GpioModel::toCell(const GpioRow& row, float value) const {
    if (row.form == GpioRowForm::Temperature) return unit_.host().fahrenheit() ? toCelsius(value) : value;
    return isPressure(row.form) ? unit_.voltsToKPa(unit_.pressureToVolts(value)) : value;
}

Limits GpioModel::limitsOf(const GpioRow& row, const std::string& word) const {
    if (row.minimum == row.maximum) {
        Limits limits = gpioLimitsOf(unit_, word);
        if (row.step > 0) {
            limits.step = row.step;
            limits.stepText = std::string(row.hint);
        }
        return limits;
    }
    return {.minimum = row.minimum,
            .maximum = row.maximum,
            .text = std::string(row.ownText.empty() ? row.hint : row.ownText)};
}

GpioParamRow GpioModel::shown(const GpioRow& row, int pin, int code) const {
    GpioParamRow result;
    result.label = filledIn(row.label, unit_.GPIO_Function_Name(code));
    result.hint = std::string(row.hint);
    result.form = row.form;
    if (hasValue(row.form)) {
        result.unit = wordOf(unit_, row);
        result.parameter = row.parameter;
        result.limits = limitsOf(row, result.unit);
        result.value = numberText(fromCell(row, unit_.Get_GPIO_Param(pin, row.parameter)));
    }
    if (row.form == GpioRowForm::PressureHint) result.hint = result.limits.text;
    result.mode = joined(result.label, result.hint);
    return result;
}

std::vector<GpioParamRow> GpioModel::Show_GPIO_Param(int pin, int code) {
    live_ = true;
    std::vector<GpioParamRow> rows;
    for (const GpioRow& row : rowsOf(code)) rows.push_back(shown(row, pin, code));
    return rows;
}

std::span<const GpioRow> GpioModel::rowsOf(int code) const {
    return gpioRowsOf(pins().kind, code, unit_.firmware());
}

int GpioModel::rowOf(int pin, int parameter) const {
    constexpr int none = -1;
    if (parameter < 0) return none;
    const auto rows = rowsOf(storedCode(pin));
    const auto found = std::ranges::find(rows, parameter, &GpioRow::parameter);
    return found == rows.end() ? none : static_cast<int>(found - rows.begin());
}

float GpioModel::shownParameter(int pin, int parameter) const {
    const float cell = unit_.Get_GPIO_Param(pin, parameter);
    const int row = rowOf(pin, parameter);
    return row < 0 ? cell : fromCell(rowsOf(storedCode(pin))[static_cast<std::size_t>(row)], cell);
}

EntryOutcome GpioModel::enter(int pin, int row, std::string_view text) {
    const auto rows = rowsOf(storedCode(pin));
    if (row < 0 || row >= static_cast<int>(rows.size())) return EntryOutcome::ignored();
    const GpioRow& edited = rows[static_cast<std::size_t>(row)];
    if (!hasValue(edited.form)) return EntryOutcome::ignored();
    if (auto checked = checkTyped(text, limitsOf(edited, wordOf(unit_, edited))); !checked) return checked;
    unit_.Set_GPIO_Param(pin, edited.parameter, toCell(edited, static_cast<float>(numberOf(text))));
    updatePulses(pin, edited.parameter);
    return {};
}

void GpioModel::updatePulses(int pin, int parameter) {
    if (storedCode(pin) != gpio_code::speedInput || parameter == pulsesPerMileParameter) return;
    const float diameter = unit_.Get_GPIO_Param(pin, tireDiameterParameter);
    const float ratio = unit_.Get_GPIO_Param(pin, axleRatioParameter);
    const float pulses = unit_.Get_GPIO_Param(pin, pulsesPerTurnParameter);
    if (diameter == 0 || ratio == 0 || pulses == 0) return;
    unit_.Set_GPIO_Param(pin, pulsesPerMileParameter, gpioPulsesPerMile(diameter, ratio, pulses));
}

}  // namespace zentaq
