#include "app/page_editor.h"

#include <algorithm>
#include <cmath>

#include "app/unit_copy.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/text.h"
#include "base/utf8.h"
#include "config/basic_figures.h"
#include "config/ego_curve.h"
#include "config/kind_defaults.h"
#include "config/model_list.h"
#include "config/new_calibration.h"
#include "config/page_switches.h"
#include "config/pressure_units.h"
#include "config/shown_value.h"

namespace zentaq {

namespace {

bool isSwitch(const FieldRow& row) {
    return row.kind == FieldKind::Option || row.kind == FieldKind::Check;
}

const FieldRow* rowOf(int page, std::string_view control) {
    const auto rows = fieldsOfPage(page);
    const auto found = std::ranges::find(rows, control, &FieldRow::control);
    return found == rows.end() ? nullptr : &*found;
}

std::string formerText(const Field& now, const Field& before) {
    const bool isSwitch = now.kind == FieldKind::Option || now.kind == FieldKind::Check;
    if (isSwitch) return now.on == before.on ? std::string() : before.on ? "on" : "off";
    if (now.text == before.text) return {};
    return before.text.empty() ? "empty" : before.text;
}

constexpr std::string_view canWarningTitle = "CAN Warning";
constexpr std::string_view canWarning =
    "To use the CAN bus you MUST have the CAN 'Y' cable.\n"
    "If you do not have the 'Y' cable, you must clip pin 1 from your\n"
    "serial cable to prevent communication problems with Zentaq.";

constexpr std::size_t notesLetters = 500;
constexpr int notesPage = 15;

}  // namespace

PageEditor::PageEditor(Session& session) : session_(session) {}

// ---- Showing

Display PageEditor::page(int number) {
    Display shown = displayOfPage(unit(), number);
    for (Field& field : shown.fields) {
        if (field.kind == FieldKind::Choice) nameChoices(field);
        // One that is switched alone is a box to check, whatever the system calls it.
        if (field.kind == FieldKind::Option && groupOf(field.control).empty()) field.kind = FieldKind::Check;
    }
    if (const Field* notes = shown.field("txtNotesSection")) shown.notesCounter = notesCounter(notes->text);
    shown.onFly = unit().ONFLY_MODE();
    markFormer(number, shown);
    return shown;
}

void PageEditor::markFormer(int number, Display& shown) {
    if (session_.opened == nullptr || !unit().kind().hasCalibration) return;
    skipFailing([&] {
        UnitCopy opened(session_, *session_.opened);
        const Display before = displayOfPage(opened.unit(), number);
        for (Field& field : shown.fields) {
            const Field* former = before.field(field.control, field.element);
            if (former != nullptr && field.kind != FieldKind::Choice)
                field.former = formerText(field, *former);
        }
    });
}

std::vector<std::string> PageEditor::choicesOf(const FieldRow& row) {
    std::vector<std::string> choices;
    if (!row.choices[0].empty()) return {row.choices.begin(), row.choices.end()};
    if (row.control == "optFuelAFR") {
        for (const FuelChoice& fuel : fuelChoices()) choices.emplace_back(fuel.name);
        return choices;
    }
    skipFailing([&] {
        const Database* database = session_.reference();
        if (database == nullptr) return;
        if (row.control == "cmbEngine") {
            if (const ModelEntry* model = modelEntryOf(unit().kind())) {
                for (EngineRow& engine : enginesOfModel(*database, *model))
                    choices.push_back(engine.displayValue);
            }
        } else if (row.control == "cmbMAPSensors") {
            for (MapSensorRow& sensor : database->mapSensors()) choices.push_back(sensor.description);
        } else if (row.control == "EGO_Type") {
            for (EgoPreset& preset : egoPresets(*database)) choices.push_back(preset.name);
        }
    });
    return choices;
}

void PageEditor::nameChoices(Field& field) {
    const FieldRow* row = rowOf(field.page, field.control);
    if (row == nullptr) return;
    field.choices = choicesOf(*row);
    skipFailing([&] {
        const Database* database = session_.reference();
        const DisplayNames names = displayNames(unit(), database);
        if (row->control == "cmbEngine") field.text = names.engine.empty() ? "Unknown" : names.engine;
        if (row->control == "cmbMAPSensors") field.text = names.sensor;
        if (row->control == "EGO_Type") {
            const std::string preset = database == nullptr ? "" : egoPresetOf(unit(), egoPresets(*database));
            const bool wide = static_cast<int>(unit().get("EGO_Type")) == wideBand;
            field.text = !preset.empty() ? preset : wide ? "Wideband, own curve" : "Narrow band, own curve";
        }
        if (row->control == "optFuelAFR") {
            const auto fuel = std::ranges::find(fuelChoices(), unit().get("AFR"), &FuelChoice::ratio);
            if (fuel != fuelChoices().end()) field.text = fuel->name;
        }
    });
    field.unit.clear();
    field.limits.clear();
}

// ---- Entries

bool PageEditor::enter(int page, std::string_view control, int element, std::string_view text) {
    const FieldRow* row = rowOf(page, control);
    if (row == nullptr || !fieldExists(unit(), *row)) return true;
    if (row->kind == FieldKind::Notes) return enterNotes(text);
    if (isSwitch(*row)) return flip(*row, text == "1");
    if (row->kind == FieldKind::Choice) return choose(*row, text);
    if (row->kind == FieldKind::Fact || element < 0 || element >= shownElements(unit(), *row)) return true;
    return enterNumber(*row, element, text);
}

bool PageEditor::enterNumber(const FieldRow& row, int element, std::string_view text) {
    const Parameter* parameter = parameterOf(unit(), row);
    std::string shown;
    skipFailing([&] { shown = shownValue(unit(), *parameter, row, element); });
    if (text == shown) return true;
    if (session_.messages.tell(checkFilled(text)) || session_.messages.tell(checkNumeric(text))) return false;
    const std::string entry = fieldEntry(unit(), row, trimmed(text));
    if (session_.messages.tell(checked(row, element, entry))) return false;
    if (session_.messages.tell(unit().set(row.member, entry, element))) return false;
    return done(row);
}

/// What the member's own range does not tell.
EntryOutcome PageEditor::checked(const FieldRow& row, int element, std::string_view entry) {
    const double number = numberOf(entry);
    if (!std::isfinite(static_cast<float>(number)))
        return Refusal{.warning = codes::NotANumber, .text = "Retype Data"};
    if (row.control == "EGO_AFRatio")
        return checkLimits(static_cast<float>(number), egoRatioLimits(unit(), element));
    if (row.control == "EGO_Volts") return checkEgoVolts(unit(), element, static_cast<float>(number));
    if (row.control == "txtCYL_FIRE") {
        const int cylinders = shownElements(unit(), row);
        auto within = checkLimits(static_cast<float>(number),
                                  {1, static_cast<float>(cylinders), "(1 to " + numberText(cylinders) + ")"});
        return within ? checkWhole(number) : within;
    }
    // Those that the member's own range does not tell; a pressure of 0, which stands for none, has others.
    return figureRange(row.member).empty() ? EntryOutcome() : checkFigure(unit(), row.member, number);
}

bool PageEditor::enterNotes(std::string_view text) {
    const std::string kept(firstCharacters(text, notesLetters));
    if (kept == unit().NOTES_TEXT()) return true;
    unit().NOTES_TEXT(kept);
    return done(*rowOf(notesPage, "txtNotesSection"));
}

bool PageEditor::flip(const FieldRow& row, bool on) {
    if (fieldIsOn(unit(), row) == on) return true;
    if (!on && !groupOf(row.control).empty()) return true;
    const auto refused =
        setSwitch(unit(), row, on, [this](std::string_view member) { return startOf(member); });
    session_.messages.tell(refused);
    done(row);
    if (row.control == "optTDC_Param1" && on) {
        session_.dialogs().show(
            {std::string(canWarningTitle), std::string(canWarning), Icon::Exclamation, Buttons::Ok});
    }
    return refused.empty();
}

/// As a new calibration begins, in the unit of the member's entries.
std::optional<double> PageEditor::startOf(std::string_view member) {
    std::optional<double> value;
    skipFailing([&] {
        const Database* database = session_.reference();
        if (database == nullptr) return;
        const float number = KindDefaults(*database, unit().kind()).of(member, 1).front();
        if (number == 0) return;
        value = member == "ACE1" ? spanFromKpa(unit(), number) : static_cast<double>(number);
    });
    return value;
}

// ---- Lists

bool PageEditor::refuseChoice() {
    session_.messages.Display_Warning(codes::InvalidEntry);
    return false;
}

bool PageEditor::choose(const FieldRow& row, std::string_view text) {
    if (row.control == "cmbEngine") return chooseEngineByName(text);
    if (row.control == "cmbMAPSensors") return chooseSensorByName(text);
    if (row.control == "EGO_Type") return chooseEgoPreset(text);
    if (row.control == "optFuelAFR") return chooseFuel(text);
    const auto chosen = std::ranges::find(row.choices, text);
    if (chosen == row.choices.end()) return refuseChoice();
    if (session_.messages.tell(unit().set(row.member, chosen == row.choices.begin() ? 0 : 1))) return false;
    return done(row);
}

bool PageEditor::chooseEngineByName(std::string_view text) {
    const Database* database = session_.reference();
    const auto engine =
        database == nullptr ? std::nullopt : database->engineByName(text, unit().kind().engines);
    if (!engine) return refuseChoice();
    std::vector<Refusal> refused;
    for (const RefusedMember& member : chooseEngine(unit(), *engine)) noteRefusal(refused, member.why);
    session_.messages.tell(refused);
    unit().Initialize_Trims();
    return done(*fieldOf("cmbEngine"));
}

bool PageEditor::chooseSensorByName(std::string_view text) {
    const Database* database = session_.reference();
    const auto sensor = database == nullptr ? std::nullopt : database->mapSensorByName(text);
    // Kept: one that the list does not have leaves the values.
    if (!sensor) return true;
    std::vector<Refusal> refused;
    for (const RefusedMember& member : changeSensor(unit(), *sensor)) noteRefusal(refused, member.why);
    session_.messages.tell(refused);
    return done(*fieldOf("cmbMAPSensors"));
}

bool PageEditor::chooseEgoPreset(std::string_view text) {
    std::vector<EgoPreset> presets;
    skipFailing([&] {
        if (const Database* database = session_.reference()) presets = egoPresets(*database);
    });
    const auto preset = std::ranges::find(presets, text, &EgoPreset::name);
    if (preset == presets.end()) return refuseChoice();
    const bool trims = hasFuelTrims(unit());
    session_.messages.tell(putEgoPreset(unit(), *preset));
    if (trims) session_.notice("With a new curve the fuel trims of the cylinders begin anew, at 0.");
    return done(*fieldOf("EGO_Type"));
}

bool PageEditor::chooseFuel(std::string_view text) {
    const auto fuel = std::ranges::find(fuelChoices(), text, &FuelChoice::name);
    if (fuel == fuelChoices().end()) return refuseChoice();
    if (session_.messages.tell(unit().set("AFR", static_cast<double>(fuel->ratio)))) return false;
    return done(*fieldOf("optFuelAFR"));
}

/// Behind a change: the calibration is another one, and all windows show it.
bool PageEditor::done(const FieldRow& row) {
    session_.markModified();
    session_.windows().tell(&WindowNews::showUnit);
    // The tachometer's face depends on the limit.
    if (row.control == "txtREV_Primary" && session_.Monitoring) session_.applyMonitorMode();
    return true;
}

}  // namespace zentaq
