#include "logs/plot_layout.h"

#include <algorithm>
#include <cctype>

#include "base/number_text.h"
#include "logs/log_channel.h"

namespace zentaq {

namespace {

constexpr const char* section = "Plots";
constexpr int mostLayouts = 100;

std::vector<std::string> parts(std::string_view text, char separator) {
    std::vector<std::string> all;
    while (!text.empty()) {
        const auto end = std::min(text.find(separator), text.size());
        if (end > 0) all.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return all;
}

std::string keyOf(int place, const char* what) {
    return "Layout" + std::to_string(place) + what;
}

bool areAlike(std::string_view one, std::string_view other) {
    const Channel* first = channelNamed(one);
    const Channel* second = channelNamed(other);
    if (first == nullptr || second == nullptr) return false;
    return first->reading.unit == second->reading.unit && first->span.low == second->span.low &&
           first->span.high == second->span.high;
}

/// A name of a channel stands as it is; a column of another program may hold what parts names here.
std::string escaped(std::string_view name) {
    std::string text;
    for (const char letter : name) {
        const bool parts = letter == ';' || letter == ',' || letter == '=' || letter == '%';
        text += parts ? "%" + hexText(static_cast<unsigned char>(letter)) : std::string(1, letter);
    }
    return text;
}

std::string unescaped(std::string_view text) {
    std::string name;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto isHex = [&](std::size_t at) {
            return at < text.size() && std::isxdigit(static_cast<unsigned char>(text[at])) != 0;
        };
        if (text[i] != '%' || !isHex(i + 1) || !isHex(i + 2)) {
            name += text[i];
            continue;
        }
        name += static_cast<char>(std::stoi(std::string(text.substr(i + 1, 2)), nullptr, 16));
        i += 2;
    }
    return name;
}

}  // namespace

std::vector<std::string> channelsOf(const std::vector<PlotPane>& panes) {
    std::vector<std::string> all;
    for (const PlotPane& pane : panes) all.insert(all.end(), pane.channels.begin(), pane.channels.end());
    return all;
}

std::vector<PlotPane> panesOf(const std::vector<std::string>& shown) {
    std::vector<PlotPane> panes;
    for (const std::string& channel : shown) {
        const auto alike = std::ranges::find_if(
            panes, [&](const PlotPane& pane) { return areAlike(pane.channels.front(), channel); });
        if (alike == panes.end()) {
            panes.push_back({{channel}});
            continue;
        }
        alike->channels.push_back(channel);
        alike->sharedScale = true;
    }
    return panes;
}

void removeChannel(std::vector<PlotPane>& panes, std::string_view channel) {
    for (PlotPane& pane : panes) std::erase(pane.channels, channel);
    std::erase_if(panes, [](const PlotPane& pane) { return pane.channels.empty(); });
}

void joinPane(std::vector<PlotPane>& panes, std::string_view channel, std::size_t pane) {
    if (pane >= panes.size()) return newPane(panes, channel, panes.size());
    // It holds its place while the channel is taken out of another one, which may go.
    panes[pane].channels.emplace_back();
    removeChannel(panes, channel);
    for (PlotPane& one : panes) std::ranges::replace(one.channels, std::string(), std::string(channel));
}

void newPane(std::vector<PlotPane>& panes, std::string_view channel, std::size_t before) {
    const auto at = static_cast<std::ptrdiff_t>(std::min(before, panes.size()));
    panes.insert(panes.begin() + at, PlotPane{{std::string()}});
    removeChannel(panes, channel);
    for (PlotPane& one : panes) std::ranges::replace(one.channels, std::string(), std::string(channel));
}

std::string panesText(const std::vector<PlotPane>& panes) {
    std::string text;
    for (const PlotPane& pane : panes) {
        if (!text.empty()) text += ';';
        if (pane.sharedScale) text += '=';
        for (std::size_t i = 0; i < pane.channels.size(); ++i)
            text += (i == 0 ? "" : ",") + escaped(pane.channels[i]);
    }
    return text;
}

std::vector<PlotPane> panesIn(std::string_view text) {
    std::vector<PlotPane> panes;
    std::vector<std::string> known;
    for (const std::string& part : parts(text, ';')) {
        PlotPane pane;
        pane.sharedScale = part.front() == '=';
        for (const std::string& name : parts(std::string_view(part).substr(pane.sharedScale ? 1 : 0), ',')) {
            const std::string channel = unescaped(name);
            // A channel has one place.
            if (std::ranges::find(known, channel) != known.end()) continue;
            known.push_back(channel);
            pane.channels.push_back(channel);
        }
        if (!pane.channels.empty()) panes.push_back(pane);
    }
    return panes;
}

// ---- Saved layouts

std::vector<PlotLayout> PlotLayouts::all() const {
    const double count = parseNumber(settings_.get(section, "Layouts", "0")).value_or(0);
    std::vector<PlotLayout> layouts;
    for (int place = 1; place <= mostLayouts && place <= count; ++place) {
        PlotLayout layout{settings_.get(section, keyOf(place, "Name")),
                          panesIn(settings_.get(section, keyOf(place, "Panes")))};
        if (!layout.name.empty()) layouts.push_back(std::move(layout));
    }
    return layouts;
}

void PlotLayouts::save(const PlotLayout& layout) {
    auto layouts = all();
    const auto same = std::ranges::find(layouts, layout.name, &PlotLayout::name);
    if (same != layouts.end()) {
        same->panes = layout.panes;
    } else if (layouts.size() < mostLayouts) {
        layouts.push_back(layout);
    }
    write(layouts);
}

void PlotLayouts::remove(std::string_view name) {
    auto layouts = all();
    std::erase_if(layouts, [&](const PlotLayout& layout) { return layout.name == name; });
    write(layouts);
}

void PlotLayouts::write(const std::vector<PlotLayout>& layouts) {
    const auto before = static_cast<int>(all().size());
    settings_.set(section, "Layouts", numberText(static_cast<int>(layouts.size())));
    int place = 0;
    for (const PlotLayout& layout : layouts) {
        ++place;
        settings_.set(section, keyOf(place, "Name"), layout.name);
        settings_.set(section, keyOf(place, "Panes"), panesText(layout.panes));
    }
    for (++place; place <= before; ++place) {
        for (const char* what : {"Name", "Panes"}) settings_.set(section, keyOf(place, what), "");
    }
}

}  // namespace zentaq
