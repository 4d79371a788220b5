// What is shown of the link, as data: labels, lamps and progress as the news of the link leave them.
#pragma once

#include <string>
#include <string_view>

#include "link/link_news.h"
#include "link/link_status.h"
#include "link/progress.h"

namespace zentaq {

class LinkDisplay {
 public:
    const LinkStatus& status() const { return status_; }
    /// For whoever changes what is shown himself.
    LinkStatus& editStatus();

    void COMM_StatusMessage(std::string_view title, std::string_view line1, std::string_view line2,
                            std::string_view state);
    /// What news change beside the status message.
    void heard(const LinkNews& news);
    void stepProgress(int done, int total);
    void removeProgress();

    /// Where the time of a frame goes, in words.
    void showFrameTimes(std::string_view text) { show(&LinkStatus::frameTimes, text); }
    /// Brings the panel over the dashboard into view with a text, or moves it out of sight.
    void showNoConnectPanel(std::string_view text);
    void hideNoConnectPanel();

 private:
    /// The one place that changes the status: `changes` moves when the value does.
    template <typename T, typename V>
    void show(T LinkStatus::*field, V&& value) {
        T wanted(std::forward<V>(value));
        if (status_.*field == wanted) return;
        status_.*field = std::move(wanted);
        ++status_.changes;
    }
    void showCommandStatus(std::string_view key);
    void lamps(Lamp send, Lamp receive);
    void startProgress();
    void showProgress();

    LinkStatus status_;
    Progress progress_;
    std::string trouble_;  ///< why the port could not be opened
};

}  // namespace zentaq
