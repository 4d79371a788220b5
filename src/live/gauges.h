// clsGauges: turns live values into needle angles, alarms and colours of the dashboard. Nothing is drawn
// here. Angles are in degrees, 0 straight up, clockwise; colours are red + 256 * green + 65536 * blue.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/channels.h"
#include "platform/settings_store.h"
#include "unit/unit.h"

namespace zentaq {

/// The preferences that the dashboard follows. Thresholds are in degrees Celsius whatever is shown.
struct DashboardSettings {
    std::optional<float> CLTAlarmValue;
    std::optional<float> MATAlarmValue;
    bool fahrenheit = false;  ///< TemperatureToggle is not "0"

    static DashboardSettings from(const SettingsStore& store);
};

enum class Needle { Tachometer, TPS, MAT, Coolant, VOLT, AFR, IAC };

/// In the order of Needle.
constexpr std::array<std::string_view, 7> needleNames{"Tachometer", "TPS", "MAT", "Coolant",
                                                      "VOLT",       "AFR", "IAC"};

namespace colours {
constexpr std::int32_t black = 0;
constexpr std::int32_t red = 255;
constexpr std::int32_t green = 65280;
constexpr std::int32_t yellow = 65535;
constexpr std::int32_t blue = 16711680;
}  // namespace colours

// ---- Angles
double tachAngle(float rpm, int revScale);  ///< revScale 9000 or 18000
double temperatureAngle(float celsius);
double throttleAngle(float volts);
double idleAngle(float percent);
double voltAngle(float volts);
/// `stoichiometric`: AFR of the calibration in hand, nothing without one.
/// Kept: exactly 14, and what lies above 14.99 up to 15, has no angle of its own and answers 0.
double afrAngle(float ratio, std::optional<float> stoichiometric);

/// Actual against desired; the tests run in order and a later one overrides.
std::int32_t afrNeedleColour(float actual, float desired, std::optional<float> stoichiometric);

/// 9000, or 18000 for a rev limiter above 9000 rpm.
int revScaleOf(Unit& unit);

class Gauges {
 public:
    Gauges() { Reset_Dashboard(); }

    void Tach_Position(float rpm) { turn(Needle::Tachometer) = tachAngle(rpm, revScale_); }
    void CLT_Position(float celsius, const DashboardSettings& settings);
    void MAT_Position(float celsius, const DashboardSettings& settings);
    void TPS_Position(float volts) { turn(Needle::TPS) = throttleAngle(volts); }
    void IAC_Position(float percent) { turn(Needle::IAC) = idleAngle(percent); }
    void VOLT_Position(float volts) { turn(Needle::VOLT) = voltAngle(volts); }
    void AFR_Position(float actual, float desired, std::optional<float> stoichiometric);
    void Check_Engine(bool on) { checkEngineColour_ = on ? colours::red : colours::black; }
    void OverRev(float rpm, float limiter) {
        overRevColour_ = rpm > limiter ? colours::yellow : colours::black;
    }

    /// Everything above from one set of live values. A kind without a fuel side leaves its gauges alone.
    /// `stoichiometric`: AFR of the calibration in hand, which need not be that of `unit`; nothing without
    /// one.
    void UPDATE_DISPLAY(const LiveValues& live, Unit& unit, const DashboardSettings& settings,
                        std::optional<float> stoichiometric);
    /// All needles at the low end of their scales, no alarm, lamps off, readings empty.
    void Reset_Dashboard();
    /// One firing of the flash timer: the colour for the temperature labels whose alarm is set, red and
    /// yellow in turn.
    std::int32_t flash();

    double angle(Needle needle) const { return angles_[static_cast<std::size_t>(needle)]; }
    std::int32_t afrColour() const { return afrColour_; }
    std::int32_t overRevColour() const { return overRevColour_; }
    std::int32_t checkEngineColour() const { return checkEngineColour_; }
    bool cltAlarm() const { return cltAlarm_; }
    bool matAlarm() const { return matAlarm_; }
    int revScale() const { return revScale_; }
    void revScale(int scale) { revScale_ = scale; }

 private:
    double& turn(Needle needle) { return angles_[static_cast<std::size_t>(needle)]; }

    std::array<double, needleNames.size()> angles_{};
    int revScale_ = 9000;
    std::int32_t afrColour_ = colours::red;
    std::int32_t overRevColour_ = colours::black;
    std::int32_t checkEngineColour_ = colours::black;
    bool cltAlarm_ = false;
    bool matAlarm_ = false;
    bool flashRed_ = false;
};

}  // namespace zentaq
