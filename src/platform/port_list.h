// The order in which a user counts the serial ports: simulated units first, then USB serial adapters in an
// order that survives replugging, then the other ports that exist. Every program numbers them alike.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "platform/serial_port.h"

namespace zentaq {

/// What the system tells about one real port.
struct PortFacts {
    std::string device;       ///< "/dev/ttyUSB0"
    std::string description;  ///< maker and product, where known
    bool usb = false;
    int vendorId = 0;
    int productId = 0;
    std::string serialNumber;  ///< of the adapter; empty for many cheap ones
    std::string byPath;        ///< name of the socket it is plugged in, from /dev/serial/by-path
};

/// Units announced by a symbolic link in `folder`, sorted by the link's name. Dead links are left out, also
/// those whose terminal's number has gone to somebody else since; a folder that does not exist is an empty
/// list. Numbers are not given yet. "orb-a-1042" and "orb-a-1042.2", its name after the cable was out, are
/// one identity: "sim:orb-a-1042".
std::vector<PortInfo> simulatedPorts(const std::filesystem::path& folder);

/// Orders and numbers all ports from 1.
std::vector<PortInfo> orderedPorts(std::vector<PortInfo> simulated, const std::vector<PortFacts>& real);

}  // namespace zentaq
