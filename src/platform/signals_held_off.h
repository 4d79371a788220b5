// Signals are for the thread of the windows: a thread takes over what is held off where it is made.
#pragma once

#include <pthread.h>

#include <csignal>

namespace zentaq {

class SignalsHeldOff {
 public:
    SignalsHeldOff() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &former_);
    }
    ~SignalsHeldOff() { ::pthread_sigmask(SIG_SETMASK, &former_, nullptr); }
    SignalsHeldOff(const SignalsHeldOff&) = delete;
    SignalsHeldOff& operator=(const SignalsHeldOff&) = delete;

 private:
    sigset_t former_{};
};

}  // namespace zentaq
