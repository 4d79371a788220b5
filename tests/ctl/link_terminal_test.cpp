// What a user does at the terminal in the middle of a transfer: nothing of it leaves a unit with half a
// program, and what does not come back can be ended.
#include <sys/ioctl.h>

#include "ctl/link_fixture.h"

namespace zentaq {
namespace {

constexpr const char* ctrlS = "\x13";
constexpr const char* ctrlQ = "\x11";

class ZentaqctlAtATerminal : public ZentaqctlOnLink {
 protected:
    void startReady() { startUnit("A", {"--upgrade-mode", "--memory", memory}); }
    Words upgrade() const { return {"firmware", "--yes", "--port", port, firmware}; }
    /// Waits until the unit has written down that it is so; a run takes a few seconds.
    bool becomes(const std::string& state) const {
        for (int ms = 0; ms < 30'000; ms += 10) {
            const std::string told = memory + ".firmware";
            if (fs::exists(told) && contentOf(told).starts_with(state)) return true;
            ::poll(nullptr, 0, 10);
        }
        return false;
    }

    static bool stops(OnTerminal& terminal) {
        for (int ms = 0; ms < 10'000; ms += 10) {
            if (terminal.program().stopped()) return true;
            ::poll(nullptr, 0, 10);
        }
        return false;
    }

    std::string firmware = makeFirmware("A", "ZQA-505100");
};

TEST_F(ZentaqctlAtATerminal, OneThatIsStoppedDoesNotStopTheUpgrade) {
    startReady();
    OnTerminal terminal(upgrade(), folder.file("out"));
    terminal.until("10%");
    terminal.type(ctrlS);
    EXPECT_TRUE(becomes("programmed"));
    terminal.type(ctrlQ);
    EXPECT_EQ(terminal.program().wait(), 0);
}

TEST_F(ZentaqctlAtATerminal, CtrlZWaitsUntilTheUnitIsDone) {
    startReady();
    OnTerminal terminal(upgrade(), folder.file("out"));
    terminal.until("10%");
    terminal.program().signal(SIGTSTP);
    EXPECT_TRUE(becomes("programmed"));
    EXPECT_TRUE(stops(terminal)) << "and takes effect then";
    terminal.program().signal(SIGCONT);
    EXPECT_EQ(terminal.program().wait(), 0);
}

TEST_F(ZentaqctlAtATerminal, OutputInTheBackgroundStopsNoProgramming) {
    startUnit("A", {"--memory", memory});
    OnTerminal terminal({"program", "--port", port, file}, folder.file("out"));
    terminal.until("10%");
    terminal.program().signal(SIGTTOU);
    terminal.program().signal(SIGTSTP);
    EXPECT_THAT(terminal.until("99%"), HasSubstr("99%"));
    EXPECT_TRUE(stops(terminal)) << "behind the transfer";
    terminal.program().signal(SIGCONT);
    EXPECT_EQ(terminal.program().wait(), 0);
    EXPECT_THAT(contentOf(folder.file("out")), HasSubstr("You have successfully programmed your ORB unit."));
}

TEST_F(ZentaqctlAtATerminal, CtrlBackslashIsAnsweredLikeCtrlC) {
    startReady();
    OnTerminal terminal(upgrade(), folder.file("out"));
    terminal.until("10%");
    terminal.program().signal(SIGQUIT);
    EXPECT_THAT(terminal.until("then."), HasSubstr("Press again within 3 s to break off"));
    EXPECT_EQ(terminal.program().wait(), 0);
    EXPECT_TRUE(becomes("programmed"));
}

TEST_F(ZentaqctlAtATerminal, ASignalEndsAMonitorWhoseReaderHasStopped) {
    startUnit("A");
    Piped monitor(ZENTAQ_APP_DIR "/zentaqctl", {"monitor", "--csv", "--port", port});
    ASSERT_GT(::fcntl(monitor.out, F_SETPIPE_SZ, 4096), 0);
    // It writes once a second at least: a pipe whose content stays as it is takes no more.
    int waiting = 0;
    int before = -1;
    for (int wait = 0; wait < 10 && (waiting == 0 || waiting != before); ++wait) {
        before = waiting;
        ::poll(nullptr, 0, 2500);
        ::ioctl(monitor.out, FIONREAD, &waiting);
    }
    ASSERT_EQ(waiting, before);
    monitor.running->signal(SIGINT);
    EXPECT_EQ(monitor.running->endingSignal(), SIGINT);
}

}  // namespace
}  // namespace zentaq
