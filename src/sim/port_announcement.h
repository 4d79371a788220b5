// A symbolic link to a simulated unit's terminal, by which programs find it. It goes with the object.
#pragma once

#include <filesystem>
#include <string>

#include "sim/file_descriptor.h"

namespace zentaq::sim {

class PortAnnouncement {
 public:
    /// Makes `link` point to `device`, replacing the link of a simulator that has died.
    /// Throws FileError if a living simulator holds the name, or if something other than a link stands there.
    PortAnnouncement(const std::filesystem::path& link, std::string device);
    ~PortAnnouncement();
    PortAnnouncement(const PortAnnouncement&) = delete;
    PortAnnouncement& operator=(const PortAnnouncement&) = delete;

    const std::filesystem::path& path() const { return link_; }

 private:
    void claimName();
    void placeLink() const;

    std::filesystem::path link_;
    std::string device_;
    // The system frees this claim when the process ends, however it ends.
    FileDescriptor claim_;
};

}  // namespace zentaq::sim
