#include "sim/memory_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <system_error>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/file_type.h"
#include "platform/posix_handle.h"

namespace zentaq::sim {

namespace fs = std::filesystem;

namespace {

/// False with errno set.
bool makeFile(const fs::path& path, const std::vector<std::uint8_t>& content) {
    constexpr mode_t forEveryone = 0666;  // less the user's mask
    PosixHandle file(::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, forEveryone));
    if (!file.valid()) return false;
    for (std::size_t written = 0; written < content.size();) {
        const ssize_t count = ::write(file.get(), content.data() + written, content.size() - written);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> readMemoryFile(const fs::path& path, std::size_t size) {
    // A link in a circle is there, and told by the reader.
    std::error_code error;
    if (fs::symlink_status(path, error).type() == fs::file_type::not_found) return std::nullopt;
    const std::string content = readFile(path.string(), limits::simulatedMemory);
    if (content.empty()) return std::nullopt;
    if (content.size() != size) {
        throw FileError(path.string() + " holds " + std::to_string(content.size()) + " bytes instead of " +
                        std::to_string(size));
    }
    return std::vector<std::uint8_t>(content.begin(), content.end());
}

void writeMemoryFile(const fs::path& path, const std::vector<std::uint8_t>& content) {
    refuseOtherThanFile(path.string());
    fs::path fresh = path;
    fresh += ".new" + std::to_string(::getpid());
    ::unlink(fresh.c_str());  // left by a process of the same number
    const bool written = makeFile(fresh, content) && ::rename(fresh.c_str(), path.c_str()) == 0;
    if (written) return;
    const int reason = errno;
    ::unlink(fresh.c_str());
    throw FileError("Cannot write " + path.string() + ": " + std::strerror(reason));
}

}  // namespace zentaq::sim
