#include "live/dashboard_readings.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/errors.h"
#include "base/number_text.h"
#include "live/ecu.h"

namespace zentaq {

namespace {

constexpr int kindPzk2 = 5;

struct Source {
    const LiveValues& live;
    Unit& unit;
    const DashboardSettings& settings;
};

using TextOf = std::string (*)(const Source& source, std::string_view format);

/// One row of the panel: a plain live value with a format, or a text of its own.
struct Row {
    std::string_view name;
    std::string_view caption;
    std::string_view unit;  ///< "MAP": the unit of the pressure sensor; "T": the temperature unit
    std::string_view format;
    float LiveValues::*value = nullptr;
    TextOf text = nullptr;
    bool fuelSide = true;  ///< not on the ignition-only kind
};

bool isAirMass(const Source& source) {
    return source.unit.Get_Control2(0);
}

std::string formatted(double value, std::string_view format) {
    return std::isfinite(value) ? formatNumber(value, format) : std::string{};
}

std::string temperature(const Source& source, float celsius, std::string_view format) {
    const float value = source.settings.fahrenheit ? Ecu::toFahrenheit(celsius) : celsius;
    return formatted(static_cast<double>(value), format);
}

double cycleMs(const Source& source) {
    return Ecu::engineCycleFactor(source.unit) * 1000 / static_cast<double>(source.live.RPM);
}

/// Only wide frames tell the duty; for the others it follows from the on time and the speed.
std::string dutyText(const Source& source, float told, float widthMs, std::string_view format) {
    if (told != 0 || widthMs == 0 || source.live.RPM == 0)
        return formatted(static_cast<double>(told), format);
    return formatted(static_cast<double>(widthMs) / cycleMs(source) * 100, format);
}

std::string offTimeText(const Source& source, float widthMs, std::string_view format) {
    if (source.live.RPM == 0) return {};
    return formatted(std::max(cycleMs(source) - static_cast<double>(widthMs), 0.0), format);
}

std::string pressure(const Source& source, std::string_view format) {
    return isAirMass(source) ? std::string{} : formatted(static_cast<double>(source.live.MAP), format);
}
std::string airMass(const Source& source, std::string_view format) {
    return isAirMass(source) ? formatted(static_cast<double>(source.live.MAP), format) : std::string{};
}
std::string coolant(const Source& source, std::string_view format) {
    return temperature(source, source.live.CLT, format);
}
std::string airTemperature(const Source& source, std::string_view format) {
    return temperature(source, source.live.MAT, format);
}
std::string temperatureUnit(const Source& source, std::string_view) {
    return source.settings.fahrenheit ? "F" : "C";
}
std::string advanceSplit(const Source& source, std::string_view format) {
    return formatted(static_cast<double>(source.live.PRIADV - source.live.SECADV), format);
}
std::string primaryDuty(const Source& source, std::string_view format) {
    return dutyText(source, source.live.PRIDUTY, source.live.PRIPW, format);
}
std::string secondaryDuty(const Source& source, std::string_view format) {
    return dutyText(source, source.live.SECDUTY, source.live.SECPW, format);
}
std::string primaryOffTime(const Source& source, std::string_view format) {
    return offTimeText(source, source.live.PRIPW, format);
}
std::string secondaryOffTime(const Source& source, std::string_view format) {
    return offTimeText(source, source.live.SECPW, format);
}
std::string checkEngine(const Source& source, std::string_view) {
    return source.live.CHKE ? "1" : "0";
}

using L = LiveValues;

constexpr std::array rows{
    Row{"lblTach", "Engine Speed", "rpm", "####0", &L::RPM, nullptr, false},
    Row{"lblMAP", "Manifold Pressure", "MAP", "##0.0", nullptr, pressure, false},
    Row{"lblAMAP", "Air Mass", "%", "##0.0", nullptr, airMass, false},
    Row{"lblTPS", "Throttle Position", "v", "0.00", &L::TPS, nullptr, false},
    Row{"lblVolt", "Battery Voltage", "v", "#0.0", &L::BATTV, nullptr, false},
    Row{"lblKNK", "Knock", "%", "##0", &L::KNOCK, nullptr, false},
    Row{"lblADV", "Advance", "deg", "#0.0", &L::PRIADV, nullptr, false},
    Row{"lblSADV", "Secondary Advance", "deg", "#0.0", &L::SECADV, nullptr, false},
    Row{"lblADVSplit", "Advance Split", "deg", "#0.0", nullptr, advanceSplit, false},
    Row{"lblRetard", "Knock Retard", "deg", "#0.0", &L::KNKRET, nullptr, false},
    Row{"CHKE", "Check Engine", "", "", nullptr, checkEngine, false},
    Row{"lblTFPW", "GAMA", "%", "##0", &L::GAMA},
    Row{"lblCLT", "Coolant Temperature", "T", "##0", nullptr, coolant},
    Row{"lblMAT", "Manifold Temperature", "T", "##0", nullptr, airTemperature},
    Row{"lblTemp", "Temperature Unit", "", "", nullptr, temperatureUnit},
    Row{"lblEGOC", "EGO Corrections", "%", "#0", &L::EGOC},
    Row{"lblEGOV", "EGO Voltage", "v", "0.00", &L::EGOV},
    Row{"lblDAFR", "Desired Air-to-Fuel Ratio", ":1", "#0.00", &L::DAFR},
    Row{"lblAAFR", "Actual Air-to-Fuel Ratio", ":1", "#0.00", &L::AAFR},
    Row{"lblIAC", "Idle Air Control", "%", "##0", &L::IACP},
    Row{"lblIACDirection", "Idle Air Control Direction", "", "##0", &L::IACD},
    Row{"lblPPW", "Primary Injector ON Time", "ms", "#0.00", &L::PRIPW},
    Row{"lblSPW", "Secondary Injector ON Time", "ms", "#0.00", &L::SECPW},
    Row{"lblPID", "Primary Injector Dutycycle", "%", "##0.0", nullptr, primaryDuty},
    Row{"lblSID", "Secondary Injector Dutycycle", "%", "##0.0", nullptr, secondaryDuty},
    Row{"lblPOT", "Primary Injector OFF Time", "ms", "#0.00", nullptr, primaryOffTime},
    Row{"lblSOT", "Secondary Injector OFF Time", "ms", "#0.00", nullptr, secondaryOffTime},
    Row{"lblSIP", "Secondary Percent of Primary", "%", "##0", &L::SECPERCENT},
    Row{"INJ_TOG", "TOG", "ms", "#0.000", &L::INJ_TOG},
    Row{"SEN_MAP", "MAP Raw Voltage", "v", "0.000", &L::SEN_MAP},
    Row{"INJ_VE", "VE Table", "%", "##0", &L::INJ_VE},
    Row{"INJ_MAT", "MAT Correction", "%", "##0", &L::INJ_MAT},
    Row{"INJ_CLT", "CLT Correction", "%", "##0", &L::INJ_CLT},
    Row{"INJ_BARO", "Barometric Correction", "%", "##0", &L::INJ_BARO},
    Row{"INJ_SE0", "SE0", "%", "##0", &L::INJ_SE0},
    Row{"INJ_ASE0", "ASE0", "%", "##0", &L::INJ_ASE0},
    Row{"INJ_ASE1", "ASE1", "%", "##0", &L::INJ_ASE1},
    Row{"MAPACCL", "MAP Acceleration", "", "#0.000", &L::MAPACCL},
    Row{"TPSACCL", "TPS Acceleration", "V/s", "#0.000", &L::TPSACCL},
    Row{"INJ_ACE2", "ACE2", "%", "##0", &L::INJ_ACE2},
    Row{"INJ_ACE5", "ACE5", "%", "##0", &L::INJ_ACE5},
    Row{"INJ_ACE6", "ACE6", "%", "##0", &L::INJ_ACE6},
    Row{"INJ_VLTCOMP", "Voltage Comp", "ms", "#0.000", &L::INJ_VLTCOMP},
    Row{"SEN_BLEND", "Blend", "%", "##0", &L::SEN_BLEND},
    Row{"INJ_STAGE", "Staged Percentage", "%", "##0", &L::INJ_STAGE},
    Row{"ADV_TBL", "Table Advance", "deg", "#0.0", &L::ADV_TBL},
    Row{"ADV_CLT", "Coolant Advance", "deg", "#0.0", &L::ADV_CLT},
    Row{"ADV_MAT", "MAT Advance", "deg", "#0.0", &L::ADV_MAT},
    Row{"ADV_BARO", "Barometric Advance", "deg", "#0.0", &L::ADV_BARO},
    Row{"ADV_IDLE", "Idle Advance", "deg", "#0.0", &L::ADV_IDLE},
    Row{"ISRPM", "Idle Speed", "rpm", "####0", &L::ISRPM},
};

std::string unitOf(const Row& row, const Source& source) {
    if (row.unit == "MAP") return source.unit.MAPUnits();
    if (row.unit == "T") return temperatureUnit(source, {});
    return std::string(row.unit);
}

std::string textOf(const Row& row, const Source& source) {
    if (row.text != nullptr) return row.text(source, row.format);
    return formatted(static_cast<double>(source.live.*row.value), row.format);
}

void addPins(std::vector<DashboardReading>& readings, const Source& source) {
    for (int pin = 0; pin <= source.unit.kind().numGpio; ++pin) {
        const auto at = static_cast<std::size_t>(pin);
        if (at >= source.unit.GPIODisplay.size()) return;
        std::string caption = "GPIO" + numberText(pin + 1);
        skipFailing([&] {
            const int function = source.unit.Get_GPIOFUNC(pin);
            const std::string name = source.unit.GPIO_Function_Name(function);
            if (name != source.unit.GPIO_Function_Name(0)) caption += " " + name;
        });
        readings.push_back({"GPIO" + numberText(pin + 1), caption, source.unit.GPIODisplay[at], ""});
    }
}

}  // namespace

std::vector<DashboardReading> dashboardReadings(const LiveValues& live, Unit& unit,
                                                const DashboardSettings& settings) {
    const Source source{live, unit, settings};
    std::vector<DashboardReading> readings;
    for (const Row& row : rows) {
        if (row.fuelSide && unit.kind().slot == kindPzk2) continue;
        readings.push_back(
            {std::string(row.name), std::string(row.caption), textOf(row, source), unitOf(row, source)});
    }
    addPins(readings, source);
    return readings;
}

const DashboardReading* findReading(const std::vector<DashboardReading>& readings, std::string_view name) {
    const auto found = std::find_if(readings.begin(), readings.end(),
                                    [&](const DashboardReading& reading) { return reading.name == name; });
    return found == readings.end() ? nullptr : &*found;
}

}  // namespace zentaq
