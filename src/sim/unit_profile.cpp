#include "sim/unit_profile.h"

#include <array>
#include <cctype>

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
constexpr double perBatteryVolt = 1 / 0.078431;  // all kinds but the ORB A
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

/// Pins 0 to count - 1, one byte each.
template <int count>
constexpr std::array<FrameGpio, count> pinsFrom(int firstByte) {
    std::array<FrameGpio, count> pins{};
    for (int pin = 0; pin < count; ++pin) pins[static_cast<std::size_t>(pin)] = {firstByte + pin, pin};
    return pins;
}

constexpr int firstWidePin = 56;
constexpr int firstListedPin = 3;

constexpr auto widePinsA = pinsFrom<8>(firstWidePin);
constexpr auto widePinsL = pinsFrom<9>(firstWidePin);
constexpr auto widePinsC = pinsFrom<13>(firstWidePin);
constexpr auto widePinsD = pinsFrom<5>(firstWidePin);  // two pins less than the unit has

constexpr auto listedPinsA = pinsFrom<9>(firstListedPin);
constexpr auto listedPinsL = pinsFrom<9>(firstListedPin);
constexpr auto listedPinsC = pinsFrom<13>(firstListedPin);
constexpr auto listedPinsD = pinsFrom<7>(firstListedPin);
constexpr auto listedPinsPzk2 = pinsFrom<4>(firstListedPin);

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

/// The fields of the ORB A on a unit whose battery input has the other divider.
template <std::size_t count>
constexpr std::array<FrameField, count> withOtherBattery(const FrameField (&fields)[count]) {
    std::array<FrameField, count> result{};
    for (std::size_t i = 0; i < count; ++i) {
        result[i] = fields[i];
        if (fields[i].value == &Live::batteryVolts) result[i].scale = perBatteryVolt;
    }
    return result;
}

constexpr auto wideFields = withOtherBattery(wideFieldsA);
constexpr auto logFields = withOtherBattery(logFieldsA);

// Fine steps of pulse width and whole percents of gamma: the coarse ones are the ORB A's own.
constexpr FrameField narrowFields[] = {
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
    {15, 1, &Live::desiredAfr, perRatio, ratioOffset, Law::FuelRatio},
    {16, 1, &Live::actualAfr, perRatio, ratioOffset, Law::FuelRatio},
    {17, 1, &Live::egoCorrectionPercent, 1, oxygenAroundZero},
    {18, 1, &Live::egoVolts, perVolt8},
    {19, 2, &Live::primaryPulseMs, 1000},
    {21, 2, &Live::secondaryPulseMs, 1000},
    {23, 1, &Live::idlePositionPercent, 2.54, 1},
    {24, 1, &Live::idleDirection},
    {25, 1, &Live::batteryVolts, perBatteryVolt},
    {26, 1, &Live::checkEngine},
};

// kept: the throttle stands where the other kinds have the air temperature.
constexpr FrameField narrowFieldsPzk2[] = {
    {3, 2, &Live::rpm},
    {6, 1, &Live::mapSensorVolts, perVolt8},
    {8, 1, &Live::tpsVolts, perVolt8},
    {9, 1, &Live::knockPercent, perPercent},
    {10, 1, &Live::primaryAdvance, perDegree},
    {11, 1, &Live::secondaryAdvance, perDegree},
    {12, 1, &Live::knockRetard, perRetardDegree},
    {25, 1, &Live::batteryVolts, perBatteryVolt},
    {26, 1, &Live::checkEngine},
};

// The places of the common record; what an ignition-only unit has no sensor for stays 0.
constexpr FrameField logFieldsPzk2[] = {
    {3, 2, &Live::rpm},
    {5, 1, &Live::tpsVolts, perVolt8},
    {6, 1, &Live::mapSensorVolts, perVolt8},
    {9, 1, &Live::knockPercent, perPercent},
    {10, 1, &Live::primaryAdvance, perDegree},
    {11, 1, &Live::secondaryAdvance, perDegree},
    {12, 1, &Live::knockRetard, perRetardDegree},
    {24, 1, &Live::batteryVolts, perBatteryVolt},
};

constexpr SerialNumbers serialsA[] = {{10, 9999}, {200000, 209999}};
constexpr SerialNumbers serialsL[] = {{300000, 309999}};
constexpr SerialNumbers serialsC[] = {{350000, 359999}};
constexpr SerialNumbers serialsD[] = {{700000, 709999}};
constexpr SerialNumbers serialsD6[] = {{750000, 759999}};
constexpr SerialNumbers serialsPzk2[] = {{500000, 509999}};

constexpr int usualLogRecords = 300;

constexpr UnitProfile profileA{
    .model = "A",
    .fullName = "ORB A",
    .linkStem = "orb-a",
    .calibrationName = "SIMULATED ORB",
    .serialNumbers = serialsA,
    .defaultSerial = 200001,
    .knowsOldSerialReply = true,
    .firmwarePrefix = "ZQA",
    .defaultFirmware = "ZQA-405099",
    .firmwareReplyLength = 39,
    .subtypeByte = 37,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = false,
    .codesReplyLength = 16,
    // The narrow frame has neither head nor checksum: its last byte is the direction of the idle motor.
    .narrow = {.length = 35, .headed = false, .fields = narrowFieldsA, .gpio = narrowGpioA},
    .wide = {.length = 65, .headed = true, .fields = wideFieldsA, .gpio = widePinsA},
    .wideFromRelease = 5,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsA},
    .logRecord = {.length = 33, .headed = true, .fields = logFieldsA, .gpio = {}},
    .logRecords = usualLogRecords,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 5,
    .nameOffset = 560,
    .linesEndInLineFeed = false,
};

// The subtypes of the ORB A tell themselves apart in the firmware reply only.
struct Subtype {
    std::string_view model;
    std::string_view fullName;
    std::string_view linkStem;
    std::uint32_t defaultSerial;
    std::uint8_t subtype;
};

constexpr UnitProfile subtypeOfA(const Subtype& type) {
    UnitProfile profile = profileA;
    profile.model = type.model;
    profile.fullName = type.fullName;
    profile.linkStem = type.linkStem;
    profile.defaultSerial = type.defaultSerial;
    profile.subtype = type.subtype;
    return profile;
}

constexpr UnitProfile profileA612 = subtypeOfA({"A 6/12", "ORB A 6/12", "orb-a612", 200002, 1});
constexpr UnitProfile profileAr = subtypeOfA({"A r", "ORB A r", "orb-ar", 200003, 2});

constexpr UnitProfile profileL{
    .model = "L",
    .fullName = "ORB L",
    .linkStem = "orb-l",
    .calibrationName = "SIMULATED ORB",
    .serialNumbers = serialsL,
    .defaultSerial = 300001,
    .knowsOldSerialReply = false,
    .firmwarePrefix = "ZQL",
    .defaultFirmware = "ZQL-407099",
    .firmwareReplyLength = 38,
    .subtypeByte = 0,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = false,
    .codesReplyLength = 16,
    .narrow = {.length = 28, .headed = true, .fields = narrowFields, .gpio = {}},
    .wide = {.length = 66, .headed = true, .fields = wideFields, .gpio = widePinsL},
    .wideFromRelease = 7,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsL},
    .logRecord = {.length = 36, .headed = true, .fields = logFields, .gpio = {}},
    .logRecords = usualLogRecords,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 7,
    .nameOffset = 560,
    .linesEndInLineFeed = true,
};

constexpr UnitProfile profileC{
    .model = "C",
    .fullName = "ORB C",
    .linkStem = "orb-c",
    .calibrationName = "SIMULATED ORB",
    .serialNumbers = serialsC,
    .defaultSerial = 350001,
    .knowsOldSerialReply = false,
    .firmwarePrefix = "ZQC",
    .defaultFirmware = "ZQC-403099",
    .firmwareReplyLength = 38,
    .subtypeByte = 0,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = true,
    .codesReplyLength = 16,
    .narrow = {.length = 28, .headed = true, .fields = narrowFields, .gpio = {}},
    .wide = {.length = 70, .headed = true, .fields = wideFields, .gpio = widePinsC},
    .wideFromRelease = 3,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsC},
    .logRecord = {.length = 40, .headed = true, .fields = logFields, .gpio = {}},
    .logRecords = usualLogRecords,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 5,
    .nameOffset = 560,
    .linesEndInLineFeed = true,
};

constexpr UnitProfile profileD{
    .model = "D",
    .fullName = "ORB D",
    .linkStem = "orb-d",
    .calibrationName = "SIMULATED ORB",
    .serialNumbers = serialsD,
    .defaultSerial = 700001,
    .knowsOldSerialReply = false,
    .firmwarePrefix = "ZQD",
    .defaultFirmware = "ZQD-405099",
    .firmwareReplyLength = 38,
    .subtypeByte = 0,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = true,
    .codesReplyLength = 16,
    .narrow = {.length = 28, .headed = true, .fields = narrowFields, .gpio = {}},
    .wide = {.length = 62, .headed = true, .fields = wideFields, .gpio = widePinsD},
    .wideFromRelease = 5,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsD},
    .logRecord = {.length = 34, .headed = true, .fields = logFields, .gpio = {}},
    .logRecords = usualLogRecords,
    .baseAddress = 0x1100,
    .memorySize = 147 * 16,
    .memorySizeOlder = 137 * 16,
    .fullMemoryFromRelease = 5,
    .nameOffset = 560,
    .linesEndInLineFeed = true,
};

// The same unit for six cylinders, told apart by its serial numbers only.
constexpr UnitProfile sixCylinderD() {
    UnitProfile profile = profileD;
    profile.model = "D6";
    profile.fullName = "ORB D6";
    profile.linkStem = "orb-d6";
    profile.serialNumbers = serialsD6;
    profile.defaultSerial = 750001;
    return profile;
}

constexpr UnitProfile profileD6 = sixCylinderD();

constexpr UnitProfile profilePzk2{
    .model = "PZK-2",
    .fullName = "PZK-2",
    .linkStem = "pzk-2",
    .calibrationName = "SIMULATED PZK-2",
    .serialNumbers = serialsPzk2,
    .defaultSerial = 500001,
    .knowsOldSerialReply = false,
    .firmwarePrefix = "ZPK",
    .defaultFirmware = "ZPK-405099",
    .firmwareReplyLength = 38,
    .subtypeByte = 0,
    .subtype = 0,
    .configReplyLength = 39,
    .hasPic18 = false,
    .codesReplyLength = 16,
    .narrow = {.length = 28, .headed = true, .fields = narrowFieldsPzk2, .gpio = {}},
    .wide = {},
    .wideFromRelease = 0,
    .inputs = {.length = 21, .headed = true, .fields = {}, .gpio = listedPinsPzk2},
    .logRecord = {.length = 34, .headed = true, .fields = logFieldsPzk2, .gpio = {}},
    .logRecords = 0,  // it answers D, but has no room for records of its own
    .baseAddress = 0x1100,
    .memorySize = 64 * 16,
    .memorySizeOlder = 64 * 16,
    .fullMemoryFromRelease = 0,
    .nameOffset = 166,
    .linesEndInLineFeed = true,
};

constexpr const UnitProfile* profiles[] = {&profileA, &profileA612, &profileAr, &profileL,
                                           &profileC, &profileD,    &profileD6, &profilePzk2};

/// Letters and digits alone, upper case, without the family name in front.
std::string plainName(std::string_view model) {
    std::string plain;
    for (const char c : upper(model)) {
        if (std::isalnum(static_cast<unsigned char>(c)) != 0) plain += c;
    }
    constexpr std::string_view family = "ORB";
    return plain.starts_with(family) ? plain.substr(family.size()) : plain;
}

}  // namespace

std::span<const UnitProfile* const> allProfiles() {
    return profiles;
}

const UnitProfile* findProfile(std::string_view model) {
    const std::string wanted = plainName(model);
    for (const UnitProfile* profile : profiles) {
        if (plainName(profile->model) == wanted) return profile;
    }
    return nullptr;
}

std::string modelList() {
    std::string list;
    for (const UnitProfile* profile : profiles) {
        if (!list.empty()) list += ", ";
        list += profile->model;
    }
    return list;
}

}  // namespace zentaq::sim
