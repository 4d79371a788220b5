#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/counts.h"
#include "unit/gpio_image.h"
#include "unit/image_layout.h"
#include "unit/image_source.h"
#include "unit/parameter_rules.h"
#include "unit/table_kinds.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr int cylindersCell = 8;

/// The high and low byte of a 16-bit number; a negative number keeps a negative high byte.
struct WordBytes {
    double high;
    double low;
};
WordBytes splitWord(double value) {
    const int word = toCount(value);
    return {truncate(word / 256.0), static_cast<double>(word & 255)};
}

/// Standard atmosphere `atmosphere` and sensor zero `zero` in a pressure unit.
struct Atmosphere {
    std::string_view units;
    double atmosphere;
    double zero;
};
constexpr std::array<Atmosphere, 5> atmospheres = {
    {{"kPa", 101.325, 0}, {"PSIA", 14.696, 0}, {"PSIG", 0, -14.696}, {"mmHg", 760, 0}, {"inHg", 29.921, 0}}};

constexpr Encoding asCell = {.bytes = Bytes::One};
constexpr Encoding percent = {.bytes = Bytes::One, .factor = 2.55};
constexpr Encoding percentAround50 = {.bytes = Bytes::One, .shift = 50};

/// A number that goes into the image without rounding; Overflow for what no record can be made of.
double fitting(double value) {
    if (!(std::abs(value) < std::numeric_limits<std::int32_t>::max())) toInt32(value);
    return value;
}

Atmosphere atmosphereOf(std::string_view units) {
    for (const Atmosphere& row : atmospheres) {
        if (row.units == units) return row;
    }
    return {units, 0, 0};
}

}  // namespace

double Encoding::number(Unit& unit, double value) const {
    const double result = special != nullptr ? special(unit, value) : (value + shift) * factor / divisor;
    return whole ? toCount(result) : fitting(result);
}

void Unit::putWord(int index, double value) {
    const auto [high, low] = splitWord(value);
    putByte(index, high);
    putByte(index + 1, low);
}

void Unit::putCell(const Encoding& encoding, int index, float cell) {
    const double number = encoding.number(*this, cell);
    if (encoding.bytes == Bytes::Word) {
        putWord(index, number);
    } else {
        putByte(index, number);
    }
}

void Unit::convertMembers() {
    for (const Parameter& row : kind_->parameters) {
        if (row.image.bytes == Bytes::None) continue;
        const auto source = [&](int i) -> ImageSource {
            return {row.name, row.cell(i), cellAt(row.cell(i)), i, row.count};
        };
        convertEach(row.count, source, [&](int i) {
            const int cell = row.cell(i);
            putCell(row.image, cell + row.image.indexOffset, cellAt(cell));
        });
    }
}

void Unit::convertRun(std::string_view name, int first, int count, const Encoding& encoding) {
    const auto source = [&](int i) -> ImageSource {
        const int cell = first + i;
        return name == "cell" ? ImageSource{name, cell, cellAt(cell)}
                              : ImageSource{name, cell, cellAt(cell), i, count};
    };
    convertEach(count, source, [&](int i) { putCell(encoding, first + i, cellAt(first + i)); });
}

void Unit::convertCellsWithoutMember() {
    const CellMap& map = kind_->cells;
    if (map.fuelTrimSent != CellMap::none) convertRun("cell", map.fuelTrimSent, 8, percentAround50);
    convertRun("cell", map.name, 24, asCell);
    for (const TableKind& table : outputTables())
        convertRun(table.name, table.firstCell(*kind_), storedCells, percent);
}

void Unit::convertMovedCells() {
    const ImageLayout& layout = *kind_->image;
    for (const auto& moved : layout.movedCells) {
        // What older firmware does not see, or what no record carries to it, may hold anything.
        const auto& [first, last] = layout.hiddenFromOlder;
        const int image = moved.image;
        const float value = cellAt(moved.cell);
        const bool hidden = FW_Release() < layout.newerFrom && image >= first && image <= last;
        if (hidden || image >= sRecordRows() * bytesPerRow) {
            putByte(image, value);
        } else {
            convertFrom({"cell", moved.cell, value}, [&] { putByte(image, fitting(value)); });
        }
    }
}

void Unit::convertSensorWords() {
    const int gainIndex = kind_->image->gainWord;
    const int zeroIndex = gainIndex + 2;
    const auto [units, atmosphere, zero] = atmosphereOf(MAPUnits());
    const double ratio = (atmosphere - zero) / 101.325;
    const double scale = rules::mapScaler(*this);
    const double offset = rules::mapOffset(*this);
    const CellMap& map = kind_->cells;
    convertFrom({"MAP_Scaler", map.mapScaler, cellAt(map.mapScaler)},
                [&] { putWord(gainIndex, scale * ratio * 20.46 * 4096); });
    // A unit without an atmosphere ("%Flow") has no ratio to divide by; the product without it is the same.
    const double word = ratio == 0 ? (offset + zero * scale) * 204.6
                                   : -((((-offset) / scale) - zero) / ratio) * scale * ratio * 204.6;
    convertFrom({"MAP_Offset", map.mapOffset, cellAt(map.mapOffset)}, [&] { putWord(zeroIndex, word); });
}

void Unit::convertStopPoints() {
    constexpr int stops = 16;
    for (const StopRun& run : kind_->image->stopRuns) {
        const auto source = [&](int i) -> ImageSource {
            return {run.axis, run.cell + i, cellAt(run.cell + i), i, stops};
        };
        convertEach(stops, source,
                    [&](int i) { putWord(run.image + 2 * i, convertStopPointsToUnit(run.cell + i)); });
    }
}

void Unit::ConvertData() {
    if (!kind_->hasCalibration) return;
    settleFirmware();
    storeControlBytes();
    for (int i = 0; i < 3; ++i) putByte(i, controlByte(i));
    try {
        convertMembers();
    } catch (const Overflow&) {
        // A sensor that fits no word is named itself and not the first pressure that it spoils.
        convertSensorWords();
        throw;
    }
    convertCellsWithoutMember();
    convertMovedCells();
    convertGpioBlocks();
    // kept: the trims are spread behind the fuel trim bytes, which show the cells as they were before.
    convertFrom({"CYL_Number", cylindersCell, cellAt(cylindersCell)}, [&] { Initialize_Trims(); });
    convertTrims();
    convertStopPoints();
    convertSensorWords();
    if (const auto& [first, last] = kind_->image->hiddenFromOlder; FW_Release() < kind_->image->newerFrom) {
        // Older firmware must see no stop points.
        for (int i = first; i <= last; ++i) putByte(i, 0);
    }
    host_.addToLastLine("SUCCESS!");
}

}  // namespace zentaq
