// The unit kinds in the order in which texts list them: those of the ignition alone stand last.
#pragma once

#include <algorithm>
#include <vector>

#include "unit/unit_kind.h"

namespace zentaq {

inline std::vector<const UnitKind*> kindsInLists() {
    std::vector<const UnitKind*> kinds;
    for (const UnitKind& kind : unitKinds()) kinds.push_back(&kind);
    std::stable_partition(kinds.begin(), kinds.end(), [](const UnitKind* kind) { return kind->fuelSide; });
    return kinds;
}

}  // namespace zentaq
