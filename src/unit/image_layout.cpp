#include "unit/image_layout.h"

namespace zentaq {

namespace {

// Table sizes, axis kinds, sizes of both output tables: columns before rows.
constexpr MovedCell movedCells[] = {{590, 2293},  {591, 2292},  {2192, 2290}, {2193, 2291},
                                    {2194, 2295}, {2195, 2294}, {2260, 2297}, {2261, 2296}};
constexpr StopRun stopRuns[] = {{2196, 2242, "GPO1.X-Axis"},
                                {2228, 2226, "GPO1.Y-Axis"},
                                {2262, 2274, "GPO2.X-Axis"},
                                {2294, 2258, "GPO2.Y-Axis"}};

constexpr ImageLayout layoutOfOrb = {.movedCells = movedCells,
                                     .stopRuns = stopRuns,
                                     .gainWord = 262,
                                     .olderRows = 137,
                                     .newerRows = 147,
                                     .newerFrom = 5,
                                     .hiddenFromOlder = {2192, 2207}};

// The ignition-only unit: a memory of 1024 bytes, no stop points, no table sizes.
constexpr ImageLayout layoutOfPzk2 = {.movedCells = {},
                                      .stopRuns = {},
                                      .gainWord = 86,
                                      .olderRows = 64,
                                      .newerRows = 64,
                                      .newerFrom = 0,
                                      .hiddenFromOlder = {0, -1}};

}  // namespace

const ImageLayout& orbImage() {
    return layoutOfOrb;
}

const ImageLayout& pzk2Image() {
    return layoutOfPzk2;
}

}  // namespace zentaq
