#include "live/datalog_writer.h"

#include <array>
#include <cmath>
#include <string_view>
#include <variant>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"

namespace zentaq {

namespace {

constexpr std::string_view banner = "ZENTAQ 4.10 DATALOG";
constexpr std::string_view lineEnd = "\r\n";
constexpr int pinFunctions = 16;
constexpr int livePins = 9;
constexpr int pinColumns = 20;
constexpr int datalogEnable = 15;  ///< pin function whose parameter 2 is the log rate
constexpr double ticksPerSecond = 50;

constexpr int asItStands = -1;

struct Column {
    std::string_view name;
    std::variant<float LiveValues::*, bool LiveValues::*> value;
    int decimals = asItStands;
};

using L = LiveValues;

/// The columns between "Frame" and "GPIO1".
constexpr std::array columns{
    Column{"RPM", &L::RPM},
    Column{"MAP", &L::MAP, 1},
    Column{"TPS", &L::TPS, 2},
    Column{"CLT", &L::CLT},
    Column{"MAT", &L::MAT},
    Column{"Batt V", &L::BATTV, 1},
    Column{"Knock", &L::KNOCK, 0},
    Column{"EGO V", &L::EGOV, 2},
    Column{"ChkEng", &L::CHKE},
    Column{"Pri Adv", &L::PRIADV, 1},
    Column{"Sec Adv", &L::SECADV, 1},
    Column{"Knock Retard", &L::KNKRET, 1},
    Column{"GAMA", &L::GAMA},
    Column{"Pri Duty", &L::PRIDUTY, 1},
    Column{"Pri Pulsewidth", &L::PRIPW, 2},
    Column{"Secondary Duty", &L::SECDUTY, 1},
    Column{"Secondary Pulsewidth", &L::SECPW, 2},
    Column{"Secondary Percent of Primary", &L::SECPERCENT, 0},
    Column{"EGO Correction", &L::EGOC},
    Column{"Desired AFR", &L::DAFR, 2},
    Column{"Actual AFR", &L::AAFR, 2},
    Column{"IAC Pos", &L::IACP, 0},
    Column{"Step Direction", &L::IACD},
    Column{"TOG", &L::INJ_TOG, 3},
    Column{"MAP Raw Voltage", &L::SEN_MAP, 3},
    Column{"VE Table", &L::INJ_VE},
    Column{"MAT Correction", &L::INJ_MAT},
    Column{"CLT Correction", &L::INJ_CLT},
    Column{"Barometric Correction", &L::INJ_BARO},
    Column{"SE0", &L::INJ_SE0},
    Column{"ASE0", &L::INJ_ASE0},
    Column{"ASE1", &L::INJ_ASE1},
    Column{"MAP Acceleration", &L::MAPACCL, 3},
    Column{"TPS Acceleration", &L::TPSACCL, 3},
    Column{"ACE2", &L::INJ_ACE2},
    Column{"ACE5", &L::INJ_ACE5},
    Column{"ACE6", &L::INJ_ACE6},
    Column{"Voltage Comp", &L::INJ_VLTCOMP},
    Column{"Blend", &L::SEN_BLEND},
    Column{"Staged Percentage", &L::INJ_STAGE},
    Column{"Table Advance", &L::ADV_TBL},
    Column{"Coolant Advance", &L::ADV_CLT},
    Column{"MAT Advance", &L::ADV_MAT},
    Column{"Barometric Advance", &L::ADV_BARO},
    Column{"Idle Advance", &L::ADV_IDLE},
    Column{"Idle Speed", &L::ISRPM},
};

std::string textOf(const Column& column, const LiveValues& live) {
    if (const auto* lamp = std::get_if<bool LiveValues::*>(&column.value)) return live.**lamp ? "1" : "0";
    const float value = live.*std::get<float LiveValues::*>(column.value);
    return numberText(column.decimals == asItStands ? value : roundTo(value, column.decimals));
}

int functionOf(const Unit& unit, int pin) {
    int function = 0;
    skipFailing([&] { function = unit.Get_GPIOFUNC(pin); });
    return function;
}

/// Records a second of the unit's own log; 50 when the calibration sets none, so that frames count as they
/// are.
double logRateHz(const Unit& unit) {
    for (int pin = 0; pin <= unit.kind().numGpio; ++pin) {
        if (functionOf(unit, pin) != datalogEnable) continue;
        const float rate = unit.Get_GPIO_Param(pin, 2);
        if (rate > 0) return rate;
    }
    return ticksPerSecond;
}

int frameNumber(const Unit& unit, bool scaled, int frame) {
    if (!scaled) return frame;
    return toInt32(std::floor(ticksPerSecond / logRateHz(unit) * frame));
}

std::string settingsLine(Unit& unit) {
    std::string line;
    for (const std::string_view member : {"MAP_BAR", "MinDuty", "MaxDuty"}) {
        line += numberText(unit.get(member)) + "\t";
    }
    for (int pin = 0; pin < pinFunctions; ++pin) line += numberText(functionOf(unit, pin)) + "\t";
    line += "0\t0\t0\t0\t";
    return line + unit.MAPUnits() + "\t" + numberText(unit.get("AFR"));
}

std::string columnLine() {
    std::string line = "Frame";
    for (const Column& column : columns) line += "\t" + std::string(column.name);
    for (int pin = 1; pin <= pinColumns; ++pin) line += "\tGPIO" + numberText(pin);
    return line;
}

std::string dataLine(const Unit& unit, const LiveValues& live, int frame) {
    std::string line = numberText(frame);
    for (const Column& column : columns) line += "\t" + textOf(column, live);
    for (std::size_t pin = 0; pin < livePins; ++pin) line += "\t" + numberText(int{unit.GPIOData[pin]});
    // Kept: the pins past 9 are constant, in the text form of a number with its sign place.
    for (int pin = livePins; pin < pinColumns; ++pin) line += "\t 0";
    return line;
}

}  // namespace

void writeDatalogHeader(std::ostream& out, Unit& unit) {
    out << banner << '\t' << unit.FirmWare() << lineEnd << settingsLine(unit) << lineEnd << columnLine()
        << lineEnd;
}

void DataRecord(std::ostream& out, Unit& unit, const LiveValues& live, bool scaled, int frame) {
    skipFailing(
        [&] { out << dataLine(unit, live, frameNumber(unit, scaled, frame)) + std::string(lineEnd); });
}

}  // namespace zentaq
