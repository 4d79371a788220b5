// new, engines, sensors: a calibration made of the reference database, and what there is to choose from.
#include <algorithm>
#include <array>
#include <iterator>
#include <ostream>

#include "base/errors.h"
#include "base/json_writer.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "base/shown_text.h"
#include "commands.h"
#include "config/basic_figures.h"
#include "config/model_list.h"
#include "config/new_calibration.h"
#include "members.h"
#include "near_names.h"
#include "outputs.h"
#include "unit/legacy_sensor.h"
#include "unit_names.h"

namespace zentaq::ctl {

namespace {

/// A unit kind, and the entry of the model list where one was named.
struct Model {
    const UnitKind* kind = nullptr;
    const ModelEntry* entry = nullptr;
};

/// Without a kind for a name that is no model.
Model modelNamed(const std::string& text) {
    if (const ModelEntry* entry = modelEntryOf(text)) return {unitKindOfSlot(entry->slot), entry};
    return {unitKindOf(text), nullptr};
}

const Database& referenceOf(const Context& context) {
    const Database* database = nullptr;
    endOnFailure([&] { database = &context.database.get(); },
                 [](const std::string& why) {
                     throw Failure(why + "; engines, sensors and default values are in it");
                 });
    return *database;
}

/// Those of one variant, or of all variants of the kind.
std::vector<EngineRow> enginesOf(const Database& database, const Model& model) {
    if (model.entry != nullptr) return enginesOfModel(database, *model.entry);
    constexpr int lastVariant = 3;
    std::vector<EngineRow> engines;
    for (int variant = 0; variant <= lastVariant; ++variant) {
        for (EngineRow& engine : database.engines(model.kind->engines, variant)) {
            const bool known =
                std::ranges::find(engines, engine.optType, &EngineRow::optType) != engines.end();
            if (!known) engines.push_back(std::move(engine));
        }
    }
    std::ranges::sort(engines, {}, &EngineRow::displayValue);
    return engines;
}

/// The row of a name, capitals aside. Throws Failure with the names nearest to it.
template <typename Row>
const Row& rowNamed(const std::vector<Row>& rows, std::string Row::*name, const std::string& wanted,
                    const std::string& what) {
    std::vector<std::string> names;
    std::ranges::transform(rows, std::back_inserter(names), name);
    const int place = placeOf(names, wanted);
    if (place < 0) {
        const std::string meant = suggestion(names, wanted);
        throw Failure("There is no " + what + " \"" + shownBriefly(wanted) + '"' +
                      (meant.empty() ? "; \"zentaqctl " + what + "s\" lists them" : meant));
    }
    return rows[static_cast<std::size_t>(place)];
}

void expectTaken(const RefusedMembers& refused) {
    if (refused.empty()) return;
    throw Failure(refused.front().name + " does not take its value: " + refused.front().why.line());
}

// ---- Settings

struct Setting {
    std::string member;
    std::string value;
};

/// The figures that the default values follow from, in the order that their limits need.
constexpr std::array<std::string_view, 11> basicFigures = {
    "MAP_BAR", "REV_Limiter", "scale1", "INJ_On", "INJ_Number",  "MAX_Boost",
    "CAMSTL",  "Alcohol",     "AMP42",  "BHP",    "INJ_FlowRate"};

bool isBasic(const std::string& member) {
    return std::ranges::find(basicFigures, member) != basicFigures.end();
}

/// All are checked before anything is made. A member that is given again has its last value.
std::vector<Setting> settingsOf(const NewCalibration& wanted, const UnitKind& kind) {
    std::vector<Setting> settings;
    for (const std::string& text : wanted.settings) {
        const auto sign = text.find('=');
        const Member member = memberOf(kind, text.substr(0, sign));
        if (member.count > 1) {
            throw Failure(member.name + " has " + numberText(member.count) +
                          " elements; make the file, then change them by zentaqctl set --index");
        }
        std::erase_if(settings, [&](const Setting& earlier) { return earlier.member == member.name; });
        settings.push_back({member.name, text.substr(sign + 1)});
    }
    return settings;
}

void putPlainFigures(Unit& unit, const Database& database, const EngineRow& engine) {
    const EngineFigures plain = startingFigures(database, unit.kind());
    const std::pair<std::string_view, float> figures[] = {
        {"REV_Limiter", plain.revLimit},
        {"scale1", plain.fullScalePulse},
        {"INJ_On", plain.openingTime},
        {"INJ_Number", static_cast<float>(usualInjectors(engine))}};
    for (const auto& [member, value] : figures) unit.store(member, value);
}

void putFigures(QuietCalibration& calibration, const std::vector<Setting>& settings, float plainPulse) {
    const auto given = [&](std::string_view member) {
        return std::ranges::find(settings, member, &Setting::member);
    };
    for (const std::string_view member : basicFigures) {
        const auto setting = given(member);
        if (setting == settings.end()) continue;
        writeMember(calibration, memberOf(calibration.unit.kind(), setting->member), setting->value, 0);
    }
    Unit& unit = calibration.unit;
    if (given("scale1") == settings.end()) unit.store("scale1", usualPulse(unit, plainPulse));
    if (given("INJ_FlowRate") != settings.end()) return;
    const auto sizing = Calculate_FLOW(sizingInput(unit));
    if (sizing) unit.store("INJ_FlowRate", static_cast<float>(numberOf(flowText(sizing->InjectorFlow))));
}

/// An empty calibration gets what was asked for, and the defaults for all else.
void fill(QuietCalibration& calibration, const Database& database, const NewCalibration& wanted,
          const Model& model, const std::vector<Setting>& settings) {
    const Database::Reading reading(database);
    const auto engines = enginesOf(database, model);
    const auto sensors = database.mapSensors();
    const EngineRow& engine = rowNamed(engines, &EngineRow::displayValue, wanted.engine, "engine");
    const MapSensorRow& sensor = rowNamed(sensors, &MapSensorRow::description, wanted.sensor, "sensor");

    Unit& unit = calibration.unit;
    startNewCalibration(unit);
    expectTaken(chooseEngine(unit, engine));
    expectTaken(chooseSensor(unit, sensor));
    putPlainFigures(unit, database, engine);
    putFigures(calibration, settings, startingFigures(database, unit.kind()).fullScalePulse);
    expectTaken(loadDefaults(unit, database, figuresOf(unit)));
    unit.Initialize_Trims();
    unit.BinFile(wanted.output);  // before the others: a name that is given stays
    for (const Setting& setting : settings) {
        if (!isBasic(setting.member)) {
            writeMember(calibration, memberOf(unit.kind(), setting.member), setting.value, 0);
        }
    }
}

// ---- Lists

std::string modelOfEngine(const UnitKind& kind, const EngineRow& engine) {
    const ModelEntry* entry = modelEntryOf(kind, engine.orbSubType);
    return std::string(engine.orbSubType != 0 && entry != nullptr ? entry->name : kind.name);
}

std::string injectionOf(const UnitKind& kind, const EngineRow& engine) {
    constexpr std::array<std::string_view, 4> modes = {"sequential", "paired", "bank", "throttle body"};
    if (!kind.fuelSide) return "none";
    return std::string(modes.at(static_cast<std::size_t>(std::clamp(engine.injMode, 0.0F, 3.0F))));
}

struct ListedEngine {
    const UnitKind& kind;
    EngineRow row;
};

void writeText(std::ostream& out, const ListedEngine& engine) {
    out << modelOfEngine(engine.kind, engine.row) << '\t' << shownLine(engine.row.displayValue) << '\t'
        << engine.row.optType << '\t' << numberText(engine.row.cylinders) << '\t'
        << numberText(engine.row.ignRev) << '\t' << injectionOf(engine.kind, engine.row) << '\t'
        << numberText(engine.row.minOffset) << " to " << numberText(engine.row.maxOffset) << '\n';
}

void writeJson(JsonWriter& json, const ListedEngine& engine) {
    json.beginObject().member("kind", engine.kind.slot);
    json.member("model", modelOfEngine(engine.kind, engine.row));
    json.member("engine", engine.row.displayValue).member("option", engine.row.optType);
    json.member("cylinders", engine.row.cylinders).member("ignitionsATurn", engine.row.ignRev);
    json.member("injection", injectionOf(engine.kind, engine.row));
    json.member("toothMin", engine.row.minOffset).member("toothMax", engine.row.maxOffset);
    json.member("rotary", engine.row.rotary).member("dualPlug", engine.row.editDfub).endObject();
}

/// Pressure at 0 or 5 volts.
float pressureAt(const MapSensorRow& sensor, double volts) {
    return static_cast<float>(roundTo((volts - sensor.offset) / sensor.scale, 1));
}

constexpr double fullVolts = 5;

void writeText(std::ostream& out, const MapSensorRow& sensor) {
    out << sensor.id << '\t' << shownLine(sensor.description) << '\t' << numberText(sensor.scale) << '\t'
        << numberText(sensor.offset) << '\t' << pressureUnitsOf(sensor.units) << '\t'
        << numberText(pressureAt(sensor, 0)) << '\t' << numberText(pressureAt(sensor, fullVolts)) << '\n';
}

void writeJson(JsonWriter& json, const MapSensorRow& sensor) {
    json.beginObject().member("id", sensor.id).member("sensor", sensor.description);
    json.member("scale", sensor.scale).member("offset", sensor.offset);
    json.member("unit", pressureUnitsOf(sensor.units)).member("from", pressureAt(sensor, 0));
    json.member("to", pressureAt(sensor, fullVolts)).endObject();
}

template <typename Row>
void writeList(const Context& context, const char* headers, const std::vector<Row>& rows) {
    if (!context.json) {
        context.out << headers << '\n';
        for (const Row& row : rows) writeText(context.out, row);
        return;
    }
    JsonWriter json(context.out);
    json.beginArray();
    for (const Row& row : rows) writeJson(json, row);
    json.endArray();
    context.out << '\n';
}

}  // namespace

std::string wrongModel(const std::string& text) {
    if (modelNamed(text).kind != nullptr) return {};
    std::vector<std::string> names;
    for (const ModelEntry& entry : modelEntries()) names.emplace_back(entry.name);
    return shownBriefly(text) + " is no unit model" + suggestion(names, text);
}

void makeNew(const Context& context, const NewCalibration& wanted) {
    refuseStandardOutput(wanted.output);
    refuseReplacing(context, wanted.output, "calibration");
    const Model model = modelNamed(wanted.model);
    const std::vector<Setting> settings = settingsOf(wanted, *model.kind);
    const Database& database = referenceOf(context);
    QuietCalibration calibration(*model.kind, &database);
    fill(calibration, database, wanted, model, settings);
    const FileLock lock(wanted.output);
    saveCalibration(context, calibration.unit);
    tell(context, calibration.host);
    noteForeignExtension(context, calibration.unit.kind(), wanted.output);
}

void listEngines(const Context& context, const std::string& model) {
    const Database& database = referenceOf(context);
    std::vector<Model> models;
    if (!model.empty()) {
        models.push_back(modelNamed(model));
    } else {
        for (const UnitKind& kind : unitKinds()) {
            // The second kind of a class has the engines of the first.
            if (models.empty() || !shareFiles(*models.back().kind, kind)) models.push_back({&kind, nullptr});
        }
    }
    std::vector<ListedEngine> engines;
    for (const Model& each : models) {
        for (EngineRow& engine : enginesOf(database, each))
            engines.push_back({*each.kind, std::move(engine)});
    }
    writeList(context, "Model\tEngine\tOption\tCylinders\tIgnitions a turn\tInjection\tTooth offset",
              engines);
}

void listSensors(const Context& context) {
    writeList(context, "ID\tSensor\tVolts a unit\tVolts at 0\tUnit\tFrom\tTo",
              referenceOf(context).mapSensors());
}

}  // namespace zentaq::ctl
