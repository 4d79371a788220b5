#include "unit/gpio_pins.h"

#include <algorithm>

namespace zentaq {

namespace {

using enum GpioSide;

// clang-format off
// Calibrations of the oldest units have seven blocks. The eighth pin came with the second release, as the
// other additions to the inputs did.
constexpr int eighthPinFrom = 2;
constexpr std::array<GpioPin, 8> orbARows = {{
    {0, 1, "(Output)", "W18", Output}, {1, 2, "(Output)", "W19", Output}, {2, 3, "(Output)", "W20", Output},
    {3, 4, "(Output)", "W21", Output}, {4, 1, "(Input)", "G16", Input}, {5, 2, "(Input)", "G17", Input},
    {6, 3, "(Input)", "G18", Input}, {7, 4, "(Input)", "G19", Input, eighthPinFrom}}};

constexpr std::string_view either = "(Input/Output)";
constexpr std::array<GpioPin, 9> orbLRows = {{
    {0, 1, either, "G10"}, {1, 2, either, "G20"}, {2, 3, either, "G14"}, {3, 4, either, "G15"},
    {4, 5, either, "G26"}, {5, 6, either, "G27"}, {6, 7, either, "G4"}, {7, 8, either, "G9"},
    {8, 9, either, "G22"}}};

// Row n is pin n - 1. There is no row 7.
constexpr std::array<GpioPin, 12> orbCRows = {{
    {0, 1, "CAM Output", "7", Output}, {1, 2, "IAC inverted", "2", Output}, {2, 3, "IAC", "29", Output},
    {3, 4, "EVAP Solenoid", "36", Output}, {4, 5, "GPO", "9", Output}, {5, 6, "BMW A/C Control", "48", Output},
    {7, 8, "A/C Console Sw", "64", Input}, {8, 9, "Ignition Retard Input", "57", Input},
    {9, 10, "Park/Neutral Input", "81", Input}, {10, 11, "GPI 1", "10", Input}, {11, 12, "GPI 2", "76", Input},
    {12, 13, "Speed Input", "42", Input}}};

constexpr std::array<GpioPin, 5> orbDRows = {{
    {0, 1, either, "5"}, {1, 2, either, "7"}, {2, 3, either, "4"}, {3, 4, either, "2"}, {4, 5, either, "8"}}};
constexpr std::size_t smallModelPins = 4;

constexpr std::array<GpioPin, 4> pzk2Rows = {
    {{0, 1, either, "B2"}, {1, 2, either, "B4"}, {2, 3, either, "B5"}, {3, 4, either, "B12"}}};
// clang-format on

constexpr std::size_t usualColumn = 23;
constexpr std::size_t columnBehindNames = 25;  // "9 Ignition Retard Input" is as long as the usual column

}  // namespace

// The speed inputs of the ORB C are its speed wire and the last free input. Those of the ORB D are pins that
// both sizes have.
constinit const GpioPins orbaPins = {gpio_kinds::orbA, orbARows, usualColumn, {6, 7}};
constinit const GpioPins orbLitePins = {gpio_kinds::orbL, orbLRows, usualColumn, {6, 7}, true};
constinit const GpioPins orbcPins = {gpio_kinds::orbC, orbCRows, columnBehindNames, {12, 11}};
constinit const GpioPins orbdPins = {gpio_kinds::orbD, orbDRows, usualColumn, {2, 3}};
constinit const GpioPins orbd6Pins = {
    gpio_kinds::orbD, std::span(orbDRows).first(smallModelPins), usualColumn, {2, 3}};
constinit const GpioPins pzk2Pins = {gpio_kinds::pzk2, pzk2Rows, usualColumn, {-1, -1}};
constinit const GpioPins noPins = {.speedPins = {-1, -1}};

const GpioPin* GpioPins::find(int pin) const {
    const auto found = std::ranges::find(rows, pin, &GpioPin::pin);
    return found == rows.end() ? nullptr : &*found;
}

}  // namespace zentaq
