#include "unit/safe_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <limits>
#include <system_error>
#include <utility>

#include "base/errors.h"

namespace zentaq {

namespace {

[[noreturn]] void fail(const std::string& path, std::string_view action, int reason) {
    throw FileError("Cannot " + std::string(action) + " " + path + ": " + std::strerror(reason));
}

class OpenFile {
 public:
    explicit OpenFile(int descriptor) : descriptor_(descriptor) {}
    ~OpenFile() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    int get() const { return descriptor_; }
    bool close() { return ::close(std::exchange(descriptor_, -1)) == 0; }

 private:
    int descriptor_;
};

/// Removes a half-written file unless it was renamed.
class Temporary {
 public:
    explicit Temporary(std::string path) : path_(std::move(path)) {}
    ~Temporary() {
        if (!path_.empty()) ::unlink(path_.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;
    void keep() { path_.clear(); }

 private:
    std::string path_;
};

bool writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

std::string targetOf(const std::string& path) {
    std::error_code error;
    const auto target = std::filesystem::weakly_canonical(path, error);
    return error ? path : target.string();
}

/// So that the new name outlives a crash as well. A file system that cannot do it has still renamed the file.
void flushFolderOf(const std::string& path) {
    const auto folder = std::filesystem::path(path).parent_path();
    const OpenFile file(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (file.get() >= 0) ::fsync(file.get());
}

}  // namespace

std::string readWholeFile(const std::string& path) {
    return readFileStart(path, std::numeric_limits<std::size_t>::max());
}

std::string readFileStart(const std::string& path, std::size_t most) {
    // Not blocking: opening a pipe would wait for a writer before it could be refused.
    const OpenFile file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (file.get() < 0) fail(path, "open", errno);
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) fail(path, "read", errno);
    if (!S_ISREG(status.st_mode)) fail(path, "read", S_ISDIR(status.st_mode) ? EISDIR : EINVAL);
    std::string content(std::min(static_cast<std::size_t>(status.st_size), most), '\0');
    std::size_t length = 0;
    while (length < content.size()) {
        const ssize_t count = ::read(file.get(), content.data() + length, content.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) fail(path, "read", errno);
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    content.resize(length);
    return content;
}

void writeFileSafely(const std::string& path, std::string_view content) {
    if (path.empty()) throw FileError("Cannot write a file without a name");
    const std::string target = targetOf(path);
    struct stat old {};
    const bool replaces = ::stat(target.c_str(), &old) == 0;
    if (replaces && !S_ISREG(old.st_mode)) fail(path, "write", S_ISDIR(old.st_mode) ? EISDIR : EINVAL);
    if (replaces && ::access(target.c_str(), W_OK) != 0) fail(path, "write", errno);

    const std::string beside = target + "." + std::to_string(::getpid()) + ".tmp";
    constexpr mode_t forEveryone = 0666;  // less the user's mask
    OpenFile file(::open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, forEveryone));
    if (file.get() < 0) fail(path, "write", errno);
    Temporary temporary(beside);
    if (replaces && ::fchmod(file.get(), old.st_mode & 07777) != 0) fail(path, "write", errno);
    if (!writeAll(file.get(), content) || ::fsync(file.get()) != 0 || !file.close())
        fail(path, "write", errno);
    if (::rename(beside.c_str(), target.c_str()) != 0) fail(path, "write", errno);
    temporary.keep();
    flushFolderOf(target);
}

}  // namespace zentaq
