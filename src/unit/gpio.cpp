#include <array>
#include <cmath>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/counts.h"
#include "unit/gpio_functions.h"
#include "unit/gpio_image.h"
#include "unit/gpio_pins.h"
#include "unit/image_source.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr int blockCells = 9;
constexpr int tableCells = 256;

double encoded(Unit& unit, const GpioByte& item, float cell) {
    if (item.form == GpioForm::PressureWord) return unit.KpaToCounts(cell, false);
    if (item.form == GpioForm::Flag) return cell == 0 ? 0 : 255;
    return (cell + item.shift) * item.factor / item.divisor;
}

/// The function that a word names; a word between two functions or beyond them all names none.
int functionOf(float word) {
    constexpr int none = -1;
    constexpr float most = 32767;
    return word >= 0 && word <= most && word == std::trunc(word) ? static_cast<int>(word) : none;
}

int tableCell(const CellMap& cells, int table, int index) {
    if (table < 1 || table > 2 || index < 0 || index >= tableCells) throw BoundsError();
    return cells.outputTable[static_cast<std::size_t>(table - 1)] + index;
}

}  // namespace

int Unit::gpioCell(int pin, int word) const {
    if (pin < 0 || pin > kind_->numGpio || word < 0 || word >= blockCells) throw BoundsError();
    return kind_->gpioBase + blockCells * pin + word;
}

int Unit::Get_GPIOFUNC(int pin) const {
    if (!kind_->hasCalibration || pin < 0 || pin > kind_->numGpio) return 0;
    const int cell = gpioCell(pin, 0);
    return indexPolling_ ? cell : toInt16(static_cast<double>(cellAt(cell)));
}

void Unit::Set_GPIO_Func(int pin, int code) {
    if (!kind_->hasCalibration) return;
    put(gpioCell(pin, 0), code);
    recordReleaseOf(code);
}

void Unit::recordReleaseOf(int gpioCode) {
    const GpioPins& pins = *kind_->pins;
    if (!pins.recordsRelease || facts().firmwareCode != 0 || firmware() != FirmwareVersion{}) return;
    const GpioFunction* function = gpioFunctionOf(pins.kind, gpioCode);
    if (function == nullptr || function->recordsRelease == 0) return;
    FW_Release(function->recordsRelease);
    recordFirmware(FirmwareVersion{function->recordsRelease}.code());
}

float Unit::Get_GPIO_Param(int pin, int parameter) const {
    return kind_->hasCalibration ? cellAt(gpioCell(pin, parameter + 1)) : 0;
}

void Unit::Set_GPIO_Param(int pin, int parameter, float value) {
    if (!kind_->hasCalibration) return;
    const int cell = gpioCell(pin, parameter + 1);
    if (parameter < 0) throw BoundsError();
    put(cell, value);
    sendGpioParameter(pin, parameter, value);
}

void Unit::sendGpioParameter(int pin, int parameter, float value) {
    if (!onTheFly_) return;
    // The stored code: with IndexPolling the member answers an index.
    const int function = functionOf(gpioFunctionWord(pin));
    const GpioRecipe* recipe = gpioRecipe(function, firmware());
    const GpioByte* item = recipe == nullptr ? nullptr : gpioByteOfParameter(*recipe, parameter);
    // Timed advance takes its running form for every parameter, whatever the image holds.
    if (item == nullptr && function != gpio_code::timedAdvance) return;
    if (const GpioByte* own = gpioOnTheFly(function, parameter, firmware())) item = own;
    if (item == nullptr) return;
    double number = encoded(*this, *item, value);
    if (item->form == GpioForm::Frequency) {
        number = gpioFrequencyCode(value, firmware());
        if (number < 0) return;
    }
    SendOnFly(gpioCell(pin, parameter + 1), number, item->width());
}

float Unit::Get_GPIO_Table(int table, int index) {
    return kind_->hasCalibration ? cellAt(tableCell(kind_->cells, table, index)) : 0;
}

EntryOutcome Unit::Set_GPIO_Table(int table, int index, float value) {
    if (!kind_->hasCalibration) return EntryOutcome::ignored();
    const int cell = tableCell(kind_->cells, table, index);
    if (auto checked = checkLimits(value, outputTableLimits()); !checked) return checked;
    put(cell, value);
    SendOnFly(cell, value * 2.55, 1);
    return {};
}

// kept: the name by which a window asks for the table of a pin.
int Unit::Get_GPO_TblNum(int pin) const {
    return kind_->hasCalibration ? toInt16(static_cast<double>(Get_GPIO_Param(pin, 0))) : 0;
}

void Unit::Zeroize_GPIO(int pin) {
    if (!kind_->hasCalibration) return;
    for (int word = 0; word < blockCells; ++word) put(gpioCell(pin, word), 0);
}

std::string Unit::GPIO_Function_Name(int code) const {
    const GpioFunction* function = gpioFunctionOf(kind_->pins->kind, code);
    return std::string(function == nullptr ? "GPIO ERROR: ENTRY NOT FOUND!" : function->name);
}

void Unit::convertGpioBlocks() {
    const FirmwareVersion firmware = {FW_Release(), FW_Build()};
    int frequencyCode = 0;
    for (int pin = 0; pin <= kind_->numGpio; ++pin) {
        const int first = gpioCell(pin, 0);
        const GpioRecipe* recipe = gpioRecipe(functionOf(cellAt(first)), firmware);
        if (recipe == nullptr) continue;
        int place = 0;
        for (const GpioByte& item : recipe->bytes) {
            const ImageSource source{.member = "GPIO",
                                     .cell = first + place,
                                     .value = cellAt(first + place),
                                     .element = pin,
                                     .count = blockCells,
                                     .part = place == 0 ? "" : ".parameter",
                                     .partIndex = place - 1};
            convertFrom(source, [&] {
                const float cell = cellAt(first + place);
                double number = item.form == GpioForm::Constant ? item.factor : encoded(*this, item, cell);
                if (item.form == GpioForm::TableNumber) {
                    number = cell == 2 ? 2 : 1;
                    put(first + place, number);
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
            });
            place += item.width();
        }
        for (; recipe->zeroRest && place < blockCells; ++place) putByte(first + place, 0);
    }
}

}  // namespace zentaq
