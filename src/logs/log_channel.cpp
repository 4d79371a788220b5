#include "logs/log_channel.h"

#include "base/text.h"

namespace zentaq {

namespace {

struct TwoNames {
    std::string_view older;
    std::string_view newer;
};

constexpr auto twoNames = std::to_array<TwoNames>({{"VOLT", "BATTV"},
                                                   {"KNK", "KNOCK"},
                                                   {"ADV", "PRIADV"},
                                                   {"SADV", "SECADV"},
                                                   {"KNKR", "KNKRET"},
                                                   {"TFPW", "GAMA"},
                                                   {"PIP", "IPP"},
                                                   {"PID", "PRIDUTY"},
                                                   {"PPW", "PRIPW"},
                                                   {"PIO", "PRIOFFTIME"},
                                                   {"SID", "SECDUTY"},
                                                   {"SPW", "SECPW"},
                                                   {"SIO", "SECOFFTIME"},
                                                   {"POPD", "SECPERCENT"},
                                                   {"IAC", "IACP"},
                                                   {"SD", "IACD"}});
constexpr int decimalsElsewhere = 2;

}  // namespace

std::string_view newerChannelName(std::string_view name) {
    const std::string wanted = upper(name);
    for (const TwoNames& two : twoNames) {
        if (wanted == two.older) return two.newer;
    }
    const Channel* channel = std::ranges::find(channels, wanted, &Channel::name);
    return channel == channels.end() ? name : channel->name;
}

int columnOfChannel(const std::vector<std::string>& columns, std::string_view name) {
    const std::string wanted = upper(newerChannelName(trimmed(name)));
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (upper(newerChannelName(columns[i])) == wanted) return static_cast<int>(i);
    }
    return -1;
}

const Channel* channelNamed(std::string_view name) {
    const auto found = std::ranges::find(channels, newerChannelName(name), &Channel::name);
    return found == channels.end() ? nullptr : &*found;
}

std::string channelCaption(std::string_view name) {
    const Channel* channel = channelNamed(name);
    if (channel != nullptr && !channel->reading.caption.empty()) return std::string(channel->reading.caption);
    return std::string(newerChannelName(name));
}

std::string channelUnit(std::string_view name, std::string_view mapUnits) {
    const Channel* channel = channelNamed(name);
    if (channel == nullptr) return name == "IPP" ? "ms" : "";
    // The time between two injections is computed, and no reading of the dashboard shows it.
    if (channel->name == "IPP") return "ms";
    if (channel->reading.unit == unitOfPressure) return std::string(mapUnits);
    if (channel->reading.unit == unitOfTemperature) return "C";
    return std::string(channel->reading.unit);
}

int channelDecimals(std::string_view name) {
    const Channel* channel = channelNamed(name);
    if (channel == nullptr) return isTimeColumn(name) ? decimalsElsewhere : 0;
    const std::string_view format = channel->reading.format;
    const auto point = format.find('.');
    const int shown = point == format.npos ? 0 : static_cast<int>(format.size() - point - 1);
    if (format.empty()) return decimalsElsewhere;
    return std::max(shown, channel->log.decimals);
}

bool isTimeColumn(std::string_view name) {
    return name == "Frame" || name == "Seconds";
}

}  // namespace zentaq
