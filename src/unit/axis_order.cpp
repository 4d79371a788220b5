#include "unit/axis_order.h"

#include <algorithm>
#include <array>

#include "base/errors.h"
#include "base/number_text.h"
#include "unit/table_kinds.h"

namespace zentaq {

namespace {

constexpr int mostStops = 16;

struct Axis {
    std::string_view table;  ///< "ADV" for the axes that the main tables share
    std::string_view axis;
    std::string_view name;
};
constexpr std::array axes{
    Axis{"ADV", "X-Axis", "RPM axis of the tables"}, Axis{"ADV", "Y-Axis", "MAP axis of the tables"},
    Axis{"GPO1", "X-Axis", "X-Axis of GPO1"},        Axis{"GPO1", "Y-Axis", "Y-Axis of GPO1"},
    Axis{"GPO2", "X-Axis", "X-Axis of GPO2"},        Axis{"GPO2", "Y-Axis", "Y-Axis of GPO2"}};

std::vector<float> stopsInUse(Unit& unit, std::string_view table, std::string_view axis) {
    const int count = unit.GET_TBL_DIMENSIONS(table, axis == "X-Axis" ? "COLS" : "ROWS");
    std::vector<float> stops;
    for (int i = 0; i < std::min(count, mostStops); ++i) stops.push_back(tableHeader(unit, table, axis, i));
    return stops;
}

bool isSetUp(const std::vector<float>& stops) {
    return std::ranges::any_of(stops, [](float stop) { return stop != 0; });
}

/// Not "falls": what is no number rises to nothing.
bool breaksOrder(float stop, float next) {
    return !(stop < next);
}

std::string lineOf(const Axis& axis, const std::vector<float>& stops) {
    const auto first = std::ranges::adjacent_find(stops, breaksOrder);
    if (first == stops.end()) return {};
    int more = -1;
    for (std::size_t i = 1; i < stops.size(); ++i) more += breaksOrder(stops[i - 1], stops[i]) ? 1 : 0;
    std::string line =
        std::string(axis.name) + ": " + numberText(*first) + " is followed by " + numberText(*(first + 1));
    if (more > 0)
        line +=
            ", and " + numberText(more) + (more == 1 ? " more stop does" : " more stops do") + " not rise";
    return line;
}

}  // namespace

std::vector<std::string> axesWithoutOrder(Unit& unit) {
    std::vector<std::string> lines;
    for (const Axis& axis : axes) {
        const bool output = findTable(axis.table)->isGpo();
        // Without stops of its own an output table has those of the main tables.
        if (!unit.kind().hasCalibration || (output && !unit.kind().cells.hasAxisWords)) continue;
        skipFailing([&] {
            const auto stops = stopsInUse(unit, axis.table, axis.axis);
            if (output && !isSetUp(stops)) return;
            std::string line = lineOf(axis, stops);
            if (!line.empty()) lines.push_back(std::move(line));
        });
    }
    return lines;
}

std::optional<float> stopBefore(Unit& unit, std::string_view table, std::string_view axis, int index) {
    const auto stops = stopsInUse(unit, table, axis);
    if (index < 1 || index >= std::ssize(stops)) return {};
    return stops[static_cast<std::size_t>(index) - 1];
}

std::string stopNotBelowNext(float stop, float next) {
    if (!breaksOrder(stop, next)) return {};
    return numberText(stop) + " is not below the next value of the axis, " + numberText(next) +
           ".\nThe unit looks its values up between two neighbors that rise: until the next ones lie above, "
           "the "
           "engine may get values that nobody chose.";
}

}  // namespace zentaq
