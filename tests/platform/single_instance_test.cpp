#include "platform/single_instance.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>
#include <string>

#include "platform/other_process.h"
#include "scoped_variable.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

/// A process of its own that claims a lock and lives on until it is killed.
class Claimant : public OtherProcess {
 public:
    explicit Claimant(
        const std::string& lockFile, const std::function<void()>& before = [] {})
        : OtherProcess([&](const Say& say) {
              before();
              const SingleInstance instance(lockFile);
              say(instance.anotherRuns() ? 'r' : instance.holds() ? 'h' : 'n');
              for (;;) ::pause();
          }) {}
    bool claimed() const { return answer_ == 'h'; }
    bool refused() const { return answer_ == 'r'; }

 private:
    char answer_ = said();
};

class SingleInstanceTest : public testing::Test {
 protected:
    TemporaryFolder folder;
    std::string lock = folder.path("zentaq4.lock");
};

TEST_F(SingleInstanceTest, TheFirstProcessRunsAndTheSecondIsRefused) {
    Claimant first(lock);
    ASSERT_TRUE(first.claimed());
    Claimant second(lock);
    EXPECT_TRUE(second.refused());
    EXPECT_TRUE(first.runs());
    second.crash();
    EXPECT_TRUE(SingleInstance(lock).anotherRuns()) << "the end of the second leaves the first its lock";
}

TEST_F(SingleInstanceTest, ACrashFreesTheLock) {
    Claimant first(lock);
    ASSERT_TRUE(first.claimed());
    first.crash();
    const SingleInstance next(lock);
    EXPECT_FALSE(next.anotherRuns());
    EXPECT_TRUE(next.holds());
}

TEST_F(SingleInstanceTest, AnOrderlyEndFreesTheLock) {
    { const SingleInstance first(lock); }
    EXPECT_TRUE(SingleInstance(lock).holds());
}

TEST_F(SingleInstanceTest, ALockFileLeftBehindStopsNobodyWhateverItSays) {
    // The number of a process that runs: a number used again must not look like an earlier instance.
    const std::string living = std::to_string(getpid()) + "\nzentaq4\nhost\n";
    for (const std::string& content :
         {std::string(), living, std::string("999999999"), std::string("\0\xFF", 2)}) {
        folder.write("zentaq4.lock", content);
        const SingleInstance instance(lock);
        EXPECT_FALSE(instance.anotherRuns());
        EXPECT_TRUE(instance.holds());
    }
}

TEST_F(SingleInstanceTest, AHelperProgramDoesNotInheritTheLock) {
    Claimant first(lock, [] {});
    ASSERT_TRUE(first.claimed());
    first.crash();
    pid_t helper = 0;
    {
        const SingleInstance instance(lock);
        ASSERT_TRUE(instance.holds());
        helper = fork();
        if (helper == 0) {
            execl("/bin/sleep", "sleep", "30", nullptr);
            _exit(1);
        }
        // The lock is out of the helper's hands as soon as it has become the other program.
        const std::string name = "/proc/" + std::to_string(helper) + "/comm";
        while (TemporaryFolder::read(name) != "sleep\n") usleep(1000);
    }
    EXPECT_TRUE(SingleInstance(lock).holds());
    kill(helper, SIGKILL);
    waitpid(helper, nullptr, 0);
}

TEST_F(SingleInstanceTest, AMissingFolderStopsNobody) {
    const SingleInstance instance(folder.path("missing/zentaq4.lock"));
    EXPECT_FALSE(instance.anotherRuns());
    EXPECT_FALSE(instance.holds());
}

TEST_F(SingleInstanceTest, AFolderInPlaceOfTheFileStopsNobody) {
    std::filesystem::create_directory(lock);
    EXPECT_FALSE(SingleInstance(lock).anotherRuns());
}

TEST_F(SingleInstanceTest, AnUnwritableFolderStopsNobody) {
    std::filesystem::create_directory(folder.path("closed"));
    ASSERT_EQ(chmod(folder.path("closed").c_str(), 0500), 0);
    constexpr uid_t somebody = 65534;  // an administrator may write anywhere
    Claimant other(folder.path("closed/zentaq4.lock"), [] {
        if (getuid() == 0 && setuid(somebody) != 0) _exit(1);
    });
    EXPECT_FALSE(other.refused());
    EXPECT_TRUE(other.runs());
}

TEST_F(SingleInstanceTest, ALinkThatSomebodyPutThereIsNotFollowed) {
    std::filesystem::create_symlink(folder.path("victim"), lock);
    EXPECT_FALSE(SingleInstance(lock).anotherRuns());
    EXPECT_FALSE(std::filesystem::exists(folder.path("victim")));
}

/// The runtime folder of the test's own.
class LockOfUser : public SingleInstanceTest {
 protected:
    ScopedVariable runtimeFolder{"XDG_RUNTIME_DIR", folder.path().c_str()};
};

TEST_F(LockOfUser, LiesInTheRuntimeFolderWhichIsMade) {
    const SingleInstance instance;
    EXPECT_TRUE(instance.holds());
    EXPECT_TRUE(std::filesystem::exists(folder.path("zentaq4/zentaq4.lock")));
    Claimant other(folder.path("zentaq4/zentaq4.lock"));
    EXPECT_TRUE(other.refused());
}

TEST_F(LockOfUser, TwoUsersBothRun) {
    const SingleInstance mine;
    ASSERT_TRUE(mine.holds());
    const TemporaryFolder folderOfTheOther;
    setenv("XDG_RUNTIME_DIR", folderOfTheOther.path().c_str(), 1);
    const SingleInstance theirs;
    EXPECT_TRUE(theirs.holds());
}

/// A runtime folder that does not count, and a home.
class LockInHome : public LockOfUser {
 protected:
    LockInHome() { chmod(folder.path().c_str(), 0777); }

    TemporaryFolder home;
    ScopedVariable homeOfUser{"HOME", home.path().c_str()};
    std::string homeLock = home.path(".local/state/zentaq4/zentaq4.lock");
};

TEST_F(LockInHome, HoldsWhereTheRuntimeFolderIsOpenToOthers) {
    const SingleInstance instance;
    EXPECT_TRUE(instance.holds());
    EXPECT_FALSE(std::filesystem::exists(folder.path("zentaq4/zentaq4.lock")));
    Claimant other(homeLock);
    EXPECT_TRUE(other.refused());
}

TEST_F(LockInHome, RefusesTheSecondProcessThere) {
    std::filesystem::create_directories(home.path(".local/state/zentaq4"));
    Claimant first(homeLock);
    ASSERT_TRUE(first.claimed());
    EXPECT_TRUE(SingleInstance().anotherRuns());
}

TEST_F(LockInHome, HoldsWhereTheRuntimeFolderCannotBeMade) {
    setenv("XDG_RUNTIME_DIR", folder.write("a file", "x").c_str(), 1);
    const SingleInstance instance;
    EXPECT_TRUE(instance.holds());
    EXPECT_TRUE(std::filesystem::exists(homeLock));
}

TEST_F(LockInHome, NeitherRuntimeFolderNorHomeStopsNobody) {
    setenv("HOME", folder.write("no home", "x").c_str(), 1);
    const SingleInstance instance;
    EXPECT_FALSE(instance.anotherRuns());
    EXPECT_FALSE(instance.holds());
}

}  // namespace
}  // namespace zentaq
