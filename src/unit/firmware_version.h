// A firmware's number, as files, units and rows of rules have it.
#pragma once

namespace zentaq {

/// A firmware release and build, in their order.
struct FirmwareVersion {
    int release = 0;
    int build = 0;
    auto operator<=>(const FirmwareVersion&) const = default;
};

}  // namespace zentaq
