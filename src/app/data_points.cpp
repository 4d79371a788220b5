#include "app/data_points.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/rounding.h"

namespace zentaq {

namespace {

constexpr auto names = [] {
    std::array<std::string_view, dataPointCount> all;
    auto next = std::ranges::transform(channelsBeforePins, all.begin(), &Channel::dataPoint).out;
    next = std::ranges::copy_n(pinNames.begin(), dataPointPins, next).out;
    std::ranges::transform(channelsBehindPins, next, &Channel::dataPoint);
    return all;
}();

int placeOf(const std::string& text) {
    const auto number = parseNumber(text);
    if (!number || *number < 1 || *number > dataPointCount) return 0;
    return toInt16(*number);
}

}  // namespace

std::span<const std::string_view, dataPointCount> dataPointNames() {
    return names;
}

std::string_view dataPointChannel(int place) {
    static constexpr auto all = [] {
        std::array<std::string_view, dataPointCount> places;
        auto next = std::ranges::transform(channelsBeforePins, places.begin(), &Channel::name).out;
        next = std::ranges::copy_n(pinNames.begin(), dataPointPins, next).out;
        std::ranges::transform(channelsBehindPins, next, &Channel::name);
        return places;
    }();
    if (place < 1 || place > dataPointCount) return {};
    return all[static_cast<std::size_t>(place) - 1];
}

std::array<int, settings::datalogSlots> storedDataPoints(const SettingsStore& store) {
    std::array<int, settings::datalogSlots> places{};
    int slot = 1;
    for (int& place : places) place = placeOf(store.get(settings::datalog, settings::datalogKey(slot++)));
    return places;
}

std::vector<DataPointWrite> dataPointWrites(const std::vector<int>& places) {
    std::vector<DataPointWrite> writes;
    for (int slot = 1; slot <= settings::datalogSlots; ++slot)
        writes.push_back({settings::datalogKey(slot), "0"});
    int slot = 1;
    for (const int place : places) writes.push_back({settings::datalogKey(slot++), numberText(place)});
    return writes;
}

}  // namespace zentaq
