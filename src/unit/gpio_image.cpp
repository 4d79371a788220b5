#include "unit/gpio_image.h"

#include <array>

namespace zentaq {

namespace {

using enum GpioForm;
using gpio_firmware::any;

constexpr GpioByte fixed(double value) {
    return {Constant, 0, value, 1};
}
constexpr GpioByte zero = fixed(0);
constexpr GpioByte full = fixed(255);
constexpr GpioByte byte = {Byte};
constexpr GpioByte word = {Word};
constexpr GpioByte pressure = {PressureWord};
constexpr GpioByte percent = {Byte, 0, 2.55, 1};
constexpr GpioByte temperature = {Byte, 40, 255.0 / 190.0, 1};
constexpr GpioByte advance = {Byte, 30, 4.25, 1};
constexpr GpioByte trim = {Byte, 50, 2.55, 1};
constexpr GpioByte shortTime = {Byte, 0, 1, 4.096};
constexpr GpioByte tick = {Byte, 0, 122, 1};
constexpr GpioByte tickWord = {Word, 0, 122, 1};
constexpr GpioByte halfTickWord = {Word, 0, 244, 1};

// Byte 0 is the unit's own code for the function. A word takes two places of the block.
constexpr std::array disabled = {fixed(0)};
constexpr std::array airConditioner = {fixed(3), zero, zero, word, zero, zero, pressure};
constexpr std::array switchAbove = {fixed(3), word, full, full, pressure, full, full};
constexpr std::array fan = {fixed(4), temperature, temperature, byte, zero, zero, zero, zero};
constexpr std::array shiftLight = {fixed(3), word, full, full, zero, zero, zero};
constexpr std::array converter = {fixed(5), byte, byte, pressure, pressure, byte};
constexpr std::array fullTable = {fixed(1), GpioByte{TableNumber}, GpioByte{Frequency}, zero, zero, zero};
constexpr std::array customAnd = {fixed(3), word, word, pressure, pressure};
constexpr std::array customOr = {fixed(2), word, word, pressure, pressure};
constexpr std::array idleOutput = {fixed(6)};
constexpr std::array fuelTrim = {fixed(18), byte, byte, zero, zero, zero};
constexpr std::array acLoad = {fixed(25), word};
constexpr std::array valet = {fixed(26), byte, byte};
constexpr std::array datalog = {fixed(27), word, byte};
constexpr std::array advanceTrim = {fixed(17), advance, advance};
constexpr std::array outputTrim1 = {fixed(20), trim, trim};
constexpr std::array outputTrim2 = {fixed(21), trim, trim};
constexpr std::array nitrousRetard = {fixed(19), advance, advance, zero};
constexpr std::array timedOldest = {fixed(22), advance, tick, tick, zero};
constexpr std::array timedWords = {fixed(22), advance, zero, zero, tickWord, tickWord, zero};
constexpr std::array timedNewest = {fixed(22),    advance,      GpioByte{Flag},
                                    halfTickWord, halfTickWord, halfTickWord};
constexpr std::array speedInput = {fixed(31), GpioByte{AsItStands}};
constexpr std::array inputDisabled = {fixed(16)};
constexpr std::array powerCut = {fixed(28), shortTime, shortTime, word, pressure, byte, zero};
constexpr std::array boostOld = {fixed(9), byte, byte, percent, percent, byte};
constexpr std::array boostNew = {fixed(9), byte, byte, byte, byte, percent, percent, percent, percent};

constexpr bool zeroRest = true;
constexpr std::array<GpioRecipe, 28> recipes = {{
    {0, any, disabled, zeroRest},
    {1, any, airConditioner},
    {2, any, switchAbove},
    {3, any, fan},
    {4, any, switchAbove},
    {5, any, switchAbove},
    {6, any, shiftLight},
    {7, any, converter},
    {8, any, fullTable},
    {9, any, customAnd},
    {10, any, customOr},
    {11, any, idleOutput, zeroRest},
    {12, any, fuelTrim},
    {13, any, acLoad, zeroRest},
    {14, any, valet},
    {15, any, datalog, zeroRest},
    {16, any, advanceTrim},
    {17, any, outputTrim1, zeroRest},
    {18, any, outputTrim2, zeroRest},
    {19, any, nitrousRetard},
    {20, gpio_firmware::timedBytes, timedOldest},
    {20, gpio_firmware::timedWords, timedWords},
    {20, gpio_firmware::timedFineWords, timedNewest},
    {21, any, speedInput, zeroRest},
    {22, any, inputDisabled, zeroRest},
    {23, any, powerCut},
    {25, gpio_firmware::boostOfTwoSpeeds, boostOld, zeroRest},
    {25, gpio_firmware::boostOfFourSpeeds, boostNew},
}};

/// A running unit takes another scale than its stored image for these. kept: units in the field rely on it.
struct OnTheFlyRow {
    int function;
    int parameter;  ///< anyParameter for all
    FirmwareSpan firmware;
    GpioByte form;
};
constexpr int anyParameter = -1;
constexpr GpioByte plus50 = {Byte, 50, 1, 1};
constexpr GpioByte plus30 = {Byte, 30, 1, 1};
constexpr GpioByte quarterDegrees = {Byte, 0, 4.25, 1};
constexpr std::array<OnTheFlyRow, 12> onTheFlyRows = {{
    {8, 0, any, {Byte, -1, 1, 1}},
    {12, anyParameter, any, plus50},
    {16, anyParameter, any, quarterDegrees},
    {17, anyParameter, any, percent},
    {18, anyParameter, any, percent},
    {19, anyParameter, any, plus30},
    {20, 0, any, plus30},
    {20, 2, gpio_firmware::timedFineWords, halfTickWord},
    {20, 4, gpio_firmware::timedFineWords, halfTickWord},
    {20, 6, gpio_firmware::timedFineWords, halfTickWord},
    {20, 3, gpio_firmware::timedWords, tickWord},
    {20, 5, gpio_firmware::timedWords, tickWord},
}};

}  // namespace

const GpioRecipe* gpioRecipe(int function, FirmwareVersion firmware) {
    for (const GpioRecipe& recipe : recipes) {
        if (recipe.function == function && recipe.firmware.contains(firmware)) return &recipe;
    }
    return nullptr;
}

const GpioByte* gpioByteOfParameter(const GpioRecipe& recipe, int parameter) {
    int place = 0;
    for (const GpioByte& item : recipe.bytes) {
        if (place == parameter + 1 && item.form != Constant) return &item;
        place += item.width();
    }
    return nullptr;
}

const GpioByte* gpioOnTheFly(int function, int parameter, FirmwareVersion firmware) {
    for (const OnTheFlyRow& row : onTheFlyRows) {
        if (row.function != function || !row.firmware.contains(firmware)) continue;
        if (row.parameter == anyParameter || row.parameter == parameter) return &row.form;
    }
    return function == 20 ? &tick : nullptr;
}

int gpioFrequencyCode(float frequency, FirmwareVersion firmware) {
    const float slow = gpio_firmware::mainsFrequencies.contains(firmware) ? 60 : 30;
    if (frequency == slow) return 0;
    return frequency == 2 * slow ? 1 : -1;
}

}  // namespace zentaq
