// Runs an action in a child process that may give up rights, change folder or mount a small disk, none of
// which a test can take back. The child answers one text.
#pragma once

#include <grp.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <exception>
#include <fstream>
#include <functional>
#include <string>

#include "base/errors.h"

namespace zentaq::testing {

/// What became of a save: "done", "FileError: ..." or "other: ...".
inline std::string outcomeOf(const std::function<void()>& action) {
    try {
        action();
        return "done";
    } catch (const FileError& error) {
        return std::string("FileError: ") + error.what();
    } catch (const std::exception& error) {
        return std::string("other: ") + error.what();
    }
}

/// What `action` answers in a child process; "killed by signal N" when it does not get so far.
inline std::string answerOfChild(const std::function<std::string()>& action) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return "no pipe";
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        std::string answer;
        try {
            answer = action();
        } catch (const std::exception& error) {
            answer = std::string("thrown: ") + error.what();
        }
        const ssize_t written = ::write(ends[1], answer.data(), answer.size());
        ::_exit(written == static_cast<ssize_t>(answer.size()) ? 0 : 1);
    }
    ::close(ends[1]);
    std::string answer;
    std::array<char, 4096> piece{};
    for (ssize_t count = 0; (count = ::read(ends[0], piece.data(), piece.size())) > 0;)
        answer.append(piece.data(), static_cast<std::size_t>(count));
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) return "killed by signal " + std::to_string(WTERMSIG(status));
    return answer;
}

constexpr uid_t ordinaryUser = 65534;

/// The superuser may do everything: a child that runs as such becomes an ordinary user. False when it cannot.
inline bool becomeOrdinary() {
    if (::geteuid() != 0) return true;
    return ::setgroups(0, nullptr) == 0 && ::setresgid(ordinaryUser, ordinaryUser, ordinaryUser) == 0 &&
           ::setresuid(ordinaryUser, ordinaryUser, ordinaryUser) == 0;
}

/// Mounts a disk in memory that only this process sees. False where the system does not allow it.
inline bool mountSmallDisk(const std::string& folder, const std::string& options) {
    const uid_t user = ::getuid();
    const gid_t group = ::getgid();
    if (::unshare(CLONE_NEWNS) != 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0) return false;
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << "0 " << user << " 1";
        std::ofstream("/proc/self/gid_map") << "0 " << group << " 1";
    }
    if (::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) return false;
    return ::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
}

}  // namespace zentaq::testing
