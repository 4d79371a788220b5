// A pair of terminals: the unit's end here, and a device that a program opens like a serial port.
// The device hangs up when this object goes: the cable is pulled.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "sim/file_descriptor.h"

namespace zentaq::sim {

class PseudoTerminal {
 public:
    /// Throws FileError if the system gives no terminal.
    PseudoTerminal();

    /// The device for the program, "/dev/pts/7".
    const std::string& devicePath() const { return devicePath_; }
    /// Ready to read when the program has written.
    int descriptor() const { return master_.get(); }

    /// What the program has written since the last call; empty if nothing. Never waits.
    std::vector<std::uint8_t> read();
    /// Hands bytes to the program. Never waits: what a program that does not read leaves no room for
    /// is lost, as it is on a wire.
    void write(std::span<const std::uint8_t> bytes);

 private:
    FileDescriptor master_;
    // Held open so that the line outlives a program that closes and reopens the device.
    FileDescriptor slave_;
    std::string devicePath_;
};

}  // namespace zentaq::sim
