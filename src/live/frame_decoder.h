// Turns the unit's live frames into live values, by tables of byte, scaling and target.
// A short frame keeps the values past its end; a bad value leaves the live value as it was.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/channels.h"
#include "unit/unit.h"

namespace zentaq {

class FrameDecoder {
 public:
    explicit FrameDecoder(LiveValues& live) : live_(live) {}

    /// F reply. Shape: MonitorLen bytes; the ORB A's has no head.
    void Monitor(Unit& unit, std::span<const std::uint8_t> reply);
    /// W reply. Shape: wCmdLen bytes, checksum tested by the caller.
    void MonitorW(Unit& unit, std::span<const std::uint8_t> reply);
    /// I reply.
    void Monitor_GPIO(Unit& unit, std::span<const std::uint8_t> reply);
    /// D reply: one record of the unit's own log.
    void Internal_Data_Conv(Unit& unit, std::span<const std::uint8_t> reply);

 private:
    LiveValues& live_;
};

/// What a reply of a kind carries.
struct FrameContent {
    std::vector<const Channel*> values;  ///< in the order of the bytes
    std::vector<int> pins;               ///< ascending, from 0
};
/// `command` 'F', 'W', 'I' or 'D'. Nothing where units of the kind give no such reply, or none that is read.
std::optional<FrameContent> contentOfFrame(const UnitKind& kind, char command);

}  // namespace zentaq
