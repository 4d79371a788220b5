// A file that is made where nothing stands: of two programs that take one name the first one has it.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "temporary_folder.h"
#include "unit/killing_rig.h"
#include "unit/safe_file.h"

namespace zentaq::testing {
namespace {

using ::testing::ElementsAre;

class NewFile : public ::testing::Test {
 protected:
    enum Answer { Wrote = 0, WasTaken = 1 };

    void SetUp() override {
        if (!TracedChild::possible())
            GTEST_SKIP() << "NOT TESTED: this system does not let a process trace its own child";
        if (!TracedChild::canChangeCalls)
            GTEST_SKIP() << "NOT TESTED: the rig changes calls on x86-64 machines only";
    }
    /// Up to the entry of a call; false where the child does not make it.
    static bool advanceTo(TracedChild& child, long call) {
        while (const auto stop = child.next()) {
            if (stop->entry && stop->call == call) return true;
        }
        return false;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> all;
        for (const auto& entry : std::filesystem::directory_iterator(target))
            all.push_back(entry.path().filename());
        return all;
    }

    TemporaryFolder folder;
    std::string target = [this] {
        std::filesystem::create_directory(folder.file("target"));
        return folder.file("target");
    }();
    std::string path = target + "/Tune.ZQ4OA";
    std::function<int()> write = [this] { return writeNewFileSafely(path, "new") ? Wrote : WasTaken; };
};

TEST_F(NewFile, IsMadeWhereNothingStands) {
    EXPECT_TRUE(writeNewFileSafely(path, "new"));
    EXPECT_EQ(TemporaryFolder::read(path), "new");
    EXPECT_THAT(names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(NewFile, LeavesWhatStandsThere) {
    std::ofstream(path) << "another's";
    EXPECT_FALSE(writeNewFileSafely(path, "new"));
    EXPECT_EQ(TemporaryFolder::read(path), "another's");
    EXPECT_THAT(names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(NewFile, LeavesWhatIsMadeThereAtTheLastMoment) {
    TracedChild child(write);
    ASSERT_TRUE(advanceTo(child, SYS_renameat2));
    std::ofstream(path) << "another's";
    child.runToEnd();
    EXPECT_EQ(child.exitStatus(), WasTaken);
    EXPECT_EQ(TemporaryFolder::read(path), "another's");
    EXPECT_THAT(names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(NewFile, IsMadeOnAFileSystemThatRenamesWithoutLookingAsWell) {
    TracedChild child(write);
    ASSERT_TRUE(advanceTo(child, SYS_renameat2));
    child.answerInstead(-EINVAL);
    child.runToEnd();
    EXPECT_EQ(child.exitStatus(), Wrote);
    EXPECT_EQ(TemporaryFolder::read(path), "new");
    EXPECT_THAT(names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(NewFile, LeavesWhatIsMadeThereAtTheLastMomentOnSuchAFileSystem) {
    TracedChild child(write);
    ASSERT_TRUE(advanceTo(child, SYS_renameat2));
    child.answerInstead(-EINVAL);
    ASSERT_TRUE(advanceTo(child, SYS_link));
    std::ofstream(path) << "another's";
    child.runToEnd();
    EXPECT_EQ(child.exitStatus(), WasTaken);
    EXPECT_EQ(TemporaryFolder::read(path), "another's");
    EXPECT_THAT(names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(NewFile, IsMadeOnAFileSystemWithoutLinksAsWell) {
    TracedChild child(write);
    ASSERT_TRUE(advanceTo(child, SYS_renameat2));
    child.answerInstead(-EINVAL);
    ASSERT_TRUE(advanceTo(child, SYS_link));
    child.answerInstead(-EPERM);
    child.runToEnd();
    EXPECT_EQ(child.exitStatus(), Wrote);
    EXPECT_EQ(TemporaryFolder::read(path), "new");
    EXPECT_THAT(names(), ElementsAre("Tune.ZQ4OA"));
}

TEST_F(NewFile, LeavesWhatIsMadeThereAtTheLastMomentOnAFileSystemWithoutLinks) {
    TracedChild child(write);
    ASSERT_TRUE(advanceTo(child, SYS_renameat2));
    child.answerInstead(-EINVAL);
    ASSERT_TRUE(advanceTo(child, SYS_link));
    child.answerInstead(-EPERM);
    std::ofstream(path) << "another's";
    child.runToEnd();
    EXPECT_EQ(child.exitStatus(), WasTaken);
    EXPECT_EQ(TemporaryFolder::read(path), "another's");
    EXPECT_THAT(names(), ElementsAre("Tune.ZQ4OA"));
}

}  // namespace
}  // namespace zentaq::testing
