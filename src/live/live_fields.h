// The live values by name, as the command line and logs of other programs know them.
#pragma once

#include <span>
#include <string_view>
#include <variant>

#include "live/live_values.h"

namespace zentaq {

/// A place in the live values: a number or a lamp.
using LiveTarget = std::variant<float LiveValues::*, bool LiveValues::*>;

struct LiveField {
    std::string_view name;  ///< "RPM", as the value itself
    LiveTarget target;
};

/// All of them, in the order of LiveValues.
std::span<const LiveField> liveFields();

}  // namespace zentaq
