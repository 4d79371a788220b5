#include "sim/unit_profile.h"

#include "base/text.h"
#include "sim/map_sensor.h"

namespace zentaq::sim {

namespace {

using Live = LiveValues;

// Raw counts per unit of value.
constexpr double perVolt8 = 51;      // 8-bit converter on 5 volts
constexpr double perVolt10 = 204.6;  // 10-bit converter on 5 volts
constexpr double perVoltFine = 204;  // four times the 8-bit converter
constexpr double perPercent = 2.55;
constexpr double perDegree = 4.25;
constexpr double perRetardDegree = 8.5;
constexpr double perCelsius = 255.0 / 190;
constexpr double celsiusOffset = 40 * perCelsius;
constexpr double perBatteryVoltA = 1 / 0.067432;
constexpr double perRatio = 255;
constexpr double ratioOffset = -127.5;
constexpr double percentAroundZero = 50;
constexpr double oxygenAroundZero = 128;
constexpr double advanceAroundZero = 128;
// 5 volts of the MAP sensor span 5 / mapScaler kPa.
constexpr double perMapAcceleration = 137 / (5 / mapScaler * 0.0388);

constexpr FrameField narrowFieldsA[] = {
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
    // the position lies between the default duty limits 1 and 255
    {33, 1, &Live::idlePositionPercent, 2.54, 1},
    {34, 1, &Live::idleDirection},
};

constexpr FrameGpio narrowGpioA[] = {{12, 0}, {13, 2}, {14, 3}, {25, 4}, {26, 5}, {27, 6}, {28, 7}, {29, 1}};

constexpr FrameField wideFieldsA[] = {
    {3, 2, &Live::rpm},
    {5, 1, &Live::tpsVolts, perVolt8},
    {6, 2, &Live::mapSensorVolts, perVoltFine},
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
    {41, 1, &Live::mapAcceleration, perMapAcceleration},
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

constexpr FrameGpio wideGpioA[] = {{56, 0}, {57, 1}, {58, 2}, {59, 3}, {60, 4}, {61, 5}, {62, 6}, {63, 7}};

constexpr FrameGpio inputsA[] = {{3, 0}, {4, 1}, {5, 2}, {6, 3}, {7, 4}, {8, 5}, {9, 6}, {10, 7}, {11, 8}};

// kept: actual before desired ratio, the reverse of the narrow frame, is how the unit logs them. The coarse
// steps of pulse width and gamma belong to the narrow frame alone.
constexpr FrameField logFieldsA[] = {
    {3, 2, &Live::rpm},
    {5, 1, &Live::tpsVolts, perVolt8},
    {6, 1, &Live::mapSensorVolts, perVolt8},
    {7, 1, &Live::coolantC, perCelsius, celsiusOffset},
    {8, 1, &Live::airC, perCelsius, celsiusOffset},
    {9, 1, &Live::knockPercent, perPercent},
    {10, 1, &Live::primaryAdvance, perDegree},
    {11, 1, &Live::secondaryAdvance, perDegree},
    {12, 1, &Live::knockRetard, perRetardDegree},
    {13, 2, &Live::gammaPercent},
    {15, 1, &Live::actualAfr, perRatio, ratioOffset, Law::FuelRatio},
    {16, 1, &Live::desiredAfr, perRatio, ratioOffset, Law::FuelRatio},
    {17, 1, &Live::egoCorrectionPercent, 1, oxygenAroundZero},
    {18, 1, &Live::egoVolts, perVolt8},
    {19, 2, &Live::primaryPulseMs, 1000},
    {21, 2, &Live::secondaryPulseMs, 1000},
    {23, 1, &Live::idlePositionPercent, 2.54, 1},
    {24, 1, &Live::batteryVolts, perBatteryVoltA},
};

constexpr UnitProfile profileA{
    .model = "A",
    .linkStem = "orb-a",
    .defaultSerial = 200001,
    .defaultFirmware = "ZQA-405099",
    .firmwareReplyLength = 39,
    .configReplyLength = 39,
    .codesReplyLength = 16,
    .subtypeByte = 37,
    // The narrow frame has neither head nor checksum: its last byte is the direction of the idle motor.
    .narrow = {.length = 35, .headed = false, .fields = narrowFieldsA, .gpio = narrowGpioA},
    .wide = {.length = 65, .headed = true, .fields = wideFieldsA, .gpio = wideGpioA},
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = inputsA},
    .logRecord = {.length = 33, .headed = true, .fields = logFieldsA, .gpio = {}},
    .wideFromRelease = 5,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 5,
    .nameOffset = 560,
};

constexpr const UnitProfile* profiles[] = {&profileA};

}  // namespace

const UnitProfile* findProfile(std::string_view model) {
    for (const UnitProfile* profile : profiles) {
        if (upper(profile->model) == upper(model)) return profile;
    }
    return nullptr;
}

}  // namespace zentaq::sim
