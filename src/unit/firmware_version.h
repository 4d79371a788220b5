// A firmware's number, as files, units and rows of rules have it.
#pragma once

#include "base/rounding.h"

namespace zentaq {

/// A firmware release and build, in their order.
struct FirmwareVersion {
    int release = 0;
    int build = 0;

    /// The one number that files have for it.
    float code() const { return static_cast<float>(release * 1000 + build); }
    /// Throws Overflow for a number that tells no release.
    static FirmwareVersion ofCode(float code) {
        const int release = toInt16(truncate(static_cast<double>(code) / 1000));
        return {release, toInt16(static_cast<double>(code) - release * 1000.0)};
    }
    auto operator<=>(const FirmwareVersion&) const = default;
};

}  // namespace zentaq
