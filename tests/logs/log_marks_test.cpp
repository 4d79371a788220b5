// Markers beside a log.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "logs/log_marks.h"
#include "temporary_folder.h"

namespace zentaq {
namespace {

using testing::ElementsAre;

TEST(LogMarks, ComeBackInTheOrderOfTheirTimes) {
    const TemporaryFolder folder;
    const std::string log = folder.file("run.dat");
    writeMarks(log, {{2.5, "full throttle"}, {1.25, "start\tof\nlap"}});
    EXPECT_THAT(readMarks(log),
                ElementsAre(LogMark{1.25, "start\\tof\\nlap"}, LogMark{2.5, "full throttle"}));
}

TEST(LogMarks, WithoutMarkersThereIsNoFile) {
    const TemporaryFolder folder;
    const std::string log = folder.file("run.dat");
    writeMarks(log, {{1, "a"}});
    writeMarks(log, {});
    EXPECT_FALSE(std::filesystem::exists(marksFileOf(log)));
    EXPECT_TRUE(readMarks(log).empty());
    writeMarks(log, {});
}

TEST(LogMarks, ALineThatIsNoneIsPassedOver) {
    EXPECT_THAT(marksIn("1e308\tendless\n-1e300\tbefore\n1.5\tgood\n"), ElementsAre(LogMark{1.5, "good"}));
    EXPECT_THAT(marksIn("hello\n1.5\tgood\nx\tbad\n\n"), ElementsAre(LogMark{1.5, "good"}));
}

}  // namespace
}  // namespace zentaq
