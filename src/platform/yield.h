// Long operations hand the thread back to the event loop here. While they do, ticks, replies and
// user events may run.
#pragma once

namespace zentaq {

class Yield {
 public:
    virtual ~Yield() = default;
    virtual void yield() = 0;
};

/// For programs and tests without an event loop.
class NoYield : public Yield {
 public:
    void yield() override {}
};

}  // namespace zentaq
