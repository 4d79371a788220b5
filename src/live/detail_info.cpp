#include "live/detail_info.h"

#include <array>
#include <cmath>

#include "base/number_text.h"
#include "unit/temperature.h"

namespace zentaq {

namespace {

struct DetailRow {
    std::string_view caption;
    float LiveValues::*value = nullptr;  ///< none: no frame carries it
    std::string_view format;
};

using L = LiveValues;
constexpr std::string_view speed = "####0";
constexpr std::string_view pressure = "###.0";
constexpr std::string_view volts = "0.#0";
constexpr std::string_view degrees = "#0.0";
constexpr std::string_view percents = "##0";
constexpr std::string_view hundredths = "#0.00";
constexpr std::string_view thousandths = "#0.000";
constexpr std::string_view checkEngine = "CEL";

/// Captions without a value stand where tuners look for them: no frame of a unit carries what they name.
constexpr auto rows = std::to_array<DetailRow>({
    {"RPM", &L::RPM, speed},
    {"MAP", &L::MAP, pressure},
    {"MAP V", &L::SEN_MAP, volts},
    {"ExtRet"},
    {"TPS", &L::TPS, volts},
    {"CLT", &L::CLT, percents},
    {"MAT", &L::MAT, percents},
    {"Knock", &L::KNOCK, percents},
    {"Batt V", &L::BATTV, volts},
    {"Cur Blend %", &L::SEN_BLEND, percents},
    {"MAP Delta", &L::MAPACCL, thousandths},
    {"TPS Delta", &L::TPSACCL, thousandths},
    {"EGO V", &L::EGOV, volts},
    {"AFR", &L::AAFR, hundredths},
    {"Des AFR", &L::DAFR, hundredths},
    {"Idle RPM", &L::ISRPM, speed},
    {"IAC Pos", &L::IACP, percents},
    {"IAC Dir", &L::IACD, percents},
    {checkEngine},
    {"Pri Adv", &L::PRIADV, degrees},
    {"Sec Adv", &L::SECADV, degrees},
    {"Table Adv", &L::ADV_TBL, degrees},
    {"CLT Adv", &L::ADV_CLT, degrees},
    {"MAT Adv", &L::ADV_MAT, degrees},
    {"BARO Adv", &L::ADV_BARO, degrees},
    {"IDLE Adv", &L::ADV_IDLE, degrees},
    {"Knk Ret", &L::KNKRET, degrees},
    {"Base TOG", &L::INJ_TOG, thousandths},
    {"GAMMA", &L::GAMA, percents},
    {"Pri PW", &L::PRIPW, hundredths},
    {"Pri Duty", &L::PRIDUTY, percents},
    {"Staged %", &L::INJ_STAGE, percents},
    {"Sec PW", &L::SECPW, hundredths},
    {"Sec Duty", &L::SECDUTY, percents},
    {"Voltage Cmp", &L::INJ_VLTCOMP, thousandths},
    {"SE0", &L::INJ_SE0, percents},
    {"ASE0", &L::INJ_ASE0, percents},
    {"ASE1", &L::INJ_ASE1, percents},
    {"ACE2", &L::INJ_ACE2, percents},
    {"ACE5", &L::INJ_ACE5, percents},
    {"ACE6", &L::INJ_ACE6, percents},
    {"VE Trim%", &L::INJ_VE, percents},
    {"MAT Trim%", &L::INJ_MAT, percents},
    {"CLT Trim%", &L::INJ_CLT, percents},
    {"BARO Trim%", &L::INJ_BARO, percents},
    {"EGO Cor%", &L::EGOC, percents},
    {"SE1"},
    {"AC3"},
    {"AC7"},
    {"PW0"},
    {"AC8"},
    {"DC4"},
    {"DFC"},
});

std::string unitOf(const DetailRow& row, const Unit& unit, bool fahrenheit) {
    const Channel& channel = channelOf(row.value);
    if (channel.reading.unit == unitOfPressure) return unit.MAPUnits();
    if (channel.reading.unit == unitOfTemperature) return fahrenheit ? "F" : "C";
    return std::string(channel.reading.unit);
}

DetailCell cellOf(const DetailRow& row, const LiveValues& live, const Unit& unit, bool fahrenheit) {
    const bool any = live.frames > 0;
    if (row.caption == checkEngine) return {std::string(row.caption), any ? live.CHKE ? "1" : "0" : "", {}};
    if (row.value == nullptr) return {std::string(row.caption), "-", {}, false};
    float value = live.*row.value;
    const bool temperature = channelOf(row.value).reading.unit == unitOfTemperature;
    if (temperature && fahrenheit) value = toFahrenheit(value);
    const bool known = any && std::isfinite(value);
    return {std::string(row.caption), known ? formatNumber(static_cast<double>(value), row.format) : "",
            unitOf(row, unit, fahrenheit)};
}

}  // namespace

std::vector<DetailCell> detailInfo(const LiveValues& live, const Unit& unit, bool fahrenheit) {
    std::vector<DetailCell> cells;
    for (const DetailRow& row : rows) cells.push_back(cellOf(row, live, unit, fahrenheit));
    for (int pin = 0; pin <= unit.kind().numGpio && unit.kind().slot != 0; ++pin) {
        const auto at = static_cast<std::size_t>(pin);
        if (at >= unit.GPIOData().size()) break;
        cells.push_back({"GPIO " + numberText(pin),
                         live.frames == 0 ? "" : formatNumber(unit.GPIOData()[at], percents), {}});
    }
    return cells;
}

}  // namespace zentaq
