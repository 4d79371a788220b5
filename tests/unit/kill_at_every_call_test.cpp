// Saves that are killed at each of their system calls, and saves of which each call fails: the target is the
// old file or the new one, whole.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "base/errors.h"
#include "unit/killing_rig.h"
#include "unit/recording_host.h"
#include "unit/safe_file.h"
#include "unit/unit.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::AnyOf;
using ::testing::Eq;

/// A way to save, the file before it and the file behind it. No old content: there was no file.
struct Save {
    std::string name;
    std::function<void(const std::string& path)> run;
    std::optional<std::string> oldContent;
    std::string newContent;
};

std::string repeated(std::string_view text, int count) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
}

void saveCalibration(const std::string& path) {
    RecordingHost host;
    Unit unit(orbaKind(), host);
    unit.FW_Release(5);
    for (int i = 600; i < 2000; ++i) unit.AssignDirectIndex(static_cast<float>(i), i);
    unit.BinFile(path);
    unit.SaveFile();
}

std::string savedCalibration() {
    const TemporaryFolder folder;
    const std::string path = folder.file("Tune.ZQ4OA");
    saveCalibration(path);
    return contentOf(path);
}

std::vector<Save> saves() {
    const std::string fresh = repeated("new content. ", 900);
    const std::string old = repeated("old content of a file, longer than the new one. ", 500);
    return {
        {"over an old file", [=](const std::string& path) { writeFileSafely(path, fresh); }, old, fresh},
        {"to a new name", [=](const std::string& path) { writeFileSafely(path, fresh); }, {}, fresh},
        {"over the start of a longer file",
         [=](const std::string& path) { writeFileStartSafely(path, fresh); }, old,
         fresh + old.substr(fresh.size())},
        {"of a calibration", saveCalibration, std::string(11324, 'x') + "surplus",
         savedCalibration() + "surplus"},
    };
}

/// The file as it is now; nothing for no file.
std::optional<std::string> now(const std::string& path) {
    if (!std::filesystem::exists(path)) return std::nullopt;
    return contentOf(path);
}

void putBack(const Save& save, const TemporaryFolder& folder, const std::string& path) {
    for (const std::string& name : folder.names()) std::filesystem::remove(folder.file(name));
    if (save.oldContent) writeContent(path, *save.oldContent);
}

enum Ending { Done = 0, Refused = 1, Other = 2 };

TracedChild traced(const Save& save, const std::string& path) {
    return TracedChild([&] {
        try {
            save.run(path);
            return Done;
        } catch (const FileError&) {
            return Refused;
        } catch (...) {
            return Other;
        }
    });
}

constexpr int mostStops = 2000;  ///< a save that goes on for longer hangs
constexpr const char* noTracing = "NOT TESTED: this system does not let a process trace its own child";

TEST(AKilledSave, LeavesTheOldFileOrTheNewOneWholeWhateverCallItIsKilledAt) {
    if (!TracedChild::possible()) GTEST_SKIP() << noTracing;
    for (const Save& save : saves()) {
        SCOPED_TRACE(save.name);
        const TemporaryFolder folder;
        const std::string path = folder.file("Tune.ZQ4OA");
        int olds = 0;
        int news = 0;
        bool ended = false;
        for (int kill = 1; !ended; ++kill) {
            ASSERT_LT(kill, mostStops);
            putBack(save, folder, path);
            TracedChild child = traced(save, path);
            for (int i = 0; i < kill && !ended; ++i) ended = !child.next();
            child.kill();
            ASSERT_THAT(now(path), AnyOf(Eq(save.oldContent), Eq(save.newContent))) << "stop " << kill;
            (now(path) == save.oldContent ? olds : news) += 1;
            ASSERT_LE(folder.names().size(), 2U) << "stop " << kill;

            // What it has left does not harm the next one.
            if (save.oldContent) writeContent(path, *save.oldContent);
            ASSERT_NO_THROW(save.run(path)) << "stop " << kill;
            ASSERT_EQ(now(path), save.newContent) << "stop " << kill;
            ASSERT_EQ(folder.names().size(), 1U) << "stop " << kill;
        }
        // Twice for each of: look, make, write, flush, close, rename, and flush the folder.
        EXPECT_GE(olds, 12);
        EXPECT_GE(news, 3);
    }
}

/// The calls of a save that a disk can make fail, in order.
std::vector<long> callsOf(const Save& save) {
    const TemporaryFolder folder;
    const std::string path = folder.file("Tune.ZQ4OA");
    putBack(save, folder, path);
    TracedChild child = traced(save, path);
    std::vector<long> calls;
    while (const auto stop = child.next())
        if (stop->entry && !TracedChild::ofMemory(stop->call)) calls.push_back(stop->call);
    EXPECT_EQ(child.exitStatus(), Done);
    return calls;
}

/// Runs a save up to the entry of its nth such call, does `fault` there and lets it end.
int endingWithFault(TracedChild& child, std::size_t nth, const std::function<void(TracedChild&)>& fault) {
    std::size_t seen = 0;
    int stops = 0;
    while (const auto stop = child.next()) {
        if (++stops > mostStops) return -SIGALRM;
        if (!stop->entry || TracedChild::ofMemory(stop->call)) continue;
        if (seen++ == nth) fault(child);
    }
    return child.exitStatus();
}

/// Each call of each save meets the fault once.
void checkFaultAtEveryCall(
    const std::function<void(TracedChild&)>& fault,
    const std::function<bool(long call)>& isMet = [](long) { return true; }, bool mustSucceed = false) {
    for (const Save& save : saves()) {
        SCOPED_TRACE(save.name);
        const std::vector<long> calls = callsOf(save);
        ASSERT_GE(calls.size(), 7U);
        int refused = 0;
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (!isMet(calls[i])) continue;
            const TemporaryFolder folder;
            const std::string path = folder.file("Tune.ZQ4OA");
            putBack(save, folder, path);
            TracedChild child = traced(save, path);
            const int ending = endingWithFault(child, i, fault);
            const std::string where = "call " + std::to_string(i) + ", number " + std::to_string(calls[i]);
            ASSERT_THAT(ending, AnyOf(Eq(Done), Eq(Refused))) << where;
            if (mustSucceed) {
                ASSERT_EQ(ending, Done) << where;
            }
            ASSERT_EQ(now(path), ending == Done ? save.newContent : save.oldContent) << where;
            const std::size_t files = now(path) ? 1 : 0;
            ASSERT_EQ(folder.names().size(), files) << where;
            refused += ending == Refused ? 1 : 0;
        }
        if (!mustSucceed) {
            EXPECT_GE(refused, 4);
        }
    }
}

bool isTransfer(long call) {
    return call == SYS_read || call == SYS_write;
}

class ASaveWithAFault : public ::testing::Test {
 protected:
    void SetUp() override {
        if (!TracedChild::possible()) GTEST_SKIP() << noTracing;
        if (!TracedChild::canChangeCalls)
            GTEST_SKIP() << "NOT TESTED: the rig changes calls on x86-64 machines only";
    }
    static std::function<void(TracedChild&)> answer(std::int64_t value) {
        return [=](TracedChild& child) { child.answerInstead(value); };
    }
};

TEST_F(ASaveWithAFault, ADiskErrorAtAnyCallLeavesTheOldFileAndTellsOrTheNewOne) {
    checkFaultAtEveryCall(answer(-EIO));
}

TEST_F(ASaveWithAFault, AFullDiskAtAnyCallLeavesTheOldFileAndTellsOrTheNewOne) {
    checkFaultAtEveryCall(answer(-ENOSPC));
}

TEST_F(ASaveWithAFault, ARefusalAtAnyCallLeavesTheOldFileAndTellsOrTheNewOne) {
    checkFaultAtEveryCall(answer(-EACCES));
}

TEST_F(ASaveWithAFault, ASignalAtACallThatMayWaitDoesNotEndTheSave) {
    checkFaultAtEveryCall(
        answer(-EINTR),
        [](long call) {
            return isTransfer(call) || call == SYS_openat || call == SYS_fsync || call == SYS_close;
        },
        true);
}

TEST_F(ASaveWithAFault, ATransferOfFewBytesIsGoneOnWith) {
    checkFaultAtEveryCall([](TracedChild& child) { child.moveAtMost(7); }, isTransfer, true);
}

TEST_F(ASaveWithAFault, AWriteThatTakesNothingIsAnErrorAndNotAnEndlessWait) {
    for (const Save& save : saves()) {
        SCOPED_TRACE(save.name);
        const TemporaryFolder folder;
        const std::string path = folder.file("Tune.ZQ4OA");
        putBack(save, folder, path);
        TracedChild child = traced(save, path);
        int writes = 0;
        int stops = 0;
        while (const auto stop = child.next()) {
            ASSERT_LT(++stops, mostStops);
            if (!stop->entry || stop->call != SYS_write) continue;
            ++writes;
            child.answerInstead(0);
        }
        EXPECT_EQ(child.exitStatus(), Refused);
        EXPECT_GE(writes, 1);  // sanitizers write as well
        EXPECT_EQ(now(path), save.oldContent);
    }
}

}  // namespace
}  // namespace zentaq::testing
