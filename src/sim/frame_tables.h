// The frames of all unit kinds as tables: which value stands at which byte, and in which steps.
// A profile of a kind names the tables that its replies are made by.
#pragma once

#include <algorithm>
#include <array>

#include "base/battery_input.h"
#include "sim/frame_layout.h"

namespace zentaq::sim::frames {

using Live = LiveValues;

// Raw counts per unit of value.
inline constexpr double perVolt8 = 51;      // 8-bit converter on 5 volts
inline constexpr double perVolt10 = 204.6;  // 10-bit converter on 5 volts
inline constexpr double perPercent = 2.55;
inline constexpr double perDegree = 4.25;
inline constexpr double perRetardDegree = 8.5;
inline constexpr double perCelsius = 255.0 / 190;
inline constexpr double celsiusOffset = 40 * perCelsius;
inline constexpr double perBatteryVoltA = 1 / batteryinput::voltsPerCountOrbA;
inline constexpr double perBatteryVolt = 1 / batteryinput::voltsPerCount;  // all kinds but the ORB A
inline constexpr double perRatio = 255;
inline constexpr double ratioOffset = -127.5;
inline constexpr double percentAroundZero = 50;
inline constexpr double oxygenAroundZero = 128;
inline constexpr double advanceAroundZero = 128;

inline constexpr FrameField narrowFieldsA[] = {
    {0, 2, &Live::rpm},
    {2, 1, &Live::primaryAdvance, perDegree},
    {3, 1, &Live::mapSensorVolts, perVolt8},
    {4, 1, &Live::coolantC, perCelsius, celsiusOffset},
    {5, 2, &Live::gammaPercent, perPercent},
    {7, 1, &Live::knockPercent, perPercent},
    {8, 1, &Live::airC, perCelsius, celsiusOffset},
    {9, 1, &Live::tpsVolts, perVolt8},
    {10, 1, &Live::batteryVolts, perBatteryVoltA},
    {11, 1, &Live::checkEngine},
    {15, 1, &Live::actualAfr, perRatio, ratioOffset, Law::FuelRatio},
    {16, 1, &Live::egoCorrectionPercent, 1, oxygenAroundZero},
    {17, 1, &Live::desiredAfr, perRatio, ratioOffset, Law::FuelRatio},
    {19, 1, &Live::egoVolts, perVolt8},
    {21, 2, &Live::secondaryPulseMs, 125},
    {23, 2, &Live::primaryPulseMs, 125},
    {31, 1, &Live::secondaryAdvance, perDegree},
    {32, 1, &Live::knockRetard, perRetardDegree},
    {33, 1, &Live::idleDuty},
    {34, 1, &Live::idleDirection},
};

inline constexpr FrameGpio narrowGpioA[] = {{12, 0}, {13, 2}, {14, 3}, {25, 4},
                                            {26, 5}, {27, 6}, {28, 7}, {29, 1}};

inline constexpr FrameField wideFieldsA[] = {
    {3, 2, &Live::rpm},
    {5, 1, &Live::tpsVolts, perVolt8},
    {6, 2, &Live::wideLoad},
    {8, 1, &Live::coolantC, perCelsius, celsiusOffset},
    {9, 1, &Live::airC, perCelsius, celsiusOffset},
    {10, 1, &Live::knockPercent, perPercent},
    {11, 1, &Live::primaryAdvance, perDegree},
    {12, 1, &Live::secondaryAdvance, perDegree},
    {13, 1, &Live::knockRetard, perRetardDegree},
    {14, 2, &Live::gammaPercent},
    {16, 1, &Live::desiredAfr, perRatio, ratioOffset, Law::FuelRatio},
    {17, 1, &Live::actualAfr, perRatio, ratioOffset, Law::FuelRatio},
    {18, 1, &Live::egoCorrectionPercent, 1, oxygenAroundZero},
    {19, 1, &Live::egoVolts, perVolt8},
    {20, 2, &Live::primaryPulseMs, 1000},
    {22, 2, &Live::secondaryPulseMs, 1000},
    {24, 1, &Live::primaryDutyPercent, perPercent},
    {25, 1, &Live::secondaryDutyPercent, perPercent},
    {26, 1, &Live::idlePositionPercent, perPercent},
    {27, 1, &Live::idleDirection},
    {28, 1, &Live::batteryVolts, perBatteryVoltA},
    {29, 1, &Live::checkEngine},
    {30, 2, &Live::injectionGapMs, 1000},
    {32, 2, &Live::mapSensorVolts, perVolt10},
    {34, 1, &Live::veCorrection, 1, percentAroundZero},
    {35, 1, &Live::airCorrection, 1, percentAroundZero},
    {36, 1, &Live::coolantCorrection},
    {37, 1, &Live::baroCorrection, 1, percentAroundZero},
    {38, 1, &Live::startEnrichment},
    {39, 1, &Live::afterStart0},
    {40, 1, &Live::afterStart1},
    {41, 1, &Live::mapAccelerationRaw},
    {42, 1, &Live::tpsAcceleration, 5},
    {43, 1, &Live::acceleration2},
    {44, 1, &Live::acceleration5},
    {45, 1, &Live::acceleration6},
    {46, 1, &Live::voltageCompensationMs, 125, 125},
    {48, 1, &Live::blend},
    {49, 1, &Live::stagePercent},
    {50, 1, &Live::tableAdvance, perDegree},
    {51, 1, &Live::coolantAdvance, perDegree},
    {52, 1, &Live::airAdvance, perDegree, advanceAroundZero},
    {53, 1, &Live::baroAdvance, perDegree, advanceAroundZero},
    {54, 1, &Live::idleAdvance, perDegree, advanceAroundZero},
    {55, 1, &Live::idleTargetRpm, 1.0 / 16},
};

/// Pins 0 to count - 1, one byte each.
template <int count>
constexpr std::array<FrameGpio, count> pinsFrom(int firstByte) {
    std::array<FrameGpio, count> pins{};
    for (int pin = 0; pin < count; ++pin) pins[static_cast<std::size_t>(pin)] = {firstByte + pin, pin};
    return pins;
}

inline constexpr int firstWidePin = 56;
inline constexpr int firstListedPin = 3;

inline constexpr auto widePinsA = pinsFrom<8>(firstWidePin);
inline constexpr auto widePinsL = pinsFrom<9>(firstWidePin);
inline constexpr auto widePinsC = pinsFrom<13>(firstWidePin);
inline constexpr auto widePinsD = pinsFrom<5>(firstWidePin);  // two pins less than the unit has

inline constexpr auto listedPinsA = pinsFrom<9>(firstListedPin);
inline constexpr auto listedPinsL = pinsFrom<9>(firstListedPin);
inline constexpr auto listedPinsC = pinsFrom<13>(firstListedPin);
inline constexpr auto listedPinsD = pinsFrom<7>(firstListedPin);
inline constexpr auto listedPinsPzk2 = pinsFrom<4>(firstListedPin);

/// Lists one behind the other.
template <std::size_t... counts>
constexpr auto joined(const FrameField (&... lists)[counts]) {
    std::array<FrameField, (counts + ...)> all{};
    auto end = all.begin();
    ((end = std::ranges::copy(lists, end).out), ...);
    return all;
}

/// Where every headed narrow frame and every log record has what an ignition-only unit knows too.
inline constexpr FrameField ignitionFields[] = {
    {3, 2, &Live::rpm},
    {6, 1, &Live::mapSensorVolts, perVolt8},
    {9, 1, &Live::knockPercent, perPercent},
    {10, 1, &Live::primaryAdvance, perDegree},
    {11, 1, &Live::secondaryAdvance, perDegree},
    {12, 1, &Live::knockRetard, perRetardDegree},
};

/// What the ones of a unit with fuel have besides. The coarse steps of pulse width and gamma belong to the
/// narrow frame of the ORB A alone.
inline constexpr FrameField fuelFields[] = {
    {5, 1, &Live::tpsVolts, perVolt8},
    {7, 1, &Live::coolantC, perCelsius, celsiusOffset},
    {8, 1, &Live::airC, perCelsius, celsiusOffset},
    {13, 2, &Live::gammaPercent},
    {17, 1, &Live::egoCorrectionPercent, 1, oxygenAroundZero},
    {18, 1, &Live::egoVolts, perVolt8},
    {19, 2, &Live::primaryPulseMs, 1000},
    {21, 2, &Live::secondaryPulseMs, 1000},
    {23, 1, &Live::idleDuty},
};

// kept: actual before desired ratio, the reverse of the narrow frame, is how the unit logs them.
inline constexpr FrameField logEndA[] = {
    {15, 1, &Live::actualAfr, perRatio, ratioOffset, Law::FuelRatio},
    {16, 1, &Live::desiredAfr, perRatio, ratioOffset, Law::FuelRatio},
    {24, 1, &Live::batteryVolts, perBatteryVoltA},
};
inline constexpr auto logFieldsA = joined(ignitionFields, fuelFields, logEndA);

/// The fields of the ORB A on a unit whose battery input has the other divider.
template <std::size_t count>
constexpr auto withOtherBattery(std::array<FrameField, count> fields) {
    for (FrameField& field : fields) {
        if (field.value == &Live::batteryVolts) field.scale = perBatteryVolt;
    }
    return fields;
}

inline constexpr auto wideFields = withOtherBattery(std::to_array(wideFieldsA));
inline constexpr auto logFields = withOtherBattery(logFieldsA);

inline constexpr FrameField narrowEnd[] = {
    {15, 1, &Live::desiredAfr, perRatio, ratioOffset, Law::FuelRatio},
    {16, 1, &Live::actualAfr, perRatio, ratioOffset, Law::FuelRatio},
    {24, 1, &Live::idleDirection},
    {25, 1, &Live::batteryVolts, perBatteryVolt},
    {26, 1, &Live::checkEngine},
};
inline constexpr auto narrowFields = joined(ignitionFields, fuelFields, narrowEnd);

// kept: the throttle stands where the other kinds have the air temperature.
inline constexpr FrameField narrowEndPzk2[] = {
    {8, 1, &Live::tpsVolts, perVolt8},
    {25, 1, &Live::batteryVolts, perBatteryVolt},
    {26, 1, &Live::checkEngine},
};
inline constexpr auto narrowFieldsPzk2 = joined(ignitionFields, narrowEndPzk2);

// What an ignition-only unit has no sensor for stays 0.
inline constexpr FrameField logEndPzk2[] = {
    {5, 1, &Live::tpsVolts, perVolt8},
    {24, 1, &Live::batteryVolts, perBatteryVolt},
};
inline constexpr auto logFieldsPzk2 = joined(ignitionFields, logEndPzk2);

}  // namespace zentaq::sim::frames
