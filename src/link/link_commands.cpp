#include "link/link_commands.h"

#include <algorithm>

namespace zentaq {

namespace {

using S = SizeConstants;

constexpr std::string_view waitText = "Please wait... this may take a moment.";
constexpr ActivityStatus unchanged{};
constexpr ActivityStatus monitoring{"Monitoring...", "Receiving", "", "Monitor"};

constexpr CommandRow rows[] = {
    {.key = "A",
     .meaning = "clear check-engine codes",
     .replyLength = &S::miscLen,
     .patienceTicks = 5000,
     .locksTable = true,
     .activity = "{Clear Codes}",
     .status = unchanged},
    {.key = "B",
     .meaning = "firmware and calibration name",
     .replyLength = &S::binFirmLen,
     .checksum = ChecksumRule::BeforeEnd},
    {.key = "C",
     .meaning = "configuration",
     .replyLength = &S::configLen,
     .checksum = ChecksumRule::BeforeEnd},
    {.key = "D",
     .meaning = "record of the unit's log",
     .replyLength = &S::dataRecordLen,
     .checksum = ChecksumRule::BeforeEnd,
     .activity = "{Datalog}",
     .status = {"Retrieving Datalog...", portLine, waitText, "Transfer"}},
    {.key = "E",
     .meaning = "identify",
     .replyLength = &S::serialLen,
     .checksum = ChecksumRule::AtIndexSix,
     .activity = "{Polling}",
     .status = {"Polling...", "Receiving", "", "Transfer"}},
    {.key = "F",
     .meaning = "narrow frame",
     .replyLength = &S::monitorLen,
     .checksum = ChecksumRule::BeforeEnd,
     .activity = "{Monitoring}",
     .status = monitoring},
    {.key = "I",
     .meaning = "inputs and outputs",
     .replyLength = &S::gpioLen,
     .checksum = ChecksumRule::BeforeEnd,
     .activity = "{Monitoring}",
     .status = monitoring},
    {.key = "K", .meaning = "stop the engine", .replyLength = &S::miscLen},
    {.key = "P1",
     .meaning = "program a calibration",
     .replyLength = &S::miscLen,
     .isBulk = true,
     .activity = "{BinFile}",
     .status = {"Programming ORB...", portLine, waitText, "Transfer"}},
    {.key = "P2",
     .meaning = "on-the-fly change",
     .replyLength = &S::miscLen,
     .locksTable = true,
     .activity = "{Transfer ONFLY}",
     .status = {"ONFLY TRANSFER...", "Receiving", "", "Connected"}},
    {.key = "P3",
     .meaning = "program firmware",
     .replyLength = &S::miscLen,
     .patienceTicks = 5000,
     .isBulk = true,
     .activity = "{Firmware}",
     .status = {"Programming Firmware...", portLine, waitText, "Transfer"}},
    {.key = "S",
     .meaning = "store on-the-fly changes",
     .replyLength = &S::miscLen,
     .patienceTicks = 5000,
     .locksTable = true},
    {.key = "T",
     .meaning = "check-engine codes",
     .replyLength = &S::codesLen,
     .checksum = ChecksumRule::BeforeEnd,
     .activity = "{Check Engine}",
     .status = unchanged},
    // kept: the checksum operation has no rule for W; the reply handler tests W by itself.
    {.key = "W",
     .meaning = "wide frame",
     .replyLength = &S::wCmdLen,
     .checksum = ChecksumRule::EmptySum,
     .activity = "{Monitoring}",
     .status = monitoring},
    {.key = "Z", .meaning = "ignition timing to zero or back", .replyLength = &S::miscLen},
};

constexpr CommandRow otherRow{};

/// Bytes of an E reply of the oldest format; a newer unit's 8 bytes are there too when the line goes quiet.
constexpr int oldIdentifyLength = 6;

}  // namespace

std::span<const CommandRow> commandTable() {
    return rows;
}

const CommandRow* findCommand(std::string_view key) {
    const auto found = std::ranges::find(rows, key, &CommandRow::key);
    return found == std::end(rows) ? nullptr : found;
}

const CommandRow& statusRow(std::string_view key) {
    const CommandRow* row = findCommand(key);
    return row ? *row : otherRow;
}

int replyLength(const CommandRow& row, const UnitKind& linked, bool oldFirmware) {
    const bool oldFormat = !linked.hasCalibration || (linked.answersOldIdentify && oldFirmware);
    if (row.key == "E" && oldFormat) return oldIdentifyLength;
    return linked.sizes.*row.replyLength;
}

std::string_view commandKey(std::string_view command) {
    if (command.starts_with('Z')) return command.substr(0, 1);
    if (command.starts_with('P')) return command.substr(0, 2);
    return command;
}

}  // namespace zentaq
