#include "platform/posix_ports.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <system_error>

#include "base/errors.h"
#include "base/file_reader.h"
#include "base/text.h"
#include "platform/runtime_folder.h"

namespace zentaq {

namespace fs = std::filesystem;

namespace {

std::string lineOf(const fs::path& file) {
    std::string text;
    skipFailing([&] { text = readFileStart(file.string(), limits::deviceFact.bytes); });
    return std::string(trimmed(text.substr(0, text.find('\n'))));
}

int hexNumber(const std::string& text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number, 16);
    return number;
}

/// The folder of the USB device that a terminal hangs on: the nearest one above it with a vendor.
std::optional<fs::path> usbDeviceOf(fs::path folder) {
    std::error_code ignored;
    for (; folder.has_relative_path(); folder = folder.parent_path()) {
        if (fs::exists(folder / "idVendor", ignored)) return folder;
    }
    return std::nullopt;
}

/// The kernel offers "ttyS" places for ports that a board may have; those without one have no chip. Asked of
/// the system and not of the port: opening it would move its signals, and fails while another program has it.
bool hasChip(const fs::path& terminal) {
    const std::string type = lineOf(terminal / "type");
    return !type.empty() && type != "0";
}

std::string socketOf(const fs::path& device, const fs::path& sockets) {
    std::error_code error;
    fs::directory_iterator entry(sockets, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        std::error_code ignored;
        if (fs::equivalent(entry->path(), device, ignored)) return entry->path().filename().string();
    }
    return {};
}

void addUsbFacts(PortFacts& port, const fs::path& usb, const PosixFolders& folders) {
    port.usb = true;
    port.vendorId = hexNumber(lineOf(usb / "idVendor"));
    port.productId = hexNumber(lineOf(usb / "idProduct"));
    port.description = std::string(trimmed(lineOf(usb / "manufacturer") + " " + lineOf(usb / "product")));
    port.serialNumber = lineOf(usb / "serial");
    // The system's device names have no blanks, and so have not the serial numbers in them.
    std::ranges::replace(port.serialNumber, ' ', '_');
    if (port.serialNumber.empty()) port.byPath = socketOf(port.device, folders.sockets);
}

std::optional<PortFacts> factsOf(const fs::path& terminal, const PosixFolders& folders) {
    std::error_code error;
    const fs::path hardware = fs::canonical(terminal / "device", error);
    if (error) return std::nullopt;  // a console or a terminal of software
    const std::string name = terminal.filename().string();
    PortFacts port;
    port.device = (folders.devices / name).string();
    if (!fs::exists(port.device, error)) return std::nullopt;
    if (const auto usb = usbDeviceOf(hardware)) {
        addUsbFacts(port, *usb, folders);
    } else if (name.starts_with("ttyS") && !hasChip(terminal)) {
        return std::nullopt;
    }
    return port;
}

}  // namespace

std::vector<PortFacts> posixRealPorts(const PosixFolders& folders) {
    std::vector<PortFacts> ports;
    std::error_code error;
    fs::directory_iterator entry(folders.terminals, error);
    for (; !error && entry != fs::directory_iterator(); entry.increment(error)) {
        if (auto port = factsOf(entry->path(), folders)) ports.push_back(std::move(*port));
    }
    return ports;
}

std::vector<PortInfo> posixPorts() {
    // In a folder that others can write to, anybody's terminal could pass for a unit.
    const bool counts = !runtimeFolderTrouble();
    return orderedPorts(counts ? simulatedPorts(runtimePortsFolder()) : std::vector<PortInfo>{},
                        posixRealPorts());
}

}  // namespace zentaq
