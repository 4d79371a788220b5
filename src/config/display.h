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

/// One control, or one element of an indexed one.
struct ShownField {
    int page = 0;
    std::string control;
    int element = 0;
    std::string member;    ///< empty for a control with no member
    std::string text;      ///< value of a box, entry of a list
    bool checked = false;  ///< options and check boxes
    bool visible = false;
    bool enabled = false;
    bool sentOnTheFly = false;  ///< takes the highlight colour while changes are sent on the fly
    std::string caption;
    std::string axis;   ///< head of an element: "-40", "1500"
    std::string unit;   ///< "RPM", "kPa", "Fahrenheit"
    std::string range;  ///< limits as the range check words them; empty for none
    std::string help;   ///< key in table FastHelp
};

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
    std::vector<ShownField> fields;
    std::vector<PageNotice> notices;

    /// nullptr for a control that is not shown for this kind.
    const ShownField* field(std::string_view control, int element = 0) const;
    std::vector<const ShownField*> page(int number) const;
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

/// The counter of the notes page. `notes` is UTF-8.
std::string notesCounter(std::string_view notes);

/// What a member's writer takes for a text in the shown scale: degrees Celsius where the box shows
/// Fahrenheit. A text that is no number is left as it is.
std::string fieldEntry(const Unit& unit, const FieldRow& row, std::string_view shown);

}  // namespace zentaq
