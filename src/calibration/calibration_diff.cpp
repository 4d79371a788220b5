#include "calibration/calibration_diff.h"

#include <algorithm>
#include <span>
#include <unordered_map>

#include "base/number_text.h"
#include "calibration/calibration_cells.h"
#include "calibration/calibration_view.h"

namespace zentaq {

namespace {

DifferenceIn partOf(const CellPlace& place) {
    if (place.isTable()) return DifferenceIn::Table;
    switch (place.role) {
        case CellRole::Loose:
        case CellRole::FuelTrimSent:
        case CellRole::TrimSent:
            return DifferenceIn::Cell;
        case CellRole::ControlByte:
            return DifferenceIn::Option;
        case CellRole::Member:
            return place.row->count > 1 ? DifferenceIn::Curve : DifferenceIn::Value;
        case CellRole::RowStop:
        case CellRole::ColumnStop:
            return DifferenceIn::Curve;
        case CellRole::PinFunction:
        case CellRole::PinParameter:
            return DifferenceIn::Pin;
        case CellRole::Name:
        case CellRole::Notes:
            return DifferenceIn::Text;
        default:
            return DifferenceIn::Value;
    }
}

/// One file with what its cells stand for.
struct Side {
    CalibrationBytes file;
    CalibrationCells cells;
    CalibrationView view;

    explicit Side(std::string_view bytes)
        : file(knownCalibration(bytes)), cells(file.kind), view(file, cells) {}
    CellBits at(int cell) const { return file.cell(cell); }
};

class Comparison {
 public:
    Comparison(std::string_view first, std::string_view second)
        : a_(first), b_(second), sameKind_(a_.file.kind == b_.file.kind) {}

    std::vector<Difference> differences() {
        compareHeaders();
        compareTexts();
        if (!sameKind_) indexSecond();
        for (const int cell : a_.cells.order()) {
            const auto other = cellOfSecond(cell);
            if (other) compareCell(cell, *other);
        }
        compareSurplus();
        return std::move(found_);
    }

 private:
    Difference& add(DifferenceIn in, std::string member, std::string first, std::string second) {
        Difference difference;
        difference.in = in;
        difference.member = std::move(member);
        difference.first = std::move(first);
        difference.second = std::move(second);
        found_.push_back(std::move(difference));
        return found_.back();
    }

    void compareHeaders() {
        const auto kindText = [](const Side& side) {
            return exactText(side.file.header[0]) + " " + std::string(side.file.kind->model);
        };
        if (a_.file.header[0] != b_.file.header[0])
            add(DifferenceIn::Kind, "kind", kindText(a_), kindText(b_));
        compareHeader("program", 1, true);
        compareHeader("firmware", 2, false);
        if (!sameKind_ || a_.file.count() == b_.file.count()) return;
        Difference& length = add(DifferenceIn::Header, "length", std::to_string(a_.file.length()),
                                 std::to_string(b_.file.length()));
        length.unit = "bytes";
        length.information = true;
    }

    void compareHeader(std::string_view member, std::size_t index, bool information) {
        const CellBits first = a_.file.header[index];
        const CellBits second = b_.file.header[index];
        if (first == second) return;
        add(DifferenceIn::Header, std::string(member), exactText(first), exactText(second)).information =
            information;
    }

    // ---- Texts

    void compareTexts() {
        compareText("name", a_.file.kind->cells.name, b_.file.kind->cells.name, CalibrationCells::nameLength);
        // The cell that the notes share with the last fuel trim counts where it holds a character.
        const auto shared = a_.cells.sharedNoteCell();
        const auto sharedOfSecond = b_.cells.sharedNoteCell();
        const bool bothShare = shared && sharedOfSecond;
        const bool bothTrims =
            bothShare && !holdsNoteCharacter(a_.at(*shared)) && !holdsNoteCharacter(b_.at(*sharedOfSecond));
        sharedIsNote_ = bothShare && !bothTrims;
        const int first = bothTrims ? 1 : 0;
        compareText("notes", a_.file.kind->cells.notes + first, b_.file.kind->cells.notes + first,
                    CalibrationCells::notesLength - first);
    }

    static std::vector<CellBits> textCells(const Side& side, int first, int count) {
        std::vector<CellBits> cells;
        for (int i = 0; i < count; ++i) cells.push_back(side.at(first + i));
        return cells;
    }

    static std::span<const CellBits> withoutTail(std::span<const CellBits> cells) {
        const CellBits blank = bitsOf(' ');
        while (!cells.empty() && (cells.back() == blank || cells.back() == 0)) {
            cells = cells.first(cells.size() - 1);
        }
        return cells;
    }

    void compareText(std::string_view member, int firstOfA, int firstOfB, int count) {
        const auto a = textCells(a_, firstOfA, count);
        const auto b = textCells(b_, firstOfB, count);
        if (a == b) return;
        const auto textA = quotedText(a);
        const auto textB = quotedText(b);
        if (textA && textB) {
            // The blanks that fill up a name say nothing, unless they are the difference.
            const auto shownA = quotedText(withoutTail(a));
            const auto shownB = quotedText(withoutTail(b));
            const bool tellsApart = *shownA != *shownB;
            add(DifferenceIn::Text, std::string(member), tellsApart ? *shownA : *textA,
                tellsApart ? *shownB : *textB);
            return;
        }
        const int zero = member == "name" ? a_.file.kind->cells.name : a_.file.kind->cells.notes;
        for (std::size_t i = 0; i < a.size(); ++i) {
            if (a[i] == b[i]) continue;
            add(DifferenceIn::Text, std::string(member), exactText(a[i]), exactText(b[i])).element =
                "[" + numberText(firstOfA + static_cast<int>(i) - zero) + "]";
        }
    }

    // ---- Cells

    void indexSecond() {
        byKey_.reserve(b_.cells.order().size());
        for (const int cell : b_.cells.order()) {
            if (comparesAcrossKinds(b_.cells.place(cell))) byKey_.emplace(b_.cells.keyOf(cell), cell);
        }
    }

    /// A cell without a member means nothing on another kind; trims as sent follow from the user's.
    static bool comparesAcrossKinds(const CellPlace& place) {
        return place.role != CellRole::Loose && !place.isSentTrim();
    }

    std::optional<int> cellOfSecond(int cell) const {
        if (sameKind_) return cell;
        if (!comparesAcrossKinds(a_.cells.place(cell))) return {};
        const auto found = byKey_.find(a_.cells.keyOf(cell));
        return found == byKey_.end() ? std::nullopt : std::optional(found->second);
    }

    void compareCell(int cell, int other) {
        const CellPlace& place = a_.cells.place(cell);
        if (place.role == CellRole::Name || place.role == CellRole::Notes) return;
        if (cell == a_.cells.sharedNoteCell() && sharedIsNote_) return;
        if (place.isSentTrim() && trimsDiffer_) return;  // they follow from those listed already
        if (isRating(place, cell)) return compareRating(cell, other);
        const CellBits first = a_.at(cell);
        const CellBits second = b_.at(other);
        if (first == second) return;
        if (place.role == CellRole::Member &&
            (place.row->name == "INJTRIM" || place.row->name == "FuelTrim")) {
            trimsDiffer_ = true;
        }
        const auto byteA = byteOf(first);
        const auto byteB = byteOf(second);
        if (byteA && byteB && compareParts(place, *byteA, *byteB)) return;
        addCell(cell, other);
    }

    void addCell(int cell, int other) {
        const CellPlace& place = a_.cells.place(cell);
        ShownPair shown = shownPair(a_.view, cell, b_.view, other);
        Difference& difference =
            add(partOf(place), a_.cells.memberOf(place), std::move(shown.first), std::move(shown.second));
        difference.element = a_.cells.elementOf(cell);
        difference.place = placeText(place, b_.cells.place(other));
        difference.information = place.isSentTrim();
        giveUnits(difference, a_.view.unitOf(place), b_.view.unitOf(b_.cells.place(other)));
    }

    static void giveUnits(Difference& difference, const std::string& first, const std::string& second) {
        if (first == second) {
            difference.unit = first;
            return;
        }
        if (!first.empty()) difference.first += " " + first;
        if (!second.empty()) difference.second += " " + second;
    }

    std::string placeText(const CellPlace& first, const CellPlace& second) {
        const bool pin = first.role == CellRole::PinFunction || first.role == CellRole::PinParameter;
        if (!pin && !first.isTable()) return {};
        const std::string a = pin ? a_.view.pinText(first) : a_.view.axesText(first);
        const std::string b = pin ? b_.view.pinText(second) : b_.view.axesText(second);
        return a == b ? a : a + " | " + b;
    }

    // ---- The rating of the sensor: two cells, one member

    bool isRating(const CellPlace& place, int cell) const {
        return cell == a_.file.kind->cells.mapBar ||
               (place.role == CellRole::Member && place.row->name == "MAP_BAR");
    }

    void compareRating(int cell, int other) {
        const CellMap& mapA = a_.file.kind->cells;
        const CellMap& mapB = b_.file.kind->cells;
        if (cell == mapA.mapBar) return;  // told under MAP_BAR
        const bool ratings = a_.at(mapA.mapBar) != b_.at(mapB.mapBar);
        const bool legacy = a_.at(cell) != b_.at(other);
        if (!ratings && !legacy) return;
        ShownPair shown = ratings ? shownPair(a_.view, mapA.mapBar, b_.view, mapB.mapBar)
                                  : shownPair(a_.view, cell, b_.view, other);
        Difference& difference =
            add(DifferenceIn::Value, "MAP_BAR", std::move(shown.first), std::move(shown.second));
        difference.unit = "BAR";
    }

    // ---- Cells whose bits have meanings of their own. True where the difference was told.

    bool compareParts(const CellPlace& place, int first, int second) {
        if (place.role == CellRole::ControlByte) return compareOptions(place, first, second);
        if (place.role == CellRole::AxisKinds) return compareAxisKinds(place, first, second);
        if (place.role == CellRole::Cylinders) return compareCylinders(first, second);
        if (place.role != CellRole::Member || place.row->name != "P2EGTP") return false;
        return compareTach(first, second);
    }

    bool compareOptions(const CellPlace& place, int first, int second) {
        if (!options_) options_.emplace(*a_.file.kind);
        for (int bit = 0; bit < 8; ++bit) {
            const int mask = 1 << bit;
            if ((first & mask) == (second & mask)) continue;
            const auto& names = options_->of(place.number, bit);
            Difference& difference = add(
                DifferenceIn::Option, names.empty() ? a_.cells.memberOf(place) : std::string(names.front()),
                (first & mask) != 0 ? "1" : "0", (second & mask) != 0 ? "1" : "0");
            if (names.empty()) difference.element = "[" + numberText(bit) + "]";
        }
        return true;
    }

    bool compareAxisKinds(const CellPlace& place, int first, int second) {
        const auto compare = [&](std::string_view axis, int from, int to) {
            if (from == to) return;
            const auto shown = [](int code) {
                return code == 0 ? std::string("none") : std::string(axisKindName(code));
            };
            add(DifferenceIn::Value, "GPO" + numberText(place.number) + "." + std::string(axis), shown(from),
                shown(to));
        };
        compare("ROW-AXIS", first / 16, second / 16);
        compare("COL-AXIS", first & lowNibble, second & lowNibble);
        return true;
    }

    bool compareCylinders(int first, int second) {
        if ((first & highNibble) != (second & highNibble)) {
            add(DifferenceIn::Value, "CYL_Number", numberText(first / 16), numberText(second / 16));
        }
        if ((first & lowNibble) != (second & lowNibble)) {
            add(DifferenceIn::Value, "INJ_Events", numberText(first & lowNibble),
                numberText(second & lowNibble));
        }
        return true;
    }

    /// The tach code is the high nibble of the type code: where it alone differs the pulses tell it.
    bool compareTach(int first, int second) {
        if ((first & lowNibble) != (second & lowNibble)) return false;
        const float pulsesA = a_.view.unit().get("TACHTYP");
        const float pulsesB = b_.view.unit().get("TACHTYP");
        if (pulsesA == pulsesB) return false;
        add(DifferenceIn::Value, "TACHTYP", numberText(pulsesA), numberText(pulsesB));
        return true;
    }

    void compareSurplus() {
        if (a_.file.surplus == b_.file.surplus) return;
        const auto shown = [](const std::string& surplus) {
            return std::to_string(surplus.size()) + " bytes";
        };
        const auto at = std::ranges::mismatch(a_.file.surplus, b_.file.surplus).in1 - a_.file.surplus.begin();
        Difference& difference =
            add(DifferenceIn::Surplus, "surplus", shown(a_.file.surplus), shown(b_.file.surplus));
        difference.place = "from byte " + std::to_string(at) + " on";
        difference.information = true;
    }

    Side a_;
    Side b_;
    bool sameKind_;
    bool sharedIsNote_ = false;
    bool trimsDiffer_ = false;
    std::optional<OptionNames> options_;
    std::unordered_map<std::string, int> byKey_;
    std::vector<Difference> found_;
};

}  // namespace

std::vector<Difference> differences(std::string_view firstBytes, std::string_view secondBytes) {
    if (firstBytes == secondBytes) {
        knownCalibration(firstBytes);  // two equal files that are none are refused as well
        return {};
    }
    return Comparison(firstBytes, secondBytes).differences();
}

std::string lineOf(const Difference& difference) {
    std::string line = difference.member + difference.element;
    if (!difference.place.empty()) line += " (" + difference.place + ")";
    line += ": " + difference.first + " -> " + difference.second;
    if (!difference.unit.empty()) line += " " + difference.unit;
    return line;
}

}  // namespace zentaq
