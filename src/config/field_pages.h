// The configuration pages as data: which controls a page has, and which member of the unit each of them
// shows. Ranges, units, elements and on-the-fly bytes come from the member's row of the parameter table.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/field.h"
#include "unit/unit.h"

namespace zentaq {

/// Bits of ControlByte1 that belong to no member of their own. The units' makers leave their order open:
/// these are the four that no other option uses, in the order of the pages.
enum ControlBit : int { egoFeedbackBit = 3, idleControlBit = 5, revLimiterBit = 6, airSensorBit = 7 };

/// Bits of ControlByte2 that controls set themselves.
enum ControlBit2 : int { massFlowBit = 0, progressiveCutBit = 5 };

/// How many elements of an indexed member are shown.
enum class ElementBound : std::uint8_t {
    Count,      ///< all of them
    Cylinders,  ///< as many as the engine has cylinders
    Columns     ///< as many as table "ADV" has columns
};

/// What stands at the head of the elements of an indexed member.
enum class FieldAxis : std::uint8_t {
    None,
    Number,          ///< 1, 2, 3 ...
    Cylinder,        ///< "Cyl. 1"
    AirTemperature,  ///< temperature; the retard input's volts on an ignition-only unit
    Temperature,
    BatteryVolts,
    Speed,            ///< the speed axis of the tables
    BlendSpeed,       ///< the speeds of the blend curve
    IdleTemperature,  ///< the temperatures of the idle curve
    SensorVolts       ///< the volts of the sensor's curve
};

using FieldState = bool (*)(Unit& unit);

/// What a row may say beyond its control and its member.
struct FieldTraits {
    std::string_view caption{};          ///< empty: the member's meaning
    std::string_view ignitionCaption{};  ///< another caption on an ignition-only unit
    FieldState isOn = nullptr;           ///< whether an option is set; none: the member is not 0
    std::string_view switchedBy{};       ///< the option that enables this control; empty: always enabled
    ElementBound elements = ElementBound::Count;
    FieldAxis axis = FieldAxis::None;
    std::string_view needs{};        ///< a second member that the kind must have
    FieldState shownWhen = nullptr;  ///< a further condition
    std::string_view help{};         ///< key in table FastHelp; empty: the member's, then the page's
    std::string_view unitTail{};     ///< behind the member's unit
    int moreDecimals = 0;            ///< pressures: beyond MAPPrecision
    bool writerTakesShown = false;   ///< temperatures: the writer turns the shown scale to Celsius itself
    std::array<std::string_view, 2> choices{};  ///< entries of a list that stands for 0 and 1
};

struct FieldRow : FieldTraits {
    int page = 0;
    std::string_view control;
    std::string_view member;  ///< name in the parameter table; empty for a control with no member
    FieldKind kind = FieldKind::Number;
};

/// All rows, page by page.
std::span<const FieldRow> fieldRows();

/// The rows of one page; empty for a page without controls.
std::span<const FieldRow> fieldsOfPage(int page);

/// The first row of a control, compared without case; nullptr for none. A control may stand on two pages,
/// always with the same member.
const FieldRow* fieldOf(std::string_view control);

/// The numbers of the pages that have controls, ascending.
std::vector<int> fieldPageNumbers();

/// The parameter row that a control shows; nullptr when the kind lacks the member or the control has none.
const Parameter* parameterOf(const Unit& unit, const FieldRow& row);

/// Whether the kind has what the control shows and its condition holds.
bool fieldExists(Unit& unit, const FieldRow& row);

/// 1 for a plain control, the bounded count for an indexed one.
int shownElements(Unit& unit, const FieldRow& row);

/// The elements in the order in which they are shown: of cylinders in the engine's firing order, where that
/// names each of them once.
std::vector<int> elementOrder(Unit& unit, const FieldRow& row);

/// Whether an option or check box is set.
bool fieldIsOn(Unit& unit, const FieldRow& row);

/// Whether a change of the control acts on the running engine.
bool sentOnTheFly(const Unit& unit, const FieldRow& row);

}  // namespace zentaq
