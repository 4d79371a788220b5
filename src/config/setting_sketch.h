// Pictures of what settings do, where a picture says more than their numbers: lines over a scale, with names,
// and marks. They show the numbers of the page and how they stand to each other; the unit's own program
// decides what happens between them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "config/chart.h"
#include "unit/unit.h"

namespace zentaq {

struct SketchLine {
    std::string name;  ///< empty for none
    std::vector<ChartPoint> points;
    bool dashed = false;
};

struct SketchMark {
    ChartPoint at;
    std::string text;
};

struct SettingSketch {
    ChartScale across;
    ChartScale up;
    std::vector<SketchLine> lines;
    std::vector<SketchMark> marks;
    std::string words;  ///< the same for a screen reader
};

/// That of a page; nothing for one without, for a kind without its settings, and where they cannot be read.
std::optional<SettingSketch> settingSketch(Unit& unit, int page);

}  // namespace zentaq
