#include "unit/gpio_rows.h"

#include <array>

namespace zentaq {

namespace {

using enum GpioRowForm;

constexpr std::string_view noHint;
constexpr std::string_view noWord;

constexpr GpioRow value(std::string_view label, std::string_view hint, std::string_view word, int parameter) {
    return {.label = label, .hint = hint, .word = word, .parameter = parameter};
}
constexpr GpioRow temperature(std::string_view label, int parameter) {
    return {.label = label, .parameter = parameter, .form = Temperature};
}
constexpr GpioRow pressure(std::string_view label, int parameter) {
    return {.label = label, .parameter = parameter, .form = Pressure};
}
constexpr GpioRow within(std::string_view label, std::string_view hint, std::string_view word, int parameter,
                         float minimum, float maximum, std::string_view text = {}) {
    return {.label = label,
            .hint = hint,
            .word = word,
            .parameter = parameter,
            .minimum = minimum,
            .maximum = maximum,
            .ownText = text};
}
constexpr GpioRow action(std::string_view label, GpioRowForm form) {
    return {.label = label, .form = form};
}

// ---- Outputs

constexpr GpioRow pressureAboveOn = pressure("MAP above which {} is ON", 4);
constexpr std::array airConditioner = {pressure("MAP above which {} is OFF", 6),
                                       value("RPM above which {} is OFF", noHint, "RPM", 2)};
// The hysteresis has no place in the unit's memory; it stays with the calibration.
constexpr std::array bmwAirConditioner = {pressure("MAP above which {} is OFF", 6),
                                          value("RPM above which {} is OFF", noHint, "RPM", 2),
                                          value("RPM Hysteresis ", "(0 to 250)", "Hys. RPM", 4)};
constexpr std::array fuelPump = {pressureAboveOn, value("RPM below which {} is OFF", noHint, "RPM", 0)};
constexpr std::array fan = {temperature("Temp above which {} is ON", 0),
                            temperature("Temp below which {} is OFF", 1),
                            value("Trigger on CLT or MAT", "0 = CLT, 1 = MAT", "CLT/MAT", 2)};
constexpr std::array switchAbove = {pressureAboveOn, value("RPM above which {} is ON", noHint, "RPM", 0)};
constexpr std::array shiftLight = {value("RPM above which {} is ON", noHint, "RPM", 0)};
constexpr std::array converter = {
    value("Speed Above which TCC is ON", noHint, "MPH", 0),
    value("Speed Below which TCC is OFF", noHint, "MPH", 1), pressure("MAP Above which TCC is OFF", 2),
    pressure("MAP Below which TCC is ON", 4), value("Speed Input for Speed Reference ", noHint, "Spd In", 6)};
constexpr GpioRow tableSelect = value("Table Select ", "(1 or 2)", "TBL", 0);
constexpr GpioRow editTable = action("Edit Table", EditTable);
constexpr std::array fullTableOld = {value("GPO Frequency ", "(60, 120)", "Hz", 1), tableSelect, editTable};
constexpr std::array fullTable = {value("GPO Frequency ", "(30, 60)", "Hz (Cycles per sec)", 1), tableSelect,
                                  editTable};
constexpr std::array custom = {value("RPM Above which GPO is ON", noHint, "RPM", 0),
                               value("RPM Above which GPO is OFF", noHint, "RPM", 2),
                               pressure("MAP Above which GPO is ON", 4),
                               pressure("MAP Above which GPO is OFF", 6)};
constexpr std::array idleOutput = {action("Configured with Idle Speed", Notice)};
constexpr std::string_view dutyHint = "0 - 100%";
constexpr std::string_view speedHint = "0 - 255";
constexpr std::array boostOld = {value("Speed at which boost begins to Rise", speedHint, "MPH", 0),
                                 value("Speed at which boost is at Max", speedHint, "MPH", 1),
                                 value("Minimum dutycycle", dutyHint, "%", 2),
                                 value("Maximum dutycycle", dutyHint, "%", 3),
                                 value("Speed Input for Speed Reference ", noHint, "Spd In", 4)};
// The memory holds the four speeds first, then the four duty cycles.
constexpr std::array boost = {value("D1 - Initial dutycycle (Held from 0 to S1)", dutyHint, "%", 4),
                              value("S1 - Speed at which output begins ramping to D2", speedHint, "MPH", 0),
                              value("D2 - Dutycycle at S2", dutyHint, "%", 5),
                              value("S2 - Second speed change point (begin ramp to D3)", speedHint, "MPH", 1),
                              value("D3 - Dutycycle at S3", dutyHint, "%", 6),
                              value("S3 - Third speed change point (begin ramp to D4)", speedHint, "MPH", 2),
                              value("D4 - Dutycycle at S4 and beyond", dutyHint, "%", 7),
                              value("S4 - Final Speed change point", speedHint, "MPH", 3)};

// ---- Inputs

constexpr std::array fuelTrim = {value("Max Positive Fuel Trim ", "(0 to 50%)", "GAMA Enrich", 0),
                                 value("Max Negative Fuel Trim ", "(-50% to -1)", "GAMA Lean", 1)};
constexpr std::array acLoad = {
    value("Amount of Idle RPM to Increase Under Load ", "0-4000", "Kickup RPM", 0)};
constexpr std::array valet = {value("Max Valet Speed Limit", "0-255", "MPH", 0),
                              value("Max Valet RPM Limit ", "1500-11000", "Valet RPM", 1)};
constexpr std::array datalog = {value("RPM Above Which DataLogging Will Begin ", "0-20000", "RPM", 0),
                                value("Internal DataLog Samples per second ", "5,10,20", "Samp. per sec", 2),
                                action("Retrieve Datalog from unit", Retrieve)};
constexpr std::array advanceTrim = {value("Amount of Negative Advance ", "(-30 to -1)", "Deg Ret", 0),
                                    value("Amount of Added Advance ", "(1 to 30)", "Deg Adv", 1)};
constexpr std::array outputTrim = {within("Max Positive Duty Cycle ", "(0% to 50%)", noWord, 0, 0, 50),
                                   within("Max Negative Duty Cycle ", "(-50% to -1%)", noWord, 1, -50, -1)};
constexpr std::array nitrousRetard = {value("Amount of Negative Advance ", "(-30 to -1)", "Deg Ret", 0)};

constexpr GpioRow desiredAdvance = value("Desired amount of Advance ", "(30 to -30)", "Deg Adv/Ret", 0);
constexpr GpioRow fineTime(std::string_view label, int parameter) {
    return {.label = label,
            .hint = "(0 to 10 steps of .005)",
            .word = "Seconds",
            .parameter = parameter,
            .step = 0.005};
}
constexpr std::string_view highOrLow = "0 = active high, 1 = active low";
constexpr std::array timedOldest = {
    desiredAdvance, value("Time to fully advance/retard timing ", "(0 to 2 steps of .05)", "Secs", 1),
    value("Time to fully restore timing ", "(0 to 2 steps of .05)", "Secs", 2)};
constexpr std::array timedWords = {
    desiredAdvance, value("Time to fully advance/retard timing ", "(0 to 10 steps of .05)", "Seconds", 3),
    value("Time to fully restore timing ", "(0 to 10 steps of .05)", "Seconds", 5)};
constexpr std::array timedNewest = {
    desiredAdvance, fineTime("Time delay before retarding timing ", 2), fineTime("Time to hold retard ", 4),
    fineTime("Time to ramp in retard ", 6), value("Active on Volts or Ground ", highOrLow, "High/Low", 1)};

constexpr std::array speedInput = {
    value("Tire Diameter in Inches ", "(i.e. 27.2)", "inches", 3),
    within("Final Drive Axle Ratio ", "(i.e. 4:1)", noWord, 4, 0, 20, "(0 to 20)"),
    within("Number of Sensor Pulses Per Revolution ", "(0 to 60)", noWord, 5, 0, 60),
    within("Pulses Per Mile ", "(Enter New or use Calculated Value)", noWord, 0, 0, 32767, "(0 to 32767)")};
constexpr std::array powerCut = {
    value("Time to cut igntion ", "(0 to 1000)", "ms", 0),  // kept: the system's own spelling
    value("Time delay between completed cut and next cut ", "(0 to 1000)", "ms", 1),
    value("Minimum RPM to allow ignition cut ", "(0 to 12000)", "RPM", 2),
    GpioRow{.label = "Minimum MAP to allow ignition cut ", .parameter = 4, .form = PressureHint},
    value("Active on Volts or Ground ", highOrLow, "High/Low", 6)};

constexpr std::array nothing = {action("No Options to Configure", Notice)};

struct RowList {
    int code;
    std::span<const GpioRow> rows;
    GpioKinds kinds = gpio_kinds::all;
    FirmwareSpan firmware = {};
};

constexpr GpioKinds notOrbC = gpio_kinds::all & ~gpio_kinds::orbC;

constexpr std::array<RowList, 30> lists = {{
    {1, airConditioner, notOrbC},
    {1, bmwAirConditioner, gpio_kinds::orbC},
    {2, fuelPump},
    {3, fan},
    {4, switchAbove},
    {5, switchAbove},
    {6, shiftLight},
    {7, converter},
    {8, fullTableOld, gpio_kinds::all, gpio_firmware::mainsFrequencies},
    {8, fullTable, gpio_kinds::all, gpio_firmware::slowFrequencies},
    {9, custom},
    {10, custom},
    {11, idleOutput},
    {12, fuelTrim},
    {13, acLoad},
    {14, valet},
    {15, datalog},
    {16, advanceTrim},
    {17, outputTrim},
    {18, outputTrim},
    {19, nitrousRetard},
    {20, timedOldest, gpio_kinds::all, gpio_firmware::timedBytes},
    {20, timedWords, gpio_kinds::all, gpio_firmware::timedWords},
    {20, timedNewest, gpio_kinds::all, gpio_firmware::timedFineWords},
    {21, speedInput},
    {23, powerCut},
    {25, boostOld, gpio_kinds::all, gpio_firmware::boostOfTwoSpeeds},
    {25, boost, gpio_kinds::all, gpio_firmware::boostOfFourSpeeds},
    {29, idleOutput, gpio_kinds::orbC},
    {0, nothing},
}};

}  // namespace

std::span<const GpioRow> gpioRowsOf(GpioKinds kind, int code, FirmwareVersion firmware) {
    for (const RowList& list : lists) {
        if (list.code == code && (list.kinds & kind) != 0 && list.firmware.contains(firmware))
            return list.rows;
    }
    return nothing;
}

}  // namespace zentaq
