#include "platform/single_instance.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "base/errors.h"
#include "platform/home_folder.h"
#include "platform/runtime_folder.h"

namespace zentaq {

namespace {

constexpr ::mode_t ownerOnly = 0600;

constexpr const char* lockName = "zentaq4.lock";

/// For a user whose runtime folder is somebody else's: no one must be able to keep the lock from its owner,
/// or to take it away from under a program that runs.
std::filesystem::path lockInHome() {
    const std::filesystem::path folder = homeFolder() / ".local" / "state" / "zentaq4";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error) throw FileError("Cannot make the folder " + folder.string() + ": " + error.message());
    return folder / lockName;
}

/// Beside the folder of the ports: each user has one of their own, so two users may both run the program.
std::filesystem::path lockOfUser() {
    std::filesystem::path lock;
    if (skipFailing([&] { lock = createRuntimePortsFolder().parent_path() / lockName; })) return lock;
    return lockInHome();
}

}  // namespace

SingleInstance::SingleInstance(const std::filesystem::path& lockFile) {
    claim(lockFile);
}

SingleInstance::SingleInstance() {
    skipFailing([&] { claim(lockOfUser()); });
}

SingleInstance::~SingleInstance() {
    if (file_ >= 0) ::close(file_);
}

// The file stays: removing it would let a second process lock a new file while a third holds the old one.
void SingleInstance::claim(const std::filesystem::path& lockFile) {
    // A started helper program must not inherit the lock, or it would outlive its owner.
    const int file = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, ownerOnly);
    if (file < 0) return;
    if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
        file_ = file;
        return;
    }
    anotherRuns_ = errno == EWOULDBLOCK;
    ::close(file);
}

}  // namespace zentaq
