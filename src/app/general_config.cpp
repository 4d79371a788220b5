#include "app/general_config.h"

#include <algorithm>
#include <cmath>

#include "app/general_fields.h"
#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/text.h"
#include "config/basic_figures.h"
#include "config/display.h"

namespace zentaq {

namespace {

bool isButton(const GeneralRow& row) {
    return row.kind == FieldKind::Option || row.kind == FieldKind::Check;
}

}  // namespace

GeneralConfig::GeneralConfig(Session& session) : session_(session), rows_(mostCells), columns_(mostCells) {}

GeneralConfig::~GeneralConfig() = default;

bool GeneralConfig::creating() const {
    return session_.creating();
}

bool GeneralConfig::modified() const {
    return entered_ && (creating() || session_.DataModified);
}

// ---- What is in hand

/// The list remembers a model by the file; else the engine or the unit on the link tells the variant.
const ModelEntry* GeneralConfig::modelInHand() {
    const int slot = session_.slotInHand();
    if (slot == 0) return nullptr;
    const ModelEntry* found = nullptr;
    int variant = 0;
    if (session_.link.linked().LinkedUnitKind == slot) variant = session_.link.linked().UnitSubType;
    skipFailing([&] {
        const Database* database = session_.reference();
        if (database == nullptr) return;
        const auto row = database->config(session_.CurrentFile);
        if (row) found = modelEntryOf(row->orbName);
        const int option = toInt16(static_cast<double>(unit().get("Option_Type")));
        const auto engine = database->engine(unit().kind().engines, option);
        if (engine && engine->orbSubType != 0) variant = engine->orbSubType;
    });
    const ModelEntry* byKind = modelEntryOf(unit().kind(), variant);
    return found != nullptr && byKind != nullptr && found->slot == byKind->slot ? found : byKind;
}

/// A calibration in hand stays one of its kind.
std::vector<const ModelEntry*> GeneralConfig::modelChoices() {
    std::vector<const ModelEntry*> choices;
    for (const ModelEntry& model : modelEntries()) {
        if (creating() || (inHand() && model.slot == model_->slot)) choices.push_back(&model);
    }
    return choices;
}

std::vector<EngineRow> GeneralConfig::engines() {
    std::vector<EngineRow> rows;
    skipFailing([&] {
        const Database* database = session_.reference();
        if (database != nullptr && inHand()) rows = enginesOfModel(*database, *model_);
    });
    return rows;
}

std::vector<MapSensorRow> GeneralConfig::sensors() {
    std::vector<MapSensorRow> rows;
    skipFailing([&] {
        if (const Database* database = session_.reference()) rows = database->mapSensors();
    });
    return rows;
}

// ---- Showing

Field GeneralConfig::field(std::string_view control) {
    const GeneralRow& row = generalRow(control);
    Field field;
    field.control = row.control;
    field.kind = row.kind;
    field.member = row.member;
    field.caption = captionOf(row);
    field.help = row.help;
    skipFailing([&] {
        if (row.member == "MAX_Boost" && inHand()) field.caption = maxBoostCaption(unit());
    });
    field.enabled = enabled(row);
    if (row.kind == FieldKind::Choice) field.choices = choicesOf(row);
    // A value that cannot be read leaves the field empty.
    skipFailing([&] { field.text = textOf(row); });
    skipFailing([&] { field.limits = limitsOf(row); });
    if (!inHand() || row.member.empty()) return field;
    field.on = isButton(row) && field.enabled && fieldIsOn(unit(), row);
    const Parameter* parameter = unit().find(row.member);
    field.onTheFly = !creating() && unit().ONFLY_MODE() && parameter != nullptr && parameter->sentOnTheFly();
    return field;
}

bool GeneralConfig::enabled(const GeneralRow& row) {
    if (row.control == "cmbORB_UNIT") return modelChoices().size() > 1;
    if (!inHand()) return true;
    // The table window adds and removes rows and columns of tables that are filled.
    if (row.control == "cmbCols" || row.control == "cmbRows") {
        return creating() && unit().kind().cells.hasAxisWords;
    }
    if (row.member == "MAX_Boost" && !boostUsed(unit())) return false;
    return row.member.empty() || unit().has(row.member);
}

std::string GeneralConfig::textOf(const GeneralRow& row) {
    if (isButton(row)) return {};
    if (row.control == "cmbCols" || row.control == "cmbRows") {
        const bool columns = row.control == "cmbCols";
        const bool fixed = inHand() && !(creating() && unit().kind().cells.hasAxisWords);
        if (fixed) return numberText(unit().GET_TBL_DIMENSIONS("ADV", columns ? "COLS" : "ROWS"));
        return numberText(columns ? columns_ : rows_);
    }
    if (!inHand()) return {};
    if (row.control == "cmbORB_UNIT") return std::string(model_->name);
    const Database* database = session_.reference();
    if (row.control == "cmbEngine") {
        const auto engine = database == nullptr
                                ? std::nullopt
                                : database->engine(unit().kind().engines,
                                                   toInt16(static_cast<double>(unit().get("Option_Type"))));
        return engine ? engine->displayValue : std::string();
    }
    if (row.control == "cmbMAP") {
        return unit().get("MAP_ID") == 0 ? std::string() : displayNames(unit(), database).sensor;
    }
    if (!unit().has(row.member)) return {};
    if (row.control == "cmbCams") return std::string(row.choices[unit().get(row.member) != 0 ? 1 : 0]);
    if (row.member == "MAX_Boost")
        return boostUsed(unit()) ? numberText(enteredBoost(unit())) : std::string();
    const float value = unit().get(row.member);
    if (row.member == "INJ_FlowRate") return value == 0 ? std::string() : flowText(value);
    return numberText(value);
}

std::vector<std::string> GeneralConfig::choicesOf(const GeneralRow& row) {
    std::vector<std::string> choices;
    if (row.control == "cmbORB_UNIT") {
        for (const ModelEntry* model : modelChoices()) choices.emplace_back(model->name);
    } else if (row.control == "cmbEngine") {
        for (EngineRow& engine : engines()) choices.push_back(std::move(engine.displayValue));
    } else if (row.control == "cmbMAP") {
        for (MapSensorRow& sensor : sensors()) choices.push_back(std::move(sensor.description));
    } else if (row.control == "cmbCams") {
        choices.assign(row.choices.begin(), row.choices.end());
    } else {
        for (int cells = fewestCells; cells <= mostCells; ++cells) choices.push_back(numberText(cells));
    }
    return choices;
}

std::string GeneralConfig::limitsOf(const GeneralRow& row) {
    if (row.member == "MAX_Boost" && inHand() && boostUsed(unit())) return "gauge, 0: none";
    if (row.kind != FieldKind::Number || row.limitsInCaption || !inHand()) return {};
    const Limits limits = figureLimits(unit(), row.member);
    return limits.unlimited() ? std::string() : limits.text;
}

// ---- Entries

bool GeneralConfig::enter(std::string_view control, std::string_view text) {
    const GeneralRow& row = generalRow(control);
    if (isButton(row)) {
        click(control, text == "1");
        return true;
    }
    std::string shown;
    skipFailing([&] { shown = textOf(row); });
    if (text == shown) return true;
    return row.kind == FieldKind::Choice ? choose(row, text) : enterText(row, text);
}

bool GeneralConfig::enterText(const GeneralRow& row, std::string_view text) {
    if (!inHand() || trimmed(text).empty()) {
        session_.messages.Display_Error(codes::NoModel);
        return false;
    }
    if (row.kind != FieldKind::Number || !enabled(row)) return true;
    if (session_.messages.tell(checkNumeric(text))) return false;
    const double number = numberOf(text);
    if (!std::isfinite(static_cast<float>(number))) {
        session_.messages.Display_Warning(codes::NotANumber, "Retype Data");
        return false;
    }
    if (session_.messages.tell(checkFigure(unit(), row.member, number))) return false;
    if (!write(row.member, number)) return false;
    if (row.member == "INJ_FlowRate" && sizing_) sizing_->InjectorFlow = unit().get(row.member);
    noteChange(row);
    return true;
}

void GeneralConfig::click(std::string_view control, bool on) {
    const GeneralRow& row = generalRow(control);
    if (!isButton(row)) return;
    if (!inHand()) return session_.messages.Display_Error(codes::NoModel);
    // The option that goes out says nothing: the one that comes on does.
    if (!enabled(row) || (row.kind == FieldKind::Option && !on)) return;
    const float value = row.control == "optInjAmp2" || !on ? 0 : 1;
    if (unit().get(row.member) == value || !write(row.member, value)) return;
    noteChange(row);
}

bool GeneralConfig::write(std::string_view member, double value) {
    return !session_.messages.tell(unit().set(member, value));
}

void GeneralConfig::noteChange(const GeneralRow& row) {
    entered_ = true;
    if (creating() && !row.member.empty()) {
        const bool boost = row.member == "MAX_Boost";
        figures_[std::string(row.member)] = boost ? enteredBoost(unit()) : unit().get(row.member);
    }
    if (row.computes != Computes::Nothing) offerPulse();
    if (row.computes == Computes::FlowAndPulse) computeFlow();
    if (row.computes == Computes::Pulse) computePulse();
    if (creating()) return;
    session_.markModified();
    session_.windows().tell(&WindowNews::showUnit);
    if (unit().ONFLY_MODE()) session_.windows().tell(&WindowNews::onFlyChanged, true);
}

void GeneralConfig::noteRefused(const RefusedMembers& refused) {
    std::vector<Refusal> reasons;
    for (const RefusedMember& member : refused) noteRefusal(reasons, member.why);
    session_.messages.tell(reasons);
    for (const RefusedMember& member : refused) session_.sysLog("Not taken: " + member.name);
}

// ---- Lists

bool GeneralConfig::refuseChoice() {
    session_.messages.Display_Warning(codes::InvalidEntry);
    return false;
}

bool GeneralConfig::choose(const GeneralRow& row, std::string_view text) {
    if (row.control == "cmbORB_UNIT") return chooseModel(text);
    if (!inHand() || trimmed(text).empty()) {
        session_.messages.Display_Error(codes::NoModel);
        return false;
    }
    if (!enabled(row)) return true;
    if (row.control == "cmbEngine") return chooseEngineByName(text);
    if (row.control == "cmbMAP") return chooseSensorByName(text);
    if (row.control == "cmbCams") return chooseCamshaft(row, text);
    return chooseSize(row, text);
}

bool GeneralConfig::chooseModel(std::string_view text) {
    const ModelEntry* model = modelEntryOf(text);
    if (model == nullptr || (!creating() && !inHand())) {
        session_.messages.Display_Error(codes::NoModel);
        return false;
    }
    if (creating()) {
        begin(*model);
        return true;
    }
    if (model->slot != model_->slot) {
        session_.messages.Display_Warning(codes::OwnWarning,
                                          "This calibration is for " + std::string(model_->name) +
                                              " and cannot become one for " + std::string(model->name) +
                                              ".\nCreate a new calibration file for that unit.");
        return false;
    }
    model_ = model;
    session_.FileFilterIndex = unit().kind().fileFilter;
    if (!session_.CurrentFile.empty()) storeConfig();
    return true;
}

bool GeneralConfig::chooseEngineByName(std::string_view text) {
    const std::vector<EngineRow> rows = engines();
    const auto engine = std::ranges::find(rows, text, &EngineRow::displayValue);
    if (engine == rows.end()) return refuseChoice();
    // Nothing goes to a running engine: trigger layout and tooth offsets belong together, and a unit takes
    // the layout with the next programming only.
    noteRefused(chooseEngine(unit(), *engine));
    unit().Initialize_Trims();
    if (creating() && !figures_.contains("INJ_Number")) write("INJ_Number", usualInjectors(*engine));
    GeneralRow row = generalRow("cmbEngine");
    row.computes = Computes::FlowAndPulse;
    noteChange(row);
    return true;
}

bool GeneralConfig::chooseSensorByName(std::string_view text) {
    const std::vector<MapSensorRow> rows = sensors();
    const auto sensor = std::ranges::find(rows, text, &MapSensorRow::description);
    if (sensor == rows.end()) return refuseChoice();
    noteRefused(creating() ? chooseSensor(unit(), *sensor) : changeSensor(unit(), *sensor));
    figures_.erase("MAP_BAR");  // the sensor tells its own
    GeneralRow row = generalRow("cmbMAP");
    row.computes = Computes::FlowAndPulse;
    noteChange(row);
    return true;
}

bool GeneralConfig::chooseCamshaft(const GeneralRow& row, std::string_view text) {
    const auto chosen = std::ranges::find(row.choices, text);
    if (chosen == row.choices.end()) return refuseChoice();
    if (!write(row.member, chosen == row.choices.begin() ? 0 : 1)) return false;
    noteChange(row);
    return true;
}

bool GeneralConfig::chooseSize(const GeneralRow& row, std::string_view text) {
    const auto choices = choicesOf(row);
    if (std::ranges::find(choices, text) == choices.end()) return refuseChoice();
    int& size = row.control == "cmbCols" ? columns_ : rows_;
    size = static_cast<int>(numberOf(text));
    entered_ = true;
    return true;
}

// ---- Computed figures

/// What the calibration holds, as it was stored: nothing is computed into it by looking.
void GeneralConfig::showComputed() {
    sizing_.reset();
    lblUAP_.clear();
    if (!inHand()) return;
    skipFailing([&] {
        sizing_ = Calculate_FLOW(sizingInput(unit()));
        const float fitted = unit().get("INJ_FlowRate");
        if (sizing_ && fitted > 0) sizing_->InjectorFlow = fitted;
        computePulse();
    });
}

/// Until the user enters one of his own.
void GeneralConfig::offerPulse() {
    if (!creating() || figures_.contains("scale1") || !unit().has("scale1")) return;
    unit().store("scale1", usualPulse(unit(), atFirst("scale1")));
}

/// A division that fails leaves the last figures.
void GeneralConfig::computeFlow() {
    skipFailing([&] {
        const auto sizing = Calculate_FLOW(sizingInput(unit()));
        if (!sizing) return;
        sizing_ = sizing;
        figures_.erase("INJ_FlowRate");
        write("INJ_FlowRate", numberOf(flowText(sizing->InjectorFlow)));
    });
    computePulse();
}

void GeneralConfig::computePulse() {
    if (!sizing_) return;
    skipFailing([&] {
        const auto pulse = Calculate_UAP(sizingInput(unit()), *sizing_);
        if (pulse) lblUAP_ = formatNumber(*pulse, "##.000");
    });
}

}  // namespace zentaq
