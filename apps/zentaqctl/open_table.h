// A table of a calibration as its window shows it, for the commands that work on one.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "base/errors.h"
#include "context.h"
#include "tables/table_model.h"

namespace zentaq::ctl {

/// A table as its window shows it, without the window.
struct OpenTable {
    /// Throws NoSuchMember for a table that the kind has not.
    OpenTable(const Context& context, Unit& unit, const std::string& name) : model(unit, ecu, live, paint) {
        if (!hasTable(unit.kind(), name))
            throw NoSuchMember(std::string(unit.kind().model) + " has no table " + name);
        const bool withoutAxes = findTable(name)->isGpo() && hasEmptyAxis(unit, name);
        model.Setup_Grid(name, {}, false);
        if (withoutAxes)
            context.notes << name << " had no axes: both output tables have got those of the main tables\n";
    }

    Ecu ecu;
    LiveValues live;
    PaintMemory paint;
    TableModel model;
    TableSheet& sheet = model.sheet();
};

/// Refusals on one line, the first ten of them.
std::string cellsOf(const std::vector<Refusal>& refused);

}  // namespace zentaq::ctl
