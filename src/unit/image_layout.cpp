#include "unit/image_layout.h"

#include <array>

namespace zentaq {

namespace {

constexpr Encoding whole = {.bytes = Bytes::One};
constexpr Encoding percent = {.bytes = Bytes::One, .factor = 2.55};
constexpr Encoding percentAround50 = {.bytes = Bytes::One, .shift = 50};

constexpr Run hiddenStops = {2192, 2207};

// Table sizes, axis kinds, sizes of both output tables: columns before rows.
constexpr std::array<MovedCell, 8> movedCells = {{{590, 2293},
                                                  {591, 2292},
                                                  {2192, 2290},
                                                  {2193, 2291},
                                                  {2194, 2295},
                                                  {2195, 2294},
                                                  {2260, 2297},
                                                  {2261, 2296}}};
constexpr std::array<StopRun, 4> stopRuns = {{{2196, 2242}, {2228, 2226}, {2262, 2274}, {2294, 2258}}};

constexpr std::array<Run, 7> zeros = {
    {{18, 33}, {268, 274}, {323, 335}, {417, 503}, {512, 519}, {536, 559}, {584, 589}}};
constexpr std::array<LooseCells, 4> looseCells = {{
    {{504, 511}, percentAround50},  // fuel trims as sent
    {{560, 583}, whole},            // calibration name
    {{1680, 1935}, percent},        // output table 1
    {{1936, 2191}, percent},        // output table 2
}};

constexpr ImageLayout layoutOfOrba = {.zeros = zeros,
                                      .looseCells = looseCells,
                                      .movedCells = movedCells,
                                      .stopRuns = stopRuns,
                                      .gainWord = 262,
                                      .olderRows = 137,
                                      .newerRows = 147,
                                      .newerFrom = 5,
                                      .hiddenFromOlder = hiddenStops};

// The blocks begin two cells earlier and are thirteen.
constexpr std::array<Run, 7> zerosOfOrbc = {
    {{18, 33}, {268, 274}, {323, 333}, {451, 503}, {512, 519}, {536, 559}, {584, 589}}};

constexpr ImageLayout withZeros(ImageLayout layout, std::span<const Run> runs) {
    layout.zeros = runs;
    return layout;
}

constexpr ImageLayout layoutOfOrbc = withZeros(layoutOfOrba, zerosOfOrbc);

// There is no staged injection: the tables behind it move up by one.
constexpr std::array<Run, 8> zerosOfOrbd = {
    {{18, 33}, {268, 274}, {323, 335}, {417, 503}, {512, 519}, {536, 559}, {584, 589}, {1936, 2191}}};
constexpr std::array<LooseCells, 4> looseCellsOfOrbd = {{
    {{504, 511}, percentAround50},
    {{560, 583}, whole},
    {{1424, 1679}, percent},
    {{1680, 1935}, percent},
}};

constexpr ImageLayout withLooseCells(ImageLayout layout, std::span<const LooseCells> cells) {
    layout.looseCells = cells;
    return layout;
}

constexpr ImageLayout layoutOfOrbd = withLooseCells(withZeros(layoutOfOrba, zerosOfOrbd), looseCellsOfOrbd);

// The ignition-only unit: a memory of 1024 bytes, no stop points, no table sizes.
constexpr std::array<Run, 6> zerosOfPzk2 = {{{7, 7}, {9, 33}, {52, 53}, {65, 66}, {90, 93}, {190, 191}}};
constexpr std::array<LooseCells, 3> looseCellsOfPzk2 = {{
    {{166, 189}, whole},     // calibration name
    {{512, 767}, percent},   // output table 1
    {{768, 1023}, percent},  // output table 2
}};
constexpr ImageLayout layoutOfPzk2 = {.zeros = zerosOfPzk2,
                                      .looseCells = looseCellsOfPzk2,
                                      .movedCells = {},
                                      .stopRuns = {},
                                      .gainWord = 86,
                                      .olderRows = 64,
                                      .newerRows = 64,
                                      .newerFrom = 0,
                                      .hiddenFromOlder = {0, -1}};

}  // namespace

const ImageLayout& orbaImage() {
    return layoutOfOrba;
}

const ImageLayout& orbLiteImage() {
    return layoutOfOrba;
}

const ImageLayout& orbcImage() {
    return layoutOfOrbc;
}

const ImageLayout& orbdImage() {
    return layoutOfOrbd;
}

const ImageLayout& pzk2Image() {
    return layoutOfPzk2;
}

}  // namespace zentaq
