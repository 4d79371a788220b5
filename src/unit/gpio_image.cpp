#include "unit/gpio_image.h"

#include <array>

namespace zentaq {

namespace {

using enum GpioForm;

constexpr FirmwareVersion earliest = {-32768, -32768};
constexpr FirmwareVersion latest = {32767, 32767};

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
    {0, earliest, latest, disabled, zeroRest},
    {1, earliest, latest, airConditioner},
    {2, earliest, latest, switchAbove},
    {3, earliest, latest, fan},
    {4, earliest, latest, switchAbove},
    {5, earliest, latest, switchAbove},
    {6, earliest, latest, shiftLight},
    {7, earliest, latest, converter},
    {8, earliest, latest, fullTable},
    {9, earliest, latest, customAnd},
    {10, earliest, latest, customOr},
    {11, earliest, latest, idleOutput, zeroRest},
    {12, earliest, latest, fuelTrim},
    {13, earliest, latest, acLoad, zeroRest},
    {14, earliest, latest, valet},
    {15, earliest, latest, datalog, zeroRest},
    {16, earliest, latest, advanceTrim},
    {17, earliest, latest, outputTrim1, zeroRest},
    {18, earliest, latest, outputTrim2, zeroRest},
    {19, earliest, latest, nitrousRetard},
    {20, earliest, {2, 17}, timedOldest},
    {20, {2, 18}, {4, 32767}, timedWords},
    {20, {5, -32768}, latest, timedNewest},
    {21, earliest, latest, speedInput, zeroRest},
    {22, earliest, latest, inputDisabled, zeroRest},
    {23, earliest, latest, powerCut},
    {25, earliest, {4, 2}, boostOld, zeroRest},
    {25, {4, 3}, latest, boostNew},
}};

/// A running unit takes another scale than its stored image for these. kept: units in the field rely on it.
struct OnTheFlyRow {
    int function;
    int parameter;  ///< anyParameter for all
    FirmwareVersion first;
    FirmwareVersion last;
    GpioByte form;
};
constexpr int anyParameter = -1;
constexpr GpioByte plus50 = {Byte, 50, 1, 1};
constexpr GpioByte plus30 = {Byte, 30, 1, 1};
constexpr GpioByte quarterDegrees = {Byte, 0, 4.25, 1};
constexpr std::array<OnTheFlyRow, 12> onTheFlyRows = {{
    {8, 0, earliest, latest, {Byte, -1, 1, 1}},
    {12, anyParameter, earliest, latest, plus50},
    {16, anyParameter, earliest, latest, quarterDegrees},
    {17, anyParameter, earliest, latest, percent},
    {18, anyParameter, earliest, latest, percent},
    {19, anyParameter, earliest, latest, plus30},
    {20, 0, earliest, latest, plus30},
    {20, 2, {5, -32768}, latest, halfTickWord},
    {20, 4, {5, -32768}, latest, halfTickWord},
    {20, 6, {5, -32768}, latest, halfTickWord},
    {20, 3, {2, 18}, {4, 32767}, tickWord},
    {20, 5, {2, 18}, {4, 32767}, tickWord},
}};

}  // namespace

const GpioRecipe* gpioRecipe(int function, FirmwareVersion firmware) {
    for (const GpioRecipe& recipe : recipes) {
        if (recipe.function != function) continue;
        if (recipe.first <= firmware && firmware <= recipe.last) return &recipe;
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
        if (row.function != function || !(row.first <= firmware && firmware <= row.last)) continue;
        if (row.parameter == anyParameter || row.parameter == parameter) return &row.form;
    }
    return function == 20 ? &tick : nullptr;
}

int gpioFrequencyCode(float frequency, FirmwareVersion firmware) {
    constexpr FirmwareVersion lastWithMainsPair = {2, 6};
    const float slow = firmware <= lastWithMainsPair ? 60 : 30;
    if (frequency == slow) return 0;
    return frequency == 2 * slow ? 1 : -1;
}

}  // namespace zentaq
