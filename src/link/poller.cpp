#include "link/poller.h"

#include <algorithm>

#include "base/number_text.h"
#include "base/rounding.h"
#include "base/settings_keys.h"

namespace zentaq {

namespace {

constexpr int firingsBetweenSearches = 10;
constexpr int firingsBetweenGpio = 3;
constexpr int firingsBetweenCodes = 50;
constexpr int queueLimit = 5;
/// Where the firings ask for more than the wire carries, the frame of each firing takes the one place that
/// got free, and what comes behind it would never go out. After so many firings in vain it goes first once.
constexpr int firingsInVain = 25;
constexpr double longestIntervalMs = 1e9;

}  // namespace

int pollIntervalMs(const SettingsStore& settings) {
    const auto rate = parseNumber(settings.get(settings::system, settings::ADUR));
    if (!rate || !(*rate > 0)) return defaultPollIntervalMs;
    return static_cast<int>(std::clamp(truncate(1 / *rate * 1000), 1.0, longestIntervalMs));
}

Poller::Poller(Link& link, LinkDisplay& display, std::function<void()> refreshCodes,
               std::function<void()> updateDisplay)
    : link_(link),
      display_(display),
      refreshCodes_(std::move(refreshCodes)),
      updateDisplay_(std::move(updateDisplay)) {}

void Poller::fire(const PollerView& view) {
    // While a box of a reply handler is in view the link stands still; queueing would only fill the ring.
    searching_ = false;
    if (link_.transfer().active() || link_.handling()) return;
    if (view.tab2Showing) {
        display_.hideNoConnectPanel();
    } else if (link_.linked().OldFirmware || !link_.linked().UnitIdentified) {
        searchUnit();
    } else if (link_.OnFlyBusy()) {
        display_.showNoConnectPanel("Updating");
    } else {
        pollUnit();
    }
    if (view.autoVeOn) display_.showNoConnectPanel("AutoVE ON");
}

void Poller::searchUnit() {
    display_.showNoConnectPanel("Connecting...");
    if (link_.AutoPollSuspended()) return;
    searching_ = true;
    if (++connectCount_ < firingsBetweenSearches) return;
    connectCount_ = 0;
    // An answer that was lost is waited for a second: questions that pile up meanwhile would all be answered
    // afterwards, one behind the other.
    if (!link_.identifying()) link_.Send_ORB_Command("E");
}

void Poller::tick() {
    const LinkedUnit& unit = link_.linked();
    const bool idle = link_.CurrentCommand().empty() && link_.ring().empty();
    if (!searching_ || !idle || unit.UnitIdentified || unit.OldFirmware || link_.handling()) {
        idleTicks_ = 0;
        return;
    }
    if (++idleTicks_ < mostIdleTicks) return;
    link_.Send_ORB_Command("E");
    idleTicks_ = 0;
}

void Poller::pollUnit() {
    if (!link_.AutoPollSuspended()) queuePolls(link_.linkedUnit().GPIO_Req());
    display_.hideNoConnectPanel();
    if (updateDisplay_) updateDisplay_();
}

void Poller::queuePolls(bool gpioReq) {
    const bool wide = link_.linked().WideMonitor;
    const bool gpioDue = gpioReq && gpioCount_ >= firingsBetweenGpio && !wide;
    const bool gpioFirst = gpioInVain_ >= firingsInVain;
    const bool codesFirst = codesInVain_ >= firingsInVain;
    if (gpioFirst) queueGpio(gpioDue);
    if (codesFirst) queueCodes();
    if (roomInQueue()) link_.Send_ORB_Command(wide ? "W" : "F");
    if (!gpioFirst) queueGpio(gpioDue);
    if (!codesFirst) queueCodes();
    if (gpioReq) ++gpioCount_;
    if (codeCount_ < firingsBetweenCodes) ++codeCount_;
}

void Poller::queueGpio(bool due) {
    if (!due) return;
    if (!roomInQueue()) {
        ++gpioInVain_;
        return;
    }
    link_.Send_ORB_Command("I");
    gpioCount_ = 0;
    gpioInVain_ = 0;
}

void Poller::queueCodes() {
    if (codeCount_ < firingsBetweenCodes) return;
    if (!roomInQueue()) {
        ++codesInVain_;
        return;
    }
    if (refreshCodes_) refreshCodes_();
    codeCount_ = 0;
    codesInVain_ = 0;
}

bool Poller::roomInQueue() const {
    return link_.ring().count() < queueLimit;
}

}  // namespace zentaq
