#include "calibration/calibration_listing.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>

#include "base/number_text.h"
#include "calibration/listing_parts.h"
#include "unit/calibration_text.h"
#include "unit/gpio_functions.h"
#include "unit/gpio_pins.h"
#include "unit/legacy_sensor.h"
#include "unit/member_index.h"

namespace zentaq {

namespace listing {

std::vector<Part> keyedPartsOf(const CalibrationCells& cells, int cell, const UnitKind* kind) {
    const CellPlace& place = cells.place(cell);
    if (place.role == CellRole::Cylinders) {
        const bool hasEvents = kind->members->find("INJ_Events") != nullptr;
        return {{"CYL_Number", highNibble}, {hasEvents ? "INJ_Events" : "CYL_Number.low", lowNibble}};
    }
    if (place.role != CellRole::ControlByte) return {};
    std::vector<Part> parts;
    for (int bit = 0; bit < 8; ++bit) {
        parts.push_back({cells.memberOf(place) + "[" + numberText(bit) + "]", 1 << bit});
    }
    return parts;
}

}  // namespace listing

namespace {

using namespace listing;

class ListingWriter {
 public:
    explicit ListingWriter(const CalibrationBytes& file) : file_(file), cells_(file.kind) {
        constexpr std::size_t usual = 80000;
        text_.reserve(usual);
    }

    std::string text() {
        writeHeader();
        if (file_.kind != nullptr) writeTexts();
        writeCells();
        writeSurplus();
        return std::move(text_);
    }

 private:
    void line(std::string_view key, std::string_view value, std::string_view comment = {}) {
        text_.append(key).append(" = ").append(value);
        if (!comment.empty()) text_.append("  # ").append(comment);
        text_ += '\n';
    }

    void heading(std::string_view title) {
        if (title == heading_) return;
        heading_ = title;
        text_.append("\n# ").append(title).append("\n");
    }

    void writeHeader() {
        text_.append(titleHead).append(numberText(format)).append("\n\n");
        line(headerKeys[0], exactText(file_.header[0]), file_.kind == nullptr ? "" : file_.kind->model);
        line(headerKeys[1], exactText(file_.header[1]));
        const auto firmware = firmwareOf(file_.header[2]);
        line(headerKeys[2], exactText(file_.header[2]),
             firmware ? "release " + numberText(firmware->release) + ", build " + numberText(firmware->build)
                      : std::string());
        line(lengthKey, std::to_string(file_.length()), "bytes");
    }

    std::span<const CellBits> cellsFrom(int first, int most) const {
        if (first >= file_.count()) return {};
        const int count = std::min(most, file_.count() - first);
        return std::span(file_.cells)
            .subspan(static_cast<std::size_t>(first), static_cast<std::size_t>(count));
    }

    void writeTexts() {
        const CellMap& map = file_.kind->cells;
        writeText("name", map.name, map.name, CalibrationCells::nameLength);
        const auto shared = cells_.sharedNoteCell();
        const int last = map.notes + CalibrationCells::notesLength;
        sharedIsNote_ = shared && holdsNoteCharacter(file_.cell(*shared)) &&
                        quotedLines(cellsFrom(*shared, CalibrationCells::notesLength));
        const int first = shared && !sharedIsNote_ ? *shared + 1 : map.notes;
        writeText("notes", map.notes, first, last - first);
    }

    /// As text, or cell by cell where one holds no character. Elements are counted from `zero`.
    void writeText(std::string_view key, int zero, int first, int most) {
        const auto cells = cellsFrom(first, most);
        if (cells.empty()) return;
        heading("Texts");
        if (key == "name") {
            if (const auto quoted = quotedText(cells)) return line(key, *quoted);
        } else if (const auto lines = quotedLines(cells)) {
            for (const std::string& quoted : *lines) line(key, quoted);
            return;
        }
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const int element = first - zero + static_cast<int>(i);
            if (cells[i] != 0) line(std::string(key) + "[" + numberText(element) + "]", exactText(cells[i]));
        }
    }

    void writeCells() {
        for (const int cell : cells_.order()) {
            if (cell < file_.count()) writeCell(cell);
        }
    }

    void writeCell(int cell) {
        const CellPlace& place = cells_.place(cell);
        const CellBits bits = file_.cell(cell);
        if (place.role == CellRole::Name || place.role == CellRole::Notes) return;
        if (cell == cells_.sharedNoteCell() && sharedIsNote_) return;
        if (place.role == CellRole::Loose && bits == 0) return;
        heading(headingOf(place.role));
        const auto byte = byteOf(bits);
        if (place.role == CellRole::ControlByte && byte) {
            writeOptions(cell, *byte);
        } else if (place.role == CellRole::Cylinders && byte) {
            for (const Part& part : keyedPartsOf(cells_, cell, file_.kind)) {
                line(part.key, numberText((*byte & part.mask) / lowestBit(part.mask)));
            }
        } else {
            line(cells_.keyOf(cell), exactText(bits), commentOn(place, bits));
        }
    }

    void writeOptions(int cell, int byte) {
        int bit = 0;
        for (const Part& part : keyedPartsOf(cells_, cell, file_.kind)) {
            std::string names;
            for (const std::string_view name : options().of(cell, bit)) {
                names.append(names.empty() ? "" : ", ").append(name);
            }
            line(part.key, (byte & part.mask) != 0 ? "1" : "0", names);
            ++bit;
        }
    }

    const OptionNames& options() {
        if (!options_) options_.emplace(*file_.kind);
        return *options_;
    }

    static std::string_view headingOf(CellRole role) {
        switch (role) {
            case CellRole::ControlByte:
                return "Options";
            case CellRole::Cylinders:
            case CellRole::Member:
            case CellRole::Units:
                return "Members";
            case CellRole::PinFunction:
            case CellRole::PinParameter:
                return "Inputs and outputs";
            case CellRole::FuelTrimSent:
            case CellRole::TrimSent:
                return "Trims as the unit takes them";
            case CellRole::Loose:
                return "Cells without a member; those that are not listed are 0";
            default:
                return "Table sizes and output tables";
        }
    }

    /// What the number of this cell alone stands for: a comment must not change with another value.
    std::string commentOn(const CellPlace& place, CellBits bits) const {
        const auto byte = byteOf(bits);
        if (!byte) return {};
        if (place.role == CellRole::Units) return std::string(pressureUnitsOf(*byte));
        if (place.role == CellRole::PinFunction) {
            const GpioFunction* function = gpioFunctionOf(file_.kind->pins->kind, *byte);
            return function == nullptr ? std::string() : std::string(function->name);
        }
        if (place.role != CellRole::AxisKinds || *byte == 0) return {};
        return "rows " + std::string(axisKindName(*byte / 16)) + ", columns " +
               std::string(axisKindName(*byte % 16));
    }

    void writeSurplus() {
        constexpr std::size_t surplusPerLine = 16;
        if (file_.surplus.empty()) return;
        heading("Bytes behind the calibration");
        constexpr std::string_view digits = "0123456789abcdef";
        for (std::size_t first = 0; first < file_.surplus.size(); first += surplusPerLine) {
            std::string hex;
            for (const char c : file_.surplus.substr(first, surplusPerLine)) {
                const auto byte = static_cast<std::uint8_t>(c);
                if (!hex.empty()) hex += ' ';
                hex += digits[byte >> 4U];
                hex += digits[byte & 15U];
            }
            line(std::string(surplusKey) + "[" + std::to_string(first) + "]", hex);
        }
    }

    const CalibrationBytes& file_;
    const CalibrationCells cells_;
    std::optional<OptionNames> options_;
    bool sharedIsNote_ = false;
    std::string_view heading_;
    std::string text_;
};

}  // namespace

std::string listingOf(std::string_view fileBytes) {
    const CalibrationBytes file = CalibrationBytes::of(fileBytes);
    return ListingWriter(file).text();
}

bool beginsListing(std::string_view text) {
    return text.starts_with(titleHead);
}

}  // namespace zentaq
