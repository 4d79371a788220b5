// The link's clock: 1000 ticks a second. Every time-out of the link is a count of ticks.
#pragma once

#include <functional>
#include <utility>

namespace zentaq {

class Ticker {
 public:
    virtual ~Ticker() = default;
    virtual void start() = 0;
    virtual void stop() = 0;

    void onTick(std::function<void()> handler) { handler_ = std::move(handler); }

 protected:
    void tick() {
        if (handler_) handler_();
    }

 private:
    std::function<void()> handler_;
};

/// A ticker driven by hand.
class ManualTicker : public Ticker {
 public:
    void start() override { running_ = true; }
    void stop() override { running_ = false; }
    bool running() const { return running_; }

    /// Runs `count` ticks; a stopped ticker runs none.
    void run(int count) {
        for (int i = 0; i < count && running_; ++i) tick();
    }

 private:
    bool running_ = false;
};

}  // namespace zentaq
