#include "link/link_display.h"

#include <algorithm>

#include "base/rounding.h"
#include "link/link_commands.h"

namespace zentaq {

namespace {

struct StateRow {
    std::string_view state;
    LinkImage image;
};

constexpr StateRow stateRows[] = {
    {"Connected", LinkImage::Connected}, {"NoConnect", LinkImage::NoConnect},
    {"Transfer", LinkImage::Transfer},   {"Firmware", LinkImage::Transfer},
    {"Monitor", LinkImage::Monitor},     {"Warning", LinkImage::Warning},
};

LinkImage imageOf(std::string_view state) {
    const auto row = std::ranges::find(stateRows, state, &StateRow::state);
    return row == std::end(stateRows) ? LinkImage::None : row->image;
}

}  // namespace

LinkStatus& LinkDisplay::editStatus() {
    ++status_.changes;
    return status_;
}

void LinkDisplay::COMM_StatusMessage(std::string_view title, std::string_view line1, std::string_view line2,
                                     std::string_view state) {
    show(&LinkStatus::image, imageOf(state));
    if (state == "Connected") show(&LinkStatus::connected, true);
    if (state == "NoConnect") show(&LinkStatus::connected, false);
    if (state == "Monitor") removeProgress();
    show(&LinkStatus::title, title);
    show(&LinkStatus::line1, line1);
    show(&LinkStatus::line2, line2);
    show(&LinkStatus::trouble, state == "NoConnect" ? trouble_ : std::string());
}

void LinkDisplay::heard(const LinkNews& news) {
    switch (news.event) {
        case LinkEvent::Initialized:
            return show(&LinkStatus::port, news.text);
        case LinkEvent::PortNamed:
            trouble_.clear();
            show(&LinkStatus::port, news.text);
            return show(&LinkStatus::portIdentity, news.more);
        case LinkEvent::Opened:
            if (news.number != 0) removeProgress();
            return;
        case LinkEvent::NotOpened:
            trouble_ = news.more;
            return;
        case LinkEvent::Closed:
            return trouble_.clear();
        case LinkEvent::Writing:
            return show(&LinkStatus::send, Lamp::Sending);
        case LinkEvent::PortStirs:
        case LinkEvent::LinkLost:
        case LinkEvent::AdapterAway:
        case LinkEvent::AdapterBack:
            return lamps(Lamp::Rest, Lamp::Rest);
        case LinkEvent::BytesCame:
            return lamps(Lamp::Rest, Lamp::Received);
        case LinkEvent::ReplyCame:
            show(&LinkStatus::activity, statusRow(news.text).activity);
            return showCommandStatus(news.text);
        case LinkEvent::LineGoesOut:
            return showCommandStatus(news.text);
        case LinkEvent::LabelTold:
            return show(&LinkStatus::unitLabel, news.text);
        case LinkEvent::UnitReady:
        case LinkEvent::UnitMustUpgrade:
            hideNoConnectPanel();
            show(&LinkStatus::serialNumber, news.text);
            return show(&LinkStatus::panel3, "");
        case LinkEvent::FirmwareTold:
            return show(&LinkStatus::firmware, news.text);
        case LinkEvent::UnitIdentified:
            return show(&LinkStatus::panel3, news.text);
        case LinkEvent::ProgrammingBegins:
        case LinkEvent::FirmwareBegins:
        case LinkEvent::DownloadBegins:
            return startProgress();
        case LinkEvent::NotBegun:
            return removeProgress();
        default:
            return;
    }
}

void LinkDisplay::lamps(Lamp send, Lamp receive) {
    show(&LinkStatus::send, send);
    show(&LinkStatus::receive, receive);
}

void LinkDisplay::showCommandStatus(std::string_view key) {
    const ActivityStatus& status = statusRow(key).status;
    if (status.state.empty()) return;
    const std::string line1 = status.line1 == portLine ? "Using COM Port: " + status_.port + " @ 38400 Baud."
                                                       : std::string(status.line1);
    COMM_StatusMessage(status.title, line1, status.line2, status.state);
}

void LinkDisplay::showNoConnectPanel(std::string_view text) {
    show(&LinkStatus::noConnectText, text);
    show(&LinkStatus::noConnectPanel, true);
}

void LinkDisplay::hideNoConnectPanel() {
    show(&LinkStatus::noConnectPanel, false);
}

void LinkDisplay::startProgress() {
    constexpr double full = 100;
    progress_.Init(full, 0, "Processing . . . Please Wait!");
    showProgress();
}

void LinkDisplay::stepProgress(int done, int total) {
    if (total <= 0) return;
    // A frame that was still in flight when the transfer began has hidden the bar by its status.
    if (!progress_.state().visible) startProgress();
    const double full = progress_.state().maximum;
    progress_.Active(std::min(truncate(static_cast<double>(done) / total * full), full), full);
    showProgress();
}

void LinkDisplay::removeProgress() {
    progress_.Remove();
    showProgress();
}

void LinkDisplay::showProgress() {
    const Progress::State& state = progress_.state();
    show(&LinkStatus::progressPercent, static_cast<int>(state.value));
    show(&LinkStatus::progressText, state.percentage);
    show(&LinkStatus::progressVisible, state.visible);
}

}  // namespace zentaq
