#include "calibration/calibration_cells.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/quiet_host.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr int tableColumns = 16;
constexpr int controlBytes = 3;
constexpr std::string_view nanPrefix = "nan:";

/// In the order of CellRole; what begins with a point stands behind the name of the table.
constexpr std::array<std::string_view, 17> roleNames = {
    "cell",  "ControlByte", "cell",    "",        "MAPUnits",      "GPIO",         "GPIO", ".",    ".AXES",
    ".ROWS", ".COLS",       ".Y-Axis", ".X-Axis", "FuelTrim.sent", "INJTRIM.sent", "name", "notes"};

CellBits bitsAt(std::string_view bytes, std::size_t index) {
    CellBits bits = 0;
    for (std::size_t i = 0; i < CalibrationBytes::floatBytes; ++i) {
        const auto byte = static_cast<std::uint8_t>(bytes[index * CalibrationBytes::floatBytes + i]);
        bits |= CellBits{byte} << (8 * i);
    }
    return bits;
}

void append(std::string& bytes, CellBits bits) {
    for (unsigned shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((bits >> shift) & 255U);
}

std::string hexDigits(CellBits bits) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    for (int shift = 28; shift >= 0; shift -= 4) text += digits[(bits >> shift) & 15U];
    return text;
}

std::optional<CellBits> nanBits(std::string_view digits) {
    CellBits bits = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
    if (error != std::errc{} || end != digits.data() + digits.size()) return {};
    return std::isnan(floatOf(bits)) ? std::optional(bits) : std::nullopt;
}

}  // namespace

// ---- Numbers

float floatOf(CellBits bits) {
    return std::bit_cast<float>(bits);
}

CellBits bitsOf(float value) {
    return std::bit_cast<CellBits>(value);
}

std::string exactText(CellBits bits) {
    const float value = floatOf(bits);
    if (std::isnan(value)) return std::string(nanPrefix) + hexDigits(bits);
    if (std::isinf(value)) return value > 0 ? "inf" : "-inf";
    // Plain digits over the range that tuners read.
    constexpr float smallestPlain = 1e-6F;
    constexpr float largestPlain = 1e9F;
    const float size = std::fabs(value);
    const bool plain = size == 0 || (size >= smallestPlain && size < largestPlain);
    std::array<char, 64> text{};
    const auto form = plain ? std::chars_format::fixed : std::chars_format::scientific;
    const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), value, form);
    return {text.data(), end};
}

std::optional<CellBits> exactBits(std::string_view text) {
    if (text == "inf") return bitsOf(std::numeric_limits<float>::infinity());
    if (text == "-inf") return bitsOf(-std::numeric_limits<float>::infinity());
    if (text.starts_with(nanPrefix)) return nanBits(text.substr(nanPrefix.size()));
    if (text.starts_with('+')) {
        text.remove_prefix(1);
        if (text.starts_with('-')) return {};
    }
    const std::string_view digits = text.substr(text.starts_with('-') ? 1 : 0);
    // Words such as "infinity" are numbers to the library but not to a tuner.
    if (digits.empty() || !((digits[0] >= '0' && digits[0] <= '9') || digits[0] == '.')) return {};
    float value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || error == std::errc::invalid_argument) return {};
    if (error == std::errc::result_out_of_range) throw Overflow(std::string(text) + " fits no 32-bit float");
    return bitsOf(value);
}

std::optional<int> byteOf(CellBits bits) {
    const float value = floatOf(bits);
    if (!(value >= 0 && value <= 255)) return {};
    const int whole = static_cast<int>(value);
    // -0 is no sum of bits: it would come back as 0.
    return bitsOf(static_cast<float>(whole)) == bits ? std::optional(whole) : std::nullopt;
}

std::optional<FirmwareVersion> firmwareOf(CellBits code) {
    const float value = floatOf(code);
    constexpr float highest = 32767;
    if (!(value >= 1 && value <= highest)) return {};
    return FirmwareVersion::ofCode(value);
}

// ---- Files

CalibrationBytes CalibrationBytes::of(std::string_view fileBytes) {
    if (fileBytes.size() < headerBytes) {
        throw Failure("This is no calibration file: it ends inside its header, after " +
                      numberText(static_cast<int>(fileBytes.size())) + " bytes");
    }
    CalibrationBytes file;
    for (std::size_t i = 0; i < headerFloats; ++i) file.header[i] = bitsAt(fileBytes, i);
    file.kind = unitKindOfFile(floatOf(file.header[0]));
    fileBytes.remove_prefix(headerBytes);
    const auto most = static_cast<std::size_t>(mostCells(file.kind));
    const std::size_t count = std::min(fileBytes.size() / floatBytes, most);
    file.cells.reserve(most);
    for (std::size_t i = 0; i < count; ++i) file.cells.push_back(bitsAt(fileBytes, i));
    file.surplus = fileBytes.substr(count * floatBytes);
    return file;
}

std::string CalibrationBytes::bytes() const {
    std::string bytes;
    bytes.reserve(length());
    for (const CellBits bits : header) append(bytes, bits);
    for (const CellBits bits : cells) append(bytes, bits);
    return bytes + surplus;
}

std::size_t CalibrationBytes::length() const {
    return headerBytes + cells.size() * floatBytes + surplus.size();
}

CellBits CalibrationBytes::cell(int index) const {
    return index < count() ? cells[static_cast<std::size_t>(index)] : 0;
}

CalibrationBytes knownCalibration(std::string_view fileBytes) {
    CalibrationBytes file = CalibrationBytes::of(fileBytes);
    if (file.kind == nullptr) {
        throw Failure("This is no calibration file: it begins with " + exactText(file.header[0]) +
                      ", which is no unit kind");
    }
    return file;
}

int mostCells(const UnitKind* kind) {
    return kind == nullptr ? Unit::cellCount : kind->fileFloats;
}

// ---- What cells stand for

bool CellPlace::isTable() const {
    return role == CellRole::OutputTable || (role == CellRole::Member && row->count == storedCells);
}

CalibrationCells::CalibrationCells(const UnitKind* kind)
    : kind_(kind),
      places_(static_cast<std::size_t>(mostCells(kind))),
      taken_(static_cast<std::size_t>(mostCells(kind))) {
    order_.reserve(places_.size());
    if (kind != nullptr) {
        for (int i = 0; i < controlBytes; ++i) claim(i, {.role = CellRole::ControlByte, .number = i});
        claimMembers();
        claimPins();
        claimOutputTables();
        claimTexts();
    }
    for (int cell = 0; cell < static_cast<int>(places_.size()); ++cell) claim(cell, {});
}

void CalibrationCells::claim(int cell, const CellPlace& place) {
    if (cell < 0 || cell >= static_cast<int>(places_.size()) || taken_[static_cast<std::size_t>(cell)])
        return;
    taken_[static_cast<std::size_t>(cell)] = true;
    places_[static_cast<std::size_t>(cell)] = place;
    order_.push_back(cell);
}

void CalibrationCells::claimMembers() {
    for (const Parameter& row : kind_->parameters) {
        if (!row.hasCell()) continue;
        if (row.name == "CYL_Number") {
            claim(row.index, {.role = CellRole::Cylinders, .row = &row});
            continue;
        }
        for (int i = 0; i < row.count; ++i) {
            claim(row.cell(i), {.role = CellRole::Member, .element = i, .row = &row});
        }
        if (row.index == kind_->cells.mapId) claim(kind_->cells.mapUnits, {.role = CellRole::Units});
    }
}

void CalibrationCells::claimPins() {
    for (int pin = 0; pin <= kind_->numGpio; ++pin) {
        const int first = kind_->gpioBase + blockCells * pin;
        claim(first, {.role = CellRole::PinFunction, .number = pin});
        for (int i = 0; i + 1 < blockCells; ++i) {
            claim(first + 1 + i, {.role = CellRole::PinParameter, .number = pin, .element = i});
        }
    }
}

void CalibrationCells::claimOutputTables() {
    const bool hasWords = kind_->cells.hasAxisWords;
    const auto claimSizes = [&](const TableKind& table) {
        claim(table.rowsCell, {.role = CellRole::Rows, .number = table.gpoNumber});
        claim(table.rowsCell + 1, {.role = CellRole::Columns, .number = table.gpoNumber});
    };
    if (hasWords) claimSizes(tableKinds().front());
    if (hasWords) std::ranges::for_each(outputTables(), claimSizes);
    for (const TableKind& table : outputTables()) {
        const int number = table.gpoNumber;
        if (hasWords) claim(table.axisWord, {.role = CellRole::AxisKinds, .number = number});
        for (int i = 0; hasWords && i < storedHeaders; ++i) {
            claim(table.rowStops + i, {.role = CellRole::RowStop, .number = number, .element = i});
        }
        for (int i = 0; hasWords && i < storedHeaders; ++i) {
            claim(table.columnStops + i, {.role = CellRole::ColumnStop, .number = number, .element = i});
        }
        for (int i = 0; i < storedCells; ++i) {
            claim(table.firstCell(*kind_) + i,
                  {.role = CellRole::OutputTable, .number = number, .element = i});
        }
    }
}

void CalibrationCells::claimTexts() {
    constexpr int fuelTrims = 8;
    constexpr int trims = 16;
    const CellMap& map = kind_->cells;
    for (int i = 0; map.fuelTrimSent != CellMap::none && i < fuelTrims; ++i) {
        claim(map.fuelTrimSent + i, {.role = CellRole::FuelTrimSent, .element = i});
    }
    for (int i = 0; i < trims; ++i) claim(map.trimSent + i, {.role = CellRole::TrimSent, .element = i});
    for (int i = 0; i < nameLength; ++i) claim(map.name + i, {.role = CellRole::Name, .element = i});
    if (place(map.notes).role == CellRole::Member) sharedNote_ = map.notes;
    for (int i = 0; i < notesLength; ++i) claim(map.notes + i, {.role = CellRole::Notes, .element = i});
}

std::string CalibrationCells::memberOf(const CellPlace& place) const {
    if (place.role == CellRole::Member) return std::string(place.row->name);
    const std::string name(roleNames.at(static_cast<std::size_t>(place.role)));
    if (place.role == CellRole::ControlByte) return name + numberText(place.number + 1);
    if (!name.starts_with('.')) return name;
    const std::string table = place.number == 0 ? "tables" : "GPO" + numberText(place.number);
    return place.role == CellRole::OutputTable ? table : table + name;
}

std::string CalibrationCells::elementOf(int cell) const {
    const CellPlace& at = place(cell);
    const auto bracketed = [](int i) { return "[" + numberText(i) + "]"; };
    if (at.isTable()) {
        return "[" + numberText(at.element / tableColumns) + "," + numberText(at.element % tableColumns) +
               "]";
    }
    switch (at.role) {
        case CellRole::Loose:
        case CellRole::Cylinders:
            return bracketed(cell);
        case CellRole::Member:
            return at.row->count == 1 ? std::string() : bracketed(at.element);
        case CellRole::PinFunction:
            return bracketed(at.number) + ".function";
        case CellRole::PinParameter:
            return bracketed(at.number) + ".parameter" + bracketed(at.element);
        case CellRole::RowStop:
        case CellRole::ColumnStop:
        case CellRole::FuelTrimSent:
        case CellRole::TrimSent:
        case CellRole::Name:
        case CellRole::Notes:
            return bracketed(at.element);
        default:
            return {};
    }
}

std::string CalibrationCells::keyOf(int cell) const {
    return memberOf(place(cell)) + elementOf(cell);
}

OptionNames::OptionNames(const UnitKind& kind) {
    QuietHost host;
    Unit unit(kind, host);
    constexpr int bits = 8;
    for (const Parameter& row : kind.parameters) {
        if (!row.controlBit) continue;
        // The row knows its bit by its reader: it is the one that turns it on.
        for (int bit = 0; bit < bits; ++bit) {
            unit.controlByte(row.index, static_cast<std::uint8_t>(1 << bit));
            if (unit.read(row) != 0) names_[static_cast<std::size_t>(row.index)][bit].push_back(row.name);
        }
        unit.controlByte(row.index, 0);
    }
}

const std::vector<std::string_view>& OptionNames::of(int controlByte, int bit) const {
    return names_.at(static_cast<std::size_t>(controlByte)).at(static_cast<std::size_t>(bit));
}

}  // namespace zentaq
