#include "unit/parameter_rules.h"
#include "unit/parameter_tables.h"

namespace zentaq {

namespace {

using namespace rules;

constexpr FixedRange between(float minimum, float maximum) {
    return {minimum, maximum};
}

// ---- Encodings, named by what happens to the cell.
constexpr Encoding plain() {
    return {.bytes = Bytes::One};
}
constexpr Encoding scaled(double factor) {
    return {.bytes = Bytes::One, .factor = factor};
}
constexpr Encoding over(double divisor) {
    return {.bytes = Bytes::One, .divisor = divisor};
}
constexpr Encoding shifted(double shift, double factor, int indexOffset = 0) {
    return {.bytes = Bytes::One, .shift = shift, .factor = factor, .indexOffset = indexOffset};
}
constexpr Encoding shiftedOver(double shift, double divisor) {
    return {.bytes = Bytes::One, .shift = shift, .divisor = divisor};
}
/// `whole - v`
constexpr Encoding mirrored(double whole) {
    return {.bytes = Bytes::One, .shift = -whole, .factor = -1};
}
/// -40 to 150 degrees Celsius over the byte.
constexpr Encoding temperature() {
    return shifted(40, 255.0 / 190.0);
}
/// Not rounded on its way into the image.
constexpr Encoding asItStands(double shift, double factor, int indexOffset) {
    return {
        .bytes = Bytes::One, .shift = shift, .factor = factor, .whole = false, .indexOffset = indexOffset};
}
constexpr Encoding word(double factor = 1) {
    return {.bytes = Bytes::Word, .factor = factor};
}
constexpr Encoding by(Encode encode) {
    return {.bytes = Bytes::One, .special = encode};
}
constexpr Encoding byEntry(Encode encode) {
    return {.bytes = Bytes::One, .special = encode, .ofEntry = true};
}
constexpr Encoding wordBy(Encode encode) {
    return {.bytes = Bytes::Word, .special = encode};
}

constexpr int unpolled = Parameter::ignoresPolling;

/// A bit of a control byte, both counted from 0.
template <int bit>
constexpr Parameter option(std::string_view name, int byte, std::string_view meaning,
                           WriteMember write = writeOption<bit>) {
    return {.name = name,
            .index = byte,
            .polling = unpolled,
            .controlBit = true,
            .read = readOption<bit>,
            .write = write,
            .meaning = meaning};
}

// clang-format off
constexpr Parameter table[] = {
    // ---- Engine layout
    {.name = "P1EGTP", .index = 3, .image = plain(), .sending = Sending::Never,
     .meaning = "Type code of trigger pattern 1"},
    {.name = "P2EGTP", .index = 4, .image = plain(), .sending = Sending::Never,
     .meaning = "Engine type code and tach code"},
    {.name = "TACHTYP", .index = 4, .range = ListedValues{{0, 1, 2, 3, 4, 6}},
     .rangeText = "0,1,2,3,4 or 6 Pulses per revolution", .sending = Sending::Own, .onTheFly = plain(),
     .read = readTach, .write = writeTach, .meaning = "Tach pulses per revolution"},
    {.name = "TOFFSET1", .index = 5, .range = toothOffset1, .image = by(toothByte), .unit = "teeth",
     .meaning = "Tooth offset of the first trigger"},
    {.name = "TOFFSET2", .index = 6, .range = toothOffset2, .image = by(toothByte), .unit = "teeth",
     .meaning = "Tooth offset of the second trigger"},
    {.name = "TOOTHMIN", .read = readToothMin, .write = writeToothMin, .unit = "teeth",
     .meaning = "Lowest tooth offset of the engine"},
    {.name = "TOOTHMAX", .read = readToothMax, .write = writeToothMax, .unit = "teeth",
     .meaning = "Highest tooth offset of the engine"},
    {.name = "INJ_Mode", .index = 7, .image = plain(), .sending = Sending::Never,
     .meaning = "Injection mode"},
    {.name = "CYL_Number", .index = 8, .image = plain(), .sending = Sending::Never, .read = readCylinders,
     .write = writeCylinders, .meaning = "Number of cylinders"},
    {.name = "INJ_Events", .index = 8, .read = readEvents, .write = writeEvents,
     .meaning = "Injection events per cycle"},
    {.name = "INJTBL", .index = 9, .count = 8, .image = plain(), .sending = Sending::Never,
     .meaning = "Injector sequence"},
    {.name = "INJ_Reset", .index = 17, .range = between(0, 15), .rangeText = "(0 to 15)", .image = plain(),
     .sending = Sending::Never, .meaning = "Injector sequence reset"},
    {.name = "MOFFSET", .index = 18, .polling = 6, .range = between(-30, 30),
     .rangeText = "(-30 to 30 degree offset)", .unit = "Degrees",
     .meaning = "Mechanical offset of the trigger"},
    {.name = "COFFSET", .index = 31, .meaning = "Crank offset"},
    {.name = "SOFFSET", .index = 33, .meaning = "Sensor offset"},
    // ---- Knock
    {.name = "KNK_MIN", .index = 34, .range = between(2, 100), .rangeText = "(2 to 100 units)",
     .image = scaled(2.55), .unit = "units", .meaning = "Knock threshold"},
    {.name = "KNK_ATK", .index = 35, .range = between(0.25F, 10), .rangeText = "(0.25 to 10 deg/EF)",
     .image = scaled(8.5), .unit = "deg/EF", .meaning = "Knock retard attack"},
    {.name = "KNK_DCY", .index = 36, .range = between(0.25F, 5), .rangeText = "(0.25 to 5 deg/EF)",
     .image = scaled(8.5), .unit = "deg/EF", .meaning = "Knock retard decay"},
    {.name = "KNK_MAX", .index = 37, .range = between(1, 30), .rangeText = "(1 to 30 deg)",
     .image = scaled(8.5), .unit = "deg", .meaning = "Highest knock retard"},
    {.name = "KNK_RPM", .index = 38, .range = between(0, 8000), .rangeText = "(0 to 8000 RPM)",
     .image = over(51), .unit = "RPM", .meaning = "Knock ignored above this engine speed"},
    // ---- Sensor limits and defaults
    {.name = "MAP_BAR", .index = 39, .range = between(1, 10), .rangeText = "(1.0 - 10.0 BAR)",
     .image = plain(), .sending = Sending::Never, .read = readMapBar, .write = writeMapBar, .unit = "BAR",
     .meaning = "MAP Sensor Range"},
    {.name = "MAP_FailHigh", .index = 40, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "MAP sensor counts as failed above"},
    {.name = "MAP_FailLow", .index = 41, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "MAP sensor counts as failed below"},
    {.name = "MAP_Default", .index = 42, .range = pressure, .image = by(pressureByte), .read = readPressure,
     .write = writePressure, .unit = "MAP", .meaning = "MAP Failure Default Value"},
    {.name = "MAP_FIL", .index = 43, .range = between(1, 64), .rangeText = "(1 to 64)", .image = plain(),
     .meaning = "MAP sensor filter"},
    {.name = "TPS_FCV", .index = 44, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "TPS Fully Closed Throttle Voltage"},
    {.name = "TPS_WOV", .index = 45, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "TPS Wide Open Throttle Voltage"},
    {.name = "TPS_FailHigh", .index = 46, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "TPS sensor counts as failed above"},
    {.name = "TPS_FailLow", .index = 47, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "TPS sensor counts as failed below"},
    {.name = "TPS_Default", .index = 48, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "TPS Failure Default Value"},
    {.name = "CLT_FailHigh", .index = 49, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "CLT sensor counts as failed above"},
    {.name = "CLT_FailLow", .index = 50, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "CLT sensor counts as failed below"},
    {.name = "CLT_Default", .index = 51, .range = between(-40, 150),
     .rangeText = "(-40 to 150 Degrees Celsius)", .image = temperature(), .unit = "Celsius",
     .meaning = "CLT Failure Default Value"},
    {.name = "EGO_FailTime", .index = 52, .range = between(1, 255), .rangeText = "(1 to 255 Seconds)",
     .image = plain(), .unit = "Seconds", .meaning = "Time until the EGO sensor counts as failed"},
    {.name = "EGO_SUD", .index = 53, .range = between(0, 20), .rangeText = "(0 to 20 Seconds)",
     .image = plain(), .unit = "Seconds", .meaning = "EGO sensor start-up delay"},
    {.name = "MAT_FailHigh", .index = 54, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "MAT sensor counts as failed above"},
    {.name = "MAT_FailLow", .index = 55, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "MAT sensor counts as failed below"},
    {.name = "MAT_Default", .index = 56, .range = between(-30, 80),
     .rangeText = "(-30 to 80 Degrees Celsius)", .image = temperature(), .unit = "Celsius",
     .meaning = "MAT Failure Default Value"},
    {.name = "KNK_Timer", .index = 57, .range = between(1, 255), .rangeText = "(1 to 255 Seconds)",
     .image = plain(), .unit = "Seconds", .meaning = "Time until the knock sensor counts as failed"},
    // ---- Rev limit and cut
    {.name = "REV_Limiter", .index = 58, .range = between(1000, 20000), .rangeText = "(1000 to 20000 RPM)",
     .image = word(), .unit = "RPM", .meaning = "Maximum Engine Rev Limit"},
    {.name = "REV_AuxLimiter", .index = 60, .range = between(1000, 20000), .rangeText = "(1000 to 20000 RPM)",
     .image = word(), .unit = "RPM", .meaning = "Auxiliary rev limit"},
    {.name = "OVR1THR", .index = 62, .range = between(0, 250), .rangeText = "(0 to 250 RPM)",
     .image = plain(), .unit = "RPM", .meaning = "Overrun of the rev limit that starts stage 1"},
    {.name = "OVR2THR", .index = 63, .range = between(0, 250), .rangeText = "(0 to 250 RPM)",
     .image = plain(), .unit = "RPM", .meaning = "Overrun of the rev limit that starts stage 2"},
    {.name = "REV_Hysteresis", .index = 64, .range = between(0, 250), .rangeText = "(0 to 250 RPM)",
     .image = plain(), .unit = "RPM", .meaning = "Rev limit hysteresis"},
    // kept: the running unit takes another scale than its stored image
    {.name = "CYL_OvrThr", .index = 65, .range = between(0, 1000), .rangeText = "(0 to 1000 Milliseconds)",
     .image = over(4), .sending = Sending::Own, .onTheFly = scaled(4), .unit = "Milliseconds",
     .meaning = "Time between cylinder drops"},
    {.name = "CYL_CutDly", .index = 66, .range = between(0, 250), .rangeText = "(0 to 250 RPM)",
     .image = plain(), .unit = "RPM", .meaning = "Delay between cylinder cuts"},
    {.name = "Initial_Advance", .index = 67, .range = initialAdvance, .image = scaled(4.25),
     .read = readPlusMoffset, .write = writeMinusMoffset, .unit = "Degrees", .meaning = "Initial Advance"},
    // ---- Ignition curves
    {.name = "SPLITBL", .index = 68, .count = 16, .range = between(0, 30), .rangeText = "(0 to 30 Degrees)",
     .image = scaled(4.25), .unit = "Degrees", .meaning = "Dual Plug Timing Split"},
    {.name = "CLTTBL", .index = 84, .count = 20, .range = between(0, 60), .rangeText = "(0 to 60 Degrees)",
     .image = scaled(4.25), .unit = "Degrees", .meaning = "Coolant Advance"},
    {.name = "MATADV", .index = 104, .count = 20, .range = between(-30, 30),
     .rangeText = "(-30 to 30 Degrees)", .image = shifted(30, 4.25), .unit = "Degrees",
     .meaning = "MAT Density Advance/Retard"},
    // ---- Pressure sensor
    {.name = "MAP_DISP_MULT", .index = 124, .range = between(1, 10), .rangeText = "(1 - 10 BAR)",
     .image = scaled(25), .sending = Sending::Never, .read = readMapDisplay, .unit = "BAR",
     .meaning = "Multiplier of the displayed pressure"},
    {.name = "REV_Limit_Approach", .index = 125, .range = between(0, 1000), .rangeText = "(0 - 1000 RPM)",
     .image = over(4), .unit = "RPM", .meaning = "Rev Limit Approach Retard"},
    {.name = "MAP_Scaler", .index = 126, .polling = unpolled, .read = readMapScaler, .unit = "Volts",
     .meaning = "MAP sensor volts per unit of pressure"},
    {.name = "MAP_Offset", .index = 127, .polling = unpolled, .read = readMapOffset, .unit = "Volts",
     .meaning = "MAP sensor volts at zero pressure"},
    {.name = "MAP_ID", .index = 128, .polling = unpolled,
     .meaning = "Key of the MAP sensor in the sensor list"},
    {.name = "MAPMax", .readOnly = true, .read = readMapMax, .unit = "MAP",
     .meaning = "Highest pressure of the MAP sensor"},
    {.name = "MAPMin", .readOnly = true, .read = readMapMin, .unit = "MAP",
     .meaning = "Lowest pressure of the MAP sensor"},
    {.name = "MAPRange", .readOnly = true, .read = readMapRange, .unit = "MAP",
     .meaning = "Span of the MAP sensor"},
    {.name = "MAPPrecision", .readOnly = true, .read = readMapPrecision,
     .meaning = "Decimals that suit the MAP sensor's span"},
    {.name = "BARO_ADV", .index = 130, .count = 8, .polling = unpolled, .range = between(-50, 50),
     .rangeText = "(-50 to 50%)", .image = asItStands(0, 1, -4), .unit = "%",
     .meaning = "Baro Advance/Retard"},
    {.name = "BARO_TRIM", .index = 138, .count = 8, .polling = unpolled, .range = between(-50, 50),
     .rangeText = "(-50 to 50%)", .image = asItStands(50, 1, 2), .unit = "%", .meaning = "Barometric Trim"},
    // ---- Injection
    {.name = "scale1", .index = 148, .range = between(3, 30), .rangeText = "(3 to 30 milliseconds (ms))",
     .image = word(1000), .unit = "ms", .meaning = "Maximum Controllable PulseWidth"},
    {.name = "SCALE2", .index = 149, .range = between(3, 30), .rangeText = "(3 to 30 milliseconds (ms))",
     .unit = "ms", .meaning = "Maximum Controllable PulseWidth of the second injectors"},
    {.name = "INJ_On", .index = 150, .range = between(-15, 15), .rangeText = "(-15 to 15 milliseconds (ms))",
     .image = by(eighthsByte), .write = writeEighths, .unit = "ms", .meaning = "Injector Offset Time (IOT)"},
    {.name = "MT", .index = 151, .range = between(0, 5), .rangeText = "(0 to 5 milliseconds (ms))",
     .image = by(fiftiethsByte), .unit = "ms", .meaning = "Minimum Injector Turn-on Time (MIT)"},
    {.name = "SE0", .index = 152, .range = between(0, 250), .rangeText = "(0 to 250%)", .image = scaled(100),
     .read = readPercent, .write = writePercent, .unit = "%", .meaning = "Start enrichment, cold"},
    {.name = "SE1", .index = 153, .range = between(0, 150), .rangeText = "(0 to 150%)", .image = scaled(100),
     .read = readPercent, .write = writePercent, .unit = "%", .meaning = "Start enrichment, hot"},
    {.name = "SEPW", .index = 154, .range = between(0, 15), .rangeText = "(0 to 15 milliseconds (ms))",
     .image = scaled(8), .unit = "ms", .meaning = "Start prime pulse"},
    {.name = "SECLT", .index = 155, .range = between(-30, 80), .rangeText = "(-30 to 80 Degrees Celsius)",
     .image = temperature(), .unit = "Celsius", .meaning = "Start enrichment temperature"},
    {.name = "ASE0", .index = 156, .range = between(0, 250), .rangeText = "(0 to 250%)", .image = scaled(100),
     .read = readPercent, .write = writePercent, .unit = "%", .meaning = "After-start enrichment, cold"},
    {.name = "ASE1", .index = 157, .range = between(0, 150), .rangeText = "(0 to 150%)", .image = scaled(100),
     .read = readPercent, .write = writePercent, .unit = "%", .meaning = "After-start enrichment, hot"},
    {.name = "CHKTBL", .index = 158, .count = 20, .range = between(0, 250), .rangeText = "(0 to 250%)",
     .image = plain(), .unit = "%", .meaning = "Warm-Up Enrichments"},
    {.name = "MATENH", .index = 178, .count = 20, .range = between(-50, 50), .rangeText = "(-50 to 50%)",
     .image = shifted(50, 1), .unit = "%", .meaning = "MAT Fuel Enrichment"},
    // ---- Acceleration and deceleration
    {.name = "ACE0", .index = 198, .range = between(0.85F, 51.75F), .rangeText = "(0.85 to 51.75 V/s)",
     .image = shifted(-0.75, 5), .unit = "V/s", .meaning = "Acceleration threshold of the throttle"},
    {.name = "ACE1", .index = 199, .range = accelerationThreshold, .image = by(accelerationByte),
     .read = readAcceleration, .write = writeAcceleration, .unit = "MAP",
     .meaning = "Acceleration threshold of the pressure"},
    {.name = "ACE2", .index = 200, .range = between(0, 250), .rangeText = "(0 to 250%)", .image = plain(),
     .unit = "%", .meaning = "Acceleration enrichment, cold"},
    {.name = "ACE3", .index = 201, .range = between(0, 150), .rangeText = "(0 to 150%)", .image = plain(),
     .unit = "%", .meaning = "Acceleration enrichment, hot"},
    {.name = "ACE4", .index = 202, .range = between(0.25F, 2), .rangeText = "(0.25 to 2 Seconds)",
     .image = scaled(16), .unit = "Seconds", .meaning = "Acceleration enrichment time"},
    {.name = "ACE5", .index = 203, .range = between(0, 250), .rangeText = "(0 to 250%)", .image = plain(),
     .unit = "%", .meaning = "Acceleration enrichment by throttle, cold"},
    {.name = "ACE6", .index = 204, .range = between(0, 250), .rangeText = "(0 to 250%)", .image = plain(),
     .unit = "%", .meaning = "Acceleration enrichment by throttle, warm"},
    {.name = "ACE7", .index = 205, .range = between(0, 150), .rangeText = "(0 to 150%)", .image = plain(),
     .unit = "%", .meaning = "Acceleration enrichment by throttle, hot"},
    {.name = "ACCL_PW", .index = 206, .range = between(0, 15), .rangeText = "(0 to 15 milliseconds (ms))",
     .image = scaled(8), .unit = "ms", .meaning = "Acceleration pulse"},
    {.name = "ACCL_TM", .index = 207, .range = between(0, 15), .rangeText = "(0 to 15 Seconds)",
     .image = scaled(16), .unit = "Seconds", .meaning = "Acceleration pulse time"},
    {.name = "DCCL_0", .index = 208, .range = between(0, 3900), .rangeText = "(0 to 3900 RPM)",
     .image = over(16), .unit = "RPM", .meaning = "Deceleration cut starts above"},
    {.name = "DCCL_1", .index = 209, .range = between(0, 3900), .rangeText = "(0 to 3900 RPM)",
     .image = over(16), .unit = "RPM", .meaning = "Deceleration cut ends below"},
    {.name = "DCCL_3", .index = 210, .range = pressureWhileActive, .image = by(pressureByteOrZero),
     .sending = Sending::Own, .onTheFly = by(inactivePressureByte), .read = readPressure,
     .write = writePressureWhileActive, .unit = "MAP", .meaning = "Deceleration cut below this pressure"},
    {.name = "DCCL_4", .index = 211, .range = between(0, 150), .rangeText = "(0 to 150%)", .image = plain(),
     .unit = "%", .meaning = "Deceleration enleanment"},
    // ---- Blend and battery
    {.name = "BLDTBL", .index = 212, .count = 8, .stride = 2, .range = between(0, 12000),
     .rangeText = "(0 to 12000 RPM)", .image = word(), .unit = "RPM",
     .meaning = "Engine speeds of the blend curve"},
    {.name = "LOWBLD", .index = 228, .count = 8, .range = between(0, 100), .rangeText = "(0 to 100%)",
     .image = plain(), .unit = "%", .meaning = "Blend curve"},
    {.name = "TBSOFF", .index = 236, .range = between(0, 1.5F), .rangeText = "(0 to 1.5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "Throttle offset of the blend"},
    {.name = "BATCom", .index = 237, .count = 20, .range = between(-1000, 1000),
     .rangeText = "(-1000 to 1000 microseconds)", .image = shiftedOver(1000, 8), .unit = "microseconds",
     .meaning = "Battery Voltage Compensation"},
    {.name = "MAP_Max", .index = 257, .range = pressureOrZero, .image = by(pressureByteOrZero),
     .read = readPressureOrZero, .write = writePressureOrZero, .unit = "MAP",
     .meaning = "OverBoost Fuel Cut-Off above, 0 for none"},
    {.name = "BSTCTTM", .index = 258, .range = between(0.25F, 10), .rangeText = "(0.25 to 10 Seconds)",
     .image = scaled(16), .unit = "Seconds", .meaning = "OverBoost Fuel Cut-Off time"},
    {.name = "FPT", .index = 259, .range = between(1, 15), .rangeText = "(1 to 15 Seconds)",
     .image = scaled(16), .unit = "Seconds", .meaning = "Fuel pump prime time"},
    {.name = "MAFMax", .index = 260, .polling = 259, .range = between(2000, 20000),
     .rangeText = "(2000 to 20000 RPM)", .image = word(), .unit = "RPM",
     .meaning = "Engine speed of full air mass"},
    {.name = "INJFIX_RPM", .index = 266, .polling = unpolled, .range = between(0, 800),
     .rangeText = "(0 to 800 RPM)", .image = by(quartersOfWhole), .unit = "RPM",
     .meaning = "Fixed pulse below this engine speed"},
    {.name = "INJFIX_PW", .index = 267, .polling = unpolled, .range = between(0, 15),
     .rangeText = "(0 to 15 ms)", .image = asItStands(0, 10, 0), .unit = "ms", .meaning = "Fixed pulse"},
    // ---- Oxygen sensor
    {.name = "CONDIV", .index = 275, .range = ListedValues{{2, 4, 8, 16, 32, 64}},
     .rangeText = "2,4,8,16,32 or 64", .image = plain(), .meaning = "Divider of the closed loop correction"},
    {.name = "AVRDIV", .index = 276, .range = ListedValues{{2, 4, 8, 16, 32, 64}},
     .rangeText = "2,4,8,16,32 or 64", .image = plain(), .meaning = "Divider of the closed loop average"},
    // kept: the running unit counts these from the other end
    {.name = "Register_Number", .index = 277, .range = between(2, 12), .rangeText = "(2 to 12)",
     .image = plain(), .sending = Sending::Own, .onTheFly = mirrored(13),
     .meaning = "Number of averaging registers"},
    {.name = "EGO_LMT", .index = 278, .range = between(0, 50), .rangeText = "(0 to 50%)", .image = plain(),
     .unit = "%", .meaning = "Largest closed loop correction"},
    {.name = "EGO_RPM", .index = 279, .range = between(1000, 11000), .rangeText = "(1000 to 11000 RPM)",
     .image = over(64), .unit = "RPM", .meaning = "Closed loop ends above this engine speed"},
    {.name = "EGO_MAP", .index = 280, .range = pressure, .image = by(pressureByte), .read = readPressure,
     .write = writePressure, .unit = "MAP", .meaning = "Closed loop ends above this pressure"},
    {.name = "EGO_TMP", .index = 281, .range = between(0, 80), .rangeText = "(0 to 80 Degrees Celsius)",
     .image = temperature(), .unit = "Celsius",
     .meaning = "Closed loop starts above this coolant temperature"},
    {.name = "EGO_RPML", .index = 282, .range = between(0, 11000), .rangeText = "(0 to 11000 RPM)",
     .image = over(64), .unit = "RPM", .meaning = "Closed loop starts above this engine speed"},
    // kept: a record takes the fuel's own ratio, the image petrol's
    {.name = "Y", .index = 283, .count = 10, .range = lambdaValue, .image = by(lambdaByte),
     .sending = Sending::Own, .onTheFly = byEntry(ratioByte), .unit = "AFR",
     .meaning = "Ratio of the EGO sensor curve"},
    {.name = "X", .index = 293, .count = 10, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "Voltage of the EGO sensor curve"},
    {.name = "EGO_LowVoltage", .index = 303, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "EGO sensor lean voltage"},
    {.name = "EGO_HighVoltage", .index = 304, .range = between(0, 5), .rangeText = "(0 to 5 Volts)",
     .image = scaled(51), .unit = "Volts", .meaning = "EGO sensor rich voltage"},
    // ---- Idle speed
    {.name = "NEGPGAIN", .index = 305, .range = between(1, 255), .rangeText = "(1 to 255)",
     .image = mirrored(256), .meaning = "Proportional gain downward"},
    {.name = "POSPGAIN", .index = 306, .range = between(1, 255), .rangeText = "(1 to 255)",
     .image = mirrored(256), .meaning = "Proportional gain upward"},
    {.name = "NEGDGAIN", .index = 307, .range = between(1, 255), .rangeText = "(1 to 255)",
     .image = mirrored(256), .meaning = "Differential gain downward"},
    {.name = "POSDGAIN", .index = 308, .range = between(1, 255), .rangeText = "(1 to 255)",
     .image = mirrored(256), .meaning = "Differential gain upward"},
    {.name = "Reset_Duty", .index = 309, .range = between(1, 100), .rangeText = "(1 to 100%)",
     .image = by(dutyByte), .write = writeDuty, .unit = "%", .meaning = "Duty after a reset"},
    {.name = "ISTMP", .index = 310, .count = 3, .range = idleTemperature, .image = temperature(),
     .write = writeIdleTemperature, .unit = "Celsius", .meaning = "Temperatures of the idle speeds"},
    {.name = "ISRPM", .index = 313, .count = 3, .range = between(500, 2000), .rangeText = "(500 to 2000 RPM)",
     .image = over(16), .unit = "RPM", .meaning = "Idle speeds"},
    {.name = "MinDuty", .index = 316, .range = upToMaxDuty, .image = plain(),
     .meaning = "Smallest duty count"},
    {.name = "MaxDuty", .index = 317, .range = fromMinDuty, .image = plain(),
     .meaning = "Largest duty count"},
    {.name = "IS_RTD", .index = 318, .range = between(0, 10), .rangeText = "(0 to 10 Degrees)",
     .image = scaled(4.25), .unit = "Degrees", .meaning = "Idle retard"},
    {.name = "IS_ADV", .index = 319, .range = between(0, 10), .rangeText = "(0 to 10 Degrees)",
     .image = scaled(4.25), .unit = "Degrees", .meaning = "Idle advance"},
    {.name = "IAC_RPM_HI", .index = 320, .range = between(0, 3900), .rangeText = "(0 to 3900 RPM)",
     .image = over(16), .unit = "RPM", .meaning = "Idle control ends above"},
    {.name = "IAC_RPM_LO", .index = 321, .range = between(0, 3900), .rangeText = "(0 to 3900 RPM)",
     .image = over(16), .unit = "RPM", .meaning = "Idle control starts below"},
    {.name = "IAC_Start", .index = 322, .range = between(1, 100), .rangeText = "(1 to 100%)",
     .image = by(dutyByte), .write = writeDuty, .unit = "%", .meaning = "Duty while starting"},
    // ---- Table axes and tables
    {.name = "RPMTBL", .index = 592, .count = 16, .stride = 2, .range = between(0, 20000),
     .rangeText = "(0 to 20000 RPM)", .image = word(), .unit = "RPM", .meaning = "Engine speed axis"},
    {.name = "MAPTBL", .index = 624, .count = 16, .stride = 2, .range = pressure,
     .image = wordBy(pressureWord), .read = readPressure, .write = writePressure, .unit = "MAP",
     .meaning = "Pressure axis"},
    {.name = "ADV", .index = 656, .count = 256, .range = tableAdvance, .image = scaled(4.25),
     .obeysSilent = true, .read = readPlusMoffset, .write = writeMinusMoffset, .unit = "Degrees",
     .meaning = "Ignition Advance Table"},
    {.name = "VE", .index = 912, .count = 256, .range = between(-50, 50), .rangeText = "(-50 to 50%)",
     .image = shifted(50, 1), .obeysSilent = true, .unit = "%", .meaning = "Volumetric Efficiency Table"},
    {.name = "SPW", .index = 1168, .count = 256, .range = between(0, 100), .rangeText = "(0 to 100%)",
     .image = plain(), .obeysSilent = true, .unit = "%", .meaning = "Staged Pulsewidth"},
    // "AFR" alone is the scalar. kept: a record is made of the entry, the image of the cell on the 14.7 base
    {.name = "Get_AFR", .index = 1424, .count = 256, .range = tableRatio, .image = by(ratioByte),
     .sending = Sending::Own, .onTheFly = byEntry(ratioByte), .obeysSilent = true, .read = readRatio,
     .write = writeRatio, .unit = "AFR", .meaning = "EGO Wideband / AFR Table"},
    // ---- Not in the image
    {.name = "RPM_Size", .index = 2194, .meaning = "Time for One Gama (TOG)"},
    {.name = "EGO_Type", .index = 2196, .read = readEgoType, .write = writeEgoType,
     .meaning = "Type of EGO sensor"},
    {.name = "IGN_REV", .index = 2197, .meaning = "Ignition events per revolution"},
    {.name = "INJ_Number", .index = 2198, .meaning = "Number of Injectors"},
    {.name = "CAMSTL", .index = 2199, .meaning = "Camshaft Style"},
    {.name = "MAX_Boost", .index = 2200, .read = readMaxBoost, .meaning = "Max Boost Pressure"},
    {.name = "BHP", .index = 2201, .meaning = "Estimated Brake HorsePower"},
    {.name = "Engine_Type", .index = 2202, .write = writeEngineType,
     .meaning = "Port or throttle body injection"},
    {.name = "Option_Type", .index = 2203, .meaning = "Engine Type"},
    {.name = "AMP42", .index = 2204, .write = writeAmp42, .meaning = "Injector Peak Current"},
    {.name = "PHDSEQ", .index = 2205, .write = writePhdSeq, .meaning = "Phased sequential injection"},
    {.name = "INJ_FlowRate", .index = 2206, .meaning = "Injector Size"},
    {.name = "CYLORDER", .index = 2207, .count = 13, .meaning = "Firing order"},
    {.name = "Alcohol", .index = 2220, .meaning = "Engine Alcohol Fueled"},
    {.name = "DCCL_CutActive", .index = 2221, .write = writeDecelerationCut,
     .meaning = "Deceleration Fuel Cut-Off"},
    {.name = "MAP_Active", .index = 2222, .meaning = "Deceleration cut only below a pressure"},
    {.name = "TPS_MARGIN_TOGGLE", .index = 2223, .polling = unpolled, .read = readMarginToggle,
     .meaning = "TPS margin in use"},
    {.name = "TPS_MARGIN_VALUE", .index = 2224, .polling = unpolled, .read = readMarginValue, .unit = "Volts",
     .meaning = "TPS margin"},
    {.name = "AFR", .index = 2225, .polling = unpolled, .read = readStoichiometric, .unit = "AFR",
     .meaning = "Fuel Ratio"},
    {.name = "INJTRIM", .alias = "InjTrim", .index = 2312, .count = 8, .range = between(-15, 15),
     .rangeText = "(-15 to 15 Degrees)", .sending = Sending::ByWriter, .write = writeInjectorTrim,
     .unit = "Degrees", .meaning = "Ignition trim by cylinder"},
    {.name = "FuelTrim", .index = 2320, .count = 8, .range = between(-15, 15), .rangeText = "(-15 to 15%)",
     .sending = Sending::Own, .onTheFly = shifted(50, 1, 504 - 2320), .write = writeFuelTrim, .unit = "%",
     .meaning = "Fuel trim by cylinder"},
    // ---- Option bits of the control bytes
    option<0>("opt_TDCParam1", 0, "CAN bus"),
    option<2>("opt_KnockActive", 0, "Knock Control"),
    option<4>("opt_FuelCut", 0, "Fuel cut at the rev limit"),
    option<4>("opt_NoFuelCut", 0, "Fuel cut at the rev limit, by its other name"),
    option<1>("opt_IdleSpeed", 1, "2-wire IAC"),
    option<2>("opt_TDCParam2", 1, "Second trigger option"),
    option<3>("opt_TDCParam3", 1, "Third trigger option"),
    option<4>("opt_TachInv", 1, "Tach output inverted"),
    option<5>("opt_ProgCut", 1, "Progressive fuel cut at the rev limit"),
    option<6>("opt_ZeroAdv", 1, "Zero advance at the rev limit", writeZeroAdvance),
    option<6>("opt_3Stage", 1, "Zero advance at the rev limit, by its other name", writeZeroAdvance),
    option<0>("opt_FullCut", 2, "Full coil cut at the rev limit", writeFullCut),
    option<1>("opt_IdleMotorDeactive", 2, "Idle motor not in use"),
};
// clang-format on

}  // namespace

std::span<const Parameter> orbaParameters() {
    return table;
}

}  // namespace zentaq
