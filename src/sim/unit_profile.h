// What a kind of unit is made of, as data: reply sizes, frame layouts, memory and identity.
// The protocol engine reads a profile and knows no kind by name.
#pragma once

#include <cstdint>
#include <string_view>

#include "sim/frame_layout.h"

namespace zentaq::sim {

struct UnitProfile {
    std::string_view model;     ///< as given to --unit, "A"
    std::string_view linkStem;  ///< start of the announced name, "orb-a"
    std::uint32_t defaultSerial;
    std::string_view defaultFirmware;  ///< 10 characters; 6 and 7 the release, 8 to 10 the build

    int firmwareReplyLength;
    int configReplyLength;
    int codesReplyLength;
    int subtypeByte;  ///< index in the firmware reply; 0 for a kind that sends none

    FrameLayout narrow;
    FrameLayout wide;
    FrameLayout inputs;
    FrameLayout logRecord;
    int wideFromRelease;  ///< older firmware does not know the wide frame

    int baseAddress;
    int memorySize;       ///< bytes from baseAddress
    int memorySizeOlder;  ///< what firmware below `fullMemoryFromRelease` is programmed with
    int fullMemoryFromRelease;
    int nameOffset;  ///< of the 24 characters of the calibration's name
};

inline constexpr int nameLength = 24;
inline constexpr int firmwareLength = 10;

/// The profile of a model name, any case, or nullptr.
const UnitProfile* findProfile(std::string_view model);

}  // namespace zentaq::sim
