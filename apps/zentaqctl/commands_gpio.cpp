// gpio: the pins of a calibration, their functions and parameters.
#include <algorithm>
#include <ostream>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/text.h"
#include "commands.h"
#include "unit/gpio_model.h"

namespace zentaq::ctl {

namespace {

std::string withoutBlanks(std::string_view text) {
    std::string kept;
    for (const std::string& word : split(text, ' ')) {
        if (!word.empty()) kept += (kept.empty() ? "" : " ") + word;
    }
    return kept;
}

void writePin(const Context& context, GpioModel& model, Unit& unit, const GpioPinRow& pin) {
    const int code = model.storedCode(pin.pin);
    context.out << pin.pin << '\t' << withoutBlanks(pin.text) << '\t' << code << '\t'
                << unit.GPIO_Function_Name(code) << '\n';
    int number = 0;
    for (const GpioParamRow& row : model.Show_GPIO_Param(pin.pin, code)) {
        ++number;
        if (row.parameter < 0) continue;
        context.out << '\t' << number << '\t' << withoutBlanks(row.label) << '\t' << row.value << '\t'
                    << row.unit << '\t' << row.limits.text << '\n';
    }
}

/// Pins are numbered from 0, as everywhere.
int pinOf(GpioModel& model, int number) {
    const auto rows = model.Show_GPIO();
    const bool there = std::ranges::any_of(rows, [&](const GpioPinRow& row) { return row.pin == number; });
    if (!there)
        throw Failure("There is no pin " + numberText(number) + "; `zentaqctl gpio FILE` lists the pins");
    return number;
}

int codeOf(const GpioModel& model, Unit& unit, int pin, const std::string& function) {
    const auto number = parseNumber(function);
    if (number && *number == static_cast<int>(*number)) return static_cast<int>(*number);
    const std::string wanted = upper(trimmed(function));
    for (const auto& item : model.Show_GPIO_Func(pin).items) {
        if (upper(trimmed(item.text)) == wanted || upper(unit.GPIO_Function_Name(item.code)) == wanted)
            return item.code;
    }
    throw Failure("Pin " + numberText(pin) + " has no function " + function);
}

}  // namespace

void gpio(const Context& context, const std::string& file) {
    const auto calibration = openCalibration(context, file);
    GpioModel model(calibration->unit);
    context.out << "Pin\tName\tCode\tFunction\n";
    for (const GpioPinRow& pin : model.Show_GPIO()) writePin(context, model, calibration->unit, pin);
    tell(context, calibration->host);
}

void chooseFunction(const Context& context, const std::string& file, int number, const std::string& function,
                    const std::string& output) {
    Change change(context, file, output);
    Unit& unit = change.calibration().unit;
    GpioModel model(unit);
    const int pin = pinOf(model, number);
    const int code = codeOf(model, unit, pin, function);
    if (model.choose(pin, code) == GpioChoice::NotOffered) throw Failure(model.whyNot(pin, code));
    change.save();
}

void setParameter(const Context& context, const std::string& file, int number, const std::string& assignment,
                  const std::string& output) {
    const std::size_t sign = assignment.find('=');
    const auto row = parseNumber(assignment.substr(0, sign));
    if (sign == std::string::npos || !row || *row < 1 || *row != static_cast<int>(*row))
        throw Failure("--set takes ROW=VALUE, such as 1=6200; rows count from 1");
    Change change(context, file, output);
    Unit& unit = change.calibration().unit;
    GpioModel model(unit);
    const int pin = pinOf(model, number);
    const auto rows = model.Show_GPIO_Param(pin, model.storedCode(pin));
    const int place = static_cast<int>(*row) - 1;
    if (place >= static_cast<int>(rows.size()) || rows[static_cast<std::size_t>(place)].parameter < 0)
        throw Failure("Pin " + numberText(number) + " has no parameter in row " + numberText(place + 1));
    throwIfRefused(model.enter(pin, place, assignment.substr(sign + 1)));
    change.save();
}

}  // namespace zentaq::ctl
