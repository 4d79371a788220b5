#include "platform/runtime_folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>
#include <vector>

#include "base/errors.h"

namespace zentaq {

namespace fs = std::filesystem;

namespace {

constexpr const char* temporaryFolder = "/tmp";
constexpr ::mode_t ownersFolder = 0700;
constexpr ::mode_t anythingForOthers = 0077;
constexpr ::mode_t writingForOthers = 0022;

std::optional<fs::path> runtimeDirectoryOfSession() {
    const char* directory = std::getenv("XDG_RUNTIME_DIR");
    if (directory == nullptr || !fs::path(directory).is_absolute()) return std::nullopt;
    const fs::path normal = fs::path(directory).lexically_normal();
    return normal.has_filename() ? normal : normal.parent_path();  // without a last '/'
}

fs::path fallbackDirectory() {
    return fs::path(temporaryFolder) / ("zentaq4-runtime-" + std::to_string(::getuid()));
}

fs::path runtimeDirectory() {
    return runtimeDirectoryOfSession().value_or(fallbackDirectory());
}

/// The folders on the way to the ports that have to be the user's own, outermost first: those from the
/// runtime directory on, and those above it below the temporary folder, which is open to everybody.
std::vector<fs::path> ownFolders() {
    const fs::path directory = runtimeDirectory();
    std::vector<fs::path> inner{directory, directory / "zentaq4", runtimePortsFolder()};
    std::vector<fs::path> all;
    for (fs::path above = directory.parent_path(); above != above.root_path(); above = above.parent_path()) {
        if (above == temporaryFolder) {
            all.insert(all.end(), inner.begin(), inner.end());
            return all;
        }
        all.insert(all.begin(), above);
    }
    return inner;
}

std::string whatToDo() {
    return ". Simulated units are not looked for there. Remove it, or set XDG_RUNTIME_DIR to a folder of "
           "your "
           "own that is closed to others (mode 0700).";
}

/// What is wrong with one folder; nothing for one that does not exist.
std::optional<std::string> troubleOf(const fs::path& folder) {
    struct stat about {};
    if (::lstat(folder.c_str(), &about) != 0) {
        if (errno == ENOENT) return std::nullopt;
        return "The folder " + folder.string() +
               " cannot be looked at: " + std::generic_category().message(errno) + whatToDo();
    }
    const bool outermost = folder == runtimeDirectory();
    const ::mode_t forbidden = outermost ? anythingForOthers : writingForOthers;
    std::string fault;
    if (!S_ISDIR(about.st_mode)) {
        fault = " is no folder";
    } else if (about.st_uid != ::geteuid()) {
        fault = " belongs to another user";
    } else if ((about.st_mode & forbidden) != 0) {
        fault = " is open to other users";
    } else {
        return std::nullopt;
    }
    return "The folder " + folder.string() + fault + whatToDo();
}

}  // namespace

fs::path runtimePortsFolder() {
    return runtimeDirectory() / "zentaq4" / "ports";
}

std::optional<std::string> runtimeFolderTrouble() {
    for (const fs::path& folder : ownFolders()) {
        if (const auto trouble = troubleOf(folder)) return trouble;
    }
    return std::nullopt;
}

fs::path createRuntimePortsFolder() {
    std::error_code ignored;  // what is missing then is told below
    fs::create_directories(runtimeDirectory().parent_path(), ignored);
    for (const fs::path& folder : ownFolders()) {
        // Private from the first moment on: no one else gets between the making and the closing.
        if (::mkdir(folder.c_str(), ownersFolder) == 0 || errno == EEXIST) continue;
        throw FileError("Cannot make the folder " + folder.string() + ": " +
                        std::generic_category().message(errno));
    }
    if (const auto trouble = runtimeFolderTrouble()) throw FileError(*trouble);
    return runtimePortsFolder();
}

}  // namespace zentaq
