#include "app/data_points.h"

#include "base/number_text.h"
#include "base/rounding.h"

namespace zentaq {

namespace {

constexpr std::array<std::string_view, dataPointCount> names{
    "RPM",
    "MAP",
    "Throttle Position Sensor",
    "Coolant Temp",
    "Manifold Air Temp",
    "Battery Voltage",
    "KNOCK",
    "EGO Volts",
    "CHKE",
    "Ignition Advance",
    "Secondary Advance",
    "Knock Retard",
    "GAMA",
    "IPP",
    "Primary Dutycycle",
    "Pulse ON Time",
    "Pulse OFF Time",
    "Staged Dutycycle",
    "Staged Pulse ON",
    "Staged Pulse OFF",
    "Secondary Percent",
    "EGO Correction",
    "DAFR",
    "AFR",
    "IAC Position",
    "IACD",
    "INJ_TOG",
    "SEN_MAP",
    "INJ_VE",
    "INJ_MAT",
    "INJ_CLT",
    "INJ_BARO",
    "INJ_SE0",
    "INJ_ASE0",
    "INJ_ASE1",
    "MAPACCL",
    "TPSACCL",
    "INJ_ACE2",
    "INJ_ACE5",
    "INJ_ACE6",
    "INJ_VLTCOMP",
    "SEN_BLEND",
    "INJ_STAGE",
    "ADV_TBL",
    "ADV_CLT",
    "ADV_MAT",
    "ADV_BARO",
    "ADV_IDLE",
    "ISRPM",
    "GPIO1",
    "GPIO2",
    "GPIO3",
    "GPIO4",
    "GPIO5",
    "GPIO6",
    "GPIO7",
    "GPIO8",
    "GPIO9",
    "GPIO10",
    "GPIO11",
    "GPIO12",
    "GPIO13",
    "GPIO14",
    "GPIO15",
    "GPIO16",
};

int placeOf(const std::string& text) {
    const auto number = parseNumber(text);
    if (!number || *number < 1 || *number > dataPointCount) return 0;
    return toInt16(*number);
}

}  // namespace

std::span<const std::string_view, dataPointCount> dataPointNames() {
    return names;
}

std::array<int, settings::datalogSlots> storedDataPoints(const SettingsStore& store) {
    std::array<int, settings::datalogSlots> places{};
    int slot = 1;
    for (int& place : places) place = placeOf(store.get(settings::datalog, settings::datalogKey(slot++)));
    return places;
}

std::vector<DataPointWrite> dataPointWrites(const std::vector<int>& places) {
    std::vector<DataPointWrite> writes;
    for (int slot = 1; slot <= settings::datalogSlots; ++slot)
        writes.push_back({settings::datalogKey(slot), "0"});
    int slot = 1;
    for (const int place : places) writes.push_back({settings::datalogKey(slot++), numberText(place)});
    return writes;
}

}  // namespace zentaq
