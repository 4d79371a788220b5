#include "platform/runtime_folder.h"

#include <unistd.h>

#include <cstdlib>
#include <optional>
#include <string>

#include "base/errors.h"

namespace zentaq {

namespace fs = std::filesystem;

namespace {

std::optional<fs::path> runtimeDirectoryOfSession() {
    const char* directory = std::getenv("XDG_RUNTIME_DIR");
    if (directory == nullptr || !fs::path(directory).is_absolute()) return std::nullopt;
    return fs::path(directory);
}

fs::path fallbackDirectory() {
    return fs::path("/tmp") / ("zentaq4-runtime-" + std::to_string(::getuid()));
}

// /tmp is open to everybody: a link or a folder that somebody else put there must not be used.
// Setting the mode fails for a folder of another user.
void makePrivate(const fs::path& directory) {
    fs::create_directory(directory);
    if (fs::symlink_status(directory).type() != fs::file_type::directory) {
        throw FileError(directory.string() + " is not a folder of its own");
    }
    fs::permissions(directory, fs::perms::owner_all, fs::perm_options::replace);
}

}  // namespace

fs::path runtimePortsFolder() {
    return runtimeDirectoryOfSession().value_or(fallbackDirectory()) / "zentaq4" / "ports";
}

fs::path createRuntimePortsFolder() {
    fs::path folder = runtimePortsFolder();
    try {
        if (!runtimeDirectoryOfSession()) makePrivate(fallbackDirectory());
        fs::create_directories(folder);
    } catch (const fs::filesystem_error& error) {
        throw FileError("Cannot make the folder " + folder.string() + ": " + error.code().message());
    }
    return folder;
}

}  // namespace zentaq
