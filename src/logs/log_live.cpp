#include "logs/log_live.h"

namespace zentaq {

LogLive::LogLive(const LogColumns& log) : log_(log) {
    for (const Channel& channel : channels) columns_.push_back(log.column(channel.name));
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

}  // namespace zentaq
