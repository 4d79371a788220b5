// Many changes of one file at the same time: each is in the file when all have ended.
#include <deque>
#include <optional>

#include "ctl/link_fixture.h"
#include "unit/file_lock.h"

namespace zentaq {
namespace {

class ParallelChanges : public Zentaqctl {
 protected:
    /// Starts all at once; each must succeed.
    void runAll(const std::vector<Words>& commands) {
        const int sink = ::open(folder.file("output").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        std::deque<Running> programs;
        for (const Words& words : commands) programs.emplace_back(ZENTAQ_APP_DIR "/zentaqctl", words, sink, sink);
        for (Running& program : programs) EXPECT_EQ(program.wait(), 0) << contentOf(folder.file("output"));
        ::close(sink);
    }
};

TEST_F(ParallelChanges, OfTwoMembersLoseNoneInSixtyPairs) {
    for (int pair = 0; pair < 60; ++pair) {
        const float limit = static_cast<float>(5000 + pair);
        const float knock = static_cast<float>(20 + pair % 50);
        runAll({{"set", file, "REV_Limiter", std::to_string(5000 + pair)},
                {"set", file, "KNK_MIN", std::to_string(20 + pair % 50)}});
        ASSERT_EQ(cellOf(file, 58), limit) << "pair " << pair;
        ASSERT_EQ(cellOf(file, 34), knock) << "pair " << pair;
    }
}

TEST_F(ParallelChanges, OfSixteenCellsLoseNone) {
    std::vector<Words> commands;
    for (int i = 0; i < 16; ++i) commands.push_back({"cell", file, std::to_string(912 + i), std::to_string(i + 1)});
    runAll(commands);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(cellOf(file, 912 + i), static_cast<float>(i + 1)) << i;
}

TEST_F(ParallelChanges, WaitForTheOneThatIsBeingMade) {
    const int sink = ::open(folder.file("output").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    const std::string before = contentOf(file);
    std::optional<FileLock> other(std::in_place, file);
    Running set(ZENTAQ_APP_DIR "/zentaqctl", {"set", file, "REV_Limiter", "6000"}, sink, sink);
    std::string changed = before;
    const float knock = 77;
    std::memcpy(changed.data() + 12 + 4 * 34, &knock, sizeof knock);
    writeFile(file, changed);  // before it reads
    other.reset();
    EXPECT_EQ(set.wait(), 0);
    EXPECT_EQ(cellOf(file, 34), 77);
    EXPECT_EQ(cellOf(file, 58), 6000);
    ::close(sink);
}

}  // namespace
}  // namespace zentaq
