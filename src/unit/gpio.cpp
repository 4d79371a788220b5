#include <array>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/counts.h"
#include "unit/gpio_image.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr int blockCells = 9;
constexpr int timedAdvance = 20;
constexpr int pollablePins = 8;
constexpr int tableCells = 256;
constexpr std::array<int, 2> tableFirst = {1680, 1936};

// An input pin's "disabled" carries code 22.
constexpr std::array<std::string_view, 24> functionNames = {"DISABLED",
                                                            "A/C Control",
                                                            "Auxiliary Fuel Pump Control",
                                                            "FAN Thermo Control",
                                                            "Intake Runner Control",
                                                            "Nitrous Control",
                                                            "Shift Light",
                                                            "Torque Converter Control",
                                                            "Full Table",
                                                            "Custom GPO #1",
                                                            "Custom GPO #2",
                                                            "IAC Output",
                                                            "Fuel Trim",
                                                            "AC Load",
                                                            "Valet Switch",
                                                            "Datalog Enable",
                                                            "Advance Trim",
                                                            "GPO Trim #1",
                                                            "GPO Trim #2",
                                                            "NOS Retard",
                                                            "Timed Advance",
                                                            "Speed Gauge",
                                                            "DISABLED",
                                                            "Timed Power Cut"};

double encoded(Unit& unit, const GpioByte& item, float cell) {
    if (item.form == GpioForm::PressureWord) return unit.KpaToCounts(cell, false);
    if (item.form == GpioForm::Flag) return cell == 0 ? 0 : 255;
    return (cell + item.shift) * item.factor / item.divisor;
}

int tableCell(int table, int index) {
    if (table < 1 || table > 2 || index < 0 || index >= tableCells) throw BoundsError();
    return tableFirst[static_cast<std::size_t>(table - 1)] + index;
}

}  // namespace

int Unit::gpioCell(int pin, int word) const {
    if (pin < 0 || pin > kind_.numGpio || word < 0 || word >= blockCells) throw BoundsError();
    return kind_.gpioBase + blockCells * pin + word;
}

int Unit::Get_GPIOFUNC(int pin) const {
    if (!kind_.hasCalibration || pin < 0 || pin >= pollablePins) return 0;
    const int cell = gpioCell(pin, 0);
    return indexPolling_ ? cell : toInt16(static_cast<double>(cellAt(cell)));
}

void Unit::Set_GPIO_Func(int pin, int code) {
    if (!kind_.hasCalibration) return;
    cellAt(gpioCell(pin, 0)) = static_cast<float>(code);
}

float Unit::Get_GPIO_Param(int pin, int parameter) const {
    return kind_.hasCalibration ? cellAt(gpioCell(pin, parameter + 1)) : 0;
}

void Unit::Set_GPIO_Param(int pin, int parameter, float value) {
    if (!kind_.hasCalibration) return;
    const int cell = gpioCell(pin, parameter + 1);
    if (parameter < 0) throw BoundsError();
    cellAt(cell) = value;
    sendGpioParameter(pin, parameter, value);
}

void Unit::sendGpioParameter(int pin, int parameter, float value) {
    if (!onTheFly_) return;
    // The stored code: with IndexPolling the member answers an index.
    const int function = toInt16(static_cast<double>(cellAt(gpioCell(pin, 0))));
    const FirmwareVersion firmware = {release_, build_};
    const GpioRecipe* recipe = gpioRecipe(function, firmware);
    const GpioByte* item = recipe == nullptr ? nullptr : gpioByteOfParameter(*recipe, parameter);
    // Timed advance takes its running form for every parameter, whatever the image holds.
    if (item == nullptr && function != timedAdvance) return;
    if (const GpioByte* own = gpioOnTheFly(function, parameter, firmware)) item = own;
    if (item == nullptr) return;
    double number = encoded(*this, *item, value);
    if (item->form == GpioForm::Frequency) {
        number = gpioFrequencyCode(value, firmware);
        if (number < 0) return;
    }
    SendOnFly(gpioCell(pin, parameter + 1), number, item->width());
}

float Unit::Get_GPIO_Table(int table, int index) {
    return kind_.hasCalibration ? cellAt(tableCell(table, index)) : 0;
}

void Unit::Set_GPIO_Table(int table, int index, float value) {
    if (!kind_.hasCalibration) return;
    const int cell = tableCell(table, index);
    cellAt(cell) = value;
    SendOnFly(cell, value * 2.55, 1);
}

int Unit::Get_GPO_TblNum(int pin) const {
    return kind_.hasCalibration ? toInt16(static_cast<double>(Get_GPIO_Param(pin, 0))) : 0;
}

void Unit::Zeroize_GPIO(int pin) {
    if (!kind_.hasCalibration) return;
    for (int word = 0; word < blockCells; ++word) cellAt(gpioCell(pin, word)) = 0;
}

std::string Unit::GPIO_Function_Name(int code) {
    constexpr int boostControl = 25;
    if (code == boostControl) return "Boost Control";
    if (code < 0 || code >= static_cast<int>(functionNames.size())) return "GPIO ERROR: ENTRY NOT FOUND!";
    return std::string(functionNames[static_cast<std::size_t>(code)]);
}

void Unit::convertGpioBlocks() {
    const FirmwareVersion firmware = {release_, build_};
    int frequencyCode = 0;
    for (int pin = 0; pin <= kind_.numGpio; ++pin) {
        const int first = gpioCell(pin, 0);
        const GpioRecipe* recipe = gpioRecipe(toInt16(static_cast<double>(cellAt(first))), firmware);
        if (recipe == nullptr) continue;
        int place = 0;
        for (const GpioByte& item : recipe->bytes) {
            float& cell = cellAt(first + place);
            double number = item.form == GpioForm::Constant ? item.factor : encoded(*this, item, cell);
            if (item.form == GpioForm::TableNumber) {
                if (cell != 1 && cell != 2) cell = 1;
                number = cell;
            }
            if (item.form == GpioForm::Frequency) {
                // A frequency that the firmware does not know keeps the code of the pin before.
                const int code = gpioFrequencyCode(cell, firmware);
                if (code >= 0) frequencyCode = code;
                number = frequencyCode;
            }
            if (item.width() == 2) {
                putWord(first + place, number);
            } else {
                putByte(first + place, item.form == GpioForm::AsItStands ? number : toCount(number));
            }
            place += item.width();
        }
        for (; recipe->zeroRest && place < blockCells; ++place) putByte(first + place, 0);
    }
}

}  // namespace zentaq
