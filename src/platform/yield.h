// Long operations hand the thread back to the event loop here. While they do, ticks, replies and
// user events may run.
#pragma once

namespace zentaq {

class Yield {
 public:
    virtual ~Yield() = default;
    virtual void yield() = 0;
    /// The same for the middle of a change: ticks and replies run, what the user types and clicks comes
    /// behind.
    virtual void yieldWithoutInput() { yield(); }
};

/// For programs and tests without an event loop.
class NoYield : public Yield {
 public:
    void yield() override {}
};

}  // namespace zentaq
