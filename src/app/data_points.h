// The data points that the recorder can graph: their names as the options list them, and the ten that the
// user has chosen, as section "Datalog" of the settings keeps them.
#pragma once

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "base/channels.h"
#include "base/settings_keys.h"
#include "platform/settings_store.h"

namespace zentaq {

inline constexpr int dataPointPins = 16;
inline constexpr int dataPointCount = static_cast<int>(channels.size()) + dataPointPins;

/// The entries of viewList in their order. A stored value is the place in this list, counted from 1.
std::span<const std::string_view, dataPointCount> dataPointNames();

/// The channel or pin at a place counted from 1: "BATTV", "GPIO3". Empty for no such place.
std::string_view dataPointChannel(int place);

/// What each of the ten keys holds: a place in that list; 0 for an unused slot, for a key never written and
/// for a text that is no such place.
std::array<int, settings::datalogSlots> storedDataPoints(const SettingsStore& store);

/// One write to section "Datalog".
struct DataPointWrite {
    std::string key;
    std::string value;
};

/// The writes that store a choice, in their order: ten zeros, then the places in list order.
/// kept: with more than ten the keys from "Datalog11" on are written as well and never read.
std::vector<DataPointWrite> dataPointWrites(const std::vector<int>& places);

}  // namespace zentaq
