#include "config/display.h"

#include <algorithm>
#include <optional>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "base/utf8.h"
#include "config/ego_curve.h"
#include "config/gui_rules.h"
#include "config/shown_value.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

constexpr int splitPage = 13;  ///< which the engine may close
constexpr int trimsPage = 34;
constexpr int notesLength = 500;

bool isTemperature(const Parameter& parameter) {
    return parameter.unit == "Celsius";
}

// ---- The engine

/// An engine that the list lacks leaves the split as it was and the table open.
void showEngine(Unit& unit, Display& shown) {
    std::optional<EngineFacts> engine;
    if (unit.kind().hasCalibration) {
        skipFailing([&] {
            engine = unit.host().engine(unit.kind().displayedEngines, toInt16(unit.get("Option_Type")));
        });
    }
    if (engine) {
        shown.editDfub = engine->editDfub;
        unit.DefaultSplit(engine->defaultSplit);
    }
    shown.defaultSplit = unit.DefaultSplit();
}

// ---- Numbers

std::string rangeText(Unit& unit, const Parameter& parameter, int element) {
    return parameter.name == "Y" ? egoRatioLimits(unit, element).text : shownRange(unit, parameter, element);
}

// ---- Fields

std::string choiceText(Unit& unit, const FieldRow& row, const Parameter& parameter,
                       const DisplayNames& names) {
    if (row.control == "cmbEngine" && !names.engine.empty()) return names.engine;
    if (row.control == "cmbMAPSensors" && !names.sensor.empty()) return names.sensor;
    if (!row.choices[0].empty()) return std::string(row.choices[unit.read(parameter) != 0 ? 1 : 0]);
    return shownValue(unit, parameter, row, 0);
}

void showValue(Unit& unit, const FieldRow& row, const DisplayNames& names, Field& field) {
    if (row.kind == FieldKind::Notes) {
        field.text = unit.NOTES_TEXT();
        return;
    }
    if (row.kind == FieldKind::Option || row.kind == FieldKind::Check) {
        skipFailing([&] { field.on = fieldIsOn(unit, row); });
    }
    const Parameter* parameter = parameterOf(unit, row);
    if (parameter == nullptr) return;
    skipFailing([&] {
        field.text = row.kind == FieldKind::Choice ? choiceText(unit, row, *parameter, names)
                                                   : shownValue(unit, *parameter, row, field.element);
    });
    skipFailing([&] { field.limits = rangeText(unit, *parameter, field.element); });
    skipFailing([&] { field.axis = shownStop(unit, row.axis, field.element, parameter->count); });
    field.unit = shownUnit(unit, *parameter, row);
    // A fact of many cells is one line.
    if (row.kind != FieldKind::Fact) return;
    for (int i = 1; i < parameter->count; ++i)
        skipFailing([&] { field.text += ", " + shownValue(unit, *parameter, row, i); });
}

void showRow(Unit& unit, const FieldRow& row, const ControlRule& rule, const GuiRules& rules,
             const DisplayNames& names, Display& shown) {
    std::vector<int> elements;
    skipFailing([&] { elements = elementOrder(unit, row); });
    for (const int element : elements) {
        Field field;
        field.page = row.page;
        field.control = row.control;
        field.kind = row.kind;
        field.element = element;
        field.member = row.member;
        field.visible = rule.visible;
        field.enabled = rule.enabled && (row.control != "DualPLG" || shown.editDfub);
        field.caption = rule.caption;
        field.help = row.help.empty() ? rules.page(row.page)->help : std::string(row.help);
        field.onTheFly = sentOnTheFly(unit, row);
        showValue(unit, row, names, field);
        shown.fields.push_back(std::move(field));
    }
}

constexpr int everyPage = -1;

void showFields(Unit& unit, int page, const DisplayNames& names, Display& shown) {
    const GuiRules rules = guiRules(unit);
    const auto rows = fieldRows();
    const auto wanted = [page](int number) { return page == everyPage || page == number; };
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (!wanted(rows[i].page) || !rules.controls[i].visible) continue;
        showRow(unit, rows[i], rules.controls[i], rules, names, shown);
    }
    if (wanted(trimsPage) && rules.pageVisible(trimsPage) && unit.get("CYL_Number") == 0) {
        shown.notices.push_back({trimsPage, "NO ENGINE CONFIGURATION CURRENTLY SELECTED"});
    }
}

std::string unknownSensor(Unit& unit) {
    const int places = unit.MAPPrecision();
    return "Unknown (Range: " + numberText(roundTo(unit.MAPMin(), places)) + " to " +
           numberText(roundTo(unit.MAPMax(), places)) + " " + unit.MAPUnits() + ")";
}

}  // namespace

const Field* Display::field(std::string_view control, int element) const {
    const std::string wanted = upper(control);
    const auto found = std::ranges::find_if(fields, [&](const Field& field) {
        return field.element == element && upper(field.control) == wanted;
    });
    return found == fields.end() ? nullptr : &*found;
}

std::vector<const Field*> Display::page(int number) const {
    std::vector<const Field*> shown;
    for (const Field& field : fields) {
        if (field.page == number) shown.push_back(&field);
    }
    return shown;
}

DisplayNames displayNames(Unit& unit, const Database* database) {
    DisplayNames names;
    if (!unit.kind().hasCalibration) return names;
    skipFailing([&] { names.sensor = unknownSensor(unit); });
    if (database == nullptr) return names;
    skipFailing([&] {
        const auto engine = database->engine(unit.kind().engines, toInt16(unit.get("Option_Type")));
        if (engine) names.engine = engine->displayValue;
    });
    skipFailing([&] {
        const auto sensor = database->mapSensorByValues(unit.get("MAP_Scaler"), unit.get("MAP_Offset"));
        if (sensor) names.sensor = sensor->description;
    });
    return names;
}

Display display(Unit& unit, const DisplayNames& names) {
    Display shown;
    showEngine(unit, shown);
    showFields(unit, everyPage, names, shown);
    shown.mapUnits = unit.MAPUnits();
    if (const Field* type = shown.field("EGO_Type")) shown.egoType = static_cast<float>(numberOf(type->text));
    shown.onFly = unit.ONFLY_MODE();
    shown.onFlyPanel = shown.onFly ? "ONFLY" : "";
    if (const Field* notes = shown.field("txtNotesSection")) shown.notesCounter = notesCounter(notes->text);
    return shown;
}

Display displayOfPage(Unit& unit, int page) {
    Display shown;
    if (page == splitPage) showEngine(unit, shown);
    showFields(unit, page, {}, shown);
    return shown;
}

std::string notesCounter(std::string_view notes) {
    return "(" + numberText(static_cast<int>(characterCount(notes))) + " of " + numberText(notesLength) +
           " characters)";
}

std::string fieldEntry(const Unit& unit, const FieldRow& row, std::string_view shown) {
    const Parameter* parameter = parameterOf(unit, row);
    const bool converts = parameter != nullptr && isTemperature(*parameter) && !row.writerTakesShown &&
                          unit.host().fahrenheit();
    const auto number = parseNumber(shown);
    if (!converts || !number) return std::string(shown);
    return numberText(toCelsius(static_cast<float>(*number)));
}

}  // namespace zentaq
