#include "unit/file_writer.h"

#include <pthread.h>

#include <csignal>
#include <system_error>
#include <utility>

namespace zentaq {

namespace {

/// Signals are for the thread of the windows: a thread takes over what is held off where it is made.
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

}  // namespace

ThreadedFileWriter::~ThreadedFileWriter() {
    if (thread_.joinable()) thread_.join();
}

void ThreadedFileWriter::begin(FileSave save) {
    if (thread_.joinable()) thread_.join();
    save_ = std::move(save);
    ended_ = false;
    const SignalsHeldOff heldOff;
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        run();  // a system that has no thread left still saves
    }
}

void ThreadedFileWriter::run() {
    saved_ = saveFile(save_);
    ended_ = true;
}

std::optional<FileSaved> ThreadedFileWriter::outcome() {
    if (!ended_.exchange(false)) return std::nullopt;
    if (thread_.joinable()) thread_.join();
    return std::move(saved_);
}

}  // namespace zentaq
