#include "base/file_reader.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "base/file_type.h"

namespace zentaq {

namespace {

[[noreturn]] void fail(std::string_view action, const std::string& path, const std::string& reason) {
    throw FileError("Cannot " + std::string(action) + " " + path + ": " + reason);
}

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
    throw UnfitFile("Cannot read " + path + ": " + reason);
}

/// `size`: what was seen of it.
[[noreturn]] void tooLong(const std::string& path, const FileLimit& limit, const std::string& size) {
    refuse(path, "it has " + size + " bytes; " + std::string(limit.what) + " has at most " +
                     std::to_string(limit.bytes));
}

/// With errno told by the call.
[[noreturn]] void failToOpen(const std::string& path) {
    const int reason = errno;
    const std::string text = "Cannot open " + path + ": " + std::strerror(reason);
    if (reason == ENOTDIR || reason == ELOOP || reason == ENAMETOOLONG) throw UnfitFile(text);
    throw FileError(text);
}

void refuseOther(const struct stat& status, const std::string& path) {
    const std::string other = otherThanFile(status);
    if (!other.empty()) refuse(path, other);
}

ssize_t readSome(int descriptor, char* bytes, std::size_t most) {
    ssize_t count = 0;
    do {
        count = ::read(descriptor, bytes, most);
    } while (count < 0 && errno == EINTR);
    return count;
}

/// Open for as long as the object lives.
class OpenedFile {
 public:
    explicit OpenedFile(const std::string& path) : path_(path) {
        // Looked at first: a serial port that is opened raises its lines, and a unit may hear of it.
        if (::stat(path.c_str(), &status_) != 0) failToOpen(path);
        refuseOther(status_, path);
        // Not blocking, and looked at again: it may have become a pipe in between.
        do {
            descriptor_ = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        } while (descriptor_ < 0 && errno == EINTR);
        if (descriptor_ < 0) failToOpen(path);
        try {
            if (::fstat(descriptor_, &status_) != 0) fail("read", path, std::strerror(errno));
            refuseOther(status_, path);
        } catch (...) {
            ::close(descriptor_);
            throw;
        }
    }
    ~OpenedFile() { ::close(descriptor_); }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

    off_t size() const { return status_.st_size; }

    /// What is there, at most so much. Nothing is reserved for bytes that a file only claims to have.
    std::string bytes(std::size_t most) const {
        constexpr std::size_t piece = 65536;
        std::string content;
        while (content.size() < most) {
            const std::size_t length = content.size();
            content.resize(length + std::min(piece, most - length));
            const ssize_t count = readSome(descriptor_, content.data() + length, content.size() - length);
            if (count < 0) fail("read", path_, std::strerror(errno));
            content.resize(length + static_cast<std::size_t>(count));
            if (count == 0) break;
        }
        return content;
    }

 private:
    const std::string& path_;
    int descriptor_ = -1;
    struct stat status_ {};
};

}  // namespace

std::string readFile(const std::string& path, const FileLimit& limit) {
    const OpenedFile file(path);
    if (file.size() > static_cast<off_t>(limit.bytes)) tooLong(path, limit, std::to_string(file.size()));
    // Files of the system tell no size, and others may grow.
    std::string content = file.bytes(limit.bytes + 1);
    if (content.size() > limit.bytes) tooLong(path, limit, "more than " + std::to_string(limit.bytes));
    return content;
}

std::optional<std::string> readFileIfThere(const std::string& path, const FileLimit& limit) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0 && errno == ENOENT) return std::nullopt;
    return readFile(path, limit);
}

std::string readFileStart(const std::string& path, std::size_t most) {
    return OpenedFile(path).bytes(most);
}

std::string readStream(int descriptor, const std::string& name, const FileLimit& limit) {
    constexpr std::size_t piece = 4096;
    std::string content;
    for (;;) {
        const std::size_t length = content.size();
        content.resize(length + piece);
        const ssize_t count = readSome(descriptor, content.data() + length, piece);
        if (count < 0) fail("read", name, std::strerror(errno));
        content.resize(length + static_cast<std::size_t>(count));
        if (count == 0) return content;
        if (content.size() > limit.bytes) tooLong(name, limit, "more than " + std::to_string(limit.bytes));
    }
}

void checkFile(const std::string& path, const FileLimit& limit) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        if (errno == ENOENT) return;
        failToOpen(path);
    }
    refuseOther(status, path);
    if (status.st_size > static_cast<off_t>(limit.bytes))
        tooLong(path, limit, std::to_string(status.st_size));
}

}  // namespace zentaq
