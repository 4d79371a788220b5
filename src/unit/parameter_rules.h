// The readers, writers, ranges and encodings of members that are more than a plain cell.
// The parameter tables name them; the pressure functions use the first four.
#pragma once

#include "unit/parameter.h"

namespace zentaq::rules {

/// The ratio at which petrol burns whole. A calibration without a ratio of its own has it, and the image of
/// the sensor curve is made on it whatever the fuel.
inline constexpr double petrolRatio = 14.64;
inline constexpr float petrolCell = static_cast<float>(petrolRatio);

// ---- Values that other rules build on, whatever IndexPolling says.
float mapBar(Unit& unit);               ///< repairs the cells of the rating when they are 0
float stoichiometricRatio(Unit& unit);  ///< repairs its cell when it is 0
float mapScaler(const Unit& unit);
float mapOffset(const Unit& unit);
/// Counts of the unit's converter per user unit and second of pressure rise.
double accelerationFactor(Unit& unit);
constexpr int moffsetCell = 18;

// ---- Ranges
Limits toothOffset1(Unit&, int, float);
Limits toothOffset2(Unit&, int, float);
Limits initialAdvance(Unit&, int, float);
Limits tableAdvance(Unit&, int, float);
Limits tableRatio(Unit&, int, float);
Limits lambdaValue(Unit&, int, float);
/// Of a stop on an axis of measured ratios; a new axis is spread from one end to the other.
Limits ratioStop(Unit&);
Limits pressure(Unit&, int, float);
Limits pressureWhileActive(Unit&, int, float);
Limits pressureOrZero(Unit&, int, float);
Limits accelerationThreshold(Unit&, int, float);
Limits upToMaxDuty(Unit&, int, float);
Limits fromMinDuty(Unit&, int, float);
Limits idleTemperature(Unit&, int, float);

// ---- Encodings
double toothByte(Unit&, double);
double pressureByte(Unit&, double);
double pressureByteOrZero(Unit&, double);
double inactivePressureByte(Unit&, double);
double pressureWord(Unit&, double);
double dutyByte(Unit&, double);
double eighthsByte(Unit&, double);
double fiftiethsByte(Unit&, double);
double quartersOfWhole(Unit&, double);
double accelerationByte(Unit&, double);
double ratioByte(Unit&, double);
double lambdaByte(Unit&, double);

// ---- Readers
float readPressure(Unit&, const Parameter&, int);
float readPressureOrZero(Unit&, const Parameter&, int);
float readPercent(Unit&, const Parameter&, int);
float readPlusMoffset(Unit&, const Parameter&, int);
float readRatio(Unit&, const Parameter&, int);
float readMapBar(Unit&, const Parameter&, int);
float readMapDisplay(Unit&, const Parameter&, int);
float readMapScaler(Unit&, const Parameter&, int);
float readMapOffset(Unit&, const Parameter&, int);
float readCylinders(Unit&, const Parameter&, int);
float readEvents(Unit&, const Parameter&, int);
float readTach(Unit&, const Parameter&, int);
float readToothMin(Unit&, const Parameter&, int);
float readToothMax(Unit&, const Parameter&, int);
float readEgoType(Unit&, const Parameter&, int);
float readMaxBoost(Unit&, const Parameter&, int);
float readStoichiometric(Unit&, const Parameter&, int);
float readMarginToggle(Unit&, const Parameter&, int);
float readMarginValue(Unit&, const Parameter&, int);
float readAcceleration(Unit&, const Parameter&, int);
float readMapMax(Unit&, const Parameter&, int);
float readMapMin(Unit&, const Parameter&, int);
float readMapRange(Unit&, const Parameter&, int);
float readMapPrecision(Unit&, const Parameter&, int);

// ---- Writers
After writePressure(Unit&, const Parameter&, float, int);
After writePressureWhileActive(Unit&, const Parameter&, float, int);
After writePressureOrZero(Unit&, const Parameter&, float, int);
After writePercent(Unit&, const Parameter&, float, int);
After writeMinusMoffset(Unit&, const Parameter&, float, int);
After writeRatio(Unit&, const Parameter&, float, int);
After writeEighths(Unit&, const Parameter&, float, int);
After writeDuty(Unit&, const Parameter&, float, int);
After writeMapBar(Unit&, const Parameter&, float, int);
After writeCylinders(Unit&, const Parameter&, float, int);
After writeEvents(Unit&, const Parameter&, float, int);
After writeTach(Unit&, const Parameter&, float, int);
After writeToothMin(Unit&, const Parameter&, float, int);
After writeToothMax(Unit&, const Parameter&, float, int);
After writeEgoType(Unit&, const Parameter&, float, int);
After writeEngineType(Unit&, const Parameter&, float, int);
After writePhdSeq(Unit&, const Parameter&, float, int);
After writeAmp42(Unit&, const Parameter&, float, int);
After writeDecelerationCut(Unit&, const Parameter&, float, int);
After writeAcceleration(Unit&, const Parameter&, float, int);
After writeIdleTemperature(Unit&, const Parameter&, float, int);
After writeFuelTrim(Unit&, const Parameter&, float, int);
After writeInjectorTrim(Unit&, const Parameter&, float, int);

// ---- Option bits: the row's index is the control byte, from 0.
template <int bit>
float readOption(Unit&, const Parameter&, int);
template <int bit>
After writeOption(Unit&, const Parameter&, float, int);
After writeZeroAdvance(Unit&, const Parameter&, float, int);
After writeFullCut(Unit&, const Parameter&, float, int);

}  // namespace zentaq::rules
