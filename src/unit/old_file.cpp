#include "unit/old_file.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <utility>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "unit/file_floats.h"
#include "unit/parameter_rules.h"
#include "unit/reference_needed.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

/// One float more than an old file may hold is enough to tell that it is too long.
constexpr std::size_t longestFile = (old::cellCount + 1) * floatBytes;

/// No value of a calibration comes near it, and codes below it fit every integer that they are turned into.
constexpr float tooLarge = 1e7F;

bool isUsable(float value) {
    return std::isfinite(value) && std::abs(value) < tooLarge;
}

bool isWhole(float value) {
    return std::trunc(value) == value;
}

}  // namespace

// ---- The cells

OldFile::OldFile(std::string_view bytes, const std::string& path) {
    const std::size_t floats = bytes.size() / floatBytes;
    if (floats > cells_.size()) {
        throw BoundsError("Subscript out of range: " + path + " holds more values than an old calibration");
    }
    for (std::size_t i = 0; i < floats; ++i) {
        const float value = floatAt(bytes, i);
        if (isUsable(value)) {
            cells_[i] = value;
        } else {
            ++refused_;
        }
    }
}

float OldFile::at(int cell) const {
    if (cell < 0 || cell >= old::cellCount) throw BoundsError();
    return cells_[static_cast<std::size_t>(cell)];
}

void OldFile::put(int cell, float value) {
    if (cell < 0 || cell >= old::cellCount) throw BoundsError();
    cells_[static_cast<std::size_t>(cell)] = value;
}

float OldFile::rating() const {
    constexpr float highest = 4;
    return code(old::ratingCell, highest);
}

int OldFile::columns() const {
    const float columns = code(old::columnsCell, old::tableColumns);
    return columns == 0 ? old::tableColumns : static_cast<int>(columns);
}

float OldFile::code(int cell, float highest) const {
    const float value = at(cell);
    return value >= 0 && value <= highest && isWhole(value) ? value : 0;
}

// ---- The repairs

void OldFile::fillDefaults() {
    fillCurve();
    for (const old::Default& item : old::defaults) {
        for (int cell = item.first; cell < item.first + item.count; ++cell) {
            if (at(cell) == 0) put(cell, item.value);
        }
    }
    fillBlocks();
}

void OldFile::fillCurve() {
    // 0 volts is a voltage, so only a curve that has none at all is unset. A ratio of 0 is none.
    bool hasVolts = false;
    for (int i = 0; i < old::curvePoints; ++i) hasVolts = hasVolts || at(old::voltsFirst + i) != 0;
    for (int i = 0; i < old::curvePoints; ++i) {
        const auto point = static_cast<std::size_t>(i);
        if (!hasVolts) put(old::voltsFirst + i, old::curveVolts[point]);
        if (at(old::ratiosFirst + i) == 0) put(old::ratiosFirst + i, old::curveRatios[point]);
    }
}

void OldFile::fillBlocks() {
    constexpr int coolantParameter = 405;
    const auto isFree = [this](int cell) {
        const int block = (cell - old::blockFirst) / old::blockCells;
        return at(cell) == 0 && at(old::blockCell(block, 0)) == 0;
    };
    if (isFree(coolantParameter)) put(coolantParameter, at(old::coolantCell));
    for (const old::Default& item : old::blockDefaults) {
        if (isFree(item.first)) put(item.first, item.value);
    }
}

void OldFile::scaleShares() {
    constexpr double percent = 100;
    scale(old::percentFirst, old::tableCells, percent);
}

void OldFile::scalePressures(float rating) {
    scale(old::pressureFirst, old::pressureCount, rating);
}

void OldFile::scale(int first, int count, double factor) {
    for (int cell = first; cell < first + count; ++cell) put(cell, static_cast<float>(at(cell) * factor));
}

void OldFile::clearRubbish() {
    for (const old::Cleared& run : old::cleared) {
        for (int cell = run.first; cell < run.first + run.count; ++cell) {
            const float value = at(cell);
            const bool legal =
                value >= run.lowest && value <= run.highest && (!run.wholeOnly || isWhole(value));
            if (!legal) put(cell, 0);
        }
    }
}

void OldFile::numberFunctions() {
    // The first three places have members of their own today; "true" is no value of theirs.
    constexpr int ownMembers = 3;
    for (int i = 0; i < old::functionFlagsCount; ++i) {
        const int cell = old::functionFlagsFirst + i;
        if (at(cell) == old::flagSet) put(cell, static_cast<float>(std::max(0, i - ownMembers + 1)));
    }
}

// ---- The import

namespace {

constexpr int todaysCells = 9;  ///< of an input/output block

/// Moves what a repaired file holds into a calibration without sending anything.
class OldFileMove {
 public:
    OldFileMove(OldFile& file, Unit& unit) : file_(file), unit_(unit) {}

    void blocks();
    void optionBits();
    void engineLayout();
    void scalars();
    void tables();

 private:
    std::optional<EngineFacts> engineOfOption(int option);
    int newFunction(int pin, float oldCode);
    void block(int pin);
    void putMember(std::string_view member, float value, int element = 0);

    OldFile& file_;
    Unit& unit_;
};

int OldFileMove::newFunction(int pin, float oldCode) {
    for (const old::Function& function : old::functions) {
        if (oldCode == static_cast<float>(function.oldCode)) return function.newCode;
    }
    if (oldCode != old::noFunction) {
        unit_.host().sysLog("Input/output " + numberText(pin + 1) + " of the old file: function " +
                            numberText(oldCode) + " is not known and was disabled.");
    }
    return 0;
}

void OldFileMove::block(int pin) {
    const int first = unit_.kind().gpioBase + todaysCells * pin;
    const int function = newFunction(pin, file_.at(old::blockCell(pin, 0)));
    if (function == 0) return;  // a pin without a function has no parameters
    unit_.AssignDirectIndex(static_cast<float>(function), first);
    for (int word = 1; word < old::blockCells; ++word) {
        double value = file_.at(old::blockCell(pin, word));
        for (const old::OldTiming& timing : old::oldTimings) {
            if (timing.newCode == function && timing.parameter == word - 1) value /= timing.divisor;
        }
        unit_.AssignDirectIndex(static_cast<float>(value), first + word);
    }
}

void OldFileMove::blocks() {
    constexpr int firstInput = 4;
    constexpr int lastInput = 7;
    constexpr int disabledInput = 22;
    for (int pin = 0; pin <= unit_.kind().numGpio; ++pin) {
        if (pin < old::blockCount) block(pin);
        // An input without a function has a code of its own, as in a new calibration.
        const bool input = pin >= firstInput && pin <= lastInput;
        const int first = unit_.kind().gpioBase + todaysCells * pin;
        if (input && unit_.DirectIndex(first) == 0) unit_.Set_GPIO_Func(pin, disabledInput);
    }
}

void OldFileMove::optionBits() {
    constexpr float largest = 255;
    for (int byte = 0; byte < std::ssize(old::optionBits); ++byte) {
        const int options = old::optionBits[static_cast<std::size_t>(byte)];
        const int others = unit_.controlByte(byte) & ~options;
        const int flags = static_cast<int>(file_.code(byte, largest)) & options;
        unit_.controlByte(byte, static_cast<std::uint8_t>(others | flags));
    }
}

void OldFileMove::putMember(std::string_view member, float value, int element) {
    unit_.store(member, value, element);
    // The old cell follows, so that the move of the scalars brings the same value.
    const old::Place place = old::placeOf(unit_.kind(), member);
    if (place.row != nullptr) file_.put(place.cell(element), value);
}

std::optional<EngineFacts> OldFileMove::engineOfOption(int option) {
    std::optional<EngineFacts> engine;
    endOnFailure([&] { engine = unit_.host().engine(unit_.kind().engines, option); },
                 [&](const std::string& why) {
                     throw ReferenceNeeded("Engine " + numberText(option) +
                                           " of the reference database is needed to convert it: " + why);
                 });
    return engine;
}

void OldFileMove::engineLayout() {
    constexpr float highestOption = 32767;
    const old::Place option = old::placeOf(unit_.kind(), "Option_Type");
    file_.put(option.first, file_.code(option.first, highestOption));
    const auto engine = engineOfOption(static_cast<int>(file_.at(option.first)));
    if (!engine) return;  // what the file says stays
    putMember("TOOTHMAX", engine->toothMax);
    putMember("TOOTHMIN", engine->toothMin);
    putMember("Engine_Type", engine->engType);
    putMember("INJ_Mode", engine->injMode);
    putMember("PHDSEQ", engine->phdSeq);
    putMember("INJ_Reset", engine->injReset);
    for (std::size_t i = 0; i < engine->injTbl.size(); ++i) {
        putMember("INJTBL", engine->injTbl[i], static_cast<int>(i));
    }
}

void OldFileMove::scalars() {
    for (const old::Place& place : old::places(unit_.kind())) {
        for (int i = 0; i < place.row->count; ++i) {
            unit_.AssignDirectIndex(file_.at(place.cell(i)), place.row->cell(i));
        }
    }
    for (const old::Loose& run : old::looseCells(unit_.kind())) {
        for (int i = 0; i < run.count; ++i) unit_.AssignDirectIndex(file_.at(run.first + i), run.cell + i);
    }
    unit_.store("RPM_Size", static_cast<float>(file_.columns()));
    for (const std::string_view member : old::membersWithBits) {
        const old::Place place = old::placeOf(unit_.kind(), member);
        if (place.row == nullptr) continue;
        constexpr float byte = 255;
        constexpr float egoMark = 128;  // older files keep 128 plus the type
        float code = file_.code(place.first, byte);
        if (member == "EGO_Type" && code > egoMark) code -= egoMark;
        unit_.store(member, code);
    }
    unit_.Initialize_Trims();
}

void OldFileMove::tables() {
    const int columns = file_.columns();
    for (const old::Table& table : old::tables(unit_.kind())) {
        for (int row = 0; row < old::tableRows; ++row) {
            for (int column = 0; column < columns; ++column) {
                unit_.AssignDirectIndex(file_.at(table.first + row * columns + column),
                                        table.cell + row * old::tableColumns + column);
            }
        }
        if (table.first != old::ratioTableFirst) continue;
        // A unit cannot take a ratio of 0: columns that the old table did not have get the default too.
        for (int cell = table.cell; cell < table.cell + old::tableCells; ++cell) {
            if (unit_.DirectIndex(cell) == 0) unit_.AssignDirectIndex(rules::petrolCell, cell);
        }
    }
}

}  // namespace

void Unit::OldFileOpen(const std::string& path) {
    if (kind_->hasCalibration) OldFileOpen(path, readFileStart(path, longestFile));
}

void Unit::OldFileOpen(const std::string& path, std::string_view bytes) {
    if (!kind_->hasCalibration) return;
    OldFile file(bytes, path);
    host_.yield();

    WatchedCalibration::Step reading(inHand_);
    reading.cells({});
    inHand_.facts([](Calibration::Facts& facts) {
        facts.owedRelease = 0;
        facts.teeth = {};
        facts.programVersion = 0;
        facts.firmwareCode = 0;
        facts.cellsCutOff = 0;
    });
    for (int i = 0; i < 3; ++i) controlByte(i, 0);
    adoptFirmware(0);
    if (file.refused() > 0) {
        host_.sysLog("Old file: " + numberText(file.refused()) +
                     " values that are no numbers were taken as 0.");
    }

    const float rating = file.rating();
    if (rating != 0) store("MAP_BAR", rating);
    file.fillDefaults();
    file.scaleShares();
    file.scalePressures(rules::mapBar(*this));
    file.clearRubbish();
    file.numberFunctions();

    OldFileMove move(file, *this);
    move.blocks();
    move.optionBits();
    move.engineLayout();
    move.scalars();
    move.tables();

    adoptSensor(rating);
    seedStopPoints();
    seedShape();
    constexpr int firstLinearRelease = 3;
    if (FW_Release() >= firstLinearRelease) scaleInjectors(true);
    storeControlBytes();
    recordFirmware(firmware().code());
    host_.heard({.event = UnitEvent::Migrated});
    host_.header() = {.currentUnit = static_cast<float>(kind_->slot), .fileState = "OLD"};
    reading.endAsWhole();
    host_.formsChanged();
}

}  // namespace zentaq
