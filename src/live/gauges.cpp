#include "live/gauges.h"

#include <algorithm>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/settings_keys.h"

namespace zentaq {

namespace {

constexpr double petrolRatio = 14.7;
constexpr int lowRevScale = 9000;
constexpr int highRevScale = 18000;

/// Where a needle rests: the low end of its channel.
constexpr float lowestOf(Channel::Number value) {
    return channelOf(value).span.low;
}

std::optional<float> threshold(const SettingsStore& store, const std::string& key) {
    const auto value = parseNumber(store.get(settings::system, key));
    if (!value) return {};
    return static_cast<float>(*value);
}

bool reaches(float celsius, std::optional<float> alarm) {
    return alarm && celsius >= *alarm;
}

}  // namespace

DashboardSettings DashboardSettings::from(const SettingsStore& store) {
    return {threshold(store, settings::CLTAlarmValue), threshold(store, settings::MATAlarmValue),
            store.get(settings::system, settings::TemperatureToggle) != "0"};
}

double tachAngle(float rpm, int revScale) {
    const double perRpm = revScale == lowRevScale ? 0.031804 : 0.015902;
    return std::max(perRpm * static_cast<double>(rpm) - 129, -123.0);
}

double temperatureAngle(float celsius) {
    return 0.46 * static_cast<double>(celsius) + 68;
}

double throttleAngle(float volts) {
    return 0.165 * static_cast<double>(volts) * 100 - 55;
}

double idleAngle(float percent) {
    return 0.825 * static_cast<double>(percent) + 155;
}

double voltAngle(float volts) {
    return (static_cast<double>(volts) - 7) * 7.5 + 155;
}

double afrAngle(float ratio, std::optional<float> stoichiometric) {
    // As a 32-bit float, like the ratios themselves: on petrol 14 and 15 stay exactly 14 and 15.
    float scaled = ratio;
    if (stoichiometric && *stoichiometric != 0) {
        scaled = static_cast<float>(static_cast<double>(ratio) * petrolRatio /
                                    static_cast<double>(*stoichiometric));
    }
    const double value = scaled;
    if (value > 15) return (value - 15) * 3.4 - 40;
    if (value > 14 && value <= 14.99) return (value - 14) * 48.7 - 96;
    if (value < 14) return (value - 9) * 11.42 - 145;
    return 0;
}

std::int32_t afrNeedleColour(float actual, float desired, std::optional<float> stoichiometric) {
    const double band = stoichiometric ? 0.5 * static_cast<double>(*stoichiometric) / petrolRatio : 0.5;
    const double is = actual;
    const double wanted = desired;
    std::int32_t colour = colours::green;
    if (wanted - band > is) colour = colours::yellow;
    if (is >= wanted - band && is <= wanted + band) colour = colours::green;
    if (wanted + band < is) colour = colours::red;
    if (actual == desired) colour = colours::blue;
    return colour;
}

int revScaleOf(Unit& unit) {
    return unit.get("REV_Limiter") > lowRevScale ? highRevScale : lowRevScale;
}

void Gauges::CLT_Position(float celsius, const DashboardSettings& settings) {
    turn(Needle::Coolant) = temperatureAngle(celsius);
    cltAlarm_ = reaches(celsius, settings.CLTAlarmValue);
}

void Gauges::MAT_Position(float celsius, const DashboardSettings& settings) {
    turn(Needle::MAT) = temperatureAngle(celsius);
    matAlarm_ = reaches(celsius, settings.MATAlarmValue);
}

void Gauges::AFR_Position(float actual, float desired, std::optional<float> stoichiometric) {
    afrColour_ = afrNeedleColour(actual, desired, stoichiometric);
    turn(Needle::AFR) = afrAngle(actual, stoichiometric);
}

void Gauges::UPDATE_DISPLAY(const LiveValues& live, Unit& unit, const DashboardSettings& settings,
                            std::optional<float> stoichiometric) {
    revScale_ = revScaleOf(unit);
    Tach_Position(live.RPM);
    OverRev(live.RPM, unit.get("REV_Limiter"));
    TPS_Position(live.TPS);
    VOLT_Position(live.BATTV);
    Check_Engine(live.CHKE);
    if (!unit.kind().fuelSide) return;
    CLT_Position(live.CLT, settings);
    MAT_Position(live.MAT, settings);
    AFR_Position(live.AAFR, live.DAFR, stoichiometric);
    IAC_Position(live.IACP);
}

void Gauges::Reset_Dashboard() {
    Tach_Position(lowestOf(&LiveValues::RPM));
    TPS_Position(lowestOf(&LiveValues::TPS));
    CLT_Position(lowestOf(&LiveValues::CLT), {});
    MAT_Position(lowestOf(&LiveValues::MAT), {});
    VOLT_Position(lowestOf(&LiveValues::BATTV));
    IAC_Position(lowestOf(&LiveValues::IACP));
    turn(Needle::AFR) = afrAngle(lowestOf(&LiveValues::AAFR), {});
    afrColour_ = colours::red;
    overRevColour_ = colours::black;
    checkEngineColour_ = colours::black;
}

std::int32_t Gauges::flash() {
    flashRed_ = !flashRed_;
    return flashRed_ ? colours::red : colours::yellow;
}

}  // namespace zentaq
