#include "unit/gpio_functions.h"

#include <array>

namespace zentaq {

namespace {

using namespace gpio_kinds;
using enum GpioSide;
using enum GpioNeeds;

constexpr GpioKinds withoutVoltageInput = all & ~withVoltageInput;
constexpr bool once = true;
constexpr bool anyNumber = false;

// kept: the list texts and the names of some functions differ; the system has both.
// The two speed inputs share a code: each exists on one pin, so both can be in use.
// An input may measure volts on any number of pins: on the ORB A the same code is what idle inputs have.
// clang-format off
constexpr GpioFunction functions[] = {
    {.code = 0, .listText = "DISABLED", .name = "DISABLED", .side = Output, .offeredOn = orbA},
    {.code = 0, .listText = "DISABLED", .name = "DISABLED", .offeredOn = orbL | orbC | orbD | pzk2},
    {.code = 22, .listText = "DISABLED", .name = "DISABLED", .side = Input, .offeredOn = orbA,
     .namedOn = withoutVoltageInput},
    {.code = 1, .listText = "A/C Control", .name = "A/C Control", .side = Output,
     .offeredOn = orbA | orbL | orbD},
    {.code = 1, .listText = "BMW A/C Control", .name = "A/C Control", .side = Output, .offeredOn = orbC},
    {.code = 2, .listText = "Auxiliary Fuel Pump Control", .name = "Auxiliary Fuel Pump Control",
     .side = Output, .offeredOn = withFuel},
    {.code = 3, .listText = "Thermo Control", .name = "FAN Thermo Control", .side = Output,
     .offeredOn = withFuel},
    {.code = 4, .listText = "Intake Runner Control", .name = "Intake Runner Control", .side = Output,
     .offeredOn = withFuel},
    {.code = 5, .listText = "Nitrous Control", .name = "Nitrous Control", .side = Output},
    {.code = 6, .listText = "Shift Light", .name = "Shift Light", .side = Output},
    {.code = 7, .listText = "Torque Converter Control", .name = "Torque Converter Control", .side = Output,
     .offeredOn = withFuel},
    {.code = 8, .listText = "Full Table (PWM)", .name = "Full Table", .side = Output, .offeredOn = withFuel},
    {.code = 8, .listText = "Full Table", .name = "Full Table", .side = Output, .offeredOn = pzk2},
    {.code = 9, .listText = "Custom #1 (AND)", .name = "Custom GPO #1", .side = Output},
    {.code = 10, .listText = "Custom #2 (OR)", .name = "Custom GPO #2", .side = Output},
    {.code = 11, .listText = "IAC Output", .name = "IAC Output", .side = Output,
     .offeredOn = orbL | orbC | orbD},
    {.code = 24, .listText = "Check Engine Light", .name = "Check Engine Light", .side = Output,
     .offeredOn = orbD, .namedOn = orbD},
    {.code = 24, .listText = "CAM Control", .name = "CAM Control", .side = Output, .offeredOn = orbC,
     .namedOn = orbC},
    {.code = 25, .listText = "Boost Control", .name = "Boost Control", .side = Output, .offeredOn = withFuel,
     .needs = BoostFirmware, .recordsRelease = 4},
    {.code = 29, .listText = "IAC Output (inverted)", .name = "IAC Output (inverted)", .side = Output,
     .offeredOn = orbC, .namedOn = orbC},
    {.code = 12, .listText = "Fuel Trim", .name = "Fuel Trim", .side = Input, .offeredOn = withFuel,
     .onePinOnly = once},
    {.code = 13, .listText = "AC Load", .name = "AC Load", .side = Input, .offeredOn = withFuel,
     .onePinOnly = once},
    {.code = 14, .listText = "Valet Switch", .name = "Valet Switch", .side = Input, .onePinOnly = once},
    {.code = 15, .listText = "Datalog Enable", .name = "Datalog Enable", .side = Input,
     .offeredOn = orbA | orbL | orbC, .onePinOnly = once, .needs = DatalogFirmware, .recordsRelease = 2},
    {.code = 16, .listText = "Advance Trim", .name = "Advance Trim", .side = Input, .onePinOnly = once},
    {.code = 17, .listText = "GPO Trim #1", .name = "GPO Trim #1", .side = Input, .onePinOnly = once},
    {.code = 18, .listText = "GPO Trim #2", .name = "GPO Trim #2", .side = Input, .onePinOnly = once},
    {.code = 19, .listText = "Nitrous Retard", .name = "NOS Retard", .side = Input, .onePinOnly = once},
    {.code = 20, .listText = "Timed Advance", .name = "Timed Advance", .side = Input, .onePinOnly = once},
    {.code = 21, .listText = "Speed Input 1", .name = "Speed Gauge", .side = Input, .offeredOn = withFuel,
     .onePinOnly = anyNumber, .speedInput = 1},
    {.code = 21, .listText = "Speed Input 2", .name = "Speed Gauge", .side = Input, .offeredOn = withFuel,
     .onePinOnly = anyNumber, .speedInput = 2},
    {.code = 22, .listText = "Voltage Input", .name = "Voltage Input", .side = Input,
     .offeredOn = withVoltageInput, .namedOn = withVoltageInput, .onePinOnly = anyNumber,
     .recordsRelease = 2},
    {.code = 23, .listText = "Timed Power Cut", .name = "Timed Power Cut", .side = Input, .onePinOnly = once},
};
// clang-format on

}  // namespace

std::span<const GpioFunction> gpioFunctions() {
    return functions;
}

const GpioFunction* gpioFunctionOf(GpioKinds kind, int code) {
    for (const GpioFunction& function : functions) {
        if (function.code == code && (function.namedOn & kind) != 0) return &function;
    }
    return nullptr;
}

}  // namespace zentaq
