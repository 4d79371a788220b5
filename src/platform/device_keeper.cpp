#include "platform/device_keeper.h"

#include <grp.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

#include "base/errors.h"
#include "base/number_text.h"

namespace zentaq {

namespace {

/// The group that may use a device. Where the device does not tell one that helps, the usual one of systems.
std::string groupOf(const std::string& device) {
    constexpr std::string_view usual = "dialout";
    struct stat about {};
    if (::stat(device.c_str(), &about) != 0 || about.st_gid == 0) return std::string(usual);
    const group* entry = ::getgrgid(about.st_gid);
    return entry == nullptr ? std::string(usual) : entry->gr_name;
}

}  // namespace

bool DeviceKeeper::timeToLook(std::int64_t nowUs) {
    if (nowUs < nextLookUs_) return false;
    lookLater(nowUs);
    return true;
}

std::optional<PortInfo> DeviceKeeper::findIn(const std::vector<PortInfo>& ports) const {
    if (!device_) return std::nullopt;
    const auto port = std::ranges::find(ports, device_->identity, &PortInfo::identity);
    return port == ports.end() ? std::nullopt : std::optional(*port);
}

PortInfo portOfNumber(const std::vector<PortInfo>& ports, int number) {
    const auto port = std::ranges::find(ports, number, &PortInfo::number);
    if (port == ports.end()) throw Failure("Port " + numberText(number) + " is not present");
    return *port;
}

std::string openingTrouble(const std::string& device, int error) {
    switch (error) {
        case EACCES:
        case EPERM: {
            const std::string group = groupOf(device);
            return "you may not use it: join the group " + group + " (sudo usermod -aG " + group +
                   " $USER) and log in again";
        }
        case EBUSY:
            return std::string(portBusyWords);
        case ENXIO:
        case ENODEV:
        case EIO:
            return "the adapter has gone";
        default:
            return std::generic_category().message(error);
    }
}

}  // namespace zentaq
