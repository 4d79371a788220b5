// What a kind of unit is made of, as data: identity, reply sizes, frame layouts and memory.
// The protocol engine reads a profile and knows no kind by name.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "sim/frame_layout.h"

namespace zentaq::sim {

/// Serial numbers of a kind, both ends included.
struct SerialNumbers {
    std::uint32_t first;
    std::uint32_t last;
};

/// A value that stands here is that of most kinds.
struct UnitProfile {
    std::string_view model;     ///< as given to --unit, "A 6/12"
    std::string_view fullName;  ///< as people say it, "ORB A 6/12"
    std::string_view linkStem;  ///< start of the announced name, "orb-a612"; no two models share one
    std::string_view calibrationName = "SIMULATED ORB";  ///< what a new unit holds, up to 24 characters

    std::span<const SerialNumbers> serialNumbers;
    std::uint32_t defaultSerial = 0;
    bool knowsOldSerialReply = false;  ///< early units of the kind answer E with six bytes and no head

    std::string_view firmwarePrefix;   ///< "ZQA"
    std::string_view defaultFirmware;  ///< 10 characters; 6 and 7 the release, 8 to 10 the build

    int firmwareReplyLength = 38;
    int subtypeByte = 0;  ///< index in the firmware reply; 0 for a kind that sends none
    std::uint8_t subtype = 0;
    int configReplyLength = 39;
    bool hasPic18 = false;  ///< as delivered; the configuration tells it
    int codesReplyLength = 16;

    FrameLayout narrow;
    FrameLayout wide;         ///< length 0: the kind has no wide frame
    int wideFromRelease = 0;  ///< older firmware does not know the wide frame
    FrameLayout inputs;
    FrameLayout logRecord;
    int logRecords = 300;  ///< in the log of a unit as it is delivered

    int baseAddress = 0x1100;
    int memorySize = 147 * 16;       ///< bytes from baseAddress
    int memorySizeOlder = 137 * 16;  ///< what firmware below `fullMemoryFromRelease` is programmed with
    int fullMemoryFromRelease = 5;
    int nameOffset = 560;            ///< of the 24 characters of the calibration's name
    bool linesEndInLineFeed = true;  ///< a line of programming counts only with its CR LF
};

inline constexpr int nameLength = 24;
inline constexpr int firmwareLength = 10;

/// All models, in the order in which they are told to a user.
std::span<const UnitProfile* const> allProfiles();

/// The profile of a model name or nullptr. Case, blanks, '/', '-' and a leading "ORB" do not matter:
/// "A 6/12", "a612" and "orb-a612" are one model.
const UnitProfile* findProfile(std::string_view model);

/// "A, A 6/12, A r, ...".
std::string modelList();

}  // namespace zentaq::sim
