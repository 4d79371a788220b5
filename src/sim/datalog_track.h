// A recorded drive for the simulated engine: speed, pressure, throttle, temperatures and battery out of a
// datalog. Fuel, mixture, timing and knock in the file are passed over: those are for the engine to make.
#pragma once

#include <filesystem>
#include <string_view>

#include "sim/drive_cycle.h"

namespace zentaq::sim {

/// A cycle that plays a datalog of format 4.5 or 4.10 at its own pace, between its lines in straight ways,
/// and begins again at its end. `name` is told in messages. Throws Failure, with the line where there is one,
/// for a text that is no such datalog, lacks a column, or has fewer than two lines of rising frames.
Drive datalogDrive(std::string_view text, std::string_view name);

/// The same from a file. Throws FileError when it cannot be read.
Drive datalogDriveFromFile(const std::filesystem::path& path);

/// What "--engine" names: "idle", "drive", "dyno", or the path of a datalog.
Drive driveOf(const std::filesystem::path& word);

}  // namespace zentaq::sim
