// A simulator in a process of its own, and a program's end of its line.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <string>

#include "sim/file_descriptor.h"
#include "sim_helpers.h"

namespace zentaq::sim::test {

/// A program's end of the line. Waits at most five seconds for a reply.
class Line {
 public:
    explicit Line(const std::string& path) : port_(::open(path.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        EXPECT_TRUE(port_.valid()) << path;
    }
    /// What comes; `length` bytes are enough, and so many milliseconds without one.
    Bytes ask(const Bytes& command, std::size_t length, int milliseconds = 5000) {
        EXPECT_EQ(::write(port_.get(), command.data(), command.size()), static_cast<ssize_t>(command.size()));
        Bytes reply;
        pollfd watched{port_.get(), POLLIN, 0};
        while (reply.size() < length && ::poll(&watched, 1, milliseconds) > 0) {
            std::uint8_t buffer[256];
            const auto count = ::read(port_.get(), buffer, sizeof buffer);
            if (count <= 0) break;
            reply.insert(reply.end(), buffer, buffer + count);
        }
        return reply;
    }
    Bytes ask(std::string_view command, std::size_t length, int milliseconds = 5000) {
        return ask(bytesOf(command), length, milliseconds);
    }
    /// What comes within so many milliseconds, in one read; mostly for nothing.
    Bytes askFor(std::string_view command, int milliseconds) { return ask(command, 1, milliseconds); }
    bool hungUp() {
        pollfd watched{port_.get(), POLLIN, 0};
        return ::poll(&watched, 1, 5000) == 1 && (watched.revents & POLLHUP) != 0;
    }

 private:
    FileDescriptor port_;
};

/// Runs a function in a process that lives no longer than the object. What it says comes through a pipe.
class SimulatorProcess {
 public:
    explicit SimulatorProcess(const std::function<int()>& run) {
        int ends[2];
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        out_ = FileDescriptor(ends[0]);
        const FileDescriptor theirs(ends[1]);
        process_ = ::fork();
        EXPECT_GE(process_, 0);
        if (process_ != 0) return;
        ::dup2(theirs.get(), STDOUT_FILENO);
        ::dup2(theirs.get(), STDERR_FILENO);
        ::_exit(run());
    }
    ~SimulatorProcess() {
        if (process_ <= 0) return;
        ::kill(process_, SIGKILL);
        ::waitpid(process_, nullptr, 0);
    }
    SimulatorProcess(const SimulatorProcess&) = delete;
    SimulatorProcess& operator=(const SimulatorProcess&) = delete;

    /// The next line of what it says.
    std::string line() {
        std::string text;
        for (char next = 0; read(&next, 1) == 1 && next != '\n';) text += next;
        return text;
    }
    /// All that it says by its end.
    std::string said() {
        std::string text;
        char buffer[4096];
        for (ssize_t count; (count = read(buffer, sizeof buffer)) > 0;) {
            text.append(buffer, static_cast<std::size_t>(count));
        }
        return text;
    }
    bool ready() { return line().starts_with("ready "); }
    /// The reader of what it says dies.
    void closeOutput() { out_ = FileDescriptor(); }
    void send(int signal) const { ::kill(process_, signal); }
    /// The exit code when it ends by itself within ten seconds, else -1.
    int ended() {
        int status = -1;
        for (int i = 0; i < 1000 && process_ > 0; ++i) {
            if (::waitpid(process_, &status, WNOHANG) == process_) process_ = 0;
            if (process_ > 0) ::usleep(10'000);
        }
        return process_ == 0 && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    int endedBy(int signal) {
        send(signal);
        return ended();
    }

 private:
    /// Waits at most ten seconds.
    ssize_t read(char* buffer, std::size_t size) {
        pollfd watched{out_.get(), POLLIN, 0};
        return ::poll(&watched, 1, 10'000) == 1 ? ::read(out_.get(), buffer, size) : 0;
    }

    FileDescriptor out_;
    pid_t process_ = 0;
};

}  // namespace zentaq::sim::test
