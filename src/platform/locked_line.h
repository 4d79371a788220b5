// Opens a serial device only together with its lock, so that a program that merely wants a port changes
// nothing on the line of the one that has it.
#pragma once

#include <string>

#include "platform/posix_handle.h"

namespace zentaq {

/// A device with its lock.
struct LockedLine {
    PosixHandle lock;     ///< to be kept as long as the line, and to go behind it
    PosixHandle line;     ///< invalid where the device or its lock is not to be had
    std::string trouble;  ///< why, in words that tell what to do
    bool busy = false;    ///< another program has it
};

/// Asks for the lock of a device among the programs of this system, and opens the device, without waiting,
/// only with it: even an opening that is given up at once can hold back a reply that another program waits
/// for, until the next one comes. A lock on the device itself follows, for programs of others. Changes no
/// setting.
LockedLine openLocked(const std::string& device);

/// Why a device could not be opened, in words that tell what to do; `error` as errno gives it.
std::string openingTrouble(const std::string& device, int error);

/// Whether the device behind an open line has gone. A read of nothing alone does not tell: whoever else has
/// the line may have set it to answer so.
bool hungUp(int line);

}  // namespace zentaq
