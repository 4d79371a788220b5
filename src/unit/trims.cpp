#include <array>

#include "base/rounding.h"
#include "unit/counts.h"
#include "unit/image_source.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr int cylindersAndEvents = 8;
constexpr int injectorOutputs = 16;
constexpr int userTrims = 8;

bool isFuelTrim(float percent) {
    constexpr float limit = 15;  // the range of the member FuelTrim
    return percent >= -limit && percent <= limit;
}

/// 128 stands for no trim; earlier and later count away from it on both sides.
double trimByte(double degrees) {
    constexpr double countsPerDegree = 8.533333;
    if (degrees > 0) return 128 - toCount(degrees * countsPerDegree);
    if (degrees == 0) return 128;
    return toCount(-degrees * countsPerDegree + 127);
}

}  // namespace

// The engine options differ in their cylinder layout: the outputs repeat the trims of the cylinders in firing
// order. A layout of no or of more than eight cylinders takes all eight trims in turn.
int Unit::trimmedCylinders() const {
    const int cylinders = (toInt32(static_cast<double>(cellAt(cylindersAndEvents))) & 240) / 16;
    return cylinders >= 1 && cylinders <= userTrims ? cylinders : userTrims;
}

void Unit::Initialize_Trims() {
    if (!kind_->hasCalibration) return;
    const int trims = trimmedCylinders();
    const CellMap& map = kind_->cells;
    for (int i = 0; kind_->fuelSide && i < userTrims; ++i) {
        // The eighth user trim shares its cell with the first character of the notes: a character is no trim.
        const float percent = cellAt(map.userFuelTrim + i);
        if (isFuelTrim(percent)) put(map.fuelTrimSent + i, percent);
    }
    for (int i = 0; i < injectorOutputs; ++i) put(map.trimSent + i, cellAt(map.userTrim + i % trims));
}

void Unit::convertTrims() {
    for (int i = 0; i < injectorOutputs; ++i) {
        const int index = kind_->cells.trimSent + i;
        convertFrom({"INJTRIM.sent", index, cellAt(index), i, injectorOutputs},
                    [&] { putByte(index, trimByte(cellAt(index))); });
    }
}

void Unit::SpreadTrim(int cylinder) {
    const int first = kind_->cells.trimSent;
    std::array<double, injectorOutputs> before{};
    for (int i = 0; i < injectorOutputs; ++i)
        before[static_cast<std::size_t>(i)] = trimByte(cellAt(first + i));
    Initialize_Trims();
    SendOnFly(first + cylinder, trimByte(cellAt(first + cylinder)), trimByte(cellAt(first + cylinder + 1)));
    // An engine of fewer cylinders than outputs would go on with the old trim on the others.
    for (int i = cylinder + trimmedCylinders(); i < injectorOutputs; i += trimmedCylinders()) {
        const double now = trimByte(cellAt(first + i));
        const bool inPair = i == cylinder + 1;
        if (!inPair && now != before[static_cast<std::size_t>(i)]) SendOnFly(first + i, now, 1);
    }
}

}  // namespace zentaq
