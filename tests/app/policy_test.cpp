#include "app/policy.h"

#include <gtest/gtest.h>

#include <string>

namespace zentaq {
namespace {

class ResumeNextTest : public ::testing::Test {
 protected:
    bool ended = false;
    ResumeNext resumeNext{ended};
    std::string done;

    [[noreturn]] static bool fail() { throw TypeMismatch(); }
};

TEST_F(ResumeNextTest, AFailingStatementIsSkippedAndTheNextOneRuns) {
    EXPECT_FALSE(resumeNext.statement([&] {
        done += "a";
        fail();
        done += "never";
    }));
    EXPECT_TRUE(resumeNext.statement([&] { done += "b"; }));
    EXPECT_EQ(done, "ab");
}

TEST_F(ResumeNextTest, ABlockRunsWhenItsConditionHolds) {
    resumeNext.guarded([] { return true; }, [&] { done += "a"; });
    resumeNext.guarded([] { return false; }, [&] { done += "b"; });
    EXPECT_EQ(done, "a");
}

TEST_F(ResumeNextTest, ABlockRunsWhenItsConditionFails) {
    resumeNext.guarded([] { return fail(); }, [&] { done += "a"; });
    EXPECT_EQ(done, "a");
}

TEST_F(ResumeNextTest, OfTwoBlocksAFailingConditionRunsTheFirst) {
    const auto first = [&] { done += "1"; };
    const auto second = [&] { done += "2"; };
    resumeNext.guarded([] { return fail(); }, first, second);
    resumeNext.guarded([] { return false; }, first, second);
    resumeNext.guarded([] { return true; }, first, second);
    EXPECT_EQ(done, "121");
}

TEST_F(ResumeNextTest, AFailureInsideABlockIsSkippedToo) {
    resumeNext.guarded([] { return true; }, [] { fail(); });
    resumeNext.statement([&] { done += "next"; });
    EXPECT_EQ(done, "next");
}

TEST_F(ResumeNextTest, NothingRunsAfterTheEnd) {
    ended = true;
    EXPECT_FALSE(resumeNext.statement([&] { done += "a"; }));
    resumeNext.guarded([] { return true; }, [&] { done += "b"; });
    EXPECT_EQ(done, "");
}

}  // namespace
}  // namespace zentaq
