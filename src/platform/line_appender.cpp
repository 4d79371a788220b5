#include "platform/line_appender.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/signals_held_off.h"

namespace zentaq {

namespace {

constexpr ::mode_t fileMode = 0644;

/// All bytes, however the system splits them. Answers 0 or the reason of the failure.
int writeAll(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ::ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return errno;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return 0;
}

int appendTo(const std::string& path, std::string_view bytes, bool anew) {
    // A file that has gone meanwhile is not made again: its lines would have no head.
    const int how = anew ? O_CREAT | O_TRUNC : O_APPEND;
    const int file = ::open(path.c_str(), O_WRONLY | O_NOCTTY | O_CLOEXEC | how, fileMode);
    if (file < 0) return errno;
    const int failed = writeAll(file, bytes);
    const bool closed = ::close(file) == 0;
    return failed != 0 || closed ? failed : errno;
}

}  // namespace

struct LineAppender::State {
    struct Piece {
        std::string bytes;
        bool anew = false;
    };
    std::mutex mutex;
    std::condition_variable changed;
    std::string path;
    std::deque<Piece> waiting;
    std::string failure;
    std::int64_t written = 0;
    bool busy = false;
    bool ends = false;
    std::thread thread;

    void run() {
        std::unique_lock lock(mutex);
        for (;;) {
            changed.wait(lock, [this] { return ends || !waiting.empty(); });
            if (waiting.empty()) return;
            const Piece piece = std::move(waiting.front());
            waiting.pop_front();
            if (!failure.empty()) continue;
            busy = true;
            const std::string target = path;
            lock.unlock();
            const int failed = appendTo(target, piece.bytes, piece.anew);
            lock.lock();
            busy = false;
            if (failed != 0) {
                failure = target + ": " + std::generic_category().message(failed);
            } else if (!piece.anew) {
                ++written;
            }
        }
    }
};

LineAppender::LineAppender() : state_(std::make_shared<State>()) {
    const SignalsHeldOff heldOff;
    state_->thread = std::thread([state = state_.get()] { state->run(); });
}

LineAppender::~LineAppender() {
    {
        const std::lock_guard lock(state_->mutex);
        state_->ends = true;
    }
    state_->changed.notify_one();
    state_->thread.join();
}

void LineAppender::begin(const std::string& path, std::string head) {
    {
        const std::lock_guard lock(state_->mutex);
        state_->path = path;
        state_->failure.clear();
        state_->written = 0;
    }
    give(std::move(head), true);
}

void LineAppender::append(std::string line) {
    give(std::move(line), false);
}

void LineAppender::give(std::string bytes, bool anew) {
    {
        const std::lock_guard lock(state_->mutex);
        state_->waiting.push_back({std::move(bytes), anew});
    }
    state_->changed.notify_one();
}

std::string LineAppender::failure() const {
    const std::lock_guard lock(state_->mutex);
    return state_->failure;
}

std::int64_t LineAppender::written() const {
    const std::lock_guard lock(state_->mutex);
    return state_->written;
}

bool LineAppender::idle() const {
    const std::lock_guard lock(state_->mutex);
    return state_->waiting.empty() && !state_->busy;
}

}  // namespace zentaq
