// The serial ports of this machine as the system's own files tell them, for programs without Qt.
#pragma once

#include <filesystem>
#include <vector>

#include "platform/port_list.h"

namespace zentaq {

/// Where the system tells about its devices.
struct PosixFolders {
    std::filesystem::path terminals = "/sys/class/tty";
    std::filesystem::path devices = "/dev";
    std::filesystem::path sockets = "/dev/serial/by-path";
};

/// The real ports: terminals with hardware behind them. Places on the board that have no port are left out.
/// Not sorted; a folder that does not exist is an empty list.
std::vector<PortFacts> posixRealPorts(const PosixFolders& folders = {});

/// The list of this moment, simulated units first; without those where runtimeFolderTrouble() tells one.
std::vector<PortInfo> posixPorts();

}  // namespace zentaq
