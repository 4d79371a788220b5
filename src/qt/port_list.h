// The serial ports of this machine for the windows, in the order in which a user picks one by number.
#pragma once

#include <vector>

#include "platform/port_list.h"
#include "platform/serial_port.h"

namespace zentaq {

/// The list of this moment.
std::vector<PortInfo> systemPorts();

}  // namespace zentaq
