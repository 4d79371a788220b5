// Owns one descriptor of the system and closes it.
#pragma once

#include <unistd.h>

#include <utility>

namespace zentaq {

class PosixHandle {
 public:
    explicit PosixHandle(int handle = -1) : handle_(handle) {}
    PosixHandle(PosixHandle&& other) noexcept : handle_(std::exchange(other.handle_, -1)) {}
    PosixHandle& operator=(PosixHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~PosixHandle() { reset(); }

    int get() const { return handle_; }
    bool valid() const { return handle_ >= 0; }
    /// The descriptor is the caller's from now on.
    int release() { return std::exchange(handle_, -1); }
    void reset() {
        if (valid()) ::close(handle_);
        handle_ = -1;
    }

 private:
    int handle_;
};

}  // namespace zentaq
