// Where simulated units announce their terminals and where the program looks for them:
// the folder zentaq4/ports below the user's runtime directory.
#pragma once

#include <filesystem>

namespace zentaq {

/// $XDG_RUNTIME_DIR/zentaq4/ports; when that variable is unset, empty or no absolute path,
/// /tmp/zentaq4-runtime-<user id>/zentaq4/ports. Creates nothing: the folder may not exist.
std::filesystem::path runtimePortsFolder();

/// Creates runtimePortsFolder() where missing and returns it. The fallback directory below /tmp is
/// made private to the user (mode 0700).
/// Throws FileError when a folder cannot be made or the fallback is not the user's own.
std::filesystem::path createRuntimePortsFolder();

}  // namespace zentaq
