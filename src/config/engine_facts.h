// From a row of the reference database to what a Unit object reads of it.
// The program with windows and those without take the same way.
#pragma once

#include "refdata/database.h"
#include "unit/unit_host.h"

namespace zentaq {

inline EngineFacts engineFacts(const EngineRow& row) {
    return {.toothMin = row.minOffset,
            .toothMax = row.maxOffset,
            .p2EgTp = row.p2EgTp,
            .editDfub = row.editDfub,
            .defaultSplit = row.defaultSplit,
            .engType = row.engType,
            .injMode = row.injMode,
            .phdSeq = row.phdSeq,
            .injReset = row.injReset,
            .injTbl = row.injTbl};
}

}  // namespace zentaq
