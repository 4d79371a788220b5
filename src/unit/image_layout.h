// Where a kind's memory holds what no row of its parameter table tells: bytes that the unit keeps for itself,
// cells that move, the sensor words, the stop points, and how many records program it.
#pragma once

#include <span>

#include "unit/parameter.h"

namespace zentaq {

/// First and last index, both included.
struct Run {
    int first;
    int last;
};

/// Cells that are no members of their own but have image bytes at their own index.
struct LooseCells {
    Run cells;
    Encoding encoding;
};

/// A cell that moves to another index, as it stands.
struct MovedCell {
    int image;
    int cell;
};

/// Sixteen stop points, a word each.
struct StopRun {
    int image;
    int cell;
};

struct ImageLayout {
    std::span<const Run> zeros;
    std::span<const LooseCells> looseCells;
    std::span<const MovedCell> movedCells;
    std::span<const StopRun> stopRuns;
    int gainWord = 0;     ///< index of the sensor's gain; its zero follows two bytes behind
    int olderRows = 0;    ///< records of 16 bytes for firmware before `newerFrom`
    int newerRows = 0;    ///< and from there on
    int newerFrom = 0;    ///< first release that knows stop points and table sizes
    Run hiddenFromOlder;  ///< bytes that older firmware must see as 0
};

const ImageLayout& orbaImage();
const ImageLayout& orbLiteImage();
const ImageLayout& orbcImage();
const ImageLayout& orbdImage();
const ImageLayout& pzk2Image();

}  // namespace zentaq
