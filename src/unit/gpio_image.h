// What the unit's memory holds for each input/output function: a list of byte recipes for each function
// and firmware. A recipe for parameter n stands at byte n + 1 of the pin's block.
#pragma once

#include <cstdint>
#include <span>

#include "unit/gpio_functions.h"

namespace zentaq {

enum class GpioForm : std::uint8_t {
    Constant,      ///< `factor` itself
    Byte,          ///< (cell + shift) * factor / divisor, rounded
    AsItStands,    ///< the cell, not rounded
    Word,          ///< as Byte, two bytes
    PressureWord,  ///< counts of the converter, two bytes
    TableNumber,   ///< 1 or 2; any other cell becomes 1
    Frequency,     ///< the code of a frequency
    Flag           ///< 0 or 255
};

struct GpioByte {
    GpioForm form = GpioForm::Constant;
    double shift = 0;
    double factor = 1;
    double divisor = 1;

    constexpr int width() const { return form == GpioForm::Word || form == GpioForm::PressureWord ? 2 : 1; }
};

struct GpioRecipe {
    int function = 0;
    FirmwareSpan firmware;
    std::span<const GpioByte> bytes;
    bool zeroRest = false;  ///< bytes behind the list become 0; otherwise they stay as found
};

/// nullptr for a function without a recipe: its block stays as it is.
const GpioRecipe* gpioRecipe(int function, FirmwareVersion firmware);

/// The recipe that parameter `parameter` (from 0) fills, or nullptr.
const GpioByte* gpioByteOfParameter(const GpioRecipe& recipe, int parameter);

/// The form that a running unit takes where it is not the image's, or nullptr.
const GpioByte* gpioOnTheFly(int function, int parameter, FirmwareVersion firmware);

/// The frequency code of function 8, or -1 for a frequency that the firmware does not know.
int gpioFrequencyCode(float frequency, FirmwareVersion firmware);

}  // namespace zentaq
