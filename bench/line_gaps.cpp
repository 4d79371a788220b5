// How long a unit is left alone in front of each line of a transfer, measured at its own end of a terminal:
// the line loop of the windows and that of zentaqctl, each in a process of its own that is stopped for 1 to
// 50 ms again and again, while others keep every processor busy.
// The aim: of 10,000 lines none comes less than 9.5 ms behind the answer to the one before. (zentaq-sim, the
// third program, answers lines and sends none.)
//
//   line_gaps [LINES]
#include <sys/wait.h>

#include <QCoreApplication>
#include <QTimer>
#include <algorithm>
#include <atomic>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <random>
#include <thread>

#include "headless/headless_session.h"
#include "link/link.h"
#include "link/recording_link_host.h"
#include "live/frame_decoder.h"
#include "platform/posix_clock.h"
#include "platform/posix_line_loop.h"
#include "qt/qt_clock.h"
#include "qt/qt_ticker.h"
#include "qt/qt_yield.h"
#include "unit/quiet_host.h"
#include "windows/timed_unit.h"

namespace {

using namespace zentaq;

constexpr int linesOfOneFile = 30'000;
const int slotOfLines = orbLiteKind().slot;  // a kind whose lines end in CR LF

std::string manyLines() {
    std::string text;
    for (int line = 0; line < linesOfOneFile; ++line) text += "S10510000000EA\n";
    return text;
}

auto onlyPort(const std::string& device) {
    return [device] { return std::vector<PortInfo>{{1, device, "unit", "unit"}}; };
}

/// The windows' loop: Qt's event loop and the ticker.
int runWindowLoop(const std::string& device) {
    int count = 1;
    char name[] = "line_gaps";
    char* words[] = {name, nullptr};
    QCoreApplication application(count, words);
    QtClock clock;
    PosixSerialPort port(clock, onlyPort(device), windowPort);
    QtTicker ticker(port, clock);
    RecordingLinkHost host;
    LiveValues live;
    FrameDecoder decoder(live);
    QtYield yield;
    Link link(port, host, decoder, live, clock, yield);
    ticker.onTick([&link] { link.tick(); });
    if (!link.RS232_Initialize(1)) return 2;
    ticker.start();
    link.programFirmware("lines", manyLines(), slotOfLines);
    QTimer end;
    QObject::connect(&end, &QTimer::timeout, [&] {
        if (!link.transfer().pending()) QCoreApplication::quit();
    });
    end.start(10);
    return QCoreApplication::exec();
}

/// The loop of zentaqctl.
int runLineLoop(const std::string& device) {
    PosixClock clock;
    PosixSerialPort port(clock, onlyPort(device));
    PosixLineLoop loop(port, clock);
    QuietHost host;
    HeadlessSession session({.port = port, .clock = clock, .pass = loop, .unitHost = host});
    loop.onTick([&session] { session.link().tick(); });
    session.open(1);
    loop.start();
    session.transferFirmware("lines", manyLines(), slotOfLines);
    return 0;
}

/// As many processes as the machine has processors, busy until the end of the object.
class Load {
 public:
    Load() {
        for (unsigned one = 0; one < std::max(1U, std::thread::hardware_concurrency()); ++one) {
            const pid_t child = ::fork();
            if (child == 0) {
                std::atomic<unsigned> spin = 0;
                for (;;) ++spin;
            }
            children_.push_back(child);
        }
    }
    ~Load() {
        for (const pid_t child : children_) {
            ::kill(child, SIGKILL);
            ::waitpid(child, nullptr, 0);
        }
    }
    Load(const Load&) = delete;
    Load& operator=(const Load&) = delete;

 private:
    std::vector<pid_t> children_;
};

/// False when a gap was too short or the lines did not all come.
bool measure(const char* name, int (*loop)(const std::string&), int lines) {
    const Load load;
    TimedUnit unit(lines);
    const pid_t child = ::fork();
    if (child == 0) ::_exit(loop(unit.path()));
    std::minstd_rand random(1);
    std::uniform_int_distribution<int> pauseMs(1, 50);
    std::uniform_int_distribution<int> runMs(5, 60);
    while (!unit.done() && ::waitpid(child, nullptr, WNOHANG) == 0) {
        std::this_thread::sleep_for(std::chrono::milliseconds(runMs(random)));
        ::kill(child, SIGSTOP);
        std::this_thread::sleep_for(std::chrono::milliseconds(pauseMs(random)));
        ::kill(child, SIGCONT);
    }
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    std::vector<std::int64_t> gaps = unit.gaps();
    std::ranges::sort(gaps);
    if (gaps.size() < static_cast<std::size_t>(lines)) {
        std::printf("%-10s only %zu lines came\n", name, gaps.size());
        return false;
    }
    const auto below = std::ranges::count_if(gaps, [](std::int64_t us) { return us < shortestGapUs; });
    const auto at = [&gaps](double share) {
        const auto place = static_cast<std::size_t>(share * static_cast<double>(gaps.size() - 1));
        return static_cast<double>(gaps[place]) / 1000;
    };
    std::printf(
        "%-10s %zu lines: shortest %.2f ms, 1%% %.2f, half %.2f, 99%% %.2f, longest %.2f; %td below %.1f\n",
        name, gaps.size(), at(0), at(0.01), at(0.5), at(0.99), at(1), below,
        static_cast<double>(shortestGapUs) / 1000);
    std::fflush(stdout);
    return below == 0;
}

}  // namespace

int main(int argc, char** argv) {
    int lines = 10'000;
    if (argc > 1) std::from_chars(argv[1], argv[1] + std::strlen(argv[1]), lines);
    lines = std::clamp(lines, 1, linesOfOneFile - 2);
    const bool windows = measure("zentaq4", runWindowLoop, lines);
    const bool ctl = measure("zentaqctl", runLineLoop, lines);
    return windows && ctl ? 0 : 1;
}
