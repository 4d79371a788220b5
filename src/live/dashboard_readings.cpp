#include "live/dashboard_readings.h"

#include <algorithm>
#include <cmath>

#include "base/errors.h"
#include "base/number_text.h"
#include "live/dashboard_plan.h"
#include "live/ecu.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

struct Source {
    const LiveValues& live;
    Unit& unit;
    const DashboardSettings& settings;
    double cycleMs;  ///< between two injections
};

bool isAirMass(const Source& source) {
    return source.unit.Get_Control2(0);
}

std::string formatted(double value, std::string_view format) {
    return std::isfinite(value) ? formatNumber(value, format) : std::string{};
}

std::string temperatureUnit(const Source& source) {
    return source.settings.fahrenheit ? "F" : "C";
}

std::string unitOf(const Channel& channel, const Source& source) {
    if (channel.reading.unit == unitOfPressure) return source.unit.MAPUnits();
    if (channel.reading.unit == unitOfTemperature) return temperatureUnit(source);
    return std::string(channel.reading.unit);
}

std::string textOf(const Channel& channel, const Source& source) {
    const Channel::Reading& reading = channel.reading;
    if (reading.unit == unitOfPressure && isAirMass(source)) return {};
    if (channel.shown != nullptr) {
        return formatted(channel.shown(source.live, source.cycleMs), reading.format);
    }
    float value = channel.in(source.live);
    if (reading.unit == unitOfTemperature && source.settings.fahrenheit) value = toFahrenheit(value);
    return formatted(static_cast<double>(value), reading.format);
}

bool isShown(bool ofIgnition, const Source& source) {
    return ofIgnition || source.unit.kind().fuelSide;
}

void addChannels(std::vector<DashboardReading>& readings, const Source& source) {
    for (const Channel& channel : channels) {
        const Channel::Reading& reading = channel.reading;
        if (reading.caption.empty() || !isShown(channel.is(Channel::ignition), source)) continue;
        readings.push_back({std::string(reading.label.empty() ? channel.name : reading.label),
                            std::string(reading.caption), textOf(channel, source), unitOf(channel, source)});
    }
}

constexpr std::string_view labelOfAirMass = "lblAMAP";
constexpr std::string_view labelOfSplit = "lblADVSplit";
constexpr std::string_view labelOfPressure = "lblMAP";
constexpr std::string_view labelOfTemperatureUnit = "lblTemp";

/// What the panel shows besides the channels.
void addOwn(std::vector<DashboardReading>& readings, const Source& source) {
    const LiveValues& live = source.live;
    const double airMass = isAirMass(source) ? static_cast<double>(live.MAP) : NAN;
    readings.push_back({std::string(labelOfAirMass), "Air Mass", formatted(airMass, "##0.0"), "%"});
    const double split = static_cast<double>(live.PRIADV - live.SECADV);
    readings.push_back({std::string(labelOfSplit), "Advance Split", formatted(split, "#0.0"), "deg"});
    if (isShown(false, source)) {
        readings.push_back(
            {std::string(labelOfTemperatureUnit), "Temperature Unit", temperatureUnit(source), ""});
    }
}

void addPins(std::vector<DashboardReading>& readings, const Source& source) {
    for (int pin = 0; pin <= source.unit.kind().numGpio; ++pin) {
        const auto at = static_cast<std::size_t>(pin);
        if (at >= source.unit.GPIODisplay().size()) return;
        const std::string name{pinNames.at(at)};
        std::string caption = name;
        bool inUse = true;
        skipFailing([&] {
            const int function = source.unit.Get_GPIOFUNC(pin);
            const std::string meaning = source.unit.GPIO_Function_Name(function);
            inUse = meaning != source.unit.GPIO_Function_Name(0);
            if (inUse) caption += " " + meaning;
        });
        readings.push_back({name, caption, source.unit.GPIODisplay()[at], "", inUse});
    }
}

}  // namespace

std::vector<DashboardReading> dashboardReadings(const LiveValues& live, Unit& unit,
                                                const DashboardSettings& settings) {
    const double cycleMs = Ecu::engineCycleFactor(unit) * 1000 / static_cast<double>(live.RPM);
    const Source source{live, unit, settings, cycleMs};
    std::vector<DashboardReading> readings;
    addChannels(readings, source);
    addOwn(readings, source);
    addPins(readings, source);
    return readings;
}

std::vector<std::string_view> shownReadouts(const std::vector<DashboardReading>& readings) {
    const auto hasValue = [&](std::string_view name) {
        const DashboardReading* reading = findReading(readings, name);
        return reading != nullptr && !reading->text.empty();
    };
    const bool airMass = hasValue(labelOfAirMass);
    std::vector<std::string_view> shown;
    for (const std::string_view name : tileOrder()) {
        if (findReading(readings, name) == nullptr) continue;
        if ((name == labelOfAirMass || name == labelOfTemperatureUnit) && !hasValue(name)) continue;
        if (name == labelOfPressure && airMass) continue;
        shown.push_back(name);
    }
    return shown;
}

const DashboardReading* findReading(const std::vector<DashboardReading>& readings, std::string_view name) {
    const auto found = std::find_if(readings.begin(), readings.end(),
                                    [&](const DashboardReading& reading) { return reading.name == name; });
    return found == readings.end() ? nullptr : &*found;
}

}  // namespace zentaq
