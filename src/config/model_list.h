// The models that a new calibration can be for, in the order of the list `cmbORB_UNIT`.
// A model is a unit kind and, where a kind has several, a variant of its engine list.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "refdata/database.h"
#include "unit/unit_kind.h"

namespace zentaq {

/// One entry of the model list `cmbORB_UNIT`.
struct ModelEntry {
    std::string_view name;  ///< "ORB A Standard"
    int slot = 0;           ///< what `CurrentUnit` becomes, but for the ORB D6: see slotOfModel
    int variant = 0;        ///< of the engine list
};
std::span<const ModelEntry> modelEntries();

/// Compared without case; nullptr for no such name.
const ModelEntry* modelEntryOf(std::string_view name);
/// The first entry of a kind, of this variant where the kind has it; nullptr for a kind without a
/// calibration.
const ModelEntry* modelEntryOf(const UnitKind& kind, int variant = 0);

/// What `CurrentUnit` becomes. `serialNumber` is that of the unit on the link, 0 for none.
int slotOfModel(const ModelEntry& model, int serialNumber);

/// The engines to choose from, by name. Throws Failure when the database cannot answer.
std::vector<EngineRow> enginesOfModel(const Database& database, const ModelEntry& model);

}  // namespace zentaq
