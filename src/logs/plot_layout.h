// Which channels a plot shows, in which panes and on which scales; as text for the settings, too.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/settings_store.h"

namespace zentaq {

/// Channels above one another in one rectangle, by the names of the newer format.
struct PlotPane {
    std::vector<std::string> channels;
    bool sharedScale = false;  ///< else each channel fills the height by a scale of its own

    bool operator==(const PlotPane&) const = default;
};

struct PlotLayout {
    std::string name;
    std::vector<PlotPane> panes;

    bool operator==(const PlotLayout&) const = default;
};

/// In the order of the panes.
std::vector<std::string> channelsOf(const std::vector<PlotPane>& panes);
/// Channels of one kind in one pane on one scale: those with the same unit and the same range of the dial.
std::vector<PlotPane> panesOf(const std::vector<std::string>& shown);
/// A channel is taken out of where it is; a pane without channels goes.
void removeChannel(std::vector<PlotPane>& panes, std::string_view channel);
/// Into a pane (counted from 0), out of where it was.
void joinPane(std::vector<PlotPane>& panes, std::string_view channel, std::size_t pane);
/// Into a pane of its own in front of pane `before`, out of where it was.
void newPane(std::vector<PlotPane>& panes, std::string_view channel, std::size_t before);

/// "RPM;MAP,TPS;=DAFR,AAFR": panes by ';', a shared scale by '='.
std::string panesText(const std::vector<PlotPane>& panes);
std::vector<PlotPane> panesIn(std::string_view text);

/// The layouts that the user has saved, in section "Plots" of the settings, in the order of saving.
class PlotLayouts {
 public:
    explicit PlotLayouts(SettingsStore& settings) : settings_(settings) {}

    std::vector<PlotLayout> all() const;
    /// Over the one of the same name.
    void save(const PlotLayout& layout);
    void remove(std::string_view name);

 private:
    void write(const std::vector<PlotLayout>& layouts);

    SettingsStore& settings_;
};

}  // namespace zentaq
