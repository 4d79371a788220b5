// Two programs and one unit: a window program that wants the port breaks nothing of what zentaqctl does
// there.
#include "system/contended_port.h"

#include <gtest/gtest.h>

namespace zentaq {
namespace {

class TwoPrograms : public testing::Test {
 protected:
    int argc_ = 1;
    std::string name_ = "contended";
    char* argv_[2] = {name_.data(), nullptr};
    QApplication application{argc_, argv_};
    ContendedPort contended{application};

    static void expectNoneFailed(const ContendedPort::Outcomes& all, int count) {
        RecordProperty("unheard", all.unheard);
        EXPECT_EQ(all.failed, 0) << all.firstFailure;
        EXPECT_EQ(all.done + all.refused, count) << all.unheard << " were not heard through the terminal";
        EXPECT_GT(all.done, 0) << "all were refused";
    }
};

TEST_F(TwoPrograms, AFirmwareIsWholeThoughAWindowProgramWantsThePort) {
    ASSERT_TRUE(contended.ready());
    expectNoneFailed(contended.firmware(3), 3);
    EXPECT_GT(contended.tries(), 100);
}

TEST_F(TwoPrograms, ACalibrationIsWholeThoughAWindowProgramWantsThePort) {
    ASSERT_TRUE(contended.ready());
    expectNoneFailed(contended.program(5), 5);
    EXPECT_GT(contended.tries(), 100);
}

}  // namespace
}  // namespace zentaq
