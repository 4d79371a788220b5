// Saves that are killed at each of their system calls, and of which each call fails once: the file is the old
// one or the new one, whole, and who asked for the save is told which.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "temporary_folder.h"
#include "unit/killing_rig.h"

namespace zentaq::testing {

/// How a save says that it ended.
enum Told { Stored = 0, NotStored = 1, Nonsense = 2 };

/// A way to save. `folder` is where the file stands; what happens before the first call that names something
/// in it is no part of the save.
struct SaveUnderFire {
    std::string name;
    std::string folder;
    std::string file;
    std::function<void()> prepare;                         ///< puts everything back as it was before
    std::function<int()> run;                              ///< in a process of its own; answers a Told
    std::function<bool()> isSpoken = [] { return true; };  ///< whether a failure was told in words
    int leastRefused = 4;                                  ///< of the runs in which one call fails
    bool nextWaits = false;  ///< what a kill leaves may hold up the next save, which is then not tried
    /// Whether the content is the one of a save that was done; no content: there is no such file.
    std::function<bool(const std::optional<std::string>&)> isNew;
};

class UnderFire {
 public:
    explicit UnderFire(const SaveUnderFire& save) : save_(save) {}

    /// Returns the number of places at which it was killed.
    int killEverywhere() {
        prepare();
        const std::optional<std::string> old = now();
        int olds = 0;
        int places = 0;
        for (bool ended = false; !ended; ++places) {
            prepare();
            TracedChild child(save_.run);
            ended = !advance(child, places);
            child.kill();
            if (::testing::Test::HasFatalFailure()) return places;
            const auto found = now();
            EXPECT_TRUE(found == old || save_.isNew(found))
                << save_.name << ", killed at " << places << " holds " << found.value_or("nothing");
            if (found == old) ++olds;
            if (!save_.nextWaits) nextSaveIsWhole(places);
        }
        EXPECT_GE(olds, 5) << save_.name;
        EXPECT_GE(places, 15) << save_.name;
        // Each place costs a run: a save that looks at the reference database again and again is slow as
        // well.
        EXPECT_LE(places, 200) << save_.name;
        return places;
    }

    /// Each call fails with EIO, those that move or name what is on the disk with ENOSPC and EINTR too.
    /// Returns the number of calls that failed.
    int failEverywhere(int error) {
        prepare();
        const std::optional<std::string> old = now();
        int refused = 0;
        int calls = 0;
        for (bool ended = false; !ended; ++calls) {
            prepare();
            TracedChild child(save_.run);
            const auto stop = advance(child, calls, error == EIO ? anyCall : ofDisk);
            ended = !stop;
            if (stop) {
                child.answerInstead(-error);
                child.runToEnd();
            }
            check(old, child.exitStatus(), stop, calls);
            if (child.exitStatus() == NotStored) ++refused;
        }
        EXPECT_GE(calls, 15) << save_.name;
        if (error != EINTR) {
            EXPECT_GE(refused, save_.leastRefused) << save_.name;
        }
        return calls;
    }

 private:
    static constexpr int mostStops = 20'000;

    static bool anyCall(long) { return true; }
    static bool ofDisk(long call) {
        static const std::set<long> calls = {
            SYS_open,   SYS_openat,   SYS_close,     SYS_read,      SYS_pread64,   SYS_write,  SYS_pwrite64,
            SYS_writev, SYS_fsync,    SYS_fdatasync, SYS_ftruncate, SYS_fallocate, SYS_flock,  SYS_fcntl,
            SYS_rename, SYS_renameat, SYS_renameat2, SYS_link,      SYS_linkat,    SYS_unlink, SYS_unlinkat};
        return calls.contains(call);
    }
    void prepare() { save_.prepare(); }
    std::optional<std::string> now() const {
        if (!std::filesystem::exists(save_.file)) return std::nullopt;
        return TemporaryFolder::read(save_.file);
    }
    static bool namesFile(const TracedChild::Stop& stop, std::uint64_t& address) {
        switch (stop.call) {
            case SYS_openat:
            case SYS_newfstatat:
            case SYS_readlinkat:
            case SYS_faccessat:
                address = stop.arguments[1];
                return true;
            case SYS_open:
            case SYS_stat:
            case SYS_lstat:
            case SYS_readlink:
            case SYS_access:
                address = stop.arguments[0];
                return true;
            default:
                return false;
        }
    }
    bool begins(const TracedChild& child, const TracedChild::Stop& stop) const {
        std::uint64_t address = 0;
        return namesFile(stop, address) && child.text(address).starts_with(save_.folder);
    }
    /// Up to the entry of the save's call number `wanted`; nothing when it ends before.
    std::optional<TracedChild::Stop> advance(TracedChild& child, int wanted,
                                             bool (*counts)(long) = anyCall) const {
        bool begun = false;
        int seen = 0;
        int stops = 0;
        while (const auto stop = child.next()) {
            if (++stops > mostStops) {
                ADD_FAILURE() << save_.name << " hangs";
                return std::nullopt;
            }
            if (!stop->entry || TracedChild::ofMemory(stop->call)) continue;
            begun = begun || begins(child, *stop);
            if (begun && counts(stop->call) && seen++ == wanted) return stop;
        }
        return std::nullopt;
    }
    void check(const std::optional<std::string>& old, int told, const std::optional<TracedChild::Stop>& stop,
               int place) const {
        const std::string where = save_.name + ", call " + std::to_string(place) + ", number " +
                                  std::to_string(stop ? stop->call : -1);
        const auto found = now();
        if (told == Stored) {
            EXPECT_TRUE(save_.isNew(found)) << where;
        } else if (told == NotStored) {
            // A file that is in place may still be one that the program cannot speak for.
            EXPECT_TRUE(found == old) << where;
            const bool speaking = stop && stop->call == SYS_write && stop->arguments[0] == STDERR_FILENO;
            EXPECT_TRUE(speaking || save_.isSpoken()) << where;
        } else {
            ADD_FAILURE() << where << ": ended with " << told;
        }
    }
    /// What a killed save has left does not harm the next one, which removes it.
    void nextSaveIsWhole(int place) {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(save_.run());
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFEXITED(status) && save_.isNew(now())) << save_.name << ", after a kill at " << place;
        for (const auto& entry : std::filesystem::directory_iterator(save_.folder)) {
            EXPECT_NE(entry.path().extension(), ".tmp") << save_.name << ", after a kill at " << place;
        }
    }

    const SaveUnderFire& save_;
};

class SavesUnderFire : public ::testing::Test {
 protected:
    SavesUnderFire() { std::filesystem::create_directory(target); }
    void SetUp() override {
        if (!TracedChild::possible())
            GTEST_SKIP() << "NOT TESTED: this system does not let a process trace its own child";
        if (!TracedChild::canChangeCalls)
            GTEST_SKIP() << "NOT TESTED: the rig changes calls on x86-64 machines only";
    }
    void clear() const {
        for (const auto& entry : std::filesystem::directory_iterator(target))
            std::filesystem::remove_all(entry.path());
    }
    /// Of the file in the folder that is cleared.
    SaveUnderFire saveNamed(const std::string& name) const {
        SaveUnderFire save;
        save.name = name;
        save.folder = target;
        save.file = file;
        return save;
    }
    static void kill(const SaveUnderFire& save) { UnderFire(save).killEverywhere(); }
    static void fail(const SaveUnderFire& save) {
        for (const int error : {EIO, ENOSPC, EINTR}) {
            SCOPED_TRACE(error);
            UnderFire(save).failEverywhere(error);
        }
    }

    TemporaryFolder folder;
    std::string target = folder.file("target");
    std::string file = target + "/Street.ZQ4OA";
};

}  // namespace zentaq::testing
