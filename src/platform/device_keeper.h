// Which device an open port means: kept by its identity, looked for again when it has vanished, and the words
// for a device that cannot be opened. Opens nothing itself; the ports of every platform share it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/serial_port.h"

namespace zentaq {

class DeviceKeeper {
 public:
    /// How often a vanished device is looked for. Reading the list takes a few milliseconds; a device
    /// that is back is open within a quarter of a second.
    static constexpr std::int64_t lookUs = 250'000;

    /// This device is the port's from now on, whatever name and number it gets.
    void keep(const PortInfo& device) { device_ = device; }
    void forget() { device_.reset(); }
    bool keeps() const { return device_.has_value(); }
    /// As it was when it was opened last; only while one is kept.
    const PortInfo& device() const { return *device_; }

    /// The next look comes `lookUs` after this.
    void lookLater(std::int64_t nowUs) { nextLookUs_ = nowUs + lookUs; }
    /// Whether it is time for a look; true once each `lookUs`.
    bool timeToLook(std::int64_t nowUs);
    /// The kept device in a list of this moment, perhaps under another name; nothing while it is away.
    std::optional<PortInfo> findIn(const std::vector<PortInfo>& ports) const;

 private:
    std::optional<PortInfo> device_;
    std::int64_t nextLookUs_ = 0;
};

/// The port of a number. Throws Failure where the list has none.
PortInfo portOfNumber(const std::vector<PortInfo>& ports, int number);

/// "in use by another program"
inline constexpr std::string_view portBusyWords = "in use by another program";

/// Why a device could not be opened, in words that tell what to do; `error` as errno gives it.
std::string openingTrouble(const std::string& device, int error);

}  // namespace zentaq
