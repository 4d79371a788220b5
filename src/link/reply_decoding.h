// What the bytes of a unit's replies say, read without a link: who it is (E), its firmware (B), its
// configuration (C), the end of its log (D), the checksum of a wide frame (W).
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "unit/unit.h"

namespace zentaq {

/// The bytes of one reply. Whoever reads past their end throws BoundsError.
using ReplyBytes = std::span<const std::uint8_t>;

/// The head of most replies.
bool hasMarker(ReplyBytes reply);

// ---- E

struct SerialReply {
    std::int32_t serialNumber = 0;
    bool oldFirmware = false;  ///< the six bytes of a unit that must be upgraded first
};
/// Nothing for a reply in no known format. Throws Overflow for octal digits beyond 32 bits.
std::optional<SerialReply> decodeSerial(ReplyBytes reply);

// ---- B

/// The calibration name that the unit holds: 24 characters, not trimmed.
std::string unitBinName(ReplyBytes reply);
/// The firmware text, ten characters without blanks at both ends, as the single bytes of the unit.
std::string firmwareBytes(ReplyBytes reply);
/// Single bytes of the unit as the core's text: characters 128 to 255 take two bytes each.
std::string shownText(std::string_view bytes);

/// Release and build in a text such as "ZQA  05099". Throws where the places hold no number.
FirmwareVersion firmwareNumber(const std::string& firmwareBytes);

/// Whether a kind has variants, which this reply tells.
bool tellsSubType(const UnitKind& kind);
int unitSubType(ReplyBytes reply);
/// "A Std", "A 6/12", "A r"; empty for a byte that stands for none.
std::string_view subTypeLabel(const UnitKind& kind, int subType);

// ---- C

/// `hasPIC18` of a unit; nothing where kind and firmware do not tell it.
std::optional<bool> decodePic18(ReplyBytes reply, const UnitKind& kind, FirmwareVersion firmware);

// ---- D

/// The reply behind the last record of the unit's log.
bool isEndOfLog(ReplyBytes reply);

// ---- W

/// Whether the last of `length` bytes is the sum of those from the third on.
bool frameSumIsRight(ReplyBytes reply, int length);

/// The members that frames are decoded with, for a unit without a calibration: REV_Limiter 8500, MaxDuty 255,
/// MinDuty 1, PHDSEQ 0, Engine_Type 0.
void storeDashboardDefaults(Unit& unit);

}  // namespace zentaq
