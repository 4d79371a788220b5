#include "config/pin_rows.h"

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "unit/gpio_model.h"

namespace zentaq {

namespace {

/// Notices and the datalog have nothing to show here.
bool isOnPage(GpioRowForm form) {
    return form != GpioRowForm::Notice && form != GpioRowForm::Retrieve;
}

Field parameterField(const GpioParamRow& row) {
    Field field;
    field.caption = std::string(trimmed(row.label));
    field.text = row.value;
    field.unit = row.unit;
    field.limits = withoutParentheses(row.limits.text);
    return field;
}

Field tableField(const Unit& unit, const GpioParamRow& row, int pin) {
    constexpr int numberParameter = 0;
    const TableKind* table = tableOfPin(unit, pin);
    Field field;
    field.kind = FieldKind::Action;
    field.caption = row.label;
    field.element = pin;
    field.enabled = table != nullptr;
    field.text = field.enabled ? std::string(table->title)
                               : "There is no table " + numberText(unit.Get_GPIO_Param(pin, numberParameter));
    field.limits = field.enabled ? "" : "1 or 2";
    return field;
}

PageRow pinRow(Unit& unit, GpioModel& model, const GpioPinRow& pin) {
    PageRow row;
    row.caption = pin.text;
    const int code = model.storedCode(pin.pin);
    row.text = unit.GPIO_Function_Name(code);
    for (const GpioParamRow& each : model.Show_GPIO_Param(pin.pin, code)) {
        if (!isOnPage(each.form)) continue;
        row.elements.push_back(each.form == GpioRowForm::EditTable ? tableField(unit, each, pin.pin)
                                                                   : parameterField(each));
    }
    return row;
}

}  // namespace

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

std::vector<PageRow> pinRows(Unit& unit) {
    std::vector<PageRow> rows;
    GpioModel model(unit);
    for (const GpioPinRow& pin : model.Show_GPIO()) {
        skipFailing([&] { rows.push_back(pinRow(unit, model, pin)); });
    }
    return rows;
}

}  // namespace zentaq
