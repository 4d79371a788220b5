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

/// What a file system does not do, and whether another program is quicker behind the last of these calls.
struct NewFileCase {
    const char* name;
    std::vector<std::pair<long, std::optional<int>>> calls;  ///< a call with an answer is not made
    bool isTaken = false;
};

class NewFileOn : public NewFile, public ::testing::WithParamInterface<NewFileCase> {};

TEST_P(NewFileOn, IsMadeUnlessAnotherProgramIsQuicker) {
    const auto& [name, calls, isTaken] = GetParam();
    TracedChild child(write);
    for (const auto& [call, answer] : calls) {
        ASSERT_TRUE(advanceTo(child, call));
        if (answer) child.answerInstead(*answer);
    }
    if (isTaken) std::ofstream(path) << "another's";
    child.runToEnd();
    EXPECT_EQ(child.exitStatus(), isTaken ? WasTaken : Wrote);
    EXPECT_EQ(TemporaryFolder::read(path), isTaken ? "another's" : "new");
    EXPECT_THAT(names(), ElementsAre("Tune.ZQ4OA"));
}

const std::pair<long, std::optional<int>> noLook = {SYS_renameat2, -EINVAL};
const std::pair<long, std::optional<int>> noLinks = {SYS_link, -EPERM};

INSTANTIATE_TEST_SUITE_P(
    FileSystems, NewFileOn,
    ::testing::Values(NewFileCase{"UsualAndIsTaken", {{SYS_renameat2, {}}}, true},
                      NewFileCase{"RenamesWithoutLooking", {noLook}},
                      NewFileCase{"RenamesWithoutLookingAndIsTaken", {noLook, {SYS_link, {}}}, true},
                      NewFileCase{"WithoutLinks", {noLook, noLinks}},
                      NewFileCase{"WithoutLinksAndIsTaken", {noLook, noLinks}, true}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace zentaq::testing
