#include "live/datalog_writer.h"

#include <cmath>
#include <string_view>

#include "base/errors.h"
#include "base/number_text.h"
#include "base/rounding.h"

namespace zentaq {

namespace {

constexpr std::string_view banner = "ZENTAQ 4.10 DATALOG";
constexpr std::string_view lineEnd = "\r\n";
constexpr int pinFunctions = 16;
constexpr std::size_t livePins = 9;
constexpr int datalogEnable = 15;  ///< pin function whose parameter 2 is the log rate
constexpr double ticksPerSecond = 50;

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

std::string headings(std::span<const Channel> part) {
    std::string line;
    for (const Channel& channel : part) {
        if (!channel.log.heading.empty()) line += "\t" + std::string(channel.log.heading);
    }
    return line;
}

std::string columnLine() {
    std::string line = "Frame" + headings(channelsBeforePins);
    for (const std::string_view pin : pinNames) line += "\t" + std::string(pin);
    return line + headings(channelsBehindPins);
}

std::string values(std::span<const Channel> part, const LiveValues& live) {
    std::string line;
    for (const Channel& channel : part) {
        if (channel.log.heading.empty()) continue;
        const float value = channel.in(live);
        const int decimals = channel.log.decimals;
        line += "\t" + numberText(decimals == Channel::asItStands ? value : roundTo(value, decimals));
    }
    return line;
}

std::string dataLine(const Unit& unit, const LiveValues& live, int frame) {
    std::string line = numberText(frame) + values(channelsBeforePins, live);
    for (std::size_t pin = 0; pin < livePins; ++pin) line += "\t" + numberText(int{unit.GPIOData()[pin]});
    // Kept: the pins past 9 are constant, in the text form of a number with its sign place.
    for (std::size_t pin = livePins; pin < pinNames.size(); ++pin) line += "\t 0";
    return line + values(channelsBehindPins, live);
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
