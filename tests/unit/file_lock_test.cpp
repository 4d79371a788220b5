// Two programs that change one file: the second one waits for the first, and reads what it has left.
#include "unit/file_lock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <filesystem>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "base/errors.h"
#include "base/file_reader.h"
#include "unit/child_apart.h"
#include "unit/safe_file.h"
#include "unit/unit_fixture.h"

namespace zentaq::testing {
namespace {

using ::testing::StartsWith;
using namespace std::chrono_literals;

class AFileLock : public ::testing::Test {
 protected:
    TemporaryFolder folder;
    std::string path = folder.write("Tune.ZQ4OA", "0");

    std::string tried(const std::string& file) {
        return outcomeOf([&] { const FileLock lock(file, 0ms); });
    }
};

TEST_F(AFileLock, KeepsAnotherOneOutUntilItIsGone) {
    std::optional<FileLock> first(std::in_place, path, 0ms);
    EXPECT_EQ(tried(path), "FileError: Cannot write " + path +
                               ": another program has been changing it for a while; try again");
    first.reset();
    EXPECT_EQ(tried(path), "done");
}

TEST_F(AFileLock, HoldsForAnotherNameOfTheFileAndForNoOtherFile) {
    std::filesystem::create_symlink("Tune.ZQ4OA", folder.file("Link"));
    std::filesystem::create_hard_link(path, folder.file("Twin"));
    const FileLock first(path, 0ms);
    EXPECT_THAT(tried(folder.file("Link")), StartsWith("FileError"));
    EXPECT_THAT(tried(folder.file("Twin")), StartsWith("FileError"));
    EXPECT_EQ(tried(folder.write("Other", "")), "done");
}

TEST_F(AFileLock, IsNotNeededForWhatIsNoFile) {
    EXPECT_EQ(tried(folder.file("none")), "done");
    EXPECT_EQ(tried(folder.file("no/folder/none")), "done");
    ASSERT_EQ(::mkfifo(folder.file("pipe").c_str(), 0600), 0);
    EXPECT_EQ(tried(folder.file("pipe")), "done");
}

TEST_F(AFileLock, OfAFileThatWasReplacedMeanwhileIsTheLockOfItsSuccessor) {
    std::optional<FileLock> first(std::in_place, path, 0ms);
    std::atomic<bool> waits = false;
    std::string read;
    std::thread second([&] {
        waits = true;
        const FileLock lock(path);
        read = readFile(path, limits::calibration);
        writeFileSafely(path, read + "2");
    });
    while (!waits) std::this_thread::yield();
    writeFileSafely(path, "1");
    std::optional<FileLock> third;  // of the new file, while the second one waits for the old one
    skipFailing([&] { third.emplace(path, 0ms); });
    first.reset();
    if (third) {
        writeFileSafely(path, readFile(path, limits::calibration) + "3");
        third.reset();
    }
    second.join();
    EXPECT_THAT(contentOf(path), ::testing::AnyOf("132", "12"));
}

TEST_F(AFileLock, OfManyAtOnceLosesNoChange) {
    constexpr int writers = 4;
    constexpr int changes = 50;
    std::vector<std::thread> threads;
    for (int i = 0; i < writers; ++i) {
        threads.emplace_back([&] {
            for (int change = 0; change < changes; ++change) {
                const FileLock lock(path);
                writeFileSafely(path, std::to_string(std::stoi(readFile(path, limits::calibration)) + 1));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(contentOf(path), std::to_string(writers * changes));
    EXPECT_EQ(folder.names().size(), 1U);
}

}  // namespace
}  // namespace zentaq::testing
