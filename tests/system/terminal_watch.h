// Whether the machine's pseudo-terminals pass bytes on. On a busy machine all of them may stand still for
// seconds while programs run on: a unit behind one is silent then, and no program is to blame.
#pragma once

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <utility>

#include "platform/posix_handle.h"

namespace zentaq {

/// A terminal of its own, on which one byte is on its way at any time.
class TerminalWatch {
 public:
    using Clock = std::chrono::steady_clock;

    TerminalWatch() : master_(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        ::grantpt(master_.get());
        ::unlockpt(master_.get());
        char name[128] = {};
        ::ptsname_r(master_.get(), name, sizeof name);
        slave_ = PosixHandle(::open(name, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
        termios settings{};
        ::tcgetattr(slave_.get(), &settings);
        ::cfmakeraw(&settings);
        ::tcsetattr(slave_.get(), TCSANOW, &settings);
    }

    /// To be called again and again.
    void look() {
        char byte = 0;
        if (sent_) {
            longest_ = std::max(longest_, Clock::now() - *sent_);
            if (::read(master_.get(), &byte, 1) != 1) return;
        }
        if (::write(slave_.get(), "x", 1) == 1) sent_ = Clock::now();
    }
    /// The longest time that a byte has taken since this was asked last.
    Clock::duration longestRest() {
        look();
        return std::exchange(longest_, {});
    }

 private:
    PosixHandle master_;
    PosixHandle slave_;
    std::optional<Clock::time_point> sent_;
    Clock::duration longest_{};
};

}  // namespace zentaq
