#include "unit/parameter_rules.h"
#include "unit/parameter_tables.h"
#include "unit/unit.h"

namespace zentaq {

namespace {

// What forms and timers may ask before a calibration is chosen. Nothing can be written.
template <int whole>
float answer(Unit&, const Parameter&, int) {
    return static_cast<float>(whole);
}
float highest(Unit& unit, const Parameter&, int) {
    return unit.MAPMax();
}
float lowest(Unit& unit, const Parameter&, int) {
    return unit.MAPMin();
}

constexpr Parameter table[] = {
    {.name = "MAP_BAR", .readOnly = true, .read = answer<1>},
    {.name = "MAPMax", .readOnly = true, .read = highest},
    {.name = "MAPMin", .readOnly = true, .read = lowest},
    {.name = "MOFFSET", .readOnly = true, .read = answer<0>},
    {.name = "MinDuty", .readOnly = true, .read = answer<0>},
    {.name = "MaxDuty", .readOnly = true, .read = answer<255>},
    {.name = "Engine_Type", .readOnly = true, .read = answer<0>},
    {.name = "PHDSEQ", .readOnly = true, .read = answer<1>},
    {.name = "AFR", .readOnly = true, .read = rules::readStoichiometric},
};

}  // namespace

std::span<const Parameter> nullParameters() {
    return table;
}

}  // namespace zentaq
