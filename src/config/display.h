// What the configuration forms show of a calibration: every control with its text, state, limits and colour
// rule. A window only renders it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "config/field_pages.h"
#include "refdata/database.h"
#include "unit/unit.h"

namespace zentaq {

/// A sentence in the place of a page's controls.
struct PageNotice {
    int page = 0;
    std::string text;
};

struct Display {
    bool editDfub = true;  ///< the dual plug table can be edited
    int defaultSplit = 0;  ///< degrees
    std::string mapUnits;  ///< "kPa", "PSIA", "PSIG", "mmHg", "inHg", "%Flow"
    float egoType = 0;
    bool onFly = false;        ///< fields that are sent take the highlight colour
    std::string onFlyPanel;    ///< text of the status bar panel
    std::string notesCounter;  ///< "(12 of 500 characters)"
    std::vector<Field> fields;
    std::vector<PageNotice> notices;

    /// nullptr for a control that is not shown for this kind.
    const Field* field(std::string_view control, int element = 0) const;
    std::vector<const Field*> page(int number) const;
};

/// Names of what a calibration holds as numbers.
struct DisplayNames {
    std::string engine;  ///< empty: not in the engine list
    std::string sensor;
};

/// Names from the reference database; without one the engine has none and the sensor is told by its range.
DisplayNames displayNames(Unit& unit, const Database* database);

/// Looks up the engine, stores `DefaultSplit` in the Unit, and shows every control that the kind has. A field
/// that cannot be read is empty.
Display display(Unit& unit, const DisplayNames& names);

/// The fields and notices of one page, with a look at the engine list only where the page depends on it.
Display displayOfPage(Unit& unit, int page);

/// The counter of the notes page. `notes` is UTF-8.
std::string notesCounter(std::string_view notes);

/// What a member's writer takes for a text in the shown scale: degrees Celsius where the box shows
/// Fahrenheit. A text that is no number is left as it is.
std::string fieldEntry(const Unit& unit, const FieldRow& row, std::string_view shown);

}  // namespace zentaq
