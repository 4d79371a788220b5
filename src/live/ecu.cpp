#include "live/ecu.h"

#include <algorithm>
#include <cmath>
#include <string_view>

#include "base/errors.h"
#include "base/number_text.h"
#include "unit/gpio_pins.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr double celsiusPerCount = 190.0 / 255.0;

std::string shown(double value, std::string_view pattern) {
    if (!std::isfinite(value)) throw Overflow();
    return formatNumber(value, pattern);
}

double word(int high, int low) {
    return high * 256.0 + low;
}

bool isFine(const Unit& unit, PulseScale scale) {
    return !scale.internalLog && (!unit.kind().coarsePulses || scale.fastFlag);
}

std::string temperature(double x, TemperatureMode mode) {
    const double celsius = x * celsiusPerCount - 40;
    if (mode == TemperatureMode::Celsius) return shown(celsius, "##0");
    return shown(toFahrenheit(static_cast<float>(celsius)), "##0");
}

std::string ratio(Unit& unit, double x) {
    return shown(static_cast<double>(unit.get("AFR")) / (x / 255 + 0.5), "##.00");
}

/// The sort of text that a pin's function shows.
enum class PinShow { Disabled, Switch, Duty, Speed, Volts, Number };

PinShow pinShow(const UnitKind& kind, int function) {
    switch (function) {
        case 0:
            return PinShow::Disabled;
        case 8:
        case 11:
        case 25:
        case 29:
            return PinShow::Duty;
        case 12:
        case 16:
        case 17:
        case 18:
            return PinShow::Volts;
        case 21:
            return PinShow::Speed;
        case 22:  // an input without a function where there is no voltage input
            return (kind.pins->kind & gpio_kinds::withVoltageInput) != 0 ? PinShow::Volts : PinShow::Disabled;
        default:
            return (function >= 1 && function <= 24) ? PinShow::Switch : PinShow::Number;
    }
}

std::size_t listIndex(int index) {
    if (index < 0 || index >= Ecu::listSize) throw BoundsError();
    return static_cast<std::size_t>(index);
}

}  // namespace

std::string Ecu::RPM(int high, int low) {
    return shown(word(high, low), "####0");
}

std::string Ecu::Advance(double x) {
    return shown(x / 4.25, "##.0");
}

std::string Ecu::Secondary_Advance(double x) {
    return Advance(x);
}

std::string Ecu::Knock_Retard(double x) {
    return shown(x / 8.5, "##.0");
}

std::string Ecu::MAP(Unit& unit, double x) {
    const double offset = unit.get("MAP_Offset");
    const double scale = unit.get("MAP_Scaler");
    return shown((x / 51 - offset) / scale, "###.0");
}

std::string Ecu::KPAtoUnit(const Unit& unit, double kpa) {
    const std::string units = unit.MAPUnits();
    double value = kpa;
    if (units == "PSIA") value = kpa / 6.895;
    if (units == "PSIG") value = kpa / 6.895 - 14.7;
    if (units == "mmHg") value = kpa * (760 / 101.325);
    if (units == "inHg") value = kpa * 0.2953;
    return shown(value, "###.0");
}

std::string Ecu::MAF(double x) {
    return shown(x / 2.55, "###.0");
}

std::string Ecu::CLT(double x, TemperatureMode mode) {
    return temperature(x, mode);
}

std::string Ecu::MAT(double x, TemperatureMode mode) {
    return temperature(x, mode);
}

std::string Ecu::TFPW(const Unit& unit, int high, int low, PulseScale scale) {
    return shown(isFine(unit, scale) ? word(high, low) : word(high, low) * 100 / 255, "##0");
}

std::string Ecu::KNOCK(double x) {
    return shown(x / 2.55, "##0");
}

std::string Ecu::TPS(double x) {
    return shown(x / 51, "#.00");
}

std::string Ecu::EGO_Voltage(double x) {
    return shown(x / 51, "#.00");
}

std::string Ecu::Voltage(const Unit& unit, double x) {
    return shown(x * unit.kind().batteryVoltsPerCount, "##.0");
}

std::string Ecu::UAP(int high, int low) {
    return shown(word(high, low) / 125, "#0.0##");
}

std::string Ecu::SPW(const Unit& unit, int high, int low, PulseScale scale) {
    return shown(word(high, low) / (isFine(unit, scale) ? 1000 : 125), "##.#00");
}

std::string Ecu::PPW(const Unit& unit, int high, int low, PulseScale scale) {
    return SPW(unit, high, low, scale);
}

std::string Ecu::Actual_AFR(Unit& unit, double x) {
    return ratio(unit, x);
}

std::string Ecu::Desired_AFR(Unit& unit, double x) {
    return ratio(unit, x);
}

std::string Ecu::EGO_Correction(double x) {
    return shown(x - 128, "##0");
}

std::string Ecu::IAC(double x, double minDuty, double maxDuty) {
    const double percent = (x - minDuty) / (maxDuty - minDuty) * 100;
    if (!std::isfinite(percent)) throw Overflow();
    return shown(std::clamp(percent, 0.0, 100.0), "##0");
}

std::string Ecu::POPD(double secondary, double primary) {
    if (primary == 0) return "0";
    return shown(secondary / primary * 100, "##0");
}

std::string Ecu::GPIO_Display(const Unit& unit, int function, int raw) {
    switch (pinShow(unit.kind(), function)) {
        case PinShow::Disabled:
            return "DISABLED";
        case PinShow::Switch:
            return raw != 0 ? "ON" : "OFF";
        case PinShow::Duty:
            return shown(raw / 2.55, "##0") + "%";
        case PinShow::Speed:
            return numberText(raw) + " MPH";
        case PinShow::Volts:
            return shown(raw / 51.0, "0.00") + " V";
        case PinShow::Number:
            break;
    }
    return numberText(raw);
}

std::string Ecu::Injector_Pulsewidth(Unit& unit, int index, float pressure, bool applySpw) {
    const std::size_t at = listIndex(index);
    const double share = unit.pressureToRatio(pressure);
    const double trim = 1 + static_cast<double>(unit.get("VE", index)) / 100;
    double width =
        static_cast<double>(unit.get("INJ_On")) + trim * (static_cast<double>(unit.get("scale1")) * share);
    if (applySpw) width *= static_cast<double>(unit.get("SPW", index)) / 100;
    if (!std::isfinite(width)) throw Overflow();
    pulseWidth_[at] = static_cast<float>(width);
    return shown(pulseWidth_[at], "##.#0");
}

std::string Ecu::Injector_DutyCycle(Unit& unit, float rpm, int index) {
    const std::size_t at = listIndex(index);
    const double cycle = engineCycleFactor(unit) / static_cast<double>(rpm);
    const double duty = static_cast<double>(pulseWidth_[at]) / (10 * cycle);
    // A header of 0 rpm has no cycle time; its cell keeps the duty it had.
    if (rpm == 0 || !std::isfinite(duty)) throw Overflow("Division by zero");
    duty_[at] = static_cast<float>(duty);
    return shown(duty_[at], "##0");
}

std::string Ecu::Get_PulseWidth(int index) const {
    return shown(pulseWidthMs(index), "#0.00");
}

std::string Ecu::Get_DutyCycle(int index) const {
    return shown(dutyPercent(index), "##0");
}

float Ecu::pulseWidthMs(int index) const {
    return pulseWidth_[listIndex(index)];
}

float Ecu::dutyPercent(int index) const {
    return duty_[listIndex(index)];
}

double Ecu::engineCycleFactor(Unit& unit) {
    const float phase = unit.get("PHDSEQ");
    const float type = unit.get("Engine_Type");
    return (phase == 0 || phase == 3) && (type == 0 || type == 3) ? 120 : 60;
}

}  // namespace zentaq
