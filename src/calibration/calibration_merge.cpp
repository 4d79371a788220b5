#include "calibration/calibration_merge.h"

#include <algorithm>
#include <array>
#include <map>
#include <memory>

#include "base/errors.h"
#include "base/number_text.h"
#include "calibration/calibration_cells.h"
#include "calibration/calibration_view.h"
#include "unit/gpio_model.h"

namespace zentaq {

namespace {

constexpr int wholeCell = 256;
constexpr int controlBytes = 3;

/// A cell, or the bits of one that holds a byte.
struct Part {
    int cell = 0;
    int mask = wholeCell;
};

/// What is taken from one side or the other as a whole.
struct Group {
    std::string member;
    std::string element;
    std::vector<Part> parts;
};

enum class Taken { Unchanged, First, Second, Both, Conflict };

template <typename Value>
Taken takenOf(const Value& base, const Value& first, const Value& second) {
    if (first == second) return first == base ? Taken::Unchanged : Taken::Both;
    if (first == base) return Taken::Second;
    return second == base ? Taken::First : Taken::Conflict;
}

class Merger {
 public:
    Merger(std::string_view base, std::string_view first, std::string_view second)
        : base_(knownCalibration(base)),
          first_(knownCalibration(first)),
          second_(knownCalibration(second)),
          cells_(base_.kind),
          merged_(base_),
          grouped_(cells_.order().size()) {
        if (first_.header[0] != base_.header[0] || second_.header[0] != base_.header[0]) {
            throw Failure("Calibrations of different units cannot be merged: " + modelOf(base_) +
                          " in the base, " + modelOf(first_) + " in the first, " + modelOf(second_) +
                          " in the second");
        }
        merged_.cells.resize(cells_.order().size());
    }

    MergeResult merge() {
        mergeHeader();
        makeGroups();
        for (const Group& group : groups_) mergeGroup(group);
        for (const int cell : cells_.order()) {
            if (!grouped_[static_cast<std::size_t>(cell)]) mergeCell(cell);
        }
        mergeLength();
        if (result_.conflicts.empty()) findDoubledPins();
        if (result_.conflicts.empty()) {
            if (trimsCollide_) renewSentTrims();
            result_.bytes = merged_.bytes();
        }
        return std::move(result_);
    }

 private:
    static std::string modelOf(const CalibrationBytes& file) {
        return std::string(file.kind->model) + " (" + exactText(file.header[0]) + ")";
    }

    /// Counts what was taken. False for a conflict.
    bool count(Taken taken) {
        if (taken == Taken::First) ++result_.fromFirst;
        if (taken == Taken::Second) ++result_.fromSecond;
        if (taken == Taken::Both) ++result_.sameInBoth;
        return taken != Taken::Conflict;
    }

    const CalibrationBytes& sideOf(Taken taken) const {
        if (taken == Taken::First || taken == Taken::Both) return first_;
        return taken == Taken::Second ? second_ : base_;
    }

    void conflict(std::string member, std::string element, const std::array<std::string, 3>& shown,
                  std::string unit = {}) {
        result_.conflicts.push_back(
            {std::move(member), std::move(element), std::move(unit), shown[0], shown[1], shown[2]});
    }

    // ---- Header and length

    void mergeHeader() {
        const auto versions = std::array{base_.header[1], first_.header[1], second_.header[1]};
        const Taken version = takenOf(versions[0], versions[1], versions[2]);
        // Two saves by two versions of the program are no quarrel: the newer one has written the result.
        const bool secondIsNewer = floatOf(versions[2]) > floatOf(versions[1]);
        merged_.header[1] =
            version == Taken::Conflict ? versions[secondIsNewer ? 2 : 1] : sideOf(version).header[1];
        const Taken firmware = takenOf(base_.header[2], first_.header[2], second_.header[2]);
        if (count(firmware)) {
            merged_.header[2] = sideOf(firmware).header[2];
            return;
        }
        conflict("firmware", {},
                 {exactText(base_.header[2]), exactText(first_.header[2]), exactText(second_.header[2])});
    }

    void mergeLength() {
        const Taken count = takenOf(base_.count(), first_.count(), second_.count());
        const int length = sideOf(count).count();
        const bool loses = std::any_of(merged_.cells.begin() + length, merged_.cells.end(),
                                       [](CellBits bits) { return bits != 0; });
        if (count == Taken::Conflict || loses) {
            const auto shown = [](const CalibrationBytes& file) { return std::to_string(file.length()); };
            conflict("length", {}, {shown(base_), shown(first_), shown(second_)}, "bytes");
            return;
        }
        merged_.cells.resize(static_cast<std::size_t>(length));
        const Taken surplus = takenOf(base_.surplus, first_.surplus, second_.surplus);
        if (surplus == Taken::Conflict) {
            const auto shown = [](const CalibrationBytes& file) {
                return std::to_string(file.surplus.size()) + " bytes";
            };
            conflict("surplus", {}, {shown(base_), shown(first_), shown(second_)});
            return;
        }
        merged_.surplus = sideOf(surplus).surplus;
    }

    // ---- What goes together

    void makeGroups() {
        makeOptionGroups();
        const CellMap& map = base_.kind->cells;
        makeNibbleGroups();
        addGroup("MAP_BAR", {}, {{map.legacyBar}, {map.mapBar}});
        addGroup("MAP sensor", {}, {{map.mapScaler}, {map.mapOffset}, {map.mapId}, {map.mapUnits}});
        for (int pin = 0; pin <= base_.kind->numGpio; ++pin) {
            const int block = base_.kind->gpioBase + CalibrationCells::blockCells * pin;
            addGroup("GPIO", "[" + numberText(pin) + "]", run(block, CalibrationCells::blockCells));
        }
        addSizes();
        addGroup("name", {}, run(map.name, CalibrationCells::nameLength));
        // The cell that the notes share with the last fuel trim is theirs when a file has a character there.
        const auto shared = cells_.sharedNoteCell();
        const bool isTrim = shared && !holdsNoteCharacter(base_.cell(*shared)) &&
                            !holdsNoteCharacter(first_.cell(*shared)) &&
                            !holdsNoteCharacter(second_.cell(*shared));
        const int skipped = isTrim ? 1 : 0;
        addGroup("notes", {}, run(map.notes + skipped, CalibrationCells::notesLength - skipped));
    }

    static std::vector<Part> run(int first, int count) {
        std::vector<Part> parts;
        for (int i = 0; i < count; ++i) parts.push_back({first + i});
        return parts;
    }

    void addGroup(std::string member, std::string element, std::vector<Part> parts) {
        for (const Part& part : parts) grouped_.at(static_cast<std::size_t>(part.cell)) = true;
        groups_.push_back({std::move(member), std::move(element), std::move(parts)});
    }

    void addSizes() {
        std::map<int, std::vector<Part>> byTable;
        for (const int cell : cells_.order()) {
            const CellPlace& place = cells_.place(cell);
            if (place.role == CellRole::Rows || place.role == CellRole::Columns) {
                byTable[place.number].push_back({cell});
            }
            if (place.role == CellRole::AxisKinds && areBytes(cell)) {
                const std::string table = "GPO" + numberText(place.number);
                addGroup(table + ".ROW-AXIS", {}, {{cell, highNibble}});
                addGroup(table + ".COL-AXIS", {}, {{cell, lowNibble}});
            }
        }
        for (auto& [table, parts] : byTable) {
            addGroup(table == 0 ? "tables" : "GPO" + numberText(table), ".ROWS and COLS", std::move(parts));
        }
    }

    bool areBytes(int cell) const {
        return byteOf(base_.cell(cell)) && byteOf(first_.cell(cell)) && byteOf(second_.cell(cell));
    }

    /// Bit by bit, except the fields of more than one bit.
    void makeOptionGroups() {
        constexpr int engineField = 0x30;  ///< of ControlByte3: follows Engine_Type
        constexpr int phaseField = 0xC0;   ///< of ControlByte3: follows PHDSEQ
        constexpr int zeroAdvance = 0x40;  ///< of ControlByte2
        constexpr int fullCut = 0x01;      ///< of ControlByte3
        const bool cutsAreBits = areBytes(1) && areBytes(2);
        // Setting one clears the other: taken apart, two sides could leave both on.
        if (cutsAreBits) addGroup("opt_ZeroAdv and opt_FullCut", {}, {{1, zeroAdvance}, {2, fullCut}});
        const OptionNames names(*base_.kind);
        for (int which = 0; which < controlBytes; ++which) {
            if (!areBytes(which)) continue;
            for (int bit = 0; bit < 8; ++bit) {
                const int mask = 1 << bit;
                const bool field = which == 2 && (mask & (engineField | phaseField)) != 0;
                const bool cut = (which == 1 && mask == zeroAdvance) || (which == 2 && mask == fullCut);
                if (field || (cut && cutsAreBits)) continue;
                const auto& known = names.of(which, bit);
                if (known.empty()) {
                    addGroup(cells_.memberOf(cells_.place(which)), "[" + numberText(bit) + "]",
                             {{which, mask}});
                } else {
                    addGroup(std::string(known.front()), {}, {{which, mask}});
                }
            }
        }
        if (!areBytes(2)) return;
        addGroup("ControlByte3", "[4 and 5]", {{2, engineField}});
        addGroup("ControlByte3", "[6 and 7]", {{2, phaseField}});
    }

    void makeNibbleGroups() {
        for (const int cell : cells_.order()) {
            const CellPlace& place = cells_.place(cell);
            if (place.role == CellRole::Cylinders && areBytes(cell)) {
                addGroup("CYL_Number", {}, {{cell, highNibble}});
                addGroup("INJ_Events", {}, {{cell, lowNibble}});
            }
            if (place.role == CellRole::Member && place.row->name == "P2EGTP" && areBytes(cell)) {
                addGroup("TACHTYP", {}, {{cell, highNibble}});
                addGroup("P2EGTP", {}, {{cell, lowNibble}});
            }
        }
    }

    // ---- Merging

    std::vector<CellBits> valuesOf(const CalibrationBytes& file, const Group& group) const {
        std::vector<CellBits> values;
        for (const Part& part : group.parts) {
            const CellBits bits = file.cell(part.cell);
            const bool whole = part.mask == wholeCell;
            values.push_back(whole ? bits : static_cast<CellBits>(byteOf(bits).value_or(0) & part.mask));
        }
        return values;
    }

    void mergeGroup(const Group& group) {
        const auto base = valuesOf(base_, group);
        const auto first = valuesOf(first_, group);
        const auto second = valuesOf(second_, group);
        const Taken taken = takenOf(base, first, second);
        if (!count(taken)) return conflictIn(group);
        const CalibrationBytes& side = sideOf(taken);
        for (const Part& part : group.parts) {
            CellBits& cell = merged_.cells[static_cast<std::size_t>(part.cell)];
            if (part.mask == wholeCell) {
                cell = side.cell(part.cell);
                continue;
            }
            const int kept = byteOf(cell).value_or(0) & (255 - part.mask);
            const int added = byteOf(side.cell(part.cell)).value_or(0) & part.mask;
            cell = bitsOf(static_cast<float>(kept + added));
        }
    }

    void mergeCell(int cell) {
        const Taken taken = takenOf(base_.cell(cell), first_.cell(cell), second_.cell(cell));
        if (taken == Taken::Conflict && cells_.place(cell).isSentTrim()) {
            trimsCollide_ = true;  // they follow from the user's trims
            return;
        }
        if (count(taken)) {
            merged_.cells[static_cast<std::size_t>(cell)] = sideOf(taken).cell(cell);
            return;
        }
        conflict(cells_.memberOf(cells_.place(cell)), cells_.elementOf(cell), shownCells(cell), unitOf(cell));
    }

    /// Two sides may each have given one function to a pin of their own, which only one pin may have.
    void findDoubledPins() {
        CalibrationView view(merged_, cells_);
        const auto first = GpioModel(views().of[1].unit()).doubled();
        const auto second = GpioModel(views().of[2].unit()).doubled();
        for (const GpioDouble& each : GpioModel(view.unit()).doubled()) {
            const bool known = std::ranges::find(first, each) != first.end() ||
                               std::ranges::find(second, each) != second.end();
            if (!known) conflictOf(each);
        }
    }

    void conflictOf(const GpioDouble& pins) {
        std::string element;
        std::array<std::string, 3> shown;
        for (const int pin : pins.pins) {
            const std::string number = numberText(pin);
            element += (element.empty() ? "[" : " and [") + number + "]";
            const int cell = base_.kind->gpioBase + CalibrationCells::blockCells * pin;
            for (std::size_t i = 0; i < shown.size(); ++i) {
                shown[i] += (shown[i].empty() ? "" : ", ") + views().of[i].text(cell);
            }
        }
        conflict("GPIO", element, shown);
    }

    void renewSentTrims() {
        CalibrationView view(merged_, cells_);
        // A cylinder count that is no number makes no trims; no unit can be programmed from such a file.
        if (!skipFailing([&] { view.unit().Initialize_Trims(); })) return;
        for (const int cell : cells_.order()) {
            if (cell >= merged_.count() || !cells_.place(cell).isSentTrim()) continue;
            merged_.cells[static_cast<std::size_t>(cell)] = bitsOf(view.unit().DirectIndex(cell));
        }
    }

    // ---- Conflicts as a user sees them

    struct Views {
        std::array<CalibrationView, 3> of;
    };
    Views& views() {
        if (!views_) {
            views_.reset(new Views{{CalibrationView(base_, cells_), CalibrationView(first_, cells_),
                                    CalibrationView(second_, cells_)}});
        }
        return *views_;
    }

    std::string unitOf(int cell) {
        const CellPlace& place = cells_.place(cell);
        const std::string unit = views().of[0].unitOf(place);
        const bool same = unit == views().of[1].unitOf(place) && unit == views().of[2].unitOf(place);
        return same ? unit : std::string();
    }

    std::array<std::string, 3> shownCells(int cell) {
        std::array<std::string, 3> shown;
        for (std::size_t i = 0; i < shown.size(); ++i) shown[i] = views().of[i].text(cell);
        if (shown[0] != shown[1] && shown[1] != shown[2] && shown[0] != shown[2]) return shown;
        // A reader rounds two of them alike: the cells tell them apart.
        for (std::size_t i = 0; i < shown.size(); ++i) {
            shown[i] += " (cell " + exactText(views().of[i].file().cell(cell)) + ")";
        }
        return shown;
    }

    void conflictIn(const Group& group) {
        std::array<std::string, 3> shown;
        for (std::size_t i = 0; i < shown.size(); ++i) shown[i] = shownGroup(group, views().of[i]);
        conflict(group.member, group.element, shown);
    }

    std::string shownGroup(const Group& group, CalibrationView& view) {
        const Part& only = group.parts.front();
        if (group.member == "name" || group.member == "notes") return shownText(group, view.file());
        if (group.member == "TACHTYP") return numberText(view.unit().get("TACHTYP")) + " pulses";
        if (group.member.ends_with("-AXIS")) {
            const int byte = byteOf(view.file().cell(only.cell)).value_or(0);
            const auto name = axisKindName(only.mask == highNibble ? byte / 16 : byte & lowNibble);
            return name.empty() ? "none" : std::string(name);
        }
        std::string shown;
        for (const Part& part : group.parts) {
            if (!shown.empty()) shown += ", ";
            shown += part.mask == wholeCell ? view.text(part.cell) : shownBits(part, view.file());
        }
        return shown;
    }

    static std::string shownBits(const Part& part, const CalibrationBytes& file) {
        const int lowest = part.mask & -part.mask;
        return numberText((byteOf(file.cell(part.cell)).value_or(0) & part.mask) / lowest);
    }

    static std::string shownText(const Group& group, const CalibrationBytes& file) {
        std::vector<CellBits> cells;
        for (const Part& part : group.parts) cells.push_back(file.cell(part.cell));
        std::string text = quotedText(cells).value_or("no plain text");
        if (group.member != "name") return text;
        // The blanks that fill up a name say nothing.
        while (text.ends_with(" \"")) text.erase(text.size() - 2, 1);
        return text;
    }

    const CalibrationBytes base_;
    const CalibrationBytes first_;
    const CalibrationBytes second_;
    const CalibrationCells cells_;
    CalibrationBytes merged_;
    std::vector<bool> grouped_;
    std::vector<Group> groups_;
    std::unique_ptr<Views> views_;
    bool trimsCollide_ = false;
    MergeResult result_;
};

}  // namespace

MergeResult merge(std::string_view base, std::string_view first, std::string_view second) {
    return Merger(base, first, second).merge();
}

std::string lineOf(const MergeConflict& conflict) {
    std::string line = conflict.member + conflict.element + ": " + conflict.base + " in the base, " +
                       conflict.first + " in the first, " + conflict.second + " in the second";
    if (!conflict.unit.empty()) line += " (" + conflict.unit + ")";
    return line;
}

}  // namespace zentaq
