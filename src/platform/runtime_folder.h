// Where simulated units announce their terminals and where the program looks for them:
// the folder zentaq4/ports below the user's runtime directory. It counts only while nobody else can put
// anything there: a port is a place that the program sends an engine's bytes to.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zentaq {

/// $XDG_RUNTIME_DIR/zentaq4/ports; when that variable is unset, empty or no absolute path,
/// /tmp/zentaq4-runtime-<user id>/zentaq4/ports. Creates nothing: the folder may not exist.
std::filesystem::path runtimePortsFolder();

/// Why runtimePortsFolder() does not count, in words that tell what to do: it or a folder above it, up to the
/// runtime directory or to the temporary folder that holds it, is another user's or open to others. Nothing
/// where it may be used; a folder that does not exist may.
std::optional<std::string> runtimeFolderTrouble();

/// Creates runtimePortsFolder() where missing, private to the user, and returns it.
/// Throws FileError when a folder cannot be made or does not count.
std::filesystem::path createRuntimePortsFolder();

}  // namespace zentaq
