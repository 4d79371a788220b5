#include "calibration/calibration_listing.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "calibration/calibration_cells.h"
#include "unit/calibration_text.h"
#include "unit/gpio_functions.h"
#include "unit/gpio_pins.h"
#include "unit/legacy_sensor.h"
#include "unit/member_index.h"

namespace zentaq {

namespace {

constexpr std::string_view titleHead = "Zentaq4 calibration text, format ";
constexpr int format = 1;
constexpr std::size_t surplusPerLine = 16;

constexpr int wholeCell = 256;  ///< parts of a cell: its 8 bits, or this
constexpr int allBits = 255;
constexpr int highNibble = 240;
constexpr int lowNibble = 15;

constexpr std::array<std::string_view, CalibrationBytes::headerFloats> headerKeys = {"unit", "program",
                                                                                     "firmware"};
constexpr std::string_view lengthKey = "length";
constexpr std::string_view surplusKey = "surplus";

/// One value of a cell that is listed in parts, and the parts that it stands for.
struct Part {
    std::string key;
    int mask = 0;
};

/// The parts of a cell whose bits have meanings of their own; none for another cell.
std::vector<Part> partsOf(const CalibrationCells& cells, int cell, const UnitKind* kind) {
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

int lowestBit(int mask) {
    return mask & -mask;
}

// ---- Writing

class Writer {
 public:
    explicit Writer(const CalibrationBytes& file) : file_(file), cells_(file.kind) {
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
            for (const Part& part : partsOf(cells_, cell, file_.kind)) {
                line(part.key, numberText((*byte & part.mask) / lowestBit(part.mask)));
            }
        } else {
            line(cells_.keyOf(cell), exactText(bits), commentOn(place, bits));
        }
    }

    void writeOptions(int cell, int byte) {
        int bit = 0;
        for (const Part& part : partsOf(cells_, cell, file_.kind)) {
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

// ---- Reading

[[noreturn]] void fail(int line, const std::string& what) {
    throw ListingError("line " + numberText(line) + ": " + shownError(what));
}

struct Statement {
    int line = 0;
    std::string key;
    std::string_view value;

    bool isText() const { return value.starts_with('"'); }
};

std::string withoutBlanks(std::string_view text) {
    std::string kept;
    std::ranges::copy_if(text, std::back_inserter(kept), [](char c) { return c != ' ' && c != '\t'; });
    return kept;
}

/// The value in front of a comment.
std::string_view valueOf(std::string_view text, int line) {
    text = trimmed(text);
    if (!text.starts_with('"')) return trimmed(text.substr(0, text.find('#')));
    std::size_t end = 1;
    while (end < text.size() && text[end] != '"') end += text[end] == '\\' ? 2 : 1;
    if (end >= text.size()) fail(line, "the text has no quote at its end");
    const std::string_view rest = trimmed(text.substr(end + 1));
    if (!rest.empty() && rest.front() != '#') fail(line, "something stands behind the text");
    return text.substr(0, end + 1);
}

/// Reads the lines of a listing: title, then "key = value".
std::vector<Statement> statementsOf(std::string_view text) {
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
    std::vector<Statement> statements;
    constexpr std::size_t usual = 3100;
    statements.reserve(usual);
    for (int line = 1; line == 1 || !text.empty(); ++line) {
        const auto end = text.find('\n');
        const std::string_view content = trimmed(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
        if (line == 1) {
            if (!content.starts_with(titleHead)) {
                fail(line, "this is no calibration text: it does not begin with \"" + std::string(titleHead) +
                               numberText(format) + "\"");
            }
            const std::string_view number = content.substr(titleHead.size());
            if (number != numberText(format)) {
                fail(line, "the text has format " + std::string(number) + ", this version reads format " +
                               numberText(format));
            }
            continue;
        }
        if (content.empty() || content.front() == '#') continue;
        const auto sign = content.find('=');
        if (sign == 0 || sign == std::string_view::npos) fail(line, "it is not of the form name = value");
        Statement statement{line, withoutBlanks(content.substr(0, sign)),
                            valueOf(content.substr(sign + 1), line)};
        if (statement.value.empty()) fail(line, statement.key + " has no value");
        statements.push_back(std::move(statement));
    }
    return statements;
}

CellBits numberIn(const Statement& statement) {
    try {
        if (const auto bits = exactBits(statement.value)) return *bits;
    } catch (const Overflow& overflow) {
        fail(statement.line, statement.key + ": " + overflow.what());
    }
    fail(statement.line, statement.key + ": " + std::string(statement.value) + " is no number");
}

class Reader {
 public:
    explicit Reader(std::string_view text) : statements_(statementsOf(text)) {}

    std::string bytes() {
        readHeader();
        CalibrationCells cells(file_.kind);
        index(cells);
        for (const Statement& statement : statements_) take(statement);
        storeTexts(cells);
        checkComplete(cells);
        if (file_.surplus.size() != surplusLength_) {
            throw ListingError("the length asks for " + std::to_string(surplusLength_) +
                               " bytes of surplus, " + std::to_string(file_.surplus.size()) + " are listed");
        }
        return file_.bytes();
    }

 private:
    /// Where a key leads: a cell, or some bits of it.
    struct Target {
        int cell = 0;
        int mask = wholeCell;
        int line = 0;  ///< where it was given; 0 for not yet
    };
    struct Text {
        int line = 0;  ///< of its first line
        std::vector<CellBits> cells;
    };

    const Statement& header(std::string_view key) {
        const Statement* found = nullptr;
        for (const Statement& statement : statements_) {
            if (statement.key != key) continue;
            if (found != nullptr) failTwice(statement, found->line);
            found = &statement;
        }
        if (found == nullptr) throw ListingError("the value of " + std::string(key) + " is missing");
        return *found;
    }

    [[noreturn]] static void failTwice(const Statement& statement, int before) {
        fail(statement.line, statement.key + " was given before, in line " + numberText(before));
    }

    void readHeader() {
        for (std::size_t i = 0; i < headerKeys.size(); ++i) file_.header[i] = numberIn(header(headerKeys[i]));
        file_.kind = unitKindOfFile(floatOf(file_.header[0]));
        const Statement& statement = header(lengthKey);
        const std::string_view digits = statement.value;
        std::size_t length = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), length);
        if (error != std::errc{} || end != digits.data() + digits.size() ||
            length < CalibrationBytes::headerBytes) {
            fail(statement.line, "length: " + std::string(digits) + " is no number of bytes from 12 on");
        }
        const std::size_t behind = length - CalibrationBytes::headerBytes;
        const std::size_t count =
            std::min(behind / CalibrationBytes::floatBytes, static_cast<std::size_t>(mostCells(file_.kind)));
        file_.cells.resize(count);
        given_.resize(count);
        surplusLength_ = behind - count * CalibrationBytes::floatBytes;
    }

    void index(const CalibrationCells& cells) {
        targets_.reserve(cells.order().size() + 64);
        for (const int cell : cells.order()) {
            for (Part& part : partsOf(cells, cell, file_.kind)) {
                targets_.emplace(std::move(part.key), Target{cell, part.mask});
            }
            targets_.emplace(cells.keyOf(cell), Target{cell});
        }
    }

    void take(const Statement& statement) {
        const std::string& key = statement.key;
        if (key == lengthKey || std::ranges::find(headerKeys, key) != headerKeys.end()) return;
        if (key.starts_with(surplusKey)) return takeSurplus(statement);
        if (file_.kind != nullptr && key == "name") return takeText(name_, statement, false);
        if (file_.kind != nullptr && key == "notes") return takeText(notes_, statement, true);
        const auto found = targets_.find(key);
        if (found == targets_.end()) {
            const std::string unit =
                file_.kind == nullptr ? "A unit of no known kind" : std::string(file_.kind->model);
            fail(statement.line, unit + " has no " + key);
        }
        takeCell(statement, found->second);
    }

    void takeCell(const Statement& statement, Target& target) {
        if (target.line != 0) failTwice(statement, target.line);
        target.line = statement.line;
        if (target.cell >= file_.count()) {
            fail(statement.line, statement.key + " lies behind the end that the length tells");
        }
        const auto at = static_cast<std::size_t>(target.cell);
        if (given_[at] != 0 && (target.mask == wholeCell || given_[at] == wholeCell)) {
            fail(statement.line, statement.key + ": the cell is given as a whole and in parts");
        }
        const CellBits bits = numberIn(statement);
        given_[at] |= target.mask;
        if (target.mask == wholeCell) {
            file_.cells[at] = bits;
            return;
        }
        const int lowest = lowestBit(target.mask);
        const auto value = byteOf(bits);
        if (!value || *value > target.mask / lowest) {
            fail(statement.line,
                 statement.key + " takes a whole number from 0 to " + numberText(target.mask / lowest));
        }
        const int sum = byteOf(file_.cells[at]).value_or(0) + *value * lowest;
        file_.cells[at] = bitsOf(static_cast<float>(sum));
    }

    static void takeText(Text& text, const Statement& statement, bool manyLines) {
        if (text.line != 0 && !manyLines) failTwice(statement, text.line);
        if (text.line == 0) text.line = statement.line;
        try {
            const auto cells = charactersOfQuoted(statement.value);
            text.cells.insert(text.cells.end(), cells.begin(), cells.end());
        } catch (const Failure& failure) {
            fail(statement.line, statement.key + ": " + failure.what());
        }
    }

    void takeSurplus(const Statement& statement) {
        const std::string expected =
            std::string(surplusKey) + "[" + std::to_string(file_.surplus.size()) + "]";
        if (statement.key != expected) fail(statement.line, expected + " must stand here");
        const std::string hex = withoutBlanks(statement.value);
        if (hex.size() % 2 != 0) fail(statement.line, statement.key + " has half a byte");
        for (std::size_t i = 0; i < hex.size(); i += 2) {
            std::uint8_t byte = 0;
            const auto [end, error] = std::from_chars(hex.data() + i, hex.data() + i + 2, byte, 16);
            if (error != std::errc{} || end != hex.data() + i + 2) {
                fail(statement.line, statement.key + ": " + hex.substr(i, 2) + " is no byte");
            }
            file_.surplus += static_cast<char>(byte);
        }
    }

    void storeTexts(const CalibrationCells& cells) {
        if (file_.kind == nullptr) return;
        const CellMap& map = file_.kind->cells;
        storeText("name", name_, map.name, map.name + CalibrationCells::nameLength);
        const int last = map.notes + CalibrationCells::notesLength;
        // The cell that the notes share with the last fuel trim is the trim's where the trim is listed.
        const auto shared = cells.sharedNoteCell();
        const bool isTrim =
            shared && *shared < file_.count() && given_[static_cast<std::size_t>(*shared)] != 0;
        if (shared && !isTrim && *shared < file_.count() && notes_.cells.empty()) {
            throw ListingError("the value of " + cells.keyOf(*shared) + " is missing");
        }
        // Where no trim is listed its cell is the notes', and nothing that could be a trim may stand in it.
        if (shared && !isTrim) dropLeadingControls(notes_.cells, floatOf);
        storeText("notes", notes_, isTrim ? *shared + 1 : map.notes, last);
    }

    void storeText(const std::string& key, const Text& text, int first, int last) {
        last = std::min(last, file_.count());
        const int room = std::max(0, last - first);
        if (text.line == 0) {
            // Without a text its cells are listed one by one; at least one is, as zeros alone are a text.
            const bool any = std::any_of(given_.begin() + std::min(first, file_.count()),
                                         given_.begin() + std::max(std::min(first, file_.count()), last),
                                         [](int given) { return given != 0; });
            if (room > 0 && !any) throw ListingError("the value of " + key + " is missing");
            return;
        }
        if (text.cells.size() > static_cast<std::size_t>(room)) {
            fail(text.line, key + " has " + numberText(static_cast<int>(text.cells.size())) +
                                " characters, there is room for " + numberText(room));
        }
        for (int cell = first; cell < last; ++cell) {
            if (given_[static_cast<std::size_t>(cell)] != 0)
                fail(text.line, key + " is also listed by number");
            given_[static_cast<std::size_t>(cell)] = wholeCell;
        }
        std::ranges::copy(text.cells, file_.cells.begin() + first);
    }

    /// Every value must be there: a line lost in an editor must not become a 0 in an engine.
    void checkComplete(const CalibrationCells& cells) {
        for (const int cell : cells.order()) {
            if (cell >= file_.count()) continue;
            const int given = given_[static_cast<std::size_t>(cell)];
            const CellRole role = cells.place(cell).role;
            const bool mayLack = role == CellRole::Loose || role == CellRole::Name || role == CellRole::Notes;
            if (given == wholeCell || given == allBits || mayLack) continue;
            std::string missing = cells.keyOf(cell);
            for (const Part& part : partsOf(cells, cell, file_.kind)) {
                if ((given & part.mask) != 0) continue;
                missing = part.key;
                break;
            }
            throw ListingError("the value of " + missing + " is missing");
        }
    }

    std::vector<Statement> statements_;
    CalibrationBytes file_;
    std::vector<int> given_;  ///< the parts of each cell that were given
    std::unordered_map<std::string, Target> targets_;
    Text name_;
    Text notes_;
    std::size_t surplusLength_ = 0;
};

}  // namespace

std::string listingOf(std::string_view fileBytes) {
    const CalibrationBytes file = CalibrationBytes::of(fileBytes);
    return Writer(file).text();
}

bool beginsListing(std::string_view text) {
    return text.starts_with(titleHead);
}

std::string fileFromListing(std::string_view text) {
    return Reader(text).bytes();
}

}  // namespace zentaq
