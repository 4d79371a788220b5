#include "sim/identity_check.h"

#include <algorithm>
#include <string>

#include "base/errors.h"
#include "sim/firmware_file.h"

namespace zentaq::sim {

namespace {

std::string rangesOf(const UnitProfile& profile) {
    std::string text;
    for (const SerialNumbers& range : profile.serialNumbers) {
        if (!text.empty()) text += " or ";
        text += std::to_string(range.first) + " to " + std::to_string(range.last);
    }
    return text;
}

void checkSerial(const UnitProfile& profile, std::uint32_t serial) {
    const bool known = std::ranges::any_of(profile.serialNumbers, [serial](const SerialNumbers& range) {
        return serial >= range.first && serial <= range.last;
    });
    if (known) return;
    throw Failure("Serial numbers of the " + std::string(profile.fullName) + " are " + rangesOf(profile) +
                  ", not " + std::to_string(serial));
}

void checkSerialFormat(const UnitProfile& profile, const UnitIdentity& identity) {
    if (identity.serialFormat == SerialFormat::Old && !profile.knowsOldSerialReply) {
        throw Failure("The " + std::string(profile.fullName) + " has never had the old serial reply");
    }
    serialReplyOf(identity.serialFormat, identity.serial);
}

void checkFirmware(const UnitProfile& profile, const std::string& firmware) {
    if (isFirmwareText(firmware, profile.firmwarePrefix)) return;
    throw Failure("A firmware text of the " + std::string(profile.fullName) + " looks like " +
                  std::string(profile.defaultFirmware) + ", not \"" + firmware + "\"");
}

}  // namespace

void checkIdentity(const UnitProfile& profile, const UnitIdentity& identity) {
    checkSerial(profile, identity.serial);
    checkSerialFormat(profile, identity);
    checkFirmware(profile, identity.firmware);
}

}  // namespace zentaq::sim
