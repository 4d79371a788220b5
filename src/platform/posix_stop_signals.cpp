#include "platform/posix_stop_signals.h"

#include <pthread.h>
#include <sys/signalfd.h>

#include "base/errors.h"

namespace zentaq {

namespace {

bool isIgnored(int number) {
    struct sigaction action {};
    return ::sigaction(number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

sigset_t stopSignals() {
    sigset_t set;
    ::sigemptyset(&set);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (!isIgnored(number)) ::sigaddset(&set, number);
    }
    return set;
}

}  // namespace

PosixStopSignals::PosixStopSignals() {
    const sigset_t set = stopSignals();
    ::pthread_sigmask(SIG_BLOCK, &set, &former_);
    handle_ = PosixHandle(::signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
    if (handle_.valid()) return;
    ::pthread_sigmask(SIG_SETMASK, &former_, nullptr);
    throw Failure("Cannot watch for signals");
}

PosixStopSignals::~PosixStopSignals() {
    received();  // one that is still to be read would end the program now
    ::pthread_sigmask(SIG_SETMASK, &former_, nullptr);
}

int PosixStopSignals::received() {
    signalfd_siginfo notice{};
    while (::read(handle_.get(), &notice, sizeof notice) == static_cast<ssize_t>(sizeof notice)) {
        if (received_ == 0) received_ = static_cast<int>(notice.ssi_signo);
    }
    return received_;
}

}  // namespace zentaq
