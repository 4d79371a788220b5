// What a user is told without a box: a line that stands in the state strip until the next one, until it is
// pressed away, or for long enough to be read. No command waits for it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace zentaq {

class Notices {
 public:
    static constexpr std::int64_t standsUs = 30'000'000;

    void tell(std::string text, std::int64_t nowUs) { line_ = {std::move(text), nowUs}; }
    void dismiss() { line_.reset(); }
    /// The line that stands now; empty for none.
    std::string text(std::int64_t nowUs) const {
        return line_ && nowUs - line_->second < standsUs ? line_->first : std::string();
    }

 private:
    std::optional<std::pair<std::string, std::int64_t>> line_;
};

}  // namespace zentaq
