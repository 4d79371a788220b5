// Opens a serial device only together with its lock, so that a program that merely wants a port changes
// nothing on the line of the one that has it. The ports of every platform share it.
#pragma once

#include <string>

#include "platform/posix_handle.h"

namespace zentaq {

/// A device with its lock. The lock goes when the handle is closed.
struct LockedLine {
    PosixHandle line;     ///< invalid where the device or its lock is not to be had
    std::string trouble;  ///< why, in words that tell what to do
    bool busy = false;    ///< another program has it
};

/// Opens the device without waiting and asks for its lock. Neither settings nor signals nor bytes of the line
/// are touched, whether it is had or not.
LockedLine openLocked(const std::string& device);

/// Whether the device behind an open line has gone. A read of nothing alone does not tell: whoever else has
/// the line may have set it to answer so.
bool hungUp(int line);

}  // namespace zentaq
