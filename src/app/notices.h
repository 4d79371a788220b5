// What a user is told without a box: a line that stands in the state strip until it is pressed away, for long
// enough to be read, or until what it is about has gone. No command waits for it. A line that comes puts
// itself in front of the others; they are still there behind it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zentaq {

class Notices {
 public:
    /// How long a line stands for somebody who is there.
    static constexpr std::int64_t standsUs = 30'000'000;
    /// More would be read by nobody; the log has all of them.
    static constexpr std::size_t most = 9;

    /// `stands`: whether what it is about still is; none: always.
    void tell(std::string text, std::function<bool()> stands = {}) {
        std::erase_if(lines_, [&](const Line& one) { return one.text == text; });
        if (lines_.size() == most) lines_.erase(lines_.begin());
        lines_.push_back({std::move(text), {}, std::move(stands)});
    }
    /// The line in front goes.
    void dismiss(std::int64_t nowUs) {
        forgetOld(nowUs);
        if (!lines_.empty()) lines_.pop_back();
    }
    /// A key or a button was pressed: somebody is there, and the time of the lines that stand begins.
    void userIsThere(std::int64_t nowUs) {
        for (Line& one : lines_) one.seenUs = one.seenUs.value_or(nowUs);
    }
    /// Nobody has been there since a line came.
    bool waitForSomebody() const {
        return std::ranges::any_of(lines_, [](const Line& one) { return !one.seenUs; });
    }
    /// The line in front; empty for none.
    std::string text(std::int64_t nowUs) const {
        const auto line = std::find_if(lines_.rbegin(), lines_.rend(),
                                       [nowUs](const Line& one) { return stillStands(one, nowUs); });
        return line == lines_.rend() ? std::string() : line->text;
    }
    /// How many stand, the one in front among them.
    int count(std::int64_t nowUs) const {
        return static_cast<int>(
            std::ranges::count_if(lines_, [nowUs](const Line& one) { return stillStands(one, nowUs); }));
    }

 private:
    struct Line {
        std::string text;
        std::optional<std::int64_t> seenUs;
        std::function<bool()> stands;
    };

    static bool stillStands(const Line& line, std::int64_t nowUs) {
        if (line.seenUs && nowUs - *line.seenUs >= standsUs) return false;
        return !line.stands || line.stands();
    }
    void forgetOld(std::int64_t nowUs) {
        std::erase_if(lines_, [nowUs](const Line& one) { return !stillStands(one, nowUs); });
    }

    std::vector<Line> lines_;
};

}  // namespace zentaq
