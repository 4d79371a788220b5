// Runs an action in a child process that stops at the beginning and the end of every system call, so that a
// test can kill it there or let the call fail.
#pragma once

#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <string>

namespace zentaq::testing {

class TracedChild {
 public:
    struct Stop {
        bool entry = false;                        ///< before the call; else behind it
        long call = 0;                             ///< SYS_write and so on, at an entry
        std::array<std::uint64_t, 6> arguments{};  ///< the same
    };

    /// `action` answers the exit status of the child.
    explicit TracedChild(const std::function<int()>& action) : child_(::fork()) {
        if (child_ == 0) {
            if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(notTraced);
            ::raise(SIGSTOP);
            ::alarm(longestRunSeconds);
            ::_exit(action());
        }
        int status = 0;
        ::waitpid(child_, &status, 0);
        running_ = WIFSTOPPED(status);
        if (!running_) return;
        // A child that becomes another program goes on without a word.
        ::ptrace(PTRACE_SETOPTIONS, child_, nullptr,
                 PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL | PTRACE_O_TRACEEXEC);
    }
    ~TracedChild() { kill(); }
    TracedChild(const TracedChild&) = delete;
    TracedChild& operator=(const TracedChild&) = delete;

    /// Whether the system lets a process trace its child at all.
    static bool possible() {
        TracedChild child([] { return 0; });
        const auto stop = child.next();
        return stop.has_value();
    }

    /// Lets the child run up to the next stop; nothing when it has ended.
    std::optional<Stop> next() {
        while (running_) {
            int status = 0;
            ::ptrace(PTRACE_SYSCALL, child_, nullptr, signal_);
            signal_ = 0;
            ::waitpid(child_, &status, 0);
            if (!WIFSTOPPED(status)) {
                ended(status);
            } else if (WSTOPSIG(status) == (SIGTRAP | 0x80)) {
                return stopNow();
            } else if (status >> 8 != (SIGTRAP | PTRACE_EVENT_EXEC << 8)) {
                signal_ = WSTOPSIG(status);
            }
        }
        return std::nullopt;
    }
    /// Lets the child run up to its end without a stop; SIGALRM ends one that hangs.
    void runToEnd() {
        while (running_) {
            int status = 0;
            ::ptrace(PTRACE_CONT, child_, nullptr, signal_);
            signal_ = 0;
            ::waitpid(child_, &status, 0);
            if (!WIFSTOPPED(status)) return ended(status);
            if (status >> 8 != (SIGTRAP | PTRACE_EVENT_EXEC << 8)) signal_ = WSTOPSIG(status);
        }
    }
    /// The text at an address of the child; empty where none can be read.
    std::string text(std::uint64_t address) const {
        std::string found;
        while (found.size() < longestText) {
            errno = 0;
            const long word = ::ptrace(PTRACE_PEEKDATA, child_, reinterpret_cast<void*>(address), nullptr);
            if (errno != 0) return {};
            for (std::size_t i = 0; i < sizeof word; ++i) {
                const auto letter = static_cast<char>(static_cast<unsigned long>(word) >> 8 * i);
                if (letter == '\0') return found;
                found += letter;
            }
            address += sizeof word;
        }
        return {};
    }
    /// At once: a call at whose entry the child stands is not made any more.
    void kill() {
        if (!running_) return;
        running_ = false;
        ::kill(child_, SIGKILL);
        int status = 0;
        ::waitpid(child_, &status, 0);
    }
    /// The answer of the action, or minus the number of the signal that ended it. Valid at its end.
    int exitStatus() const { return exitStatus_; }

#if defined(__x86_64__)
    static constexpr bool canChangeCalls = true;
    /// At an entry: the call is not made and answers `answer`; -EIO and so on are errors.
    void answerInstead(std::int64_t answer) {
        user_regs_struct registers{};
        ::ptrace(PTRACE_GETREGS, child_, nullptr, &registers);
        registers.orig_rax = static_cast<unsigned long long>(-1);
        ::ptrace(PTRACE_SETREGS, child_, nullptr, &registers);
        if (!next()) return;
        ::ptrace(PTRACE_GETREGS, child_, nullptr, &registers);
        registers.rax = static_cast<unsigned long long>(answer);
        ::ptrace(PTRACE_SETREGS, child_, nullptr, &registers);
    }
    /// At the entry of a read or a write: it moves at most so many bytes.
    void moveAtMost(std::uint64_t bytes) {
        user_regs_struct registers{};
        ::ptrace(PTRACE_GETREGS, child_, nullptr, &registers);
        if (registers.rdx > bytes) registers.rdx = bytes;
        ::ptrace(PTRACE_SETREGS, child_, nullptr, &registers);
    }
#else
    static constexpr bool canChangeCalls = false;
    void answerInstead(std::int64_t) {}
    void moveAtMost(std::uint64_t) {}
#endif

    /// Calls that have to do with memory and with the process itself: no disk makes them fail.
    static bool ofMemory(long call) {
        static const std::set<long> calls = {SYS_brk,        SYS_mmap,           SYS_munmap,
                                             SYS_mprotect,   SYS_madvise,        SYS_mremap,
                                             SYS_futex,      SYS_getpid,         SYS_gettid,
                                             SYS_getrandom,  SYS_rt_sigprocmask, SYS_clock_gettime,
                                             SYS_exit_group, SYS_sched_yield,    SYS_sigaltstack};
        return calls.contains(call);
    }

 private:
    static constexpr int notTraced = 99;
    static constexpr unsigned longestRunSeconds = 60;
    static constexpr std::size_t longestText = 512;

    void ended(int status) {
        running_ = false;
        exitStatus_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    }
    Stop stopNow() {
        __ptrace_syscall_info info{};
        ::ptrace(PTRACE_GET_SYSCALL_INFO, child_, sizeof info, &info);
        const bool entry = info.op == PTRACE_SYSCALL_INFO_ENTRY;
        Stop stop{entry, entry ? static_cast<long>(info.entry.nr) : -1, {}};
        if (entry) std::copy_n(info.entry.args, stop.arguments.size(), stop.arguments.begin());
        return stop;
    }

    pid_t child_;
    bool running_ = false;
    int signal_ = 0;
    int exitStatus_ = -1;
};

}  // namespace zentaq::testing
