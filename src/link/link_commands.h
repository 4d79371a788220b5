// The commands of the wire as one table: reply length, checksum, patience and what the status display says.
// The sender, the checksum test, the time-outs and the status display all read these rows.
#pragma once

#include <span>
#include <string>
#include <string_view>

#include "unit/unit_kind.h"

namespace zentaq {

/// Where the checksum of a reply ends: `Last` is the index of the last byte that enters the sum.
enum class ChecksumRule {
    Unchecked,   ///< two-byte replies: nothing to check
    BeforeEnd,   ///< Last is the reply length minus 2
    AtIndexSix,  ///< Last is 6, whatever the unit kind
    EmptySum,    ///< Last is 0: the sum is empty and byte 1 must be 0
};

/// What the status display shows when a reply came. An empty state leaves the display unchanged.
struct ActivityStatus {
    std::string_view title;
    std::string_view line1;
    std::string_view line2;
    std::string_view state;
};

/// Stands in `line1` for "Using COM Port: n @ 38400 Baud.".
inline constexpr std::string_view portLine = "{port}";

struct CommandRow {
    std::string_view key;
    std::string_view meaning;                   ///< what it asks for, for a reader of a wire trace
    int SizeConstants::*replyLength = nullptr;  ///< bytes
    ChecksumRule checksum = ChecksumRule::Unchecked;
    int patienceTicks = 1000;  ///< a reply later than this is a time-out
    bool locksTable = false;   ///< sets OnFlyBusy
    bool isBulk = false;       ///< P1, P3: lines follow the command
    std::string_view activity = "{Info}";
    ActivityStatus status{"Active ORB...", "Receiving", "", "Connected"};
};

std::span<const CommandRow> commandTable();

/// The row of a key; nullptr for a key that stands in no row.
const CommandRow* findCommand(std::string_view key);

/// The row that tells the status of a key; a key in no row has the row of all others.
const CommandRow& statusRow(std::string_view key);

/// How many bytes the reply of a command has; `linked`: the kind of the unit on the link, clsNull for none
/// yet.
int replyLength(const CommandRow& row, const UnitKind& linked, bool oldFirmware);

/// A frame that nobody can check: asked for all the time, with a patience of its own.
inline bool isFrameKey(std::string_view key) {
    return key == "F" || key == "I";
}

/// The key of a command text: "Z" and "P" commands carry data behind it.
std::string_view commandKey(std::string_view command);

}  // namespace zentaq
