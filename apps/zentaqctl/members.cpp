#include "members.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "base/errors.h"
#include "base/message_codes.h"
#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "config/basic_figures.h"
#include "near_names.h"
#include "unit/axis_order.h"
#include "unit/gpio_model.h"
#include "unit/member_index.h"
#include "unit/table_kinds.h"

namespace zentaq::ctl {

namespace {

constexpr int pinParameters = 8;
constexpr int bits = 8;
constexpr int nameLength = 24;
constexpr int notesLength = 500;

// ---- Members of the parameter table

/// Members without bytes of their own whose value reaches the unit through control bits and sensor words.
constexpr std::string_view throughOthers[] = {"EGO_Type",       "Engine_Type", "PHDSEQ",    "AMP42",
                                              "DCCL_CutActive", "MAP_Scaler",  "MAP_Offset"};

/// The ratio of the fuel stands in each cell of the ratio table.
bool scalesTable(const UnitKind& kind, const Parameter& row) {
    const Parameter* table = kind.members->find("Get_AFR");
    return row.name == "AFR" && table != nullptr && table->count > 1;
}

bool sharesBytes(const UnitKind& kind, const Parameter& row) {
    constexpr int controlBytes = 3;
    if (!row.hasCell()) return false;
    if (row.index < controlBytes) return true;
    return std::ranges::any_of(kind.parameters, [&](const Parameter& other) {
        return other.index == row.index && other.image.bytes != Bytes::None;
    });
}

Reach reachOf(const UnitKind& kind, const Parameter& row) {
    if (row.sentOnTheFly()) return Reach::OnTheFly;
    if (sharesBytes(kind, row) || scalesTable(kind, row)) return Reach::Programming;
    return std::ranges::find(throughOthers, row.name) != std::end(throughOthers) ? Reach::Programming
                                                                                 : Reach::NotSent;
}

std::string rangeOf(const Parameter& row) {
    if (std::holds_alternative<RangeOf>(row.range)) return "depends on the calibration";
    return std::string(row.rangeText.empty() ? figureRange(row.name) : row.rangeText);
}

Member fromRow(const UnitKind& kind, const Parameter& row) {
    Member member{.name = std::string(row.name),
                  .cell = row.index,
                  .count = row.count,
                  .stride = row.stride,
                  .columns = row.count == storedCells ? storedColumns : row.count,
                  .range = rangeOf(row),
                  .unit = std::string(row.unit),
                  .reach = reachOf(kind, row),
                  .meaning = std::string(row.meaning),
                  .row = &row,
                  .read = [&row](Unit& unit, int element) -> Value { return unit.read(row, element); },
                  .write = {}};
    // What stands in no cell comes from the reference data; a file has no place to keep it.
    if (row.readOnly || !row.hasCell()) return member;
    member.write = [&row](QuietCalibration& calibration, const std::string& value, int element) {
        setOrThrow(calibration.unit, row.name, value, element);
    };
    return member;
}

// ---- The others

[[noreturn]] void refuseRange(const std::string& range) {
    throw Refused(Refusal{.warning = codes::OutOfRange, .text = range});
}

/// A number of an entry, or Refused with the warning that a field of the windows gives.
float numberFrom(const std::string& name, const std::string& value) {
    refuseComma(name, value);
    throwIfRefused(checkFilled(value));
    throwIfRefused(checkNumeric(value));
    const auto number = static_cast<float>(numberOf(value));
    if (!std::isfinite(number)) throw Overflow(name + ": the number is too large");
    return number;
}

struct Span {
    int low = 0;
    int high = 0;
    std::string_view tail;  ///< "%"

    std::string text() const {
        return "(" + numberText(low) + " to " + numberText(high) + std::string(tail) + ")";
    }
    Limits limits() const { return {static_cast<float>(low), static_cast<float>(high), text()}; }
};

/// Codes of functions; which of them a pin takes depends on pin, kind and firmware.
constexpr Span pinFunctions{0, 29, {}};

int wholeFrom(const std::string& name, const std::string& value, const Span& span) {
    const float number = numberFrom(name, value);
    throwIfRefused(checkLimits(number, span.limits()));
    throwIfRefused(checkWhole(number));
    return static_cast<int>(number);
}

using ReadNumber = std::function<float(Unit&, int)>;
using WriteNumber = std::function<void(Unit&, int element, int value)>;

/// A whole number within a span.
Member wholeMember(Member member, const Span& span, ReadNumber read, WriteNumber write) {
    member.range = span.text();
    member.read = std::move(read);
    if (!write) return member;
    member.write = [name = member.name, span, write = std::move(write)](
                       QuietCalibration& calibration, const std::string& value, int element) {
        write(calibration.unit, element, wholeFrom(name, value, span));
    };
    return member;
}

std::size_t characterCount(std::string_view text) {
    return static_cast<std::size_t>(std::ranges::count_if(
        text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }));
}

void refuseLonger(const std::string& name, const std::string& text, int most) {
    if (characterCount(text) <= static_cast<std::size_t>(most)) return;
    throw Refused(name + " takes at most " + numberText(most) + " characters");
}

/// The unit keeps one byte a character of a name, and a name is shown on one line.
void refuseOddCharacters(const std::string& name) {
    constexpr unsigned char blank = 0x20;
    constexpr unsigned char deleteCode = 0x7F;
    constexpr unsigned char firstOfThreeBytes = 0xC4;  // UTF-8 of code 256 and above
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '/' || character == '\\') throw Refused("BiName takes no / and no \\");
        if (byte < blank || byte == deleteCode) throw Refused("BiName takes no tabs and no line breaks");
        if (byte >= firstOfThreeBytes) throw Refused("BiName takes no characters beyond Latin-1");
    }
}

constexpr std::string_view nameStaysText =
    "BiName stays until the file is saved again: a save, an image and a unit take the name of the file";

void addTexts(std::vector<Member>& members, const UnitKind& kind) {
    members.push_back({.name = "BiName",
                       .cell = kind.cells.name,
                       .range = "24 characters",
                       .meaning = "Name in the file; a save, an image and a unit take the name of the file",
                       .read = [](Unit& unit, int) -> Value { return std::string(trimmed(unit.BiName())); },
                       .write =
                           [](QuietCalibration& calibration, const std::string& value, int) {
                               refuseLonger("BiName", value, nameLength);
                               refuseOddCharacters(value);
                               calibration.unit.BiName(value);
                               calibration.host.tell(nameStaysText);
                           }});
    members.push_back({.name = "NOTES_TEXT",
                       .cell = kind.cells.notes,
                       .range = "500 characters",
                       .meaning = "Notes",
                       .read = [](Unit& unit, int) -> Value { return unit.NOTES_TEXT(); },
                       .write =
                           [](QuietCalibration& calibration, const std::string& value, int) {
                               refuseLonger("NOTES_TEXT", value, notesLength);
                               calibration.unit.NOTES_TEXT(value);
                           }});
    members.push_back({.name = "MAPUnits",
                       .cell = kind.cells.mapUnits,
                       .range = "kPa, PSIA, PSIG, mmHg, inHg or %Flow",
                       .reach = Reach::Programming,
                       .meaning = "Unit of pressures",
                       .read = [](Unit& unit, int) -> Value { return unit.MAPUnits(); },
                       .write =
                           [](QuietCalibration& calibration, const std::string& value, int) {
                               calibration.unit.MAPUnits(value);
                               if (calibration.unit.MAPUnits() == value) return;
                               refuseRange("kPa, PSIA, PSIG, mmHg, inHg or %Flow");
                           }});
}

void addFirmware(std::vector<Member>& members, const UnitKind& kind) {
    constexpr int lastBuild = 999;
    members.push_back(wholeMember(
        {.name = "FW_Release",
         .reach = Reach::Programming,
         .meaning = "Release of the firmware that the calibration is for"},
        {1, kind.newestRelease, {}}, [](Unit& unit, int) { return unit.FW_Release(); },
        [](Unit& unit, int, int value) {
            unit.FW_Release(value);
            unit.settleFirmware();
        }));
    members.push_back(wholeMember(
        {.name = "FW_Build",
         .reach = Reach::Programming,
         .meaning = "Build of the firmware that the calibration is for"},
        {0, lastBuild, {}}, [](Unit& unit, int) { return unit.FW_Build(); },
        [](Unit& unit, int, int value) { unit.FW_Build(value); }));
}

void addControlBytes(std::vector<Member>& members) {
    for (int which = 0; which < 3; ++which) {
        const std::string number = numberText(which + 1);
        members.push_back(wholeMember(
            {.name = "ControlByte" + number,
             .cell = which,
             .reach = Reach::Programming,
             .meaning = "Option bits " + number + " as one number"},
            {0, 255, {}}, [which](Unit& unit, int) { return int{unit.controlByte(which)}; },
            [which](Unit& unit, int, int value) {
                unit.controlByte(which, static_cast<std::uint8_t>(value));
            }));
        members.push_back(wholeMember(
            {.name = which == 0 ? "Control" : "Control" + number,
             .cell = which,
             .count = bits,
             .stride = 0,
             .columns = bits,
             .reach = Reach::Programming,
             .meaning = "Option bits " + number + ", one an element"},
            {0, 1, {}}, [which](Unit& unit, int bit) { return (unit.controlByte(which) >> bit) & 1; },
            [which](Unit& unit, int bit, int value) {
                const int mask = 1 << bit;
                const int byte = unit.controlByte(which);
                unit.controlByte(which,
                                 static_cast<std::uint8_t>(value != 0 ? byte | mask : byte & (255 ^ mask)));
            }));
    }
}

/// Checked by the function that the pin has at this moment, as in the input/output manager.
void writePinParameter(QuietCalibration& calibration, const std::string& value, int element) {
    numberFrom("GPIO_Param", value);
    const int pin = element / pinParameters;
    const int parameter = element % pinParameters;
    GpioModel model(calibration.unit);
    const int row = model.rowOf(pin, parameter);
    if (row < 0) {
        throw Refused("GPIO_Param: \"" + calibration.unit.GPIO_Function_Name(model.storedCode(pin)) +
                      "\", the function of pin " + numberText(pin) + ", has no parameter " +
                      numberText(parameter) + "; set GPIO_Func first, or change the cell as it stands");
    }
    throwIfRefused(model.enter(pin, row, value), "GPIO_Param", value);
}

/// As the manager gives a pin its function: only what the pin offers, and with all parameters 0.
void writePinFunction(QuietCalibration& calibration, const std::string& value, int pin) {
    const int code = wholeFrom("GPIO_Func", value, pinFunctions);
    choosePinFunction(calibration.unit, "GPIO_Func", pin, code);
}

void addPins(std::vector<Member>& members, const UnitKind& kind) {
    constexpr int blockCells = 9;
    const int pins = kind.numGpio + 1;
    members.push_back(wholeMember({.name = "GPIO_Func",
                                   .cell = kind.gpioBase,
                                   .count = pins,
                                   .stride = blockCells,
                                   .columns = pins,
                                   .reach = Reach::Programming,
                                   .meaning = "Function code of each input and output"},
                                  pinFunctions, [](Unit& unit, int pin) { return unit.Get_GPIOFUNC(pin); },
                                  {}));
    members.back().write = writePinFunction;
    members.push_back({.name = "GPIO_Param",
                       .cell = kind.gpioBase + 1,
                       .count = pins * pinParameters,
                       .columns = pinParameters,
                       .range = "depends on the function",
                       .unit = "by function",
                       .reach = Reach::OnTheFly,
                       .meaning = "Parameters of inputs and outputs; element 8 * pin + parameter",
                       .read = [](Unit& unit, int element) -> Value {
                           return GpioModel(unit).shownParameter(element / pinParameters,
                                                                 element % pinParameters);
                       },
                       .write = writePinParameter});
}

void addOutputTables(std::vector<Member>& members, const UnitKind& kind) {
    for (const int table : {1, 2}) {
        members.push_back(wholeMember(
            {.name = "GPO" + numberText(table),
             .cell = kind.cells.outputTable[static_cast<std::size_t>(table - 1)],
             .count = storedCells,
             .columns = storedColumns,
             .unit = "%",
             .reach = Reach::OnTheFly,
             .meaning = "Output table " + numberText(table)},
            {0, 100, "%"},
            // As it stands: a file may hold what no entry gives.
            [table](Unit& unit, int element) { return unit.Get_GPIO_Table(table, element); },
            [table](Unit& unit, int element, int value) {
                throwIfRefused(unit.Set_GPIO_Table(table, element, static_cast<float>(value)),
                               "GPO" + numberText(table), numberText(value));
            }));
    }
}

void addSize(std::vector<Member>& members, const UnitKind& kind, const std::string& table,
             const std::string& what) {
    constexpr Span sizes{8, 24, {}};
    WriteNumber write;
    if (kind.cells.hasAxisWords) {
        write = [table, what](Unit& unit, int, int value) { unit.SET_TBL_DIMENSIONS(table, what, value); };
    }
    members.push_back(wholeMember(
        {.name = table + "." + what,
         .reach = kind.cells.hasAxisWords ? Reach::Programming : Reach::NotSent,
         .meaning = (what == "ROWS" ? "Rows of " : "Columns of ") + table},
        sizes, [table, what](Unit& unit, int) { return unit.GET_TBL_DIMENSIONS(table, what); },
        std::move(write)));
}

void addAxisKind(std::vector<Member>& members, const UnitKind& kind, const std::string& table,
                 const std::string& axis) {
    constexpr std::string_view names = "CLT, RAW MAP, BLEND MAP, TPS, ACTUAL AFR, MAT, RPM or GPIO1 to GPIO8";
    const bool own = kind.cells.hasAxisWords && findTable(table)->isGpo();
    const auto write = [table, axis, names](QuietCalibration& calibration, const std::string& value, int) {
        calibration.unit.SET_TBL_AXIS_TYPE(table, axis, value);
        if (calibration.unit.GET_TBL_AXIS_TYPE(table, axis) != value) refuseRange(std::string(names));
    };
    members.push_back(
        {.name = table + "." + axis,
         .range = own ? std::string(names) : std::string(),
         .reach = own ? Reach::Programming : Reach::NotSent,
         .meaning =
             (axis == "ROW-AXIS" ? "What the rows of " : "What the columns of ") + table + " stand for",
         .read = [table, axis](Unit& unit, int) -> Value { return unit.GET_TBL_AXIS_TYPE(table, axis); },
         .write = own ? decltype(Member::write)(write) : nullptr});
}

void addStops(std::vector<Member>& members, const UnitKind& kind, const std::string& table,
              const std::string& axis) {
    // The headers of the main tables are members of their own, RPMTBL and MAPTBL.
    const bool own = kind.cells.hasAxisWords && findTable(table)->isGpo();
    members.push_back(
        {.name = table + "." + axis,
         .count = storedHeaders,
         .columns = storedHeaders,
         .range = "depends on the calibration",
         .unit = "by axis",
         .reach = own ? Reach::Programming : Reach::OnTheFly,
         .meaning = (axis == "Y-Axis" ? "Row headers of " : "Column headers of ") + table,
         .read = [table, axis](Unit& unit, int element) -> Value {
             return tableHeader(unit, table, axis, element);
         },
         .write =
             [table, axis](QuietCalibration& calibration, const std::string& value, int element) {
                 numberFrom(table + "." + axis, value);
                 throwIfRefused(setTableHeader(calibration.unit, table, axis, element, value),
                                table + "." + axis, value);
             }});
}

void addShapes(std::vector<Member>& members, const UnitKind& kind) {
    for (const TableKind& each : tableKinds()) {
        if (!hasTable(kind, each)) continue;
        const std::string table(each.name);
        addSize(members, kind, table, "ROWS");
        addSize(members, kind, table, "COLS");
        addAxisKind(members, kind, table, "ROW-AXIS");
        addAxisKind(members, kind, table, "COL-AXIS");
        addStops(members, kind, table, "Y-Axis");
        addStops(members, kind, table, "X-Axis");
    }
}

std::vector<Member> otherMembers(const UnitKind& kind) {
    std::vector<Member> members;
    addTexts(members, kind);
    addFirmware(members, kind);
    addControlBytes(members);
    addPins(members, kind);
    addOutputTables(members, kind);
    addShapes(members, kind);
    return members;
}

/// A table, and which of its axes.
struct AxisName {
    std::string table;
    std::string axis;
};

/// The axis that the elements of a member are stops of. The main tables share theirs.
std::optional<AxisName> axisOf(const Member& member) {
    if (member.name == "RPMTBL") return AxisName{"ADV", "X-Axis"};
    if (member.name == "MAPTBL") return AxisName{"ADV", "Y-Axis"};
    if (!member.name.ends_with(".X-Axis") && !member.name.ends_with(".Y-Axis")) return {};
    const auto dot = member.name.find('.');
    return AxisName{member.name.substr(0, dot), member.name.substr(dot + 1)};
}

/// The check that the table window makes of an entry. The number that the stop is already changes nothing.
void refuseNotAscending(QuietCalibration& calibration, const Member& member, const AxisName& axis,
                        const std::string& value, int element) {
    const auto number = parseNumber(value);
    const auto before = stopBefore(calibration.unit, axis.table, axis.axis, element);
    if (!number || !before || *before < static_cast<float>(*number)) return;
    const auto shown = parseNumber(textOf(readMember(calibration.unit, member, element)));
    if (shown && static_cast<float>(*shown) == static_cast<float>(*number)) return;
    throwIfRefused(checkAscending(numberText(*before), trimmed(value)));
}

}  // namespace

std::string textOf(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value)) return *text;
    return numberText(std::get<float>(value));
}

std::string_view textOf(Reach reach) {
    if (reach == Reach::OnTheFly) return "on the fly";
    return reach == Reach::Programming ? "next programming" : "not sent";
}

Member memberOf(const UnitKind& kind, const std::string& name) {
    if (const Parameter* row = kind.members->find(name)) return fromRow(kind, *row);
    const std::string bare = name.starts_with("Get_") || name.starts_with("Set_") ? name.substr(4) : name;
    for (Member& member : otherMembers(kind)) {
        if (member.name == bare) return std::move(member);
    }
    std::vector<std::string> names;
    for (Member& member : membersOf(kind)) names.push_back(std::move(member.name));
    const std::string near = nearWord(names, name);
    throw NoSuchMember(std::string(kind.model) + " has no member " + shownBriefly(name) +
                       (near.empty() ? std::string() : "; did you mean " + near + "?"));
}

std::vector<Member> membersOf(const UnitKind& kind) {
    std::vector<Member> members;
    for (const Parameter& row : kind.parameters) members.push_back(fromRow(kind, row));
    std::ranges::move(otherMembers(kind), std::back_inserter(members));
    return members;
}

bool isAxis(const Member& member) {
    return axisOf(member).has_value();
}

void checkElement(const Member& member, int element) {
    if (element >= 0 && element < member.count) return;
    const std::string elements = member.count == 1 ? " has one value, element 0"
                                                   : " has elements 0 to " + numberText(member.count - 1);
    throw BoundsError("Subscript out of range: " + member.name + elements);
}

Value readMember(Unit& unit, const Member& member, int element) {
    try {
        return member.read(unit, element);
    } catch (const Failure& failure) {
        throw Failure(member.name + (member.count == 1 ? "" : "[" + numberText(element) + "]") +
                      " cannot be shown: " + failure.what() + ". The command cell shows and mends raw cells");
    }
}

void choosePinFunction(Unit& unit, const std::string& what, int pin, int code) {
    GpioModel model(unit);
    if (model.choose(pin, code) != GpioChoice::NotOffered) return;
    throw Refused(what + ": " + model.whyNot(pin, code));
}

void refuseComma(const std::string& what, const std::string& value) {
    if (value.find(',') == std::string::npos) return;
    throw Failure(what + ": " + shownBriefly(value) +
                  " has a comma; decimals are written with a point, such as 12.5");
}

void writeMember(QuietCalibration& calibration, const Member& member, const std::string& value, int element) {
    checkElement(member, element);
    if (!member.write) throw NoSuchMember(member.name + " follows from other members and cannot be set");
    if (member.row != nullptr) refuseComma(member.name, value);
    if (const auto axis = axisOf(member)) refuseNotAscending(calibration, member, *axis, value, element);
    member.write(calibration, value, element);
}

}  // namespace zentaq::ctl
