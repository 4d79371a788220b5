// Programs a simulated unit with an S-record text as a program does: "P1", then line by line.
// Lets a test or a tool ask whether a unit of some kind would take an image, with no terminal in between.
#pragma once

#include <string>
#include <string_view>

#include "sim/simulated_unit.h"

namespace zentaq::sim {

/// How a unit took an image.
struct ImageVerdict {
    bool accepted = false;
    int lines = 0;    ///< sent, "P1" not counted; the last of them is the one that was refused
    std::string why;  ///< empty when accepted: "line 65 was refused: S1131500..."
};

/// Sends "P1" and the lines of `sRecordText` (any line ends) until the unit refuses one, verifies the image
/// or the lines run out. The unit's memory holds the image afterwards exactly when it was accepted.
ImageVerdict programImage(SimulatedUnit& unit, std::string_view sRecordText);

/// Whether a unit of the model, as it is delivered, takes the image. `why`, where given, gets the reason of
/// a refusal and is emptied otherwise. An unknown model takes nothing.
bool acceptsImage(std::string_view model, std::string_view sRecordText, std::string* why = nullptr);

}  // namespace zentaq::sim
