// The functions that an input/output pin can have, one row each: code, texts, direction, the kinds that offer
// it. Lists for the tuner, names for print-outs and the dashboard all read this table.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "unit/firmware_version.h"

namespace zentaq {

/// What a pin or a function is for.
enum class GpioSide : std::uint8_t { Output, Input, Both };

/// A set of families: unit kinds whose pins can do the same, as both sizes of the ORB D can.
using GpioKinds = std::uint8_t;
namespace gpio_kinds {
inline constexpr GpioKinds orbA = 1;
inline constexpr GpioKinds orbL = 2;
inline constexpr GpioKinds orbC = 4;
inline constexpr GpioKinds orbD = 8;
inline constexpr GpioKinds pzk2 = 16;
inline constexpr GpioKinds noUnit = 128;  ///< clsNull
inline constexpr GpioKinds withFuel = orbA | orbL | orbC | orbD;
inline constexpr GpioKinds withVoltageInput = orbL | orbC | orbD;
inline constexpr GpioKinds all = 255;
}  // namespace gpio_kinds

namespace gpio_code {
inline constexpr int fullTable = 8;
inline constexpr int timedAdvance = 20;
inline constexpr int speedInput = 21;
}  // namespace gpio_code

/// From a firmware up to another, both included; by default any.
struct FirmwareSpan {
    FirmwareVersion first = {-32768, -32768};
    FirmwareVersion last = {32767, 32767};
    constexpr bool contains(FirmwareVersion firmware) const { return first <= firmware && firmware <= last; }
};

/// Where the parameters of a function changed with the firmware. What the manager lists and what the memory
/// holds changed together.
namespace gpio_firmware {
inline constexpr FirmwareSpan any = {};
// A full table runs at 60 and 120 Hz, later at 30 and 60.
inline constexpr FirmwareSpan mainsFrequencies = {any.first, {2, 6}};
inline constexpr FirmwareSpan slowFrequencies = {{2, 7}, any.last};
// The times of a timed advance take a byte each, later a word, at last a word of finer steps.
inline constexpr FirmwareSpan timedBytes = {any.first, {2, 17}};
inline constexpr FirmwareSpan timedWords = {{2, 18}, {4, 32767}};
inline constexpr FirmwareSpan timedFineWords = {{5, -32768}, any.last};
// Boost rises between two speeds, later over four.
inline constexpr FirmwareSpan boostOfTwoSpeeds = {any.first, {4, 2}};
inline constexpr FirmwareSpan boostOfFourSpeeds = {{4, 3}, any.last};
}  // namespace gpio_firmware

/// Which firmware a function needs to be offered.
enum class GpioNeeds : std::uint8_t { Nothing, DatalogFirmware, BoostFirmware };

struct GpioFunction {
    int code = 0;
    std::string_view listText;  ///< in the list of functions
    std::string_view name;      ///< everywhere else
    GpioSide side = GpioSide::Both;
    GpioKinds offeredOn = gpio_kinds::all;
    GpioKinds namedOn = gpio_kinds::all;  ///< kinds on which the code has this name, offered or not
    bool onePinOnly = false;              ///< offered as long as no other input pin has it
    int speedInput = 0;                   ///< 1 or 2: only on the pin with this speed input
    GpioNeeds needs = GpioNeeds::Nothing;
    int recordsRelease = 0;  ///< the release that the ORB L writes down when none is known; 0: none
};

/// All functions in the order of the lists: outputs, then inputs.
std::span<const GpioFunction> gpioFunctions();

/// The row that names a code on a kind, nullptr for a code that the kind does not know.
const GpioFunction* gpioFunctionOf(GpioKinds kind, int code);

}  // namespace zentaq
