// What keeps a tick of the link short. A box inside a tick would stop all ticks until it is answered: lines
// of a program would go out seconds apart, to a unit that has given up long before.
#pragma once

#include <functional>

#include "platform/dialogs.h"
#include "platform/yield.h"

namespace zentaq {

/// Yields, but never from inside a tick: the event loop runs between two ticks anyway, and what a user
/// commands comes in there.
class YieldBetweenTicks : public Yield {
 public:
    YieldBetweenTicks(Yield& yield, std::function<bool()> insideTick)
        : yield_(yield), insideTick_(std::move(insideTick)) {}
    void yield() override {
        if (!insideTick_()) yield_.yield();
    }
    void yieldWithoutInput() override {
        if (!insideTick_()) yield_.yieldWithoutInput();
    }

 private:
    Yield& yield_;
    std::function<bool()> insideTick_;
};

/// Dialogs of which none opens inside a tick. A box that only tells something comes from the event loop
/// instead; what would have to be answered is declined.
class DialogsBetweenTicks : public Dialogs {
 public:
    struct Around {
        std::function<bool()> insideTick;
        std::function<void(const Box&)> later;  ///< shows a box from the event loop
    };
    DialogsBetweenTicks(Dialogs& dialogs, Around around) : dialogs_(dialogs), around_(std::move(around)) {}

    Answer show(const Box& box) override;
    std::string openFile(const FileRequest& request) override;
    std::string saveFile(const FileRequest& request) override;
    std::optional<std::string> input(const std::string& title, const std::string& prompt,
                                     const std::string& initial) override;

 private:
    Dialogs& dialogs_;
    Around around_;
};

}  // namespace zentaq
