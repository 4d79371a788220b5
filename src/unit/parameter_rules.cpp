// Readers and writers, and the values that they build on.
#include "unit/parameter_rules.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "base/errors.h"
#include "base/rounding.h"
#include "unit/counts.h"
#include "unit/temperature.h"
#include "unit/unit.h"

namespace zentaq::rules {

namespace {

constexpr int p2Egtp = 4;
constexpr int cylindersAndEvents = 8;
constexpr int ovr1Thr = 62;
constexpr int ovr2Thr = 63;

constexpr double tableBase = 14.7;  ///< the fixed ratio on which the AFR table is kept

const CellMap& cellsOf(const Unit& unit) {
    return unit.kind().cells;
}

float asFloat(double value) {
    return static_cast<float>(value);
}

int whole(float cell) {
    return toInt32(static_cast<double>(cell));
}

After stored(Unit& unit, const Parameter& row, double value, int element) {
    unit.AssignDirectIndex(asFloat(value), row.cell(element));
    return After::Send;
}

void controlBits(Unit& unit, int which, int kept, double added) {
    // The sum is taken back to one byte, whatever the entry.
    const int byte = (unit.controlByte(which) & kept) + toInt32(added);
    unit.controlByte(which, static_cast<std::uint8_t>(byte & 255));
}

std::optional<EngineFacts> engineOf(Unit& unit) {
    return unit.host().engine(unit.kind().engines,
                              toInt16(static_cast<double>(unit.DirectIndex(cellsOf(unit).optionType))));
}

/// For what is only shown: without reference data the calibration's own numbers have to do.
std::optional<EngineFacts> engineIfKnown(Unit& unit) {
    std::optional<EngineFacts> engine;
    skipFailing([&] { engine = engineOf(unit); });
    return engine;
}

/// Pulses per revolution and the code that stands for them in the high nibble of P2EGTP.
struct TachCode {
    int pulses;
    int nibble;
};
constexpr std::array<TachCode, 5> tachCodes = {{{1, 14}, {2, 2}, {3, 8}, {4, 3}, {6, 10}}};

}  // namespace

float mapBar(Unit& unit) {
    if (!unit.kind().hasCalibration) return 1.0F;
    if (unit.DirectIndex(cellsOf(unit).legacyBar) == 0) unit.AssignDirectIndex(1.0F, cellsOf(unit).legacyBar);
    if (unit.DirectIndex(cellsOf(unit).mapBar) == 0)
        unit.AssignDirectIndex(unit.DirectIndex(cellsOf(unit).legacyBar), cellsOf(unit).mapBar);
    return unit.DirectIndex(cellsOf(unit).mapBar);
}

float stoichiometricRatio(Unit& unit) {
    if (!unit.kind().hasCalibration) return petrolCell;
    if (unit.DirectIndex(cellsOf(unit).ratio) == 0) unit.AssignDirectIndex(petrolCell, cellsOf(unit).ratio);
    return unit.DirectIndex(cellsOf(unit).ratio);
}

float mapScaler(const Unit& unit) {
    const float cell = unit.DirectIndex(cellsOf(unit).mapScaler);
    return cell == 0 ? 0.05295F : roundTo(cell, 4);
}

float mapOffset(const Unit& unit) {
    // A file without a sensor gets the default sensor in both, so the scaler's cell decides.
    return unit.DirectIndex(cellsOf(unit).mapScaler) == 0
               ? -0.54738F
               : roundTo(unit.DirectIndex(cellsOf(unit).mapOffset), 4);
}

// ---- Readers

float readPressure(Unit& unit, const Parameter& row, int element) {
    const float kpa = unit.DirectIndex(row.cell(element));
    return roundTo(unit.voltsToPressure(unit.KpaToVolts(kpa)), unit.MAPPrecision());
}

float readPressureOrZero(Unit& unit, const Parameter& row, int element) {
    return unit.DirectIndex(row.cell(element)) == 0 ? 0 : readPressure(unit, row, element);
}

float readPercent(Unit& unit, const Parameter& row, int element) {
    return asFloat(static_cast<double>(unit.DirectIndex(row.cell(element))) * 100);
}

float readPlusMoffset(Unit& unit, const Parameter& row, int element) {
    return asFloat(static_cast<double>(unit.DirectIndex(row.cell(element))) + unit.DirectIndex(moffsetCell));
}

float readRatio(Unit& unit, const Parameter& row, int element) {
    return asFloat(unit.DirectIndex(row.cell(element)) * (stoichiometricRatio(unit) / tableBase));
}

float readMapBar(Unit& unit, const Parameter&, int) {
    return mapBar(unit);
}

float readMapDisplay(Unit& unit, const Parameter&, int) {
    if (unit.DirectIndex(cellsOf(unit).mapBar) == 0) unit.AssignDirectIndex(1.0F, cellsOf(unit).mapBar);
    return unit.DirectIndex(cellsOf(unit).mapBar);
}

float readMapScaler(Unit& unit, const Parameter&, int) {
    return mapScaler(unit);
}

float readMapOffset(Unit& unit, const Parameter&, int) {
    return mapOffset(unit);
}

float readCylinders(Unit& unit, const Parameter&, int) {
    const int highNibble = (whole(unit.DirectIndex(cylindersAndEvents)) & 240) / 16;
    return static_cast<float>(highNibble);
}

float readEvents(Unit& unit, const Parameter&, int) {
    return static_cast<float>(whole(unit.DirectIndex(cylindersAndEvents)) & 15);
}

float readTach(Unit& unit, const Parameter&, int) {
    const int nibble = (whole(unit.DirectIndex(p2Egtp)) & 240) / 16;
    const auto code = std::ranges::find(tachCodes, nibble, &TachCode::nibble);
    return code == tachCodes.end() ? 0 : static_cast<float>(code->pulses);
}

float readToothMin(Unit& unit, const Parameter&, int) {
    const auto engine = engineIfKnown(unit);
    return engine ? engine->toothMin : unit.teeth().minimum;
}

float readToothMax(Unit& unit, const Parameter&, int) {
    const auto engine = engineIfKnown(unit);
    return engine ? engine->toothMax : unit.teeth().maximum;
}

float readEgoType(Unit& unit, const Parameter& row, int) {
    // Older files keep 128 plus the type. Kept: any other value loses 128 as well.
    const float cell = unit.DirectIndex(row.index);
    if (cell < 1 || cell > 2) unit.AssignDirectIndex(cell - 128, row.index);
    return unit.DirectIndex(row.index);
}

float readMaxBoost(Unit& unit, const Parameter& row, int) {
    const float cell = unit.DirectIndex(row.index);
    if (unit.FW_Release() < 3) return cell;
    const std::string units = unit.MAPUnits();
    if (units == "kPa") return asFloat(static_cast<double>(cell) / 100);
    if (units == "PSIA" || units == "PSIG") return asFloat(static_cast<double>(cell) / 14.504);
    if (units == "mmHg") return asFloat(static_cast<double>(cell) / 750.1);
    if (units == "inHg") return asFloat(static_cast<double>(cell) / 29.53);
    return cell;
}

float readStoichiometric(Unit& unit, const Parameter&, int) {
    return stoichiometricRatio(unit);
}

float readMarginToggle(Unit& unit, const Parameter&, int) {
    return unit.DirectIndex(cellsOf(unit).marginValue) == 0 ? 1.0F
                                                            : unit.DirectIndex(cellsOf(unit).marginToggle);
}

float readMarginValue(Unit& unit, const Parameter&, int) {
    const float cell = unit.DirectIndex(cellsOf(unit).marginValue);
    return cell == 0 ? 0.08F : cell;
}

float readAcceleration(Unit& unit, const Parameter& row, int) {
    const double cell = unit.DirectIndex(row.index);
    const double shown = ((cell / mapBar(unit)) * 34.3) / accelerationFactor(unit);
    return asFloat(roundTo(shown, unit.MAPPrecision() + 1));
}

float readMapMax(Unit& unit, const Parameter&, int) {
    return unit.MAPMax();
}

float readMapMin(Unit& unit, const Parameter&, int) {
    return unit.MAPMin();
}

float readMapRange(Unit& unit, const Parameter&, int) {
    return unit.MAPRange();
}

float readMapPrecision(Unit& unit, const Parameter&, int) {
    return static_cast<float>(unit.MAPPrecision());
}

// ---- Writers

After writePressure(Unit& unit, const Parameter& row, float value, int element) {
    return stored(unit, row, unit.voltsToKPa(unit.pressureToVolts(value)), element);
}

After writePressureWhileActive(Unit& unit, const Parameter& row, float value, int element) {
    if (unit.DirectIndex(cellsOf(unit).mapActive) == 0) return stored(unit, row, 0, element);
    return writePressure(unit, row, value, element);
}

After writePressureOrZero(Unit& unit, const Parameter& row, float value, int element) {
    if (value != 0) return writePressure(unit, row, value, element);
    stored(unit, row, 0, element);
    return After::Nothing;
}

After writePercent(Unit& unit, const Parameter& row, float value, int element) {
    return stored(unit, row, static_cast<double>(value) / 100, element);
}

After writeMinusMoffset(Unit& unit, const Parameter& row, float value, int element) {
    return stored(unit, row, static_cast<double>(value) - unit.DirectIndex(moffsetCell), element);
}

After writeRatio(Unit& unit, const Parameter& row, float value, int element) {
    return stored(unit, row, (tableBase / stoichiometricRatio(unit)) * value, element);
}

After writeEighths(Unit& unit, const Parameter& row, float value, int element) {
    return stored(unit, row, toCount(static_cast<double>(value) * 8) / 8.0, element);
}

After writeDuty(Unit& unit, const Parameter& row, float value, int element) {
    if (unit.DirectIndex(cellsOf(unit).maxDuty) == 0) unit.AssignDirectIndex(255, cellsOf(unit).maxDuty);
    if (unit.DirectIndex(cellsOf(unit).minDuty) == 0) unit.AssignDirectIndex(1, cellsOf(unit).minDuty);
    return stored(unit, row, value, element);
}

After writeMapBar(Unit& unit, const Parameter&, float value, int) {
    unit.AssignDirectIndex(value, cellsOf(unit).mapBar);
    const bool rated = value < 4.0F && std::trunc(value) == value;
    unit.AssignDirectIndex(rated ? value : 4.0F, cellsOf(unit).legacyBar);
    return After::Nothing;
}

After writeCylinders(Unit& unit, const Parameter&, float value, int) {
    const int events = whole(unit.DirectIndex(cylindersAndEvents)) & 15;
    unit.AssignDirectIndex(asFloat(events + static_cast<double>(value) * 16), cylindersAndEvents);
    return After::Nothing;
}

After writeEvents(Unit& unit, const Parameter&, float value, int) {
    const int cylinders = whole(unit.DirectIndex(cylindersAndEvents)) & 240;
    unit.AssignDirectIndex(asFloat(cylinders + static_cast<double>(value)), cylindersAndEvents);
    return After::Nothing;
}

After writeTach(Unit& unit, const Parameter&, float value, int) {
    const int low = whole(unit.DirectIndex(p2Egtp)) & 15;
    int nibble = 0;
    if (value == 0) {
        // 0 pulses gives back the engine's own code.
        const auto engine = engineOf(unit);
        nibble = engine ? (whole(engine->p2EgTp) & 240) / 16 : 0;
    } else {
        const auto code = std::ranges::find(tachCodes, whole(value), &TachCode::pulses);
        if (code != tachCodes.end()) nibble = code->nibble;
    }
    unit.AssignDirectIndex(static_cast<float>(low + nibble * 16), p2Egtp);
    return After::Send;
}

After writeToothMin(Unit& unit, const Parameter&, float value, int) {
    unit.teeth({value, unit.teeth().maximum});
    return After::Nothing;
}

After writeToothMax(Unit& unit, const Parameter&, float value, int) {
    unit.teeth({unit.teeth().minimum, value});
    return After::Nothing;
}

After writeEgoType(Unit& unit, const Parameter& row, float value, int element) {
    if (value == 1) unit.Set_Control2(7, false);
    if (value == 2) unit.Set_Control2(7, true);
    return stored(unit, row, value, element);
}

After writeEngineType(Unit& unit, const Parameter& row, float value, int element) {
    controlBits(unit, 2, 255 - 16 - 32, static_cast<double>(value) * 32);
    return stored(unit, row, value, element);
}

After writePhdSeq(Unit& unit, const Parameter& row, float value, int element) {
    controlBits(unit, 2, 255 - 64 - 128, static_cast<double>(value) * 64);
    return stored(unit, row, value, element);
}

After writeAmp42(Unit& unit, const Parameter& row, float value, int element) {
    if (value == 0) unit.Set_Control3(3, false);
    if (value == 1) unit.Set_Control3(3, true);
    return stored(unit, row, value, element);
}

After writeDecelerationCut(Unit& unit, const Parameter& row, float value, int element) {
    unit.Set_Control(1, value == 1);
    return stored(unit, row, value, element);
}

After writeAcceleration(Unit& unit, const Parameter& row, float value, int element) {
    return stored(unit, row, (accelerationFactor(unit) * value * mapBar(unit)) / 34.3, element);
}

After writeIdleTemperature(Unit& unit, const Parameter& row, float value, int element) {
    return stored(unit, row, unit.host().fahrenheit() ? toCelsius(value) : value, element);
}

After writeFuelTrim(Unit& unit, const Parameter& row, float value, int element) {
    unit.AssignDirectIndex(value, cellsOf(unit).fuelTrimSent + element);
    return stored(unit, row, value, element);
}

After writeInjectorTrim(Unit& unit, const Parameter& row, float value, int element) {
    stored(unit, row, value, element);
    unit.SpreadTrim(element);
    return After::Nothing;
}

// ---- Option bits

template <int bit>
float readOption(Unit& unit, const Parameter& row, int) {
    return (unit.controlByte(row.index) & (1 << bit)) != 0 ? 1.0F : 0.0F;
}

template <int bit>
After writeOption(Unit& unit, const Parameter& row, float value, int) {
    const int mask = 1 << bit;
    const int byte = unit.controlByte(row.index);
    unit.controlByte(row.index, static_cast<std::uint8_t>(value != 0 ? byte | mask : byte & (255 ^ mask)));
    return After::Nothing;
}

template float readOption<0>(Unit&, const Parameter&, int);
template float readOption<1>(Unit&, const Parameter&, int);
template float readOption<2>(Unit&, const Parameter&, int);
template float readOption<3>(Unit&, const Parameter&, int);
template float readOption<4>(Unit&, const Parameter&, int);
template float readOption<5>(Unit&, const Parameter&, int);
template float readOption<6>(Unit&, const Parameter&, int);
template After writeOption<0>(Unit&, const Parameter&, float, int);
template After writeOption<1>(Unit&, const Parameter&, float, int);
template After writeOption<2>(Unit&, const Parameter&, float, int);
template After writeOption<3>(Unit&, const Parameter&, float, int);
template After writeOption<4>(Unit&, const Parameter&, float, int);
template After writeOption<5>(Unit&, const Parameter&, float, int);

After writeZeroAdvance(Unit& unit, const Parameter&, float value, int) {
    unit.Set_Control2(6, value != 0);
    unit.Set_Control3(1, false);
    return After::Nothing;
}

After writeFullCut(Unit& unit, const Parameter&, float value, int) {
    unit.Set_Control3(0, value != 0);
    unit.Set_Control2(6, false);
    // Into the calibration only: the bit they go with reaches the unit no earlier than the next programming.
    unit.AssignDirectIndex(0, ovr1Thr);
    unit.AssignDirectIndex(0, ovr2Thr);
    return After::Nothing;
}

}  // namespace zentaq::rules
