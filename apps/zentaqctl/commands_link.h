// The commands of zentaqctl that speak with a unit. Each waits for its end, throws NoUnit where no unit is
// reached, Interrupted where a signal ends it, and Failure with one line of text where it is refused or
// fails.
#pragma once

#include <optional>
#include <string>

#include "context.h"

namespace zentaq::ctl {

// ---- Short ones: commands_link.cpp

void listPorts(const Context& context);
void identify(const Context& context, const std::string& port);
void store(const Context& context, const std::string& port);
void kill(const Context& context, const std::string& port);
/// The texts of the active codes, one a line; `clear`: has the unit forget them instead.
void codes(const Context& context, const std::string& port, bool clear);

// ---- One change of the running unit: commands_link_send.cpp

struct SendWish {
    std::string member;
    std::string value;
    int index = 0;
    std::string calibration;  ///< empty: the member alone, where that is enough
};
void send(const Context& context, const std::string& port, const SendWish& wish);

// ---- Transfers: commands_link_transfer.cpp

void program(const Context& context, const std::string& port, const std::string& file);
/// The unit's own log. The file is made as a whole or stays as it was.
void datalog(const Context& context, const std::string& port, const std::string& output,
             const std::string& calibration);

// ---- A new firmware: commands_link_firmware.cpp

struct FirmwareWish {
    std::string file;
    bool confirmed = false;  ///< the user knows what is told in the warning
    std::string
        kindWithoutFirmware;  ///< what the unit is that cannot say it any more; empty for one that can
};
/// Throws NotConfirmed where the user has not confirmed and cannot be asked.
void firmware(const Context& context, const std::string& port, const FirmwareWish& wish);

// ---- Watching: commands_link_monitor.cpp

enum class MonitorForm { Seconds, Json, Csv };

struct MonitorWish {
    std::optional<double> seconds;  ///< none: until Ctrl-C
    std::string log;                ///< datalog to write; empty for none
    std::string calibration;        ///< scales the values; empty for none
    MonitorForm form = MonitorForm::Seconds;
};
void monitor(const Context& context, const std::string& port, const MonitorWish& wish);

}  // namespace zentaq::ctl
