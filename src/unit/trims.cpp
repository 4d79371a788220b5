#include "base/rounding.h"
#include "unit/counts.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

constexpr int cylindersAndEvents = 8;
constexpr int fuelAsSent = 504;
constexpr int injectorAsSent = 520;
constexpr int injectorOutputs = 16;
constexpr int userInjector = 2312;
constexpr int userFuel = 2320;
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

void Unit::Initialize_Trims() {
    if (!kind_.hasCalibration) return;
    // The engine options differ in their cylinder layout: the outputs repeat the trims of the cylinders in
    // firing order. A layout of no or of more than eight cylinders takes all eight trims in turn.
    const int cylinders = (toInt32(static_cast<double>(cellAt(cylindersAndEvents))) & 240) / 16;
    const int trims = cylinders >= 1 && cylinders <= userTrims ? cylinders : userTrims;
    for (int i = 0; i < userTrims; ++i) {
        // The eighth user trim shares its cell with the first character of the notes: a character is no trim.
        if (isFuelTrim(cellAt(userFuel + i))) cellAt(fuelAsSent + i) = cellAt(userFuel + i);
    }
    for (int i = 0; i < injectorOutputs; ++i) cellAt(injectorAsSent + i) = cellAt(userInjector + i % trims);
}

void Unit::convertTrims() {
    for (int i = 0; i < injectorOutputs; ++i) {
        putByte(injectorAsSent + i, trimByte(cellAt(injectorAsSent + i)));
    }
}

void Unit::SendTrimPair(int index) {
    SendOnFly(index, trimByte(cellAt(index)), trimByte(cellAt(index + 1)));
}

}  // namespace zentaq
