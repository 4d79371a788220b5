#include "platform/port_list.h"

#include <sys/stat.h>

#include <algorithm>
#include <iterator>
#include <system_error>
#include <tuple>

#include "base/number_text.h"

namespace zentaq {

namespace fs = std::filesystem;

namespace {

/// Four digits, as such numbers are written: "0403".
std::string hexId(int id) {
    const std::string digits = hexText(id & 0xFFFF);
    return std::string(4 - std::min<std::size_t>(4, digits.size()), '0') + digits;
}

/// The name without the ".2", ".3" that a unit's announcement bears when its cable was out and has come back.
std::string unitNameOf(const std::string& announced) {
    const std::size_t dot = announced.rfind('.');
    if (dot == std::string::npos || dot == 0 || dot + 1 == announced.size()) return announced;
    const bool digits = announced.find_first_not_of("0123456789", dot + 1) == std::string::npos;
    return digits ? announced.substr(0, dot) : announced;
}

bool isLater(const timespec& left, const timespec& right) {
    return std::tie(left.tv_sec, left.tv_nsec) > std::tie(right.tv_sec, right.tv_nsec);
}

/// Whether a link leads to the terminal that it was made for. One that was killed leaves its link behind, and
/// the system gives the number of its terminal to the next window that opens one: that one is younger than
/// the link.
bool isOwnTerminal(const fs::path& link, const fs::path& terminal) {
    struct stat made {};
    struct stat device {};
    if (::lstat(link.c_str(), &made) != 0 || ::stat(terminal.c_str(), &device) != 0) return false;
    return S_ISCHR(device.st_mode) && !isLater(device.st_ctim, made.st_mtim);
}

/// Vendor, product and serial number tell an adapter wherever it is plugged in. Without a serial number the
/// socket has to do, since two such adapters cannot be told apart.
std::string identityOf(const PortFacts& port) {
    if (!port.usb) return "port:" + port.device;
    const std::string head = "usb:" + hexId(port.vendorId) + ":" + hexId(port.productId) + ":";
    if (!port.serialNumber.empty()) return head + port.serialNumber;
    return head + (port.byPath.empty() ? port.device : port.byPath);
}

PortInfo infoOf(const PortFacts& port) {
    PortInfo info;
    info.device = port.device;
    info.description = port.description;
    if (info.description.empty()) info.description = port.usb ? "USB serial adapter" : "Serial port";
    info.identity = identityOf(port);
    return info;
}

void appendSorted(std::vector<PortInfo>& list, std::vector<PortInfo> group) {
    std::sort(group.begin(), group.end(), [](const PortInfo& left, const PortInfo& right) {
        return std::tie(left.identity, left.device) < std::tie(right.identity, right.device);
    });
    std::move(group.begin(), group.end(), std::back_inserter(list));
}

}  // namespace

std::vector<PortInfo> simulatedPorts(const fs::path& folder) {
    std::vector<PortInfo> ports;
    std::error_code error;
    fs::directory_iterator entry(folder, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (!entry->is_symlink(ignored)) continue;
        const fs::path terminal = fs::canonical(entry->path(), ignored);
        if (ignored || !isOwnTerminal(entry->path(), terminal)) continue;
        const std::string name = entry->path().filename().string();
        ports.push_back({0, terminal.string(), "Simulated unit " + name, "sim:" + unitNameOf(name)});
    }
    std::sort(ports.begin(), ports.end(), [](const PortInfo& left, const PortInfo& right) {
        return std::tie(left.identity, left.description) < std::tie(right.identity, right.description);
    });
    return ports;
}

std::vector<PortInfo> orderedPorts(std::vector<PortInfo> simulated, const std::vector<PortFacts>& real) {
    std::vector<PortInfo> list = std::move(simulated);
    std::vector<PortInfo> adapters;
    std::vector<PortInfo> others;
    for (const PortFacts& port : real) (port.usb ? adapters : others).push_back(infoOf(port));
    appendSorted(list, std::move(adapters));
    appendSorted(list, std::move(others));
    int number = 0;
    for (PortInfo& port : list) port.number = ++number;
    return list;
}

}  // namespace zentaq
