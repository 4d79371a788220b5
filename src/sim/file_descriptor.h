// Owns one open file of the system and closes it once.
#pragma once

#include <unistd.h>

#include <utility>

namespace zentaq::sim {

class FileDescriptor {
 public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~FileDescriptor() {
        if (number_ >= 0) ::close(number_);
    }

    int get() const { return number_; }
    bool valid() const { return number_ >= 0; }

 private:
    int number_ = -1;
};

}  // namespace zentaq::sim
