// The polling duty of the dashboard's timer: searches a unit, asks for frames, input/output state and codes,
// and says which panel covers the dashboard.
#pragma once

#include <functional>

#include "link/link.h"
#include "link/link_display.h"
#include "platform/settings_store.h"

namespace zentaq {

/// What the windows tell the poller on each firing.
struct PollerView {
    bool tab2Showing = false;  ///< sstConfig shows its second tab
    bool autoVeOn = false;
};

/// The timer's interval in ms from the setting ADUR (updates a second): the whole part of 1 / ADUR x 1000,
/// never below 1. An empty value, zero or less and a text that is no number give `defaultPollIntervalMs`:
/// 125 frames a second, as much as the shortest frame and what goes with it leave room for on the wire.
inline constexpr int defaultPollIntervalMs = 8;
int pollIntervalMs(const SettingsStore& settings);

class Poller {
 public:
    /// `refreshCodes` empties the code list and queues "T"; `updateDisplay` redraws the dashboard.
    Poller(Link& link, LinkDisplay& display, std::function<void()> refreshCodes,
           std::function<void()> updateDisplay);

    /// One firing of tmrUpdate.
    void fire(const PollerView& view);
    /// One tick of the link. At a low rate of updates the firings alone would leave a unit that is back
    /// waiting for seconds: while one is searched, the line is not left idle for longer than `mostIdleTicks`.
    void tick();
    static constexpr int mostIdleTicks = 200;

 private:
    void searchUnit();
    void pollUnit();
    void queuePolls(bool gpioReq);
    void queueGpio(bool due);
    void queueCodes();
    bool roomInQueue() const;

    Link& link_;
    LinkDisplay& display_;
    std::function<void()> refreshCodes_;
    std::function<void()> updateDisplay_;
    int connectCount_ = 0;
    int gpioCount_ = 0;
    int codeCount_ = 0;
    int gpioInVain_ = 0;
    int codesInVain_ = 0;
    int idleTicks_ = 0;
    bool searching_ = false;  ///< the last firing looked for a unit
};

}  // namespace zentaq
