#include "sim/port_announcement.h"

#include <sys/socket.h>
#include <sys/un.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <utility>

#include "base/errors.h"

namespace zentaq::sim {

namespace fs = std::filesystem;

PortAnnouncement::PortAnnouncement(const fs::path& link, std::string device)
    : link_(fs::absolute(link)), device_(std::move(device)) {
    claimName();
    try {
        placeLink();
    } catch (const fs::filesystem_error& error) {
        throw FileError("Cannot make the link " + link_.string() + ": " + error.code().message());
    }
}

PortAnnouncement::~PortAnnouncement() {
    std::error_code ignored;  // the link may be gone already, with its folder
    if (fs::read_symlink(link_, ignored) == device_) fs::remove(link_, ignored);
}

// A link alone cannot tell whether its simulator lives: terminal numbers are used again. A socket name
// outside the file system can: it is free as soon as its process is gone.
void PortAnnouncement::claimName() {
    claim_ = FileDescriptor(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!claim_.valid()) throw FileError(std::string("Cannot claim a name: ") + std::strerror(errno));
    const std::string name =
        "zentaq-sim-" + std::to_string(std::hash<std::string>{}(link_.lexically_normal().string()));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    // The first byte stays 0, which makes the name an abstract one.
    std::memcpy(address.sun_path + 1, name.data(), name.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + name.size());
    if (::bind(claim_.get(), reinterpret_cast<const sockaddr*>(&address), length) == 0) return;
    if (errno == EADDRINUSE) throw FileError("Another simulated unit is announced as " + link_.string());
    throw FileError(std::string("Cannot claim a name: ") + std::strerror(errno));
}

// Renamed into place: whoever watches the folder sees either no link or one that works.
void PortAnnouncement::placeLink() const {
    const auto present = fs::symlink_status(link_).type();
    if (present != fs::file_type::not_found && present != fs::file_type::symlink) {
        throw FileError(link_.string() + " is in the way: it is no link");
    }
    fs::path fresh = link_;
    fresh.replace_filename("." + link_.filename().string() + ".new");
    fs::remove(fresh);
    fs::create_symlink(device_, fresh);
    fs::rename(fresh, link_);
}

}  // namespace zentaq::sim
