// What a Unit object has to tell the user, as types, and the words for it.
#pragma once

#include <string>
#include <string_view>

namespace zentaq {

enum class UnitEvent {
    Saved,         ///< the calibration is in its file
    CustomSensor,  ///< an old file's sensor is none that the program knows
    Migrated,      ///< the calibration was brought to another firmware
    ReleaseOwed    ///< it could not be, and stays as it is (release, why)
};

struct UnitNews {
    UnitEvent event;
    int release = 0;
    std::string_view why{};
};

/// Lines for a plain box; empty for Saved, which has its numbered message.
std::string textOf(const UnitNews& news);

}  // namespace zentaq
