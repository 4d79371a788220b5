#include "config/model_list.h"

#include <algorithm>
#include <array>

#include "base/text.h"
#include "refdata/schema.h"

namespace zentaq {

namespace {

constexpr std::array models = {ModelEntry{"ORB A Standard", 3, 1}, ModelEntry{"ORB A 6/12", 3, 2},
                               ModelEntry{"ORB AR", 3, 3},         ModelEntry{"ORB L", 4, 0},
                               ModelEntry{"PZK-2", 5, 0},          ModelEntry{"ORB D", 7, 0},
                               ModelEntry{"ORB C", 6, 0}};

constexpr int orbdSlot = 7;
constexpr int orbd6Slot = 8;

/// Serial codes of the units of slot 8, which the list has no entry of its own for.
constexpr int firstOrbd6 = 750'000;
constexpr int behindOrbd6 = 760'000;

}  // namespace

std::span<const ModelEntry> modelEntries() {
    return models;
}

const ModelEntry* modelEntryOf(std::string_view name) {
    const std::string wanted = upper(trimmed(name));
    const auto found =
        std::ranges::find_if(models, [&](const ModelEntry& m) { return upper(m.name) == wanted; });
    return found == models.end() ? nullptr : &*found;
}

const ModelEntry* modelEntryOfSlot(int slot, int variant) {
    const int listed = slot == orbd6Slot ? orbdSlot : slot;
    const ModelEntry* first = nullptr;
    for (const ModelEntry& model : models) {
        if (model.slot != listed) continue;
        if (model.variant == variant) return &model;
        if (first == nullptr) first = &model;
    }
    return first;
}

int slotOfModel(const ModelEntry& model, int serialNumber) {
    const bool isOrbd6 = serialNumber >= firstOrbd6 && serialNumber < behindOrbd6;
    return model.slot == orbdSlot && isOrbd6 ? orbd6Slot : model.slot;
}

int engineListKind(const UnitKind& kind) {
    return refdata::engineKindOfSlot(kind.slot);
}

std::vector<EngineRow> enginesOfModel(const Database& database, const ModelEntry& model) {
    return database.engines(engineListKind(*unitKindOfSlot(model.slot)), model.variant);
}

}  // namespace zentaq
