// What is remembered of the unit on the link: that one was there, which changes it has taken on the fly and
// not stored, and when its last values came.
#pragma once

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

#include "link/link_news.h"

namespace zentaq {

class UnitMemory {
 public:
    // ---- What happens
    /// A unit has told its serial number. One that was there before and is back is the same.
    void unitIs(std::int32_t serial, std::string name);
    void heard(const LinkNews& news);
    void transferEnded(const TransferEnd& end);
    /// A change of the calibration goes out.
    void changeSent() { ++sent_; }
    /// A command to store goes out: it stores what was sent before it.
    void storeAsked() { asked_.push_back(sent_); }
    void frameCame(std::int64_t nowUs) { lastFrameUs_ = nowUs; }

    // ---- What is known
    /// Changes went to the unit and it has not said that it stored them: they go with its power.
    bool changesNotStored() const { return sent_ > stored_; }
    /// A unit was there, and does not answer any more.
    bool lost() const { return lost_; }
    /// The adapter of the port was pulled, and is looked for.
    bool adapterAway() const { return adapterAway_; }
    /// "ORB A 001234"; empty before the first unit.
    const std::string& name() const { return name_; }
    /// Values came within the last `withinUs`.
    bool framesCome(std::int64_t nowUs, std::int64_t withinUs) const {
        return lastFrameUs_ && nowUs - *lastFrameUs_ <= withinUs;
    }
    /// Values of this run stand on the gauges.
    bool framesCame() const { return lastFrameUs_.has_value(); }

 private:
    void forgetChanges();
    void stored();

    std::int32_t serial_ = 0;
    std::string name_;
    bool lost_ = false;
    bool adapterAway_ = false;
    std::uint64_t sent_ = 0;
    std::uint64_t stored_ = 0;
    std::deque<std::uint64_t> asked_;  ///< what each command to store that is on its way will have stored
    std::optional<std::int64_t> lastFrameUs_;
};

}  // namespace zentaq
