#include <algorithm>
#include <array>
#include <span>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/number_text.h"
#include "base/rounding.h"
#include "unit/file_floats.h"
#include "unit/file_kind.h"
#include "unit/legacy_sensor.h"
#include "unit/parameter_rules.h"
#include "unit/reference_needed.h"
#include "unit/safe_file.h"
#include "unit/table_kinds.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr std::size_t headerFloats = 3;
/// One value more than a calibration holds is enough to tell that a file is too long.
constexpr std::size_t longestFile = (headerFloats + Unit::cellCount + 1) * floatBytes;
constexpr int firstLinearRelease = 3;

struct ReadContent {
    float unitKind = 0;
    float programVersion = 0;
    float firmwareCode = 0;
    std::vector<float> cells;
};

ReadContent parsed(std::string_view bytes, const std::string& path) {
    const std::size_t floats = bytes.size() / floatBytes;
    if (floats < headerFloats) throw FileError("Cannot read " + path + ": it ends inside its header");
    if (floats - headerFloats > Unit::cellCount) {
        throw BoundsError("Subscript out of range: " + path + " holds more values than a calibration");
    }
    ReadContent content{floatAt(bytes, 0), floatAt(bytes, 1), floatAt(bytes, 2),
                        std::vector<float>(floats - headerFloats)};
    for (std::size_t i = headerFloats; i < floats; ++i) content.cells[i - headerFloats] = floatAt(bytes, i);
    return content;
}

/// Whether a release takes a sensor as a line of the user's.
bool isLinear(int release) {
    return release >= firstLinearRelease;
}

}  // namespace

// ---- Reading

void Unit::FileOpen(const std::string& path) {
    if (kind_->hasCalibration) FileOpen(path, readFileStart(path, longestFile));
}

void Unit::FileOpen(const std::string& path, std::string_view bytes) {
    if (!kind_->hasCalibration) return;
    const ReadContent content = parsed(bytes, path);
    const int fileRelease = FirmwareVersion::ofCode(content.firmwareCode).release;
    host_.yield();

    WatchedCalibration::Step reading(inHand_);
    reading.cells(content.cells);
    inHand_.facts([&](Calibration::Facts& facts) {
        facts.owedRelease = 0;
        facts.teeth = {};
        facts.programVersion = content.programVersion;
        facts.firmwareCode = content.firmwareCode;
        facts.cellsCutOff = cellsCutOff(*kind_, bytes.size());
    });
    adoptFirmware(content.firmwareCode);
    repairAfterOpening(fileRelease);
    for (int i = 0; i < 3; ++i) controlByte(i, toByte(cellAt(i)));
    host_.header() = {.currentUnit = content.unitKind, .fileState = "OLD"};
    reading.endAsWhole();
    host_.formsChanged();
}

void Unit::adoptFirmware(float code) {
    // A code that rounds to no release and no build tells as little as 0, and is saved as unknown, too.
    const bool unknown = toInt32(code) == 0;
    if (unknown || host_.firmwareKnownFromLink(kind_->slot)) {
        // What the unit on the link has told goes before what the file says.
        if (!unknown || FW_Release() != 0 || FW_Build() != 0) return;
        return storeFirmware(kind_->expected);
    }
    storeFirmware(FirmwareVersion::ofCode(code));
}

void Unit::storeFirmware(FirmwareVersion firmware) {
    inHand_.facts([firmware](Calibration::Facts& facts) {
        facts.release = firmware.release;
        facts.build = firmware.build;
    });
}

void Unit::repairAfterOpening(int fileRelease) {
    // A code that tells no release tells nothing about the sensor either; the code 0 is an old file's.
    const bool untold = fileRelease <= 0 && toInt32(facts().firmwareCode) != 0;
    if (!untold) {
        repairSensor(fileRelease);
    } else if (isLinear(FW_Release())) {
        defineSensor();
    }
    seedStopPoints();
    seedShape();
    migrateInjectors(fileRelease);
    seedBaroTrim();
}

void Unit::FW_Release(int release) {
    if (!kind_->hasCalibration) return;
    oweRelease(0);
    try {
        takeRelease(release);
    } catch (const ReferenceNeeded& needed) {
        oweRelease(release);
        onTheFly_ = false;
        host_.sysLog(needed.what());
        host_.heard({.event = UnitEvent::ReleaseOwed, .release = release, .why = needed.what()});
    }
}

void Unit::settleFirmware() {
    if (facts().owedRelease == 0) return;
    takeRelease(facts().owedRelease);
    oweRelease(0);
}

void Unit::oweRelease(int release) {
    inHand_.facts([release](Calibration::Facts& facts) { facts.owedRelease = release; });
}

void Unit::takeRelease(int release) {
    WatchedCalibration::Step taking(inHand_);
    const int before = FW_Release();
    inHand_.facts([release](Calibration::Facts& facts) { facts.release = release; });
    moveFrom(before);
    taking.end();
}

void Unit::moveFrom(int before) {
    // A release of 0 is no release yet, and without a calibration in hand there is nothing to move.
    if (FW_Release() <= 0 || host_.header().currentUnit != static_cast<float>(kind_->slot)) return;
    if (before == 0 && facts().firmwareCode == 0) return;
    const int madeFor = FirmwareVersion::ofCode(facts().firmwareCode).release;
    if (madeFor <= 0) return defineSensor();
    // The code tells what the cells are made for. A unit of the other generation that came and went must not
    // have them moved back from where they never were.
    if (isLinear(madeFor) == isLinear(FW_Release())) return;
    const int from = before == 0 ? madeFor : before;
    repairSensor(from);
    migrateInjectors(from);
}

// Nobody knows what the cells of such a calibration are made for, so nothing that is in them moves. A sensor
// that was never defined is no matter of scaling: without one the unit would measure nothing.
void Unit::defineSensor() {
    if (cellAt(kind_->cells.mapId) == 0) repairSensor(0);
}

void Unit::repairSensor(int fromRelease) {
    if (!isLinear(fromRelease) && isLinear(FW_Release())) adoptSensor(rules::mapBar(*this));
}

void Unit::adoptSensor(float bar) {
    if (!isLinear(FW_Release())) return;
    constexpr int customSensor = 4;
    const bool rated = bar == 1 || bar == 2 || bar == 3 || bar == 4;
    put(kind_->cells.mapId, rated ? bar : customSensor);
    if (!rated) host_.heard({.event = UnitEvent::CustomSensor});
    const auto sensor = sensorById(rated ? static_cast<int>(bar) : customSensor);
    if (!sensor) return;  // kept: the former values stay where the database has no such sensor
    store("MAP_Scaler", sensor->scale);
    store("MAP_Offset", sensor->offset);
    MAPUnits(pressureUnitsOf(sensor->unitsCode));
}

std::optional<SensorFacts> Unit::sensorById(int id) {
    std::optional<SensorFacts> sensor;
    endOnFailure([&] { sensor = host_.mapSensor(id); },
                 [&](const std::string& why) {
                     throw ReferenceNeeded("MAP sensor " + numberText(id) +
                                           " of the reference database is needed to convert it: " + why);
                 });
    return sensor;
}

void Unit::seedStopPoints() {
    if (!kind_->cells.hasAxisWords) return;
    constexpr int stops = 16;
    constexpr int seen = 4;
    for (int i = 0; i < seen; ++i) {
        if (cellAt(outputTables().front().columnStops + i) != 0) return;
    }
    const Parameter& pressures = *find("MAPTBL");
    const Parameter& speeds = *find("RPMTBL");
    for (int i = 0; i < stops; ++i) {
        const float low = MAPMin();
        const float high = MAPMax();
        if (rules::readPressure(*this, pressures, i) < low) store("MAPTBL", static_cast<float>(low + 0.1), i);
        if (rules::readPressure(*this, pressures, i) > high)
            store("MAPTBL", static_cast<float>(high - 0.1), i);
        const float speed = cellAt(speeds.cell(i));
        const float pressure = rules::readPressure(*this, pressures, i);
        for (const TableKind& table : outputTables()) {
            put(table.columnStops + i, speed);
            put(table.rowStops + i, pressure);
        }
    }
}

void Unit::seedShape() {
    if (!kind_->cells.hasAxisWords) return;
    constexpr int oldSize = 16;
    const auto hasNoAxes = [&](const TableKind& table) { return cellAt(table.axisWord) == 0; };
    if (std::ranges::all_of(outputTables(), hasNoAxes)) {
        for (const TableKind& table : outputTables()) {
            SET_TBL_AXIS_TYPE(table.name, "ROW-AXIS", "BLEND MAP");
            SET_TBL_AXIS_TYPE(table.name, "COL-AXIS", "RPM");
        }
    }
    if (GET_TBL_DIMENSIONS("ADV", "ROWS") != 0) return;
    for (const TableKind& table : tableKinds()) {
        SET_TBL_DIMENSIONS(table.name, "ROWS", oldSize);
        SET_TBL_DIMENSIONS(table.name, "COLS", oldSize);
    }
}

void Unit::migrateInjectors(int fromRelease) {
    const bool up = isLinear(FW_Release());
    if (!kind_->fuelSide) return;
    if (up == isLinear(fromRelease) || !host_.firmwareKnownFromLink(kind_->slot)) return;
    // What a unit says about itself makes no old file of one that tells no release, nor does a unit that
    // tells none.
    if (fromRelease <= 0 || FW_Release() <= 0) return;
    scaleInjectors(up);
    recordFirmware(firmware().code());
    host_.heard({.event = UnitEvent::Migrated});
}

void Unit::scaleInjectors(bool up) {
    if (!kind_->fuelSide) return;
    rules::mapBar(*this);  // repairs a rating of 0
    const auto [k, l] = legacySensor(toInt16(cellAt(kind_->cells.legacyBar)));
    const double scale = cellAt(kind_->cells.scale1);
    const double zero = scale * (l / 1023);
    const float injOn = cellAt(kind_->cells.injectorOn);
    put(kind_->cells.injectorOn, up ? injOn + zero : injOn - zero);
    put(kind_->cells.scale1, roundTo(up ? scale * k : scale / k, 3));
}

void Unit::recordFirmware(float code) {
    inHand_.facts([code](Calibration::Facts& facts) { facts.firmwareCode = code; });
}

void Unit::seedBaroTrim() {
    if (kind_->cells.baroTrim == CellMap::none) return;
    static constexpr std::array<float, 8> trims = {-50, -43, -35, -28, -20, -13, -5, 3};
    const int first = kind_->cells.baroTrim;
    const auto cells = std::span(calibration().cells).subspan(static_cast<std::size_t>(first), trims.size());
    if (std::ranges::any_of(cells, [](float cell) { return cell != 0; })) return;
    for (int i = 0; const float trim : trims) put(first + i++, trim);
    put(kind_->cells.ratio, rules::petrolCell);
}

// ---- Writing

void Unit::startFile() {
    inHand_.facts([this](Calibration::Facts& facts) {
        facts.programVersion = programVersion();
        facts.firmwareCode = firmware().code();
    });
    host_.header() = {.currentUnit = static_cast<float>(kind_->slot), .fileState = "NEW"};
}

void Unit::SaveFile() {
    if (!kind_->hasCalibration) return;
    const FileContent content = fileContent();
    // kept: a save writes over the file's start only, what an older, longer file holds behind it stays.
    writeFileStartSafely(BinFile(), content.bytes);
    noteSaved(content);
    host_.heard({.event = UnitEvent::Saved});
}

Unit::FileContent Unit::fileContent() {
    storeControlBytes();
    const bool unknown = firmware() == FirmwareVersion{} || FW_Release() > kind_->newestRelease;
    FileContent content;
    content.firmwareCode = (unknown ? kind_->expected : firmware()).code();
    std::string& bytes = content.bytes;
    bytes.reserve((headerFloats + cellCount) * floatBytes);
    appendFloat(bytes, kind_->fileKind);
    appendFloat(bytes, programVersion());
    appendFloat(bytes, content.firmwareCode);
    for (int i = 0; i < kind_->fileFloats; ++i) appendFloat(bytes, cellAt(i));
    return content;
}

void Unit::noteSaved(const FileContent& content) {
    recordFirmware(content.firmwareCode);
    host_.header().fileState = "OLD";
}

void Unit::CloseFile() {
    if (!kind_->hasCalibration) return;
    FirmWare("");
    Serial("");
    WatchedCalibration::Step closing(inHand_);
    inHand_.facts([](Calibration::Facts& facts) {
        facts.binFile.clear();
        facts.teeth = {};
        facts.owedRelease = 0;
        facts.firmwareCode = 0;
        facts.cellsCutOff = 0;
    });
    closing.cells({});
    closing.endAsWhole();
}

}  // namespace zentaq
