#include "calibration/calibration_view.h"

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "unit/gpio_functions.h"
#include "unit/gpio_pins.h"
#include "unit/legacy_sensor.h"

namespace zentaq {

namespace {

constexpr int tableColumns = 16;
constexpr int shownStops = 16;
constexpr int controlBytes = 3;

std::optional<int> functionOf(const CalibrationBytes& file, int pin) {
    return byteOf(file.cell(file.kind->gpioBase + CalibrationCells::blockCells * pin));
}

bool isPressure(const GpioRow* row) {
    return row != nullptr && (row->form == GpioRowForm::Pressure || row->form == GpioRowForm::PressureHint);
}

}  // namespace

CalibrationView::CalibrationView(const CalibrationBytes& file, const CalibrationCells& cells)
    : file_(file), cells_(cells), unit_(*file.kind, host_) {
    for (int i = 0; i < file.count(); ++i) unit_.AssignDirectIndex(floatOf(file.cell(i)), i);
    for (int i = 0; i < controlBytes; ++i) {
        unit_.controlByte(i, static_cast<std::uint8_t>(byteOf(file.cell(i)).value_or(0)));
    }
    const FirmwareVersion firmware = firmwareOf(file.header[2]).value_or(file.kind->expected);
    unit_.FW_Release(firmware.release);
    unit_.FW_Build(firmware.build);
}

std::optional<float> CalibrationView::number(int cell) {
    const CellPlace& place = cells_.place(cell);
    const float value = floatOf(file_.cell(cell));
    try {
        if (place.role == CellRole::Member) return unit_.read(*place.row, place.element);
        return isPressure(rowOf(place)) ? userPressure(value) : value;
    } catch (const Failure&) {
        return {};  // a rating or a size that no unit has
    }
}

/// A parameter of a pin holds the unit's own kPa, as the pressure members do.
float CalibrationView::userPressure(float kpa) {
    return roundTo(unit_.voltsToPressure(unit_.KpaToVolts(kpa)), unit_.MAPPrecision());
}

/// The row of the manager that edits a parameter of a pin; nullptr for a cell that no row edits.
const GpioRow* CalibrationView::rowOf(const CellPlace& place) const {
    if (place.role != CellRole::PinParameter) return nullptr;
    const auto code = functionOf(file_, place.number);
    if (!code) return nullptr;
    const FirmwareVersion firmware = unit_.firmware();
    for (const GpioRow& row : gpioRowsOf(file_.kind->pins->kind, *code, firmware)) {
        if (row.parameter == place.element) return &row;
    }
    return nullptr;
}

std::string CalibrationView::unitOf(const CellPlace& place) const {
    if (place.role == CellRole::OutputTable) return "%";
    if (place.role == CellRole::RowStop) return stopUnit(place.number, true);
    if (place.role == CellRole::ColumnStop) return stopUnit(place.number, false);
    if (const GpioRow* row = rowOf(place)) {
        if (isPressure(row)) return unit_.MAPUnits();
        return row->form == GpioRowForm::Temperature ? "C" : std::string(row->word);
    }
    if (place.role != CellRole::Member) return {};
    return place.row->unit == "MAP" ? unit_.MAPUnits() : std::string(place.row->unit);
}

std::string CalibrationView::text(int cell) {
    const CellPlace& place = cells_.place(cell);
    const CellBits bits = file_.cell(cell);
    const auto byte = byteOf(bits);
    if (place.role == CellRole::PinFunction && byte) {
        const std::string name = functionName(*byte);
        return name.empty() ? exactText(bits) : exactText(bits) + " " + name;
    }
    if (place.role == CellRole::Units && byte && !pressureUnitsOf(*byte).empty()) {
        return std::string(pressureUnitsOf(*byte));
    }
    if (place.role == CellRole::AxisKinds && byte && *byte != 0) {
        return std::string(axisKindName(*byte / 16)) + " by " + std::string(axisKindName(*byte % 16));
    }
    const auto value = number(cell);
    return value ? numberText(*value) : exactText(bits);
}

std::string CalibrationView::stopUnit(int table, bool rows) const {
    if (!file_.kind->cells.hasAxisWords) return rows ? unit_.MAPUnits() : "RPM";
    const auto word = byteOf(file_.cell(outputTable(table).axisWord));
    return axisUnit(unit_, axisKindOf(!word ? 0 : rows ? *word / 16 : *word % 16));
}

std::string CalibrationView::axesText(const CellPlace& place) {
    if (!place.isTable()) return {};
    return headerText(place, true) + ", " + headerText(place, false);
}

std::string CalibrationView::headerText(const CellPlace& place, bool rows) {
    const int index = rows ? place.element / tableColumns : place.element % tableColumns;
    const int table = place.role == CellRole::OutputTable ? place.number : 0;
    const std::string_view axis = rows ? "Y-Axis" : "X-Axis";
    const auto at = static_cast<std::size_t>(index + (rows ? 0 : shownStops));
    std::optional<std::string>& header = headers_[static_cast<std::size_t>(table)][at];
    if (header) return *header;
    std::string unit;
    std::string value;
    try {
        if (table == 0) {
            unit = rows ? unit_.MAPUnits() : "RPM";
            value = numberText(unit_.get(mainAxisMember(axis), index));
        } else {
            unit = stopUnit(table, rows);
            value = numberText(unit_.Get_GPO_Stop(index, axis, outputTable(table).name));
        }
    } catch (const Failure&) {
        value = "?";  // an axis that no sensor of the file explains
    }
    header = unit.empty() ? value : value + " " + unit;
    return *header;
}

std::string CalibrationView::functionName(int code) const {
    const GpioFunction* function = gpioFunctionOf(file_.kind->pins->kind, code);
    return function == nullptr ? std::string() : std::string(function->name);
}

std::string CalibrationView::pinText(const CellPlace& place) const {
    const GpioPin* pin = file_.kind->pins->find(place.number);
    std::string text = pin == nullptr ? std::string() : "pin " + std::string(pin->wire);
    const GpioRow* row = rowOf(place);
    if (row == nullptr) return text;
    const std::string function = functionName(*functionOf(file_, place.number));
    std::string label{trimmed(row->label)};
    if (const auto gap = label.find("{}"); gap != std::string::npos) label.replace(gap, 2, function);
    return text + (text.empty() ? "" : ", ") + function + ": " + label;
}

ShownPair shownPair(CalibrationView& first, int firstCell, CalibrationView& second, int secondCell) {
    ShownPair shown = {first.text(firstCell), second.text(secondCell)};
    if (shown.first != shown.second) return shown;
    const auto a = first.number(firstCell);
    const auto b = second.number(secondCell);
    if (a && b) shown = {exactText(bitsOf(*a)), exactText(bitsOf(*b))};
    if (shown.first != shown.second) return shown;
    shown.first += " (cell " + exactText(first.file().cell(firstCell)) + ")";
    shown.second += " (cell " + exactText(second.file().cell(secondCell)) + ")";
    return shown;
}

}  // namespace zentaq
