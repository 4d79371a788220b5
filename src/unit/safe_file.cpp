#include "unit/safe_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <new>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <utility>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/file_type.h"
#include "platform/posix_handle.h"

namespace zentaq {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void fail(const std::string& path, std::string_view action, int reason,
                       std::string_view where = {}) {
    throw FileError("Cannot " + std::string(action) + " " + path + ": " + std::string(where) +
                    std::strerror(reason));
}

/// A call that a signal broke off is made again.
template <typename Call>
auto retried(Call&& call) {
    auto result = call();
    while (result < 0 && errno == EINTR) result = call();
    return result;
}

class OpenFile {
 public:
    explicit OpenFile(int descriptor = -1) : descriptor_(descriptor) {}
    OpenFile(const std::string& path, int flags)
        : descriptor_(retried([&] { return ::open(path.c_str(), flags | O_CLOEXEC); })) {}
    ~OpenFile() {
        if (descriptor_ >= 0) ::close(descriptor_);
    }
    OpenFile(OpenFile&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    OpenFile& operator=(OpenFile&&) = delete;

    int get() const { return descriptor_; }
    bool isOpen() const { return descriptor_ >= 0; }
    /// A close that a signal broke off has closed the file: a second one might hit another file.
    bool close() { return ::close(std::exchange(descriptor_, -1)) == 0 || errno == EINTR; }
    bool flush() const {
        return retried([&] { return ::fsync(descriptor_); }) == 0;
    }
    /// The number of bytes, 0 at the end; negative with errno set.
    ssize_t read(char* bytes, std::size_t most) const {
        return retried([&] { return ::read(descriptor_, bytes, most); });
    }
    bool write(std::string_view content) const {
        while (!content.empty()) {
            const ssize_t written =
                retried([&] { return ::write(descriptor_, content.data(), content.size()); });
            if (written == 0) errno = EIO;  // nothing taken and no reason told: asking again would never end
            if (written <= 0) return false;
            content.remove_prefix(static_cast<std::size_t>(written));
        }
        return true;
    }

 private:
    int descriptor_;
};

/// What the names of all temporary files of a target begin with: not its own name, which may be as long as
/// the system allows already, but a number made of it (FNV-1a).
std::string temporaryStart(const fs::path& target) {
    constexpr std::string_view digits = "0123456789abcdef";
    std::uint64_t sum = 0xcbf29ce484222325U;
    for (const char letter : target.filename().string()) {
        sum = (sum ^ static_cast<unsigned char>(letter)) * 0x100000001b3U;
    }
    std::string text = "zentaq-";
    for (int shift = 60; shift >= 0; shift -= 4) text += digits[sum >> shift & 15U];
    return text + "-";
}

bool takesLock(int descriptor) {
    return retried([&] { return ::flock(descriptor, LOCK_EX | LOCK_NB); }) == 0;
}

constexpr std::string_view temporaryEnd = ".tmp";

/// Removes what killed saves of the target have left in its folder. Who saves holds the lock of his temporary
/// file, so the one of a save that runs stays. Nothing of it is worth a failure.
void removeLeftovers(const fs::path& folder, const std::string& start) {
    std::error_code error;
    for (fs::directory_iterator place(folder, error), end; !error && place != end; place.increment(error)) {
        const std::string name = place->path().filename().string();
        if (!name.starts_with(start) || !name.ends_with(temporaryEnd)) continue;
        constexpr int flags = O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC;
        PosixHandle file(::open(place->path().c_str(), O_RDONLY | flags));
        if (!file.valid()) file = PosixHandle(::open(place->path().c_str(), O_WRONLY | flags));
        if (file.valid() && takesLock(file.get())) ::unlink(place->path().c_str());
    }
}

/// A new file in a folder, gone with the object unless it was renamed, and locked as long as the object
/// lives.
class Temporary {
 public:
    /// Throws FileError that names `path`, the file to be written.
    Temporary(const fs::path& folder, const std::string& start, const std::string& path) {
        constexpr mode_t forEveryone = 0666;  // less the user's mask
        constexpr int most = 100;
        for (int attempt = 0; attempt < most && !file_; ++attempt) {
            path_ = folder / freshName(start);
            // A file that is there belongs to somebody else, or to a save that was killed.
            OpenFile file(retried(
                [&] { return ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, forEveryone); }));
            if (!file.isOpen() && errno != EEXIST) break;
            if (file.isOpen() && keepsIt(file)) file_.emplace(std::move(file));
        }
        if (!file_) fail(path, "write", errno, "its folder takes no new file: ");
    }
    ~Temporary() {
        if (!renamed_) ::unlink(path_.c_str());
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    OpenFile& file() { return *file_; }
    bool rename(const fs::path& target) {
        renamed_ = ::rename(path_.c_str(), target.c_str()) == 0;
        return renamed_;
    }
    /// Only where nothing has the name; else errno is EEXIST.
    bool renameToFree(const fs::path& target) {
        renamed_ = ::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0;
        if (renamed_ || (errno != EINVAL && errno != ENOSYS)) return renamed_;
        // A file system without that. The second name goes with the object.
        if (::link(path_.c_str(), target.c_str()) == 0) return true;
        const bool noLinks = errno == EPERM || errno == EOPNOTSUPP || errno == ENOSYS;
        return noLinks && renameToTaken(target);
    }

 private:
    /// A file system without links either: an empty file takes the name, and the new one its place.
    bool renameToTaken(const fs::path& target) {
        constexpr int flags = O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC;
        if (!PosixHandle(::open(target.c_str(), flags, 0600)).valid()) return false;
        if (rename(target)) return true;
        const int reason = errno;
        ::unlink(target.c_str());
        errno = reason;
        return false;
    }
    // The process number alone would not do: on a shared folder two machines may have the same.
    static std::string freshName(const std::string& start) {
        const auto now = std::chrono::system_clock::now().time_since_epoch().count();
        return start + std::to_string(::getpid()) + "-" + std::to_string(now) + std::string(temporaryEnd);
    }
    /// Another save may have taken the new file for a leftover before it was locked. The lock is held beside
    /// the file itself, which is closed before it is renamed.
    bool keepsIt(const OpenFile& file) {
        lock_ = PosixHandle(::fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
        if (!takesLock(file.get())) return errno != EWOULDBLOCK;  // a file system without locks
        struct stat status {};
        return ::fstat(file.get(), &status) != 0 || status.st_nlink > 0;
    }

    fs::path path_;
    PosixHandle lock_;
    std::optional<OpenFile> file_;
    bool renamed_ = false;
};

/// The file at the end of a chain of links. A target that does not exist yet will be made there.
fs::path targetOf(const std::string& path) {
    constexpr int mostLinks = 40;
    fs::path target = path;
    for (int i = 0; i < mostLinks; ++i) {
        std::error_code error;
        const fs::path next = fs::read_symlink(target, error);
        if (error == std::errc::invalid_argument || error == std::errc::no_such_file_or_directory)
            return target;
        if (error) fail(path, "write", error.value());
        target = target.parent_path() / next;
    }
    fail(path, "write", ELOOP);
}

fs::path folderOf(const fs::path& file) {
    const fs::path folder = file.parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

/// Nothing when there is no such file yet.
std::optional<struct stat> statusToReplace(const fs::path& target, const std::string& path) {
    struct stat status {};
    if (::stat(target.c_str(), &status) != 0) {
        if (errno == ENOENT) return std::nullopt;
        fail(path, "write", errno);
    }
    const std::string other = otherThanFile(status);
    if (!other.empty()) throw FileError("Cannot write " + path + ": " + other);
    // A rename would pass over the write protection of the file.
    if (::access(target.c_str(), W_OK) != 0) fail(path, "write", errno);
    return status;
}

/// The owner first, since a change of owner may take permissions away. Only the superuser may give a file to
/// somebody else: a save of another's file becomes the saver's own.
bool takeOver(const OpenFile& file, const struct stat& old) {
    constexpr mode_t permissions = 07777;
    constexpr uid_t keepOwner = static_cast<uid_t>(-1);
    struct stat fresh {};
    if (::fstat(file.get(), &fresh) != 0) return false;
    const bool otherOwner = fresh.st_uid != old.st_uid || fresh.st_gid != old.st_gid;
    if (otherOwner && ::fchown(file.get(), old.st_uid, old.st_gid) != 0) {
        [[maybe_unused]] const int ignored = ::fchown(file.get(), keepOwner, old.st_gid);
    }
    // Not asked for what is there already: some file systems refuse every change of permissions.
    if (!otherOwner && ((fresh.st_mode ^ old.st_mode) & permissions) == 0) return true;
    return ::fchmod(file.get(), old.st_mode & permissions) == 0;
}

/// What stays of the old file is copied: gigabytes that no calibration has would cost as much again.
void refuseLong(const struct stat& old, const std::string& path) {
    const FileLimit& limit = limits::calibration;
    if (old.st_size <= static_cast<off_t>(limit.bytes)) return;
    throw FileError("Cannot write " + path + ": the file there has " + std::to_string(old.st_size) +
                    " bytes, which would stay behind the calibration; " + std::string(limit.what) +
                    " has at most " + std::to_string(limit.bytes) + "; name another file");
}

/// Appends what stands behind the first `start` bytes of the old file. Throws FileError.
void appendSurplus(const OpenFile& file, const fs::path& target, std::size_t start, const std::string& path) {
    constexpr std::size_t pieceLength = 16384;
    const OpenFile old(target.string(), O_RDONLY | O_NONBLOCK);
    if (!old.isOpen() || ::lseek(old.get(), static_cast<off_t>(start), SEEK_SET) < 0)
        fail(path, "read", errno);
    std::array<char, pieceLength> piece;
    while (true) {
        const ssize_t count = old.read(piece.data(), piece.size());
        if (count < 0) fail(path, "read", errno);
        if (count == 0) return;
        if (!file.write({piece.data(), static_cast<std::size_t>(count)})) fail(path, "write", errno);
    }
}

/// So that the new name outlives a crash as well. A file system that cannot do it has still renamed the file.
void flushFolder(const fs::path& folder) {
    const OpenFile file(folder.string(), O_RDONLY | O_DIRECTORY);
    if (file.isOpen()) file.flush();
}

enum class Surplus { Goes, Stays };
enum class Flush { Yes, No };
enum class Taken { Replaced, Kept };  ///< what stands at the name already

/// False where it stays as it is because the name is taken.
bool writeSafely(const std::string& path, std::string_view content, Surplus surplus, Flush flush,
                 Taken taken = Taken::Replaced) {
    if (path.empty()) throw FileError("Cannot write a file without a name");
    const fs::path target = targetOf(path);
    const auto old = statusToReplace(target, path);
    if (old && taken == Taken::Kept) return false;
    if (old && surplus == Surplus::Stays) refuseLong(*old, path);
    const fs::path folder = folderOf(target);

    const std::string start = temporaryStart(target);
    removeLeftovers(folder, start);
    Temporary temporary(folder, start, path);
    OpenFile& file = temporary.file();
    if (old && !takeOver(file, *old)) fail(path, "write", errno);
    if (!file.write(content)) fail(path, "write", errno);
    if (old && surplus == Surplus::Stays) appendSurplus(file, target, content.size(), path);
    if ((flush == Flush::Yes && !file.flush()) || !file.close()) fail(path, "write", errno);
    const bool renamed = taken == Taken::Kept ? temporary.renameToFree(target) : temporary.rename(target);
    if (!renamed && taken == Taken::Kept && errno == EEXIST) return false;
    if (!renamed) fail(path, "write", errno);
    if (flush == Flush::Yes) flushFolder(folder);
    return true;
}

}  // namespace

void writeFileSafely(const std::string& path, std::string_view content) {
    writeSafely(path, content, Surplus::Goes, Flush::Yes);
}

bool writeNewFileSafely(const std::string& path, std::string_view content) {
    return writeSafely(path, content, Surplus::Goes, Flush::Yes, Taken::Kept);
}

void writeFileStartSafely(const std::string& path, std::string_view start) {
    writeSafely(path, start, Surplus::Stays, Flush::Yes);
}

void writeScratchFile(const std::string& path, std::string_view content) {
    writeSafely(path, content, Surplus::Goes, Flush::No);
}

}  // namespace zentaq
