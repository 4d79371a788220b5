// What a unit on the link has told of itself: no part of the calibration in hand, and not changed by it. The
// program has one a slot (UnitHost::linkedState).
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>

namespace zentaq {

struct LinkedState {
    std::string FirmWare;
    std::string Serial;
    bool hasPIC18 = false;      ///< for kinds where it is told
    bool gpioListRead = false;  ///< the list of the unit's pins, since the link is there
    std::array<std::int16_t, 16> GPIOData{};
    std::array<std::string, 16> GPIODisplay{};
    std::array<std::uint16_t, 12> errorCodeWords{};

    /// Of a reply, its head included. BoundsError when it is too short.
    void Set_ECData(std::span<const std::uint8_t> reply);
    int Get_ECData(int index) const;  ///< 0 to 11
};

}  // namespace zentaq
