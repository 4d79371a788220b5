#include "config/setting_sketch.h"

#include <algorithm>
#include <array>

#include "base/errors.h"
#include "base/number_text.h"
#include "config/field_pages.h"
#include "config/shown_value.h"

namespace zentaq {

namespace {

constexpr double marksAcross = 8;
constexpr double marksUp = 5;

double at(Unit& unit, std::string_view member, int element = 0) {
    return static_cast<double>(unit.get(member, element));
}

void frame(SettingSketch& sketch, const std::string& across, const std::string& up) {
    std::optional<ChartPoint> low;
    std::optional<ChartPoint> high;
    for (const SketchLine& line : sketch.lines) {
        for (const ChartPoint& point : line.points) {
            if (!isPlace(point)) continue;
            if (!low) low = high = point;
            low = {std::min(low->x, point.x), std::min(low->y, point.y)};
            high = {std::max(high->x, point.x), std::max(high->y, point.y)};
        }
    }
    const ChartPoint from = low.value_or(ChartPoint{});
    const ChartPoint to = high.value_or(ChartPoint{1, 1});
    sketch.across = chartScale(from.x, to.x, true, marksAcross, "0");
    sketch.up = chartScale(from.y, to.y, true, marksUp, "0");
    sketch.across.title = across;
    sketch.up.title = up;
}

/// The extra fuel falls from its amount to nothing in the time of the page.
SettingSketch acceleration(Unit& unit) {
    struct Amount {
        std::string_view member;
        std::string_view name;
        bool dashed;
    };
    constexpr std::array amounts{
        Amount{"ACE2", "cold", false}, Amount{"ACE3", "hot", false}, Amount{"ACE5", "throttle, cold", true},
        Amount{"ACE6", "throttle, warm", true}, Amount{"ACE7", "throttle, hot", true}};
    SettingSketch sketch;
    const double seconds = at(unit, "ACE4");
    sketch.words = "Extra fuel falls to nothing in " + numberText(seconds) + " seconds:";
    for (const Amount& amount : amounts) {
        const double percent = at(unit, amount.member);
        sketch.lines.push_back({std::string(amount.name), {{0, percent}, {seconds, 0}}, amount.dashed});
        sketch.words += " " + std::string(amount.name) + " from " + numberText(percent) + " %;";
    }
    sketch.words.back() = '.';
    frame(sketch, "Time (s)", "Acceleration enrichment (%)");
    return sketch;
}

/// Stage by stage above the limit, and back below it.
SettingSketch revLimiter(Unit& unit) {
    SettingSketch sketch;
    const double limit = at(unit, "REV_Limiter");
    const double back = limit - at(unit, "REV_Hysteresis");
    const bool stages = fieldIsOn(unit, *fieldOf("opt3Stage"));
    std::vector<SketchMark> steps{{{limit, 1}, "Limit " + numberText(limit)}};
    if (stages) {
        const double first = limit + at(unit, "OVR1THR");
        const double second = limit + at(unit, "OVR2THR");
        steps.push_back({{first, 2}, "Stage 1: " + numberText(first)});
        steps.push_back({{std::max(first, second), 3}, "Stage 2: " + numberText(second)});
    }
    const double room = std::max(steps.back().at.x - back, 100.0) / 2;
    SketchLine rising{"", {{back - room, 0}}};
    double level = 0;
    for (const SketchMark& step : steps) {
        rising.points.push_back({step.at.x, level});
        rising.points.push_back(step.at);
        level = step.at.y;
    }
    rising.points.push_back({steps.back().at.x + room, level});
    sketch.lines.push_back(std::move(rising));
    sketch.lines.push_back({"", {{limit, 1}, {back, 1}, {back, 0}}, true});
    sketch.marks = steps;
    sketch.marks.push_back({{back, 0}, "Back below " + numberText(back)});
    for (const SketchMark& mark : sketch.marks) sketch.words += mark.text + " RPM. ";
    frame(sketch, "Engine Speed (RPM)", stages ? "Ignition is cut in stages" : "Ignition is cut");
    // The height has no number of its own.
    sketch.up.ticks.clear();
    sketch.up.low = 0;
    sketch.up.high = steps.back().at.y + 1;
    return sketch;
}

/// The wanted speed by the coolant's temperature, level beyond its ends, and where the control works.
SettingSketch idle(Unit& unit) {
    SettingSketch sketch;
    const FieldRow& row = *fieldOf("txtIDLE_Speed");
    const int count = unit.find("ISRPM")->count;
    SketchLine wanted{"wanted speed", {}};
    for (int i = 0; i < count; ++i) {
        const std::string stop = shownStop(unit, row.axis, i, count);
        wanted.points.push_back({numberOf(stop), at(unit, "ISRPM", i)});
        sketch.words += "At " + stop + " " + shownStopUnit(unit, row.axis) + " " +
                        numberText(wanted.points.back().y) + " RPM. ";
    }
    const double first = std::min(wanted.points.front().x, wanted.points.back().x);
    const double last = std::max(wanted.points.front().x, wanted.points.back().x);
    const double room = std::max((last - first) / 4, 10.0);
    const auto [low, high] = std::ranges::minmax_element(wanted.points, {}, &ChartPoint::x);
    const ChartPoint before{low->x - room, low->y};
    const ChartPoint behind{high->x + room, high->y};
    std::ranges::stable_sort(wanted.points, {}, &ChartPoint::x);
    wanted.points.insert(wanted.points.begin(), before);
    wanted.points.push_back(behind);
    sketch.lines.push_back(std::move(wanted));
    const auto level = [&](std::string_view member, const std::string& name) {
        const double speed = at(unit, member);
        if (speed == 0) return;
        sketch.lines.push_back({name, {{before.x, speed}, {behind.x, speed}}, true});
        sketch.words += name + " " + numberText(speed) + " RPM. ";
    };
    level("IAC_RPM_HI", "control ends above");
    level("IAC_RPM_LO", "control starts below");
    frame(sketch, "Coolant (" + shownStopUnit(unit, row.axis) + ")", "Idle speed (RPM)");
    return sketch;
}

/// The cells of a page's curve that has no graph of its own.
SettingSketch cells(Unit& unit, const FieldRow& row, const std::string& across) {
    SettingSketch sketch;
    const Parameter& parameter = *parameterOf(unit, row);
    SketchLine line;
    for (int i = 0; i < parameter.count; ++i)
        line.points.push_back(
            {numberOf(shownStop(unit, row.axis, i, parameter.count)), at(unit, parameter.name, i)});
    sketch.lines.push_back(std::move(line));
    const std::string in = shownUnit(unit, parameter, row);
    frame(sketch, across, in.empty() ? std::string(parameter.meaning) : in);
    sketch.words = std::string(parameter.meaning) + " as a line; its numbers stand in the boxes.";
    return sketch;
}

struct SketchRow {
    int page = 0;
    std::string_view control;  ///< the page has a sketch where it has this one
    SettingSketch (*make)(Unit& unit);
};

constexpr std::array sketches{
    SketchRow{2, "txtTIME_VAR", acceleration}, SketchRow{9, "txtREV_Primary", revLimiter},
    SketchRow{10, "txtIDLE_Speed", idle},
    SketchRow{19, "txtBatComp",
              [](Unit& unit) { return cells(unit, *fieldOf("txtBatComp"), "Battery (V)"); }}};

}  // namespace

std::optional<SettingSketch> settingSketch(Unit& unit, int page) {
    std::optional<SettingSketch> sketch;
    const auto row = std::ranges::find(sketches, page, &SketchRow::page);
    if (row == sketches.end() || !fieldExists(unit, *fieldOf(row->control))) return sketch;
    skipFailing([&] { sketch = row->make(unit); });
    return sketch;
}

}  // namespace zentaq
