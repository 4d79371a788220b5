// A process of its own, in a group of its own, that says by single letters how far it has come.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <functional>
#include <string>

#include "base/errors.h"
#include "temporary_folder.h"

namespace zentaq {

class OtherProcess {
 public:
    /// Says a letter to whoever started the process.
    using Say = std::function<void(char)>;

    explicit OtherProcess(const std::function<void(const Say&)>& body) {
        std::array<int, 2> ends{};
        if (::pipe(ends.data()) != 0) throw Failure("pipe");
        process_ = ::fork();
        if (process_ == 0) {
            // The system stops no group whose parents are all of another session.
            ::setpgid(0, 0);
            body([to = ends[1]](char letter) {
                if (::write(to, &letter, 1) != 1) ::_exit(9);
            });
            ::_exit(0);
        }
        ::close(ends[1]);
        said_ = ends[0];
    }
    ~OtherProcess() {
        crash();
        ::close(said_);
    }
    OtherProcess(const OtherProcess&) = delete;
    OtherProcess& operator=(const OtherProcess&) = delete;

    pid_t id() const { return process_; }
    bool runs() const { return !over_ && ::kill(process_, 0) == 0; }
    /// Waits for its next letter; '?' when it has ended.
    char said() const {
        char letter = '?';
        return ::read(said_, &letter, 1) == 1 ? letter : '?';
    }
    void signal(int number) const { ::kill(process_, number); }
    void waitUntilItSleeps() const {
        const std::string stat = "/proc/" + std::to_string(process_) + "/stat";
        for (int ms = 0; ms < 5000; ++ms) {
            if (TemporaryFolder::read(stat).find(") S ") != std::string::npos) return;
            ::usleep(1000);
        }
    }
    /// The status of waitpid; `stops` too.
    int wait(bool stops = false) {
        int status = 0;
        ::waitpid(process_, &status, stops ? WUNTRACED : 0);
        over_ = !WIFSTOPPED(status);
        return status;
    }
    /// Ends without a chance to clean up.
    void crash() {
        if (over_) return;
        ::kill(process_, SIGKILL);
        wait();
    }

 private:
    pid_t process_ = 0;
    int said_ = -1;
    bool over_ = false;
};

}  // namespace zentaq
