#include "config/pin_tables.h"

#include "base/errors.h"
#include "unit/gpio_functions.h"

namespace zentaq {

const TableKind* tableOfPin(const Unit& unit, int pin) {
    const TableKind* table = nullptr;
    skipFailing([&] {
        if (unit.gpioFunctionWord(pin) != gpio_code::fullTable) return;
        const int number = unit.Get_GPO_TblNum(pin);
        for (const TableKind& each : outputTables()) {
            if (each.gpoNumber == number) table = &each;
        }
    });
    return table;
}

}  // namespace zentaq
