// What the commands that speak with a unit say, on one line each: the system's own words where it has them.
#pragma once

#include <string>
#include <string_view>

namespace zentaq::ctl {

/// The numbered errors, warnings and messages of the link as the boxes of the windows have them.
inline constexpr std::string_view portInUse = "Error 1001: Port is already in use by another process.";
inline constexpr std::string_view noUnitConnected =
    "Error 1005: No ORB Unit is Connected to the System! Please check to make sure your ORB unit is powered "
    "on "
    "and connected to the system.";
inline constexpr std::string_view incorrectUnit =
    "Error 1006: Incorrect ORB Unit is Connected to the System! Please connect a unit of the proper type or "
    "open an apprpriate file.";
inline constexpr std::string_view olderFirmware =
    "Warning 1007: Older ORB Unit firmware detected. The firmware may need to be upgraded for the unit to "
    "work "
    "properly with the new software.";
inline constexpr std::string_view programmed =
    "You have successfully programmed your ORB unit. Please cycle the power on the unit before continuing.";
inline constexpr std::string_view notProgrammed =
    "The BIN program operation failed. Please verify that the ORB has power, the engine is off and try "
    "again. "
    "The previous BIN file is still loaded.";
inline constexpr std::string_view downloaded = "The datalog has been successfully downloaded.";
inline constexpr std::string_view notDownloaded =
    "The unit either has no datalog data is currently datalogging Make sure you datalog switch is OFF and "
    "try "
    "again.";

inline constexpr std::string_view loadCalibration =
    "The BIN file MUST be loaded before starting your engine. The unit may operate upredictably until the "
    "BIN file is loaded.";
inline constexpr std::string_view firmwareFailed =
    "The firmware upgrade operation failed. Please verify that the ORB has power and try again. There is now "
    "no firmware installed on this unit, the upgrade must be completed successfully before the unit will "
    "function.";
inline constexpr std::string_view firmwareNotStarted =
    "The firmware upgrade operation failed. Please verify that the ORB is in the upgrade mode then try "
    "again. "
    "The previous version of the firmware is still intact.";
inline constexpr std::string_view unitLost =
    "This unit will no longer communicate. The firmware upgrade operation failed. Please contact Norvalia "
    "for "
    "repairs.";

/// A text of several lines on one; empty lines go.
std::string onOneLine(std::string_view text);

}  // namespace zentaq::ctl
