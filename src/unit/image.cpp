#include <array>
#include <cmath>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/counts.h"
#include "unit/gpio_image.h"
#include "unit/image_layout.h"
#include "unit/parameter_rules.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

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

Atmosphere atmosphereOf(std::string_view units) {
    for (const Atmosphere& row : atmospheres) {
        if (row.units == units) return row;
    }
    return {units, 0, 0};
}

}  // namespace

double Encoding::number(Unit& unit, double value) const {
    const double result = special != nullptr ? special(unit, value) : (value + shift) * factor / divisor;
    return whole ? toCount(result) : result;
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
        for (int i = 0; i < row.count; ++i) {
            const int cell = row.cell(i);
            putCell(row.image, cell + row.image.indexOffset, cellAt(cell));
        }
    }
}

void Unit::convertLooseCells() {
    const ImageLayout& layout = *kind_->image;
    for (const auto& [cells, encoding] : layout.looseCells) {
        for (int i = cells.first; i <= cells.last; ++i) putCell(encoding, i, cellAt(i));
    }
    for (const auto& [image, cell] : layout.movedCells) putByte(image, cellAt(cell));
    for (const auto& [first, last] : layout.zeros) {
        for (int i = first; i <= last; ++i) putByte(i, 0);
    }
}

void Unit::convertSensorWords() {
    const int gainIndex = kind_->image->gainWord;
    const int zeroIndex = gainIndex + 2;
    const auto [units, atmosphere, zero] = atmosphereOf(MAPUnits());
    const double ratio = (atmosphere - zero) / 101.325;
    const double scale = rules::mapScaler(*this);
    const double offset = rules::mapOffset(*this);
    putWord(gainIndex, scale * ratio * 20.46 * 4096);
    // A unit without an atmosphere ("%Flow") has no ratio to divide by; the product without it is the same.
    const double word = ratio == 0 ? (offset + zero * scale) * 204.6
                                   : -((((-offset) / scale) - zero) / ratio) * scale * ratio * 204.6;
    putWord(zeroIndex, word);
}

void Unit::convertStopPoints() {
    constexpr int stops = 16;
    for (const auto& [image, cell] : kind_->image->stopRuns) {
        for (int i = 0; i < stops; ++i) putWord(image + 2 * i, convertStopPointsToUnit(cell + i));
    }
}

void Unit::ConvertData() {
    if (!kind_->hasCalibration) return;
    settleFirmware();
    storeControlBytes();
    for (int i = 0; i < 3; ++i) putByte(i, controlByte(i));
    convertMembers();
    convertLooseCells();
    convertGpioBlocks();
    // kept: the trims are spread behind the fuel trim bytes, which show the cells as they were before.
    Initialize_Trims();
    convertTrims();
    convertStopPoints();
    convertSensorWords();
    if (const auto& [first, last] = kind_->image->hiddenFromOlder; release_ < kind_->image->newerFrom) {
        // Older firmware must see no stop points.
        for (int i = first; i <= last; ++i) putByte(i, 0);
    }
    host_.addToLastLine("SUCCESS!");
}

}  // namespace zentaq
