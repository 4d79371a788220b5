#include "platform/posix_stop_signals.h"

#include <sys/eventfd.h>

#include <atomic>
#include <cerrno>
#include <cstdint>

#include "base/errors.h"

namespace zentaq {

namespace {

/// How long a signal waits for being asked for, each time of two. Loops ask a thousand times a second.
constexpr long patienceNs = 300'000'000;

// What the handlers work with; all of it may be used in one.
std::atomic<int> stopWake = -1;  ///< of the one object
std::atomic<int> firstStop = 0;  ///< the signal that came first and was not asked for yet
std::atomic<bool> stopsHeld = false;
std::atomic<bool> stopWarned = false;  ///< the program has had one patience already
timer_t stopPatience;
static_assert(std::atomic<int>::is_always_lock_free);

void setPatience(long ns) {
    itimerspec setting{};
    setting.it_value.tv_nsec = ns;
    ::timer_settime(stopPatience, 0, &setting, nullptr);
}

void onStop(int number) {
    const int error = errno;
    int none = 0;
    firstStop.compare_exchange_strong(none, number);
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(stopWake, &one, sizeof one);
    stopWarned = false;
    if (!stopsHeld) setPatience(patienceNs);
    errno = error;
}

// A program that was stopped sees both signals at once when it goes on: it is given a second patience.
void onPatienceOver(int) {
    const int error = errno;
    const int number = firstStop;
    if (number != 0 && !stopsHeld) {
        if (!stopWarned.exchange(true)) {
            setPatience(patienceNs);
        } else {
            std::signal(number, SIG_DFL);
            ::raise(number);
        }
    }
    errno = error;
}

bool isIgnoredStop(int number) {
    struct sigaction action {};
    return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

struct sigaction stopHandledBy(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    ::sigemptyset(&action.sa_mask);
    return action;
}

}  // namespace

PosixStopSignals::PosixStopSignals() {
    if (stopWake >= 0) throw Failure("Signals are watched already");
    handle_ = PosixHandle(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    sigevent notice{};
    notice.sigev_notify = SIGEV_SIGNAL;
    notice.sigev_signo = SIGALRM;
    if (!handle_.valid() || ::timer_create(CLOCK_MONOTONIC, &notice, &stopPatience) != 0) {
        throw Failure("Cannot watch for signals");
    }
    firstStop = 0;
    stopWake = handle_.get();
    const struct sigaction alarm = stopHandledBy(onPatienceOver);
    former_.emplace_back(SIGALRM, alarm);
    ::sigaction(SIGALRM, &alarm, &former_.back().second);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) watch(number);
}

PosixStopSignals::~PosixStopSignals() {
    setPatience(0);
    unwatch(0);
    ::timer_delete(stopPatience);
    stopWake = -1;
    firstStop = 0;
}

void PosixStopSignals::watch(int number) {
    if (isIgnoredStop(number)) return;
    const struct sigaction stop = stopHandledBy(onStop);
    former_.emplace_back(number, stop);
    ::sigaction(number, &stop, &former_.back().second);
}

/// The last ones first, down to `keep` of them.
void PosixStopSignals::unwatch(std::size_t keep) {
    for (; former_.size() > keep; former_.pop_back()) {
        ::sigaction(former_.back().first, &former_.back().second, nullptr);
    }
}

int PosixStopSignals::received() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto taken = ::read(handle_.get(), &count, sizeof count);
    const int number = firstStop.exchange(0);
    if (received_ == 0) received_ = number;
    return received_;
}

PosixStopSignals::Hold::Hold(PosixStopSignals& signals)
    : signals_(signals), held_({SIGTSTP, SIGTTOU, SIGPIPE}) {
    stopsHeld = true;
    signals_.watch(SIGQUIT);
}

PosixStopSignals::Hold::~Hold() {
    if (!signals_.former_.empty() && signals_.former_.back().first == SIGQUIT) {
        signals_.unwatch(signals_.former_.size() - 1);
    }
    stopsHeld = false;
    if (firstStop != 0) setPatience(patienceNs);
}

}  // namespace zentaq
