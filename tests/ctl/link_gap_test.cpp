// The gap in front of each line of a firmware, measured at the unit's end of a terminal.
#include "ctl/link_fixture.h"
#include "windows/timed_unit.h"

namespace zentaq {
namespace {

using ZentaqctlGaps = ZentaqctlOnLink;

TEST_F(ZentaqctlGaps, LinesNeverFollowAnAnswerBeforeTenMillisecondsThoughTheProgramIsStoppedAgainAndAgain) {
    const std::string firmware = makeFirmware("L", "ZQL-707100");
    constexpr int lines = 100;
    TimedUnit unit(lines);
    const int out = ::open(folder.file("out").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    Running program(ZENTAQ_APP_DIR "/zentaqctl",
                    {"firmware", "--yes", "--unit-without-firmware", "L", "--port", unit.path(), firmware},
                    out, out);
    // It is looked for first, which takes some seconds; the pauses begin with the lines.
    for (int ms = 0; ms < 20'000 && unit.gaps().empty(); ++ms) ::poll(nullptr, 0, 1);
    for (int pause = 0; pause < 2000 && !unit.done(); ++pause) {
        program.signal(SIGSTOP);
        ::poll(nullptr, 0, 1 + pause * 7 % 50);
        program.signal(SIGCONT);
        ::poll(nullptr, 0, 3 + pause % 11);
    }
    EXPECT_EQ(program.wait(), 1) << "the unit refused a line";
    ::close(out);
    ASSERT_GT(unit.gaps().size(), static_cast<std::size_t>(lines)) << contentOf(folder.file("out"));
    EXPECT_GE(shortestOf(unit.gaps()), shortestGapUs);
}

}  // namespace
}  // namespace zentaq
