// The parameters of each input/output function as the manager lists them: texts, units, and the cell that a
// row edits. A row's parameter is the cell from which the unit's byte for that quantity is made.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "unit/gpio_functions.h"
#include "unit/gpio_image.h"

namespace zentaq {

enum class GpioRowForm : std::uint8_t {
    Number,        ///< the cell as it stands
    Temperature,   ///< cell in degrees C, shown in the user's scale
    Pressure,      ///< cell in the unit's own kPa, shown in the user's unit
    PressureHint,  ///< as Pressure, with the sensor's range as hint
    EditTable,     ///< no value: opens the output table that the pin uses
    Retrieve,      ///< no value: fetches the unit's own datalog
    Notice         ///< no value: tells that there is nothing to set
};

struct GpioRow {
    std::string_view label;  ///< "{}" stands for the function's name
    std::string_view hint;
    std::string_view word;  ///< unit; empty where the form tells it or there is none
    int parameter = -1;     ///< from 0; -1: none
    GpioRowForm form = GpioRowForm::Number;
    // Rows without a unit word tell their own limits.
    float minimum = 0;
    float maximum = 0;         ///< equal to `minimum`: by the unit word
    std::string_view ownText;  ///< of own limits; empty: the hint
    double step = 0;           ///< takes the place of the word's step; 0: the word's
};

/// The rows of a function on a kind and firmware. A function that has none, or that nobody knows, answers one
/// row of form Notice.
std::span<const GpioRow> gpioRowsOf(GpioKinds kind, int code, FirmwareVersion firmware);

}  // namespace zentaq
