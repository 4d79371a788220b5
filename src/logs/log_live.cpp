#include "logs/log_live.h"

#include <string>

namespace zentaq {

LogLive::LogLive(const LogColumns& log) : log_(log) {
    for (const Channel& channel : channels) columns_.push_back(log.column(channel.name));
    for (std::size_t pin = 0; pin < pins_.size(); ++pin) pins_[pin] = log.column(pinNames[pin]);
}

void LogLive::show(std::size_t row, LiveValues& live) const {
    forgetNumbers(live);
    for (std::size_t i = 0; i < channels.size(); ++i) {
        if (columns_[i] < 0) continue;
        const float value = log_.value(columns_[i], row);
        if (float* number = channels[i].numberIn(live)) *number = value;
        if (channels[i].isLamp()) live.*std::get<Channel::Lamp>(channels[i].value) = value != 0;
    }
    ++live.frames;
}

std::array<int, 16> LogLive::pins(std::size_t row) const {
    std::array<int, 16> states{};
    for (std::size_t pin = 0; pin < pins_.size(); ++pin) {
        if (pins_[pin] >= 0) states[pin] = static_cast<int>(log_.value(pins_[pin], row));
    }
    return states;
}

}  // namespace zentaq
