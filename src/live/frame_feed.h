// Who wants to know of each decoded frame: the recorder, the paint of a table, a monitor of the shell.
#pragma once

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace zentaq {

class FrameFeed {
 public:
    /// Ends what it stands for when it goes.
    using Subscription = std::shared_ptr<const void>;

    /// Runs `listener` with each frame, behind those that came before it.
    [[nodiscard]] Subscription follow(std::function<void()> listener) {
        auto held = std::make_shared<std::function<void()>>(std::move(listener));
        listeners_.push_back(held);
        return held;
    }
    void tell() {
        std::erase_if(listeners_, [](const auto& one) { return one.expired(); });
        // By number: a listener may bring another one.
        for (std::size_t i = 0; i < listeners_.size(); ++i) {
            if (const auto listener = listeners_[i].lock()) (*listener)();
        }
    }

 private:
    std::vector<std::weak_ptr<std::function<void()>>> listeners_;
};

}  // namespace zentaq
