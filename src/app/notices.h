// What a user is told without a box: a line that stands in the state strip until the next one, until it is
// pressed away, for long enough to be read, or until what it is about has gone. No command waits for it.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace zentaq {

class Notices {
 public:
    static constexpr std::int64_t standsUs = 30'000'000;

    /// `stands`: whether what it is about still is; none: always.
    void tell(std::string text, std::int64_t nowUs, std::function<bool()> stands = {}) {
        line_ = {std::move(text), nowUs, std::move(stands)};
    }
    void dismiss() { line_.reset(); }
    /// The line that stands now; empty for none.
    std::string text(std::int64_t nowUs) const {
        if (!line_ || nowUs - line_->sinceUs >= standsUs) return {};
        return !line_->stands || line_->stands() ? line_->text : std::string();
    }

 private:
    struct Line {
        std::string text;
        std::int64_t sinceUs = 0;
        std::function<bool()> stands;
    };
    std::optional<Line> line_;
};

}  // namespace zentaq
