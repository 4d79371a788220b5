// Where a kind's memory holds what neither a row of its parameter table nor its cell map tells: cells that
// move, the sensor words, the stop points, and how many records program it. What nothing tells is 0.
#pragma once

#include <span>
#include <string_view>

namespace zentaq {

/// First and last index, both included.
struct Run {
    int first;
    int last;
};

/// A cell that moves to another index, as it stands.
struct MovedCell {
    int image;
    int cell;
};

/// Sixteen stop points of an axis, a word each.
struct StopRun {
    int image;
    int cell;
    std::string_view axis;
};

struct ImageLayout {
    std::span<const MovedCell> movedCells;
    std::span<const StopRun> stopRuns;
    int gainWord = 0;     ///< index of the sensor's gain; its zero follows two bytes behind
    int olderRows = 0;    ///< records of 16 bytes for firmware before `newerFrom`
    int newerRows = 0;    ///< and from there on
    int newerFrom = 0;    ///< first release that knows stop points and table sizes
    Run hiddenFromOlder;  ///< bytes that older firmware must see as 0
};

const ImageLayout& orbImage();
const ImageLayout& pzk2Image();

}  // namespace zentaq
