// Runs the real zentaqctl against the real zentaq-sim on a terminal of a temporary folder.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cctype>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "ctl/ctl_fixture.h"

namespace zentaq {

using Words = std::vector<std::string>;

/// A program that runs beside the test; ended with the object.
class Running {
 public:
    /// The descriptors become its standard output, error and input.
    Running(const std::string& program, const Words& arguments, int out, int error, int in = STDIN_FILENO) {
        Words words{program};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char*> pointers;
        for (std::string& word : words) pointers.push_back(word.data());
        pointers.push_back(nullptr);
        process_ = ::fork();
        if (process_ == 0) {
            ::setpgid(0, 0);  // a job of its own: one of a test that nobody watches could not be stopped
            if (in != STDIN_FILENO) ::dup2(in, STDIN_FILENO);
            ::dup2(out, STDOUT_FILENO);
            ::dup2(error, STDERR_FILENO);
            ::execv(program.c_str(), pointers.data());
            ::_exit(127);
        }
    }
    ~Running() {
        if (process_ > 0) {
            signal(SIGKILL);
            wait();
        }
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;

    void signal(int number) const { ::kill(process_, number); }
    /// The signal that ended it; 0 where it ended by itself.
    int endingSignal() {
        int status = 0;
        ::waitpid(process_, &status, 0);
        process_ = -1;
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }
    bool stopped() const {
        int status = 0;
        return ::waitpid(process_, &status, WUNTRACED | WNOHANG) == process_ && WIFSTOPPED(status);
    }
    /// The exit code; -1 after a signal.
    int wait() {
        int status = 0;
        ::waitpid(process_, &status, 0);
        process_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

 private:
    pid_t process_ = -1;
};

/// Reads until `text` has come; what came so far. Gives up after ten seconds.
inline std::string readUntil(int descriptor, const std::string& text) {
    std::string got;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (got.find(text) == std::string::npos && std::chrono::steady_clock::now() < end) {
        pollfd line{descriptor, POLLIN, 0};
        if (::poll(&line, 1, 100) <= 0) continue;
        char buffer[512];
        const auto count = ::read(descriptor, buffer, sizeof buffer);
        if (count <= 0) break;
        got.append(buffer, static_cast<std::size_t>(count));
    }
    return got;
}

/// A program whose standard output is read by the test.
class Piped {
 public:
    Piped(const std::string& program, const Words& arguments, int error = STDERR_FILENO) {
        int ends[2];
        if (::pipe2(ends, O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        out = ends[0];
        running.emplace(program, arguments, ends[1], error);
        ::close(ends[1]);
    }
    ~Piped() {
        running.reset();
        ::close(out);
    }
    Piped(const Piped&) = delete;
    Piped& operator=(const Piped&) = delete;
    std::string until(const std::string& text) const { return readUntil(out, text); }

    int out = -1;
    std::optional<Running> running;
};

/// zentaqctl with a terminal as its standard input and error.
class OnTerminal {
 public:
    explicit OnTerminal(const Words& arguments, const std::string& out) {
        int end = -1;
        if (::openpty(&terminal_, &end, nullptr, nullptr, nullptr) != 0) throw std::runtime_error("no pty");
        ::fcntl(terminal_, F_SETFD, FD_CLOEXEC);
        const int file = ::open(out.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        program_.emplace(ZENTAQ_APP_DIR "/zentaqctl", arguments, file, end, end);
        ::close(file);
        ::close(end);
    }
    ~OnTerminal() { ::close(terminal_); }
    void type(const std::string& text) const {
        if (::write(terminal_, text.data(), text.size()) < 0) throw std::runtime_error("cannot type");
    }
    std::string until(const std::string& text) const { return readUntil(terminal_, text); }
    Running& program() { return *program_; }

 private:
    int terminal_ = -1;
    std::optional<Running> program_;
};

class ZentaqctlOnLink : public Zentaqctl {
 protected:
    /// A firmware file for simulated units, which is named after what it holds.
    std::string makeFirmware(const std::string& model, const std::string& text) {
        const std::string made = folder.file(text + ".nv3");
        const std::string command = inQuotes(ZENTAQ_APP_DIR "/zentaq-sim") + " --unit " + model +
                                    " --firmware " + text + " --make-firmware " + inQuotes(made) + " >" +
                                    inQuotes(folder.file("made.txt"));
        EXPECT_EQ(std::system(command.c_str()), 0);
        return made;
    }
    /// Starts a unit of `model` at `port`, at the speed of a program: no pacing.
    void startUnit(const std::string& model, const Words& more = {}) {
        Words arguments{"--unit", model, "--link", port, "--baud", "0"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        start(arguments);
    }
    void start(const Words& arguments) {
        unit_.emplace(ZENTAQ_APP_DIR "/zentaq-sim", arguments);
        ASSERT_THAT(unit_->until("\n"), StartsWith("ready "));
    }
    void startUnitWith(const std::string& fault) { startUnit("A", {"--fault", fault}); }

    /// A command on the unit's port.
    Outcome onUnit(const std::string& command, const std::string& rest = {}) {
        return run(command + " --port " + inQuotes(port) + " " + rest);
    }
    Outcome programFile() { return onUnit("program", inQuotes(file)); }

    std::string port = folder.file("unit");
    std::string memory = folder.file("memory");

 private:
    std::optional<Piped> unit_;
};

/// What the unit does wrong, and what a command tells of it.
struct Fault {
    const char* fault;
    const char* told;
};

/// A test name of the words of a fault, such as "refuse@line#12": "refuse_line_12".
inline std::string nameOfFault(const std::string& text) {
    std::string name;
    for (const char letter : text)
        name += std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : '_';
    return name;
}

inline std::string nameOfRow(const ::testing::TestParamInfo<Fault>& row) {
    return nameOfFault(row.param.fault);
}

inline void expectFailure(const Outcome& outcome, int exitCode, const std::string& part) {
    EXPECT_EQ(outcome.exitCode, exitCode);
    EXPECT_THAT(outcome.error, HasSubstr(part));
    EXPECT_THAT(outcome.out, IsEmpty());
    expectOneLine(outcome.error);
}

}  // namespace zentaq
