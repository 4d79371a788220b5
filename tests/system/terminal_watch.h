// Whether the machine's pseudo-terminals pass bytes on. On a busy machine what was written from one of its
// processors may stand still for seconds while programs run on: a unit behind a terminal is silent then, and
// no program is to blame.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <pthread.h>
#include <sched.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <list>
#include <thread>

#include "platform/posix_handle.h"

namespace zentaq {

/// A terminal for each processor, on which one byte is on its way nearly all the time.
class TerminalWatch {
 public:
    using Clock = std::chrono::steady_clock;

    TerminalWatch() {
        cpu_set_t allowed;
        CPU_ZERO(&allowed);
        ::sched_getaffinity(0, sizeof allowed, &allowed);
        for (int cpu = 0; cpu < CPU_SETSIZE; ++cpu) {
            if (CPU_ISSET(cpu, &allowed)) threads_.emplace_back([this, cpu] { watch(cpu); });
        }
    }
    ~TerminalWatch() {
        ended_ = true;
        for (std::thread& one : threads_) one.join();
    }
    TerminalWatch(const TerminalWatch&) = delete;
    TerminalWatch& operator=(const TerminalWatch&) = delete;

    /// The longest time that a byte has taken since this was asked last.
    std::chrono::milliseconds longestRest() { return std::chrono::milliseconds(longestMs_.exchange(0)); }

 private:
    void watch(int cpu) {
        cpu_set_t own;
        CPU_ZERO(&own);
        CPU_SET(cpu, &own);
        ::pthread_setaffinity_np(::pthread_self(), sizeof own, &own);
        const PosixHandle master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
        ::grantpt(master.get());
        ::unlockpt(master.get());
        char name[128] = {};
        ::ptsname_r(master.get(), name, sizeof name);
        const PosixHandle slave(::open(name, O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC));
        termios settings{};
        ::tcgetattr(slave.get(), &settings);
        ::cfmakeraw(&settings);
        ::tcsetattr(slave.get(), TCSANOW, &settings);
        while (!ended_) sendOne(slave.get(), master.get());
    }
    void sendOne(int from, int to) {
        if (::write(from, "x", 1) != 1) return;
        const auto sent = Clock::now();
        char byte = 0;
        do {
            pollfd watched{to, POLLIN, 0};
            ::poll(&watched, 1, 20);
            note(std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - sent).count());
        } while (!ended_ && ::read(to, &byte, 1) != 1);
        std::this_thread::sleep_for(std::chrono::milliseconds(3));
    }
    void note(std::int64_t ms) {
        std::int64_t known = longestMs_;
        while (ms > known && !longestMs_.compare_exchange_weak(known, ms)) {
        }
    }

    std::atomic<std::int64_t> longestMs_ = 0;
    std::atomic<bool> ended_ = false;
    std::list<std::thread> threads_;
};

}  // namespace zentaq
