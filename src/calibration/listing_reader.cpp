// Reads the text form of a calibration. Every value must be there, once.
#include <algorithm>
#include <charconv>
#include <string>
#include <unordered_map>
#include <vector>

#include "base/number_text.h"
#include "base/shown_text.h"
#include "base/text.h"
#include "calibration/calibration_listing.h"
#include "calibration/listing_parts.h"
#include "unit/calibration_text.h"

namespace zentaq {

namespace {

using namespace listing;

constexpr int wholeCell = 256;  ///< parts of a cell: its 8 bits, or this
constexpr int allBits = 255;

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

class ListingReader {
 public:
    explicit ListingReader(std::string_view text) : statements_(statementsOf(text)) {}

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
            for (Part& part : keyedPartsOf(cells, cell, file_.kind)) {
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
            for (const Part& part : keyedPartsOf(cells, cell, file_.kind)) {
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

std::string fileFromListing(std::string_view text) {
    return ListingReader(text).bytes();
}

}  // namespace zentaq
