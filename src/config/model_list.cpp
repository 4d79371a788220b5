#include "config/model_list.h"

#include <algorithm>
#include <map>

#include "base/text.h"

namespace zentaq {

namespace {

std::vector<ModelEntry> makeModelEntries() {
    std::map<int, ModelEntry> byPlace;
    for (const UnitKind& kind : unitKinds()) {
        for (const UnitModel& model : kind.models)
            byPlace[model.place] = {model.name, kind.slot, model.variant};
    }
    std::vector<ModelEntry> models;
    for (const auto& [place, model] : byPlace) models.push_back(model);
    return models;
}

}  // namespace

std::span<const ModelEntry> modelEntries() {
    static const std::vector<ModelEntry> models = makeModelEntries();
    return models;
}

const ModelEntry* modelEntryOf(std::string_view name) {
    const std::string wanted = upper(trimmed(name));
    const auto models = modelEntries();
    const auto found =
        std::ranges::find_if(models, [&](const ModelEntry& m) { return upper(m.name) == wanted; });
    return found == models.end() ? nullptr : &*found;
}

const ModelEntry* modelEntryOf(const UnitKind& kind, int variant) {
    const ModelEntry* first = nullptr;
    for (const ModelEntry& model : modelEntries()) {
        if (!shareFiles(*unitKindOfSlot(model.slot), kind)) continue;
        if (model.variant == variant) return &model;
        if (first == nullptr) first = &model;
    }
    return first;
}

int slotOfModel(const ModelEntry& model, int serialNumber) {
    const UnitKind* linked = unitKindOfSerial(serialNumber);
    return linked != nullptr && shareFiles(*linked, *unitKindOfSlot(model.slot)) ? linked->slot : model.slot;
}

std::vector<EngineRow> enginesOfModel(const Database& database, const ModelEntry& model) {
    return database.engines(unitKindOfSlot(model.slot)->engines, model.variant);
}

}  // namespace zentaq
