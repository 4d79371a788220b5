// What a slow disk may hold up runs beside the program's thread: whoever waits for it can tell so, and can
// give it up.
#pragma once

#include <functional>

namespace zentaq {

class SideWork {
 public:
    virtual ~SideWork() = default;
    /// Begins it and comes back. It owns all that it touches, because nobody may wait for it any more when it
    /// ends, and it throws nothing.
    virtual void begin(std::function<void()> work) = 0;
};

/// Each in a thread of its own. One that is given up ends by itself, or with the program.
class ThreadedSideWork : public SideWork {
 public:
    void begin(std::function<void()> work) override;
};

}  // namespace zentaq
